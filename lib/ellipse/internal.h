// Tarnsysm: planar computational geometry for 2D drafting.
// Helpers shared by the ellipse sources: the frame matrices, record checks and the arc scans.
#pragma once

#include "ellipse/ellipse.h"
#include "primitives/internal.h"

#include <cmath>
#include <initializer_list>

namespace tarnsysm::detail {

/// World to ellipse frame: shift by minus the centre, then turn by minus the rotation.
inline Matrix3 worldToFrame(double cx, double cy, double rotation) {
  Matrix3 shift;
  shift.SetShift(-cx, -cy);
  Matrix3 turn;
  turn.SetRotate(-rotation);
  return shift * turn;
}

inline Matrix3 worldToFrame(TSellipse const& e) {
  return worldToFrame(e.center[0], e.center[1], e.rotation);
}

/// Ellipse frame to world: the inverse of worldToFrame, as the frame routines build it.
inline Matrix3 frameToWorld(TSellipse const& e) {
  return worldToFrame(e).Inverse();
}

/// Moves (x, y) by m into a three-double buffer.
inline void transformInto(Matrix3& m, double x, double y, double* out) {
  out[0] = x;
  out[1] = y;
  TransPoint(m, out);
}

inline bool allFinite(std::initializer_list<double> values) {
  for (double v : values)
    if (!std::isfinite(v))
      return false;
  return true;
}

/// A record the intersection and search routines can work with: finite, both semi-axes positive.
inline bool usableEllipse(TSellipse const& e) {
  return allFinite({e.center[0], e.center[1], e.a, e.b, e.rotation, e.start, e.end}) && e.a > 0.0 &&
         e.b > 0.0;
}

/// The stored sweep exceeds a turn less 1e-10: the whole ellipse for the measures.
inline bool storedWhole(TSellipse const& e) {
  return std::fabs(e.end - e.start) > kTwoPi - kTol1e10;
}

/// The parameter of the frame point (x, y) through its polar angle.
inline double frameParameter(double eps, double a, double b, double x, double y) {
  return AngleToParameter(a, b, directionBetween(eps, 0.0, 0.0, x, y));
}

}  // namespace tarnsysm::detail
