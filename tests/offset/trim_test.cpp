// Tarnsysm: planar computational geometry for 2D drafting.
// Tests of loop trimming and distances: TrimLoop0, TrimLoopS, PLineDist, VertexDist, IntersPLine.
#include "offset/polyline_testing.h"

#include <Tarnsysm.h>
#include <offset/internal.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <memory>
#include <random>
#include <vector>

using namespace tarnsysm_test;

namespace tarnsysm_test {
/// The next allocation throws std::bad_alloc (allocation_failure.cpp).
void failNextAllocation(bool fail);
}  // namespace tarnsysm_test

namespace {

constexpr double kEps = 1e-9;

bool rowsEqual(Polyline& a, Polyline& b, int n) {
  for (int i = 0; i < n; ++i) {
    for (int f = 0; f < 5; ++f) {
      if (a[i][f] != b[i][f])
        return false;
    }
  }
  return true;
}

// ---- TrimLoop0 ----------------------------------------------------------------------------

TEST(TrimLoop0, rows_within_the_square_root_of_eps_merge_into_the_earlier_row) {
  const double eps = 1e-6;  // rows closer than 1e-3 merge
  Polyline pl({{0, 0, 0}, {5, 0, 0}, {5 + 0.5e-3, 0, 0.25}, {5, 5, 0}});
  ASSERT_EQ(TrimLoop0(eps, 0, 4, pl.rows()), 3);
  // The kept row keeps its place and takes the later row's bulge and attributes.
  EXPECT_EQ(pl[1][0], 5.0);
  EXPECT_EQ(pl[1][2], 0.25);
  EXPECT_EQ(pl[1][3], 102.0);
  EXPECT_EQ(pl[1][4], 202.0);
  EXPECT_EQ(pl[2][0], 5.0);
  EXPECT_EQ(pl[2][1], 5.0);
  EXPECT_EQ(pl[2][3], 103.0);

  Polyline apart({{0, 0, 0}, {5, 0, 0}, {5 + 2e-3, 0, 0.25}});
  EXPECT_EQ(TrimLoop0(eps, 0, 3, apart.rows()), 3);
}

TEST(TrimLoop0, inner_test_merges_at_equality_and_closing_test_keeps) {
  // eps = 0.25: squared distance 0.25 is exactly eps.
  Polyline inner({{0, 0, 0}, {0.5, 0, 0}, {3, 0, 0}});
  EXPECT_EQ(TrimLoop0(0.25, 0, 3, inner.rows()), 2);

  Polyline closing({{0, 0, 0}, {3, 0, 0}, {3, 3, 0}, {0, 0.5, 0}});
  EXPECT_EQ(TrimLoop0(0.25, 1, 4, closing.rows()), 4);
  Polyline closer({{0, 0, 0}, {3, 0, 0}, {3, 3, 0}, {0, 0.49, 0}});
  EXPECT_EQ(TrimLoop0(0.25, 1, 4, closer.rows()), 3);
}

TEST(TrimLoop0, repeated_first_row_goes_only_when_closed) {
  Polyline closed({{0, 0, 0}, {4, 0, 0}, {4, 4, 0}, {0, 0, 0}});
  EXPECT_EQ(TrimLoop0(kEps, 1, 4, closed.rows()), 3);
  Polyline open({{0, 0, 0}, {4, 0, 0}, {4, 4, 0}, {0, 0, 0}});
  EXPECT_EQ(TrimLoop0(kEps, 0, 4, open.rows()), 4);
}

TEST(TrimLoop0, short_counts) {
  Polyline pl({{0, 0, 0}});
  EXPECT_EQ(TrimLoop0(kEps, 1, 1, pl.rows()), 1);
  EXPECT_EQ(TrimLoop0(kEps, 1, 0, pl.rows()), 0);
  EXPECT_EQ(TrimLoop0(kEps, 1, -4, pl.rows()), 0);
}

// ---- IntersPLine ---------------------------------------------------------------------------

TEST(IntersPLine, sight_segment_crossing_a_segment_that_does_not_touch_the_row) {
  Polyline sq(rectangle(0, 0, 10, 10));
  // From row 0 to a point beyond the opposite corner: it leaves through the far sides.
  EXPECT_EQ(IntersPLine(kEps, 0, 12, 12, 1, 4, sq.rows()), 1);
  // To a point inside: nothing crossed.
  EXPECT_EQ(IntersPLine(kEps, 0, 5, 5, 1, 4, sq.rows()), 0);
  // Along its own sides: they touch row 0 and are not tested; through another row, the side
  // starting there is crossed.
  EXPECT_EQ(IntersPLine(kEps, 0, 5, 0, 1, 4, sq.rows()), 0);
  EXPECT_EQ(IntersPLine(kEps, 0, 20, 0, 1, 4, sq.rows()), 1);
  EXPECT_EQ(IntersPLine(kEps, 0, 0, 20, 1, 4, sq.rows()), 1);  // crosses the top side
  // Open: row 0 has only segment 0; the missing closing side is not there to cross.
  EXPECT_EQ(IntersPLine(kEps, 1, -5, 5, 0, 4, sq.rows()), 0);
  EXPECT_EQ(IntersPLine(kEps, 1, -5, 5, 1, 4, sq.rows()), 1);
  // Out of range row.
  EXPECT_EQ(IntersPLine(kEps, 4, 5, 5, 1, 4, sq.rows()), 0);
}

TEST(IntersPLine, arcs_count_only_within_the_sight_segment) {
  // A circle of radius 5 of four quarter arcs.
  const double q = std::tan(kPi / 8.0);
  Polyline c({{5, 0, q}, {0, 5, q}, {-5, 0, q}, {0, -5, q}});
  // Every row sees a point inside, though the line through them crosses the far arcs.
  for (int k = 0; k < 4; ++k) {
    EXPECT_EQ(IntersPLine(kEps, k, 0.5, 0.25, 1, 4, c.rows()), 0) << k;
    EXPECT_EQ(IntersPLine(kEps, k, -1.5, 1, 1, 4, c.rows()), 0) << k;
  }
  // Beyond the far side it is hidden.
  EXPECT_EQ(IntersPLine(kEps, 0, -7, 0.5, 1, 4, c.rows()), 1);
}

// ---- PLineDist and VertexDist ---------------------------------------------------------------

TEST(PLineDist, sign_follows_the_right_hand_rule) {
  Polyline ccw(rectangle(0, 0, 10, 10));
  Polyline cw(reversedClosed(rectangle(0, 0, 10, 10)));
  double d = 0.0;
  double inside[2] = {3, 4}, outside[2] = {13, 4};
  ASSERT_EQ(PLineDist(kEps, 1, 4, ccw.rows(), inside, &d), 1);
  EXPECT_NEAR(d, -3.0, 1e-12);  // inside a counter-clockwise boundary is on the left
  ASSERT_EQ(PLineDist(kEps, 1, 4, ccw.rows(), outside, &d), 1);
  EXPECT_NEAR(d, 3.0, 1e-12);
  ASSERT_EQ(PLineDist(kEps, 1, 4, cw.rows(), inside, &d), 1);
  EXPECT_NEAR(d, 3.0, 1e-12);
  ASSERT_EQ(PLineDist(kEps, 1, 4, cw.rows(), outside, &d), 1);
  EXPECT_NEAR(d, -3.0, 1e-12);

  // A counter-clockwise circle of two arcs: (|p - C| - R), positive outside.
  Polyline c(circleOfTwoArcs(1, 1, 2));
  double in[2] = {1, 1.5}, out[2] = {5, 1};
  ASSERT_EQ(PLineDist(kEps, 1, 2, c.rows(), in, &d), 1);
  EXPECT_NEAR(d, -1.5, 1e-12);
  ASSERT_EQ(PLineDist(kEps, 1, 2, c.rows(), out, &d), 1);
  EXPECT_NEAR(d, 2.0, 1e-12);
}

TEST(PLineDist, outside_a_corner_is_the_sharp_corner_offset_through_the_point) {
  // Beyond the corner at row 0 the last run (its middle row wraps to row 0) decides: the
  // square moved by max(3, 2) = 3 with sharp corners passes through (-3, -2).
  Polyline sq(rectangle(0, 0, 10, 10));
  double p[2] = {-3, -2};
  double d = 0.0;
  ASSERT_EQ(PLineDist(kEps, 1, 4, sq.rows(), p, &d), 1);
  EXPECT_NEAR(d, 3.0, 1e-12);
}

TEST(PLineDist, single_segment_and_degenerate_input) {
  Polyline line({{0, 0, 0}, {10, 0, 0}});
  double p[2] = {4, -2.5};
  double d = 99.0;
  ASSERT_EQ(PLineDist(kEps, 0, 2, line.rows(), p, &d), 1);
  EXPECT_NEAR(d, 2.5, 1e-12);
  // A half circle from (0, 0) to (10, 0), counter-clockwise about (5, 0), radius 5.
  Polyline arc({{0, 0, 1}, {10, 0, 0}});
  double q[2] = {5, 8};
  ASSERT_EQ(PLineDist(kEps, 0, 2, arc.rows(), q, &d), 1);
  EXPECT_NEAR(d, 3.0, 1e-12);

  d = 99.0;
  Polyline dot({{1, 1, 0}, {1, 1, 0}});
  EXPECT_EQ(PLineDist(kEps, 0, 2, dot.rows(), p, &d), 0);
  Polyline dotArc({{1, 1, 0.5}, {1, 1, 0}});
  EXPECT_EQ(PLineDist(kEps, 0, 2, dotArc.rows(), p, &d), 0);
  EXPECT_EQ(PLineDist(kEps, 0, 1, line.rows(), p, &d), 0);
  EXPECT_EQ(PLineDist(kEps, 1, 0, line.rows(), p, &d), 0);
  EXPECT_EQ(d, 99.0);
}

TEST(VertexDist, tries_first_segment_second_segment_then_the_vertex) {
  double d = 0.0;
  // Below the first segment of a left turn: moved by 1 the piece passes through it.
  double below[2] = {5, -1};
  ASSERT_EQ(VertexDist(kEps, below, 0, 0, 0, 10, 0, 0, 10, 10, &d), 1);
  EXPECT_NEAR(d, 1.0, 1e-12);
  // Right of the second segment: the first candidate (-5, above the first line) moves the
  // piece inside the turn, away from the point; the second (1) passes through it.
  double right[2] = {11, 5};
  ASSERT_EQ(VertexDist(kEps, right, 0, 0, 0, 10, 0, 0, 10, 10, &d), 1);
  EXPECT_NEAR(d, 1.0, 1e-12);
  // Beyond the tip of a reversal: only the half circle round the tip reaches it.
  double tip[2] = {12, 0};
  ASSERT_EQ(VertexDist(kEps, tip, 0, 0, 0, 10, 0, 0, 0, 0, &d), 1);
  EXPECT_NEAR(d, 2.0, 1e-12);
  // Behind the start of the piece: nothing reaches it, and *dist is left alone.
  double behind[2] = {-5, 3};
  d = 42.0;
  EXPECT_EQ(VertexDist(kEps, behind, 0, 0, 0, 10, 0, 0, 10, 10, &d), 0);
  EXPECT_EQ(d, 42.0);
}

// ---- TrimLoopS ------------------------------------------------------------------------------

// A closed figure eight: segment 2 crosses segment 0 at (5, 5); the right lobe runs
// (5, 5) - (10, 10) - (10, 0), the left lobe (0, 0) - (5, 5) - (0, 10).
std::vector<Vertex> figureEight() {
  return {{0, 0, 0}, {10, 10, 0}, {10, 0, 0}, {0, 10, 0}};
}

TEST(TrimLoopS, figure_eight_keeps_the_lobe_nearer_the_pick) {
  {
    Polyline pl(figureEight());
    int closed = 1;
    double pick[2] = {9, 5};
    ASSERT_EQ(TrimLoopS(kEps, pick, &closed, 4, pl.rows()), 3);
    EXPECT_EQ(closed, 1);
    EXPECT_NEAR(pl[0][0], 5.0, 1e-12);
    EXPECT_NEAR(pl[0][1], 5.0, 1e-12);
    EXPECT_EQ(pl[1][0], 10.0);
    EXPECT_EQ(pl[1][1], 10.0);
    EXPECT_EQ(pl[2][0], 10.0);
    EXPECT_EQ(pl[2][1], 0.0);
    // X carries the attributes of row j = 0 in the loop.
    EXPECT_EQ(pl[0][3], 100.0);
    EXPECT_EQ(pl[1][3], 101.0);
    EXPECT_EQ(pl[2][3], 102.0);
    EXPECT_EQ(pl[4][0], Polyline::kSentinel);  // nothing written past the input rows
  }
  {
    Polyline pl(figureEight());
    int closed = 1;
    double pick[2] = {1, 5};
    ASSERT_EQ(TrimLoopS(kEps, pick, &closed, 4, pl.rows()), 3);
    EXPECT_EQ(closed, 1);
    EXPECT_NEAR(enclosedArea(pl.rows(), 3), -25.0, 1e-9);  // the left lobe, counter-clockwise
    EXPECT_NEAR(std::fmin(pl[0][0], std::fmin(pl[1][0], pl[2][0])), 0.0, 1e-12);
  }
  {
    // On a lobe: that lobe at once.
    Polyline pl(figureEight());
    int closed = 1;
    double pick[2] = {10, 4};
    ASSERT_EQ(TrimLoopS(kEps, pick, &closed, 4, pl.rows()), 3);
    EXPECT_NEAR(enclosedArea(pl.rows(), 3), 25.0, 1e-9);
  }
}

// An open polyline crossing itself: the loop (5, 5) - (10, 10) - (10, 0) and the rest
// (0, 0) - (5, 5) - (0, 10). From (5, 8) both lie 15 / sqrt(50) away.
TEST(TrimLoopS, remaining_polyline_wins_a_tie) {
  Polyline pl(figureEight());
  int closed = 0;
  double pick[2] = {5, 8};
  ASSERT_EQ(TrimLoopS(kEps, pick, &closed, 4, pl.rows()), 3);
  EXPECT_EQ(closed, 0);
  EXPECT_EQ(pl[0][0], 0.0);
  EXPECT_NEAR(pl[1][0], 5.0, 1e-12);
  EXPECT_NEAR(pl[1][1], 5.0, 1e-12);
  EXPECT_EQ(pl[2][0], 0.0);
  EXPECT_EQ(pl[2][1], 10.0);
  // The row X replacing row 1 carries the attributes of row i = 2.
  EXPECT_EQ(pl[1][3], 102.0);
  EXPECT_EQ(pl[1][4], 202.0);

  // A little nearer the loop, the loop is returned, closed.
  Polyline pl2(figureEight());
  closed = 0;
  double nearer[2] = {6, 8};
  ASSERT_EQ(TrimLoopS(kEps, nearer, &closed, 4, pl2.rows()), 3);
  EXPECT_EQ(closed, 1);
  EXPECT_NEAR(pl2[0][0], 5.0, 1e-12);
  EXPECT_EQ(pl2[1][1], 10.0);
}

TEST(TrimLoopS, simple_closed_shapes_come_back_as_themselves) {
  const double q = std::tan(kPi / 8.0);
  const std::vector<std::vector<Vertex>> shapes = {
      rectangle(0, 0, 10, 10),
      circleOfTwoArcs(0, 0, 5),
      roundedRectangle(200, 100, 20),
      {{5, 0, q}, {0, 5, q}, {-5, 0, q}, {0, -5, q}},
      {{0, 0, 0.3}, {10, 0, 0}, {10, 10, -0.2}, {5, 4, 0}, {0, 10, 0}}};
  const double picks[][2] = {{3, 3}, {1, 1}, {0, 3}, {40, 40}, {2, 2}};
  for (size_t s = 0; s < shapes.size(); ++s) {
    Polyline pl(shapes[s]);
    Polyline original(shapes[s]);
    int closed = 1;
    double pick[2] = {picks[s][0], picks[s][1]};
    ASSERT_EQ(TrimLoopS(kEps, pick, &closed, pl.count(), pl.rows()), pl.count()) << s;
    EXPECT_EQ(closed, 1);
    for (int i = 0; i < pl.count(); ++i) {
      EXPECT_NEAR(pl[i][0], original[i][0], 1e-12) << s << " row " << i;
      EXPECT_NEAR(pl[i][1], original[i][1], 1e-12) << s << " row " << i;
      EXPECT_NEAR(pl[i][2], original[i][2], 1e-12) << s << " row " << i;
      EXPECT_EQ(pl[i][3], original[i][3]) << s << " row " << i;
      EXPECT_EQ(pl[i][4], original[i][4]) << s << " row " << i;
    }
  }
}

TEST(TrimLoopS, adjacent_arcs_touching_only_at_their_row_make_no_loop) {
  // Two half circles, (0, 0) to (2, 0) and (2, 0) to (4, 0): their circles touch at (2, 0).
  Polyline pl({{0, 0, 1}, {2, 0, 1}, {4, 0, 0}});
  int closed = 0;
  double pick[2] = {1, 3};
  EXPECT_EQ(TrimLoopS(kEps, pick, &closed, 3, pl.rows()), 3);
  EXPECT_EQ(closed, 0);
}

TEST(TrimLoopS, line_and_arc_cross_only_within_the_line) {
  // The line from (0, -3) to (0, -1) points at the arc above it but stops short: no loop.
  Polyline pl({{-4, 0, -1}, {4, 0, 0}, {4, -3, 0}, {0, -3, 0}, {0, -1, 0}});
  int closed = 0;
  double pick[2] = {0, 5};
  EXPECT_EQ(TrimLoopS(kEps, pick, &closed, 5, pl.rows()), 5);
  // Extended to (0, 6) it crosses the half circle (radius 4 about the origin) at (0, 4).
  Polyline crossing({{-4, 0, -1}, {4, 0, 0}, {4, -3, 0}, {0, -3, 0}, {0, 6, 0}});
  closed = 0;
  double far[2] = {-3, -10};
  const int n = TrimLoopS(kEps, far, &closed, 5, crossing.rows());
  EXPECT_EQ(closed, 0);
  ASSERT_EQ(n, 3);
  EXPECT_NEAR(crossing[1][0], 0.0, 1e-12);
  EXPECT_NEAR(crossing[1][1], 4.0, 1e-12);
  // The cut arc keeps its head: a quarter turn, clockwise.
  EXPECT_NEAR(crossing[0][2], -std::tan(kPi / 8.0), 1e-12);
}

TEST(TrimLoopS, leaves_rows_untouched_when_memory_runs_out) {
  Polyline pl(figureEight());
  Polyline original(figureEight());
  int closed = 1;
  double pick[2] = {9, 5};
  failNextAllocation(true);
  EXPECT_EQ(TrimLoopS(kEps, pick, &closed, 4, pl.rows()), 4);
  failNextAllocation(false);
  EXPECT_EQ(closed, 1);
  EXPECT_TRUE(rowsEqual(pl, original, 8));
}

TEST(TrimLoopS, bad_input) {
  Polyline pl(figureEight());
  int closed = 1;
  double pick[2] = {9, 5};
  EXPECT_EQ(TrimLoopS(kEps, pick, &closed, 0, pl.rows()), 0);
  EXPECT_EQ(TrimLoopS(kEps, pick, &closed, -2, pl.rows()), 0);
  EXPECT_EQ(TrimLoopS(kEps, pick, &closed, 1, pl.rows()), 1);
  const double nan = std::numeric_limits<double>::quiet_NaN();
  Polyline weird({{0, 0, 0}, {nan, 1, 0}, {10, 10, nan}, {1e300, 0, 0}, {0, 10, 0}});
  double farPick[2] = {nan, std::numeric_limits<double>::infinity()};
  const int n = TrimLoopS(kEps, farPick, &closed, 5, weird.rows());
  EXPECT_GE(n, 0);
  EXPECT_LE(n, 5);
  EXPECT_EQ(weird[5][0], Polyline::kSentinel);
}

// The tree-backed scan must find the same loops as testing every earlier segment. Random
// zigzags cross themselves often; compare with a plain quadratic scan of the first crossing.
TEST(TrimLoopS, random_polylines_are_left_without_crossings) {
  std::mt19937 rng(4242);
  std::uniform_real_distribution<double> coord(0.0, 10.0);
  std::uniform_real_distribution<double> bulge(-0.8, 0.8);
  for (int trial = 0; trial < 200; ++trial) {
    std::vector<Vertex> v(4 + trial % 9);
    for (auto& p : v)
      p = {coord(rng), coord(rng), trial % 2 ? bulge(rng) : 0.0};
    Polyline pl(v);
    int closed = trial % 3 == 0;
    double pick[2] = {coord(rng), coord(rng)};
    const int n = TrimLoopS(kEps, pick, &closed, pl.count(), pl.rows());
    ASSERT_GE(n, 0);
    ASSERT_LE(n, pl.count());
    // Trimming what is left changes nothing more.
    Polyline again(std::vector<Vertex>(n > 0 ? n : 1, Vertex{0, 0, 0}));
    for (int i = 0; i < n; ++i) {
      for (int f = 0; f < 5; ++f)
        again[i][f] = pl[i][f];
    }
    int closedAgain = closed;
    if (n >= 3) {
      EXPECT_EQ(TrimLoopS(kEps, pick, &closedAgain, n, again.rows()), n) << "trial " << trial;
    }
  }
}

}  // namespace

