// Tarnsysm: planar computational geometry for 2D drafting.
// Internal helpers of the primitives: numeric constants, interval tests, whole-turn stepping
// and the polynomial root solvers. Not installed; every subsystem uses these instead of copies.
#pragma once

#include "primitives/elementary.h"
#include "primitives/primitives.h"

#include <cmath>

namespace tarnsysm::detail {

// The library's angle constants, spelled as the exact doubles the drafting host uses.
inline constexpr double kPi = 3.141592653589793;
inline constexpr double kTwoPi = 6.283185307179586;
inline constexpr double kHalfPi = 1.5707963267948966;

// Fixed tolerances, named once; each user says what it compares with them.
inline constexpr double kTol1e10 = 1e-10;
inline constexpr double kTol1e8 = 1e-8;
inline constexpr double kTol1e4 = 1e-4;

/// -eps <= v <= eps: the library's usual "zero within eps".
inline bool withinClosed(double v, double eps) {
  return -eps <= v && v <= eps;
}

/// -eps < v < eps: the stricter test of the solvers, the offset code and some slope tests.
inline bool withinOpen(double v, double eps) {
  return -eps < v && v < eps;
}

inline double square(double v) {
  return v * v;
}

/// Lifts an angle below -eps by one turn. A tiny negative angle whose sum with 2 pi rounds up to
/// 2 pi is the angle 0 and comes out as 0, so the result stays below 2 pi.
inline double liftBelowMinusEps(double angle, double eps) {
  if (!(angle < -eps))
    return angle;
  const double lifted = angle + kTwoPi;
  return lifted < kTwoPi ? lifted : 0.0;
}

/// DAngle as a value: the direction from (x1, y1) to (x2, y2), 0 for coincident points.
inline double directionBetween(double eps, double x1, double y1, double x2, double y2) {
  double angle = 0.0;
  DAngle(eps, x1, y1, x2, y2, &angle);
  return angle;
}

/// Adds 2 pi to `value` (and to `companion`, when given, in lockstep) while `value` is below
/// `floor`. Within a few turns this is the plain stepping loop, so results are bit-for-bit those
/// of repeated addition; a value many turns away first jumps most of the way, and the loop is
/// bounded, so huge or non-finite input returns promptly.
void addTurnsWhileBelow(double& value, double floor, double* companion = nullptr);

/// Subtracts 2 pi from `value` (and `companion`) while `value` is above `ceiling`; the mirror of
/// addTurnsWhileBelow with the same guarantees.
void subtractTurnsWhileAbove(double& value, double ceiling, double* companion = nullptr);

// Polynomial root solvers. Coefficients highest degree first; a coefficient is zero when
// -eps < c < eps (open). Roots are written unsorted in a fixed order, only the first `result`
// entries are meaningful, and -1 means every x solves the equation.

/// Real cube root: -pow(-x, 1/3) for x <= 0 (so CubeRoot(0) is -0), pow(x, 1/3) otherwise.
double CubeRoot(double x);

/// a x^2 + b x + c = 0 into roots[0..1]: the +sqrt root first whatever the sign of a; a double
/// root (|disc| < eps) is written once. Returns 0, 1, 2 or -1.
int SolveQuadratic(double eps, double a, double b, double c, double* roots);

/// a x^3 + b x^2 + c x + d = 0 into roots[0..2]. Returns 0..3, or -1 passed up.
int SolveCubic(double eps, double a, double b, double c, double d, double* roots);

/// a x^4 + b x^3 + c x^2 + d x + e = 0 into roots[0..3] (Ferrari, through the first root of the
/// resolvent cubic). Returns 0..4, or -1 passed up.
int SolveQuartic(double eps, double a, double b, double c, double d, double e, double* roots);

}  // namespace tarnsysm::detail
