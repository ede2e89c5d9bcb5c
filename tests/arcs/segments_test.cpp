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
const double kThreeQuarterBulge = std::tan(3 * kPi / 8);

// What a construction writes besides its points; filled with sentinels to prove "untouched".
struct Seg {
  double bulge = kSentinel, endDir = kSentinel;
};

void expectSeg(const Seg& s, double bulge, double endDir) {
  EXPECT_NEAR(s.bulge, bulge, 1e-12);
  EXPECT_LT(angleGap(s.endDir, endDir), 1e-12);
  EXPECT_GE(s.endDir, -kEps);  // reduced into one turn
  EXPECT_LT(s.endDir, kTwoPi);
}

void expectUntouched(const Seg& s) {
  EXPECT_EQ(s.bulge, kSentinel);
  EXPECT_EQ(s.endDir, kSentinel);
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
  double p0[2] = {0, 0}, p1[2] = {2, 0}, p2[2] = {3, 1}, left[2] = {3, -1}, line1[2] = {1, 0};
  Seg s;
  // Straight previous segment: leaving (1,0) along +x towards (2,1), a left quarter circle.
  double q2[2] = {2, 1};
  ASSERT_EQ(PL_Arc_PBPP(kEps, p0, 0.0, line1, q2, &s.bulge, &s.endDir), 1);
  expectSeg(s, kQuarterBulge, kHalfPi);
  // Counter-clockwise half circle below the chord arrives at (2,0) heading up: (3,1) is right.
  ASSERT_EQ(PL_Arc_PBPP(kEps, p0, 1.0, p1, p2, &s.bulge, &s.endDir), 1);
  expectSeg(s, -kQuarterBulge, 0.0);
  // Clockwise half circle above the chord arrives heading down: (3,-1) is left.
  ASSERT_EQ(PL_Arc_PBPP(kEps, p0, -1.0, p1, left, &s.bulge, &s.endDir), 1);
  expectSeg(s, kQuarterBulge, 0.0);
  // A previous segment of no length has no arc; its chord direction is then 0 (+x).
  ASSERT_EQ(PL_Arc_PBPP(kEps, line1, 0.5, line1, q2, &s.bulge, &s.endDir), 1);
  EXPECT_NEAR(s.bulge, kQuarterBulge, 1e-12);
}

TEST(PL_Arc_PBPP, end_point_on_the_tangent_line_fails_and_writes_nothing) {
  double p0[2] = {0, 0}, p1[2] = {2, 0}, ahead[2] = {2, 5}, behind[2] = {2, -5}, on[2] = {7, 0};
  Seg s;
  EXPECT_EQ(PL_Arc_PBPP(kEps, p0, 1.0, p1, ahead, &s.bulge, &s.endDir), 0);  // arrives heading up
  EXPECT_EQ(PL_Arc_PBPP(kEps, p0, 1.0, p1, behind, &s.bulge, &s.endDir), 0);
  EXPECT_EQ(PL_Arc_PBPP(kEps, p0, 0.0, p1, on, &s.bulge, &s.endDir), 0);
  expectUntouched(s);
}

TEST(PL_StpStaEdp, minor_and_major_arcs_and_tangent_line_failure) {
  double stp[2] = {0, 0}, left[2] = {1, 1}, right[2] = {1, -1}, back[2] = {-1, 1};
  Seg s;
  ASSERT_EQ(PL_StpStaEdp(kEps, stp, 0.0, left, &s.bulge, &s.endDir), 1);
  expectSeg(s, kQuarterBulge, kHalfPi);
  ASSERT_EQ(PL_StpStaEdp(kEps, stp, 0.0, right, &s.bulge, &s.endDir), 1);
  expectSeg(s, -kQuarterBulge, 3 * kHalfPi);
  // Ending at (-1, 1) on the unit circle about (0, 1): three quarters of a turn.
  ASSERT_EQ(PL_StpStaEdp(kEps, stp, 0.0, back, &s.bulge, &s.endDir), 1);
  expectSeg(s, kThreeQuarterBulge, 3 * kHalfPi);

  Seg none;
  double ahead[2] = {2, 0}, behind[2] = {-2, 0};
  EXPECT_EQ(PL_StpStaEdp(kEps, stp, 0.0, ahead, &none.bulge, &none.endDir), 0);
  EXPECT_EQ(PL_StpStaEdp(kEps, stp, 0.0, behind, &none.bulge, &none.endDir), 0);
  EXPECT_EQ(PL_StpStaEdp(kEps, stp, kNaN, ahead, &none.bulge, &none.endDir), 0);
  expectUntouched(none);
}

