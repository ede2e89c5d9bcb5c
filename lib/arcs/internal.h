// Tarnsysm: planar computational geometry for 2D drafting.
// Internal helpers shared by the arc constructions: the tangent-start turn decision, the
// tangent-chord angle, the three-point centre and the start-angle-radius-direction geometry.
#pragma once

#include "primitives/internal.h"

#include <cmath>
#include <initializer_list>

namespace tarnsysm::detail {

/// True when every value is a finite number. A construction reports success only with finite
/// outputs: input that is not a number, or that overflows on the way, makes it fail instead.
inline bool allFinite(std::initializer_list<double> values) {
  for (double v : values) {
    if (!std::isfinite(v))
      return false;
  }
  return true;
}

/// Does an arc that leaves the start point in direction `a` (reduced into one turn) and reaches a
/// point in chord direction `phi` turn clockwise? Clockwise when the chord lies to the right of
/// the start direction. A chord within eps of the start direction falls to the clockwise side;
/// the callers reject it afterwards through the tangent-chord angle.
inline bool turnsClockwise(double eps, double a, double phi) {
  if (a >= kPi - eps)
    return a - kPi < phi - eps && phi < a - eps;
  return !(a < phi - eps && phi < a + kPi - eps);
}

/// Twice the angle between the start direction `a` and the chord `phi`, folded into [0, pi + eps]:
/// its half-angle sine is that of the arc's half included angle, so it only serves to get the
/// radius (chord = 2 r sin(delta / 2)).
inline double foldedTangentChordAngle(double eps, double phi, double a) {
  double delta = 2.0 * (phi - a);
  if (delta < -eps)
    delta = -delta;
  if (delta > kTwoPi + eps)
    delta = 2.0 * kTwoPi - delta;
  if (delta > kPi + eps)
    delta = kTwoPi - delta;
  return delta;
}

/// Brings a signed included angle into [-2 pi - eps, 2 pi + eps] by whole turns, so a full
/// circle (2 pi) is kept as it is.
inline void reduceIncludedAngle(double eps, double& ina) {
  addTurnsWhileBelow(ina, -kTwoPi - eps);
  subtractTurnsWhileAbove(ina, kTwoPi + eps);
}

/// Determinant of the perpendicular-bisector system of p1p2 and p1p3: twice the signed area of
/// the triangle, positive when p1, p2, p3 run counter-clockwise.
inline double bisectorDeterminant(const double* p1, const double* p2, const double* p3) {
  const double d2x = p2[0] - p1[0];
  const double d2y = p2[1] - p1[1];
  const double d3x = p3[0] - p1[0];
  const double d3y = p3[1] - p1[1];
  return d2x * d3y - d3x * d2y;
}

/// Where the perpendicular bisectors of p1p2 and p1p3 meet, by Cramer's rule with `det` from
/// bisectorDeterminant. Each bisector is d.x X + d.y Y + c = 0 with c = -d . midpoint.
inline void bisectorCentre(const double* p1, const double* p2, const double* p3, double det,
                           double* cx, double* cy) {
  const double d2x = p2[0] - p1[0];
  const double d2y = p2[1] - p1[1];
  const double d3x = p3[0] - p1[0];
  const double d3y = p3[1] - p1[1];
  const double c2 = -d2x * (p1[0] + p2[0]) / 2.0 - (p1[1] + p2[1]) * d2y / 2.0;
  const double c3 = -d3x * (p1[0] + p3[0]) / 2.0 - (p1[1] + p3[1]) * d3y / 2.0;
  *cx = (c3 * d2y - c2 * d3y) / det;
  *cy = (c2 * d3x - c3 * d2x) / det;
}

/// The arc from a start point with a signed included angle (already reduced by
/// reduceIncludedAngle), a radius and the chord direction `dir` from the start point.
struct InaRadDirArc {
  short flag;    // -1 / 1: counter-clockwise / clockwise up to pi; -2 / 2: more than pi
  double sweep;  // |included angle|
  double beta;   // direction from the centre to the start point (not reduced)
};

inline InaRadDirArc inaRadDirArc(double eps, double ina, double dir) {
  InaRadDirArc arc{-1, ina, 0.0};
  if (ina < -eps) {
    arc.flag = 1;
    arc.sweep = -ina;
  }
  // theta is the minor-or-half angle that places the centre on the chord's perpendicular.
  double theta = arc.sweep;
  if (arc.sweep > kPi + eps) {
    arc.flag = static_cast<short>(2 * arc.flag);
    theta = kTwoPi - arc.sweep;
  }
  constexpr double kThreeHalfPi = 3.0 * kHalfPi;
  // Centre to the left of the chord (counter-clockwise minor, clockwise major) or to its right.
  const bool centreLeft = arc.flag == -1 || arc.flag == 2;
  arc.beta = centreLeft ? dir + kThreeHalfPi - theta / 2.0 : dir + (theta + kPi) / 2.0;
  return arc;
}

}  // namespace tarnsysm::detail
