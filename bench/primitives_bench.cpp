// Tarnsysm: planar computational geometry for 2D drafting.
// Benchmarks of the angle primitives and polynomial solvers.
#include <Tarnsysm.h>

#include "primitives/internal.h"

#include <benchmark/benchmark.h>

namespace {

void BM_ValidAngle(benchmark::State& state) {
  double angle = 0.3;
  for (auto _ : state) {
    benchmark::DoNotOptimize(ValidAngle(1e-9, 5.5, 1.0, angle));
    angle += 1e-3;
    if (angle > 6.0)
      angle = 0.3;
  }
}
BENCHMARK(BM_ValidAngle);

}  // namespace
