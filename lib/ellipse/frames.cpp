// Tarnsysm: planar computational geometry for 2D drafting.
// The ellipse frame, parameters against polar angles, and the small queries built on them.
#include "ellipse/ellipse.h"
#include "ellipse/internal.h"
#include "primitives/internal.h"
#include "primitives/primitives.h"

#include <cmath>

using namespace tarnsysm::detail;

namespace {

// Near the second axis the atan2 of the mirrored pair is ill-conditioned; the angle is then
// returned as it came (lifted only when negative), as the drafting host expects.
double mirroredAngle(double u, double v, double fallback) {
  double t = std::fabs(v) >= kTol1e10 ? portable::atan2(u, v) : fallback;
  if (t < 0.0)
    t += kTwoPi;
  return t;
}

// The arc test with an absolute tolerance: the stored end is used as it is, without lifting a
// wrapping arc's end (deliberately unlike PointInArc).
bool parameterInEllipseArc(double eps, TSellipse const& e, double t) {
  if (t < e.start)
    t += kTwoPi;
  return t < e.end + eps;
}

TSline lineThrough(const double* s, const double* e) {
  TSline line{};
  line.start[0] = s[0];
  line.start[1] = s[1];
  line.end[0] = e[0];
  line.end[1] = e[1];
  return line;
}

}  // namespace

void EllipsePAngleToPoint(double const (&centre)[3], double a, double b, double rotation, double t,
                          double* const out) {
  const double ct = portable::cos(t);
  const double st = portable::sin(t);
  const double cr = portable::cos(rotation);
  const double sr = portable::sin(rotation);
  out[0] = centre[0] + a * ct * cr - b * st * sr;
  out[1] = centre[1] + a * ct * sr + b * st * cr;
}

double AngleToParameter(double a, double b, double theta) {
  return mirroredAngle(a * portable::sin(theta), b * portable::cos(theta), theta);
}

double ParametertoAngle(double a, double b, double t) {
  return mirroredAngle(b * portable::sin(t), a * portable::cos(t), t);
}

int WcToEllipse(TSellipse const& e, double* const in, double* const out) {
  Matrix3 m = worldToFrame(e);
  transformInto(m, in[0], in[1], out);
  return 1;
}

int EllipseToWc(TSellipse const& e, double* const in, double* const out) {
  Matrix3 m = frameToWorld(e);
  transformInto(m, in[0], in[1], out);
  return 1;
}

int PointInEllipse(TSellipse const& e, double* const p) {
  double q[3];
  WcToEllipse(e, p, q);
  return q[0] * q[0] / (e.a * e.a) + q[1] * q[1] / (e.b * e.b) < 1.0 ? 1 : -1;
}

int PointInArcEndPoint(double t, double r, double s, double e) {
  // A length of 1e-4 turned into an angle by the size r.
  const double tol = kTol1e4 / r;
  const double candidates[] = {t - s,          t - e,          t - kTwoPi - s,
                               t + kTwoPi - s, t - kTwoPi - e, t + kTwoPi - e};
  for (double d : candidates)
    if (std::fabs(d) < tol)
      return 1;
  return 0;
}

int PointInArc(double t, double r, double s, double e) {
  const double tol = kTol1e4 / r;
  if (t < s - tol)
    t += kTwoPi;
  return t < e + tol ? 1 : 0;
}

int GetEllipseAngleTanPoint(double eps, TSellipse const& e, double angle, double* const p1,
                            double* const /*p2: stands in the interface, never written*/,
                            double* const p3) {
  double alpha = angle - e.rotation;
  fpos2pi(eps, &alpha);
  if (alpha > kPi)
    alpha -= kPi;

  double t;
  if (alpha < eps || std::fabs(kPi - alpha) < eps)
    t = kHalfPi;  // along the first axis
  else if (std::fabs(alpha - kHalfPi) < eps)
    t = 0.0;  // along the second axis
  else
    t = portable::atan(-e.b / (e.a * portable::tan(alpha)));

  EllipsePAngleToPoint(e.center, e.a, e.b, e.rotation, t, p1);
  EllipsePAngleToPoint(e.center, e.a, e.b, e.rotation, t + kPi, p3);
  return (parameterInEllipseArc(eps, e, t) ? 1 : 0) +
         (parameterInEllipseArc(eps, e, t + kPi) ? 1 : 0);
}

int GetEllipseHighestPoint(TSellipse const& e, double* const out) {
  const double a = e.a;
  const double b = e.b;
  const double p1x = a * portable::cos(e.start);
  const double p1y = b * portable::sin(e.start);
  const double p2x = a * portable::cos(e.end);
  const double p2y = b * portable::sin(e.end);
  const double mx = (p1x + p2x) / 2.0;
  const double my = (p1y + p2y) / 2.0;

  double t;
  // The world centre is compared with the frame midpoint, deliberately: the chord-through-the-
  // centre branch is only taken as meant for an ellipse centred at the world origin.
  if (SamePoint(kTol1e10, e.center[0], e.center[1], mx, my) == 1) {
    const double h = DistBetweenPoint(p1x, p1y, p2x, p2y) / 2.0;
    const double k = std::sqrt(a * a + b * b - h * h);
    const double phi = arcsin(a * b / (h * k));
    t = AngleToParameter(a, b, ParametertoAngle(a, b, e.start) + phi);
  } else {
    t = AngleToParameter(a, b, directionBetween(kTol1e10, 0.0, 0.0, mx, my));
    const double c = (p2x - p1x) * (-p1y) - (p2y - p1y) * (-p1x);
    if (c < 0.0)
      t += kPi;
  }
  double frame[3] = {a * portable::cos(t), b * portable::sin(t), 0.0};
  EllipseToWc(e, frame, out);
  return 1;
}

double GetEllipseArcHeight(TSellipse const& e) {
  double p1[3] = {0.0, 0.0, 0.0};
  double p2[3] = {0.0, 0.0, 0.0};
  double h[3];
  EllipsePAngleToPoint(e.center, e.a, e.b, e.rotation, e.start, p1);
  EllipsePAngleToPoint(e.center, e.a, e.b, e.rotation, e.end, p2);
  GetEllipseHighestPoint(e, h);
  return std::fabs(DistPointToLine(kTol1e10, h, lineThrough(p1, p2)));
}

double DistPointToLine(double eps, double* const p, TSline line) {
  const double* s = line.start;
  const double dx = line.end[0] - s[0];
  const double dy = line.end[1] - s[1];
  const double len = std::sqrt(dx * dx + dy * dy);
  const double q = DistBetweenPoint(p[0], p[1], s[0], s[1]);
  if (len < eps)
    return q;  // degenerate line: the distance to its start
  if (q < eps)
    return 0.0;
  return (dx * (p[1] - s[1]) - dy * (p[0] - s[0])) / len;
}
