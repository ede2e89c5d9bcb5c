// Tarnsysm tool: the tarnsysm command, which offsets every polyline of a drawing.
// Exit status: 0 all offset, 1 some polylines left without an offset (warnings name them),
// 2 a usage or input error (one line on stderr, no output file written).
#include <sys/stat.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <cerrno>
#include <cmath>
#include <csignal>
#include <cstring>
#include <iostream>
#include <optional>
#include <sstream>

#include "drawing.h"
#include "dxf_io.h"
#include "input_file.h"
#include "numbers.h"
#include "offset_job.h"
#include "output_file.h"
#include "svg.h"
#include "text_io.h"

namespace tarnsysm::tool {

namespace {

constexpr int kExitOk = 0;
constexpr int kExitSomeNotOffset = 1;
constexpr int kExitError = 2;

struct Request {
  std::string input;
  std::string distance;
  std::string pick;
  std::string side;
  std::string eps = "1e-9";
  bool through = false;
  std::string corners;
  bool allLoops = false;
  std::string output;
  std::string svg;
};

double numberOption(const std::string& name, const std::string& text) {
  double value = 0.0;
  if (!parseFiniteNumber(text, &value))
    throw UserError(name + ": malformed number '" + text + "'");
  if (std::fabs(value) > kLargestInput)
    throw UserError(name + ": " + text + " is beyond +-1e12");
  return value;
}

Point pickOption(const std::string& text) {
  const auto comma = text.find(',');
  double x = 0.0;
  double y = 0.0;
  if (comma == std::string::npos || !parseFiniteNumber(text.substr(0, comma), &x) ||
      !parseFiniteNumber(text.substr(comma + 1), &y)) {
    throw UserError("--pick: expected X,Y with two numbers (e.g. --pick 10,-2.5), got '" + text +
                    "'");
  }
  if (!isVertexWithin({x, y, 0.0}, kLargestInput))
    throw UserError("--pick: " + text + " is beyond +-1e12");
  return {x, y};
}

Side sideOption(const std::string& text) {
  if (text == "left")
    return Side::kLeft;
  if (text == "right")
    return Side::kRight;
  if (text == "inside")
    return Side::kInside;
  return Side::kOutside;
}

bool endsWith(const std::string& text, const std::string& tail) {
  return text.size() >= tail.size() &&
         text.compare(text.size() - tail.size(), tail.size(), tail) == 0;
}

std::string baseName(const std::string& path) {
  const auto slash = path.find_last_of('/');
  return slash == std::string::npos ? path : path.substr(slash + 1);
}

Drawing readDrawing(const std::string& path) {
  const std::string text = readInputFile(path);
  std::istringstream in(text);
  const bool isText = looksLikeText(in);
  Drawing drawing = isText ? readText(in, path) : readDxf(text, path);
  if (drawing.polylines.empty() && !drawing.leftOut.empty()) {
    throw UserError("'" + path + "' holds no polyline in the drawing plane, only " +
                    std::to_string(drawing.leftOut.size()) +
                    " left out (3D polylines, meshes, tilted planes), the first " +
                    drawing.leftOut.front());
  }
  if (drawing.polylines.empty()) {
    throw UserError(isText ? "'" + path + "' holds no polyline"
                           : "'" + path + "' holds no LWPOLYLINE or POLYLINE");
  }
  for (std::size_t i = 0; i < drawing.polylines.size(); ++i) {
    for (const Vertex& v : drawing.polylines[i].vertices) {
      if (!isVertexWithin(v, kLargestInput)) {
        throw UserError(describePolyline(drawing.polylines[i], i + 1) + " in '" + path +
                        "' has a coordinate or bulge that is not a number within +-1e12");
      }
    }
  }
  return drawing;
}

// Refuses outputs that would overwrite the input or each other, before anything is read.
void checkOutputsApart(const std::string& input, const std::optional<OutputFile>& dxf,
                       const std::optional<OutputFile>& svg) {
  struct stat info;
  const bool inputExists = stat(input.c_str(), &info) == 0;
  for (const auto* out : {&dxf, &svg}) {
    if (*out && inputExists && (*out)->isFile(info.st_dev, info.st_ino)) {
      throw UserError("'" + (*out)->name() + "' is the input file '" + input +
                      "': it would be overwritten (choose another output name)");
    }
  }
  if (dxf && svg && dxf->sameAs(*svg)) {
    throw UserError("--output '" + dxf->name() + "' and --svg '" + svg->name() +
                    "' are the same file");
  }
}

std::string captionFor(const Request& request, const OffsetOptions& options, std::size_t made,
                       std::size_t total) {
  std::ostringstream caption;
  caption << baseName(request.input) << ": ";
  if (options.through) {
    caption << "offset through (" << request.pick << ")";
  } else {
    caption << "offset " << request.distance;
    if (options.usePick) {
      caption << " towards (" << request.pick << ")";
    } else {
      caption << " to the " << request.side;
    }
  }
  caption << ", " << made << " of " << total << " polylines";
  return caption.str();
}

int run(const Request& request) {
  OffsetOptions options;
  options.eps = numberOption("--eps", request.eps);
  if (!(options.eps > 0.0))
    throw UserError("--eps: must be greater than 0");
  options.through = request.through;
  if (request.pick.empty() && request.side.empty()) {
    throw UserError("say where to offset: --pick X,Y or --side left|right|inside|outside");
  }
  if (!request.through) {
    if (request.distance.empty())
      throw UserError("--distance is required (or --through)");
    options.distance = numberOption("--distance", request.distance);
    if (options.distance == 0.0)
      throw UserError("--distance: must not be 0");
    if (options.distance < 0.0) {
      throw UserError("--distance: must be positive; --side or --pick chooses the side");
    }
  }
  options.usePick = !request.pick.empty();
  if (options.usePick)
    options.pick = pickOption(request.pick);
  if (!request.side.empty())
    options.side = sideOption(request.side);
  options.roundCorners = request.corners == "round";
  options.allLoops = request.allLoops;
  if (request.allLoops && request.corners == "sharp")
    throw UserError(
        "--all-loops writes the loops of the round-corner offset: not with --corners sharp");

  std::optional<OutputFile> dxfFile;
  std::optional<OutputFile> svgFile;
  if (!request.output.empty())
    dxfFile.emplace(request.output);
  if (!request.svg.empty())
    svgFile.emplace(request.svg);
  checkOutputsApart(request.input, dxfFile, svgFile);

  const Drawing drawing = readDrawing(request.input);
  for (const std::string& place : drawing.leftOut)
    std::cerr << "tarnsysm: warning: left out " << place << "\n";

  std::vector<Polyline> offsets;
  std::vector<Point> picks;
  std::vector<bool> failed;
  for (std::size_t i = 0; i < drawing.polylines.size(); ++i) {
    const OffsetOutcome outcome = offsetPolyline(drawing.polylines[i], options);
    failed.push_back(!outcome.offset);
    if (outcome.hasPick && !options.usePick)
      picks.push_back(outcome.pick);
    if (outcome.offset) {
      offsets.insert(offsets.end(), outcome.results.begin(), outcome.results.end());
      if (!outcome.note.empty()) {
        std::cerr << "tarnsysm: warning: " << describePolyline(drawing.polylines[i], i + 1) << ": "
                  << outcome.note << "\n";
      }
    } else {
      std::cerr << "tarnsysm: warning: " << describePolyline(drawing.polylines[i], i + 1)
                << " not offset: " << outcome.problem << "\n";
    }
  }
  if (options.usePick)
    picks.push_back(options.pick);

  const auto made = static_cast<std::size_t>(std::count(failed.begin(), failed.end(), false));
  // Every output is made whole in memory first; then direct outputs (devices, standard output)
  // are written, and last the temporary files replace their targets, so an error leaves no
  // partial file behind.
  if (dxfFile) {
    std::ostringstream text;
    if (endsWith(request.output, ".txt"))
      writeText(text, offsets);
    dxfFile->prepare(endsWith(request.output, ".txt")
                         ? text.str()
                         : dxfText(offsetDrawing(drawing.polylines, offsets, picks)));
  }
  if (svgFile) {
    SvgPicture picture{drawing.polylines, failed, offsets, picks,
                       captionFor(request, options, made, drawing.polylines.size())};
    std::ostringstream text;
    writeSvg(text, picture);
    svgFile->prepare(text.str());
  }
  if (!dxfFile && !svgFile) {
    std::ostringstream text;
    writeText(text, offsets);
    dxfFile.emplace("-");
    dxfFile->prepare(text.str());
  }
  for (bool direct : {true, false}) {
    for (auto* out : {&dxfFile, &svgFile}) {
      if (*out && (*out)->direct() == direct)
        (*out)->commit();
    }
  }
  if (!request.output.empty() || !request.svg.empty()) {
    std::ostream& log = request.output == "-" || request.svg == "-" ? std::cerr : std::cout;
    log << "tarnsysm: offset " << made << " of " << drawing.polylines.size() << " polylines; wrote";
    for (const std::string& name : {request.output, request.svg}) {
      if (!name.empty())
        log << " " << (name == "-" ? "standard output" : name);
    }
    log << "\n";
  }
  const bool whole = made == drawing.polylines.size() && drawing.leftOut.empty();
  return whole ? kExitOk : kExitSomeNotOffset;
}
}  // namespace

int runCommandLine(int argc, char** argv) {
  Request request;
  CLI::App app{"Offsets the polylines of a drawing with the Tarnsysm geometry library.",
               "tarnsysm"};
  app.set_version_flag("--version", TARNSYSM_VERSION);
  // Words the top level does not know are collected and named below: CLI11 would only say
  // that a subcommand is required.
  app.allow_extras();
  CLI::App* offset = app.add_subcommand(
      "offset",
      "Offset every polyline of INPUT. Exit status: 0 all offset, 1 some polylines not offset "
      "(a warning names each), 2 error (nothing written).");
  offset
      ->add_option("INPUT", request.input,
                   "ASCII DXF drawing (its LWPOLYLINEs and 2D POLYLINEs), or text: 'closed N' or "
                   "'open N', then N "
                   "lines 'x y bulge'")
      ->required();
  CLI::Option* distance =
      offset->add_option("-d,--distance", request.distance, "offset distance (> 0)");
  CLI::Option* pick =
      offset->add_option("--pick", request.pick, "X,Y: offset every polyline towards this point");
  CLI::Option* side = offset
                          ->add_option("--side", request.side,
                                       "offset each polyline to its left or right (of the "
                                       "direction of travel), or inside or outside")
                          ->check(CLI::IsMember({"left", "right", "inside", "outside"}));
  CLI::Option* through = offset->add_flag(
      "--through", request.through, "the offset passes through the --pick point (no --distance)");
  offset
      ->add_option("--corners", request.corners,
                   "sharp (default): corners as the segments meet, and round corners only where "
                   "sharp ones cannot make the offset (a warning says so); round: arcs about "
                   "the vertices wherever moved segments pull apart")
      ->check(CLI::IsMember({"sharp", "round"}));
  offset->add_flag("--all-loops", request.allLoops,
                   "write every loop of the round-corner offset (as for pocketing), not only the "
                   "one nearest the pick point");
  offset->add_option(
      "-o,--output", request.output,
      "write a DXF drawing: input on layer INPUT, offsets on OFFSET, pick points "
      "on PICK (a name ending in .txt writes the offsets as text; - writes to standard "
      "output)");
  offset->add_option(
      "--svg", request.svg,
      "write an SVG picture of input, offsets and picks (- writes to standard output)");
  offset->add_option("--eps", request.eps,
                     "tolerance in drawing units passed to the library (default 1e-9)");
  offset->allow_extras(false);
  pick->excludes(side);
  through->needs(pick);
  through->excludes(distance);

  try {
    app.parse(argc, argv);
  } catch (const CLI::CallForHelp& e) {
    return app.exit(e);
  } catch (const CLI::CallForAllHelp& e) {
    return app.exit(e);
  } catch (const CLI::CallForVersion& e) {
    return app.exit(e);
  } catch (const CLI::ParseError& e) {
    std::cerr << "tarnsysm: error: " << e.what() << " (see tarnsysm"
              << (offset->parsed() ? " offset" : "") << " --help)\n";
    return kExitError;
  }
  if (!offset->parsed()) {
    const auto extras = app.remaining();
    const std::string word = extras.empty() ? "" : extras.front();
    std::cerr << "tarnsysm: error: "
              << (word.empty()          ? std::string("no command given")
                  : word.front() == '-' ? "unknown option '" + word + "'"
                                        : "unknown command '" + word + "'")
              << " (the command is 'tarnsysm offset', see tarnsysm --help)\n";
    return kExitError;
  }
  // A closed pipe on an output is an error to report, not a signal to die of.
  std::signal(SIGPIPE, SIG_IGN);

  try {
    return run(request);
  } catch (const std::bad_alloc&) {
    std::cerr << "tarnsysm: error: out of memory\n";
  } catch (const std::exception& e) {
    std::cerr << "tarnsysm: error: " << e.what() << "\n";
  }
  return kExitError;
}

}  // namespace tarnsysm::tool

int main(int argc, char** argv) {
  return tarnsysm::tool::runCommandLine(argc, argv);
}
