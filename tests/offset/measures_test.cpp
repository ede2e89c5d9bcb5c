// Tarnsysm: planar computational geometry for 2D drafting.
// Tests of the polyline measures: segment and polyline areas, point-on-polyline.
#include <Tarnsysm.h>

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <cstdint>
#include <limits>
#include <random>
#include <vector>

namespace {

constexpr double kEps = 1e-9;
// A power of two, so that eps, eps/2 and 2 eps are exact and boundaries decide exactly.
constexpr double kBinEps = 1.0 / 1024.0;
constexpr double kPi = 3.141592653589793;
const double kQuarterBulge = std::tan(kPi / 8.0);  // a quarter circle

using Row = std::array<double, 5>;
using Rows = std::vector<Row>;

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

TEST(LineArea, straight_segment_is_the_trapezoid_under_it) {
  EXPECT_DOUBLE_EQ(LineArea(kEps, 0, 1, 2, 3, 0.0), 4.0);
  // Travelled right to left the trapezoid counts negative.
  EXPECT_DOUBLE_EQ(LineArea(kEps, 2, 3, 0, 1, 0.0), -4.0);
}

TEST(LineArea, half_circle_segment_is_subtracted_for_a_positive_bulge) {
  // The chord lies on the x axis: only the half disc of radius 1 remains.
  EXPECT_NEAR(LineArea(kEps, 0, 0, 2, 0, 1.0), -kPi / 2.0, 1e-14);
  EXPECT_NEAR(LineArea(kEps, 0, 0, 2, 0, -1.0), kPi / 2.0, 1e-14);
}

TEST(LineArea, major_arc_takes_the_large_part_of_the_disc) {
  // Bulge 2 on a chord of 2: sagitta = bulge*chord/2 = 2, radius 1.25; the major segment is the
  // disc minus the minor segment of sagitta 2*1.25 - 2 = 0.5 on the other side.
  const double major = kPi * 1.25 * 1.25 - minorSegmentArea(2.0, 0.5);
  EXPECT_NEAR(LineArea(kEps, 0, 0, 2, 0, 2.0), -major, 1e-12);
  EXPECT_NEAR(LineArea(kEps, 0, 0, 2, 0, -2.0), major, 1e-12);
}

TEST(LineArea, bulge_counts_as_zero_only_strictly_inside_eps) {
  EXPECT_EQ(LineArea(kBinEps, 0, 1, 2, 1, kBinEps / 2.0), 2.0);
  EXPECT_EQ(LineArea(kBinEps, 0, 1, 2, 1, -kBinEps / 2.0), 2.0);
  // At bulge = eps the flat segment (sagitta eps on a chord of 2) counts.
  const double flat = minorSegmentArea(2.0, kBinEps);
  EXPECT_NEAR(LineArea(kBinEps, 0, 1, 2, 1, kBinEps), 2.0 - flat, 1e-12);
  EXPECT_NEAR(LineArea(kBinEps, 0, 1, 2, 1, -kBinEps), 2.0 + flat, 1e-12);
}

// --- PLineArea -----------------------------------------------------------------------------

TEST(PLineArea, unit_square_is_negative_counter_clockwise_and_positive_clockwise) {
  const Rows ccw = {{{0, 0, 0, 0, 0}}, {{1, 0, 0, 0, 0}}, {{1, 1, 0, 0, 0}}, {{0, 1, 0, 0, 0}}};
  const Rows cw = {{{0, 0, 0, 0, 0}}, {{0, 1, 0, 0, 0}}, {{1, 1, 0, 0, 0}}, {{1, 0, 0, 0, 0}}};
  EXPECT_DOUBLE_EQ(area(ccw, 1), -1.0);
  EXPECT_DOUBLE_EQ(area(cw, 1), 1.0);
}

TEST(PLineArea, rectangle_away_from_the_origin) {
  const Rows rect = {
      {{100, 50, 0, 0, 0}}, {{100, 53, 0, 0, 0}}, {{107, 53, 0, 0, 0}}, {{107, 50, 0, 0, 0}}};
  EXPECT_NEAR(area(rect, 1), 21.0, 1e-11);
}

TEST(PLineArea, open_polyline_is_closed_by_a_straight_chord) {
  const Rows closedTriangle = {{{0, 0, 0, 0, 0}}, {{4, 0, 0, 0, 0}}, {{0, 3, 0, 0, 0}}};
  Rows openTriangle = closedTriangle;
  EXPECT_DOUBLE_EQ(area(closedTriangle, 1), -6.0);
  EXPECT_DOUBLE_EQ(area(openTriangle, 0), -6.0);
  // The bulge of the last row belongs to no segment of an open polyline.
  openTriangle[2][2] = 0.7;
  EXPECT_DOUBLE_EQ(area(openTriangle, 0), -6.0);
  EXPECT_NE(area(openTriangle, 1), -6.0);
}

TEST(PLineArea, fewer_than_three_rows_have_no_area) {
  Rows twoHalves = {{{0, 0, 1.0, 0, 0}}, {{2, 0, 1.0, 0, 0}}};  // a full circle, but 2 rows
  EXPECT_EQ(area(twoHalves, 1), 0.0);
  EXPECT_EQ(PLineArea(kEps, 1, 1, rowsOf(twoHalves)), 0.0);
  EXPECT_EQ(PLineArea(kEps, 1, 0, nullptr), 0.0);
  EXPECT_EQ(PLineArea(kEps, 1, -7, nullptr), 0.0);
}

TEST(PLineArea, circle_of_quarter_arcs_is_the_disc) {
  const double r = 2.0;
  const double b = kQuarterBulge;
  // Counter-clockwise, each arc bowing outwards (to the right of travel).
  const Rows ccw = {{{r, 0, b, 0, 0}}, {{0, r, b, 0, 0}}, {{-r, 0, b, 0, 0}}, {{0, -r, b, 0, 0}}};
  EXPECT_NEAR(area(ccw, 1), -kPi * r * r, 1e-12);
  EXPECT_NEAR(area(reversedClosed(ccw), 1), kPi * r * r, 1e-12);
}

TEST(PLineArea, circle_of_a_half_and_two_quarters_away_from_the_origin) {
  // Centre (5, 7), radius 1, counter-clockwise: a half circle then two quarters.
  const double b = kQuarterBulge;
  const Rows rows = {{{6, 7, 1.0, 0, 0}}, {{4, 7, b, 0, 0}}, {{5, 6, b, 0, 0}}};
  EXPECT_NEAR(area(rows, 1), -kPi, 1e-12);
}

TEST(PLineArea, half_circle_edge_bows_into_a_clockwise_square) {
  // Clockwise square of side 10; the edge from (0,0) up to (0,10) has bulge 1: a positive bulge
  // bows to the right of travel, here into the square, which loses a half disc of radius 5.
  const Rows rows = {
      {{0, 0, 1.0, 0, 0}}, {{0, 10, 0, 0, 0}}, {{10, 10, 0, 0, 0}}, {{10, 0, 0, 0, 0}}};
  EXPECT_NEAR(area(rows, 1), 100.0 - kPi * 25.0 / 2.0, 1e-12);
  // Bulge -1 bows outwards and adds the half disc.
  Rows outward = rows;
  outward[0][2] = -1.0;
  EXPECT_NEAR(area(outward, 1), 100.0 + kPi * 25.0 / 2.0, 1e-12);
}

TEST(PLineArea, rounded_rectangle_is_rectangle_minus_corner_cut_offs) {
  // 20 x 10 with corners of radius 2, counter-clockwise from (2, 0).
  const double b = kQuarterBulge;
  const Rows rows = {{{2, 0, 0, 0, 0}},  {{18, 0, b, 0, 0}},  {{20, 2, 0, 0, 0}},
                     {{20, 8, b, 0, 0}}, {{18, 10, 0, 0, 0}}, {{2, 10, b, 0, 0}},
                     {{0, 8, 0, 0, 0}},  {{0, 2, b, 0, 0}}};
  const double expected = 20.0 * 10.0 - 4.0 * (4.0 - kPi);
  EXPECT_NEAR(area(rows, 1), -expected, 1e-11);
  EXPECT_NEAR(area(reversedClosed(rows), 1), expected, 1e-11);
}

TEST(PLineArea, edge_bulge_counts_as_zero_only_strictly_inside_eps) {
  Rows square = {{{0, 0, 0, 0, 0}}, {{0, 2, 0, 0, 0}}, {{2, 2, 0, 0, 0}}, {{2, 0, 0, 0, 0}}};
  square[0][2] = kBinEps / 2.0;
  EXPECT_EQ(area(square, 1, kBinEps), 4.0);
  square[0][2] = kBinEps;
  EXPECT_NEAR(area(square, 1, kBinEps), 4.0 - minorSegmentArea(2.0, kBinEps), 1e-12);
}

// Random closed polylines with arcs: travelling them backwards negates the area, starting at
// another row or moving them leaves it unchanged.
TEST(PLineArea, reversal_negates_and_rotation_or_translation_keep_the_area) {
  std::mt19937 rng(20240611u);
  const auto uniform = [&rng](double lo, double hi) {
    return lo + (hi - lo) * (static_cast<double>(rng()) / 4294967296.0);
  };
  for (int trial = 0; trial < 200; ++trial) {
    const int n = 3 + static_cast<int>(rng() % 8);
    Rows rows(n);
    for (Row& row : rows) {
      const double bulge = (rng() % 3 == 0) ? 0.0 : uniform(-1.5, 1.5);
      row = {uniform(-50, 50), uniform(-50, 50), bulge, 0, 0};
    }
    const double a = area(rows, 1);
    const double scale = 1e-10 * (1.0 + std::fabs(a));
    EXPECT_NEAR(area(reversedClosed(rows), 1), -a, scale) << "trial " << trial;

    Rows rotated(rows.begin() + 1, rows.end());
    rotated.push_back(rows.front());
    EXPECT_NEAR(area(rotated, 1), a, scale) << "trial " << trial;

    Rows moved = rows;
    for (Row& row : moved) {
      row[0] += 1000.0;
      row[1] -= 300.0;
    }
    EXPECT_NEAR(area(moved, 1), a, 1e-8 * (1.0 + std::fabs(a))) << "trial " << trial;
  }
}

TEST(PLineArea, non_finite_rows_give_a_non_finite_area_without_fault) {
  const double nan = std::numeric_limits<double>::quiet_NaN();
  const double inf = std::numeric_limits<double>::infinity();
  Rows rows = {{{0, 0, nan, 0, 0}}, {{1, 0, 0, 0, 0}}, {{1, inf, 0, 0, 0}}};
  EXPECT_FALSE(std::isfinite(area(rows, 1)));
}

// --- PointsOnPLine -------------------------------------------------------------------------

TEST(PointsOnPLine, parameter_slack_past_the_end_is_eps_whatever_the_length) {
  const Rows shortSegment = {{{0, 0, 0, 0, 0}}, {{1, 0, 0, 0, 0}}};
  EXPECT_EQ(onPolyline(shortSegment, 0, 1.0 + kBinEps / 2.0, 0.0, kBinEps), 1);
  EXPECT_EQ(onPolyline(shortSegment, 0, 1.0 + kBinEps, 0.0, kBinEps), 1);
  EXPECT_EQ(onPolyline(shortSegment, 0, 1.0 + 2.0 * kBinEps, 0.0, kBinEps), 0);
  EXPECT_EQ(onPolyline(shortSegment, 0, -kBinEps / 2.0, 0.0, kBinEps), 1);
  EXPECT_EQ(onPolyline(shortSegment, 0, -kBinEps, 0.0, kBinEps), 1);
  EXPECT_EQ(onPolyline(shortSegment, 0, -2.0 * kBinEps, 0.0, kBinEps), 0);
  // On a segment of 1024 the same parameter slack reaches a whole unit past the end.
  const Rows longSegment = {{{0, 0, 0, 0, 0}}, {{1024, 0, 0, 0, 0}}};
  EXPECT_EQ(onPolyline(longSegment, 0, 1024.5, 0.0, kBinEps), 1);
  EXPECT_EQ(onPolyline(longSegment, 0, 1026.5, 0.0, kBinEps), 0);
}

TEST(PointsOnPLine, perpendicular_distance_must_be_strictly_below_eps) {
  const Rows segment = {{{0, 0, 0, 0, 0}}, {{4, 0, 0, 0, 0}}};
  EXPECT_EQ(onPolyline(segment, 0, 2.0, kBinEps / 2.0, kBinEps), 1);
  EXPECT_EQ(onPolyline(segment, 0, 2.0, -kBinEps / 2.0, kBinEps), 1);
  EXPECT_EQ(onPolyline(segment, 0, 2.0, kBinEps, kBinEps), 0);
  EXPECT_EQ(onPolyline(segment, 0, 2.0, -kBinEps, kBinEps), 0);
}

TEST(PointsOnPLine, closing_segment_is_tested_only_when_closed) {
  const Rows rows = {{{0, 0, 0, 0, 0}}, {{4, 0, 0, 0, 0}}, {{4, 4, 0, 0, 0}}};
  EXPECT_EQ(onPolyline(rows, 0, 2.0, 2.0), 0);
  EXPECT_EQ(onPolyline(rows, 1, 2.0, 2.0), 1);
  EXPECT_EQ(onPolyline(rows, 0, 4.0, 2.0), 1);
}

TEST(PointsOnPLine, zero_length_segment_never_matches) {
  const Rows twoCoincident = {{{3, 3, 0, 0, 0}}, {{3, 3, 0, 0, 0}}};
  EXPECT_EQ(onPolyline(twoCoincident, 0, 3.0, 3.0), 0);
  const Rows tooShort = {{{0, 0, 0, 0, 0}}, {{kBinEps / 2.0, 0, 0, 0, 0}}};
  EXPECT_EQ(onPolyline(tooShort, 0, 0.0, 0.0, kBinEps), 0);
  // Exactly eps long is a segment.
  const Rows epsLong = {{{0, 0, 0, 0, 0}}, {{kBinEps, 0, 0, 0, 0}}};
  EXPECT_EQ(onPolyline(epsLong, 0, 0.0, 0.0, kBinEps), 1);
  // A neighbour decides for the shared vertex.
  const Rows withNeighbour = {{{3, 3, 0, 0, 0}}, {{3, 3, 0, 0, 0}}, {{5, 3, 0, 0, 0}}};
  EXPECT_EQ(onPolyline(withNeighbour, 0, 3.0, 3.0), 1);
}

TEST(PointsOnPLine, arc_takes_points_on_its_sweep_within_eps_of_the_circle) {
  // Half circle from (0,0) to (2,0), bulge 1: centre (1,0), the sweep runs below the chord.
  const Rows arc = {{{0, 0, 1.0, 0, 0}}, {{2, 0, 0, 0, 0}}};
  EXPECT_EQ(onPolyline(arc, 0, 1.0, -1.0, kBinEps), 1);
  EXPECT_EQ(onPolyline(arc, 0, 1.0, -1.0 - kBinEps / 2.0, kBinEps), 1);
  EXPECT_EQ(onPolyline(arc, 0, 1.0, -1.0 - kBinEps, kBinEps), 0);
  EXPECT_EQ(onPolyline(arc, 0, 1.0, -1.0 - 2.0 * kBinEps, kBinEps), 0);
  EXPECT_EQ(onPolyline(arc, 0, 1.0, -1.0 + 2.0 * kBinEps, kBinEps), 0);
  // On the circle but off the sweep.
  EXPECT_EQ(onPolyline(arc, 0, 1.0, 1.0, kBinEps), 0);
  // Bulge -1 takes the upper half instead.
  const Rows upper = {{{0, 0, -1.0, 0, 0}}, {{2, 0, 0, 0, 0}}};
  EXPECT_EQ(onPolyline(upper, 0, 1.0, 1.0, kBinEps), 1);
  EXPECT_EQ(onPolyline(upper, 0, 1.0, -1.0, kBinEps), 0);
}

TEST(PointsOnPLine, closed_circle_of_two_halves_contains_its_points) {
  const Rows circle = {{{0, 0, 1.0, 0, 0}}, {{2, 0, 1.0, 0, 0}}};
  EXPECT_EQ(onPolyline(circle, 1, 1.0, 1.0), 1);
  EXPECT_EQ(onPolyline(circle, 0, 1.0, 1.0), 0);
  EXPECT_EQ(onPolyline(circle, 1, 1.0 + std::sqrt(0.5), -std::sqrt(0.5)), 1);
  EXPECT_EQ(onPolyline(circle, 1, 1.0, 0.0), 0);
}

TEST(PointsOnPLine, fewer_than_two_rows_hold_no_point) {
  Rows one = {{{0, 0, 0, 0, 0}}};
  double p[2] = {0.0, 0.0};
  EXPECT_EQ(PointsOnPLine(kEps, p, 1, 1, rowsOf(one)), 0);
  EXPECT_EQ(PointsOnPLine(kEps, p, 1, 0, nullptr), 0);
  EXPECT_EQ(PointsOnPLine(kEps, p, 1, -3, nullptr), 0);
}

TEST(PointsOnPLine, non_finite_input_is_not_on_the_polyline) {
  const double nan = std::numeric_limits<double>::quiet_NaN();
  const double inf = std::numeric_limits<double>::infinity();
  const Rows rows = {{{0, 0, 0, 0, 0}}, {{4, 0, 0.5, 0, 0}}, {{4, 4, 0, 0, 0}}};
  EXPECT_EQ(onPolyline(rows, 1, nan, 0.0), 0);
  EXPECT_EQ(onPolyline(rows, 1, inf, inf), 0);
  // Segments touching a NaN row are skipped, an infinite bulge is a degenerate arc; the finite
  // segment in between still counts.
  const Rows bad = {{{nan, 0, 0, 0, 0}}, {{4, 0, 0, 0, 0}}, {{4, 4, inf, 0, 0}}};
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
    const Rows rows = {{{x1, y1, bulge, 0, 0}}, {{x2, y2, 0, 0, 0}}};
    EXPECT_EQ(onPolyline(rows, 0, px, py, eps), 1) << "trial " << trial;
    EXPECT_EQ(onPolyline(rows, 0, px + 2 * eps * nx, py + 2 * eps * ny, eps), 0)
        << "trial " << trial;
  }
}

}  // namespace
