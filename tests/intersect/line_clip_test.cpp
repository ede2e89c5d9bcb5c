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

struct EdgeRow {
  const char* name;
  double x1, y1, x2, y2;
  int n;
  double t1, t2;
  int flag1, flag2;
};

TEST(LineIntEdge, flags_and_parameters_along_the_x_axis) {
  // The line is y = 0 from the origin, direction (1, 0); "left" is y > 0.
  const EdgeRow rows[] = {
      {"first_end_on_edge_leaves_left", 2, 0, 2, 3, 1, 2, 0, 5, 0},
      {"second_end_on_edge_from_right", 2, -3, 2, 0, 1, 2, 0, 2, 0},
      {"second_end_on_edge_from_left", 2, 3, 2, 0, 1, 2, 0, 6, 0},
      {"edge_on_the_line", 1, 0, 3, 0, 2, 1, 3, 3, 3},
      {"parallel_edge_off_the_line", 0, 1, 3, 1, 0, 0, 0, 0, 0},
      {"crossing", 3, -1, 3, 1, 1, 3, 0, 0, 0},
      {"end_at_half_eps_is_on", 2, kEps / 2, 2, 1 + kEps / 2, 1, 2, 0, 5, 0},
      {"end_at_eps_is_off_but_the_crossing_holds", 2, kEps, 2, 1 + kEps, 1, 2, 0, 0, 0},
      {"end_at_two_eps_misses", 2, 2 * kEps, 2, 1 + 2 * kEps, 0, 0, 0, 0, 0},
  };
  for (const EdgeRow& r : rows) {
    double t1 = kNaN, t2 = kNaN;
    int f1 = -1, f2 = -1;
    ASSERT_EQ(LineIntEdge(kEps, 0, 0, 1, 0, r.x1, r.y1, r.x2, r.y2, &t1, &t2, &f1, &f2), r.n)
        << r.name;
    EXPECT_EQ(f1, r.flag1) << r.name;
    EXPECT_EQ(f2, r.flag2) << r.name;
    EXPECT_EQ(r.n > 0 ? t1 : r.t1, r.t1) << r.name;
    EXPECT_EQ(r.n > 1 ? t2 : r.t2, r.t2) << r.name;
  }
}

TEST(LineIntCircle, unit_length_against_any_length) {
  double t1 = 0, t2 = 0;
  ASSERT_EQ(LineIntCircle(kEps, -2, 0, 1, 0, 0, 0, 1, &t1, &t2), 2);
  EXPECT_EQ(t1, 1.0);
  EXPECT_EQ(t2, 3.0);
  ASSERT_EQ(LineIntCircle(kEps, -2, 0, 2, 0, 0, 0, 1, &t1, &t2), 2);  // half chord unscaled
  EXPECT_EQ(t1, 0.0);
  EXPECT_EQ(t2, 2.0);
  ASSERT_EQ(LineIntCircle1(kEps, -2, 0, 2, 0, 0, 0, 1, &t1, &t2), 2);
  EXPECT_EQ(t1, 0.5);
  EXPECT_EQ(t2, 1.5);
  ASSERT_EQ(LineIntCircle1(kEps, 2, 0, -2, 0, 0, 0, 1, &t1, &t2), 2);  // descending
  EXPECT_EQ(t1, 1.5);
  EXPECT_EQ(t2, 0.5);
  ASSERT_EQ(LineIntCircle(kEps, -2, 1 + kEps / 2, 1, 0, 0, 0, 1, &t1, &t2), 1);
  EXPECT_EQ(t1, 2.0);
  EXPECT_EQ(LineIntCircle(kEps, -2, 1 + 2 * kEps, 1, 0, 0, 0, 1, &t1, &t2), 0);
}

TEST(LineIntArc, arc_ends_on_the_line_and_the_whole_circle) {
  double t1 = 0, t2 = 0;
  int f1 = 0, f2 = 0;
  ASSERT_EQ(LineIntArc(kEps, -2, 0, 1, 0, 0, 0, 1, 0, kPi, &t1, &t2, &f1, &f2), 2);
  EXPECT_EQ(t1, 3.0);
  EXPECT_EQ(f1, 5);
  EXPECT_NEAR(t2, 1.0, 1e-15);
  EXPECT_EQ(f2, 6);
  ASSERT_EQ(LineIntArc(kEps, -2, 1, 1, 0, 0, 0, 1, 0.5, 0.5 + kTwoPi, &t1, &t2, &f1, &f2), 1);
  EXPECT_EQ(f1, 3);
  EXPECT_EQ(t1, 2.0);
  // The lower half misses the tangent point at the top.
  EXPECT_EQ(LineIntArc(kEps, -2, 1, 1, 0, 0, 0, 1, kPi, kTwoPi, &t1, &t2, &f1, &f2), 0);
}

