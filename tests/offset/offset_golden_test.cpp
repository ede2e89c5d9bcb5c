// Tarnsysm: planar computational geometry for 2D drafting.
// Golden fingerprints of PLineOffset on the benchmark shapes.
//
// The fingerprints below pin the output of the offset. They are not a statement of what is
// right: they prove that work on the offset's speed changes no bit of any result. A change that
// is meant to change results must record new values here, and say why, in the same commit.
#include "bench/shapes.h"

#include <Tarnsysm.h>

#include <gtest/gtest.h>

#include <cstdint>
#include <cstdio>
#include <cstring>
#include <memory>
#include <string>
#include <vector>

namespace {

using tarnsysm::bench::ShapeKind;
using tarnsysm::bench::Side;

struct GoldenCase {
  ShapeKind kind;
  int n;
  Side side;
  double distance;
  int closed;  // 0: the shape's rows taken as an open polyline
  int rows, closedAfter;
  std::uint64_t hash;  // FNV-1a over every bit of every field of the result rows
};

// clang-format off
const GoldenCase kCases[] = {
    // The measured cases at N = 1,000.
    {ShapeKind::kCircle, 1000, Side::kOutward, 1.0, 1, 1000, 1, 0x39e129c7e61acf14ULL},
    {ShapeKind::kCircle, 1000, Side::kInward, 50.0, 1, 1000, 1, 0xab829757a4ba9be1ULL},
    {ShapeKind::kGear, 1000, Side::kInward, 0.5, 1, 1000, 1, 0xaddf23fc75f03b82ULL},
    {ShapeKind::kGear, 1000, Side::kOutward, 0.5, 1, 1000, 1, 0xfd4b0ea8411f2d4dULL},
    {ShapeKind::kRoundedRect, 1000, Side::kInward, 5.0, 1, 1000, 1, 0x22b3c2d55bca397cULL},
    {ShapeKind::kRoundedRect, 1000, Side::kOutward, 5.0, 1, 1000, 1, 0xb7a751c7e0c47a34ULL},
    {ShapeKind::kStar, 1000, Side::kInward, 2.0, 1, 0, 1, 0},
    {ShapeKind::kStar, 1000, Side::kInward, 10.0, 1, 0, 1, 0},
    // The same rows as open polylines: the free ends take other paths through the builder.
    {ShapeKind::kCircle, 1000, Side::kOutward, 1.0, 0, 1000, 0, 0x5b5cae4c816f238bULL},
    {ShapeKind::kGear, 1000, Side::kOutward, 0.5, 0, 1000, 0, 0x653f3116551a08b7ULL},
    {ShapeKind::kRoundedRect, 1000, Side::kInward, 5.0, 0, 1000, 0, 0xcfbe8d7184befc35ULL},
    {ShapeKind::kStar, 1000, Side::kInward, 2.0, 0, 0, 0, 0},
    // Small shapes, where few vertices meet many events.
    {ShapeKind::kGear, 16, Side::kOutward, 0.5, 1, 16, 1, 0x09e8f03313e952b0ULL},
    {ShapeKind::kGear, 16, Side::kInward, 0.5, 1, 0, 1, 0},
    {ShapeKind::kStar, 6, Side::kInward, 10.0, 1, 6, 1, 0x56adb1a6255ccca2ULL},
    {ShapeKind::kRoundedRect, 8, Side::kInward, 30.0, 1, 4, 1, 0xf661903aca01751dULL},
};
// clang-format on

TEST(OffsetGolden, results_are_bit_identical_to_the_recorded_ones) {
  for (const GoldenCase& c : kCases) {
    const auto shape = tarnsysm::bench::makeShape(c.kind, c.n);
    std::unique_ptr<double[][5]> rows(new double[2 * shape.size()][5]());
    for (size_t i = 0; i < shape.size(); ++i) {
      const double row[5] = {shape[i].x, shape[i].y, shape[i].bulge, static_cast<double>(i), 0.0};
      std::memcpy(rows[i], row, sizeof row);
    }
    double pick[2];
    tarnsysm::bench::pickPoint(c.kind, shape, c.side, pick);
    int closed = c.closed;
    const int n = PLineOffset(1e-9, &closed, c.n, rows.get(), 0, pick, c.distance);
    std::uint64_t h = 14695981039346656037ULL;
    const auto* bytes = reinterpret_cast<const unsigned char*>(rows.get());
    for (size_t b = 0; n > 0 && b < sizeof(double[5]) * static_cast<size_t>(n); ++b)
      h = (h ^ bytes[b]) * 1099511628211ULL;
    char got[96];
    std::snprintf(got, sizeof got, "%d, %d, 0x%016llxULL", n, closed,
                  static_cast<unsigned long long>(n > 0 ? h : 0));
    EXPECT_TRUE(n == c.rows && closed == c.closedAfter && (n == 0 || h == c.hash))
        << tarnsysm::bench::shapeName(c.kind) << " " << c.n << " " << c.distance << ": got " << got;
  }
}

}  // namespace
