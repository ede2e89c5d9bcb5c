// Tarnsysm: planar computational geometry for 2D drafting.
// Tests of the round-corner offset: validity on random polygons with arcs and on the benchmark
// shapes, agreement with PLineOffset where no corner needs rounding, room and bad input.
#include <Tarnsysm.h>

#include "bench/shapes.h"
#include "offset/offset_validity.h"
#include "offset/polyline_testing.h"
#include "test_support.h"

#include <gtest/gtest.h>

#include <cmath>
#include <memory>
#include <random>
#include <string>
#include <vector>

namespace {

using tarnsysm::test::kNaN;
using tarnsysm_test::offsetValidity;
using tarnsysm_test::Polyline;
using tarnsysm_test::ValidityRow;
using tarnsysm_test::validityRows;
using tarnsysm_test::Vertex;

constexpr double kEps = 1e-9;

struct Loop {
  std::vector<ValidityRow> rows;
  bool closed;
  std::vector<double> attr3, attr4;
};

// Every loop of the round offset, through buffers of exactly the size the room query asks for
// (so AddressSanitizer sees any write past the reported rows).
std::vector<Loop> roundLoops(Polyline& in, bool closed, double d) {
  int loops = -1;
  const int need = PLineOffsetRound(kEps, closed, in.count(), in.rows(), d, nullptr, 0, nullptr,
                                    nullptr, 0, &loops);
  if (need == 0) {
    EXPECT_EQ(loops, 0);
    return {};
  }
  EXPECT_LT(need, 0);
  EXPECT_GT(loops, 0);
  std::unique_ptr<double[][5]> out(new double[static_cast<size_t>(-need)][5]);
  std::unique_ptr<int[]> start(new int[static_cast<size_t>(loops)]);
  std::unique_ptr<int[]> isClosed(new int[static_cast<size_t>(loops)]);
  int count = 0;
  EXPECT_EQ(PLineOffsetRound(kEps, closed, in.count(), in.rows(), d, out.get(), -need, start.get(),
                             isClosed.get(), loops, &count),
            -need);
  EXPECT_EQ(count, loops);
  std::vector<Loop> result;
  for (int k = 0; k < count; ++k) {
    const int end = k + 1 < count ? start[k + 1] : -need;
    Loop loop{validityRows(out.get() + start[k], end - start[k]), isClosed[k] != 0, {}, {}};
    for (int i = start[k]; i < end; ++i) {
      loop.attr3.push_back(out[i][3]);
      loop.attr4.push_back(out[i][4]);
    }
    EXPECT_TRUE(closed ? loop.closed : true);
    result.push_back(loop);
  }
  return result;
}

// Each loop is an offset of the input by d (the checker's own geometry); returns the first
// complaint with the loop's number.
std::string invalidLoop(Polyline& in, bool closed, double d, const std::vector<Loop>& loops,
                        double tol = 1e-6) {
  const std::vector<ValidityRow> source = validityRows(in.rows(), in.count());
  for (size_t k = 0; k < loops.size(); ++k) {
    const std::string why =
        offsetValidity(source, closed, loops[k].rows, loops[k].closed, d, tol);
    if (!why.empty())
      return "loop " + std::to_string(k) + ": " + why;
  }
  return "";
}

// A polygon star-shaped about the origin: sorted angles, radii in [0.35, 1] * size, about
// half the segments arcs whose bulge keeps them inside their wedge. Counter-clockwise.
std::vector<Vertex> randomStarPolygon(std::mt19937& rng, double size) {
  std::uniform_int_distribution<int> count(3, 40);
  std::uniform_real_distribution<double> unit(0.0, 1.0);
  const int n = count(rng);
  std::vector<double> angles(static_cast<size_t>(n));
  for (double& a : angles)
    a = unit(rng) * 2.0 * tarnsysm_test::kPi;
  std::sort(angles.begin(), angles.end());
  std::vector<Vertex> v;
  // Gaps below a half turn keep the origin inside, so the polygon runs counter-clockwise.
  for (int i = 0; i < n; ++i)
    if ((i + 1 < n ? angles[i + 1] : angles[0] + 2 * tarnsysm_test::kPi) - angles[i] >= 0.9 * tarnsysm_test::kPi)
      return {};
  for (int i = 0; i < n; ++i) {
    const double r = size * (0.35 + 0.65 * unit(rng));
    const double gap = (i + 1 < n ? angles[i + 1] : angles[0] + 2 * tarnsysm_test::kPi) - angles[i];
    const double bulge = unit(rng) < 0.5 ? 0.0 : (unit(rng) - 0.5) * std::min(0.8, gap);
    v.push_back({r * std::cos(angles[i]), r * std::sin(angles[i]), bulge});
  }
  return v;
}

// The random polygon does not cross itself: neighbouring segments share only their row.
bool simple(const std::vector<Vertex>& v) {
  namespace vd = tarnsysm_test::validity_detail;
  std::vector<ValidityRow> rows;
  for (const Vertex& p : v)
    rows.push_back({p.x, p.y, p.bulge});
  const auto segs = vd::segments(rows, true, 0.0);
  for (size_t i = 0; i < segs.size(); ++i)
    for (size_t j = i + 1; j < segs.size(); ++j) {
      const vd::Hits hits = vd::crossings(segs[i], segs[j], 1e-9);
      for (int k = 0; k < hits.n; ++k)
        if (!(j == i + 1 && vd::len(hits.p[k] - segs[i].b) < 1e-7) &&
            !(i == 0 && j + 1 == segs.size() && vd::len(hits.p[k] - segs[0].a) < 1e-7))
          return false;
    }
  return true;
}

TEST(RoundOffset, random_polygons_with_arcs_give_valid_offsets) {
  std::mt19937 rng(20261123);
  std::uniform_real_distribution<double> fraction(0.01, 0.33);
  int cases = 0, empty = 0, loops = 0;
  while (cases < 2000) {
    const std::vector<Vertex> shape = randomStarPolygon(rng, 10.0);
    if (shape.empty() || !simple(shape))
      continue;
    Polyline in(shape);
    const double d = 10.0 * fraction(rng);
    for (const bool closed : {true, false}) {
      for (const double signedD : {d, -d}) {
        const std::vector<Loop> result = roundLoops(in, closed, signedD);
        if (getenv("DUMP") && atoi(getenv("DUMP")) == cases + 1) {
          printf("%d %.17g %d\n", closed ? 1 : 0, signedD, in.count());
          for (int i = 0; i < in.count(); ++i) printf("%.17g %.17g %.17g\n", in[i][0], in[i][1], in[i][2]);
        }
        ++cases;
        empty += result.empty();
        loops += static_cast<int>(result.size());
        ASSERT_EQ(invalidLoop(in, closed, signedD, result), "")
            << "case " << cases << " closed " << closed << " d " << signedD;
        // Outwards (right of a counter-clockwise polygon) an offset always exists.
        if (closed && signedD > 0.0) {
          ASSERT_EQ(result.size(), 1u) << "case " << cases;
        }
      }
    }
  }
  RecordProperty("empty", empty);
  RecordProperty("loops", loops);
}
}  // namespace
