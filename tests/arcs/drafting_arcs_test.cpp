// Tarnsysm: planar computational geometry for 2D drafting.
// Tests of the stand-alone arcs built from drafting input sets.
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
const double kRoot2 = std::sqrt(2.0);

// Outputs of a DArc member, filled with sentinels so that "untouched" can be checked.
struct ArcOut {
  double centre[2] = {kSentinel, kSentinel};
  double r = kSentinel;
  double sa = kSentinel;
  double ea = kSentinel;
  short flag = 99;

  bool untouched() const {
    return centre[0] == kSentinel && centre[1] == kSentinel && r == kSentinel && sa == kSentinel &&
           ea == kSentinel && flag == 99;
  }
  Pt c() const { return {centre[0], centre[1]}; }
};

void expectArc(const ArcOut& out, Pt centre, double r, double sa, double ea, short flag) {
  EXPECT_NEAR(out.centre[0], centre.x, 1e-12);
  EXPECT_NEAR(out.centre[1], centre.y, 1e-12);
  if (r >= 0) {
    EXPECT_NEAR(out.r, r, 1e-12);
  }
  EXPECT_NEAR(out.sa, sa, 1e-12);
  EXPECT_NEAR(out.ea, ea, 1e-12);
  EXPECT_EQ(out.flag, flag);
}

// ---- DArcParam3P ------------------------------------------------------------------------

TEST(DArcParam3P, half_circle_over_the_top_either_way) {
  double a[2] = {0, 0};
  double m[2] = {1, 1};
  double b[2] = {2, 0};
  ArcOut out;
  ASSERT_EQ(DArcParam3P(kEps, a, m, b, out.centre, &out.r, &out.sa, &out.ea, &out.flag), 1);
  expectArc(out, {1, 0}, 1, 0, kPi, 1);  // clockwise: angles swapped
  ArcOut back;
  ASSERT_EQ(DArcParam3P(kEps, b, m, a, back.centre, &back.r, &back.sa, &back.ea, &back.flag), 1);
  expectArc(back, {1, 0}, 1, 0, kPi, -1);
}

TEST(DArcParam3P, sweep_through_zero_and_clockwise_major_arc) {
  double a[2] = {std::cos(-kPi / 4), std::sin(-kPi / 4)};
  double m[2] = {1, 0};
  double b[2] = {std::cos(kPi / 4), std::sin(kPi / 4)};
  ArcOut out;
  ASSERT_EQ(DArcParam3P(kEps, a, m, b, out.centre, &out.r, &out.sa, &out.ea, &out.flag), 1);
  expectArc(out, {0, 0}, 1, 7 * kPi / 4, 9 * kPi / 4, -1);

  // From (1,0) clockwise through (0,-1) to (0,1): the sweep runs from (0,1) to (1,0).
  double p[2] = {1, 0};
  double q[2] = {0, -1};
  double w[2] = {0, 1};
  ArcOut major;
  ASSERT_EQ(DArcParam3P(kEps, p, q, w, major.centre, &major.r, &major.sa, &major.ea, &major.flag),
            1);
  expectArc(major, {0, 0}, 1, kHalfPi, kTwoPi, 1);
}

TEST(DArcParam3P, coincident_or_collinear_points_fail_and_write_nothing) {
  const double eps = kDyadicEps;
  double p1[2] = {0, 0};
  double p2[2] = {1, 0};
  ArcOut out;
  // Twice the area of (0,0), (1,0), (0.5, y) is y; the test is open.
  double flat[2] = {0.5, eps / 2};
  EXPECT_EQ(DArcParam3P(eps, p1, p2, flat, out.centre, &out.r, &out.sa, &out.ea, &out.flag), 0);
  double straight[2] = {3, 0};
  EXPECT_EQ(DArcParam3P(eps, p1, p2, straight, out.centre, &out.r, &out.sa, &out.ea, &out.flag), 0);
  double close[2] = {eps / 2, 0};
  double off[2] = {0, 1};
  EXPECT_EQ(DArcParam3P(eps, p1, close, off, out.centre, &out.r, &out.sa, &out.ea, &out.flag), 0);
  EXPECT_EQ(DArcParam3P(eps, p1, off, close, out.centre, &out.r, &out.sa, &out.ea, &out.flag), 0);
  double bad[2] = {kNaN, 1};
  EXPECT_EQ(DArcParam3P(eps, p1, p2, bad, out.centre, &out.r, &out.sa, &out.ea, &out.flag), 0);
  EXPECT_TRUE(out.untouched());

  // Exactly eps of doubled area, and points exactly eps apart, still make an arc.
  double justOff[2] = {0.5, eps};
  EXPECT_EQ(DArcParam3P(eps, p1, p2, justOff, out.centre, &out.r, &out.sa, &out.ea, &out.flag), 1);
  double atEps[2] = {eps, 0};
  EXPECT_EQ(DArcParam3P(eps, p1, atEps, off, out.centre, &out.r, &out.sa, &out.ea, &out.flag), 1);
}

