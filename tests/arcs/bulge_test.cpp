// Tarnsysm: planar computational geometry for 2D drafting.
// Tests of bulge arcs and arc extents.
#include <Tarnsysm.h>

#include <gtest/gtest.h>

namespace {

constexpr double kEps = 1e-6;
constexpr double kPi = 3.141592653589793;
constexpr double kTwoPi = 6.283185307179586;

TEST(PL_ArcParam, counter_clockwise_half_circle_sweeps_below_the_chord) {
  double cx, cy, r, sa, ea;
  ASSERT_EQ(PL_ArcParam(kEps, 0, 0, 2, 0, 1.0, &cx, &cy, &r, &sa, &ea), 1);
  EXPECT_NEAR(cx, 1.0, 1e-15);
  EXPECT_NEAR(cy, 0.0, 1e-15);
  EXPECT_NEAR(r, 1.0, 1e-15);
  EXPECT_NEAR(sa, kPi, 1e-15);
  EXPECT_NEAR(ea, kTwoPi, 1e-15);
}

}  // namespace
