// Tarnsysm: planar computational geometry for 2D drafting.
// Tests of the plane transform, the ellipse frame and its small queries, and the arcs built and
// edited from drafting input.
#include "ellipse_checks.h"

#include <gtest/gtest.h>

#include <cmath>

namespace {

using namespace tarnsysm::test;

Matrix3 filled(double first) {
  Matrix3 m;
  for (int i = 0; i < 3; ++i)
    for (int j = 0; j < 3; ++j)
      m.m[i][j] = first + 3 * i + j;
  return m;
}

void expectSameMatrix(const Matrix<3>& x, const Matrix<3>& y, double tol) {
  for (int i = 0; i < 3; ++i)
    for (int j = 0; j < 3; ++j)
      EXPECT_NEAR(x.m[i][j], y.m[i][j], tol) << i << "," << j;
}

TEST(Matrix3, arithmetic_products_and_guards) {
  double p[3] = {5, 6, 7};
  Matrix3 zero;
  TransPoint(zero, p);
  EXPECT_EQ(p[0], 0.0);
  EXPECT_EQ(p[1], 0.0);
  EXPECT_EQ(p[2], 0.0);

  const Matrix3 a = filled(1);  // rows 1 2 3 / 4 5 6 / 7 8 9
  Matrix3 product = a * a;
  EXPECT_EQ(product.m[0][0], 30.0);   // 1 + 8 + 21
  EXPECT_EQ(product.m[2][1], 126.0);  // 14 + 40 + 72
  Matrix3 sum = a + a - a * 2.0 + a / 2.0;
  EXPECT_EQ(sum.m[1][2], 3.0);
  Matrix3 guarded = a / 1e-9;  // a divisor within 1e-8 leaves the values
  guarded /= 1e-9;
  expectSameMatrix(guarded, a, 0.0);
  Matrix3 inPlace = a;
  inPlace *= a;
  expectSameMatrix(inPlace, product, 0.0);

  // The second point is applied after the first: shift then turn.
  Matrix3 shift;
  shift.SetShift(3, 4);
  Matrix3 turn;
  turn.SetRotate(kHalfPi);
  double q[3] = {1, 1, 7};
  TransPoint(shift, q);
  EXPECT_EQ(q[0], 4.0);
  EXPECT_EQ(q[1], 5.0);
  EXPECT_EQ(q[2], 0.0);
  Matrix3 both = shift * turn;
  double r[3] = {1, 0, 0};
  TransPoint(both, r);
  EXPECT_NEAR(r[0], -4.0, 1e-15);
  EXPECT_NEAR(r[1], 4.0, 1e-15);
  Matrix3 scale;
  scale.SetScale(2, 3);
  double s[3] = {1, 1, 0};
  TransPoint(scale, s);
  EXPECT_EQ(s[0], 2.0);
  EXPECT_EQ(s[1], 3.0);
}

TEST(Matrix3, inverse_pivots_and_singular_input) {
  Matrix3 identity;
  identity.SetShift(0, 0);
  Matrix3 m;
  m.SetShift(-2.5, 7);
  Matrix3 turn;
  turn.SetRotate(-0.7);
  m *= turn;
  expectSameMatrix(m * m.Inverse(), identity, 1e-14);

  // m[0][0] = 0: rows 0 and 1 are swapped before eliminating.
  Matrix3 swap;
  swap.m[0][1] = 1;
  swap.m[1][0] = 2;
  swap.m[2][2] = 1;
  expectSameMatrix(swap.Inverse() * swap, identity, 1e-15);

  // A first column with nothing above 1e-8 is singular: the matrix comes back as it was.
  Matrix3 singular = filled(1);
  singular.m[0][0] = 1e-9;
  singular.m[1][0] = 0;
  singular.m[2][0] = -1e-9;
  expectSameMatrix(singular.Inverse(), singular, 0.0);
}

TEST(EllipseFrame, round_trips_and_parameters) {
  EllipseDraws draws(11, 0.5, 50, 20);
  for (int i = 0; i < 200; ++i) {
    const TSellipse e = draws();
    const double t = draws.turn();
    double world[3];
    double hand[3];
    EllipsePAngleToPoint(e.center, e.a, e.b, e.rotation, t, world);
    pointAt(e, t, hand);
    EXPECT_NEAR(world[0], hand[0], 1e-12 * 60);
    double local[3];
    double back[3] = {kSentinel, kSentinel, kSentinel};
    WcToEllipse(e, world, local);
    EXPECT_NEAR(local[0], e.a * std::cos(t), 1e-12 * 60);
    EXPECT_NEAR(local[1], e.b * std::sin(t), 1e-12 * 60);
    EllipseToWc(e, local, back);
    EXPECT_NEAR(back[0], world[0], 1e-12 * 60);
    EXPECT_NEAR(back[1], world[1], 1e-12 * 60);
    EXPECT_EQ(back[2], 0.0);
    // The polar angle of the frame point gives its parameter back.
    const double polar = std::atan2(local[1], local[0]);
    EXPECT_NEAR(std::remainder(AngleToParameter(e.a, e.b, polar) - t, kTwoPi), 0, 1e-9);
    EXPECT_NEAR(std::remainder(ParametertoAngle(e.a, e.b, t) - polar, kTwoPi), 0, 1e-9);
  }
  EXPECT_NEAR(AngleToParameter(2, 1, kPi / 4), std::atan(2.0), 1e-15);
  EXPECT_EQ(AngleToParameter(2, 1, -kHalfPi), 3 * kHalfPi);
}

TEST(EllipseFrame, membership_tests_at_their_boundaries) {
  const TSellipse e = ellipse(1, 2, 3, 1, 0.0);
  double centre[3] = {1, 2, 0};
  double onCurve[3] = {4, 2, 0};
  EXPECT_EQ(PointInEllipse(e, centre), 1);
  EXPECT_EQ(PointInEllipse(e, onCurve), -1);
  struct Row {
    const char* name;
    double t, r, s, e;
    int endPoint, inArc;
  } rows[] = {
      {"turn_below_start", kTwoPi - 5e-6, 10, 0, 1, 1, 0},
      {"just_past_tolerance", 1 + 1.1e-5, 10, 0, 1, 0, 0},
      {"inside", 0.5, 10, 0, 1, 0, 1},
      {"wrapped_sweep", 0.1, 1, 5.0, kTwoPi + 1.0, 0, 1},
      {"outside_wrap", 4.0, 1, 5.0, kTwoPi + 1.0, 0, 0},
  };
  for (const Row& row : rows) {
    EXPECT_EQ(PointInArcEndPoint(row.t, row.r, row.s, row.e), row.endPoint) << row.name;
    EXPECT_EQ(PointInArc(row.t, row.r, row.s, row.e), row.inArc) << row.name;
  }
  double p[3] = {0, 1, 0};
  EXPECT_EQ(DistPointToLine(1e-9, p, segment(0, 0, 1, 0)), 1.0);
  p[1] = -1;
  EXPECT_EQ(DistPointToLine(1e-9, p, segment(0, 0, 1, 0)), -1.0);
  EXPECT_EQ(DistPointToLine(1e-9, p, segment(0, 2, 0, 2)), 3.0);  // a point, not a line
}

TEST(EllipseFrame, tangent_points_touch_in_the_given_direction) {
  EllipseDraws draws(12, 1, 20, 10);
  for (int i = 0; i < 200; ++i) {
    const TSellipse e = draws();
    const double angle = draws.turn();
    double p1[3] = {kSentinel, kSentinel, kSentinel};
    double p2[3] = {kSentinel, kSentinel, kSentinel};
    double p3[3] = {kSentinel, kSentinel, kSentinel};
    GetEllipseAngleTanPoint(1e-9, e, angle, p1, p2, p3);
    EXPECT_EQ(p2[0], kSentinel);
    EXPECT_EQ(p1[2], kSentinel);  // x and y only
    // Both lie on the curve and the curve's points all stay on one side of the tangent there.
    for (const double* q : {p1, p3}) {
      EXPECT_LT(offCurve(e, q[0], q[1]), 1e-11 * e.a);
      const TSline tangent = segment(q[0], q[1], q[0] + std::cos(angle), q[1] + std::sin(angle));
      double lo = 0, hi = 0;
      for (int k = 0; k < 64; ++k) {
        double s[3];
        pointAt(e, kTwoPi * k / 64, s);
        const double d = DistPointToLine(0, s, tangent);
        lo = std::min(lo, d);
        hi = std::max(hi, d);
      }
      EXPECT_LT(std::min(-lo, hi), 1e-9 * std::max(e.a, e.b));
    }
  }
}

TEST(EllipseFrame, highest_point_is_farthest_from_the_chord) {
  EllipseDraws draws(13, 1, 20, 5);
  for (int i = 0; i < 100; ++i) {
    TSellipse e = draws();
    e.end = e.start + 0.2 + 2.5 * (i % 10) / 10.0;
    double p1[3], p2[3], h[3];
    pointAt(e, e.start, p1);
    pointAt(e, e.end, p2);
    GetEllipseHighestPoint(e, h);
    const TSline chord = segment(p1[0], p1[1], p2[0], p2[1]);
    double best = 0;
    for (int k = 0; k <= 20000; ++k) {
      double s[3];
      pointAt(e, e.start + (e.end - e.start) * k / 20000, s);
      best = std::max(best, std::fabs(DistPointToLine(0, s, chord)));
    }
    EXPECT_NEAR(GetEllipseArcHeight(e), best, 1e-6 * e.a) << i;
    EXPECT_LT(offCurve(e, h[0], h[1]), 1e-11 * e.a);
  }
}

TEST(EllipseArcs, built_arcs_pass_through_their_points) {
  EllipseDraws draws(14, 1, 20, 5);
  for (int i = 0; i < 200; ++i) {
    const TSellipse shape = draws();
    const double ratio = shape.b / shape.a;
    double t[3] = {draws.turn(), 0, 0};
    t[1] = t[0] + 0.1 + draws.turn() / 2;
    t[2] = t[1] + 0.1 + draws.turn() / 2;
    const bool clockwise = i % 2 == 1;
    double p[3][3];
    for (int k = 0; k < 3; ++k)
      pointAt(shape, t[clockwise ? 2 - k : k], p[k]);
    TSellipse out;
    ASSERT_EQ(CalEllipseArc(1e-9, ratio, shape.rotation, p[0], p[1], p[2], &out),
              clockwise ? 2 : 1);
    const double size = std::max(shape.a, shape.b) + 10;
    EXPECT_NEAR(out.a, shape.a, 1e-12 * size);
    EXPECT_NEAR(out.b, shape.b, 1e-12 * size);
    // The ends are the outer points, the middle one lies inside the sweep.
    double s[3], e[3];
    pointAt(out, out.start, s);
    pointAt(out, out.end, e);
    const double* first = clockwise ? p[2] : p[0];
    const double* last = clockwise ? p[0] : p[2];
    EXPECT_NEAR(s[0], first[0], 1e-12 * size);
    EXPECT_NEAR(e[1], last[1], 1e-12 * size);
    double local[3];
    WcToEllipse(out, p[1], local);
    const double mid = std::atan2(local[1] / out.b, local[0] / out.a);
    EXPECT_EQ(PointInArc(mid < 0 ? mid + kTwoPi : mid, 1e4, out.start, out.end), 1);

    // Rays through the built arc's ends rebuild the same arc.
    TSellipse again;
    ASSERT_EQ(CalEllipseArc(1e-9, out.center, out.a * 2, out.b * 2, out.rotation, s, e, &again), 1);
    EXPECT_NEAR(std::remainder(again.start - out.start, kTwoPi), 0, 1e-12);
    EXPECT_NEAR(again.end - again.start, out.end - out.start, 1e-11);
    EXPECT_GE(again.start, 0.0);
    EXPECT_LT(again.start, kTwoPi);
  }
  TSellipse whole;
  double c[3] = {0, 0, 0}, q[3] = {1, 1, 0};
  ASSERT_EQ(CalEllipseArc(1e-9, c, 2, 1, 0, q, q, &whole), 1);
  EXPECT_EQ(whole.end - whole.start, kTwoPi);
}

TEST(EllipseArcs, a_stretch_changes_only_its_grip) {
  const TSellipse e = ellipse(1, 2, 4, 2, 0.3, 0.5, 2.5);
  struct Row {
    const char* name;
    double gripT;  // parameter of the grip, or NaN for the centre
    int code;
  } rows[] = {{"centre", kNaN, 1},
              {"start", 0.5, 2},
              {"end", 2.5, 3},
              {"first_axis", kPi, 4},
              {"second_axis", 3 * kHalfPi, 5}};
  for (const Row& row : rows) {
    double grip[3] = {1, 2, 0};
    if (!std::isnan(row.gripT))
      pointAt(e, row.gripT, grip);
    double to[3];
    pointAt(ellipse(1, 2, 5, 3, 0.3), 1.2, to);  // parameter 1.2 of a bigger ellipse
    TSellipse out = e;
    ASSERT_EQ(CalStretchEllipseArc(1e-9, e, grip, to, &out), row.code) << row.name;
    const double expected[8] = {
        row.code == 1 ? to[0] : 1,
        row.code == 1 ? to[1] : 2,
        0,
        row.code == 4 ? 5 * std::cos(1.2) : 4,
        row.code == 5 ? 3 * std::sin(1.2) : 2,
        0.3,
        row.code == 2 ? std::atan2(3 * std::sin(1.2) / 2, 5 * std::cos(1.2) / 4) : 0.5,
        row.code == 3 ? std::atan2(3 * std::sin(1.2) / 2, 5 * std::cos(1.2) / 4) : 2.5};
    const double* got = &out.center[0];
    for (int k = 0; k < 8; ++k)
      EXPECT_NEAR(got[k], expected[k], 1e-12) << row.name << " field " << k;
  }
  double far[3] = {50, 50, 0};
  TSellipse out = e;
  EXPECT_EQ(CalStretchEllipseArc(1e-9, e, far, far, &out), 0);
}

}  // namespace
