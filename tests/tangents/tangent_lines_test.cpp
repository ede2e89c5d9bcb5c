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

using Points = std::vector<std::array<double, 2>>;

double (*rows(Points& v))[2] {
  return reinterpret_cast<double(*)[2]>(v.data());
}

Pt at(const Points& v, int i) {
  return {v[i][0], v[i][1]};
}

double cross(Pt o, Pt a, Pt b) {
  return (a.x - o.x) * (b.y - o.y) - (a.y - o.y) * (b.x - o.x);
}

double dot(Pt o, Pt a, Pt b) {
  return (a.x - o.x) * (b.x - o.x) + (a.y - o.y) * (b.y - o.y);
}

class TangentLines : public testing::TestWithParam<Pt> {};

TEST_P(TangentLines, common_tangents_touch_both_circles_outer_first) {
  Draw d(21, GetParam().x, GetParam().y);
  int counts[3] = {};
  for (int trial = 0; trial < 2000; ++trial) {
    const Circ a = d.circle(), b = d.circle();
    const double gap = dist({a.x, a.y}, {b.x, b.y});
    if (std::fabs(gap - (a.r + b.r)) < 1e-3 || std::fabs(gap - std::fabs(a.r - b.r)) < 1e-3)
      continue;
    const int lines = gap > a.r + b.r ? 4 : gap > std::fabs(a.r - b.r) ? 2 : 0;
    Points pts(8, {kSentinel, kSentinel});
    int count = -1;
    ASSERT_EQ(DTangLof2Cir(kEps, a.x, a.y, a.r, b.x, b.y, b.r, rows(pts), &count), lines);
    ASSERT_EQ(count, 2 * lines);
    ++counts[lines / 2];
    for (int i = 0; i < lines; ++i) {
      const Pt t1 = at(pts, 2 * i), t2 = at(pts, 2 * i + 1), c1{a.x, a.y}, c2{b.x, b.y};
      const double len = dist(t1, t2);
      EXPECT_NEAR(dist(t1, c1), a.r, 1e-9 * 30) << trial;
      EXPECT_NEAR(dist(t2, c2), b.r, 1e-9 * 30) << trial;
      EXPECT_NEAR(dot(t1, t2, c1) / (len * a.r), 0, 1e-9) << trial;
      EXPECT_NEAR(dot(t2, t1, c2) / (len * b.r), 0, 1e-9) << trial;
      // Outer tangents leave both centres on one side, inner ones between them.
      const bool sameSide = cross(t1, t2, c1) * cross(t1, t2, c2) > 0;
      EXPECT_EQ(sameSide, i < 2) << trial;
    }
  }
  EXPECT_GT(counts[0] * counts[1] * counts[2], 0);
}

TEST_P(TangentLines, tangents_from_a_point_and_parallel_tangents_touch_the_circle) {
  Draw d(22, GetParam().x, GetParam().y);
  for (int trial = 0; trial < 1000; ++trial) {
    const Circ c = d.circle();
    const Pt p = d.point(), centre{c.x, c.y};
    const double gap = dist(p, centre);
    if (std::fabs(gap - c.r) < 1e-3)
      continue;
    double t[4] = {kSentinel, kSentinel, kSentinel, kSentinel};
    const int n = DLthrPtangC(kEps, c.x, c.y, c.r, p.x, p.y, &t[0], &t[1], &t[2], &t[3]);
    ASSERT_EQ(n, gap > c.r ? 2 : 0) << trial;
    if (n == 0) {
      EXPECT_EQ(t[0], kSentinel);
    }
    for (int i = 0; i < n; ++i) {
      const Pt q{t[2 * i], t[2 * i + 1]};
      EXPECT_NEAR(dist(q, centre), c.r, 1e-9 * 30) << trial;
      EXPECT_NEAR(dot(q, p, centre) / (dist(q, p) * c.r), 0, 1e-9) << trial;
      EXPECT_EQ(cross(p, centre, q) < 0, i == 0) << trial;  // the first right of P to C
    }
    // Parallel tangents: first points on the circle, on the line's left (A) and right (B).
    const Line l = d.line();
    double v[8];
    ASSERT_EQ(DLtangCparaL(kEps, c.x, c.y, c.r, l.x1, l.y1, l.x2, l.y2, &v[0], &v[1], &v[2], &v[3],
                           &v[4], &v[5], &v[6], &v[7]),
              2);
    for (int k = 0; k < 2; ++k) {
      const Pt first{v[4 * k], v[4 * k + 1]};
      EXPECT_NEAR(dist(first, centre), c.r, 1e-9 * 30) << trial;
      EXPECT_NEAR(v[4 * k + 2] - first.x, l.x2 - l.x1, 1e-9 * 30) << trial;
      EXPECT_NEAR(v[4 * k + 3] - first.y, l.y2 - l.y1, 1e-9 * 30) << trial;
      const Pt ahead{centre.x + l.x2 - l.x1, centre.y + l.y2 - l.y1};
      EXPECT_EQ(cross(centre, ahead, first) > 0, k == 0) << trial;
    }
  }
}