namespace {

// ---- The fast paths against the definitions ---------------------------------------------------

// PLineDist tries its runs nearest first and skips hopeless ones; when memory runs out it walks
// them in order as defined. Both must give the same answer.
TEST(PLineDist, same_answer_as_walking_every_run_in_order) {
  std::mt19937 rng(99);
  std::uniform_real_distribution<double> coord(-10.0, 10.0);
  std::uniform_real_distribution<double> bulge(-1.2, 1.2);
  int compared = 0;
  for (int trial = 0; trial < 400; ++trial) {
    std::vector<Vertex> v(3 + trial % 10);
    for (auto& p : v)
      p = {coord(rng), coord(rng), trial % 4 == 0 ? 0.0 : bulge(rng)};
    Polyline pl(v);
    const int closed = trial % 2;
    for (int k = 0; k < 5; ++k) {
      double p[2] = {coord(rng), coord(rng)};
      double fast = 12345.0, plain = 12345.0;
      const int rf = PLineDist(kEps, closed, pl.count(), pl.rows(), p, &fast);
      failNextAllocation(true);
      const int rp = PLineDist(kEps, closed, pl.count(), pl.rows(), p, &plain);
      failNextAllocation(false);
      ASSERT_EQ(rf, rp) << "trial " << trial;
      EXPECT_EQ(fast, plain) << "trial " << trial;
      compared += rf;
    }
  }
  EXPECT_GT(compared, 500);
}

// The loop scan as defined: every segment against every earlier one, nearest first, with the
// same pairing and cutting rules; no tree, no lazy measuring.
struct ReferenceSegment {
  double x1, y1, x2, y2, bulge;
  bool arc;
  double cx, cy, r, sa, ea;
};

ReferenceSegment referenceSegment(double (*v)[5], int from, int to) {
  ReferenceSegment s{v[from][0], v[from][1], v[to][0], v[to][1], v[from][2], false, 0, 0, 0, 0, 0};
  if (!(-kEps < s.bulge && s.bulge < kEps))
    s.arc = PL_ArcParam(kEps, s.x1, s.y1, s.x2, s.y2, s.bulge, &s.cx, &s.cy, &s.r, &s.sa, &s.ea);
  return s;
}

double referenceAngle(const ReferenceSegment& s, double x, double y) {
  double a = std::atan2(y - s.cy, x - s.cx);
  const double mid = (s.sa + s.ea) / 2.0;
  tarnsysm::detail::bringAngleIntoRange(a, mid - kPi, mid + kPi, kEps);
  return a;
}

double referenceParameter(const ReferenceSegment& s, double x, double y) {
  if (!s.arc) {
    const double dx = s.x2 - s.x1, dy = s.y2 - s.y1;
    return ((x - s.x1) * dx + (y - s.y1) * dy) / (dx * dx + dy * dy);
  }
  const double a = referenceAngle(s, x, y);
  return s.bulge > 0 ? (a - s.sa) / (s.ea - s.sa) : (a - s.ea) / (s.sa - s.ea);
}

void referenceSplit(const ReferenceSegment& s, double x, double y, double* head, double* tail) {
  *head = *tail = 0.0;
  if (!s.arc)
    return;
  const double a = referenceAngle(s, x, y);
  const double start = s.bulge > 0 ? s.sa : s.ea, end = s.bulge > 0 ? s.ea : s.sa;
  const double sign = s.bulge >= 0 ? 1.0 : -1.0;
  *head = sign * std::tan((a - start) * sign / 4.0);
  *tail = sign * std::tan((end - a) * sign / 4.0);
}

bool referenceCrossing(const ReferenceSegment& si, const ReferenceSegment& sj, bool adjacent,
                       double* x, double* y) {
  if (!si.arc && !sj.arc) {
    int flag = 0;
    return !adjacent &&
           D2LInts(kEps, sj.x1, sj.y1, sj.x2, sj.y2, si.x1, si.y1, si.x2, si.y2, x, y, &flag) ==
               1 &&
           flag == 3;
  }
  double px[2], py[2], xa, ya, xb, yb;
  int count = 0;
  if (si.arc != sj.arc) {
    const ReferenceSegment& l = si.arc ? sj : si;
    const ReferenceSegment& a = si.arc ? si : sj;
    int flag = 0;
    const int m = DArcLInts(kEps, l.x1, l.y1, l.x2, l.y2, a.cx, a.cy, a.r, a.sa, a.ea, &xa, &ya,
                            &xb, &yb, &flag);
    if (m >= 1 && (flag & 1))
      px[count] = xa, py[count++] = ya;
    if (m == 2 && (flag & 2))
      px[count] = xb, py[count++] = yb;
  } else {
    const int m = D2ArcInts(kEps, sj.cx, sj.cy, sj.r, sj.sa, sj.ea, si.cx, si.cy, si.r, si.sa,
                            si.ea, &xa, &ya, &xb, &yb);
    if (m >= 1)
      px[count] = xa, py[count++] = ya;
    if (m == 2)
      px[count] = xb, py[count++] = yb;
  }
  int pick = 0;
  if (adjacent) {
    if (count < 2)
      return false;
    const double d0 = std::fabs(px[0] - si.x1) + std::fabs(py[0] - si.y1);
    const double d1 = std::fabs(px[1] - si.x1) + std::fabs(py[1] - si.y1);
    pick = d1 > d0 ? 1 : 0;
  } else {
    if (count == 0)
      return false;
    if (count == 2 && referenceParameter(sj, px[1], py[1]) < referenceParameter(sj, px[0], py[0]))
      pick = 1;
  }
  *x = px[pick];
  *y = py[pick];
  return true;
}

int referenceTrimLoopS(double* pick, int* closed, std::vector<std::vector<double>>& rows) {
  const auto asArray = [](std::vector<std::vector<double>>& r) {
    std::unique_ptr<double[][5]> a(new double[r.size() + 1][5]);
    for (size_t i = 0; i < r.size(); ++i)
      for (int f = 0; f < 5; ++f)
        a[i][f] = r[i][f];
    return a;
  };
  {
    auto a = asArray(rows);
    rows.resize(TrimLoop0(kEps, *closed, static_cast<int>(rows.size()), a.get()));
    for (size_t i = 0; i < rows.size(); ++i)
      rows[i].assign(a[i], a[i] + 5);
  }
  std::vector<std::vector<double>> saved;
  double best = 1e100;
  int i = 1;
  int adjacentCutAt = -1;  // a repeated cut of the same neighbours moves on, as in the library
  for (;;) {
    const int n = static_cast<int>(rows.size());
    const int segments = *closed ? n : n - 1;
    if (i >= segments)
      break;
    auto a = asArray(rows);
    const ReferenceSegment si = referenceSegment(a.get(), i, (i + 1) % n);
    int j = i - 1;
    double x = 0, y = 0;
    for (; j >= 0; --j) {
      if (referenceCrossing(si, referenceSegment(a.get(), j, j + 1), j == i - 1, &x, &y))
        break;
    }
    if (j < 0 || (j == i - 1 && adjacentCutAt == i)) {
      ++i;
      continue;
    }
    adjacentCutAt = j == i - 1 ? i : -1;
    const ReferenceSegment sj = referenceSegment(a.get(), j, j + 1);
    double headJ, tailJ, headI, tailI;
    referenceSplit(sj, x, y, &headJ, &tailJ);
    referenceSplit(si, x, y, &headI, &tailI);
    std::vector<std::vector<double>> loop;
    loop.push_back({x, y, tailJ, rows[j][3], rows[j][4]});
    for (int k = j + 1; k <= i; ++k)
      loop.push_back(rows[k]);
    loop.back()[2] = headI;
    auto la = asArray(loop);
    double s;
    if (PLineDist(kEps, *closed, static_cast<int>(loop.size()), la.get(), pick, &s)) {
      if (-kEps < s && s < kEps) {
        rows = loop;
        *closed = 1;
        return static_cast<int>(rows.size());
      }
      if (std::fabs(s) < best) {
        best = std::fabs(s);
        saved = loop;
      }
    }
    std::vector<double> xRow = {x, y, tailI, rows[i][3], rows[i][4]};
    rows[j][2] = headJ;
    rows.erase(rows.begin() + j + 1, rows.begin() + i + 1);
    rows.insert(rows.begin() + j + 1, xRow);
    i = std::max(j, 1) + 1;
  }
  const auto finish = [&](std::vector<std::vector<double>>& r, int c) {
    auto a = asArray(r);
    r.resize(TrimLoop0(kEps, c, static_cast<int>(r.size()), a.get()));
    for (size_t k = 0; k < r.size(); ++k)
      r[k].assign(a[k], a[k] + 5);
    return static_cast<int>(r.size());
  };
  if (!saved.empty()) {
    auto a = asArray(rows);
    double s;
    if (!(PLineDist(kEps, *closed, static_cast<int>(rows.size()), a.get(), pick, &s) &&
          std::fabs(s) <= best)) {
      rows = saved;
      *closed = 1;
      return finish(rows, 1);
    }
  }
  return finish(rows, *closed);
}

TEST(TrimLoopS, same_result_as_the_scan_of_every_earlier_segment) {
  std::mt19937 rng(31337);
  std::uniform_real_distribution<double> coord(0.0, 10.0);
  std::uniform_real_distribution<double> bulge(-1.0, 1.0);
  int loops = 0;
  for (int trial = 0; trial < 400; ++trial) {
    std::vector<Vertex> v(3 + trial % 14 + (trial % 7 == 0 ? 50 : 0));
    for (auto& p : v)
      p = {coord(rng), coord(rng), trial % 3 == 0 ? 0.0 : bulge(rng)};
    Polyline pl(v);
    std::vector<std::vector<double>> ref;
    for (int i = 0; i < pl.count(); ++i)
      ref.emplace_back(pl[i], pl[i] + 5);
    int closed = trial % 2, refClosed = closed;
    double pick[2] = {coord(rng), coord(rng)};
    const int n = TrimLoopS(kEps, pick, &closed, pl.count(), pl.rows());
    const int rn = referenceTrimLoopS(pick, &refClosed, ref);
    ASSERT_EQ(n, rn) << "trial " << trial;
    EXPECT_EQ(closed, refClosed) << "trial " << trial;
    for (int i = 0; i < n; ++i) {
      for (int f = 0; f < 5; ++f)
        EXPECT_EQ(pl[i][f], ref[i][f]) << "trial " << trial << " row " << i << " field " << f;
    }
    loops += n < pl.count();
  }
  EXPECT_GT(loops, 100);
}

}  // namespace
