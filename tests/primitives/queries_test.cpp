// Tarnsysm: planar computational geometry for 2D drafting.
// Tests of the point queries: on a segment or arc, perpendicular feet, points along segments and
// arcs, nearest points.
#include <Tarnsysm.h>

#include "test_support.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <ostream>
#include <random>

namespace {

constexpr double kEps = 1e-6;
// A power of two, so that eps / 2, 2 eps and eps^2 are exact and boundaries fall where intended.
constexpr double kDyadicEps = 1.0 / (1 << 20);
using namespace tarnsysm::test;
constexpr double kSentinel = -777.0;

double angleGap(double a, double b) {
  return std::fabs(std::remainder(a - b, kTwoPi));
}

// ---- DPointOnLine -----------------------------------------------------------------------

struct OnLineCase {
  const char* name;
  double px, py;
  int expected;
};

std::ostream& operator<<(std::ostream& os, const OnLineCase& c) {
  return os << c.name;
}

class DPointOnLineBoundaries : public ::testing::TestWithParam<OnLineCase> {};

// The horizontal segment (0,0)-(1,0) with eps a power of two: distances and box edges exact.
TEST_P(DPointOnLineBoundaries, horizontal_segment) {
  const OnLineCase& c = GetParam();
  EXPECT_EQ(DPointOnLine(kDyadicEps, c.px, c.py, 0, 0, 1, 0), c.expected);
  // The segment's direction does not matter.
  EXPECT_EQ(DPointOnLine(kDyadicEps, c.px, c.py, 1, 0, 0, 0), c.expected);
}

constexpr double e = kDyadicEps;
INSTANTIATE_TEST_SUITE_P(
    DPointOnLine, DPointOnLineBoundaries,
    ::testing::Values(OnLineCase{"on_the_segment", 0.5, 0, 1},
                      OnLineCase{"off_by_exactly_eps", 0.5, e, 1},
                      OnLineCase{"off_by_half_eps", 0.5, -e / 2, 1},
                      OnLineCase{"off_by_two_eps", 0.5, 2 * e, 0},
                      OnLineCase{"beyond_the_end_by_eps", 1 + e, 0, 1},
                      OnLineCase{"beyond_the_end_by_half_eps", 1 + e / 2, 0, 1},
                      OnLineCase{"beyond_the_end_by_two_eps", 1 + 2 * e, 0, 0},
                      OnLineCase{"before_the_start_by_eps", -e, 0, 1},
                      OnLineCase{"before_the_start_by_two_eps", -2 * e, 0, 0},
                      OnLineCase{"not_a_number", kNaN, 0, 0}),
    [](const ::testing::TestParamInfo<OnLineCase>& info) { return info.param.name; });

TEST(DPointOnLine, slanted_segment_measures_the_perpendicular_distance) {
  // (0,0)-(3,4): the unit normal is (-0.8, 0.6).
  const double d = 0.5 * kEps;
  EXPECT_EQ(DPointOnLine(kEps, 1.5 - 0.8 * d, 2 + 0.6 * d, 0, 0, 3, 4), 1);
  const double far = 2 * kEps;
  EXPECT_EQ(DPointOnLine(kEps, 1.5 - 0.8 * far, 2 + 0.6 * far, 0, 0, 3, 4), 0);
  // On the line but beyond the end point.
  EXPECT_EQ(DPointOnLine(kEps, 6, 8, 0, 0, 3, 4), 0);
}

TEST(DPointOnLine, segment_shorter_than_eps_is_a_point_with_a_box) {
  const double eps = kDyadicEps;
  // Segment of length eps / 4 at (5, 5); no line test, only the box enlarged by eps.
  EXPECT_EQ(DPointOnLine(eps, 5 + eps, 5 - eps, 5, 5, 5 + eps / 4, 5), 1);
  EXPECT_EQ(DPointOnLine(eps, 5 - 2 * eps, 5, 5, 5, 5 + eps / 4, 5), 0);
  EXPECT_EQ(DPointOnLine(eps, 5, 5 + 2 * eps, 5, 5, 5, 5), 0);
}

// ---- DPointOnArc ------------------------------------------------------------------------

TEST(DPointOnArc, radial_and_angular_tolerances_are_closed_at_eps) {
  const double eps = kDyadicEps;
  // Quarter arc of radius 2 about (1, 1) from 0 to pi / 2; points on its start ray.
  for (auto [dr, expected] :
       {std::pair{0.0, 1}, {eps, 1}, {eps / 2, 1}, {2 * eps, 0}, {-eps, 1}, {-2 * eps, 0}})
    EXPECT_EQ(DPointOnArc(eps, 1 + 2 + dr, 1, 1, 1, 2, 0.0, kHalfPi), expected) << dr;
  // The unit arc from 0.5 to 2.0 probed by angle.
  for (auto [angle, expected] : {std::pair{1.0, 1},
                                 {2.0 + kEps / 2, 1},
                                 {2.0 + 2 * kEps, 0},
                                 {0.5 - kEps / 2, 1},
                                 {0.5 - 2 * kEps, 0}})
    EXPECT_EQ(DPointOnArc(kEps, std::cos(angle), std::sin(angle), 0, 0, 1, 0.5, 2.0), expected)
        << angle;
}

TEST(DPointOnArc, points_below_the_centre_get_angles_past_pi) {
  // The lower right quarter, 3 pi / 2 to 2 pi, and an arc through 0.
  EXPECT_EQ(DPointOnArc(kEps, std::cos(-0.5), std::sin(-0.5), 0, 0, 1, 3 * kHalfPi, kTwoPi), 1);
  EXPECT_EQ(DPointOnArc(kEps, std::cos(0.5), std::sin(0.5), 0, 0, 1, 3 * kHalfPi, kTwoPi), 0);
  EXPECT_EQ(DPointOnArc(kEps, std::cos(-0.5), std::sin(-0.5), 0, 0, 1, 3 * kHalfPi, kHalfPi), 1);
  EXPECT_EQ(DPointOnArc(kEps, -1, 0, 0, 0, 1, 3 * kHalfPi, kHalfPi), 0);
}

TEST(DPointOnArc, cosine_is_taken_against_the_radius) {
  // On the start ray at 0.2 rad but eps / 2 outside the circle: the cosine (1 + eps / 2) cos 0.2
  // reads an angle about 2.5 eps below the start, so the point is off the arc; on the circle it
  // is on.
  const double a = 0.2;
  const double out = 1 + kEps / 2;
  EXPECT_EQ(DPointOnArc(kEps, out * std::cos(a), out * std::sin(a), 0, 0, 1, a, 1.0), 0);
  EXPECT_EQ(DPointOnArc(kEps, std::cos(a), std::sin(a), 0, 0, 1, a, 1.0), 1);
  // On the x axis the cosine is clamped: c >= 1 reads angle 0.
  EXPECT_EQ(DPointOnArc(kEps, 1 + kEps / 2, 0, 0, 0, 1, 0, 1.0), 1);
}

TEST(DPointOnArc, radius_below_eps_is_never_on) {
  EXPECT_EQ(DPointOnArc(kEps, 0, 0, 0, 0, kEps / 2, 0, kTwoPi), 0);
  EXPECT_EQ(DPointOnArc(kEps, kNaN, 0, 0, 0, 1, 0, kTwoPi), 0);
}

// ---- DPointVerL -------------------------------------------------------------------------

TEST(DPointVerL, foot_and_position_along_the_segment) {
  const double eps = kDyadicEps;
  double fx = 0, fy = 0;
  EXPECT_EQ(DPointVerL(eps, 3, 4, 0, 0, 10, 0, &fx, &fy), 1);
  EXPECT_EQ(fx, 3.0);
  EXPECT_EQ(fy, 0.0);
  EXPECT_EQ(DPointVerL(eps, 10, 7, 0, 0, 10, 0, &fx, &fy), 1);  // foot exactly at P2
  EXPECT_EQ(DPointVerL(eps, 10 + eps / 2, 7, 0, 0, 10, 0, &fx, &fy), 1);
  EXPECT_EQ(DPointVerL(eps, 10 + eps, 7, 0, 0, 10, 0, &fx, &fy), 1);  // closed at len + eps
  EXPECT_EQ(DPointVerL(eps, 10 + 2 * eps, 7, 0, 0, 10, 0, &fx, &fy), 2);
  EXPECT_EQ(fx, 10 + 2 * eps);  // the foot is written when outside too
  EXPECT_EQ(DPointVerL(eps, -eps / 2, 7, 0, 0, 10, 0, &fx, &fy), 1);
  EXPECT_EQ(DPointVerL(eps, -eps, 7, 0, 0, 10, 0, &fx, &fy), 1);
  EXPECT_EQ(DPointVerL(eps, -2 * eps, 7, 0, 0, 10, 0, &fx, &fy), 2);
}

TEST(DPointVerL, slanted_segment_foot) {
  double fx = 0, fy = 0;
  // Foot of (0, 5) on the line through (0,0) and (3,4): 4 units along (0.6, 0.8).
  EXPECT_EQ(DPointVerL(kEps, 0, 5, 0, 0, 3, 4, &fx, &fy), 1);
  EXPECT_NEAR(fx, 2.4, 1e-15);
  EXPECT_NEAR(fy, 3.2, 1e-15);
}

TEST(DPointVerL, segment_shorter_than_eps_fails_and_writes_nothing) {
  double fx = kSentinel, fy = kSentinel;
  EXPECT_EQ(DPointVerL(kEps, 3, 4, 1, 1, 1 + kEps / 2, 1, &fx, &fy), 0);
  EXPECT_EQ(DPointVerL(kEps, 3, 4, kNaN, 1, 2, 1, &fx, &fy), 0);
  EXPECT_EQ(fx, kSentinel);
  EXPECT_EQ(fy, kSentinel);
  // Exactly eps long is a segment.
  EXPECT_EQ(DPointVerL(kDyadicEps, 0, 1, 0, 0, kDyadicEps, 0, &fx, &fy), 1);
}

// ---- DPonLdisP --------------------------------------------------------------------------

TEST(DPonLdisP, distance_along_the_segment_direction_either_way) {
  double x = 0, y = 0;
  EXPECT_EQ(DPonLdisP(kEps, 10, 0, 0, 3, 4, &x, &y), 1);
  EXPECT_NEAR(x, 6, 1e-14);
  EXPECT_NEAR(y, 8, 1e-14);
  EXPECT_EQ(DPonLdisP(kEps, -5, 1, 1, 4, 5, &x, &y), 1);
  EXPECT_NEAR(x, -2, 1e-14);
  EXPECT_NEAR(y, -3, 1e-14);
  double sx = kSentinel, sy = kSentinel;
  EXPECT_EQ(DPonLdisP(kEps, 1, 2, 2, 2, 2 + kEps / 2, &sx, &sy), 0);
  EXPECT_EQ(sx, kSentinel);
  EXPECT_EQ(sy, kSentinel);
}

// ---- DPnearLine -------------------------------------------------------------------------

TEST(DPnearLine, parameter_tolerance_snaps_inward_to_the_ends) {
  const double eps = kDyadicEps;
  // Segment (0,0)-(1,0): the parameter is the point's x; exactly eps is no longer snapped.
  for (auto [px, nearest] : {std::pair{eps / 2, 0.0},
                             {eps, eps},
                             {2 * eps, 2 * eps},
                             {1 - eps / 2, 1.0},
                             {1 - eps, 1 - eps},
                             {-4.0, 0.0},
                             {9.0, 1.0}}) {
    double nx = kSentinel, ny = kSentinel;
    EXPECT_EQ(DPnearLine(eps, px, px > 5 ? -3 : 3, 0, 0, 1, 0, &nx, &ny), 1);
    EXPECT_EQ(nx, nearest) << px;
    EXPECT_EQ(ny, 0.0) << px;
  }
}

TEST(DPnearLine, parameter_tolerance_does_not_scale_with_length) {
  // On a segment 1000 long, t = 0.5 eps is half a thousandth of a unit from P1, and snaps.
  double nx = 0, ny = 0;
  EXPECT_EQ(DPnearLine(1e-6, 0.5e-3, 1, 0, 0, 1000, 0, &nx, &ny), 1);
  EXPECT_EQ(nx, 0.0);
}

TEST(DPnearLine, segment_shorter_than_eps_fails_and_writes_nothing) {
  double nx = kSentinel, ny = kSentinel;
  EXPECT_EQ(DPnearLine(kEps, 0, 0, 1, 1, 1, 1 + kEps / 2, &nx, &ny), 0);
  EXPECT_EQ(DPnearLine(kEps, 0, 0, 1, 1, kNaN, 1, &nx, &ny), 0);
  EXPECT_EQ(nx, kSentinel);
  EXPECT_EQ(ny, kSentinel);
}

// ---- DPnearArc --------------------------------------------------------------------------

TEST(DPnearArc, point_off_the_arc_snaps_to_the_nearer_end_by_angle) {
  double nx = 0, ny = 0;
  // Upper unit half circle; (0.1, -1) is about 1.47 rad from the start and 1.67 from the end.
  ASSERT_EQ(DPnearArc(kEps, 0.1, -1, 0, 0, 1, 0, kPi, &nx, &ny), 1);
  EXPECT_NEAR(nx, 1.0, 1e-15);
  EXPECT_NEAR(ny, 0.0, 1e-15);
  ASSERT_EQ(DPnearArc(kEps, -0.1, -1, 0, 0, 1, 0, kPi, &nx, &ny), 1);
  EXPECT_NEAR(nx, -1.0, 1e-15);
  EXPECT_NEAR(ny, 0.0, 1e-15);
}

TEST(DPnearArc, tie_within_eps_goes_to_the_start) {
  double nx = 0, ny = 0;
  auto nearestFromAngle = [&](double angle) {
    EXPECT_EQ(DPnearArc(kEps, 2 * std::cos(angle), 2 * std::sin(angle), 0, 0, 1, 0, kPi, &nx, &ny),
              1);
    return nx;
  };
  // Straight below the centre both ends are pi / 2 away.
  EXPECT_NEAR(nearestFromAngle(3 * kHalfPi), 1.0, 1e-15);
  // Nearer the end by eps / 2 in angle (a quarter eps each way): still the start.
  EXPECT_NEAR(nearestFromAngle(3 * kHalfPi - kEps / 4), 1.0, 1e-15);
  // Nearer the end by 4 eps: the end.
  EXPECT_NEAR(nearestFromAngle(3 * kHalfPi - 2 * kEps), -1.0, 1e-15);
}

TEST(DPnearArc, radial_projection_on_an_arc_through_zero) {
  double nx = 0, ny = 0;
  // From 3 pi / 2 up to pi / 2 (given below the start, lifted by one turn), radius 2 about (1, 1).
  ASSERT_EQ(DPnearArc(kEps, 5, 1, 1, 1, 2, 3 * kHalfPi, kHalfPi, &nx, &ny), 1);
  EXPECT_NEAR(nx, 3.0, 1e-15);
  EXPECT_NEAR(ny, 1.0, 1e-15);
  ASSERT_EQ(DPnearArc(kEps, 4, -2, 1, 1, 2, 3 * kHalfPi, kHalfPi, &nx, &ny), 1);
  EXPECT_NEAR(nx, 1 + std::sqrt(2.0), 1e-14);
  EXPECT_NEAR(ny, 1 - std::sqrt(2.0), 1e-14);
}

TEST(DPnearArc, point_on_the_centre_or_tiny_radius_fails_and_writes_nothing) {
  double nx = kSentinel, ny = kSentinel;
  EXPECT_EQ(DPnearArc(kEps, 1 + kEps / 2, 1, 1, 1, 2, 0, kPi, &nx, &ny), 0);
  EXPECT_EQ(DPnearArc(kEps, 5, 5, 1, 1, kEps / 2, 0, kPi, &nx, &ny), 0);
  EXPECT_EQ(DPnearArc(kEps, kNaN, 5, 1, 1, 2, 0, kPi, &nx, &ny), 0);
  EXPECT_EQ(nx, kSentinel);
  EXPECT_EQ(ny, kSentinel);
}

TEST(DPnearArc, no_sampled_point_of_the_arc_is_nearer) {
  std::mt19937 rng(5150);
  std::uniform_real_distribution<double> coord(-10.0, 10.0);
  std::uniform_real_distribution<double> unit(0.0, 1.0);
  int checked = 0;
  for (int i = 0; i < 300; ++i) {
    const double cx = coord(rng), cy = coord(rng);
    const double r = 0.5 + 5 * unit(rng);
    const double sa = kTwoPi * unit(rng);
    const double ea = sa + kTwoPi * unit(rng);  // may pass 2 pi
    const double px = coord(rng), py = coord(rng);
    double nx = 0, ny = 0;
    if (std::hypot(px - cx, py - cy) < 1e-3)
      continue;
    ASSERT_EQ(DPnearArc(1e-9, px, py, cx, cy, r, sa, ea, &nx, &ny), 1);
    // The result is a point of the arc.
    EXPECT_NEAR(std::hypot(nx - cx, ny - cy), r, 1e-12);
    EXPECT_EQ(ValidAngle(1e-9, sa, ea, std::atan2(ny - cy, nx - cx)), 1) << i;
    const double best = std::hypot(px - nx, py - ny);
    for (int k = 0; k <= 720; ++k) {
      const double a = sa + (ea - sa) * k / 720.0;
      const double sampled = std::hypot(px - cx - r * std::cos(a), py - cy - r * std::sin(a));
      ASSERT_LE(best, sampled + 1e-8) << "case " << i << " sample " << k;
    }
    ++checked;
  }
  EXPECT_GT(checked, 150);  // the filters above must leave most cases
}

// ---- DPonAperK --------------------------------------------------------------------------

TEST(DPonAperK, fraction_bounds_are_exact) {
  double centre[2] = {1, 2};
  double x = kSentinel, y = kSentinel;
  EXPECT_EQ(DPonAperK(kEps, std::nextafter(1.0, 2.0), centre, 3, 0, kPi, &x, &y), 0);
  EXPECT_EQ(DPonAperK(kEps, -std::numeric_limits<double>::denorm_min(), centre, 3, 0, kPi, &x, &y),
            0);
  EXPECT_EQ(DPonAperK(kEps, kNaN, centre, 3, 0, kPi, &x, &y), 0);
  EXPECT_EQ(x, kSentinel);
  EXPECT_EQ(y, kSentinel);
  ASSERT_EQ(DPonAperK(kEps, 1.0, centre, 3, 0, kPi, &x, &y), 1);  // the end point
  EXPECT_NEAR(x, -2, 1e-15);
  EXPECT_NEAR(y, 2, 1e-15);
  ASSERT_EQ(DPonAperK(kEps, 0.0, centre, 3, 0, kPi, &x, &y), 1);
  EXPECT_NEAR(x, 4, 1e-15);
  EXPECT_NEAR(y, 2, 1e-15);
}

TEST(DPonAperK, sweep_through_zero_and_far_turns) {
  double centre[2] = {0, 0};
  double x = 0, y = 0;
  ASSERT_EQ(DPonAperK(kEps, 0.5, centre, 1, 3 * kHalfPi, 5 * kHalfPi, &x, &y), 1);
  EXPECT_NEAR(x, 1, 1e-15);
  EXPECT_NEAR(y, 0, 1e-15);
  // Angles many turns away are brought back without spinning.
  ASSERT_EQ(DPonAperK(kEps, 0.5, centre, 1, 1e6 * kTwoPi, 1e6 * kTwoPi + kPi, &x, &y), 1);
  EXPECT_NEAR(x, 0, 1e-8);
  EXPECT_NEAR(y, 1, 1e-8);
  EXPECT_EQ(DPonAperK(kEps, 0.5, centre, 1, -1e300, 1e300, &x, &y), 1);
  EXPECT_EQ(DPonAperK(kEps, 0.5, centre, 1, kInf, kInf, &x, &y), 1);
}

// ---- DPonPLperV -------------------------------------------------------------------------

TEST(DPonPLperV, straight_segment_point_and_direction) {
  double p1[2] = {1, 1};
  double p2[2] = {4, 5};
  double res[3] = {0, 0, 0};
  ASSERT_EQ(DPonPLperV(kEps, 0.4, p1, p2, 0.0, res), 1);
  EXPECT_NEAR(res[0], 2.2, 1e-15);
  EXPECT_NEAR(res[1], 2.6, 1e-15);
  EXPECT_NEAR(res[2], std::atan2(4.0, 3.0), 1e-15);
}

struct AlongArcCase {
  const char* name;
  double bulge, k;
  double x, y, dir;
};

std::ostream& operator<<(std::ostream& os, const AlongArcCase& c) {
  return os << c.name;
}

class DPonPLperVHalfCircles : public ::testing::TestWithParam<AlongArcCase> {};

// Half circles on the chord (0,0)-(2,0): bulge 1 runs below it, bulge -1 above it.
TEST_P(DPonPLperVHalfCircles, point_and_direction_of_travel) {
  const AlongArcCase& c = GetParam();
  double p1[2] = {0, 0};
  double p2[2] = {2, 0};
  double res[3] = {0, 0, 0};
  ASSERT_EQ(DPonPLperV(kEps, c.k, p1, p2, c.bulge, res), 1);
  EXPECT_NEAR(res[0], c.x, 1e-14);
  EXPECT_NEAR(res[1], c.y, 1e-14);
  EXPECT_LT(angleGap(res[2], c.dir), 1e-14);
  EXPECT_GE(res[2], -kEps);
  EXPECT_LT(res[2], kTwoPi);
}

INSTANTIATE_TEST_SUITE_P(
    DPonPLperV, DPonPLperVHalfCircles,
    ::testing::Values(AlongArcCase{"ccw_start_heads_down", 1, 0, 0, 0, 3 * kHalfPi},
                      AlongArcCase{"ccw_middle_heads_right", 1, 0.5, 1, -1, 0},
                      AlongArcCase{"ccw_end_heads_up", 1, 1, 2, 0, kHalfPi},
                      AlongArcCase{"cw_start_heads_up", -1, 0, 0, 0, kHalfPi},
                      AlongArcCase{"cw_middle_heads_right", -1, 0.5, 1, 1, 0},
                      // Comes out as -pi / 2 and is lifted into [-eps, 2 pi).
                      AlongArcCase{"cw_end_heads_down_lifted", -1, 1, 2, 0, 3 * kHalfPi}),
    [](const ::testing::TestParamInfo<AlongArcCase>& info) { return info.param.name; });

TEST(DPonPLperV, fraction_and_length_limits) {
  const double eps = kDyadicEps;
  double p1[2] = {0, 0};
  double p2[2] = {2, 0};
  double res[3] = {kSentinel, kSentinel, kSentinel};
  EXPECT_EQ(DPonPLperV(eps, 1 + 2 * eps, p1, p2, 0.5, res), 0);
  EXPECT_EQ(DPonPLperV(eps, -2 * eps, p1, p2, 0.5, res), 0);
  EXPECT_EQ(DPonPLperV(eps, kNaN, p1, p2, 0.5, res), 0);
  double tiny[2] = {eps / 2, 0};
  EXPECT_EQ(DPonPLperV(eps, 0.5, p1, tiny, 0.5, res), 0);
  EXPECT_EQ(res[0], kSentinel);
  EXPECT_EQ(res[1], kSentinel);
  EXPECT_EQ(res[2], kSentinel);
  EXPECT_EQ(DPonPLperV(eps, 1 + eps, p1, p2, 0.5, res), 1);
  EXPECT_EQ(DPonPLperV(eps, 1 + eps / 2, p1, p2, 0.5, res), 1);
  EXPECT_EQ(DPonPLperV(eps, -eps, p1, p2, 0.5, res), 1);
}

TEST(DPonPLperV, points_lie_on_the_bulge_arc_and_head_along_it) {
  std::mt19937 rng(8086);
  std::uniform_real_distribution<double> coord(-10.0, 10.0);
  std::uniform_real_distribution<double> bulges(-4.0, 4.0);
  std::uniform_real_distribution<double> fraction(0.0, 1.0);
  int checked = 0;
  for (int i = 0; i < 500; ++i) {
    double p1[2] = {coord(rng), coord(rng)};
    double p2[2] = {coord(rng), coord(rng)};
    const double bulge = bulges(rng);
    const double k = fraction(rng);
    if (std::hypot(p2[0] - p1[0], p2[1] - p1[1]) < 0.1 || std::fabs(bulge) < 0.01)
      continue;
    double res[3];
    ASSERT_EQ(DPonPLperV(1e-9, k, p1, p2, bulge, res), 1);
    double cx, cy, r, sa, ea;
    ASSERT_EQ(PL_ArcParam(1e-9, p1[0], p1[1], p2[0], p2[1], bulge, &cx, &cy, &r, &sa, &ea), 1);
    EXPECT_NEAR(std::hypot(res[0] - cx, res[1] - cy), r, 1e-9 * (1 + r));
    // The arc has turned by k of the included angle since leaving p1 at chord - theta / 2.
    const double theta = 4 * std::atan(bulge);
    const double chord = std::atan2(p2[1] - p1[1], p2[0] - p1[0]);
    EXPECT_LT(angleGap(res[2], chord - theta / 2 + k * theta), 1e-9) << i;
    EXPECT_GE(res[2], -1e-9);
    EXPECT_LT(res[2], kTwoPi);
    ++checked;
  }
  EXPECT_GT(checked, 250);  // the filters above must leave most cases
}

// ---- Hostile input ------------------------------------------------------------------------

TEST(PointQueries, hostile_numbers_return_promptly_and_write_only_their_outputs) {
  HostileNumbers v(77);
  for (int i = 0; i < 3000; ++i) {
    double outs[5] = {kSentinel, 0, 0, 0, kSentinel};  // three outputs between two guards
    double* o = outs + 1;
    double p1[2] = {v(), v()};
    double p2[2] = {v(), v()};
    const double eps = i % 4 ? 1e-9 : v();
    const int on = DPointOnLine(eps, v(), v(), v(), v(), v(), v());
    EXPECT_TRUE(on == 0 || on == 1);
    const int onArc = DPointOnArc(eps, v(), v(), v(), v(), v(), v(), v());
    EXPECT_TRUE(onArc == 0 || onArc == 1);
    (void)DPointVerL(eps, v(), v(), v(), v(), v(), v(), &o[0], &o[1]);
    (void)DPonLdisP(eps, v(), v(), v(), v(), v(), &o[0], &o[1]);
    (void)DPonPLperV(eps, v(), p1, p2, v(), o);
    (void)DPonAperK(eps, v(), p1, v(), v(), v(), &o[0], &o[1]);
    (void)DPnearLine(eps, v(), v(), v(), v(), v(), v(), &o[0], &o[1]);
    (void)DPnearArc(eps, v(), v(), v(), v(), v(), v(), v(), &o[0], &o[1]);
    EXPECT_EQ(outs[0], kSentinel);
    EXPECT_EQ(outs[4], kSentinel);
  }
}

}  // namespace
