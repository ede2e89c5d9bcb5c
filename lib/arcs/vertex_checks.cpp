// Tarnsysm: planar computational geometry for 2D drafting.
// Input checks for the polyline arc constructions, and the arc that continues a polyline
// tangentially from its last segment.
#include "arcs/arcs.h"
#include "arcs/internal.h"
#include "primitives/internal.h"
#include "primitives/primitives.h"

#include <cmath>
#include <cstdarg>

using namespace tarnsysm::detail;

namespace {

// Each check is written as "valid when ...", so that a NaN anywhere in the input is invalid.

// Kind 2: q must not lie on the line through p in direction a (ahead or behind).
bool offTangentLine(double eps, const double* p, double a, const double* q) {
  fpos2pi(eps, &a);
  double phi = 0.0;
  DAngle(eps, p[0], p[1], q[0], q[1], &phi);
  return std::fabs(portable::sin(phi - a)) >= eps;
}

// Kind 6: the two points must not coincide; eps is compared as a squared length.
bool distinctPoints(double eps, const double* p, const double* q) {
  return square(q[0] - p[0]) + square(q[1] - p[1]) >= eps * eps;
}

// Kind 7: p must not sit on the centre q, and the chord len must fit in the circle about q
// through p (a chord exactly as long as the diameter is a half circle and passes).
bool chordFitsCircleAbout(double eps, const double* p, const double* q, double len) {
  const double r = std::sqrt(square(p[0] - q[0]) + square(p[1] - q[1]));
  return r >= eps && 2.0 * r >= len;
}

// Kind 8: the chord from p to q must not be longer than the diameter 2 rad.
bool chordFitsRadius(const double* p, double rad, const double* q) {
  const double chord = std::sqrt(square(q[0] - p[0]) + square(q[1] - p[1]));
  return 2.0 * rad >= chord;
}

// Kind 9: twice the signed area of the triangle, an area compared with eps unscaled. It is
// formed from the differences to p, so that points on one line far from the origin give exactly
// the area 0 rather than the round-off of large products.
bool notCollinear(double eps, const double* p, const double* q, const double* w) {
  return std::fabs(bisectorDeterminant(p, q, w)) >= eps;
}

}  // namespace

int PL_TestVertex(int kind, double eps, double* p, ...) {
  va_list args;
  va_start(args, p);
  bool valid = true;
  switch (kind) {
    case 2: {
      const double a = va_arg(args, double);
      const double* q = va_arg(args, double*);
      valid = offTangentLine(eps, p, a, q);
      break;
    }
    case 6: {
      const double* q = va_arg(args, double*);
      valid = distinctPoints(eps, p, q);
      break;
    }
    case 7: {
      const double* q = va_arg(args, double*);
      const double len = va_arg(args, double);
      valid = chordFitsCircleAbout(eps, p, q, len);
      break;
    }
    case 8: {
      const double rad = va_arg(args, double);
      const double* q = va_arg(args, double*);
      // The only check without eps: a tolerance that is not a number fails it all the same.
      valid = !std::isnan(eps) && chordFitsRadius(p, rad, q);
      break;
    }
    case 9: {
      const double* q = va_arg(args, double*);
      const double* w = va_arg(args, double*);
      valid = notCollinear(eps, p, q, w);
      break;
    }
    default:
      // Kinds 3, 4, 5 and unknown kinds have nothing to check; no further argument is read.
      break;
  }
  va_end(args);
  return valid ? 1 : 0;
}

int PL_Arc_PBPP(double eps, double* p0, double bulge, double* p1, double* p2, double* newBulge,
                double* endDir) {
  // Direction of travel at p1 along the previous segment.
  double t = 0.0;
  double cx = 0.0;
  double cy = 0.0;
  double r = 0.0;
  double sa = 0.0;
  double ea = 0.0;
  if (std::fabs(bulge) > eps &&
      PL_ArcParam(eps, p0[0], p0[1], p1[0], p1[1], bulge, &cx, &cy, &r, &sa, &ea) == 1) {
    DAngle(eps, cx, cy, p1[0], p1[1], &t);
    t += bulge >= 0.0 ? kHalfPi : -kHalfPi;
    fpos2pi(eps, &t);
  } else {
    // A straight previous segment, or an arc too small to have a centre: go along its chord.
    DAngle(eps, p0[0], p0[1], p1[0], p1[1], &t);
  }

  if (PL_TestVertex(2, eps, p1, t, p2) == 0)
    return 0;  // p2 on the tangent line
  return PL_StpStaEdp(eps, p1, t, p2, newBulge, endDir);
}
