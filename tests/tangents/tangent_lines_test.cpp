// Tarnsysm: planar computational geometry for 2D drafting.
// Tests of the tangent and perpendicular lines: tangency points on their circles, lines
// perpendicular or parallel where stated, outer before inner, arc filtering and slot moves,
// failure outputs and hostile numbers. Point arrays are exact-size heap buffers.

#include "circles/circle_checks.h"

#include <array>

namespace {

using namespace circles_test;

constexpr double kTol = 1e-9 * 30;  // the configurations span about 30

// Rows of points filled with sentinels; t() also serves the functions writing separate
// coordinates.
struct Points {
  std::vector<std::array<double, 2>> v;
  explicit Points(int n) : v(n, {kSentinel, kSentinel}) {}
  double (*rows())[2] { return reinterpret_cast<double(*)[2]>(v.data()); }
  double* t() { return v[0].data(); }
  Pt operator[](int i) const { return {v[i][0], v[i][1]}; }
  bool written(int k) const {  // the first k points, finite
    for (int i = 0; i < k; ++i)
      if (!std::isfinite(v[i][0] + v[i][1]) || v[i][0] == kSentinel)
        return false;
    return true;
  }
};

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

// How far q misses being a point of c where the line from `from` touches it, as a length.
double tangencyMiss(Pt q, Pt from, const Circ& c) {
  const Pt centre{c.x, c.y};
  return std::fmax(std::fabs(dist(q, centre) - c.r),
                   std::fabs(dot(q, from, centre)) / dist(q, from));
}

class TangentLines : public testing::TestWithParam<Pt> {};

TEST_P(TangentLines, random_configurations_touch_meet_and_survive_hostile_numbers) {
  HostileNumbers hostile(25);
  Draw d{std::mt19937_64(21), GetParam()}, dh{std::mt19937_64(24), GetParam(), &hostile};
  int seen[3] = {};
  for (int trial = 0; trial < 2000; ++trial) {
    const Circ a = d.circle(), b = d.circle();
    const Pt c1{a.x, a.y}, c2{b.x, b.y}, p = d.point();
    const Line l = d.line();
    const double sa = d.uniform(0, kTwoPi), ea = sa + d.uniform(0.5, 5);
    const double len = std::hypot(l.x2 - l.x1, l.y2 - l.y1), gap = dist(c1, c2);
    const Pt along{(l.x2 - l.x1) / len, (l.y2 - l.y1) / len};
    // Perpendiculars from the line: from the foot, perpendicular to the line, to the touching
    // point ahead along the line's direction, then behind; through an arc's centre to the arc.
    Points pts(8), t(2), arc(3), hp(8), hq(4), ha(3), ht(2), hv(4);
    ASSERT_EQ(DLperLtangC(kEps, l.x1, l.y1, l.x2, l.y2, a.x, a.y, a.r, pts.rows()), 2);
    for (int i = 0; i < 2; ++i) {
      const Pt foot = pts[2 * i], touch = pts[2 * i + 1];
      EXPECT_LT(lineDistance(foot, l) + std::fabs(dist(touch, c1) - a.r), kTol) << trial;
      EXPECT_NEAR(dot(c1, touch, {a.x + along.x, a.y + along.y}), (i == 0 ? 1 : -1) * a.r, kTol);
      EXPECT_NEAR(dot(foot, touch, {foot.x + along.x, foot.y + along.y}), 0, kTol) << trial;
    }
    const int m = DLperLperArc(kEps, l.x1, l.y1, l.x2, l.y2, a.x, a.y, a.r, sa, ea, arc.rows());
    EXPECT_TRUE(m > 0 ? lineDistance(arc[0], l) < kTol : arc[0].x == kSentinel) << trial;
    for (int i = 1; i <= m; ++i) {
      EXPECT_NEAR(dist(arc[i], c1), a.r, kTol) << trial;
      EXPECT_EQ(ValidAngle(1e-9, sa, ea, std::atan2(arc[i].y - a.y, arc[i].x - a.x)), 1) << trial;
      EXPECT_NEAR(cross(arc[0], arc[i], c1) / a.r, 0, kTol) << trial;
    }
    // Hostile numbers: a result k writes k finite lines; DTangLof2Cir's 0 leaves every point
    // untouched; a vertical line's non-finite x is the stated formula's.
    double h[10];
    for (double& x : h)
      x = dh.uniform(-10, 10);
    int count = -1;
    int n = DTangLof2Cir(kEps, h[0], h[1], h[6], h[4], h[5], h[2], hp.rows(), &count);
    ASSERT_TRUE(count == 2 * n && hp.written(count) && (count == 8 || hp[count].x == kSentinel));
    n = DLperLtangC(kEps, h[0], h[1], h[2], h[3], h[4], h[5], h[6], hq.rows());
    ASSERT_TRUE(hq.written(n == 2 ? 4 : n)) << trial;
    n = DLperLperArc(kEps, h[0], h[1], h[2], h[3], h[4], h[5], h[6], h[7], h[8], ha.rows());
    ASSERT_TRUE(ha.written(n == 0 ? 0 : n + 1)) << trial;
    n = DLthrPtangArc(kEps, h[4], h[5], h[6], h[7], h[8], h[9], h[1], ht.t(), ht.t() + 1,
                      ht.t() + 2, ht.t() + 3);
    ASSERT_TRUE(ht.written(n)) << trial;
    n = parallelTangents(h[4], h[5], h[6], {h[0], h[1], h[2], h[3]}, hv.t());
    ASSERT_TRUE(n == 0 ? hv[0].x == kSentinel : h[2] == h[0] || hv.written(4)) << trial;
    // Common tangents and tangents from a point, 1e-3 away from touching.
    if (std::fabs(gap - (a.r + b.r)) < 1e-3 || std::fabs(gap - std::fabs(a.r - b.r)) < 1e-3 ||
        std::fabs(dist(p, c1) - a.r) < 1e-3)
      continue;
    const int lines = gap > a.r + b.r ? 4 : gap > std::fabs(a.r - b.r) ? 2 : 0;
    count = -1;
    ASSERT_EQ(DTangLof2Cir(kEps, a.x, a.y, a.r, b.x, b.y, b.r, pts.rows(), &count), lines);
    ASSERT_EQ(count, 2 * lines);
    ++seen[lines / 2];
    for (int i = 0; i < lines; ++i) {
      const Pt t1 = pts[2 * i], t2 = pts[2 * i + 1];
      EXPECT_LT(tangencyMiss(t1, t2, a) + tangencyMiss(t2, t1, b), kTol) << trial;
      // Outer tangents leave both centres on one side, inner ones between them.
      EXPECT_EQ(cross(t1, t2, c1) * cross(t1, t2, c2) > 0, i < 2) << trial;
    }
    n = DLthrPtangC(kEps, a.x, a.y, a.r, p.x, p.y, t.t(), t.t() + 1, t.t() + 2, t.t() + 3);
    ASSERT_EQ(n, dist(p, c1) > a.r ? 2 : 0) << trial;
    EXPECT_TRUE(n > 0 || t[0].x == kSentinel);
    for (int i = 0; i < n; ++i) {
      EXPECT_LT(tangencyMiss(t[i], p, a), kTol) << trial;
      EXPECT_EQ(cross(p, c1, t[i]) < 0, i == 0) << trial;  // the first right of P to C
    }
  }
  EXPECT_GT(seen[0] * seen[1] * seen[2], 0);
}

INSTANTIATE_TEST_SUITE_P(Placement, TangentLines, kPlacements);

TEST(TangentLines, stated_counts_orders_and_failures) {
  Points pts(8), v(4), two(2);
  int count = -1;
  // Nested: nothing, count 0. Touching from outside: the two outer tangents only.
  EXPECT_TRUE(DTangLof2Cir(kEps, 0, 0, 5, 1, 0, 1, pts.rows(), &count) == 0 && count == 0 &&
              pts[0].x == kSentinel);
  EXPECT_TRUE(DTangLof2Cir(kEps, 0, 0, 1, 2, 0, 1, pts.rows(), &count) == 2 && count == 4);
  // Parallel tangents: a short line fails untouched, a vertical one gives non-finite x. Along
  // (3, 4): A from (-0.8, 0.6) left of it, B from (0.8, -0.6), each to that plus (3, 4).
  EXPECT_EQ(parallelTangents(0, 0, 1, {3, 3, 3, 3}, v.t()) + v[0].x, kSentinel);
  EXPECT_TRUE(parallelTangents(0, 0, 1, {3, 0, 3, 1}, v.t()) == 2 && !std::isfinite(v[0].x));
  const double lr[8] = {-0.8, 0.6, 2.2, 4.6, 0.8, -0.6, 3.8, 3.4};
  EXPECT_EQ(parallelTangents(0, 0, 1, {1, 1, 4, 5}, v.t()), 2);
  for (int i = 0; i < 8; ++i)
    EXPECT_NEAR(v.t()[i], lr[i], 1e-14) << i;
  // Unit circle, point (2, 0): touching at 60 and 300 degrees, the first right of P to C.
  // Rows: px, arc start, end, result, first point. Only the second on the arc: moved into the
  // first slot. A point on the circle: P + w at 45 degrees is tested, not P itself at 0.
  const double h = std::sqrt(3.0) / 2;
  const double arcCases[][6] = {{2, 0, kPi, 1, 0.5, h},    {2, kPi, kTwoPi, 1, 0.5, -h},
                                {2, 0, kTwoPi, 2, 0.5, h}, {2, 2, 4, 0, 0, 0},
                                {1, 0, kHalfPi, 1, 1, 1},  {1, kPi, kTwoPi, 0, 0, 0}};
  for (const auto& c : arcCases) {
    double t[4] = {0, 0, 0, 0};
    EXPECT_EQ(DLthrPtangArc(kEps, 0, 0, 1, c[1], c[2], c[0], 0, &t[0], &t[1], &t[2], &t[3]), c[3]);
    EXPECT_TRUE(!c[3] || (std::fabs(t[0] - c[4]) < 1e-12 && std::fabs(t[1] - c[5]) < 1e-12))
        << c[0] << " " << c[1];
  }
  // The line's point at the arc's centre: the vertical, upper end first; a lone valid end,
  // upper or lower, goes to slot 1; none leaves the points untouched.
  const double centreCases[][4] = {
      {0, kPi, 1, 6}, {kPi, kTwoPi, 1, 2}, {0, kTwoPi, 2, 6}, {0.1, 1, 0}};
  for (const auto& c : centreCases) {
    Points arc(3);
    EXPECT_EQ(DLperLperArc(kEps, 3, 4, 3, 4, 3, 4, 2, c[0], c[1], arc.rows()), int(c[2]));
    EXPECT_TRUE(c[2] ? arc[0].x == 3 && arc[1].x == 3 && arc[1].y == c[3] : arc[0].x == kSentinel)
        << c[0];
  }
  // A line of one point, (1, 3) from the centre: the line from it through the centre, nearer
  // crossing first.
  Points off(3);
  EXPECT_EQ(DLperLperArc(kEps, 4, 7, 4, 7, 3, 4, 2, 0, kTwoPi, off.rows()), 2);
  EXPECT_LT(dist(off[1], {3 + 2 / std::sqrt(10.0), 4 + 6 / std::sqrt(10.0)}), 1e-12);
  // A point circle: one line from the foot to the centre.
  EXPECT_EQ(DLperLtangC(kEps, 0, 0, 4, 0, 1, 3, 0, two.rows()), 1);
  EXPECT_TRUE(two[0].x == 1 && two[0].y == 0 && two[1].x == 1 && two[1].y == 3);
}

}  // namespace
