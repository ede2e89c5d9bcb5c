// Tarnsysm: planar computational geometry for 2D drafting.
// Benchmarks of the angle primitives, the polynomial solvers and the elementary functions, on
// varied realistic inputs.
#include <Tarnsysm.h>

#include "primitives/internal.h"

#include <benchmark/benchmark.h>

#include <array>
#include <cmath>
#include <cstddef>
#include <random>

namespace {

using tarnsysm::detail::kPi;
using tarnsysm::detail::kTwoPi;

// Inputs are drawn once into a ring of this many cases (a power of two), so every call sees a
// different argument and the optimizer cannot hoist the call out of the loop.
constexpr std::size_t kCases = 1024;
constexpr std::size_t kMask = kCases - 1;
constexpr double kEps = 1e-9;

struct Vector {
  double x1, y1, x2, y2;
};

struct Sweep {
  double start, end, angle;
};

struct Coefficients {
  double a, b, c, d, e;
};

const std::array<Vector, kCases>& vectors() {
  static const auto cases = [] {
    std::array<Vector, kCases> v{};
    std::mt19937_64 rng(101);
    std::uniform_real_distribution<double> coord(-500.0, 500.0);
    for (auto& c : v)
      c = {coord(rng), coord(rng), coord(rng), coord(rng)};
    return v;
  }();
  return cases;
}

// Arcs as the offset and trimming code hands them over: start in one turn, end above it by up to
// a turn, test angles from atan2 in (-pi, pi].
const std::array<Sweep, kCases>& sweeps() {
  static const auto cases = [] {
    std::array<Sweep, kCases> s{};
    std::mt19937_64 rng(102);
    std::uniform_real_distribution<double> turn(0.0, kTwoPi);
    std::uniform_real_distribution<double> atan2Range(-kPi, kPi);
    for (auto& c : s) {
      c.start = turn(rng);
      c.end = c.start + turn(rng);
      c.angle = atan2Range(rng);
    }
    return s;
  }();
  return cases;
}

// Polynomials built from known real roots (plus a share with complex pairs), scaled by a random
// leading coefficient.
const std::array<Coefficients, kCases>& polynomials(int degree) {
  static const auto make = [](int deg, unsigned seed) {
    std::array<Coefficients, kCases> p{};
    std::mt19937_64 rng(seed);
    std::uniform_real_distribution<double> root(-10.0, 10.0);
    std::uniform_real_distribution<double> lead(0.5, 4.0);
    for (std::size_t i = 0; i < kCases; ++i) {
      // Coefficients of the monic product of (x - r_k), then some pairs made complex by a shift.
      double coef[5] = {1.0, 0.0, 0.0, 0.0, 0.0};
      for (int k = 0; k < deg; ++k) {
        const double r = root(rng);
        for (int j = k + 1; j >= 1; --j)
          coef[j] -= r * coef[j - 1];
      }
      if (i % 4 == 3)
        coef[deg] += 50.0;
      const double s = lead(rng);
      p[i] = {s * coef[0], s * coef[1], s * coef[2], s * coef[3], s * coef[4]};
    }
    return p;
  };
  static const auto quadratics = make(2, 103);
  static const auto cubics = make(3, 104);
  static const auto quartics = make(4, 105);
  return degree == 2 ? quadratics : degree == 3 ? cubics : quartics;
}

void BM_DAngle(benchmark::State& state) {
  const auto& cases = vectors();
  std::size_t i = 0;
  double angle = 0.0;
  for (auto _ : state) {
    const Vector& c = cases[i++ & kMask];
    benchmark::DoNotOptimize(DAngle(kEps, c.x1, c.y1, c.x2, c.y2, &angle));
    benchmark::DoNotOptimize(angle);
  }
}
BENCHMARK(BM_DAngle);

void BM_ValidAngle(benchmark::State& state) {
  const auto& cases = sweeps();
  std::size_t i = 0;
  for (auto _ : state) {
    const Sweep& c = cases[i++ & kMask];
    benchmark::DoNotOptimize(ValidAngle(kEps, c.start, c.end, c.angle));
  }
}
BENCHMARK(BM_ValidAngle);

void BM_SolveQuadratic(benchmark::State& state) {
  const auto& cases = polynomials(2);
  std::size_t i = 0;
  double roots[2];
  for (auto _ : state) {
    const Coefficients& c = cases[i++ & kMask];
    benchmark::DoNotOptimize(tarnsysm::detail::SolveQuadratic(kEps, c.a, c.b, c.c, roots));
    benchmark::DoNotOptimize(roots);
  }
}
BENCHMARK(BM_SolveQuadratic);

void BM_SolveCubic(benchmark::State& state) {
  const auto& cases = polynomials(3);
  std::size_t i = 0;
  double roots[3];
  for (auto _ : state) {
    const Coefficients& c = cases[i++ & kMask];
    benchmark::DoNotOptimize(tarnsysm::detail::SolveCubic(kEps, c.a, c.b, c.c, c.d, roots));
    benchmark::DoNotOptimize(roots);
  }
}
BENCHMARK(BM_SolveCubic);

void BM_SolveQuartic(benchmark::State& state) {
  const auto& cases = polynomials(4);
  std::size_t i = 0;
  double roots[4];
  for (auto _ : state) {
    const Coefficients& c = cases[i++ & kMask];
    benchmark::DoNotOptimize(tarnsysm::detail::SolveQuartic(kEps, c.a, c.b, c.c, c.d, c.e, roots));
    benchmark::DoNotOptimize(roots);
  }
}
BENCHMARK(BM_SolveQuartic);

// The library's elementary functions beside the C library's, on arguments spread uniformly over
// [lo, hi] (both arguments alike for atan2).
template <class F>
void BM_Elementary(benchmark::State& state, F f, double lo, double hi) {
  std::array<double, kCases> a{}, b{};
  std::mt19937_64 rng(106);
  std::uniform_real_distribution<double> arg(lo, hi);
  for (std::size_t k = 0; k < kCases; ++k) {
    a[k] = arg(rng);
    b[k] = arg(rng);
  }
  std::size_t i = 0;
  for (auto _ : state) {
    benchmark::DoNotOptimize(f(a[i & kMask], b[i & kMask]));
    ++i;
  }
}

namespace el = tarnsysm::detail::portable;
BENCHMARK_CAPTURE(
    BM_Elementary, sin, [](double x, double) { return el::sin(x); }, -kTwoPi, kTwoPi);
BENCHMARK_CAPTURE(
    BM_Elementary, std_sin, [](double x, double) { return std::sin(x); }, -kTwoPi, kTwoPi);
BENCHMARK_CAPTURE(
    BM_Elementary, cos, [](double x, double) { return el::cos(x); }, -kTwoPi, kTwoPi);
BENCHMARK_CAPTURE(
    BM_Elementary, std_cos, [](double x, double) { return std::cos(x); }, -kTwoPi, kTwoPi);
BENCHMARK_CAPTURE(
    BM_Elementary, tan, [](double x, double) { return el::tan(x); }, -kPi, kPi);
BENCHMARK_CAPTURE(
    BM_Elementary, std_tan, [](double x, double) { return std::tan(x); }, -kPi, kPi);
BENCHMARK_CAPTURE(
    BM_Elementary, atan, [](double x, double) { return el::atan(x); }, -10.0, 10.0);
BENCHMARK_CAPTURE(
    BM_Elementary, std_atan, [](double x, double) { return std::atan(x); }, -10.0, 10.0);
BENCHMARK_CAPTURE(
    BM_Elementary, atan2, [](double y, double x) { return el::atan2(y, x); }, -500.0, 500.0);
BENCHMARK_CAPTURE(
    BM_Elementary, std_atan2, [](double y, double x) { return std::atan2(y, x); }, -500.0, 500.0);
BENCHMARK_CAPTURE(
    BM_Elementary, asin, [](double x, double) { return el::asin(x); }, -1.0, 1.0);
BENCHMARK_CAPTURE(
    BM_Elementary, std_asin, [](double x, double) { return std::asin(x); }, -1.0, 1.0);
BENCHMARK_CAPTURE(
    BM_Elementary, acos, [](double x, double) { return el::acos(x); }, -1.0, 1.0);
BENCHMARK_CAPTURE(
    BM_Elementary, std_acos, [](double x, double) { return std::acos(x); }, -1.0, 1.0);
BENCHMARK_CAPTURE(
    BM_Elementary, pow_third, [](double x, double) { return el::powOneThird(x); }, 0.0, 1e6);
BENCHMARK_CAPTURE(
    BM_Elementary, std_pow_third, [](double x, double) { return std::pow(x, 1.0 / 3.0); }, 0.0,
    1e6);

}  // namespace