TEST_P(TangentLines, perpendicular_lines_start_on_the_line_and_end_on_circle_or_arc) {
  Draw d(23, GetParam().x, GetParam().y);
  for (int trial = 0; trial < 1000; ++trial) {
    const Circ c = d.circle();
    const Line l = d.line();
    const Pt centre{c.x, c.y}, dir{l.x2 - l.x1, l.y2 - l.y1};
    Points pts(4, {kSentinel, kSentinel});
    ASSERT_EQ(DLperLtangC(kEps, l.x1, l.y1, l.x2, l.y2, c.x, c.y, c.r, rows(pts)), 2);
    for (int i = 0; i < 2; ++i) {
      const Pt foot = at(pts, 2 * i), touch = at(pts, 2 * i + 1);
      EXPECT_NEAR(lineDistance(foot, l), 0, 1e-9 * 30) << trial;
      EXPECT_NEAR(dist(touch, centre), c.r, 1e-9 * 30) << trial;
      // The foot-to-touch line is perpendicular to the given line; it touches at the radius
      // along the line's direction, ahead first, then behind.
      const double len = std::hypot(dir.x, dir.y);
      EXPECT_NEAR(dot({0, 0}, dir, {touch.x - foot.x, touch.y - foot.y}) / len, 0, 1e-9 * 30)
          << trial;
      EXPECT_NEAR(dot(centre, touch, {centre.x + dir.x, centre.y + dir.y}) / len,
                  (i == 0 ? 1 : -1) * c.r, 1e-9 * 30)
          << trial;
    }
    // Perpendicular through the centre of an arc: ends on the arc.
    const double sa = d.uniform(0, kTwoPi), ea = sa + d.uniform(0.5, 5);
    Points arc(3, {kSentinel, kSentinel});
    const int n = DLperLperArc(kEps, l.x1, l.y1, l.x2, l.y2, c.x, c.y, c.r, sa, ea, rows(arc));
    for (int i = 1; i <= n; ++i) {
      const Pt q = at(arc, i);
      EXPECT_NEAR(dist(q, centre), c.r, 1e-9 * 30) << trial;
      EXPECT_EQ(ValidAngle(1e-9, sa, ea, std::atan2(q.y - c.y, q.x - c.x)), 1) << trial;
      EXPECT_NEAR(cross(at(arc, 0), q, centre) / c.r, 0, 1e-9 * 30) << trial;
    }
    if (n > 0) {
      EXPECT_NEAR(lineDistance(at(arc, 0), l), 0, 1e-9 * 30) << trial;
    }
  }
}

TEST_P(TangentLines, hostile_numbers_give_zero_or_finite_points) {
  Draw d(24, GetParam().x, GetParam().y);
  HostileNumbers hostile(25);
  const auto pick = [&](double valid) { return d.uniform(0, 1) < 0.3 ? hostile() : valid; };
  for (int trial = 0; trial < 2000; ++trial) {
    double a[10];
    const Circ c = d.circle();
    const Line l = d.line();
    const double valid[10] = {l.x1, l.y1, l.x2, l.y2, c.x, c.y, c.r, 1.0, 4.0, c.x + 3};
    for (int i = 0; i < 10; ++i)
      a[i] = pick(valid[i]);
    Points pts(8, {kSentinel, kSentinel});
    int count = -1;
    const auto finiteUpTo = [&](int k) {
      for (int i = 0; i < k; ++i)
        if (!std::isfinite(pts[i][0]) || !std::isfinite(pts[i][1]))
          return false;
      return true;
    };
    int n = DTangLof2Cir(kEps, a[0], a[1], a[6], a[4], a[5], a[2], rows(pts), &count);
    ASSERT_EQ(count, 2 * n);
    ASSERT_TRUE(finiteUpTo(count) && (count == 8 || pts[count][0] == kSentinel)) << trial;
    n = DLperLtangC(kEps, a[0], a[1], a[2], a[3], a[4], a[5], a[6], rows(pts));
    ASSERT_TRUE(finiteUpTo(n == 2 ? 4 : n)) << trial;
    n = DLperLperArc(kEps, a[0], a[1], a[2], a[3], a[4], a[5], a[6], a[7], a[8], rows(pts));
    ASSERT_TRUE(finiteUpTo(n == 0 ? 0 : n + 1)) << trial;
    double t[4] = {kSentinel, kSentinel, kSentinel, kSentinel};
    n = DLthrPtangArc(kEps, a[4], a[5], a[6], a[7], a[8], a[9], a[1], &t[0], &t[1], &t[2], &t[3]);
    for (int i = 0; i < 2 * n; ++i)
      ASSERT_TRUE(std::isfinite(t[i])) << trial;
    double v[8] = {kSentinel};
    n = DLtangCparaL(kEps, a[4], a[5], a[6], a[0], a[1], a[2], a[3], &v[0], &v[1], &v[2], &v[3],
                     &v[4], &v[5], &v[6], &v[7]);
    if (n == 0) {
      ASSERT_EQ(v[0], kSentinel) << trial;
    } else if (a[2] != a[0]) {  // a vertical line's non-finite x is the stated formula's
      ASSERT_TRUE(std::isfinite(v[1]) && std::isfinite(v[5])) << trial;
    }
  }
}

