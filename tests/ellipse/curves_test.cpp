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

// A first curve for the quartic cases: circles are ellipses with a == b and rotation 0.
TSarc circleOf(const TSellipse& c) {
  return TSarc{{0, 0, 0, 0}, {c.center[0], c.center[1], 0.0}, c.a, c.start, c.end};
}

// The true crossings of `first` (whole) with `second`: sign changes of second's implicit value
// along first, each refined by bisection. Reports the crossing angle (degrees) and whether some
// extremum of the implicit value came close to 0 (a near-tangency that makes the count unclear).
struct Crossing {
  double x, y, degrees;
};

std::vector<Crossing> crossings(const TSellipse& first, const TSellipse& second, bool* clear) {
  constexpr int kSamples = 2048;
  std::vector<Crossing> found;
  *clear = true;
  const auto f = [&](double t) {
    double p[3];
    pointAt(first, t, p);
    return implicit(second, p[0], p[1]);
  };
  double prev = f(0), prevStep = 0;
  for (int k = 1; k <= kSamples; ++k) {
    const double t1 = kTwoPi * k / kSamples, v = f(t1);
    if ((v - prev) * prevStep < 0 && std::fabs(prev) < 1e-3)
      *clear = false;
    prevStep = v - prev;
    if ((v > 0) != (prev > 0)) {
      double lo = kTwoPi * (k - 1) / kSamples, hi = t1;
      for (int i = 0; i < 60; ++i)
        ((f((lo + hi) / 2) > 0) == (prev > 0) ? lo : hi) = (lo + hi) / 2;
      double p[3];
      pointAt(first, lo, p);
      // Angle between the tangents: first's derivative against second's gradient.
      double q[2];
      toLocal(second, p[0], p[1], q);
      const double gx0 = q[0] / (second.a * second.a), gy0 = q[1] / (second.b * second.b);
      const double cr = std::cos(second.rotation), sr = std::sin(second.rotation);
      const double gx = gx0 * cr - gy0 * sr, gy = gx0 * sr + gy0 * cr;
      const double lx = -first.a * std::sin(lo), ly = first.b * std::cos(lo);
      const double cf = std::cos(first.rotation), sf = std::sin(first.rotation);
      const double tx = lx * cf - ly * sf, ty = lx * sf + ly * cf;
      const double sine = std::fabs(tx * gx + ty * gy) / std::hypot(tx, ty) / std::hypot(gx, gy);
      found.push_back({p[0], p[1], std::asin(std::min(1.0, sine)) * 180 / kPi});
    }
    prev = v;
  }
  return found;
}

// Random quartic cases; the accuracy statistics of the closed-form roots for first semi-axes of
// at least 2, as the nearest-point header states.
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
    double rows[4][3];
    for (auto& r : rows)
      r[0] = r[1] = r[2] = kSentinel;
    const TSarc c = circleOf(first);
    const int n = circles ? SkCircleEllipseAided(&c, &second, rows)
                          : SkEllipseEllipseAided(&first, &second, rows);
    ASSERT_TRUE(n >= 0 && n <= 4);
    for (int k = n; k < 4; ++k)
      ASSERT_EQ(rows[k][0], kSentinel);  // nothing past the count
    bool clear = true;
    const std::vector<Crossing> truth = crossings(first, second, &clear);
    if (clear) {
      ++clearCases;
      countsMatch += n == static_cast<int>(truth.size());
    }
    const double size = std::max({first.a, first.b, second.a, second.b}) + 10;
    for (const Crossing& x : truth) {
      if (x.degrees < 5)
        continue;
      ++steep;
      for (int k = 0; k < n; ++k)
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
    double rows[2][3] = {{kSentinel, kSentinel, kSentinel}, {kSentinel, kSentinel, kSentinel}};
    const int n = SkLineEllipseAided(&line, &e, rows);
    const double size = std::max(e.a, e.b) + 20;
    const double dx = line.end[0] - line.start[0], dy = line.end[1] - line.start[1];
    // The support distance of the ellipse along the line's normal decides the count.
    const double len = std::hypot(dx, dy), nx = -dy / len, ny = dx / len;
    const double lx = nx * std::cos(e.rotation) + ny * std::sin(e.rotation);
    const double ly = -nx * std::sin(e.rotation) + ny * std::cos(e.rotation);
    const double reach = std::hypot(e.a * lx, e.b * ly);
    const double gap =
        std::fabs(nx * (e.center[0] - line.start[0]) + ny * (e.center[1] - line.start[1])) - reach;
    if (std::fabs(gap) > 1e-6 * size) {
      ASSERT_EQ(n, gap < 0 ? 2 : 0) << i;
    }
    for (int k = 0; k < n; ++k) {
      TSline through = line;
      EXPECT_NEAR(DistPointToLine(0, rows[k], through), 0, 1e-9 * size);
      EXPECT_LT(offCurve(e, rows[k][0], rows[k][1]), 1e-9 * size);
      EXPECT_EQ(rows[k][2], 0.0);
    }
    if (n == 2) {
      EXPECT_GT((rows[0][0] - rows[1][0]) * dx + (rows[0][1] - rows[1][1]) * dy, 0);
    } else {
      EXPECT_EQ(rows[1][0], kSentinel);
    }
  }
}

