// Tarnsysm: planar computational geometry for 2D drafting.
// Stand-alone arcs from the drafting input sets: centre, radius and the counter-clockwise sweep
// from sa to ea, with a flag that tells how the user's arc ran. Nothing is written on failure.
#include "arcs/arcs.h"
#include "arcs/internal.h"
#include "primitives/internal.h"
#include "primitives/primitives.h"

#include <cmath>

using namespace tarnsysm::detail;

namespace {

// Every member leaves ea >= sa - eps: the end may lie one turn up.
void liftEndAboveStart(double eps, double sa, double& ea) {
  if (sa - eps > ea)
    ea += kTwoPi;
}

// Is the middle angle am off the counter-clockwise sweep from sa to ea? Written out as the
// drafting host tests it, with eps slack at both ends, rather than through ValidAngle.
bool offSweep(double eps, double sa, double ea, double am) {
  if (ea - eps >= sa)
    return am < sa - eps || am > ea + eps;
  return ea + eps < am && am < sa - eps;
}

// Tangent-start arcs (DArcStpStaEdp, DArcStpEdpDir) share everything after their rejection
// tests: a is the start direction reduced into one turn, phi the chord direction.
struct TangentStartArc {
  bool clockwise;
  double delta;  // twice the tangent-chord angle, folded into [0, pi + eps]
};

TangentStartArc tangentStartArc(double eps, double a, double phi) {
  return {turnsClockwise(eps, a, phi), foldedTangentChordAngle(eps, phi, a)};
}

// Writes an arc's centre, radius (when radius is not null), angles and flag, and returns 1, only
// when all of them are finite numbers; otherwise returns 0 and writes nothing.
int writeArc(double cx, double cy, double r, double start, double end, short flagValue,
             double* centre, double* radius, double* sa, double* ea, short* flag) {
  if (!allFinite({cx, cy, r, start, end}))
    return 0;
  centre[0] = cx;
  centre[1] = cy;
  if (radius)
    *radius = r;
  *sa = start;
  *ea = end;
  if (flag)
    *flag = flagValue;
  return 1;
}

int writeTangentStartArc(double eps, const double* stp, const double* edp, double a, bool clockwise,
                         double r, double* centre, double* radius, double* sa, double* ea,
                         short* flag) {
  double cx = 0.0;
  double cy = 0.0;
  double start = 0.0;
  double end = 0.0;
  if (clockwise) {
    cx = stp[0] + r * portable::sin(a);
    cy = stp[1] - r * portable::cos(a);
    start = directionBetween(eps, cx, cy, edp[0], edp[1]);
    end = directionBetween(eps, cx, cy, stp[0], stp[1]);
  } else {
    cx = stp[0] - r * portable::sin(a);
    cy = stp[1] + r * portable::cos(a);
    start = directionBetween(eps, cx, cy, stp[0], stp[1]);
    end = directionBetween(eps, cx, cy, edp[0], edp[1]);
  }
  liftEndAboveStart(eps, start, end);
  return writeArc(cx, cy, r, start, end, clockwise ? 1 : -1, centre, radius, sa, ea, flag);
}

}  // namespace

int DArcParam3P(double eps, double* p1, double* p2, double* p3, double* centre, double* r,
                double* sa, double* ea, short* flag) {
  const double epsSqr = eps * eps;  // compared with squared lengths
  const double d2Sqr = square(p2[0] - p1[0]) + square(p2[1] - p1[1]);
  const double d3Sqr = square(p3[0] - p1[0]) + square(p3[1] - p1[1]);
  if (!(d2Sqr >= epsSqr) || !(d3Sqr >= epsSqr))
    return 0;  // coincident points
  // det is twice the triangle's area, compared with eps unscaled.
  const double det = bisectorDeterminant(p1, p2, p3);
  if (withinOpen(det, eps) || std::isnan(det))
    return 0;  // collinear points

  double cx = 0.0;
  double cy = 0.0;
  bisectorCentre(p1, p2, p3, det, &cx, &cy);
  const double radius = std::sqrt(square(cx - p1[0]) + square(cy - p1[1]));
  double start = directionBetween(eps, cx, cy, p1[0], p1[1]);
  const double middle = directionBetween(eps, cx, cy, p2[0], p2[1]);
  double end = directionBetween(eps, cx, cy, p3[0], p3[1]);

  // Clockwise when p2 is off the counter-clockwise sweep from p1 to p3: swap to keep the sweep
  // counter-clockwise.
  const bool clockwise = offSweep(eps, start, end, middle);
  if (clockwise) {
    const double t = start;
    start = end;
    end = t;
  }
  liftEndAboveStart(eps, start, end);
  return writeArc(cx, cy, radius, start, end, clockwise ? 1 : -1, centre, r, sa, ea, flag);
}

