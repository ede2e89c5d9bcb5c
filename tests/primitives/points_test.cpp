// Tarnsysm: planar computational geometry for 2D drafting.
// Tests of point coincidence, distances, 3-component copies, rotation and unit vectors.
#include <Tarnsysm.h>

#include "test_support.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <random>

namespace {

using namespace tarnsysm::test;
constexpr double kSentinel = -12345.5;

// ---------------------------------------------------------------------------------------------
// SamePoint

TEST(SamePoint, distance_exactly_eps_is_two_points) {
  // A 3-4-5 triangle: the squared distance is exactly 25.
  EXPECT_EQ(SamePoint(5.0, 1, 2, 4, 6), 0);
  EXPECT_EQ(SamePoint(std::nextafter(5.0, 6.0), 1, 2, 4, 6), 1);
  EXPECT_EQ(SamePoint(10.0, 1, 2, 4, 6), 1);
  EXPECT_EQ(SamePoint(2.5, 1, 2, 4, 6), 0);
}

TEST(SamePoint, is_symmetric_and_measures_the_euclidean_distance) {
  const double eps = 1.0 / 1024;
  EXPECT_EQ(SamePoint(eps, 0, 0, eps / 2, 0), 1);
  EXPECT_EQ(SamePoint(eps, 0, 0, eps / 2, eps / 2), 1);      // length eps / sqrt(2)
  EXPECT_EQ(SamePoint(eps, 0, 0, 0.8 * eps, 0.8 * eps), 0);  // length 1.13 eps
  EXPECT_EQ(SamePoint(eps, 0.8 * eps, 0.8 * eps, 0, 0), 0);
  EXPECT_EQ(SamePoint(eps, 7, 7, 7, 7 + 2 * eps), 0);
}

TEST(SamePoint, zero_eps_never_merges_even_identical_points) {
  EXPECT_EQ(SamePoint(0.0, 3, 4, 3, 4), 0);
}

TEST(SamePoint, non_finite_coordinates_are_never_the_same_point) {
  EXPECT_EQ(SamePoint(1.0, kNaN, 0, 0, 0), 0);
  EXPECT_EQ(SamePoint(1.0, kInf, 0, kInf, 0), 0);
  EXPECT_EQ(SamePoint(1.0, 1e300, 0, -1e300, 0), 0);
}

// ---------------------------------------------------------------------------------------------
// DistBetweenPoint, Assign3DPoint

TEST(DistBetweenPoint, planar_and_spatial_overloads_measure_euclidean_distance) {
  EXPECT_EQ(DistBetweenPoint(1, 2, 4, 6), 5.0);
  EXPECT_EQ(DistBetweenPoint(4, 6, 1, 2), 5.0);
  EXPECT_EQ(DistBetweenPoint(-1, -1, -1, -1), 0.0);
  EXPECT_EQ(DistBetweenPoint(1, 2, 3, 3, 5, 9), 7.0);  // 2, 3, 6: a 2-3-6-7 box diagonal
  EXPECT_EQ(DistBetweenPoint(0, 0, 0, 0, 0, -4), 4.0);
}

TEST(DistBetweenPoint, pointer_overload_reads_only_x_and_y) {
  double p[3] = {1, 2, 100};
  double q[3] = {4, 6, -250};
  EXPECT_EQ(DistBetweenPoint(p, q), 5.0);
  // Two-element points are enough: the third component is never read (ASan would object).
  double a[2] = {0, 0};
  double b[2] = {-6, 8};
  EXPECT_EQ(DistBetweenPoint(a, b), 10.0);
}

TEST(Assign3DPoint, copies_exactly_three_components) {
  double dst[4] = {kSentinel, kSentinel, kSentinel, kSentinel};
  double src[4] = {1.5, -2.5, 3.25, 99.0};
  Assign3DPoint(dst, src);
  EXPECT_EQ(dst[0], 1.5);
  EXPECT_EQ(dst[1], -2.5);
  EXPECT_EQ(dst[2], 3.25);
  EXPECT_EQ(dst[3], kSentinel);

  double out[4] = {kSentinel, kSentinel, kSentinel, kSentinel};
  Assign3DPoint(out, 7.0, -8.0, 0.125);
  EXPECT_EQ(out[0], 7.0);
  EXPECT_EQ(out[1], -8.0);
  EXPECT_EQ(out[2], 0.125);
  EXPECT_EQ(out[3], kSentinel);
}

// ---------------------------------------------------------------------------------------------
// RotatePoint

TEST(RotatePoint, quarter_turn_maps_x_axis_to_y_axis_and_keeps_z) {
  double p[3] = {1, 0, 42};
  RotatePoint(kHalfPi, p);
  EXPECT_NEAR(p[0], 0.0, 1e-16);
  EXPECT_NEAR(p[1], 1.0, 1e-16);
  EXPECT_EQ(p[2], 42.0);
}

TEST(RotatePoint, uses_the_old_coordinates_for_both_results) {
  double p[2] = {1, 2};
  RotatePoint(kHalfPi, p);
  EXPECT_NEAR(p[0], -2.0, 1e-15);
  EXPECT_NEAR(p[1], 1.0, 1e-15);
  double q[2] = {1, 2};
  RotatePoint(kPi, q);
  EXPECT_NEAR(q[0], -1.0, 1e-15);
  EXPECT_NEAR(q[1], -2.0, 1e-15);
  double r[2] = {3, 0};
  RotatePoint(-kPi / 3, r);
  EXPECT_NEAR(r[0], 1.5, 1e-15);
  EXPECT_NEAR(r[1], -1.5 * std::sqrt(3.0), 1e-15);
}

TEST(RotatePoint, keeps_length_and_undoes_with_the_opposite_angle) {
  std::mt19937_64 rng(21);
  std::uniform_real_distribution<double> coord(-100, 100);
  std::uniform_real_distribution<double> angle(-10, 10);
  for (int i = 0; i < 1000; ++i) {
    const double x = coord(rng);
    const double y = coord(rng);
    const double a = angle(rng);
    double p[2] = {x, y};
    RotatePoint(a, p);
    EXPECT_NEAR(std::hypot(p[0], p[1]), std::hypot(x, y), 1e-12);
    // The rotated point makes angle a with the original (cross and dot products).
    const double cross = x * p[1] - y * p[0];
    const double dot = x * p[0] + y * p[1];
    const double r2 = x * x + y * y;
    EXPECT_NEAR(cross / r2, std::sin(a), 1e-12);
    EXPECT_NEAR(dot / r2, std::cos(a), 1e-12);
    RotatePoint(-a, p);
    EXPECT_NEAR(p[0], x, 1e-12);
    EXPECT_NEAR(p[1], y, 1e-12);
  }
}

// ---------------------------------------------------------------------------------------------
// DLineUnitVector

TEST(DLineUnitVector, length_exactly_eps_still_has_a_direction) {
  double ux = kSentinel, uy = kSentinel;
  ASSERT_EQ(DLineUnitVector(5.0, 1, 2, 4, 6, &ux, &uy), 1);
  EXPECT_EQ(ux, 0.6);
  EXPECT_EQ(uy, 0.8);
}

TEST(DLineUnitVector, shorter_than_eps_returns_zero_and_leaves_outputs_untouched) {
  double ux = kSentinel, uy = kSentinel;
  EXPECT_EQ(DLineUnitVector(std::nextafter(5.0, 6.0), 1, 2, 4, 6, &ux, &uy), 0);
  EXPECT_EQ(ux, kSentinel);
  EXPECT_EQ(uy, kSentinel);
  EXPECT_EQ(DLineUnitVector(1e-9, 3, 3, 3, 3, &ux, &uy), 0);
  EXPECT_EQ(ux, kSentinel);
  EXPECT_EQ(uy, kSentinel);
  EXPECT_EQ(DLineUnitVector(1.0 / 1024, 0, 0, 0.5 / 1024, 0, &ux, &uy), 0);
  EXPECT_EQ(ux, kSentinel);
  EXPECT_EQ(uy, kSentinel);
}

TEST(DLineUnitVector, points_from_the_first_point_to_the_second) {
  double ux = 0, uy = 0;
  ASSERT_EQ(DLineUnitVector(1e-9, 4, 6, 1, 2, &ux, &uy), 1);
  EXPECT_EQ(ux, -0.6);
  EXPECT_EQ(uy, -0.8);
  ASSERT_EQ(DLineUnitVector(1e-9, 0, 0, 0, -3, &ux, &uy), 1);
  EXPECT_EQ(ux, 0.0);
  EXPECT_EQ(uy, -1.0);
  ASSERT_EQ(DLineUnitVector(1.0 / 1024, 0, 0, 2.0 / 1024, 0, &ux, &uy), 1);
  EXPECT_EQ(ux, 1.0);
  EXPECT_EQ(uy, 0.0);
}

TEST(DLineUnitVector, nan_coordinates_give_no_direction) {
  double ux = kSentinel, uy = kSentinel;
  EXPECT_EQ(DLineUnitVector(1e-9, kNaN, 0, 1, 1, &ux, &uy), 0);
  EXPECT_EQ(ux, kSentinel);
  EXPECT_EQ(uy, kSentinel);
  (void)DLineUnitVector(1e-9, -kInf, 0, kInf, 0, &ux, &uy);
  (void)DLineUnitVector(1e-9, -1e300, 0, 1e300, 1e300, &ux, &uy);
}

}  // namespace
