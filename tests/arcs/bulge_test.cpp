// Tarnsysm: planar computational geometry for 2D drafting.
// Bulge segments as arcs, arc extents, the input checks of the arc constructions and the tangent
// continuation of a polyline.

#include "test_support.h"

namespace {

using namespace tarnsysm::test;

const double kQuarter = std::tan(kPi / 8);  // the bulge of a counter-clockwise quarter circle

TEST(PL_ArcParam, table) {
  const double a = std::atan(0.75);
  // clang-format off
  const struct { const char* name; double x1, y1, x2, y2, bulge; int result; double cx, cy, r, sa, ea; } rows[] = {
      {"half_circle_counter_clockwise_below", 0, 0, 2, 0, 1, 1, 1, 0, 1, kPi, kTwoPi},
      {"half_circle_clockwise_above", 0, 0, 2, 0, -1, 1, 1, 0, 1, 0, kPi},
      {"major_arc_centre_right", 0, 0, 2, 0, 2, 1, 1, -0.75, 1.25, kPi - a, kTwoPi + a},
      {"chord_exactly_eps", 0, 0, kE, 0, 1, 1, kE / 2, 0, kE / 2, 0, 0},
      {"zero_bulge", 3, 4, 5, 6, 0, 0, 3, 4, 0, 0, 0},
      {"bulge_within_eps", 3, 4, 5, 6, kE / 8, 0, 3, 4, 0, 0, 0},
      {"coincident_ends", 3, 4, 3, 4, 1, 0, 3, 4, 0, 0, 0},
      {"overflowing_chord", -1e300, 0, 1e300, 0, 1, 0, -1e300, 0, 0, 0, 0},
  };
  // clang-format on
  for (const auto& r : rows) {
    double cx, cy, radius, sa, ea;
    const int got = PL_ArcParam(kE, r.x1, r.y1, r.x2, r.y2, r.bulge, &cx, &cy, &radius, &sa, &ea);
    EXPECT_TRUE(
        gives(got, r.result, {cx, cy, radius, sa, ea}, {r.cx, r.cy, r.r, r.sa, r.ea}, 1e-12))
        << r.name;
  }
}

TEST(get_arc_box, table) {
  const double nearStart = kHalfPi - kE / 2, c = 1000 * std::cos(nearStart),
               s = 1000 * std::sin(nearStart);
  // clang-format off
  const struct { const char* name; double sa, ea, xmin, ymin, xmax, ymax; } rows[] = {
      // centre (1, 2), radius 1000
      // clang-format off
      {"full_circle", 0, kTwoPi + 3 * kE, -999, -998, 1001, 1002},
      {"quadrant_within_eps_of_the_start_is_not_added", nearStart, kPi, -999, 2, 1 + c, 2 + s},
      {"quadrant_within_eps_past_the_end_is_not_added", 0, nearStart, 1 + c, 2, 1001, 2 + s},
  };
  // clang-format on
  for (const auto& r : rows) {
    double centre[2] = {1, 2}, box[4];
    get_arc_box(kE, centre, 1000, r.sa, r.ea, &box[0], &box[1], &box[2], &box[3]);
    EXPECT_TRUE(near({box[0], box[1], box[2], box[3]}, {r.xmin, r.ymin, r.xmax, r.ymax}, 1e-9))
        << r.name;
  }
  // The top stays out when it lies within eps of an end, also a turn up; on radii this large the
  // arc's highest end stays visibly below it.
  const struct {
    const char* name;
    double r, sa, ea, ymax;
  } tops[] = {
      {"exactly_eps_before_the_end", 4096, 0, kHalfPi + kE, 4096 * std::cos(kE)},
      {"a_turn_up_past_the_end", 1e5, kPi, kHalfPi + kTwoPi - kE / 2, 1e5 * std::cos(kE / 2)},
      {"a_turn_up_at_the_start", 1e5, kHalfPi - kE / 2, kHalfPi + kTwoPi + 2 * kE,
       1e5 * std::cos(kE / 2)},
  };
  for (const auto& t : tops) {
    double centre[2] = {0, 0}, box[4];
    get_arc_box(kE, centre, t.r, t.sa, t.ea, &box[0], &box[1], &box[2], &box[3]);
    EXPECT_NEAR(box[3], t.ymax, 1e-6 * t.r / 4096) << t.name;
  }
}

// Random arcs: every point of the arc lies in the box, and every side of the box is reached.
TEST(get_arc_box, random_boxes_hold_their_arcs_tightly) {
  std::mt19937_64 rng(42);
  std::uniform_real_distribution<double> start(-10, 10), sweep(0.01, kTwoPi);
  const double eps = 1e-9;
  for (int i = 0; i < 500; ++i) {
    const double sa = start(rng), ea = sa + sweep(rng);
    double centre[2] = {3, -4}, b[4];
    get_arc_box(eps, centre, 5, sa, ea, &b[0], &b[1], &b[2], &b[3]);
    double lo[2] = {1e9, 1e9}, hi[2] = {-1e9, -1e9};
    for (int k = 0; k <= 4000; ++k) {
      const double t = sa + (ea - sa) * k / 4000, x = 3 + 5 * std::cos(t), y = -4 + 5 * std::sin(t);
      ASSERT_TRUE(x >= b[0] - 2 * eps && x <= b[2] + 2 * eps && y >= b[1] - 2 * eps &&
                  y <= b[3] + 2 * eps)
          << "case " << i << " angle " << t;
      lo[0] = std::min(lo[0], x), lo[1] = std::min(lo[1], y);
      hi[0] = std::max(hi[0], x), hi[1] = std::max(hi[1], y);
    }
    EXPECT_TRUE(std::fabs(lo[0] - b[0]) < 1e-5 && std::fabs(lo[1] - b[1]) < 1e-5 &&
                std::fabs(hi[0] - b[2]) < 1e-5 && std::fabs(hi[1] - b[3]) < 1e-5)
        << "case " << i;
  }
}

TEST(PL_TestVertex, table) {
  const double onEdge = std::sin(std::atan2(1.0, 5.0));  // |sin| of the chord (5, 1) against 0
  double p[2] = {4, 5};
  // a: the direction, length or radius of the kind
  // clang-format off
  const struct { const char* name; int kind; double eps, a, qx, qy, wx, wy; int expected; } rows[] = {
      {"2_ahead_on_the_tangent", 2, kE, 0, 9, 5, 0, 0, 0},
      {"2_behind_on_the_tangent", 2, kE, kTwoPi, -1, 5, 0, 0, 0},
      {"2_sine_exactly_eps", 2, onEdge, 0, 9, 6, 0, 0, 1},
      {"2_off_the_tangent", 2, kE, kHalfPi, 9, 6, 0, 0, 1},
      {"6_half_eps_apart", 6, kE, 0, 4 + kE / 2, 5, 0, 0, 0},
      {"6_exactly_eps_apart", 6, kE, 0, 4, 5 + kE, 0, 0, 1},
      {"7_chord_the_diameter", 7, kE, 10, 1, 1, 0, 0, 1},
      {"7_chord_beyond_the_diameter", 7, kE, std::nextafter(10.0, 11.0), 1, 1, 0, 0, 0},
      {"7_start_on_the_centre", 7, kE, 0, 4, 5 + kE / 2, 0, 0, 0},
      {"8_chord_the_diameter", 8, kE, 2.5, 1, 1, 0, 0, 1},
      {"8_chord_beyond_the_diameter", 8, kE, 2.4999, 1, 1, 0, 0, 0},
      {"8_negative_radius", 8, kE, -10, 4, 5, 0, 0, 0},
      {"8_eps_not_a_number", 8, kNaN, 10, 1, 1, 0, 0, 0},
      {"9_area_exactly_eps", 9, kE, 0, 5, 5, 4, 5 + kE, 1},
      {"9_area_half_eps", 9, kE, 0, 5, 5, 4, 5 + kE / 2, 0},
      {"9_collinear_far_from_the_origin", 9, 1e-9, 0, 4, 66, 4, 6304, 0},
      {"9_nan_point", 9, kE, 0, kNaN, 5, 1, 1, 0},
      {"3_has_nothing_to_check", 3, kNaN, 0, 0, 0, 0, 0, 1},
      {"unknown_kind", 12, kE, 0, 0, 0, 0, 0, 1},
  };
  // clang-format on
  for (const auto& r : rows) {
    double qq[2] = {r.qx, r.qy}, w[2] = {r.wx, r.wy};
    const int got = r.kind == 2   ? PL_TestVertex(2, r.eps, p, r.a, qq)
                    : r.kind == 6 ? PL_TestVertex(6, r.eps, p, qq)
                    : r.kind == 7 ? PL_TestVertex(7, r.eps, p, qq, r.a)
                    : r.kind == 8 ? PL_TestVertex(8, r.eps, p, r.a, qq)
                                  : PL_TestVertex(r.kind, r.eps, p, qq, w);
    EXPECT_EQ(got, r.expected) << r.name;
  }
  double far[3][2] = {{10001.1, 1}, {10001.1, 62}, {10001.1, 6300}};
  EXPECT_EQ(PL_TestVertex(9, 1e-9, far[0], far[1], far[2]), 0);
}

TEST(PL_Arc_PBPP, table) {
  // The new arc starts at p1 = (0, 0).
  // clang-format off
  const struct { const char* name; double p0x, p0y, bulge, p2x, p2y; int result; double newBulge, endDir; } rows[] = {
      {"after_a_line_turning_left", -1, 0, 0, 1, 1, 1, kQuarter, kHalfPi},
      {"after_a_line_turning_right", -1, 0, 0, 1, -1, 1, -kQuarter, 3 * kHalfPi},
      {"after_a_clockwise_half_circle", -2, 0, -1, 1, -1, 1, kQuarter, 0},
      {"after_a_counter_clockwise_quarter", -1, -1, kQuarter, -1, 1, 1, kQuarter, kPi},
      {"end_on_the_tangent_line", -1, 0, 0, 3, 0, 0, kUnwritten, kUnwritten},
  };
  // clang-format on
  for (const auto& r : rows) {
    double p0[2] = {r.p0x, r.p0y}, p1[2] = {0, 0}, p2[2] = {r.p2x, r.p2y};
    double bulge = kUnwritten, dir = kUnwritten;
    const int got = PL_Arc_PBPP(kE, p0, r.bulge, p1, p2, &bulge, &dir);
    EXPECT_TRUE(gives(got, r.result, {bulge}, {r.newBulge}, 1e-12) &&
                (got == 0 ? untouched({dir}) : sameDirection(dir, r.endDir, 1e-12)))
        << r.name;
  }
}

TEST(Hostile, bulge_functions_keep_their_documented_results) {
  HostileNumbers h(6);
  const auto anyNaN = [](std::initializer_list<double> v) {
    return std::any_of(v.begin(), v.end(), [](double x) { return std::isnan(x); });
  };
  for (int i = 0; i < 20000; ++i) {
    const double eps = std::fabs(h()), x1 = h(), y1 = h();
    double cx, cy, r, sa, ea, p[2] = {h(), h()}, q[2] = {h(), h()}, w[2] = {h(), h()};
    if (PL_ArcParam(eps, x1, y1, h(), h(), h(), &cx, &cy, &r, &sa, &ea) == 1)
      ASSERT_TRUE(std::isfinite(cx + cy + r + sa + ea));
    else
      ASSERT_TRUE((cx == x1 || anyNaN({x1})) && (cy == y1 || anyNaN({y1})) && r + sa + ea == 0);
    get_arc_box(eps, p, h(), h(), h(), &cx, &cy, &r, &sa);
    const double a = h();
    // Input that is not a number fails every check.
    const bool nanPQ = anyNaN({eps, p[0], p[1], q[0], q[1]});
    ASSERT_TRUE(!(nanPQ || anyNaN({a})) || PL_TestVertex(2, eps, p, a, q) == 0);
    ASSERT_TRUE(!nanPQ || PL_TestVertex(6, eps, p, q) == 0);
    ASSERT_TRUE(!(nanPQ || anyNaN({a})) || PL_TestVertex(7, eps, p, q, a) == 0);
    ASSERT_TRUE(!(nanPQ || anyNaN({a})) || PL_TestVertex(8, eps, p, a, q) == 0);
    ASSERT_TRUE(!(nanPQ || anyNaN({w[0], w[1]})) || PL_TestVertex(9, eps, p, q, w) == 0);
    double b = kUnwritten, dir = kUnwritten;
    ASSERT_TRUE(PL_Arc_PBPP(eps, p, h(), q, w, &b, &dir) == 1 ? std::isfinite(b + dir)
                                                              : untouched({b, dir}));
  }
}

}  // namespace
