// Tarnsysm: planar computational geometry for 2D drafting.
// What every test program shares: the library's headers, the angle constants, the hostile
// numbers that robustness tests feed to every argument, and one checker per recurring assertion.
#pragma once

#include <Tarnsysm.h>

#include "primitives/internal.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <initializer_list>
#include <limits>
#include <random>
#include <vector>

namespace tarnsysm::test {

using tarnsysm::detail::kHalfPi;
using tarnsysm::detail::kPi;
using tarnsysm::detail::kTwoPi;

inline constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
inline constexpr double kInf = std::numeric_limits<double>::infinity();
// A power of two: eps / 2, 2 eps and sums such as 1 + eps are exact, so boundaries decide exactly.
inline constexpr double kE = 1.0 / 1024.0;
// Written into outputs before a call, so that "left untouched" can be seen afterwards.
inline constexpr double kUnwritten = -12345.0;

/// Draws from the values that break careless geometry code: NaN, infinities, huge and tiny
/// magnitudes, alongside a few ordinary ones.
struct HostileNumbers {
  explicit HostileNumbers(unsigned seed) : rng(seed) {}
  double operator()() {
    static constexpr double kValues[] = {0, 1, -1, kNaN, kInf, -kInf, 1e300, -1e300, 1e-300, 7.5};
    return kValues[rng() % 10];
  }
  std::mt19937 rng;
};

/// The angle lies in [-eps, 2 pi), the one turn every angle the library delivers lies in.
inline testing::AssertionResult angleInTurn(double eps, double angle) {
  if (angle >= -eps && angle < kTwoPi)
    return testing::AssertionSuccess();
  return testing::AssertionFailure() << angle << " is not in [" << -eps << ", 2 pi)";
}

/// The two angles name the same direction (they differ by whole turns, within tol).
inline testing::AssertionResult sameDirection(double a, double b, double tol) {
  const double off = std::remainder(a - b, kTwoPi);
  if (std::fabs(off) <= tol)
    return testing::AssertionSuccess();
  return testing::AssertionFailure() << a << " and " << b << " differ by " << off << " mod 2 pi";
}

/// (x, y) lies within tol of the circle about (cx, cy) with radius r.
inline testing::AssertionResult onCircle(double x, double y, double cx, double cy, double r,
                                         double tol) {
  const double off = std::hypot(x - cx, y - cy) - r;
  if (std::fabs(off) <= tol)
    return testing::AssertionSuccess();
  return testing::AssertionFailure()
         << "(" << x << ", " << y << ") is " << off << " off the circle of radius " << r;
}

/// Each value is within tol of the one wanted in its place (a sentinel wanted matches exactly).
inline testing::AssertionResult near(std::initializer_list<double> got,
                                     std::initializer_list<double> want, double tol) {
  const double* w = want.begin();
  int i = 0;
  for (double g : got) {
    if (!(std::fabs(g - w[i]) <= tol))
      return testing::AssertionFailure() << "value " << i << " is " << g << ", not " << w[i];
    ++i;
  }
  return testing::AssertionSuccess();
}

/// The call returned `want` and wrote the outputs wanted (a sentinel wanted stays exactly).
inline testing::AssertionResult gives(int got, int want, std::initializer_list<double> outputs,
                                      std::initializer_list<double> wanted, double tol) {
  if (got != want)
    return testing::AssertionFailure() << "result " << got << ", not " << want;
  return near(outputs, wanted, tol);
}

/// Every value still holds kUnwritten: the call wrote none of these outputs.
inline testing::AssertionResult untouched(std::initializer_list<double> values) {
  for (double v : values) {
    if (v != kUnwritten)
      return testing::AssertionFailure() << "an output was written: " << v;
  }
  return testing::AssertionSuccess();
}

}  // namespace tarnsysm::test
