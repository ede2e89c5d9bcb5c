// Tarnsysm: planar computational geometry for 2D drafting.
// Plain geometry used by the arc construction tests to judge results independently.
#pragma once

#include <cmath>
#include <limits>
#include "test_support.h"

namespace arcs_test {

using namespace tarnsysm::test;
// An eps that is a power of two, so eps / 2, 2 eps and eps^2 are exact.
inline constexpr double kDyadicEps = 1.0 / (1 << 20);

struct Pt {
  double x, y;
};

inline double dist(Pt a, Pt b) {
  return std::hypot(b.x - a.x, b.y - a.y);
}

inline double direction(Pt from, Pt to) {
  return std::atan2(to.y - from.y, to.x - from.x);
}

// z of (b - a) x (c - a): positive when c lies to the left of the way from a to b.
inline double cross(Pt a, Pt b, Pt c) {
  return (b.x - a.x) * (c.y - a.y) - (b.y - a.y) * (c.x - a.x);
}

// Distance between two directions, modulo whole turns, in [0, pi].
inline double angleGap(double a, double b) {
  const double d = std::remainder(a - b, kTwoPi);
  return std::fabs(d);
}

inline Pt onCircle(Pt c, double r, double angle) {
  return {c.x + r * std::cos(angle), c.y + r * std::sin(angle)};
}

// A bulge segment from a to b turns by theta = 4 atan(bulge): it leaves a at the chord
// direction minus theta / 2 and arrives at b at the chord direction plus theta / 2.
inline double startTangentOfBulge(Pt a, Pt b, double bulge) {
  return direction(a, b) - 2.0 * std::atan(bulge);
}
inline double endTangentOfBulge(Pt a, Pt b, double bulge) {
  return direction(a, b) + 2.0 * std::atan(bulge);
}

}  // namespace arcs_test
