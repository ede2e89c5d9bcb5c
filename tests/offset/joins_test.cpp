// Tarnsysm: planar computational geometry for 2D drafting.
// Corner joins of offset segments and moved points of a segment. Every row is also checked in
// mirror image (y negated, bulges and distance negated: the same join mirrored, the same
// parameters), and every line-arc join against the arc-line join of the reversed path.

#include "test_support.h"

namespace {

using namespace tarnsysm::test;

const double kQ = std::tan(kPi / 8);  // the bulge of a counter-clockwise quarter circle
const double kR2 = std::sqrt(2.0), kS = std::sqrt(35.5), kR40 = std::sqrt(40.0);
constexpr double S = kUnwritten;

enum Kind { LL, LA, AL, AA, Point };

struct JoinRow {
  const char* name;
  Kind kind;
  double eps, d, p[6], b1, b2;  // P1, P2, P3; the bulges in argument order (t for Point)
  int code;
  double x, y, t1, t2;
};

struct Out {
  int code;
  double x = S, y = S, t1 = S, t2 = S;
};

Out join(const JoinRow& r, double m) {  // m = -1 joins the mirror image
  Out o;
  const double* p = r.p;
  const double d = m * r.d, y1 = m * p[1], y2 = m * p[3], y3 = m * p[5];
  const double b1 = m * r.b1, b2 = r.kind == Point ? r.b2 : m * r.b2;
  switch (r.kind) {
    case LL:
      o.code = LLOffset(r.eps, d, p[0], y1, p[2], y2, p[4], y3, &o.x, &o.y, &o.t1, &o.t2);
      break;
    case LA:
      o.code = LAOffset(r.eps, d, p[0], y1, p[2], y2, p[4], y3, b1, &o.x, &o.y, &o.t1, &o.t2);
      break;
    case AL:
      o.code = ALOffset(r.eps, d, p[0], y1, p[2], y2, p[4], y3, b1, &o.x, &o.y, &o.t1, &o.t2);
      break;
    case AA:
      o.code = AAOffset(r.eps, d, p[0], y1, p[2], y2, p[4], y3, b1, b2, &o.x, &o.y, &o.t1, &o.t2);
      break;
    case Point:
      o.code = GetOffsetP(r.eps, d, b2, p[0], y1, p[2], y2, b1, &o.x, &o.y);
      break;
  }
  return o;
}

TEST(CornerJoins, table) {
  // A line up the y axis into a counter-clockwise arc that heads back down (a cusp), and a line
  // into a clockwise arc whose circle it crosses a second time just past the vertex.
  const double c = std::sqrt(100.0 - 1e-4), a0 = std::atan2(-0.01, c);
  const double tCusp = std::atan(kR40 / 9) / kHalfPi,
               yNear = 10.01 - std::sqrt(121 - (c - 1) * (c - 1));
  const double bNear = std::tan((-kHalfPi - a0) / 4),
               tNear = (std::atan2(yNear - 10.01, c - 1) - a0) / (-kHalfPi - a0);
  const double a1 = std::atan2(0.01, c), yPlus = 9.99 + std::sqrt(121 - (c - 1) * (c - 1));
  const double bPlus = std::tan((-kHalfPi - a1) / 4),
               tPlus = (std::atan2(yPlus - 9.99, c - 1) - a1) / (-kHalfPi - a1);
  const double t11 = std::atan(0.5 / kR2) / kPi, aat1 = std::atan2(5 - kS, 5 + kS) / kHalfPi + 1;
  const double aat2 = std::atan2(-5 - kS, kS - 5) / kHalfPi + 1;
  const JoinRow rows[] = {
      // clang-format off
      {"ll_right_angle_outside", LL, 1e-9, 1, {0, 0, 10, 0, 10, 10}, 0, 0, 1, 11, -1, 1.1, -0.1},
      {"ll_right_angle_inside", LL, 1e-9, -1, {0, 0, 10, 0, 10, 10}, 0, 0, 1, 9, 1, 0.9, 0.1},
      {"ll_oblique_inside", LL, 1e-9, 1, {1, 2, 4, 6, 8, 3}, 0, 0, 1, 4.2, 4.6, 0.8, 0.2},
      {"ll_short_right_angle", LL, 1e-9, 0.1, {0, 0, 0.5, 0, 0.5, 0.5}, 0, 0, 1, 0.6, -0.1, 1.2, -0.2},
      {"ll_collinear_vertical", LL, 1e-9, 1, {0, 0, 0, 10, 0, 20}, 0, 0, 2, 1, 10, 1, 0},
      {"ll_collinear", LL, 1e-9, 1, {0, 0, 10, 0, 20, 0}, 0, 0, 2, 10, -1, 1, 0},
      {"ll_reversal", LL, 1e-9, 1, {0, 0, 10, 0, 5, 0}, 0, 0, 0, S, S, S, S},
      {"ll_cross_exactly_eps_meets", LL, kE, 0, {0, 0, 8, 0, 16, kE / 8}, 0, 0, 1, 8, 0, 1, 0},
      {"ll_cross_half_eps_is_parallel", LL, kE, 0, {0, 0, 8, 0, 16, kE / 16}, 0, 0, 2, 8, 0, 1, 0},
      {"ll_first_degenerate", LL, 1e-9, 1, {10, 0, 10, 0, 10, 10}, 0, 0, -2, 11, 0, 1, 0},
      {"ll_second_degenerate", LL, 1e-9, 1, {0, 0, 10, 0, 10, 0}, 0, 0, -2, 10, -1, 1, 0},
      {"ll_both_degenerate", LL, 1e-9, 1, {1, 1, 1, 1, 1, 1}, 0, 0, -3, S, S, S, S},
      {"la_line_into_half_circle", LA, 1e-9, 0.5, {-10, 0, 0, 0, 2, 0}, 1, 0, 1, 1 - kR2, -0.5, (11 - kR2) / 10, t11},
      {"la_cusp_takes_the_branch_from_the_turn", LA, 1e-9, 1, {0, 0, 0, 10, 10, 0}, kQ, 0, 1, 1, 10 - kR40, 1 - kR40 / 10, tCusp},
      {"la_roots_within_round_off_take_the_vertex_root", LA, 1e-3, -1, {0, 0, 0, 10, -c, 0.01}, bNear, 0, 1, -1, yNear, yNear / 10, tNear},
      {"la_roots_within_round_off_take_the_vertex_root_plus", LA, 1e-3, -1, {0, 0, 0, 10, -c, -0.01}, bPlus, 0, 1, -1, yPlus, yPlus / 10, tPlus},
      {"al_touching_with_a_turn_within_eps", AL, 1e-3, -1e-3, {1.5e-3, 1.5e-3, 0, 0, -1, 0}, -kQ, 0, 0, S, S, S, S},
      {"la_touching_with_a_turn_within_eps", LA, 1e-3, 1e-3, {-1, 0, 0, 0, 1.5e-3, 1.5e-3}, kQ, 0, 0, S, S, S, S},
      {"la_moved_line_misses_the_circle", LA, 1e-9, -0.6, {-10, 0, 0, 0, 2, 0}, 1, 0, 0, S, S, S, S},
      {"la_bulge_within_eps_is_a_line", LA, kE, 1, {0, 0, 10, 0, 10, 10}, kE / 2, 0, 1, 11, -1, 1.1, -0.1},
      {"la_no_line", LA, 1e-9, 0.5, {0, 0, 0, 0, 2, 0}, 1, 0, -1, -0.5, 0, 1, 0},
      {"la_no_arc", LA, 1e-9, 0.5, {-10, 0, 0, 0, 0, 0}, 1, 0, -2, 0, -0.5, 1, 0},
      {"la_neither", LA, 1e-9, 0.5, {0, 0, 0, 0, 0, 0}, 1, 0, -3, S, S, S, S},
      {"al_no_arc", AL, 1e-9, 0.5, {0, 0, 0, 0, 10, 0}, 1, 0, -1, 0, -0.5, 1, 0},
      {"al_no_line", AL, 1e-9, 0.5, {-2, 0, 0, 0, 0, 0}, 1, 0, -2, 0.5, 0, 1, 0},
      {"aa_right_turn_takes_the_point_on_the_vertex_side", AA, 1e-9, 1, {0, 0, 10, 10, 20, 20}, kQ, kQ, 1, 5 + kS, 15 - kS, aat1, aat2},
      {"aa_smooth_s_curve_touches", AA, 1e-9, 1, {0, 0, 10, 10, 20, 20}, kQ, -kQ, 1, 11, 10, 1, 0},
      {"aa_moved_circles_miss", AA, 1e-9, -9, {0, 0, 10, 10, 20, 20}, kQ, kQ, 0, S, S, S, S},
      {"aa_concentric_same_way", AA, 1e-9, 0.5, {1, 0, 0, 1, -1, 0}, kQ, kQ, 1, 0, 1.5, 1, 0},
      {"aa_concentric_opposite_ways", AA, 1e-9, 0.5, {1, 0, 0, 1, 1, 0}, kQ, -kQ, 0, S, S, S, S},
      {"aa_no_first_arc", AA, 1e-9, 1, {0, 0, 0, 0, 10, 10}, 1, kQ, -1, 0, -1, 1, 0},
      {"aa_no_second_arc", AA, 1e-9, 1, {0, 0, 10, 10, 10, 10}, kQ, 1, -2, 11, 10, 1, 0},
      {"aa_neither", AA, 1e-9, 1, {0, 0, 0, 0, 0, 0}, 1, 1, -3, S, S, S, S},
      {"aa_zero_first_bulge_is_line_arc", AA, 1e-9, 0.5, {-10, 0, 0, 0, 2, 0}, 0, 1, 1, 1 - kR2, -0.5, (11 - kR2) / 10, t11},
      {"aa_zero_second_bulge_is_arc_line", AA, 1e-9, -0.5, {2, 0, 0, 0, -10, 0}, -1, 0, 1, 1 - kR2, -0.5, 1 - t11, 1 - (11 - kR2) / 10},
      {"point_on_a_line", Point, 1e-9, 1, {0, 0, 10, 0}, 0, 0.3, 1, 3, -1, S, S},
      {"point_on_a_short_line", Point, 1e-9, 0.1, {0, 0, 0.5, 0}, 0, 0.5, 1, 0.25, -0.1, S, S},
      {"point_on_a_counter_clockwise_arc", Point, 1e-9, 0.5, {0, 0, 2, 0}, 1, 0.5, 1, 1, -1.5, S, S},
      {"point_on_a_clockwise_arc", Point, 1e-9, 0.5, {0, 0, 2, 0}, -1, 0.5, 1, 1, 0.5, S, S},
      {"point_on_an_arc_across_the_axis", Point, 1e-9, 0.5, {0, -1, 0, 1}, 1, 0.5, 1, 1.5, 0, S, S},
      {"point_moved_radius_minus_half_eps_is_the_centre", Point, kE, 1 + kE / 2, {0, 0, 2, 0}, -1, 0.5, 1, 1, 0, S, S},
      {"point_moved_radius_minus_two_eps", Point, kE, 1 + 2 * kE, {0, 0, 2, 0}, -1, 0.5, 0, S, S, S, S},
      {"point_on_a_degenerate_segment", Point, kE, 1, {0, 0, 0, kE / 2}, 0, 0.5, 0, S, S, S, S},
      // clang-format on
  };
  // clang-format on
  for (const JoinRow& r : rows) {
    for (double m : {1.0, -1.0}) {
      SCOPED_TRACE(testing::Message() << r.name << (m < 0 ? " mirrored" : ""));
      const Out o = join(r, m);
      EXPECT_EQ(o.code, r.code);
      EXPECT_TRUE(near({o.x, o.y, o.t1, o.t2}, {r.x, r.y == S ? S : m * r.y, r.t1, r.t2}, 1e-9));
      if (r.kind != LA || r.code != 1)
        continue;
      // The reversed path: the arc first, then the line, the other side, parameters from the end.
      const JoinRow back{r.name, AL, r.eps, -r.d, {r.p[4], r.p[5], r.p[2], r.p[3], r.p[0], r.p[1]},
                         -r.b1,  0,  1,     0,    0,
                         0,      0};
      const Out b = join(back, m);
      EXPECT_EQ(b.code, 1);
      EXPECT_TRUE(near({b.x, b.y, b.t1, b.t2}, {o.x, o.y, 1 - o.t2, 1 - o.t1}, 1e-9));
    }
  }
}

// Random corners: a join lies on both moved segments, where its parameters say.
// A corner of the given kind from six coordinates and two bulges, no expectations.
JoinRow corner(int kind, double eps, double d, std::initializer_list<double> xy, double b1,
               double b2) {
  JoinRow r{"corner", static_cast<Kind>(kind), eps, d, {}, b1, b2, 0, 0, 0, 0, 0};
  std::copy(xy.begin(), xy.end(), r.p);
  return r;
}

// Random corners, and first a short line into an arc of radius 5.4 million where round-off alone
// puts the vertex more than eps off the line's root on the circle: a join lies on both moved
// segments.
TEST(CornerJoins, random_joins_lie_on_both_moved_segments) {
  std::mt19937_64 rng(61);
  std::uniform_real_distribution<double> c(-10, 10), b(-2, 2), d(-1, 1);
  const double eps = 1e-9;
  // Lines into arcs where the vertex lies on the circle only up to round-off, beyond eps: a
  // chord of a circle of radius 5.4 million, and chords of a circle of radius 100 cut into
  // 100,000 pieces, near the x and the y axis. These must join; then random corners.
  std::vector<JoinRow> fixed = {corner(LA, eps, 0.1,
                                       {110510.35266496163, 5428863.6358390506, 110510.30481794557,
                                        5428864.2452252656, 92707.13594878967, 5429197.5465611098},
                                       0.00081981189987973067, 0)};
  const auto at = [](int k) { return 100 * std::cos(kTwoPi * k / 1e5); };
  for (int k = 1; k < 800; k += 2) {  // near the x axis, then near the y axis
    const int m = k < 400 ? k : k + 24600;
    fixed.push_back(corner(
        LA, eps, 1, {at(m), at(m - 25000), at(m + 1), at(m - 24999), at(m + 2), at(m - 24998)},
        std::tan(kPi / 2e5), 0));
  }
  for (int i = -static_cast<int>(fixed.size()); i < 3000; ++i) {
    const JoinRow r =
        i < 0 ? fixed[-i - 1]
              : corner(i % 4, eps, d(rng), {c(rng), c(rng), c(rng), c(rng), c(rng), c(rng)}, b(rng),
                       b(rng));
    const Out o = join(r, 1);
    ASSERT_TRUE(i >= 0 || o.code == 1);
    if (o.code != 1)
      continue;
    SCOPED_TRACE(testing::Message() << "case " << i << " kind " << r.kind);
    const double first = r.kind == AL || r.kind == AA ? r.b1 : 0;
    const double second = r.kind == AA ? r.b2 : r.kind == LA ? r.b1 : 0;
    double x1, y1, x2, y2;  // the moved segments' points at t1 and t2
    if (!GetOffsetP(eps, r.d, o.t1, r.p[0], r.p[1], r.p[2], r.p[3], first, &x1, &y1) ||
        !GetOffsetP(eps, r.d, o.t2, r.p[2], r.p[3], r.p[4], r.p[5], second, &x2, &y2))
      continue;  // a moved arc turned inside out
    const double tol = 1e-8 * (1 + std::fabs(o.t1) + std::fabs(o.t2));
    EXPECT_TRUE(
        near({std::hypot(x1 - o.x, y1 - o.y), std::hypot(x2 - o.x, y2 - o.y)}, {0, 0}, tol));
  }
}

TEST(Hostile, corner_joins_return_documented_codes) {
  HostileNumbers h(8);
  for (int i = 0; i < 20000; ++i) {
    const JoinRow r = corner(i % 5, std::fabs(h()), h(), {h(), h(), h(), h(), h(), h()}, h(), h());
    const Out o = join(r, 1);
    ASSERT_TRUE(o.code >= -3 && o.code <= 2) << o.code;
    ASSERT_TRUE(o.code == 0 || o.code == -3 ? untouched({o.x, o.y, o.t1, o.t2})
                                            : r.kind == Point || o.t1 != S)
        << o.code;
  }
}

}  // namespace
