// Tarnsysm tool tests: the tool's readers, writers and side-to-pick-point rule, one by one.
// DXF output is read back with dxflib; fixtures are small hand-made DXF files.
#include <gtest/gtest.h>

#include <sstream>

#include "dxf_io.h"
#include "numbers.h"
#include "offset_job.h"
#include "text_io.h"
#include "tool_test_support.h"

namespace tarnsysm::tool::test {
namespace {

// A DXF file as the lines of its group codes and values.
std::string dxfText(const std::vector<std::string>& pairs) {
  std::string text;
  for (const auto& line : pairs)
    text += line + "\n";
  return text;
}

// ---- DXF reading --------------------------------------------------------------------------

TEST(DxfRead, takes_lwpolylines_with_bulges_flags_layers_and_handles) {
  TempDir dir;
  writeFile(
      dir / "in.dxf",
      dxfText({"0",  "SECTION", "2",          "ENTITIES", "0",     "LWPOLYLINE", "5",
               "2F", "100",     "AcDbEntity", "8",        "PARTS", "100",        "AcDbPolyline",
               "90", "3",       "70",         "1",        "10",    "0",          "20",
               "0",  "42",      "0.5",        "10",       "10",    "20",         "0",
               "10", "10",      "20",         "10",       "0",     "LWPOLYLINE", "5",
               "30", "100",     "AcDbEntity", "8",        "0",     "100",        "AcDbPolyline",
               "90", "2",       "70",         "0",        "10",    "1",          "20",
               "2",  "10",      "3",          "20",       "4",     "0",          "ENDSEC",
               "0",  "EOF"}));
  const Drawing d = readDxf(dir / "in.dxf");
  ASSERT_EQ(d.polylines.size(), 2u);
  const Polyline& a = d.polylines[0];
  EXPECT_TRUE(a.closed);
  EXPECT_EQ(a.layer, "PARTS");
  EXPECT_EQ(a.handle, "2F");
  ASSERT_EQ(a.vertices.size(), 3u);
  EXPECT_EQ(a.vertices[0].bulge, 0.5);
  EXPECT_EQ(a.vertices[1].x, 10.0);
  EXPECT_EQ(a.vertices[2].y, 10.0);
  const Polyline& b = d.polylines[1];
  EXPECT_FALSE(b.closed);
  EXPECT_EQ(b.handle, "30");
  ASSERT_EQ(b.vertices.size(), 2u);
  EXPECT_EQ(b.vertices[1].x, 3.0);
  EXPECT_EQ(b.vertices[1].y, 4.0);
  EXPECT_EQ(describePolyline(a, 1), "polyline 1 (handle 2F, layer PARTS)");
  EXPECT_EQ(d.skipped, 0u);
}

TEST(DxfRead, polyline_seen_from_below_is_mirrored_into_the_drawing_plane) {
  // Extrusion (0, 0, -1): the polyline's own x axis is the drawing's -x, so a
  // counter-clockwise arc of its own plane is a clockwise one in the drawing.
  TempDir dir;
  writeFile(dir / "in.dxf",
            dxfText({"0",   "SECTION", "2",   "ENTITIES", "0",  "LWPOLYLINE", "8",   "0",
                     "90",  "2",       "70",  "0",        "10", "1",          "20",  "2",
                     "42",  "0.25",    "10",  "5",        "20", "2",          "210", "0",
                     "220", "0",       "230", "-1",       "0",  "ENDSEC",     "0",   "EOF"}));
  const Drawing d = readDxf(dir / "in.dxf");
  ASSERT_EQ(d.polylines.size(), 1u);
  ASSERT_EQ(d.polylines[0].vertices.size(), 2u);
  EXPECT_EQ(d.polylines[0].vertices[0].x, -1.0);
  EXPECT_EQ(d.polylines[0].vertices[0].y, 2.0);
  EXPECT_EQ(d.polylines[0].vertices[0].bulge, -0.25);
  EXPECT_EQ(d.polylines[0].vertices[1].x, -5.0);
}

TEST(DxfRead, takes_r12_polylines_and_leaves_out_blocks_3d_and_tilted_ones) {
  TempDir dir;
  writeFile(
      dir / "in.dxf",
      dxfText({// A block definition with a polyline of its own: not part of the drawing.
               "0", "SECTION", "2", "BLOCKS", "0", "BLOCK", "8", "0", "2", "B1", "70", "0", "10",
               "0", "20", "0", "30", "0", "0", "LWPOLYLINE", "8", "0", "90", "2", "70", "0", "10",
               "0", "20", "0", "10", "1", "20", "1", "0", "ENDBLK", "8", "0", "0", "ENDSEC",
               // An R12 polyline: a closed circle of two half circles.
               "0", "SECTION", "2", "ENTITIES", "0", "POLYLINE", "8", "OLD", "66", "1", "70", "1",
               "0", "VERTEX", "8", "OLD", "10", "0", "20", "0", "42", "1", "0", "VERTEX", "8",
               "OLD", "10", "4", "20", "0", "42", "1", "0", "SEQEND", "8", "OLD",
               // A 3D polyline (flag 8) and a polyline in a tilted plane: left out.
               "0", "POLYLINE", "8", "0", "66", "1", "70", "8", "0", "VERTEX", "8", "0", "10", "0",
               "20", "0", "30", "1", "70", "32", "0", "VERTEX", "8", "0", "10", "1", "20", "0",
               "30", "2", "70", "32", "0", "SEQEND", "8", "0", "0", "LWPOLYLINE", "8", "0", "90",
               "2", "70", "0", "10", "0", "20", "0", "10", "1", "20", "1", "210", "0", "220", "1",
               "230", "0", "0", "ENDSEC", "0", "EOF"}));
  const Drawing d = readDxf(dir / "in.dxf");
  ASSERT_EQ(d.polylines.size(), 1u);
  EXPECT_EQ(d.polylines[0].layer, "OLD");
  EXPECT_TRUE(d.polylines[0].closed);
  ASSERT_EQ(d.polylines[0].vertices.size(), 2u);
  EXPECT_EQ(d.polylines[0].vertices[1].x, 4.0);
  EXPECT_EQ(d.polylines[0].vertices[1].bulge, 1.0);
  EXPECT_EQ(d.skipped, 2u);
}

// ---- DXF writing, read back with dxflib ----------------------------------------------------

TEST(DxfWrite, written_drawing_reads_back_with_its_layers_polylines_and_points) {
  TempDir dir;
  DxfContent content;
  content.layers = {{"A", 1}, {"B", 5}};
  Polyline p;
  p.layer = "A";
  p.closed = true;
  p.vertices = {{0.1, -2.5, 0.0}, {1e5 / 3.0, 7.25, -0.414213562373095}, {3.0, 1e-7, 1.0}};
  content.polylines.push_back(p);
  p.layer = "B";
  p.closed = false;
  p.vertices = {{-1.0, -2.0, 0.0}, {-3.0, -4.0, 0.0}};
  content.polylines.push_back(p);
  content.points = {{0.5, 0.25}};
  content.pointLayer = "B";
  writeDxf(dir / "out.dxf", content);
  ASSERT_EQ(readFile(dir / "out.dxf").rfind("\nEOF\n"), readFile(dir / "out.dxf").size() - 5);

  const DxfContents back = DxfContents::read(dir / "out.dxf");
  EXPECT_EQ(back.layerNames, (std::vector<std::string>{"0", "A", "B"}));
  ASSERT_EQ(back.polylinesByLayer.at("A").size(), 1u);
  const Polyline& a = back.polylinesByLayer.at("A")[0];
  EXPECT_TRUE(a.closed);
  ASSERT_EQ(a.vertices.size(), 3u);
  for (std::size_t i = 0; i < 3; ++i) {
    const Vertex& want = content.polylines[0].vertices[i];
    const double tolerance = 1e-14 * std::max(1.0, std::fabs(want.x));
    EXPECT_NEAR(a.vertices[i].x, want.x, tolerance) << i;
    EXPECT_NEAR(a.vertices[i].y, want.y, 1e-14) << i;
    EXPECT_NEAR(a.vertices[i].bulge, want.bulge, 1e-14) << i;
  }
  ASSERT_EQ(back.polylinesByLayer.at("B").size(), 1u);
  EXPECT_FALSE(back.polylinesByLayer.at("B")[0].closed);
  ASSERT_EQ(back.pointsByLayer.at("B").size(), 1u);
  EXPECT_EQ(back.pointsByLayer.at("B")[0].x, 0.5);
}

TEST(DxfWrite, shipped_example_is_what_its_generator_writes) {
  // examples/gasket.dxf is made by tarnsysm_make_gasket; regenerating it must give the same
  // polylines, so the committed drawing and its source cannot drift apart.
  TempDir dir;
  const std::string command = quoted(TARNSYSM_MAKE_GASKET_PATH) + " " + quoted(dir / "gasket.dxf");
  ASSERT_EQ(std::system(command.c_str()), 0);
  const Drawing made = readDxf(dir / "gasket.dxf");
  const Drawing shipped = readDxf(TARNSYSM_EXAMPLES_DIR "/gasket.dxf");
  ASSERT_EQ(made.polylines.size(), shipped.polylines.size());
  std::size_t closed = 0;
  std::size_t arcs = 0;
  for (std::size_t i = 0; i < made.polylines.size(); ++i) {
    const Polyline& m = made.polylines[i];
    const Polyline& s = shipped.polylines[i];
    EXPECT_EQ(m.closed, s.closed);
    EXPECT_EQ(m.layer, s.layer);
    ASSERT_EQ(m.vertices.size(), s.vertices.size());
    for (std::size_t k = 0; k < m.vertices.size(); ++k) {
      EXPECT_EQ(m.vertices[k].x, s.vertices[k].x);
      EXPECT_EQ(m.vertices[k].y, s.vertices[k].y);
      EXPECT_EQ(m.vertices[k].bulge, s.vertices[k].bulge);
      if (s.vertices[k].bulge != 0.0)
        ++arcs;
    }
    if (s.closed)
      ++closed;
  }
  // Several closed and open polylines, with arcs.
  EXPECT_GE(closed, 3u);
  EXPECT_GE(shipped.polylines.size() - closed, 2u);
  EXPECT_GE(arcs, 10u);
}

// ---- Text form ----------------------------------------------------------------------------

TEST(TextForm, reads_several_blocks_with_comments_and_writes_them_back) {
  std::istringstream in(
      "# two polylines\nclosed 2\n5 0 1\n-5 0 1\n\nopen 3\n0 0 0\n+1.5 -2e-3 0.25\n\t7 8 0\n");
  const Drawing d = readText(in, "in.txt");
  ASSERT_EQ(d.polylines.size(), 2u);
  EXPECT_TRUE(d.polylines[0].closed);
  EXPECT_FALSE(d.polylines[1].closed);
  ASSERT_EQ(d.polylines[1].vertices.size(), 3u);
  EXPECT_EQ(d.polylines[1].vertices[1].x, 1.5);
  EXPECT_EQ(d.polylines[1].vertices[1].y, -2e-3);
  EXPECT_EQ(d.polylines[1].vertices[1].bulge, 0.25);

  std::ostringstream out;
  writeText(out, d.polylines);
  EXPECT_EQ(out.str(), "closed 2\n5 0 1\n-5 0 1\nopen 3\n0 0 0\n1.5 -0.002 0.25\n7 8 0\n");
}

TEST(TextForm, written_numbers_read_back_bit_identical) {
  Polyline p;
  p.closed = true;
  p.vertices = {{0.1, 1.0 / 3.0, -0.0}, {1e300, -4.9e-324, std::tan(3.141592653589793 / 8.0)}};
  std::ostringstream out;
  writeText(out, {p});
  std::istringstream in(out.str());
  const Drawing d = readText(in, "x");
  ASSERT_EQ(d.polylines.size(), 1u);
  for (std::size_t i = 0; i < 2; ++i) {
    EXPECT_EQ(d.polylines[0].vertices[i].x, p.vertices[i].x);
    EXPECT_EQ(d.polylines[0].vertices[i].y, p.vertices[i].y);
    EXPECT_EQ(d.polylines[0].vertices[i].bulge, p.vertices[i].bulge);
  }
}

struct NumberCase {
  const char* text;
  bool ok;
  double value;
};

void PrintTo(const NumberCase& c, std::ostream* os) {
  *os << '"' << c.text << '"';
}

class Numbers : public ::testing::TestWithParam<NumberCase> {};

TEST_P(Numbers, whole_word_finite_numbers_only) {
  double value = -123.0;
  EXPECT_EQ(parseFiniteNumber(GetParam().text, &value), GetParam().ok);
  EXPECT_EQ(value, GetParam().ok ? GetParam().value : -123.0);  // untouched on failure
}

INSTANTIATE_TEST_SUITE_P(Tool, Numbers,
                         ::testing::Values(NumberCase{"1.5", true, 1.5},
                                           NumberCase{"+4", true, 4.0},
                                           NumberCase{"-2e3", true, -2000.0},
                                           NumberCase{".5", true, 0.5}, NumberCase{"", false, 0},
                                           NumberCase{"+", false, 0}, NumberCase{"+-1", false, 0},
                                           NumberCase{"1.5x", false, 0},
                                           NumberCase{"1,5", false, 0}, NumberCase{" 1", false, 0},
                                           NumberCase{"nan", false, 0}, NumberCase{"inf", false, 0},
                                           NumberCase{"1e999", false, 0}));

// ---- Side to pick point -------------------------------------------------------------------

Polyline polyline(bool closed, std::vector<Vertex> vertices) {
  Polyline p;
  p.closed = closed;
  p.vertices = std::move(vertices);
  return p;
}

TEST(SidePick, steps_off_the_midpoint_of_the_first_segment_to_the_requested_side) {
  // Travelling east from (0, 0) to (10, 0): right is south, left is north.
  const Polyline p = polyline(false, {{0, 0, 0}, {10, 0, 0}, {10, 10, 0}});
  Point pick;
  std::string problem;
  ASSERT_TRUE(sidePickPoint(p, Side::kRight, 2.0, 1e-9, &pick, &problem));
  EXPECT_DOUBLE_EQ(pick.x, 5.0);
  EXPECT_LT(pick.y, 0.0);
  EXPECT_GT(pick.y, -0.01);  // much closer than the distance or the segment's length
  ASSERT_TRUE(sidePickPoint(p, Side::kLeft, 2.0, 1e-9, &pick, &problem));
  EXPECT_DOUBLE_EQ(pick.x, 5.0);
  EXPECT_GT(pick.y, 0.0);
}

TEST(SidePick, arc_segment_uses_the_arc_midpoint_and_its_tangent) {
  // A counter-clockwise half circle from (0, 0) to (10, 0) about (5, 0) passes through
  // (5, -5), travelling east there; left of travel is towards the centre.
  const Polyline p = polyline(false, {{0, 0, 1}, {10, 0, 0}});
  Point pick;
  std::string problem;
  ASSERT_TRUE(sidePickPoint(p, Side::kLeft, 1.0, 1e-9, &pick, &problem));
  EXPECT_NEAR(pick.x, 5.0, 1e-12);
  EXPECT_GT(pick.y, -5.0);
  EXPECT_LT(pick.y, -4.99);
  ASSERT_TRUE(sidePickPoint(p, Side::kRight, 1.0, 1e-9, &pick, &problem));
  EXPECT_LT(pick.y, -5.0);
  EXPECT_GT(pick.y, -5.01);
}

TEST(SidePick, zero_length_first_segment_is_passed_over) {
  const Polyline p = polyline(false, {{3, 3, 0}, {3, 3, 0}, {3, 13, 0}});
  Point pick;
  std::string problem;
  ASSERT_TRUE(sidePickPoint(p, Side::kRight, 1.0, 1e-9, &pick, &problem));
  // Travelling north along x = 3: right is east.
  EXPECT_DOUBLE_EQ(pick.y, 8.0);
  EXPECT_GT(pick.x, 3.0);
}

TEST(SidePick, inside_follows_the_winding_of_a_closed_polyline) {
  // The same square both ways round: the inside pick lies inside either way.
  const Polyline ccw = polyline(true, {{0, 0, 0}, {10, 0, 0}, {10, 10, 0}, {0, 10, 0}});
  const Polyline cw = polyline(true, {{0, 0, 0}, {0, 10, 0}, {10, 10, 0}, {10, 0, 0}});
  Point pick;
  std::string problem;
  ASSERT_TRUE(sidePickPoint(ccw, Side::kInside, 1.0, 1e-9, &pick, &problem));
  EXPECT_GT(pick.y, 0.0);  // first segment along the bottom, inside is above
  ASSERT_TRUE(sidePickPoint(ccw, Side::kOutside, 1.0, 1e-9, &pick, &problem));
  EXPECT_LT(pick.y, 0.0);
  ASSERT_TRUE(sidePickPoint(cw, Side::kInside, 1.0, 1e-9, &pick, &problem));
  EXPECT_GT(pick.x, 0.0);  // first segment up the left side, inside is to the east
  ASSERT_TRUE(sidePickPoint(cw, Side::kOutside, 1.0, 1e-9, &pick, &problem));
  EXPECT_LT(pick.x, 0.0);
}

TEST(SidePick, refuses_what_has_no_such_side) {
  Point pick{7.0, 7.0};
  std::string problem;
  const Polyline open = polyline(false, {{0, 0, 0}, {10, 0, 0}, {10, 10, 0}});
  EXPECT_FALSE(sidePickPoint(open, Side::kInside, 1.0, 1e-9, &pick, &problem));
  EXPECT_NE(problem.find("open"), std::string::npos);
  const Polyline dot = polyline(true, {{1, 1, 0}, {1, 1, 0}});
  EXPECT_FALSE(sidePickPoint(dot, Side::kLeft, 1.0, 1e-9, &pick, &problem));
  EXPECT_NE(problem.find("non-zero length"), std::string::npos);
  // There and back along the same line: closed, but no area, so no inside.
  const Polyline flat = polyline(true, {{0, 0, 0}, {10, 0, 0}});
  EXPECT_FALSE(sidePickPoint(flat, Side::kOutside, 1.0, 1e-9, &pick, &problem));
  EXPECT_NE(problem.find("no area"), std::string::npos);
  EXPECT_EQ(pick.x, 7.0);
  EXPECT_EQ(pick.y, 7.0);
}

}  // namespace
}  // namespace tarnsysm::tool::test
