// Tarnsysm: planar computational geometry for 2D drafting.
// Tests of loop trimming and distances: TrimLoop0, TrimLoopS, PLineDist, VertexDist, IntersPLine.
#include "offset/polyline_testing.h"

#include <Tarnsysm.h>
#include <offset/internal.h>

#include <gtest/gtest.h>

#include <cmath>
#include <random>
#include <vector>

using namespace tarnsysm_test;

namespace tarnsysm_test {
/// The next allocation throws std::bad_alloc (allocation_failure.cpp).
void failNextAllocation(bool fail);
}  // namespace tarnsysm_test

namespace {

constexpr double kEps = 1e-9;

TEST(TrimLoop0, merges_rows_within_the_square_root_of_eps) {
  struct Row {
    const char* name;
    double eps;
    int closed, n;
    Rows rows;
    int kept;
    std::vector<std::vector<double>> want;
  };
  const Rows square = {{0, 0, 0}, {4, 0, 0}, {4, 4, 0}, {0, 0, 0}};
  // clang-format off
  const Row rows[] = {
      // The kept row stays where it is and takes the later row's bulge and attributes.
      {"merge", 1e-6, 0, 4, {{0, 0, 0}, {5, 0, 0}, {5 + 0.5e-3, 0, 0.25}, {5, 5, 0}}, 3,
       {{0, 0, 0, 100, 200}, {5, 0, 0.25, 102, 202}, {5, 5, 0, 103, 203}}},
      {"apart", 1e-6, 0, 3, {{0, 0, 0}, {5, 0, 0}, {5 + 2e-3, 0, 0.25}}, 3, {}},
      // eps = 0.25: a squared distance of exactly eps merges inside, but not at the closing row.
      {"inner_merges_at_equality", 0.25, 0, 3, {{0, 0, 0}, {0.5, 0, 0}, {3, 0, 0}}, 2, {}},
      {"closing_keeps_at_equality", 0.25, 1, 4, {{0, 0, 0}, {3, 0, 0}, {3, 3, 0}, {0, 0.5, 0}}, 4, {}},
      {"closing_merges_below", 0.25, 1, 4, {{0, 0, 0}, {3, 0, 0}, {3, 3, 0}, {0, 0.49, 0}}, 3, {}},
      {"repeated_first_row_closed", kEps, 1, 4, square, 3, {}},
      {"repeated_first_row_open", kEps, 0, 4, square, 4, {}},
      {"one_row", kEps, 1, 1, square, 1, {}},
      {"no_rows", kEps, 1, 0, square, 0, {}},
      {"negative_count", kEps, 1, -4, square, 0, {}},
  };
  // clang-format on
  for (const Row& r : rows) {
    Polyline pl(r.rows);
    ASSERT_EQ(TrimLoop0(r.eps, r.closed, r.n, pl.rows()), r.kept) << r.name;
    expectRows(pl, true, r.want, r.name);
  }
}

TEST(IntersPLine, sight_segment_crossing_a_segment_that_does_not_touch_the_row) {
  struct Row {
    const char* name;
    Rows rows;
    int closed, k;
    double px, py;
    int crosses;
  };
  const Rows sq = rectangle(0, 0, 10, 10);
  const Rows circle = {{5, 0, std::tan(kPi / 8)},
                       {0, 5, std::tan(kPi / 8)},
                       {-5, 0, std::tan(kPi / 8)},
                       {0, -5, std::tan(kPi / 8)}};
  const Row rows[] = {
      {"beyond_the_opposite_corner", sq, 1, 0, 12, 12, 1},
      {"inside", sq, 1, 0, 5, 5, 0},
      {"along_its_own_side", sq, 1, 0, 5, 0, 0},
      {"through_the_next_row", sq, 1, 0, 20, 0, 1},
      {"across_the_top", sq, 1, 0, 0, 20, 1},
      {"open_has_no_closing_side", sq, 0, 1, -5, 5, 0},
      {"closed_has", sq, 1, 1, -5, 5, 1},
      {"row_out_of_range", sq, 1, 4, 5, 5, 0},
      // The line through a row and a point inside crosses the far arcs, the sight segment not.
      {"inside_a_circle_from_row_0", circle, 1, 0, 0.5, 0.25, 0},
      {"inside_a_circle_from_row_2", circle, 1, 2, -1.5, 1, 0},
      {"beyond_the_far_arc", circle, 1, 0, -7, 0.5, 1},
  };
  for (const Row& r : rows) {
    Polyline pl(r.rows);
    EXPECT_EQ(IntersPLine(kEps, r.k, r.px, r.py, r.closed, pl.count(), pl.rows()), r.crosses)
        << r.name;
  }
}

TEST(PLineDist, signed_distances_from_the_geometry) {
  struct Row {
    const char* name;
    Rows rows;
    int closed, n;
    double px, py;
    int ok;
    double dist;
  };
  const Rows sq = rectangle(0, 0, 10, 10), line = {{0, 0, 0}, {10, 0, 0}};
  // Two arcs on chords along x = 0.5 both reach x = 0.5625: row 1's (travelled up) at (0.5625, 0),
  // row 0's (travelled down) lower, about 7e-7 farther from a point far out on the x axis.
  const Rows bows = {{0.5, -0.25, -0.5}, {0.5, -0.5, 0.125}, {0.5, 0.5, -0.25}, {0.5, 0.25, 0.875}};
  const Row rows[] = {
      // Inside a counter-clockwise boundary is left of travel (negative).
      {"inside_ccw", sq, 1, 4, 3, 4, 1, -3},
      {"outside_ccw", sq, 1, 4, 13, 4, 1, 3},
      {"inside_cw", reversedClosed(sq), 1, 4, 3, 4, 1, 3},
      {"outside_cw", reversedClosed(sq), 1, 4, 13, 4, 1, -3},
      {"inside_circle", circleOfTwoArcs(1, 1, 2), 1, 2, 1, 1.5, 1, -1.5},
      {"outside_circle", circleOfTwoArcs(1, 1, 2), 1, 2, 5, 1, 1, 2},
      // Beyond the corner at row 0 the square moved by 3 with sharp corners passes the point.
      {"beyond_a_corner", sq, 1, 4, -3, -2, 1, 3},
      {"single_line", line, 0, 2, 4, -2.5, 1, 2.5},
      {"single_half_circle", {{0, 0, 1}, {10, 0, 0}}, 0, 2, 5, 8, 1, 3},
      {"single_point", {{1, 1, 0}, {1, 1, 0}}, 0, 2, 4, -2.5, 0, 99},
      {"single_point_arc", {{1, 1, 0.5}, {1, 1, 0}}, 0, 2, 4, -2.5, 0, 99},
      {"one_row", line, 0, 1, 4, -2.5, 0, 99},
      {"no_rows", line, 1, 0, 4, -2.5, 0, 99},
      {"far_off_the_nearer_of_two_bows", bows, 1, 4, 1e4, 0, 1, 1e4 - 0.5625},
  };
  for (const Row& r : rows) {
    Polyline pl(r.rows);
    double p[2] = {r.px, r.py}, d = 99.0;
    EXPECT_EQ(PLineDist(kEps, r.closed, r.n, pl.rows(), p, &d), r.ok) << r.name;
    EXPECT_NEAR(d, r.dist, 1e-12) << r.name;
  }
}

// The corner (0, 0) - (10, 0) - (10, 10), or a reversal back to (0, 0): the first of the
// distances to the first segment, to the second, to the vertex, that moves the piece onto p.
TEST(VertexDist, first_candidate_that_moves_the_piece_onto_the_point) {
  const double rows[][6] = {
      {5, -1, 10, 10, 1, 1},   // below the first segment
      {11, 5, 10, 10, 1, 1},   // right of the second: -5 moves the piece away, 1 onto it
      {12, 0, 0, 0, 1, 2},     // beyond the tip of a reversal: the half circle round the tip
      {13, 4, 0, 0, 1, 5},     // the same half circle, off the axis
      {-5, 3, 10, 10, 0, 42},  // behind the start: nothing reaches it, *dist untouched
  };
  for (const auto& r : rows) {
    double p[2] = {r[0], r[1]}, d = 42.0;
    EXPECT_EQ(VertexDist(kEps, p, 0, 0, 0, 10, 0, 0, r[2], r[3], &d), r[4]) << r[0];
    EXPECT_NEAR(d, r[5], 1e-12) << r[0];
  }
}

// A figure eight: segment 2 crosses segment 0 at (5, 5); the right lobe (5, 5) - (10, 10) -
// (10, 0) runs clockwise, the left lobe (0, 0) - (5, 5) - (0, 10) counter-clockwise. Closed
// with its last segment, a square-ish path whose closing arc (centre (2, 0), radius 2, from
// (2, -2) round through (4, 0) to (0, 0)) meets segment 0 again at (4, 0).
const Rows kEight = {{0, 0, 0}, {10, 10, 0}, {10, 0, 0}, {0, 10, 0}};
const Rows kClosingArc = {
    {0, 0, 0}, {10, 0, 0}, {10, -6, 0}, {2, -6, 0}, {2, -2, std::tan(3 * kPi / 8)}};

TEST(TrimLoopS, keeps_the_piece_nearest_the_pick) {
  struct Row {
    const char* name;
    Rows rows;
    int closed;
    double px, py;
    int kept, closedAfter;
    std::vector<std::vector<double>> want;
  };
  const double q = std::tan(kPi / 8), s2 = std::sqrt(2.0);
  const double gap = 1.0 / std::tan(std::asin(1.5e-9) / 2.0), nan = std::nan("");
  // clang-format off
  const Row rows[] = {
      // In the loop, X carries the attributes of row j = 0.
      {"eight_right_lobe", kEight, 1, 9, 5, 3, 1, {{5, 5, 0, 100}, {10, 10, 0, 101}, {10, 0, 0, 102}}},
      // The rest: X replaces row 1 and carries the attributes of row i = 2.
      {"eight_left_lobe", kEight, 1, 1, 5, 3, 1, {{0, 0}, {5, 5, 0, 102, 202}, {0, 10}}},
      {"eight_on_a_lobe", kEight, 1, 10, 4, 3, 1, {{5, 5}, {10, 10}, {10, 0}}},
      // Open: from (5, 8) both pieces lie 15 / sqrt(50) away, and the rest wins the tie.
      {"open_eight_tie", kEight, 0, 5, 8, 3, 0, {{0, 0}, {5, 5, 0, 102, 202}, {0, 10}}},
      {"open_eight_nearer_the_loop", kEight, 0, 6, 8, 3, 1, {{5, 5}, {10, 10}}},
      // Two half circles touching only at their shared row make no loop.
      {"touching_arcs", {{0, 0, 1}, {2, 0, 1}, {4, 0, 0}}, 0, 1, 3, 3, 0, {}},
      // A line that stops short of the half circle of radius 4 above it, then one that crosses
      // it at (0, 4): the cut arc keeps its head, a clockwise quarter turn.
      {"line_short_of_an_arc", {{-4, 0, -1}, {4, 0, 0}, {4, -3, 0}, {0, -3, 0}, {0, -1, 0}}, 0, 0, 5, 5, 0, {}},
      {"line_across_an_arc", {{-4, 0, -1}, {4, 0, 0}, {4, -3, 0}, {0, -3, 0}, {0, 6, 0}}, 0, -3, -10, 3, 0,
       {{-4, 0, -q}, {0, 4}}},
      // The closing segment and segment 0 share row 0: their second meeting (4, 0) is cut. The
      // loop keeps the head of the arc (a quarter turn); the rest is the half disc above.
      {"closing_segment_loop", kClosingArc, 1, 6, -3, 5, 1, {{4, 0, 0}, {10, 0}, {10, -6}, {2, -6}, {2, -2, q}}},
      {"closing_segment_rest", kClosingArc, 1, 2, 1, 2, 1, {{0, 0, 0}, {4, 0, 1}}},
      {"closing_segment_rest_turned", {{0, 0, 0}, {0, 10, 0}, {6, 10, 0}, {6, 2, 0}, {2, 2, std::tan(3 * kPi / 8)}},
       1, -1, 2, 2, 1, {{0, 0, 0}, {0, 4, 1}}},
      // A line, then three quarters of the circle about (0.8, 0.1) through its end, which comes
      // back across the line at (0.6, 0); the same scaled by 1000 and moved, from just before
      // the crossing at (0, 0), where the cut row merges into row 0.
      {"arc_back_across_the_line", {{0.575, 0, 0}, {1, 0, 1 + s2}, {0.7, -0.1, 0}}, 0, 0.65, -0.05, 3, 0,
       {{0.575, 0}, {0.6, 0}, {0.7, -0.1}}},
      {"large_arc_back_across_the_line", {{-1e-7, 0, 0}, {400, 0, 1 + s2}, {100, -100, 0}}, 0, 50, -80, 2, 0,
       {{-1e-7, 0}, {100, -100}}},
      // A circle of radius 5e4 about (0, -5e4) but for a gap of 1.5e-4 at (0, 0): the side
      // y = -3e4 crosses it, first along the arc at x < 0.
      {"nearly_whole_circle", {{0, 0, gap}, {1.5e-4, 0, 0}, {1e5, 0, 0}, {1e5, -3e4, 0}, {-1e5, -3e4, 0}}, 0,
       -6e4, -2.9e4, 3, 0, {{0, 0}, {nan, -3e4}, {-1e5, -3e4}}},
  };
  // clang-format on
  for (const Row& r : rows) {
    Polyline pl(r.rows);
    int closed = r.closed;
    double pick[2] = {r.px, r.py};
    ASSERT_EQ(TrimLoopS(kEps, pick, &closed, pl.count(), pl.rows()), r.kept) << r.name;
    EXPECT_EQ(closed, r.closedAfter) << r.name;
    expectRows(pl, true, r.want, r.name);
  }
}

TEST(TrimLoopS, simple_closed_shapes_come_back_as_themselves) {
  const std::vector<Rows> shapes = {
      rectangle(0, 0, 10, 10),
      circleOfTwoArcs(0, 0, 5),
      roundedRectangle(200, 100, 20),
      {{0, 0, 0.3}, {10, 0, 0}, {10, 10, -0.2}, {5, 4, 0}, {0, 10, 0}},
      {{5, 0, -0.9}, {0, 5, 0.4}, {-5, 0, 2.5}, {0, -5, 0.1}}};
  for (size_t s = 0; s < shapes.size(); ++s) {
    Polyline pl(shapes[s]), original(shapes[s]);
    int closed = 1;
    double pick[2] = {1, 2};
    ASSERT_EQ(TrimLoopS(kEps, pick, &closed, pl.count(), pl.rows()), pl.count()) << s;
    EXPECT_TRUE(closed == 1 && std::equal(pl[0], pl[0] + 10 * pl.count(), original[0])) << s;
  }
}

// An offset step drops loops that run the other way round from its source, however near the
// pick: of the figure eight, the clockwise lobe for a clockwise source (library areas are
// positive clockwise), the other for a counter-clockwise one; nothing is left of a square.
TEST(TrimLoopS, offset_steps_never_keep_a_loop_running_the_other_way) {
  for (const double area : {1.0, -1.0}) {
    Polyline pl(kEight);
    int closed = 1;
    double pick[2] = {area > 0 ? 1.0 : 9.0, 5};  // next to the lobe that must go
    ASSERT_EQ(tarnsysm::detail::trimStepLoops(kEps, pick, &closed, 4, pl.rows(), area), 3);
    EXPECT_NEAR(-signedArea(pl.first(3)), area * 25, 1e-9) << area;
  }
  Polyline sq(rectangle(0, 0, 10, 10));
  int closed = 1;
  double pick[2] = {5, 5};
  EXPECT_EQ(tarnsysm::detail::trimStepLoops(kEps, pick, &closed, 4, sq.rows(), 1.0), 0);
  // No rows: nothing kept, by either of the internal trimming entries.
  tarnsysm::detail::TrimMeasure measure;
  EXPECT_EQ(tarnsysm::detail::trimStepLoops(kEps, pick, &closed, 0, sq.rows(), 1.0), 0);
  EXPECT_EQ(tarnsysm::detail::trimLoopsAndMeasure(kEps, pick, &closed, 0, sq.rows(), &measure), 0);
}

TEST(TrimLoopS, bad_input_and_memory_running_out) {
  Polyline pl(kEight), original(kEight);
  int closed = 1;
  double pick[2] = {9, 5};
  failNextAllocation(true);
  EXPECT_EQ(TrimLoopS(kEps, pick, &closed, 4, pl.rows()), 4);
  failNextAllocation(false);
  EXPECT_TRUE(closed == 1 && std::equal(pl[0], pl[0] + 40, original[0]));
  EXPECT_EQ(TrimLoopS(kEps, pick, &closed, 0, pl.rows()), 0);
  EXPECT_EQ(TrimLoopS(kEps, pick, &closed, -2, pl.rows()), 0);
  EXPECT_EQ(TrimLoopS(kEps, pick, &closed, 1, pl.rows()), 1);
}

// With the pick on row 0 the remaining polyline is kept: it must cross itself nowhere (by the
// independent checker), and PLineDist must answer as the plain walk over every run does (the
// walk it takes when memory runs out).
TEST(TrimLoopS, random_polylines_are_left_without_crossings) {
  std::mt19937 rng(4242);
  std::uniform_real_distribution<double> coord(0.0, 10.0), bulge(-0.8, 0.8);
  int compared = 0;
  for (int trial = 0; trial < 400; ++trial) {
    Rows v(3 + trial % 10);
    for (Vertex& p : v)
      p = {coord(rng), coord(rng), trial % 2 ? bulge(rng) : 0.0};
    Polyline pl(v, 1);
    int closed = trial % 3 == 0;
    double pick[2] = {v[0].x, v[0].y};
    const int n = TrimLoopS(kEps, pick, &closed, pl.count(), pl.rows());
    ASSERT_TRUE(n >= 2 && n <= pl.count()) << trial;
    EXPECT_EQ(selfCrossing(pl.first(n), closed, 1e-7), "") << trial;
    double p[2] = {coord(rng), coord(rng)}, fast = 12345.0, plain = 12345.0;
    Polyline src(v);
    const int rf = PLineDist(kEps, trial % 2, src.count(), src.rows(), p, &fast);
    failNextAllocation(true);
    const int rp = PLineDist(kEps, trial % 2, src.count(), src.rows(), p, &plain);
    failNextAllocation(false);
    ASSERT_EQ(rf, rp) << trial;
    EXPECT_EQ(fast, plain) << trial;
    compared += rf;
  }
  EXPECT_GT(compared, 200);
}

}  // namespace
