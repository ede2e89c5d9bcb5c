// Tarnsysm: planar computational geometry for 2D drafting.
// Tests of the offset corner joins and of moved points of a segment.
#include <Tarnsysm.h>

#include "test_support.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <limits>
#include <random>

namespace {

constexpr double kEps = 1e-9;
// A power of two, so that eps, eps/2 and 2 eps are exact and boundaries decide exactly.
constexpr double kBinEps = 1.0 / 1024.0;
using namespace tarnsysm::test;
constexpr double kSentinel = -12345.0;
const double kQuarterBulge = std::tan(kPi / 8.0);  // a quarter circle
const double kSqrt2 = std::sqrt(2.0);

// Outputs of a join, filled with a sentinel so that "not written" can be seen.
struct Join {
  int code = 99;
  double x = kSentinel, y = kSentinel, t1 = kSentinel, t2 = kSentinel;

  bool untouched() const {
    return x == kSentinel && y == kSentinel && t1 == kSentinel && t2 == kSentinel;
  }
};

struct Point {
  double x, y;
};

Join ll(double eps, double d, Point p1, Point p2, Point p3) {
  Join j;
  j.code = LLOffset(eps, d, p1.x, p1.y, p2.x, p2.y, p3.x, p3.y, &j.x, &j.y, &j.t1, &j.t2);
  return j;
}

Join la(double eps, double d, Point p1, Point p2, Point p3, double bulge) {
  Join j;
  j.code = LAOffset(eps, d, p1.x, p1.y, p2.x, p2.y, p3.x, p3.y, bulge, &j.x, &j.y, &j.t1, &j.t2);
  return j;
}

Join al(double eps, double d, Point p1, Point p2, Point p3, double bulge) {
  Join j;
  j.code = ALOffset(eps, d, p1.x, p1.y, p2.x, p2.y, p3.x, p3.y, bulge, &j.x, &j.y, &j.t1, &j.t2);
  return j;
}

Join aa(double eps, double d, Point p1, Point p2, Point p3, double bulge1, double bulge2) {
  Join j;
  j.code = AAOffset(eps, d, p1.x, p1.y, p2.x, p2.y, p3.x, p3.y, bulge1, bulge2, &j.x, &j.y, &j.t1,
                    &j.t2);
  return j;
}

void expectJoin(const Join& j, int code, double x, double y, double t1, double t2,
                double tol = 1e-12) {
  EXPECT_EQ(j.code, code);
  EXPECT_NEAR(j.x, x, tol);
  EXPECT_NEAR(j.y, y, tol);
  EXPECT_NEAR(j.t1, t1, tol);
  EXPECT_NEAR(j.t2, t2, tol);
}

// A join that reports `code` and writes nothing.
void expectNoJoin(const Join& j, int code) {
  EXPECT_EQ(j.code, code);
  EXPECT_TRUE(j.untouched());
}

void expectSameJoin(const Join& a, const Join& b) {
  EXPECT_EQ(a.code, b.code);
  EXPECT_EQ(a.x, b.x);
  EXPECT_EQ(a.y, b.y);
  EXPECT_EQ(a.t1, b.t1);
  EXPECT_EQ(a.t2, b.t2);
}

// The circle of a bulge segment from elementary geometry: the centre lies off the chord's
// midpoint along the left normal by chord*(1 - b^2)/(4b) (negative: to the right).
struct Circle {
  double cx, cy, r;
};

Circle circleOfBulge(Point p1, Point p2, double bulge) {
  const double dx = p2.x - p1.x;
  const double dy = p2.y - p1.y;
  const double c = std::hypot(dx, dy);
  const double off = c * (1.0 - bulge * bulge) / (4.0 * bulge);
  const double cx = (p1.x + p2.x) / 2.0 - dy / c * off;
  const double cy = (p1.y + p2.y) / 2.0 + dx / c * off;
  return {cx, cy, std::hypot(p1.x - cx, p1.y - cy)};
}

// Signed distance of q from the line p1-p2, positive on the right of travel.
double rightDistance(Point p1, Point p2, Point q) {
  const double dx = p2.x - p1.x;
  const double dy = p2.y - p1.y;
  return ((q.x - p1.x) * dy - (q.y - p1.y) * dx) / std::hypot(dx, dy);
}

// Parameter of the foot of q on the line p1-p2: 0 at p1, 1 at p2.
double lineParameter(Point p1, Point p2, Point q) {
  const double dx = p2.x - p1.x;
  const double dy = p2.y - p1.y;
  return ((q.x - p1.x) * dx + (q.y - p1.y) * dy) / (dx * dx + dy * dy);
}

// Fixed-seed uniform numbers, the same on every standard library.
class Uniform {
 public:
  explicit Uniform(std::uint32_t seed) : rng_(seed) {}
  double operator()(double lo, double hi) {
    return lo + (hi - lo) * (static_cast<double>(rng_()) / 4294967296.0);
  }
  Point point(double range) { return {(*this)(-range, range), (*this)(-range, range)}; }
  // A bulge of magnitude 0.1 .. 2 (arcs from about 23 degrees to about 254), either sign.
  double bulge() {
    const double b = (*this)(0.1, 2.0);
    return rng_() % 2 ? b : -b;
  }

