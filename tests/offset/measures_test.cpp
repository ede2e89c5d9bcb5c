// Tarnsysm: planar computational geometry for 2D drafting.
// Tests of the polyline measures: segment and polyline areas, point-on-polyline.
#include <Tarnsysm.h>

#include "test_support.h"

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <cstdint>
#include <initializer_list>
#include <limits>
#include <random>
#include <vector>

namespace {

constexpr double kEps = 1e-9;
// A power of two, so that eps, eps/2 and 2 eps are exact and boundaries decide exactly.
constexpr double kBinEps = 1.0 / 1024.0;
constexpr double kE = kBinEps;
using namespace tarnsysm::test;
const double kQuarterBulge = std::tan(kPi / 8.0);  // a quarter circle

using Row = std::array<double, 5>;
using Rows = std::vector<Row>;

// Rows from {x, y, bulge}; the two trailing columns stay 0.
Rows poly(std::initializer_list<std::array<double, 3>> vertices) {
  Rows rows;
  for (const auto& v : vertices)
    rows.push_back({v[0], v[1], v[2], 0, 0});
  return rows;
}

double (*rowsOf(Rows& rows))[5] {
  return reinterpret_cast<double(*)[5]>(rows.data());
}

double area(const Rows& rows, int closed, double eps = kEps) {
  Rows copy = rows;
  return PLineArea(eps, closed, static_cast<int>(copy.size()), rowsOf(copy));
}

int onPolyline(const Rows& rows, int closed, double x, double y, double eps = kEps) {
  Rows copy = rows;
  double p[2] = {x, y};
  return PointsOnPLine(eps, p, closed, static_cast<int>(copy.size()), rowsOf(copy));
}

// The same closed polyline travelled the other way: the segment ending at row i starts there
// and bends the other way.
Rows reversedClosed(const Rows& rows) {
  const size_t n = rows.size();
  Rows out(n);
  for (size_t k = 0; k < n; ++k) {
    const Row& src = rows[n - 1 - k];
    const Row& segment = rows[(2 * n - 2 - k) % n];  // the segment that ends at src
    out[k] = {src[0], src[1], -segment[2], src[3], src[4]};
  }
  return out;
}

// Circular segment cut off by a chord of length c with sagitta h (h <= radius), from elementary
// geometry: radius from c and h, then sector minus triangle.
double minorSegmentArea(double c, double h) {
  const double r = (c * c / 4.0 + h * h) / (2.0 * h);
  const double halfAngle = std::asin(c / (2.0 * r));
  return r * r * halfAngle - (c / 2.0) * (r - h);
}

// --- LineArea ------------------------------------------------------------------------------

TEST(LineArea, trapezoid_under_the_chord_less_the_bulge_segment) {
  // Travelled right to left the trapezoid counts negative.
  EXPECT_DOUBLE_EQ(LineArea(kEps, 0, 1, 2, 3, 0.0), 4.0);
  EXPECT_DOUBLE_EQ(LineArea(kEps, 2, 3, 0, 1, 0.0), -4.0);
  // The chord on the x axis: only the half disc of radius 1 remains, subtracted for bulge > 0.
  EXPECT_NEAR(LineArea(kEps, 0, 0, 2, 0, 1.0), -kPi / 2.0, 1e-14);
  EXPECT_NEAR(LineArea(kEps, 0, 0, 2, 0, -1.0), kPi / 2.0, 1e-14);
  // Bulge 2 on a chord of 2: sagitta = bulge*chord/2 = 2, radius 1.25; the major segment is the
  // disc minus the minor segment of sagitta 2*1.25 - 2 = 0.5 on the other side.
  const double major = kPi * 1.25 * 1.25 - minorSegmentArea(2.0, 0.5);
  EXPECT_NEAR(LineArea(kEps, 0, 0, 2, 0, 2.0), -major, 1e-12);
  EXPECT_NEAR(LineArea(kEps, 0, 0, 2, 0, -2.0), major, 1e-12);
}

TEST(LineArea, bulge_counts_as_zero_only_strictly_inside_eps) {
  EXPECT_EQ(LineArea(kE, 0, 1, 2, 1, kE / 2.0), 2.0);
  EXPECT_EQ(LineArea(kE, 0, 1, 2, 1, -kE / 2.0), 2.0);
  // At bulge = eps the flat segment (sagitta eps on a chord of 2) counts.
  const double flat = minorSegmentArea(2.0, kE);
  EXPECT_NEAR(LineArea(kE, 0, 1, 2, 1, kE), 2.0 - flat, 1e-12);
  EXPECT_NEAR(LineArea(kE, 0, 1, 2, 1, -kE), 2.0 + flat, 1e-12);
  // The same boundary on a polyline edge.
  EXPECT_EQ(area(poly({{0, 0, kE / 2}, {0, 2, 0}, {2, 2, 0}, {2, 0, 0}}), 1, kE), 4.0);
  EXPECT_NEAR(area(poly({{0, 0, kE}, {0, 2, 0}, {2, 2, 0}, {2, 0, 0}}), 1, kE),
              4.0 - minorSegmentArea(2.0, kE), 1e-12);
}

// --- PLineArea -----------------------------------------------------------------------------

TEST(PLineArea, shapes_of_known_area_negative_when_counter_clockwise) {
  const double b = kQuarterBulge;
  struct {
    const char* name;
    Rows rows;
    int closed;
    double expected;
  } const cases[] = {
      {"unit_square_ccw", poly({{0, 0, 0}, {1, 0, 0}, {1, 1, 0}, {0, 1, 0}}), 1, -1.0},
      {"unit_square_cw", poly({{0, 0, 0}, {0, 1, 0}, {1, 1, 0}, {1, 0, 0}}), 1, 1.0},
      {"rectangle_away_from_origin", poly({{100, 50, 0}, {100, 53, 0}, {107, 53, 0}, {107, 50, 0}}),
       1, 21.0},
      {"triangle", poly({{0, 0, 0}, {4, 0, 0}, {0, 3, 0}}), 1, -6.0},
      // Open: closed by a straight chord, the last row's bulge belongs to no segment.
      {"open_triangle", poly({{0, 0, 0}, {4, 0, 0}, {0, 3, 0.7}}), 0, -6.0},
      // Counter-clockwise, each arc bowing outwards (to the right of travel).
      {"circle_of_quarters", poly({{2, 0, b}, {0, 2, b}, {-2, 0, b}, {0, -2, b}}), 1, -4 * kPi},
      // Centre (5, 7), radius 1: a half circle then two quarters.
      {"half_and_two_quarters", poly({{6, 7, 1.0}, {4, 7, b}, {5, 6, b}}), 1, -kPi},
      // Clockwise square of side 10; bulge 1 on the edge up from (0,0) bows to the right of
      // travel, into the square, which loses a half disc of radius 5; bulge -1 adds it.
      {"half_circle_bowing_in", poly({{0, 0, 1.0}, {0, 10, 0}, {10, 10, 0}, {10, 0, 0}}), 1,
       100.0 - kPi * 12.5},
      {"half_circle_bowing_out", poly({{0, 0, -1.0}, {0, 10, 0}, {10, 10, 0}, {10, 0, 0}}), 1,
       100.0 + kPi * 12.5},
      // 20 x 10 with corners of radius 2, counter-clockwise from (2, 0).
      {"rounded_rectangle",
       poly({{2, 0, 0},
             {18, 0, b},
             {20, 2, 0},
             {20, 8, b},
             {18, 10, 0},
             {2, 10, b},
             {0, 8, 0},
             {0, 2, b}}),
       1, -(200.0 - 4.0 * (4.0 - kPi))},
      // Fewer than three rows have no area, even two half circles.
      {"two_rows", poly({{0, 0, 1.0}, {2, 0, 1.0}}), 1, 0.0}};
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    EXPECT_NEAR(area(c.rows, c.closed), c.expected, 1e-11);
    if (c.closed && c.rows.size() >= 3) {
      EXPECT_NEAR(area(reversedClosed(c.rows), 1), -c.expected, 1e-11);
    }
  }
  EXPECT_NE(area(poly({{0, 0, 0}, {4, 0, 0}, {0, 3, 0.7}}), 1), -6.0);  // closed: the arc counts
  Rows one = poly({{0, 0, 1.0}});
  EXPECT_EQ(PLineArea(kEps, 1, 1, rowsOf(one)), 0.0);
  EXPECT_EQ(PLineArea(kEps, 1, 0, nullptr), 0.0);
  EXPECT_EQ(PLineArea(kEps, 1, -7, nullptr), 0.0);
}

