// Tarnsysm: planar computational geometry for 2D drafting.
// Tests of the plane transform, the ellipse frame and its small queries, and the arcs built and
// edited from drafting input.
#include "ellipse_checks.h"

namespace {

using namespace tarnsysm::test;

bool same(const Matrix<3>& x, const Matrix<3>& y, double tol) {
  for (int i = 0; i < 9; ++i)
    if (!(std::fabs(x.m[i / 3][i % 3] - y.m[i / 3][i % 3]) <= tol))
      return false;
  return true;
}

TEST(Matrix3, products_inverse_and_guards) {
  Matrix3 a, id, shift, turn, swap;
  for (int i = 0; i < 9; ++i)
    a.m[i / 3][i % 3] = 1 + i;  // rows 1 2 3 / 4 5 6 / 7 8 9
  double p[3] = {5, 6, 7}, q[3] = {1, 0, 7}, turned[3] = {-4, 4, 0};
  TransPoint(id, p);  // the default is the zero matrix
  EXPECT_TRUE(p[0] == 0 && p[1] == 0 && p[2] == 0);
  EXPECT_TRUE((a * a).m[2][1] == 126.0 && (a + a - a * 2.0 + a / 2.0).m[1][2] == 3.0);
  Matrix3 guarded = a / 1e-9;  // a divisor within 1e-8 leaves the values
  guarded /= 1e-9;
  EXPECT_TRUE(same(guarded, a, 0.0));
  // Row vectors: the translation stands in the third row and A * B applies A first.
  id.SetIdentity();
  shift.SetShift(3, 4);
  turn.SetRotate(kHalfPi);
  shift *= turn;
  TransPoint(shift, q);
  EXPECT_TRUE(dist(q, turned) < 1e-15 && q[2] == 0.0 && same(shift * shift.Inverse(), id, 1e-15));
  swap.m[0][1] = swap.m[2][2] = 1;  // m[0][0] = 0: rows 0 and 1 are swapped before eliminating
  swap.m[1][0] = 2;
  EXPECT_TRUE(same(swap.Inverse() * swap, id, 1e-15));
  a.m[0][0] = 1e-9;  // no entry of the first column above 1e-8: returned as it came
  a.m[1][0] = 0;
  a.m[2][0] = -1e-9;
  EXPECT_TRUE(same(a.Inverse(), a, 0.0));
}

// Random ellipses: frame round trips, parameter and polar angle, tangent points of a direction,
// and arcs built through three of their points or between rays through two.
TEST(EllipseFrame, round_trips_tangent_points_and_built_arcs) {
  EllipseDraws draws(11, 0.5, 50, 20);
  for (int i = 0; i < 300; ++i) {
    const TSellipse e = draws();
    const double t = draws.turn(), tol = 1e-12 * (std::max(e.a, e.b) + 10);
    double world[3], hand[3], local[3], back[3] = {kSentinel, kSentinel, kSentinel}, n[2];
    EllipsePAngleToPoint(e.center, e.a, e.b, e.rotation, t, world);
    WcToEllipse(e, world, local);
    EllipseToWc(e, local, back);
    EXPECT_TRUE(dist(world, pointAt(e, t, hand)) < tol && dist(back, world) < tol && back[2] == 0);
    EXPECT_NEAR(local[1], e.b * std::sin(t), tol);
    const double polar = std::atan2(local[1], local[0]);
    EXPECT_NEAR(std::remainder(AngleToParameter(e.a, e.b, polar) - t, kTwoPi), 0, 1e-9);
    EXPECT_NEAR(std::remainder(ParametertoAngle(e.a, e.b, t) - polar, kTwoPi), 0, 1e-9);
    // Tangent points of a direction: on the curve, normal across the direction, p2 untouched.
    double p1[3] = {0, 0, kSentinel}, p2[3] = {kSentinel}, p3[3];
    GetEllipseAngleTanPoint(1e-9, e, t, p1, p2, p3);
    EXPECT_TRUE(p2[0] == kSentinel && p1[2] == kSentinel);
    for (const double* r : {p1, p3}) {
      EXPECT_LT(offCurve(e, r), 1e-11 * 60);
      implicit(e, r, n);
      EXPECT_NEAR((n[0] * std::cos(t - e.rotation) + n[1] * std::sin(t - e.rotation)) /
                      std::hypot(n[0], n[1]),
                  0, 1e-12);
    }
    // Three points of increasing parameter, or decreasing on odd draws (clockwise, code 2).
    const double t1 = t + 0.1 + draws.turn() / 3, ts[3] = {t, t1, t1 + 0.1 + draws.turn() / 3};
    const bool cw = i % 2 == 1;
    double p[3][3], s[3], f[3];
    for (int k = 0; k < 3; ++k)
      pointAt(e, ts[cw ? 2 - k : k], p[k]);
    TSellipse out, again;
    ASSERT_EQ(CalEllipseArc(1e-9, e.b / e.a, e.rotation, p[0], p[1], p[2], &out), cw ? 2 : 1);
    EXPECT_TRUE(std::fabs(out.a - e.a) < tol && std::fabs(out.b - e.b) < tol) << i;
    EXPECT_TRUE(dist(pointAt(out, out.start, s), p[cw ? 2 : 0]) < 2 * tol &&
                dist(pointAt(out, out.end, f), p[cw ? 0 : 2]) < 2 * tol)
        << i;
    WcToEllipse(out, p[1], local);  // the middle point lies inside the sweep
    const double mid = std::atan2(local[1] / out.b, local[0] / out.a);
    EXPECT_EQ(PointInArc(mid < 0 ? mid + kTwoPi : mid, 1e4, out.start, out.end), 1);
    // Rays through the built arc's ends rebuild the same sweep.
    ASSERT_EQ(CalEllipseArc(1e-9, out.center, out.a * 2, out.b * 2, out.rotation, s, f, &again), 1);
    EXPECT_NEAR(std::remainder(again.start - out.start, kTwoPi), 0, 1e-12);
    EXPECT_NEAR(again.end - again.start, out.end - out.start, 1e-11);
    EXPECT_TRUE(again.start >= 0 && again.start < kTwoPi);
  }
  EXPECT_EQ(AngleToParameter(2, 1, -kHalfPi), 3 * kHalfPi);
  double c[3] = {0, 0, 0}, q[3] = {1, 1, 0};
  TSellipse whole;
  ASSERT_EQ(CalEllipseArc(1e-9, c, 2, 1, 0, q, q, &whole), 1);
  EXPECT_EQ(whole.end - whole.start, kTwoPi);
  EXPECT_EQ(CalEllipseArc(0.5, c, 0.5, 1, 0, q, q, &whole), 1);  // a semi-axis of eps is kept
}

TEST(EllipseFrame, membership_signed_distance_and_stretches) {
  const TSellipse e = ellipse(1, 2, 3, 1, 0.0);
  double centre[3] = {1, 2, 0}, onCurve[3] = {4, 2, 0}, up[3] = {0, 1, 0}, down[3] = {0, -1, 0};
  EXPECT_TRUE(PointInEllipse(e, centre) == 1 && PointInEllipse(e, onCurve) == -1);
  // Ends within 1e-4 / r of t: each of t - s, t - e, and a turn either way of each.
  const double ends[][4] = {{5e-6, 0, 1, 1},
                            {1 + 5e-6, 0, 1, 1},
                            {1 + 1.1e-5, 0, 1, 0},
                            {kTwoPi - 5e-6, 0, 1, 1},
                            {1 + kTwoPi + 5e-6, 0, 1, 1},
                            {0.5, 0.5 + kTwoPi, 1.5 + kTwoPi, 1},
                            {0.5, 0.2 + kTwoPi, 0.5 + kTwoPi, 1}};
  for (const auto& r : ends)
    EXPECT_EQ(PointInArcEndPoint(r[0], 10, r[1], r[2]), r[3]) << r[0] << " " << r[1];
  EXPECT_EQ(PointInArc(0.5 - 1e-4, 1, 0.5, 1.0), 1);  // exactly the tolerance below the start
  EXPECT_TRUE(PointInArc(0.1, 1, 5.0, kTwoPi + 1.0) == 1 && PointInArc(4, 1, 5, kTwoPi + 1) == 0);
  // Signed by the side of the line; to a segment of no length, the distance to its point.
  EXPECT_TRUE(near({DistPointToLine(1e-9, up, segment(0, 0, 1, 0)),
                    DistPointToLine(1e-9, down, segment(0, 0, 1, 0)),
                    DistPointToLine(1e-9, down, segment(0, 2, 0, 2))},
                   {1, -1, 3}, 0));
  // Highest points: the top of an upper half about the origin; of the quarter from (2, 0) to
  // (0, 1) about (3, 4), the point of parameter pi/4, whose tangent is parallel to the chord.
  double h[3];
  GetEllipseHighestPoint(ellipse(0, 0, 2, 1, 0, 0, kPi), h);
  EXPECT_NEAR(h[1], 1.0, 1e-15);
  EXPECT_NEAR(GetEllipseArcHeight(ellipse(3, 4, 2, 1, 0, 0, kHalfPi)),
              (2 * std::sqrt(2.0) - 2) / std::sqrt(5.0), 1e-15);
  // A stretch by each grip (centre, start, end, first and second axis ends) moves the grip's
  // quantity to the target point on a bigger ellipse and leaves every other field.
  const TSellipse arc = ellipse(1, 2, 4, 2, 0.3, 0.5, 2.5);
  double to[3], far[3] = {50, 50, 0};
  pointAt(ellipse(1, 2, 5, 3, 0.3), 1.2, to);
  const double ray = std::atan2(3 * std::sin(1.2) / 2, 5 * std::cos(1.2) / 4);
  const double gripT[] = {kNaN, 0.5, 2.5, kPi, 3 * kHalfPi}, field[] = {0, 6, 7, 3, 4};
  const double value[] = {to[0], ray, ray, 5 * std::cos(1.2), 3 * std::sin(1.2)};
  for (int code = 1; code <= 5; ++code) {
    double grip[3] = {1, 2, 0}, want[8] = {1, 2, 0, 4, 2, 0.3, 0.5, 2.5};
    TSellipse out = arc;
    ASSERT_EQ(CalStretchEllipseArc(1e-9, arc, code > 1 ? pointAt(arc, gripT[code - 1], grip) : grip,
                                   to, &out),
              code);
    want[static_cast<int>(field[code - 1])] = value[code - 1];
    want[1] = code == 1 ? to[1] : 2;
    for (int k = 0; k < 8; ++k)
      EXPECT_NEAR((&out.center[0])[k], want[k], 1e-12) << code << " field " << k;
  }
  TSellipse out = arc, flat = ellipse(0, 0, 4, 2, 0, 0.5, 2.5);
  EXPECT_EQ(CalStretchEllipseArc(1e-9, arc, far, far, &out), 0);
  double axisEnd[3] = {4, 0, 0}, thin[3] = {0.5, 3, 0};  // a new first semi-axis of exactly eps
  EXPECT_EQ(CalStretchEllipseArc(0.5, flat, axisEnd, thin, &out), 4);
}

}  // namespace