// ---- DArcStpEdpIna ----------------------------------------------------------------------

TEST(DArcStpEdpIna, flag_tells_the_side_of_the_centre) {
  double stp[2] = {0, 0};
  double edp[2] = {2, 0};
  ArcOut half;
  ASSERT_EQ(
      DArcStpEdpIna(kEps, stp, edp, kPi, half.centre, &half.r, &half.sa, &half.ea, &half.flag), 1);
  // Counter-clockwise half circle from (0,0) to (2,0): it runs below, sa at stp.
  expectArc(half, {1, 0}, 1, kPi, kTwoPi, -1);

  ArcOut left;
  ASSERT_EQ(
      DArcStpEdpIna(kEps, stp, edp, kHalfPi, left.centre, &left.r, &left.sa, &left.ea, &left.flag),
      1);
  expectArc(left, {1, 1}, kRoot2, 5 * kPi / 4, 7 * kPi / 4, -1);

  ArcOut right;
  ASSERT_EQ(DArcStpEdpIna(kEps, stp, edp, -kHalfPi, right.centre, &right.r, &right.sa, &right.ea,
                          &right.flag),
            1);
  expectArc(right, {1, -1}, kRoot2, kPi / 4, 3 * kPi / 4, 1);

  // Three quarters counter-clockwise: the centre lies to the right of the chord.
  ArcOut major;
  ASSERT_EQ(DArcStpEdpIna(kEps, stp, edp, 3 * kHalfPi, major.centre, &major.r, &major.sa, &major.ea,
                          &major.flag),
            1);
  expectArc(major, {1, -1}, kRoot2, 3 * kPi / 4, 9 * kPi / 4, 1);
}

TEST(DArcStpEdpIna, no_turn_or_a_full_turn_fails_and_writes_nothing) {
  double stp[2] = {0, 0};
  double edp[2] = {2, 0};
  ArcOut out;
  for (double ina : {0.0, kEps / 2, -kEps / 2, kTwoPi, -kTwoPi, kNaN})
    EXPECT_EQ(DArcStpEdpIna(kEps, stp, edp, ina, out.centre, &out.r, &out.sa, &out.ea, &out.flag),
              0)
        << ina;
  EXPECT_TRUE(out.untouched());
}

// ---- DArcStpStaEdp and DArcStpEdpDir ----------------------------------------------------

TEST(DArcStpStaEdp, quarter_circle_to_the_left) {
  double stp[2] = {0, 0};
  double edp[2] = {1, 1};
  ArcOut out;
  ASSERT_EQ(DArcStpStaEdp(kEps, stp, 0.0, edp, out.centre, &out.r, &out.sa, &out.ea, &out.flag), 1);
  expectArc(out, {0, 1}, 1, 3 * kHalfPi, kTwoPi, -1);
}

TEST(DArcStpEdpDir, quarter_circle_to_the_right_with_the_direction_last) {
  double stp[2] = {0, 0};
  double edp[2] = {1, -1};
  ArcOut out;
  ASSERT_EQ(DArcStpEdpDir(kEps, stp, edp, 0.0, out.centre, &out.r, &out.sa, &out.ea, &out.flag), 1);
  expectArc(out, {0, -1}, 1, 0, kHalfPi, 1);  // clockwise: sa at the end point
  // The direction is reduced into one turn first.
  ArcOut turned;
  ASSERT_EQ(DArcStpEdpDir(kEps, stp, edp, 2 * kTwoPi, turned.centre, &turned.r, &turned.sa,
                          &turned.ea, &turned.flag),
            1);
  expectArc(turned, {0, -1}, 1, 0, kHalfPi, 1);
}

