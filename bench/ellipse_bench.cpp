// Tarnsysm: planar computational geometry for 2D drafting.
// Benchmarks of the ellipse routines (real time; run with --benchmark_repetitions=5 for medians)
// and, on the same arcs, the reference ways to measure an ellipse: Carlson's symmetric integrals,
// adaptive Gauss-Kronrod 7-15 and the arithmetic-geometric mean. Each measure reports its
// largest relative error against a long-double Simpson integral as the counter max_rel_error.
#include <Tarnsysm.h>

#include "primitives/internal.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <random>

namespace {

using tarnsysm::detail::kHalfPi;
using tarnsysm::detail::kPi;
using tarnsysm::detail::kTwoPi;

constexpr std::size_t kCases = 1024;
constexpr std::size_t kMask = kCases - 1;
constexpr double kEps = 1e-9;

// Ellipses with semi-axes 2 to 50 (ratio within 1/5 to 5), any rotation, arcs of half a turn.
const std::array<TSellipse, kCases>& halfTurnArcs() {
  static const auto cases = [] {
    std::array<TSellipse, kCases> v{};
    std::mt19937_64 rng(701);
    std::uniform_real_distribution<double> coord(-100.0, 100.0), size(2.0, 50.0),
        ratio(-std::log(5.0), std::log(5.0)), turn(0.0, kTwoPi);
    for (auto& e : v) {
      const double a = size(rng), start = turn(rng);
      e = TSellipse{{coord(rng), coord(rng), 0.0},
                    a,
                    a * std::exp(ratio(rng)),
                    turn(rng),
                    start,
                    start + kPi};
    }
    return v;
  }();
  return cases;
}

// A point per case for the nearest-point and line tests: off the axis lines, about the size.
struct Probe {
  double x, y, dx, dy;
};

const std::array<Probe, kCases>& probes() {
  static const auto cases = [] {
    std::array<Probe, kCases> v{};
    std::mt19937_64 rng(702);
    std::uniform_real_distribution<double> unit(-1.5, 1.5), turn(0.0, kTwoPi);
    for (std::size_t i = 0; i < kCases; ++i) {
      const TSellipse& e = halfTurnArcs()[i];
      const double d = turn(rng);
      v[i] = {e.center[0] + e.a * unit(rng), e.center[1] + e.a * unit(rng), std::cos(d),
              std::sin(d)};
    }
    return v;
  }();
  return cases;
}

// ---- Reference measures ------------------------------------------------------------------------

double speed(double a, double b, double t) {
  return std::hypot(a * std::sin(t), b * std::cos(t));
}

// The long-double Simpson integral every measure is compared with.
double referenceLength(double a, double b, double s, double e) {
  constexpr int kPanels = 40000;
  const long double h = (static_cast<long double>(e) - s) / kPanels;
  long double sum = speed(a, b, s) + speed(a, b, e);
  for (int i = 1; i < kPanels; ++i)
    sum += (i % 2 ? 4 : 2) * static_cast<long double>(speed(a, b, s + i * static_cast<double>(h)));
  return static_cast<double>(sum * h / 3);
}

// Carlson's RF and RD by the duplication theorem, to a relative error of about 1e-16.
double carlsonRF(double x, double y, double z) {
  for (;;) {
    const double sx = std::sqrt(x), sy = std::sqrt(y), sz = std::sqrt(z);
    const double lambda = sx * sy + sy * sz + sz * sx;
    x = (x + lambda) / 4;
    y = (y + lambda) / 4;
    z = (z + lambda) / 4;
    const double mu = (x + y + z) / 3;
    const double dx = (mu - x) / mu, dy = (mu - y) / mu, dz = (mu - z) / mu;
    if (std::max({std::fabs(dx), std::fabs(dy), std::fabs(dz)}) < 1e-3) {
      const double e2 = dx * dy - dz * dz, e3 = dx * dy * dz;
      return (1 - e2 / 10 + e3 / 14 + e2 * e2 / 24 - 3 * e2 * e3 / 44) / std::sqrt(mu);
    }
  }
}

double carlsonRD(double x, double y, double z) {
  double sum = 0, fac = 1;
  for (;;) {
    const double sx = std::sqrt(x), sy = std::sqrt(y), sz = std::sqrt(z);
    const double lambda = sx * sy + sy * sz + sz * sx;
    sum += fac / (sz * (z + lambda));
    fac /= 4;
    x = (x + lambda) / 4;
    y = (y + lambda) / 4;
    z = (z + lambda) / 4;
    const double mu = (x + y + 3 * z) / 5;
    const double dx = (mu - x) / mu, dy = (mu - y) / mu, dz = (mu - z) / mu;
    if (std::max({std::fabs(dx), std::fabs(dy), std::fabs(dz)}) < 1e-3) {
      const double ea = dx * dy, eb = dz * dz, ec = ea - eb, ed = ea - 6 * eb, ee = ed + 2 * ec;
      return 3 * sum + fac *
                           (1 + ed * (-3.0 / 14 + 9.0 / 88 * ed - 9.0 / 52 * dz * ee) +
                            dz * (ee / 6 + dz * (-9.0 / 22 * ec + dz * 3.0 / 26 * ea))) /
                           (mu * std::sqrt(mu));
    }
  }
}

// E(phi, k) for any phi: whole half turns by the complete integral, the rest by RF and RD.
double ellipticE(double phi, double k2) {
  const double turns = std::nearbyint(phi / kPi);
  const double p = phi - turns * kPi;
  const double s = std::sin(p), c = std::cos(p), q = 1 - k2 * s * s;
  const double partial = s * carlsonRF(c * c, q, 1) - k2 * s * s * s * carlsonRD(c * c, q, 1) / 3;
  const double complete =
      turns == 0 ? 0 : carlsonRF(0, 1 - k2, 1) - k2 * carlsonRD(0, 1 - k2, 1) / 3;
  return 2 * turns * complete + partial;
}

// Arc length by Carlson: with a >= b, the speed is a sqrt(1 - k^2 sin^2 v) at v = t - pi/2.
double carlsonLength(const TSellipse& e) {
  double a = e.a, b = e.b, s = e.start - kHalfPi, t = e.end - kHalfPi;
  if (a < b) {
    std::swap(a, b);
    s += kHalfPi;
    t += kHalfPi;
  }
  const double k2 = (a * a - b * b) / (a * a);
  return a * (ellipticE(t, k2) - ellipticE(s, k2));
}

// Adaptive Gauss-Kronrod 7-15: a panel is accepted when the two rules agree to tol.
double gaussKronrod(double a, double b, double lo, double hi, double tol, int depth) {
  static constexpr double kNodes[8] = {
      0.991455371120812639, 0.949107912342758525, 0.864864423359769073, 0.741531185599394440,
      0.586087235467691130, 0.405845151377397167, 0.207784955007898468, 0.0};
  static constexpr double kKronrod[8] = {
      0.022935322010529225, 0.063092092629978553, 0.104790010322250184, 0.140653259715525919,
      0.169004726639267903, 0.190350578064785410, 0.204432940075298892, 0.209482141084727828};
  static constexpr double kGauss[4] = {0.129484966168869693, 0.279705391489276668,
                                       0.381830050505118945, 0.417959183673469388};
  const double mid = (lo + hi) / 2, half = (hi - lo) / 2;
  double k = kKronrod[7] * speed(a, b, mid), g = kGauss[3] * speed(a, b, mid);
  for (int i = 0; i < 7; ++i) {
    const double f = speed(a, b, mid - half * kNodes[i]) + speed(a, b, mid + half * kNodes[i]);
    k += kKronrod[i] * f;
    if (i % 2 == 1)
      g += kGauss[i / 2] * f;
  }
  k *= half;
  g *= half;
  if (std::fabs(k - g) <= tol || depth > 30)
    return k;
  return gaussKronrod(a, b, lo, mid, tol / 2, depth + 1) +
         gaussKronrod(a, b, mid, hi, tol / 2, depth + 1);
}

double kronrodLength(const TSellipse& e) {
  const double tol = 1e-12 * std::max(e.a, e.b) * (e.end - e.start);
  return gaussKronrod(e.a, e.b, e.start, e.end, tol, 0);
}

// The whole perimeter by the arithmetic-geometric mean.
double agmPerimeter(const TSellipse& e) {
  double x = e.a, y = e.b, sum = (e.a * e.a - e.b * e.b) / 2, weight = 1;
  while (std::fabs(x - y) > 1e-15 * x) {
    const double c = (x - y) / 2, nx = (x + y) / 2;
    y = std::sqrt(x * y);
    x = nx;
    sum += weight * c * c;
    weight *= 2;
  }
  return 2 * kPi * (e.a * e.a - sum) / x;
}

TSellipse whole(const TSellipse& e) {
  TSellipse w = e;
  w.end = w.start + kTwoPi;
  return w;
}

// Times `measure` over the arcs (made whole when asked) and reports its worst relative error.
template <class Measure>
void timeMeasure(benchmark::State& state, bool makeWhole, Measure measure) {
  const auto& arcs = halfTurnArcs();
  double worst = 0;
  for (std::size_t i = 0; i < 64; ++i) {
    const TSellipse e = makeWhole ? whole(arcs[i]) : arcs[i];
    const double truth = referenceLength(e.a, e.b, e.start, e.end);
    worst = std::max(worst, std::fabs(measure(e) - truth) / truth);
  }
  std::size_t i = 0;
  for (auto _ : state) {
    const TSellipse e = makeWhole ? whole(arcs[i++ & kMask]) : arcs[i++ & kMask];
    benchmark::DoNotOptimize(measure(e));
  }
  state.counters["max_rel_error"] = worst;
}

// ---- The library's routines --------------------------------------------------------------------

void BM_LineIntEllips(benchmark::State& state) {
  const auto& arcs = halfTurnArcs();
  const auto& lines = probes();
  std::size_t i = 0;
  double t1 = 0, t2 = 0;
  for (auto _ : state) {
    const TSellipse& e = arcs[i & kMask];
    const Probe& p = lines[i++ & kMask];
    benchmark::DoNotOptimize(LineIntEllips(kEps, p.x, p.y, p.dx, p.dy, e.center[0], e.center[1],
                                           e.a, e.b, e.rotation, &t1, &t2));
    benchmark::DoNotOptimize(t1);
  }
}

void BM_DPnearEllipseArc(benchmark::State& state) {
  const auto& arcs = halfTurnArcs();
  const auto& points = probes();
  std::size_t i = 0;
  double out[3];
  for (auto _ : state) {
    double p[3] = {points[i & kMask].x, points[i & kMask].y, 0};
    benchmark::DoNotOptimize(DPnearEllipseArc(arcs[i++ & kMask], p, out));
    benchmark::DoNotOptimize(out[0]);
  }
}

void BM_EllipseDivide(benchmark::State& state) {
  const auto& arcs = halfTurnArcs();
  std::size_t i = 0;
  static double rows[101][3];
  for (auto _ : state) {
    int n = 100;
    benchmark::DoNotOptimize(EllipseDivide(whole(arcs[i++ & kMask]), n, rows, 0.0));
    benchmark::DoNotOptimize(rows[0][0]);
  }
}

void BM_CalEllipseLen_whole(benchmark::State& state) {
  timeMeasure(state, true, [](const TSellipse& e) { return CalEllipseLen(e); });
}
void BM_CalEllipseLen_half_turn(benchmark::State& state) {
  timeMeasure(state, false, [](const TSellipse& e) { return CalEllipseLen(e); });
}
void BM_Carlson_half_turn(benchmark::State& state) {
  timeMeasure(state, false, carlsonLength);
}
void BM_GaussKronrod_half_turn(benchmark::State& state) {
  timeMeasure(state, false, kronrodLength);
}
void BM_AGM_whole(benchmark::State& state) {
  timeMeasure(state, true, agmPerimeter);
}

void configure(benchmark::internal::Benchmark* b) {
  b->UseRealTime()->Repetitions(5)->ReportAggregatesOnly(true);
}

BENCHMARK(BM_LineIntEllips)->Apply(configure);
BENCHMARK(BM_DPnearEllipseArc)->Apply(configure);
BENCHMARK(BM_CalEllipseLen_whole)->Apply(configure);
BENCHMARK(BM_CalEllipseLen_half_turn)->Apply(configure);
BENCHMARK(BM_EllipseDivide)->Apply(configure);
BENCHMARK(BM_Carlson_half_turn)->Apply(configure);
BENCHMARK(BM_GaussKronrod_half_turn)->Apply(configure);
BENCHMARK(BM_AGM_whole)->Apply(configure);

}  // namespace
