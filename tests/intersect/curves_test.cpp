// Tarnsysm: planar computational geometry for 2D drafting.
// Tests of line, circle and arc intersections: points, order and flags.
#include <Tarnsysm.h>

#include <gtest/gtest.h>

#include <cmath>

namespace {

constexpr double kEps = 1e-6;

TEST(D2LInts, vertical_and_horizontal_lines_meet_outside_the_first_segment) {
  double x = 0, y = 0;
  int flag = -1;
  ASSERT_EQ(D2LInts(kEps, 0, 0, 1, 0, 2, -1, 2, 1, &x, &y, &flag), 1);
  EXPECT_DOUBLE_EQ(x, 2.0);
  EXPECT_DOUBLE_EQ(y, 0.0);
  EXPECT_EQ(flag, 2);
}

TEST(D2CirInts, first_point_lies_right_of_the_centre_line) {
  double xa, ya, xb, yb;
  ASSERT_EQ(D2CirInts(kEps, 0, 0, 1, 1, 0, 1, &xa, &ya, &xb, &yb), 2);
  EXPECT_NEAR(xa, 0.5, 1e-15);
  EXPECT_NEAR(ya, -std::sqrt(3.0) / 2, 1e-15);
  EXPECT_NEAR(xb, 0.5, 1e-15);
  EXPECT_NEAR(yb, std::sqrt(3.0) / 2, 1e-15);
}

}  // namespace