int DArcStpEdpIna(double eps, double* stp, double* edp, double ina, double* centre, double* r,
                  double* sa, double* ea, short* flag) {
  // As for a bulge: theta becomes the minor-or-half angle, the flag the side of the centre.
  short side = -1;
  double theta = ina;
  if (ina < -eps) {
    side = static_cast<short>(-side);
    theta = -ina;
  }
  if (theta - kPi > eps) {
    side = static_cast<short>(-side);
    theta = kTwoPi - theta;
  }
  const double h = portable::sin(theta / 2.0);
  if (withinOpen(h, eps) || std::isnan(h))
    return 0;  // no arc for this included angle
  const double chord = std::sqrt(square(edp[0] - stp[0]) + square(edp[1] - stp[1]));
  const double radius = 0.5 * chord / h;
  const double phi = directionBetween(eps, stp[0], stp[1], edp[0], edp[1]);
  const double psi = side == -1 ? phi + kHalfPi - theta / 2.0 : phi - kHalfPi + theta / 2.0;
  const double cx = stp[0] + radius * portable::cos(psi);
  const double cy = stp[1] + radius * portable::sin(psi);

  // Both angles follow from the end point's, so the sweep is exactly |ina|.
  double start = 0.0;
  double end = 0.0;
  if (ina <= eps) {
    start = directionBetween(eps, cx, cy, edp[0], edp[1]);
    end = start - ina;
  } else {
    end = directionBetween(eps, cx, cy, edp[0], edp[1]);
    if (ina - eps > end)
      end += kTwoPi;
    start = end - ina;
  }
  liftEndAboveStart(eps, start, end);
  return writeArc(cx, cy, radius, start, end, side, centre, r, sa, ea, flag);
}

int DArcStpEdpDir(double eps, double* stp, double* edp, double dir, double* centre, double* r,
                  double* sa, double* ea, short* flag) {
  double a = dir;
  fpos2pi(eps, &a);
  const double phi = directionBetween(eps, stp[0], stp[1], edp[0], edp[1]);
  // The end point straight ahead or straight behind along the start direction.
  if (withinOpen(phi - a, eps) || withinOpen(std::fabs(phi - a) - kPi, eps) || std::isnan(phi - a))
    return 0;

  const TangentStartArc arc = tangentStartArc(eps, a, phi);
  // The radius starts as the chord and is scaled by the half-angle sine; there is no sine test.
  double radius = std::sqrt(square(edp[0] - stp[0]) + square(edp[1] - stp[1]));
  radius *= 0.5 / portable::sin(arc.delta / 2.0);
  return writeTangentStartArc(eps, stp, edp, a, arc.clockwise, radius, centre, r, sa, ea, flag);
}

int DArcStpStaEdp(double eps, double* stp, double sta, double* edp, double* centre, double* r,
                  double* sa, double* ea, short* flag) {
  double a = sta;
  fpos2pi(eps, &a);
  const double phi = directionBetween(eps, stp[0], stp[1], edp[0], edp[1]);
  if (withinOpen(a - phi, eps))
    return 0;  // the end point straight ahead

  const TangentStartArc arc = tangentStartArc(eps, a, phi);
  const double h = portable::sin(arc.delta / 2.0);
  if (withinOpen(h, eps) || std::isnan(h))
    return 0;  // the end point straight behind
  const double chord = std::sqrt(square(edp[0] - stp[0]) + square(edp[1] - stp[1]));
  return writeTangentStartArc(eps, stp, edp, a, arc.clockwise, 0.5 * chord / h, centre, r, sa, ea,
                              flag);
}

int DArcStpInaRadDir(double eps, double* stp, double ina, double rad, double dir, double* centre,
                     double* sa, double* ea, short* flag) {
  reduceIncludedAngle(eps, ina);
  const InaRadDirArc arc = inaRadDirArc(eps, ina, dir);
  double start = 0.0;
  double end = 0.0;
  if (arc.flag < 0) {
    start = arc.beta;
    fpos2pi(eps, &start);
    end = start + arc.sweep;
  } else {
    // The start point ends the counter-clockwise sweep; keep its start at or above -eps.
    end = arc.beta;
    addTurnsWhileBelow(end, arc.sweep - eps);
    start = end - arc.sweep;
  }
  liftEndAboveStart(eps, start, end);
  return writeArc(stp[0] - rad * portable::cos(arc.beta), stp[1] - rad * portable::sin(arc.beta),
                  rad, start, end, arc.flag, centre, nullptr, sa, ea, flag);
}

int DArcStpRadEdp(double eps, double* stp, double rad, double* edp, double* centre, double* sa,
                  double* ea) {
  const double chord = std::sqrt(square(edp[0] - stp[0]) + square(edp[1] - stp[1]));
  // A chord longer than the diameter; a negative radius always fails here.
  if (!(2.0 * rad >= chord))
    return 0;
  const double theta = 2.0 * arcsin(0.5 * chord / rad);
  const double phi = directionBetween(eps, stp[0], stp[1], edp[0], edp[1]);
  // Deliberately not reduced into one turn: sa may exceed 2 pi.
  const double start = phi - theta / 2.0 + 3.0 * kHalfPi;
  double end = start + theta;
  liftEndAboveStart(eps, start, end);
  return writeArc(stp[0] - rad * portable::cos(start), stp[1] - rad * portable::sin(start), rad,
                  start, end, 0, centre, nullptr, sa, ea, nullptr);
}
