// Tarnsysm: planar computational geometry for 2D drafting.
// What every test program shares: the library's angle constants and the hostile numbers that
// robustness tests feed to every argument.
#pragma once

#include "primitives/internal.h"

#include <limits>
#include <random>

namespace tarnsysm::test {

using tarnsysm::detail::kHalfPi;
using tarnsysm::detail::kPi;
using tarnsysm::detail::kTwoPi;

inline constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
inline constexpr double kInf = std::numeric_limits<double>::infinity();

/// Draws from the values that break careless geometry code: NaN, infinities, huge and tiny
/// magnitudes, alongside a few ordinary ones.
class HostileNumbers {
 public:
  explicit HostileNumbers(unsigned seed) : rng_(seed) {}

  double operator()() { return kValues[pick_(rng_)]; }

 private:
  static constexpr double kValues[] = {0.0,   1.0,   -1.0,   kNaN,   kInf,
                                       -kInf, 1e300, -1e300, 1e-300, 7.5};
  std::mt19937 rng_;
  std::uniform_int_distribution<int> pick_{0, 9};
};

}  // namespace tarnsysm::test