// Random closed polylines with arcs: travelling them backwards negates the area, starting at
// another row or moving them leaves it unchanged.
TEST(PLineArea, reversal_negates_and_rotation_or_translation_keep_the_area) {
  std::mt19937 rng(20240611u);
  const auto uniform = [&rng](double lo, double hi) {
    return lo + (hi - lo) * (static_cast<double>(rng()) / 4294967296.0);
  };
  for (int trial = 0; trial < 200; ++trial) {
    SCOPED_TRACE(trial);
    const int n = 3 + static_cast<int>(rng() % 8);
    Rows rows(n);
    for (Row& row : rows) {
      const double bulge = (rng() % 3 == 0) ? 0.0 : uniform(-1.5, 1.5);
      row = {uniform(-50, 50), uniform(-50, 50), bulge, 0, 0};
    }
    const double a = area(rows, 1);
    const double scale = 1e-10 * (1.0 + std::fabs(a));
    EXPECT_NEAR(area(reversedClosed(rows), 1), -a, scale);
    Rows rotated(rows.begin() + 1, rows.end());
    rotated.push_back(rows.front());
    EXPECT_NEAR(area(rotated, 1), a, scale);
    Rows moved = rows;
    for (Row& row : moved) {
      row[0] += 1000.0;
      row[1] -= 300.0;
    }
    EXPECT_NEAR(area(moved, 1), a, 1e-8 * (1.0 + std::fabs(a)));
  }
}

