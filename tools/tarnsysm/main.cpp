// Tarnsysm tool: the tarnsysm command, which offsets every polyline of a drawing.
// Exit status: 0 all offset, 1 some polylines left without an offset (warnings name them),
// 2 a usage or input error (one line on stderr, no output file written).
#include <sys/stat.h>

#include <CLI/CLI.hpp>
#include <cerrno>
#include <cmath>
#include <cstring>
#include <fstream>
#include <iostream>
#include <optional>
#include <sstream>

#include "drawing.h"
#include "dxf_io.h"
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
  struct stat info;
  if (stat(path.c_str(), &info) != 0) {
    throw UserError("cannot open '" + path + "': " + std::strerror(errno));
  }
  if (S_ISDIR(info.st_mode))
    throw UserError("cannot read '" + path + "': it is a directory");
  std::ifstream in(path, std::ios::binary);
  if (!in)
    throw UserError("cannot open '" + path + "': " + std::strerror(errno));

  Drawing drawing;
  const bool text = looksLikeText(in);
  if (text) {
    drawing = readText(in, path);
  } else {
    in.close();
    drawing = readDxf(path);
  }
  if (drawing.polylines.empty()) {
    throw UserError(text ? "'" + path + "' holds no polyline"
                         : "'" + path + "' holds no LWPOLYLINE (is it a DXF drawing?)");
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

  const Drawing drawing = readDrawing(request.input);
  if (drawing.skipped > 0) {
    std::cerr << "tarnsysm: warning: left out " << drawing.skipped
              << " polyline(s) that do not lie in the drawing plane (3D polylines, meshes, "
                 "tilted planes)\n";
  }

  std::vector<Polyline> offsets;
  std::vector<Point> picks;
  std::vector<bool> failed;
  for (std::size_t i = 0; i < drawing.polylines.size(); ++i) {
    const OffsetOutcome outcome = offsetPolyline(drawing.polylines[i], options);
    failed.push_back(!outcome.offset);
    if (outcome.hasPick && !options.usePick)
      picks.push_back(outcome.pick);
    if (outcome.offset) {
      offsets.push_back(outcome.result);
    } else {
      std::cerr << "tarnsysm: warning: " << describePolyline(drawing.polylines[i], i + 1)
                << " not offset: " << outcome.problem << "\n";
    }
  }
  if (options.usePick)
    picks.push_back(options.pick);

  // Every output goes to a temporary file first; they replace their targets together at the
  // end, so an error leaves no partial file behind.
  std::optional<PendingFile> dxfFile;
  std::optional<PendingFile> svgFile;
  if (!request.output.empty()) {
    dxfFile.emplace(request.output);
    if (endsWith(request.output, ".txt")) {
      std::ofstream out(dxfFile->temporaryPath());
      writeText(out, offsets);
      if (!out.flush())
        throw std::runtime_error("cannot write '" + request.output + "'");
    } else {
      writeDxf(dxfFile->temporaryPath(), offsetDrawing(drawing.polylines, offsets, picks));
    }
  }
  if (!request.svg.empty()) {
    svgFile.emplace(request.svg);
    SvgPicture picture{drawing.polylines, failed, offsets, picks,
                       captionFor(request, options, offsets.size(), drawing.polylines.size())};
    std::ofstream out(svgFile->temporaryPath());
    writeSvg(out, picture);
    if (!out.flush())
      throw std::runtime_error("cannot write '" + request.svg + "'");
  }
  if (dxfFile)
    dxfFile->commit();
  if (svgFile)
    svgFile->commit();

  if (!dxfFile && !svgFile) {
    writeText(std::cout, offsets);
  } else {
    std::cout << "tarnsysm: offset " << offsets.size() << " of " << drawing.polylines.size()
              << " polylines; wrote";
    if (dxfFile)
      std::cout << " " << request.output;
    if (svgFile)
      std::cout << " " << request.svg;
    std::cout << "\n";
  }
  return offsets.size() == drawing.polylines.size() ? kExitOk : kExitSomeNotOffset;
}

}  // namespace

int runCommandLine(int argc, char** argv) {
  Request request;
  CLI::App app{"Offsets the polylines of a drawing with the Tarnsysm geometry library.",
               "tarnsysm"};
  app.set_version_flag("--version", TARNSYSM_VERSION);
  app.require_subcommand(1);
  CLI::App* offset = app.add_subcommand(
      "offset",
      "Offset every polyline of INPUT. Exit status: 0 all offset, 1 some polylines not offset "
      "(a warning names each), 2 error (nothing written).");
  offset
      ->add_option("INPUT", request.input,
                   "DXF drawing (its LWPOLYLINEs), or text: 'closed N' or 'open N', then N "
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
  offset->add_option("-o,--output", request.output,
                     "write a DXF drawing: input on layer INPUT, offsets on OFFSET, pick points "
                     "on PICK (a name ending in .txt writes the offsets as text)");
  offset->add_option("--svg", request.svg, "write an SVG picture of input, offsets and picks");
  offset->add_option("--eps", request.eps,
                     "tolerance in drawing units passed to the library (default 1e-9)");
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
