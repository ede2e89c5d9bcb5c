// Tarnsysm: planar computational geometry for 2D drafting.
// Tests of the polyline arc segment constructions, their input checks and the tangent
// continuation of a polyline.
#include <Tarnsysm.h>

#include "arcs/geometry_checks.h"

#include <gtest/gtest.h>

#include <cmath>
#include <random>
#include <utility>

namespace {

using namespace arcs_test;

constexpr double kEps = 1e-6;
constexpr double kSentinel = -777.0;
const double kQuarterBulge = std::tan(kPi / 8);  // bulge of a quarter circle
const double kThreeQuarterBulge = std::tan(3 * kPi / 8);
const double kRoot2 = std::sqrt(2.0);

// What a construction returns and writes, filled with sentinels to prove "untouched": the
// bulge, the end direction and, for members that write one, the end point.
struct Seg {
  int n = -99;
  double bulge = kSentinel, endDir = kSentinel;
  Pt end{kSentinel, kSentinel};
};

// Each member called on points passed by value, so a test reads as its geometry.
Seg pbpp(double eps, Pt p0, double previous, Pt p1, Pt p2) {
  Seg s;
  s.n = PL_Arc_PBPP(eps, &p0.x, previous, &p1.x, &p2.x, &s.bulge, &s.endDir);
  return s;
}
Seg staEdp(double eps, Pt stp, double sta, Pt edp) {
  Seg s;
  s.n = PL_StpStaEdp(eps, &stp.x, sta, &edp.x, &s.bulge, &s.endDir);
  return s;
}
Seg inaEdp(double eps, Pt stp, double ina, Pt edp) {
  Seg s;
  s.n = PL_StpInaEdp(eps, &stp.x, ina, &edp.x, &s.bulge, &s.endDir);
  return s;
}
Seg inaCen(double eps, Pt stp, double ina, Pt cen) {  // writes the end point over cen
  Seg s;
  s.n = PL_StpInaCen(eps, &stp.x, ina, &cen.x, &s.bulge, &s.endDir);
  s.end = cen;
  return s;
}
Seg inaRadDir(double eps, Pt stp, double ina, double rad, double dir) {
  Seg s;
  s.n = PL_StpInaRadDir(eps, &stp.x, ina, rad, dir, &s.end.x, &s.bulge, &s.endDir);
  return s;
}
Seg cenEdp(double eps, Pt stp, Pt cen, Pt edp) {  // moves edp onto the circle
  Seg s;
  const Pt given = cen;
  s.n = PL_StpCenEdp(eps, &stp.x, &cen.x, &edp.x, &s.bulge, &s.endDir);
  EXPECT_EQ(cen.x, given.x);  // the centre is read only
  EXPECT_EQ(cen.y, given.y);
  s.end = edp;
  return s;
}
Seg cenLen(double eps, Pt stp, Pt cen, double len) {  // writes the end point over cen
  Seg s;
  s.n = PL_StpCenLen(eps, &stp.x, &cen.x, len, &s.bulge, &s.endDir);
  s.end = cen;
  return s;
}
Seg radEdp(double eps, Pt stp, double rad, Pt edp) {
  Seg s;
  s.n = PL_StpRadEdp(eps, &stp.x, rad, &edp.x, &s.bulge, &s.endDir);
  return s;
}
Seg threePoints(double eps, Pt a, Pt m, Pt b) {
  Seg s;
  s.n = PL_3points(eps, &a.x, &m.x, &b.x, &s.bulge, &s.endDir);
  return s;
}

void expectSeg(const Seg& s, double bulge, double endDir) {
  ASSERT_EQ(s.n, 1);
  EXPECT_NEAR(s.bulge, bulge, 1e-12);
  EXPECT_LT(angleGap(s.endDir, endDir), 1e-12);
  EXPECT_GE(s.endDir, -kEps);  // reduced into one turn
  EXPECT_LT(s.endDir, kTwoPi);
}

void expectEnd(const Seg& s, Pt end) {
  EXPECT_NEAR(s.end.x, end.x, 1e-12);
  EXPECT_NEAR(s.end.y, end.y, 1e-12);
}

void expectNoSeg(const Seg& s) {
  EXPECT_EQ(s.n, 0);
  EXPECT_EQ(s.bulge, kSentinel);
  EXPECT_EQ(s.endDir, kSentinel);
  EXPECT_EQ(s.end.x, kSentinel);
  EXPECT_EQ(s.end.y, kSentinel);
}

// ---- PL_TestVertex ------------------------------------------------------------------------

TEST(PL_TestVertex, kind_2_rejects_points_on_the_tangent_line_ahead_or_behind) {
  double p[2] = {0, 0}, ahead[2] = {1, 0}, behind[2] = {-3, 0}, aside[2] = {1, 1}, up[2] = {0, 2};
  EXPECT_EQ(PL_TestVertex(2, kEps, p, 0.0, ahead), 0);
  EXPECT_EQ(PL_TestVertex(2, kEps, p, 0.0, behind), 0);
  EXPECT_EQ(PL_TestVertex(2, kEps, p, 0.0, aside), 1);
  // The direction is reduced into one turn first.
  EXPECT_EQ(PL_TestVertex(2, kEps, p, kTwoPi + kHalfPi, up), 0);
  EXPECT_EQ(PL_TestVertex(2, kEps, p, -kHalfPi, up), 0);
  // Off the tangent by an angle whose sine is 2 eps: accepted; eps / 2: rejected.
  double wide[2] = {std::cos(std::asin(2 * kEps)), 2 * kEps};
  double narrow[2] = {std::cos(std::asin(kEps / 2)), kEps / 2};
  EXPECT_EQ(PL_TestVertex(2, kEps, p, 0.0, wide), 1);
  EXPECT_EQ(PL_TestVertex(2, kEps, p, 0.0, narrow), 0);
}

TEST(PL_TestVertex, kind_6_points_exactly_eps_apart_are_distinct) {
  const double eps = kDyadicEps;
  double p[2] = {1, 1}, atEps[2] = {1 + eps, 1}, atHalf[2] = {1 + eps / 2, 1};
  EXPECT_EQ(PL_TestVertex(6, eps, p, atEps), 1);
  EXPECT_EQ(PL_TestVertex(6, eps, p, atHalf), 0);
  EXPECT_EQ(PL_TestVertex(6, eps, p, p), 0);
}

TEST(PL_TestVertex, kinds_7_and_8_chord_must_fit_the_circle) {
  // Kind 7: the circle about q through p; the diameter is a half circle.
  double p[2] = {1, 0}, q[2] = {0, 0}, nearCentre[2] = {kEps / 2, 0};
  EXPECT_EQ(PL_TestVertex(7, kEps, p, q, 2.0), 1);
  EXPECT_EQ(PL_TestVertex(7, kEps, p, q, 2.0 + 1e-9), 0);
  EXPECT_EQ(PL_TestVertex(7, kEps, p, q, 0.5), 1);
  EXPECT_EQ(PL_TestVertex(7, kEps, nearCentre, q, 0.0), 0);
  // Kind 8: a chord equal to the diameter passes; a negative radius never fits.
  double s[2] = {0, 0}, e[2] = {2, 0}, far[2] = {2.0 + 1e-12, 0};
  EXPECT_EQ(PL_TestVertex(8, kEps, s, 1.0, e), 1);
  EXPECT_EQ(PL_TestVertex(8, kEps, s, 1.0 - 1e-12, e), 0);
  EXPECT_EQ(PL_TestVertex(8, kEps, s, 1.0, far), 0);
  EXPECT_EQ(PL_TestVertex(8, kEps, s, -5.0, e), 0);
}

TEST(PL_TestVertex, kind_9_collinear_points_by_twice_the_area) {
  const double eps = kDyadicEps;
  double p[2] = {0, 0}, q[2] = {1, 0}, w[2] = {2, 0};
  // Twice the area of (0,0), (1,0), (2,y) is y.
  for (auto [y, expected] : {std::pair{0.0, 0}, {eps / 2, 0}, {-eps, 1}, {2 * eps, 1}}) {
    w[1] = y;
    EXPECT_EQ(PL_TestVertex(9, eps, p, q, w), expected) << y;
  }
}

TEST(PL_TestVertex, other_kinds_accept_and_not_a_number_is_invalid) {
  double p[2] = {0, 0}, q[2] = {1, 1}, w[2] = {kNaN, 0};
  // Kinds without a check read no more arguments.
  for (int kind : {-1, 0, 1, 3, 4, 5, 10, 1000})
    EXPECT_EQ(PL_TestVertex(kind, kEps, p), 1) << "kind " << kind;
  EXPECT_EQ(PL_TestVertex(2, kEps, p, kNaN, q), 0);
  EXPECT_EQ(PL_TestVertex(6, kEps, p, w), 0);
  EXPECT_EQ(PL_TestVertex(7, kEps, p, q, kNaN), 0);
  EXPECT_EQ(PL_TestVertex(8, kEps, p, kNaN, q), 0);
  EXPECT_EQ(PL_TestVertex(9, kEps, p, q, w), 0);
}

// ---- Constructions on hand-worked arcs ----------------------------------------------------

TEST(PL_Arc_PBPP, continues_along_the_previous_segment) {
  // Straight previous segment: leaving (1,0) along +x towards (2,1), a left quarter circle.
  expectSeg(pbpp(kEps, {0, 0}, 0.0, {1, 0}, {2, 1}), kQuarterBulge, kHalfPi);
  // Counter-clockwise half circle below the chord arrives at (2,0) heading up: (3,1) is right.
  expectSeg(pbpp(kEps, {0, 0}, 1.0, {2, 0}, {3, 1}), -kQuarterBulge, 0.0);
  // Clockwise half circle above the chord arrives heading down: (3,-1) is left.
  expectSeg(pbpp(kEps, {0, 0}, -1.0, {2, 0}, {3, -1}), kQuarterBulge, 0.0);
  // A previous segment of no length has no arc; its chord direction is then 0 (+x).
  EXPECT_NEAR(pbpp(kEps, {1, 0}, 0.5, {1, 0}, {2, 1}).bulge, kQuarterBulge, 1e-12);
  // An end point on the tangent line, ahead or behind, has no arc.
  expectNoSeg(pbpp(kEps, {0, 0}, 1.0, {2, 0}, {2, 5}));  // the half circle arrives heading up
  expectNoSeg(pbpp(kEps, {0, 0}, 1.0, {2, 0}, {2, -5}));
  expectNoSeg(pbpp(kEps, {0, 0}, 0.0, {2, 0}, {7, 0}));
}

TEST(PL_StpStaEdp, minor_and_major_arcs_and_tangent_line_failure) {
  expectSeg(staEdp(kEps, {0, 0}, 0.0, {1, 1}), kQuarterBulge, kHalfPi);
  expectSeg(staEdp(kEps, {0, 0}, 0.0, {1, -1}), -kQuarterBulge, 3 * kHalfPi);
  // Ending at (-1, 1) on the unit circle about (0, 1): three quarters of a turn.
  expectSeg(staEdp(kEps, {0, 0}, 0.0, {-1, 1}), kThreeQuarterBulge, 3 * kHalfPi);
  expectNoSeg(staEdp(kEps, {0, 0}, 0.0, {2, 0}));
  expectNoSeg(staEdp(kEps, {0, 0}, 0.0, {-2, 0}));
  expectNoSeg(staEdp(kEps, {0, 0}, kNaN, {2, 0}));
}

TEST(PL_StpInaEdp, included_angle_decides_the_arc) {
  // Chord direction plus half the included angle; whole turns are taken off first.
  expectSeg(inaEdp(kEps, {0, 0}, kHalfPi, {2, 0}), kQuarterBulge, kPi / 4);
  expectSeg(inaEdp(kEps, {0, 0}, kHalfPi + 2 * kTwoPi, {2, 0}), kQuarterBulge, kPi / 4);
  // Three quarters clockwise about (1, 1): arriving at (2, 0) heading down and left.
  expectSeg(inaEdp(kEps, {0, 0}, -3 * kHalfPi, {2, 0}), -kThreeQuarterBulge, 5 * kPi / 4);
  // The drafting host places the centre of a clockwise minor arc at the radius on the chord's
  // right normal through stp, without the half-angle term; its end direction is kept as it
  // comes: r = sqrt(2), centre (0, -sqrt(2)), radial direction to (2, 0) less a quarter turn.
  const Seg cw = inaEdp(kEps, {0, 0}, -kHalfPi, {2, 0});
  expectSeg(cw, -kQuarterBulge, std::atan2(kRoot2, 2.0) - kHalfPi);
  EXPECT_GT(angleGap(cw.endDir, -kPi / 4), 0.1);  // not the arc's tangent
}

TEST(PL_StpInaCen, writes_the_end_point_over_the_centre_array) {
  // A quarter turn about the origin from (1, 0): heading -x at the top or, clockwise, the bottom.
  Seg s = inaCen(kEps, {1, 0}, kHalfPi, {0, 0});
  expectSeg(s, kQuarterBulge, kPi);
  expectEnd(s, {0, 1});
  s = inaCen(kEps, {1, 0}, -kHalfPi, {0, 0});
  expectSeg(s, -kQuarterBulge, kPi);
  expectEnd(s, {0, -1});
  // A start point on the centre ends where it starts; both angles 0.
  s = inaCen(kEps, {3, 4}, kHalfPi, {3 + kEps / 2, 4});
  EXPECT_EQ(s.end.x, 3.0);
  EXPECT_EQ(s.end.y, 4.0);
  EXPECT_NEAR(s.endDir, kHalfPi, 1e-15);
  EXPECT_NEAR(inaCen(kEps, {3, 4}, -kHalfPi, {3, 4}).endDir, 3 * kHalfPi, 1e-15);
}

TEST(PL_StpInaRadDir, end_point_bulge_and_end_direction) {
  // From (0, 0): the chord has length 2 rad sin(|ina| / 2) in direction dir; the end direction
  // is dir + ina / 2.
  struct {
    double ina, rad, dir;
    Pt end;
    double endDir, bulge;
  } const cases[] = {
      {kHalfPi, 1, 0, {kRoot2, 0}, kPi / 4, kQuarterBulge},
      {-kHalfPi, 1, 0, {kRoot2, 0}, -kPi / 4, -kQuarterBulge},
      {kPi, 2, kHalfPi, {0, 4}, kPi, 1.0},
      {3 * kHalfPi, 1, kHalfPi, {0, kRoot2}, 5 * kPi / 4, kThreeQuarterBulge},
      {-3 * kHalfPi, 1, kPi, {-kRoot2, 0}, kPi / 4, -kThreeQuarterBulge},
      {kHalfPi + kTwoPi, 1, 0, {kRoot2, 0}, kPi / 4, kQuarterBulge}};  // turns taken off
  for (const auto& c : cases) {
    SCOPED_TRACE(c.ina);
    const Seg s = inaRadDir(kEps, {0, 0}, c.ina, c.rad, c.dir);
    expectSeg(s, c.bulge, c.endDir);
    expectEnd(s, c.end);
  }
}

TEST(PL_StpInaRadDir, small_radius_or_zero_angle_fails_and_writes_nothing) {
  const double eps = kDyadicEps;
  for (auto [ina, rad] :
       {std::pair{1.0, eps / 2}, {1.0, -1.0}, {eps, 1.0}, {-eps, 1.0}, {kNaN, 1.0}, {1.0, kNaN}})
    expectNoSeg(inaRadDir(eps, {0, 0}, ina, rad, 0.0));
  // Exactly eps of radius and 2 eps of angle are enough.
  EXPECT_EQ(inaRadDir(eps, {0, 0}, 1.0, eps, 0.0).n, 1);
  EXPECT_EQ(inaRadDir(eps, {0, 0}, 2 * eps, 1.0, 0.0).n, 1);
}

TEST(PL_StpCenEdp, moves_the_end_onto_the_circle_and_runs_counter_clockwise) {
  Seg s = cenEdp(kEps, {1, 0}, {0, 0}, {0, 5});
  expectSeg(s, kQuarterBulge, kPi);
  expectEnd(s, {0, 1});
  s = cenEdp(kEps, {1, 0}, {0, 0}, {0, -5});
  expectSeg(s, kThreeQuarterBulge, 0.0);
  expectEnd(s, {0, -1});
  // A start point on the centre gives a straight segment of no length, heading a quarter turn
  // counter-clockwise from cen -> given edp (straight up).
  s = cenEdp(kEps, {2, 3}, {2, 3 + kEps / 2}, {2, 10});
  EXPECT_EQ(s.bulge, 0.0);
  EXPECT_EQ(s.end.x, 2.0);
  EXPECT_EQ(s.end.y, 3.0);
  EXPECT_NEAR(s.endDir, kPi, 1e-12);
}

TEST(PL_StpCenLen, chord_length_gives_the_included_angle_and_its_sign_the_turn) {
  // From (1, 0) about the origin; a chord longer than the diameter gives bulge 0 at the start.
  struct {
    double len;
    Pt end;
    double bulge, endDir;
  } const cases[] = {{2.0, {-1, 0}, 1.0, 3 * kHalfPi},
                     {kRoot2, {0, 1}, kQuarterBulge, kPi},
                     {-kRoot2, {0, -1}, -kQuarterBulge, kPi},
                     {2.5, {1, 0}, 0.0, 3 * kHalfPi}};
  for (const auto& c : cases) {
    SCOPED_TRACE(c.len);
    const Seg s = cenLen(kEps, {1, 0}, {0, 0}, c.len);
    expectSeg(s, c.bulge, c.endDir);
    expectEnd(s, c.end);
  }
}

TEST(PL_StpRadEdp_PL_3points, side_and_direction_of_the_arc) {
  // The sign of the radius chooses the side of the minor arc: centre (0, 1) or (1, 0).
  expectSeg(radEdp(kEps, {0, 0}, 1.0, {1, 1}), kQuarterBulge, kHalfPi);
  expectSeg(radEdp(kEps, {0, 0}, -1.0, {1, 1}), -kQuarterBulge, 0.0);
  // Half the chord is a half circle, a smaller radius is flat.
  expectSeg(radEdp(kEps, {0, 0}, 1.0, {2, 0}), 1.0, kHalfPi);
  EXPECT_EQ(radEdp(kEps, {0, 0}, 0.9, {2, 0}).bulge, 0.0);
  // Three points: the direction follows their order (clockwise over the top first).
  expectSeg(threePoints(kEps, {0, 0}, {1, 1}, {2, 0}), -1.0, 3 * kHalfPi);
  expectSeg(threePoints(kEps, {2, 0}, {1, 1}, {0, 0}), 1.0, 3 * kHalfPi);
  expectSeg(threePoints(kEps, {1, 0}, {0, -1}, {0, 1}), -kThreeQuarterBulge, 0.0);
}

// ---- Randomised: every member's bulge is an arc through its inputs --------------------------

struct BulgeArc {
  Pt centre;
  double r, sa, ea;
};

class RandomSegments : public ::testing::Test {
 protected:
  static constexpr double eps = 1e-9;
  static constexpr double tol = 1e-7;
  std::mt19937 rng{20240611};
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

