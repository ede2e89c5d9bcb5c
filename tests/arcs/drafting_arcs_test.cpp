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

// Result and outputs of a DArc member, filled with sentinels so that "untouched" can be checked.
struct ArcOut {
  int n = -99;
  double centre[2] = {kSentinel, kSentinel};
  double r = kSentinel, sa = kSentinel, ea = kSentinel;
  short flag = 99;

  bool untouched() const {
    return centre[0] == kSentinel && centre[1] == kSentinel && r == kSentinel && sa == kSentinel &&
           ea == kSentinel && flag == 99;
  }
  Pt c() const { return {centre[0], centre[1]}; }
};

// Each member called on points passed by value, so a test reads as its geometry.
ArcOut param3P(double eps, Pt a, Pt m, Pt b) {
  ArcOut o;
  o.n = DArcParam3P(eps, &a.x, &m.x, &b.x, o.centre, &o.r, &o.sa, &o.ea, &o.flag);
  return o;
}
ArcOut stpEdpIna(double eps, Pt s, Pt e, double ina) {
  ArcOut o;
  o.n = DArcStpEdpIna(eps, &s.x, &e.x, ina, o.centre, &o.r, &o.sa, &o.ea, &o.flag);
  return o;
}
ArcOut stpStaEdp(double eps, Pt s, double sta, Pt e) {
  ArcOut o;
  o.n = DArcStpStaEdp(eps, &s.x, sta, &e.x, o.centre, &o.r, &o.sa, &o.ea, &o.flag);
  return o;
}
ArcOut stpEdpDir(double eps, Pt s, Pt e, double dir) {
  ArcOut o;
  o.n = DArcStpEdpDir(eps, &s.x, &e.x, dir, o.centre, &o.r, &o.sa, &o.ea, &o.flag);
  return o;
}
ArcOut stpInaRadDir(double eps, Pt s, double ina, double rad, double dir) {
  ArcOut o;
  o.n = DArcStpInaRadDir(eps, &s.x, ina, rad, dir, o.centre, &o.sa, &o.ea, &o.flag);
  return o;
}
ArcOut stpRadEdp(double eps, Pt s, double rad, Pt e) {
  ArcOut o;
  o.n = DArcStpRadEdp(eps, &s.x, rad, &e.x, o.centre, &o.sa, &o.ea);
  return o;
}

// r < 0: the member has no radius output, which must stay untouched.
void expectArc(const ArcOut& out, Pt centre, double r, double sa, double ea, short flag) {
  ASSERT_EQ(out.n, 1);
  EXPECT_NEAR(out.centre[0], centre.x, 1e-12);
  EXPECT_NEAR(out.centre[1], centre.y, 1e-12);
  if (r >= 0) {
    EXPECT_NEAR(out.r, r, 1e-12);
  } else {
    EXPECT_EQ(out.r, kSentinel);
  }
  EXPECT_NEAR(out.sa, sa, 1e-12);
  EXPECT_NEAR(out.ea, ea, 1e-12);
  EXPECT_EQ(out.flag, flag);
}

void expectNoArc(const ArcOut& out) {
  EXPECT_EQ(out.n, 0);
  EXPECT_TRUE(out.untouched());
}

// ---- Hand-worked arcs ---------------------------------------------------------------------

TEST(DArcParam3P, flag_follows_the_order_of_the_points) {
  // Over the top either way: clockwise swaps the angles.
  expectArc(param3P(kEps, {0, 0}, {1, 1}, {2, 0}), {1, 0}, 1, 0, kPi, 1);
  expectArc(param3P(kEps, {2, 0}, {1, 1}, {0, 0}), {1, 0}, 1, 0, kPi, -1);
  // Through angle zero, given as 7 pi/4 .. 9 pi/4.
  const Pt below{std::cos(-kPi / 4), std::sin(-kPi / 4)}, above{below.x, -below.y};
  expectArc(param3P(kEps, below, {1, 0}, above), {0, 0}, 1, 7 * kPi / 4, 9 * kPi / 4, -1);
  // From (1,0) clockwise through (0,-1) to (0,1): the sweep runs from (0,1) to (1,0).
  expectArc(param3P(kEps, {1, 0}, {0, -1}, {0, 1}), {0, 0}, 1, kHalfPi, kTwoPi, 1);
}

