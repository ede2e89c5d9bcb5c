// Tarnsysm: planar computational geometry for 2D drafting.
// Tests of the offset driver: the event solvers, the step limit, the raw builder and PLineOffset.
#include "offset/polyline_testing.h"

#include <Tarnsysm.h>
#include <offset/internal.h>

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <random>
#include <vector>

using namespace tarnsysm_test;
using tarnsysm::detail::BuildOffsetPLine;
using tarnsysm::detail::buildOffsetPLineWithin;
using tarnsysm::detail::OffsetStepLimit;

namespace {

constexpr double kEps = 1e-9;

// ---- Event solvers ------------------------------------------------------------------------

// Lines X = 0 and Y = 0 (distances X and Y) and the clockwise circle about (10, 10) of radius 5
// (signed -5): the point (x, x) is at distance x - 5 from the circle when
// sqrt(2)(10 - x) = x - 5, i.e. x = (10 sqrt(2) + 5) / (1 + sqrt(2)).
TEST(LLCOffset, finds_the_nearest_event_on_the_side_of_the_step) {
  const double expected = (10.0 * std::sqrt(2.0) + 5.0) / (1.0 + std::sqrt(2.0));
  double out = 0.0;
  EXPECT_EQ(LLCOffset(kEps, 100.0, 0, 1, 0, 1, 0, 0, 10, 10, -5, &out), 1);
  EXPECT_NEAR(out, expected, 1e-9);
  // The second root, beyond the centre, is farther: x = (10 sqrt(2) - 5) / (sqrt(2) - 1).
  out = 0.0;
  EXPECT_EQ(LLCOffset(kEps, 8.0, 0, 1, 0, 1, 0, 0, 10, 10, -5, &out), 1);
  EXPECT_NEAR(out, expected, 1e-9);
}

TEST(LLCOffset, writes_the_step_when_nothing_is_reached) {
  double out = -1.0;
  // Both roots lie beyond a step of 5.
  EXPECT_EQ(LLCOffset(kEps, 5.0, 0, 1, 0, 1, 0, 0, 10, 10, -5, &out), 0);
  EXPECT_EQ(out, 5.0);
  // On the other side.
  out = -1.0;
  EXPECT_EQ(LLCOffset(kEps, -100.0, 0, 1, 0, 1, 0, 0, 10, 10, -5, &out), 0);
  EXPECT_EQ(out, -100.0);
  // Parallel lines.
  out = -1.0;
  EXPECT_EQ(LLCOffset(kEps, 3.0, 0, 1, 0, 0, 1, 5, 10, 10, -5, &out), 0);
  EXPECT_EQ(out, 3.0);
}

// Circles about (-10, 5) and (10, 5) of radius 3 and the line Y = 0: by symmetry the point is
// (0, x), and 100 + (x - 5)^2 = (3 + x)^2 gives x = 7.25.
TEST(CLCOffset, event_of_two_circles_and_a_line) {
  double out = 0.0;
  EXPECT_EQ(CLCOffset(kEps, 100.0, -10, 5, 3, 0, 1, 0, 10, 5, 3, &out), 1);
  EXPECT_NEAR(out, 7.25, 1e-12);
  out = 0.0;
  EXPECT_EQ(CLCOffset(kEps, 7.0, -10, 5, 3, 0, 1, 0, 10, 5, 3, &out), 0);
  EXPECT_EQ(out, 7.0);
}

// Three circles of radius 2 about (-10, 0), (10, 0), (0, 20): their centres' circumcentre
// (0, 7.5) lies 12.5 from each, so x = 12.5 - 2 = 10.5 outwards, or -12.5 - 2 inwards.
TEST(CCCOffset, event_of_three_circles) {
  double out = 0.0;
  EXPECT_EQ(CCCOffset(kEps, 100.0, -10, 0, 2, 10, 0, 2, 0, 20, 2, &out), 1);
  EXPECT_NEAR(out, 10.5, 1e-12);
  out = 0.0;
  EXPECT_EQ(CCCOffset(kEps, -100.0, -10, 0, 2, 10, 0, 2, 0, 20, 2, &out), 1);
  EXPECT_NEAR(out, -14.5, 1e-12);
  // Collinear centres: no single point.
  out = 0.0;
  EXPECT_EQ(CCCOffset(kEps, 100.0, -10, 0, 2, 10, 0, 2, 0, 0, 2, &out), 0);
  EXPECT_EQ(out, 100.0);
}

// ---- Step limit ---------------------------------------------------------------------------

TEST(OffsetStepLimit, square_inwards_is_limited_to_half_its_side) {
  Polyline sq(rectangle(0, 0, 10, 10));
  for (int i = 0; i < 4; ++i) {
    // Counter-clockwise: inwards is to the left, a negative step.
    EXPECT_NEAR(OffsetStepLimit(kEps, -8.0, i, 1, 4, sq.rows()), -5.0, 1e-12) << i;
    EXPECT_EQ(OffsetStepLimit(kEps, 8.0, i, 1, 4, sq.rows()), 8.0) << i;
    EXPECT_EQ(OffsetStepLimit(kEps, -4.0, i, 1, 4, sq.rows()), -4.0) << i;
  }
}

TEST(OffsetStepLimit, arc_towards_its_centre_is_limited_to_its_radius) {
  // A circle of radius 2 made of four quarter arcs.
  const double q = std::tan(kPi / 8.0);
  Polyline c({{2, 0, q}, {0, 2, q}, {-2, 0, q}, {0, -2, q}});
  for (int i = 0; i < 4; ++i) {
    EXPECT_NEAR(OffsetStepLimit(kEps, -5.0, i, 1, 4, c.rows()), -2.0, 1e-12) << i;
    EXPECT_EQ(OffsetStepLimit(kEps, 5.0, i, 1, 4, c.rows()), 5.0) << i;
  }
}

// A chord between two arcs of one circle keeps its length while everything moves (the circle
// and the chord's line keep their gap). The arcs' centres, each worked out from its own short
// chord, differ only by round-off, which once made a phantom event and thousands of steps.
TEST(OffsetStepLimit, segment_between_arcs_of_one_circle_is_not_limited) {
  const int n = 100000;
  const double b = std::tan(kPi / (2.0 * n));
  std::vector<Vertex> v;
  for (int k = 0; k < 4; ++k) {
    const double a = 2.0 * kPi * (33910 + k) / n;
    v.push_back({100.0 * std::cos(a), 100.0 * std::sin(a), k % 2 == 0 ? b : 0.0});
  }
  Polyline pl(v);
  for (const double step : {50.0, -50.0, 1.0, -1.0})
    EXPECT_EQ(OffsetStepLimit(kEps, step, 1, 1, 4, pl.rows()), step) << step;
}

TEST(OffsetStepLimit, degenerate_counts) {
  Polyline sq(rectangle(0, 0, 10, 10));
  EXPECT_EQ(OffsetStepLimit(kEps, -8.0, 0, 1, 1, sq.rows()), 0.0);
  EXPECT_EQ(OffsetStepLimit(kEps, -8.0, 0, 1, 2, sq.rows()), -8.0);
  EXPECT_EQ(OffsetStepLimit(kEps, -8.0, 7, 1, 4, sq.rows()), -8.0);
}

// The distance at which three lines, each moved by x along its unit right-hand normal
// (a, b), pass through one point: solve a_k X + b_k Y + c_k = x (k = 1..3) by Cramer's rule.
bool concurrency(const double (&l)[3][3], double* x) {
  // Unknowns X, Y, x: a X + b Y - x = -c.
  const double m[3][3] = {{l[0][0], l[0][1], -1}, {l[1][0], l[1][1], -1}, {l[2][0], l[2][1], -1}};
  const double r[3] = {-l[0][2], -l[1][2], -l[2][2]};
  const auto det3 = [](const double(&a)[3][3]) {
    return a[0][0] * (a[1][1] * a[2][2] - a[1][2] * a[2][1]) -
           a[0][1] * (a[1][0] * a[2][2] - a[1][2] * a[2][0]) +
           a[0][2] * (a[1][0] * a[2][1] - a[1][1] * a[2][0]);
  };
  const double d = det3(m);
  if (std::fabs(d) < 1e-9)
    return false;
  double mx[3][3];
  for (int i = 0; i < 3; ++i) {
    mx[i][0] = m[i][0];
    mx[i][1] = m[i][1];
    mx[i][2] = r[i];
  }
  *x = det3(mx) / d;
  return true;
}

void lineThrough(double x1, double y1, double x2, double y2, double (&l)[3]) {
  const double len = std::hypot(x2 - x1, y2 - y1);
  l[0] = (y2 - y1) / len;
  l[1] = -(x2 - x1) / len;
  l[2] = -(l[0] * x1 + l[1] * y1);
}

TEST(OffsetStepLimit, three_line_formula_agrees_with_the_concurrency_of_the_moved_lines) {
  std::mt19937 rng(20240611);
  std::uniform_real_distribution<double> coord(-10.0, 10.0);
  int checked = 0;
  for (int trial = 0; trial < 2000; ++trial) {
    // A closed quadrilateral Z, A, B, C: segment 1 (A to B) between Z-A and B-C.
    double p[4][2];
    for (auto& q : p) {
      q[0] = coord(rng);
      q[1] = coord(rng);
    }
    Polyline quad({{p[0][0], p[0][1], 0},
                   {p[1][0], p[1][1], 0},
                   {p[2][0], p[2][1], 0},
                   {p[3][0], p[3][1], 0}});
    double lines[3][3];
    lineThrough(p[0][0], p[0][1], p[1][0], p[1][1], lines[0]);
    lineThrough(p[1][0], p[1][1], p[2][0], p[2][1], lines[1]);
    lineThrough(p[2][0], p[2][1], p[3][0], p[3][1], lines[2]);
    double x;
    if (!concurrency(lines, &x) || std::fabs(x) < 1e-3 || std::fabs(x) > 1e3)
      continue;
    // Skip near-collinear corners, where an end does not move along the segment.
    const double farB = lines[0][0] * p[2][0] + lines[0][1] * p[2][1] + lines[0][2];
    const double farA = lines[2][0] * p[1][0] + lines[2][1] * p[1][1] + lines[2][2];
    if (std::fabs(farA) < 1e-3 || std::fabs(farB) < 1e-3)
      continue;
    const double step = x > 0 ? 1e4 : -1e4;
    EXPECT_NEAR(OffsetStepLimit(kEps, step, 1, 1, 4, quad.rows()), x, 1e-7 * (1 + std::fabs(x)))
        << "trial " << trial;
    EXPECT_EQ(OffsetStepLimit(kEps, -step, 1, 1, 4, quad.rows()), -step) << "trial " << trial;
    ++checked;
  }
  EXPECT_GT(checked, 1000);
}

// Length of moved segment `seg` after BuildOffsetPLine by `step` on a copy of the rows, when
// every corner joins in one row (moved segment s runs from moved row s to moved row s + 1).
double movedSegmentChord(const std::vector<Vertex>& v, bool closed, int seg, double step) {
  Polyline copy(v);
  const int n = BuildOffsetPLine(kEps, step, closed ? 1 : 0, copy.count(), copy.rows());
  if (n != copy.count())
    return -1.0;
  const double* a = copy[seg];
  const double* b = copy[(seg + 1) % n];
  return std::hypot(b[0] - a[0], b[1] - a[1]);
}

struct VanishingCase {
  const char* name;
  std::vector<Vertex> rows;
  bool closed;
  int segment;
  double step;
};

class SegmentVanishesAtTheLimit : public ::testing::TestWithParam<VanishingCase> {};

// The limit is where the moved segment shrinks to a point: built with the limit the segment
// has no length left, built with a little less it still has some.
TEST_P(SegmentVanishesAtTheLimit, moved_segment_has_no_length_at_the_limit) {
  const VanishingCase& c = GetParam();
  Polyline pl(c.rows);
  const double limit =
      OffsetStepLimit(kEps, c.step, c.segment, c.closed ? 1 : 0, pl.count(), pl.rows());
  ASSERT_NE(limit, c.step) << "no event found";
  ASSERT_GT(limit * c.step, 0.0);
  EXPECT_LT(movedSegmentChord(c.rows, c.closed, c.segment, limit), 1e-6);
  EXPECT_GT(movedSegmentChord(c.rows, c.closed, c.segment, 0.9 * limit), 1e-3);
}

// A trapezoid-ish shape with an arc as top side: segment 1 (line) between a line and an arc.
const std::vector<Vertex> kLineLineArc = {{0, 0, 0}, {10, 0, 0}, {9, 4, 0.3}, {1, 4, 0}};

INSTANTIATE_TEST_SUITE_P(
    Shapes, SegmentVanishesAtTheLimit,
    ::testing::Values(
        VanishingCase{
            "open_start_line_then_line", {{0, 0, 0}, {4, 0, 0}, {6, 3, 0}}, false, 0, -10.0},
        VanishingCase{
            "open_end_line_after_line", {{0, 0, 0}, {4, 0, 0}, {4, 3, 0}}, false, 1, -5.0},
        VanishingCase{"closed_line_between_line_and_arc", kLineLineArc, true, 1, -5.0},
        VanishingCase{"closed_arc_between_lines", kLineLineArc, true, 2, -5.0},
        VanishingCase{
            "open_start_arc_then_line", {{0, 0, -0.2}, {4, 0, 0}, {6, -3, 0}}, false, 0, 10.0}),
    [](const ::testing::TestParamInfo<VanishingCase>& info) { return info.param.name; });

// ---- Raw builder --------------------------------------------------------------------------

TEST(BuildOffsetPLine, bridges_a_reversal_with_a_half_circle_round_the_tip) {
  // Out to (10, 0) and back: moved right by 1 the two lines lie on either side.
  Polyline pl({{0, 0, 0}, {10, 0, 0}, {0, 0, 0}});
  const int n = BuildOffsetPLine(kEps, 1.0, 0, 3, pl.rows());
  ASSERT_EQ(n, 4);
  const double expected[4][3] = {{0, -1, 0}, {10, -1, 1}, {10, 1, 0}, {0, 1, 0}};
  for (int i = 0; i < 4; ++i) {
    EXPECT_NEAR(pl[i][0], expected[i][0], 1e-12) << i;
    EXPECT_NEAR(pl[i][1], expected[i][1], 1e-12) << i;
    if (i < 3) {
      EXPECT_EQ(pl[i][2], expected[i][2]) << i;
    }
  }
  // The half circle's first row is inserted; the second is the corner's own row.
  EXPECT_EQ(pl[1][3], -1.0);
  EXPECT_EQ(pl[1][4], 201.0);
  EXPECT_EQ(pl[2][3], 101.0);
  EXPECT_EQ(pl[2][4], 201.0);
  EXPECT_EQ(pl[0][3], 100.0);
  EXPECT_EQ(pl[3][3], 102.0);
}

TEST(BuildOffsetPLine, arc_arc_corner_whose_circles_part_is_bridged_between_the_moved_ends) {
  // A counter-clockwise quarter arc about (0, 0) of radius 2 into a clockwise quarter arc about
  // (0.5, 1.5): the circles cross at (0, 2). Moved right by 0.4 the first grows to 2.4, the
  // second shrinks to about 0.307 and lies inside it: they no longer meet.
  const double q = std::tan(kPi / 8.0);
  Polyline pl({{2, 0, q}, {0, 2, -q}, {1, 2, 0}});
  double ox, oy, t1, t2;
  ASSERT_EQ(AAOffset(kEps, 0.4, 2, 0, 0, 2, 1, 2, q, -q, &ox, &oy, &t1, &t2), 0);
  const int n = BuildOffsetPLine(kEps, 0.4, 0, 3, pl.rows());
  ASSERT_EQ(n, 4);
  // Row 1 ends the first moved arc at the vertex, row 2 starts the second there.
  EXPECT_NEAR(pl[1][0], 0.0, 1e-12);
  EXPECT_NEAR(pl[1][1], 2.4, 1e-12);
  const double r2 = std::sqrt(0.5) - 0.4;
  EXPECT_NEAR(pl[2][0], 0.5 - r2 * std::sqrt(0.5), 1e-12);
  EXPECT_NEAR(pl[2][1], 1.5 + r2 * std::sqrt(0.5), 1e-12);
  EXPECT_EQ(std::fabs(pl[1][2]), 1.0);
  EXPECT_EQ(pl[1][3], -1.0);
  EXPECT_EQ(pl[1][4], 201.0);
  EXPECT_EQ(pl[2][3], 101.0);
  // The first moved arc keeps its whole quarter turn, the second too.
  EXPECT_NEAR(pl[0][0], 2.4, 1e-12);
  EXPECT_NEAR(pl[0][2], q, 1e-12);
  EXPECT_NEAR(pl[2][2], -q, 1e-12);
}

TEST(BuildOffsetPLine, never_writes_a_row_it_still_has_to_read) {
  // A zigzag that turns back at every corner: each corner adds a row.
  std::vector<Vertex> zig;
  for (int i = 0; i < 6; ++i) {
    zig.push_back({0.0, 0.0, 0.0});
    zig.push_back({10.0, 0.0, 0.0});
  }
  Polyline roomy(zig);
  const int full = buildOffsetPLineWithin(kEps, 1.0, 0, 12, roomy.rows(), roomy.capacity());
  EXPECT_GT(full, 12);
  // With room for only one row more than the polyline, the bridges would overrun the copy.
  Polyline tight(zig, 1);
  std::unique_ptr<double[][5]> exact(new double[13][5]);
  for (int i = 0; i < 12; ++i) {
    for (int f = 0; f < 5; ++f)
      exact[i][f] = tight[i][f];
  }
  EXPECT_EQ(buildOffsetPLineWithin(kEps, 1.0, 0, 12, exact.get(), 13), -1);
}

// ---- PLineOffset --------------------------------------------------------------------------

struct AreaCase {
  const char* name;
  std::vector<Vertex> rows;
  double pickX, pickY, dist;
  double area;  // expected, clockwise positive
};

class OffsetArea : public ::testing::TestWithParam<AreaCase> {};

TEST_P(OffsetArea, matches_the_analytic_area) {
  const AreaCase& c = GetParam();
  Polyline pl(c.rows);
  int closed = 1;
  double pick[2] = {c.pickX, c.pickY};
  const int n = PLineOffset(kEps, &closed, pl.count(), pl.rows(), 0, pick, c.dist);
  ASSERT_GE(n, 2);
  EXPECT_EQ(closed, 1);
  EXPECT_NEAR(enclosedArea(pl.rows(), n), c.area, 1e-9 * (1 + std::fabs(c.area)));
}

// Rounded rectangle w x h with corner radius r: w h - (4 - pi) r^2.
double roundedArea(double w, double h, double r) {
  return w * h - (4.0 - kPi) * r * r;
}

INSTANTIATE_TEST_SUITE_P(
    Shapes, OffsetArea,
    ::testing::Values(
        AreaCase{"square_inwards", rectangle(0, 0, 10, 10), 5, 5, 1, -64.0},
        AreaCase{"square_outwards_keeps_sharp_corners", rectangle(0, 0, 10, 10), 12, 5, 1, -144.0},
        AreaCase{"square_inwards_nearly_to_its_centre", rectangle(0, 0, 10, 10), 5, 5, 4.5, -1.0},
        AreaCase{"rectangle_inwards", rectangle(0, 0, 20, 10), 10, 5, 2, -96.0},
        AreaCase{"rectangle_outwards", rectangle(0, 0, 20, 10), 30, 5, 3, -26.0 * 16.0},
        AreaCase{"circle_outwards", circleOfTwoArcs(1, 2, 5), 1, 9, 1, -kPi * 36.0},
        AreaCase{"circle_inwards", circleOfTwoArcs(1, 2, 5), 1, 3, 2, -kPi * 9.0},
        AreaCase{"rounded_rectangle_inwards", roundedRectangle(200, 100, 20), 0, 0.5, 5,
                 -roundedArea(190, 90, 15)},
        AreaCase{"rounded_rectangle_outwards", roundedRectangle(200, 100, 20), 0, -51, 5,
                 -roundedArea(210, 110, 25)},
        AreaCase{"rounded_rectangle_inwards_past_its_corners", roundedRectangle(200, 100, 20), 0,
                 0.5, 30, -(140.0 * 40.0)},
        AreaCase{"clockwise_square_inwards", reversedClosed(rectangle(0, 0, 10, 10)), 5, 5, 2,
                 36.0}),
    [](const ::testing::TestParamInfo<AreaCase>& info) { return info.param.name; });

TEST(PLineOffset, square_outwards_is_one_step_with_sharp_corners) {
  Polyline sq(rectangle(0, 0, 10, 10));
  int closed = 1;
  double pick[2] = {20, 5};
  ASSERT_EQ(PLineOffset(kEps, &closed, 4, sq.rows(), 0, pick, 1.0), 4);
  const double corners[4][2] = {{-1, -1}, {11, -1}, {11, 11}, {-1, 11}};
  for (int i = 0; i < 4; ++i) {
    EXPECT_NEAR(sq[i][0], corners[i][0], 1e-12);
    EXPECT_NEAR(sq[i][1], corners[i][1], 1e-12);
    EXPECT_EQ(sq[i][2], 0.0);
    // Each corner keeps the attributes of the row it was made at.
    EXPECT_EQ(sq[i][3], 100.0 + i);
    EXPECT_EQ(sq[i][4], 200.0 + i);
  }
}

TEST(PLineOffset, through_the_picked_point) {
  Polyline sq(rectangle(0, 0, 10, 10));
  int closed = 1;
  double pick[2] = {5, 2};
  ASSERT_EQ(PLineOffset(kEps, &closed, 4, sq.rows(), 1, pick, 123.0), 4);
  EXPECT_NEAR(enclosedArea(sq.rows(), 4), -36.0, 1e-9);
  EXPECT_NEAR(sq[0][0], 2.0, 1e-12);
  EXPECT_NEAR(sq[0][1], 2.0, 1e-12);
}

TEST(PLineOffset, picked_point_on_the_polyline_gives_zero) {
  Polyline sq(rectangle(0, 0, 10, 10));
  int closed = 1;
  double pick[2] = {4, 0};
  EXPECT_EQ(PLineOffset(kEps, &closed, 4, sq.rows(), 0, pick, 1.0), 0);
}

TEST(PLineOffset, collapsing_polylines) {
  // A square inwards by more than half its side collapses to its centre.
  Polyline sq(rectangle(0, 0, 10, 10));
  int closed = 1;
  double pick[2] = {5, 4};
  EXPECT_EQ(PLineOffset(kEps, &closed, 4, sq.rows(), 0, pick, 6.0), 0);

  // A rectangle inwards by exactly half its height ends as its midline, open.
  Polyline rect(rectangle(0, 0, 20, 10));
  closed = 1;
  ASSERT_EQ(PLineOffset(kEps, &closed, 4, rect.rows(), 0, pick, 5.0), 2);
  EXPECT_EQ(closed, 0);
  EXPECT_NEAR(std::fabs(rect[1][0] - rect[0][0]), 10.0, 1e-9);
  EXPECT_NEAR(rect[0][1], 5.0, 1e-9);
  EXPECT_NEAR(rect[1][1], 5.0, 1e-9);

  // Farther than that, the midline has no inside left.
  Polyline rect2(rectangle(0, 0, 20, 10));
  closed = 1;
  EXPECT_EQ(PLineOffset(kEps, &closed, 4, rect2.rows(), 0, pick, 6.0), 0);

  // A circle inwards by its radius.
  Polyline c(circleOfTwoArcs(0, 0, 5));
  closed = 1;
  double inside[2] = {0, 1};
  EXPECT_EQ(PLineOffset(kEps, &closed, 2, c.rows(), 0, inside, 5.0), 0);
}

TEST(PLineOffset, two_row_polylines) {
  // One segment, open: a single step.
  Polyline seg({{0, 0, 0}, {10, 0, 0}});
  int closed = 0;
  double pick[2] = {3, 1};
  ASSERT_EQ(PLineOffset(kEps, &closed, 2, seg.rows(), 0, pick, 2.0), 2);
  EXPECT_NEAR(seg[0][1], 2.0, 1e-12);
  EXPECT_NEAR(seg[1][1], 2.0, 1e-12);
  EXPECT_NEAR(seg[1][0], 10.0, 1e-12);

  // A closed doubled line offset by nothing is returned open.
  Polyline doubled({{0, 0, 0}, {10, 0, 0}});
  closed = 1;
  ASSERT_EQ(PLineOffset(kEps, &closed, 2, doubled.rows(), 0, pick, 0.0), 2);
  EXPECT_EQ(closed, 0);

  // Offset by a distance it becomes a stadium: two lines and two half circles, clockwise.
  Polyline doubled2({{0, 0, 0}, {10, 0, 0}});
  closed = 1;
  ASSERT_EQ(PLineOffset(kEps, &closed, 2, doubled2.rows(), 0, pick, 1.0), 4);
  EXPECT_EQ(closed, 1);
  EXPECT_NEAR(enclosedArea(doubled2.rows(), 4), 20.0 + kPi, 1e-9);
}

TEST(PLineOffset, reversed_polyline_gives_the_reversed_result) {
  const std::vector<std::vector<Vertex>> shapes = {
      rectangle(0, 0, 20, 10),
      roundedRectangle(200, 100, 20),
      circleOfTwoArcs(0, 0, 5),
      {{0, 0, 0}, {10, 0, 0.2}, {10, 10, 0}, {5, 4, -0.3}, {0, 10, 0}}};
  const double picks[][3] = {{10, 4, 2}, {0, 1, 7}, {0, 1, 1.5}, {3, 3, 1}};
  for (size_t s = 0; s < shapes.size(); ++s) {
    for (const double sign : {1.0, -1.0}) {
      Polyline fwd(shapes[s]);
      Polyline rev(reversedClosed(shapes[s]));
      int cf = 1, cr = 1;
      // Inwards with the pick inside; outwards with the pick mirrored far outside.
      double pick[2] = {picks[s][0], sign > 0 ? picks[s][1] : 1000.0};
      const int nf = PLineOffset(kEps, &cf, fwd.count(), fwd.rows(), 0, pick, picks[s][2]);
      const int nr = PLineOffset(kEps, &cr, rev.count(), rev.rows(), 0, pick, picks[s][2]);
      ASSERT_GE(nf, 2) << s;
      ASSERT_EQ(nr, nf) << s;
      EXPECT_NEAR(enclosedArea(rev.rows(), nr), -enclosedArea(fwd.rows(), nf), 1e-9) << s;
      EXPECT_NEAR(pathLength(rev.rows(), nr, cr != 0), pathLength(fwd.rows(), nf, cf != 0), 1e-9)
          << s;
      // Every vertex of one is a vertex of the other.
      for (int i = 0; i < nf; ++i) {
        double nearest = 1e300;
        for (int k = 0; k < nr; ++k)
          nearest = std::fmin(nearest, std::hypot(fwd[i][0] - rev[k][0], fwd[i][1] - rev[k][1]));
        EXPECT_LT(nearest, 1e-9) << s << " row " << i;
      }
    }
  }
}

// Each moved segment lies on its source moved by d: a line parallel at signed distance d, an
// arc about the same centre with radius R + d (counter-clockwise) or R - d (clockwise); the
// only other segments are half-circle joins.
TEST(PLineOffset, every_segment_lies_on_a_moved_source_segment_or_a_join) {
  const double q = std::tan(kPi / 8.0);
  const std::vector<std::vector<Vertex>> shapes = {
      roundedRectangle(200, 100, 20),
      {{0, 0, 0}, {10, 0, 0.25}, {14, 6, 0}, {8, 12, -0.2}, {2, 9, 0}},
      {{0, 0, q}, {5, -1, 0}, {9, 3, q}, {6, 8, 0.1}, {1, 6, 0}}};
  for (size_t s = 0; s < shapes.size(); ++s) {
    for (const double d : {0.5, 2.0}) {
      const auto& src = shapes[s];
      Polyline pl(src);
      int closed = 1;
      double pick[2] = {1e4, 1e4};  // far outside: offset outwards
      const int n = PLineOffset(kEps, &closed, pl.count(), pl.rows(), 0, pick, d);
      ASSERT_GE(n, 3) << s;
      for (int i = 0; i < n; ++i) {
        const double* a = pl[i];
        const double* b = pl[(i + 1) % n];
        bool onSource = false;
        if (std::fabs(a[2]) == 1.0)
          onSource = true;  // a half-circle join
        for (size_t k = 0; k < src.size() && !onSource; ++k) {
          const Vertex& p = src[k];
          const Vertex& r = src[(k + 1) % src.size()];
          if (p.bulge == 0.0) {
            if (a[2] != 0.0)
              continue;
            const double len = std::hypot(r.x - p.x, r.y - p.y);
            const auto side = [&](const double* z) {
              return ((z[0] - p.x) * (r.y - p.y) - (z[1] - p.y) * (r.x - p.x)) / len;
            };
            onSource = std::fabs(side(a) - d) < 1e-9 && std::fabs(side(b) - d) < 1e-9;
          } else {
            if (a[2] == 0.0 || (a[2] > 0) != (p.bulge > 0))
              continue;
            double cx, cy, rr, sa, ea, mx, my, mr, msa, mea;
            ASSERT_EQ(PL_ArcParam(kEps, p.x, p.y, r.x, r.y, p.bulge, &cx, &cy, &rr, &sa, &ea), 1);
            ASSERT_EQ(PL_ArcParam(kEps, a[0], a[1], b[0], b[1], a[2], &mx, &my, &mr, &msa, &mea),
                      1);
            const double expectedR = rr + (p.bulge > 0 ? d : -d);
            onSource = std::hypot(mx - cx, my - cy) < 1e-7 && std::fabs(mr - expectedR) < 1e-7;
          }
        }
        EXPECT_TRUE(onSource) << "shape " << s << " d " << d << " segment " << i;
      }
    }
  }
}

TEST(PLineOffset, bad_input_returns_promptly_within_its_rows) {
  double pick[2] = {5, 5};
  int closed = 1;
  {
    Polyline sq(rectangle(0, 0, 10, 10));
    EXPECT_EQ(PLineOffset(kEps, &closed, 0, sq.rows(), 0, pick, 1.0), 0);
    EXPECT_EQ(PLineOffset(kEps, &closed, -3, sq.rows(), 0, pick, 1.0), 0);
    EXPECT_EQ(PLineOffset(kEps, &closed, 1, sq.rows(), 0, pick, 1.0), 0);
    EXPECT_EQ(PLineOffset(kEps, nullptr, 4, sq.rows(), 0, pick, 1.0), 0);
    EXPECT_EQ(PLineOffset(kEps, &closed, 4, sq.rows(), 0, nullptr, 1.0), 0);
  }
  const double inf = std::numeric_limits<double>::infinity();
  const double nan = std::numeric_limits<double>::quiet_NaN();
  for (const double dist : {nan, inf, -inf, 1e300, -1e300}) {
    Polyline sq(rectangle(0, 0, 10, 10));
    closed = 1;
    const int n = PLineOffset(kEps, &closed, 4, sq.rows(), 0, pick, dist);
    EXPECT_GE(n, 0);
    EXPECT_LE(n, 8);
  }
  for (const double at : {nan, inf, 1e300}) {
    Polyline sq(rectangle(0, 0, 10, 10));
    closed = 1;
    double far[2] = {at, 5};
    const int n = PLineOffset(kEps, &closed, 4, sq.rows(), 0, far, 1.0);
    EXPECT_GE(n, 0);
    EXPECT_LE(n, 8);
  }
  for (const double bad : {nan, inf, 1e300}) {
    Polyline pl({{0, 0, 0}, {10, 0, bad}, {bad, 10, 0}, {0, 10, 0.5}, {bad, bad, bad}});
    closed = 1;
    const int n = PLineOffset(kEps, &closed, 5, pl.rows(), 0, pick, 1.0);
    EXPECT_GE(n, 0);
    EXPECT_LE(n, 10);
  }
}

TEST(PLineOffset, random_rows_stay_within_their_room) {
  std::mt19937 rng(77);
  std::uniform_real_distribution<double> coord(-10.0, 10.0);
  std::uniform_real_distribution<double> bulge(-1.5, 1.5);
  std::uniform_int_distribution<int> count(1, 12);
  for (int trial = 0; trial < 300; ++trial) {
    std::vector<Vertex> v(count(rng));
    for (auto& p : v)
      p = {coord(rng), coord(rng), trial % 3 == 0 ? 0.0 : bulge(rng)};
    Polyline pl(v);
    int closed = trial % 2;
    double pick[2] = {coord(rng), coord(rng)};
    const int n = PLineOffset(kEps, &closed, pl.count(), pl.rows(), trial % 5 == 0, pick,
                              0.1 + std::fabs(coord(rng)));
    EXPECT_GE(n, 0);
    EXPECT_LE(n, 2 * pl.count());
    EXPECT_TRUE(closed == 0 || closed == 1);
  }
}

}  // namespace

