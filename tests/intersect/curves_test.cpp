// Tarnsysm: planar computational geometry for 2D drafting.
// Line, circle and arc intersections: counts, the order of the points, the segment flags and the
// tolerance edges, plus random draws whose points must lie on both curves.

#include "test_support.h"

namespace {

using namespace tarnsysm::test;

const double kHalfRoot3 = std::sqrt(3.0) / 2;

TEST(D2LInts, table) {
  // clang-format off
  const struct { const char* name; double l[8]; int result; double x, y; int flag; } rows[] = {
      // clang-format off
      {"vertical_meets_horizontal", {0, 0, 1, 0, 2, -1, 2, 1}, 1, 2, 0, 2},
      {"horizontal_meets_vertical", {2, -1, 2, 1, 0, 0, 1, 0}, 1, 2, 0, 1},
      {"diagonals", {0, 0, 2, 2, 0, 2, 2, 0}, 1, 1, 1, 3},
      {"oblique_outside_both", {1, 1, 2, 3, 5, 0, 7, 1}, 1, -1, -3, 0},
      {"first_parameter_one_and_eps", {0, 0, 1, 0, 1 + kE, -1, 1 + kE, 1}, 1, 1 + kE, 0, 3},
      {"first_parameter_one_and_two_eps", {0, 0, 1, 0, 1 + 2 * kE, -1, 1 + 2 * kE, 1}, 1, 1 + 2 * kE, 0, 2},
      {"second_parameter_minus_eps", {-2, 0, 2, 0, 0, kE, 0, 1 + kE}, 1, 0, 0, 3},
      {"second_parameter_minus_two_eps", {-2, 0, 2, 0, 0, 2 * kE, 0, 1 + 2 * kE}, 1, 0, 0, 1},
      {"both_vertical", {0, 0, kE, 1, 3, 0, 3, 1}, 0, kUnwritten, kUnwritten, 0},
      {"slopes_within_eps", {0, 0, 1, 1, 0, 1, 1, 2 + kE / 2}, 0, kUnwritten, kUnwritten, 0},
      {"small_determinant", {0, 0, 1, 0, 0, 1, 2 * kE, 1 + kE / 2}, 0, kUnwritten, kUnwritten, 0},
      // clang-format on
  };
  // clang-format on
  for (const auto& r : rows) {
    double x = kUnwritten, y = kUnwritten;
    int flag = 99;
    const double* l = r.l;
    const int got = D2LInts(kE, l[0], l[1], l[2], l[3], l[4], l[5], l[6], l[7], &x, &y, &flag);
    EXPECT_TRUE(gives(got, r.result, {x, y, 1.0 * flag}, {r.x, r.y, 1.0 * r.flag}, 1e-12))
        << r.name;
  }
}

TEST(DCirLInts_DArcLInts, table) {
  // sa > ea marks a full circle (DCirLInts)
  // clang-format off
  const struct { const char* name; double l[4], c[3], sa, ea; int result; double xa, ya, xb, yb; int flag; } rows[] = {
      // clang-format off
      {"secant_through_the_centre", {-2, 0, 2, 0}, {0, 0, 1}, 1, 0, 2, -1, 0, 1, 0, 3},
      {"oblique_secant", {-3, -4, 7, 6}, {2, 1, std::sqrt(2.0)}, 1, 0, 2, 1, 0, 3, 2, 3},
      {"secant_backwards", {2, 0, -2, 0}, {0, 0, 1}, 1, 0, 2, 1, 0, -1, 0, 3},
      {"tangent_gives_the_foot", {-2, 1, 2, 1}, {0, 0, 1}, 1, 0, 1, 0, 1, kUnwritten, kUnwritten, 1},
      {"oblique_tangent", {3, -1, -1, 3}, {0, 0, std::sqrt(2.0)}, 1, 0, 1, 1, 1, kUnwritten, kUnwritten, 1},
      {"tangent_foot_eps_before_the_start", {kE, 1, 2, 1}, {0, 0, 1}, 1, 0, 1, 0, 1, kUnwritten, kUnwritten, 0},
      {"secant_second_point_eps_before_start", {1 + kE, 0, 3, 0}, {0, 0, 1}, 1, 0, 2, -1, 0, 1, 0, 0},
      {"secant_first_point_eps_past_end", {-3, 0, -1 - kE, 0}, {0, 0, 1}, 1, 0, 2, -1, 0, 1, 0, 0},
      {"distance_exactly_r_less_eps_meets_nothing", {-2, 1 - kE, 2, 1 - kE}, {0, 0, 1}, 1, 0, 0, kUnwritten, kUnwritten, kUnwritten, kUnwritten, 0},
      {"line_not_longer_than_eps", {0, 0, kE, 0}, {0, 0, 1}, 1, 0, 0, kUnwritten, kUnwritten, kUnwritten, kUnwritten, 0},
      {"line_length_rounding_to_eps", {0, 0, kE, 0x1p-36}, {0, 0, 1}, 1, 0, 0, kUnwritten, kUnwritten, kUnwritten, kUnwritten, 0},
      {"arc_keeps_both", {-2, 0, 2, 0}, {0, 0, 1}, -1, 4, 2, -1, 0, 1, 0, 3},
      {"arc_keeps_the_first", {-3, 0, 0, 0}, {0, 0, 1}, kHalfPi, 3 * kHalfPi, 1, -1, 0, 1, 0, 1},
      {"arc_keeps_the_second_in_the_first_slot", {-3, 0, 2, 0}, {0, 0, 1}, -kHalfPi, kHalfPi, 1, 1, 0, 1, 0, 1},
      {"arc_keeps_the_second_off_the_segment", {-3, 0, 0, 0}, {0, 0, 1}, -kHalfPi, kHalfPi, 1, 1, 0, 1, 0, 0},
      {"arc_misses_both", {-2, 0, 2, 0}, {0, 0, 1}, 1, 2, 0, -1, 0, 1, 0, 0},
      {"arc_keeps_the_tangent_point", {-2, 1, 2, 1}, {0, 0, 1}, 0, kPi, 1, 0, 1, kUnwritten, kUnwritten, 1},
      {"arc_misses_the_tangent_point", {-2, 1, 2, 1}, {0, 0, 1}, kPi, 3 * kHalfPi, 0, 0, 1, kUnwritten, kUnwritten, 0},
      // clang-format on
  };
  // clang-format on
  for (const auto& r : rows) {
    double xa = kUnwritten, ya = kUnwritten, xb = kUnwritten, yb = kUnwritten;
    int flag = 99;
    const double *l = r.l, *c = r.c;
    const int n = r.sa > r.ea ? DCirLInts(kE, l[0], l[1], l[2], l[3], c[0], c[1], c[2], &xa, &ya,
                                          &xb, &yb, &flag)
                              : DArcLInts(kE, l[0], l[1], l[2], l[3], c[0], c[1], c[2], r.sa, r.ea,
                                          &xa, &ya, &xb, &yb, &flag);
    EXPECT_TRUE(gives(n, r.result, {xa, ya, xb, yb, 1.0 * flag},
                      {r.xa, r.ya, r.xb, r.yb, 1.0 * r.flag}, 1e-12))
        << r.name;
  }
}

TEST(D2CirInts_D2ArcInts, table) {
  // c1, c2: x, y, r, start, end; start > end marks full circles (D2CirInts)
  // clang-format off
  const struct { const char* name; double c1[5], c2[5]; int result; double xa, ya, xb, yb, tol; } rows[] = {
      // clang-format off
      {"touching_outside", {0, 0, 1, 1}, {2, 0, 1, 1}, 1, 1, 0, kUnwritten, kUnwritten, 1e-15},
      {"touching_inside", {0, 0, 2, 1}, {1, 0, 1, 1}, 1, 2, 0, kUnwritten, kUnwritten, 1e-15},
      {"nested_exactly_eps_inside_the_edge", {0, 0, 2, 1}, {1 - kE, 0, 1, 1}, 1, 2 + kE, 0, kUnwritten, kUnwritten, 1e-5},
      {"nested_by_two_eps", {0, 0, 2, 1}, {1 - 2 * kE, 0, 1, 1}, 0, kUnwritten, kUnwritten, kUnwritten, kUnwritten, 0},
      {"crossing_within_eps_of_touching_inside", {0, 0, 100, 1}, {1 - kE / 2, 0, 99, 1}, 1, 100, 0, kUnwritten, kUnwritten, 0.1},
      {"concentric_equal", {3, 4, 1, 1}, {3, 4, 1, 1}, 0, kUnwritten, kUnwritten, kUnwritten, kUnwritten, 0},
      {"nan_radius", {0, 0, 1, 1}, {1, 0, kNaN, 1}, 0, kUnwritten, kUnwritten, kUnwritten, kUnwritten, 0},
      {"nan_centre", {0, 0, 1, 1}, {kNaN, 0, 1, 1}, 0, kUnwritten, kUnwritten, kUnwritten, kUnwritten, 0},
      {"infinite_radius", {155, 4.25, kInf, 1}, {9.44, 4.25, 6.88, 1}, 0, kUnwritten, kUnwritten, kUnwritten, kUnwritten, 0},
      {"arcs_keep_both", {0, 0, 1, -2, 2}, {1, 0, 1, 1, 5}, 2, 0.5, -kHalfRoot3, 0.5, kHalfRoot3, 1e-15},
      {"arcs_keep_the_first", {0, 0, 1, -2, 0}, {1, 0, 1, 1, 5}, 1, 0.5, -kHalfRoot3, 0.5, kHalfRoot3, 1e-15},
      {"arcs_keep_the_second_in_the_first_slot", {0, 0, 1, 0, 2}, {1, 0, 1, 1, 5}, 1, 0.5, kHalfRoot3, 0.5, kHalfRoot3, 1e-15},
      {"second_arc_rejects_both", {0, 0, 1, -2, 2}, {1, 0, 1, 5, 1}, 0, 0.5, -kHalfRoot3, 0.5, kHalfRoot3, 1e-15},
      {"touching_point_off_an_arc", {0, 0, 1, 1, 2}, {2, 0, 1, 1, 5}, 0, 1, 0, kUnwritten, kUnwritten, 1e-15},
      // clang-format on
  };
  // clang-format on
  for (const auto& r : rows) {
    double xa = kUnwritten, ya = kUnwritten, xb = kUnwritten, yb = kUnwritten;
    const double *a = r.c1, *b = r.c2;
    const int n = a[3] > a[4]
                      ? D2CirInts(kE, a[0], a[1], a[2], b[0], b[1], b[2], &xa, &ya, &xb, &yb)
                      : D2ArcInts(kE, a[0], a[1], a[2], a[3], a[4], b[0], b[1], b[2], b[3], b[4],
                                  &xa, &ya, &xb, &yb);
    EXPECT_TRUE(gives(n, r.result, {xa, ya, xb, yb}, {r.xa, r.ya, r.xb, r.yb}, r.tol)) << r.name;
  }
}

// Random lines and circles: every point reported lies on both curves, two points of a line are
// in the line's order, two points of circles are right then left of the line of centres.
TEST(Intersections, random_points_lie_on_both_curves) {
  std::mt19937_64 rng(31);
  std::uniform_real_distribution<double> c(-10, 10), r(0.5, 8);
  const double eps = 1e-9, tol = 1e-8;
  for (int i = 0; i < 5000; ++i) {
    const double x1 = c(rng), y1 = c(rng), x2 = c(rng), y2 = c(rng);
    const double cx = c(rng), cy = c(rng), cr = r(rng), dx = c(rng), dy = c(rng), dr = r(rng);
    double xa, ya, xb, yb;
    int flag;
    SCOPED_TRACE(i);
    const int lc = DCirLInts(eps, x1, y1, x2, y2, cx, cy, cr, &xa, &ya, &xb, &yb, &flag);
    const auto offLine = [&](double x, double y) {
      return std::fabs((x2 - x1) * (y - y1) - (y2 - y1) * (x - x1)) / std::hypot(x2 - x1, y2 - y1);
    };
    EXPECT_TRUE(lc == 0 || (onCircle(xa, ya, cx, cy, cr, tol) && offLine(xa, ya) < tol));
    if (lc == 2) {
      EXPECT_TRUE(onCircle(xb, yb, cx, cy, cr, tol) && offLine(xb, yb) < tol);
      EXPECT_LT((xa - xb) * (x2 - x1) + (ya - yb) * (y2 - y1), 0.0);
    }
    const int cc = D2CirInts(eps, cx, cy, cr, dx, dy, dr, &xa, &ya, &xb, &yb);
    EXPECT_TRUE(cc == 0 ||
                (onCircle(xa, ya, cx, cy, cr, 1e-6) && onCircle(xa, ya, dx, dy, dr, 1e-6)));
    if (cc == 2) {
      EXPECT_TRUE(onCircle(xb, yb, cx, cy, cr, tol) && onCircle(xb, yb, dx, dy, dr, tol));
      EXPECT_LT((dx - cx) * (ya - cy) - (dy - cy) * (xa - cx), 0.0);  // A right of C1 -> C2
      EXPECT_GT((dx - cx) * (yb - cy) - (dy - cy) * (xb - cx), 0.0);
    }
    const double d = std::hypot(dx - cx, dy - cy);
    EXPECT_EQ(cc == 0, d > cr + dr + 1e-6 || d < std::fabs(cr - dr) - 1e-6 || d < 1e-6)
        << d << " " << cr << " " << dr;
  }
}

TEST(Hostile, intersections_keep_their_documented_results) {
  HostileNumbers h(5);
  for (int i = 0; i < 20000; ++i) {
    double x, y, xb, yb;
    int flag = 99;
    const double eps = std::fabs(h());
    ASSERT_TRUE(D2LInts(eps, h(), h(), h(), h(), h(), h(), h(), h(), &x, &y, &flag) <= 1);
    ASSERT_TRUE(flag >= 0 && flag <= 3);
    ASSERT_TRUE(DCirLInts(eps, h(), h(), h(), h(), h(), h(), h(), &x, &y, &xb, &yb, &flag) <= 2);
    ASSERT_TRUE(flag >= 0 && flag <= 3);
    const int arc =
        DArcLInts(eps, h(), h(), h(), h(), h(), h(), h(), h(), h(), &x, &y, &xb, &yb, &flag);
    ASSERT_TRUE(arc >= 0 && arc <= 2 && flag >= 0 && flag <= 3);
    const double r = h();
    const int circles = D2CirInts(eps, h(), h(), h(), h(), h(), r, &x, &y, &xb, &yb);
    ASSERT_TRUE(circles >= 0 && circles <= 2 && (std::isfinite(r) || circles == 0));
    const int arcs =
        D2ArcInts(eps, h(), h(), h(), h(), h(), h(), h(), h(), h(), h(), &x, &y, &xb, &yb);
    ASSERT_TRUE(arcs >= 0 && arcs <= 2);
  }
}

}  // namespace