 private:
  std::mt19937 rng_;
};

// --- LLOffset ------------------------------------------------------------------------------

TEST(LLOffset, right_angle_corner_meets_outside_and_inside) {
  // A left turn; d = 1 moves to the right, the outside: both lines are extended.
  expectJoin(ll(kEps, 1.0, {0, 0}, {10, 0}, {10, 10}), 1, 11.0, -1.0, 1.1, -0.1);
  // d = -1 moves inside: both lines are cut short.
  expectJoin(ll(kEps, -1.0, {0, 0}, {10, 0}, {10, 10}), 1, 9.0, 1.0, 0.9, 0.1);
}

TEST(LLOffset, collinear_continuation_moves_the_vertex_along_the_normal) {
  expectJoin(ll(kEps, 1.0, {0, 0}, {5, 0}, {10, 0}), 2, 5.0, -1.0, 1.0, 0.0);
  expectJoin(ll(kEps, 2.0, {0, 0}, {0, 3}, {0, 10}), 2, 2.0, 3.0, 1.0, 0.0);
}

TEST(LLOffset, lines_count_as_parallel_while_the_cross_product_is_strictly_within_eps) {
  // a = (1, 0), b = (1, by): the negated cross product is -by.
  const Join atEps = ll(kBinEps, 1.0, {0, 0}, {1, 0}, {2, kBinEps});
  EXPECT_EQ(atEps.code, 1);
  EXPECT_NEAR(rightDistance({0, 0}, {1, 0}, {atEps.x, atEps.y}), 1.0, 1e-9);
  EXPECT_NEAR(rightDistance({1, 0}, {2, kBinEps}, {atEps.x, atEps.y}), 1.0, 1e-9);
  EXPECT_EQ(ll(kBinEps, 1.0, {0, 0}, {1, 0}, {2, -kBinEps}).code, 1);

  // Within eps the second line continues the first: the vertex moves along its normal.
  const double len = std::hypot(1.0, kBinEps / 2.0);
  expectJoin(ll(kBinEps, 1.0, {0, 0}, {1, 0}, {2, kBinEps / 2.0}), 2, 1.0 + kBinEps / 2.0 / len,
             -1.0 / len, 1.0, 0.0, 1e-15);
}

TEST(LLOffset, reversal_gives_no_join_and_writes_nothing) {
  expectNoJoin(ll(kEps, 1.0, {0, 0}, {10, 0}, {5, 0}), 0);
  // Nearly reversed, with the cross product still within eps.
  expectNoJoin(ll(kBinEps, 1.0, {0, 0}, {10, 0}, {5, kBinEps / 20.0}), 0);
}

TEST(LLOffset, degenerate_lines_report_minus_two_or_minus_three) {
  // Second line shorter than eps: the first one moves the vertex.
  expectJoin(ll(kBinEps, 1.0, {0, 0}, {10, 0}, {10 + kBinEps / 2.0, 0}), -2, 10.0, -1.0, 1.0, 0.0);
  // First line shorter than eps: also -2, the second one moves the vertex.
  expectJoin(ll(kBinEps, 1.0, {10 - kBinEps / 2.0, 0}, {10, 0}, {10, 10}), -2, 11.0, 0.0, 1.0, 0.0);
  expectNoJoin(ll(kBinEps, 1.0, {10, 0}, {10, 0}, {10, kBinEps / 2.0}), -3);
  // A line exactly eps long is not degenerate: here it continues the first one.
  expectJoin(ll(kBinEps, 1.0, {0, 0}, {10, 0}, {10 + kBinEps, 0}), 2, 10.0, -1.0, 1.0, 0.0);
}

TEST(LLOffset, random_joins_lie_at_the_offset_distance_from_both_lines) {
  Uniform uniform(1234u);
  int joined = 0;
  for (int trial = 0; trial < 500; ++trial) {
    const Point p1 = uniform.point(10), p2 = uniform.point(10), p3 = uniform.point(10);
    const double d = uniform(-3.0, 3.0);
    const Join j = ll(kEps, d, p1, p2, p3);
    ASSERT_EQ(j.code, 1) << "trial " << trial;
    ++joined;
    const Point x{j.x, j.y};
    const double tol = 1e-9 * (1.0 + std::hypot(j.x, j.y));
    EXPECT_NEAR(rightDistance(p1, p2, x), d, tol) << "trial " << trial;
    EXPECT_NEAR(rightDistance(p2, p3, x), d, tol) << "trial " << trial;
    EXPECT_NEAR(lineParameter(p1, p2, x), j.t1, tol) << "trial " << trial;
    EXPECT_NEAR(lineParameter(p2, p3, x), j.t2, tol) << "trial " << trial;
  }
  EXPECT_EQ(joined, 500);
}

// --- LAOffset ------------------------------------------------------------------------------

TEST(LAOffset, line_into_half_circle_meets_it_where_the_line_enters_the_circle) {
  // Line along +x into a half circle (bulge 1, centre (1,0), radius 1) that turns down: a right
  // turn. Moving right by 0.5, the line y = -0.5 enters the circle of radius 1.5 at
  // x = 1 - sqrt(2.25 - 0.25); seen from the centre that point lies atan(0.5/sqrt 2) past the
  // arc's start angle pi, of a sweep of pi.
  const double past = std::atan(0.5 / kSqrt2);
  expectJoin(la(kEps, 0.5, {-10, 0}, {0, 0}, {2, 0}, 1.0), 1, 1.0 - kSqrt2, -0.5,
             (11.0 - kSqrt2) / 10.0, past / kPi);
  // Moving left by 0.5 the line y = 0.5 touches the circle of radius 0.5 at its top (1, 0.5):
  // the line is extended by a unit, the arc by half its sweep backwards.
  expectJoin(la(kEps, -0.5, {-10, 0}, {0, 0}, {2, 0}, 1.0), 1, 1.0, 0.5, 1.1, -0.5);
  // Moving left by 0.6 the line passes above the circle of radius 0.4.
  expectNoJoin(la(kEps, -0.6, {-10, 0}, {0, 0}, {2, 0}, 1.0), 0);
}

TEST(LAOffset, tangent_continuation_keeps_a_smooth_join) {
  // Counter-clockwise quarter circle about (0, 1) leaving the line tangentially.
  expectJoin(la(kEps, 0.5, {-10, 0}, {0, 0}, {1, 1}, kQuarterBulge), 1, 0.0, -0.5, 1.0, 0.0, 1e-9);
  expectJoin(la(kEps, -0.5, {-10, 0}, {0, 0}, {1, 1}, kQuarterBulge), 1, 0.0, 0.5, 1.0, 0.0, 1e-9);
  // Clockwise quarter circle about (0, -1).
  expectJoin(la(kEps, 0.5, {-10, 0}, {0, 0}, {1, -1}, -kQuarterBulge), 1, 0.0, -0.5, 1.0, 0.0,
             1e-9);
}

TEST(LAOffset, touching_line_takes_the_branch_from_the_turn) {
  // Cusp: the line runs along +x into (0,0), the arc leaves it heading back along -x
  // (counter-clockwise about (0,-1)). The turn (P2 - P1) x (P3 - P2) times the bulge is
  // negative: the entry branch. Moved right by 0.1, the line y = -0.1 enters the circle of
  // radius 1.1 at x = -sqrt(1.21 - 0.81).
  const double x = -std::sqrt(0.4);
  const double angle = std::atan2(0.9, x);  // seen from the centre (0, -1)
  expectJoin(la(kEps, 0.1, {-1, 0}, {0, 0}, {-1, -1}, kQuarterBulge), 1, x, -0.1, 1.0 + x,
             (angle - kPi / 2.0) / (kPi / 2.0), 1e-9);
}

TEST(LAOffset, touching_line_with_a_turn_within_eps_has_no_join) {
  const double eps = 1e-3;
  // Quarter circle about (0, 0.0015): the turn is 0.0015*tan(pi/8), about 6.2e-4.
  expectNoJoin(la(eps, 1e-3, {-1, 0}, {0, 0}, {1.5e-3, 1.5e-3}, kQuarterBulge), 0);
  // About (0, 0.003) the turn is 1.2e-3: the moved line touches the moved circle at (0, -1e-3).
  expectJoin(la(eps, 1e-3, {-1, 0}, {0, 0}, {3e-3, 3e-3}, kQuarterBulge), 1, 0.0, -1e-3, 1.0, 0.0,
             1e-9);
}

TEST(LAOffset, touching_line_needs_a_turn_strictly_beyond_eps) {
  // A half circle of chord eps about (0, eps/2) touching the line at (0,0): the turn is
  // chord*|a|*bulge = eps exactly on the way on, -eps on the way back (a cusp); neither decides.
  const double e = kBinEps;
  expectNoJoin(la(e, e / 4.0, {-1, 0}, {0, 0}, {0, e}, 1.0), 0);
  expectNoJoin(la(e, e / 4.0, {-1, 0}, {0, 0}, {0, -e}, 1.0), 0);
  // Twice the chord turns by 2 eps: the join is found again.
  EXPECT_EQ(la(e, e / 4.0, {-1, 0}, {0, 0}, {0, 2.0 * e}, 1.0).code, 1);
}

TEST(LAOffset, degenerate_segments_report_their_side) {
  // No line: the vertex moves radially with the arc, 1.5 from the centre (1, 0).
  expectJoin(la(kEps, 0.5, {0, 0}, {0, 0}, {2, 0}, 1.0), -1, -0.5, 0.0, 1.0, 0.0);
  // No arc: the vertex moves along the line's normal.
  expectJoin(la(kEps, 0.5, {-10, 0}, {0, 0}, {0, 0}, 1.0), -2, 0.0, -0.5, 1.0, 0.0);
  expectNoJoin(la(kEps, 0.5, {0, 0}, {0, 0}, {0, 0}, 1.0), -3);
}

TEST(LAOffset, bulge_strictly_within_eps_is_a_line) {
  expectSameJoin(la(kBinEps, 1.0, {0, 0}, {10, 0}, {10, 10}, kBinEps / 2.0),
                 ll(kBinEps, 1.0, {0, 0}, {10, 0}, {10, 10}));
  expectSameJoin(la(kBinEps, 1.0, {0, 0}, {10, 0}, {10, 10}, -kBinEps / 2.0),
                 ll(kBinEps, 1.0, {0, 0}, {10, 0}, {10, 10}));
  // At bulge = eps it is an arc of huge radius: the join lies on its moved circle.
  const Join flat = la(kBinEps, 1.0, {0, 0}, {10, 0}, {10, 10}, kBinEps);
  ASSERT_EQ(flat.code, 1);
  const Circle c = circleOfBulge({10, 0}, {10, 10}, kBinEps);
  EXPECT_NEAR(std::hypot(flat.x - c.cx, flat.y - c.cy), c.r + 1.0, 1e-6);
}

// --- ALOffset ------------------------------------------------------------------------------

TEST(ALOffset, half_circle_into_line_meets_where_the_line_leaves_the_circle) {
  // Half circle (bulge 1, centre (-1,0)) arriving at (0,0) heading up, then the line along +x:
  // a right turn. Moving right by 0.5 the line y = -0.5 leaves the circle of radius 1.5 at
  // x = -1 + sqrt 2, atan(0.5/sqrt 2) before the arc's end.
  const double before = std::atan(0.5 / kSqrt2);
  expectJoin(al(kEps, 0.5, {-2, 0}, {0, 0}, {10, 0}, 1.0), 1, kSqrt2 - 1.0, -0.5,
             1.0 - before / kPi, (kSqrt2 - 1.0) / 10.0);
  // Moving left by 0.5 the line y = 0.5 touches the circle of radius 0.5 at (-1, 0.5).
  expectJoin(al(kEps, -0.5, {-2, 0}, {0, 0}, {10, 0}, 1.0), 1, -1.0, 0.5, 1.5, -0.1);
  expectNoJoin(al(kEps, -0.6, {-2, 0}, {0, 0}, {10, 0}, 1.0), 0);
}

TEST(ALOffset, touching_line_takes_the_branch_from_the_turn) {
  // Cusp: counter-clockwise quarter circle about (0,-1) from (1,-1) arriving at (0,0) heading
  // -x, then the line back along +x. The turn is positive: the exit branch. Moved right by 0.1
  // the line y = -0.1 leaves the circle of radius 1.1 at x = sqrt(1.21 - 0.81).
  const double x = std::sqrt(0.4);
  const double angle = std::atan2(0.9, x);  // seen from the centre, on a sweep from 0 to pi/2
  expectJoin(al(kEps, 0.1, {1, -1}, {0, 0}, {1, 0}, kQuarterBulge), 1, x, -0.1, angle / (kPi / 2.0),
             x, 1e-9);
}

TEST(ALOffset, touching_line_needs_a_turn_strictly_beyond_eps) {
  // A half circle of chord eps from (0, eps) down to (0,0), leaving along +x: turn -eps.
  const double e = kBinEps;
  expectNoJoin(al(e, e / 4.0, {0, e}, {0, 0}, {1, 0}, 1.0), 0);
  EXPECT_EQ(al(e, e / 4.0, {0, 2.0 * e}, {0, 0}, {1, 0}, 1.0).code, 1);
}

TEST(ALOffset, degenerate_segments_report_their_side) {
  // No arc (first segment): the vertex moves along the line's normal.
  expectJoin(al(kEps, 0.5, {0, 0}, {0, 0}, {10, 0}, 1.0), -1, 0.0, -0.5, 1.0, 0.0);
  // No line (second segment): the vertex moves radially, 1.5 from the centre (-1, 0).
  expectJoin(al(kEps, 0.5, {-2, 0}, {0, 0}, {0, 0}, 1.0), -2, 0.5, 0.0, 1.0, 0.0);
  expectNoJoin(al(kEps, 0.5, {0, 0}, {0, 0}, {0, 0}, 1.0), -3);
}

TEST(ALOffset, bulge_strictly_within_eps_is_a_line) {
  expectSameJoin(al(kBinEps, 1.0, {0, 0}, {10, 0}, {10, 10}, kBinEps / 2.0),
                 ll(kBinEps, 1.0, {0, 0}, {10, 0}, {10, 10}));
}

// A join lies on the line a-b moved by d at parameter t.
void expectOnMovedLine(Point a, Point b, const Join& j, double d, double t) {
  EXPECT_NEAR(rightDistance(a, b, {j.x, j.y}), d, 1e-8);
  EXPECT_NEAR(lineParameter(a, b, {j.x, j.y}), t, 1e-8);
}

// A join lies on the circle c of a bulge arc leaving `start`, moved by d, at fraction t of the
// arc's sweep; returns that part of the sweep.
double expectOnMovedArc(Point start, const Circle& c, double bulge, const Join& j, double d,
                        double t, double tol = 1e-8) {
  const double moved = c.r + (bulge > 0 ? d : -d);
  EXPECT_NEAR(std::hypot(j.x - c.cx, j.y - c.cy), moved, tol);
  const double sweep = 4.0 * std::atan(bulge);
  const double angle = std::atan2(start.y - c.cy, start.x - c.cx) + t * sweep;
  EXPECT_NEAR(c.cx + moved * std::cos(angle), j.x, tol);
  EXPECT_NEAR(c.cy + moved * std::sin(angle), j.y, tol);
  return sweep;
}

// Random line-arc and arc-line corners: every join lies on both moved segments, and its
// parameters put it there, within half a turn of the shared vertex along the arc.
TEST(LAOffset, random_joins_lie_on_the_moved_line_and_the_moved_circle) {
  for (const bool lineFirst : {true, false}) {
    Uniform uniform(lineFirst ? 4321u : 8765u);
    int joined = 0;
    for (int trial = 0; trial < 1000; ++trial) {
      SCOPED_TRACE(trial);
      const Point p1 = uniform.point(10), p2 = uniform.point(10), p3 = uniform.point(10);
      const double bulge = uniform.bulge();
      const Circle c = lineFirst ? circleOfBulge(p2, p3, bulge) : circleOfBulge(p1, p2, bulge);
      const double d = uniform(-0.9, 0.9) * c.r;
      const Join j = lineFirst ? la(kEps, d, p1, p2, p3, bulge) : al(kEps, d, p1, p2, p3, bulge);
      if (j.code != 1)
        continue;
      ++joined;
      if (lineFirst) {
        expectOnMovedLine(p1, p2, j, d, j.t1);
        const double sweep = expectOnMovedArc(p2, c, bulge, j, d, j.t2);
        EXPECT_LE(std::fabs(j.t2 * sweep), kPi + 1e-8);
      } else {
        expectOnMovedLine(p2, p3, j, d, j.t2);
        const double sweep = expectOnMovedArc(p1, c, bulge, j, d, j.t1);
        EXPECT_LE(std::fabs((1.0 - j.t1) * sweep), kPi + 1e-8);
      }
    }
    EXPECT_GT(joined, 400);
  }
}

// --- AAOffset ------------------------------------------------------------------------------

TEST(AAOffset, s_curve_of_tangent_half_circles_joins_where_the_moved_circles_touch) {
  // Counter-clockwise half circle about (-1,0), then clockwise about (1,0). Moved right by 0.5
  // the circles of radius 1.5 and 0.5 touch at (0.5, 0).
  expectJoin(aa(kEps, 0.5, {-2, 0}, {0, 0}, {2, 0}, 1.0, -1.0), 1, 0.5, 0.0, 1.0, 0.0, 1e-9);
}

// h is the half chord of two circles of radius 1.5 whose centres are sqrt 2 apart.
const double kHalfChord = std::sqrt(2.25 - 0.5);
// The join seen from either centre lies this angle before the first arc's end (after the
// second arc's start); both arcs are half circles.
const double kJoinAngle = std::atan((kHalfChord / kSqrt2 - 0.5) / (kHalfChord / kSqrt2 + 0.5));

TEST(AAOffset, right_turn_takes_the_first_circle_point_on_the_vertex_side) {
  // Half circle about (-1,0) heading up into (0,0), then a half circle about (0,1) heading +x:
  // a right turn. Moved right (inside) the circles of radius 1.5 meet at (-0.5,0.5) +- the half
  // chord along (1,-1)/sqrt 2; the vertex's side is the one towards +x.
  const double w = kHalfChord / kSqrt2;
  expectJoin(aa(kEps, 0.5, {-2, 0}, {0, 0}, {0, 2}, 1.0, 1.0), 1, -0.5 + w, 0.5 - w,
             1.0 - kJoinAngle / kPi, kJoinAngle / kPi);
}

TEST(AAOffset, left_turn_takes_the_second_circle_point_on_the_vertex_side) {
  // The mirror image in the x axis: clockwise half circles, a left turn, moved left (inside).
  // Of the two circle points the first lies across the centre line; the second is taken.
  const double w = kHalfChord / kSqrt2;
  expectJoin(aa(kEps, -0.5, {-2, 0}, {0, 0}, {0, -2}, -1.0, -1.0), 1, -0.5 + w, -0.5 + w,
             1.0 - kJoinAngle / kPi, kJoinAngle / kPi);
}

TEST(AAOffset, moved_circles_that_do_not_meet_give_no_join) {
  // The right turn moved outside: two circles of radius 0.5 with centres sqrt 2 apart.
  expectNoJoin(aa(kEps, -0.5, {-2, 0}, {0, 0}, {0, 2}, 1.0, 1.0), 0);
}

TEST(AAOffset, concentric_arcs_join_only_when_turning_the_same_way) {
  const double b = kQuarterBulge;
  // Two counter-clockwise quarters of the unit circle: the vertex moves radially.
  expectJoin(aa(kEps, 0.5, {1, 0}, {0, 1}, {-1, 0}, b, b), 1, 0.0, 1.5, 1.0, 0.0);
  expectJoin(aa(kEps, -0.5, {1, 0}, {0, 1}, {-1, 0}, b, b), 1, 0.0, 0.5, 1.0, 0.0);
  // Clockwise over the top: right of travel is inwards.
  expectJoin(aa(kEps, 0.5, {-1, 0}, {0, 1}, {1, 0}, -b, -b), 1, 0.0, 0.5, 1.0, 0.0);
  // Back along the same circle: opposite turns never meet again.
  expectNoJoin(aa(kEps, 0.5, {1, 0}, {0, 1}, {1, 0}, b, -b), 0);
}

TEST(AAOffset, degenerate_arcs_report_their_side) {
  // Second arc degenerate: the vertex moves radially with the first, 1.5 from (-1, 0).
  expectJoin(aa(kEps, 0.5, {-2, 0}, {0, 0}, {0, 0}, 1.0, 1.0), -2, 0.5, 0.0, 1.0, 0.0);
  // First arc degenerate: radially with the second, 1.5 from (0, 1).
  expectJoin(aa(kEps, 0.5, {0, 0}, {0, 0}, {0, 2}, 1.0, 1.0), -1, 0.0, -0.5, 1.0, 0.0);
  expectNoJoin(aa(kEps, 0.5, {0, 0}, {0, 0}, {0, 0}, 1.0, 1.0), -3);
}

TEST(AAOffset, zero_bulges_hand_over_first_bulge_first) {
  const Point p1{-10, 0}, p2{0, 0}, p3{2, 0};
  expectSameJoin(aa(kBinEps, 0.5, p1, p2, p3, kBinEps / 2.0, 1.0),
                 la(kBinEps, 0.5, p1, p2, p3, 1.0));
  expectSameJoin(aa(kBinEps, 0.5, p1, p2, p3, 0.0, 0.0), ll(kBinEps, 0.5, p1, p2, p3));
  const Point q1{-2, 0}, q2{0, 0}, q3{10, 0};
  expectSameJoin(aa(kBinEps, 0.5, q1, q2, q3, 1.0, -kBinEps / 2.0),
                 al(kBinEps, 0.5, q1, q2, q3, 1.0));
}

TEST(AAOffset, random_joins_lie_on_both_moved_circles) {
  Uniform uniform(999u);
  int joined = 0;
  for (int trial = 0; trial < 1000; ++trial) {
    SCOPED_TRACE(trial);
    const Point p1 = uniform.point(10), p2 = uniform.point(10), p3 = uniform.point(10);
    const double bulge1 = uniform.bulge(), bulge2 = uniform.bulge();
    const Circle c1 = circleOfBulge(p1, p2, bulge1);
    const Circle c2 = circleOfBulge(p2, p3, bulge2);
    const double d = uniform(-0.9, 0.9) * std::fmin(c1.r, c2.r);
    const Join j = aa(kEps, d, p1, p2, p3, bulge1, bulge2);
    if (j.code != 1)
      continue;
    ++joined;
    const double tol = 1e-8 * (1.0 + c1.r + c2.r);
    const double sweep1 = expectOnMovedArc(p1, c1, bulge1, j, d, j.t1, tol);
    EXPECT_LE(std::fabs((1.0 - j.t1) * sweep1), kPi + 1e-8);
    const double sweep2 = expectOnMovedArc(p2, c2, bulge2, j, d, j.t2, tol);
    EXPECT_LE(std::fabs(j.t2 * sweep2), kPi + 1e-8);
  }
  EXPECT_GT(joined, 300);
}

// --- GetOffsetP ----------------------------------------------------------------------------

struct Moved {
  int code = 99;
  double x = kSentinel, y = kSentinel;
};

Moved offsetPoint(double eps, double d, double t, Point p1, Point p2, double bulge) {
  Moved m;
  m.code = GetOffsetP(eps, d, t, p1.x, p1.y, p2.x, p2.y, bulge, &m.x, &m.y);
  return m;
}

void expectMoved(const Moved& m, double x, double y, double tol = 1e-12) {
  EXPECT_EQ(m.code, 1);
  EXPECT_NEAR(m.x, x, tol);
  EXPECT_NEAR(m.y, y, tol);
}

TEST(GetOffsetP, line_point_moves_along_the_right_normal) {
  expectMoved(offsetPoint(kEps, 1.0, 0.3, {0, 0}, {10, 0}, 0.0), 3.0, -1.0);
  expectMoved(offsetPoint(kEps, 1.0, 1.5, {0, 0}, {10, 0}, 0.0), 15.0, -1.0);
  expectMoved(offsetPoint(kEps, -2.0, 1.0, {0, 0}, {0, 4}, 0.0), -2.0, 4.0);
}

TEST(GetOffsetP, arc_point_moves_onto_the_moved_circle_in_travel_order) {
  // Counter-clockwise half circle below (0,0)-(2,0): right of travel is outwards.
  expectMoved(offsetPoint(kEps, 0.5, 0.5, {0, 0}, {2, 0}, 1.0), 1.0, -1.5);
  expectMoved(offsetPoint(kEps, 0.5, 0.0, {0, 0}, {2, 0}, 1.0), -0.5, 0.0);
  expectMoved(offsetPoint(kEps, 0.5, 1.0, {0, 0}, {2, 0}, 1.0), 2.5, 0.0);
  // Clockwise half circle above: right of travel is inwards, and t = 0 is still P1.
  expectMoved(offsetPoint(kEps, 0.5, 0.5, {0, 0}, {2, 0}, -1.0), 1.0, 0.5);
  expectMoved(offsetPoint(kEps, 0.5, 0.0, {0, 0}, {2, 0}, -1.0), 0.5, 0.0);
}

TEST(GetOffsetP, arc_shrunk_to_its_centre_gives_the_centre_until_the_radius_passes_minus_eps) {
  const Point p1{0, 0}, p2{2, 0};  // centre (1, 0), radius 1, counter-clockwise
  expectMoved(offsetPoint(kBinEps, -1.0, 0.5, p1, p2, 1.0), 1.0, 0.0);
  expectMoved(offsetPoint(kBinEps, -1.0 - kBinEps / 2.0, 0.5, p1, p2, 1.0), 1.0, 0.0);
  expectMoved(offsetPoint(kBinEps, -1.0 - kBinEps, 0.5, p1, p2, 1.0), 1.0, 0.0);
  expectMoved(offsetPoint(kBinEps, -1.0 + kBinEps / 2.0, 0.5, p1, p2, 1.0), 1.0, 0.0);
  // A moved radius of exactly eps is a circle again.
  expectMoved(offsetPoint(kBinEps, -1.0 + kBinEps, 0.5, p1, p2, 1.0), 1.0, -kBinEps);
  const Moved inverted = offsetPoint(kBinEps, -1.0 - 2.0 * kBinEps, 0.5, p1, p2, 1.0);
  EXPECT_EQ(inverted.code, 0);
  EXPECT_EQ(inverted.x, kSentinel);
  EXPECT_EQ(inverted.y, kSentinel);
}

TEST(GetOffsetP, segment_shorter_than_eps_moves_nothing) {
  for (const double bulge : {0.0, 1.0}) {
    const Moved none = offsetPoint(kBinEps, 1.0, 0.5, {3, 3}, {3 + kBinEps / 2.0, 3}, bulge);
    EXPECT_EQ(none.code, 0);
    EXPECT_EQ(none.x, kSentinel);
    EXPECT_EQ(none.y, kSentinel);
  }
  expectMoved(offsetPoint(kBinEps, 1.0, 0.0, {3, 3}, {3 + kBinEps, 3}, 0.0), 3.0, 2.0);
}

TEST(GetOffsetP, random_points_lie_at_the_offset_distance_from_their_segment) {
  Uniform uniform(2468u);
  for (int trial = 0; trial < 500; ++trial) {
    const Point p1 = uniform.point(10), p2 = uniform.point(10);
    const double t = uniform(-0.5, 1.5);
    if (trial % 2 == 0) {
      const double d = uniform(-5.0, 5.0);
      const Moved m = offsetPoint(kEps, d, t, p1, p2, 0.0);
      ASSERT_EQ(m.code, 1);
      EXPECT_NEAR(rightDistance(p1, p2, {m.x, m.y}), d, 1e-9) << "trial " << trial;
      EXPECT_NEAR(lineParameter(p1, p2, {m.x, m.y}), t, 1e-9) << "trial " << trial;
    } else {
      const double bulge = uniform.bulge();
      const Circle c = circleOfBulge(p1, p2, bulge);
      const double d = uniform(-0.9, 0.9) * c.r;
      const double moved = c.r + (bulge > 0 ? d : -d);
      const Moved m = offsetPoint(kEps, d, t, p1, p2, bulge);
      ASSERT_EQ(m.code, 1);
      const double angle = std::atan2(p1.y - c.cy, p1.x - c.cx) + t * 4.0 * std::atan(bulge);
      EXPECT_NEAR(m.x, c.cx + moved * std::cos(angle), 1e-8) << "trial " << trial;
      EXPECT_NEAR(m.y, c.cy + moved * std::sin(angle), 1e-8) << "trial " << trial;
    }
  }
}

// --- Bad input -----------------------------------------------------------------------------

TEST(CornerJoins, non_finite_input_returns_a_documented_code) {
  const double nan = std::numeric_limits<double>::quiet_NaN();
  const double inf = std::numeric_limits<double>::infinity();
  const double huge = 1e300;
  for (const double bad : {nan, inf, -inf, huge}) {
    const auto inRange = [](int code) { return code >= -3 && code <= 2; };
    EXPECT_TRUE(inRange(ll(kEps, 1.0, {0, 0}, {bad, 0}, {10, 10}).code));
    EXPECT_TRUE(inRange(ll(kEps, bad, {0, 0}, {10, 0}, {10, 10}).code));
    EXPECT_TRUE(inRange(la(kEps, 1.0, {0, 0}, {10, 0}, {10, 10}, bad).code));
    EXPECT_TRUE(inRange(la(kEps, bad, {0, 0}, {10, 0}, {12, 0}, 1.0).code));
    EXPECT_TRUE(inRange(al(kEps, 1.0, {0, 0}, {10, 0}, {10, bad}, 0.5).code));
    EXPECT_TRUE(inRange(aa(kEps, 1.0, {0, 0}, {10, 0}, {10, 10}, bad, 0.5).code));
    EXPECT_TRUE(inRange(aa(kEps, bad, {0, 0}, {10, 0}, {10, 10}, 0.3, 0.5).code));
    Moved m = offsetPoint(kEps, 1.0, bad, {0, 0}, {2, 0}, 1.0);
    EXPECT_TRUE(m.code == 0 || m.code == 1);
    m = offsetPoint(kEps, bad, 0.5, {0, 0}, {2, 0}, 1.0);
    EXPECT_TRUE(m.code == 0 || m.code == 1);
  }
}

}  // namespace
