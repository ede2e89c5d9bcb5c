// Tarnsysm: planar computational geometry for 2D drafting.
// Tests of rectangle clipping: ring order, room, sentinels.

#include "test_support.h"

#include <memory>

namespace {

using Points = std::vector<double>;  // x0, y0, x1, y1, ...
constexpr double kSentinel = -12345.5;

// RectClipPolygon against (0, 0)-(s, s) into a heap buffer of exactly 3n points filled with
// sentinels: the sanitizer traps writes past the room, the sentinels show the rest untouched.
Points clipRect(double lo, double hi, Points in) {
  const std::size_t n = in.size() / 2, room = 6 * n;
  std::unique_ptr<double[]> out(new double[room + 1]);
  std::fill(out.get(), out.get() + room + 1, kSentinel);
  double rect[2][2] = {{lo, lo}, {hi, hi}};
  int count = -7;
  RectClipPolygon(rect, static_cast<int>(n), reinterpret_cast<double(*)[2]>(in.data()), count,
                  reinterpret_cast<double(*)[2]>(out.get()));
  EXPECT_TRUE(count >= 0 && 2 * static_cast<std::size_t>(count) <= room) << count;
  const std::size_t used = 2 * static_cast<std::size_t>(std::max(count, 0));
  EXPECT_TRUE(std::all_of(out.get() + used, out.get() + room, [](double v) {
    return v == kSentinel;
  })) << "a slot past count was written";
  return Points(out.get(), out.get() + used);
}

TEST(RectClipPolygon, gives_the_documented_ring) {
  // inside: each pass starts its ring at the end of its first edge, so four passes move it by
  // four. (10, 5) lies on the right side: outside, so each of its edges crosses there. The flat
  // case's first crossing lands a rounding step below y = 10, and the edge from (15, 10) back to
  // it is too flat for a unit-direction crossing, yet it crosses the top side.
  const struct {
    const char* name;
    Points in;
    std::size_t count;
    Points expected;  // empty: only the count is fixed
  } cases[] = {
      // clang-format off
      {"inside", {1, 1, 5, 1, 9, 2, 9, 8, 5, 9, 1, 8, 1, 1}, 7,
                 {5, 9, 1, 8, 1, 1, 5, 1, 9, 2, 9, 8, 5, 9}},
      {"outside", {11, 1, 12, 1, 12, 2, 11, 1}, 0, {}},
      {"vertex_on_a_side", {2, 2, 10, 5, 2, 8, 2, 2}, 5, {10, 5, 10, 5, 2, 8, 2, 2, 10, 5}},
      {"vertex_on_the_top", {2, 2, 5, 10, 8, 2, 2, 2}, 5, {}},
      {"vertex_on_the_bottom", {2, 8, 5, 0, 8, 8, 2, 8}, 5, {}},
      {"two_points_in_one_place", {5, 5, 5, 5}, 2, {5, 5, 5, 5}},
      {"unrepeated_start_loses_the_closing_edge", {2, 2, 8, 2, 5, 8}, 3, {5, 8, 8, 2, 5, 8}},
      {"single_point", {5, 5}, 0, {}},
      {"nearly_flat_crossing", {6, -1, 0, 10, 15, 10}, 5, {10, 10, 0, 10, 0, 10, 10, 10, 10, 10}},
      {"zigzag_needs_three_points_each", {-14, -29, 27, 30, -7, -8, 22, 28}, 12, {}},
      // clang-format on
  };
  for (const auto& c : cases) {
    const Points out = clipRect(0, 10, c.in);
    ASSERT_EQ(out.size(), 2 * c.count) << c.name;
    for (std::size_t k = 0; k < c.expected.size(); ++k)
      EXPECT_NEAR(out[k], c.expected[k], 1e-12) << c.name << " coordinate " << k;
    const bool closed = c.count == 0 || (out[0] == out[2 * c.count - 2] && out[1] == out.back());
    EXPECT_TRUE(closed) << c.name;
  }
}

TEST(EdgeClipEdge, crossing_too_flat_for_the_unit_direction_is_interpolated_along_the_edge) {
  // Across y = 10 by 2^-39 over a run of 8: half way along, at x = 4.
  double s[2] = {0, 10 - 0x1p-40}, p[2] = {8, 10 + 0x1p-40},
         out[2][2] = {{kSentinel, kSentinel}, {kSentinel, kSentinel}};
  int count = 0;
  EdgeClipEdge(1, 10.0, s, p, count, out);
  EXPECT_TRUE(count == 1 && out[0][0] == 4 && out[0][1] == 10 && out[1][0] == kSentinel);
}

TEST(EdgeClipPolygon, needs_at_most_three_halves_of_the_input_and_can_need_all_of_it) {
  for (int n = 2; n <= 12; ++n) {
    int most = 0;
    for (unsigned pattern = 0; pattern < (1u << n); ++pattern) {
      Points in;
      for (int i = 0; i < n; ++i)
        in.insert(in.end(), {(pattern >> i & 1) ? 1.0 : -1.0, double(i)});
      std::unique_ptr<double[][2]> out(new double[3 * n / 2][2]);
      int count = -1;
      EdgeClipPolygon(0, 0.0, n, reinterpret_cast<double(*)[2]>(in.data()), count, out.get());
      most = std::max(most, count);
    }
    EXPECT_EQ(most, 3 * n / 2) << "n = " << n;
  }
}

TEST(CalInsertPoint, reports_no_crossing_and_leaves_out_untouched) {
  // side, s, p: an unknown side, a parallel edge, a NaN, a length that overflows.
  const double cases[][5] = {{4, 0, 0, 1, 1},
                             {1, 0, 5, 10, 5},
                             {0, tarnsysm::test::kNaN, 0, 1, 1},
                             {0, -1e300, -1e300, 1e300, 1e300}};
  for (const auto& c : cases) {
    double s[2] = {c[1], c[2]}, p[2] = {c[3], c[4]}, out[2] = {kSentinel, kSentinel};
    EXPECT_EQ(CalInsertPoint(static_cast<int>(c[0]), 0.5, s, p, out), 0) << c[0] << " " << c[1];
    EXPECT_TRUE(out[0] == kSentinel && out[1] == kSentinel) << c[0] << " " << c[1];
  }
}

}  // namespace
