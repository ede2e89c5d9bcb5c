// Tarnsysm tool tests: the tarnsysm command run end to end on small drawings.
// Exit statuses, what is (and is not) written, layers, areas of offsets, the SVG picture.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

#include "dxf_io.h"
#include "text_io.h"
#include "tool_test_support.h"

namespace tarnsysm::tool::test {
namespace {

// A 10 x 10 square, counter-clockwise and clockwise, and a circle of radius 5 about the
// origin drawn as two counter-clockwise half circles.
const char* const kSquareCcw = "closed 4\n0 0 0\n10 0 0\n10 10 0\n0 10 0\n";
const char* const kSquareCw = "closed 4\n0 0 0\n0 10 0\n10 10 0\n10 0 0\n";
const char* const kCircleCcw = "closed 2\n5 0 1\n-5 0 1\n";

Drawing readTextFile(const std::string& path) {
  std::ifstream in(path);
  return readText(in, path);
}

// ---- Areas of offsets, against the analytic values ------------------------------------------

struct AreaCase {
  const char* name;
  const char* input;
  std::vector<std::string> where;  // --side ... or --pick ...
  double distance;
  double area;  // enclosed by the offset, |signed area|
};

void PrintTo(const AreaCase& c, std::ostream* os) {
  *os << c.name;
}

class OffsetArea : public ::testing::TestWithParam<AreaCase> {};

TEST_P(OffsetArea, offset_encloses_the_analytic_area) {
  const AreaCase& c = GetParam();
  TempDir dir;
  writeFile(dir / "in.txt", c.input);
  std::vector<std::string> args = {"offset",   "in.txt", "--distance", std::to_string(c.distance),
                                   "--output", "out.dxf"};
  args.insert(args.end(), c.where.begin(), c.where.end());
  const RunResult run = runTool(dir, args);
  ASSERT_EQ(run.status, 0) << run.err;
  EXPECT_EQ(run.err, "");

  const DxfContents dxf = DxfContents::read(dir / "out.dxf");
  ASSERT_EQ(dxf.polylinesByLayer.count(kOffsetLayer), 1u);
  const auto& offsets = dxf.polylinesByLayer.at(kOffsetLayer);
  ASSERT_EQ(offsets.size(), 1u);
  EXPECT_TRUE(offsets[0].closed);
  EXPECT_NEAR(std::fabs(enclosedArea(offsets[0])), c.area, 1e-9 * c.area);
}

// A square offset outwards by 1 keeps sharp corners: 12 x 12. Inwards: 8 x 8. The circle's
// radius grows or shrinks by the distance. Inside and outside must not depend on the
// direction in which the square is drawn; left and right do.
INSTANTIATE_TEST_SUITE_P(
    Tool, OffsetArea,
    ::testing::Values(
        AreaCase{"ccw_square_outside", kSquareCcw, {"--side", "outside"}, 1.0, 144.0},
        AreaCase{"cw_square_outside", kSquareCw, {"--side", "outside"}, 1.0, 144.0},
        AreaCase{"ccw_square_inside", kSquareCcw, {"--side", "inside"}, 1.0, 64.0},
        AreaCase{"cw_square_inside", kSquareCw, {"--side", "inside"}, 1.0, 64.0},
        AreaCase{"ccw_square_right_is_outside", kSquareCcw, {"--side", "right"}, 1.0, 144.0},
        AreaCase{"ccw_square_left_is_inside", kSquareCcw, {"--side", "left"}, 1.0, 64.0},
        AreaCase{"cw_square_right_is_inside", kSquareCw, {"--side", "right"}, 1.0, 64.0},
        AreaCase{"square_pick_inside", kSquareCcw, {"--pick", "5,5"}, 1.0, 64.0},
        AreaCase{"square_pick_outside", kSquareCcw, {"--pick=-3,-4"}, 1.0, 144.0},
        AreaCase{"circle_outside", kCircleCcw, {"--side", "outside"}, 1.0, kPi * 36.0},
        AreaCase{"circle_inside", kCircleCcw, {"--side", "inside"}, 1.0, kPi * 16.0},
        AreaCase{"circle_left_is_inside", kCircleCcw, {"--side", "left"}, 2.0, kPi * 9.0},
        AreaCase{"circle_inside_nearly_to_its_centre", kCircleCcw, {"--side", "inside"}, 4.0, kPi},
        // A half disc of radius 5 closed by its diameter, the arc on the closing segment.
        // Inwards by 1: the part of the radius-4 disc above the chord at distance 1,
        // r^2 acos(d / r) - d sqrt(r^2 - d^2).
        AreaCase{"half_disc_inside",
                 "closed 2\n-5 0 0\n5 0 1\n",
                 {"--side", "inside"},
                 1.0,
                 16.0 * std::acos(0.25) - std::sqrt(15.0)}),
    [](const auto& info) { return std::string(info.param.name); });

TEST(Tool, through_offset_passes_through_the_pick_point) {
  // The pick point (5, -2) lies 2 below the bottom side: the offset is the 14 x 14 square.
  TempDir dir;
  writeFile(dir / "in.txt", kSquareCcw);
  const RunResult run = runTool(dir, {"offset", "in.txt", "--through", "--pick", "5,-2"});
  ASSERT_EQ(run.status, 0) << run.err;
  writeFile(dir / "out.txt", run.out);
  const Drawing out = readTextFile(dir / "out.txt");
  ASSERT_EQ(out.polylines.size(), 1u);
  EXPECT_NEAR(std::fabs(enclosedArea(out.polylines[0])), 196.0, 1e-9);
}

TEST(Tool, circle_offset_inwards_past_its_centre_has_no_offset) {
  // A hole of radius 5 drawn as two half circles, offset inwards by 8: nothing is left of
  // it. (The library offsets a two-row polyline in one unlimited step; the tool hands it the
  // circle as three rows so that the arc stops at its centre.) The same for a single arc.
  TempDir dir;
  writeFile(dir / "in.txt", std::string(kCircleCcw) + "open 2\n0 0 1\n10 0 0\n");
  const RunResult run = runTool(dir, {"offset", "in.txt", "-d", "8", "--side", "left"});
  EXPECT_EQ(run.status, 1);
  const auto lines = linesOf(run.err);
  ASSERT_EQ(lines.size(), 2u) << run.err;
  EXPECT_NE(lines[0].find("polyline 1 not offset"), std::string::npos) << lines[0];
  EXPECT_NE(lines[1].find("polyline 2 not offset"), std::string::npos) << lines[1];
  EXPECT_EQ(run.out, "");
}

// ---- The written drawing -----------------------------------------------------------------

TEST(Tool, dxf_output_has_input_offset_and_pick_layers) {
  TempDir dir;
  writeFile(dir / "in.txt", std::string(kSquareCcw) + kCircleCcw);
  const RunResult run =
      runTool(dir, {"offset", "in.txt", "-d", "1", "--side", "outside", "--output", "out.dxf"});
  ASSERT_EQ(run.status, 0) << run.err;

  const DxfContents dxf = DxfContents::read(dir / "out.dxf");
  for (const char* layer : {"0", kInputLayer, kOffsetLayer, kPickLayer}) {
    EXPECT_NE(std::find(dxf.layerNames.begin(), dxf.layerNames.end(), layer), dxf.layerNames.end())
        << layer;
  }
  // The input comes back unchanged, in order, on its own layer.
  ASSERT_EQ(dxf.polylinesByLayer.at(kInputLayer).size(), 2u);
  const Polyline& square = dxf.polylinesByLayer.at(kInputLayer)[0];
  ASSERT_EQ(square.vertices.size(), 4u);
  EXPECT_EQ(square.vertices[2].x, 10.0);
  EXPECT_EQ(square.vertices[2].y, 10.0);
  const Polyline& circle = dxf.polylinesByLayer.at(kInputLayer)[1];
  ASSERT_EQ(circle.vertices.size(), 2u);
  EXPECT_EQ(circle.vertices[0].bulge, 1.0);
  EXPECT_TRUE(circle.closed);
  EXPECT_EQ(dxf.polylinesByLayer.at(kOffsetLayer).size(), 2u);
  // One pick point per polyline, each just off its polyline.
  ASSERT_EQ(dxf.pointsByLayer.at(kPickLayer).size(), 2u);
  const Point squarePick = dxf.pointsByLayer.at(kPickLayer)[0];
  EXPECT_NEAR(squarePick.x, 5.0, 1e-9);
  EXPECT_LT(squarePick.y, 0.0);
  EXPECT_GT(squarePick.y, -0.1);
}

TEST(Tool, text_goes_to_stdout_without_output_files_and_to_a_txt_output) {
  TempDir dir;
  writeFile(dir / "in.txt", kSquareCcw);
  const RunResult toStdout = runTool(dir, {"offset", "in.txt", "-d", "1", "--side", "left"});
  ASSERT_EQ(toStdout.status, 0) << toStdout.err;
  const RunResult toFile =
      runTool(dir, {"offset", "in.txt", "-d", "1", "--side", "left", "-o", "out.txt"});
  ASSERT_EQ(toFile.status, 0) << toFile.err;
  EXPECT_EQ(readFile(dir / "out.txt"), toStdout.out);
  const Drawing out = readTextFile(dir / "out.txt");
  ASSERT_EQ(out.polylines.size(), 1u);
  EXPECT_NEAR(std::fabs(enclosedArea(out.polylines[0])), 64.0, 1e-9);
}

TEST(Tool, successful_run_leaves_no_temporary_files) {
  TempDir dir;
  writeFile(dir / "in.txt", kSquareCcw);
  const RunResult run = runTool(dir, {"offset", "in.txt", "-d", "1", "--side", "left", "--output",
                                      "out.dxf", "--svg", "out.svg"});
  ASSERT_EQ(run.status, 0) << run.err;
  EXPECT_EQ(dir.files(), (std::vector<std::string>{"in.txt", "out.dxf", "out.svg"}));
}

// ---- Polylines that get no offset: warnings and exit status 1 --------------------------------

TEST(Tool, open_polyline_asked_for_inside_is_a_warning_and_the_rest_is_written) {
  TempDir dir;
  writeFile(dir / "in.txt", std::string(kSquareCcw) + "open 3\n20 0 0\n30 0 0\n30 10 0\n");
  const RunResult run =
      runTool(dir, {"offset", "in.txt", "-d", "1", "--side", "inside", "--output", "out.dxf"});
  EXPECT_EQ(run.status, 1);
  const auto lines = linesOf(run.err);
  ASSERT_EQ(lines.size(), 1u) << run.err;
  EXPECT_NE(lines[0].find("warning: polyline 2 "), std::string::npos) << lines[0];
  EXPECT_NE(lines[0].find("open"), std::string::npos) << lines[0];
  const DxfContents dxf = DxfContents::read(dir / "out.dxf");
  EXPECT_EQ(dxf.polylinesByLayer.at(kInputLayer).size(), 2u);
  ASSERT_EQ(dxf.polylinesByLayer.at(kOffsetLayer).size(), 1u);
  EXPECT_NEAR(std::fabs(enclosedArea(dxf.polylinesByLayer.at(kOffsetLayer)[0])), 64.0, 1e-9);
}

TEST(Tool, polyline_the_library_cannot_offset_is_named_and_the_others_are_written) {
  // The pick point (0, 5) lies on the left side of the first square: the library refuses
  // that one. The second square, further right, is offset towards the point.
  TempDir dir;
  DxfContent drawing;
  drawing.layers = {{"PARTS", 3}};
  for (double x0 : {0.0, 20.0}) {
    Polyline p;
    p.layer = "PARTS";
    p.closed = true;
    p.vertices = {{x0, 0, 0}, {x0 + 10, 0, 0}, {x0 + 10, 10, 0}, {x0, 10, 0}};
    drawing.polylines.push_back(p);
  }
  writeDxf(dir / "in.dxf", drawing);
  const RunResult run = runTool(dir, {"offset", "in.dxf", "-d", "1", "--pick", "0,5", "--output",
                                      "out.dxf", "--svg", "out.svg"});
  EXPECT_EQ(run.status, 1);
  const auto lines = linesOf(run.err);
  ASSERT_EQ(lines.size(), 1u) << run.err;
  EXPECT_EQ(lines[0].rfind("tarnsysm: warning: polyline 1 (handle ", 0), 0u) << lines[0];
  EXPECT_NE(lines[0].find("layer PARTS)"), std::string::npos) << lines[0];
  const DxfContents dxf = DxfContents::read(dir / "out.dxf");
  ASSERT_EQ(dxf.polylinesByLayer.at(kOffsetLayer).size(), 1u);
  // Outwards, towards the point on the left: 12 x 12.
  EXPECT_NEAR(std::fabs(enclosedArea(dxf.polylinesByLayer.at(kOffsetLayer)[0])), 144.0, 1e-9);
  EXPECT_NE(readFile(dir / "out.svg").find("not offset"), std::string::npos);
}

// ---- User errors: one line, exit status 2, nothing written --------------------------------

struct ErrorCase {
  const char* name;
  std::vector<std::string> args;  // after "offset"; out.dxf and out.svg are added
  const char* expected;           // a piece of the message
};

void PrintTo(const ErrorCase& c, std::ostream* os) {
  *os << c.name;
}

class UserErrors : public ::testing::TestWithParam<ErrorCase> {};

TEST_P(UserErrors, one_line_exit_status_2_and_no_output_file) {
  const ErrorCase& c = GetParam();
  TempDir dir;
  writeFile(dir / "square.txt", kSquareCcw);
  writeFile(dir / "bad_number.txt", "closed 3\n0 0 0\n10 0 0\n10 1O 0\n");
  writeFile(dir / "short.txt", "closed 3\n0 0 0\n10 0 0\n");
  // Far beyond any drawing; dxflib's writer would overflow its number buffer on it.
  writeFile(dir / "huge.txt", "open 2\n1e300 0 0\n0 0 0\n");
  writeFile(dir / "empty.dxf", "");
  writeFile(dir / "junk.dxf", "this is not a drawing\n");
  DxfContent noPolylines;
  noPolylines.points = {{1.0, 2.0}};
  noPolylines.pointLayer = "0";
  writeDxf(dir / "points.dxf", noPolylines);
  std::filesystem::create_directory(dir.path() / "folder");
  const auto before = dir.files();

  std::vector<std::string> args = {"offset"};
  args.insert(args.end(), c.args.begin(), c.args.end());
  args.insert(args.end(), {"--output", "out.dxf", "--svg", "out.svg"});
  const RunResult run = runTool(dir, args);
  EXPECT_EQ(run.status, 2);
  const auto lines = linesOf(run.err);
  ASSERT_EQ(lines.size(), 1u) << run.err;
  EXPECT_EQ(lines[0].rfind("tarnsysm: error: ", 0), 0u) << lines[0];
  EXPECT_NE(lines[0].find(c.expected), std::string::npos) << lines[0];
  EXPECT_EQ(run.out, "");
  EXPECT_EQ(dir.files(), before);
}

INSTANTIATE_TEST_SUITE_P(
    Tool, UserErrors,
    ::testing::Values(
        ErrorCase{"missing_file", {"nothere.dxf", "-d", "1", "--side", "left"}, "nothere.dxf"},
        ErrorCase{"directory", {"folder", "-d", "1", "--side", "left"}, "directory"},
        ErrorCase{"empty_file", {"empty.dxf", "-d", "1", "--side", "left"}, "LWPOLYLINE"},
        ErrorCase{"not_a_drawing", {"junk.dxf", "-d", "1", "--side", "left"}, "LWPOLYLINE"},
        ErrorCase{
            "dxf_without_polylines", {"points.dxf", "-d", "1", "--side", "left"}, "LWPOLYLINE"},
        ErrorCase{"malformed_vertex",
                  {"bad_number.txt", "-d", "1", "--side", "left"},
                  "bad_number.txt:4: malformed y '1O'"},
        ErrorCase{"file_ends_early", {"short.txt", "-d", "1", "--side", "left"}, "short.txt:3"},
        ErrorCase{"huge_coordinate", {"huge.txt", "-d", "1", "--side", "left"}, "1e12"},
        ErrorCase{"huge_distance", {"square.txt", "-d", "2e12", "--side", "left"}, "1e12"},
        ErrorCase{"huge_pick", {"square.txt", "-d", "1", "--pick", "0,-1e200"}, "1e12"},
        ErrorCase{"malformed_distance", {"square.txt", "-d", "1,5", "--side", "left"}, "'1,5'"},
        ErrorCase{"infinite_distance", {"square.txt", "-d", "1e999", "--side", "left"}, "1e999"},
        ErrorCase{"zero_distance", {"square.txt", "-d", "0", "--side", "left"}, "not be 0"},
        ErrorCase{"negative_distance", {"square.txt", "-d", "-1", "--side", "left"}, "positive"},
        ErrorCase{"no_distance", {"square.txt", "--side", "left"}, "--distance"},
        ErrorCase{"malformed_pick", {"square.txt", "-d", "1", "--pick", "5;5"}, "X,Y"},
        ErrorCase{"no_side_or_pick", {"square.txt", "-d", "1"}, "--side"},
        ErrorCase{"unknown_side", {"square.txt", "-d", "1", "--side", "up"}, "up"},
        ErrorCase{"pick_and_side",
                  {"square.txt", "-d", "1", "--side", "left", "--pick", "1,1"},
                  "excludes"},
        ErrorCase{"through_without_pick", {"square.txt", "--through", "--side", "left"}, "--pick"},
        ErrorCase{"bad_eps", {"square.txt", "-d", "1", "--side", "left", "--eps", "0"}, "--eps"}),
    [](const auto& info) { return std::string(info.param.name); });

TEST(Tool, error_leaves_an_existing_output_untouched) {
  TempDir dir;
  writeFile(dir / "out.dxf", "earlier result\n");
  const RunResult run =
      runTool(dir, {"offset", "nothere.txt", "-d", "1", "--side", "left", "-o", "out.dxf"});
  EXPECT_EQ(run.status, 2);
  EXPECT_EQ(readFile(dir / "out.dxf"), "earlier result\n");
}

TEST(Tool, unwritable_output_is_an_error_and_writes_neither_file) {
  TempDir dir;
  writeFile(dir / "in.txt", kSquareCcw);
  const RunResult run = runTool(dir, {"offset", "in.txt", "-d", "1", "--side", "left", "--svg",
                                      "out.svg", "--output", "no/such/dir/out.dxf"});
  EXPECT_EQ(run.status, 2);
  EXPECT_EQ(linesOf(run.err).size(), 1u) << run.err;
  EXPECT_EQ(dir.files(), std::vector<std::string>{"in.txt"});
}

// ---- The SVG picture ---------------------------------------------------------------------

// Checks that the tags of an XML document nest properly below one root element, that every
// attribute value is quoted and that only the five predefined entities are used.
::testing::AssertionResult isWellFormedXml(const std::string& xml) {
  std::vector<std::string> open;
  std::size_t roots = 0;
  std::size_t i = 0;
  if (xml.rfind("<?xml ", 0) == 0)
    i = xml.find("?>") + 2;
  while ((i = xml.find('<', i)) != std::string::npos) {
    const std::size_t end = xml.find('>', i);
    if (end == std::string::npos)
      return ::testing::AssertionFailure() << "unclosed tag at " << i;
    const std::string tag = xml.substr(i + 1, end - i - 1);
    if (tag.empty())
      return ::testing::AssertionFailure() << "empty tag at " << i;
    int quotes = static_cast<int>(std::count(tag.begin(), tag.end(), '"'));
    if (quotes % 2 != 0)
      return ::testing::AssertionFailure() << "unbalanced quotes: " << tag;
    if (tag[0] == '/') {
      if (open.empty() || open.back() != tag.substr(1)) {
        return ::testing::AssertionFailure() << "mismatched </" << tag.substr(1) << ">";
      }
      open.pop_back();
    } else {
      const std::string name = tag.substr(0, tag.find_first_of(" \n/"));
      if (open.empty())
        ++roots;
      if (tag.back() != '/')
        open.push_back(name);
    }
    i = end + 1;
  }
  for (std::size_t amp = xml.find('&'); amp != std::string::npos; amp = xml.find('&', amp + 1)) {
    const std::string rest = xml.substr(amp, 6);
    if (rest.rfind("&amp;", 0) && rest.rfind("&lt;", 0) && rest.rfind("&gt;", 0) &&
        rest.rfind("&quot;", 0) && rest.rfind("&apos;", 0)) {
      return ::testing::AssertionFailure() << "bare & at " << amp;
    }
  }
  if (!open.empty())
    return ::testing::AssertionFailure() << "<" << open.back() << "> not closed";
  if (roots != 1)
    return ::testing::AssertionFailure() << roots << " root elements";
  return ::testing::AssertionSuccess();
}

TEST(Tool, svg_is_well_formed_draws_arcs_and_points_y_up) {
  TempDir dir;
  // An open polyline: a counter-clockwise half circle from (0, 0) to (10, 0), which bows
  // below the chord, then a line up to (10, 20).
  writeFile(dir / "a&b.txt", "open 3\n0 0 1\n10 0 0\n10 20 0\n");
  const RunResult run =
      runTool(dir, {"offset", "a&b.txt", "-d", "1", "--side", "left", "--svg", "out.svg"});
  ASSERT_EQ(run.status, 0) << run.err;
  const std::string svg = readFile(dir / "out.svg");
  EXPECT_TRUE(isWellFormedXml(svg)) << svg;
  EXPECT_EQ(svg.find("<svg xmlns=\"http://www.w3.org/2000/svg\""), svg.find("<svg"));
  for (const char* group : {"id=\"input\"", "id=\"offset\"", "id=\"pick\""}) {
    EXPECT_NE(svg.find(group), std::string::npos) << group;
  }
  EXPECT_NE(svg.find("<circle "), std::string::npos);

  // The input path: M x0 y0 A r r 0 large sweep x1 y1 L x2 y2.
  const std::size_t at = svg.find("<path d=\"M", svg.find("id=\"input\""));
  std::istringstream path(svg.substr(at + 10));
  double x0, y0, r1, r2, rotation, large, sweep, x1, y1, x2, y2;
  char a, l;
  path >> x0 >> y0 >> a >> r1 >> r2 >> rotation >> large >> sweep >> x1 >> y1 >> l >> x2 >> y2;
  ASSERT_TRUE(path) << svg.substr(at, 120);
  EXPECT_EQ(a, 'A');
  EXPECT_EQ(l, 'L');
  EXPECT_DOUBLE_EQ(r1, r2);
  EXPECT_NEAR(r1, (x1 - x0) / 2.0, 0.02);  // a half circle: radius is half the chord
  EXPECT_EQ(large, 0.0);
  // Counter-clockwise in the drawing stays counter-clockwise on screen, which in SVG's
  // y-down frame is the negative sweep direction.
  EXPECT_EQ(sweep, 0.0);
  EXPECT_GT(x1, x0);
  EXPECT_DOUBLE_EQ(y1, y0);
  EXPECT_DOUBLE_EQ(x2, x1);
  EXPECT_LT(y2, y0);  // (10, 20) is above (10, 0): y points up
  // The half circle's low point (5, -5) is inside the picture: the extent counts the arc.
  const double top = y2;
  const double bottom = y0 + (y0 - top) / 20.0 * 5.0;
  const std::size_t heightAt = svg.find("height=\"") + 8;
  EXPECT_LT(bottom, std::stod(svg.substr(heightAt)));
  // The file name in the caption is escaped.
  EXPECT_NE(svg.find("a&amp;b.txt"), std::string::npos);
}

// ---- The shipped example ------------------------------------------------------------------

TEST(Tool, example_gasket_is_offset_whole) {
  // The README's first command: every polyline of the example gets its offset.
  TempDir dir;
  const RunResult run =
      runTool(dir, {"offset", TARNSYSM_EXAMPLES_DIR "/gasket.dxf", "--distance", "1.5", "--side",
                    "right", "--output", "gasket-offset.dxf", "--svg", "gasket-offset.svg"});
  EXPECT_EQ(run.status, 0) << run.err;
  EXPECT_EQ(run.err, "");
  const DxfContents dxf = DxfContents::read(dir / "gasket-offset.dxf");
  EXPECT_EQ(dxf.polylinesByLayer.at(kInputLayer).size(), 8u);
  EXPECT_EQ(dxf.polylinesByLayer.at(kOffsetLayer).size(), 8u);
  EXPECT_TRUE(isWellFormedXml(readFile(dir / "gasket-offset.svg")));
}

}  // namespace
}  // namespace tarnsysm::tool::test
