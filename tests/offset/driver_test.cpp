// Tarnsysm: planar computational geometry for 2D drafting.
// Tests of the offset driver: the event solvers, the step limit, the raw builder and PLineOffset.
#include "offset/polyline_testing.h"

#include <Tarnsysm.h>
#include <offset/internal.h>

#include <gtest/gtest.h>

#include <cmath>
#include <vector>

using namespace tarnsysm_test;
using tarnsysm::detail::BuildOffsetPLine;
using tarnsysm::detail::buildOffsetPLineWithin;
using tarnsysm::detail::OffsetStepLimit;

namespace {

constexpr double kEps = 0x1p-30;              // a power of two: 5 + kEps is exact
const double kQuarter = std::tan(kPi / 8.0);  // bulge of a quarter turn

// Each row's event from the geometry in its comment; *out holds the step when nothing is found.
TEST(EventSolvers, nearest_event_on_the_side_of_the_step) {
  struct Row {
    const char* name;
    int solver;  // 0 LLCOffset, 1 CLCOffset, 2 CCCOffset
    double step, a[9];
    int result;
    double out;
  };
  const double s2 = std::sqrt(2.0), llc = (10 * s2 + 5) / (1 + s2);
  // Lines X = 0, Y = 0 and the clockwise circle about (10, 10) of radius 5: the point (x, x) is
  // x - 5 from the circle when sqrt(2)(10 - x) = x - 5; the root beyond the centre is farther.
  // Circles of radius 3 about (-10, 5), (10, 5) and the line Y = 0: (0, x) with
  // 100 + (x - 5)^2 = (3 + x)^2, x = 7.25. Circles of radius 2 about (-10, 0), (10, 0), (0, 20):
  // the circumcentre (0, 7.5) lies 12.5 from each centre.
  const Row rows[] = {
      {"llc", 0, 100, {0, 1, 0, 1, 0, 0, 10, 10, -5}, 1, llc},
      {"llc_second_root_farther", 0, 8, {0, 1, 0, 1, 0, 0, 10, 10, -5}, 1, llc},
      {"llc_beyond_the_step", 0, 5, {0, 1, 0, 1, 0, 0, 10, 10, -5}, 0, 5},
      {"llc_other_side", 0, -100, {0, 1, 0, 1, 0, 0, 10, 10, -5}, 0, -100},
      {"llc_parallel_lines", 0, 3, {0, 1, 0, 0, 1, 5, 10, 10, -5}, 0, 3},
      {"clc", 1, 100, {-10, 5, 3, 0, 1, 0, 10, 5, 3}, 1, 7.25},
      {"clc_beyond_the_step", 1, 7, {-10, 5, 3, 0, 1, 0, 10, 5, 3}, 0, 7},
      {"ccc_outwards", 2, 100, {-10, 0, 2, 10, 0, 2, 0, 20, 2}, 1, 10.5},
      {"ccc_inwards", 2, -100, {-10, 0, 2, 10, 0, 2, 0, 20, 2}, 1, -14.5},
      {"ccc_collinear_centres", 2, 100, {-10, 0, 2, 10, 0, 2, 0, 0, 2}, 0, 100},
  };
  for (const Row& r : rows) {
    double out = 12345.0;
    const double* a = r.a;
    const int got =
        r.solver == 0
            ? LLCOffset(kEps, r.step, a[0], a[1], a[2], a[3], a[4], a[5], a[6], a[7], a[8], &out)
        : r.solver == 1
            ? CLCOffset(kEps, r.step, a[0], a[1], a[2], a[3], a[4], a[5], a[6], a[7], a[8], &out)
            : CCCOffset(kEps, r.step, a[0], a[1], a[2], a[3], a[4], a[5], a[6], a[7], a[8], &out);
    EXPECT_EQ(got, r.result) << r.name;
    EXPECT_NEAR(out, r.out, 1e-9) << r.name;
  }
}

// A lens of two arcs of radius 10 (bulge 1/2 on a chord of 16) with centres 12 apart is 8 thick:
// moved inwards its circles part at 4. The half disc of radius 5 holds a circle of radius 2.5.
const Rows kLens = {{-8, 0, 0.5}, {8, 0, 0.5}};
const Rows kHalfDisc = {{5, 0, 1}, {-5, 0, 0}};

TEST(OffsetStepLimit, limits_from_the_geometry) {
  struct Row {
    const char* name;
    Rows rows;
    int closed, n, segment;
    double step, limit;
  };
  const Rows square = rectangle(0, 0, 10, 10);
  const Rows circle = {{2, 0, kQuarter}, {0, 2, kQuarter}, {-2, 0, kQuarter}, {0, -2, kQuarter}};
  // A chord between two arcs of one circle keeps its length while everything moves; the arcs'
  // centres, each from its own short chord, differ by round-off, which off the origin
  // once made a phantom event.
  Rows chord;
  const double b = std::tan(kPi / 200000.0);
  for (int k = 0; k < 4; ++k) {
    const double a = 2.0 * kPi * (33910 + k) / 100000.0;
    chord.push_back({100.0 * std::cos(a), 100.0 * std::sin(a) - 30.0, k % 2 == 0 ? b : 0.0});
  }
  const Rows tangent = {{-1e-5, 2e-10, 0}, {0, 0, kQuarter}, {1, 1, 0}};
  const Row rows[] = {
      {"square_inwards_to_half_its_side", square, 1, 4, 2, -8, -5},
      {"square_outwards", square, 1, 4, 2, 8, 8},
      {"square_short_step", square, 1, 4, 2, -4, -4},
      {"arc_towards_its_centre_to_its_radius", circle, 1, 4, 1, -5, -2},
      {"arc_away_from_its_centre", circle, 1, 4, 1, 5, 5},
      {"chord_between_arcs_of_one_circle", chord, 1, 4, 1, 50, 50},
      {"chord_between_arcs_of_one_circle_inwards", chord, 1, 4, 1, -50, -50},
      {"one_row", square, 1, 1, 0, -8, 0},
      {"segment_without_a_row", square, 1, 4, 7, -8, -8},
      {"lens_inwards_until_its_arcs_part", kLens, 1, 2, 0, -10, -4},
      {"lens_outwards", kLens, 1, 2, 1, 10, 10},
      {"lens_open", kLens, 0, 2, 0, -10, -10},
      {"half_disc_inwards_until_line_and_circle_part", kHalfDisc, 1, 2, 1, -10, -2.5},
      {"doubled_line", {{0, 0, 0}, {10, 0, 0}}, 1, 2, 0, -8, -8},
      // A neighbour whose line passes within eps of the far end, a line within eps of tangent
      // to the next arc, an open end already on the next circle: none of them limits the step.
      {"nearly_straight_on", {{1, 2, 0}, {2, 3, 0}, {2.01, 3.01 + 7e-10, 0}}, 0, 3, 1, -1e6, -1e6},
      {"nearly_tangent_into_an_arc", tangent, 0, 3, 0, -10, -10},
      {"open_end_on_the_next_circle", {{-3, -4, 0}, {5, 0, kQuarter}, {0, 5, 0}}, 0, 3, 0, -1, -1},
      // The open end (-3, -3) moves along n = (3, -8)/sqrt 73 until it meets the next circle
      // grown to 5 + x: 18 + 2x 15/sqrt 73 = 25 + 10x.
      {"open_end_meets_the_grown_circle",
       {{-3, -3, 0}, {5, 0, kQuarter}, {0, 5, 0}},
       0,
       3,
       0,
       -10,
       7 / (30 / std::sqrt(73.0) - 10)},
  };
  for (const Row& r : rows) {
    Polyline pl(r.rows);
    EXPECT_NEAR(OffsetStepLimit(kEps, r.step, r.segment, r.closed, r.n, pl.rows()), r.limit, 1e-12)
        << r.name;
  }
}

// Built with the limit the limited segment has no length left; with 0.9 of it, some.
TEST(OffsetStepLimit, moved_segment_vanishes_at_the_limit) {
  struct Row {
    const char* name;
    Rows rows;
    bool closed;
    int segment;
    double step;
  };
  const Rows trapezoid = {{0, 0, 0}, {10, 0, 0}, {9, 4, 0.3}, {1, 4, 0}};
  const Row rows[] = {
      {"open_start_line_then_line", {{0, 0, 0}, {4, 0, 0}, {6, 3, 0}}, false, 0, -10.0},
      {"open_end_line_after_line", {{0, 0, 0}, {4, 0, 0}, {4, 3, 0}}, false, 1, -5.0},
      {"closed_line_between_line_and_arc", trapezoid, true, 1, -5.0},
      {"closed_arc_between_lines", trapezoid, true, 2, -5.0},
      {"open_start_arc_then_line", {{0, 0, -0.2}, {4, 0, 0}, {6, -3, 0}}, false, 0, 10.0}};
  for (const Row& r : rows) {
    Polyline pl(r.rows);
    const double limit = OffsetStepLimit(kEps, r.step, r.segment, r.closed, pl.count(), pl.rows());
    ASSERT_TRUE(limit != r.step && limit * r.step > 0.0) << r.name;
    for (const double k : {1.0, 0.9}) {
      Polyline moved(r.rows);
      const int n = BuildOffsetPLine(kEps, k * limit, r.closed, pl.count(), moved.rows());
      const double* a = moved[r.segment];
      const double* b = moved[(r.segment + 1) % pl.count()];
      const double chord = n == pl.count() ? std::hypot(b[0] - a[0], b[1] - a[1]) : -1.0;
      EXPECT_EQ(chord < (k == 1.0 ? 1e-6 : 1e-3), k == 1.0) << r.name;
    }
  }
}

TEST(BuildOffsetPLine, bridges_where_moved_segments_part) {
  const double nan = std::nan("");
  // Out to (10, 0) and back, moved right by 1: a half circle round the tip; its first row is
  // inserted (-1), the second is the corner's own.
  Polyline back({{0, 0, 0}, {10, 0, 0}, {0, 0, 0}});
  ASSERT_EQ(BuildOffsetPLine(kEps, 1.0, 0, 3, back.rows()), 4);
  expectRows(back, false,
             {{0, -1, 0, 100, 200}, {10, -1, 1, -1, 201}, {10, 1, 0, 101, 201}, {0, 1, nan, 102}},
             "reversal");
  // A counter-clockwise quarter arc about (0, 0), radius 2, into a clockwise one about
  // (0.5, 1.5); moved right by 0.4 the first grows to 2.4 and the second shrinks to
  // sqrt(0.5) - 0.4 inside it. The bridge runs between the moved ends at the vertex, both arcs
  // keeping their quarter turns.
  Polyline arcs({{2, 0, kQuarter}, {0, 2, -kQuarter}, {1, 2, 0}});
  double ox, oy, t1, t2;
  ASSERT_EQ(AAOffset(kEps, 0.4, 2, 0, 0, 2, 1, 2, kQuarter, -kQuarter, &ox, &oy, &t1, &t2), 0);
  ASSERT_EQ(BuildOffsetPLine(kEps, 0.4, 0, 3, arcs.rows()), 4);
  const double r2 = std::sqrt(0.5) - 0.4, k = r2 * std::sqrt(0.5);
  expectRows(arcs, false,
             {{2.4, 0, kQuarter}, {0, 2.4, nan, -1, 201}, {0.5 - k, 1.5 + k, -kQuarter, 101}},
             "arc_arc");
  EXPECT_EQ(std::fabs(arcs[1][2]), 1.0);
}

TEST(BuildOffsetPLine, never_writes_a_row_it_still_has_to_read) {
  Rows zig;  // turns back at every corner: each corner adds a row
  for (int i = 0; i < 12; ++i)
    zig.push_back({i % 2 == 0 ? 0.0 : 10.0, 0.0, 0.0});
  Polyline roomy(zig);  // room for 24 rows
  EXPECT_GT(buildOffsetPLineWithin(kEps, 1.0, 0, 12, roomy.rows(), 24), 12);
  Polyline tight(zig, 1);  // exactly 12 rows, and the call is told of 13
  std::unique_ptr<double[][5]> exact(new double[13][5]);
  std::copy(tight[0], tight[0] + 60, exact[0]);
  EXPECT_EQ(buildOffsetPLineWithin(kEps, 1.0, 0, 12, exact.get(), 13), -1);
}

// Whole offsets against areas worked out by hand (counter-clockwise positive; NaN: open), each
// result also passing the offset checker at the picked side; sharp corners keep their rows.
TEST(PLineOffset, results_from_the_geometry) {
  struct Row {
    const char* name;
    Rows rows;
    int closed;
    double px, py;
    int through;
    double dist;
    int count, closedAfter;  // count -1: any but 0
    double area;
    std::vector<std::vector<double>> want;  // rows, see expectRows
  };
  const auto rounded = [](double w, double h, double r) { return w * h - (4.0 - kPi) * r * r; };
  const Rows sq = rectangle(0, 0, 10, 10), rect = rectangle(0, 0, 20, 10);
  const Rows rrect = roundedRectangle(200, 100, 20), segment = {{0, 0, 0}, {10, 0, 0}};
  const Rows notched = {{0, 0, 0}, {10, 0, 0.2}, {10, 10, 0}, {5, 4, -0.3}, {0, 10, 0}};
  const double nan = std::nan("");
  const std::vector<std::vector<double>> sqOut = {
      {-1, -1, 0, 100, 200}, {11, -1, 0, 101, 201}, {11, 11, 0, 102, 202}, {-1, 11, 0, 103, 203}};
  const Row rows[] = {
      {"square_inwards", sq, 1, 5, 5, 0, 1, 4, 1, 64, {}},
      {"square_outwards_keeps_sharp_corners_and_their_attributes", sq, 1, 12, 5, 0, 1, 4, 1, 144,
       sqOut},
      {"square_inwards_nearly_to_its_centre", sq, 1, 5, 5, 0, 4.5, 4, 1, 1, {}},
      {"square_inwards_past_its_centre", sq, 1, 5, 4, 0, 6, 0, 1, 0, {}},
      {"square_through_the_pick_2_off_its_side", sq, 1, 5, 2, 1, 2, 4, 1, 36, {}},
      {"pick_on_the_polyline", sq, 1, 4, 0, 0, 1, 0, 1, 0, {}},
      {"rectangle_outwards", rect, 1, 30, 5, 0, 3, 4, 1, 26 * 16, {}},
      {"rectangle_inwards_to_its_midline", rect, 1, 5, 4, 0, 5, 2, 0, nan, {}},
      {"rectangle_inwards_past_its_midline", rect, 1, 5, 4, 0, 6, 0, 1, 0, {}},
      {"rectangle_inwards_eps_past_its_midline", rect, 1, 5, 4, 0, 5 + kEps, 0, 1, 0, {}},
      {"circle_outwards", circleOfTwoArcs(1, 2, 5), 1, 1, 9, 0, 1, 2, 1, kPi * 36, {}},
      {"circle_inwards", circleOfTwoArcs(1, 2, 5), 1, 1, 3, 0, 2, 2, 1, kPi * 9, {}},
      {"circle_inwards_to_its_centre", circleOfTwoArcs(0, 0, 5), 1, 0, 1, 0, 5, 0, 1, 0, {}},
      {"rounded_rectangle_inwards", rrect, 1, 0, 0.5, 0, 5, 8, 1, rounded(190, 90, 15), {}},
      {"rounded_rectangle_outwards", rrect, 1, 0, -51, 0, 5, 8, 1, rounded(210, 110, 25), {}},
      {"rounded_rectangle_inwards_past_its_corners", rrect, 1, 0, 0.5, 0, 30, 4, 1, 140 * 40, {}},
      {"lens_inwards", kLens, 1, 0, 1, 0, 3.5, 2, 1, nan, {}},
      {"lens_inwards_past_its_collapse", kLens, 1, 0, 1, 0, 4.5, 0, 1, 0, {}},
      {"single_segment", segment, 0, 3, 1, 0, 2, 2, 0, nan, {}},
      {"doubled_line_by_nothing_opens", segment, 1, 3, 1, 0, 0, 2, 0, nan, {}},
      {"doubled_line_becomes_a_stadium", segment, 1, 3, 1, 0, 1, 4, 1, -(20 + kPi), {}},
      {"notched_with_arcs_inwards", notched, 1, 3, 3, 0, 1, 5, 1, nan, {}},
      {"notched_with_arcs_outwards", notched, 1, 3, 1000, 0, 1, -1, 1, nan, {}},
  };
  for (const Row& r : rows) {
    Polyline pl(r.rows);
    int closed = r.closed, revClosed = r.closed;
    double pick[2] = {r.px, r.py};
    // Through the pick the distance is not read: a NaN one must not stop the offset.
    const int n = PLineOffset(kEps, &closed, pl.count(), pl.rows(), r.through, pick,
                              r.through ? nan : r.dist);
    ASSERT_TRUE(r.count < 0 ? n > 0 : n == r.count) << r.name << " gave " << n << " rows";
    if (n == 0)
      continue;
    EXPECT_EQ(closed, r.closedAfter) << r.name;
    EXPECT_TRUE(std::isnan(r.area) ||
                std::fabs(signedArea(pl.first(n)) - r.area) <= 1e-9 * (1 + std::fabs(r.area)))
        << r.name << " area " << signedArea(pl.first(n));
    expectRows(pl, false, r.want, r.name);
    // A doubled line has no side; through the pick the distance is the pick's own.
    const int side = sideOf(r.rows, r.closed, r.px, r.py);
    EXPECT_EQ(side == 0 ? "" : offsetValidity(r.rows, r.closed, pl.first(n), closed, side * r.dist),
              "")
        << r.name;
    // A closed polyline run backwards gives the same offset run backwards.
    Polyline rev(reversedClosed(r.rows));
    double again[2] = {r.px, r.py};
    EXPECT_TRUE(!r.closed || side == 0 ||
                (PLineOffset(kEps, &revClosed, rev.count(), rev.rows(), r.through, again,
                             r.through ? nan : r.dist) == n &&
                 std::fabs(signedArea(rev.first(n)) + signedArea(pl.first(n))) <= 1e-9))
        << r.name << " reversed";
  }
}

// A circle of radius 100 in 400 rows, arcs and chords in turn, offset inwards by 50 and outwards
// by 1 (every result segment then has a crowd of source segments along the circle within the
// distance). The middle of one result arc moved towards the circle (the sagitta of an arc is
// chord/2 times its bulge) by eps/2 still keeps the distance, by 2 eps it does not.
TEST(PLineOffset, last_check_finds_an_arc_bowed_2_eps_nearer_along_a_circle) {
  Rows circle;
  for (int i = 0; i < 400; ++i)
    circle.push_back({100 * std::cos(i * kPi / 200), 100 * std::sin(i * kPi / 200),
                      i % 2 == 0 ? std::tan(kPi / 800) : 0.0});
  // Both offsets keep only the side from the pick; the result arcs lie on the circle of radius
  // 100 - dist, each a 400th of a turn.
  for (const double dist : {50.0, -1.0})
    for (const double shift : {kEps / 2, 2 * kEps}) {
      Polyline result(circle);
      int closed = 1;
      double pick[2] = {dist > 0 ? 0.1 : 150.0, 0.05};
      ASSERT_EQ(PLineOffset(kEps, &closed, 400, result.rows(), 0, pick, dist), 400) << dist;
      result[206][2] += (dist > 0 ? 2 : -2) * shift / (2 * (100 - dist) * std::sin(kPi / 400));
      EXPECT_EQ(tarnsysm::detail::keepsOffsetDistance(kEps, 1, 400, Polyline(circle).rows(),
                                                      std::nan(""), 1, 400, result.rows(), dist),
                shift < kEps)
          << dist << " " << shift;
    }
}

}  // namespace
