// Tarnsysm: planar computational geometry for 2D drafting.
// Polyline arc segments from drafting input sets: each member finds the bulge of the segment and
// the direction of travel at its end, which becomes the start direction of the next segment.
#include "arcs/arcs.h"
#include "arcs/internal.h"
#include "primitives/internal.h"
#include "primitives/primitives.h"

#include <cmath>

using namespace tarnsysm::detail;

namespace {

// Tangent direction of travel at the point of radial angle `radial`, reduced into one turn.
double travelDirection(double eps, double radial, bool counterClockwise) {
  double dir = counterClockwise ? radial + kHalfPi : radial - kHalfPi;
  fpos2pi(eps, &dir);
  return dir;
}

// Writes a segment's bulge and end direction, and returns 1, only when both are finite numbers.
int writeSegment(double b, double dir, double* bulge, double* endDir) {
  if (!allFinite({b, dir}))
    return 0;
  *bulge = b;
  *endDir = dir;
  return 1;
}

// writeSegment that also writes an end point into the caller's array, or nothing at all.
int writeSegmentEnd(double x, double y, double* point, double b, double dir, double* bulge,
                    double* endDir) {
  if (!allFinite({x, y}) || !writeSegment(b, dir, bulge, endDir))
    return 0;
  point[0] = x;
  point[1] = y;
  return 1;
}

}  // namespace

int PL_StpStaEdp(double eps, double* stp, double sta, double* edp, double* bulge, double* endDir) {
  const double chord = std::sqrt(square(edp[0] - stp[0]) + square(edp[1] - stp[1]));
  double a = sta;
  fpos2pi(eps, &a);
  const double phi = directionBetween(eps, stp[0], stp[1], edp[0], edp[1]);

  const bool clockwise = turnsClockwise(eps, a, phi);
  const double delta = foldedTangentChordAngle(eps, phi, a);
  const double h = portable::sin(delta / 2.0);
  // The end point lies on the start tangent line, ahead or behind (or the input is not a number).
  if (withinOpen(h, eps) || std::isnan(h))
    return 0;
  const double r = 0.5 * chord / h;

  // The centre lies on the normal of the start direction, right of it for a clockwise turn.
  double cx = 0.0;
  double cy = 0.0;
  if (clockwise) {
    cx = stp[0] + r * portable::sin(a);
    cy = stp[1] - r * portable::cos(a);
  } else {
    cx = stp[0] - r * portable::sin(a);
    cy = stp[1] + r * portable::cos(a);
  }
  const double alpha1 = directionBetween(eps, cx, cy, stp[0], stp[1]);
  const double alpha2 = directionBetween(eps, cx, cy, edp[0], edp[1]);

  double sweep = clockwise ? alpha1 - alpha2 : alpha2 - alpha1;
  if (sweep < -eps)
    sweep += kTwoPi;
  return writeSegment(clockwise ? -portable::tan(sweep / 4.0) : portable::tan(sweep / 4.0),
                      travelDirection(eps, alpha2, !clockwise), bulge, endDir);
}

int PL_StpInaEdp(double eps, double* stp, double ina, double* edp, double* bulge, double* endDir) {
  reduceIncludedAngle(eps, ina);
  const double b = portable::tan(ina / 4.0);

  // A centre for the end direction, built from the chord; side -1 puts it to the left.
  int side = -1;
  double theta = ina;
  if (theta < -eps) {
    side = 1;
    theta = -theta;
  }
  if (theta - kPi > eps) {
    side = -side;
    theta = kTwoPi - theta;
  }
  const double chord = std::sqrt(square(stp[0] - edp[0]) + square(stp[1] - edp[1]));
  const double r = 0.5 * chord / portable::sin(theta / 2.0);
  const double phi = directionBetween(eps, stp[0], stp[1], edp[0], edp[1]);
  // Deliberately without the half-angle term on the right-hand side: the drafting host's end
  // directions for clockwise and major arcs come from this centre, and are kept as they are.
  const double psi = side == -1 ? phi + kHalfPi - theta / 2.0 : phi - kHalfPi;
  const double cx = stp[0] + r * portable::cos(psi);
  const double cy = stp[1] + r * portable::sin(psi);

  double alpha1 = 0.0;
  double alpha2 = 0.0;
  if (ina <= eps) {
    alpha1 = directionBetween(eps, cx, cy, edp[0], edp[1]);
    alpha2 = directionBetween(eps, cx, cy, stp[0], stp[1]);
  } else {
    alpha1 = directionBetween(eps, cx, cy, stp[0], stp[1]);
    alpha2 = directionBetween(eps, cx, cy, edp[0], edp[1]);
  }
  if (alpha1 - eps > alpha2)
    alpha2 += kTwoPi;
  return writeSegment(
      b, b <= eps ? travelDirection(eps, alpha1, false) : travelDirection(eps, alpha2, true), bulge,
      endDir);
}

int PL_StpInaCen(double eps, double* stp, double ina, double* cen, double* bulge, double* endDir) {
  reduceIncludedAngle(eps, ina);
  const double b = portable::tan(ina / 4.0);
  const double cx = cen[0];
  const double cy = cen[1];
  const double r = std::sqrt(square(stp[0] - cx) + square(stp[1] - cy));

  // A start point on the centre has no radial angle: the end point is the start point.
  double alpha2 = 0.0;
  double ex = stp[0];
  double ey = stp[1];
  if (r >= eps) {
    alpha2 = directionBetween(eps, cx, cy, stp[0], stp[1]) + ina;
    ex = cx + r * portable::cos(alpha2);
    ey = cy + r * portable::sin(alpha2);
  }
  return writeSegmentEnd(ex, ey, cen, b, travelDirection(eps, alpha2, !(b <= eps)), bulge, endDir);
}

