// Tarnsysm: planar computational geometry for 2D drafting.
// Building elliptical arcs from drafting input and editing them by their grips.
#include "arcs/arcs.h"
#include "ellipse/ellipse.h"
#include "ellipse/internal.h"
#include "primitives/internal.h"
#include "primitives/primitives.h"

#include <cmath>

using namespace tarnsysm::detail;

namespace {

// The parameter, in [0, 2 pi), of the ellipse point on the ray from the centre through p.
double rayParameter(TSellipse const& e, const double* p) {
  double polar = directionBetween(0.0, e.center[0], e.center[1], p[0], p[1]) - e.rotation;
  fpos2pi(0.0, &polar);
  double t = AngleToParameter(e.a, e.b, polar);
  if (t >= kTwoPi)
    t -= kTwoPi;
  return t;
}

bool near(double eps, const double* p, const double* q) {
  return DistBetweenPoint(p[0], p[1], q[0], q[1]) <= eps;
}

// The grips of an arc in the order they are tried: centre, start, end, first-axis ends,
// second-axis ends. Returns the grip code, 0 when none is within eps.
int pickGrip(double eps, TSellipse const& e, const double* grip) {
  if (near(eps, e.center, grip))
    return 1;
  double p[3] = {0.0, 0.0, 0.0};
  const bool whole = storedWhole(e);
  const double ends[2] = {e.start, e.end};
  for (int i = 0; i < 2 && !whole; ++i) {
    EllipsePAngleToPoint(e.center, e.a, e.b, e.rotation, ends[i], p);
    if (near(eps, p, grip))
      return 2 + i;
  }
  for (int axis = 0; axis < 2; ++axis) {
    for (int sign = 0; sign < 2; ++sign) {
      EllipsePAngleToPoint(e.center, e.a, e.b, e.rotation, axis * kHalfPi + sign * kPi, p);
      if (near(eps, p, grip))
        return 4 + axis;
    }
  }
  return 0;
}

}  // namespace

int CalEllipseArc(double eps, double* const centre, double a, double b, double rotation,
                  double* const p1, double* const p2, TSellipse* out) {
  if (!allFinite({eps, centre[0], centre[1], a, b, rotation, p1[0], p1[1], p2[0], p2[1]}))
    return 0;
  if (a < eps || b < eps)
    return 0;
  if (DistBetweenPoint(centre[0], centre[1], p1[0], p1[1]) < eps ||
      DistBetweenPoint(centre[0], centre[1], p2[0], p2[1]) < eps)
    return 0;
  TSellipse e{{centre[0], centre[1], 0.0}, a, b, rotation, 0.0, 0.0};
  e.start = rayParameter(e, p1);
  e.end = rayParameter(e, p2);
  if (withinClosed(e.end - e.start, eps))
    e.end = e.start + kTwoPi;  // the same direction twice: the whole ellipse
  else if (e.end < e.start)
    e.end += kTwoPi;
  *out = e;
  return 1;
}

int CalEllipseArc(double eps, double ratio, double rotation, double* const p1, double* const p2,
                  double* const p3, TSellipse* out) {
  if (!allFinite({eps, ratio, rotation}) || ratio < eps)
    return 0;
  // Turned by -rotation and with y divided by the ratio the ellipse is a circle of radius a.
  double q[3][3];
  double* const points[3] = {p1, p2, p3};
  for (int i = 0; i < 3; ++i) {
    q[i][0] = points[i][0];
    q[i][1] = points[i][1];
    q[i][2] = 0.0;
    RotatePoint(-rotation, q[i]);
    q[i][1] /= ratio;
  }
  double c[3] = {0.0, 0.0, 0.0};
  double r = 0.0;
  double sa = 0.0;
  double ea = 0.0;
  short flag = 0;
  if (DArcParam3P(eps, q[0], q[1], q[2], c, &r, &sa, &ea, &flag) != 1 ||
      !allFinite({c[0], c[1], r, sa, ea}))
    return 0;
  c[1] *= ratio;
  RotatePoint(rotation, c);
  *out = TSellipse{{c[0], c[1], 0.0}, r, ratio * r, rotation, sa, ea};
  return flag == -1 ? 1 : 2;
}

int CalStretchEllipseArc(double eps, TSellipse const& e, double* const grip, double* const to,
                         TSellipse* out) {
  if (!usableEllipse(e) || !allFinite({eps, grip[0], grip[1], to[0], to[1]}))
    return 0;
  TSellipse edited = e;  // out may be &e
  const int code = pickGrip(eps, e, grip);
  switch (code) {
    case 1:
      edited.center[0] = to[0];
      edited.center[1] = to[1];
      break;
    case 2:
    case 3: {
      if (DistBetweenPoint(e.center[0], e.center[1], to[0], to[1]) < eps)
        return 0;
      const double t = rayParameter(e, to);
      double& moved = code == 2 ? edited.start : edited.end;
      moved = t;
      // Keep end > start by whole turns of the end.
      subtractTurnsWhileAbove(edited.end, edited.start + kTwoPi);
      addTurnsWhileBelow(edited.end, edited.start);
      if (edited.end - edited.start <= eps)
        return 0;  // the arc would vanish
      break;
    }
    case 4:
    case 5: {
      double local[3];
      WcToEllipse(e, to, local);
      const double axis = std::fabs(code == 4 ? local[0] : local[1]);
      if (axis < eps)
        return 0;
      (code == 4 ? edited.a : edited.b) = axis;
      break;
    }
    default:
      return 0;
  }
  *out = edited;
  return code;
}
