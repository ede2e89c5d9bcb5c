// Tarnsysm: planar computational geometry for 2D drafting.
// Direction angles, turn reduction, guarded inverse trigonometry, arc membership, whole-turn
// stepping and the point helpers.

#include "test_support.h"

namespace {

using namespace tarnsysm::test;
using tarnsysm::detail::addTurnsWhileBelow;
using tarnsysm::detail::subtractTurnsWhileAbove;

const double kRaw = std::atan2(-1e-3, 1.0);  // eps = -kRaw puts DAngle's lift exactly on its edge

TEST(DAngle, table) {
  // clang-format off
  const struct { const char* name; double eps, x1, y1, x2, y2; int result; double angle, tol; } rows[] = {
      {"both_within_eps_closed", kE, 3, -2, 3 + kE, -2 - kE, 0, 0.0, 0},
      {"each_coordinate_alone", kE, 3, -2, 3 - kE, -2 + kE / 2, 0, 0.0, 0},
      {"one_coordinate_beyond", kE, 0, 0, std::nextafter(kE, 1.0), 0, 1, 0.0, 0},
      {"north_west", kE, 3, -2, 2, -1, 1, 3 * kPi / 4, 1e-15},
      {"south", kE, 3, -2, 3, -2.5, 1, 3 * kHalfPi, 1e-15},
      {"thirty_degrees", kE, -1, 2, std::sqrt(3.0) - 1, 3, 1, kPi / 6, 1e-15},
      {"just_below_minus_pi_lifted", kE, 0, 0, -1, -1e-30 * kE, 1, kPi, 1e-15},
      {"half_eps_below_zero_kept", kE, 0, 0, 1, -0.5 * kE, 1, -0.5 * kE, 1e-9},
      {"two_eps_below_zero_lifted", kE, 0, 0, 1, -2 * kE, 1, kTwoPi - 2 * kE, 1e-8},
      {"exactly_eps_below_kept", -kRaw, 0, 0, 1, -1e-3, 1, kRaw, 0},
      {"an_ulp_beyond_eps_lifted", std::nextafter(-kRaw, 0.0), 0, 0, 1, -1e-3, 1, kRaw + kTwoPi, 0},
      {"lift_rounding_to_two_pi_is_zero", 0.0, 0, 0, 1, -1e-16, 1, 0.0, 0},
      {"huge_coordinates", kE, -1e300, 0, 0, 1e300, 1, kPi / 4, 1e-15},
  };
  // clang-format on
  for (const auto& r : rows) {
    double angle = kUnwritten;
    const int got = DAngle(r.eps, r.x1, r.y1, r.x2, r.y2, &angle);
    EXPECT_TRUE(gives(got, r.result, {angle}, {r.angle}, r.tol) && angleInTurn(r.eps, angle))
        << r.name;
  }
}

TEST(fpos2pi, table) {
  // clang-format off
  const struct { const char* name; double eps, in, out, tol; } rows[] = {
      {"two_pi_is_zero", kE, kTwoPi, 0.0, 0},
      {"turns_above", kE, 3 * kTwoPi + 0.5, 0.5, 1e-14},
      {"turns_below", kE, -5 * kTwoPi - 1.0, kTwoPi - 1.0, 1e-13},
      {"in_the_turn_unchanged", kE, 6.0, 6.0, 0},
      {"half_eps_below_kept", kE, -0.5 * kE, -0.5 * kE, 0},
      {"exactly_eps_below_kept", kE, -kE, -kE, 0},
      {"two_eps_below_lifted", kE, -2 * kE, kTwoPi - 2 * kE, 0},
      {"eps_zero_lifts_everything_negative", 0.0, -0.5 * kE, kTwoPi - 0.5 * kE, 0},
      {"lift_rounding_to_two_pi_is_zero", 1e-20, -1e-17, 0.0, 0},
      {"four_pi_less_an_ulp_stays_below_two_pi", kE, std::nextafter(2 * kTwoPi, 0.0), kTwoPi - 1e-15, 1e-15},
  };
  // clang-format on
  for (const auto& r : rows) {
    double a = r.in;
    fpos2pi(r.eps, &a);
    EXPECT_TRUE(near({a}, {r.out}, r.tol) && angleInTurn(r.eps, a)) << r.name;
  }
  double minusTurn = -kTwoPi;  // fmod keeps the sign: -0, which is not below -eps
  fpos2pi(kE, &minusTurn);
  EXPECT_TRUE(minusTurn == 0.0 && std::signbit(minusTurn));
}

TEST(arcsin_arccos, exact_ends_inside_and_zero_outside) {
  EXPECT_TRUE(near({arcsin(-0.5), arccos(-0.5)}, {-kPi / 6, 2 * kPi / 3}, 1e-15));
  EXPECT_TRUE(
      near({arcsin(1.0), arcsin(-1.0), arccos(-1.0), arccos(1.0)}, {kHalfPi, -kHalfPi, kPi, 0}, 0));
  // No clamping: a rounding step outside is 0, for arccos below -1 too.
  for (double x : {1.5, -1.5, std::nextafter(1.0, 2.0), std::nextafter(-1.0, -2.0), kNaN, kInf}) {
    EXPECT_EQ(arcsin(x), 0.0) << x;
    EXPECT_EQ(arccos(x), 0.0) << x;
  }
}

TEST(ValidAngle, table) {
  constexpr double s = 1.0, e = 1.0 + kHalfPi;  // a quarter sweep
  // clang-format off
  const struct { const char* name; double start, end, angle; int expected; } rows[] = {
      {"start_minus_half_eps", s, e, s - 0.5 * kE, 1},
      {"start_minus_eps", s, e, s - kE, 1},
      {"start_minus_two_eps", s, e, s - 2 * kE, 0},
      {"end_plus_half_eps", s, e, e + 0.5 * kE, 1},
      {"end_plus_eps", s, e, e + kE, 1},
      {"end_plus_two_eps", s, e, e + 2 * kE, 0},
      {"through_zero_at_zero", 3 * kHalfPi, kHalfPi, 0.0, 1},
      {"through_zero_just_below_a_turn", 3 * kHalfPi, kHalfPi, kTwoPi - kE / 2, 1},
      {"empty_sweep_half_eps_after", 2.0, 2.0, 2.0 + 0.5 * kE, 1},
      {"empty_sweep_two_eps_before", 2.0, 2.0, 2.0 - 2 * kE, 0},
      {"empty_sweep_a_turn_away", 2.0, 2.0, 2.0 - kTwoPi, 1},
      {"full_turn_just_before_start", 2.0, 2.0 + kTwoPi, 2.0 - 3 * kE, 1},
      {"more_than_a_turn", 2.0, 2.0 + 3 * kPi, 1.0, 1},
      {"far_turns", 1.0, 2.0, 1.5 + 1e5 * kTwoPi, 1},
      {"far_turns_outside", 1.0, 2.0, 3.0 - 1e5 * kTwoPi, 0},
      {"end_exactly_eps_below_start_is_empty", 2.0, 2.0 - kE, 2.5, 0},
      {"far_start_minus_eps", 100, 101, 100 - kE, 1},
      {"far_start", 1.0 + 40 * kTwoPi, 2.0 + 40 * kTwoPi, 1.5, 1},
      {"nan_angle", 0.0, 1.0, kNaN, 0},
      {"infinite_end", 0.0, kInf, 0.5, 0},
  };
  // clang-format on
  for (const auto& r : rows)
    EXPECT_EQ(ValidAngle(kE, r.start, r.end, r.angle), r.expected) << r.name;
  EXPECT_EQ(ValidAngle(kNaN, 0, 1, 0.5), 0);
}

// Within a few turns the helpers are repeated addition bit for bit (far turns and hostile values
// reach them through ValidAngle above and the hostile test below).
TEST(TurnStepping, equals_repeated_addition_and_ends_for_any_double) {
  std::mt19937_64 rng(13);
  std::uniform_real_distribution<double> dist(-45.0, 45.0);
  for (int i = 0; i < 5000; ++i) {
    const double start = dist(rng), limit = dist(rng);
    double up = start, companion = 0.25, expectUp = start, expectCompanion = 0.25;
    addTurnsWhileBelow(up, limit, &companion);
    for (; expectUp < limit; expectCompanion += kTwoPi)
      expectUp += kTwoPi;
    ASSERT_EQ(up, expectUp) << start << " below " << limit;
    ASSERT_EQ(companion, expectCompanion);
    double down = start, expectDown = start;
    subtractTurnsWhileAbove(down, limit);
    while (expectDown > limit)
      expectDown -= kTwoPi;
    ASSERT_EQ(down, expectDown) << start << " above " << limit;
  }
}

TEST(Points, coincidence_distances_copies_rotation_and_unit_vectors) {
  EXPECT_EQ(SamePoint(kE, 0, 0, kE / 2, 0), 1);
  EXPECT_EQ(SamePoint(kE, 0, 0, 0, kE), 0);  // exactly eps apart: two points
  EXPECT_EQ(SamePoint(0.0, 1, 1, 1, 1), 0);
  double p[3] = {1, 2, 99}, q[3] = {4, 6, -99};
  // Planar with z ignored, planar from coordinates, and in space (2, 3, 6).
  EXPECT_TRUE(near(
      {DistBetweenPoint(p, q), DistBetweenPoint(1, 2, 4, -2), DistBetweenPoint(1, 1, 1, 3, 4, 7)},
      {5, 5, 7}, 0));
  double dst[3];
  Assign3DPoint(dst, q);
  EXPECT_TRUE(near({dst[0], dst[1], dst[2]}, {4, 6, -99}, 0));
  Assign3DPoint(dst, 7, 8, 9);
  EXPECT_TRUE(near({dst[0], dst[1], dst[2]}, {7, 8, 9}, 0));
  double r[3] = {2, 1, 5};
  RotatePoint(kHalfPi, r);
  EXPECT_TRUE(near({r[0], r[1], r[2]}, {-1, 2, 5}, 1e-15));
  double ux = kUnwritten, uy = kUnwritten;
  EXPECT_EQ(DLineUnitVector(kE, 1, 1, 1, 1 + kE / 2, &ux, &uy), 0);
  EXPECT_EQ(DLineUnitVector(kE, 1, 1, kNaN, 1, &ux, &uy), 0);
  EXPECT_TRUE(untouched({ux, uy}));
  EXPECT_EQ(DLineUnitVector(kE, 1, 1, 1, 1 - kE, &ux, &uy), 1);  // exactly eps long
  EXPECT_TRUE(ux == 0 && uy == -1);
  EXPECT_EQ(DLineUnitVector(kE, 1, 2, 4, 6, &ux, &uy), 1);
  EXPECT_TRUE(ux == 0.6 && uy == 0.8);
}

// Every angle primitive fed the hostile numbers: no hang, and each result as documented.
TEST(Hostile, angle_primitives_keep_their_documented_results) {
  HostileNumbers h(3);
  for (int i = 0; i < 20000; ++i) {
    const double eps = std::fabs(h()), a = h(), b = h(), c = h();
    double angle = kUnwritten;
    const int found = DAngle(eps, a, b, c, h(), &angle);
    ASSERT_TRUE(found == 0 || found == 1);
    ASSERT_TRUE(!std::isfinite(angle * eps) || angleInTurn(eps, angle)) << angle;
    double turn = a;
    fpos2pi(eps, &turn);
    ASSERT_TRUE(std::isfinite(a) ? std::isnan(eps) || angleInTurn(eps, turn) : std::isnan(turn));
    const int on = ValidAngle(eps, a, b, c);
    ASSERT_TRUE(on == 0 || on == 1);
    ASSERT_TRUE(std::isfinite(a + b + c) || on == 0);
    ASSERT_TRUE(std::isfinite(arcsin(a)) && std::isfinite(arccos(a)));
  }
}

}  // namespace
