// Tarnsysm: planar computational geometry for 2D drafting.
// Tests of the parametric line intersections: edge flags at the tolerance boundaries, the side
// bit against the way the curve leaves the line, and crossings that lie on both curves and are
// as many as the sign changes of the line's offset along the arc.
#include <Tarnsysm.h>

#include "test_support.h"

#include <gtest/gtest.h>

#include <cmath>
#include <random>

namespace {

using namespace tarnsysm::test;

constexpr double kEps = 1.0 / 1024.0;  // a power of two: eps / 2 and 2 eps are exact

TEST(LineIntEdge, flags_and_parameters_along_the_x_axis) {
  // The line is y = 0 from the origin, direction (1, 0); "left" is y > 0.
  const struct {
    const char* name;
    double x1, y1, x2, y2;
    int n;
    double t1, t2;
    int flag1, flag2;
  } rows[] = {
      {"first_end_on_edge_leaves_left", 2, 0, 2, 3, 1, 2, kNaN, 5, 0},
      {"second_end_on_edge_from_right", 2, -3, 2, 0, 1, 2, kNaN, 2, 0},
      {"second_end_on_edge_from_left", 2, 3, 2, 0, 1, 2, kNaN, 6, 0},
      {"edge_on_the_line", 1, 0, 3, 0, 2, 1, 3, 3, 3},
      {"parallel_edge_off_the_line", 0, 1, 3, 1, 0, kNaN, kNaN, 0, 0},
      {"crossing", 3, -1, 3, 1, 1, 3, kNaN, 0, 0},
      {"end_at_half_eps_is_on", 2, kEps / 2, 2, 1 + kEps / 2, 1, 2, kNaN, 5, 0},
      {"end_at_eps_is_off_but_crossing", 2, kEps, 2, 1 + kEps, 1, 2, kNaN, 0, 0},
      {"end_at_two_eps_misses", 2, 2 * kEps, 2, 1 + 2 * kEps, 0, kNaN, kNaN, 0, 0},
  };
  for (const auto& r : rows) {
    double t[2] = {kNaN, kNaN};
    int f1 = -1, f2 = -1;
    ASSERT_EQ(LineIntEdge(kEps, 0, 0, 1, 0, r.x1, r.y1, r.x2, r.y2, &t[0], &t[1], &f1, &f2), r.n)
        << r.name;
    EXPECT_TRUE(f1 == r.flag1 && f2 == r.flag2) << r.name;
    EXPECT_TRUE(r.n < 1 || t[0] == r.t1) << r.name;
    EXPECT_TRUE(r.n < 2 || t[1] == r.t2) << r.name;
  }
}

TEST(LineIntCircle, parameters_of_circles_arcs_and_ellipses) {
  const struct {
    const char* name;
    bool unit;  // LineIntCircle, else LineIntCircle1
    double x0, y0, dx;
    int n;
    double t1, t2;
  } rows[] = {
      {"unit_direction", true, -2, 0, 1, 2, 1, 3},
      {"half_chord_unscaled", true, -2, 0, 2, 2, 0, 2},
      {"half_chord_scaled", false, -2, 0, 2, 2, 0.5, 1.5},
      {"negative_component_descends", false, 2, 0, -2, 2, 1.5, 0.5},
      {"tangent_within_eps", true, -2, 1 + kEps / 2, 1, 1, 2, kNaN},
      {"miss_by_two_eps", true, -2, 1 + 2 * kEps, 1, 0, kNaN, kNaN},
  };
  double t1 = kNaN, t2 = kNaN, xa = 0, ya = 0, xb = 0, yb = 0;
  for (const auto& r : rows) {
    ASSERT_EQ(
        (r.unit ? LineIntCircle : LineIntCircle1)(kEps, r.x0, r.y0, r.dx, 0, 0, 0, 1, &t1, &t2),
        r.n)
        << r.name;
    EXPECT_TRUE(r.n < 1 || (t1 == r.t1 && (r.n < 2 || t2 == r.t2))) << r.name;
  }
  int f1 = 0, f2 = 0;
  // Both ends of the upper half circle lie on y = 0: start in t1 (5), end in t2 (6).
  ASSERT_EQ(LineIntArc(kEps, -2, 0, 1, 0, 0, 0, 1, 0, kPi, &t1, &t2, &f1, &f2), 2);
  EXPECT_TRUE(t1 == 3 && f1 == 5 && std::fabs(t2 - 1) < 1e-15 && f2 == 6);
  ASSERT_EQ(LineIntArc(kEps, -2, 1, 1, 0, 0, 0, 1, 0.5, 0.5 + kTwoPi, &t1, &t2, &f1, &f2), 1);
  EXPECT_TRUE(t1 == 2 && f1 == 3);  // a whole circle marks the tangent
  ASSERT_EQ(LineIntEllips(kEps, -3, 1, 1, 0, 0, 0, 2, 1, 0, &t1, &t2), 1);
  EXPECT_EQ(t1, 3.0);
  // A segment ending exactly on the arc counts (t = 1 < 1 + eps).
  ASSERT_EQ(DEArcLInts(kEps, -3, 0, -2, 0, 0, 0, 2, 1, 0, 0.1, 6, &xa, &ya, &xb, &yb), 1);
  EXPECT_EQ(xa, -2.0);
}

// A random line and arc (circle when a == b, then with a unit direction).
struct Draw {
  double x0, y0, dx, dy, cx, cy, a, b, rot, sa, ea;