TEST(PL_StpInaEdp, included_angle_decides_the_arc) {
  double stp[2] = {0, 0}, edp[2] = {2, 0};
  Seg s;
  ASSERT_EQ(PL_StpInaEdp(kEps, stp, kHalfPi, edp, &s.bulge, &s.endDir), 1);
  expectSeg(s, kQuarterBulge, kPi / 4);  // chord direction plus half the included angle
  // Whole turns are taken off the included angle first.
  ASSERT_EQ(PL_StpInaEdp(kEps, stp, kHalfPi + 2 * kTwoPi, edp, &s.bulge, &s.endDir), 1);
  expectSeg(s, kQuarterBulge, kPi / 4);
  // Three quarters clockwise about (1, 1): arriving at (2, 0) heading down and left.
  ASSERT_EQ(PL_StpInaEdp(kEps, stp, -3 * kHalfPi, edp, &s.bulge, &s.endDir), 1);
  expectSeg(s, -kThreeQuarterBulge, 5 * kPi / 4);
  // The drafting host places the centre of a clockwise minor arc at the radius on the chord's
  // right normal through stp, without the half-angle term; its end direction is kept as it
  // comes: r = sqrt(2), centre (0, -sqrt(2)), radial direction to (2, 0) less a quarter turn.
  ASSERT_EQ(PL_StpInaEdp(kEps, stp, -kHalfPi, edp, &s.bulge, &s.endDir), 1);
  expectSeg(s, -kQuarterBulge, std::atan2(std::sqrt(2.0), 2.0) - kHalfPi);
  EXPECT_GT(angleGap(s.endDir, -kPi / 4), 0.1);  // not the arc's tangent
}

TEST(PL_StpInaCen, writes_the_end_point_over_the_centre_array) {
  double stp[2] = {1, 0};
  Seg s;
  for (double sign : {1.0, -1.0}) {
    double cen[2] = {0, 0};
    ASSERT_EQ(PL_StpInaCen(kEps, stp, sign * kHalfPi, cen, &s.bulge, &s.endDir), 1);
    EXPECT_NEAR(cen[0], 0.0, 1e-12);
    EXPECT_NEAR(cen[1], sign, 1e-12);
    expectSeg(s, sign * kQuarterBulge, kPi);  // heading -x at the top or, clockwise, the bottom
  }
  // A start point on the centre ends where it starts; both angles 0.
  double at[2] = {3, 4};
  double cen[2] = {3 + kEps / 2, 4};
  ASSERT_EQ(PL_StpInaCen(kEps, at, kHalfPi, cen, &s.bulge, &s.endDir), 1);
  EXPECT_EQ(cen[0], 3.0);
  EXPECT_EQ(cen[1], 4.0);
  EXPECT_NEAR(s.endDir, kHalfPi, 1e-15);
  double cen2[2] = {3, 4};
  ASSERT_EQ(PL_StpInaCen(kEps, at, -kHalfPi, cen2, &s.bulge, &s.endDir), 1);
  EXPECT_NEAR(s.endDir, 3 * kHalfPi, 1e-15);
}

struct InaRadDirCase {
  const char* name;
  double ina, rad, dir;
  double ex, ey;  // expected end point from (0, 0)
  double endDir, bulge;
};

std::ostream& operator<<(std::ostream& os, const InaRadDirCase& c) {
  return os << c.name;
}

class PL_StpInaRadDirTable : public ::testing::TestWithParam<InaRadDirCase> {};

TEST_P(PL_StpInaRadDirTable, end_point_bulge_and_end_direction) {
  const InaRadDirCase& c = GetParam();
  double stp[2] = {0, 0}, edp[2] = {kSentinel, kSentinel};
  Seg s;
  ASSERT_EQ(PL_StpInaRadDir(kEps, stp, c.ina, c.rad, c.dir, edp, &s.bulge, &s.endDir), 1);
  EXPECT_NEAR(edp[0], c.ex, 1e-12);
  EXPECT_NEAR(edp[1], c.ey, 1e-12);
  expectSeg(s, c.bulge, c.endDir);
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
                      kThreeQuarterBulge},
        InaRadDirCase{"three_quarters_right", -3 * kHalfPi, 1, kPi, -kRoot2, 0, kPi / 4,
                      -kThreeQuarterBulge},
        InaRadDirCase{"turns_taken_off", kHalfPi + kTwoPi, 1, 0, kRoot2, 0, kPi / 4,
                      kQuarterBulge}),
    [](const ::testing::TestParamInfo<InaRadDirCase>& info) { return info.param.name; });

