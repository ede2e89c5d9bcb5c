// Tarnsysm: planar computational geometry for 2D drafting.
// Tests of the angular dimension's arc: on random line pairs against the wedge of the four rays
// that holds the pick, in any order of lines and points, and its untouched outputs.

#include "test_support.h"

#include <cstring>

namespace {

using namespace tarnsysm::test;

struct Arc {
  double radius = -1, vertex[2] = {-1, -1}, start = -1, mid = -1, end = -1;
  double startPt[2] = {-1, -1}, endPt[2] = {-1, -1};
};

int arcCal(const double (&l1)[4], const double (&l2)[4], double qx, double qy, Arc& arc) {
  double p1[2] = {l1[0], l1[1]}, p2[2] = {l1[2], l1[3]}, p3[2] = {l2[0], l2[1]};
  double p4[2] = {l2[2], l2[3]}, q[2] = {qx, qy};
  return DIM_ArcCal(1e-9, p1, p2, p3, p4, q, &arc.radius, arc.vertex, &arc.start, &arc.mid,
                    &arc.end, arc.startPt, arc.endPt);
}

// How far apart two directions are, in [0, pi].
double turnGap(double a, double b) {
  const double d = std::fmod(std::fabs(a - b), kTwoPi);
  return std::min(d, kTwoPi - d);
}

TEST(DIM_ArcCal, spans_the_wedge_holding_the_pick_in_any_line_and_point_order) {
  std::mt19937 rng(901);
  std::uniform_real_distribution<double> coord(-50, 50), turn(0, kTwoPi), param(-20, 20);
  for (int draw = 0; draw < 500; ++draw) {
    const double vx = coord(rng), vy = coord(rng), th[2] = {turn(rng), turn(rng)};
    const double psi = turn(rng), r = 1 + std::fabs(param(rng));
    const double rays[4] = {th[0], th[0] + kPi, th[1], th[1] + kPi};
    // The wedge: from the last ray at or clockwise of the pick to the first one past it.
    double back = kTwoPi, ahead = kTwoPi;
    for (double ray : rays) {
      back = std::min(back, std::fmod(psi - ray + 2 * kTwoPi, kTwoPi));
      ahead = std::min(ahead, std::fmod(ray - psi + 2 * kTwoPi, kTwoPi));
    }
    double lines[2][4];
    for (int k = 0; k < 2; ++k) {
      const double at[2] = {param(rng), param(rng)};
      for (int e = 0; e < 2; ++e)
        lines[k][2 * e] = vx + at[e] * std::cos(th[k]),
                     lines[k][2 * e + 1] = vy + at[e] * std::sin(th[k]);
    }
    const double qx = vx + r * std::cos(psi), qy = vy + r * std::sin(psi);
    if (turnGap(2 * th[0], 2 * th[1]) < 0.05 || std::min(back, ahead) < 1e-6)
      continue;
    Arc arc, other;
    if (arcCal(lines[0], lines[1], qx, qy, arc) == 0)
      continue;  // a line shorter than eps
    // Vertex, radius, angles, and the end points on the lines' rays at the radius.
    const auto offRay = [&](const double* p, double angle) {
      return std::hypot(p[0] - vx - r * std::cos(angle), p[1] - vy - r * std::sin(angle));
    };
    EXPECT_LT(std::hypot(arc.vertex[0] - vx, arc.vertex[1] - vy) + std::fabs(arc.radius - r) +
                  turnGap(arc.start, psi - back) + turnGap(arc.end, psi + ahead) +
                  offRay(arc.startPt, psi - back) + offRay(arc.endPt, psi + ahead),
              1e-7)
        << draw;
    EXPECT_TRUE(arc.start >= 0 && arc.start < kTwoPi) << draw;
    EXPECT_NEAR(arc.mid, arc.start + (back + ahead) / 2, 1e-8) << draw;
    // The lines swapped, and the points of each.
    const double swapped[2][4] = {{lines[1][2], lines[1][3], lines[1][0], lines[1][1]},
                                  {lines[0][2], lines[0][3], lines[0][0], lines[0][1]}};
    ASSERT_EQ(arcCal(swapped[0], swapped[1], qx, qy, other), 1) << draw;
    EXPECT_LT(turnGap(other.start, arc.start) + turnGap(other.end, arc.end), 1e-9) << draw;
  }
}

TEST(DIM_ArcCal, pick_on_a_ray_starts_there_and_an_end_of_two_pi_stays) {
  Arc arc;
  ASSERT_EQ(arcCal({-1, 0, 1, 0}, {0, -1, 0, 1}, -2, 0, arc), 1);
  EXPECT_NEAR(arc.start, kPi, 1e-15);
  ASSERT_EQ(arcCal({-1, 0, 1, 0}, {0, -1, 0, 1}, 0, -3, arc), 1);
  EXPECT_NEAR(arc.start, 3 * kHalfPi, 1e-15);
  EXPECT_NEAR(arc.end, kTwoPi, 1e-15);
  EXPECT_EQ(arcCal({-1, 0, 1, 0}, {0, -1, 0, 1}, 1e-9, 0, arc), 1);  // exactly eps from the vertex
}

TEST(DIM_ArcCal, writes_nothing_without_a_dimension) {
  const double cases[][9] = {
      {0, 0, 1e-10, 0, 0, 0, 0, 1, 5},  // first line shorter than eps
      {0, 0, 1, 0, 0, 1, 1, 1, 5},      // parallel lines
      {-1, 0, 1, 0, 0, -1, 0, 1, 0},    // pick on the vertex
  };
  for (const auto& c : cases) {
    Arc arc;
    const Arc untouched;
    EXPECT_EQ(arcCal({c[0], c[1], c[2], c[3]}, {c[4], c[5], c[6], c[7]}, c[8], c[8] / 2, arc), 0);
    EXPECT_EQ(std::memcmp(&arc, &untouched, sizeof arc), 0);
  }
}

// The small helpers at hand-computed points.
TEST(DimensionHelpers, give_the_hand_computed_values) {
  double p1[2] = {1, 2}, p2[2] = {4, 6}, along, slant, d[4], q[2], w[2];
  DIM_DisAng2P(0, p1, p2, 0, &along);
  DIM_DisAng2P(0, p1, p2, std::atan2(4, 3), &slant);
  EXPECT_TRUE(near({along, slant}, {3, 5}, 1e-14));
  // The diameter through (4, 5) of the circle of radius 2 about (1, 1): along (0.6, 0.8).
  const int diameter = DIM_GetCirDiaPt(1e-9, 1, 1, 4, 5, 2, &d[0], &d[1], &d[2], &d[3]);
  EXPECT_TRUE(gives(diameter, 1, {d[0], d[1], d[2], d[3]}, {-0.2, -0.6, 2.2, 2.6}, 1e-14));
  // (3, 4) with (1, 2) added, (4, 6), or taken away, (2, 2), then turned by -pi / 2.
  double p[2] = {3, 4};
  EXPECT_EQ(DIM_UcToWc(p1, kHalfPi, p, q) + DIM_WcToUc(p1, kHalfPi, p, w), 2);
  EXPECT_TRUE(near({q[0], q[1], w[0], w[1]}, {6, -4, 2, -2}, 1e-14));
  // A 4 x 1 text box: flag, direction, limit, result, half-length. Along, across, out through a
  // long side at 45 degrees and through a short one at slope 0.1; with the flag, a projected
  // half-extent short of the limit (0.5 across, 2 along) gives 0.
  const double boxes[][5] = {{0, 0, 0, 1, 2},
                             {0, kHalfPi, 0, 1, 0.5},
                             {0, kPi / 4, 0, 1, std::sqrt(0.5)},
                             {0, std::atan(0.1), 0, 1, 2 * std::sqrt(1.01)},
                             {1, 0, 0.6, 1, 0},
                             {1, kHalfPi, 2.5, 1, 0},
                             {1, kHalfPi, 1.5, 1, 0.5}};
  for (const auto& b : boxes) {
    double half = kUnwritten;
    const int got = DIM_GetTxtEfctLen(b[0] != 0, 1e-9, 4, 1, b[1], b[2], &half);
    EXPECT_TRUE(gives(got, int(b[3]), {half}, {b[4]}, 1e-14)) << b[0] << " " << b[1] << " " << b[2];
  }
  // No width: 0, and out 0; a width or height of exactly eps still makes a box.
  double half = 9, edge[2], dist[3], foot[2];
  const int thin = DIM_GetTxtEfctLen(1, 1e-9, 0, 1, 0, 0, &half);
  const int edges = DIM_GetTxtEfctLen(0, 1e-9, 1e-9, 1, 0, 0, &edge[0]) +
                    DIM_GetTxtEfctLen(0, 1e-9, 4, 1e-9, 0, 0, &edge[1]);
  EXPECT_TRUE(gives(thin, 0, {half}, {0}, 0) && gives(edges, 2, {edge[0], edge[1]}, {5e-10, 2}, 0));
  // (0, 5) from the line through (1, 1) and (5, 4), and from a line of one point (3, 1); (4, 3)
  // from the line through the origin along (0.6, 0.8), with its foot.
  EXPECT_EQ(DIM_PToLineDis1(1e-9, 0, 5, 1, 1, 5, 4, &dist[0]) +
                DIM_PToLineDis1(1e-9, 0, 5, 3, 1, 3, 1, &dist[1]) +
                DIM_PToLineDis2(4, 3, 0, 0, 0.6, 0.8, &dist[2], &foot[0], &foot[1]),
            3);
  EXPECT_TRUE(
      near({dist[0], dist[1], dist[2], foot[0], foot[1]}, {3.8, 5, 1.4, 2.88, 3.84}, 1e-14));
}

}  // namespace
