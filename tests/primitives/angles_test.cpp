// Tarnsysm: planar computational geometry for 2D drafting.
// Tests of direction angles, turn reduction, guarded inverse trigonometry and arc membership.
#include <Tarnsysm.h>

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace {

constexpr double kEps = 1e-6;
constexpr double kPi = 3.141592653589793;
constexpr double kTwoPi = 6.283185307179586;

TEST(DAngle, coincident_within_eps_per_coordinate_gives_zero) {
  double angle = 99.0;
  EXPECT_EQ(DAngle(kEps, 0, 0, kEps, -kEps, &angle), 0);
  EXPECT_EQ(angle, 0.0);
}

TEST(DAngle, tiny_negative_angle_is_kept_larger_one_is_lifted) {
  double angle = 0.0;
  // atan2(-0.5 eps, 1) is about -0.5 eps: stays negative.
  ASSERT_EQ(DAngle(kEps, 0, 0, 1, std::tan(-0.5 * kEps), &angle), 1);
  EXPECT_NEAR(angle, -0.5 * kEps, 1e-15);
  ASSERT_EQ(DAngle(kEps, 0, 0, 1, std::tan(-2 * kEps), &angle), 1);
  EXPECT_NEAR(angle, kTwoPi - 2 * kEps, 1e-15);
}

TEST(ValidAngle, sweep_through_zero_contains_both_sides_of_zero) {
  EXPECT_EQ(ValidAngle(kEps, 3 * kPi / 2, kPi / 2, 0.0), 1);
  EXPECT_EQ(ValidAngle(kEps, 3 * kPi / 2, kPi / 2, kTwoPi - kEps / 2), 1);
  EXPECT_EQ(ValidAngle(kEps, 3 * kPi / 2, kPi / 2, kPi), 0);
}

TEST(ValidAngle, non_finite_or_huge_input_returns_promptly) {
  const double inf = std::numeric_limits<double>::infinity();
  const double nan = std::numeric_limits<double>::quiet_NaN();
  EXPECT_EQ(ValidAngle(kEps, 0, 1, nan), 0);
  EXPECT_EQ(ValidAngle(kEps, 0, 1, inf), 0);
  EXPECT_EQ(ValidAngle(-inf, 0, 1, 0.5), 0);
  // Values whose 2 pi steps no longer change them must not spin.
  (void)ValidAngle(kEps, 1e300, -1e300, 0.5);
  (void)ValidAngle(kEps, -1e300, 1e300, 1e300);
  (void)ValidAngle(kEps, 0, 1e17, -1e17);
}

}  // namespace
