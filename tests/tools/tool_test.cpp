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
#include <iterator>
#include <map>
#include <sstream>

#include "dxf_io.h"
#include "offset/offset_validity.h"
#include "text_io.h"

namespace tarnsysm::tool::test {
namespace {

namespace fs = std::filesystem;
constexpr double kPi = 3.141592653589793;

// Signed area of a closed polyline, by the offset tests' own plane geometry.
double enclosedArea(const Polyline& p) {
  std::vector<tarnsysm_test::ValidityRow> rows;
  for (const Vertex& v : p.vertices)
    rows.push_back({v.x, v.y, v.bulge});
  return tarnsysm_test::signedArea(rows);
}

// A fresh directory, removed with everything in it at the end of the test.
struct TempDir {
  fs::path path;
  TempDir()
      : path(mkdtemp(std::string(fs::temp_directory_path() / "tarnsysm-test-XXXXXX").data())) {}
  ~TempDir() { fs::remove_all(path); }
  std::string operator/(const std::string& name) const { return path / name; }
};

void writeFile(const std::string& path, const std::string& text) {
  std::ofstream(path, std::ios::binary) << text;
}

std::string readFile(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
}

struct RunResult {
  int status = -1;
  std::string out, err;
};

// Runs "prefix tarnsysm command" through the shell in `dir`; the command's words are plain.
RunResult runTool(const TempDir& dir, const std::string& command, const std::string& prefix = "") {
  const std::string out = dir.path.string() + ".out";
  const std::string line = "cd '" + dir.path.string() + "' && " + prefix + " '" +
                           TARNSYSM_TOOL_PATH + "' " + command + " >'" + out + "' 2>'" + out +
                           ".err'";
  const int raw = std::system(line.c_str());
  RunResult result{WIFEXITED(raw) ? WEXITSTATUS(raw) : -1, readFile(out), readFile(out + ".err")};
  for (const std::string& file : {out, out + ".err"})
    fs::remove(file);
  return result;
}

// A 10 x 10 square both ways round, a circle of radius 5 about the origin drawn as two
// counter-clockwise half circles, and a figure-eight whose crossing is the midpoint of its first
// segment: a clockwise right lobe (0,0)-(5,5)-(5,-5) and a counter-clockwise left lobe.
const char* const kCcw = "closed 4\n0 0 0\n10 0 0\n10 10 0\n0 10 0\n";
const char* const kCw = "closed 4\n0 0 0\n0 10 0\n10 10 0\n10 0 0\n";
const char* const kCircle = "closed 2\n5 0 1\n-5 0 1\n";
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
  const char *name, *input, *args;  // args after "offset in.txt"
  double area;                      // enclosed by the offsets written to standard output, together
  std::size_t loops = 1;
};

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
// clang-format off
const AreaCase kAreas[] = {
    {"ccw_out", kCcw, "-d 1 --side outside", 144.0}, {"cw_out", kCw, "-d 1 --side outside", 144.0},
    {"ccw_in", kCcw, "-d 1 --side inside", 64.0}, {"cw_in", kCw, "-d 1 --side inside", 64.0},
    {"ccw_right", kCcw, "-d 1 --side right", 144.0}, {"cw_right", kCw, "-d 1 --side right", 64.0},
    {"pick_in", kCcw, "-d 1 --pick 5,5", 64.0}, {"pick_out", kCcw, "-d 1 --pick=-3,-4", 144.0},
    {"through", kCcw, "--through --pick 5,-2", 196.0},
    {"circle_out", kCircle, "-d 1 --side outside", kPi * 36.0},
    {"circle_in", kCircle, "-d 1 --side inside", kPi * 16.0},
    {"circle_left", kCircle, "-d 2 --side left", kPi * 9.0},
    {"half_disc", "closed 2\n-5 0 0\n5 0 1\n", "-d 1 --side inside",
     16.0 * std::acos(0.25) - std::sqrt(15.0)},
    {"eight_right", kEight, "-d 1 --side right", lobeArea(-1.0)},
    {"eight_left", kEight, "-d 1 --side left", lobeArea(1.0)},
    // Round corners: a quarter circle of radius 1 at each corner of the square.
    {"round_out", kCcw, "-d 1 --side outside --corners round", 140.0 + kPi},
    {"neck_nearest", kNeck, "-d 3 --side inside --corners round", kNeckLoop},
    {"neck_all", kNeck, "-d 3 --side inside --all-loops", 2.0 * kNeckLoop, 2},
};
// clang-format on

INSTANTIATE_TEST_SUITE_P(Tool, OffsetArea, ::testing::ValuesIn(kAreas),
                         [](const auto& info) { return std::string(info.param.name); });

// ---- Command lines: exit status, message, and for errors nothing written -----------------

struct CommandCase {
  const char *name, *file;  // "offset file" starts the command, unless file is empty
  const char* message;      // a piece of standard error (or output, for status 0 and 1)
  const char* args = "";    // after the file; empty or "+..." stands for "-d 1 --side left..."
  int status = 2;
  const char* prefix = "";  // shell words before the command
};
constexpr const char* kSq = "square.txt";

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
  const std::string poly3d =
      "  0\nPOLYLINE\n  5\n3A\n  8\nWALLS\n 66\n1\n 70\n8\n  0\nVERTEX\n  8\nWALLS\n 10\n0\n"
      " 20\n0\n 30\n1\n  0\nVERTEX\n  8\nWALLS\n 10\n1\n 20\n0\n 30\n2\n  0\nSEQEND\n";
  // PLineOffset makes nothing of fallback.txt moved in by 3.496; the round-corner engine makes
  // a small triangle with one round corner.
  // clang-format off
  for (const auto& [name, text] : std::map<std::string, std::string>{
           {"square.txt", kCcw}, {"circle.txt", kCircle}, {"empty.dxf", ""},
           {"two.txt", std::string(kCcw) + "open 3\n20 0 0\n30 0 0\n30 10 0\n"},
           {"bad_number.txt", "closed 3\n0 0 0\n10 0 0\n10 1O 0\n"}, {"out.dxf", "earlier\n"},
           {"short.txt", "closed 3\n0 0 0\n10 0 0\n"}, {"huge.txt", "open 2\n1e300 0 0\n0 0 0\n"},
           {"one.txt", "open 1\n4 5 0\n"},
           {"junk.dxf", "this is not a drawing\n"}, {"only3d.dxf", dxfEntities(poly3d)},
           {"points.dxf", dxfEntities("  0\nPOINT\n  8\n0\n 10\n1\n 20\n2\n")},
           {"binary.dxf", std::string("AutoCAD Binary DXF\r\n\x1a\0\0\0", 24)},
           {"fallback.txt", "closed 7\n3.771 2.054 0\n-4.021 5.961 0\n-4.898 -7.36 0\n"
                            "-0.448 -5.444 0\n-0.334 -3.507 0\n1.933 -4.779 0\n6.995 -2.995 0\n"},
           {"mixed.dxf", dxfEntities(poly3d + "  0\nLWPOLYLINE\n  8\n0\n 90\n2\n 70\n1\n"
                                              " 10\n0\n 20\n0\n 42\n1\n 10\n4\n 20\n0\n")}})
    writeFile(dir / name, text);
  // clang-format on
  // Damaged drawings, saved as truncated, lies, lwpolyline, nan and garbage.dxf.
  for (const std::string name :
       {"truncated_in_vertex_list", "count_lies_less", "lwpolyline_count_1073741824_segv",
        "nan_coordinate_read_as_0", "garbage_coordinate_read_as_number"}) {
    const std::string to = name == "count_lies_less" ? "lies" : name.substr(0, name.find('_'));
    fs::copy_file(TARNSYSM_TEST_DATA_DIR "/dxf_" + name + ".dxf", dir / (to + ".dxf"));
  }
  fs::copy_file(TARNSYSM_EXAMPLES_DIR "/gasket.dxf", dir / "gasket.dxf");
  std::string xyz = readFile(dir / "garbage.dxf");
  writeFile(dir / "xyz.dxf", xyz.replace(xyz.find("abc"), 3, "10"));
  fs::create_directory(dir.path / "folder");
  fs::create_symlink("square.txt", dir.path / "link.txt");
  fs::create_hard_link(dir / "square.txt", dir.path / "hard.txt");
}