TEST(PL_StpInaRadDir, small_radius_or_zero_angle_fails_and_writes_nothing) {
  const double eps = kDyadicEps;
  double stp[2] = {0, 0}, edp[2] = {kSentinel, kSentinel};
  Seg s;
  const double bad[][2] = {{1.0, eps / 2}, {1.0, -1.0}, {eps, 1.0},
                           {-eps, 1.0},    {kNaN, 1.0}, {1.0, kNaN}};  // {ina, rad}
  for (const auto& b : bad)
    EXPECT_EQ(PL_StpInaRadDir(eps, stp, b[0], b[1], 0.0, edp, &s.bulge, &s.endDir), 0) << b[0];
  EXPECT_EQ(edp[0], kSentinel);
  EXPECT_EQ(edp[1], kSentinel);
  expectUntouched(s);
  // Exactly eps of radius and 2 eps of angle are enough.
  EXPECT_EQ(PL_StpInaRadDir(eps, stp, 1.0, eps, 0.0, edp, &s.bulge, &s.endDir), 1);
  EXPECT_EQ(PL_StpInaRadDir(eps, stp, 2 * eps, 1.0, 0.0, edp, &s.bulge, &s.endDir), 1);
}

TEST(PL_StpCenEdp, moves_the_end_onto_the_circle_and_runs_counter_clockwise) {
  double stp[2] = {1, 0}, cen[2] = {0, 0};
  Seg s;
  double up[2] = {0, 5};
  ASSERT_EQ(PL_StpCenEdp(kEps, stp, cen, up, &s.bulge, &s.endDir), 1);
  EXPECT_NEAR(up[0], 0.0, 1e-12);
  EXPECT_NEAR(up[1], 1.0, 1e-12);
  expectSeg(s, kQuarterBulge, kPi);
  EXPECT_EQ(cen[0], 0.0);  // the centre is read only
  EXPECT_EQ(cen[1], 0.0);
  double down[2] = {0, -5};
  ASSERT_EQ(PL_StpCenEdp(kEps, stp, cen, down, &s.bulge, &s.endDir), 1);
  EXPECT_NEAR(down[1], -1.0, 1e-12);
  expectSeg(s, kThreeQuarterBulge, 0.0);
  // A start point on the centre gives a straight segment of no length, heading a quarter turn
  // counter-clockwise from cen -> given edp (straight up).
  double at[2] = {2, 3}, near[2] = {2, 3 + kEps / 2}, edp[2] = {2, 10};
  ASSERT_EQ(PL_StpCenEdp(kEps, at, near, edp, &s.bulge, &s.endDir), 1);
  EXPECT_EQ(s.bulge, 0.0);
  EXPECT_EQ(edp[0], 2.0);
  EXPECT_EQ(edp[1], 3.0);
  EXPECT_NEAR(s.endDir, kPi, 1e-12);
}

TEST(PL_StpCenLen, chord_length_gives_the_included_angle_and_its_sign_the_turn) {
  double stp[2] = {1, 0};
  Seg s;
  // {len, end x, end y, bulge, endDir}
  const double cases[][5] = {{2.0, -1, 0, 1.0, 3 * kHalfPi},
                             {std::sqrt(2.0), 0, 1, kQuarterBulge, kPi},
                             {-std::sqrt(2.0), 0, -1, -kQuarterBulge, kPi},
                             // Longer than the diameter: bulge 0 at the start point.
                             {2.5, 1, 0, 0.0, 3 * kHalfPi}};
  for (const auto& c : cases) {
    SCOPED_TRACE(c[0]);
    double cen[2] = {0, 0};
    ASSERT_EQ(PL_StpCenLen(kEps, stp, cen, c[0], &s.bulge, &s.endDir), 1);
    EXPECT_NEAR(cen[0], c[1], 1e-12);
    EXPECT_NEAR(cen[1], c[2], 1e-12);
    expectSeg(s, c[3], c[4]);
  }
}

TEST(PL_StpRadEdp, sign_of_the_radius_chooses_the_side_of_the_minor_arc) {
  double stp[2] = {0, 0}, edp[2] = {1, 1}, half[2] = {2, 0};
  Seg s;
  ASSERT_EQ(PL_StpRadEdp(kEps, stp, 1.0, edp, &s.bulge, &s.endDir), 1);  // centre (0, 1)
  expectSeg(s, kQuarterBulge, kHalfPi);
  ASSERT_EQ(PL_StpRadEdp(kEps, stp, -1.0, edp, &s.bulge, &s.endDir), 1);  // centre (1, 0)
  expectSeg(s, -kQuarterBulge, 0.0);
  // Half the chord is a half circle, a smaller radius is flat.
  ASSERT_EQ(PL_StpRadEdp(kEps, stp, 1.0, half, &s.bulge, &s.endDir), 1);
  expectSeg(s, 1.0, kHalfPi);
  ASSERT_EQ(PL_StpRadEdp(kEps, stp, 0.9, half, &s.bulge, &s.endDir), 1);
  EXPECT_EQ(s.bulge, 0.0);
}

