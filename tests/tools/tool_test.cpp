// Tarnsysm tool tests: the tarnsysm command run end to end on small drawings.
// Each table row is one command line with its exit status and a piece of what it says; areas
// of offsets are computed here from first principles, not by the library.
#include <gtest/gtest.h>
#include <stdlib.h>
#include <sys/stat.h>
#include <sys/wait.h>

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <fstream>
#include <map>
#include <sstream>

#include "dxf_io.h"
#include "text_io.h"

namespace tarnsysm::tool::test {
namespace {

namespace fs = std::filesystem;
constexpr double kPi = 3.141592653589793;

// Signed area (counter-clockwise positive) of a closed polyline of lines and bulge arcs: the
// shoelace sum plus, for each arc, its circular segment r^2/2 (theta - sin theta), added where
// the arc bows outwards (a positive bulge bows to the right of travel).
double enclosedArea(const Polyline& p) {
  double area = 0.0;
  const auto& v = p.vertices;
  for (std::size_t i = 0; i < v.size(); ++i) {
    const Vertex& a = v[i];
    const Vertex& b = v[(i + 1) % v.size()];
    area += (a.x * b.y - b.x * a.y) / 2.0;
    const double theta = 4.0 * std::atan(std::fabs(a.bulge));
    const double r = std::hypot(b.x - a.x, b.y - a.y) / (2.0 * std::sin(theta / 2.0));
    if (a.bulge != 0.0)
      area += std::copysign(r * r / 2.0 * (theta - std::sin(theta)), a.bulge);
  }
  return area;
}

// A fresh directory, removed with everything in it at the end of the test.
struct TempDir {
  fs::path path;
  TempDir() {
    std::string pattern = fs::temp_directory_path() / "tarnsysm-test-XXXXXX";
    path = mkdtemp(pattern.data());
  }
  ~TempDir() { fs::remove_all(path); }
  std::string operator/(const std::string& name) const { return path / name; }
};

void writeFile(const std::string& path, const std::string& text) {
  std::ofstream(path, std::ios::binary) << text;
}

std::string readFile(const std::string& path) {
  std::ostringstream text;
  text << std::ifstream(path, std::ios::binary).rdbuf();
  return text.str();
}

struct RunResult {
  int status = -1;
  std::string out;
  std::string err;
};

// Runs "prefix tarnsysm command" through the shell in `dir`; the command's words are plain.
RunResult runTool(const TempDir& dir, const std::string& command, const std::string& prefix = "") {
  const std::string out = dir.path.string() + ".out";
  const std::string line = "cd '" + dir.path.string() + "' && " + prefix + " '" +
                           TARNSYSM_TOOL_PATH + "' " + command + " >'" + out + "' 2>'" + out +
                           ".err'";
  const int raw = std::system(line.c_str());
  RunResult result{WIFEXITED(raw) ? WEXITSTATUS(raw) : -1, readFile(out), readFile(out + ".err")};
  fs::remove(out);
  fs::remove(out + ".err");
  return result;
}

// A 10 x 10 square both ways round, a circle of radius 5 about the origin drawn as two
// counter-clockwise half circles, and a figure-eight whose crossing is the midpoint of its first
// segment: a clockwise right lobe (0,0)-(5,5)-(5,-5) and a counter-clockwise left lobe.
const char* const kSquareCcw = "closed 4\n0 0 0\n10 0 0\n10 10 0\n0 10 0\n";
const char* const kSquareCw = "closed 4\n0 0 0\n0 10 0\n10 10 0\n10 0 0\n";
const char* const kCircleCcw = "closed 2\n5 0 1\n-5 0 1\n";
const char* const kEight = "closed 4\n-5 -5 0\n5 5 0\n5 -5 0\n-5 5 0\n";

// The right lobe's inradius is twice its area 25 over its perimeter 10 + 10 sqrt 2; moving every
// side of a triangle by d scales it about its incentre by (r + d) / r.
double lobeArea(double d) {
  const double r = 50.0 / (10.0 + 10.0 * std::sqrt(2.0));
  return 25.0 * (r + d) / r * (r + d) / r;
}

// Two 10 x 10 squares joined by a neck 2 wide and 10 long. Moved in by 3 they part: each leaves
// the square 3..7 and, in front of the neck, a bite bounded by circles of radius 3 about the
// neck's corners, 2 (3 - (sqrt(8) / 2 + 9/2 asin(1/3))) (the integral of 3 - sqrt(9 - t^2)
// over t = 0 .. 1, twice).
const char* const kNeck =
    "closed 12\n0 0 0\n10 0 0\n10 4 0\n20 4 0\n20 0 0\n30 0 0\n30 10 0\n20 10 0\n20 6 0\n"
    "10 6 0\n10 10 0\n0 10 0\n";
const double kNeckLoop = 16.0 + 2.0 * (3.0 - (std::sqrt(8.0) / 2.0 + 4.5 * std::asin(1.0 / 3.0)));

struct AreaCase {
  const char* name;
  const char* input;
  const char* args;  // after "offset in.txt"
  double area;       // enclosed by the offsets written to standard output, together
  std::size_t loops = 1;
};

void PrintTo(const AreaCase& c, std::ostream* os) {
  *os << c.name;
}

class OffsetArea : public ::testing::TestWithParam<AreaCase> {};

TEST_P(OffsetArea, offset_encloses_the_analytic_area) {
  const AreaCase& c = GetParam();
  TempDir dir;
  writeFile(dir / "in.txt", c.input);
  const RunResult run = runTool(dir, std::string("offset in.txt ") + c.args);
  ASSERT_EQ(run.status, 0) << c.name << ": " << run.err;
  EXPECT_EQ(run.err, "") << c.name;
  std::istringstream out(run.out);
  const Drawing offsets = readText(out, "stdout");
  ASSERT_EQ(offsets.polylines.size(), c.loops) << c.name;
  double area = 0.0;
  for (const Polyline& loop : offsets.polylines) {
    EXPECT_TRUE(loop.closed) << c.name;
    area += std::fabs(enclosedArea(loop));
  }
  EXPECT_NEAR(area, c.area, 1e-9 * c.area) << c.name;
}

// A square moved out by 1 keeps sharp corners: 12 x 12; in: 8 x 8; through (5, -2): 14 x 14.
// Inside and outside do not depend on the direction of travel; left and right do. A half disc
// of radius 5 moved in by 1 is the radius-4 disc above a chord at 1: r^2 acos(d/r) - d sqrt(r^2
// - d^2). Right of the figure-eight's travel is inside its clockwise lobe.
INSTANTIATE_TEST_SUITE_P(
    Tool, OffsetArea,
    ::testing::Values(
        AreaCase{"ccw_square_outside", kSquareCcw, "-d 1 --side outside", 144.0},
        AreaCase{"cw_square_outside", kSquareCw, "-d 1 --side outside", 144.0},
        AreaCase{"ccw_square_inside", kSquareCcw, "-d 1 --side inside", 64.0},
        AreaCase{"cw_square_inside", kSquareCw, "-d 1 --side inside", 64.0},
        AreaCase{"ccw_square_right_is_outside", kSquareCcw, "-d 1 --side right", 144.0},
        AreaCase{"cw_square_right_is_inside", kSquareCw, "-d 1 --side right", 64.0},
        AreaCase{"square_pick_inside", kSquareCcw, "-d 1 --pick 5,5", 64.0},
        AreaCase{"square_pick_outside", kSquareCcw, "-d 1 --pick=-3,-4", 144.0},
        AreaCase{"square_through_pick", kSquareCcw, "--through --pick 5,-2", 196.0},
        AreaCase{"circle_outside", kCircleCcw, "-d 1 --side outside", kPi * 36.0},
        AreaCase{"circle_inside", kCircleCcw, "-d 1 --side inside", kPi * 16.0},
        AreaCase{"circle_left_is_inside", kCircleCcw, "-d 2 --side left", kPi * 9.0},
        AreaCase{"circle_nearly_to_its_centre", kCircleCcw, "-d 4 --side inside", kPi},
        AreaCase{"half_disc_inside", "closed 2\n-5 0 0\n5 0 1\n", "-d 1 --side inside",
                 16.0 * std::acos(0.25) - std::sqrt(15.0)},
        AreaCase{"figure_eight_right", kEight, "-d 1 --side right", lobeArea(-1.0)},
        AreaCase{"figure_eight_left", kEight, "-d 1 --side left", lobeArea(1.0)},
        // Round corners: a quarter circle of radius 1 at each corner of the square.
        AreaCase{"square_outside_round_corners", kSquareCcw, "-d 1 --side outside --corners round",
                 140.0 + kPi},
        AreaCase{"neck_inside_nearest_loop", kNeck, "-d 3 --side inside --corners round",
                 kNeckLoop},
        AreaCase{"neck_inside_every_loop", kNeck, "-d 3 --side inside --all-loops", 2.0 * kNeckLoop,
                 2}),
    [](const auto& info) { return std::string(info.param.name); });

// ---- Command lines: exit status, message, and for errors nothing written -----------------

struct CommandCase {
  const char* name;
  const char* file;  // "offset file" starts the command, unless empty
  const char* args;  // after the file; empty or "+..." stands for "-d 1 --side left..."
  int status;
  const char* message;      // a piece of standard error (or output, for status 0 and 1)
  const char* prefix = "";  // shell words before the command
};
CommandCase R(const char* name, const char* file, const char* args, int status, const char* message,
              const char* prefix = "") {
  return {name, file, args, status, message, prefix};
}
constexpr const char* kSq = "square.txt";

void PrintTo(const CommandCase& c, std::ostream* os) {
  *os << c.name;
}

// Names and contents of everything in the directory (links as their targets), to show that a
// failed command changed nothing.
std::map<std::string, std::string> snapshot(const TempDir& dir) {
  std::map<std::string, std::string> files;
  for (const auto& entry : fs::directory_iterator(dir.path)) {
    std::string& seen = files[entry.path().filename()];
    if (entry.is_symlink())
      seen = "-> " + fs::read_symlink(entry.path()).string();
    else if (entry.is_regular_file() && entry.file_size() < (1u << 20))
      seen = readFile(entry.path());
  }
  return files;
}

std::string dxfEntities(const std::string& pairs) {
  return "  0\nSECTION\n  2\nENTITIES\n" + pairs + "  0\nENDSEC\n  0\nEOF\n";
}

void makeInputs(const TempDir& dir) {
  writeFile(dir / "square.txt", kSquareCcw);
  writeFile(dir / "circle.txt", kCircleCcw);
  writeFile(dir / "two.txt", std::string(kSquareCcw) + "open 3\n20 0 0\n30 0 0\n30 10 0\n");
  writeFile(dir / "bad_number.txt", "closed 3\n0 0 0\n10 0 0\n10 1O 0\n");
  // PLineOffset makes nothing of this one moved in by 3.496; the round-corner engine makes a
  // small triangle with one round corner.
  writeFile(dir / "fallback.txt",
            "closed 7\n3.771 2.054 0\n-4.021 5.961 0\n-4.898 -7.36 0\n-0.448 -5.444 0\n"
            "-0.334 -3.507 0\n1.933 -4.779 0\n6.995 -2.995 0\n");
  writeFile(dir / "short.txt", "closed 3\n0 0 0\n10 0 0\n");
  writeFile(dir / "huge.txt", "open 2\n1e300 0 0\n0 0 0\n");
  writeFile(dir / "empty.dxf", "");
  writeFile(dir / "junk.dxf", "this is not a drawing\n");
  writeFile(dir / "points.dxf", dxfEntities("  0\nPOINT\n  8\n0\n 10\n1\n 20\n2\n"));
  writeFile(dir / "binary.dxf", std::string("AutoCAD Binary DXF\r\n\x1a\0\0\0", 24));
  const std::string poly3d =
      "  0\nPOLYLINE\n  5\n3A\n  8\nWALLS\n 66\n1\n 70\n8\n  0\nVERTEX\n  8\nWALLS\n 10\n0\n"
      " 20\n0\n 30\n1\n  0\nVERTEX\n  8\nWALLS\n 10\n1\n 20\n0\n 30\n2\n  0\nSEQEND\n";
  writeFile(dir / "only3d.dxf", dxfEntities(poly3d));
  writeFile(dir / "mixed.dxf", dxfEntities(poly3d + "  0\nLWPOLYLINE\n  8\n0\n 90\n2\n 70\n1\n"
                                                    " 10\n0\n 20\n0\n 42\n1\n 10\n4\n 20\n0\n"));
  for (const char* name :
       {"dxf_truncated_in_vertex_list.dxf", "dxf_count_lies_less.dxf",
        "dxf_lwpolyline_count_1073741824_segv.dxf", "dxf_nan_coordinate_read_as_0.dxf",
        "dxf_garbage_coordinate_read_as_number.dxf"}) {
    fs::copy_file(std::string(TARNSYSM_TEST_DATA_DIR "/") + name, dir / name);
  }
  fs::copy_file(TARNSYSM_EXAMPLES_DIR "/gasket.dxf", dir / "gasket.dxf");
  std::string xyz = readFile(dir / "dxf_garbage_coordinate_read_as_number.dxf");
  writeFile(dir / "xyz.dxf", xyz.replace(xyz.find("abc"), 3, "10"));
  fs::create_directory(dir.path / "folder");
  fs::create_symlink("square.txt", dir.path / "link.txt");
  fs::create_hard_link(dir / "square.txt", dir.path / "hard.txt");
  writeFile(dir / "out.dxf", "earlier result\n");
}

class Commands : public ::testing::TestWithParam<CommandCase> {};

TEST_P(Commands, exit_status_and_message) {
  const CommandCase& c = GetParam();
  TempDir dir;
  makeInputs(dir);
  if (std::string(c.name) == "input_too_large")
    fs::resize_file(dir / "square.txt", (std::uintmax_t{256} << 20) + 1);
  const auto before = snapshot(dir);
  // A failing command names outputs, unless it is about them, to show that none is written.
  std::string args = c.args;
  if (args.empty() || args[0] == '+')
    args = "-d 1 --side left" + args.substr(args.empty() ? 0 : 1);
  std::string command = (c.file[0] ? std::string("offset ") + c.file + " " : "") + args;
  if (c.status == 2 && command.find(" -o ") == std::string::npos &&
      command.find("--svg") == std::string::npos)
    command += " -o new.dxf --svg new.svg";
  const RunResult run = runTool(dir, command, c.prefix);
  EXPECT_EQ(run.status, c.status) << c.name << ": " << run.err;
  if (c.status != 2) {
    EXPECT_NE((run.out + run.err).find(c.message), std::string::npos) << c.name << ": " << run.err;
    return;
  }
  EXPECT_EQ(run.err.rfind("tarnsysm: error: ", 0), 0u) << c.name << ": " << run.err;
  EXPECT_EQ(run.err.find('\n'), run.err.size() - 1) << c.name << ": one line: " << run.err;
  EXPECT_NE(run.err.find(c.message), std::string::npos) << c.name << ": " << run.err;
  EXPECT_EQ(run.out, "") << c.name;
  EXPECT_EQ(snapshot(dir), before) << c.name;
}

const CommandCase kCommands[] = {
    // Mistakes in the command.
    R("unknown_command", "", "offst square.txt", 2, "unknown command 'offst'"),
    R("unknown_option", kSq, "--bogus", 2, "--bogus"),
    R("huge_distance", kSq, "-d 2e12 --side left", 2, "1e12"),
    R("huge_pick", kSq, "-d 1 --pick 0,-1e200", 2, "1e12"),
    R("malformed_distance", kSq, "-d 1,5 --side left", 2, "'1,5'"),
    R("infinite_distance", kSq, "-d 1e999 --side left", 2, "1e999"),
    R("zero_distance", kSq, "-d 0 --side left", 2, "not be 0"),
    R("negative_distance", kSq, "-d -1 --side left", 2, "positive"),
    R("no_distance", kSq, "--side left", 2, "--distance"),
    R("malformed_pick", kSq, "-d 1 --pick '5;5'", 2, "X,Y"),
    R("no_side_or_pick", kSq, "-d 1", 2, "--side"),
    R("unknown_side", kSq, "-d 1 --side up", 2, "up"),
    R("pick_and_side", kSq, "--pick 1,1 --side left", 2, "excludes"),
    R("through_without_pick", kSq, "--through --side left", 2, "--pick"),
    R("zero_eps", kSq, "+ --eps 0", 2, "--eps"),
    R("unknown_corners", kSq, "+ --corners bevel", 2, "bevel"),
    R("all_loops_with_sharp_corners", kSq, "+ --corners sharp --all-loops", 2, "--all-loops"),
    // Outputs that would overwrite the input or each other.
    R("svg_is_the_input", kSq, "+ --svg square.txt", 2, "is the input file"),
    R("output_is_the_input_through_a_link", kSq, "+ -o link.txt", 2, "is the input file"),
    R("output_is_the_input_spelt_otherwise", kSq, "+ -o folder/../square.txt", 2,
      "is the input file"),
    R("output_is_a_hard_link_of_the_input", kSq, "+ -o hard.txt", 2, "is the input file"),
    R("both_outputs_one_file", kSq, "+ -o a.dxf --svg ./a.dxf", 2, "the same file"),
    R("both_outputs_standard_output", kSq, "+ -o - --svg -", 2, "the same file"),
    // Outputs that cannot be written whole: the earlier out.dxf stays.
    R("full_device", kSq, "+ -o out.dxf --svg /dev/full", 2, "No space left"),
    R("file_size_limit", "gasket.dxf", "+ -o out.dxf", 2, "File too large",
      "trap '' XFSZ; ulimit -f 4;"),
    R("output_folder_missing", kSq, "+ -o no/such/o.dxf", 2, "no/such/o.dxf"),
    // Inputs that cannot be read whole.
    R("missing_file", "nothere.dxf", "", 2, "nothere.dxf"),
    R("directory", "folder", "", 2, "directory"),
    R("endless_line", "/dev/zero", "", 2, "line 1 is longer"),
    R("input_too_large", kSq, "", 2, "the 256 MiB"),
    R("malformed_vertex", "bad_number.txt", "", 2, "bad_number.txt:4: malformed y '1O'"),
    R("text_ends_early", "short.txt", "", 2, "short.txt:3"),
    R("huge_coordinate", "huge.txt", "", 2, "1e12"),
    R("empty_file", "empty.dxf", "", 2, "is empty"),
    R("not_a_drawing", "junk.dxf", "", 2, "not a DXF group"),
    R("binary_dxf", "binary.dxf", "", 2, "binary DXF is not supported"),
    R("no_polylines", "points.dxf", "", 2, "holds no LWPOLY"),
    R("only_3d_polylines", "only3d.dxf", "", 2, "only 1 left out"),
    R("dxf_cut_short", "dxf_truncated_in_vertex_list.dxf", "", 2,
      "line 842: the drawing ends inside LWPOLYLINE (handle 38)"),
    R("vertex_count_too_small", "dxf_count_lies_less.dxf", "", 2,
      "line 12: LWPOLYLINE (handle 2A) announces 2 vertices"),
    R("vertex_count_2_to_the_30", "dxf_lwpolyline_count_1073741824_segv.dxf", "", 2,
      "line 12: LWPOLYLINE (handle 2A): count 1073741824"),
    R("nan_coordinate", "dxf_nan_coordinate_read_as_0.dxf", "", 2,
      "line 20: LWPOLYLINE (handle 2A): 'nan'"),
    R("word_coordinate", "dxf_garbage_coordinate_read_as_number.dxf", "", 2,
      "line 20: LWPOLYLINE (handle 2A): 'abc'"),
    R("number_with_a_tail", "xyz.dxf", "", 2, "line 22: LWPOLYLINE (handle 2A): '12xyz'"),
    // Runs that write: a pipe read as a file, a device written in place, standard output.
    R("piped_input", "/dev/stdin", "", 0, "closed 4", "cat square.txt |"),
    R("device_output", kSq, "+ -o /dev/null", 0, "wrote /dev/null"),
    R("dxf_to_standard_output", kSq, "+ -o -", 0, "\nEOF\n"),
    // Polylines left without an offset, each with the reason.
    R("pick_on_the_polyline", kSq, "-d 1 --pick 0,5", 1,
      "polyline 1 not offset: the pick point lies on it"),
    R("pick_beyond_an_open_end", "two.txt", "-d 1 --pick=-5,-5", 1,
      "polyline 2 not offset: its distance from the pick point cannot be measured"),
    R("collapse", "circle.txt", "-d 8 --side inside", 1, "polyline 1 not offset: it collapses"),
    R("open_polyline_has_no_inside", "two.txt", "-d 1 --side inside", 1,
      "polyline 2 not offset: it is open"),
    R("sharp_corners_fall_back_to_round", "fallback.txt", "-d 3.496 --side inside", 0,
      "polyline 1: its offset cannot be made with sharp corners"),
    R("3d_polyline_left_out", "mixed.dxf", "", 1,
      "left out polyline (handle 3A, layer WALLS): a 3D polyline")};

INSTANTIATE_TEST_SUITE_P(Tool, Commands, ::testing::ValuesIn(kCommands),
                         [](const auto& info) { return std::string(info.param.name); });

// ---- What is written ---------------------------------------------------------------------

TEST(Tool, offset_keeps_the_elevation_and_extrusion_of_its_source) {
  // A square seen from below (its own x axis is the drawing's -x) at elevation 7.5: moved out
  // by 1 it spans x = -1 .. 11 in the drawing, 1 .. -11 in its own coordinates.
  TempDir dir;
  Polyline square;
  square.closed = true;
  square.elevation = 7.5;
  square.extrusion = {0.0, 0.0, -1.0};
  square.vertices = {{0, 0, 0}, {10, 0, 0}, {10, 10, 0}, {0, 10, 0}};
  writeFile(dir / "in.dxf", dxfText(DxfContent{{}, {square}, {}, ""}));
  const RunResult run = runTool(dir, "offset in.dxf -d 1 --side outside -o out.dxf");
  ASSERT_EQ(run.status, 0) << run.err;
  const std::string dxf = readFile(dir / "out.dxf");
  const auto start = dxf.find("\n  8\nOFFSET\n");
  const std::string offset = dxf.substr(start, dxf.find("\n  0\n", start) + 1 - start);
  for (const char* pair : {"\n 38\n7.5\n", "\n230\n-1\n", "\n 10\n1\n", "\n 10\n-11\n"})
    EXPECT_NE(offset.find(pair), std::string::npos) << pair << " in" << offset;
}

TEST(Tool, outputs_follow_links_keep_permissions_and_leave_no_temporary_files) {
  TempDir dir;
  writeFile(dir / "in.txt", kSquareCcw);
  writeFile(dir / "real.dxf", "earlier\n");
  fs::permissions(dir / "real.dxf", fs::perms(0640));
  fs::create_symlink("real.dxf", dir.path / "link.dxf");
  const RunResult run = runTool(dir, "offset in.txt -d 1 --side left -o link.dxf --svg out.svg");
  ASSERT_EQ(run.status, 0) << run.err;
  EXPECT_TRUE(fs::is_symlink(dir.path / "link.dxf"));
  EXPECT_NE(readFile(dir / "real.dxf").find("LWPOLYLINE"), std::string::npos);
  EXPECT_EQ(fs::status(dir / "real.dxf").permissions(), fs::perms(0640));
  const auto files = snapshot(dir);
  EXPECT_EQ(files.size(), 4u);  // in.txt, link.dxf, real.dxf, out.svg
}

TEST(Tool, svg_draws_arcs_with_y_pointing_up) {
  // A counter-clockwise half circle from (0, 0) to (10, 0), bowing below the chord, then a line
  // up to (10, 20); the file name in the caption is escaped.
  TempDir dir;
  writeFile(dir / "a&b.txt", "open 3\n0 0 1\n10 0 0\n10 20 0\n");
  const RunResult run = runTool(dir, "offset 'a&b.txt' -d 1 --side left --svg out.svg");
  ASSERT_EQ(run.status, 0) << run.err;
  const std::string svg = readFile(dir / "out.svg");
  EXPECT_NE(svg.find("a&amp;b.txt"), std::string::npos);
  EXPECT_EQ(svg.rfind("</svg>\n"), svg.size() - 7);
  // The input path: M x0 y0 A r r 0 large sweep x1 y1 L x2 y2.
  std::istringstream path(svg.substr(svg.find("<path d=\"M", svg.find("id=\"input\"")) + 10));
  double x0, y0, r1, r2, rotation, large, sweep, x1, y1, x2, y2;
  char a, l;
  path >> x0 >> y0 >> a >> r1 >> r2 >> rotation >> large >> sweep >> x1 >> y1 >> l >> x2 >> y2;
  ASSERT_TRUE(path);
  EXPECT_EQ(std::string() + a + l, "AL");
  EXPECT_NEAR(r1, (x1 - x0) / 2.0, 0.02);  // a half circle: radius is half the chord
  // Counter-clockwise in the drawing stays so on screen: SVG's negative sweep, y pointing down.
  EXPECT_EQ(large + sweep, 0.0);
  EXPECT_DOUBLE_EQ(y1, y0);
  EXPECT_LT(y2, y0);
}

TEST(Tool, example_gasket_is_offset_whole_and_is_what_its_generator_writes) {
  // The README's first command, and examples/gasket.dxf cannot drift from its source.
  TempDir dir;
  const RunResult run = runTool(dir, "offset '" TARNSYSM_EXAMPLES_DIR
                                     "/gasket.dxf' --distance 1.5 --side right --output "
                                     "gasket-offset.dxf --svg gasket-offset.svg");
  EXPECT_EQ(run.status, 0) << run.err;
  EXPECT_EQ(run.err, "");
  const std::string made = dir / "made.dxf";
  ASSERT_EQ(std::system(("'" TARNSYSM_MAKE_GASKET_PATH "' '" + made + "'").c_str()), 0);
  EXPECT_EQ(readFile(made), readFile(TARNSYSM_EXAMPLES_DIR "/gasket.dxf"));
}

}  // namespace
}  // namespace tarnsysm::tool::test
