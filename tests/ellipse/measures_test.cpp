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
  double x = a, y = b, sum = (a * a - b * b) / 2, weight = 1;
  for (int i = 0; i < 8; ++i, weight *= 2) {
    sum += weight * (x - y) * (x - y) / 4;
    const double mean = (x + y) / 2;
    y = std::sqrt(x * y);
    x = mean;
  }
  return 2 * kPi * (a * a - sum) / x;
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
  EXPECT_EQ(CalEllipseLen(ellipse(0, 0, 3, 2, 0, 5.5, 0.5)),
            CalEllipseLen(ellipse(0, 0, 3, 2, 0, 5.5, 0.5 + kTwoPi)));
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

TEST(EllipseLengthToPAngle, overshoots_by_at_most_one_step) {
  EllipseDraws draws(42, 0.5, 50, 10);
  for (int i = 0; i < 100; ++i) {
    const TSellipse e = draws();
    const double t0 = draws.turn(), length = (0.05 + i / 110.0) * CalEllipseLen(e);
    double t = kSentinel;
    ASSERT_EQ(EllipseLengthToPAngle(e, t0, t, length, i % 2), 1);
    // One step of overshoot plus the left sum's end error of half a step.
    const double walked = lengthIntegral(e.a, e.b, std::min(t, t0), std::max(t, t0));
    EXPECT_NEAR(walked, length, 1.5 * kStep * std::max(e.a, e.b)) << i;
    EXPECT_EQ(t > t0, i % 2 == 1);
  }
  double t = kSentinel;
  EXPECT_EQ(EllipseLengthToPAngle(ellipse(0, 0, 2, 1, 0), 0, t, 10, 1), 0);  // beyond the perimeter
  EXPECT_EQ(t, kSentinel);
  ASSERT_EQ(EllipseLengthToPAngle(ellipse(0, 0, 2, 1, 0), 0.7, t, 0, 1), 1);
  EXPECT_EQ(t, 0.7);
  EXPECT_EQ(CalEllipseArea(ellipse(0, 0, 3, 2, 0.4)), kPi * 6);
  EXPECT_NEAR(CalEllipseArea(ellipse(0, 0, 2, 2, 0, 0.5, 2.0)), 4 * 1.5, 1e-12);  // R^2 w
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
    ASSERT_TRUE(n >= parts - 1 && n <= (margin < 0 ? parts : parts + 1)) << i;
    const double seg = (CalEllipseLen(e) - 2 * std::max(margin, 0.0)) / parts;
    const double first = margin > 0 ? margin : (margin < 0 ? seg / 2 : 0);
    double t = e.start, local[3];
    for (int k = 0; k < n; ++k) {
      WcToEllipse(e, rows[k], local);
      t += std::remainder(std::atan2(local[1] / e.b, local[0] / e.a) - t, kTwoPi);
      // Arc length from the start against where the k-th point belongs, within a step or two.
      EXPECT_NEAR(lengthIntegral(e.a, e.b, e.start, t), first + k * seg,
                  2 * kStep * std::max(e.a, e.b))
          << i;
      const double dx = -e.a * std::sin(t), dy = e.b * std::cos(t);  // increasing parameter
      EXPECT_NEAR(std::remainder(rows[k][2] - e.rotation - std::atan2(dy, dx), kTwoPi), 0, 1e-9);
    }
  }
}

// Every routine on records that break careless code returns promptly with its no-answer.
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
    const bool usable = r.finite && e.a > 0 && e.b > 0;
    const bool axesUsable = std::isfinite(e.a) && std::isfinite(e.b) && e.a > 0 && e.b > 0;
    double p[3] = {0.5, 0.25, 0}, out[4][3], divided[101][3], centre[3], t = 0;
    int n = 100;
    TSinterpoint records[4];
    TSellipse edited = e;
    const TSline line = segment(-3, 0.1, 3, 0.2);
    const TSarc arc{{0, 0, 0, 0}, {0.5, 0, 0}, 1, 0, kPi};
    const int counts[] = {
        SkLineEllipseAided(&line, &e, out),           SkCircleEllipseAided(&arc, &e, out),
        SkEllipseEllipseAided(&e, &e, out),           SkLineEllipsearc(&line, &e, 3, records),
        SkArcEllipsearc(&arc, &e, 3, records),        GetEllipsePerpoint(e, p, out),
        DLthrPtangEllipse(1e-9, e, p, out[0], out[1])};
    for (int c : counts)
      EXPECT_TRUE(c >= -1 && c <= 4 && (usable || c <= 0)) << r.name;
    EXPECT_TRUE(usable || (DPnearEllipseArc(e, p, out[0]) == -1.0 &&
                           DPnearEllipseArc_means(e, p, out[0]) == -1.0))
        << r.name;
    EXPECT_TRUE(axesUsable || EllipseLengthToPAngle(e, 0, t, 1, 1) == 0) << r.name;  // a, b only
    EXPECT_TRUE(r.finite || (std::isnan(CalEllipseLen(e)) && std::isnan(CalEllipseArea(e))));
    EXPECT_EQ(EllipseDivide(e, n, divided, 0), 1);
    EXPECT_TRUE(usable ? n <= 101 : n == 0) << r.name;
    EllipseDistPoint(1e-6, e, ellipse(1, 0, 2, 1, 0), 0.3, centre);
    EXPECT_TRUE(usable ||
                (std::isnan(centre[0]) && CalStretchEllipseArc(1e-9, e, p, p, &edited) == 0));
  }
  for (int n : {0, -5}) {
    double rows[1][3] = {{kSentinel}};
    EXPECT_EQ(EllipseDivide(ellipse(0, 0, 2, 1, 0), n, rows, 0), 1);
    EXPECT_TRUE(n == 0 && rows[0][0] == kSentinel);
  }
}

}  // namespace
