// Tarnsysm: planar computational geometry for 2D drafting.
// Tests of the polyline arc segment constructions, their input checks and the tangent
// continuation of a polyline.
#include <Tarnsysm.h>

#include "arcs/geometry_checks.h"

#include <gtest/gtest.h>

#include <cmath>
#include <ostream>
#include <random>

namespace {

using namespace arcs_test;

constexpr double kEps = 1e-6;
constexpr double kSentinel = -777.0;
const double kQuarterBulge = std::tan(kPi / 8);  // bulge of a quarter circle

// ---- PL_TestVertex ------------------------------------------------------------------------

TEST(PL_TestVertex, kind_2_rejects_points_on_the_tangent_line_ahead_or_behind) {
  double p[2] = {0, 0};
  double ahead[2] = {1, 0};
  double behind[2] = {-3, 0};
  double aside[2] = {1, 1};
  EXPECT_EQ(PL_TestVertex(2, kEps, p, 0.0, ahead), 0);
  EXPECT_EQ(PL_TestVertex(2, kEps, p, 0.0, behind), 0);
  EXPECT_EQ(PL_TestVertex(2, kEps, p, 0.0, aside), 1);
  // The direction is reduced into one turn first.
  double up[2] = {0, 2};
  EXPECT_EQ(PL_TestVertex(2, kEps, p, kTwoPi + kHalfPi, up), 0);
  EXPECT_EQ(PL_TestVertex(2, kEps, p, -kHalfPi, up), 0);
}

TEST(PL_TestVertex, kind_2_sine_boundary) {
  double p[2] = {0, 0};
  // Off the tangent by an angle whose sine is 2 eps: accepted; eps / 2: rejected.
  double wide[2] = {std::cos(std::asin(2 * kEps)), 2 * kEps};
  double narrow[2] = {std::cos(std::asin(kEps / 2)), kEps / 2};
  EXPECT_EQ(PL_TestVertex(2, kEps, p, 0.0, wide), 1);
  EXPECT_EQ(PL_TestVertex(2, kEps, p, 0.0, narrow), 0);
}

TEST(PL_TestVertex, kind_6_points_exactly_eps_apart_are_distinct) {
  const double eps = kDyadicEps;
  double p[2] = {1, 1};
  double atEps[2] = {1 + eps, 1};
  double atHalf[2] = {1 + eps / 2, 1};
  EXPECT_EQ(PL_TestVertex(6, eps, p, atEps), 1);
  EXPECT_EQ(PL_TestVertex(6, eps, p, atHalf), 0);
  EXPECT_EQ(PL_TestVertex(6, eps, p, p), 0);
}

TEST(PL_TestVertex, kind_7_chord_must_fit_the_circle_about_q_through_p) {
  double p[2] = {1, 0};
  double q[2] = {0, 0};
  EXPECT_EQ(PL_TestVertex(7, kEps, p, q, 2.0), 1);  // the diameter: a half circle
  EXPECT_EQ(PL_TestVertex(7, kEps, p, q, 2.0 + 1e-9), 0);
  EXPECT_EQ(PL_TestVertex(7, kEps, p, q, 0.5), 1);
  double nearCentre[2] = {kEps / 2, 0};
  EXPECT_EQ(PL_TestVertex(7, kEps, nearCentre, q, 0.0), 0);
}

TEST(PL_TestVertex, kind_8_chord_equal_to_the_diameter_passes) {
  double p[2] = {0, 0};
  double q[2] = {2, 0};
  EXPECT_EQ(PL_TestVertex(8, kEps, p, 1.0, q), 1);
  EXPECT_EQ(PL_TestVertex(8, kEps, p, 1.0 - 1e-12, q), 0);
  double far[2] = {2.0 + 1e-12, 0};
  EXPECT_EQ(PL_TestVertex(8, kEps, p, 1.0, far), 0);
  // A negative radius never fits a chord.
  EXPECT_EQ(PL_TestVertex(8, kEps, p, -5.0, q), 0);
}

TEST(PL_TestVertex, kind_9_collinear_points_by_twice_the_area) {
  const double eps = kDyadicEps;
  double p[2] = {0, 0};
  double q[2] = {1, 0};
  // Twice the area of (0,0), (1,0), (2,y) is y.
  double w[2] = {2, 0};
  EXPECT_EQ(PL_TestVertex(9, eps, p, q, w), 0);
  w[1] = eps / 2;
  EXPECT_EQ(PL_TestVertex(9, eps, p, q, w), 0);
  w[1] = -eps;
  EXPECT_EQ(PL_TestVertex(9, eps, p, q, w), 1);
  w[1] = 2 * eps;
  EXPECT_EQ(PL_TestVertex(9, eps, p, q, w), 1);
}

TEST(PL_TestVertex, kinds_without_a_check_accept_without_reading_more_arguments) {
  double p[2] = {0, 0};
  for (int kind : {-1, 0, 1, 3, 4, 5, 10, 1000})
    EXPECT_EQ(PL_TestVertex(kind, kEps, p), 1) << "kind " << kind;
}

TEST(PL_TestVertex, input_that_is_not_a_number_is_invalid) {
  double p[2] = {0, 0};
  double q[2] = {1, 1};
  double w[2] = {kNaN, 0};
  EXPECT_EQ(PL_TestVertex(2, kEps, p, kNaN, q), 0);
  EXPECT_EQ(PL_TestVertex(6, kEps, p, w), 0);
  EXPECT_EQ(PL_TestVertex(7, kEps, p, q, kNaN), 0);
  EXPECT_EQ(PL_TestVertex(8, kEps, p, kNaN, q), 0);
  EXPECT_EQ(PL_TestVertex(9, kEps, p, q, w), 0);
}

// ---- PL_Arc_PBPP ------------------------------------------------------------------------

TEST(PL_Arc_PBPP, straight_previous_segment_continues_along_its_direction) {
  double p0[2] = {0, 0};
  double p1[2] = {1, 0};
  double p2[2] = {2, 1};
  double bulge = kSentinel;
  double endDir = kSentinel;
  ASSERT_EQ(PL_Arc_PBPP(kEps, p0, 0.0, p1, p2, &bulge, &endDir), 1);
  // Leaving (1,0) along +x towards (2,1): a left quarter circle.
  EXPECT_NEAR(bulge, kQuarterBulge, 1e-12);
  EXPECT_NEAR(endDir, kHalfPi, 1e-12);
}

TEST(PL_Arc_PBPP, previous_arc_gives_its_tangent_at_the_shared_vertex) {
  double p0[2] = {0, 0};
  double p1[2] = {2, 0};
  double bulge = kSentinel;
  double endDir = kSentinel;
  // Counter-clockwise half circle below the chord: it arrives at (2,0) heading up, so (3,1) lies
  // to its right.
  double right[2] = {3, 1};
  ASSERT_EQ(PL_Arc_PBPP(kEps, p0, 1.0, p1, right, &bulge, &endDir), 1);
  EXPECT_NEAR(bulge, -kQuarterBulge, 1e-12);
  EXPECT_LT(angleGap(endDir, 0.0), 1e-12);
  // Clockwise half circle above the chord: it arrives heading down, so (3,-1) lies to its left.
  double left[2] = {3, -1};
  ASSERT_EQ(PL_Arc_PBPP(kEps, p0, -1.0, p1, left, &bulge, &endDir), 1);
  EXPECT_NEAR(bulge, kQuarterBulge, 1e-12);
  EXPECT_LT(angleGap(endDir, 0.0), 1e-12);
}

TEST(PL_Arc_PBPP, end_point_on_the_tangent_line_fails_and_writes_nothing) {
  double p0[2] = {0, 0};
  double p1[2] = {2, 0};
  double ahead[2] = {2, 5};  // the half circle arrives heading up
  double bulge = kSentinel;
  double endDir = kSentinel;
  EXPECT_EQ(PL_Arc_PBPP(kEps, p0, 1.0, p1, ahead, &bulge, &endDir), 0);
  double behind[2] = {2, -5};
  EXPECT_EQ(PL_Arc_PBPP(kEps, p0, 1.0, p1, behind, &bulge, &endDir), 0);
  double straightOn[2] = {7, 0};
  EXPECT_EQ(PL_Arc_PBPP(kEps, p0, 0.0, p1, straightOn, &bulge, &endDir), 0);
  EXPECT_EQ(bulge, kSentinel);
  EXPECT_EQ(endDir, kSentinel);
}

TEST(PL_Arc_PBPP, previous_arc_without_a_centre_counts_as_straight) {
  // A previous segment of no length has no arc; its chord direction is then 0 (+x).
  double p0[2] = {1, 0};
  double p1[2] = {1, 0};
  double p2[2] = {2, 1};
  double bulge = kSentinel;
  double endDir = kSentinel;
  ASSERT_EQ(PL_Arc_PBPP(kEps, p0, 0.5, p1, p2, &bulge, &endDir), 1);
  EXPECT_NEAR(bulge, kQuarterBulge, 1e-12);
}

// ---- PL_StpStaEdp -----------------------------------------------------------------------

TEST(PL_StpStaEdp, quarter_circles_to_the_left_and_to_the_right) {
  double stp[2] = {0, 0};
  double bulge = 0, endDir = 0;
  double left[2] = {1, 1};
  ASSERT_EQ(PL_StpStaEdp(kEps, stp, 0.0, left, &bulge, &endDir), 1);
  EXPECT_NEAR(bulge, kQuarterBulge, 1e-12);
  EXPECT_NEAR(endDir, kHalfPi, 1e-12);
  double right[2] = {1, -1};
  ASSERT_EQ(PL_StpStaEdp(kEps, stp, 0.0, right, &bulge, &endDir), 1);
  EXPECT_NEAR(bulge, -kQuarterBulge, 1e-12);
  EXPECT_NEAR(endDir, 3 * kHalfPi, 1e-12);  // reduced into one turn
}

TEST(PL_StpStaEdp, end_point_on_the_tangent_line_fails_and_writes_nothing) {
  double stp[2] = {0, 0};
  double bulge = kSentinel, endDir = kSentinel;
  double ahead[2] = {2, 0};
  EXPECT_EQ(PL_StpStaEdp(kEps, stp, 0.0, ahead, &bulge, &endDir), 0);
  double behind[2] = {-2, 0};
  EXPECT_EQ(PL_StpStaEdp(kEps, stp, 0.0, behind, &bulge, &endDir), 0);
  EXPECT_EQ(PL_StpStaEdp(kEps, stp, kNaN, ahead, &bulge, &endDir), 0);
  EXPECT_EQ(bulge, kSentinel);
  EXPECT_EQ(endDir, kSentinel);
}

TEST(PL_StpStaEdp, major_arcs_when_the_end_point_lies_behind_the_start) {
  double stp[2] = {0, 0};
  double bulge = 0, endDir = 0;
  // Heading +x, ending at (-1, 1) on the unit circle about (0, 1): three quarters of a turn.
  double back[2] = {-1, 1};
  ASSERT_EQ(PL_StpStaEdp(kEps, stp, 0.0, back, &bulge, &endDir), 1);
  EXPECT_NEAR(bulge, std::tan(3 * kPi / 8), 1e-12);
  EXPECT_LT(angleGap(endDir, 3 * kHalfPi), 1e-12);
}

// ---- PL_StpInaEdp -----------------------------------------------------------------------

TEST(PL_StpInaEdp, arcs_centred_left_of_the_chord_end_on_their_tangent) {
  double stp[2] = {0, 0};
  double edp[2] = {2, 0};
  double bulge = 0, endDir = 0;
  ASSERT_EQ(PL_StpInaEdp(kEps, stp, kHalfPi, edp, &bulge, &endDir), 1);
  EXPECT_NEAR(bulge, kQuarterBulge, 1e-12);
  EXPECT_NEAR(endDir, kPi / 4, 1e-12);  // chord direction plus half the included angle
  // Whole turns are taken off the included angle first.
  ASSERT_EQ(PL_StpInaEdp(kEps, stp, kHalfPi + 2 * kTwoPi, edp, &bulge, &endDir), 1);
  EXPECT_NEAR(bulge, kQuarterBulge, 1e-12);
  EXPECT_NEAR(endDir, kPi / 4, 1e-12);
  // Three quarters clockwise about (1, 1): arriving at (2, 0) heading down and left.
  ASSERT_EQ(PL_StpInaEdp(kEps, stp, -3 * kHalfPi, edp, &bulge, &endDir), 1);
  EXPECT_NEAR(bulge, -std::tan(3 * kPi / 8), 1e-12);
  EXPECT_NEAR(endDir, 5 * kPi / 4, 1e-12);
}

TEST(PL_StpInaEdp, clockwise_end_direction_comes_from_a_centre_on_the_normal_through_stp) {
  // The drafting host places the centre for a clockwise arc at the radius on the chord's right
  // normal through stp, without the half-angle term; its end direction is kept as it comes.
  double stp[2] = {0, 0};
  double edp[2] = {2, 0};
  double bulge = 0, endDir = 0;
  ASSERT_EQ(PL_StpInaEdp(kEps, stp, -kHalfPi, edp, &bulge, &endDir), 1);
  EXPECT_NEAR(bulge, -kQuarterBulge, 1e-12);
  // r = sqrt(2), centre (0, -sqrt(2)); the radial direction to (2, 0), a quarter turn clockwise.
  const double expected = std::atan2(std::sqrt(2.0), 2.0) - kHalfPi + kTwoPi;
  EXPECT_NEAR(endDir, expected, 1e-12);
  EXPECT_GT(angleGap(endDir, -kPi / 4), 0.1);  // not the arc's tangent
}

// ---- PL_StpInaCen -----------------------------------------------------------------------

TEST(PL_StpInaCen, writes_the_end_point_over_the_centre_array) {
  double stp[2] = {1, 0};
  double cen[2] = {0, 0};
  double bulge = 0, endDir = 0;
  ASSERT_EQ(PL_StpInaCen(kEps, stp, kHalfPi, cen, &bulge, &endDir), 1);
  EXPECT_NEAR(cen[0], 0.0, 1e-12);
  EXPECT_NEAR(cen[1], 1.0, 1e-12);
  EXPECT_NEAR(bulge, kQuarterBulge, 1e-12);
  EXPECT_NEAR(endDir, kPi, 1e-12);

  double cen2[2] = {0, 0};
  ASSERT_EQ(PL_StpInaCen(kEps, stp, -kHalfPi, cen2, &bulge, &endDir), 1);
  EXPECT_NEAR(cen2[0], 0.0, 1e-12);
  EXPECT_NEAR(cen2[1], -1.0, 1e-12);
  EXPECT_NEAR(bulge, -kQuarterBulge, 1e-12);
  EXPECT_NEAR(endDir, kPi, 1e-12);  // heading -x at the bottom, clockwise
}

TEST(PL_StpInaCen, start_point_on_the_centre_ends_where_it_starts) {
  double stp[2] = {3, 4};
  double cen[2] = {3 + kEps / 2, 4};
  double bulge = 0, endDir = 0;
  ASSERT_EQ(PL_StpInaCen(kEps, stp, kHalfPi, cen, &bulge, &endDir), 1);
  EXPECT_EQ(cen[0], 3.0);
  EXPECT_EQ(cen[1], 4.0);
  EXPECT_NEAR(endDir, kHalfPi, 1e-15);  // both angles 0, counter-clockwise
  double cen2[2] = {3, 4};
  ASSERT_EQ(PL_StpInaCen(kEps, stp, -kHalfPi, cen2, &bulge, &endDir), 1);
  EXPECT_NEAR(endDir, 3 * kHalfPi, 1e-15);
}

// ---- PL_StpInaRadDir --------------------------------------------------------------------

struct InaRadDirCase {
  const char* name;
  double ina, rad, dir;
  double ex, ey;  // expected end point from (0, 0)
  double endDir;  // expected direction of travel at the end
  double bulge;
};

std::ostream& operator<<(std::ostream& os, const InaRadDirCase& c) {
  return os << c.name;
}

class PL_StpInaRadDirTable : public ::testing::TestWithParam<InaRadDirCase> {};

TEST_P(PL_StpInaRadDirTable, end_point_bulge_and_end_direction) {
  const InaRadDirCase& c = GetParam();
  double stp[2] = {0, 0};
  double edp[2] = {kSentinel, kSentinel};
  double bulge = 0, endDir = 0;
  ASSERT_EQ(PL_StpInaRadDir(kEps, stp, c.ina, c.rad, c.dir, edp, &bulge, &endDir), 1);
  EXPECT_NEAR(edp[0], c.ex, 1e-12);
  EXPECT_NEAR(edp[1], c.ey, 1e-12);
  EXPECT_NEAR(bulge, c.bulge, 1e-12);
  EXPECT_LT(angleGap(endDir, c.endDir), 1e-12);
  EXPECT_GE(endDir, -kEps);
  EXPECT_LT(endDir, kTwoPi);
}

// The chord has length 2 rad sin(|ina| / 2) in direction dir; the end direction is dir + ina / 2.
const double kRoot2 = std::sqrt(2.0);
INSTANTIATE_TEST_SUITE_P(
    PL_StpInaRadDir, PL_StpInaRadDirTable,
    ::testing::Values(
        InaRadDirCase{"quarter_left", kHalfPi, 1, 0, kRoot2, 0, kPi / 4, kQuarterBulge},
        InaRadDirCase{"quarter_right", -kHalfPi, 1, 0, kRoot2, 0, -kPi / 4, -kQuarterBulge},
        InaRadDirCase{"half_up", kPi, 2, kHalfPi, 0, 4, kPi, 1.0},
        InaRadDirCase{"three_quarters_left", 3 * kHalfPi, 1, kHalfPi, 0, kRoot2, 5 * kPi / 4,
                      std::tan(3 * kPi / 8)},
        InaRadDirCase{"three_quarters_right", -3 * kHalfPi, 1, kPi, -kRoot2, 0, kPi / 4,
                      -std::tan(3 * kPi / 8)},
        InaRadDirCase{"turns_taken_off", kHalfPi + kTwoPi, 1, 0, kRoot2, 0, kPi / 4,
                      kQuarterBulge}),
    [](const ::testing::TestParamInfo<InaRadDirCase>& info) { return info.param.name; });

TEST(PL_StpInaRadDir, small_radius_or_zero_angle_fails_and_writes_nothing) {
  const double eps = kDyadicEps;
  double stp[2] = {0, 0};
  double edp[2] = {kSentinel, kSentinel};
  double bulge = kSentinel, endDir = kSentinel;
  EXPECT_EQ(PL_StpInaRadDir(eps, stp, 1.0, eps / 2, 0.0, edp, &bulge, &endDir), 0);
  EXPECT_EQ(PL_StpInaRadDir(eps, stp, 1.0, -1.0, 0.0, edp, &bulge, &endDir), 0);
  EXPECT_EQ(PL_StpInaRadDir(eps, stp, eps, 1.0, 0.0, edp, &bulge, &endDir), 0);
  EXPECT_EQ(PL_StpInaRadDir(eps, stp, -eps, 1.0, 0.0, edp, &bulge, &endDir), 0);
  EXPECT_EQ(PL_StpInaRadDir(eps, stp, kNaN, 1.0, 0.0, edp, &bulge, &endDir), 0);
  EXPECT_EQ(PL_StpInaRadDir(eps, stp, 1.0, kNaN, 0.0, edp, &bulge, &endDir), 0);
  EXPECT_EQ(edp[0], kSentinel);
  EXPECT_EQ(edp[1], kSentinel);
  EXPECT_EQ(bulge, kSentinel);
  EXPECT_EQ(endDir, kSentinel);
  // Exactly eps of radius and 2 eps of angle are enough.
  EXPECT_EQ(PL_StpInaRadDir(eps, stp, 1.0, eps, 0.0, edp, &bulge, &endDir), 1);
  EXPECT_EQ(PL_StpInaRadDir(eps, stp, 2 * eps, 1.0, 0.0, edp, &bulge, &endDir), 1);
}

// ---- PL_StpCenEdp -----------------------------------------------------------------------

TEST(PL_StpCenEdp, end_point_is_moved_onto_the_circle) {
  double stp[2] = {1, 0};
  double cen[2] = {0, 0};
  double edp[2] = {0, 5};
  double bulge = 0, endDir = 0;
  ASSERT_EQ(PL_StpCenEdp(kEps, stp, cen, edp, &bulge, &endDir), 1);
  EXPECT_NEAR(edp[0], 0.0, 1e-12);
  EXPECT_NEAR(edp[1], 1.0, 1e-12);
  EXPECT_NEAR(bulge, kQuarterBulge, 1e-12);
  EXPECT_NEAR(endDir, kPi, 1e-12);
  EXPECT_EQ(cen[0], 0.0);  // the centre is read only
  EXPECT_EQ(cen[1], 0.0);
}

TEST(PL_StpCenEdp, always_runs_counter_clockwise) {
  double stp[2] = {1, 0};
  double cen[2] = {0, 0};
  double edp[2] = {0, -5};
  double bulge = 0, endDir = 0;
  ASSERT_EQ(PL_StpCenEdp(kEps, stp, cen, edp, &bulge, &endDir), 1);
  EXPECT_NEAR(edp[0], 0.0, 1e-12);
  EXPECT_NEAR(edp[1], -1.0, 1e-12);
  EXPECT_NEAR(bulge, std::tan(3 * kPi / 8), 1e-12);
  EXPECT_LT(angleGap(endDir, 0.0), 1e-12);
}

TEST(PL_StpCenEdp, start_point_on_the_centre_gives_a_straight_segment_of_no_length) {
  double stp[2] = {2, 3};
  double cen[2] = {2, 3 + kEps / 2};
  double edp[2] = {2, 10};
  double bulge = kSentinel, endDir = kSentinel;
  ASSERT_EQ(PL_StpCenEdp(kEps, stp, cen, edp, &bulge, &endDir), 1);
  EXPECT_EQ(bulge, 0.0);
  EXPECT_EQ(edp[0], 2.0);
  EXPECT_EQ(edp[1], 3.0);
  // A quarter turn counter-clockwise from the direction cen -> given edp (straight up).
  EXPECT_NEAR(endDir, kPi, 1e-12);
}

// ---- PL_StpCenLen -----------------------------------------------------------------------

TEST(PL_StpCenLen, chord_lengths_give_the_included_angle) {
  double stp[2] = {1, 0};
  double bulge = 0, endDir = 0;

  double diameter[2] = {0, 0};
  ASSERT_EQ(PL_StpCenLen(kEps, stp, diameter, 2.0, &bulge, &endDir), 1);
  EXPECT_NEAR(bulge, 1.0, 1e-12);
  EXPECT_NEAR(diameter[0], -1.0, 1e-12);
  EXPECT_NEAR(diameter[1], 0.0, 1e-12);
  EXPECT_NEAR(endDir, 3 * kHalfPi, 1e-12);

  double quarter[2] = {0, 0};
  ASSERT_EQ(PL_StpCenLen(kEps, stp, quarter, std::sqrt(2.0), &bulge, &endDir), 1);
  EXPECT_NEAR(bulge, kQuarterBulge, 1e-12);
  EXPECT_NEAR(quarter[0], 0.0, 1e-12);
  EXPECT_NEAR(quarter[1], 1.0, 1e-12);
  EXPECT_NEAR(endDir, kPi, 1e-12);

  // A negative chord length turns clockwise.
  double backwards[2] = {0, 0};
  ASSERT_EQ(PL_StpCenLen(kEps, stp, backwards, -std::sqrt(2.0), &bulge, &endDir), 1);
  EXPECT_NEAR(bulge, -kQuarterBulge, 1e-12);
  EXPECT_NEAR(backwards[0], 0.0, 1e-12);
  EXPECT_NEAR(backwards[1], -1.0, 1e-12);
  EXPECT_NEAR(endDir, kPi, 1e-12);
}

TEST(PL_StpCenLen, chord_longer_than_the_diameter_gives_bulge_zero_at_the_start_point) {
  double stp[2] = {1, 0};
  double cen[2] = {0, 0};
  double bulge = kSentinel, endDir = kSentinel;
  ASSERT_EQ(PL_StpCenLen(kEps, stp, cen, 2.5, &bulge, &endDir), 1);
  EXPECT_EQ(bulge, 0.0);
  EXPECT_NEAR(cen[0], 1.0, 1e-15);
  EXPECT_NEAR(cen[1], 0.0, 1e-15);
  EXPECT_NEAR(endDir, 3 * kHalfPi, 1e-15);
}

// ---- PL_StpRadEdp -----------------------------------------------------------------------

TEST(PL_StpRadEdp, sign_of_the_radius_chooses_the_side_of_the_minor_arc) {
  double stp[2] = {0, 0};
  double edp[2] = {1, 1};
  double bulge = 0, endDir = 0;
  // Radius 1: centre (0, 1) to the left, counter-clockwise, arriving heading up.
  ASSERT_EQ(PL_StpRadEdp(kEps, stp, 1.0, edp, &bulge, &endDir), 1);
  EXPECT_NEAR(bulge, kQuarterBulge, 1e-12);
  EXPECT_NEAR(endDir, kHalfPi, 1e-12);
  // Radius -1: centre (1, 0) to the right, clockwise, arriving heading +x.
  ASSERT_EQ(PL_StpRadEdp(kEps, stp, -1.0, edp, &bulge, &endDir), 1);
  EXPECT_NEAR(bulge, -kQuarterBulge, 1e-12);
  EXPECT_LT(angleGap(endDir, 0.0), 1e-12);
}

TEST(PL_StpRadEdp, half_chord_radius_is_a_half_circle_and_a_smaller_one_is_flat) {
  double stp[2] = {0, 0};
  double edp[2] = {2, 0};
  double bulge = 0, endDir = 0;
  ASSERT_EQ(PL_StpRadEdp(kEps, stp, 1.0, edp, &bulge, &endDir), 1);
  EXPECT_NEAR(bulge, 1.0, 1e-12);
  EXPECT_NEAR(endDir, kHalfPi, 1e-12);
  ASSERT_EQ(PL_StpRadEdp(kEps, stp, 0.9, edp, &bulge, &endDir), 1);
  EXPECT_EQ(bulge, 0.0);
}

// ---- PL_3points -------------------------------------------------------------------------

TEST(PL_3points, direction_follows_the_order_of_the_points) {
  double a[2] = {0, 0};
  double m[2] = {1, 1};
  double b[2] = {2, 0};
  double bulge = 0, endDir = 0;
  ASSERT_EQ(PL_3points(kEps, a, m, b, &bulge, &endDir), 1);
  EXPECT_NEAR(bulge, -1.0, 1e-12);  // clockwise half circle over the top
  EXPECT_NEAR(endDir, 3 * kHalfPi, 1e-12);
  ASSERT_EQ(PL_3points(kEps, b, m, a, &bulge, &endDir), 1);
  EXPECT_NEAR(bulge, 1.0, 1e-12);
  EXPECT_NEAR(endDir, 3 * kHalfPi, 1e-12);
}

TEST(PL_3points, three_quarter_turn_clockwise) {
  double a[2] = {1, 0};
  double m[2] = {0, -1};
  double b[2] = {0, 1};
  double bulge = 0, endDir = 0;
  ASSERT_EQ(PL_3points(kEps, a, m, b, &bulge, &endDir), 1);
  EXPECT_NEAR(bulge, -std::tan(3 * kPi / 8), 1e-12);
  EXPECT_LT(angleGap(endDir, 0.0), 1e-12);
}

// ---- Randomised: every member's bulge is an arc through its inputs --------------------------

struct BulgeArc {
  Pt centre;
  double r, sa, ea;
};

// The arc the library reads from a bulge, which every later consumer of the segment uses.
BulgeArc arcOfBulge(double eps, Pt a, Pt b, double bulge) {
  BulgeArc arc{};
  EXPECT_EQ(PL_ArcParam(eps, a.x, a.y, b.x, b.y, bulge, &arc.centre.x, &arc.centre.y, &arc.r,
                        &arc.sa, &arc.ea),
            1);
  return arc;
}

// Direction of travel at b along the bulge arc, from its centre.
double radialTangentAtEnd(const BulgeArc& arc, Pt b, double bulge) {
  return direction(arc.centre, b) + (bulge > 0 ? kHalfPi : -kHalfPi);
}

class RandomSegments : public ::testing::Test {
 protected:
  static constexpr double eps = 1e-9;
  static constexpr double tol = 1e-7;
  std::mt19937 rng{20240611};
  Pt point() {
    std::uniform_real_distribution<double> u(-10.0, 10.0);
    return {u(rng), u(rng)};
  }
  double uniform(double lo, double hi) {
    return std::uniform_real_distribution<double>(lo, hi)(rng);
  }