class Commands : public ::testing::TestWithParam<CommandCase> {};

TEST_P(Commands, exit_status_and_message) {
  const CommandCase& c = GetParam();
  TempDir dir;
  makeInputs(dir);
  if (std::string(c.name) == "input_too_large")
    fs::resize_file(dir / "square.txt", (std::uintmax_t{256} << 20) + 1);
  const auto before = snapshot(dir);
  const std::string args = c.args[0] && c.args[0] != '+'
                               ? c.args
                               : "-d 1 --side left" + std::string(c.args).substr(c.args[0] == '+');
  std::string command = (c.file[0] ? std::string("offset ") + c.file + " " : "") + args;
  // A failing command names outputs, unless it is about them, to show that none is written.
  if (c.status == 2 && command.find(" -o ") == std::string::npos &&
      command.find("--svg") == std::string::npos)
    command += " -o new.dxf --svg new.svg";
  const RunResult run = runTool(dir, command, c.prefix);
  EXPECT_EQ(run.status, c.status) << c.name << ": " << run.err;
  const std::string said = c.status == 2 ? run.err : run.out + run.err;
  EXPECT_NE(said.find(c.message), std::string::npos) << c.name << ": " << run.err;
  if (c.status != 2)
    return;
  EXPECT_EQ(run.err.rfind("tarnsysm: error: ", 0), 0u) << c.name << ": " << run.err;
  EXPECT_EQ(run.err.find('\n'), run.err.size() - 1) << c.name << ": one line: " << run.err;
  EXPECT_EQ(run.out, "") << c.name;
  EXPECT_EQ(snapshot(dir), before) << c.name;
}

