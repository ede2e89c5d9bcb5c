// Tarnsysm: planar computational geometry for 2D drafting.
// The C++ benchmark shapes against golden files written by the shared measurement script.
#include "bench/shapes.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

namespace {

using tarnsysm::bench::makeShape;
using tarnsysm::bench::ShapeKind;
using tarnsysm::bench::ShapeVertex;

struct GoldenShape {
  bool closed = false;
  std::vector<ShapeVertex> rows;
};

double parseDouble(const std::string& text) {
  char* end = nullptr;
  const double value = std::strtod(text.c_str(), &end);
  if (end == text.c_str() || *end != '\0')
    throw std::runtime_error("not a number: " + text);
  return value;
}

// Reads the script's text form: "closed N", then N lines "x y bulge" printed with repr().
GoldenShape readGolden(const std::string& fileName) {
  std::ifstream in(std::string(TARNSYSM_TEST_DATA_DIR) + "/" + fileName);
  if (!in)
    throw std::runtime_error("cannot open " + fileName);
  GoldenShape shape;
  std::string word;
  int n = 0;
  in >> word >> n;
  shape.closed = word == "closed";
  for (int i = 0; i < n; ++i) {
    std::string x, y, b;
    if (!(in >> x >> y >> b))
      throw std::runtime_error("short file " + fileName);
    shape.rows.push_back({parseDouble(x), parseDouble(y), parseDouble(b)});
  }
  return shape;
}

std::uint64_t bitsOf(double v) {
  std::uint64_t bits = 0;
  std::memcpy(&bits, &v, sizeof bits);
  return bits;
}

struct GoldenCase {
  ShapeKind kind;
  int n;
  const char* file;
};

void PrintTo(const GoldenCase& c, std::ostream* os) {
  *os << c.file;
}

class ShapeMatchesScript : public ::testing::TestWithParam<GoldenCase> {};

// Bit equality, not closeness: the benchmarks must offset exactly the vertices that other
// libraries were measured on, and a reordered operation shows up only in the last bit.
TEST_P(ShapeMatchesScript, every_vertex_is_bit_identical) {
  const GoldenCase& c = GetParam();
  const GoldenShape golden = readGolden(c.file);
  const std::vector<ShapeVertex> rows = makeShape(c.kind, c.n);
  ASSERT_TRUE(golden.closed);
  ASSERT_EQ(rows.size(), golden.rows.size());
  for (std::size_t i = 0; i < rows.size(); ++i) {
    SCOPED_TRACE("row " + std::to_string(i));
    EXPECT_EQ(bitsOf(rows[i].x), bitsOf(golden.rows[i].x)) << rows[i].x << " " << golden.rows[i].x;
    EXPECT_EQ(bitsOf(rows[i].y), bitsOf(golden.rows[i].y)) << rows[i].y << " " << golden.rows[i].y;
    EXPECT_EQ(bitsOf(rows[i].bulge), bitsOf(golden.rows[i].bulge))
        << rows[i].bulge << " " << golden.rows[i].bulge;
  }
}

INSTANTIATE_TEST_SUITE_P(golden_files, ShapeMatchesScript,
                         ::testing::Values(GoldenCase{ShapeKind::kCircle, 100, "circle_100.txt"},
                                           GoldenCase{ShapeKind::kStar, 6, "star_6.txt"},
                                           GoldenCase{ShapeKind::kStar, 100, "star_100.txt"},
                                           GoldenCase{ShapeKind::kGear, 16, "gear_16.txt"},
                                           GoldenCase{ShapeKind::kGear, 100, "gear_100.txt"},
                                           GoldenCase{ShapeKind::kRoundedRect, 8, "rrect_8.txt"},
                                           GoldenCase{ShapeKind::kRoundedRect, 100,
                                                      "rrect_100.txt"}));

TEST(shape_sizes, counts_the_script_rejects_are_rejected) {
  EXPECT_THROW(makeShape(ShapeKind::kCircle, 2), std::invalid_argument);
  EXPECT_THROW(makeShape(ShapeKind::kCircle, 101), std::invalid_argument);
  EXPECT_THROW(makeShape(ShapeKind::kStar, 4), std::invalid_argument);
  EXPECT_THROW(makeShape(ShapeKind::kGear, 14), std::invalid_argument);
  EXPECT_THROW(makeShape(ShapeKind::kRoundedRect, 10), std::invalid_argument);
  EXPECT_THROW(makeShape(ShapeKind::kRoundedRect, 4), std::invalid_argument);
  EXPECT_EQ(makeShape(ShapeKind::kCircle, 4).size(), 4u);
  EXPECT_EQ(makeShape(ShapeKind::kRoundedRect, 8).size(), 8u);
}

}  // namespace
