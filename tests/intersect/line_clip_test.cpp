// Tarnsysm: planar computational geometry for 2D drafting.
// Tests of the parametric line intersections: edge flags at the tolerance boundaries, the side
// bit against the way the curve leaves the line, and crossings that lie on both curves and are
// as many as the sign changes of the line's offset along the arc.
#include "ellipse/ellipse_checks.h"

namespace {

using namespace tarnsysm::test;

constexpr double kEps = 1.0 / 1024.0;  // a power of two: eps / 2 and 2 eps are exact

TEST(LineIntEdge, flags_and_parameters_along_the_x_axis) {
  // The line is y = 0 from the origin, direction (1, 0); "left" is y > 0.
  const struct {
    const char* name;
    double x1, y1, x2, y2, n, t1, t2, flag1, flag2;
  } rows[] = {
      {"first_end_on_edge_leaves_left", 2, 0, 2, 3, 1, 2, kNaN, 5, 0},
      {"second_end_on_edge_from_right", 2, -3, 2, 0, 1, 2, kNaN, 2, 0},
      {"second_end_on_edge_from_left", 2, 3, 2, 0, 1, 2, kNaN, 6, 0},
      {"edge_on_the_line", 1, 0, 3, 0, 2, 1, 3, 3, 3},
      {"parallel_edge_off_the_line", 0, 1, 3, 1, 0, kNaN, kNaN, 0, 0},
      {"crossing", 3, -1, 3, 1, 1, 3, kNaN, 0, 0},
      {"shallow_crossing", 0, -1, 4, 1, 1, 2, kNaN, 0, 0},
      {"end_at_half_eps_is_on", 2, kEps / 2, 2, 1 + kEps / 2, 1, 2, kNaN, 5, 0},
      {"end_at_eps_is_off_but_crossing", 2, kEps, 2, 1 + kEps, 1, 2, kNaN, 0, 0},
      {"end_at_two_eps_misses", 2, 2 * kEps, 2, 1 + 2 * kEps, 0, kNaN, kNaN, 0, 0},
  };
  for (const auto& r : rows) {
    double t[2] = {kNaN, kNaN};
    int f1 = -1, f2 = -1;
    ASSERT_EQ(LineIntEdge(kEps, 0, 0, 1, 0, r.x1, r.y1, r.x2, r.y2, &t[0], &t[1], &f1, &f2), r.n)
        << r.name;
    EXPECT_TRUE(f1 == r.flag1 && f2 == r.flag2 && (r.n < 1 || t[0] == r.t1) &&
                (r.n < 2 || t[1] == r.t2))
        << r.name;
  }
}

TEST(LineIntCircle, parameters_of_circles_arcs_and_ellipses) {
  const struct {
    const char* name;
    bool unit;  // LineIntCircle, else LineIntCircle1
    double x0, y0, dx, n, t1, t2;
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
  // An oblique line: the end on it sits at its projection, parameter 2, the edge going left.
  ASSERT_EQ(LineIntEdge(kEps, 0, 0, 1, 1, 2, 2, 2, 5, &t1, &t2, &f1, &f2), 1);
  EXPECT_TRUE(t1 == 2 && f1 == 5);
  // A line through the start of the arc of the 2 x 1 ellipse from pi / 3: the arc leaves along
  // (-sqrt 3, 1/2), right of the direction (1, -1) and left of (-1, 1).
  for (const double s : {1.0, -1.0}) {
    ASSERT_EQ(LineIntEarc(kEps, 1 - 3 * s, std::sqrt(0.75) + 3 * s, s, -s, 0, 0, 2, 1, 0, kPi / 3,
                          kPi, &t1, &t2, &f1, &f2),
              1)
        << s;
    EXPECT_TRUE(std::fabs(t1 - 3) < 1e-12 && ((f1 & 4) != 0) == (s < 0)) << s;
  }
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

// Random lines against random arcs (circles with a unit direction on even draws): the crossings
// lie on both curves and are as many as the sign changes of the arc's offset from the line, away
// from tangency and from the arc's ends. A line through a circular arc's end has bit 4 set when
// the arc leaves that end to the line's left.
TEST(LineIntEarc, crossings_lie_on_both_curves_and_match_sign_changes) {
  EllipseDraws draws(401, 0.5, 20, 10);
  int checked = 0;
  for (int i = 0; i < 4000; ++i) {
    const bool circle = i % 2 == 0, atStart = i % 4 == 0;
    TSellipse e = draws();
    e.b = circle ? e.a : e.b;
    e.rotation = circle ? 0 : e.rotation;
    e.end = e.start + 0.2 + 5.8 * draws.unit();
    const double ang = draws.turn(), len = circle ? 1.0 : std::exp(4 * draws.unit() - 2);
    const double dx = len * std::cos(ang), dy = len * std::sin(ang), size = std::max(e.a, e.b) + 15;
    double x0 = e.center[0] + e.a * (2.6 * draws.unit() - 1.3), p[3], q[3], g[2];
    double y0 = e.center[1] + e.b * (2.6 * draws.unit() - 1.3), t[2] = {kNaN, kNaN};
    int f1 = -1, f2 = -1;
    const auto offset = [&](double s) {
      return (pointAt(e, s, p), dx * (p[1] - y0) - dy * (p[0] - x0)) / len;
    };
    const int n = circle ? LineIntArc(1e-9, x0, y0, dx, dy, e.center[0], e.center[1], e.a, e.start,
                                      e.end, &t[0], &t[1], &f1, &f2)
                         : LineIntEarc(1e-9, x0, y0, dx, dy, e.center[0], e.center[1], e.a, e.b,
                                       e.rotation, e.start, e.end, &t[0], &t[1], &f1, &f2);
    bool clear = std::fabs(offset(e.start)) > 1e-3 * size && std::fabs(offset(e.end)) > 1e-3 * size;
    const auto changes = signChanges(offset, e.start, e.end, 4096, 1e-3 * size, &clear).size();
    checked += clear;
    ASSERT_TRUE(!clear || n == static_cast<int>(changes)) << "case " << i;
    for (int k = 0; k < n && clear; ++k) {
      const double c[3] = {x0 + t[k] * dx, y0 + t[k] * dy, 0};
      EXPECT_LT(std::fabs(implicit(e, c, g)), 2e-9 * size / std::min(e.a, e.b)) << i;
    }
    if (!circle)
      continue;
    pointAt(e, atStart ? e.start : e.end, q);  // the line now runs through that end
    x0 = q[0] - 3 * dx;
    y0 = q[1] - 3 * dy;
    const double side = offset(atStart ? e.start + 1e-4 : e.end - 1e-4);  // the arc just inside
    if (std::fabs(side) < 1e-6 * e.a)
      continue;  // leaves along the line
    const int m = LineIntArc(1e-9, x0, y0, dx, dy, e.center[0], e.center[1], e.a, e.start, e.end,
                             &t[0], &t[1], &f1, &f2);
    ASSERT_GE(m, 1) << i;
    EXPECT_EQ(((atStart || m == 1 ? f1 : f2) & 4) != 0, side > 0) << i;
  }
  EXPECT_GT(checked, 3600);
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
