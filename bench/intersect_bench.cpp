// Tarnsysm: planar computational geometry for 2D drafting.
// Benchmarks of the line, circle and arc intersections, on varied realistic inputs.
#include <Tarnsysm.h>

#include "primitives/internal.h"

#include <benchmark/benchmark.h>

#include <array>
#include <cstddef>
#include <random>

namespace {

using tarnsysm::detail::kTwoPi;

// A ring of precomputed cases (a power of two long): each call sees new arguments.
constexpr std::size_t kCases = 1024;
constexpr std::size_t kMask = kCases - 1;
constexpr double kEps = 1e-9;

struct LinePair {
  double x1, y1, x2, y2, x3, y3, x4, y4;
};

// A segment and an arc; the segment passes within about the radius of the centre, so most cases
// are secants, some miss and the arc angles accept some points and reject others.
struct LineArc {
  double x1, y1, x2, y2, cx, cy, r, sa, ea;
};

// Two arcs whose circles mostly cross.
struct ArcPair {
  double x1, y1, r1, sa1, ea1, x2, y2, r2, sa2, ea2;
};

const std::array<LinePair, kCases>& linePairs() {
  static const auto cases = [] {
    std::array<LinePair, kCases> v{};
    std::mt19937_64 rng(201);
    std::uniform_real_distribution<double> coord(-100.0, 100.0);
    for (auto& c : v)
      c = {coord(rng), coord(rng), coord(rng), coord(rng),
           coord(rng), coord(rng), coord(rng), coord(rng)};
    return v;
  }();
  return cases;
}

const std::array<LineArc, kCases>& lineArcs() {
  static const auto cases = [] {
    std::array<LineArc, kCases> v{};
    std::mt19937_64 rng(202);
    std::uniform_real_distribution<double> coord(-100.0, 100.0);
    std::uniform_real_distribution<double> radius(1.0, 50.0);
    std::uniform_real_distribution<double> unit(-1.2, 1.2);
    std::uniform_real_distribution<double> turn(0.0, kTwoPi);
    for (auto& c : v) {
      c.cx = coord(rng);
      c.cy = coord(rng);
      c.r = radius(rng);
      c.x1 = c.cx + 2.0 * c.r * unit(rng);
      c.y1 = c.cy + 2.0 * c.r * unit(rng);
      c.x2 = c.cx + 2.0 * c.r * unit(rng);
      c.y2 = c.cy + 2.0 * c.r * unit(rng);
      c.sa = turn(rng);
      c.ea = c.sa + turn(rng);
    }
    return v;
  }();
  return cases;
}

const std::array<ArcPair, kCases>& arcPairs() {
  static const auto cases = [] {
    std::array<ArcPair, kCases> v{};
    std::mt19937_64 rng(203);
    std::uniform_real_distribution<double> coord(-100.0, 100.0);
    std::uniform_real_distribution<double> radius(1.0, 50.0);
    std::uniform_real_distribution<double> unit(-1.0, 1.0);
    std::uniform_real_distribution<double> turn(0.0, kTwoPi);
    for (auto& c : v) {
      c.x1 = coord(rng);
      c.y1 = coord(rng);
      c.r1 = radius(rng);
      c.r2 = radius(rng);
      c.x2 = c.x1 + (c.r1 + c.r2) * 0.8 * unit(rng);
      c.y2 = c.y1 + (c.r1 + c.r2) * 0.8 * unit(rng);
      c.sa1 = turn(rng);
      c.ea1 = c.sa1 + turn(rng);
      c.sa2 = turn(rng);
      c.ea2 = c.sa2 + turn(rng);
    }
    return v;
  }();
  return cases;
}

void BM_D2LInts(benchmark::State& state) {
  const auto& cases = linePairs();
  std::size_t i = 0;
  double x = 0.0, y = 0.0;
  int flag = 0;
  for (auto _ : state) {
    const LinePair& c = cases[i++ & kMask];
    benchmark::DoNotOptimize(
        D2LInts(kEps, c.x1, c.y1, c.x2, c.y2, c.x3, c.y3, c.x4, c.y4, &x, &y, &flag));
    benchmark::DoNotOptimize(x);
    benchmark::DoNotOptimize(y);
    benchmark::DoNotOptimize(flag);
  }
}
BENCHMARK(BM_D2LInts);

void BM_DCirLInts(benchmark::State& state) {
  const auto& cases = lineArcs();
  std::size_t i = 0;
  double xa = 0.0, ya = 0.0, xb = 0.0, yb = 0.0;
  int flag = 0;
  for (auto _ : state) {
    const LineArc& c = cases[i++ & kMask];
    benchmark::DoNotOptimize(
        DCirLInts(kEps, c.x1, c.y1, c.x2, c.y2, c.cx, c.cy, c.r, &xa, &ya, &xb, &yb, &flag));
    benchmark::DoNotOptimize(xa);
    benchmark::DoNotOptimize(yb);
    benchmark::DoNotOptimize(flag);
  }
}
BENCHMARK(BM_DCirLInts);

void BM_DArcLInts(benchmark::State& state) {
  const auto& cases = lineArcs();
  std::size_t i = 0;
  double xa = 0.0, ya = 0.0, xb = 0.0, yb = 0.0;
  int flag = 0;
  for (auto _ : state) {
    const LineArc& c = cases[i++ & kMask];
    benchmark::DoNotOptimize(DArcLInts(kEps, c.x1, c.y1, c.x2, c.y2, c.cx, c.cy, c.r, c.sa, c.ea,
                                       &xa, &ya, &xb, &yb, &flag));
    benchmark::DoNotOptimize(xa);
    benchmark::DoNotOptimize(yb);
    benchmark::DoNotOptimize(flag);
  }
}
BENCHMARK(BM_DArcLInts);

void BM_D2CirInts(benchmark::State& state) {
  const auto& cases = arcPairs();
  std::size_t i = 0;
  double xa = 0.0, ya = 0.0, xb = 0.0, yb = 0.0;
  for (auto _ : state) {
    const ArcPair& c = cases[i++ & kMask];
    benchmark::DoNotOptimize(
        D2CirInts(kEps, c.x1, c.y1, c.r1, c.x2, c.y2, c.r2, &xa, &ya, &xb, &yb));
    benchmark::DoNotOptimize(xa);
    benchmark::DoNotOptimize(yb);
  }
}
BENCHMARK(BM_D2CirInts);

void BM_D2ArcInts(benchmark::State& state) {
  const auto& cases = arcPairs();
  std::size_t i = 0;
  double xa = 0.0, ya = 0.0, xb = 0.0, yb = 0.0;
  for (auto _ : state) {
    const ArcPair& c = cases[i++ & kMask];
    benchmark::DoNotOptimize(D2ArcInts(kEps, c.x1, c.y1, c.r1, c.sa1, c.ea1, c.x2, c.y2, c.r2,
                                       c.sa2, c.ea2, &xa, &ya, &xb, &yb));
    benchmark::DoNotOptimize(xa);
    benchmark::DoNotOptimize(yb);
  }
}
BENCHMARK(BM_D2ArcInts);

}  // namespace
