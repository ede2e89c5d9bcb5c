// Tarnsysm: planar computational geometry for 2D drafting.
// Polyline measures: the signed area of a segment and of a polyline (positive clockwise), and
// whether a point lies on a polyline.

#include "test_support.h"

namespace {

using namespace tarnsysm::test;

const double kQ = std::tan(kPi / 8);  // the bulge of a counter-clockwise quarter circle

// Exactly as many rows as given, on the heap, so that reading past them is an error under ASan.
struct Poly {
  mutable std::vector<double> cells;  // the library takes rows it may rewrite
  Poly(std::initializer_list<std::initializer_list<double>> rows) {
    for (const auto& r : rows) {
      cells.insert(cells.end(), r.begin(), r.end());
      cells.resize(cells.size() + 5 - r.size(), 0.0);
    }
  }
  int n() const { return static_cast<int>(cells.size() / 5); }
  double (*rows() const)[5] { return reinterpret_cast<double(*)[5]>(cells.data()); }
};

TEST(LineArea_PLineArea, table) {
  EXPECT_EQ(LineArea(1e-9, 0, 1, 2, 3, 0), 4.0);
  EXPECT_EQ(LineArea(1e-9, 2, 3, 0, 1, 0), -4.0);
  EXPECT_NEAR(LineArea(1e-9, 0, 0, 2, 0, 1), -kPi / 2, 1e-14);  // the half disc is taken away
  EXPECT_NEAR(LineArea(1e-9, 1, 1, 3, 1, -1), 2 + kPi / 2, 1e-14);
  EXPECT_EQ(LineArea(kE, 0, 1, 2, 3, kE / 2), 4.0);  // within eps: straight
  // At exactly eps an arc: a flat segment of sagitta eps over a chord of 2, about 2/3 c h.
  EXPECT_NEAR(LineArea(kE, 0, 0, 2, 0, kE), -4.0 / 3 * kE, 1e-8);
  // clang-format off
  const struct { const char* name; Poly poly; int closed; double area; } rows[] = {
      {"counter_clockwise_square", {{1, 2}, {2, 2}, {2, 3}, {1, 3}}, 1, -1},
      {"clockwise_square", {{1, 2}, {1, 3}, {2, 3}, {2, 2}}, 1, 1},
      {"triangle", {{0, 1}, {4, 1}, {0, 4}}, 0, -6},
      {"open_ignores_the_last_bulge", {{0, 1}, {4, 1}, {0, 4, 0.7}}, 0, -6},
      {"closing_bulge_counts_when_closed", {{0, 0}, {0, 2}, {2, 2}, {2, 0, 1}}, 1, 4 - kPi / 2},
      {"outward_half_circle_on_a_clockwise_square", {{0, 0, -1}, {0, 2}, {2, 2}, {2, 0}}, 1, 4 + kPi / 2},
      {"circle_of_quarter_arcs", {{1, 0, kQ}, {0, 1, kQ}, {-1, 0, kQ}, {0, -1, kQ}}, 1, -kPi},
      {"two_rows_have_no_area", {{0, 0, 1}, {2, 0, 1}}, 1, 0},
  };
  // clang-format on
  for (auto& r : rows)
    EXPECT_NEAR(PLineArea(1e-9, r.closed, r.poly.n(), r.poly.rows()), r.area, 1e-12) << r.name;
}

TEST(PointsOnPLine, table) {
  // clang-format off
  const struct { const char* name; Poly poly; int closed; double x, y; int expected; } rows[] = {
      {"half_eps_off_a_line", {{1, 2}, {5, 2}, {5, 6}}, 0, 3, 2 + kE / 2, 1},
      {"exactly_eps_off_a_line", {{1, 2}, {5, 2}, {5, 6}}, 0, 3, 2 + kE, 0},
      {"on_the_second_line", {{1, 2}, {5, 2}, {5, 6}}, 0, 5 - kE / 2, 4, 1},
      {"past_the_end_by_eps_in_parameter", {{1, 2}, {5, 2}, {5, 6, 0}, {1, 6}}, 0, 5 + 4 * kE, 2 - kE / 2, 1},
      {"past_the_end_by_two_eps_in_parameter", {{1, 2}, {5, 2}}, 0, 5 + 8 * kE, 2, 0},
      {"closing_segment_when_closed", {{1, 2}, {5, 2}, {5, 6}}, 1, 3, 4, 1},
      {"closing_segment_when_open", {{1, 2}, {5, 2}, {5, 6}}, 0, 3, 4, 0},
      {"on_a_half_circle", {{1, 2, 1}, {3, 2}}, 0, 2, 1, 1},
      {"half_eps_inside_a_half_circle", {{1, 2, 1}, {3, 2}}, 0, 2, 1 + kE / 2, 1},
      {"exactly_eps_outside_a_half_circle", {{1, 2, 1}, {3, 2}}, 0, 2, 1 - kE, 0},
      {"on_the_circle_off_the_arc", {{1, 2, 1}, {3, 2}}, 0, 2, 3, 0},
      {"zero_length_segment_never_matches", {{1, 2}, {1, 2}}, 1, 1, 2, 0},
      {"one_row_is_no_polyline", {{1, 2}}, 1, 1, 2, 0},
      {"not_a_number", {{1, 2}, {5, 2}}, 0, kNaN, 2, 0},
  };
  // clang-format on
  for (auto& r : rows) {
    double p[2] = {r.x, r.y};
    EXPECT_EQ(PointsOnPLine(kE, p, r.closed, r.poly.n(), r.poly.rows()), r.expected) << r.name;
  }
}

TEST(Hostile, measures_keep_their_documented_results) {
  HostileNumbers h(9);
  for (int i = 0; i < 20000; ++i) {
    Poly poly{{h(), h(), h()}, {h(), h(), h()}, {h(), h(), h()}};
    double p[2] = {h(), h()};
    const double eps = std::fabs(h());
    (void)LineArea(eps, h(), h(), h(), h(), h());
    (void)PLineArea(eps, i % 2, 3 - i % 5, poly.rows());
    const int on = PointsOnPLine(eps, p, i % 2, 3 - i % 5, poly.rows());
    ASSERT_TRUE(on == 0 || (on == 1 && !std::isnan(p[0] + p[1]))) << on;
  }
}

}  // namespace
