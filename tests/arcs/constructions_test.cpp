// Tarnsysm: planar computational geometry for 2D drafting.
// Arcs and polyline arc segments built from drafting input sets. The tables hold the cases worked
// out by hand; the random draws check every result against plain circle geometry: the given
// points lie on the circle, a segment of included angle theta leaves its start along the chord
// direction less theta / 2 and arrives along it plus theta / 2.

#include "test_support.h"

namespace {

using namespace tarnsysm::test;

const double kQuarter = std::tan(kPi / 8);
const double kR2 = std::sqrt(2.0);

// The kinds of polyline segment construction in the table below.
enum Seg { StaEdp, InaEdp, InaCen, InaRadDir, CenEdp, CenLen, RadEdp, ThreeP };

struct SegmentRow {
  const char* name;
  Seg kind;
  double a, b;        // the member's scalar inputs: sta, ina, len or rad (a), rad (b)
  double q[2], w[2];  // its inputs after stp = (0, 0): edp, cen, p2 and p3, or dir in q[0]
  int result;
  double bulge, endDir;
  double px, py;  // the point written back (end point), kUnwritten where none is written
};

int build(const SegmentRow& r, double* stp, double* q, double* w, double* bulge, double* dir) {
  switch (r.kind) {
    case StaEdp:
      return PL_StpStaEdp(kE, stp, r.a, q, bulge, dir);
    case InaEdp:
      return PL_StpInaEdp(kE, stp, r.a, q, bulge, dir);
    case InaCen:
      return PL_StpInaCen(kE, stp, r.a, q, bulge, dir);
    case InaRadDir:
      return PL_StpInaRadDir(kE, stp, r.a, r.b, r.q[0], q, bulge, dir);
    case CenEdp:
      return PL_StpCenEdp(kE, stp, q, w, bulge, dir);
    case CenLen:
      return PL_StpCenLen(kE, stp, q, r.a, bulge, dir);
    case RadEdp:
      return PL_StpRadEdp(kE, stp, r.a, q, bulge, dir);
    default:
      return PL_3points(kE, stp, q, w, bulge, dir);
  }
}

TEST(PL_segments, table) {
  const double cwCentreDir = std::atan2(kR2, 2) - kHalfPi + kTwoPi;
  const double S = kUnwritten;
  const SegmentRow rows[] = {
      // clang-format off
      {"sta_edp_right_quarter", StaEdp, 0, 0, {1, -1}, {}, 1, -kQuarter, 3 * kHalfPi, S, S},
      {"sta_edp_straight_ahead", StaEdp, 0, 0, {2, 0}, {}, 0, S, S, S, S},
      {"sta_edp_straight_behind", StaEdp, kTwoPi, 0, {-2, 0}, {}, 0, S, S, S, S},
      {"ina_edp_exactly_eps_counts_as_clockwise", InaEdp, kE, 0, {2, 0}, {}, 1, std::tan(kE / 4), kPi + kE / 2, S, S},
      {"ina_edp_a_turn_more", InaEdp, kHalfPi + 2 * kTwoPi, 0, {2, 0}, {}, 1, kQuarter, kPi / 4, S, S},
      {"ina_edp_clockwise_takes_the_right_normal_centre", InaEdp, -kHalfPi, 0, {2, 0}, {}, 1, -kQuarter, cwCentreDir, S, S},
      {"ina_cen_left_quarter", InaCen, kHalfPi, 0, {-2, 0}, {}, 1, kQuarter, kPi, -2, 2},
      {"ina_cen_radius_exactly_eps", InaCen, kHalfPi, 0, {-kE, 0}, {}, 1, kQuarter, kPi, -kE, kE},
      {"ina_cen_start_on_the_centre", InaCen, 1, 0, {kE / 2, 0}, {}, 1, std::tan(0.25), kHalfPi, 0, 0},
      {"ina_rad_dir_ina_within_eps", InaRadDir, kE, 1, {kPi / 4, S}, {}, 0, S, S, kPi / 4, S},
      {"ina_rad_dir_radius_below_eps", InaRadDir, kHalfPi, kE / 2, {kPi / 4, S}, {}, 0, S, S, kPi / 4, S},
      {"cen_edp_end_on_the_start_ray_is_no_turn", CenEdp, 0, 0, {-1, 0}, {3, 0}, 1, 0, kHalfPi, 0, 0},
      {"cen_edp_radius_exactly_eps", CenEdp, 0, 0, {-kE, 0}, {-kE, 5}, 1, kQuarter, kPi, -kE, kE},
      {"cen_edp_start_on_the_centre", CenEdp, 0, 0, {kE / 2, 0}, {kE / 2, 5}, 1, 0, kPi, 0, 0},
      {"cen_len_diameter_is_a_half_circle", CenLen, 4, 0, {-2, 0}, {}, 1, 1, 3 * kHalfPi, -4, 0},
      {"cen_len_negative_turns_clockwise", CenLen, -4, 0, {-2, 0}, {}, 1, -1, kHalfPi, -4, 0},
      {"cen_len_longer_than_the_diameter", CenLen, 5, 0, {-2, 0}, {}, 1, 0, 3 * kHalfPi, 0, 0},
      {"rad_edp_half_circle_below", RadEdp, 1, 0, {2, 0}, {}, 1, 1, kHalfPi, S, S},
      {"rad_edp_negative_radius_above", RadEdp, -1, 0, {2, 0}, {}, 1, -1, 3 * kHalfPi, S, S},
      {"rad_edp_chord_beyond_the_diameter", RadEdp, 0.9, 0, {2, 0}, {}, 1, 0, 0, S, S},
      {"three_points_collinear", ThreeP, 0, 0, {1, 1}, {2, 2}, 0, S, S, S, S},
      // clang-format on
  };
  // clang-format on
  for (const SegmentRow& r : rows) {
    double stp[2] = {0, 0}, q[2] = {r.q[0], r.q[1]}, w[2] = {r.w[0], r.w[1]}, bulge = S, dir = S;
    const int got = build(r, stp, q, w, &bulge, &dir);
    EXPECT_TRUE(
        gives(got, r.result, {bulge}, {r.bulge}, 1e-12) &&
        (got == 0 ? untouched({dir}) : sameDirection(dir, r.endDir, 1e-12) && angleInTurn(kE, dir)))
        << r.name;
    const double* written = r.kind == CenEdp ? w : q;  // the end point, where one is written back
    EXPECT_TRUE(r.px == S || near({written[0], written[1]}, {r.px, r.py}, 1e-12)) << r.name;
  }
  double far[3][2] = {{10001.1, 1}, {10001.1, 62}, {10001.1, 6300}}, b = S, d = S;
  EXPECT_EQ(PL_3points(1e-9, far[0], far[1], far[2], &b, &d), 0);
  EXPECT_TRUE(untouched({b, d}));
}

// The inscribed-angle facts of a segment from s to e with the given bulge: it arrives along the
// chord direction plus theta / 2 (and leaves along it less theta / 2).
testing::AssertionResult arrives(const double* s, const double* e, double bulge, double endDir) {
  const double half = 2 * std::atan(bulge);
  return sameDirection(endDir, std::atan2(e[1] - s[1], e[0] - s[0]) + half, 1e-7);
}
testing::AssertionResult leaves(const double* s, const double* e, double bulge, double startDir) {
  const double half = 2 * std::atan(bulge);
  return sameDirection(startDir, std::atan2(e[1] - s[1], e[0] - s[0]) - half, 1e-7);
}

TEST(PL_segments, random_segments_obey_the_inscribed_angle_facts) {
  std::mt19937_64 rng(51);
  std::uniform_real_distribution<double> c(-20, 20), ang(-3, 3);
  const double eps = 1e-9;
  for (int i = 0; i < 3000; ++i) {
    SCOPED_TRACE(i);
    double stp[2] = {c(rng), c(rng)}, q[2] = {c(rng), c(rng)}, w[2] = {c(rng), c(rng)};
    const double sta = ang(rng), ina = ang(rng), dist = std::hypot(q[0] - stp[0], q[1] - stp[1]);
    if (dist < 0.5 || std::fabs(ina) < 0.01)
      continue;
    double b, dir, p[2] = {q[0], q[1]}, cen[2] = {q[0], q[1]};
    EXPECT_TRUE(PL_StpStaEdp(eps, stp, sta, q, &b, &dir) == 0 ||
                (leaves(stp, q, b, sta) && arrives(stp, q, b, dir)));
    ASSERT_EQ(PL_StpInaEdp(eps, stp, std::fabs(ina), q, &b, &dir),
              1);  // the centre left of the chord
    EXPECT_TRUE(std::fabs(b - std::tan(std::fabs(ina) / 4)) < 1e-12 && arrives(stp, q, b, dir));
    ASSERT_EQ(PL_StpInaCen(eps, stp, ina, cen, &b, &dir), 1);  // cen becomes the end point
    EXPECT_TRUE(onCircle(cen[0], cen[1], q[0], q[1], dist, 1e-9) && arrives(stp, cen, b, dir));
    EXPECT_NEAR(b, std::tan(ina / 4), 1e-12);
    ASSERT_EQ(PL_StpInaRadDir(eps, stp, ina, dist, sta, p, &b, &dir), 1);
    EXPECT_TRUE(sameDirection(std::atan2(p[1] - stp[1], p[0] - stp[0]), sta, 1e-7) &&
                arrives(stp, p, b, dir));
    EXPECT_NEAR(std::hypot(p[0] - stp[0], p[1] - stp[1]), 2 * dist * std::fabs(std::sin(ina / 2)),
                1e-8);
    const double len = std::min(std::hypot(w[0] - q[0], w[1] - q[1]), 1.99 * dist);
    p[0] = q[0], p[1] = q[1];
    ASSERT_EQ(PL_StpCenLen(eps, stp, p, len, &b, &dir), 1);
    EXPECT_TRUE(onCircle(p[0], p[1], q[0], q[1], dist, 1e-9) && arrives(stp, p, b, dir));
    EXPECT_NEAR(std::hypot(p[0] - stp[0], p[1] - stp[1]), len, 1e-8);
    p[0] = w[0], p[1] = w[1];
    ASSERT_EQ(PL_StpCenEdp(eps, stp, q, p, &b, &dir), 1);  // onto the ray from the centre
    EXPECT_TRUE(onCircle(p[0], p[1], q[0], q[1], dist, 1e-9) && b >= 0 && arrives(stp, p, b, dir));
    EXPECT_TRUE(sameDirection(std::atan2(p[1] - q[1], p[0] - q[0]),
                              std::atan2(w[1] - q[1], w[0] - q[0]), 1e-9));
    ASSERT_EQ(PL_StpRadEdp(eps, stp, 0.6 * dist, q, &b, &dir), 1);  // the minor arc: |b| <= 1
    EXPECT_TRUE(b > 0 && b <= 1 && arrives(stp, q, b, dir));
    EXPECT_NEAR(dist / (2 * std::sin(2 * std::atan(b))), 0.6 * dist, 1e-8 * dist);
    if (PL_TestVertex(9, eps, stp, q, w) == 1) {
      ASSERT_EQ(PL_3points(eps, stp, q, w, &b, &dir), 1);
      // The inscribed angle at q is pi - |theta| / 2; the turn p1 -> q -> w gives the sign.
      const double at =
          std::atan2(stp[1] - q[1], stp[0] - q[0]) - std::atan2(w[1] - q[1], w[0] - q[0]);
      EXPECT_NEAR(std::fabs(std::remainder(at, kTwoPi)), kPi - 2 * std::fabs(std::atan(b)), 1e-7);
      EXPECT_TRUE(((q[0] - stp[0]) * (w[1] - stp[1]) - (q[1] - stp[1]) * (w[0] - stp[0])) * b > 0);
      EXPECT_TRUE(arrives(stp, w, b, dir));
    }
  }
}

TEST(DArc, table) {
  const double S = kUnwritten;
  // kind: 0 3P (p2, p3); 1 StpStaEdp (a, edp); 2 StpEdpIna (edp, a); 3 StpInaRadDir (a, r, dir); 4
  // StpRadEdp (r, edp)
  // clang-format off
  const struct { const char* name; int kind; double a, r, q[2], w[2]; int result; double cx, cy, radius, sa, ea; short flag; } rows[] = {
      // clang-format off
      {"3p_clockwise_swaps_the_angles", 0, 0, 0, {1, 1}, {2, 0}, 1, 1, 0, 1, 0, kPi, 1},
      {"3p_counter_clockwise", 0, 0, 0, {-1, 1}, {-2, 0}, 1, -1, 0, 1, 0, kPi, -1},
      {"3p_second_point_exactly_eps_away", 0, 0, 0, {kE, 0}, {0, 1}, 1, kE / 2, 0.5, std::hypot(kE / 2, 0.5), std::atan2(-0.5, -kE / 2) + kTwoPi, std::atan2(0.5, -kE / 2) + kTwoPi, -1},
      {"3p_third_point_exactly_eps_away", 0, 0, 0, {0, 1}, {kE, 0}, 1, kE / 2, 0.5, std::hypot(kE / 2, 0.5), std::atan2(-0.5, kE / 2) + kTwoPi, std::atan2(-0.5, -kE / 2) + 2 * kTwoPi, 1},
      {"3p_coincident", 0, 0, 0, {kE / 2, 0}, {0, 1}, 0, S, S, S, S, S, 99},
      {"3p_collinear", 0, 0, 0, {1, 1}, {3, 3}, 0, S, S, S, S, S, 99},
      {"sta_edp_left", 1, 0, 0, {1, 1}, {}, 1, 0, 1, 1, 3 * kHalfPi, kTwoPi, -1},
      {"sta_edp_right", 1, 0, 0, {1, -1}, {}, 1, 0, -1, 1, 0, kHalfPi, 1},
      {"edp_dir_ahead", 5, 0, 0, {3, 0}, {}, 0, S, S, S, S, S, 99},
      {"edp_dir_behind", 5, 0, 0, {-3, 0}, {}, 0, S, S, S, S, S, 99},
      {"sta_edp_ahead", 1, 0, 0, {3, 0}, {}, 0, S, S, S, S, S, 99},
      {"sta_edp_behind", 1, 0, 0, {-3, 0}, {}, 0, S, S, S, S, S, 99},
      {"edp_ina_half_circle", 2, kPi, 0, {2, 0}, {}, 1, 1, 0, 1, kPi, kTwoPi, -1},
      {"edp_ina_within_eps_is_no_arc", 2, kE / 2, 0, {2, 0}, {}, 0, S, S, S, S, S, 99},
      {"edp_ina_whole_turn", 2, kTwoPi, 0, {2, 0}, {}, 0, S, S, S, S, S, 99},
      {"ina_rad_dir_left_quarter", 3, kHalfPi, 1, {kPi / 4, 0}, {}, 1, 0, 1, S, 3 * kHalfPi, kTwoPi, -1},
      {"ina_rad_dir_tiny_sweep_stays_tiny", 3, kE / 2, 1, {0, 0}, {}, 1, std::sin(kE / 4), std::cos(kE / 4), S, 3 * kHalfPi - kE / 4, 3 * kHalfPi + kE / 4, -1},
      {"ina_rad_dir_clockwise_major", 3, -3 * kHalfPi, 1, {0, 0}, {}, 1, kR2 / 2, kR2 / 2, S, 7 * kPi / 4, 13 * kPi / 4, 2},
      {"ina_rad_dir_counter_clockwise_major", 3, 3 * kHalfPi, 1, {0, 0}, {}, 1, kR2 / 2, -kR2 / 2, S, 3 * kPi / 4, 9 * kPi / 4, -2},
      {"rad_edp_half_circle", 4, 0, 1, {2, 0}, {}, 1, 1, 0, S, kPi, kTwoPi, 99},
      {"rad_edp_chord_beyond_the_diameter", 4, 0, 0.9, {2, 0}, {}, 0, S, S, S, S, S, 99},
      {"rad_edp_negative_radius", 4, 0, -1, {2, 0}, {}, 0, S, S, S, S, S, 99},
      // clang-format on
  };
  // clang-format on
  for (const auto& r : rows) {
    double stp[2] = {0, 0}, q[2] = {r.q[0], r.q[1]}, w[2] = {r.w[0], r.w[1]};
    double c[2] = {S, S}, radius = S, sa = S, ea = S;
    short flag = 99;
    const int got = r.kind == 0   ? DArcParam3P(kE, stp, q, w, c, &radius, &sa, &ea, &flag)
                    : r.kind == 1 ? DArcStpStaEdp(kE, stp, r.a, q, c, &radius, &sa, &ea, &flag)
                    : r.kind == 2 ? DArcStpEdpIna(kE, stp, q, r.a, c, &radius, &sa, &ea, &flag)
                    : r.kind == 3 ? DArcStpInaRadDir(kE, stp, r.a, r.r, q[0], c, &sa, &ea, &flag)
                    : r.kind == 5 ? DArcStpEdpDir(kE, stp, q, r.a, c, &radius, &sa, &ea, &flag)
                                  : DArcStpRadEdp(kE, stp, r.r, q, c, &sa, &ea);
    EXPECT_TRUE(gives(got, r.result, {c[0], c[1], radius, sa, ea, 1.0 * flag},
                      {r.cx, r.cy, r.radius, r.sa, r.ea, 1.0 * r.flag}, 1e-12))
        << r.name;
  }
  // The second point within eps of the first, away from the origin, the third far enough for a
  // clear triangle area.
  double p1[2] = {5, 5}, p2[2] = {5 + kE / 2, 5}, p3[2] = {5, 1005}, c[2], r, sa, ea;
  short flag;
  EXPECT_EQ(DArcParam3P(kE, p1, p2, p3, c, &r, &sa, &ea, &flag), 0);
}

// Random drafting arcs: the given points lie on the circle at the arc's ends (sa at the start
// point for counter-clockwise flags, at the end point for clockwise ones), the sweep is right,
// and the start direction is the tangent there.
TEST(DArc, random_arcs_pass_through_their_points) {
  std::mt19937_64 rng(52);
  std::uniform_real_distribution<double> c(-20, 20), ang(-6, 6);
  const double eps = 1e-9;
  for (int i = 0; i < 3000; ++i) {
    SCOPED_TRACE(i);
    double stp[2] = {c(rng), c(rng)}, edp[2] = {c(rng), c(rng)}, mid[2] = {c(rng), c(rng)};
    const double a = ang(rng), chord = std::hypot(edp[0] - stp[0], edp[1] - stp[1]);
    if (chord < 0.5)
      continue;
    double cen[2], r, sa, ea, sa2, ea2, cen2[2], r2;
    short flag, flag2;
    // sa at the first point for an arc run counter-clockwise, at the last one otherwise.
    const auto ends = [&](const double* first, const double* last, bool ccw) {
      const double *s = ccw ? first : last, *e = ccw ? last : first, tol = 1e-10 * (1 + r);
      return onCircle(s[0], s[1], cen[0], cen[1], r, tol) &&
             onCircle(e[0], e[1], cen[0], cen[1], r, tol) &&
             sameDirection(sa, std::atan2(s[1] - cen[1], s[0] - cen[0]), 1e-8) &&
             sameDirection(ea, std::atan2(e[1] - cen[1], e[0] - cen[0]), 1e-8) && ea >= sa - eps;
    };
    if (DArcStpStaEdp(eps, stp, a, edp, cen, &r, &sa, &ea, &flag) == 1) {
      EXPECT_TRUE(ends(stp, edp, flag < 0));
      EXPECT_NEAR((stp[0] - cen[0]) * std::cos(a) + (stp[1] - cen[1]) * std::sin(a), 0,
                  1e-10 * (1 + r));
      EXPECT_EQ(flag < 0, (cen[0] - stp[0]) * std::sin(a) < (cen[1] - stp[1]) * std::cos(a));
      ASSERT_EQ(DArcStpEdpDir(eps, stp, edp, a, cen2, &r2, &sa2, &ea2, &flag2), 1);
      EXPECT_TRUE(near({cen2[0], cen2[1], r2, sa2, ea2, 1.0 * flag2},
                       {cen[0], cen[1], r, sa, ea, 1.0 * flag}, 1e-9 * (1 + r)));
    }
    if (DArcStpEdpIna(eps, stp, edp, a, cen, &r, &sa, &ea, &flag) == 1) {
      // The centre lies left of the chord for counter-clockwise minor and clockwise major arcs.
      EXPECT_TRUE(ends(stp, edp, a > 0) && (flag < 0) == ((a > 0) == (std::fabs(a) < kPi)));
      EXPECT_NEAR(ea - sa, std::fabs(a), 1e-8);
    }
    if (DArcParam3P(eps, stp, mid, edp, cen, &r, &sa, &ea, &flag) == 1) {
      EXPECT_TRUE(ends(stp, edp, flag < 0) && onCircle(mid[0], mid[1], cen[0], cen[1], r, 1e-8));
      const double m = std::atan2(mid[1] - cen[1], mid[0] - cen[0]) - sa;
      EXPECT_LE(m - kTwoPi * std::floor(m / kTwoPi), ea - sa + 1e-9);  // the middle is on the arc
    }
    ASSERT_EQ(DArcStpRadEdp(eps, stp, chord, edp, cen, &sa, &ea), 1);
    r = chord;
    EXPECT_TRUE(ends(stp, edp, true) && std::fabs(ea - sa - kPi / 3) < 1e-8);  // chord = radius
    ASSERT_EQ(DArcStpInaRadDir(eps, stp, a, chord, mid[0], cen, &sa, &ea, &flag), 1);
    const double s = flag < 0 ? sa : ea, e = flag < 0 ? ea : sa;
    const double ex = cen[0] + chord * std::cos(e), ey = cen[1] + chord * std::sin(e);
    EXPECT_TRUE(onCircle(stp[0], stp[1], cen[0], cen[1], chord, 1e-8) &&
                sameDirection(s, std::atan2(stp[1] - cen[1], stp[0] - cen[0]), 1e-8));
    EXPECT_TRUE(sameDirection(std::atan2(ey - stp[1], ex - stp[0]), mid[0], 1e-7));
    EXPECT_NEAR(ea - sa, std::fabs(a), 1e-8);
  }
}

// Every construction fed the hostile numbers: success only with finite outputs, failure without
// writing anything.
TEST(Hostile, constructions_report_success_only_with_finite_outputs) {
  HostileNumbers h(7);
  const double S = kUnwritten;
  for (int i = 0; i < 20000; ++i) {
    const double eps = std::fabs(h()), a = h(), b = h();
    double p[2] = {h(), h()}, q[2] = {h(), h()}, w[2] = {h(), h()};
    double x[2] = {S, S}, c[2] = {S, S}, bulge = S, dir = S, r = S, sa = S, ea = S;
    short flag = 0;
    const auto check = [&](int result, std::initializer_list<double> outs) {
      for (double v : outs)
        if (result == 1 ? !std::isfinite(v) : v != S)
          return false;
      bulge = dir = r = sa = ea = x[0] = x[1] = c[0] = c[1] = S;
      return true;
    };
    SCOPED_TRACE(i);
    ASSERT_TRUE(check(PL_StpStaEdp(eps, p, a, q, &bulge, &dir), {bulge, dir}));
    ASSERT_TRUE(check(PL_StpInaEdp(eps, p, a, q, &bulge, &dir), {bulge, dir}));
    x[0] = q[0], x[1] = q[1];
    const int inaCen = PL_StpInaCen(eps, p, a, x, &bulge, &dir);
    ASSERT_TRUE(inaCen == 0 ? x[0] == q[0] || std::isnan(q[0]) : std::isfinite(x[0] + x[1]));
    ASSERT_TRUE(check(inaCen, {bulge, dir}));
    ASSERT_TRUE(
        check(PL_StpInaRadDir(eps, p, a, b, h(), x, &bulge, &dir), {x[0], x[1], bulge, dir}));
    ASSERT_TRUE(check(PL_StpCenEdp(eps, p, q, x, &bulge, &dir), {x[0], x[1], bulge, dir}));
    ASSERT_TRUE(check(PL_StpCenLen(eps, p, x, a, &bulge, &dir), {x[0], x[1], bulge, dir}));
    ASSERT_TRUE(check(PL_StpRadEdp(eps, p, a, q, &bulge, &dir), {bulge, dir}));
    ASSERT_TRUE(check(PL_3points(eps, p, q, w, &bulge, &dir), {bulge, dir}));
    ASSERT_TRUE(check(DArcParam3P(eps, p, q, w, c, &r, &sa, &ea, &flag), {c[0], c[1], r, sa, ea}));
    ASSERT_TRUE(
        check(DArcStpEdpIna(eps, p, q, a, c, &r, &sa, &ea, &flag), {c[0], c[1], r, sa, ea}));
    ASSERT_TRUE(
        check(DArcStpEdpDir(eps, p, q, a, c, &r, &sa, &ea, &flag), {c[0], c[1], r, sa, ea}));
    ASSERT_TRUE(
        check(DArcStpStaEdp(eps, p, a, q, c, &r, &sa, &ea, &flag), {c[0], c[1], r, sa, ea}));
    ASSERT_TRUE(
        check(DArcStpInaRadDir(eps, p, a, b, h(), c, &sa, &ea, &flag), {c[0], c[1], sa, ea}));
    ASSERT_TRUE(check(DArcStpRadEdp(eps, p, b, q, c, &sa, &ea), {c[0], c[1], sa, ea}));
  }
}

}  // namespace