// Both tangent-start members refuse an end point within eps (in angle) of the start tangent,
// ahead or behind, and accept one 2 eps off it.
struct TangentBoundaryCase {
  const char* name;
  double offset;  // angle of edp from stp, relative to the start direction
  int expected;
};

std::ostream& operator<<(std::ostream& os, const TangentBoundaryCase& c) {
  return os << c.name;
}

class TangentStartBoundary : public ::testing::TestWithParam<TangentBoundaryCase> {};

TEST_P(TangentStartBoundary, end_point_near_the_start_tangent) {
  const TangentBoundaryCase& c = GetParam();
  const double dir = 0.3;
  double stp[2] = {1, 2};
  double edp[2] = {1 + 3 * std::cos(dir + c.offset), 2 + 3 * std::sin(dir + c.offset)};
  ArcOut a;
  ArcOut b;
  EXPECT_EQ(DArcStpStaEdp(kEps, stp, dir, edp, a.centre, &a.r, &a.sa, &a.ea, &a.flag), c.expected);
  EXPECT_EQ(DArcStpEdpDir(kEps, stp, edp, dir, b.centre, &b.r, &b.sa, &b.ea, &b.flag), c.expected);
  if (c.expected == 0) {
    EXPECT_TRUE(a.untouched());
    EXPECT_TRUE(b.untouched());
  }
}

INSTANTIATE_TEST_SUITE_P(
    DArcTangentStart, TangentStartBoundary,
    ::testing::Values(TangentBoundaryCase{"ahead", 0.0, 0},
                      TangentBoundaryCase{"ahead_left_half_eps", kEps / 2, 0},
                      TangentBoundaryCase{"ahead_right_half_eps", -kEps / 2, 0},
                      TangentBoundaryCase{"ahead_left_two_eps", 2 * kEps, 1},
                      TangentBoundaryCase{"ahead_right_two_eps", -2 * kEps, 1},
                      TangentBoundaryCase{"behind", kPi, 0},
                      TangentBoundaryCase{"behind_half_eps", kPi + kEps / 2, 0},
                      TangentBoundaryCase{"behind_two_eps", kPi + 2 * kEps, 1},
                      TangentBoundaryCase{"behind_other_side_two_eps", kPi - 2 * kEps, 1}),
    [](const ::testing::TestParamInfo<TangentBoundaryCase>& info) { return info.param.name; });

// ---- DArcStpInaRadDir -------------------------------------------------------------------

struct InaRadDirCase {
  const char* name;
  double ina, dir;
  Pt centre;
  double sa, ea;
  short flag;
};

std::ostream& operator<<(std::ostream& os, const InaRadDirCase& c) {
  return os << c.name;
}

class DArcStpInaRadDirTable : public ::testing::TestWithParam<InaRadDirCase> {};

TEST_P(DArcStpInaRadDirTable, centre_angles_and_flag) {
  const InaRadDirCase& c = GetParam();
  double stp[2] = {0, 0};
  ArcOut out;
  ASSERT_EQ(DArcStpInaRadDir(kEps, stp, c.ina, 1.0, c.dir, out.centre, &out.sa, &out.ea, &out.flag),
            1);
  expectArc(out, c.centre, -1, c.sa, c.ea, c.flag);
  EXPECT_EQ(out.r, kSentinel);  // this member has no radius output
}

