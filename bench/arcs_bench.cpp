// Tarnsysm: planar computational geometry for 2D drafting.
// Benchmarks of the bulge arcs, arc extents, arc constructions and the nearest point on an arc.
// Inputs cycle through a small fixed table so branches are not all predicted alike.
#include <Tarnsysm.h>

#include <benchmark/benchmark.h>

#include <array>
#include <cmath>
#include <cstddef>

namespace {

constexpr double kEps = 1e-9;
constexpr std::size_t kCases = 64;

struct Segment {
  double x1, y1, x2, y2, bulge;
};

// Segments in every direction with bulges of both signs, minor and major.
std::array<Segment, kCases> makeSegments() {
  std::array<Segment, kCases> s{};
  for (std::size_t i = 0; i < kCases; ++i) {
    const double a = 0.1 * static_cast<double>(i);
    s[i] = {std::cos(a), std::sin(a), 3.0 * std::cos(2.3 * a) + 0.5, 2.0 * std::sin(1.7 * a) - 1.0,
            (static_cast<double>(i % 9) - 4.0) * 0.45 + 0.1};
  }
  return s;
}

const std::array<Segment, kCases> kSegments = makeSegments();

void BM_PL_ArcParam(benchmark::State& state) {
  std::size_t i = 0;
  for (auto _ : state) {
    const Segment& s = kSegments[i++ % kCases];
    double cx = 0, cy = 0, r = 0, sa = 0, ea = 0;
    benchmark::DoNotOptimize(
        PL_ArcParam(kEps, s.x1, s.y1, s.x2, s.y2, s.bulge, &cx, &cy, &r, &sa, &ea));
    benchmark::DoNotOptimize(ea);
  }
}
BENCHMARK(BM_PL_ArcParam);

void BM_get_arc_box(benchmark::State& state) {
  struct Arc {
    double centre[2], r, sa, ea;
  };
  std::array<Arc, kCases> arcs{};
  for (std::size_t i = 0; i < kCases; ++i) {
    const Segment& s = kSegments[i];
    Arc& a = arcs[i];
    PL_ArcParam(kEps, s.x1, s.y1, s.x2, s.y2, s.bulge, &a.centre[0], &a.centre[1], &a.r, &a.sa,
                &a.ea);
  }
  std::size_t i = 0;
  for (auto _ : state) {
    Arc& a = arcs[i++ % kCases];
    double x0 = 0, y0 = 0, x1 = 0, y1 = 0;
    get_arc_box(kEps, a.centre, a.r, a.sa, a.ea, &x0, &y0, &x1, &y1);
    benchmark::DoNotOptimize(x0);
    benchmark::DoNotOptimize(y1);
  }
}
BENCHMARK(BM_get_arc_box);

void BM_PL_StpStaEdp(benchmark::State& state) {
  std::size_t i = 0;
  for (auto _ : state) {
    const Segment& s = kSegments[i++ % kCases];
    double stp[2] = {s.x1, s.y1};
    double edp[2] = {s.x2, s.y2};
    double bulge = 0, endDir = 0;
    benchmark::DoNotOptimize(PL_StpStaEdp(kEps, stp, s.bulge * 3.0, edp, &bulge, &endDir));
    benchmark::DoNotOptimize(endDir);
  }
}
BENCHMARK(BM_PL_StpStaEdp);

void BM_DArcParam3P(benchmark::State& state) {
  std::size_t i = 0;
  for (auto _ : state) {
    const Segment& s = kSegments[i++ % kCases];
    const Segment& t = kSegments[(i + 17) % kCases];
    double p1[2] = {s.x1, s.y1};
    double p2[2] = {t.x2, t.y2};
    double p3[2] = {s.x2, s.y2};
    double centre[2] = {0, 0};
    double r = 0, sa = 0, ea = 0;
    short flag = 0;
    benchmark::DoNotOptimize(DArcParam3P(kEps, p1, p2, p3, centre, &r, &sa, &ea, &flag));
    benchmark::DoNotOptimize(ea);
  }
}
BENCHMARK(BM_DArcParam3P);

void BM_DPnearArc(benchmark::State& state) {
  std::size_t i = 0;
  for (auto _ : state) {
    const Segment& s = kSegments[i++ % kCases];
    const double sa = 0.09 * static_cast<double>(i % kCases);
    double nx = 0, ny = 0;
    benchmark::DoNotOptimize(DPnearArc(kEps, s.x2, s.y2, s.x1, s.y1, 1.5, sa, sa + 2.0, &nx, &ny));
    benchmark::DoNotOptimize(ny);
  }
}
BENCHMARK(BM_DPnearArc);

}  // namespace