// clang-format off
const CommandCase kCommands[] = {
    // Mistakes in the command.
    {"bad_command", "", "unknown command 'offst'", "offst square.txt"},
    {"bad_option", kSq, "--bogus", "--bogus"}, {"zero_d", kSq, "not be 0", "-d 0 --side left"},
    {"huge_d", kSq, "1e12", "-d 2e12 --side left"}, {"comma_d", kSq, "'1,5'", "-d 1,5 --side left"},
    {"infinite_d", kSq, "1e999", "-d 1e999 --side left"}, {"no_side", kSq, "--side", "-d 1"},
    {"negative_d", kSq, "positive", "-d -1 --side left"}, {"zero_eps", kSq, "--eps", "+ --eps 0"},
    {"no_d", kSq, "--distance", "--side left"}, {"bad_pick", kSq, "X,Y", "-d 1 --pick '5;5'"},
    {"huge_pick", kSq, "1e12", "-d 1 --pick 0,-1e200"}, {"bad_side", kSq, "up", "-d 1 --side up"},
    {"pick_and_side", kSq, "excludes", "--pick 1,1 --side left"},
    {"through_no_pick", kSq, "--pick", "--through --side left"},
    {"bad_corners", kSq, "bevel", "+ --corners bevel"},
    {"all_loops_sharp", kSq, "--all-loops", "+ --corners sharp --all-loops"},
    // Outputs that would overwrite the input or each other.
    {"svg_is_input", kSq, "is the input file", "+ --svg square.txt"},
    {"out_is_input_link", kSq, "is the input file", "+ -o link.txt"},
    {"out_is_input_path", kSq, "is the input file", "+ -o folder/../square.txt"},
    {"out_is_input_hard", kSq, "is the input file", "+ -o hard.txt"},
    {"outs_one_file", kSq, "the same file", "+ -o a.dxf --svg ./a.dxf"},
    {"outs_stdout", kSq, "the same file", "+ -o - --svg -"},
    // Outputs that cannot be written whole: the earlier out.dxf stays.
    {"full_device", kSq, "No space left", "+ -o out.dxf --svg /dev/full"},
    {"size_limit", "gasket.dxf", "File too large", "+ -o out.dxf", 2, "trap '' XFSZ; ulimit -f 4;"},
    {"no_out_folder", kSq, "no/such/o.dxf", "+ -o no/such/o.dxf"},
    // Inputs that cannot be read whole.
    {"missing", "nothere.dxf", "nothere.dxf"}, {"directory", "folder", "directory"},
    {"endless_line", "/dev/zero", "line 1 is longer"}, {"input_too_large", kSq, "the 256 MiB"},
    {"bad_vertex", "bad_number.txt", "bad_number.txt:4: malformed y '1O'"},
    {"text_short", "short.txt", "short.txt:3"}, {"huge_coord", "huge.txt", "1e12"},
    {"empty", "empty.dxf", "is empty"}, {"not_dxf", "junk.dxf", "not a DXF group"},
    {"binary_dxf", "binary.dxf", "binary DXF is not supported"},
    {"no_polylines", "points.dxf", "holds no LWPOLY"}, {"only_3d", "only3d.dxf", "only 1 left out"},
    {"dxf_short", "truncated.dxf", "line 842: the drawing ends inside LWPOLYLINE (handle 38)"},
    {"count_small", "lies.dxf", "line 12: LWPOLYLINE (handle 2A) announces 2 vertices"},
    {"count_2_30", "lwpolyline.dxf", "line 12: LWPOLYLINE (handle 2A): count 1073741824"},
    {"nan_coord", "nan.dxf", "line 20: LWPOLYLINE (handle 2A): 'nan'"},
    {"word_coord", "garbage.dxf", "line 20: LWPOLYLINE (handle 2A): 'abc'"},
    {"number_tail", "xyz.dxf", "line 22: LWPOLYLINE (handle 2A): '12xyz'"},
    // Runs that write: a pipe read as a file, a device written in place, standard output.
    {"piped_input", "/dev/stdin", "closed 4", "", 0, "cat square.txt |"},
    {"device_out", kSq, "wrote /dev/null", "+ -o /dev/null", 0},
    {"dxf_stdout", kSq, "\nEOF\n", "+ -o -", 0},
    // Polylines left without an offset, each with the reason.
    {"pick_on_line", kSq, "polyline 1 not offset: the pick point lies on it", "-d 1 --pick 0,5", 1},
    {"pick_past_end", "two.txt", "polyline 2 not offset: its distance from the pick point "
     "cannot be measured", "-d 1 --pick=-5,-5", 1},
    {"collapse", "circle.txt", "polyline 1 not offset: it collapses", "-d 8 --side inside", 1},
    {"open_inside", "two.txt", "polyline 2 not offset: it is open", "-d 1 --side inside", 1},
    {"one_vertex", "one.txt", "polyline 1 not offset: it has fewer than two vertices", "", 1},
    {"sharp_fallback", "fallback.txt", "polyline 1: its offset cannot be made with sharp corners",
     "-d 3.496 --side inside", 0},
    {"3d_left", "mixed.dxf", "left out polyline (handle 3A, layer WALLS): a 3D polyline", "", 1},
};
// clang-format on

