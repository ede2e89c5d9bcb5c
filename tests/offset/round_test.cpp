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
    result.push_back({validityRows(out.get() + start[k], end - start[k]), isClosed[k] != 0});
    EXPECT_TRUE(result.back().closed || !closed);
  }
  return result;
}

// Each loop is an offset of the input by d (the checker's own geometry); returns the first
// complaint with the loop's number.
std::string invalidLoop(Polyline& in, bool closed, double d, const std::vector<Loop>& loops) {
  const std::vector<ValidityRow> source = validityRows(in.rows(), in.count());
  for (size_t k = 0; k < loops.size(); ++k) {
    const std::string why = offsetValidity(source, closed, loops[k].rows, loops[k].closed, d);
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
  for (int i = 0; i < n; ++i) {
    const double gap = (i + 1 < n ? angles[i + 1] : angles[0] + 2 * tarnsysm_test::kPi) - angles[i];
    // Gaps below a half turn keep the origin inside, so the polygon runs counter-clockwise.
    if (gap >= 0.9 * tarnsysm_test::kPi)
      return {};
    const double r = size * (0.35 + 0.65 * unit(rng));
    const double bulge = unit(rng) < 0.5 ? 0.0 : (unit(rng) - 0.5) * std::min(0.8, gap);
    v.push_back({r * std::cos(angles[i]), r * std::sin(angles[i]), bulge});
  }
  return v;
}

// The random polygon does not cross itself: neighbouring segments share only their row.
bool simple(const std::vector<Vertex>& v) {
  std::vector<ValidityRow> rows;
  for (const Vertex& p : v)
    rows.push_back({p.x, p.y, p.bulge});
  return tarnsysm_test::selfCrossing(rows, true).empty();
}

TEST(RoundOffset, random_polygons_with_arcs_give_valid_offsets) {
  std::mt19937 rng(20261123);
  std::uniform_real_distribution<double> fraction(0.01, 0.33);
  int cases = 0;
  while (cases < 2000) {
    const std::vector<Vertex> shape = randomStarPolygon(rng, 10.0);
    if (shape.empty() || !simple(shape))
      continue;
    Polyline in(shape);
    const double d = 10.0 * fraction(rng);
    for (const bool closed : {true, false}) {
      for (const double signedD : {d, -d}) {
        const std::vector<Loop> result = roundLoops(in, closed, signedD);
        ++cases;
        ASSERT_EQ(invalidLoop(in, closed, signedD, result), "")
            << "case " << cases << " closed " << closed << " d " << signedD;
        // Outwards (right of a counter-clockwise polygon) an offset always exists.
        if (closed && signedD > 0.0) {
          ASSERT_EQ(result.size(), 1u) << "case " << cases;
        }
      }
    }
  }
}

// A benchmark shape in the library's rows (counter-clockwise).
Polyline benchShape(tarnsysm::bench::ShapeKind kind, int n) {
  std::vector<Vertex> v;
  for (const auto& p : tarnsysm::bench::makeShape(kind, n))
    v.push_back({p.x, p.y, p.bulge});
  return Polyline(v);
}

// The star of thin spikes offset inwards by 2 is a scalloped ring at distance 2 everywhere (a
// sharp-cornered offset of it turns into reversed islands); gears both ways.
TEST(RoundOffset, star_and_gear_offsets_are_valid) {
  using tarnsysm::bench::ShapeKind;
  Polyline star = benchShape(ShapeKind::kStar, 1000);
  const std::vector<Loop> ring = roundLoops(star, true, -2.0);
  ASSERT_EQ(ring.size(), 1u);
  EXPECT_EQ(invalidLoop(star, true, -2.0, ring), "");
  EXPECT_NEAR(tarnsysm_test::signedArea(ring[0].rows), 19124.0, 1.0);
  for (const auto& [n, d] : {std::pair<int, double>{100, -3.0}, {100, 0.5}, {1000, -0.5}}) {
    Polyline gear = benchShape(ShapeKind::kGear, n);
    const std::vector<Loop> loops = roundLoops(gear, true, d);
    EXPECT_EQ(loops.size(), 1u) << "gear " << n << " d " << d;
    EXPECT_EQ(invalidLoop(gear, true, d, loops), "") << "gear " << n << " d " << d;
  }
}

// Where no corner needs rounding (every corner turns towards the offset, or the outline is
// smooth), both engines make the same polyline, row for row.
TEST(RoundOffset, equals_sharp_offset_without_corners_to_round) {
  using tarnsysm::bench::ShapeKind;
  const struct {
    const char* name;
    std::vector<Vertex> shape;
    double d;
  } cases[] = {
      {"circle_of_two_arcs_out", tarnsysm_test::circleOfTwoArcs(0.0, 0.0, 10.0), 2.0},
      {"circle_of_two_arcs_in", tarnsysm_test::circleOfTwoArcs(0.0, 0.0, 10.0), -7.0},
      {"rounded_rectangle_out", tarnsysm_test::roundedRectangle(40.0, 20.0, 4.0), 3.0},
      {"rounded_rectangle_in", tarnsysm_test::roundedRectangle(40.0, 20.0, 4.0), -3.0},
  };
  for (const auto& c : cases) {
    Polyline round(c.shape), sharp(c.shape);
    const std::vector<Loop> loops = roundLoops(round, true, c.d);
    int closed = 1;
    double pick[2] = {c.d > 0.0 ? 100.0 : 0.1, 0.05};
    const int n = PLineOffset(kEps, &closed, sharp.count(), sharp.rows(), 0, pick, c.d);
    ASSERT_EQ(loops.size(), 1u) << c.name;
    ASSERT_EQ(static_cast<int>(loops[0].rows.size()), n) << c.name;
    for (int i = 0; i < n; ++i) {
      EXPECT_NEAR(loops[0].rows[i].x, sharp[i][0], 1e-9) << c.name << " row " << i;
      EXPECT_NEAR(loops[0].rows[i].y, sharp[i][1], 1e-9) << c.name << " row " << i;
      EXPECT_NEAR(loops[0].rows[i].bulge, sharp[i][2], 1e-9) << c.name << " row " << i;
    }
  }
}

// A square offset outwards: each side moved (keeping its row's attributes) and a quarter circle
// at each corner (field 3 -1.0, field 4 from the corner's row); the buffers are exactly the room
// asked for, and one row or one loop less leaves them untouched.
TEST(RoundOffset, square_outwards_rounds_every_corner_and_reports_its_room) {
  Polyline square(tarnsysm_test::rectangle(0.0, 0.0, 10.0, 10.0));
  for (const auto& room : {std::pair<int, int>{8, 1}, {7, 1}, {8, 0}}) {
    Polyline out(std::vector<Vertex>(8, Vertex{Polyline::kSentinel, 0, 0}), 1);
    int start = -5, closed = -5, count = -5;
    const int n = PLineOffsetRound(kEps, 1, 4, square.rows(), 1.0, out.rows(), room.first, &start,
                                   &closed, room.second, &count);
    EXPECT_EQ(count, 1);
    if (room.first < 8 || room.second < 1) {
      EXPECT_EQ(n, -8);
      EXPECT_EQ(start + closed, -10);
      for (int i = 0; i < 8; ++i)
        EXPECT_EQ(out[i][0], Polyline::kSentinel);
      continue;
    }
    ASSERT_EQ(n, 8);
    EXPECT_EQ(start, 0);
    EXPECT_EQ(closed, 1);
    EXPECT_NEAR(tarnsysm_test::signedArea(out.first(8)), 100.0 + 40.0 + tarnsysm_test::kPi, 1e-9);
    for (int i = 0; i < 8; ++i) {
      const int vertex = (i / 2 + i % 2) % 4;
      EXPECT_EQ(out[i][3], i % 2 == 0 ? 100.0 + vertex : -1.0) << "row " << i;
      EXPECT_EQ(out[i][4], 200.0 + vertex) << "row " << i;
    }
  }
}

TEST(RoundOffset, bad_input_gives_nothing) {
  Polyline square(tarnsysm_test::rectangle(0.0, 0.0, 10.0, 10.0));
  Polyline nanRow({{0, 0, 0}, {kNaN, 1, 0}, {1, 1, 0}});
  Polyline infBulge({{0, 0, 0}, {1, 0, tarnsysm::test::kInf}, {1, 1, 0}});
  Polyline onePoint({{1, 1, 0}, {1, 1 + kEps / 2, 0}});
  const auto expectNothing = [](const char* name, double eps, int n, double(*rows)[5], double d) {
    int count = -5, start[4], closed[4];
    double out[16][5];
    EXPECT_EQ(PLineOffsetRound(eps, 1, n, rows, d, out, 16, start, closed, 4, &count), 0) << name;
    EXPECT_EQ(count, 0) << name;
  };
  expectNothing("no_rows", kEps, 0, square.rows(), 1.0);
  expectNothing("null_rows", kEps, 4, nullptr, 1.0);
  expectNothing("nan_coordinate", kEps, 3, nanRow.rows(), 1.0);
  expectNothing("infinite_bulge", kEps, 3, infBulge.rows(), 1.0);
  expectNothing("one_distinct_vertex", kEps, 2, onePoint.rows(), 1.0);
  expectNothing("nan_distance", kEps, 4, square.rows(), kNaN);
  expectNothing("distance_below_eps", kEps, 4, square.rows(), kEps / 2);
  expectNothing("negative_eps", -1.0, 4, square.rows(), 1.0);
  expectNothing("nan_eps", kNaN, 4, square.rows(), 1.0);
  expectNothing("collapsed", kEps, 4, square.rows(), -5.5);
}

// The loop nearest the pick: the side from the picked point, and with `through` its distance.
TEST(RoundOffset, pick_chooses_side_distance_and_loop) {
  // Two rooms joined by a corridor 1 wide: inwards by 1 the offset splits into two loops.
  const double xy[] = {0,  0,  10, 0,  10, 4.5, 14, 4.5, 14, 0,  24, 0,
                       24, 10, 14, 10, 14, 5.5, 10, 5.5, 10, 10, 0,  10};
  std::vector<Vertex> outline;
  for (int i = 0; i < 24; i += 2)
    outline.push_back({xy[i], xy[i + 1], 0.0});
  Polyline rooms(outline);
  ASSERT_EQ(roundLoops(rooms, true, -1.0).size(), 2u);
  const struct {
    const char* name;
    double pick[2];
    int through;
    double dist;
    int rows;       // of the chosen loop, 0 for none
    double xLeast;  // its least x
  } cases[] = {
      // Each room: four sides, the one at the corridor broken by the round corners about its
      // mouth (meeting sqrt(0.75) from the wall); outside: twelve sides and eight round
      // corners; through the pick 3 away the corridor's notches close, under two corners each.
      {"left_room", {2.0, 2.0}, 0, 1.0, 7, 1.0},
      {"right_room", {20.0, 8.0}, 0, 1.0, 7, 14.0 + std::sqrt(0.75)},
      {"outside", {-3.0, 5.0}, 0, 1.0, 20, -1.0},
      {"through", {-3.0, 5.0}, 1, 0.0, 14, -3.0},
      {"on_the_outline", {5.0, 0.0}, 0, 1.0, 0, 0.0},
  };
  for (const auto& c : cases) {
    double out[32][5];
    int closed = -5;
    double pick[2] = {c.pick[0], c.pick[1]};
    const int n = PLineOffsetRoundPick(kEps, 1, rooms.count(), rooms.rows(), c.through, pick,
                                       c.dist, out, 32, &closed);
    ASSERT_EQ(n, c.rows) << c.name;
    if (n == 0) {
      EXPECT_EQ(closed, -5) << c.name;
      continue;
    }
    EXPECT_EQ(closed, 1) << c.name;
    double xLeast = out[0][0];
    for (int i = 1; i < n; ++i)
      xLeast = std::min(xLeast, out[i][0]);
    EXPECT_NEAR(xLeast, c.xLeast, 1e-9) << c.name;
  }
}

}  // namespace
