// Tarnsysm: planar computational geometry for 2D drafting.
// Tests of bulge arcs (centre side, angle order, degenerate outputs) and of arc extents.
#include <Tarnsysm.h>

#include "test_support.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <ostream>
#include <random>

namespace {

constexpr double kEps = 1e-6;
using namespace tarnsysm::test;
constexpr double kSentinel = -999.5;

struct Arc {
  int ok;
  double cx, cy, r, sa, ea;
};

Arc arcOf(double eps, double x1, double y1, double x2, double y2, double bulge) {
  Arc a{-1, kSentinel, kSentinel, kSentinel, kSentinel, kSentinel};
  a.ok = PL_ArcParam(eps, x1, y1, x2, y2, bulge, &a.cx, &a.cy, &a.r, &a.sa, &a.ea);
  return a;
}

void expectDegenerate(const Arc& a, double x1, double y1) {
  EXPECT_EQ(a.ok, 0);
  EXPECT_EQ(a.cx, x1);
  EXPECT_EQ(a.cy, y1);
  EXPECT_EQ(a.r, 0.0);
  EXPECT_EQ(a.sa, 0.0);
  EXPECT_EQ(a.ea, 0.0);
}

// ---------------------------------------------------------------------------------------------
// PL_ArcParam

TEST(PL_ArcParam, centre_side_and_angle_order_follow_the_bulge_sign) {
  // Over the chord (0,0)-(2,0). Counter-clockwise arcs sweep from the start vertex with the
  // centre left of the chord; clockwise ones swap the angles, centre on the right. Bulge
  // tan(pi/8) is a quarter circle of radius sqrt 2; bulge 2 is the major arc of included angle
  // 4 atan 2 and radius 1 / sin(2 atan 2) = 1.25, centre 0.75 across the chord.
  const double q = std::tan(kPi / 8), major = 4 * std::atan(2.0), root2 = std::sqrt(2.0);
  const double cases[][6] = {// bulge, cx, cy, r, sa, ea
                             {1.0, 1, 0, 1, kPi, kTwoPi},
                             {-1.0, 1, 0, 1, 0, kPi},
                             {q, 1, 1, root2, 5 * kPi / 4, 7 * kPi / 4},
                             {-q, 1, -1, root2, kPi / 4, 3 * kPi / 4},
                             {2.0, 1, -0.75, 1.25, kNaN, major},
                             {-2.0, 1, 0.75, 1.25, kNaN, major}};
  for (const auto& c : cases) {
    SCOPED_TRACE(c[0]);
    const Arc a = arcOf(kEps, 0, 0, 2, 0, c[0]);
    ASSERT_EQ(a.ok, 1);
    EXPECT_NEAR(a.cx, c[1], 1e-14);
    EXPECT_NEAR(a.cy, c[2], 1e-14);
    EXPECT_NEAR(a.r, c[3], 1e-14);
    if (std::isnan(c[4])) {
      EXPECT_NEAR(a.ea - a.sa, c[5], 1e-14);  // major arcs: the sweep only
    } else {
      EXPECT_NEAR(a.sa, c[4], 1e-15);
      EXPECT_NEAR(a.ea, c[5], 1e-15);
    }
  }
}

TEST(PL_ArcParam, zero_bulge_or_coincident_vertices_are_degenerate_with_defined_outputs) {
  expectDegenerate(arcOf(kEps, 3, 4, 7, 1, 0.0), 3, 4);
  expectDegenerate(arcOf(kEps, 3, 4, 3, 4, 1.0), 3, 4);
  expectDegenerate(arcOf(kEps, -1, 2, -1 + kEps / 2, 2, 0.5), -1, 2);
  // A bulge so small that sin(theta/2) is within eps: straight.
  expectDegenerate(arcOf(kEps, 0, 0, 10, 0, 1e-7), 0, 0);
  expectDegenerate(arcOf(kEps, 0, 0, 10, 0, -1e-7), 0, 0);
  // An infinite bulge is a full turn: no arc through two distinct points.
  expectDegenerate(arcOf(kEps, 0, 0, 10, 0, kInf), 0, 0);
  expectDegenerate(arcOf(kEps, 0, 0, 10, 0, 1e300), 0, 0);
  expectDegenerate(arcOf(kEps, 0, 0, 10, 0, kNaN), 0, 0);
}

TEST(PL_ArcParam, exactly_eps_of_chord_and_a_small_bulge_above_the_threshold_are_arcs) {
  const double eps = 1.0 / 1024;
  EXPECT_NEAR(arcOf(eps, 0, 0, eps, 0, 1.0).r, eps / 2, 1e-18);
  expectDegenerate(arcOf(eps, 0, 0, std::nextafter(eps, 0.0), 0, 1.0), 0, 0);
  // bulge 1e-6: theta = 4e-6, sin(theta/2) = 2e-6 > eps: a huge flat arc of radius 5 / 2e-6.
  const Arc a = arcOf(kEps, 0, 0, 10, 0, 1e-6);
  ASSERT_EQ(a.ok, 1);
  EXPECT_NEAR(a.r, 5.0 / std::sin(2e-6), 1e-3);
  EXPECT_NEAR(a.cx, 5.0, 1e-6);
  EXPECT_GT(a.cy, 0.0);
}

// Independent check of the arc: centre equidistant from both vertices, the sweep equals the
// included angle 4 atan |b|, the sweep starts at the start vertex (end vertex for b < 0), and the
// arc's midpoint sits b times the half chord off the chord, on the right for b > 0.
TEST(PL_ArcParam, random_bulges_start_and_end_at_the_vertices_with_the_bulge_sweep) {
  std::mt19937_64 rng(51);
  std::uniform_real_distribution<double> coord(-1000, 1000);
  std::uniform_real_distribution<double> logBulge(-2.0, 1.3);
  for (int i = 0; i < 5000; ++i) {
    const double x1 = coord(rng), y1 = coord(rng);
    const double x2 = x1 + coord(rng) * 0.1, y2 = y1 + coord(rng) * 0.1;
    const double chord = std::hypot(x2 - x1, y2 - y1);
    if (chord < 1e-3)
      continue;
    const double b = (i % 2 ? -1 : 1) * std::pow(10.0, logBulge(rng));
    const Arc a = arcOf(1e-9, x1, y1, x2, y2, b);
    ASSERT_EQ(a.ok, 1);
    const double tol = 1e-9 * (1 + std::fabs(x1) + std::fabs(y1) + a.r);
    EXPECT_NEAR(std::hypot(x1 - a.cx, y1 - a.cy), a.r, tol);
    EXPECT_NEAR(std::hypot(x2 - a.cx, y2 - a.cy), a.r, tol);
    EXPECT_NEAR(a.ea - a.sa, 4 * std::atan(std::fabs(b)), 1e-9);
    EXPECT_GE(a.ea, a.sa - 1e-9);
    EXPECT_GE(a.sa, -1e-9);
    EXPECT_LT(a.sa, kTwoPi);
    const double fromX = b > 0 ? x1 : x2, fromY = b > 0 ? y1 : y2;
    const double toX = b > 0 ? x2 : x1, toY = b > 0 ? y2 : y1;
    EXPECT_NEAR(a.cx + a.r * std::cos(a.sa), fromX, tol);
    EXPECT_NEAR(a.cy + a.r * std::sin(a.sa), fromY, tol);
    EXPECT_NEAR(a.cx + a.r * std::cos(a.ea), toX, tol);
    EXPECT_NEAR(a.cy + a.r * std::sin(a.ea), toY, tol);
    const double mid = (a.sa + a.ea) / 2;
    const double sagitta = b * chord / 2;
    const double nx = (y2 - y1) / chord, ny = -(x2 - x1) / chord;  // right of the chord
    EXPECT_NEAR(a.cx + a.r * std::cos(mid), (x1 + x2) / 2 + sagitta * nx, tol);
    EXPECT_NEAR(a.cy + a.r * std::sin(mid), (y1 + y2) / 2 + sagitta * ny, tol);
  }
}

// ---------------------------------------------------------------------------------------------
// get_arc_box

struct Box {
  double xmin, ymin, xmax, ymax;
};

Box boxOf(double eps, double cx, double cy, double r, double sa, double ea) {
  double centre[2] = {cx, cy};
  Box b{kSentinel, kSentinel, kSentinel, kSentinel};
  get_arc_box(eps, centre, r, sa, ea, &b.xmin, &b.ymin, &b.xmax, &b.ymax);
  return b;
}

void expectBox(const Box& b, double xmin, double ymin, double xmax, double ymax, double tol) {
  EXPECT_NEAR(b.xmin, xmin, tol);
  EXPECT_NEAR(b.ymin, ymin, tol);
  EXPECT_NEAR(b.xmax, xmax, tol);
  EXPECT_NEAR(b.ymax, ymax, tol);
}

TEST(get_arc_box, full_circle_just_over_a_turn_merges_all_four_quadrant_points) {
  const Box b = boxOf(kEps, 3, -2, 5, 0, kTwoPi + 3 * kEps);
  // xmax comes from the end point, 3 eps past the start: short of 8 by 5 (1 - cos 3 eps).
  expectBox(b, -2, -7, 8, 3, 1e-10);
}

struct BoxCase {
  const char* name;
  double sa, ea;
  double xmin, ymin, xmax, ymax;  // for the unit circle about the origin
};

std::ostream& operator<<(std::ostream& os, const BoxCase& c) {
  return os << c.name;
}

class ArcBox : public testing::TestWithParam<BoxCase> {};

TEST_P(ArcBox, spans_the_end_points_and_the_quadrant_points_passed) {
  const BoxCase& c = GetParam();
  expectBox(boxOf(kEps, 0, 0, 1, c.sa, c.ea), c.xmin, c.ymin, c.xmax, c.ymax, 1e-12);
  // The same arc a whole number of turns away gives the same box.
  for (int k : {-3, -1, 1, 2})
    expectBox(boxOf(kEps, 0, 0, 1, c.sa + k * kTwoPi, c.ea + k * kTwoPi), c.xmin, c.ymin, c.xmax,
              c.ymax, 1e-12);
}

const double kC = std::cos(0.5);
const double kS = std::sin(0.5);

INSTANTIATE_TEST_SUITE_P(
    Arcs, ArcBox,
    testing::Values(BoxCase{"first_quadrant", 0, kHalfPi, 0, 0, 1, 1},
                    BoxCase{"second_quadrant", kHalfPi, kPi, -1, 0, 0, 1},
                    BoxCase{"upper_half", 0, kPi, -1, 0, 1, 1},
                    BoxCase{"lower_half", kPi, kTwoPi, -1, -1, 1, 0},
                    BoxCase{"through_zero", -kHalfPi, kHalfPi, 0, -1, 1, 1},
                    BoxCase{"through_zero_lifted", 3 * kHalfPi, 5 * kHalfPi, 0, -1, 1, 1},
                    BoxCase{"small_around_pi", kPi - 0.5, kPi + 0.5, -1, -kS, -kC, kS},
                    BoxCase{"major_arc_missing_zero", 0.5, kTwoPi - 0.5, -1, -1, kC, 1},
                    BoxCase{"from_second_into_next_turn", 2.0, 8.0, -1, -1, 1, 1},
                    BoxCase{"from_second_short_of_next_top", 2.0, 7.0, -1, -1, 1, std::sin(2.0)},
                    BoxCase{"short_inside_first_quadrant", 0.5, 1.0, std::cos(1.0), kS, kC,
                            std::sin(1.0)}),
    [](const testing::TestParamInfo<BoxCase>& info) { return info.param.name; });

TEST(get_arc_box, quadrant_point_within_eps_of_the_start_is_not_merged) {
  // A large radius makes the angular slack visible: starting eps/2 before the top, the arc passes
  // the top, but the start point already stands there (within eps) and the top is not merged.
  const double eps = 1e-3;
  const double r = 1e4;
  const double sa = kHalfPi - eps / 2;
  const Box b = boxOf(eps, 0, 0, r, sa, kHalfPi + 1.0);
  EXPECT_EQ(b.ymax, r * std::sin(sa));
  EXPECT_LT(b.ymax, r - eps);
  // Starting 2 eps before the top, the top is merged.
  const Box c = boxOf(eps, 0, 0, r, kHalfPi - 2 * eps, kHalfPi + 1.0);
  EXPECT_EQ(c.ymax, r);
}

TEST(get_arc_box, end_within_eps_past_a_quadrant_angle_does_not_merge_it) {
  // With r = 1e4 the end, eps/2 past angle 0, stands r (1 - cos(eps/2)) = 1.25e-3 short of the
  // rightmost point, more than eps; still the quadrant point is not merged, the end is xmax.
  const double eps = 1e-3;
  const double r = 1e4;
  const double ea = kTwoPi + eps / 2;
  const Box b = boxOf(eps, 0, 0, r, 1.0, ea);
  EXPECT_EQ(b.xmax, r * std::cos(ea));
  EXPECT_LT(b.xmax, r - eps);
}

TEST(get_arc_box, quadrant_point_less_than_eps_outside_the_box_does_not_widen_it) {
  // The sweep passes angle 0 by 2 eps, so (1, 0) is merged, but it lies only 1 - cos(2 eps),
  // about 2e-6, beyond the end point: within the eps slack, the box keeps the end's x.
  const double eps = 1e-3;
  const double ea = kTwoPi + 2 * eps;
  const Box b = boxOf(eps, 0, 0, 1, 1.0, ea);
  EXPECT_EQ(b.xmax, std::cos(ea));
  EXPECT_LT(b.xmax, 1.0);
}

TEST(get_arc_box, end_point_just_inside_the_start_replaces_the_maximum) {
  // The end's x lies eps/2 below the start's x: it still counts as "not below the minimum" and
  // becomes xmax even though the start reaches further (deliberate: no comparison with xmax).
  const double eps = 0.01;
  const double sa = 1.0;
  const double ea = kTwoPi - std::acos(std::cos(sa) - eps / 2);
  const Box b = boxOf(eps, 0, 0, 1, sa, ea);
  EXPECT_EQ(b.xmax, std::cos(ea));
  EXPECT_LT(b.xmax, std::cos(sa));
  EXPECT_NEAR(b.xmin, -1, 1e-15);
  EXPECT_NEAR(b.ymin, -1, 1e-15);
  EXPECT_NEAR(b.ymax, 1, 1e-15);
}

TEST(get_arc_box, writes_all_four_outputs_and_returns_promptly_on_bad_input) {
  const Box b = boxOf(kEps, 1, 1, 0, 0.3, 0.4);  // zero radius: the centre itself
  expectBox(b, 1, 1, 1, 1, 0);
  for (double v : {kNaN, kInf, -kInf, 1e300, -1e300, 1e17}) {
    (void)boxOf(kEps, 0, 0, 1, v, 1.0);
    (void)boxOf(kEps, 0, 0, 1, 1.0, v);
    (void)boxOf(kEps, 0, 0, 1, v, v);
    (void)boxOf(kEps, v, 0, v, 0.0, 1.0);
    (void)boxOf(v, 0, 0, 1, 0.0, 1.0);
  }
}

// The box holds a dense sampling of the arc (and its exact end points and every quadrant point
// the arc passes) within eps, and each side is touched by one of them within eps.
TEST(get_arc_box, random_arcs_are_contained_and_touched_on_every_side) {
  std::mt19937_64 rng(52);
  std::uniform_real_distribution<double> coord(-100, 100);
  std::uniform_real_distribution<double> radius(0.1, 50);
  std::uniform_real_distribution<double> startDist(-2 * kTwoPi, 2 * kTwoPi);
  std::uniform_real_distribution<double> sweepDist(0.0, kTwoPi);
  const double eps = 1e-9;
  for (int i = 0; i < 3000; ++i) {
    const double cx = coord(rng), cy = coord(rng), r = radius(rng);
    const double sa = startDist(rng), ea = sa + sweepDist(rng);
    const Box b = boxOf(eps, cx, cy, r, sa, ea);
    double lo[2] = {INFINITY, INFINITY}, hi[2] = {-INFINITY, -INFINITY};
    const auto take = [&](double angle) {
      const double x = cx + r * std::cos(angle), y = cy + r * std::sin(angle);
      lo[0] = std::min(lo[0], x);
      hi[0] = std::max(hi[0], x);
      lo[1] = std::min(lo[1], y);
      hi[1] = std::max(hi[1], y);
    };
    constexpr int kSamples = 2000;
    for (int k = 0; k <= kSamples; ++k)
      take(sa + (ea - sa) * k / kSamples);
    // Quadrant angles q + 2 pi n inside the sweep, found independently of the box code.
    for (int n = -4; n <= 4; ++n)
      for (int q = 0; q < 4; ++q) {
        const double angle = q * kHalfPi + n * kTwoPi;
        if (angle > sa && angle < ea)
          take(angle);
      }
    const double tol = 2 * eps + 1e-12 * (std::fabs(cx) + std::fabs(cy) + r);
    EXPECT_NEAR(b.xmin, lo[0], tol) << i;
    EXPECT_NEAR(b.xmax, hi[0], tol) << i;
    EXPECT_NEAR(b.ymin, lo[1], tol) << i;
    EXPECT_NEAR(b.ymax, hi[1], tol) << i;
  }
}

}  // namespace