  // Common checks: the end direction is the tangent of the bulge arc at its end, in one turn.
  void expectEndTangent(Pt a, Pt b, double bulge, double endDir) {
    const BulgeArc arc = arcOfBulge(eps, a, b, bulge);
    EXPECT_LT(angleGap(endDir, endTangentOfBulge(a, b, bulge)), tol);
    EXPECT_LT(angleGap(endDir, radialTangentAtEnd(arc, b, bulge)), tol);
    EXPECT_GE(endDir, -eps);
    EXPECT_LT(endDir, kTwoPi);
  }
};

TEST_F(RandomSegments, stp_sta_edp_leaves_in_the_start_direction) {
  int checked = 0;
  for (int i = 0; i < 500; ++i) {
    Pt s = point();
    Pt e = point();
    const double sta = uniform(-kTwoPi, 2 * kTwoPi);
    // Stay clear of the tangent line, where no arc exists.
    if (dist(s, e) < 0.1 || std::fabs(std::sin(direction(s, e) - sta)) < 1e-3)
      continue;
    double bulge = 0, endDir = 0;
    ASSERT_EQ(PL_StpStaEdp(eps, &s.x, sta, &e.x, &bulge, &endDir), 1);
    EXPECT_LT(angleGap(startTangentOfBulge(s, e, bulge), sta), tol) << i;
    expectEndTangent(s, e, bulge, endDir);
    ++checked;
  }
  EXPECT_GT(checked, 250);  // the filters above must leave most cases
}

TEST_F(RandomSegments, stp_ina_edp_sweeps_the_included_angle) {
  int checked = 0;
  int tangentChecked = 0;
  for (int i = 0; i < 500; ++i) {
    Pt s = point();
    Pt e = point();
    const double ina = uniform(-kTwoPi + 0.01, kTwoPi - 0.01);
    if (dist(s, e) < 0.1 || std::fabs(ina) < 0.01)
      continue;
    double bulge = 0, endDir = 0;
    ASSERT_EQ(PL_StpInaEdp(eps, &s.x, ina, &e.x, &bulge, &endDir), 1);
    EXPECT_NEAR(4 * std::atan(bulge), ina, tol);
    const BulgeArc arc = arcOfBulge(eps, s, e, bulge);
    EXPECT_NEAR(arc.ea - arc.sa, std::fabs(ina), tol);
    // Only arcs whose centre lies left of the chord end on their tangent (see the header).
    if ((ina > 0 && ina <= kPi) || ina < -kPi - 1e-6) {
      expectEndTangent(s, e, bulge, endDir);
      ++tangentChecked;
    }
    ++checked;
  }
  EXPECT_GT(checked, 250);  // the filters above must leave most cases
  EXPECT_GT(tangentChecked, 150);
}

TEST_F(RandomSegments, stp_ina_cen_turns_about_the_given_centre) {
  int checked = 0;
  for (int i = 0; i < 500; ++i) {
    Pt s = point();
    const Pt c = point();
    const double ina = uniform(-kTwoPi + 0.01, kTwoPi - 0.01);
    if (dist(s, c) < 0.1 || std::fabs(ina) < 0.01)
      continue;
    Pt e = c;
    double bulge = 0, endDir = 0;
    ASSERT_EQ(PL_StpInaCen(eps, &s.x, ina, &e.x, &bulge, &endDir), 1);
    EXPECT_NEAR(dist(c, e), dist(c, s), tol);
    EXPECT_LT(angleGap(direction(c, e), direction(c, s) + ina), tol);
    const BulgeArc arc = arcOfBulge(eps, s, e, bulge);
    EXPECT_NEAR(arc.centre.x, c.x, 1e-6);
    EXPECT_NEAR(arc.centre.y, c.y, 1e-6);
    expectEndTangent(s, e, bulge, endDir);
    ++checked;
  }
  EXPECT_GT(checked, 250);  // the filters above must leave most cases
}

TEST_F(RandomSegments, stp_ina_rad_dir_has_the_radius_and_chord_direction) {
  int checked = 0;
  for (int i = 0; i < 500; ++i) {
    Pt s = point();
    const double ina = uniform(-kTwoPi + 0.01, kTwoPi - 0.01);
    const double rad = uniform(0.1, 10.0);
    const double dir = uniform(-kTwoPi, 2 * kTwoPi);
    if (std::fabs(ina) < 0.01)
      continue;
    Pt e{kSentinel, kSentinel};
    double bulge = 0, endDir = 0;
    ASSERT_EQ(PL_StpInaRadDir(eps, &s.x, ina, rad, dir, &e.x, &bulge, &endDir), 1);
    EXPECT_NEAR(dist(s, e), 2 * rad * std::fabs(std::sin(ina / 2)), tol);
    EXPECT_LT(angleGap(direction(s, e), dir), tol);
    const BulgeArc arc = arcOfBulge(eps, s, e, bulge);
    EXPECT_NEAR(arc.r, rad, 1e-6);
    EXPECT_NEAR(arc.ea - arc.sa, std::fabs(ina), tol);
    expectEndTangent(s, e, bulge, endDir);
    ++checked;
  }
  EXPECT_GT(checked, 250);  // the filters above must leave most cases
}

TEST_F(RandomSegments, stp_cen_edp_runs_counter_clockwise_about_the_centre_to_the_ray) {
  int checked = 0;
  for (int i = 0; i < 500; ++i) {
    Pt s = point();
    const Pt c = point();
    const Pt target = point();
    if (dist(s, c) < 0.1 || dist(target, c) < 0.1)
      continue;
    // Stay clear of a zero or full-turn sweep, whose bulge is 0 or unbounded.
    if (angleGap(direction(c, s), direction(c, target)) < 1e-3)
      continue;
    Pt e = target;
    Pt cen = c;
    double bulge = 0, endDir = 0;
    ASSERT_EQ(PL_StpCenEdp(eps, &s.x, &cen.x, &e.x, &bulge, &endDir), 1);
    EXPECT_NEAR(dist(c, e), dist(c, s), tol);
    EXPECT_LT(angleGap(direction(c, e), direction(c, target)), tol);
    EXPECT_GT(bulge, 0.0);
    const BulgeArc arc = arcOfBulge(eps, s, e, bulge);
    EXPECT_NEAR(arc.centre.x, c.x, 1e-6);
    EXPECT_NEAR(arc.centre.y, c.y, 1e-6);
    expectEndTangent(s, e, bulge, endDir);
    ++checked;
  }
  EXPECT_GT(checked, 250);  // the filters above must leave most cases
}

TEST_F(RandomSegments, stp_cen_len_has_the_chord_length) {
  int checked = 0;
  for (int i = 0; i < 500; ++i) {
    Pt s = point();
    const Pt c = point();
    const double r = dist(s, c);
    const double len = uniform(-2.0, 2.0) * r;
    if (r < 0.1 || std::fabs(len) < 0.01 || std::fabs(std::fabs(len) - 2 * r) < 1e-6)
      continue;
    Pt e = c;
    double bulge = 0, endDir = 0;
    ASSERT_EQ(PL_StpCenLen(eps, &s.x, &e.x, len, &bulge, &endDir), 1);
    EXPECT_NEAR(dist(s, e), std::fabs(len), tol);
    EXPECT_NEAR(dist(c, e), r, tol);
    EXPECT_EQ(bulge > 0, len > 0);
    const BulgeArc arc = arcOfBulge(eps, s, e, bulge);
    EXPECT_NEAR(arc.centre.x, c.x, 1e-6);
    EXPECT_NEAR(arc.centre.y, c.y, 1e-6);
    expectEndTangent(s, e, bulge, endDir);
    ++checked;
  }
  EXPECT_GT(checked, 250);  // the filters above must leave most cases
}

TEST_F(RandomSegments, stp_rad_edp_is_the_minor_arc_of_the_radius) {
  int checked = 0;
  for (int i = 0; i < 500; ++i) {
    Pt s = point();
    Pt e = point();
    const double chord = dist(s, e);
    const double rad = (i % 2 ? 1 : -1) * uniform(0.5 * chord + 0.01, 3 * chord + 1);
    if (chord < 0.1)
      continue;
    double bulge = 0, endDir = 0;
    ASSERT_EQ(PL_StpRadEdp(eps, &s.x, rad, &e.x, &bulge, &endDir), 1);
    EXPECT_EQ(bulge > 0, rad > 0);
    EXPECT_LE(std::fabs(bulge), 1.0);
    const BulgeArc arc = arcOfBulge(eps, s, e, bulge);
    EXPECT_NEAR(arc.r, std::fabs(rad), 1e-6);
    expectEndTangent(s, e, bulge, endDir);
    ++checked;
  }
  EXPECT_GT(checked, 250);  // the filters above must leave most cases
}

TEST_F(RandomSegments, three_points_arc_passes_through_the_middle_point) {
  int checked = 0;
  for (int i = 0; i < 500; ++i) {
    // Three points on a known circle, in random order around it.
    const Pt c = point();
    const double r = uniform(0.5, 10.0);
    Pt a = onCircle(c, r, uniform(0, kTwoPi));
    Pt m = onCircle(c, r, uniform(0, kTwoPi));
    Pt b = onCircle(c, r, uniform(0, kTwoPi));
    if (dist(a, m) < 0.05 || dist(m, b) < 0.05 || dist(a, b) < 0.05)
      continue;
    double bulge = 0, endDir = 0;
    ASSERT_EQ(PL_3points(eps, &a.x, &m.x, &b.x, &bulge, &endDir), 1);
    // Points in counter-clockwise order around the circle make a left-turning triangle.
    EXPECT_EQ(bulge > 0, cross(a, m, b) > 0) << i;
    const BulgeArc arc = arcOfBulge(eps, a, b, bulge);
    EXPECT_NEAR(arc.centre.x, c.x, 1e-6);
    EXPECT_NEAR(arc.centre.y, c.y, 1e-6);
    EXPECT_EQ(ValidAngle(1e-9, arc.sa, arc.ea, direction(arc.centre, m)), 1) << i;
    expectEndTangent(a, b, bulge, endDir);
    ++checked;
  }
  EXPECT_GT(checked, 250);  // the filters above must leave most cases
}

TEST_F(RandomSegments, tangent_continuation_leaves_along_the_previous_segment) {
  int checked = 0;
  for (int i = 0; i < 500; ++i) {
    Pt p0 = point();
    Pt p1 = point();
    Pt p2 = point();
    const double previous = i % 3 == 0 ? 0.0 : uniform(-3.0, 3.0);
    if (dist(p0, p1) < 0.1 || dist(p1, p2) < 0.1 || (previous != 0.0 && std::fabs(previous) < 0.01))
      continue;
    const double arriving = endTangentOfBulge(p0, p1, previous);
    if (std::fabs(std::sin(direction(p1, p2) - arriving)) < 1e-3)
      continue;
    double bulge = 0, endDir = 0;
    ASSERT_EQ(PL_Arc_PBPP(eps, &p0.x, previous, &p1.x, &p2.x, &bulge, &endDir), 1);
    EXPECT_LT(angleGap(startTangentOfBulge(p1, p2, bulge), arriving), tol) << i;
    expectEndTangent(p1, p2, bulge, endDir);
    ++checked;
  }
  EXPECT_GT(checked, 250);  // the filters above must leave most cases
}

// ---- Hostile input ------------------------------------------------------------------------

TEST(SegmentConstructions, hostile_numbers_return_promptly_and_write_only_their_outputs) {
  HostileNumbers v(97);
  for (int i = 0; i < 3000; ++i) {
    // Each point array is exactly two doubles inside guards; outputs are single doubles.
    double guard[12];
    for (double& g : guard)
      g = kSentinel;
    double* a = guard + 1;  // a[0..1], guard[3] untouched
    double* b = guard + 4;  // b[0..1], guard[6]
    double* c = guard + 7;  // c[0..1], guard[9]
    a[0] = v(), a[1] = v(), b[0] = v(), b[1] = v(), c[0] = v(), c[1] = v();
    double bulge = 0, endDir = 0;
    const double eps = i % 4 ? 1e-9 : v();
    (void)PL_TestVertex(2, eps, a, v(), b);
    (void)PL_TestVertex(7, eps, a, b, v());
    (void)PL_TestVertex(9, eps, a, b, c);
    (void)PL_Arc_PBPP(eps, a, v(), b, c, &bulge, &endDir);
    (void)PL_StpStaEdp(eps, a, v(), b, &bulge, &endDir);
    (void)PL_StpInaEdp(eps, a, v(), b, &bulge, &endDir);
    (void)PL_StpInaCen(eps, a, v(), b, &bulge, &endDir);
    (void)PL_StpInaRadDir(eps, a, v(), v(), v(), b, &bulge, &endDir);
    (void)PL_StpCenEdp(eps, a, b, c, &bulge, &endDir);
    (void)PL_StpCenLen(eps, a, b, v(), &bulge, &endDir);
    (void)PL_StpRadEdp(eps, a, v(), b, &bulge, &endDir);
    (void)PL_3points(eps, a, b, c, &bulge, &endDir);
    EXPECT_EQ(guard[0], kSentinel);
    EXPECT_EQ(guard[3], kSentinel);
    EXPECT_EQ(guard[6], kSentinel);
    EXPECT_EQ(guard[9], kSentinel);
  }
}

}  // namespace
