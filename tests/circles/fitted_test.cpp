// Tarnsysm: planar computational geometry for 2D drafting.
// Tests of the fitted circles: least-squares circles of exact and noisy points, and the
// four-centre arcs of an ellipse.

#include "circle_checks.h"

namespace {

using namespace circles_test;

using Points = std::vector<std::array<double, 2>>;

// The fit of the points (n of them unless told), its RMS in w.
int fit(const Points& pts, Out& o, int n = -2) {
  return DGetNPCircle(kEps, n == -2 ? int(pts.size()) : n,
                      reinterpret_cast<const double(*)[2]>(pts.data()), &o.x, &o.y, &o.r, &o.w);
}

// n points on the circle c from angle a0 over the sweep, with radial noise of up to `noise`.
Points arcPoints(Draw& d, const Circ& c, double a0, double sweep, int n, double noise) {
  Points pts(n);
  for (int i = 0; i < n; ++i) {
    const double a = a0 + sweep * i / (n - 1), r = c.r + d.uniform(-noise, noise);
    pts[i] = {c.x + r * std::cos(a), c.y + r * std::sin(a)};
  }
  return pts;
}

TEST(DGetNPCircle, exact_noisy_and_three_point_sets_give_their_circles) {
  Draw d{std::mt19937_64(31), {0, 0}}, dn{std::mt19937_64(33), {0, 0}};
  for (int trial = 0; trial < 200; ++trial) {
    // Exact points on a full circle or a 30-degree arc come back, with RMS 0.
    const Circ c{d.uniform(0.1, 1000), d.uniform(-1e6, 1e6), d.uniform(-1e6, 1e6)};
    const double sweep = trial % 2 ? kTwoPi * 11 / 12 : kPi / 6;
    Out o, f, g, ppp, three;
    ASSERT_TRUE(fit(arcPoints(d, c, d.uniform(0, kTwoPi), sweep, 12, 0), o) == 1 &&
                o.near({c.x, c.y, c.r, 0}, 1e-9 * c.r))
        << trial;
    // Three points: the circle through them (up to a radius of 1e3).
    const Pt p[3] = {d.point(), d.point(), d.point()};
    const bool through = DGetPPPCircle(kEps, p[0].x, p[0].y, p[1].x, p[1].y, p[2].x, p[2].y, &ppp.x,
                                       &ppp.y, &ppp.r) &&
                         ppp.r < 1e3;
    EXPECT_TRUE(!through ||
                (fit({{p[0].x, p[0].y}, {p[1].x, p[1].y}, {p[2].x, p[2].y}}, three) == 1 &&
                 three.near({ppp.x, ppp.y, ppp.r, three.w}, 1e-9 * ppp.r)))
        << trial;
    // Noisy arcs: at the least-squares minimum the gradient of sum (|p - c| - r)^2 vanishes in
    // r and in the centre, and the RMS is the residuals'.
    const Circ n{dn.uniform(1, 100), dn.uniform(-100, 100), dn.uniform(-100, 100)};
    Points pts = arcPoints(dn, n, dn.uniform(0, kTwoPi), dn.uniform(1.5, kTwoPi), 40, 0.01 * n.r);
    ASSERT_EQ(fit(pts, f), 1);
    double gr = 0, gx = 0, gy = 0, sum = 0;
    for (const auto& q : pts) {
      const double dist = std::hypot(q[0] - f.x, q[1] - f.y), e = dist - f.r;
      gr += e;
      gx += e * (q[0] - f.x) / dist;
      gy += e * (q[1] - f.y) / dist;
      sum += e * e;
    }
    EXPECT_LT(std::fabs(gr) + std::fabs(gx) + std::fabs(gy), 1e-7 * n.r) << trial;
    EXPECT_NEAR(f.w, std::sqrt(sum / pts.size()), 1e-9 * n.r) << trial;
    // Moved by (1e3, -2e3) and reversed: the same circle, moved (to the rounding floor of a
    // flat minimum).
    std::reverse(pts.begin(), pts.end());
    for (auto& q : pts)
      q = {q[0] + 1e3, q[1] - 2e3};
    EXPECT_TRUE(fit(pts, g) == 1 && g.near({f.x + 1e3, f.y - 2e3, f.r, f.w}, 1e-8 * n.r)) << trial;
  }
}

TEST(DGetNPCircle, degenerate_sets_return_zero_untouched) {
  // n, then up to four points: collinear, coincident, within eps of a line, not a number,
  // infinite, overflowing differences; a circle's points but too few of them.
  const double sets[][9] = {{4, 0, 0, 1, 1, 2, 2, 5, 5},   {3, 3, 3, 3, 3, 3, 3},
                            {3, 0, 0, 1, 0, 2, 0.5e-9},    {3, 0, 0, 1, 0, kNaN, 1},
                            {3, 0, 0, kInf, 0, 0, 1},      {3, 1.7e308, 0, -1.7e308, 0, 0, 1},
                            {2, 1, 0, 0, 1, -1, 0, 0, -1}, {0, 1, 0, 0, 1, -1, 0, 0, -1},
                            {-5, 1, 0, 0, 1, -1, 0, 0, -1}};
  for (const auto& c : sets) {
    Out o;
    EXPECT_TRUE(DGetNPCircle(kEps, int(c[0]), reinterpret_cast<const double(*)[2]>(c + 1), &o.x,
                             &o.y, &o.r, &o.w) == 0 &&
                o.untouched())
        << c[0] << " " << c[5];
  }
  Out o;
  EXPECT_EQ(DGetNPCircle(kEps, 4, nullptr, &o.x, &o.y, &o.r, &o.w), 0);
}

TEST(DGetEllipseCircle, four_arcs_through_the_axis_ends_meet_smoothly_near_the_ellipse) {
  const double shapes[][3] = {{10, 2.2, 0.3}, {2.2, 10, -2}, {5, 4, 7}, {3, 3, 1}, {1, 0.05, 0}};
  for (const auto& shape : shapes) {
    const double a = shape[0], b = shape[1], rot = shape[2], M = std::max(a, b);
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
      // ends where the next starts, in the same direction. A circle: four quarters about its
      // centre.
      EXPECT_LT(dist(onArc(k, (row[3] + row[4]) / 2), onEllipse(kHalfPi * k)), 1e-12 * M) << a;
      EXPECT_LT(dist(onArc(k, row[4]), onArc((k + 1) % 4, next[3])), 1e-12 * M) << a;
      EXPECT_NEAR(std::remainder(row[4] - next[3], kTwoPi), 0, 1e-12) << a << " row " << k;
      EXPECT_TRUE(row[4] > row[3] &&
                  (a != b || (row[0] == -4 && row[2] == a && row[4] - row[3] == kHalfPi)))
          << a << " row " << k;
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
