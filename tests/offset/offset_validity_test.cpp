// Tarnsysm: planar computational geometry for 2D drafting.
// PLineOffset never returns a wrong offset: random star-shaped polygons with arcs, the benchmark
// star and gear, and polygons that once came out wrong. A 0 result is allowed; anything else
// must pass the independent checker of offset_validity.h.
#include "offset/polyline_testing.h"

#include "bench/shapes.h"

#include <Tarnsysm.h>

#include <gtest/gtest.h>

#include <cmath>
#include <cstdio>
#include <fstream>
#include <random>
#include <string>
#include <tuple>

namespace {

using namespace tarnsysm_test;

constexpr double kEps = 1e-9;
constexpr double kTol = 1e-6;

// Fewer random cases under AddressSanitizer, where each costs ten times as much.
#if defined(__SANITIZE_ADDRESS__)
#define TARNSYSM_TEST_ASAN
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
#define TARNSYSM_TEST_ASAN
#endif
#endif
#ifdef TARNSYSM_TEST_ASAN
constexpr int kRandomCases = 400;
#else
constexpr int kRandomCases = 2400;
#endif

// PLineOffset of the rows at the distance; when it is not 0, the checker's verdict at the side
// where the pick lies (none where the pick has no clear side).
std::string offsetVerdict(const Rows& src, bool closed, double px, double py, double d,
                          int* count) {
  Polyline pl(src);
  int flag = closed;
  double pick[2] = {px, py};
  *count = PLineOffset(kEps, &flag, pl.count(), pl.rows(), 0, pick, d);
  EXPECT_TRUE((*count == 0 || (*count >= 2 && *count <= 2 * pl.count())) &&
              (flag == 0 || flag == 1));
  const int side = sideOf(src, closed, px, py, kTol);
  if (*count == 0 || side == 0)
    return "";
  return offsetValidity(src, closed, pl.first(*count), flag != 0, side * d, kTol);
}

// A star-shaped polygon about the origin: n vertices at increasing angles, radii 30 to 100,
// about every other segment an arc of bulge up to 0.4 either way; redrawn until simple.
Rows randomStar(std::mt19937_64& rng, int n, bool closed) {
  std::uniform_real_distribution<double> unit(0.0, 1.0);
  for (;;) {
    Rows rows;
    std::vector<double> gaps(n);
    double total = 0.0, angle = unit(rng) * 2 * kPi;
    for (double& g : gaps)
      total += g = 0.3 + unit(rng);
    for (int i = 0; i < n; ++i) {
      const double r = 30.0 + 70.0 * unit(rng);
      rows.push_back({r * std::cos(angle), r * std::sin(angle),
                      unit(rng) < 0.5 ? 0.0 : 0.8 * unit(rng) - 0.4});
      angle += gaps[i] / total * 2 * kPi;
    }
    if (selfCrossing(rows, closed, kTol).empty())
      return rows;
  }
}

// Both sides, open and closed, distances up to a third of the size; the pick a quarter of the
// distance off the middle of segment 0, or right next to it (a thousandth of what is nearby, as
// the tool places it). The side is wherever the pick lies.
TEST(OffsetValidity, random_star_shaped_polygons_offset_validly_or_not_at_all) {
  std::mt19937_64 rng(20261123);
  std::uniform_real_distribution<double> unit(0.0, 1.0);
  int zeros = 0, invalid = 0;
  for (int c = 0; c < kRandomCases; ++c) {
    const bool closed = c % 4 < 2;
    const Rows src = randomStar(rng, 3 + static_cast<int>(unit(rng) * 58), closed);
    const double d = (0.01 + unit(rng)) * 100.0 / 3.0 / 1.01;
    const Vertex a = src[0], b = src[1];
    const double dx = b.x - a.x, dy = b.y - a.y, len = std::hypot(dx, dy);
    const double radius =
        a.bulge != 0 ? len * (1 + a.bulge * a.bulge) / (4 * std::fabs(a.bulge)) : d;
    const double off =
        (c % 2 == 0 ? 1 : -1) * (c % 8 < 4 ? d / 4 : std::fmin(len, std::fmin(d, radius)) / 1000);
    // The middle of an arc lies a sagitta (chord/2 * bulge) right of the chord's midpoint.
    const double k = off + len / 2 * a.bulge;
    int count = 0;
    const std::string why = offsetVerdict(src, closed, (a.x + b.x) / 2 + k * dy / len,
                                          (a.y + b.y) / 2 - k * dx / len, d, &count);
    zeros += count == 0;
    if (!why.empty() && ++invalid <= 5)
      ADD_FAILURE() << "case " << c << " (" << src.size() << " rows, closed " << closed << ", d "
                    << d << "): " << why;
  }
  EXPECT_EQ(invalid, 0);
  std::printf("%d random offsets, %d returned 0\n", kRandomCases, zeros);
}

Rows readRows(const std::string& file) {
  std::ifstream in(std::string(TARNSYSM_TEST_DATA_DIR) + "/" + file);
  std::string word;
  int n = 0;
  in >> word >> n;
  Rows rows(static_cast<size_t>(n));
  for (Vertex& r : rows)
    in >> r.x >> r.y >> r.bulge;
  return rows;
}

// Shapes that once came out wrong: the benchmark star and gear inwards (near-reversing corners
// whose joins reached across the region and left reversed islands far from the outline), and
// tests/data/offset_*.txt (a hole loop kept instead of the enclosing offset, a two-row lens
// offset past its collapse, a triangle offset past its inradius 0.25). Each gives a valid offset
// or 0; an offset must come back where `exists`.
TEST(OffsetValidity, hard_shapes_offset_validly_or_not_at_all) {
  struct Case {
    std::string name;
    Rows rows;
    double px, py, d;
    bool exists;
  };
  std::vector<Case> cases = {
      {"tiny_loop", readRows("offset_outward_tiny_loop.txt"), -59.811597365284626,
       -31.232084258706678, 1.1897316152978388, false},
      {"no_collapse", readRows("offset_inward_no_collapse.txt"), 43.032223269494004,
       57.927028628898348, 2.9740605387230445, false},
      {"outward_zero", readRows("offset_outward_zero.txt"), 10.856599807408294, 66.231551054660429,
       0.36927746705852471, false},
  };
  using tarnsysm::bench::ShapeKind;
  for (const auto& [kind, n, d] : {std::tuple(ShapeKind::kStar, 200, 2.0),
                                   {ShapeKind::kStar, 300, 2.0},
                                   {ShapeKind::kStar, 500, 2.0},
                                   {ShapeKind::kStar, 1000, 2.0},
                                   {ShapeKind::kStar, 2000, 2.0},
                                   {ShapeKind::kGear, 100, 3.0}}) {
    const auto shape = tarnsysm::bench::makeShape(kind, n);
    double pick[2];
    tarnsysm::bench::pickPoint(kind, shape, tarnsysm::bench::Side::kInward, pick);
    Rows rows;
    for (const auto& v : shape)
      rows.push_back({v.x, v.y, v.bulge});
    cases.push_back(
        {tarnsysm::bench::shapeName(kind) + std::to_string(n), rows, pick[0], pick[1], d, false});
  }
  for (const Case& c : cases) {
    int count = 0;
    EXPECT_EQ(offsetVerdict(c.rows, true, c.px, c.py, c.d, &count), "") << c.name;
    EXPECT_TRUE(count > 0 || !c.exists) << c.name;
  }
}

}  // namespace