TEST(LineIntEllips, crossings_of_the_axis_line) {
  double t1 = 0, t2 = 0;
  ASSERT_EQ(LineIntEllips(kEps, -3, 0, 1, 0, 0, 0, 2, 1, 0, &t1, &t2), 2);
  EXPECT_EQ(t1, 5.0);
  EXPECT_EQ(t2, 1.0);
  ASSERT_EQ(LineIntEllips(kEps, -3, 0, 1, 0, 0, 0, 2, 1, kHalfPi, &t1, &t2), 2);
  EXPECT_NEAR(t1, 4.0, 1e-15);
  EXPECT_NEAR(t2, 2.0, 1e-15);
  ASSERT_EQ(LineIntEllips(kEps, -3, 1, 1, 0, 0, 0, 2, 1, 0, &t1, &t2), 1);
  EXPECT_EQ(t1, 3.0);
  double xa = 0, ya = 0, xb = 0, yb = 0;
  // A segment ending exactly on the arc counts (t = 1 < 1 + eps).
  ASSERT_EQ(DEArcLInts(kEps, -3, 0, -2, 0, 0, 0, 2, 1, 0, 0.1, 6, &xa, &ya, &xb, &yb), 1);
  EXPECT_EQ(xa, -2.0);
}

// A random line and arc (circle when a == b), with the line through an arc end half the time.
struct Draw {
  double x0, y0, dx, dy, cx, cy, a, b, rot, sa, ea;
};

Draw drawCase(std::mt19937& rng, bool circle) {
  std::uniform_real_distribution<double> u(-1, 1);
  std::uniform_real_distribution<double> size(0.5, 20);
  std::uniform_real_distribution<double> turn(0, kTwoPi);
  Draw d{};
  d.cx = 10 * u(rng);
  d.cy = 10 * u(rng);
  d.a = size(rng);
  d.b = circle ? d.a : size(rng);
  d.rot = circle ? 0.0 : turn(rng);
  d.sa = turn(rng);
  d.ea = d.sa + 0.2 + 5.8 * (u(rng) + 1) / 2;
  const double ang = turn(rng);
  const double len = circle ? 1.0 : std::exp(2 * u(rng));
  d.dx = len * std::cos(ang);
  d.dy = len * std::sin(ang);
  d.x0 = d.cx + 1.3 * d.a * u(rng);
  d.y0 = d.cy + 1.3 * d.b * u(rng);
  return d;
}

void curvePoint(const Draw& d, double t, double* x, double* y) {
  const double px = d.a * std::cos(t);
  const double py = d.b * std::sin(t);
  *x = d.cx + px * std::cos(d.rot) - py * std::sin(d.rot);
  *y = d.cy + px * std::sin(d.rot) + py * std::cos(d.rot);
}

// Signed offset of the curve point from the line: positive to the left.
double offsetAt(const Draw& d, double t) {
  double x, y;
  curvePoint(d, t, &x, &y);
  return (d.dx * (y - d.y0) - d.dy * (x - d.x0)) / std::hypot(d.dx, d.dy);
}