TEST(DArcParam3P, coincident_or_collinear_points_fail_and_write_nothing) {
  const double eps = kDyadicEps;
  // Twice the area of (0,0), (1,0), (0.5, y) is y; the test is open.
  expectNoArc(param3P(eps, {0, 0}, {1, 0}, {0.5, eps / 2}));
  expectNoArc(param3P(eps, {0, 0}, {1, 0}, {3, 0}));
  expectNoArc(param3P(eps, {0, 0}, {eps / 2, 0}, {0, 1}));
  expectNoArc(param3P(eps, {0, 0}, {0, 1}, {eps / 2, 0}));
  expectNoArc(param3P(eps, {0, 0}, {1, 0}, {kNaN, 1}));
  // Exactly eps of doubled area, and points exactly eps apart, still make an arc.
  EXPECT_EQ(param3P(eps, {0, 0}, {1, 0}, {0.5, eps}).n, 1);
  EXPECT_EQ(param3P(eps, {0, 0}, {eps, 0}, {0, 1}).n, 1);
}

TEST(DArcStpEdpIna, flag_tells_the_side_of_the_centre) {
  // Counter-clockwise half circle from (0,0) to (2,0): it runs below, sa at stp.
  expectArc(stpEdpIna(kEps, {0, 0}, {2, 0}, kPi), {1, 0}, 1, kPi, kTwoPi, -1);
  expectArc(stpEdpIna(kEps, {0, 0}, {2, 0}, kHalfPi), {1, 1}, kRoot2, 5 * kPi / 4, 7 * kPi / 4, -1);
  expectArc(stpEdpIna(kEps, {0, 0}, {2, 0}, -kHalfPi), {1, -1}, kRoot2, kPi / 4, 3 * kPi / 4, 1);
  // Three quarters counter-clockwise: the centre lies to the right of the chord.
  expectArc(stpEdpIna(kEps, {0, 0}, {2, 0}, 3 * kHalfPi), {1, -1}, kRoot2, 3 * kPi / 4, 9 * kPi / 4,
            1);
  // No turn or a full turn fails.
  for (double ina : {0.0, kEps / 2, -kEps / 2, kTwoPi, -kTwoPi, kNaN})
    expectNoArc(stpEdpIna(kEps, {0, 0}, {2, 0}, ina));
}

