// Tarnsysm: planar computational geometry for 2D drafting.
// Tests of the ellipse length, area figure, walking and division against independent integrals
// and the AGM perimeter, and of every ellipse routine on hostile records.
#include "ellipse_checks.h"

#include <gtest/gtest.h>

#include <cmath>
#include <memory>

namespace {

using namespace tarnsysm::test;

constexpr double kStep = 0.005;

// The speed |dP/dt| of the parameterisation, its derivative, and its integral by composite
// Simpson in long double (error far below 1e-12 relative at this resolution).
double speed(double a, double b, double t) {
  return std::hypot(a * std::sin(t), b * std::cos(t));
}
double speedSlope(double a, double b, double t) {
  return (a * a - b * b) * std::sin(t) * std::cos(t) / speed(a, b, t);
}
double lengthIntegral(double a, double b, double s, double e) {
  constexpr int kPanels = 20000;
  const long double h = (static_cast<long double>(e) - s) / kPanels;
  long double sum = speed(a, b, s) + speed(a, b, e);
  for (int i = 1; i < kPanels; ++i)
    sum += (i % 2 ? 4 : 2) * static_cast<long double>(speed(a, b, s + i * static_cast<double>(h)));
  return static_cast<double>(sum * h / 3);
}

// The perimeter by the arithmetic-geometric mean: 2 pi / M(a, b) (a^2 - sum 2^(n-1) c_n^2).
double agmPerimeter(double a, double b) {
  long double x = a, y = b, c2 = static_cast<long double>(a) * a - static_cast<long double>(b) * b;
  long double sum = c2 / 2, weight = 1;
  for (int i = 0; i < 8; ++i) {
    const long double c = (x - y) / 2;
    const long double nx = (x + y) / 2;
    y = std::sqrt(x * y);
    x = nx;
    sum += weight * c * c;
    weight *= 2;
  }
  return static_cast<double>(2 * kPi * (static_cast<long double>(a) * a - sum) / x);
}

TEST(CalEllipseLen, arcs_match_the_integral_with_its_end_corrections) {
  EllipseDraws draws(41, 0.5, 50, 3);
  for (int i = 0; i < 200; ++i) {
    TSellipse e = draws();
    e.end = e.start + 0.01 + (kTwoPi - 0.02) * (i + 0.5) / 200;
    const double span = e.end - e.start;
    const double h = span / (std::trunc(span / kStep) + 1);
    const double expected =
        lengthIntegral(e.a, e.b, e.start, e.end) -
        h / 2 * (speed(e.a, e.b, e.end) - speed(e.a, e.b, e.start)) +
        h * h / 12 * (speedSlope(e.a, e.b, e.end) - speedSlope(e.a, e.b, e.start));
    EXPECT_NEAR(CalEllipseLen(e), expected, 1e-10 * expected) << i;
  }
  // A wrapping arc stored with end < start is measured across 0.
  const TSellipse wrap = ellipse(0, 0, 3, 2, 0, 5.5, 0.5);
  TSellipse lifted = wrap;
  lifted.end += kTwoPi;
  EXPECT_EQ(CalEllipseLen(wrap), CalEllipseLen(lifted));
}

TEST(CalEllipseLen, whole_ellipses_within_the_formula_bound_of_the_agm) {
  const struct {
    double a, b, bound;
  } rows[] = {{3, 2, 1.5e-9}, {3, 1, 2.7e-6}, {1, 7, 9e-5}, {5, 1e-9, 1.9e-3}, {4, 4, 1e-15}};
  for (const auto& r : rows) {
    const double agm = agmPerimeter(std::max(r.a, r.b), std::min(r.a, r.b));
    const double got = CalEllipseLen(ellipse(1, 2, r.a, r.b, 0.3, 1.0, 1.0 + kTwoPi));
    EXPECT_NEAR(got, agm, r.bound * agm) << r.a << " " << r.b;
  }
  EXPECT_NEAR(CalEllipseLen(ellipse(0, 0, 2, 1, 0)), 9.68845, 1e-5);
}

TEST(CalEllipseArea, whole_is_pi_ab_and_a_circular_arc_is_r_squared_w) {
  EXPECT_EQ(CalEllipseArea(ellipse(0, 0, 3, 2, 0.4)), kPi * 6);
  EXPECT_NEAR(CalEllipseArea(ellipse(0, 0, 2, 2, 0, 0.5, 2.0)), 4 * 1.5, 1e-12);
}

TEST(EllipseLengthToPAngle, overshoots_by_at_most_one_step) {
  EllipseDraws draws(42, 0.5, 50, 10);
  for (int i = 0; i < 100; ++i) {
    const TSellipse e = draws();
    const double t0 = draws.turn(), length = (0.05 + i / 110.0) * CalEllipseLen(e);
    const int direction = i % 2;
    double t = kSentinel;
    ASSERT_EQ(EllipseLengthToPAngle(e, t0, t, length, direction), 1);
    const double s = direction == 1 ? t0 : t, end = direction == 1 ? t : t0;
    const double walked = lengthIntegral(e.a, e.b, s, end);
    const double oneStep = kStep * std::max(e.a, e.b);
    // One step of overshoot plus the left sum's end error of half a step.
    EXPECT_NEAR(walked, length, 1.5 * oneStep) << i;
  }
  double t = kSentinel;
  EXPECT_EQ(EllipseLengthToPAngle(ellipse(0, 0, 2, 1, 0), 0, t, 10, 1), 0);
  EXPECT_EQ(t, kSentinel);
  ASSERT_EQ(EllipseLengthToPAngle(ellipse(0, 0, 2, 1, 0), 0.7, t, 0, 1), 1);
  EXPECT_EQ(t, 0.7);
}

TEST(EllipseDivide, parts_are_equal_within_one_step) {
  EllipseDraws draws(43, 0.5, 50, 5);
  for (int i = 0; i < 60; ++i) {
    TSellipse e = draws();
    e.end = e.start + 0.5 + 5.5 * i / 60;
    const int parts = 2 + i % 9;
    const double margin = i % 3 == 0 ? -1 : (i % 3 == 1 ? 0 : 0.1 * CalEllipseLen(e) / parts);
    int n = parts;
    auto rows = std::make_unique<double[][3]>(parts + 1);  // exactly the room asked for
    ASSERT_EQ(EllipseDivide(e, n, rows.get(), margin), 1);
    ASSERT_GE(n, parts - 1) << i;
    ASSERT_LE(n, margin < 0 ? parts : parts + 1) << i;
    const double total = CalEllipseLen(e) - 2 * std::max(margin, 0.0);
    const double seg = total / parts, oneStep = kStep * std::max(e.a, e.b);
    double prevT = e.start;
    for (int k = 0; k < n; ++k) {
      double local[3];
      WcToEllipse(e, rows[k], local);
      double t = std::atan2(local[1] / e.b, local[0] / e.a);
      while (t < prevT - 1e-9)
        t += kTwoPi;
      // Arc length from the start, against where the k-th point belongs.
      const double offset = margin > 0 ? margin : (margin < 0 ? seg / 2 : 0);
      EXPECT_NEAR(lengthIntegral(e.a, e.b, e.start, t), offset + k * seg, 2 * oneStep) << i;
      // The tangent direction of increasing parameter.
      const double dx = -e.a * std::sin(t), dy = e.b * std::cos(t);
      const double dir = std::atan2(dx * std::sin(e.rotation) + dy * std::cos(e.rotation),
                                    dx * std::cos(e.rotation) - dy * std::sin(e.rotation));
      EXPECT_NEAR(std::remainder(rows[k][2] - dir, kTwoPi), 0, 1e-9) << i;
      prevT = t;
    }
  }
}

// Every routine on records that break careless code: it must return promptly with the
// documented no-answer, and write nothing it does not count.
TEST(EllipseRobustness, hostile_records_and_counts) {
  const struct {
    const char* name;
    TSellipse e;
    bool finite;
  } rows[] = {
      {"nan_centre", ellipse(kNaN, 0, 2, 1, 0), false},
      {"infinite_axis", ellipse(0, 0, kInf, 1, 0), false},
      {"nan_rotation", ellipse(0, 0, 2, 1, kNaN, 0, 1), false},
      {"infinite_end", ellipse(0, 0, 2, 1, 0, 0, kInf), false},
      {"zero_axis", ellipse(0, 0, 0, 1, 0, 0, 1), true},
      {"negative_axis", ellipse(0, 0, 2, -1, 0, 0, 1), true},
      {"tiny_axes", ellipse(0, 0, 1e-300, 1e-300, 0, 0, 1), true},
      {"huge", ellipse(1e300, -1e300, 1e300, 1e300, 1e15, -1e300, 1e300), true},
      {"huge_rotation_and_sweep", ellipse(0, 0, 2, 1, 1e15, 1e15, -1e15), true},
  };
  for (const auto& r : rows) {
    const TSellipse& e = r.e;
    const bool searchable = r.finite && e.a > 0 && e.b > 0;
    double p[3] = {0.5, 0.25, 0}, out[4][3];
    TSinterpoint records[4];
    const TSline line = segment(-3, 0.1, 3, 0.2);
    const TSarc arc{{0, 0, 0, 0}, {0.5, 0, 0}, 1, 0, kPi};
    const int counts[] = {
        SkLineEllipseAided(&line, &e, out),           SkCircleEllipseAided(&arc, &e, out),
        SkEllipseEllipseAided(&e, &e, out),           SkLineEllipsearc(&line, &e, 3, records),
        SkArcEllipsearc(&arc, &e, 3, records),        GetEllipsePerpoint(e, p, out),
        DLthrPtangEllipse(1e-9, e, p, out[0], out[1])};
    for (int n : counts) {
      EXPECT_TRUE(n >= -1 && n <= 4) << r.name;
      EXPECT_TRUE(searchable || n == 0 || n == -1) << r.name;
    }
    if (!searchable) {
      EXPECT_EQ(DPnearEllipseArc(e, p, out[0]), -1.0) << r.name;
      EXPECT_EQ(DPnearEllipseArc_means(e, p, out[0]), -1.0) << r.name;
    }
    double t = 0;  // only a and b are read
    const bool axesUsable = std::isfinite(e.a) && std::isfinite(e.b) && e.a > 0 && e.b > 0;
    EXPECT_TRUE(axesUsable || EllipseLengthToPAngle(e, 0, t, 1, 1) == 0) << r.name;
    if (!r.finite) {
      EXPECT_TRUE(std::isnan(CalEllipseLen(e))) << r.name;
      EXPECT_TRUE(std::isnan(CalEllipseArea(e))) << r.name;
    }
    int n = 100;
    double rows[101][3];
    EXPECT_EQ(EllipseDivide(e, n, rows, 0), 1);
    EXPECT_TRUE(searchable || n == 0) << r.name;
    EXPECT_LE(n, 101) << r.name;
    double centre[3];
    EllipseDistPoint(1e-6, e, ellipse(1, 0, 2, 1, 0), 0.3, centre);
    EXPECT_TRUE(searchable || std::isnan(centre[0])) << r.name;
    TSellipse edited = e;
    EXPECT_TRUE(searchable || CalStretchEllipseArc(1e-9, e, p, p, &edited) == 0) << r.name;
  }
  for (int n : {0, -5}) {
    double rows[1][3] = {{kSentinel}};
    EXPECT_EQ(EllipseDivide(ellipse(0, 0, 2, 1, 0), n, rows, 0), 1);
    EXPECT_EQ(n, 0);
    EXPECT_EQ(rows[0][0], kSentinel);
  }
}

}  // namespace
