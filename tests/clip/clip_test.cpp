// Tarnsysm: planar computational geometry for 2D drafting.
// Tests of rectangle clipping: clipped areas against slice integration, ring order, room,
// sentinels.
#include <Tarnsysm.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <memory>
#include <random>
#include <vector>

namespace {

using Points = std::vector<double>;  // x0, y0, x1, y1, ...
constexpr double kSentinel = -12345.5;

double (*asPoints(Points& v))[2] {
  return reinterpret_cast<double(*)[2]>(v.data());
}

// RectClipPolygon into an exact-size heap buffer of 3n points filled with sentinels: the
// sanitizer traps writes past the room, the sentinels show what lies past count is untouched.
Points clipRect(double x0, double y0, double x1, double y1, Points in) {
  const int n = static_cast<int>(in.size() / 2);
  const std::size_t room = 3 * static_cast<std::size_t>(std::max(n, 0));
  std::unique_ptr<double[]> out(new double[2 * room + 1]);
  std::fill(out.get(), out.get() + 2 * room + 1, kSentinel);
  double rect[2][2] = {{x0, y0}, {x1, y1}};
  int count = -7;
  RectClipPolygon(rect, n, asPoints(in), count, reinterpret_cast<double(*)[2]>(out.get()));
  EXPECT_GE(count, 0);
  EXPECT_LE(static_cast<std::size_t>(count), room);
  for (std::size_t k = 2 * static_cast<std::size_t>(std::max(count, 0)); k < 2 * room; ++k)
    EXPECT_EQ(out[k], kSentinel) << "slot " << k / 2 << " past count " << count;
  return Points(out.get(), out.get() + 2 * std::max(count, 0));
}

double shoelaceArea(const Points& ring) {
  double twice = 0.0;
  for (std::size_t i = 2; i < ring.size(); i += 2)
    twice += ring[i - 2] * ring[i + 1] - ring[i] * ring[i - 1];
  return std::fabs(twice) / 2.0;
}

// Area of the polygon (even-odd rule) inside the rectangle by the midpoint rule over vertical
// slices: each slice's crossings with the edges, paired, each span cut to [y0, y1].
double insideAreaBySlices(const Points& ring, double x0, double y0, double x1, double y1) {
  const int slices = 20000;
  const double h = (x1 - x0) / slices;
  double area = 0.0;
  std::vector<double> ys;
  for (int k = 0; k < slices; ++k) {
    const double x = x0 + (k + 0.5) * h;
    ys.clear();
    for (std::size_t i = 2; i < ring.size(); i += 2) {
      const double ax = ring[i - 2], ay = ring[i - 1], bx = ring[i], by = ring[i + 1];
      if ((ax <= x) != (bx <= x))
        ys.push_back(ay + (x - ax) / (bx - ax) * (by - ay));
    }
    std::sort(ys.begin(), ys.end());
    for (std::size_t j = 0; j + 1 < ys.size(); j += 2)
      area += std::max(0.0, std::min(ys[j + 1], y1) - std::max(ys[j], y0)) * h;
  }
  return area;
}

TEST(RectClipPolygon, clipped_area_matches_slice_integration_on_random_star_polygons) {
  std::mt19937 rng(8101);
  std::uniform_real_distribution<double> centre(-1.5, 1.5), radius(0.2, 2.0), jitter(0.0, 1.0);
  for (int trial = 0; trial < 60; ++trial) {
    const int m = 3 + trial % 30;
    const double cx = centre(rng), cy = centre(rng);
    Points ring;
    for (int k = 0; k <= m; ++k) {
      const double angle = (k % m + jitter(rng) * 0.9) * 6.283185307179586 / m;
      const double r = radius(rng);
      ring.push_back(k == m ? ring[0] : cx + r * std::cos(angle));
      ring.push_back(k == m ? ring[1] : cy + r * std::sin(angle));
    }
    const Points clipped = clipRect(-1, -1, 1, 1, ring);
    EXPECT_NEAR(shoelaceArea(clipped), insideAreaBySlices(ring, -1, -1, 1, 1), 1e-4)
        << "trial " << trial;
  }
}

struct ClipCase {
  const char* name;
  Points in, expected;
};

TEST(RectClipPolygon, gives_the_documented_ring_for_each_shape) {
  const ClipCase cases[] = {
      // Each pass starts its ring at the end of its first edge: four passes move it by four.
      {"inside_ring_starts_four_points_later",
       {1, 1, 5, 1, 9, 2, 9, 8, 5, 9, 1, 8, 1, 1},
       {5, 9, 1, 8, 1, 1, 5, 1, 9, 2, 9, 8, 5, 9}},
      {"wholly_outside_is_empty", {11, 1, 12, 1, 12, 2, 11, 1}, {}},
      // (10, 5) lies on the right side, so it is outside and each of its edges crosses there.
      {"vertex_on_a_side_comes_out_twice",
       {2, 2, 10, 5, 2, 8, 2, 2},
       {10, 5, 10, 5, 2, 8, 2, 2, 10, 5}},
      {"unrepeated_start_loses_the_closing_edge", {2, 2, 8, 2, 5, 8}, {5, 8, 8, 2, 5, 8}},
      {"single_point_is_empty", {5, 5}, {}},
  };
  for (const ClipCase& c : cases) {
    const Points out = clipRect(0, 0, 10, 10, c.in);
    ASSERT_EQ(out.size(), c.expected.size()) << c.name;
    for (std::size_t k = 0; k < out.size(); ++k)
      EXPECT_NEAR(out[k], c.expected[k], 1e-12) << c.name << " coordinate " << k;
  }
}

TEST(RectClipPolygon, open_zigzag_needs_exactly_three_points_per_input_point) {
  const Points out = clipRect(0, 0, 10, 10, {-14, -29, 27, 30, -7, -8, 22, 28});
  ASSERT_EQ(out.size(), 2u * 12u);
  EXPECT_EQ(out[0], out[22]);
  EXPECT_EQ(out[1], out[23]);
}

TEST(RectClipPolygon, nearly_flat_crossing_edge_writes_every_slot) {
  // The first crossing lands a rounding step below y = 10; the edge from (15, 10) back to it is
  // too flat for a unit-direction crossing, yet it crosses the top side.
  const Points out = clipRect(0, 0, 10, 10, {6, -1, 0, 10, 15, 10});
  ASSERT_EQ(out.size(), 2u * 5u);
  for (std::size_t k = 0; k < out.size(); k += 2) {
    EXPECT_TRUE(out[k] >= 0.0 && out[k] <= 10.0) << "x of point " << k / 2;
    EXPECT_NEAR(out[k + 1], 10.0, 1e-12) << "y of point " << k / 2;
  }
}

TEST(EdgeClipEdge, flat_crossing_is_interpolated_along_the_edge) {
  double s[2] = {15, 10}, p[2] = {0, 10 - 2e-15}, out[3][2];
  int count = 0;
  EdgeClipEdge(1, 10.0, s, p, count, out);
  ASSERT_EQ(count, 2);
  EXPECT_EQ(out[0][0], 15.0);
  EXPECT_EQ(out[0][1], 10.0);
  EXPECT_EQ(out[1][1], p[1]);
}

TEST(EdgeClipPolygon, needs_at_most_three_halves_of_the_input_and_can_need_all_of_it) {
  for (int n = 2; n <= 12; ++n) {
    const int room = 3 * n / 2;
    int most = 0;
    for (unsigned pattern = 0; pattern < (1u << n); ++pattern) {
      Points in;
      for (int i = 0; i < n; ++i) {
        in.push_back((pattern >> i & 1) ? 1.0 : -1.0);
        in.push_back(i);
      }
      std::unique_ptr<double[][2]> out(new double[room][2]);
      int count = -1;
      EdgeClipPolygon(0, 0.0, n, asPoints(in), count, out.get());
      most = std::max(most, count);
    }
    EXPECT_EQ(most, room) << "n = " << n;
  }
}

struct NoCrossingCase {
  const char* name;
  int side;
  double s[2], p[2];
};

TEST(CalInsertPoint, reports_no_crossing_and_leaves_out_untouched) {
  const double nan = std::numeric_limits<double>::quiet_NaN();
  const NoCrossingCase cases[] = {
      {"unknown_side", 4, {0, 0}, {1, 1}},
      {"negative_side", -1, {0, 0}, {1, 1}},
      {"horizontal_edge_on_top_side", 1, {0, 5}, {10, 5}},
      {"vertical_edge_on_left_side", 0, {3, 0}, {3, 10}},
      {"zero_length", 2, {3, 3}, {3, 3}},
      {"nan_coordinate", 0, {nan, 0}, {1, 1}},
      {"length_overflows", 0, {-1e300, -1e300}, {1e300, 1e300}},
  };
  for (const NoCrossingCase& c : cases) {
    double s[2] = {c.s[0], c.s[1]}, p[2] = {c.p[0], c.p[1]}, out[2] = {kSentinel, kSentinel};
    EXPECT_EQ(CalInsertPoint(c.side, 0.5, s, p, out), 0) << c.name;
    EXPECT_EQ(out[0], kSentinel) << c.name;
    EXPECT_EQ(out[1], kSentinel) << c.name;
  }
}

TEST(JudgeRelativPos, counts_a_point_on_the_boundary_as_outside) {
  double in[2] = {5, 5};
  for (int side = 0; side < 4; ++side) {
    const double value = side == 0 || side == 3 ? 2.0 : 8.0;
    double on[2] = {value, value};
    EXPECT_EQ(JudgeRelativPos(side, value, on, in), 0) << side;
    EXPECT_EQ(JudgeRelativPos(side, value, in, in), 1) << side;
    EXPECT_EQ(JudgeRelativPos(side, value, in, on), 2) << side;
    EXPECT_EQ(JudgeRelativPos(side, value, on, on), 3) << side;
  }
  EXPECT_EQ(JudgeRelativPos(7, 0.0, in, in), 3);
}

}  // namespace