// Unit radius from (0,0); the chord of a quarter or three-quarter turn is sqrt(2) long.
const double kH = kRoot2 / 2;
INSTANTIATE_TEST_SUITE_P(
    DArcStpInaRadDir, DArcStpInaRadDirTable,
    ::testing::Values(
        InaRadDirCase{"ccw_quarter", kHalfPi, 0, {kH, kH}, 5 * kPi / 4, 7 * kPi / 4, -1},
        InaRadDirCase{"cw_quarter", -kHalfPi, 0, {kH, -kH}, kPi / 4, 3 * kPi / 4, 1},
        InaRadDirCase{
            "ccw_three_quarters", 3 * kHalfPi, kHalfPi, {kH, kH}, 5 * kPi / 4, 11 * kPi / 4, -2},
        InaRadDirCase{"cw_three_quarters", -3 * kHalfPi, 0, {kH, kH}, 7 * kPi / 4, 13 * kPi / 4, 2},
        InaRadDirCase{
            "ccw_quarter_plus_a_turn", kHalfPi + kTwoPi, 0, {kH, kH}, 5 * kPi / 4, 7 * kPi / 4, -1},
        InaRadDirCase{
            "cw_quarter_minus_a_turn", -kHalfPi - kTwoPi, 0, {kH, -kH}, kPi / 4, 3 * kPi / 4, 1}),
    [](const ::testing::TestParamInfo<InaRadDirCase>& info) { return info.param.name; });

// ---- DArcStpRadEdp ----------------------------------------------------------------------

TEST(DArcStpRadEdp, radius_of_half_the_chord_is_a_half_circle_a_smaller_one_fails) {
  double stp[2] = {0, 0};
  double edp[2] = {2, 0};
  ArcOut out;
  ASSERT_EQ(DArcStpRadEdp(kEps, stp, 1.0, edp, out.centre, &out.sa, &out.ea), 1);
  expectArc(out, {1, 0}, -1, kPi, kTwoPi, 99);
  ArcOut none;
  EXPECT_EQ(DArcStpRadEdp(kEps, stp, 0.999, edp, none.centre, &none.sa, &none.ea), 0);
  EXPECT_EQ(DArcStpRadEdp(kEps, stp, -1.0, edp, none.centre, &none.sa, &none.ea), 0);
  EXPECT_EQ(DArcStpRadEdp(kEps, stp, kNaN, edp, none.centre, &none.sa, &none.ea), 0);
  EXPECT_TRUE(none.untouched());
}

TEST(DArcStpRadEdp, start_angle_is_not_reduced_into_one_turn) {
  double stp[2] = {0, 0};
  double edp[2] = {-1, -1};
  ArcOut out;
  ASSERT_EQ(DArcStpRadEdp(kEps, stp, 1.0, edp, out.centre, &out.sa, &out.ea), 1);
  // Centre (0,-1): stp is straight above it, edp to its left; sa is given as 5 pi / 2.
  expectArc(out, {0, -1}, -1, 5 * kHalfPi, 3 * kPi, 99);
}

// ---- Randomised: arcs pass through their points, flags match the travel --------------------

class RandomDraftingArcs : public ::testing::Test {
 protected:
  static constexpr double eps = 1e-9;
  static constexpr double tol = 1e-7;
  std::mt19937 rng{424242};
  Pt point() {
    std::uniform_real_distribution<double> u(-10.0, 10.0);
    return {u(rng), u(rng)};
  }
  double uniform(double lo, double hi) {
    return std::uniform_real_distribution<double>(lo, hi)(rng);
  }

  // The arc convention every member keeps: ea at or above sa, at most one turn (plus eps) up.
  static void expectSweepConvention(const ArcOut& out) {
    EXPECT_GE(out.ea, out.sa - eps);
    EXPECT_LE(out.ea - out.sa, kTwoPi + eps);
  }
  // Start and end of the travel: sa/ea as the flag's direction says.
  static void expectEnds(const ArcOut& out, Pt from, Pt to, bool clockwise) {
    const Pt c = out.c();
    EXPECT_LT(angleGap(clockwise ? out.ea : out.sa, direction(c, from)), tol);
    EXPECT_LT(angleGap(clockwise ? out.sa : out.ea, direction(c, to)), tol);
  }
};

