// Tarnsysm: planar computational geometry for 2D drafting.
// Benchmarks of the circle constructions, the common tangents and the fitted circle.
#include <Tarnsysm.h>

#include "primitives/internal.h"

#include <benchmark/benchmark.h>

#include <array>
#include <cmath>
#include <cstddef>
#include <random>
#include <vector>

namespace {

using tarnsysm::detail::kHalfPi;
using tarnsysm::detail::kTwoPi;

// A ring of precomputed cases (a power of two long): each call sees new arguments.
constexpr std::size_t kCases = 1024;
constexpr std::size_t kMask = kCases - 1;
constexpr double kEps = 1e-9;

// Three circles with their picks; `spread` sets how far apart the centres lie in units of the
// radii: above 2 they never meet, below 1 they overlap.
struct CircleSet {
  double p[3][2];
  double c[3][3];  // r, cx, cy
};

std::array<CircleSet, kCases> circleSets(unsigned seed, double spread) {
  std::array<CircleSet, kCases> v{};
  std::mt19937_64 rng(seed);
  std::uniform_real_distribution<double> coord(-100.0, 100.0);
  std::uniform_real_distribution<double> radius(1.0, 5.0);
  std::uniform_real_distribution<double> turn(0.0, kTwoPi);
  for (auto& s : v) {
    const double x = coord(rng), y = coord(rng);
    for (int k = 0; k < 3; ++k) {
      const double r = radius(rng);
      const double a = kTwoPi * k / 3 + 0.3 * turn(rng) / kTwoPi;
      s.c[k][0] = r;
      s.c[k][1] = x + spread * 5.0 * std::cos(a);
      s.c[k][2] = y + spread * 5.0 * std::sin(a);
      const double pa = turn(rng);
      s.p[k][0] = s.c[k][1] + r * std::cos(pa);
      s.p[k][1] = s.c[k][2] + r * std::sin(pa);
    }
  }
  return v;
}

void BM_DGetCCRCircle(benchmark::State& state) {
  static const auto cases = circleSets(301, 1.5);
  std::size_t i = 0;
  double x = 0.0, y = 0.0;
  for (auto _ : state) {
    const CircleSet& s = cases[i++ & kMask];
    benchmark::DoNotOptimize(DGetCCRCircle(kEps, s.p[0][0], s.p[0][1], s.c[0][0], s.c[0][1],
                                           s.c[0][2], s.p[1][0], s.p[1][1], s.c[1][0], s.c[1][1],
                                           s.c[1][2], 4.0, &x, &y));
    benchmark::DoNotOptimize(x);
    benchmark::DoNotOptimize(y);
  }
}
BENCHMARK(BM_DGetCCRCircle);

void tangentToThree(benchmark::State& state, const std::array<CircleSet, kCases>& cases) {
  std::size_t i = 0;
  double x = 0.0, y = 0.0, r = 0.0;
  for (auto _ : state) {
    const CircleSet& s = cases[i++ & kMask];
    benchmark::DoNotOptimize(DGetCCCTanCircle(kEps, s.p[0][0], s.p[0][1], s.c[0][0], s.c[0][1],
                                              s.c[0][2], s.p[1][0], s.p[1][1], s.c[1][0], s.c[1][1],
                                              s.c[1][2], s.p[2][0], s.p[2][1], s.c[2][0], s.c[2][1],
                                              s.c[2][2], &x, &y, &r));
    benchmark::DoNotOptimize(r);
  }
}

void BM_DGetCCCTanCircle_apart(benchmark::State& state) {
  static const auto cases = circleSets(302, 4.0);
  tangentToThree(state, cases);
}
BENCHMARK(BM_DGetCCCTanCircle_apart);

void BM_DGetCCCTanCircle_overlapping(benchmark::State& state) {
  static const auto cases = circleSets(303, 0.6);
  tangentToThree(state, cases);
}
BENCHMARK(BM_DGetCCCTanCircle_overlapping);

void BM_DTangLof2Cir(benchmark::State& state) {
  static const auto cases = circleSets(304, 4.0);
  std::size_t i = 0;
  double pts[8][2];
  int count = 0;
  for (auto _ : state) {
    const CircleSet& s = cases[i++ & kMask];
    benchmark::DoNotOptimize(DTangLof2Cir(kEps, s.c[0][1], s.c[0][2], s.c[0][0], s.c[1][1],
                                          s.c[1][2], s.c[1][0], pts, &count));
    benchmark::DoNotOptimize(pts);
  }
}
BENCHMARK(BM_DTangLof2Cir);

// A quarter arc of radius 50 sampled at n points with 1% radial noise.
void BM_DGetNPCircle(benchmark::State& state) {
  const int n = static_cast<int>(state.range(0));
  std::mt19937_64 rng(305);
  std::uniform_real_distribution<double> noise(-0.5, 0.5);
  std::vector<std::array<double, 2>> pts(static_cast<std::size_t>(n));
  for (int i = 0; i < n; ++i) {
    const double a = 0.2 + kHalfPi * i / (n - 1);
    const double r = 50.0 + noise(rng);
    pts[static_cast<std::size_t>(i)] = {12.0 + r * std::cos(a), -7.0 + r * std::sin(a)};
  }
  const auto* data = reinterpret_cast<const double(*)[2]>(pts.data());
  double cx = 0.0, cy = 0.0, r = 0.0, rms = 0.0;
  for (auto _ : state) {
    benchmark::DoNotOptimize(DGetNPCircle(kEps, n, data, &cx, &cy, &r, &rms));
    benchmark::DoNotOptimize(r);
  }
}
BENCHMARK(BM_DGetNPCircle)->Arg(1000);

}  // namespace