TEST(LineIntEarc, crossings_lie_on_both_curves_and_match_sign_changes) {
  std::mt19937 rng(401);
  int checked = 0;
  for (int i = 0; i < 4000; ++i) {
    const bool circle = i % 2 == 0;
    const Draw d = drawCase(rng, circle);
    const double size = std::max(d.a, d.b) + 15;
    double t1 = kNaN, t2 = kNaN;
    int f1 = -1, f2 = -1;
    const int n = circle ? LineIntArc(1e-9, d.x0, d.y0, d.dx, d.dy, d.cx, d.cy, d.a, d.sa, d.ea,
                                      &t1, &t2, &f1, &f2)
                         : LineIntEarc(1e-9, d.x0, d.y0, d.dx, d.dy, d.cx, d.cy, d.a, d.b, d.rot,
                                       d.sa, d.ea, &t1, &t2, &f1, &f2);
    // Count the sign changes along the sweep; skip lines that come near tangency (an extremum
    // of the offset close to 0) or pass near an arc end.
    constexpr int kSamples = 4096;
    const double near = 1e-3 * size;
    int changes = 0;
    bool clear = std::fabs(offsetAt(d, d.sa)) > near && std::fabs(offsetAt(d, d.ea)) > near;
    double prev = offsetAt(d, d.sa);
    double prevStep = 0;
    for (int k = 1; k <= kSamples && clear; ++k) {
      const double v = offsetAt(d, d.sa + (d.ea - d.sa) * k / kSamples);
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
      const double t = k == 0 ? t1 : t2;
      double x = d.x0 + t * d.dx, y = d.y0 + t * d.dy;
      double px = (x - d.cx) * std::cos(d.rot) + (y - d.cy) * std::sin(d.rot);
      double py = -(x - d.cx) * std::sin(d.rot) + (y - d.cy) * std::cos(d.rot);
      EXPECT_NEAR(std::hypot(px / d.a, py / d.b), 1.0, 1e-9 * size / std::min(d.a, d.b))
          << "case " << i;
    }
  }
  EXPECT_GT(checked, 3600);
}

TEST(LineIntArc, bit_four_says_the_arc_leaves_to_the_left) {
  std::mt19937 rng(402);
  std::uniform_real_distribution<double> turn(0, kTwoPi);
  for (int i = 0; i < 500; ++i) {
    Draw d = drawCase(rng, true);
    const double through = i % 2 == 0 ? d.sa : d.ea;
    double x, y;
    curvePoint(d, through, &x, &y);
    const double ang = turn(rng);
    d.x0 = x - 3 * std::cos(ang);
    d.y0 = y - 3 * std::sin(ang);
    d.dx = std::cos(ang);
    d.dy = std::sin(ang);
    // Just inside the arc from that end, which side of the line is the curve on?
    const double inward = i % 2 == 0 ? 1e-4 : -1e-4;
    const double side = offsetAt(d, through + inward);
    if (std::fabs(side) < 1e-6 * d.a)
      continue;  // leaves along the line
    double t1 = 0, t2 = 0;
    int f1 = 0, f2 = 0;
    const int n =
        LineIntArc(1e-9, d.x0, d.y0, d.dx, d.dy, d.cx, d.cy, d.a, d.sa, d.ea, &t1, &t2, &f1, &f2);
    ASSERT_GE(n, 1) << i;
    const int flag = i % 2 == 0 ? f1 : (n == 2 ? f2 : f1);
    EXPECT_EQ((flag & 4) != 0, side > 0) << i;
  }
}

TEST(LineIntersections, hostile_numbers_return_promptly) {
  HostileNumbers pick(403);
  for (int i = 0; i < 20000; ++i) {
    double v[11];
    int finiteUpTo = 0;  // leading arguments that are finite
    for (double& x : v)
      x = pick();
    while (finiteUpTo < 11 && std::isfinite(v[finiteUpTo]))
      ++finiteUpTo;
    double t1 = 0, t2 = 0, xb = 0, yb = 0;
    int f1 = 0, f2 = 0;
    const int arguments[] = {8, 9, 11, 11};
    const int counts[] = {
        LineIntEdge(1e-9, v[0], v[1], v[2], v[3], v[4], v[5], v[6], v[7], &t1, &t2, &f1, &f2),
        LineIntArc1(1e-9, v[0], v[1], v[2], v[3], v[4], v[5], v[6], v[7], v[8], &t1, &t2, &f1, &f2),
        LineIntEarc(1e-9, v[0], v[1], v[2], v[3], v[4], v[5], v[6], v[7], v[8], v[9], v[10], &t1,
                    &t2, &f1, &f2),
        DEArcLInts(1e-9, v[0], v[1], v[2], v[3], v[4], v[5], v[6], v[7], v[8], v[9], v[10], &t1,
                   &t2, &xb, &yb)};
    for (int k = 0; k < 4; ++k) {
      EXPECT_TRUE(counts[k] >= 0 && counts[k] <= 2);
      EXPECT_TRUE(finiteUpTo >= arguments[k] || counts[k] == 0) << i << " function " << k;
    }
  }
}

}  // namespace