  // The arc the library reads from the bulge, which every later consumer of the segment uses.
  static BulgeArc arcOf(Pt a, Pt b, const Seg& s) {
    BulgeArc arc{};
    EXPECT_EQ(s.n, 1);
    EXPECT_EQ(PL_ArcParam(eps, a.x, a.y, b.x, b.y, s.bulge, &arc.centre.x, &arc.centre.y, &arc.r,
                          &arc.sa, &arc.ea),
              1);
    return arc;
  }

  // The end direction is the tangent of the bulge arc at its end, in one turn; returns the arc.
  static BulgeArc expectEndTangent(Pt a, Pt b, const Seg& s) {
    const BulgeArc arc = arcOf(a, b, s);
    EXPECT_LT(angleGap(s.endDir, endTangentOfBulge(a, b, s.bulge)), tol);
    const double radial = direction(arc.centre, b) + (s.bulge > 0 ? kHalfPi : -kHalfPi);
    EXPECT_LT(angleGap(s.endDir, radial), tol);
    EXPECT_GE(s.endDir, -eps);
    EXPECT_LT(s.endDir, kTwoPi);
    return arc;
  }

  static void expectCentre(const BulgeArc& arc, Pt c) {
    EXPECT_NEAR(arc.centre.x, c.x, 1e-6);
    EXPECT_NEAR(arc.centre.y, c.y, 1e-6);
  }
};

TEST_F(RandomSegments, stp_sta_edp_leaves_in_the_start_direction) {
  draws([&] {
    const Pt s = point(), e = point();
    const double sta = uniform(-kTwoPi, 2 * kTwoPi);
    // Stay clear of the tangent line, where no arc exists.
    if (dist(s, e) < 0.1 || std::fabs(std::sin(direction(s, e) - sta)) < 1e-3)
      return false;
    const Seg g = staEdp(eps, s, sta, e);
    EXPECT_LT(angleGap(startTangentOfBulge(s, e, g.bulge), sta), tol);
    expectEndTangent(s, e, g);
    return true;
  });
}

TEST_F(RandomSegments, stp_ina_edp_sweeps_the_included_angle) {
  int tangentChecked = 0;
  draws([&] {
    const Pt s = point(), e = point();
    const double ina = uniform(-kTwoPi + 0.01, kTwoPi - 0.01);
    if (dist(s, e) < 0.1 || std::fabs(ina) < 0.01)
      return false;
    const Seg g = inaEdp(eps, s, ina, e);
    EXPECT_NEAR(4 * std::atan(g.bulge), ina, tol);
    const BulgeArc arc = arcOf(s, e, g);
    EXPECT_NEAR(arc.ea - arc.sa, std::fabs(ina), tol);
    // Only arcs whose centre lies left of the chord end on their tangent (see the header).
    if ((ina > 0 && ina <= kPi) || ina < -kPi - 1e-6) {
      expectEndTangent(s, e, g);
      ++tangentChecked;
    }
    return true;
  });
  EXPECT_GT(tangentChecked, 150);
}

TEST_F(RandomSegments, stp_ina_cen_turns_about_the_given_centre) {
  draws([&] {
    const Pt s = point(), c = point();
    const double ina = uniform(-kTwoPi + 0.01, kTwoPi - 0.01);
    if (dist(s, c) < 0.1 || std::fabs(ina) < 0.01)
      return false;
    const Seg g = inaCen(eps, s, ina, c);
    EXPECT_NEAR(dist(c, g.end), dist(c, s), tol);
    EXPECT_LT(angleGap(direction(c, g.end), direction(c, s) + ina), tol);
    expectCentre(expectEndTangent(s, g.end, g), c);
    return true;
  });
}

TEST_F(RandomSegments, stp_ina_rad_dir_has_the_radius_and_chord_direction) {
  draws([&] {
    const Pt s = point();
    const double ina = uniform(-kTwoPi + 0.01, kTwoPi - 0.01);
    const double rad = uniform(0.1, 10.0);
    const double dir = uniform(-kTwoPi, 2 * kTwoPi);
    if (std::fabs(ina) < 0.01)
      return false;
    const Seg g = inaRadDir(eps, s, ina, rad, dir);
    EXPECT_NEAR(dist(s, g.end), 2 * rad * std::fabs(std::sin(ina / 2)), tol);
    EXPECT_LT(angleGap(direction(s, g.end), dir), tol);
    const BulgeArc arc = expectEndTangent(s, g.end, g);
    EXPECT_NEAR(arc.r, rad, 1e-6);
    EXPECT_NEAR(arc.ea - arc.sa, std::fabs(ina), tol);
    return true;
  });
}

TEST_F(RandomSegments, stp_cen_edp_runs_counter_clockwise_about_the_centre_to_the_ray) {
  draws([&] {
    const Pt s = point(), c = point(), target = point();
    // Stay clear of a zero or full-turn sweep, whose bulge is 0 or unbounded.
    if (dist(s, c) < 0.1 || dist(target, c) < 0.1 ||
        angleGap(direction(c, s), direction(c, target)) < 1e-3)
      return false;
    const Seg g = cenEdp(eps, s, c, target);
    EXPECT_NEAR(dist(c, g.end), dist(c, s), tol);
    EXPECT_LT(angleGap(direction(c, g.end), direction(c, target)), tol);
    EXPECT_GT(g.bulge, 0.0);
    expectCentre(expectEndTangent(s, g.end, g), c);
    return true;
  });
}

TEST_F(RandomSegments, stp_cen_len_has_the_chord_length) {
  draws([&] {
    const Pt s = point(), c = point();
    const double r = dist(s, c);
    const double len = uniform(-2.0, 2.0) * r;
    if (r < 0.1 || std::fabs(len) < 0.01 || std::fabs(std::fabs(len) - 2 * r) < 1e-6)
      return false;
    const Seg g = cenLen(eps, s, c, len);
    EXPECT_NEAR(dist(s, g.end), std::fabs(len), tol);
    EXPECT_NEAR(dist(c, g.end), r, tol);
    EXPECT_EQ(g.bulge > 0, len > 0);
    expectCentre(expectEndTangent(s, g.end, g), c);
    return true;
  });
}

TEST_F(RandomSegments, stp_rad_edp_is_the_minor_arc_of_the_radius) {
  int i = 0;
  draws([&] {
    const Pt s = point(), e = point();
    const double chord = dist(s, e);
    const double rad = (++i % 2 ? 1 : -1) * uniform(0.5 * chord + 0.01, 3 * chord + 1);
    if (chord < 0.1)
      return false;
    const Seg g = radEdp(eps, s, rad, e);
    EXPECT_EQ(g.bulge > 0, rad > 0);
    EXPECT_LE(std::fabs(g.bulge), 1.0);
    EXPECT_NEAR(expectEndTangent(s, e, g).r, std::fabs(rad), 1e-6);
    return true;
  });
}

TEST_F(RandomSegments, three_points_arc_passes_through_the_middle_point) {
  draws([&] {
    // Three points on a known circle, in random order around it.
    const Pt c = point();
    const double r = uniform(0.5, 10.0);
    const Pt a = onCircle(c, r, uniform(0, kTwoPi)), m = onCircle(c, r, uniform(0, kTwoPi)),
             b = onCircle(c, r, uniform(0, kTwoPi));
    if (dist(a, m) < 0.05 || dist(m, b) < 0.05 || dist(a, b) < 0.05)
      return false;
    const Seg g = threePoints(eps, a, m, b);
    // Points in counter-clockwise order around the circle make a left-turning triangle.
    EXPECT_EQ(g.bulge > 0, cross(a, m, b) > 0);
    const BulgeArc arc = expectEndTangent(a, b, g);
    expectCentre(arc, c);
    EXPECT_EQ(ValidAngle(1e-9, arc.sa, arc.ea, direction(arc.centre, m)), 1);
    return true;
  });
}

TEST_F(RandomSegments, tangent_continuation_leaves_along_the_previous_segment) {
  int i = 0;
  draws([&] {
    const Pt p0 = point(), p1 = point(), p2 = point();
    const double previous = ++i % 3 == 0 ? 0.0 : uniform(-3.0, 3.0);
    if (dist(p0, p1) < 0.1 || dist(p1, p2) < 0.1 || (previous != 0.0 && std::fabs(previous) < 0.01))
      return false;
    const double arriving = endTangentOfBulge(p0, p1, previous);
    if (std::fabs(std::sin(direction(p1, p2) - arriving)) < 1e-3)
      return false;
    const Seg g = pbpp(eps, p0, previous, p1, p2);
    EXPECT_LT(angleGap(startTangentOfBulge(p1, p2, g.bulge), arriving), tol);
    expectEndTangent(p1, p2, g);
    return true;
  });
}

// ---- Hostile input ------------------------------------------------------------------------

TEST(SegmentConstructions, hostile_numbers_return_promptly_and_write_only_their_outputs) {
  HostileNumbers v(97);
  for (int i = 0; i < 3000; ++i) {
    // Each point array is exactly two doubles followed by a guard: a[0..1], guard[3], ...
    double guard[10];
    for (double& g : guard)
      g = kSentinel;
    double *a = guard + 1, *b = guard + 4, *c = guard + 7;
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
    for (int g : {0, 3, 6, 9})
      EXPECT_EQ(guard[g], kSentinel) << g;
  }
}

}  // namespace