TEST(DArcStpStaEdp, tangent_start_quarter_circles) {
  expectArc(stpStaEdp(kEps, {0, 0}, 0.0, {1, 1}), {0, 1}, 1, 3 * kHalfPi, kTwoPi, -1);
  // The direction last, clockwise: sa at the end point; reduced into one turn first.
  expectArc(stpEdpDir(kEps, {0, 0}, {1, -1}, 0.0), {0, -1}, 1, 0, kHalfPi, 1);
  expectArc(stpEdpDir(kEps, {0, 0}, {1, -1}, 2 * kTwoPi), {0, -1}, 1, 0, kHalfPi, 1);
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
  const Pt s{1, 2}, e{1 + 3 * std::cos(dir + c.offset), 2 + 3 * std::sin(dir + c.offset)};
  for (const ArcOut& out : {stpStaEdp(kEps, s, dir, e), stpEdpDir(kEps, s, e, dir)}) {
    EXPECT_EQ(out.n, c.expected);
    EXPECT_EQ(out.untouched(), c.expected == 0);
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

TEST(DArcStpInaRadDir, centre_angles_and_flag_of_unit_arcs) {
  // Unit radius from (0,0); the chord of a quarter or three-quarter turn is sqrt(2) long.
  const double h = kRoot2 / 2;
  struct {
    double ina, dir;
    Pt centre;
    double sa, ea;
    short flag;
  } const cases[] = {{kHalfPi, 0, {h, h}, 5 * kPi / 4, 7 * kPi / 4, -1},
                     {-kHalfPi, 0, {h, -h}, kPi / 4, 3 * kPi / 4, 1},
                     {3 * kHalfPi, kHalfPi, {h, h}, 5 * kPi / 4, 11 * kPi / 4, -2},
                     {-3 * kHalfPi, 0, {h, h}, 7 * kPi / 4, 13 * kPi / 4, 2},
                     {kHalfPi + kTwoPi, 0, {h, h}, 5 * kPi / 4, 7 * kPi / 4, -1},
                     {-kHalfPi - kTwoPi, 0, {h, -h}, kPi / 4, 3 * kPi / 4, 1}};
  for (const auto& c : cases) {
    SCOPED_TRACE(c.ina);
    expectArc(stpInaRadDir(kEps, {0, 0}, c.ina, 1.0, c.dir), c.centre, -1, c.sa, c.ea, c.flag);
  }
}

TEST(DArcStpRadEdp, half_chord_radius_is_a_half_circle_and_the_start_angle_is_not_reduced) {
  ArcOut half = stpRadEdp(kEps, {0, 0}, 1.0, {2, 0});
  half.flag = 1;  // this member has no flag output
  expectArc(half, {1, 0}, -1, kPi, kTwoPi, 1);
  // Centre (0,-1): stp is straight above it, edp to its left; sa is given as 5 pi / 2.
  ArcOut up = stpRadEdp(kEps, {0, 0}, 1.0, {-1, -1});
  EXPECT_EQ(up.flag, 99);
  up.flag = 1;
  expectArc(up, {0, -1}, -1, 5 * kHalfPi, 3 * kPi, 1);
  for (double rad : {0.999, -1.0, kNaN})
    expectNoArc(stpRadEdp(kEps, {0, 0}, rad, {2, 0}));
}

// ---- Randomised: arcs pass through their points, flags match the travel --------------------

class RandomDraftingArcs : public ::testing::Test {
 protected:
  static constexpr double eps = 1e-9;
  static constexpr double tol = 1e-7;
  std::mt19937 rng{424242};
  Pt point() { return {uniform(-10.0, 10.0), uniform(-10.0, 10.0)}; }
  double uniform(double lo, double hi) {
    return std::uniform_real_distribution<double>(lo, hi)(rng);
  }

  // Runs 500 draws; body returns false to skip a draw near a degenerate case. The filters must
  // leave most draws.
  template <class Body>
  void draws(Body body) {
    int checked = 0;
    for (int i = 0; i < 500; ++i) {
      SCOPED_TRACE(i);
      checked += body() ? 1 : 0;
    }
    EXPECT_GT(checked, 250);
  }

  // The travel from `from` to `to` (sa/ea as the flag's direction says) on a circle of radius r
  // (r < 0: not checked), keeping ea at or above sa, at most one turn (plus eps) up.
  static void expectTravel(const ArcOut& out, Pt from, Pt to, bool clockwise, double r) {
    ASSERT_EQ(out.n, 1);
    const Pt c = out.c();
    if (r >= 0) {
      EXPECT_NEAR(dist(c, from), r, tol * (1 + r));
      EXPECT_NEAR(dist(c, to), r, tol * (1 + r));
    }
    EXPECT_LT(angleGap(clockwise ? out.ea : out.sa, direction(c, from)), tol);
    EXPECT_LT(angleGap(clockwise ? out.sa : out.ea, direction(c, to)), tol);
    EXPECT_GE(out.ea, out.sa - eps);
    EXPECT_LE(out.ea - out.sa, kTwoPi + eps);
  }
};

TEST_F(RandomDraftingArcs, three_points_lie_on_the_arc_in_their_order) {
  draws([&] {
    const Pt c = point();
    const double r = uniform(0.5, 10.0);
    const Pt a = onCircle(c, r, uniform(0, kTwoPi)), m = onCircle(c, r, uniform(0, kTwoPi)),
             b = onCircle(c, r, uniform(0, kTwoPi));
    if (dist(a, m) < 0.05 || dist(m, b) < 0.05 || dist(a, b) < 0.05)
      return false;
    const ArcOut out = param3P(eps, a, m, b);
    EXPECT_NEAR(out.r, r, 1e-6);
    const bool clockwise = cross(a, m, b) < 0;
    EXPECT_EQ(out.flag, clockwise ? 1 : -1);
    expectTravel(out, a, b, clockwise, r);
    EXPECT_EQ(ValidAngle(eps, out.sa, out.ea, direction(c, m)), 1);
    return true;
  });
}

TEST_F(RandomDraftingArcs, start_end_and_included_angle) {
  draws([&] {
    const Pt s = point(), e = point();
    const double ina = uniform(-kTwoPi + 0.01, kTwoPi - 0.01);
    if (dist(s, e) < 0.1 || std::fabs(ina) < 0.01)
      return false;
    const ArcOut out = stpEdpIna(eps, s, e, ina);
    expectTravel(out, s, e, ina < 0, out.r);
    EXPECT_NEAR(out.ea - out.sa, std::fabs(ina), tol);
    EXPECT_EQ(out.flag, cross(s, e, out.c()) > 0 ? -1 : 1);  // -1: centre left of the chord
    return true;
  });
}

TEST_F(RandomDraftingArcs, tangent_start_arcs_leave_in_the_start_direction) {
  draws([&] {
    const Pt s = point(), e = point();
    const double dir = uniform(-kTwoPi, 2 * kTwoPi);
    if (dist(s, e) < 0.1 || std::fabs(std::sin(direction(s, e) - dir)) < 1e-3)
      return false;
    // The end point to the left of the start direction makes a counter-clockwise arc.
    const bool clockwise = cross(s, {s.x + std::cos(dir), s.y + std::sin(dir)}, e) < 0;
    for (const ArcOut& out : {stpStaEdp(eps, s, dir, e), stpEdpDir(eps, s, e, dir)}) {
      EXPECT_EQ(out.flag, clockwise ? 1 : -1);
      expectTravel(out, s, e, clockwise, out.r);
      const double tangent = direction(out.c(), s) + (clockwise ? -kHalfPi : kHalfPi);
      EXPECT_LT(angleGap(tangent, dir), tol);
    }
    return true;
  });
}

TEST_F(RandomDraftingArcs, included_angle_radius_and_chord_direction) {
  draws([&] {
    const Pt s = point();
    const double ina = uniform(-kTwoPi + 0.01, kTwoPi - 0.01);
    const double rad = uniform(0.1, 10.0);
    const double dir = uniform(-kTwoPi, 2 * kTwoPi);
    if (std::fabs(ina) < 0.01)
      return false;
    const ArcOut out = stpInaRadDir(eps, s, ina, rad, dir);
    const bool clockwise = ina < 0;
    // The chord runs to the other end along dir.
    const Pt e = onCircle(out.c(), rad, clockwise ? out.sa : out.ea);
    expectTravel(out, s, e, clockwise, rad);
    EXPECT_NEAR(out.ea - out.sa, std::fabs(ina), tol);
    EXPECT_EQ(out.flag, (clockwise ? 1 : -1) * (std::fabs(ina) > kPi ? 2 : 1));
    EXPECT_LT(angleGap(direction(s, e), dir), 1e-6);
    EXPECT_GE(out.sa, -eps);
    return true;
  });
}

TEST_F(RandomDraftingArcs, radius_and_end_point_give_the_counter_clockwise_minor_arc) {
  draws([&] {
    const Pt s = point(), e = point();
    const double chord = dist(s, e);
    const double rad = uniform(0.5 * chord + 0.01, 3 * chord + 1);
    if (chord < 0.1)
      return false;
    const ArcOut out = stpRadEdp(eps, s, rad, e);
    expectTravel(out, s, e, false, rad);
    EXPECT_LE(out.ea - out.sa, kPi + eps);
    EXPECT_GT(cross(s, e, out.c()), 0.0);  // centre to the left: counter-clockwise minor arc
    return true;
  });
}

// ---- Hostile input ------------------------------------------------------------------------

TEST(DraftingArcs, hostile_numbers_return_promptly_and_write_only_their_outputs) {
  HostileNumbers v(131);
  for (int i = 0; i < 3000; ++i) {
    double a[2] = {v(), v()}, b[2] = {v(), v()}, c[2] = {v(), v()};
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
    EXPECT_TRUE(flag >= -2 && flag <= 2);
  }
}

}  // namespace
