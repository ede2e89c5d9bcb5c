// Tarnsysm: planar computational geometry for 2D drafting.
// Angle primitives: direction angles, reduction into one turn, guarded inverse sine and cosine,
// arc membership, and the whole-turn stepping that every angle-range loop of the library uses.
#include "primitives/internal.h"
#include "primitives/primitives.h"

#include <cmath>

namespace tarnsysm::detail {

namespace {

// Up to this many turns the loops step one turn at a time, exactly as repeated addition does;
// farther away the value first jumps in one multiplication and keeps a couple of exact steps.
constexpr double kExactTurns = 16.0;
// Each loop ends after this many single steps even when adding 2 pi no longer changes a huge
// value, so no double can keep it spinning.
constexpr int kMaxSingleSteps = 64;

double bulkTurns(double gap) {
  if (!(gap > kExactTurns * kTwoPi))
    return 0.0;
  return std::floor(gap / kTwoPi) - 2.0;
}

}  // namespace

void addTurnsWhileBelow(double& value, double floor, double* companion) {
  const double jump = bulkTurns(floor - value) * kTwoPi;
  if (jump != 0.0) {
    value += jump;
    if (companion)
      *companion += jump;
  }
  for (int i = 0; i < kMaxSingleSteps && value < floor; ++i) {
    value += kTwoPi;
    if (companion)
      *companion += kTwoPi;
  }
}

void subtractTurnsWhileAbove(double& value, double ceiling, double* companion) {
  const double jump = bulkTurns(value - ceiling) * kTwoPi;
  if (jump != 0.0) {
    value -= jump;
    if (companion)
      *companion -= jump;
  }
  for (int i = 0; i < kMaxSingleSteps && value > ceiling; ++i) {
    value -= kTwoPi;
    if (companion)
      *companion -= kTwoPi;
  }
}

}  // namespace tarnsysm::detail

using namespace tarnsysm::detail;

int DAngle(double eps, double x1, double y1, double x2, double y2, double* angle) {
  const double dx = x2 - x1;
  const double dy = y2 - y1;
  // Coincidence is judged per coordinate, not by length.
  if (withinClosed(dx, eps) && withinClosed(dy, eps)) {
    *angle = 0.0;
    return 0;
  }
  // A tiny negative angle stands for 0: callers compare angles with eps, so it is not lifted.
  *angle = liftBelowMinusEps(portable::atan2(dy, dx), eps);
  return 1;
}

void fpos2pi(double eps, double* angle) {
  // The C remainder keeps the sign of the argument, so the value lies in (-2 pi, 2 pi).
  *angle = liftBelowMinusEps(std::fmod(*angle, kTwoPi), eps);
}

double arcsin(double x) {
  if (-1.0 < x && x < 1.0)
    return portable::asin(x);
  if (x == -1.0)
    return -kHalfPi;
  if (x == 1.0)
    return kHalfPi;
  // No clamping: out of range (or NaN) is 0 by contract, callers clamp where rounding can stray.
  return 0.0;
}

double arccos(double x) {
  if (-1.0 < x && x < 1.0)
    return portable::acos(x);
  // Only exactly -1 maps to pi; exactly 1 and everything outside give 0 (deliberately asymmetric).
  if (x == -1.0)
    return kPi;
  return 0.0;
}

int ValidAngle(double eps, double start, double end, double angle) {
  // Everyday arcs and atan2 angles lie within a few turns of each other: then no loop below can
  // run more than about a dozen steps, and the plain stepping (exactly what the turn helpers do at
  // such distances) saves their guards. NaN and infinities fail this test and are handled below.
  constexpr double kNearTurns = 8.0 * kTwoPi;
  if (std::fabs(eps) + std::fabs(start) + std::fabs(end) + std::fabs(angle) <= kNearTurns) {
    const double low = start - eps;
    double e = end;
    while (e < low)
      e += kTwoPi;
    double a = angle;
    while (a < low)
      a += kTwoPi;
    while (e + eps < a)
      a -= kTwoPi;
    return low <= a ? 1 : 0;
  }
  if (!std::isfinite(eps) || !std::isfinite(start) || !std::isfinite(end) ||
      !std::isfinite(angle)) {
    return 0;
  }
  // The end is only ever raised, never lowered: a sweep of more than one turn stays that long.
  double e = end;
  addTurnsWhileBelow(e, start - eps);
  // Bring the angle into the turn starting at start - eps, then pull it back below end + eps.
  double a = angle;
  addTurnsWhileBelow(a, start - eps);
  subtractTurnsWhileAbove(a, e + eps);
  return start - eps <= a ? 1 : 0;
}
