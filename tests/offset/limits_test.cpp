// Tarnsysm: planar computational geometry for 2D drafting.
// The offset at the edges of its contract: eps = 0, row counts below 1, numbers that are not
// finite, the attributes of a half circle that ends up first, and a pick too far for any piece.
#include "offset/polyline_testing.h"
#include "test_support.h"

#include <Tarnsysm.h>
#include <offset/internal.h>

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <vector>

using namespace tarnsysm_test;
using tarnsysm::test::kInf;
using tarnsysm::test::kNaN;

namespace {

const Rows kSquare = rectangle(0.0, 0.0, 10.0, 10.0);  // counter-clockwise

// A bulge of exactly 0 is straight whatever eps is; other bulges keep the open interval. With
// eps = 0 the measures and the offset still answer.
TEST(OffsetLimits, ExactZeroBulgeIsStraightWhateverEps) {
  struct Row {
    const char* name;
    double eps, bulge;
    bool straight;
  } rows[] = {{"eps 0, bulge 0", 0.0, 0.0, true},
              {"eps 1e-3, bulge eps/2", 1e-3, 0.5e-3, true},
              {"eps 1e-3, bulge eps", 1e-3, 1e-3, false},
              {"eps 1e-3, bulge 2 eps", 1e-3, 2e-3, false}};
  for (const Row& r : rows) {
    // The unit chord on the x axis encloses no trapezoid: only an arc gives area.
    EXPECT_EQ(LineArea(r.eps, 0.0, 0.0, 1.0, 0.0, r.bulge) == 0.0, r.straight) << r.name;
    double c[5];
    EXPECT_EQ(PL_ArcParam(r.eps, 0.0, 0.0, 1.0, 0.0, r.bulge, c, c + 1, c + 2, c + 3, c + 4),
              r.straight ? 0 : 1)
        << r.name;
  }
  // The trapezoid under (0, 0)-(1, 1) is half the unit square.
  EXPECT_EQ(LineArea(0.0, 0.0, 0.0, 1.0, 1.0, 0.0), 0.5);
  Polyline square(kSquare);
  EXPECT_EQ(PLineArea(0.0, 1, 4, square.rows()), -100.0);
  double onEdge[2] = {5.0, 0.0};
  EXPECT_EQ(PointsOnPLine(0.0, onEdge, 1, 4, square.rows()), 1);
  // Offset inwards by 1 it is the square from (1, 1) to (9, 9), still closed.
  int closed = 1;
  double pick[2] = {5.0, 5.0};
  ASSERT_EQ(PLineOffset(0.0, &closed, 4, square.rows(), 0, pick, 1.0), 4);
  expectRows(square, false, {{1, 1}, {9, 1}, {9, 9}, {1, 9}}, "eps 0");
  EXPECT_EQ(closed, 1);
}

// Inputs PLineOffset refuses at once: it returns 0 with the rows as they were and the closed
// flag normalised to 1; also null pointers. (Other hostile input, 1e300 included, is replayed
// from the fuzz corpus, whose target checks the room and the row count.)
TEST(OffsetLimits, OffsetRefusesAtOnce) {
  struct Row {
    const char* name;
    int n, row, field, through;
    double value, pickX, dist;
  } rows[] = {{"no rows", 0, -1, 0, 0, 0.0, 5.0, 1.0},
              {"negative count", -3, -1, 0, 0, 0.0, 5.0, 1.0},
              {"NaN x", 4, 1, 0, 0, kNaN, 5.0, 1.0},
              {"infinite y", 4, 2, 1, 0, -kInf, 5.0, 1.0},
              {"NaN bulge", 4, 0, 2, 0, kNaN, 5.0, 1.0},
              {"infinite bulge, through", 4, 3, 2, 1, kInf, 5.0, 1.0},
              {"NaN pick", 4, -1, 0, 0, 0.0, kNaN, 1.0},
              {"infinite distance", 4, -1, 0, 0, 0.0, 5.0, kInf}};
  for (const Row& r : rows) {
    Polyline square(kSquare);
    if (r.row >= 0)
      square[r.row][r.field] = r.value;
    Polyline before(kSquare);
    std::memcpy(before.rows(), square.rows(), sizeof(double[5]) * 8);
    int closed = 7;
    double pick[2] = {r.pickX, 5.0};
    EXPECT_EQ(PLineOffset(1e-9, &closed, r.n, square.rows(), r.through, pick, r.dist), 0) << r.name;
    EXPECT_EQ(closed, 1) << r.name;
    EXPECT_EQ(std::memcmp(before.rows(), square.rows(), sizeof(double[5]) * 8), 0) << r.name;
  }
  Polyline square(kSquare);
  int closed = 1;
  double pick[2] = {5.0, 5.0};
  EXPECT_EQ(PLineOffset(1e-9, nullptr, 4, square.rows(), 0, pick, 1.0), 0);
  EXPECT_EQ(PLineOffset(1e-9, &closed, 4, square.rows(), 0, nullptr, 1.0), 0);
}

// The other functions run to the end on a square with a NaN corner: its two segments cross,
// hold and block nothing, and the pieces without it still answer.
TEST(OffsetLimits, OtherFunctionsAnswerAroundANaNRow) {
  Polyline square(kSquare);
  square[2][0] = kNaN;
  double centre[2] = {5.0, 5.0};
  double onEdge[2] = {5.0, 0.0};
  double d = 0.0;
  EXPECT_EQ(PLineDist(1e-9, 1, 4, square.rows(), centre, &d), 1);
  EXPECT_EQ(d, -5.0);  // 5 to the left of travel
  EXPECT_EQ(PointsOnPLine(1e-9, onEdge, 1, 4, square.rows()), 1);
  EXPECT_EQ(IntersPLine(1e-9, 0, 20.0, 5.0, 1, 4, square.rows()), 0);
  EXPECT_TRUE(std::isnan(PLineArea(1e-9, 1, 4, square.rows())));
  EXPECT_TRUE(std::isnan(LineArea(1e-9, 0.0, 0.0, kInf, 1.0, 0.0)));
  EXPECT_EQ(TrimLoop0(1e-9, 1, 4, square.rows()), 4);
}

// An open quarter arc about the origin (radius 10) moved 10 towards its centre shrinks to the
// origin; the line after it, moved as far, misses that point, so the corner is bridged by a half
// circle that starts where the shrunk arc is. That first row is an inserted one: field 3 = -1,
// field 4 from row 1 (the Polyline gives row i the attributes 100 + i, 200 + i).
TEST(OffsetLimits, BridgeRowFirstKeepsInsertedMarks) {
  Polyline p({{10.0, 0.0, std::tan(kPi / 8.0)}, {0.0, 10.0, 0.0}, {-10.0, 20.0, 0.0}});
  const int k = tarnsysm::detail::BuildOffsetPLine(1e-9, -10.0, 0, 3, p.rows());
  ASSERT_GE(k, 3);
  EXPECT_TRUE(std::hypot(p[0][0], p[0][1]) < 1e-9 && std::fabs(p[0][2]) == 1.0 && p[0][3] == -1.0 &&
              p[0][4] == 201.0 && p[1][3] == 101.0 && p[1][4] == 201.0);
}

// A pick 6 units off a small arc triangle whose concave arc has a radius of 1.9: every corner
// can see it, but no two-segment piece offset by any of its candidate distances passes through
// it (the concave arc turns inside out first), so there is no distance.
TEST(OffsetLimits, PickBeyondEveryPieceHasNoDistance) {
  Polyline t({{63.691264178658059, 81.97838963569238, 0.15120408751190495},
              {64.217498752022337, 82.971931808436324, -0.11234360306467905},
              {65.989210818771781, 82.413036924702013, -0.24359095972597178}});
  double pick[2] = {61.905833379632497, 88.554811536588531};
  double d = 12345.0;
  EXPECT_EQ(PLineDist(1e-9, 1, 3, t.rows(), pick, &d), 0);
  EXPECT_EQ(d, 12345.0);
  for (int run = 0; run < 3; ++run) {
    const int a = run, b = (run + 1) % 3, c = (run + 2) % 3;
    EXPECT_EQ(IntersPLine(1e-9, b, pick[0], pick[1], 1, 3, t.rows()), 0) << "run " << run;
    EXPECT_EQ(VertexDist(1e-9, pick, t[a][0], t[a][1], t[a][2], t[b][0], t[b][1], t[b][2], t[c][0],
                         t[c][1], &d),
              0)
        << "run " << run;
  }
}

}  // namespace