TEST(EllipseIntersections, special_points_and_coincidence) {
  const TSellipse e = ellipse(0, 0, 2, 1, 0);
  // The circle's leftmost point (angle pi, w = infinity) lies on the ellipse.
  const TSarc c{{0, 0, 0, 0}, {-1, 0, 0}, 1, 0, kTwoPi};
  double rows[4][3];
  const int n = SkCircleEllipseAided(&c, &e, rows);
  int atLeft = 0;
  for (int k = 0; k < n; ++k)
    atLeft += std::hypot(rows[k][0] + 2, rows[k][1]) < 1e-6;
  EXPECT_EQ(atLeft, 1);
  // Two equal ellipses coincide: -1 and no rows; the arc filter then keeps nothing.
  double none[4][3] = {{kSentinel}};
  const TSellipse f = ellipse(1, 2, 3, 1, 0.5);
  EXPECT_EQ(SkEllipseEllipseAided(&f, &f, none), -1);
  EXPECT_EQ(none[0][0], kSentinel);
  TSinterpoint out[4];
  EXPECT_EQ(SkEllipsearcEllipsearc(&f, &f, 3, out), 0);
}

struct FilterRow {
  const char* name;
  double x1, y1, x2, y2;
  int mode, n;
  int codes[2];
  double firstY;
};

TEST(EllipseArcIntersections, status_codes_of_segment_and_upper_half) {
  const TSellipse upper = ellipse(0, 0, 2, 1, 0, 0, kPi);
  const FilterRow rows[] = {
      {"segment_ends_inside_the_arc", 0, 3, 0, 1, 0, 1, {2, 0}, 1},
      {"ends_meet", 2, 0, 3, 0, 0, 1, {4, 0}, 0},
      {"extension_dropped_without_bit_1", 0, 3, 0, 2, 0, 0, {0, 0}, 0},
      {"extension_kept_with_bit_1", 0, 3, 0, 2, 1, 1, {8, 0}, 1},
      {"off_both_kept_with_both_bits", 0, 3, 0, 2, 3, 2, {8, 8}, -1},
      {"extension_at_an_arc_end_is_4", 3, 0, 4, 0, 1, 2, {4, 4}, 0},
  };
  for (const FilterRow& r : rows) {
    const TSline line = segment(r.x1, r.y1, r.x2, r.y2);
    // Exactly the room the aided call may fill, on the heap, so overruns are caught.
    auto out = std::make_unique<TSinterpoint[]>(2);
    for (int k = 0; k < 2; ++k)
      out[k].status = -7;
    ASSERT_EQ(SkLineEllipsearc(&line, &upper, r.mode, out.get()), r.n) << r.name;
    for (int k = 0; k < r.n; ++k) {
      EXPECT_EQ(out[k].status, r.codes[k]) << r.name;
      EXPECT_LT(offCurve(upper, out[k].point[0], out[k].point[1]), 1e-12) << r.name;
    }
    EXPECT_NEAR(r.n > 0 ? out[0].point[1] : r.firstY, r.firstY, 1e-12) << r.name;
    for (int k = r.n; k < 2; ++k)
      EXPECT_EQ(out[k].status, -7) << r.name;
  }
  // A circle arc and the ellipse arc meeting inside both, and ending on it.
  const TSarc arc{{0, 0, 0, 0}, {0, 1, 0}, 1, kPi, kTwoPi};  // lower half about (0, 1)
  TSinterpoint out[4];
  const int n = SkArcEllipsearc(&arc, &upper, 0, out);
  ASSERT_GE(n, 1);
  for (int k = 0; k < n; ++k)
    EXPECT_TRUE(out[k].status == 1 || out[k].status == 2);
}

}  // namespace
