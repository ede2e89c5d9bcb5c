// Tarnsysm: planar computational geometry for 2D drafting.
// Tests of the fitted circles: least-squares circles of exact and noisy points, and the
// four-centre arcs of an ellipse.
#include <Tarnsysm.h>

#include "circle_checks.h"

#include <algorithm>
#include <vector>

namespace {

using namespace circles_test;

struct Fit {
  int n = 0;
  Out o;
  double rms = kSentinel;
};

Fit fit(const std::vector<std::array<double, 2>>& pts, int n = -2) {
  Fit f;
  f.n = DGetNPCircle(kEps, n == -2 ? int(pts.size()) : n,
                     reinterpret_cast<const double(*)[2]>(pts.data()), &f.o.x, &f.o.y, &f.o.r,
                     &f.rms);
  return f;
}

// n points on the circle c from angle a0 over the sweep, with radial noise of up to `noise`.
std::vector<std::array<double, 2>> arcPoints(Draw& d, const Circ& c, double a0, double sweep, int n,
                                             double noise) {
  std::vector<std::array<double, 2>> pts(n);
  for (int i = 0; i < n; ++i) {
    const double a = a0 + sweep * i / (n - 1);
    const double r = c.r + d.uniform(-noise, noise);
    pts[i] = {c.x + r * std::cos(a), c.y + r * std::sin(a)};
  }
  return pts;
}

TEST(DGetNPCircle, exact_points_on_circles_and_short_arcs_come_back) {
  Draw d(31, 0, 0);
  for (int trial = 0; trial < 200; ++trial) {
    const Circ c{d.uniform(0.1, 1000), d.uniform(-1e6, 1e6), d.uniform(-1e6, 1e6)};
    const double sweep = trial % 2 ? kTwoPi * 11 / 12 : kPi / 6;  // full circle or 30 degrees
    const Fit f = fit(arcPoints(d, c, d.uniform(0, kTwoPi), sweep, 12, 0));
    ASSERT_EQ(f.n, 1);
    EXPECT_NEAR(f.o.x, c.x, 1e-9 * c.r) << trial;
    EXPECT_NEAR(f.o.y, c.y, 1e-9 * c.r) << trial;
    EXPECT_NEAR(f.o.r, c.r, 1e-9 * c.r) << trial;
    EXPECT_LT(f.rms, 1e-9 * c.r) << trial;
  }
}

TEST(DGetNPCircle, three_points_give_the_circle_through_them) {
  Draw d(32, 0, 0);
  for (int trial = 0; trial < 200; ++trial) {
    const Pt p[3] = {d.point(), d.point(), d.point()};
    Out o;
    if (!DGetPPPCircle(kEps, p[0].x, p[0].y, p[1].x, p[1].y, p[2].x, p[2].y, &o.x, &o.y, &o.r) ||
        o.r > 1e3)
      continue;
    const Fit f = fit({{p[0].x, p[0].y}, {p[1].x, p[1].y}, {p[2].x, p[2].y}});
    ASSERT_EQ(f.n, 1);
    EXPECT_NEAR(f.o.x, o.x, 1e-9 * o.r) << trial;
    EXPECT_NEAR(f.o.y, o.y, 1e-9 * o.r) << trial;
    EXPECT_NEAR(f.o.r, o.r, 1e-9 * o.r) << trial;
  }
}

TEST(DGetNPCircle, noisy_arcs_reach_the_least_squares_minimum_wherever_they_lie) {
  Draw d(33, 0, 0);
  for (int trial = 0; trial < 100; ++trial) {
    const Circ c{d.uniform(1, 100), d.uniform(-100, 100), d.uniform(-100, 100)};
    auto pts = arcPoints(d, c, d.uniform(0, kTwoPi), d.uniform(1.5, kTwoPi), 40, 0.01 * c.r);
    const Fit f = fit(pts);
    ASSERT_EQ(f.n, 1);
    // At a minimum the gradient of sum (|p - c| - r)^2 vanishes in r and in the centre.
    double gr = 0, gx = 0, gy = 0, sum = 0;
    for (const auto& p : pts) {
      const double dist = std::hypot(p[0] - f.o.x, p[1] - f.o.y);
      const double e = dist - f.o.r;
      gr += e;
      gx += e * (p[0] - f.o.x) / dist;
      gy += e * (p[1] - f.o.y) / dist;
      sum += e * e;
    }
    EXPECT_LT(std::fabs(gr) + std::fabs(gx) + std::fabs(gy), 1e-7 * c.r) << trial;
    EXPECT_NEAR(f.rms, std::sqrt(sum / pts.size()), 1e-9 * c.r) << trial;
    // Moved by (1e3, -2e3) and reversed: the same circle, moved.
    std::reverse(pts.begin(), pts.end());
    for (auto& p : pts)
      p = {p[0] + 1e3, p[1] - 2e3};
    const Fit g = fit(pts);
    EXPECT_NEAR(g.o.x, f.o.x + 1e3, 1e-9 * c.r) << trial;
    EXPECT_NEAR(g.o.y, f.o.y - 2e3, 1e-9 * c.r) << trial;
    EXPECT_NEAR(g.o.r, f.o.r, 1e-9 * c.r) << trial;
  }
}

TEST(DGetNPCircle, degenerate_sets_return_zero_untouched) {
  const std::vector<std::array<double, 2>> circle = {{1, 0}, {0, 1}, {-1, 0}, {0, -1}};
  const std::vector<std::vector<std::array<double, 2>>> sets = {
      {{0, 0}, {1, 1}, {2, 2}, {5, 5}},        // collinear
      {{3, 3}, {3, 3}, {3, 3}},                // coincident
      {{0, 0}, {1, 0}, {2, 0.5e-9}},           // within eps of a line
      {{0, 0}, {1, 0}, {kNaN, 1}},             // not a number
      {{0, 0}, {kInf, 0}, {0, 1}},             //
      {{1.7e308, 0}, {-1.7e308, 0}, {0, 1}}};  // overflowing differences
  for (const auto& pts : sets) {
    const Fit f = fit(pts);
    EXPECT_EQ(f.n, 0) << pts[2][0];
    EXPECT_TRUE(f.o.untouched() && f.rms == kSentinel) << pts[2][0];
  }
  for (const int n : {2, 0, -5})
    EXPECT_EQ(fit(circle, n).n, 0) << n;
  Out o;
  double rms = kSentinel;
  EXPECT_EQ(DGetNPCircle(kEps, 4, nullptr, &o.x, &o.y, &o.r, &rms), 0);
}

// Distance from q to the ellipse about c, semi-axes a along `rot` and b across, by dense
// sampling (the sampling error is far below the bounds checked).
double ellipseDistance(Pt q, Pt c, double a, double b, double rot) {
  double best = 1e300;
  for (int i = 0; i < 20000; ++i) {
    const double t = kTwoPi * i / 20000;
    const double u = a * std::cos(t), v = b * std::sin(t);
    best = std::fmin(best, dist(q, {c.x + u * std::cos(rot) - v * std::sin(rot),
                                    c.y + u * std::sin(rot) + v * std::cos(rot)}));
  }
  return best;
}

TEST(DGetEllipseCircle, four_arcs_through_the_axis_ends_meet_smoothly_near_the_ellipse) {
  struct Shape {
    double a, b, rot;
  };
  const Shape shapes[] = {{10, 2.2, 0.3}, {2.2, 10, -2}, {5, 4, 7}, {3, 3, 1}, {1, 0.05, 0}};
  for (const Shape& s : shapes) {
    const Pt c{-4, 9};
    double arcs[4][5];
    ASSERT_EQ(DGetEllipseCircle(kEps, c.x, c.y, s.a, s.b, s.rot, arcs), 4) << s.a;
    const double M = std::max(s.a, s.b);
    double worst = 0;
    for (int k = 0; k < 4; ++k) {
      const double* row = arcs[k];
      const double* next = arcs[(k + 1) % 4];
      // The axis end k (first axis, second, then their opposites) in the middle of arc k.
      const double axis = s.rot + kHalfPi * k, half = (k % 2 ? s.b : s.a);
      const Pt end{c.x + half * std::cos(axis), c.y + half * std::sin(axis)};
      const double mid = (row[3] + row[4]) / 2;
      EXPECT_NEAR(end.x, row[0] + row[2] * std::cos(mid), 1e-12 * M) << s.a << " row " << k;
      EXPECT_NEAR(end.y, row[1] + row[2] * std::sin(mid), 1e-12 * M) << s.a << " row " << k;
      EXPECT_GT(row[4], row[3]);
      // Each arc ends where the next starts, in the same direction.
      EXPECT_NEAR(row[0] + row[2] * std::cos(row[4]), next[0] + next[2] * std::cos(next[3]),
                  1e-12 * M);
      EXPECT_NEAR(row[1] + row[2] * std::sin(row[4]), next[1] + next[2] * std::sin(next[3]),
                  1e-12 * M);
      EXPECT_NEAR(std::remainder(row[4] - next[3], kTwoPi), 0, 1e-12) << s.a << " row " << k;
      for (int i = 0; i <= 20; ++i) {
        const double t = row[3] + (row[4] - row[3]) * i / 20;
        worst = std::fmax(
            worst, ellipseDistance({row[0] + row[2] * std::cos(t), row[1] + row[2] * std::sin(t)},
                                   c, s.a, s.b, s.rot));
      }
      if (s.a == s.b) {  // a circle: four quarters about its centre
        EXPECT_EQ(row[0], c.x);
        EXPECT_EQ(row[2], s.a);
        EXPECT_NEAR(row[4] - row[3], kHalfPi, 1e-15);
      }
    }
    EXPECT_LT(worst, 0.028 * M) << s.a;
  }
  double arcs[4][5] = {{kSentinel}};
  for (const double b : {0.0, -1.0, 0.5e-9, kNaN, kInf})
    EXPECT_EQ(DGetEllipseCircle(kEps, 0, 0, 1, b, 0, arcs), 0) << b;
  EXPECT_EQ(DGetEllipseCircle(kEps, 0, 0, 1, 1, kNaN, arcs), 0);
  EXPECT_EQ(arcs[0][0], kSentinel);
}

}  // namespace
