// Tarnsysm: planar computational geometry for 2D drafting.
// Tests of the nearest points, feet of normals, tangent points, normal offsets and fillet
// centres of ellipses, against dense sampling and the geometry of normals and tangents.
#include "ellipse_checks.h"

#include <gtest/gtest.h>

#include <cmath>

namespace {

using namespace tarnsysm::test;

// Distance from p to the normal line at the curve point `foot` (0 when p lies on that normal),
// or with `tangent` to the tangent line there.
double offLine(const TSellipse& e, const double* foot, const double* p, bool tangent = false) {
  double f[2], q[2], n[2];
  toLocal(e, foot[0], foot[1], f);
  toLocal(e, p[0], p[1], q);
  normalAt(e, foot[0], foot[1], n);
  const double cross = tangent ? n[0] * (q[0] - f[0]) + n[1] * (q[1] - f[1])
                               : n[0] * (q[1] - f[1]) - n[1] * (q[0] - f[0]);
  return std::fabs(cross) / std::hypot(n[0], n[1]);
}

TEST(DPnearEllipseArc, no_farther_than_dense_sampling) {
  EllipseDraws draws(31, 2, 20, 20);
  for (int i = 0; i < 300; ++i) {
    TSellipse e = draws();
    if (i % 3 == 0)
      e.end = e.start + kTwoPi;  // whole
    const double size = std::max(e.a, e.b);
    double p[3] = {e.center[0] + 1.5 * size * std::cos(i), e.center[1] + size * std::sin(3 * i), 0};
    double out[3] = {kSentinel, kSentinel, kSentinel};
    const double d = DPnearEllipseArc(e, p, out);
    ASSERT_GE(d, 0.0) << i;
    // The closed-form feet are good to a few 1e-6 of the size at worst (see the header).
    EXPECT_NEAR(d, std::hypot(out[0] - p[0], out[1] - p[1]), 1e-6 * size);
    EXPECT_LT(offCurve(e, out[0], out[1]), 1e-6 * size) << i;
    EXPECT_EQ(out[2], 0.0);
    EXPECT_LE(d, sampledDistance(e, p[0], p[1], 20000) + 1e-7 * size) << i;
  }
  // On the curve: 0 and p itself, even off the arc; the centre takes the lower second-axis end.
  const TSellipse upper = ellipse(0, 0, 3, 1, 0, 0, kPi);
  double below[3] = {0, -1, 5}, centre[3] = {0, 0, 0}, out[3];
  EXPECT_EQ(DPnearEllipseArc(upper, below, out), 0.0);
  EXPECT_TRUE(out[1] == -1.0 && out[2] == 0.0);
  EXPECT_EQ(DPnearEllipseArc(upper, centre, out), 1.0);
  EXPECT_NEAR(out[1], -1.0, 1e-15);
}

// Sizes from 2: the tangent quadratic's and the quartic's tolerances are absolute.
TEST(EllipseNormals, feet_tangents_and_normal_offsets) {
  EllipseDraws draws(32, 2, 20, 10);
  int inside = 0;
  for (int i = 0; i < 400; ++i) {
    TSellipse e = draws();
    e.end = e.start + kTwoPi;
    const double size = std::max(e.a, e.b), c2 = std::fabs(e.a * e.a - e.b * e.b), t = draws.turn();
    double p[3], t1[3], t2[3], on[3], q[3], rows[4][3], centre[3] = {e.center[0], e.center[1], 0};
    pointAt(ellipse(e.center[0], e.center[1], 2 * e.a, 1.5 * e.b, e.rotation), t, p);
    ASSERT_EQ(DLthrPtangEllipse(1e-9, e, p, t1, t2), 2) << i;
    for (const double* r : {t1, t2})
      EXPECT_LT(std::max(offCurve(e, r[0], r[1]), offLine(e, r, p, true)), 1e-8 * size);
    EXPECT_EQ(DLthrPtangEllipse(1e-9, e, centre, t1, t2), 0);
    // An offset shorter than the smallest radius of curvature keeps its side and distance.
    const double dist = 0.5 * std::min(e.a, e.b) * std::min(e.a, e.b) / size;
    pointAt(e, t, on);
    for (int side : {1, -1}) {
      EllipseAngleDistPoint(e, side, t, dist, q);
      EXPECT_NEAR(std::hypot(q[0] - on[0], q[1] - on[1]), dist, 1e-12 * size);
      EXPECT_TRUE(PointInEllipse(e, q) == side && offLine(e, on, q) < 1e-12 * size);
    }
    // Feet of normals from well inside (0.4) or outside (1.8) the evolute
    // (a x)^(2/3) + (b y)^(2/3) = c2^(2/3); near an axis line they degrade (see the header).
    const double s = i % 2 == 0 ? 0.4 : 1.8;
    double local[3] = {s * c2 / e.a * std::pow(std::cos(t), 3),
                       s * c2 / e.b * std::pow(std::sin(t), 3), 0};
    if (std::fabs(local[0]) < 1e-2 * size || std::fabs(local[1]) < 1e-2 * size)
      continue;
    EllipseToWc(e, local, p);
    const int n = GetEllipsePerpoint(e, p, rows);
    ASSERT_EQ(n, i % 2 == 0 ? 4 : 2) << i;
    inside += n == 4;
    for (int k = 0; k < n; ++k)
      EXPECT_LT(std::max(offCurve(e, rows[k][0], rows[k][1]), offLine(e, rows[k], p)), 1e-6 * size);
  }
  EXPECT_GT(inside, 100);
}

TEST(DLineNearEllipse, tangent_point_parallel_to_the_line) {
  const TSellipse e = ellipse(0, 0, 3, 1, 0, 0.5, 3.0);
  double out[3] = {kSentinel, kSentinel, kSentinel};
  EXPECT_EQ(DLineNearEllipse(segment(-5, 0, 5, 0), e, out), 0.0);
  EXPECT_TRUE(out[0] == -3.0 && out[2] == kSentinel);  // a tie goes to the second point
  // y = x + 5 lies above the ellipse: both tangent points of slope 1 are right of it and the
  // smaller signed distance picks the lower, farther one (parameter about 5.1, off the arc).
  const double d = DLineNearEllipse(segment(0, 5, 1, 6), e, out);
  EXPECT_NEAR(-(out[0] / 9) / out[1], 1.0, 1e-14);  // slope of the tangent
  EXPECT_NEAR(d, (out[1] - out[0] - 5) / std::sqrt(2.0), 1e-14);
  EXPECT_TRUE(d < 0 && out[0] > 0);
  EXPECT_EQ(DLineNearEllipsearc(segment(0, 5, 1, 6), e, out), -1.0);
  EXPECT_EQ(DLineNearEllipsearc(segment(0, 5, 1, 6), ellipse(0, 0, 3, 1, 0, 4, 6), out), d);
  // The one-step estimate moves p by the distance it returns (frame = world here).
  double p[3] = {2, 0.3, 0};
  const double r = DPnearEllipseArc_means(ellipse(0, 0, 3, 1, 0), p, out);
  ASSERT_GE(r, 0.0);
  EXPECT_NEAR(std::hypot(out[0] - p[0], out[1] - p[1]), r, 1e-12);
}

TEST(EllipseDistPoint, fillet_centres_touch_both_arcs_on_the_stated_sides) {
  EllipseDraws draws(34, 2, 10, 3);
  int found = 0;
  for (int i = 0; i < 40; ++i) {
    const TSellipse e1 = draws();
    TSellipse e2 = draws();
    e2.center[0] = e1.center[0] + e1.a * 0.8;  // near enough to cross
    e2.center[1] = e1.center[1];
    const double d = 0.2 + 0.3 * (i % 4);
    double out[3] = {kSentinel, kSentinel, kSentinel}, c1[3] = {e1.center[0], e1.center[1], 0};
    ASSERT_EQ(EllipseDistPoint(1e-7, e1, e2, i % 2 ? -d : d, out), 1);
    EXPECT_EQ(out[2], 0.0);
    if (std::isnan(out[0]))
      continue;
    ++found;
    EXPECT_NEAR(sampledDistance(e1, out[0], out[1], 100000), d, 1e-6) << i;
    EXPECT_NEAR(sampledDistance(e2, out[0], out[1], 100000), d, 1e-6) << i;
    EXPECT_EQ(PointInEllipse(e1, out), PointInEllipse(e1, e2.center) == 1 ? 1 : -1) << i;
    EXPECT_EQ(PointInEllipse(e2, out), PointInEllipse(e2, c1) == 1 ? 1 : -1) << i;
  }
  EXPECT_GT(found, 10);
  double out[3];
  EllipseDistPoint(1e-3, ellipse(0, 0, 2, 1, 0), ellipse(1, 0, 2, 1, 0), 1e-4, out);  // |d| < eps
  EXPECT_TRUE(std::isnan(out[0]));
}

}  // namespace
