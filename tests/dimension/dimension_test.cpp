// Tarnsysm: planar computational geometry for 2D drafting.
// Tests of the dimension helpers: the angular dimension's arc on random line pairs against the
// wedge that holds the pick, and the small helpers at hand-computed points.
#include <Tarnsysm.h>

#include "test_support.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <random>

namespace {

using namespace tarnsysm::test;
constexpr double kEps = 1e-9;

struct Arc {
  double radius = -1, vertex[2] = {-1, -1}, start = -1, mid = -1, end = -1;
  double startPt[2] = {-1, -1}, endPt[2] = {-1, -1};
};

int arcCal(const double (&l1)[4], const double (&l2)[4], double qx, double qy, Arc& arc) {
  double p1[2] = {l1[0], l1[1]}, p2[2] = {l1[2], l1[3]}, p3[2] = {l2[0], l2[1]},
         p4[2] = {l2[2], l2[3]}, q[2] = {qx, qy};
  return DIM_ArcCal(kEps, p1, p2, p3, p4, q, &arc.radius, arc.vertex, &arc.start, &arc.mid,
                    &arc.end, arc.startPt, arc.endPt);
}

double turnDistance(double a, double b) {
  const double d = std::fmod(std::fabs(a - b), kTwoPi);
  return std::min(d, kTwoPi - d);
}

TEST(DIM_ArcCal, spans_the_wedge_holding_the_pick_in_any_line_and_point_order) {
  std::mt19937 rng(901);
  std::uniform_real_distribution<double> coord(-50, 50), turn(0, kTwoPi), param(-20, 20);
  for (int draw = 0; draw < 500; ++draw) {
    const double vx = coord(rng), vy = coord(rng), th1 = turn(rng), th2 = turn(rng);
    const double psi = turn(rng), r = 1 + std::fabs(param(rng));
    const double rays[4] = {th1, th1 + kPi, th2, th2 + kPi};
    if (turnDistance(2 * th1, 2 * th2) < 0.05 ||
        std::any_of(rays, rays + 4, [&](double ray) { return turnDistance(ray, psi) < 1e-6; }))
      continue;
    // The wedge: the last ray at or clockwise of the pick, and the first one past it.
    double back = kTwoPi, ahead = kTwoPi;
    for (double ray : rays) {
      back = std::min(back, std::fmod(psi - ray + 2 * kTwoPi, kTwoPi));
      ahead = std::min(ahead, std::fmod(ray - psi + 2 * kTwoPi, kTwoPi));
    }
    const double s1 = param(rng), e1 = param(rng), s2 = param(rng), e2 = param(rng);
    const double line1[4] = {vx + s1 * std::cos(th1), vy + s1 * std::sin(th1),
                             vx + e1 * std::cos(th1), vy + e1 * std::sin(th1)};
    const double line2[4] = {vx + s2 * std::cos(th2), vy + s2 * std::sin(th2),
                             vx + e2 * std::cos(th2), vy + e2 * std::sin(th2)};
    if (std::fabs(s1 - e1) < 0.5 || std::fabs(s2 - e2) < 0.5)
      continue;
    const double qx = vx + r * std::cos(psi), qy = vy + r * std::sin(psi);
    Arc arc;
    ASSERT_EQ(arcCal(line1, line2, qx, qy, arc), 1) << draw;
    EXPECT_NEAR(arc.vertex[0], vx, 1e-8) << draw;
    EXPECT_NEAR(arc.vertex[1], vy, 1e-8) << draw;
    EXPECT_NEAR(arc.radius, r, 1e-8) << draw;
    EXPECT_TRUE(arc.start >= 0 && arc.start < kTwoPi) << draw;
    EXPECT_NEAR(turnDistance(arc.start, psi - back), 0, 1e-8) << draw;
    EXPECT_NEAR(turnDistance(arc.end, psi + ahead), 0, 1e-8) << draw;
    EXPECT_NEAR(arc.mid, arc.start + (back + ahead) / 2, 1e-8) << draw;
    EXPECT_NEAR(std::hypot(arc.startPt[0] - vx, arc.startPt[1] - vy), r, 1e-8) << draw;
    EXPECT_NEAR(turnDistance(std::atan2(arc.endPt[1] - vy, arc.endPt[0] - vx), psi + ahead), 0,
                1e-8)
        << draw;
    // Swapping the lines, and the points of each, describes the same dimension.
    const double swapped1[4] = {line2[2], line2[3], line2[0], line2[1]};
    const double swapped2[4] = {line1[2], line1[3], line1[0], line1[1]};
    Arc other;
    ASSERT_EQ(arcCal(swapped1, swapped2, qx, qy, other), 1) << draw;
    EXPECT_NEAR(turnDistance(other.start, arc.start), 0, 1e-9) << draw;
    EXPECT_NEAR(turnDistance(other.end, arc.end), 0, 1e-9) << draw;
  }
}

TEST(DIM_ArcCal, pick_on_a_ray_starts_there) {
  Arc arc;
  // Lines y = 0 and x = 0; the pick on the negative x axis starts the arc at pi.
  ASSERT_EQ(arcCal({-1, 0, 1, 0}, {0, -1, 0, 1}, -2, 0, arc), 1);
  EXPECT_NEAR(arc.start, kPi, 1e-15);
  EXPECT_NEAR(arc.end, 3 * kHalfPi, 1e-15);
  ASSERT_EQ(arcCal({-1, 0, 1, 0}, {0, -1, 0, 1}, 0, -3, arc), 1);
  EXPECT_NEAR(arc.start, 3 * kHalfPi, 1e-15);
  EXPECT_NEAR(arc.end, kTwoPi, 1e-15);  // exactly 2 pi stays
  EXPECT_NEAR(arc.mid, 7 * kPi / 4, 1e-15);
}

TEST(DIM_ArcCal, writes_nothing_when_there_is_no_dimension) {
  const double cases[][9] = {
      {0, 0, 1e-10, 0, 0, 0, 0, 1, 5},  // first line shorter than eps
      {0, 0, 1, 0, 0, 1, 1, 1, 5},      // parallel lines
      {-1, 0, 1, 0, 0, -1, 0, 1, 0},    // pick on the vertex
  };
  for (const auto& c : cases) {
    Arc arc;
    EXPECT_EQ(arcCal({c[0], c[1], c[2], c[3]}, {c[4], c[5], c[6], c[7]}, c[8], c[8] / 2, arc), 0);
    const Arc untouched;
    EXPECT_EQ(std::memcmp(&arc, &untouched, sizeof arc), 0);
  }
}

TEST(DimensionHelpers, give_the_hand_computed_values) {
  double p1[2] = {1, 2}, p2[2] = {4, 6}, out = 0, q[2];
  DIM_DisAng2P(0, p1, p2, 0, &out);
  EXPECT_EQ(out, 3);
  DIM_DisAng2P(0, p1, p2, std::atan2(4, 3), &out);
  EXPECT_NEAR(out, 5, 1e-14);
  double x1, y1, x2, y2;
  EXPECT_EQ(DIM_GetCirDiaPt(kEps, 1, 1, 7, 1, 2, &x1, &y1, &x2, &y2), 1);
  EXPECT_EQ(x1, -1);
  EXPECT_EQ(x2, 3);
  EXPECT_EQ(y1, 1);
  // Rotating (4, 6) and (2, 2) by -pi/2; the two changes are not inverse.
  double o[2] = {1, 2}, p[2] = {3, 4};
  DIM_UcToWc(o, kHalfPi, p, q);
  EXPECT_NEAR(q[0], 6, 1e-14);
  EXPECT_NEAR(q[1], -4, 1e-14);
  DIM_WcToUc(o, kHalfPi, p, q);
  EXPECT_NEAR(q[0], 2, 1e-14);
  EXPECT_NEAR(q[1], -2, 1e-14);
  // A 4 by 1 box: along, across, and at 45 degrees out through a long side.
  EXPECT_EQ(DIM_GetTxtEfctLen(0, kEps, 4, 1, 0, 0, &out), 1);
  EXPECT_EQ(out, 2);
  EXPECT_EQ(DIM_GetTxtEfctLen(0, kEps, 4, 1, kHalfPi, 0, &out), 1);
  EXPECT_EQ(out, 0.5);
  EXPECT_EQ(DIM_GetTxtEfctLen(0, kEps, 4, 1, kPi / 4, 0, &out), 1);
  EXPECT_NEAR(out, 0.5 * std::sqrt(2.0), 1e-14);
  EXPECT_EQ(DIM_GetTxtEfctLen(1, kEps, 4, 1, 0, 3, &out), 1);  // half-extent 0.5 below 3
  EXPECT_EQ(out, 0);
  out = 9;
  EXPECT_EQ(DIM_GetTxtEfctLen(1, kEps, 0, 1, 0, 0, &out), 0);
  EXPECT_EQ(out, 0);
  EXPECT_EQ(DIM_PToLineDis1(kEps, 0, 5, 0, 0, 10, 0, &out), 1);
  EXPECT_EQ(out, 5);
  EXPECT_EQ(DIM_PToLineDis1(kEps, 0, 5, 3, 1, 3, 1, &out), 1);  // to the second point
  EXPECT_EQ(out, 5);
  double fx, fy;
  EXPECT_EQ(DIM_PToLineDis2(3, 4, 0, 0, 1, 0, &out, &fx, &fy), 1);
  EXPECT_EQ(out, 4);
  EXPECT_EQ(fx, 3);
  EXPECT_EQ(fy, 0);
}

}  // namespace
