// Tarnsysm: planar computational geometry for 2D drafting.
// Golden fingerprints of PLineOffset on the benchmark shapes.
//
// The fingerprints below pin the output of the offset as of the commit that added this file.
// They are not a statement of what is right: they prove that work on the offset's speed changes
// no bit of any result. A change that is meant to change results must record new values here,
// and say why, in the same commit.
#include "bench/shapes.h"

#include <Tarnsysm.h>

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <memory>
#include <string>
#include <vector>

namespace {

using tarnsysm::bench::makeShape;
using tarnsysm::bench::pickPoint;
using tarnsysm::bench::ShapeKind;
using tarnsysm::bench::shapeName;
using tarnsysm::bench::shapeSize;
using tarnsysm::bench::ShapeVertex;
using tarnsysm::bench::Side;

constexpr double kEps = 1e-9;

// What identifies one result: the row count and closed flag, a hash of every bit of every row
// (all five fields), and, to read a failure more easily, its signed area and extents.
struct Fingerprint {
  int rows;
  int closed;
  std::uint64_t hash;
  double area;
  double xmin, ymin, xmax, ymax;
};

struct GoldenCase {
  ShapeKind kind;
  int n;
  Side side;
  double distance;
  int closed;  // 0: the shape's rows taken as an open polyline
  Fingerprint expected;
};

// FNV-1a over the bytes of each double's bit pattern.
std::uint64_t hashRows(double (*const v)[5], int rows) {
  std::uint64_t h = 14695981039346656037ULL;
  for (int i = 0; i < rows; ++i) {
    for (int f = 0; f < 5; ++f) {
      std::uint64_t bits;
      std::memcpy(&bits, &v[i][f], sizeof bits);
      for (int b = 0; b < 8; ++b) {
        h ^= (bits >> (8 * b)) & 0xFFu;
        h *= 1099511628211ULL;
      }
    }
  }
  return h;
}

Fingerprint offsetFingerprint(const GoldenCase& c) {
  const std::vector<ShapeVertex> shape = makeShape(c.kind, c.n);
  const int n = static_cast<int>(shape.size());
  std::unique_ptr<double[][5]> rows(new double[2 * static_cast<std::size_t>(n)][5]());
  for (int i = 0; i < n; ++i) {
    rows[i][0] = shape[static_cast<std::size_t>(i)].x;
    rows[i][1] = shape[static_cast<std::size_t>(i)].y;
    rows[i][2] = shape[static_cast<std::size_t>(i)].bulge;
    rows[i][3] = static_cast<double>(i);
    rows[i][4] = 0.0;
  }
  double pick[2];
  pickPoint(c.kind, shape, c.side, pick);
  int closed = c.closed;
  const int result = PLineOffset(kEps, &closed, n, rows.get(), 0, pick, c.distance);
  Fingerprint f{result, closed, 0, 0.0, 0.0, 0.0, 0.0, 0.0};
  if (result <= 0)
    return f;
  f.hash = hashRows(rows.get(), result);
  f.area = PLineArea(kEps, closed, result, rows.get());
  f.xmin = f.xmax = rows[0][0];
  f.ymin = f.ymax = rows[0][1];
  for (int i = 1; i < result; ++i) {
    f.xmin = std::fmin(f.xmin, rows[i][0]);
    f.xmax = std::fmax(f.xmax, rows[i][0]);
    f.ymin = std::fmin(f.ymin, rows[i][1]);
    f.ymax = std::fmax(f.ymax, rows[i][1]);
  }
  return f;
}

std::string describe(const Fingerprint& f) {
  char text[320];
  std::snprintf(text, sizeof text, "{%d, %d, 0x%016llxULL, %.17g, %.17g, %.17g, %.17g, %.17g}",
                f.rows, f.closed, static_cast<unsigned long long>(f.hash), f.area, f.xmin, f.ymin,
                f.xmax, f.ymax);
  return text;
}

class OffsetGolden : public ::testing::TestWithParam<GoldenCase> {};

TEST_P(OffsetGolden, result_is_bit_identical_to_the_recorded_one) {
  const GoldenCase& c = GetParam();
  const Fingerprint got = offsetFingerprint(c);
  const Fingerprint& want = c.expected;
  SCOPED_TRACE("got " + describe(got));
  EXPECT_EQ(got.rows, want.rows);
  EXPECT_EQ(got.closed, want.closed);
  EXPECT_EQ(got.hash, want.hash);
  // Exact: the same rows give the same area and extents to the last bit.
  EXPECT_EQ(got.area, want.area);
  EXPECT_EQ(got.xmin, want.xmin);
  EXPECT_EQ(got.ymin, want.ymin);
  EXPECT_EQ(got.xmax, want.xmax);
  EXPECT_EQ(got.ymax, want.ymax);
}

// clang-format off
const GoldenCase kCases[] = {
    // The measured cases at N = 1,000.
    {ShapeKind::kCircle, 1000, Side::kOutward, 1.0, 1, {1000, 1, 0x1c2a79ca8133d495ULL, -32047.282789732046, -100.99999998772428, -100.99999998772428, 100.99999998772429, 100.99999998772428}},
    {ShapeKind::kCircle, 1000, Side::kInward, 50.0, 1, {1000, 1, 0x9e4e8c9d04801dffULL, -7853.9085516778914, -49.999957665976979, -49.999957665976979, 49.999957665976993, 49.999957665976979}},
    {ShapeKind::kGear, 1000, Side::kInward, 0.5, 1, {1000, 1, 0x0c86b160d5ac1f49ULL, -77361.648422679136, -158.16618723277716, -158.16618723277711, 158.16618723277725, 158.16618723277716}},
    {ShapeKind::kGear, 1000, Side::kOutward, 0.5, 1, {1000, 1, 0x5187c105f611c073ULL, -79700.520489617193, -160.01763760349618, -160.01763760349621, 160.01763760349613, 160.01763760349618}},
    {ShapeKind::kRoundedRect, 1000, Side::kInward, 5.0, 1, {1000, 1, 0x22b3c2d55bca397cULL, -16906.858347057769, -95, -45, 95, 45}},
    {ShapeKind::kRoundedRect, 1000, Side::kOutward, 5.0, 1, {1000, 1, 0xb7a751c7e0c47a34ULL, -22563.495408493585, -105, -55, 105, 55}},
    {ShapeKind::kStar, 1000, Side::kInward, 2.0, 1, {5, 1, 0xc95f1cc84048bcceULL, 34.398009418490112, 49.955671751011785, -0.94456991773256505, 59.260853977755005, 2.5491045140203141}},
    {ShapeKind::kStar, 1000, Side::kInward, 10.0, 1, {4, 1, 0x16843e0440c9f1e0ULL, 1.7114442473521305, 46.343494438375281, 6.7069157848149601, 51.00046821709396, 7.3712111566059093}},
    // The same rows as open polylines: the free ends take other paths through the builder.
    {ShapeKind::kCircle, 1000, Side::kOutward, 1.0, 0, {1000, 0, 0x31408b0ea521cf60ULL, -32047.282786608186, -100.99999998772428, -100.99999998772428, 101, 100.99999998772428}},
    {ShapeKind::kGear, 1000, Side::kOutward, 0.5, 0, {1000, 0, 0x4b92e43eb6a7768eULL, -79698.717107843986, -160.01763760349618, -160.01763760349618, 160.00666432398575, 160.01763760349618}},
    {ShapeKind::kRoundedRect, 1000, Side::kInward, 5.0, 0, {1000, 0, 0xcfbe8d7184befc35ULL, -16842.643760293344, -95, -45, 95, 45}},
    {ShapeKind::kStar, 1000, Side::kInward, 2.0, 0, {5, 0, 0x77cfceff9d5e506fULL, 78.965310958639108, 48.478562340724658, -1.9993687523450041, 99.949754680353465, 1.2908296116381093}},
    // Small shapes, where few vertices meet many events.
    {ShapeKind::kGear, 16, Side::kOutward, 0.5, 1, {16, 1, 0x95c3b77836ca027cULL, -24.896731686452398, -4.1231297196312724, -4.1231297196312733, 4.1231297196312759, 4.1231297196312733}},
    {ShapeKind::kGear, 16, Side::kInward, 0.5, 1, {2, 1, 0x73b31201c4b7c53fULL, 0, 0.67649835427969829, -0.31106724675471353, 0.73560111640243653, 0.26591819043440879}},
    {ShapeKind::kStar, 6, Side::kInward, 10.0, 1, {6, 1, 0x4a84a894f29292d7ULL, -18162.363987395627, -70.469173958945376, -75.94114486140198, 89.525355680438764, 79.12131974279292}},
    {ShapeKind::kRoundedRect, 8, Side::kInward, 30.0, 1, {4, 1, 0xf661903aca01751dULL, -5600, -70, -20.000000000000004, 70, 20.000000000000004}},
};
// clang-format on

std::string caseName(const ::testing::TestParamInfo<GoldenCase>& info) {
  const GoldenCase& c = info.param;
  std::string distance = std::to_string(static_cast<int>(c.distance * 10.0));
  return shapeName(c.kind) + "_" + std::to_string(c.n) + "_" +
         (c.side == Side::kInward ? "inward_" : "outward_") + distance + "_tenths" +
         (c.closed ? "" : "_open");
}

INSTANTIATE_TEST_SUITE_P(BenchmarkShapes, OffsetGolden, ::testing::ValuesIn(kCases), caseName);

}  // namespace
