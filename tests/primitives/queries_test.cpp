// Tarnsysm: planar computational geometry for 2D drafting.
// Point queries: on a segment or arc, feet of perpendiculars, points along segments and arcs,
// nearest points. Tolerance edges are rows at eps / 2, eps and 2 eps.

#include "test_support.h"

namespace {

using namespace tarnsysm::test;

TEST(DPointOnLine_DPointOnArc, table) {
  // clang-format off
  const struct { const char* name; double px, py, x1, y1, x2, y2; int expected; } lines[] = {
      // clang-format off
      {"exactly_eps_off_the_line", 3, 1 + kE, 1, 1, 5, 1, 1},
      {"two_eps_off_the_line", 3, 1 + 2 * kE, 1, 1, 5, 1, 0},
      {"beyond_the_end_by_eps", 5 + kE, 1, 1, 1, 5, 1, 1},
      {"beyond_the_end_by_two_eps", 5 + 2 * kE, 1, 1, 1, 5, 1, 0},
      {"before_the_start_by_eps", 1 - kE, 1, 1, 1, 5, 1, 1},
      {"reversed_beyond_the_end_by_eps", 1 - kE, 1, 5, 1, 1, 1, 1},
      {"vertical_below_the_bottom_by_eps", 2, 1 - kE, 2, 1, 2, 5, 1},
      {"vertical_beyond_the_top_by_eps", 2, 5 + kE, 2, 1, 2, 5, 1},
      {"vertical_below_the_bottom_by_two_eps", 2, 1 - 2 * kE, 2, 1, 2, 5, 0},
      {"oblique_midpoint", 2.5, 4, 1, 2, 4, 6, 1},
      {"oblique_off_by_a_hundredth", 2.51, 4, 1, 2, 4, 6, 0},
      {"short_segment_is_a_box", 1 + kE, 1 + kE, 1, 1, 1 + kE / 2, 1, 1},
      {"short_segment_box_edge", 1 + 2 * kE, 1, 1, 1, 1 + kE / 2, 1, 0},
      // clang-format on
  };
  // clang-format on
  for (const auto& r : lines)
    EXPECT_EQ(DPointOnLine(kE, r.px, r.py, r.x1, r.y1, r.x2, r.y2), r.expected) << r.name;

  // clang-format off
  const struct { const char* name; double px, py, r, sa, ea; int expected; } arcs[] = {
      // clang-format off
      // centre (1, 2)
      {"top_of_upper_half", 1, 3, 1, 0, kPi, 1},
      {"radius_plus_half_eps", 1, 3 + kE / 2, 1, 0, kPi, 1},
      {"radius_minus_eps_closed", 1, 3 - kE, 1, 0, kPi, 1},
      {"radius_minus_two_eps", 1, 3 - 2 * kE, 1, 0, kPi, 0},
      {"bottom_is_off_the_upper_half", 1, 1, 1, 0, kPi, 0},
      {"bottom_of_lower_half", 1, 1, 1, kPi, kTwoPi, 1},
      {"top_is_off_the_lower_half", 1, 3, 1, kPi, kTwoPi, 0},
      {"radius_exactly_eps", 1 + kE, 2, kE, 0, kPi, 1},
      {"radius_below_eps", 1 + kE / 2, 2, kE / 2, 0, kPi, 0},
      // clang-format on
  };
  // clang-format on
  for (const auto& r : arcs)
    EXPECT_EQ(DPointOnArc(kE, r.px, r.py, 1, 2, r.r, r.sa, r.ea), r.expected) << r.name;
}

TEST(DPointVerL_DPonLdisP_DPnearLine, table) {
  // fn: 0 DPointVerL, 1 DPonLdisP (px is the distance), 2 DPnearLine
  // clang-format off
  const struct { const char* name; int fn; double px, py, x1, y1, x2, y2; int result; double x, y; } rows[] = {
      // clang-format off
      {"foot_exactly_at_p2", 0, 4.8, 4.4, 1, 1, 4, 5, 1, 4, 5},
      {"foot_beyond_p2_by_eps", 0, 4 + kE, 3, 0, 0, 4, 0, 1, 4 + kE, 0},
      {"foot_beyond_p2_by_two_eps", 0, 4 + 2 * kE, 3, 0, 0, 4, 0, 2, 4 + 2 * kE, 0},
      {"foot_before_p1_by_eps", 0, -kE, 1, 0, 0, 4, 0, 1, -kE, 0},
      {"foot_before_p1_by_two_eps", 0, -2 * kE, 1, 0, 0, 4, 0, 2, -2 * kE, 0},
      {"foot_of_a_degenerate_line", 0, 1, 1, 2, 2, 2, 2 + kE / 2, 0, kUnwritten, kUnwritten},
      {"distance_along", 1, 10, 0, 1, 1, 4, 5, 1, 7, 9},
      {"distance_backwards", 1, -5, 0, 1, 1, 4, 5, 1, -2, -3},
      {"distance_on_a_degenerate_line", 1, 1, 0, 2, 2, 2 + kE / 2, 2, 0, kUnwritten, kUnwritten},
      {"nearest_inside", 2, 3, 7, 1, 1, 5, 1, 1, 3, 1},
      {"nearest_at_half_eps_snaps_to_p1", 2, 1 + 2 * kE, 3, 1, 1, 5, 1, 1, 1, 1},
      {"nearest_at_exactly_eps_stays", 2, 1 + 4 * kE, 3, 1, 1, 5, 1, 1, 1 + 4 * kE, 1},
      {"nearest_at_one_less_eps_stays", 2, 5 - 4 * kE, 3, 1, 1, 5, 1, 1, 5 - 4 * kE, 1},
      {"nearest_at_one_less_half_eps_snaps", 2, 5 - 2 * kE, 3, 1, 1, 5, 1, 1, 5, 1},
      {"nearest_oblique", 2, 0, 5, 1, 1, 4, 5, 1, 2.56, 3.08},
      {"nearest_to_a_degenerate_line", 2, 0, 0, 1, 1, 1, 1, 0, kUnwritten, kUnwritten},
      // clang-format on
  };
  // clang-format on
  for (const auto& r : rows) {
    double x = kUnwritten, y = kUnwritten;
    const int got = r.fn == 0   ? DPointVerL(kE, r.px, r.py, r.x1, r.y1, r.x2, r.y2, &x, &y)
                    : r.fn == 1 ? DPonLdisP(kE, r.px, r.x1, r.y1, r.x2, r.y2, &x, &y)
                                : DPnearLine(kE, r.px, r.py, r.x1, r.y1, r.x2, r.y2, &x, &y);
    EXPECT_TRUE(gives(got, r.result, {x, y}, {r.x, r.y}, 1e-12)) << r.name;
  }
}

TEST(DPnearArc_DPonAperK, table) {
  // fn: 0 DPnearArc of (px, py); 1 DPonAperK at fraction px
  // clang-format off
  const struct { const char* name; int fn; double px, py, r, sa, ea; int result; double x, y; } rows[] = {
      // clang-format off
      // centre (1, 2)
      {"past_the_start_nearer_start", 0, 1.1, 1, 1, 0, kPi, 1, 2, 2},
      {"past_the_end_nearer_end", 0, 0.9, 1, 1, 0, kPi, 1, 0, 2},
      {"radial_projection", 0, 1, 5, 1, 0, kPi, 1, 1, 3},
      {"below_the_centre_on_the_lower_half", 0, 1, 0, 1, kPi, kTwoPi, 1, 1, 1},
      {"start_exactly_eps_above_zero", 0, 3, 2, 1, kE, kPi, 1, 2, 2},
      {"sweep_through_zero", 0, -1, 2.1, 1, 3 * kHalfPi, kHalfPi, 1, 1, 3},
      {"point_on_the_centre", 0, 1 + kE / 2, 2, 1, 0, kPi, 0, kUnwritten, kUnwritten},
      {"radius_below_eps", 0, 3, 2, kE / 2, 0, kPi, 0, kUnwritten, kUnwritten},
      {"fraction_one_is_the_end", 1, 1, 0, 2, 0, kHalfPi, 1, 1, 4},
      {"fraction_half", 1, 0.5, 0, 2, kHalfPi, kPi + kHalfPi, 1, -1, 2},
      {"start_turns_away", 1, 0, 0, 2, kHalfPi + 6 * kTwoPi, 7 * kTwoPi, 1, 1, 4},
      {"fraction_above_one_by_an_ulp", 1, std::nextafter(1.0, 2.0), 0, 2, 0, 1, 0, kUnwritten, kUnwritten},
      {"fraction_below_zero", 1, -1e-300, 0, 2, 0, 1, 0, kUnwritten, kUnwritten},
      // clang-format on
  };
  // clang-format on
  for (const auto& r : rows) {
    double x = kUnwritten, y = kUnwritten, centre[2] = {1, 2};
    const int got = r.fn == 0 ? DPnearArc(kE, r.px, r.py, 1, 2, r.r, r.sa, r.ea, &x, &y)
                              : DPonAperK(kE, r.px, centre, r.r, r.sa, r.ea, &x, &y);
    EXPECT_TRUE(gives(got, r.result, {x, y}, {r.x, r.y}, 1e-12)) << r.name;
  }
}

TEST(DPonPLperV, table) {
  // The segment runs from (0, 0) to (x2, 0)
  // clang-format off
  const struct { const char* name; double k, x2, bulge; int result; double x, y, dir; } rows[] = {
      // clang-format off
      {"straight_fraction", 0.25, 4, 0, 1, 1, 0, 0},
      {"half_circle_counter_clockwise_runs_below", 0.5, 2, 1, 1, 1, -1, 0},
      {"half_circle_clockwise_runs_above", 0.5, 2, -1, 1, 1, 1, 0},
      {"quarter_circle_end", 1, 2, std::tan(kPi / 8), 1, 2, 0, kPi / 4},
      {"fraction_one_and_eps", 1 + kE, 2, 0, 1, 2 + 2 * kE, 0, 0},
      {"fraction_minus_eps", -kE, 2, 0, 1, -2 * kE, 0, 0},
      {"fraction_one_and_two_eps", 1 + 2 * kE, 2, 0, 0, kUnwritten, kUnwritten, kUnwritten},
      {"fraction_below_minus_eps", -2 * kE, 2, 0, 0, kUnwritten, kUnwritten, kUnwritten},
      {"chord_below_eps", 0.5, kE / 2, 1, 0, kUnwritten, kUnwritten, kUnwritten},
      // clang-format on
  };
  // clang-format on
  for (const auto& r : rows) {
    double p1[2] = {0, 0}, p2[2] = {r.x2, 0}, out[3] = {kUnwritten, kUnwritten, kUnwritten};
    const int got = DPonPLperV(kE, r.k, p1, p2, r.bulge, out);
    EXPECT_TRUE(gives(got, r.result, {out[0], out[1]}, {r.x, r.y}, 1e-12)) << r.name;
    EXPECT_TRUE(got == 1 ? sameDirection(out[2], r.dir, 1e-12) && angleInTurn(kE, out[2])
                         : untouched({out[2]}))
        << r.name;
  }
}

// The point at fraction k of an arc segment, by the inscribed-angle facts: it lies at chord
// 2 R sin(|theta| k / 2) from p1, on the side of the chord the bulge says (right of p1 -> p2 for a
// positive bulge), and its direction of travel is the chord p1 -> point turned by theta k / 2.
TEST(DPonPLperV, random_points_obey_the_inscribed_angle_facts) {
  std::mt19937_64 rng(21);
  std::uniform_real_distribution<double> coord(-50, 50), b(-4, 4), k(0.01, 1);
  for (int i = 0; i < 5000; ++i) {
    double p1[2] = {coord(rng), coord(rng)}, p2[2] = {coord(rng), coord(rng)}, out[3];
    const double bulge = b(rng), f = k(rng);
    if (std::fabs(bulge) < 0.01 || std::hypot(p2[0] - p1[0], p2[1] - p1[1]) < 1)
      continue;
    ASSERT_EQ(DPonPLperV(1e-9, f, p1, p2, bulge, out), 1);
    const double theta = 4 * std::atan(bulge), chord = std::hypot(p2[0] - p1[0], p2[1] - p1[1]);
    const double radius = chord / (2 * std::sin(std::fabs(theta) / 2));
    const double dx = out[0] - p1[0], dy = out[1] - p1[1];
    SCOPED_TRACE(testing::Message() << "case " << i << " bulge " << bulge << " k " << f);
    EXPECT_NEAR(std::hypot(dx, dy), 2 * radius * std::sin(std::fabs(theta) * f / 2), 1e-8 * radius);
    const double cross = (p2[0] - p1[0]) * dy - (p2[1] - p1[1]) * dx;
    EXPECT_TRUE(f > 0.99 || cross * bulge < 0.0) << cross;
    EXPECT_TRUE(sameDirection(out[2], std::atan2(dy, dx) + theta * f / 2, 1e-6));
    EXPECT_TRUE(angleInTurn(1e-9, out[2]));
  }
}

// Every query fed the hostile numbers: no hang, results in range, outputs untouched on 0.
TEST(Hostile, queries_keep_their_documented_results) {
  HostileNumbers h(4);
  for (int i = 0; i < 20000; ++i) {
    const double eps = std::fabs(h());
    double x = kUnwritten, y = kUnwritten, p1[2] = {h(), h()}, p2[2] = {h(), h()};
    double out[3] = {kUnwritten, kUnwritten, kUnwritten};
    const int on = DPointOnLine(eps, h(), h(), h(), h(), h(), h()) +
                   2 * DPointOnArc(eps, h(), h(), h(), h(), h(), h(), h());
    ASSERT_TRUE(on >= 0 && on <= 3);
    const int results[] = {DPointVerL(eps, h(), h(), h(), h(), h(), h(), &x, &y),
                           DPonLdisP(eps, h(), h(), h(), h(), h(), &x, &y),
                           DPnearLine(eps, h(), h(), h(), h(), h(), h(), &x, &y),
                           DPnearArc(eps, h(), h(), h(), h(), h(), h(), h(), &x, &y),
                           DPonAperK(eps, h(), p1, h(), h(), h(), &x, &y)};
    int written = 0;
    for (int r : results) {
      ASSERT_TRUE(r >= 0 && r <= 2);
      written += r;
    }
    ASSERT_TRUE(written > 0 || untouched({x, y}));
    const int along = DPonPLperV(eps, h(), p1, p2, h(), out);
    ASSERT_TRUE(along == 1 ? !std::isfinite(out[2] * eps) || angleInTurn(eps, out[2])
                           : untouched({out[0], out[1], out[2]}));
  }
}

}  // namespace
