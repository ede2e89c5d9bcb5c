// Tarnsysm: planar computational geometry for 2D drafting.
// Tests of line, circle and arc intersections: points, their order, the segment flags, the
// tolerance boundaries, and that every reported point lies on both curves.
#include <Tarnsysm.h>

#include "test_support.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <ostream>
#include <random>

namespace {

// A power of two: boundary cases below add and multiply it exactly.
constexpr double kEps = 1.0 / 1024.0;
constexpr double kFine = 1e-9;
using namespace tarnsysm::test;
constexpr double kSentinel = -4242.125;
const double kHalfSqrt3 = std::sqrt(3.0) / 2;

// Distance from (px, py) to the infinite line through (x1, y1) and (x2, y2).
double distanceToLine(double px, double py, double x1, double y1, double x2, double y2) {
  const double dx = x2 - x1;
  const double dy = y2 - y1;
  return std::fabs((px - x1) * dy - (py - y1) * dx) / std::hypot(dx, dy);
}

// Signed length from (x1, y1) along the direction to (x2, y2) to the projection of (px, py).
double lengthAlong(double px, double py, double x1, double y1, double x2, double y2) {
  const double dx = x2 - x1;
  const double dy = y2 - y1;
  return ((px - x1) * dx + (py - y1) * dy) / std::hypot(dx, dy);
}

// Is the polar angle of (px, py) about (cx, cy) within the counter-clockwise sweep from sa to ea
// (sweeps shorter than a turn), with a margin? Returns -1 when too close to an end to tell.
int angleWithinSweep(double px, double py, double cx, double cy, double sa, double ea,
                     double margin) {
  const double sweep = ea - sa;
  double offset = std::fmod(std::atan2(py - cy, px - cx) - sa, kTwoPi);
  if (offset < 0)
    offset += kTwoPi;
  if (std::fabs(offset - sweep) < margin || offset < margin || kTwoPi - offset < margin)
    return -1;
  return offset <= sweep ? 1 : 0;
}

// ---------------------------------------------------------------------------------------------
// D2LInts

struct LineHit {
  int n;
  double x, y;
  int flag;
};

LineHit lines(double eps, double x1, double y1, double x2, double y2, double x3, double y3,
              double x4, double y4) {
  LineHit h{0, kSentinel, kSentinel, -1};
  h.n = D2LInts(eps, x1, y1, x2, y2, x3, y3, x4, y4, &h.x, &h.y, &h.flag);
  return h;
}

void expectLineHit(const LineHit& h, double x, double y, int flag) {
  ASSERT_EQ(h.n, 1);
  EXPECT_DOUBLE_EQ(h.x, x);
  EXPECT_DOUBLE_EQ(h.y, y);
  EXPECT_EQ(h.flag, flag);
}

TEST(D2LInts, flag_bits_say_which_segments_hold_the_crossing) {
  expectLineHit(lines(kEps, 0, 0, 1, 0, 2, -1, 2, 1), 2, 0, 2);  // outside the first only
  expectLineHit(lines(kEps, 0, 0, 4, 4, 0, 4, 4, 0), 2, 2, 3);
  expectLineHit(lines(kEps, 0, 0, 1, 1, 10, 0, 11, -1), 5, 5, 0);
}

struct SegmentEndCase {
  const char* name;
  double x3, y3, x4, y4;  // second line; the first is (0, 0)-(1, 0)
  int flag;
};

std::ostream& operator<<(std::ostream& os, const SegmentEndCase& c) {
  return os << c.name;
}

class D2LIntsSegmentEnds : public testing::TestWithParam<SegmentEndCase> {};

TEST_P(D2LIntsSegmentEnds, parameter_tolerance_is_closed_and_dimensionless) {
  const SegmentEndCase& c = GetParam();
  double x = kSentinel, y = kSentinel;
  int flag = -1;
  ASSERT_EQ(D2LInts(kEps, 0, 0, 1, 0, c.x3, c.y3, c.x4, c.y4, &x, &y, &flag), 1);
  EXPECT_EQ(flag, c.flag);
  EXPECT_EQ(y, 0.0);
}

constexpr double kE = kEps;
INSTANTIATE_TEST_SUITE_P(
    Boundaries, D2LIntsSegmentEnds,
    testing::Values(
        // Vertical second lines cut the first at t = its x.
        SegmentEndCase{"first_end_plus_half_eps", 1 + kE / 2, -1, 1 + kE / 2, 1, 3},
        SegmentEndCase{"first_end_plus_eps", 1 + kE, -1, 1 + kE, 1, 3},
        SegmentEndCase{"first_end_plus_two_eps", 1 + 2 * kE, -1, 1 + 2 * kE, 1, 2},
        SegmentEndCase{"first_start_minus_half_eps", -kE / 2, -1, -kE / 2, 1, 3},
        SegmentEndCase{"first_start_minus_eps", -kE, -1, -kE, 1, 3},
        SegmentEndCase{"first_start_minus_two_eps", -2 * kE, -1, -2 * kE, 1, 2},
        // Vertical second lines of length 1 at x = 0.5, moved so that u sits at an end.
        SegmentEndCase{"second_start_minus_eps", 0.5, kE, 0.5, 1 + kE, 3},
        SegmentEndCase{"second_start_minus_two_eps", 0.5, 2 * kE, 0.5, 1 + 2 * kE, 1},
        SegmentEndCase{"second_end_plus_eps", 0.5, -1 - kE, 0.5, -kE, 3},
        SegmentEndCase{"second_end_plus_two_eps", 0.5, -1 - 2 * kE, 0.5, -2 * kE, 1}),
    [](const testing::TestParamInfo<SegmentEndCase>& info) { return info.param.name; });

TEST(D2LInts, slope_vertical_and_determinant_tests_decide_parallel_lines) {
  // Slopes eps and 0: exactly eps apart is not parallel (open test); they meet at x = 1/eps.
  expectLineHit(lines(kEps, 0, 0, 64, 64 * kEps, 0, 1, 64, 1), 1024, 1, 0);
  expectLineHit(lines(kEps, 0, 0, 64, 128 * kEps, 0, 1, 64, 1), 512, 1, 0);
  // dx = 2 eps: a steep line, no slope test against a vertical one, so they meet far up.
  expectLineHit(lines(kEps, 0, 0, 2 * kEps, 1, 5, 0, 5, 1), 5, 2560, 0);
  // Vertical of length 0.5 against horizontal of length 2 eps: det = eps exactly, an area
  // compared with eps unscaled.
  expectLineHit(lines(kEps, 0, 0, 0, 0.5, 1, 0, 1 + 2 * kEps, 0), 0, 0, 1);
  expectLineHit(lines(kEps, 0, 0, 0, -0.5, 1, 0, 1 + 2 * kEps, 0), 0, 0, 1);
  // Each of these is "parallel": no point, the flag reset to 0 all the same.
  const double parallel[][8] = {
      {0, 0, 64, 32 * kEps, 0, 1, 64, 1},      // slopes eps / 2 apart
      {0, 0, kEps, 1, 5, 0, 5, 1},             // dx = eps is vertical (closed)
      {0, 0, -kEps, 1, 5, 0, 5, 1},            //
      {0, 0, 0, 0.25, 1, 0, 1 + 2 * kEps, 0},  // det = eps / 2, though perpendicular
      {0, 0, 1, 1, 0, 1, 1, 2},                // truly parallel
      {0, 0, 2, 1, 4, 2, 6, 3},                // overlapping
      {3, 3, 3, 3, 0, 0, 1, 0}};               // a point, not a line
  for (const auto& l : parallel) {
    const LineHit h = lines(kEps, l[0], l[1], l[2], l[3], l[4], l[5], l[6], l[7]);
    EXPECT_EQ(h.n, 0) << l[2] << " " << l[3];
    EXPECT_EQ(h.flag, 0) << l[2] << " " << l[3];
  }
}

TEST(D2LInts, random_crossings_lie_on_both_lines_and_flags_match_the_segments) {
  std::mt19937_64 rng(41);
  std::uniform_real_distribution<double> coord(-100, 100);
  int checked = 0;
  for (int i = 0; i < 5000; ++i) {
    const double x1 = coord(rng), y1 = coord(rng), x2 = coord(rng), y2 = coord(rng);
    const double x3 = coord(rng), y3 = coord(rng), x4 = coord(rng), y4 = coord(rng);
    const double cross = (x2 - x1) * (y4 - y3) - (y2 - y1) * (x4 - x3);
    const double sine = cross / (std::hypot(x2 - x1, y2 - y1) * std::hypot(x4 - x3, y4 - y3));
    if (std::fabs(sine) < 0.05 || std::fabs(x2 - x1) < 1e-3 || std::fabs(x4 - x3) < 1e-3)
      continue;
    double x = 0, y = 0;
    int flag = -1;
    ASSERT_EQ(D2LInts(kFine, x1, y1, x2, y2, x3, y3, x4, y4, &x, &y, &flag), 1);
    const double scale = 1.0 + std::hypot(x, y);
    EXPECT_LT(distanceToLine(x, y, x1, y1, x2, y2), 1e-9 * scale);
    EXPECT_LT(distanceToLine(x, y, x3, y3, x4, y4), 1e-9 * scale);
    // Parameters along each segment, judged away from the ends.
    const double t = lengthAlong(x, y, x1, y1, x2, y2) / std::hypot(x2 - x1, y2 - y1);
    const double u = lengthAlong(x, y, x3, y3, x4, y4) / std::hypot(x4 - x3, y4 - y3);
    if (std::fabs(t) < 1e-6 || std::fabs(t - 1) < 1e-6 || std::fabs(u) < 1e-6 ||
        std::fabs(u - 1) < 1e-6)
      continue;
    const int expected = (t >= 0 && t <= 1 ? 1 : 0) + (u >= 0 && u <= 1 ? 2 : 0);
    EXPECT_EQ(flag, expected);
    ++checked;
  }
  EXPECT_GT(checked, 3000);
}

// ---------------------------------------------------------------------------------------------
// DCirLInts

struct Hit {
  int n;
  double xa, ya, xb, yb;
  int flag;
};

Hit cirL(double eps, double x1, double y1, double x2, double y2, double cx, double cy, double r) {
  Hit h{0, kSentinel, kSentinel, kSentinel, kSentinel, -1};
  h.n = DCirLInts(eps, x1, y1, x2, y2, cx, cy, r, &h.xa, &h.ya, &h.xb, &h.yb, &h.flag);
  return h;
}

// Checks the count, both slots (kSentinel: must stay untouched) and the flag.
void expectHit(const Hit& h, int n, double xa, double ya, double xb, double yb, int flag) {
  EXPECT_EQ(h.n, n);
  EXPECT_NEAR(h.xa, xa, 1e-15);
  EXPECT_NEAR(h.ya, ya, 1e-15);
  EXPECT_NEAR(h.xb, xb, 1e-15);
  EXPECT_NEAR(h.yb, yb, 1e-15);
  EXPECT_EQ(h.flag, flag);
}

constexpr double kS = kSentinel;

TEST(DCirLInts, secant_points_come_in_travel_order_from_the_first_point) {
  expectHit(cirL(kEps, -2, 0, 2, 0, 0, 0, 1), 2, -1, 0, 1, 0, 3);
  expectHit(cirL(kEps, 2, 0, -2, 0, 0, 0, 1), 2, 1, 0, -1, 0, 3);
  // Vertical upwards: (5, 1) lies before the segment's start.
  expectHit(cirL(kEps, 5, 2, 5, 9, 5, 4, 3), 2, 5, 1, 5, 7, 2);
  const double h = std::sqrt(2.0);
  expectHit(cirL(kEps, 3, 3, -3, -3, 0, 0, 2), 2, h, h, -h, -h, 3);  // diagonal, downwards
  // Flag bits follow the written points.
  EXPECT_EQ(cirL(kEps, 0, 0, 2, 0, 0, 0, 1).flag, 2);
  EXPECT_EQ(cirL(kEps, -2, 0, 0, 0, 0, 0, 1).flag, 1);
  EXPECT_EQ(cirL(kEps, 0, 0, -2, 0, 0, 0, 1).flag, 2);  // reversed: meets -1 second
  expectHit(cirL(kEps, -0.5, 0, 0.5, 0, 0, 0, 1), 2, -1, 0, 1, 0, 0);
}

struct CirLFlagCase {
  const char* name;
  double x1, x2;  // horizontal line y = 0 through the unit circle
  int flag;
};

std::ostream& operator<<(std::ostream& os, const CirLFlagCase& c) {
  return os << c.name;
}

class DCirLIntsSegmentEnds : public testing::TestWithParam<CirLFlagCase> {};

TEST_P(DCirLIntsSegmentEnds, position_along_the_line_is_tested_strictly) {
  const CirLFlagCase& c = GetParam();
  const Hit h = cirL(kEps, c.x1, 0, c.x2, 0, 0, 0, 1);
  ASSERT_EQ(h.n, 2);
  EXPECT_EQ(h.xa, -1.0);
  EXPECT_EQ(h.xb, 1.0);
  EXPECT_EQ(h.flag, c.flag);
}

INSTANTIATE_TEST_SUITE_P(
    Boundaries, DCirLIntsSegmentEnds,
    testing::Values(CirLFlagCase{"first_point_eps_before_start", -1 + kE, 2, 2},
                    CirLFlagCase{"first_point_half_eps_before_start", -1 + kE / 2, 2, 3},
                    CirLFlagCase{"first_point_two_eps_before_start", -1 + 2 * kE, 2, 2},
                    CirLFlagCase{"second_point_eps_past_end", -2, 1 - kE, 1},
                    CirLFlagCase{"second_point_half_eps_past_end", -2, 1 - kE / 2, 3},
                    CirLFlagCase{"second_point_two_eps_past_end", -2, 1 - 2 * kE, 1}),
    [](const testing::TestParamInfo<CirLFlagCase>& info) { return info.param.name; });

TEST(DCirLInts, tangent_window_is_strict_on_both_sides) {
  // Horizontal lines y = k against the unit circle: the distance to the centre is exactly |k|.
  auto at = [](double k) { return cirL(kEps, -2, k, 2, k, 0, 0, 1); };
  expectHit(at(1 + kEps), 0, kS, kS, kS, kS, 0);
  expectHit(at(1 + kEps / 2), 1, 0, 1 + kEps / 2, kS, kS, 1);  // the foot of the perpendicular
  expectHit(at(1), 1, 0, 1, kS, kS, 1);
  expectHit(at(1 - kEps / 2), 1, 0, 1 - kEps / 2, kS, kS, 1);
  // Exactly r - eps falls between the two strict tests: no intersection at all.
  expectHit(at(1 - kEps), 0, kS, kS, kS, kS, 0);
  const double half = std::sqrt(1 - (1 - 2 * kEps) * (1 - 2 * kEps));
  expectHit(at(1 - 2 * kEps), 2, -half, 1 - 2 * kEps, half, 1 - 2 * kEps, 3);
}

TEST(DCirLInts, tangent_flag_needs_the_foot_strictly_within_eps_of_the_segment) {
  // The tangent point (0, 1) of y = 1 and the unit circle, with the segment ending near it.
  expectHit(cirL(kEps, kEps, 1, 4, 1, 0, 0, 1), 1, 0, 1, kS, kS, 0);
  EXPECT_EQ(cirL(kEps, kEps / 2, 1, 4, 1, 0, 0, 1).flag, 1);
  EXPECT_EQ(cirL(kEps, 2 * kEps, 1, 4, 1, 0, 0, 1).flag, 0);
  EXPECT_EQ(cirL(kEps, -3, 1, -kEps, 1, 0, 0, 1).flag, 0);
  EXPECT_EQ(cirL(kEps, -3, 1, -kEps / 2, 1, 0, 0, 1).flag, 1);
}

TEST(DCirLInts, points_closer_than_eps_merge_into_their_midpoint) {
  // Far from the origin the two points of a tiny circle round to the same double; B is kept.
  const double c = 1e8;
  const Hit h = cirL(1e-9, c - 1, 0, c + 1, 0, c, 0, 5e-9);
  expectHit(h, 1, c, 0, c, 0, 1);
  // A line slightly tilted through the same kind of circle: the x coordinates round together,
  // the y coordinates stay apart (+-h uy, with h = 5e-9 and uy about 0.05) but closer than eps.
  // xa, ya is their midpoint, the foot (c, 0); B stays in xb, yb.
  const Hit tilted = cirL(1e-9, c - 1, -0.05, c + 1, 0.05, c, 0, 5e-9);
  ASSERT_EQ(tilted.n, 1);
  EXPECT_EQ(tilted.xa, c);
  EXPECT_NEAR(tilted.ya, 0.0, 1e-13);
  EXPECT_EQ(tilted.xb, c);
  EXPECT_NEAR(tilted.yb, 5e-9 * 0.05 / std::sqrt(1 + 0.05 * 0.05), 1e-13);
  EXPECT_EQ(tilted.flag, 1);
  // The same circle seen from a segment that stops short: merged, and off the segment.
  const Hit off = cirL(1e-9, c - 3, 0, c - 1, 0, c, 0, 5e-9);
  EXPECT_EQ(off.n, 1);
  EXPECT_EQ(off.flag, 0);
}

TEST(DCirLInts, lines_not_longer_than_eps_and_misses_give_zero_with_flag_reset) {
  expectHit(cirL(kEps, -1, 0, -1 + kEps, 0, 0, 0, 1), 0, kS, kS, kS, kS, 0);
  EXPECT_EQ(cirL(kEps, -1, 0, -1 + 2 * kEps, 0, 0, 0, 1).n, 2);  // length 2 eps is a line
  expectHit(cirL(kEps, -2, 3, 2, 3, 0, 0, 1), 0, kS, kS, kS, kS, 0);
}

// ---------------------------------------------------------------------------------------------
// DArcLInts

Hit arcL(double eps, double x1, double y1, double x2, double y2, double cx, double cy, double r,
         double sa, double ea) {
  Hit h{0, kSentinel, kSentinel, kSentinel, kSentinel, -1};
  h.n = DArcLInts(eps, x1, y1, x2, y2, cx, cy, r, sa, ea, &h.xa, &h.ya, &h.xb, &h.yb, &h.flag);
  return h;
}

void expectFirst(const Hit& h, int n, double xa, double ya, int flag) {
  EXPECT_EQ(h.n, n);
  EXPECT_NEAR(h.xa, xa, 1e-15);
  EXPECT_NEAR(h.ya, ya, 1e-15);
  EXPECT_EQ(h.flag, flag);
}

TEST(DArcLInts, accepted_points_keep_their_order_and_flag_bits) {
  // Both on the arc: the circle result, (1, 0) beyond the segment's end.
  expectHit(arcL(kFine, -2, 0, 0.5, 0, 0, 0, 1, -0.1, kPi + 0.1), 2, -1, 0, 1, 0, 1);
  // The arc around pi holds (-1, 0) only; the rejected point stays in the second slot. From the
  // centre to the right (-1, 0) is not on the segment, so no bit survives.
  expectHit(arcL(kFine, -2, 0, 2, 0, 0, 0, 1, 3 * kPi / 4, 5 * kPi / 4), 1, -1, 0, 1, 0, 1);
  expectHit(arcL(kFine, 0, 0, 2, 0, 0, 0, 1, 3 * kPi / 4, 5 * kPi / 4), 1, -1, 0, 1, 0, 0);
  // The arc around 0 holds (1, 0) only: it moves to the first slot with its own bit; the first
  // point's bit does not carry over when the segment stops before (1, 0).
  expectFirst(arcL(kFine, -2, 0, 2, 0, 0, 0, 1, -kPi / 4, kPi / 4), 1, 1, 0, 1);
  expectFirst(arcL(kFine, -2, 0, 0.5, 0, 0, 0, 1, -kPi / 4, kPi / 4), 1, 1, 0, 0);
  expectFirst(arcL(kFine, 0.5, 0, 2, 0, 0, 0, 1, 7 * kPi / 4, 9 * kPi / 4), 1, 1, 0, 1);
  // A tangent point on the arc counts once.
  expectFirst(arcL(kFine, -2, 1, 2, 1, 0, 0, 1, 0, kPi), 1, 0, 1, 1);
}

TEST(DArcLInts, no_point_on_the_arc_resets_the_flag) {
  EXPECT_EQ(arcL(kFine, -2, 0, 2, 0, 0, 0, 1, 1.0, 2.0).flag, 0);
  EXPECT_EQ(arcL(kFine, -2, 1, 2, 1, 0, 0, 1, kPi, kTwoPi).flag, 0);  // tangent point off the arc
  EXPECT_EQ(arcL(kFine, -2, 3, 2, 3, 0, 0, 1, 0, kTwoPi).flag, 0);    // no circle point
  EXPECT_EQ(arcL(kFine, -2, 0, 2, 0, 0, 0, 1, 1.0, 2.0).n, 0);
  EXPECT_EQ(arcL(kFine, -2, 1, 2, 1, 0, 0, 1, kPi, kTwoPi).n, 0);
}

TEST(DArcLInts, eps_serves_as_the_angular_tolerance_at_the_arc_ends) {
  // (1, 0) has angle 0 and (-1, 0) angle pi.
  auto count = [](double eps, double sa, double ea) {
    return arcL(eps, -2, 0, 2, 0, 0, 0, 1, sa, ea).n;
  };
  EXPECT_EQ(count(kEps, kEps / 2, 1), 1);
  EXPECT_EQ(count(kEps, kEps, 1), 1);
  EXPECT_EQ(count(kEps, 2 * kEps, 1), 0);
  EXPECT_EQ(count(kEps, 2, kPi - kEps / 2), 1);
  EXPECT_EQ(count(kEps, 2, kPi - 2 * kEps), 0);
  EXPECT_EQ(count(kEps, kEps / 2, kPi - kEps / 2), 2);
  // An arc whose end equals its start holds only that angle (x = 1 touches at angle 0).
  EXPECT_EQ(arcL(kFine, 1, -2, 1, 2, 0, 0, 1, 0, 0).n, 1);
  EXPECT_EQ(arcL(kFine, 1, -2, 1, 2, 0, 0, 1, kTwoPi, kTwoPi).n, 1);
  EXPECT_EQ(arcL(kFine, 1, -2, 1, 2, 0, 0, 1, 0.1, 0.1).n, 0);
}

// Random lines through random circles, with a random sweep for the arc: the circle's points lie
// on line and circle in travel order with flags from their position along the segment; the arc
// keeps exactly the circle points on its sweep, the first accepted one in the first slot.
TEST(DArcLInts, random_lines_meet_circle_and_arc_on_both) {
  std::mt19937_64 rng(43);
  std::uniform_real_distribution<double> coord(-100, 100), radius(0.5, 50), unit(-1.5, 1.5),
      turn(0, kTwoPi), sweepDist(0.1, kTwoPi - 0.1);
  int secants = 0, flagsChecked = 0, accepted = 0, rejectedChecked = 0;
  for (int i = 0; i < 5000; ++i) {
    SCOPED_TRACE(i);
    const double cx = coord(rng), cy = coord(rng), r = radius(rng);
    const double x1 = cx + 2 * r * unit(rng), y1 = cy + 2 * r * unit(rng);
    const double x2 = cx + 2 * r * unit(rng), y2 = cy + 2 * r * unit(rng);
    const double sa = turn(rng) - kPi;
    const double ea = sa + sweepDist(rng);
    const double len = std::hypot(x2 - x1, y2 - y1);
    if (len < 1e-3)
      continue;
    const Hit h = cirL(kFine, x1, y1, x2, y2, cx, cy, r);
    const Hit arc = arcL(kFine, x1, y1, x2, y2, cx, cy, r, sa, ea);
    ASSERT_LE(arc.n, h.n);
    const double miss = distanceToLine(cx, cy, x1, y1, x2, y2);
    const double tol = 1e-9 * (1 + std::fabs(cx) + std::fabs(cy) + r);
    if (h.n == 0) {
      EXPECT_GT(miss, r - 2 * kFine);
      continue;
    }
    if (h.n == 1) {
      EXPECT_NEAR(miss, r, 2 * kFine);
      continue;
    }
    ASSERT_EQ(h.n, 2);
    EXPECT_LT(miss, r);
    ++secants;
    for (const auto& [px, py] : {std::pair{h.xa, h.ya}, std::pair{h.xb, h.yb}}) {
      EXPECT_NEAR(std::hypot(px - cx, py - cy), r, tol);
      EXPECT_LT(distanceToLine(px, py, x1, y1, x2, y2), tol);
    }
    const double sA = lengthAlong(h.xa, h.ya, x1, y1, x2, y2);
    const double sB = lengthAlong(h.xb, h.yb, x1, y1, x2, y2);
    EXPECT_LT(sA, sB);  // A is met first going from the first point to the second
    const auto nearEnd = [&](double s) { return std::fabs(s) < 1e-6 || std::fabs(s - len) < 1e-6; };
    if (!nearEnd(sA) && !nearEnd(sB)) {
      EXPECT_EQ(h.flag, (sA > 0 && sA < len ? 1 : 0) + (sB > 0 && sB < len ? 2 : 0));
      ++flagsChecked;
    }
    const int onA = angleWithinSweep(h.xa, h.ya, cx, cy, sa, ea, 1e-7);
    const int onB = angleWithinSweep(h.xb, h.yb, cx, cy, sa, ea, 1e-7);
    if (onA < 0 || onB < 0)
      continue;
    ASSERT_EQ(arc.n, onA + onB);
    ++rejectedChecked;
    if (arc.n == 0) {
      EXPECT_EQ(arc.flag, 0);
      continue;
    }
    EXPECT_EQ(arc.xa, onA ? h.xa : h.xb);
    EXPECT_EQ(arc.ya, onA ? h.ya : h.yb);
    const int bit = onA ? (h.flag & 1) : (h.flag >> 1 & 1);
    EXPECT_EQ(arc.flag, arc.n == 1 ? bit : h.flag);
    ++accepted;
  }
  EXPECT_GT(secants, 2000);
  EXPECT_GT(flagsChecked, 2000);
  EXPECT_GT(accepted, 1000);
  EXPECT_GT(rejectedChecked, 2000);
}

// ---------------------------------------------------------------------------------------------
// D2CirInts

struct Pair {
  int n;
  double xa, ya, xb, yb;
};

Pair cirCir(double eps, double x1, double y1, double r1, double x2, double y2, double r2) {
  Pair p{0, kSentinel, kSentinel, kSentinel, kSentinel};
  p.n = D2CirInts(eps, x1, y1, r1, x2, y2, r2, &p.xa, &p.ya, &p.xb, &p.yb);
  return p;
}

void expectPair(const Pair& p, int n, double xa, double ya, double xb, double yb) {
  EXPECT_EQ(p.n, n);
  EXPECT_NEAR(p.xa, xa, 1e-14);
  EXPECT_NEAR(p.ya, ya, 1e-14);
  EXPECT_NEAR(p.xb, xb, 1e-14);
  EXPECT_NEAR(p.yb, yb, 1e-14);
}

TEST(D2CirInts, first_point_lies_right_of_the_line_between_centres) {
  expectPair(cirCir(kEps, 0, 0, 1, 1, 0, 1), 2, 0.5, -kHalfSqrt3, 0.5, kHalfSqrt3);
  // Swapping the circles reverses the centre line, so the points swap slots.
  expectPair(cirCir(kEps, 1, 0, 1, 0, 0, 1), 2, 0.5, kHalfSqrt3, 0.5, -kHalfSqrt3);
  // Vertical centre line upwards: right of it is +x. Radii 5 and 5 at distance 6: x = 2 +- 4.
  expectPair(cirCir(kEps, 2, 1, 5, 2, 7, 5), 2, 6, 4, -2, 4);
  // Unequal radii: 3-4-5 triangle, centres (0, 0) r 3 and (5, 0) r 4 cross at (1.8, +-2.4).
  expectPair(cirCir(kEps, 0, 0, 3, 5, 0, 4), 2, 1.8, -2.4, 1.8, 2.4);
  // Touching from outside and, both ways round, from inside: the foot of the common chord.
  expectPair(cirCir(kEps, 0, 0, 1, 2, 0, 1), 1, 1, 0, kSentinel, kSentinel);
  expectPair(cirCir(kEps, 0, 0, 2, 1, 0, 1), 1, 2, 0, kSentinel, kSentinel);
  expectPair(cirCir(kEps, 1, 0, 1, 0, 0, 2), 1, 2, 0, kSentinel, kSentinel);
}

struct CirCirCase {
  const char* name;
  double r1, d, r2;  // first circle at the origin, second at (d, 0)
  int n;
};

std::ostream& operator<<(std::ostream& os, const CirCirCase& c) {
  return os << c.name;
}

class D2CirIntsBoundaries : public testing::TestWithParam<CirCirCase> {};

TEST_P(D2CirIntsBoundaries, counts_decide_on_closed_squared_normalised_distances) {
  const CirCirCase& c = GetParam();
  const Pair p = cirCir(kEps, 0, 0, c.r1, c.d, 0, c.r2);
  ASSERT_EQ(p.n, c.n);
  // The radical line x = (d^2 + r1^2 - r2^2) / 2d carries every reported point.
  const double mx = (c.d * c.d + c.r1 * c.r1 - c.r2 * c.r2) / (2 * c.d);
  if (p.n >= 1) {
    EXPECT_NEAR(p.xa, mx, 1e-14);
  }
  if (p.n == 1) {
    EXPECT_EQ(p.ya, 0.0);
  }
  if (p.n == 2) {
    const double half = std::sqrt(c.r1 * c.r1 - mx * mx);
    EXPECT_NEAR(p.ya, -half, 1e-12);
    EXPECT_NEAR(p.xb, mx, 1e-14);
    EXPECT_NEAR(p.yb, half, 1e-12);
  }
}

INSTANTIATE_TEST_SUITE_P(Outside, D2CirIntsBoundaries,
                         testing::Values(CirCirCase{"apart_by_two_eps", 1, 2 + 2 * kE, 1, 0},
                                         CirCirCase{"apart_by_eps", 1, 2 + kE, 1, 1},
                                         CirCirCase{"apart_by_half_eps", 1, 2 + kE / 2, 1, 1},
                                         CirCirCase{"overlap_by_half_eps", 1, 2 - kE / 2, 1, 1},
                                         CirCirCase{"overlap_by_eps", 1, 2 - kE, 1, 1},
                                         CirCirCase{"overlap_by_two_eps", 1, 2 - 2 * kE, 1, 2}),
                         [](const testing::TestParamInfo<CirCirCase>& info) {
                           return info.param.name;
                         });

INSTANTIATE_TEST_SUITE_P(Inside, D2CirIntsBoundaries,
                         testing::Values(CirCirCase{"nested_by_two_eps", 2, 1 - 2 * kE, 1, 0},
                                         CirCirCase{"nested_by_eps", 2, 1 - kE, 1, 1},
                                         CirCirCase{"nested_by_half_eps", 2, 1 - kE / 2, 1, 1},
                                         CirCirCase{"crossing_by_eps", 2, 1 + kE, 1, 1},
                                         CirCirCase{"crossing_by_two_eps", 2, 1 + 2 * kE, 1, 2},
                                         CirCirCase{"small_inside_large", 1, 1 - 2 * kE, 2, 0}),
                         [](const testing::TestParamInfo<CirCirCase>& info) {
                           return info.param.name;
                         });

TEST(D2CirInts, concentric_and_too_small_circles_never_meet) {
  EXPECT_EQ(cirCir(kEps, 3, 4, 1, 3, 4, 1).n, 0);
  EXPECT_EQ(cirCir(kEps, 3, 4, 1, 3, 4, 2).n, 0);
  // Radii differing by exactly eps pass the nesting test; still no point.
  EXPECT_EQ(cirCir(kEps, 0, 0, 1, 0, 0, 1 + kEps).n, 0);
  EXPECT_EQ(cirCir(kEps, 0, 0, 0, 0, 0, 0).n, 0);
  // Radii of 0, or so small that their square is no longer a normal double, would make the
  // radius-normalised distances infinite; such circles ten units apart must not "touch".
  EXPECT_EQ(cirCir(kEps, 0, 0, 0, 10, 0, 0).n, 0);
  EXPECT_EQ(cirCir(kEps, 0, 0, 1e-200, 10, 0, 1e-200).n, 0);
  EXPECT_EQ(cirCir(1e-9, 0, 0, 1e-160, 10, 0, 1e-160).n, 0);
  EXPECT_EQ(cirCir(1e-9, 0, 0, 0, 10, 0, 1e-170).n, 0);
}

TEST(D2CirInts, chord_discriminant_is_a_fourth_power_compared_with_eps_unscaled) {
  // Circles of radius 0.01 whose centres are 0.018 apart cross at a clear angle, but D^2 times
  // the squared half chord is about 6e-9, below eps = 1e-3: reported as touching, at the foot.
  const Pair p = cirCir(1e-3, 0, 0, 0.01, 0.018, 0, 0.01);
  ASSERT_EQ(p.n, 1);
  EXPECT_NEAR(p.xa, 0.009, 1e-17);
  EXPECT_EQ(p.ya, 0.0);
}

// ---------------------------------------------------------------------------------------------
// D2ArcInts

Pair arcArc(double eps, double x1, double y1, double r1, double s1, double e1, double x2, double y2,
            double r2, double s2, double e2) {
  Pair p{0, kSentinel, kSentinel, kSentinel, kSentinel};
  p.n = D2ArcInts(eps, x1, y1, r1, s1, e1, x2, y2, r2, s2, e2, &p.xa, &p.ya, &p.xb, &p.yb);
  return p;
}

// Circles (0, 0) r 1 and (1, 0) r 1 cross at A = (0.5, -sqrt3/2) and B = (0.5, sqrt3/2). Seen from
// the first centre A lies at -pi/3 and B at pi/3; from the second at -2pi/3 and 2pi/3.
Pair unitArcs(double s1, double e1, double s2, double e2) {
  return arcArc(kFine, 0, 0, 1, s1, e1, 1, 0, 1, s2, e2);
}

TEST(D2ArcInts, accepted_points_fill_the_first_slot_first) {
  // Full arcs behave like circles.
  expectPair(unitArcs(0, kTwoPi, -kPi, kPi), 2, 0.5, -kHalfSqrt3, 0.5, kHalfSqrt3);
  // Only B counts (upper right quarter of the first, or pi/2..pi of the second): first slot.
  EXPECT_NEAR(unitArcs(0, kHalfPi, 0, kTwoPi).ya, kHalfSqrt3, 1e-15);
  EXPECT_EQ(unitArcs(0, kHalfPi, 0, kTwoPi).n, 1);
  EXPECT_NEAR(unitArcs(0, kTwoPi, kHalfPi, kPi).ya, kHalfSqrt3, 1e-15);
  EXPECT_EQ(unitArcs(0, kTwoPi, kHalfPi, kPi).n, 1);
  // Only A counts: the rejected B stays in the second slot.
  expectPair(unitArcs(-kHalfPi, 0, 0, kTwoPi), 1, 0.5, -kHalfSqrt3, 0.5, kHalfSqrt3);
  // A point must lie on both arcs.
  EXPECT_EQ(unitArcs(-kHalfPi, 0, kHalfPi, kPi).n, 0);
  EXPECT_EQ(unitArcs(1.5, 5.0, 0, kTwoPi).n, 0);
  // An arc whose end equals its start holds only that angle.
  EXPECT_NEAR(unitArcs(kPi / 3, kPi / 3, 0, kTwoPi).ya, kHalfSqrt3, 1e-15);
  EXPECT_NEAR(unitArcs(-kPi / 3, -kPi / 3, 0, kTwoPi).ya, -kHalfSqrt3, 1e-15);
  EXPECT_EQ(unitArcs(-kPi / 3, -kPi / 3, 0, kTwoPi).n, 1);
  EXPECT_EQ(unitArcs(1.0, 1.0, 0, kTwoPi).n, 0);
}

TEST(D2ArcInts, touching_point_counts_when_on_both_arcs) {
  // Circles (0, 0) r 1 and (2, 0) r 1 touch at (1, 0): angle 0 from the first, pi from the second.
  expectPair(arcArc(kFine, 0, 0, 1, -0.1, 0.1, 2, 0, 1, 3.0, 3.3), 1, 1, 0, kSentinel, kSentinel);
  EXPECT_EQ(arcArc(kFine, 0, 0, 1, -0.1, 0.1, 2, 0, 1, 0.0, 1.0).n, 0);
  EXPECT_EQ(arcArc(kFine, 0, 0, 1, 0.5, 6.0, 2, 0, 1, 3.0, 3.3).n, 0);
  EXPECT_EQ(arcArc(kFine, 0, 0, 1, 0, 1, 5, 0, 1, 0, kTwoPi).n, 0);
}

// Random circle pairs with random sweeps: crossing circles meet in two points on both, the
// first right of the line between the centres; apart circles do not meet; the arcs keep exactly
// the points on both sweeps, the first accepted one in the first slot.
TEST(D2ArcInts, random_circles_and_arcs_meet_on_both) {
  std::mt19937_64 rng(45);
  std::uniform_real_distribution<double> coord(-100, 100), radius(0.5, 50), unit(-1, 1),
      turn(0, kTwoPi), sweepDist(0.1, kTwoPi - 0.1);
  int crossings = 0, accepted = 0;
  for (int i = 0; i < 5000; ++i) {
    SCOPED_TRACE(i);
    const double x1 = coord(rng), y1 = coord(rng), r1 = radius(rng), r2 = radius(rng);
    const double x2 = x1 + (r1 + r2) * unit(rng);
    const double y2 = y1 + (r1 + r2) * unit(rng);
    const double s1 = turn(rng), e1 = s1 + sweepDist(rng);
    const double s2 = turn(rng) - kPi, e2 = s2 + sweepDist(rng);
    const double d = std::hypot(x2 - x1, y2 - y1);
    const Pair p = cirCir(kFine, x1, y1, r1, x2, y2, r2);
    if (d > r1 + r2 + 1e-6 || d < std::fabs(r1 - r2) - 1e-6) {
      EXPECT_EQ(p.n, 0);
    }
    if (!(d < r1 + r2 - 1e-6 && d > std::fabs(r1 - r2) + 1e-6))
      continue;
    ASSERT_EQ(p.n, 2);
    ++crossings;
    const double tol = 1e-9 * (1 + std::fabs(x1) + std::fabs(y1) + r1 + r2);
    for (const auto& [px, py] : {std::pair{p.xa, p.ya}, std::pair{p.xb, p.yb}}) {
      EXPECT_NEAR(std::hypot(px - x1, py - y1), r1, tol);
      EXPECT_NEAR(std::hypot(px - x2, py - y2), r2, tol);
    }
    // Cross product of the centre line with each point: negative is to the right.
    EXPECT_LT((x2 - x1) * (p.ya - y1) - (y2 - y1) * (p.xa - x1), 0.0);
    EXPECT_GT((x2 - x1) * (p.yb - y1) - (y2 - y1) * (p.xb - x1), 0.0);

    const int a1 = angleWithinSweep(p.xa, p.ya, x1, y1, s1, e1, 1e-7);
    const int a2 = angleWithinSweep(p.xa, p.ya, x2, y2, s2, e2, 1e-7);
    const int b1 = angleWithinSweep(p.xb, p.yb, x1, y1, s1, e1, 1e-7);
    const int b2 = angleWithinSweep(p.xb, p.yb, x2, y2, s2, e2, 1e-7);
    if (a1 < 0 || a2 < 0 || b1 < 0 || b2 < 0)
      continue;
    const Pair arcs = arcArc(kFine, x1, y1, r1, s1, e1, x2, y2, r2, s2, e2);
    const bool onA = a1 && a2, onB = b1 && b2;
    ASSERT_EQ(arcs.n, onA + onB);
    if (arcs.n == 0)
      continue;
    EXPECT_EQ(arcs.xa, onA ? p.xa : p.xb);
    EXPECT_EQ(arcs.ya, onA ? p.ya : p.yb);
    ++accepted;
  }
  EXPECT_GT(crossings, 2500);
  EXPECT_GT(accepted, 1000);
}

// ---------------------------------------------------------------------------------------------
// Robustness

TEST(Intersections, non_finite_and_huge_input_returns_promptly_with_defined_flags) {
  const double bad[] = {kNaN, kInf, -kInf, 1e300, -1e300, 0.0};
  for (double v : bad) {
    for (int slot = 0; slot < 11; ++slot) {
      double a[11] = {kFine, -1, 0.5, 1, -0.5, 0.25, 0.1, 1.0, 0.0, 4.0, 0.0};
      a[slot] = v;
      double x = 0, y = 0, xb = 0, yb = 0;
      int flag = -1;
      EXPECT_LE(D2LInts(a[0], a[1], a[2], a[3], a[4], a[5], a[6], a[7], a[8], &x, &y, &flag), 1);
      EXPECT_GE(flag, 0);
      EXPECT_LE(flag, 3);
      flag = -1;
      EXPECT_LE(DCirLInts(a[0], a[1], a[2], a[3], a[4], a[5], a[6], a[7], &x, &y, &xb, &yb, &flag),
                2);
      EXPECT_GE(flag, 0);
      EXPECT_LE(flag, 3);
      flag = -1;
      EXPECT_LE(DArcLInts(a[0], a[1], a[2], a[3], a[4], a[5], a[6], a[7], a[8], a[9], &x, &y, &xb,
                          &yb, &flag),
                2);
      EXPECT_GE(flag, 0);
      EXPECT_LE(flag, 3);
      EXPECT_LE(D2CirInts(a[0], a[1], a[2], a[3], a[4], a[5], a[6], &x, &y, &xb, &yb), 2);
      EXPECT_LE(D2ArcInts(a[0], a[1], a[2], a[3], a[8], a[9], a[4], a[5], a[6], a[10], a[9], &x, &y,
                          &xb, &yb),
                2);
    }
  }
}

}  // namespace