INSTANTIATE_TEST_SUITE_P(Placement, TangentLines, testing::Values(Pt{0, 0}, Pt{1e6, -1e6}),
                         [](const testing::TestParamInfo<Pt>& info) {
                           return info.param.x == 0 ? std::string("at_origin")
                                                    : std::string("shifted_far");
                         });

TEST(TangentLines, stated_counts_orders_and_failures) {
  Points pts(8, {kSentinel, kSentinel});
  int count = -1;
  // Nested: nothing, count 0. Touching from outside: the two outer tangents only.
  EXPECT_EQ(DTangLof2Cir(kEps, 0, 0, 5, 1, 0, 1, rows(pts), &count), 0);
  EXPECT_EQ(count, 0);
  EXPECT_EQ(pts[0][0], kSentinel);
  EXPECT_EQ(DTangLof2Cir(kEps, 0, 0, 1, 2, 0, 1, rows(pts), &count), 2);
  EXPECT_EQ(count, 4);
  // Parallel tangents: a short line fails untouched, a vertical one gives non-finite x.
  double v[8] = {kSentinel, kSentinel};
  EXPECT_EQ(DLtangCparaL(kEps, 0, 0, 1, 3, 3, 3, 3, &v[0], &v[1], &v[2], &v[3], &v[4], &v[5], &v[6],
                         &v[7]),
            0);
  EXPECT_EQ(v[0], kSentinel);
  EXPECT_EQ(DLtangCparaL(kEps, 0, 0, 1, 3, 0, 3, 1, &v[0], &v[1], &v[2], &v[3], &v[4], &v[5], &v[6],
                         &v[7]),
            2);
  EXPECT_FALSE(std::isfinite(v[0]));
  // Unit circle, point (2, 0): touching at 60 and 300 degrees, the first right of P to C.
  const double h = std::sqrt(3.0) / 2;
  struct ArcCase {
    double px, sa, ea;
    int n;
    double x1, y1;
  };
  const ArcCase arcCases[] = {
      {2, 0, kPi, 1, 0.5, h},            // only the first on the arc
      {2, kPi, kTwoPi, 1, 0.5, -h},      // only the second: moved into the first slot
      {2, 0, kTwoPi, 2, 0.5, h},         //
      {2, 2, 4, 0, kSentinel, 0},        // neither
      {1, 0, kHalfPi, 1, 1, 1},          // on the circle: P + w at 45 degrees is tested...
      {1, kPi, kTwoPi, 0, kSentinel, 0}  // ...not P itself at 0
  };
  for (const ArcCase& c : arcCases) {
    double t[4] = {kSentinel, kSentinel, kSentinel, kSentinel};
    ASSERT_EQ(DLthrPtangArc(kEps, 0, 0, 1, c.sa, c.ea, c.px, 0, &t[0], &t[1], &t[2], &t[3]), c.n)
        << c.sa;
    if (c.n > 0) {
      EXPECT_NEAR(t[0], c.x1, 1e-12) << c.sa;
      EXPECT_NEAR(t[1], c.y1, 1e-12) << c.sa;
    }
  }
  // The line's point at the arc's centre: the vertical, upper end first; a lone valid end,
  // upper or lower, goes to slot 1.
  const double centreCases[][5] = {
      {0, kPi, 1, 3, 5}, {kPi, kTwoPi, 1, 3, 3}, {0, kTwoPi, 2, 3, 5}, {0.1, 1, 0, 0, 0}};
  for (const auto& c : centreCases) {
    Points arc(3, {kSentinel, kSentinel});
    ASSERT_EQ(DLperLperArc(kEps, 3, 4, 3, 4, 3, 4, 1, c[0], c[1], rows(arc)), int(c[2])) << c[0];
    if (c[2] > 0) {
      EXPECT_EQ(arc[0][0], 3);
      EXPECT_EQ(arc[1][0], c[3]);
      EXPECT_EQ(arc[1][1], c[4]);
    }
  }
  // A point circle: one line from the foot to the centre.
  Points two(2, {kSentinel, kSentinel});
  EXPECT_EQ(DLperLtangC(kEps, 0, 0, 4, 0, 1, 3, 0, rows(two)), 1);
  EXPECT_EQ(two[0][0], 1);
  EXPECT_EQ(two[0][1], 0);
  EXPECT_EQ(two[1][1], 3);
}

}  // namespace