  void at(double t, double* x, double* y) const {
    const double px = a * std::cos(t), py = b * std::sin(t);
    *x = cx + px * std::cos(rot) - py * std::sin(rot);
    *y = cy + px * std::sin(rot) + py * std::cos(rot);
  }
  // Signed offset of the curve point from the line: positive to the left.
  double offset(double t) const {
    double x, y;
    at(t, &x, &y);
    return (dx * (y - y0) - dy * (x - x0)) / std::hypot(dx, dy);
  }
};

Draw drawCase(std::mt19937& rng, bool circle) {
  std::uniform_real_distribution<double> u(-1, 1), size(0.5, 20), turn(0, kTwoPi);
  Draw d{};
  d.cx = 10 * u(rng);
  d.cy = 10 * u(rng);
  d.a = size(rng);
  d.b = circle ? d.a : size(rng);
  d.rot = circle ? 0.0 : turn(rng);
  d.sa = turn(rng);
  d.ea = d.sa + 0.2 + 2.9 * (u(rng) + 1);
  const double ang = turn(rng), len = circle ? 1.0 : std::exp(2 * u(rng));
  d.dx = len * std::cos(ang);
  d.dy = len * std::sin(ang);
  d.x0 = d.cx + 1.3 * d.a * u(rng);
  d.y0 = d.cy + 1.3 * d.b * u(rng);
  return d;
}

TEST(LineIntEarc, crossings_lie_on_both_curves_and_match_sign_changes) {
  std::mt19937 rng(401);
  int checked = 0;
  for (int i = 0; i < 4000; ++i) {
    const bool circle = i % 2 == 0;
    const Draw d = drawCase(rng, circle);
    const double size = std::max(d.a, d.b) + 15, near = 1e-3 * size;
    double t[2] = {kNaN, kNaN};
    int f1 = -1, f2 = -1;
    const int n = circle ? LineIntArc(1e-9, d.x0, d.y0, d.dx, d.dy, d.cx, d.cy, d.a, d.sa, d.ea,
                                      &t[0], &t[1], &f1, &f2)
                         : LineIntEarc(1e-9, d.x0, d.y0, d.dx, d.dy, d.cx, d.cy, d.a, d.b, d.rot,
                                       d.sa, d.ea, &t[0], &t[1], &f1, &f2);
    // Sign changes along the sweep; skip lines near tangency (an extremum of the offset close
    // to 0) or near an arc end.
    int changes = 0;
    bool clear = std::fabs(d.offset(d.sa)) > near && std::fabs(d.offset(d.ea)) > near;
    double prev = d.offset(d.sa), prevStep = 0;
    for (int k = 1; k <= 4096 && clear; ++k) {
      const double v = d.offset(d.sa + (d.ea - d.sa) * k / 4096);
      changes += (v > 0) != (prev > 0);
      clear = !((v - prev) * prevStep < 0 && std::fabs(prev) < near);
      prevStep = v - prev;
      prev = v;
    }
    if (!clear)
      continue;
    ++checked;
    ASSERT_EQ(n, changes) << "case " << i;
    for (int k = 0; k < n; ++k) {
      const double x = d.x0 + t[k] * d.dx - d.cx, y = d.y0 + t[k] * d.dy - d.cy;
      const double px = x * std::cos(d.rot) + y * std::sin(d.rot);
      const double py = y * std::cos(d.rot) - x * std::sin(d.rot);
      EXPECT_NEAR(std::hypot(px / d.a, py / d.b), 1.0, 1e-9 * size / std::min(d.a, d.b)) << i;
    }
  }
  EXPECT_GT(checked, 3600);
}

TEST(LineIntArc, bit_four_says_the_arc_leaves_to_the_left) {
  std::mt19937 rng(402);
  std::uniform_real_distribution<double> turn(0, kTwoPi);
  for (int i = 0; i < 500; ++i) {
    Draw d = drawCase(rng, true);
    const bool atStart = i % 2 == 0;
    double x, y;
    d.at(atStart ? d.sa : d.ea, &x, &y);
    const double ang = turn(rng);
    d = Draw{x - 3 * std::cos(ang),
             y - 3 * std::sin(ang),
             std::cos(ang),
             std::sin(ang),
             d.cx,
             d.cy,
             d.a,
             d.b,
             0,
             d.sa,
             d.ea};
    // Which side of the line is the arc on just inside that end?
    const double side = d.offset(atStart ? d.sa + 1e-4 : d.ea - 1e-4);
    if (std::fabs(side) < 1e-6 * d.a)
      continue;  // leaves along the line
    double t1 = 0, t2 = 0;
    int f1 = 0, f2 = 0;
    const int n =
        LineIntArc(1e-9, d.x0, d.y0, d.dx, d.dy, d.cx, d.cy, d.a, d.sa, d.ea, &t1, &t2, &f1, &f2);
    ASSERT_GE(n, 1) << i;
    EXPECT_EQ(((atStart || n == 1 ? f1 : f2) & 4) != 0, side > 0) << i;
  }
}

TEST(LineIntersections, hostile_numbers_give_no_crossing) {
  HostileNumbers pick(403);
  for (int i = 0; i < 20000; ++i) {
    double v[11], t1 = 0, t2 = 0, xb = 0, yb = 0;
    int finiteUpTo = 0, f1 = 0, f2 = 0;  // how many leading arguments are finite
    for (double& x : v)
      x = pick();
    while (finiteUpTo < 11 && std::isfinite(v[finiteUpTo]))
      ++finiteUpTo;
    const int arguments[] = {8, 9, 11, 11};
    const int counts[] = {
        LineIntEdge(1e-9, v[0], v[1], v[2], v[3], v[4], v[5], v[6], v[7], &t1, &t2, &f1, &f2),
        LineIntArc1(1e-9, v[0], v[1], v[2], v[3], v[4], v[5], v[6], v[7], v[8], &t1, &t2, &f1, &f2),
        LineIntEarc(1e-9, v[0], v[1], v[2], v[3], v[4], v[5], v[6], v[7], v[8], v[9], v[10], &t1,
                    &t2, &f1, &f2),
        DEArcLInts(1e-9, v[0], v[1], v[2], v[3], v[4], v[5], v[6], v[7], v[8], v[9], v[10], &t1,
                   &t2, &xb, &yb)};
    for (int k = 0; k < 4; ++k)
      EXPECT_TRUE(counts[k] >= 0 && counts[k] <= 2 &&
                  (finiteUpTo >= arguments[k] || counts[k] == 0))
          << i << " function " << k;
  }
}

}  // namespace
