// Tarnsysm: planar computational geometry for 2D drafting.
// Tests of direction angles, turn reduction, guarded inverse trigonometry, arc membership and the
// whole-turn stepping helpers.
#include <Tarnsysm.h>

#include "test_support.h"

#include "primitives/internal.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <ostream>
#include <random>

namespace {

// A power of two, so that sums like 1 + eps and products like 2 eps are exact and the interval
// boundaries below are hit exactly, not approximately.
constexpr double kEps = 1.0 / 1024.0;
using namespace tarnsysm::test;

// ---------------------------------------------------------------------------------------------
// DAngle

TEST(DAngle, both_differences_within_eps_give_zero_and_write_zero) {
  double angle = 99.0;
  EXPECT_EQ(DAngle(kEps, 0, 0, kEps, -kEps, &angle), 0);
  EXPECT_EQ(angle, 0.0);
  // Each coordinate is judged on its own: the length sqrt(2) eps exceeds eps, still coincident.
  angle = 99.0;
  EXPECT_EQ(DAngle(kEps, 5, 7, 5 - kEps, 7 + kEps, &angle), 0);
  EXPECT_EQ(angle, 0.0);
  angle = 99.0;
  EXPECT_EQ(DAngle(kEps, 1, 1, 1 + kEps / 2, 1, &angle), 0);
  EXPECT_EQ(angle, 0.0);
}

TEST(DAngle, one_difference_beyond_eps_gives_a_direction) {
  double angle = 99.0;
  EXPECT_EQ(DAngle(kEps, 0, 0, 2 * kEps, 0, &angle), 1);
  EXPECT_EQ(angle, 0.0);
  EXPECT_EQ(DAngle(kEps, 0, 0, 0, 2 * kEps, &angle), 1);
  EXPECT_DOUBLE_EQ(angle, kHalfPi);
  EXPECT_EQ(DAngle(kEps, 0, 0, std::nextafter(kEps, 1.0), 0, &angle), 1);
  EXPECT_EQ(angle, 0.0);
}

struct DirectionCase {
  const char* name;
  double dx, dy, expected;
};

std::ostream& operator<<(std::ostream& os, const DirectionCase& c) {
  return os << c.name;
}

class DAngleDirection : public testing::TestWithParam<DirectionCase> {};

TEST_P(DAngleDirection, gives_the_counter_clockwise_angle_from_plus_x_in_one_turn) {
  const DirectionCase& c = GetParam();
  double angle = 99.0;
  ASSERT_EQ(DAngle(1e-9, 3.0, -2.0, 3.0 + c.dx, -2.0 + c.dy, &angle), 1);
  EXPECT_NEAR(angle, c.expected, 1e-15);
  EXPECT_GE(angle, 0.0);
  EXPECT_LT(angle, kTwoPi);
}

INSTANTIATE_TEST_SUITE_P(
    Directions, DAngleDirection,
    testing::Values(DirectionCase{"east", 1, 0, 0.0}, DirectionCase{"north_east", 2, 2, kPi / 4},
                    DirectionCase{"north", 0, 3, kHalfPi},
                    DirectionCase{"north_west", -1, 1, 3 * kPi / 4},
                    DirectionCase{"west", -4, 0, kPi},
                    DirectionCase{"south_west", -1, -1, 5 * kPi / 4},
                    DirectionCase{"south", 0, -0.5, 3 * kPi / 2},
                    DirectionCase{"south_east", 1, -1, 7 * kPi / 4},
                    DirectionCase{"thirty_degrees", std::sqrt(3.0), 1, kPi / 6}),
    [](const testing::TestParamInfo<DirectionCase>& info) { return info.param.name; });

TEST(DAngle, just_below_minus_pi_direction_is_lifted_to_just_below_pi) {
  // atan2 gives almost -pi for a vector pointing west and a hair south.
  double angle = 0.0;
  ASSERT_EQ(DAngle(kEps, 0, 0, -1, -1e-30 * kEps, &angle), 1);
  EXPECT_NEAR(angle, kPi, 1e-15);
}

TEST(DAngle, tiny_negative_angle_is_kept_and_beyond_eps_is_lifted) {
  double angle = 0.0;
  // atan2(-eps/2, 1) is -eps/2 up to its cubic term: within eps below zero, left negative.
  ASSERT_EQ(DAngle(kEps, 0, 0, 1, -0.5 * kEps, &angle), 1);
  EXPECT_NEAR(angle, -0.5 * kEps, 1e-9);
  EXPECT_LT(angle, 0.0);
  // About -2 eps (the cubic term is 2.5e-9 here): lifted by a whole turn.
  ASSERT_EQ(DAngle(kEps, 0, 0, 1, -2 * kEps, &angle), 1);
  EXPECT_NEAR(angle, kTwoPi - 2 * kEps, 1e-8);
  // Make eps the exact magnitude of the atan2 result, so the test "below -eps" sits on its edge:
  // exactly -eps is kept, one ulp more is lifted.
  const double raw = std::atan2(-1e-3, 1.0);
  ASSERT_EQ(DAngle(-raw, 0, 0, 1, -1e-3, &angle), 1);
  EXPECT_EQ(angle, raw);
  const double smaller = std::nextafter(-raw, 0.0);
  ASSERT_EQ(DAngle(smaller, 0, 0, 1, -1e-3, &angle), 1);
  EXPECT_EQ(angle, raw + kTwoPi);
}

TEST(DAngle, non_finite_and_huge_coordinates_return_promptly) {
  const double bad[] = {kNaN, kInf, -kInf, 1e300, -1e300};
  for (double v : bad) {
    double angle = 0.0;
    (void)DAngle(kEps, v, 0, 1, 1, &angle);
    (void)DAngle(kEps, 0, 0, v, v, &angle);
    (void)DAngle(v, 0, 0, 1, 1, &angle);
  }
  double angle = 0.0;
  ASSERT_EQ(DAngle(kEps, 0, 0, 1e300, 1e300, &angle), 1);
  EXPECT_NEAR(angle, kPi / 4, 1e-15);
}

// ---------------------------------------------------------------------------------------------
// fpos2pi

double reduced(double eps, double angle) {
  fpos2pi(eps, &angle);
  return angle;
}

TEST(fpos2pi, whole_turns_reduce_to_zero_keeping_the_sign_of_zero) {
  EXPECT_EQ(reduced(kEps, kTwoPi), 0.0);
  EXPECT_FALSE(std::signbit(reduced(kEps, kTwoPi)));
  // fmod keeps the argument's sign: -2 pi becomes -0, which is not below -eps and stays.
  EXPECT_EQ(reduced(kEps, -kTwoPi), 0.0);
  EXPECT_TRUE(std::signbit(reduced(kEps, -kTwoPi)));
  EXPECT_EQ(reduced(kEps, 0.0), 0.0);
}

TEST(fpos2pi, angles_in_one_turn_are_unchanged) {
  for (double a : {0.25, 1.0, kPi, 6.0, std::nextafter(kTwoPi, 0.0)})
    EXPECT_EQ(reduced(kEps, a), a) << a;
}

TEST(fpos2pi, angles_above_a_turn_come_down_and_negative_ones_go_up) {
  EXPECT_NEAR(reduced(kEps, 7.0), 7.0 - kTwoPi, 1e-15);
  EXPECT_NEAR(reduced(kEps, 3 * kTwoPi + 0.5), 0.5, 1e-14);
  EXPECT_NEAR(reduced(kEps, -3.0), kTwoPi - 3.0, 1e-15);
  EXPECT_NEAR(reduced(kEps, -5 * kTwoPi - 1.0), kTwoPi - 1.0, 1e-13);
  // 4 pi minus a hair stays just below 2 pi, not 0.
  const double justBelow = reduced(kEps, std::nextafter(2 * kTwoPi, 0.0));
  EXPECT_LT(justBelow, kTwoPi);
  EXPECT_GT(justBelow, kTwoPi - 1e-14);
}

TEST(fpos2pi, slightly_negative_angles_within_eps_stay_negative) {
  EXPECT_EQ(reduced(kEps, -0.5 * kEps), -0.5 * kEps);
  EXPECT_EQ(reduced(kEps, -kEps), -kEps);  // closed: exactly -eps stays
  EXPECT_EQ(reduced(kEps, -2 * kEps), kTwoPi - 2 * kEps);
  EXPECT_EQ(reduced(0.0, -0.5 * kEps), kTwoPi - 0.5 * kEps);
}

TEST(fpos2pi, non_finite_input_gives_nan_and_huge_input_lands_in_one_turn) {
  EXPECT_TRUE(std::isnan(reduced(kEps, kNaN)));
  EXPECT_TRUE(std::isnan(reduced(kEps, kInf)));
  EXPECT_TRUE(std::isnan(reduced(kEps, -kInf)));
  for (double v : {1e300, -1e300, 1e17, -1e17}) {
    const double r = reduced(kEps, v);
    EXPECT_GE(r, -kEps) << v;
    EXPECT_LT(r, kTwoPi) << v;
  }
}

// ---------------------------------------------------------------------------------------------
// arcsin, arccos

TEST(arcsin_arccos, inverse_inside_the_range_and_zero_outside_without_clamping) {
  EXPECT_NEAR(arcsin(0.5), kPi / 6, 1e-15);
  EXPECT_NEAR(arcsin(-0.5), -kPi / 6, 1e-15);
  EXPECT_NEAR(arcsin(std::nextafter(1.0, 0.0)), kHalfPi, 1e-7);
  EXPECT_NEAR(arccos(0.5), kPi / 3, 1e-15);
  EXPECT_NEAR(arccos(-0.5), 2 * kPi / 3, 1e-15);
  EXPECT_NEAR(arccos(0.0), kHalfPi, 1e-15);
  EXPECT_NEAR(arccos(std::nextafter(-1.0, 0.0)), kPi, 1e-7);
  // Exact ends: arcsin gives +-pi/2, arccos only at exactly -1 gives pi (1 gives 0).
  EXPECT_EQ(arcsin(1.0), kHalfPi);
  EXPECT_EQ(arcsin(-1.0), -kHalfPi);
  EXPECT_EQ(arccos(-1.0), kPi);
  // Everything else outside, one rounding step included, gives 0: for arccos a step below -1 is
  // 0, not pi; the asymmetry is part of the contract.
  for (double x :
       {0.0, 1.5, -1.5, std::nextafter(1.0, 2.0), std::nextafter(-1.0, -2.0), kNaN, kInf, -kInf}) {
    EXPECT_EQ(arcsin(x), 0.0) << x;
    if (x != 0.0) {
      EXPECT_EQ(arccos(x), 0.0) << x;
    }
  }
  EXPECT_EQ(arccos(1.0), 0.0);
}

// ---------------------------------------------------------------------------------------------
// ValidAngle

struct SweepCase {
  const char* name;
  double start, end, angle;
  int expected;
};

std::ostream& operator<<(std::ostream& os, const SweepCase& c) {
  return os << c.name << " (" << c.start << " -> " << c.end << ", " << c.angle << ")";
}

class ValidAngleCase : public testing::TestWithParam<SweepCase> {};

TEST_P(ValidAngleCase, decides_as_expected) {
  const SweepCase& c = GetParam();
  EXPECT_EQ(ValidAngle(kEps, c.start, c.end, c.angle), c.expected);
}

// A quarter sweep from 1 to 1 + pi/2, probed around both ends.
constexpr double kS = 1.0;
constexpr double kE = 1.0 + kHalfPi;

INSTANTIATE_TEST_SUITE_P(
    Boundaries, ValidAngleCase,
    testing::Values(SweepCase{"start_exactly", kS, kE, kS, 1},
                    SweepCase{"end_exactly", kS, kE, kE, 1},
                    SweepCase{"middle", kS, kE, kS + 0.7, 1},
                    SweepCase{"start_minus_half_eps", kS, kE, kS - 0.5 * kEps, 1},
                    SweepCase{"start_minus_eps", kS, kE, kS - kEps, 1},
                    SweepCase{"start_minus_two_eps", kS, kE, kS - 2 * kEps, 0},
                    SweepCase{"end_plus_half_eps", kS, kE, kE + 0.5 * kEps, 1},
                    SweepCase{"end_plus_eps", kS, kE, kE + kEps, 1},
                    SweepCase{"end_plus_two_eps", kS, kE, kE + 2 * kEps, 0},
                    SweepCase{"opposite_side", kS, kE, kS + kPi + 0.5, 0},
                    SweepCase{"next_turn_up", kS, kE, kS + 0.7 + 2 * kTwoPi, 1},
                    SweepCase{"turns_down", kS, kE, kS + 0.7 - 3 * kTwoPi, 1},
                    SweepCase{"outside_in_next_turn", kS, kE, kS - 0.5 + kTwoPi, 0}));

INSTANTIATE_TEST_SUITE_P(
    ThroughZero, ValidAngleCase,
    testing::Values(SweepCase{"zero", 3 * kHalfPi, kHalfPi, 0.0, 1},
                    SweepCase{"just_below_a_turn", 3 * kHalfPi, kHalfPi, kTwoPi - kEps / 2, 1},
                    SweepCase{"pi_is_outside", 3 * kHalfPi, kHalfPi, kPi, 0},
                    SweepCase{"negative_angle", 3 * kHalfPi, kHalfPi, -0.3, 1},
                    SweepCase{"end_given_a_turn_below", 3 * kHalfPi, kHalfPi - 2 * kTwoPi, 0.2, 1},
                    SweepCase{"end_given_a_turn_below_outside", 3 * kHalfPi, kHalfPi - 2 * kTwoPi,
                              2.0, 0}));

INSTANTIATE_TEST_SUITE_P(
    EmptyAndFullSweeps, ValidAngleCase,
    testing::Values(SweepCase{"empty_at_start", 2.0, 2.0, 2.0, 1},
                    SweepCase{"empty_half_eps_after", 2.0, 2.0, 2.0 + 0.5 * kEps, 1},
                    SweepCase{"empty_half_eps_before", 2.0, 2.0, 2.0 - 0.5 * kEps, 1},
                    SweepCase{"empty_two_eps_after", 2.0, 2.0, 2.0 + 2 * kEps, 0},
                    SweepCase{"empty_two_eps_before", 2.0, 2.0, 2.0 - 2 * kEps, 0},
                    SweepCase{"empty_a_turn_away", 2.0, 2.0, 2.0 - kTwoPi, 1},
                    SweepCase{"empty_elsewhere", 2.0, 2.0, 3.0, 0},
                    SweepCase{"full_opposite", 2.0, 2.0 + kTwoPi, 2.0 + kPi, 1},
                    SweepCase{"full_just_before_start", 2.0, 2.0 + kTwoPi, 2.0 - 3 * kEps, 1},
                    SweepCase{"more_than_a_turn", 2.0, 2.0 + 3 * kPi, 1.0, 1}));

TEST(ValidAngle, full_sweep_contains_every_angle) {
  std::mt19937_64 rng(11);
  std::uniform_real_distribution<double> any(-20.0, 20.0);
  for (int i = 0; i < 2000; ++i) {
    const double start = any(rng);
    EXPECT_EQ(ValidAngle(kEps, start, start + kTwoPi, any(rng)), 1) << start;
  }
}

// Independent oracle: the angle's offset from start, reduced into [-pi, pi) + pi, compared with
// the sweep. Cases within 1e-9 of a decision edge are skipped, there the rounding of the turn
// steps decides.
TEST(ValidAngle, agrees_with_angular_offset_on_random_sweeps) {
  std::mt19937_64 rng(12);
  std::uniform_real_distribution<double> startDist(-30.0, 30.0);
  std::uniform_real_distribution<double> sweepDist(0.0, kTwoPi - 0.01);
  std::uniform_real_distribution<double> turnsDist(-40.0, 40.0);
  std::uniform_real_distribution<double> offsetDist(0.0, kTwoPi);
  const double eps = 1e-6;
  int checked = 0;
  for (int i = 0; i < 20000; ++i) {
    const double start = startDist(rng);
    const double sweep = sweepDist(rng);
    const double offset = offsetDist(rng);  // counter-clockwise from start, in [0, 2 pi)
    const double turns = std::round(turnsDist(rng) * (i % 3 == 0 ? 1.0 : 0.05));
    const double angle = start + offset + turns * kTwoPi;
    const double endTurns = std::round(turnsDist(rng) * 0.02);
    const double end = start + sweep + (endTurns < 0 ? endTurns * kTwoPi : 0.0);
    const double gapToEnd = offset - sweep;
    const double gapToStart = kTwoPi - offset;  // how far the angle lies before start
    if (std::fabs(gapToEnd - eps) < 1e-9 * (1 + std::fabs(turns)) ||
        std::fabs(gapToStart - eps) < 1e-9 * (1 + std::fabs(turns)))
      continue;
    const int expected = (offset <= sweep + eps || gapToStart <= eps) ? 1 : 0;
    ASSERT_EQ(ValidAngle(eps, start, end, angle), expected)
        << "start " << start << " sweep " << sweep << " offset " << offset << " turns " << turns;
    ++checked;
  }
  EXPECT_GT(checked, 19000);
}

TEST(ValidAngle, non_finite_argument_gives_zero) {
  for (double bad : {kNaN, kInf, -kInf}) {
    EXPECT_EQ(ValidAngle(bad, 0, 1, 0.5), 0);
    EXPECT_EQ(ValidAngle(kEps, bad, 1, 0.5), 0);
    EXPECT_EQ(ValidAngle(kEps, 0, bad, 0.5), 0);
    EXPECT_EQ(ValidAngle(kEps, 0, 1, bad), 0);
  }
}

TEST(ValidAngle, huge_arguments_return_promptly) {
  // Adding 2 pi no longer changes such values; the turn stepping must still end.
  const double huge[] = {1e300, -1e300, 1e17, -1e17, 1e9, -1e9, 1.7e308, -1.7e308};
  for (double a : huge) {
    for (double b : huge) {
      (void)ValidAngle(kEps, a, b, 0.5);
      (void)ValidAngle(kEps, 0.5, a, b);
      (void)ValidAngle(kEps, a, 0.5, b);
      (void)ValidAngle(a, 0.5, 1.0, b);
    }
  }
  // Far but representable turns still decide correctly.
  EXPECT_EQ(ValidAngle(1e-6, 1.0, 2.0, 1.5 + 1e5 * kTwoPi), 1);
  EXPECT_EQ(ValidAngle(1e-6, 1.0, 2.0, 3.0 - 1e5 * kTwoPi), 0);
  EXPECT_EQ(ValidAngle(1e-6, 1.0 + 40 * kTwoPi, 2.0 + 40 * kTwoPi, 1.5), 1);
  EXPECT_EQ(ValidAngle(1e-6, 1.0, 2.0 - 100 * kTwoPi, 1.5), 1);
}

// ---------------------------------------------------------------------------------------------
// Whole-turn stepping helpers

using tarnsysm::detail::addTurnsWhileBelow;
using tarnsysm::detail::subtractTurnsWhileAbove;

TEST(TurnStepping, within_a_few_turns_equals_repeated_addition_bit_for_bit) {
  std::mt19937_64 rng(13);
  // At most about 14 turns apart: the range where the helpers step one turn at a time.
  std::uniform_real_distribution<double> dist(-45.0, 45.0);
  for (int i = 0; i < 5000; ++i) {
    const double start = dist(rng);
    const double limit = dist(rng);
    double up = start;
    double upCompanion = 0.25;
    addTurnsWhileBelow(up, limit, &upCompanion);
    double expectUp = start;
    double expectCompanion = 0.25;
    while (expectUp < limit) {
      expectUp += kTwoPi;
      expectCompanion += kTwoPi;
    }
    ASSERT_EQ(up, expectUp) << start << " below " << limit;
    ASSERT_EQ(upCompanion, expectCompanion);

    double down = start;
    subtractTurnsWhileAbove(down, limit);
    double expectDown = start;
    while (expectDown > limit)
      expectDown -= kTwoPi;
    ASSERT_EQ(down, expectDown) << start << " above " << limit;
  }
}

TEST(TurnStepping, far_values_land_in_the_first_turn_past_the_limit) {
  for (double v : {-1e6, -12345.678, -1e12}) {
    double value = v;
    double companion = v + 1.0;
    addTurnsWhileBelow(value, 0.5, &companion);
    EXPECT_GE(value, 0.5) << v;
    EXPECT_LT(value, 0.5 + kTwoPi) << v;
    EXPECT_NEAR(companion - value, 1.0, 1e-3) << v;
  }
  for (double v : {1e6, 98765.4321, 1e12}) {
    double value = v;
    subtractTurnsWhileAbove(value, -0.5);
    EXPECT_LE(value, -0.5) << v;
    EXPECT_GT(value, -0.5 - kTwoPi) << v;
  }
}

TEST(TurnStepping, non_finite_and_huge_values_end_promptly) {
  for (double v : {kNaN, kInf, -kInf, 1e300, -1e300, 1.7e308, -1.7e308}) {
    double value = v;
    double companion = 0.0;
    addTurnsWhileBelow(value, 0.0, &companion);
    value = v;
    subtractTurnsWhileAbove(value, 0.0, &companion);
    value = 0.0;
    addTurnsWhileBelow(value, v);
    value = 0.0;
    subtractTurnsWhileAbove(value, v);
  }
  double nan = kNaN;
  addTurnsWhileBelow(nan, 0.0);
  EXPECT_TRUE(std::isnan(nan));
}

}  // namespace
