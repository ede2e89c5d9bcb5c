// Tarnsysm: planar computational geometry for 2D drafting.
// Benchmarks of rectangle clipping (beside plain four-pass clipping), distance texts per mode, and
// wildcard list matching over generated layer names.
#include <Tarnsysm.h>

#include <benchmark/benchmark.h>

#include <array>
#include <cmath>
#include <cstddef>
#include <random>
#include <string>
#include <vector>

namespace {

constexpr double kTwoPi = 6.283185307179586;

// n points on the unit circle, the last repeating the first.
std::vector<double> closedCircle(int n) {
  std::vector<double> ring(2 * static_cast<std::size_t>(n));
  for (int i = 0; i < n; ++i) {
    const double a = kTwoPi * (i % (n - 1)) / (n - 1);
    ring[2 * i] = std::cos(a);
    ring[2 * i + 1] = std::sin(a);
  }
  return ring;
}

void BM_RectClipPolygon(benchmark::State& state) {
  const int n = static_cast<int>(state.range(0));
  std::vector<double> ring = closedCircle(n);
  std::vector<double> out(6 * static_cast<std::size_t>(n));
  double rect[2][2] = {{-0.8, -0.8}, {0.8, 0.8}};
  int count = 0;
  for (auto _ : state) {
    RectClipPolygon(rect, n, reinterpret_cast<double(*)[2]>(ring.data()), count,
                    reinterpret_cast<double(*)[2]>(out.data()));
    benchmark::DoNotOptimize(count);
    benchmark::ClobberMemory();
  }
  state.SetItemsProcessed(state.iterations() * n);
}
BENCHMARK(BM_RectClipPolygon)->Arg(1000)->Arg(100000);

// The textbook clipper for comparison: four passes over a polygon with an implied closing edge,
// crossings by the edge parameter, output in vectors kept between calls.
struct Point {
  double x, y;
};

template <typename Inside, typename Cross>
void textbookPass(const std::vector<Point>& in, std::vector<Point>& out, Inside inside,
                  Cross cross) {
  out.clear();
  if (in.empty())
    return;
  Point s = in.back();
  bool sIn = inside(s);
  for (const Point& p : in) {
    const bool pIn = inside(p);
    if (sIn != pIn)
      out.push_back(cross(s, p));
    if (pIn)
      out.push_back(p);
    s = p;
    sIn = pIn;
  }
}

void textbookClip(const std::vector<Point>& in, double x0, double y0, double x1, double y1,
                  std::vector<Point>& a, std::vector<Point>& b) {
  const auto atX = [](double x) {
    return [x](const Point& s, const Point& p) {
      return Point{x, s.y + (x - s.x) / (p.x - s.x) * (p.y - s.y)};
    };
  };
  const auto atY = [](double y) {
    return [y](const Point& s, const Point& p) {
      return Point{s.x + (y - s.y) / (p.y - s.y) * (p.x - s.x), y};
    };
  };
  textbookPass(
      in, a, [x0](const Point& p) { return p.x > x0; }, atX(x0));
  textbookPass(
      a, b, [y1](const Point& p) { return p.y < y1; }, atY(y1));
  textbookPass(
      b, a, [x1](const Point& p) { return p.x < x1; }, atX(x1));
  textbookPass(
      a, b, [y0](const Point& p) { return p.y > y0; }, atY(y0));
}

void BM_TextbookFourPassClip(benchmark::State& state) {
  const int n = static_cast<int>(state.range(0));
  const std::vector<double> ring = closedCircle(n);
  std::vector<Point> in;
  for (int i = 0; i + 1 < n; ++i)  // the closing edge is implied
    in.push_back({ring[2 * i], ring[2 * i + 1]});
  std::vector<Point> a, b;
  a.reserve(3 * static_cast<std::size_t>(n));
  b.reserve(3 * static_cast<std::size_t>(n));
  for (auto _ : state) {
    textbookClip(in, -0.8, -0.8, 0.8, 0.8, a, b);
    benchmark::DoNotOptimize(b.data());
    benchmark::ClobberMemory();
  }
  state.SetItemsProcessed(state.iterations() * n);
}
BENCHMARK(BM_TextbookFourPassClip)->Arg(1000)->Arg(100000);

// Distances as a drafting session shows them: a few feet, with fractions of an inch.
void BM_DnTos(benchmark::State& state) {
  const int mode = static_cast<int>(state.range(0));
  std::array<double, 1024> values{};
  std::mt19937_64 rng(301);
  std::uniform_real_distribution<double> distance(-500.0, 500.0);
  for (double& v : values)
    v = distance(rng);
  char out[400];
  std::size_t k = 0;
  for (auto _ : state) {
    DnTos(mode, 4, 12, 0, values[k++ & 1023], out);
    benchmark::DoNotOptimize(out);
  }
  state.SetItemsProcessed(state.iterations());
}
BENCHMARK(BM_DnTos)->DenseRange(1, 5);

// Layer names like WALL-EXT-12, A-DOOR-203 or TMP_hatch7, against a filter list mixing a run, a
// digit item, a set and a negation.
std::vector<CString> layerNames() {
  const char* prefixes[] = {"WALL", "A-DOOR", "A-WIND", "FLOOR", "TMP_hatch", "S-BEAM", "E-LITE"};
  const char* middles[] = {"-EXT-", "-INT-", "_", "-", "-NEW-"};
  std::mt19937 rng(302);
  std::vector<CString> names;
  for (int i = 0; i < 10000; ++i) {
    std::string name = prefixes[rng() % 7];
    name += middles[rng() % 5];
    name += std::to_string(rng() % 400);
    names.emplace_back(name.c_str());
  }
  return names;
}

void BM_MatchLayerNames(benchmark::State& state) {
  const std::vector<CString> names = layerNames();
  const CString filters = "wall-*-1##, a-[d-e]oor-#*, s-beam*, ~*hatch*";
  int matched = 0;
  for (auto _ : state)
    for (const CString& name : names)
      matched += Match(name, filters, 255);
  benchmark::DoNotOptimize(matched);
  state.SetItemsProcessed(state.iterations() * static_cast<long long>(names.size()));
}
BENCHMARK(BM_MatchLayerNames);

}  // namespace

BENCHMARK_MAIN();