TEST(PL_3points, direction_follows_the_order_of_the_points) {
  double a[2] = {0, 0}, m[2] = {1, 1}, b[2] = {2, 0};
  Seg s;
  ASSERT_EQ(PL_3points(kEps, a, m, b, &s.bulge, &s.endDir), 1);
  expectSeg(s, -1.0, 3 * kHalfPi);  // clockwise half circle over the top
  ASSERT_EQ(PL_3points(kEps, b, m, a, &s.bulge, &s.endDir), 1);
  expectSeg(s, 1.0, 3 * kHalfPi);
  double c[2] = {1, 0}, d[2] = {0, -1}, e[2] = {0, 1};  // three quarters clockwise
  ASSERT_EQ(PL_3points(kEps, c, d, e, &s.bulge, &s.endDir), 1);
  expectSeg(s, -kThreeQuarterBulge, 0.0);
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

  // The end direction is the tangent of the bulge arc at its end, in one turn; returns the arc.
  BulgeArc expectEndTangent(Pt a, Pt b, const Seg& s) {
    const BulgeArc arc = arcOfBulge(eps, a, b, s.bulge);
    EXPECT_LT(angleGap(s.endDir, endTangentOfBulge(a, b, s.bulge)), tol);
    const double radial = direction(arc.centre, b) + (s.bulge > 0 ? kHalfPi : -kHalfPi);
    EXPECT_LT(angleGap(s.endDir, radial), tol);
    EXPECT_GE(s.endDir, -eps);
    EXPECT_LT(s.endDir, kTwoPi);
    return arc;
  }

  void expectCentre(const BulgeArc& arc, Pt c) {
    EXPECT_NEAR(arc.centre.x, c.x, 1e-6);
    EXPECT_NEAR(arc.centre.y, c.y, 1e-6);
  }
};

TEST_F(RandomSegments, stp_sta_edp_leaves_in_the_start_direction) {
  draws([&] {
    Pt s = point(), e = point();
    const double sta = uniform(-kTwoPi, 2 * kTwoPi);
    // Stay clear of the tangent line, where no arc exists.
    if (dist(s, e) < 0.1 || std::fabs(std::sin(direction(s, e) - sta)) < 1e-3)
      return false;
    Seg g;
    EXPECT_EQ(PL_StpStaEdp(eps, &s.x, sta, &e.x, &g.bulge, &g.endDir), 1);
    EXPECT_LT(angleGap(startTangentOfBulge(s, e, g.bulge), sta), tol);
    expectEndTangent(s, e, g);
    return true;
  });
}

TEST_F(RandomSegments, stp_ina_edp_sweeps_the_included_angle) {
  int tangentChecked = 0;
  draws([&] {
    Pt s = point(), e = point();
    const double ina = uniform(-kTwoPi + 0.01, kTwoPi - 0.01);
    if (dist(s, e) < 0.1 || std::fabs(ina) < 0.01)
      return false;
    Seg g;
    EXPECT_EQ(PL_StpInaEdp(eps, &s.x, ina, &e.x, &g.bulge, &g.endDir), 1);
    EXPECT_NEAR(4 * std::atan(g.bulge), ina, tol);
    const BulgeArc arc = arcOfBulge(eps, s, e, g.bulge);
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
    Pt s = point();
    const Pt c = point();
    const double ina = uniform(-kTwoPi + 0.01, kTwoPi - 0.01);
    if (dist(s, c) < 0.1 || std::fabs(ina) < 0.01)
      return false;
    Pt e = c;
    Seg g;
    EXPECT_EQ(PL_StpInaCen(eps, &s.x, ina, &e.x, &g.bulge, &g.endDir), 1);
    EXPECT_NEAR(dist(c, e), dist(c, s), tol);
    EXPECT_LT(angleGap(direction(c, e), direction(c, s) + ina), tol);
    expectCentre(expectEndTangent(s, e, g), c);
    return true;
  });
}

