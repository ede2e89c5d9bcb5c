// Tarnsysm: planar computational geometry for 2D drafting.
// The C++ benchmark shapes against golden files written by the shared measurement script.
#include "bench/shapes.h"

#include <gtest/gtest.h>

#include <cstring>
#include <fstream>
#include <stdexcept>
#include <string>
#include <vector>

namespace {

using tarnsysm::bench::makeShape;
using tarnsysm::bench::ShapeKind;

// Bit equality, not closeness: the benchmarks must offset exactly the vertices that other
// libraries were measured on, and a reordered operation shows up only in the last bit. The files
// hold "closed N", then N lines "x y bulge" printed with repr(), which reads back exactly.
TEST(BenchShapes, every_vertex_matches_the_script_bit_for_bit) {
  const struct {
    ShapeKind kind;
    int n;
    const char* file;
  } cases[] = {
      {ShapeKind::kCircle, 100, "circle_100.txt"},    {ShapeKind::kStar, 6, "star_6.txt"},
      {ShapeKind::kStar, 100, "star_100.txt"},        {ShapeKind::kGear, 16, "gear_16.txt"},
      {ShapeKind::kGear, 100, "gear_100.txt"},        {ShapeKind::kRoundedRect, 8, "rrect_8.txt"},
      {ShapeKind::kRoundedRect, 100, "rrect_100.txt"}};
  for (const auto& c : cases) {
    SCOPED_TRACE(c.file);
    std::ifstream in(std::string(TARNSYSM_TEST_DATA_DIR) + "/" + c.file);
    std::string word;
    int n = 0;
    ASSERT_TRUE(in >> word >> n && word == "closed");
    const auto rows = makeShape(c.kind, c.n);
    ASSERT_EQ(rows.size(), static_cast<std::size_t>(n));
    for (int i = 0; i < n; ++i) {
      double want[3];
      ASSERT_TRUE(in >> want[0] >> want[1] >> want[2]) << "row " << i;
      const double got[3] = {rows[i].x, rows[i].y, rows[i].bulge};
      EXPECT_EQ(std::memcmp(got, want, sizeof got), 0)
          << "row " << i << ": " << got[0] << " " << got[1] << " " << got[2];
    }
  }
  EXPECT_THROW(makeShape(ShapeKind::kCircle, 2), std::invalid_argument);
  EXPECT_THROW(makeShape(ShapeKind::kCircle, 101), std::invalid_argument);
  EXPECT_THROW(makeShape(ShapeKind::kStar, 4), std::invalid_argument);
  EXPECT_THROW(makeShape(ShapeKind::kGear, 14), std::invalid_argument);
  EXPECT_THROW(makeShape(ShapeKind::kRoundedRect, 10), std::invalid_argument);
  EXPECT_THROW(makeShape(ShapeKind::kRoundedRect, 4), std::invalid_argument);
}

}  // namespace