TEST_F(RandomDraftingArcs, three_points_lie_on_the_arc_in_their_order) {
  int checked = 0;
  for (int i = 0; i < 500; ++i) {
    const Pt c = point();
    const double r = uniform(0.5, 10.0);
    Pt a = onCircle(c, r, uniform(0, kTwoPi));
    Pt m = onCircle(c, r, uniform(0, kTwoPi));
    Pt b = onCircle(c, r, uniform(0, kTwoPi));
    if (dist(a, m) < 0.05 || dist(m, b) < 0.05 || dist(a, b) < 0.05)
      continue;
    ArcOut out;
    ASSERT_EQ(DArcParam3P(eps, &a.x, &m.x, &b.x, out.centre, &out.r, &out.sa, &out.ea, &out.flag),
              1);
    EXPECT_NEAR(out.centre[0], c.x, 1e-6);
    EXPECT_NEAR(out.centre[1], c.y, 1e-6);
    EXPECT_NEAR(out.r, r, 1e-6);
    const bool clockwise = cross(a, m, b) < 0;
    EXPECT_EQ(out.flag, clockwise ? 1 : -1) << i;
    expectEnds(out, a, b, clockwise);
    expectSweepConvention(out);
    EXPECT_EQ(ValidAngle(eps, out.sa, out.ea, direction(c, m)), 1) << i;
    ++checked;
  }
  EXPECT_GT(checked, 250);  // the filters above must leave most cases
}

TEST_F(RandomDraftingArcs, start_end_and_included_angle) {
  int checked = 0;
  for (int i = 0; i < 500; ++i) {
    Pt s = point();
    Pt e = point();
    const double ina = uniform(-kTwoPi + 0.01, kTwoPi - 0.01);
    if (dist(s, e) < 0.1 || std::fabs(ina) < 0.01)
      continue;
    ArcOut out;
    ASSERT_EQ(DArcStpEdpIna(eps, &s.x, &e.x, ina, out.centre, &out.r, &out.sa, &out.ea, &out.flag),
              1);
    const Pt c = out.c();
    EXPECT_NEAR(dist(c, s), out.r, tol);
    EXPECT_NEAR(dist(c, e), out.r, tol);
    EXPECT_NEAR(out.ea - out.sa, std::fabs(ina), tol);
    EXPECT_EQ(out.flag, cross(s, e, c) > 0 ? -1 : 1) << i;  // -1: centre left of the chord
    expectEnds(out, s, e, ina < 0);
    ++checked;
  }
  EXPECT_GT(checked, 250);  // the filters above must leave most cases
}

TEST_F(RandomDraftingArcs, tangent_start_arcs_leave_in_the_start_direction) {
  int checked = 0;
  for (int i = 0; i < 500; ++i) {
    Pt s = point();
    Pt e = point();
    const double dir = uniform(-kTwoPi, 2 * kTwoPi);
    if (dist(s, e) < 0.1 || std::fabs(std::sin(direction(s, e) - dir)) < 1e-3)
      continue;
    // The end point to the left of the start direction makes a counter-clockwise arc.
    const Pt ahead{s.x + std::cos(dir), s.y + std::sin(dir)};
    const bool clockwise = cross(s, ahead, e) < 0;
    ArcOut sta;
    ArcOut edpDir;
    ASSERT_EQ(DArcStpStaEdp(eps, &s.x, dir, &e.x, sta.centre, &sta.r, &sta.sa, &sta.ea, &sta.flag),
              1);
    ASSERT_EQ(DArcStpEdpDir(eps, &s.x, &e.x, dir, edpDir.centre, &edpDir.r, &edpDir.sa, &edpDir.ea,
                            &edpDir.flag),
              1);
    for (const ArcOut* out : {&sta, &edpDir}) {
      const Pt c = out->c();
      EXPECT_NEAR(dist(c, s), out->r, tol * out->r);
      EXPECT_NEAR(dist(c, e), out->r, tol * out->r);
      EXPECT_EQ(out->flag, clockwise ? 1 : -1) << i;
      expectEnds(*out, s, e, clockwise);
      expectSweepConvention(*out);
      const double tangent = direction(c, s) + (clockwise ? -kHalfPi : kHalfPi);
      EXPECT_LT(angleGap(tangent, dir), tol) << i;
    }
    ++checked;
  }
  EXPECT_GT(checked, 250);  // the filters above must leave most cases
}