INSTANTIATE_TEST_SUITE_P(Tool, Commands, ::testing::ValuesIn(kCommands),
                         [](const auto& info) { return std::string(info.param.name); });

// ---- What is written ---------------------------------------------------------------------

TEST(Tool, offset_keeps_the_elevation_and_extrusion_of_its_source) {
  // A square seen from below (its own x axis is the drawing's -x) at elevation 7.5: moved out
  // by 1 it spans x = -1 .. 11 in the drawing, 1 .. -11 in its own coordinates.
  TempDir dir;
  const Polyline square{
      {{0, 0, 0}, {10, 0, 0}, {10, 10, 0}, {0, 10, 0}}, true, "", "", 7.5, {0.0, 0.0, -1.0}};
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
  writeFile(dir / "in.txt", kCcw);
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

TEST(Tool, pick_distances_to_lines_and_arcs) {
  // Rows: start (x, y, bulge), end, pick, distance. The line from (1, 1) to (5, 3): from its foot
  // (3, 2), and past its end. The half circle from (1, 1) to (3, 3) about (2, 2), bowing right of
  // travel: from outside through its middle (3, 1) and through its point at 30 degrees, and from
  // (0, 3), whose nearest circle point lies off the arc, so the nearer end (1, 1) counts.
  const double rows[][8] = {{1, 1, 0, 5, 3, 2, 4, std::sqrt(5.0)},
                            {1, 1, 0, 5, 3, 7, 3, 2},
                            {1, 1, 1, 3, 3, 4, 0, std::sqrt(2.0)},
                            {1, 1, 1, 3, 3, 2 + 1.5 * std::sqrt(3.0), 3.5, 3 - std::sqrt(2.0)},
                            {1, 1, 1, 3, 3, 0, 3, std::sqrt(5.0)}};
  for (const auto& r : rows)
    EXPECT_NEAR(distanceToSegment({r[0], r[1], r[2]}, {r[3], r[4], 0}, {r[5], r[6]}), r[7], 1e-12)
        << r[5] << " " << r[6];
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
