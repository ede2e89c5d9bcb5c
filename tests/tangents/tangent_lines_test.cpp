// Tarnsysm: planar computational geometry for 2D drafting.
// Tests of the tangent and perpendicular lines: tangency points on their circles, lines
// perpendicular or parallel where stated, outer before inner, arc filtering and slot moves,
// failure outputs and hostile numbers. Point arrays are exact-size heap buffers.
#include <Tarnsysm.h>

#include "circles/circle_checks.h"

#include <array>
#include <vector>

namespace {

using namespace circles_test;

constexpr double kTol = 1e-9 * 30;  // the configurations span about 30

struct Points {
  std::vector<std::array<double, 2>> v;
  explicit Points(int n) : v(n, {kSentinel, kSentinel}) {}
  double (*rows())[2] { return reinterpret_cast<double(*)[2]>(v.data()); }
  Pt operator[](int i) const { return {v[i][0], v[i][1]}; }
};

// DLtangCparaL into v[0..7].
int parallelTangents(double cx, double cy, double r, const Line& l, double* v) {
  return DLtangCparaL(kEps, cx, cy, r, l.x1, l.y1, l.x2, l.y2, v, v + 1, v + 2, v + 3, v + 4, v + 5,
                      v + 6, v + 7);
}

double cross(Pt o, Pt a, Pt b) {
  return (a.x - o.x) * (b.y - o.y) - (a.y - o.y) * (b.x - o.x);
}
double dot(Pt o, Pt a, Pt b) {
  return (a.x - o.x) * (b.x - o.x) + (a.y - o.y) * (b.y - o.y);
}

class TangentLines : public testing::TestWithParam<Pt> {};

// How far q misses being a point of c where the line from `from` touches it, as a length.
double tangencyMiss(Pt q, Pt from, const Circ& c) {
  const Pt centre{c.x, c.y};
  return std::fmax(std::fabs(dist(q, centre) - c.r),
                   std::fabs(dot(q, from, centre)) / dist(q, from));
}

TEST_P(TangentLines, common_tangents_and_tangents_from_a_point_touch_their_circles) {
  Draw d(21, GetParam().x, GetParam().y);
  int seen[3] = {};
  for (int trial = 0; trial < 2000; ++trial) {
    const Circ a = d.circle(), b = d.circle();
    const Pt c1{a.x, a.y}, c2{b.x, b.y}, p = d.point();
    const double gap = dist(c1, c2);
    if (std::fabs(gap - (a.r + b.r)) < 1e-3 || std::fabs(gap - std::fabs(a.r - b.r)) < 1e-3 ||
        std::fabs(dist(p, c1) - a.r) < 1e-3)
      continue;
    const int lines = gap > a.r + b.r ? 4 : gap > std::fabs(a.r - b.r) ? 2 : 0;
    Points pts(8);
    int count = -1;
    ASSERT_EQ(DTangLof2Cir(kEps, a.x, a.y, a.r, b.x, b.y, b.r, pts.rows(), &count), lines);
    ASSERT_EQ(count, 2 * lines);
    ++seen[lines / 2];
    for (int i = 0; i < lines; ++i) {
      const Pt t1 = pts[2 * i], t2 = pts[2 * i + 1];
      EXPECT_LT(tangencyMiss(t1, t2, a) + tangencyMiss(t2, t1, b), kTol) << trial;
      // Outer tangents leave both centres on one side, inner ones between them.
      EXPECT_EQ(cross(t1, t2, c1) * cross(t1, t2, c2) > 0, i < 2) << trial;
    }
    double t[4] = {kSentinel, kSentinel, kSentinel, kSentinel};
    const int n = DLthrPtangC(kEps, a.x, a.y, a.r, p.x, p.y, &t[0], &t[1], &t[2], &t[3]);
    ASSERT_EQ(n, dist(p, c1) > a.r ? 2 : 0) << trial;
    EXPECT_TRUE(n > 0 || t[0] == kSentinel);
    for (int i = 0; i < n; ++i) {
      EXPECT_LT(tangencyMiss({t[2 * i], t[2 * i + 1]}, p, a), kTol) << trial;
      EXPECT_EQ(cross(p, c1, {t[2 * i], t[2 * i + 1]}) < 0, i == 0) << trial;  // first right of PC
    }
  }
  EXPECT_GT(seen[0] * seen[1] * seen[2], 0);
}

TEST_P(TangentLines, perpendicular_lines_start_on_the_line_and_end_on_circle_or_arc) {
  Draw d(23, GetParam().x, GetParam().y);
  for (int trial = 0; trial < 1000; ++trial) {
    const Circ c = d.circle();
    const Line l = d.line();
    const Pt centre{c.x, c.y}, ahead{c.x + l.x2 - l.x1, c.y + l.y2 - l.y1};
    const double len = std::hypot(l.x2 - l.x1, l.y2 - l.y1);
    Points pts(4);
    ASSERT_EQ(DLperLtangC(kEps, l.x1, l.y1, l.x2, l.y2, c.x, c.y, c.r, pts.rows()), 2);
    for (int i = 0; i < 2; ++i) {
      // From the foot on the line, perpendicular to it, to the touching point ahead along the
      // line's direction, then behind.
      const Pt foot = pts[2 * i], touch = pts[2 * i + 1];
      EXPECT_NEAR(lineDistance(foot, l), 0, kTol) << trial;
      EXPECT_NEAR(dist(touch, centre), c.r, kTol) << trial;
      EXPECT_NEAR(dot(centre, touch, ahead) / len, (i == 0 ? 1 : -1) * c.r, kTol) << trial;
      EXPECT_NEAR(dot({0, 0}, {ahead.x - c.x, ahead.y - c.y}, {touch.x - foot.x, touch.y - foot.y}),
                  0, kTol * len);
    }
    // The perpendicular through an arc's centre ends on the arc.
    const double sa = d.uniform(0, kTwoPi), ea = sa + d.uniform(0.5, 5);
    Points arc(3);
    const int n = DLperLperArc(kEps, l.x1, l.y1, l.x2, l.y2, c.x, c.y, c.r, sa, ea, arc.rows());
    EXPECT_TRUE(n > 0 ? lineDistance(arc[0], l) < kTol : arc[0].x == kSentinel) << trial;
    for (int i = 1; i <= n; ++i) {
      EXPECT_NEAR(dist(arc[i], centre), c.r, kTol) << trial;
      EXPECT_EQ(ValidAngle(1e-9, sa, ea, std::atan2(arc[i].y - c.y, arc[i].x - c.x)), 1) << trial;
      EXPECT_NEAR(cross(arc[0], arc[i], centre) / c.r, 0, kTol) << trial;
    }
  }
}

TEST_P(TangentLines, hostile_numbers_give_zero_or_finite_points) {
  Draw d(24, GetParam().x, GetParam().y);
  HostileNumbers hostile(25);
  for (int trial = 0; trial < 2000; ++trial) {
    const Circ c = d.circle();
    const Line l = d.line();
    double a[10] = {l.x1, l.y1, l.x2, l.y2, c.x, c.y, c.r, 1.0, 4.0, c.x + 3};
    for (double& x : a)
      x = d.uniform(0, 1) < 0.3 ? hostile() : x;
    // A result k writes k finite lines; DTangLof2Cir's 0 leaves every point untouched.
    Points pts(8);
    const auto finite = [&](int k) {
      for (int i = 0; i < k; ++i)
        if (!std::isfinite(pts[i].x + pts[i].y))
          return false;
      return true;
    };
    int count = -1;
    int n = DTangLof2Cir(kEps, a[0], a[1], a[6], a[4], a[5], a[2], pts.rows(), &count);
    ASSERT_TRUE(count == 2 * n && finite(count) && (count == 8 || pts[count].x == kSentinel));
    n = DLperLtangC(kEps, a[0], a[1], a[2], a[3], a[4], a[5], a[6], pts.rows());
    ASSERT_TRUE(finite(n == 2 ? 4 : n)) << trial;
    n = DLperLperArc(kEps, a[0], a[1], a[2], a[3], a[4], a[5], a[6], a[7], a[8], pts.rows());
    ASSERT_TRUE(finite(n == 0 ? 0 : n + 1)) << trial;
    double t[8] = {kSentinel, kSentinel, kSentinel, kSentinel};
    n = DLthrPtangArc(kEps, a[4], a[5], a[6], a[7], a[8], a[9], a[1], &t[0], &t[1], &t[2], &t[3]);
    ASSERT_TRUE(n == 0 || std::isfinite(t[0] + t[1] + (n == 2 ? t[2] + t[3] : 0))) << trial;
    t[0] = kSentinel;
    n = parallelTangents(a[4], a[5], a[6], {a[0], a[1], a[2], a[3]}, t);
    // A vertical line's non-finite x is the stated formula's.
    ASSERT_TRUE(n == 0 ? t[0] == kSentinel : a[2] == a[0] || std::isfinite(t[0] + t[4]));
  }
}

INSTANTIATE_TEST_SUITE_P(Placement, TangentLines, kPlacements, placementName);

TEST(TangentLines, stated_counts_orders_and_failures) {
  Points pts(8);
  int count = -1;
  // Nested: nothing, count 0. Touching from outside: the two outer tangents only.
  EXPECT_EQ(DTangLof2Cir(kEps, 0, 0, 5, 1, 0, 1, pts.rows(), &count), 0);
  EXPECT_EQ(count + pts[0].x, kSentinel);
  EXPECT_EQ(DTangLof2Cir(kEps, 0, 0, 1, 2, 0, 1, pts.rows(), &count), 2);
  EXPECT_EQ(count, 4);
  // Parallel tangents: a short line fails untouched, a vertical one gives non-finite x. Along
  // (3, 4): A from (-0.8, 0.6) left of it, B from (0.8, -0.6), each to that plus (3, 4).
  double v[8] = {kSentinel};
  EXPECT_EQ(parallelTangents(0, 0, 1, {3, 3, 3, 3}, v) + v[0], kSentinel);
  EXPECT_TRUE(parallelTangents(0, 0, 1, {3, 0, 3, 1}, v) == 2 && !std::isfinite(v[0]));
  const double lr[8] = {-0.8, 0.6, 2.2, 4.6, 0.8, -0.6, 3.8, 3.4};
  EXPECT_EQ(parallelTangents(0, 0, 1, {1, 1, 4, 5}, v), 2);
  for (int i = 0; i < 8; ++i)
    EXPECT_NEAR(v[i], lr[i], 1e-14) << i;
  // Unit circle, point (2, 0): touching at 60 and 300 degrees, the first right of P to C.
  const double h = std::sqrt(3.0) / 2;
  const double arcCases[][6] = {
      {2, 0, kPi, 1, 0.5, h},        // px, arc start, end, result, first point
      {2, kPi, kTwoPi, 1, 0.5, -h},  // only the second on the arc: moved into the first slot
      {2, 0, kTwoPi, 2, 0.5, h},     //
      {2, 2, 4, 0, 0, 0},            // neither
      {1, 0, kHalfPi, 1, 1, 1},      // on the circle: P + w at 45 degrees is tested...
      {1, kPi, kTwoPi, 0, 0, 0}};    // ...not P itself at 0
  for (const auto& c : arcCases) {
    double t[4] = {0, 0, 0, 0};
    EXPECT_EQ(DLthrPtangArc(kEps, 0, 0, 1, c[1], c[2], c[0], 0, &t[0], &t[1], &t[2], &t[3]), c[3]);
    EXPECT_NEAR(t[0], c[3] ? c[4] : t[0], 1e-12) << c[1];
    EXPECT_NEAR(t[1], c[3] ? c[5] : t[1], 1e-12) << c[1];
  }
  // The line's point at the arc's centre: the vertical, upper end first; a lone valid end,
  // upper or lower, goes to slot 1.
  const double centreCases[][4] = {{0, kPi, 1, 5}, {kPi, kTwoPi, 1, 3}, {0, kTwoPi, 2, 5}};
  for (const auto& c : centreCases) {
    Points arc(3);
    EXPECT_EQ(DLperLperArc(kEps, 3, 4, 3, 4, 3, 4, 1, c[0], c[1], arc.rows()), int(c[2]));
    EXPECT_TRUE(arc[0].x == 3 && arc[1].x == 3 && arc[1].y == c[3]) << c[0];
  }
  Points none(3);
  EXPECT_EQ(DLperLperArc(kEps, 3, 4, 3, 4, 3, 4, 1, 0.1, 1, none.rows()) + none[0].x, kSentinel);
  // A point circle: one line from the foot to the centre.
  Points two(2);
  EXPECT_EQ(DLperLtangC(kEps, 0, 0, 4, 0, 1, 3, 0, two.rows()), 1);
  EXPECT_TRUE(two[0].x == 1 && two[0].y == 0 && two[1].x == 1 && two[1].y == 3);
}

}  // namespace
