// Tarnsysm: planar computational geometry for 2D drafting.
// Tests of the ellipse length, area figure, walking and division against independent integrals
// and the AGM perimeter, and of every ellipse routine on hostile records.
#include "ellipse_checks.h"

#include <cstring>
#include <memory>

namespace {

using namespace tarnsysm::test;

constexpr double kStep = 0.005;

// The derivative of the speed |dP/dt|, and the speed's integral by composite Simpson in long
// double (error far below 1e-12 relative at this resolution).
double speedSlope(const TSellipse& e, double t) {
  return (e.a * e.a - e.b * e.b) * std::sin(t) * std::cos(t) / speed(e, t);
}
double lengthIntegral(const TSellipse& e, double s, double t) {
  const long double h = (static_cast<long double>(t) - s) / 20000;
  long double sum = speed(e, s) + speed(e, t);
  for (int i = 1; i < 20000; ++i)
    sum += (i % 2 ? 4 : 2) * static_cast<long double>(speed(e, s + i * static_cast<double>(h)));
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

TEST(CalEllipseLen, arcs_match_the_end_corrected_integral_and_wholes_the_agm) {
  EllipseDraws draws(41, 0.5, 50, 3);
  for (int i = 0; i < 200; ++i) {
    TSellipse e = draws();
    e.end = e.start + 0.01 + (kTwoPi - 0.02) * (i + 0.5) / 200;
    const double s = e.start, t = e.end, h = (t - s) / (std::trunc((t - s) / kStep) + 1);
    const double want = lengthIntegral(e, s, t) - h / 2 * (speed(e, t) - speed(e, s)) +
                        h * h / 12 * (speedSlope(e, t) - speedSlope(e, s));
    EXPECT_NEAR(CalEllipseLen(e), want, 1e-10 * want) << i;
  }
  // A wrapping arc stored with end < start is measured across 0.
  EXPECT_EQ(CalEllipseLen(ellipse(0, 0, 3, 2, 0, 5.5, 0.5)),
            CalEllipseLen(ellipse(0, 0, 3, 2, 0, 5.5, 0.5 + kTwoPi)));
  // Whole ones lie within the series' bound of the AGM value.
  const double rows[][3] = {
      {3, 2, 1.5e-9}, {3, 1, 2.7e-6}, {1, 7, 9e-5}, {5, 1e-9, 1.9e-3}, {4, 4, 1e-15}};
  for (const auto& r : rows) {
    const double agm = agmPerimeter(std::max(r[0], r[1]), std::min(r[0], r[1]));
    EXPECT_NEAR(CalEllipseLen(ellipse(1, 2, r[0], r[1], 0.3, 1.0, 1.0 + kTwoPi)), agm, r[2] * agm)
        << r[0] << " " << r[1];
  }
  EXPECT_EQ(CalEllipseArea(ellipse(0, 0, 3, 2, 0.4)), kPi * 6);
  EXPECT_NEAR(CalEllipseArea(ellipse(0, 0, 2, 2, 0, 0.5, 2.0)), 4 * 1.5, 1e-12);  // R^2 w
}

// A walk by a length overshoots by at most one step; division gives parts equal within one step,
// written into exactly the room asked for, with the tangent direction of increasing parameter.
TEST(EllipseLengthToPAngle, walks_and_equal_parts_within_one_step) {
  EllipseDraws draws(43, 0.5, 50, 10);
  for (int i = 0; i < 100; ++i) {
    TSellipse e = draws();
    const double t0 = draws.turn(), length = (0.05 + i / 110.0) * CalEllipseLen(e);
    double t = kSentinel, local[3];
    ASSERT_EQ(EllipseLengthToPAngle(e, t0, t, length, i % 2), 1);
    // One step of overshoot plus the left sum's end error of half a step.
    EXPECT_NEAR(lengthIntegral(e, std::min(t, t0), std::max(t, t0)), length,
                1.5 * kStep * std::max(e.a, e.b))
        << i;
    EXPECT_EQ(t > t0, i % 2 == 1);
    e.start -= (i % 2) * kTwoPi;  // negative starts on odd draws
    e.end = e.start + 0.5 + 5.5 * i / 100;
    const int parts = 2 + i % 9;
    const double margin = i % 3 == 0 ? -1 : (i % 3 == 1 ? 0 : 0.1 * CalEllipseLen(e) / parts);
    int n = parts;
    auto rows = std::make_unique<double[][3]>(parts + 1);
    ASSERT_EQ(EllipseDivide(e, n, rows.get(), margin), 1);
    ASSERT_TRUE(n >= parts - 1 && n <= (margin < 0 ? parts : parts + 1)) << i;
    const double seg = (CalEllipseLen(e) - 2 * std::max(margin, 0.0)) / parts;
    const double first = margin > 0 ? margin : (margin < 0 ? seg / 2 : 0);
    t = e.start;
    for (int k = 0; k < n; ++k) {
      WcToEllipse(e, rows[k], local);
      t += std::remainder(std::atan2(local[1] / e.b, local[0] / e.a) - t, kTwoPi);
      const double dir = std::atan2(e.b * std::cos(t), -e.a * std::sin(t)) + e.rotation;
      EXPECT_NEAR(lengthIntegral(e, e.start, t), first + k * seg, 2 * kStep * std::max(e.a, e.b));
      EXPECT_NEAR(std::remainder(rows[k][2] - dir, kTwoPi), 0, 1e-9) << i;
    }
  }
  // A margin of exactly -1e-10 is still no margin: the same points as 0, not the midpoints.
  const TSellipse arc = ellipse(1, 2, 3, 1, 0.3, 0.5, 2.5);
  double none[4][3], edge[4][3];
  int nNone = 3, nEdge = 3;
  EllipseDivide(arc, nNone, none, 0);
  EllipseDivide(arc, nEdge, edge, -1e-10);
  EXPECT_TRUE(nNone == nEdge && std::memcmp(none, edge, sizeof none[0] * nNone) == 0);
  double t = kSentinel;
  EXPECT_EQ(EllipseLengthToPAngle(ellipse(0, 0, 2, 1, 0), 0, t, 10, 1), 0);  // beyond the perimeter
  EXPECT_EQ(t, kSentinel);
  ASSERT_EQ(EllipseLengthToPAngle(ellipse(0, 0, 2, 1, 0), 0.7, t, 0, 1), 1);
  EXPECT_EQ(t, 0.7);
}

// Every routine on records drawn from hostile numbers (NaN, infinities, 1e300, 0, negative and
// tiny axes) returns promptly with its no-answer, and counts stay within their room.
TEST(EllipseRobustness, hostile_records_and_counts) {
  HostileNumbers pick(44);
  const TSline line = segment(-3, 0.1, 3, 0.2);
  const TSarc arc{{0, 0, 0, 0}, {0.5, 0, 0}, 1, 0, kPi};
  for (int i = 0; i < 3000; ++i) {
    const TSellipse e = i == 0 ? ellipse(0, 0, 2, 1, 1e15, 1e15, -1e15)
                               : ellipse(pick(), pick(), pick(), pick(), pick(), pick(), pick());
    bool finite = true;
    for (const double v : {e.center[0], e.center[1], e.a, e.b, e.rotation, e.start, e.end})
      finite = finite && std::isfinite(v);
    const bool usable = finite && e.a > 0 && e.b > 0;
    const bool axesUsable = std::isfinite(e.a) && std::isfinite(e.b) && e.a > 0 && e.b > 0;
    double p[3] = {0.5, 0.25, 0}, out[4][3], divided[101][3], centre[3], t = 0;
    int n = 100;
    TSinterpoint records[4];
    TSellipse edited = e;
    for (int c : {SkLineEllipseAided(&line, &e, out), SkCircleEllipseAided(&arc, &e, out),
                  SkEllipseEllipseAided(&e, &e, out), SkLineEllipsearc(&line, &e, 3, records),
                  SkArcEllipsearc(&arc, &e, 3, records), GetEllipsePerpoint(e, p, out),
                  DLthrPtangEllipse(1e-9, e, p, out[0], out[1])})
      EXPECT_TRUE(c >= -1 && c <= 4 && (usable || c <= 0)) << i;
    EXPECT_TRUE(usable || (DPnearEllipseArc(e, p, out[0]) == -1.0 &&
                           DPnearEllipseArc_means(e, p, out[0]) == -1.0))
        << i;
    EXPECT_TRUE(axesUsable || EllipseLengthToPAngle(e, 0, t, 1, 1) == 0) << i;  // a, b only
    EXPECT_TRUE(finite || (std::isnan(CalEllipseLen(e)) && std::isnan(CalEllipseArea(e)))) << i;
    EXPECT_TRUE(EllipseDivide(e, n, divided, 0) == 1 && (usable ? n <= 101 : n == 0)) << i;
    EllipseDistPoint(1e-6, e, ellipse(1, 0, 2, 1, 0), 0.3, centre);
    EXPECT_TRUE(usable ||
                (std::isnan(centre[0]) && CalStretchEllipseArc(1e-9, e, p, p, &edited) == 0))
        << i;
  }
  for (int n : {0, -5}) {
    double rows[1][3] = {{kSentinel}};
    EXPECT_TRUE(EllipseDivide(ellipse(0, 0, 2, 1, 0), n, rows, 0) == 1 && n == 0 &&
                rows[0][0] == kSentinel);
  }
}

}  // namespace
