// Tarnsysm: planar computational geometry for 2D drafting.
// PLineOffset never returns a wrong offset: random star-shaped polygons with arcs, the benchmark
// star and gear, and polygons that once came out wrong. A 0 result is allowed; anything else
// must pass the independent checker of offset_validity.h.
#include "offset/offset_validity.h"

#include "bench/shapes.h"

#include <Tarnsysm.h>

#include <gtest/gtest.h>

#include <cmath>
#include <fstream>
#include <random>
#include <string>
#include <vector>

namespace {

using tarnsysm_test::offsetValidity;
using tarnsysm_test::sideOf;
using tarnsysm_test::ValidityRow;
using Rows = std::vector<ValidityRow>;

constexpr double kEps = 1e-9;
constexpr double kTol = 1e-6;

// Fewer random cases under the sanitizers, where each costs ten times as much.
#if defined(__SANITIZE_ADDRESS__)
constexpr int kRandomCases = 400;
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
constexpr int kRandomCases = 400;
#else
constexpr int kRandomCases = 2400;
#endif
#else
constexpr int kRandomCases = 2400;
#endif

// PLineOffset on a copy of the rows in an exact 2n-row buffer; the result rows, or none for 0.
struct Offset {
  int count;
  bool closed;
  Rows rows;
};

Offset offsetOf(const Rows& src, bool closed, double px, double py, double distance) {
  const int n = static_cast<int>(src.size());
  std::vector<double> buffer(10 * src.size());
  auto v = reinterpret_cast<double(*)[5]>(buffer.data());
  for (int i = 0; i < n; ++i) {
    v[i][0] = src[i].x;
    v[i][1] = src[i].y;
    v[i][2] = src[i].bulge;
  }
  int flag = closed ? 1 : 0;
  double pick[2] = {px, py};
  const int k = PLineOffset(kEps, &flag, n, v, 0, pick, distance);
  EXPECT_TRUE(k == 0 || (k >= 2 && k <= 2 * n)) << k;
  return {k, flag != 0, k > 0 ? tarnsysm_test::validityRows(v, k) : Rows()};
}

// The point at the middle of segment 0 moved off it by `off` to the given side (+1 right of
// travel): along the chord's normal for a line, radially for an arc.
void pickOffFirstSegment(const Rows& src, int side, double off, double* px, double* py) {
  const ValidityRow a = src[0], b = src[1];
  const double dx = b.x - a.x, dy = b.y - a.y, len = std::hypot(dx, dy);
  // The arc's middle lies a sagitta (chord/2 * bulge) to the right of the chord's midpoint.
  const double mx = (a.x + b.x) / 2 + dy / len * (len / 2 * a.bulge);
  const double my = (a.y + b.y) / 2 - dx / len * (len / 2 * a.bulge);
  *px = mx + side * off * dy / len;
  *py = my - side * off * dx / len;
}

// A star-shaped polygon about the origin: n vertices at increasing angles, radii 30 to 100,
// every other segment on average an arc of bulge up to 0.4 either way; redrawn until simple.
Rows randomStar(std::mt19937_64& rng, int n, bool closed) {
  std::uniform_real_distribution<double> unit(0.0, 1.0);
  for (;;) {
    Rows rows;
    std::vector<double> gaps(n);
    double total = 0.0;
    for (double& g : gaps)
      total += g = 0.3 + unit(rng);
    double angle = unit(rng) * 6.283185307179586;
    for (int i = 0; i < n; ++i) {
      const double r = 30.0 + 70.0 * unit(rng);
      const double bulge = unit(rng) < 0.5 ? 0.0 : 0.8 * unit(rng) - 0.4;
      rows.push_back({r * std::cos(angle), r * std::sin(angle), bulge});
      angle += gaps[i] / total * 6.283185307179586;
    }
    if (tarnsysm_test::selfCrossing(rows, closed, kTol).empty())
      return rows;
  }
}

// Random polygons, both sides, open and closed, the pick a quarter of the distance off the first
// segment or right next to it (a thousandth of what is nearby, as the tool places it).
TEST(OffsetValidity, random_star_shaped_polygons_offset_validly_or_not_at_all) {
  std::mt19937_64 rng(20261123);
  std::uniform_real_distribution<double> unit(0.0, 1.0);
  int zeros = 0, invalid = 0;
  for (int c = 0; c < kRandomCases; ++c) {
    const int n = 3 + static_cast<int>(unit(rng) * 58);
    const bool closed = c % 4 < 2;
    const Rows src = randomStar(rng, n, closed);
    const int side = c % 2 == 0 ? 1 : -1;
    const double d = (0.01 + unit(rng)) * 100.0 / 3.0 / 1.01;
    const double chord = std::hypot(src[1].x - src[0].x, src[1].y - src[0].y);
    const double b = std::fabs(src[0].bulge);
    const double near = std::fmin(std::fmin(chord, d), b > 0 ? chord * (1 + b * b) / (4 * b) : d);
    double px, py;
    pickOffFirstSegment(src, side, c % 8 < 4 ? d / 4 : near / 1000, &px, &py);
    // The side the offset must take is the pick's, whichever segment it lies nearest.
    const int pickSide = sideOf(src, closed, px, py, kTol);
    if (pickSide == 0)
      continue;
    const Offset off = offsetOf(src, closed, px, py, d);
    if (off.count == 0) {
      ++zeros;
      continue;
    }
    const std::string why = offsetValidity(src, closed, off.rows, off.closed, pickSide * d, kTol);
    if (!why.empty() && ++invalid <= 5)
      ADD_FAILURE() << "case " << c << " (" << n << " rows, " << (closed ? "closed" : "open")
                    << ", d " << pickSide * d << "): " << why;
  }
  EXPECT_EQ(invalid, 0);
  std::printf("%d random offsets, %d returned 0\n", kRandomCases, zeros);
}

}  // namespace
