// Tarnsysm: planar computational geometry for 2D drafting.
// Tests of the ellipse intersections: points on both curves, counts against sign changes along
// the first curve, the arc filter's status codes, and rows written no further than counted.
#include "ellipse_checks.h"

#include <gtest/gtest.h>

#include <cmath>
#include <memory>
#include <vector>

namespace {

using namespace tarnsysm::test;

struct Crossing {
  double x, y, degrees;
};

// The crossings of `first` (whole) with `second`: sign changes of second's implicit value along
// first, refined by bisection, with the angle between the curves. `clear` turns false when an
// extremum of the implicit value comes near 0 (near-tangency: the count is unclear).
std::vector<Crossing> crossings(const TSellipse& first, const TSellipse& second, bool* clear) {
  constexpr int kSamples = 2048;
  std::vector<Crossing> found;
  double p[3], n[2];
  const auto f = [&](double t) {
    pointAt(first, t, p);
    return implicit(second, p[0], p[1]);
  };
  double prev = f(0), prevStep = 0;
  *clear = true;
  for (int k = 1; k <= kSamples; ++k) {
    const double v = f(kTwoPi * k / kSamples);
    *clear = *clear && !((v - prev) * prevStep < 0 && std::fabs(prev) < 1e-3);
    prevStep = v - prev;
    if ((v > 0) != (prev > 0)) {
      double lo = kTwoPi * (k - 1) / kSamples, hi = kTwoPi * k / kSamples;
      for (int i = 0; i < 60; ++i)
        ((f((lo + hi) / 2) > 0) == (prev > 0) ? lo : hi) = (lo + hi) / 2;
      f(lo);
      normalAt(second, p[0], p[1], n);  // in second's frame; first's tangent turned into it
      const double tl = first.rotation - second.rotation;
      const double lx = -first.a * std::sin(lo), ly = first.b * std::cos(lo);
      const double tx = lx * std::cos(tl) - ly * std::sin(tl),
                   ty = lx * std::sin(tl) + ly * std::cos(tl);
      const double sine =
          std::fabs(tx * n[0] + ty * n[1]) / std::hypot(tx, ty) / std::hypot(n[0], n[1]);
      found.push_back({p[0], p[1], std::asin(std::min(1.0, sine)) * 180 / kPi});
    }
    prev = v;
  }
  return found;
}

// Random quartic cases (first semi-axes from 2, ratios to 10): at least 99% of the crossings
// steeper than 5 degrees are found within 1e-9 of the size, and the counts match.
void checkQuarticCases(bool circles, unsigned seed) {
  EllipseDraws draws(seed, 2, 20, 10);
  int steep = 0, steepHit = 0, clearCases = 0, countsMatch = 0;
  for (int i = 0; i < 1000; ++i) {
    TSellipse first = draws();
    const TSellipse second = draws();
    if (circles) {
      first.b = first.a;
      first.rotation = 0;
    }
    double rows[4][3] = {{kSentinel}, {kSentinel}, {kSentinel}, {kSentinel}};
    const TSarc c{{0, 0, 0, 0}, {first.center[0], first.center[1], 0}, first.a, 0, kTwoPi};
    const int n = circles ? SkCircleEllipseAided(&c, &second, rows)
                          : SkEllipseEllipseAided(&first, &second, rows);
    ASSERT_TRUE(n >= 0 && n <= 4);
    ASSERT_TRUE(n == 4 || rows[n][0] == kSentinel);  // nothing past the count
    bool clear = true;
    const std::vector<Crossing> truth = crossings(first, second, &clear);
    clearCases += clear;
    countsMatch += clear && n == static_cast<int>(truth.size());
    const double size = std::max({first.a, first.b, second.a, second.b}) + 10;
    for (const Crossing& x : truth) {
      steep += x.degrees >= 5;
      for (int k = 0; k < n && x.degrees >= 5; ++k)
        if (std::hypot(rows[k][0] - x.x, rows[k][1] - x.y) < 1e-9 * size) {
          ++steepHit;
          break;
        }
    }
  }
  EXPECT_GE(steepHit, 0.99 * steep);
  EXPECT_GE(countsMatch, 0.99 * clearCases);
  EXPECT_GT(clearCases, 700);
}

TEST(EllipseIntersections, circle_crossings_lie_on_both_curves) {
  checkQuarticCases(true, 21);
}

TEST(EllipseIntersections, ellipse_crossings_lie_on_both_curves) {
  checkQuarticCases(false, 22);
}

TEST(EllipseIntersections, line_crossings_lie_on_both_and_ahead_first) {
  EllipseDraws draws(23, 0.01, 50, 50);
  for (int i = 0; i < 2000; ++i) {
    const TSellipse e = draws();
    const TSline line = segment(draws.coord(), draws.coord(), draws.coord(), draws.coord());
    double rows[2][3] = {{kSentinel}, {kSentinel}};
    const int n = SkLineEllipseAided(&line, &e, rows);
    const double size = std::max(e.a, e.b) + 20;
    const double dx = line.end[0] - line.start[0], dy = line.end[1] - line.start[1];
    // The count follows from the centre's distance to the line against the ellipse's reach.
    const double nx = -dy / std::hypot(dx, dy), ny = dx / std::hypot(dx, dy);
    const double reach = std::hypot(e.a * (nx * std::cos(e.rotation) + ny * std::sin(e.rotation)),
                                    e.b * (ny * std::cos(e.rotation) - nx * std::sin(e.rotation)));
    const double gap =
        std::fabs(nx * (e.center[0] - line.start[0]) + ny * (e.center[1] - line.start[1])) - reach;
    ASSERT_TRUE(std::fabs(gap) < 1e-6 * size || n == (gap < 0 ? 2 : 0)) << i;
    for (int k = 0; k < n; ++k) {
      EXPECT_NEAR(DistPointToLine(0, rows[k], line), 0, 1e-9 * size);
      EXPECT_LT(offCurve(e, rows[k][0], rows[k][1]), 1e-9 * size);
    }
    EXPECT_TRUE(n < 2 || (rows[0][0] - rows[1][0]) * dx + (rows[0][1] - rows[1][1]) * dy > 0);
    EXPECT_TRUE(n == 2 || rows[1][0] == kSentinel);
  }
}

TEST(EllipseIntersections, special_points_and_coincidence) {
  // The circle's leftmost point (angle pi, w = infinity) lies on the ellipse: written once.
  const TSellipse e = ellipse(0, 0, 2, 1, 0), f = ellipse(1, 2, 3, 1, 0.5);
  const TSarc c{{0, 0, 0, 0}, {-1, 0, 0}, 1, 0, kTwoPi};
  double rows[4][3] = {{kSentinel}};
  const int n = SkCircleEllipseAided(&c, &e, rows);
  int atLeft = 0;
  for (int k = 0; k < n; ++k)
    atLeft += std::hypot(rows[k][0] + 2, rows[k][1]) < 1e-6;
  EXPECT_EQ(atLeft, 1);
  // Two equal ellipses coincide: -1 and no rows; the arc filter then keeps nothing.
  rows[0][0] = kSentinel;
  EXPECT_EQ(SkEllipseEllipseAided(&f, &f, rows), -1);
  EXPECT_EQ(rows[0][0], kSentinel);
  TSinterpoint out[4];
  EXPECT_EQ(SkEllipsearcEllipsearc(&f, &f, 3, out), 0);
}

TEST(EllipseArcIntersections, status_codes_of_segment_and_upper_half) {
  const TSellipse upper = ellipse(0, 0, 2, 1, 0, 0, kPi);
  const struct {
    const char* name;
    double x1, y1, x2, y2;
    int mode, n, codes[2];
  } rows[] = {
      {"segment_ends_inside_the_arc", 0, 3, 0, 1, 0, 1, {2}},
      {"ends_meet", 2, 0, 3, 0, 0, 1, {4}},
      {"extension_dropped_without_bit_1", 0, 3, 0, 2, 0, 0, {}},
      {"extension_kept_with_bit_1", 0, 3, 0, 2, 1, 1, {8}},
      {"off_both_kept_with_both_bits", 0, 3, 0, 2, 3, 2, {8, 8}},
      {"extension_at_an_arc_end_is_4", 3, 0, 4, 0, 1, 2, {4, 4}},
  };
  for (const auto& r : rows) {
    const TSline line = segment(r.x1, r.y1, r.x2, r.y2);
    auto out = std::make_unique<TSinterpoint[]>(2);  // exactly the room, so overruns show
    out[0].status = out[1].status = -7;
    ASSERT_EQ(SkLineEllipsearc(&line, &upper, r.mode, out.get()), r.n) << r.name;
    for (int k = 0; k < 2; ++k) {
      EXPECT_EQ(out[k].status, k < r.n ? r.codes[k] : -7) << r.name;
      EXPECT_TRUE(k >= r.n || offCurve(upper, out[k].point[0], out[k].point[1]) < 1e-12);
    }
  }
  // The lower half of the unit circle about (0, 1) crosses the upper half at y = (sqrt 52 - 2) / 6.
  const TSarc arc{{0, 0, 0, 0}, {0, 1, 0}, 1, kPi, kTwoPi};
  TSinterpoint out[4];
  ASSERT_EQ(SkArcEllipsearc(&arc, &upper, 0, out), 2);
  EXPECT_TRUE(out[0].status == 1 && out[1].status == 1);
  EXPECT_NEAR(out[1].point[1], (std::sqrt(52.0) - 2) / 6, 1e-12);
}

}  // namespace