TEST_F(RandomSegments, stp_ina_rad_dir_has_the_radius_and_chord_direction) {
  draws([&] {
    Pt s = point();
    const double ina = uniform(-kTwoPi + 0.01, kTwoPi - 0.01);
    const double rad = uniform(0.1, 10.0);
    const double dir = uniform(-kTwoPi, 2 * kTwoPi);
    if (std::fabs(ina) < 0.01)
      return false;
    Pt e{kSentinel, kSentinel};
    Seg g;
    EXPECT_EQ(PL_StpInaRadDir(eps, &s.x, ina, rad, dir, &e.x, &g.bulge, &g.endDir), 1);
    EXPECT_NEAR(dist(s, e), 2 * rad * std::fabs(std::sin(ina / 2)), tol);
    EXPECT_LT(angleGap(direction(s, e), dir), tol);
    const BulgeArc arc = expectEndTangent(s, e, g);
    EXPECT_NEAR(arc.r, rad, 1e-6);
    EXPECT_NEAR(arc.ea - arc.sa, std::fabs(ina), tol);
    return true;
  });
}

TEST_F(RandomSegments, stp_cen_edp_runs_counter_clockwise_about_the_centre_to_the_ray) {
  draws([&] {
    Pt s = point();
    const Pt c = point(), target = point();
    // Stay clear of a zero or full-turn sweep, whose bulge is 0 or unbounded.
    if (dist(s, c) < 0.1 || dist(target, c) < 0.1 ||
        angleGap(direction(c, s), direction(c, target)) < 1e-3)
      return false;
    Pt e = target, cen = c;
    Seg g;
    EXPECT_EQ(PL_StpCenEdp(eps, &s.x, &cen.x, &e.x, &g.bulge, &g.endDir), 1);
    EXPECT_NEAR(dist(c, e), dist(c, s), tol);
    EXPECT_LT(angleGap(direction(c, e), direction(c, target)), tol);
    EXPECT_GT(g.bulge, 0.0);
    expectCentre(expectEndTangent(s, e, g), c);
    return true;
  });
}

TEST_F(RandomSegments, stp_cen_len_has_the_chord_length) {
  draws([&] {
    Pt s = point();
    const Pt c = point();
    const double r = dist(s, c);
    const double len = uniform(-2.0, 2.0) * r;
    if (r < 0.1 || std::fabs(len) < 0.01 || std::fabs(std::fabs(len) - 2 * r) < 1e-6)
      return false;
    Pt e = c;
    Seg g;
    EXPECT_EQ(PL_StpCenLen(eps, &s.x, &e.x, len, &g.bulge, &g.endDir), 1);
    EXPECT_NEAR(dist(s, e), std::fabs(len), tol);
    EXPECT_NEAR(dist(c, e), r, tol);
    EXPECT_EQ(g.bulge > 0, len > 0);
    expectCentre(expectEndTangent(s, e, g), c);
    return true;
  });
}

TEST_F(RandomSegments, stp_rad_edp_is_the_minor_arc_of_the_radius) {
  int i = 0;
  draws([&] {
    Pt s = point(), e = point();
    const double chord = dist(s, e);
    const double rad = (++i % 2 ? 1 : -1) * uniform(0.5 * chord + 0.01, 3 * chord + 1);
    if (chord < 0.1)
      return false;
    Seg g;
    EXPECT_EQ(PL_StpRadEdp(eps, &s.x, rad, &e.x, &g.bulge, &g.endDir), 1);
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
    Pt a = onCircle(c, r, uniform(0, kTwoPi));
    Pt m = onCircle(c, r, uniform(0, kTwoPi));
    Pt b = onCircle(c, r, uniform(0, kTwoPi));
    if (dist(a, m) < 0.05 || dist(m, b) < 0.05 || dist(a, b) < 0.05)
      return false;
    Seg g;
    EXPECT_EQ(PL_3points(eps, &a.x, &m.x, &b.x, &g.bulge, &g.endDir), 1);
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
    Pt p0 = point(), p1 = point(), p2 = point();
    const double previous = ++i % 3 == 0 ? 0.0 : uniform(-3.0, 3.0);
    if (dist(p0, p1) < 0.1 || dist(p1, p2) < 0.1 || (previous != 0.0 && std::fabs(previous) < 0.01))
      return false;
    const double arriving = endTangentOfBulge(p0, p1, previous);
    if (std::fabs(std::sin(direction(p1, p2) - arriving)) < 1e-3)
      return false;
    Seg g;
    EXPECT_EQ(PL_Arc_PBPP(eps, &p0.x, previous, &p1.x, &p2.x, &g.bulge, &g.endDir), 1);
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