TEST(PLineArea, non_finite_rows_give_a_non_finite_area_without_fault) {
  EXPECT_FALSE(std::isfinite(area(poly({{0, 0, kNaN}, {1, 0, 0}, {1, kInf, 0}}), 1)));
}

// --- PointsOnPLine -------------------------------------------------------------------------

TEST(PointsOnPLine, tolerance_boundaries_on_lines_and_arcs) {
  const Rows unit = poly({{0, 0, 0}, {1, 0, 0}});
  const Rows longSegment = poly({{0, 0, 0}, {1024, 0, 0}});
  const Rows four = poly({{0, 0, 0}, {4, 0, 0}});
  // Half circle from (0,0) to (2,0), bulge 1: centre (1,0), the sweep runs below the chord;
  // bulge -1 takes the upper half instead.
  const Rows lower = poly({{0, 0, 1.0}, {2, 0, 0}});
  const Rows upper = poly({{0, 0, -1.0}, {2, 0, 0}});
  struct {
    const char* name;
    const Rows& rows;
    double x, y;
    int expected;
  } const cases[] = {// The parameter slack past either end is eps whatever the length (closed).
                     {"end_plus_half_eps", unit, 1 + kE / 2, 0, 1},
                     {"end_plus_eps", unit, 1 + kE, 0, 1},
                     {"end_plus_two_eps", unit, 1 + 2 * kE, 0, 0},
                     {"start_minus_half_eps", unit, -kE / 2, 0, 1},
                     {"start_minus_eps", unit, -kE, 0, 1},
                     {"start_minus_two_eps", unit, -2 * kE, 0, 0},
                     {"long_half_unit_past", longSegment, 1024.5, 0, 1},
                     {"long_two_and_half_past", longSegment, 1026.5, 0, 0},
                     // The perpendicular distance must be strictly below eps.
                     {"off_by_half_eps", four, 2, kE / 2, 1},
                     {"off_by_minus_half_eps", four, 2, -kE / 2, 1},
                     {"off_by_eps", four, 2, kE, 0},
                     {"off_by_minus_eps", four, 2, -kE, 0},
                     {"arc_bottom", lower, 1, -1, 1},
                     {"arc_half_eps_outside", lower, 1, -1 - kE / 2, 1},
                     {"arc_eps_outside", lower, 1, -1 - kE, 0},
                     {"arc_two_eps_outside", lower, 1, -1 - 2 * kE, 0},
                     {"arc_two_eps_inside", lower, 1, -1 + 2 * kE, 0},
                     {"circle_off_the_sweep", lower, 1, 1, 0},
                     {"upper_top", upper, 1, 1, 1},
                     {"upper_bottom", upper, 1, -1, 0}};
  for (const auto& c : cases)
    EXPECT_EQ(onPolyline(c.rows, 0, c.x, c.y, kE), c.expected) << c.name;
}

