// Tarnsysm: planar computational geometry for 2D drafting.
// Tests of the plane transform, the ellipse frame and its small queries, and the arcs built and
// edited from drafting input.
#include "ellipse_checks.h"

#include <gtest/gtest.h>

#include <cmath>

namespace {

using namespace tarnsysm::test;

void expectSameMatrix(const Matrix<3>& x, const Matrix<3>& y, double tol) {
  for (int i = 0; i < 9; ++i)
    EXPECT_NEAR(x.m[i / 3][i % 3], y.m[i / 3][i % 3], tol) << i;
}

TEST(Matrix3, products_inverse_and_guards) {
  Matrix3 a, id, shift, turn, swap;
  for (int i = 0; i < 9; ++i)
    a.m[i / 3][i % 3] = 1 + i;  // rows 1 2 3 / 4 5 6 / 7 8 9
  double p[3] = {5, 6, 7};
  TransPoint(id, p);  // the default is the zero matrix
  EXPECT_TRUE(p[0] == 0 && p[1] == 0 && p[2] == 0);
  EXPECT_EQ((a * a).m[2][1], 126.0);  // 14 + 40 + 72
  EXPECT_EQ((a + a - a * 2.0 + a / 2.0).m[1][2], 3.0);
  Matrix3 guarded = a / 1e-9;  // a divisor within 1e-8 leaves the values
  guarded /= 1e-9;
  expectSameMatrix(guarded, a, 0.0);

  // Row vectors: the translation stands in the third row and A * B applies A first.
  id.SetIdentity();
  shift.SetShift(3, 4);
  turn.SetRotate(kHalfPi);
  double q[3] = {1, 0, 7};
  shift *= turn;
  TransPoint(shift, q);
  EXPECT_NEAR(q[0], -4.0, 1e-15);
  EXPECT_NEAR(q[1], 4.0, 1e-15);
  EXPECT_EQ(q[2], 0.0);
  expectSameMatrix(shift * shift.Inverse(), id, 1e-15);
  swap.m[0][1] = 1;  // m[0][0] = 0: rows 0 and 1 are swapped before eliminating
  swap.m[1][0] = 2;
  swap.m[2][2] = 1;
  expectSameMatrix(swap.Inverse() * swap, id, 1e-15);
  a.m[0][0] = 1e-9;  // no entry of the first column above 1e-8: returned as it came
  a.m[1][0] = 0;
  a.m[2][0] = -1e-9;
  expectSameMatrix(a.Inverse(), a, 0.0);
}

TEST(EllipseFrame, round_trips_parameters_and_tangent_points) {
  EllipseDraws draws(11, 0.5, 50, 20);
  for (int i = 0; i < 200; ++i) {
    const TSellipse e = draws();
    const double t = draws.turn(), tol = 1e-12 * 60;
    double world[3], hand[3], local[3], back[3] = {kSentinel, kSentinel, kSentinel};
    EllipsePAngleToPoint(e.center, e.a, e.b, e.rotation, t, world);
    pointAt(e, t, hand);
    EXPECT_NEAR(world[0], hand[0], tol);
    WcToEllipse(e, world, local);
    EXPECT_NEAR(local[1], e.b * std::sin(t), tol);
    EllipseToWc(e, local, back);
    EXPECT_NEAR(back[0], world[0], tol);
    EXPECT_EQ(back[2], 0.0);
    const double polar = std::atan2(local[1], local[0]);
    EXPECT_NEAR(std::remainder(AngleToParameter(e.a, e.b, polar) - t, kTwoPi), 0, 1e-9);
    EXPECT_NEAR(std::remainder(ParametertoAngle(e.a, e.b, t) - polar, kTwoPi), 0, 1e-9);

    // Tangent points of a direction: on the curve, normal across the direction, p2 untouched.
    double p1[3] = {0, 0, kSentinel}, p2[3] = {kSentinel}, p3[3], n[2];
    GetEllipseAngleTanPoint(1e-9, e, t, p1, p2, p3);
    EXPECT_TRUE(p2[0] == kSentinel && p1[2] == kSentinel);
    for (const double* r : {p1, p3}) {
      EXPECT_LT(offCurve(e, r[0], r[1]), 1e-11 * 60);
      normalAt(e, r[0], r[1], n);
      const double c = std::cos(t - e.rotation), s = std::sin(t - e.rotation);
      EXPECT_NEAR((n[0] * c + n[1] * s) / std::hypot(n[0], n[1]), 0, 1e-12);
    }
  }
  EXPECT_NEAR(AngleToParameter(2, 1, kPi / 4), std::atan(2.0), 1e-15);
  EXPECT_EQ(AngleToParameter(2, 1, -kHalfPi), 3 * kHalfPi);
}

TEST(EllipseFrame, membership_and_signed_distance) {
  const TSellipse e = ellipse(1, 2, 3, 1, 0.0);
  double centre[3] = {1, 2, 0}, onCurve[3] = {4, 2, 0}, up[3] = {0, 1, 0}, down[3] = {0, -1, 0};
  EXPECT_EQ(PointInEllipse(e, centre), 1);
  EXPECT_EQ(PointInEllipse(e, onCurve), -1);
  EXPECT_EQ(PointInArcEndPoint(kTwoPi - 5e-6, 10, 0, 1), 1);  // a turn below the start
  EXPECT_EQ(PointInArcEndPoint(1 + 1.1e-5, 10, 0, 1), 0);
  EXPECT_EQ(PointInArc(0.1, 1, 5.0, kTwoPi + 1.0), 1);
  EXPECT_EQ(PointInArc(4.0, 1, 5.0, kTwoPi + 1.0), 0);
  EXPECT_EQ(DistPointToLine(1e-9, up, segment(0, 0, 1, 0)), 1.0);
  EXPECT_EQ(DistPointToLine(1e-9, down, segment(0, 0, 1, 0)), -1.0);
  EXPECT_EQ(DistPointToLine(1e-9, down, segment(0, 2, 0, 2)), 3.0);  // a point, not a line
  // Highest points: the top of an upper half about the origin; of the quarter from (2, 0) to
  // (0, 1) about (3, 4), the point of parameter pi/4, whose tangent is parallel to the chord.
  double h[3];
  GetEllipseHighestPoint(ellipse(0, 0, 2, 1, 0, 0, kPi), h);
  EXPECT_NEAR(h[1], 1.0, 1e-15);
  EXPECT_NEAR(GetEllipseArcHeight(ellipse(3, 4, 2, 1, 0, 0, kHalfPi)),
              (2 * std::sqrt(2.0) - 2) / std::sqrt(5.0), 1e-15);
}

TEST(EllipseArcs, built_arcs_pass_through_their_points) {
  EllipseDraws draws(14, 1, 20, 5);
  for (int i = 0; i < 200; ++i) {
    const TSellipse shape = draws();
    const double t0 = draws.turn(), t1 = t0 + 0.1 + draws.turn() / 2;
    const double t[3] = {t0, t1, t1 + 0.1 + draws.turn() / 2};
    const bool clockwise = i % 2 == 1;
    double p[3][3], s[3], e[3], local[3];
    for (int k = 0; k < 3; ++k)
      pointAt(shape, t[clockwise ? 2 - k : k], p[k]);
    TSellipse out;
    ASSERT_EQ(CalEllipseArc(1e-9, shape.b / shape.a, shape.rotation, p[0], p[1], p[2], &out),
              clockwise ? 2 : 1);
    const double tol = 1e-12 * (std::max(shape.a, shape.b) + 10);
    EXPECT_NEAR(out.a, shape.a, tol);
    EXPECT_NEAR(out.b, shape.b, tol);
    pointAt(out, out.start, s);
    pointAt(out, out.end, e);
    EXPECT_NEAR(s[0], p[clockwise ? 2 : 0][0], tol);
    EXPECT_NEAR(e[1], p[clockwise ? 0 : 2][1], tol);
    WcToEllipse(out, p[1], local);  // the middle point lies inside the sweep
    const double mid = std::atan2(local[1] / out.b, local[0] / out.a);
    EXPECT_EQ(PointInArc(mid < 0 ? mid + kTwoPi : mid, 1e4, out.start, out.end), 1);

    // Rays through the built arc's ends rebuild the same sweep.
    TSellipse again;
    ASSERT_EQ(CalEllipseArc(1e-9, out.center, out.a * 2, out.b * 2, out.rotation, s, e, &again), 1);
    EXPECT_NEAR(std::remainder(again.start - out.start, kTwoPi), 0, 1e-12);
    EXPECT_NEAR(again.end - again.start, out.end - out.start, 1e-11);
    EXPECT_TRUE(again.start >= 0 && again.start < kTwoPi);
  }
  double c[3] = {0, 0, 0}, q[3] = {1, 1, 0};
  TSellipse whole;
  ASSERT_EQ(CalEllipseArc(1e-9, c, 2, 1, 0, q, q, &whole), 1);
  EXPECT_EQ(whole.end - whole.start, kTwoPi);
}

TEST(EllipseArcs, a_stretch_changes_only_its_grip) {
  const TSellipse e = ellipse(1, 2, 4, 2, 0.3, 0.5, 2.5);
  double to[3], far[3] = {50, 50, 0};
  pointAt(ellipse(1, 2, 5, 3, 0.3), 1.2, to);  // parameter 1.2 of a bigger ellipse
  const double ray = std::atan2(3 * std::sin(1.2) / 2, 5 * std::cos(1.2) / 4);
  const double gripT[] = {kNaN, 0.5, 2.5, kPi, 3 * kHalfPi};  // NaN: the centre
  for (int code = 1; code <= 5; ++code) {
    double grip[3] = {1, 2, 0};
    if (code > 1)
      pointAt(e, gripT[code - 1], grip);
    TSellipse out = e;
    ASSERT_EQ(CalStretchEllipseArc(1e-9, e, grip, to, &out), code);
    const double expected[8] = {code == 1 ? to[0] : 1,
                                code == 1 ? to[1] : 2,
                                0,
                                code == 4 ? 5 * std::cos(1.2) : 4,
                                code == 5 ? 3 * std::sin(1.2) : 2,
                                0.3,
                                code == 2 ? ray : 0.5,
                                code == 3 ? ray : 2.5};
    for (int k = 0; k < 8; ++k)
      EXPECT_NEAR((&out.center[0])[k], expected[k], 1e-12) << code << " field " << k;
  }
  TSellipse out = e;
  EXPECT_EQ(CalStretchEllipseArc(1e-9, e, far, far, &out), 0);
}

}  // namespace
