// Tarnsysm: planar computational geometry for 2D drafting.
// Benchmarks of PLineOffset on the shared test shapes (circle, gear, rounded rectangle, star), and
// of TrimLoopS and PLineOffset on shapes that once made the trimming quadratic (a zigzag on one
// line, a spiky star).
//
// Each case offsets one closed shape of N vertices by a fixed distance to one side, the side
// given by a pick point clearly on it, as an interactive offset would. Report medians of
// repeated runs, for example:
//   tarnsysm_offset_bench --benchmark_repetitions=5 --benchmark_report_aggregates_only=true
// The "rows" counter is the result of the last call: 0 means the offset failed, and the time
// then measures a failure, not an offset.
// Each shared shape is also run as offset/.../unchecked: the same offset without the check of
// its result that PLineOffset makes before it returns, so the two times give that check's cost.
#include <Tarnsysm.h>

#include "offset/internal.h"
#include "shapes.h"

#include <benchmark/benchmark.h>

#include <cmath>
#include <cstddef>
#include <cstring>
#include <memory>
#include <string>
#include <vector>

namespace {

using tarnsysm::bench::makeShape;
using tarnsysm::bench::makeSpikyStar;
using tarnsysm::bench::makeZigzag;
using tarnsysm::bench::pickPoint;
using tarnsysm::bench::ShapeKind;
using tarnsysm::bench::shapeName;
using tarnsysm::bench::shapeSize;
using tarnsysm::bench::ShapeVertex;
using tarnsysm::bench::Side;

constexpr double kEps = 1e-9;

struct OffsetCase {
  ShapeKind kind;
  Side side;
  double distance;
  std::vector<int> sizes;
};

// Rows in the library's layout: field 3 numbers the source vertex, field 4 is 0.
void fillRows(const std::vector<ShapeVertex>& shape, double (*rows)[5]) {
  for (std::size_t i = 0; i < shape.size(); ++i) {
    rows[i][0] = shape[i].x;
    rows[i][1] = shape[i].y;
    rows[i][2] = shape[i].bulge;
    rows[i][3] = static_cast<double>(i);
    rows[i][4] = 0.0;
  }
}

// finalCheck false: the offset without the check of its result that PLineOffset makes last,
// to measure what that check costs.
void offsetShape(benchmark::State& state, ShapeKind kind, Side side, double distance,
                 bool finalCheck) {
  const int n = static_cast<int>(state.range(0));
  const std::vector<ShapeVertex> shape = makeShape(kind, n);
  // The caller's array needs room for twice the input rows.
  std::unique_ptr<double[][5]> source(new double[2 * static_cast<std::size_t>(n)][5]());
  std::unique_ptr<double[][5]> rows(new double[2 * static_cast<std::size_t>(n)][5]());
  fillRows(shape, source.get());
  double pick[2];
  pickPoint(kind, shape, side, pick);

  int result = 0;
  for (auto _ : state) {
    // The offset rewrites its rows in place: give each call a fresh copy, outside the timing.
    state.PauseTiming();
    std::memcpy(rows.get(), source.get(), sizeof(double[5]) * static_cast<std::size_t>(n));
    int closed = 1;
    state.ResumeTiming();

    result =
        tarnsysm::detail::offsetPLine(kEps, &closed, n, rows.get(), 0, pick, distance, finalCheck);
    benchmark::DoNotOptimize(result);
    benchmark::ClobberMemory();
  }
  if (result < 0 || result > 2 * n)
    state.SkipWithError("row count outside the caller's 2n rows");
  state.counters["rows"] = result;
  // Seconds per input vertex (shown as 1.2u for 1.2 us).
  state.counters["per_vertex"] =
      benchmark::Counter(static_cast<double>(n), benchmark::Counter::kIsIterationInvariantRate |
                                                     benchmark::Counter::kInvert);
}

// The round-corner engine on the same shape, distance and side: the rows are only read, so no
// copy is needed; the room comes from a first call outside the timing.
void offsetShapeRound(benchmark::State& state, ShapeKind kind, Side side, double distance) {
  const int n = static_cast<int>(state.range(0));
  const std::vector<ShapeVertex> shape = makeShape(kind, n);
  std::unique_ptr<double[][5]> source(new double[static_cast<std::size_t>(n)][5]());
  fillRows(shape, source.get());
  // Counter-clockwise shapes: outward is to the right of travel.
  const double d = side == Side::kOutward ? distance : -distance;
  int loops = 0;
  const int need =
      -PLineOffsetRound(kEps, 1, n, source.get(), d, nullptr, 0, nullptr, nullptr, 0, &loops);
  std::vector<double> out(5 * static_cast<std::size_t>(need > 0 ? need : 1));
  std::vector<int> starts(static_cast<std::size_t>(loops > 0 ? loops : 1)), closed(starts.size());
  int result = 0;
  for (auto _ : state) {
    result =
        PLineOffsetRound(kEps, 1, n, source.get(), d, reinterpret_cast<double(*)[5]>(out.data()),
                         need, starts.data(), closed.data(), loops, &loops);
    benchmark::DoNotOptimize(result);
    benchmark::ClobberMemory();
  }
  state.counters["rows"] = result;
  state.counters["loops"] = loops;
}

const OffsetCase kCases[] = {
    {ShapeKind::kCircle, Side::kOutward, 1.0, {1000, 10000, 100000}},
    {ShapeKind::kCircle, Side::kInward, 50.0, {1000, 10000, 100000}},
    {ShapeKind::kGear, Side::kInward, 0.5, {1000, 10000, 100000}},
    {ShapeKind::kGear, Side::kOutward, 0.5, {1000, 10000, 100000}},
    {ShapeKind::kRoundedRect, Side::kInward, 5.0, {1000, 10000, 100000}},
    {ShapeKind::kRoundedRect, Side::kOutward, 5.0, {1000, 10000, 100000}},
    // Heavy self-intersection of the raw offset: a search over all its crossings is quadratic.
    {ShapeKind::kStar, Side::kInward, 2.0, {1000, 10000, 100000}},
    {ShapeKind::kStar, Side::kInward, 10.0, {1000, 10000, 100000}},
};

// ---- Hostile shapes ---------------------------------------------------------------------------

enum class Call { kTrim, kOffset };

struct HostileCase {
  const char* name;
  std::vector<ShapeVertex> (*make)(int);
  int closed;
  Call call;
  double pick[2];
  double distance;
  std::vector<int> sizes;
};

void runHostile(benchmark::State& state, const HostileCase* c) {
  const int n = static_cast<int>(state.range(0));
  const std::vector<ShapeVertex> shape = c->make(n);
  std::unique_ptr<double[][5]> source(new double[2 * static_cast<std::size_t>(n)][5]());
  std::unique_ptr<double[][5]> rows(new double[2 * static_cast<std::size_t>(n)][5]());
  fillRows(shape, source.get());
  double pick[2] = {c->pick[0], c->pick[1]};
  int result = 0;
  for (auto _ : state) {
    state.PauseTiming();
    std::memcpy(rows.get(), source.get(), sizeof(double[5]) * static_cast<std::size_t>(n));
    int closed = c->closed;
    state.ResumeTiming();

    result = c->call == Call::kTrim
                 ? TrimLoopS(kEps, pick, &closed, n, rows.get())
                 : PLineOffset(kEps, &closed, n, rows.get(), 0, pick, c->distance);
    benchmark::DoNotOptimize(result);
    benchmark::ClobberMemory();
  }
  state.counters["rows"] = result;
}

// The zigzag's pick (2, 0) lies on its line beyond the turn at x = 1: the only point from which
// a turn is visible, so the offset goes ahead and bridges every turn with a half circle. From
// (0.5, 1) every turn is hidden behind another segment ending there and the offset fails after
// the first trim. The spiky star is offset outwards, from a pick well outside it, and inwards,
// from its centre.
const HostileCase kHostile[] = {
    {"trim/zigzag", makeZigzag, 1, Call::kTrim, {0.5, 1.0}, 0.0, {16000, 100000}},
    {"offset/zigzag/hidden/0.3", makeZigzag, 1, Call::kOffset, {0.5, 1.0}, 0.3, {16000, 100000}},
    {"offset/zigzag/beyond/0.5", makeZigzag, 0, Call::kOffset, {2.0, 0.0}, 0.5, {16000, 100000}},
    {"trim/spiky", makeSpikyStar, 1, Call::kTrim, {0.0, 0.0}, 0.0, {8000, 100000}},
    {"offset/spiky/outward/5", makeSpikyStar, 1, Call::kOffset, {300.0, 0.1}, 5.0, {8000, 100000}},
    {"offset/spiky/inward/5", makeSpikyStar, 1, Call::kOffset, {0.0, 0.0}, 5.0, {8000, 100000}},
};

// Names read like the measurement table: offset/circle/outward/1/10000.
void registerCases() {
  for (const HostileCase& c : kHostile) {
    benchmark::internal::Benchmark* b = benchmark::RegisterBenchmark(c.name, runHostile, &c);
    for (int n : c.sizes)
      b->Arg(n);
    b->ArgName("N")->Unit(benchmark::kMillisecond);
  }
  for (const OffsetCase& c : kCases) {
    std::string distance = std::to_string(c.distance);
    distance.erase(distance.find_last_not_of('0') + 1);
    if (distance.back() == '.')
      distance.pop_back();
    const std::string name = "offset/" + shapeName(c.kind) + "/" +
                             (c.side == Side::kInward ? "inward" : "outward") + "/" + distance;
    for (const bool finalCheck : {true, false}) {
      benchmark::internal::Benchmark* b =
          benchmark::RegisterBenchmark((finalCheck ? name : name + "/unchecked").c_str(),
                                       offsetShape, c.kind, c.side, c.distance, finalCheck);
      for (int n : c.sizes)
        b->Arg(n);
      b->ArgName("N")->Unit(benchmark::kMillisecond);
    }
    benchmark::internal::Benchmark* round = benchmark::RegisterBenchmark(
        ("round_" + name).c_str(), offsetShapeRound, c.kind, c.side, c.distance);
    for (int n : c.sizes)
      round->Arg(n);
    round->ArgName("N")->Unit(benchmark::kMillisecond);
  }
}

}  // namespace

int main(int argc, char** argv) {
  registerCases();
  benchmark::Initialize(&argc, argv);
  if (benchmark::ReportUnrecognizedArguments(argc, argv))
    return 1;
  benchmark::RunSpecifiedBenchmarks();
  benchmark::Shutdown();
  return 0;
}