TEST(PointsOnPLine, closing_segment_and_degenerate_segments) {
  const Rows corner = poly({{0, 0, 0}, {4, 0, 0}, {4, 4, 0}});
  EXPECT_EQ(onPolyline(corner, 0, 2.0, 2.0), 0);  // the closing segment only when closed
  EXPECT_EQ(onPolyline(corner, 1, 2.0, 2.0), 1);
  EXPECT_EQ(onPolyline(corner, 0, 4.0, 2.0), 1);
  const Rows circle = poly({{0, 0, 1.0}, {2, 0, 1.0}});
  EXPECT_EQ(onPolyline(circle, 1, 1.0, 1.0), 1);
  EXPECT_EQ(onPolyline(circle, 0, 1.0, 1.0), 0);
  EXPECT_EQ(onPolyline(circle, 1, 1.0 + std::sqrt(0.5), -std::sqrt(0.5)), 1);
  EXPECT_EQ(onPolyline(circle, 1, 1.0, 0.0), 0);
  // A segment shorter than eps never matches, exactly eps long is a segment; a neighbour decides
  // for the shared vertex.
  EXPECT_EQ(onPolyline(poly({{3, 3, 0}, {3, 3, 0}}), 0, 3.0, 3.0), 0);
  EXPECT_EQ(onPolyline(poly({{0, 0, 0}, {kE / 2, 0, 0}}), 0, 0.0, 0.0, kE), 0);
  EXPECT_EQ(onPolyline(poly({{0, 0, 0}, {kE, 0, 0}}), 0, 0.0, 0.0, kE), 1);
  EXPECT_EQ(onPolyline(poly({{3, 3, 0}, {3, 3, 0}, {5, 3, 0}}), 0, 3.0, 3.0), 1);
  // Fewer than two rows hold no point.
  Rows one = poly({{0, 0, 0}});
  double p[2] = {0.0, 0.0};
  EXPECT_EQ(PointsOnPLine(kEps, p, 1, 1, rowsOf(one)), 0);
  EXPECT_EQ(PointsOnPLine(kEps, p, 1, 0, nullptr), 0);
  EXPECT_EQ(PointsOnPLine(kEps, p, 1, -3, nullptr), 0);
}

TEST(PointsOnPLine, non_finite_input_is_not_on_the_polyline) {
  const Rows rows = poly({{0, 0, 0}, {4, 0, 0.5}, {4, 4, 0}});
  EXPECT_EQ(onPolyline(rows, 1, kNaN, 0.0), 0);
  EXPECT_EQ(onPolyline(rows, 1, kInf, kInf), 0);
  // Segments touching a NaN row are skipped, an infinite bulge is a degenerate arc; the finite
  // segment in between still counts.
  const Rows bad = poly({{kNaN, 0, 0}, {4, 0, 0}, {4, 4, kInf}});
  EXPECT_EQ(onPolyline(bad, 1, 4.0, 2.0), 1);
  EXPECT_EQ(onPolyline(bad, 1, 2.0, 2.0), 0);
}

// Points placed on random segments by their own geometry are found; points 2 eps off the
// polyline's circle or line are not, when no other segment comes near.
TEST(PointsOnPLine, random_points_on_single_segments_are_found) {
  std::mt19937 rng(77u);
  const auto uniform = [&rng](double lo, double hi) {
    return lo + (hi - lo) * (static_cast<double>(rng()) / 4294967296.0);
  };
  const double eps = 1e-7;
  for (int trial = 0; trial < 300; ++trial) {
    SCOPED_TRACE(trial);
    const double x1 = uniform(-20, 20), y1 = uniform(-20, 20);
    const double x2 = uniform(-20, 20), y2 = uniform(-20, 20);
    const double bulge = trial % 2 ? 0.0 : (trial % 4 ? 1.0 : -1.0) * uniform(0.05, 2.0);
    const double t = uniform(0.0, 1.0);
    double px, py, nx, ny;
    const double c = std::hypot(x2 - x1, y2 - y1);
    if (bulge == 0.0) {
      px = x1 + t * (x2 - x1);
      py = y1 + t * (y2 - y1);
      nx = (y2 - y1) / c;
      ny = -(x2 - x1) / c;
    } else {
      // Centre off the chord midpoint along the left normal by c(1 - b^2)/(4b).
      const double off = c * (1.0 - bulge * bulge) / (4.0 * bulge);
      const double cx = (x1 + x2) / 2.0 - (y2 - y1) / c * off;
      const double cy = (y1 + y2) / 2.0 + (x2 - x1) / c * off;
      const double angle = std::atan2(y1 - cy, x1 - cx) + t * 4.0 * std::atan(bulge);
      const double r = std::hypot(x1 - cx, y1 - cy);
      px = cx + r * std::cos(angle);
      py = cy + r * std::sin(angle);
      nx = std::cos(angle);
      ny = std::sin(angle);
    }
    const Rows rows = poly({{x1, y1, bulge}, {x2, y2, 0}});
    EXPECT_EQ(onPolyline(rows, 0, px, py, eps), 1);
    EXPECT_EQ(onPolyline(rows, 0, px + 2 * eps * nx, py + 2 * eps * ny, eps), 0);
  }
}

}  // namespace