int PL_StpInaRadDir(double eps, double* stp, double ina, double rad, double dir, double* edp,
                    double* bulge, double* endDir) {
  // No circle for a radius below eps, no arc for an included angle within eps of 0.
  if (!(rad >= eps) || !(std::fabs(ina) > eps))
    return 0;
  reduceIncludedAngle(eps, ina);
  const InaRadDirArc arc = inaRadDirArc(eps, ina, dir);
  const double cx = stp[0] - rad * portable::cos(arc.beta);
  const double cy = stp[1] - rad * portable::sin(arc.beta);

  double alpha1 = arc.beta;
  fpos2pi(eps, &alpha1);
  const double alpha2 = alpha1 + ina;
  return writeSegmentEnd(cx + rad * portable::cos(alpha2), cy + rad * portable::sin(alpha2), edp,
                         portable::tan(ina / 4.0), travelDirection(eps, alpha2, arc.flag < 0),
                         bulge, endDir);
}

int PL_StpCenEdp(double eps, double* stp, double* cen, double* edp, double* bulge, double* endDir) {
  const double cx = cen[0];
  const double cy = cen[1];
  const double r = std::sqrt(square(stp[0] - cx) + square(stp[1] - cy));
  double alpha2 = directionBetween(eps, cx, cy, edp[0], edp[1]);

  // The start point on the centre has no start angle: a straight segment of no length.
  double ex = stp[0];
  double ey = stp[1];
  double b = 0.0;
  if (r >= eps) {
    const double alpha1 = directionBetween(eps, cx, cy, stp[0], stp[1]);
    if (alpha1 - eps > alpha2)
      alpha2 += kTwoPi;
    // The point of the circle on the ray towards the given end point.
    ex = cx + r * portable::cos(alpha2);
    ey = cy + r * portable::sin(alpha2);
    b = portable::tan((alpha2 - alpha1) / 4.0);
  }
  return writeSegmentEnd(ex, ey, edp, b, travelDirection(eps, alpha2, true), bulge, endDir);
}

int PL_StpCenLen(double eps, double* stp, double* cen, double len, double* bulge, double* endDir) {
  const double cx = cen[0];
  const double cy = cen[1];
  const double r = std::sqrt(square(stp[0] - cx) + square(stp[1] - cy));
  const double alpha1 = directionBetween(eps, cx, cy, stp[0], stp[1]);
  // Included angle of a chord of length len; a chord longer than the diameter gives 0.
  const double theta = 2.0 * arcsin(0.5 * len / r);
  const double alpha2 = alpha1 + theta;
  const double b = portable::tan(theta / 4.0);
  return writeSegmentEnd(cx + r * portable::cos(alpha2), cy + r * portable::sin(alpha2), cen, b,
                         travelDirection(eps, alpha2, !(b <= eps)), bulge, endDir);
}

int PL_StpRadEdp(double eps, double* stp, double rad, double* edp, double* bulge, double* endDir) {
  const double chord = std::sqrt(square(edp[0] - stp[0]) + square(edp[1] - stp[1]));
  // The minor arc's included angle; a negative radius makes it negative (clockwise).
  const double theta = 2.0 * arcsin(0.5 * chord / rad);
  const double phi = directionBetween(eps, stp[0], stp[1], edp[0], edp[1]);
  // beta is the direction from the centre to stp for a positive radius. For a negative one the
  // centre lies on the other side and beta + theta is the end's radial angle minus pi, so the
  // same quarter turn below gives the clockwise direction of travel.
  const double beta = phi - theta / 2.0 + 3.0 * kHalfPi;
  return writeSegment(portable::tan(theta / 4.0), travelDirection(eps, beta + theta, true), bulge,
                      endDir);
}

int PL_3points(double eps, double* p1, double* p2, double* p3, double* bulge, double* endDir) {
  // Collinear points are for PL_TestVertex kind 9 to reject; the determinant is not tested, but
  // such points have no finite centre and the construction then fails.
  double cx = 0.0;
  double cy = 0.0;
  bisectorCentre(p1, p2, p3, bisectorDeterminant(p1, p2, p3), &cx, &cy);
  double alpha1 = directionBetween(eps, cx, cy, p1[0], p1[1]);
  const double alphaM = directionBetween(eps, cx, cy, p2[0], p2[1]);
  double alpha3 = directionBetween(eps, cx, cy, p3[0], p3[1]);

  // Clockwise when the middle point is off the counter-clockwise sweep from p1 to p3; the sweep
  // is then described from p3 to p1.
  const bool clockwise = ValidAngle(eps, alpha1, alpha3, alphaM) == 0;
  if (clockwise) {
    const double t = alpha1;
    alpha1 = alpha3;
    alpha3 = t;
  }
  if (alpha1 - eps > alpha3)
    alpha3 += kTwoPi;
  const double b = portable::tan((alpha3 - alpha1) / 4.0);
  if (!allFinite({cx, cy}))
    return 0;
  return writeSegment(
      clockwise ? -b : b,
      clockwise ? travelDirection(eps, alpha1, false) : travelDirection(eps, alpha3, true), bulge,
      endDir);
}
