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

bool same(const Out& o, double x, double y, double r, double tol) {
  return std::fabs(o.x - x) <= tol && std::fabs(o.y - y) <= tol && std::fabs(o.r - r) <= tol;
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

TEST(DGetNPCircle, exact_points_come_back_and_three_give_the_circle_through_them) {
  Draw d(31, 0, 0);
  for (int trial = 0; trial < 200; ++trial) {
    const Circ c{d.uniform(0.1, 1000), d.uniform(-1e6, 1e6), d.uniform(-1e6, 1e6)};
    const double sweep = trial % 2 ? kTwoPi * 11 / 12 : kPi / 6;  // full circle or 30 degrees
    const Fit f = fit(arcPoints(d, c, d.uniform(0, kTwoPi), sweep, 12, 0));
    EXPECT_TRUE(f.n == 1 && same(f.o, c.x, c.y, c.r, 1e-9 * c.r) && f.rms < 1e-9 * c.r) << trial;
    const Pt p[3] = {d.point(), d.point(), d.point()};
    Out o;
    if (DGetPPPCircle(kEps, p[0].x, p[0].y, p[1].x, p[1].y, p[2].x, p[2].y, &o.x, &o.y, &o.r) &&
        o.r < 1e3) {
      const Fit g = fit({{p[0].x, p[0].y}, {p[1].x, p[1].y}, {p[2].x, p[2].y}});
      EXPECT_TRUE(g.n == 1 && same(g.o, o.x, o.y, o.r, 1e-9 * o.r)) << trial;
    }
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
    // Moved by (1e3, -2e3) and reversed: the same circle, moved (to the rounding floor of a
    // flat minimum).
    std::reverse(pts.begin(), pts.end());
    for (auto& p : pts)
      p = {p[0] + 1e3, p[1] - 2e3};
    const Fit g = fit(pts);
    EXPECT_TRUE(same(g.o, f.o.x + 1e3, f.o.y - 2e3, f.o.r, 1e-8 * c.r)) << trial;
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
  const auto failsUntouched = [](const Fit& f) {
    return f.n == 0 && f.o.untouched() && f.rms == kSentinel;
  };
  for (const auto& pts : sets)
    EXPECT_TRUE(failsUntouched(fit(pts))) << pts[2][0];
  for (const int n : {2, 0, -5})
    EXPECT_TRUE(failsUntouched(fit(circle, n))) << n;
  Out o;
  EXPECT_EQ(DGetNPCircle(kEps, 4, nullptr, &o.x, &o.y, &o.r, &o.r), 0);
}

TEST(DGetEllipseCircle, four_arcs_through_the_axis_ends_meet_smoothly_near_the_ellipse) {
  const double shapes[][3] = {{10, 2.2, 0.3}, {2.2, 10, -2}, {5, 4, 7}, {3, 3, 1}, {1, 0.05, 0}};
  for (const auto& s : shapes) {
    const double a = s[0], b = s[1], rot = s[2], M = std::max(a, b);
    double arcs[4][5];
    ASSERT_EQ(DGetEllipseCircle(kEps, -4, 9, a, b, rot, arcs), 4) << a;
    // The point of arc row k at angle t, and the ellipse's point at parameter t.
    const auto onArc = [&](int k, double t) -> Pt {
      return {arcs[k][0] + arcs[k][2] * std::cos(t), arcs[k][1] + arcs[k][2] * std::sin(t)};
    };
    const auto onEllipse = [&](double t) -> Pt {
      const double u = a * std::cos(t), v = b * std::sin(t);
      return {-4 + u * std::cos(rot) - v * std::sin(rot),
              9 + u * std::sin(rot) + v * std::cos(rot)};
    };
    double worst = 0;
    for (int k = 0; k < 4; ++k) {
      const double *row = arcs[k], *next = arcs[(k + 1) % 4];
      // Axis end k (first axis, second, then their opposites) in the middle of arc k; each arc
      // ends where the next starts, in the same direction.
      EXPECT_LT(dist(onArc(k, (row[3] + row[4]) / 2), onEllipse(kHalfPi * k)), 1e-12 * M) << a;
      EXPECT_LT(dist(onArc(k, row[4]), onArc((k + 1) % 4, next[3])), 1e-12 * M) << a;
      EXPECT_NEAR(std::remainder(row[4] - next[3], kTwoPi), 0, 1e-12) << a << " row " << k;
      EXPECT_GT(row[4], row[3]);
      // A circle: four quarters about its centre.
      EXPECT_TRUE(a != b || (row[0] == -4 && row[2] == a && row[4] - row[3] == kHalfPi)) << k;
      // Distance to the ellipse by dense sampling (its error is far below the bound).
      for (int i = 0; i <= 20; ++i) {
        double near = 1e300;
        for (int j = 0; j < 20000; ++j)
          near = std::fmin(near, dist(onArc(k, row[3] + (row[4] - row[3]) * i / 20),
                                      onEllipse(kTwoPi * j / 20000)));
        worst = std::fmax(worst, near);
      }
    }
    EXPECT_LT(worst, 0.028 * M) << a;
  }
  double arcs[4][5] = {{kSentinel}};
  for (const double b : {0.0, -1.0, 0.5e-9, kNaN, kInf})
    EXPECT_EQ(DGetEllipseCircle(kEps, 0, 0, 1, b, 0, arcs), 0) << b;
  EXPECT_EQ(DGetEllipseCircle(kEps, 0, 0, 1, 1, kNaN, arcs) + arcs[0][0], kSentinel);
}

}  // namespace