TEST_F(RandomDraftingArcs, included_angle_radius_and_chord_direction) {
  int checked = 0;
  for (int i = 0; i < 500; ++i) {
    Pt s = point();
    const double ina = uniform(-kTwoPi + 0.01, kTwoPi - 0.01);
    const double rad = uniform(0.1, 10.0);
    const double dir = uniform(-kTwoPi, 2 * kTwoPi);
    if (std::fabs(ina) < 0.01)
      continue;
    ArcOut out;
    ASSERT_EQ(DArcStpInaRadDir(eps, &s.x, ina, rad, dir, out.centre, &out.sa, &out.ea, &out.flag),
              1);
    const Pt c = out.c();
    EXPECT_NEAR(dist(c, s), rad, tol);
    EXPECT_NEAR(out.ea - out.sa, std::fabs(ina), tol);
    const bool clockwise = ina < 0;
    EXPECT_EQ(out.flag, (clockwise ? 1 : -1) * (std::fabs(ina) > kPi ? 2 : 1)) << i;
    // The start point at the travel's start, the chord to the other end along dir.
    EXPECT_LT(angleGap(clockwise ? out.ea : out.sa, direction(c, s)), tol);
    const Pt e = onCircle(c, rad, clockwise ? out.sa : out.ea);
    EXPECT_LT(angleGap(direction(s, e), dir), 1e-6) << i;
    EXPECT_GE(out.sa, -eps);
    ++checked;
  }
  EXPECT_GT(checked, 250);  // the filters above must leave most cases
}

TEST_F(RandomDraftingArcs, radius_and_end_point_give_the_counter_clockwise_minor_arc) {
  int checked = 0;
  for (int i = 0; i < 500; ++i) {
    Pt s = point();
    Pt e = point();
    const double chord = dist(s, e);
    const double rad = uniform(0.5 * chord + 0.01, 3 * chord + 1);
    if (chord < 0.1)
      continue;
    ArcOut out;
    ASSERT_EQ(DArcStpRadEdp(eps, &s.x, rad, &e.x, out.centre, &out.sa, &out.ea), 1);
    const Pt c = out.c();
    EXPECT_NEAR(dist(c, s), rad, tol);
    EXPECT_NEAR(dist(c, e), rad, tol);
    EXPECT_LE(out.ea - out.sa, kPi + eps);
    EXPECT_GT(cross(s, e, c), 0.0);  // centre to the left: counter-clockwise minor arc
    expectEnds(out, s, e, false);
    ++checked;
  }
  EXPECT_GT(checked, 250);  // the filters above must leave most cases
}

// ---- Hostile input ------------------------------------------------------------------------

TEST(DraftingArcs, hostile_numbers_return_promptly_and_write_only_their_outputs) {
  HostileNumbers v(131);
  for (int i = 0; i < 3000; ++i) {
    double a[2] = {v(), v()};
    double b[2] = {v(), v()};
    double c[2] = {v(), v()};
    double centreWithGuards[4] = {kSentinel, 0, 0, kSentinel};
    double* centre = centreWithGuards + 1;
    double r = 0, sa = 0, ea = 0;
    short flag = 0;
    const double eps = i % 4 ? 1e-9 : v();
    (void)DArcParam3P(eps, a, b, c, centre, &r, &sa, &ea, &flag);
    (void)DArcStpEdpIna(eps, a, b, v(), centre, &r, &sa, &ea, &flag);
    (void)DArcStpEdpDir(eps, a, b, v(), centre, &r, &sa, &ea, &flag);
    (void)DArcStpStaEdp(eps, a, v(), b, centre, &r, &sa, &ea, &flag);
    (void)DArcStpInaRadDir(eps, a, v(), v(), v(), centre, &sa, &ea, &flag);
    (void)DArcStpRadEdp(eps, a, v(), b, centre, &sa, &ea);
    EXPECT_EQ(centreWithGuards[0], kSentinel);
    EXPECT_EQ(centreWithGuards[3], kSentinel);
    EXPECT_TRUE(flag == 0 || flag == 1 || flag == -1 || flag == 2 || flag == -2);
  }
}

}  // namespace