namespace {

// Found by the offset fuzzer: rows near 6e8 where eps lies below the spacing of doubles. After
// the loop between two neighbouring segments was cut, they still reported a second crossing and
// the scan cut the same corner again, without end.
TEST(PLineOffset, repeated_cut_of_neighbours_far_from_the_origin_ends) {
  std::vector<Vertex> v = {{0.0, -253.125, -252.015625}, {1.24352683462234e-310, -256.0, -124.0}};
  for (int i = 0; i < 9; ++i)
    v.push_back({-256.0, -256.0, -256.0});
  const std::vector<Vertex> middle = {{-256.0, -240.0, -256.0},
                                      {-256.0, -256.0, 128.0},
                                      {-256.0, -63.25, -63.25},
                                      {-63.25, -63.25, -63.25},
                                      {-63.25, -63.25, -63.25},
                                      {-60.984375, -595821443.5137254, -595821443.5137254},
                                      {9091.513725489951, 3.015625, -595821147.5137559},
                                      {1.8640430168403623e-307, 0.0, 10.0},
                                      {10.0, 0.0, 0.0},
                                      {-252.0, -255.984375, 10.0},
                                      {-252.0, -255.625, 0.0}};
  v.insert(v.end(), middle.begin(), middle.end());
  while (v.size() < 60)
    v.push_back({-256.0, -256.0, -256.0});
  Polyline pl(v);
  int closed = 0;
  double pick[2] = {-224.09375, 2.8580710655114e-283};
  const int n = PLineOffset(kEps, &closed, 60, pl.rows(), 0, pick, -250.984375);
  EXPECT_GE(n, 0);
  EXPECT_LE(n, 120);
}

}  // namespace

namespace {

// A chord of a circle of radius 100 cut into 100,000 pieces, then the next arc: the vertex lies
// on the circle only up to round-off that moves the line's roots by about 1e-8, beyond eps. The
// corner still joins (once it found no branch and was bridged by a half circle).
TEST(LAOffset, short_chord_into_an_arc_of_a_large_circle_joins) {
  const int n = 100000;
  const double b = std::tan(kPi / (2.0 * n));
  const auto at = [&](int k, double* x, double* y) {
    *x = 100.0 * std::cos(2.0 * kPi * k / n);
    *y = 100.0 * std::sin(2.0 * kPi * k / n);
  };
  int joined = 0;
  for (int k = 1; k < 400; k += 2) {
    double x1, y1, x2, y2, x3, y3, ox, oy, t1, t2;
    at(k, &x1, &y1);
    at(k + 1, &x2, &y2);
    at(k + 2, &x3, &y3);
    if (LAOffset(kEps, 1.0, x1, y1, x2, y2, x3, y3, b, &ox, &oy, &t1, &t2) == 1) {
      ++joined;
      EXPECT_NEAR(std::hypot(ox, oy), 101.0, 1e-9);
    }
  }
  EXPECT_EQ(joined, 200);
}

}  // namespace
