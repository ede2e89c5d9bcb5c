// Tarnsysm: planar computational geometry for 2D drafting.
// A tour of the basics: angles, arc membership, intersections, bulge arcs and arcs from drafting
// input, printed readably.
#include <Tarnsysm.h>

#include <cstdio>

namespace {

constexpr double kEps = 1e-9;
constexpr double kDegrees = 180.0 / 3.141592653589793;

const char* yesNo(int v) {
  return v ? "yes" : "no";
}

void angles() {
  std::printf("Angles\n");
  double a = 0.0;
  DAngle(kEps, 0, 0, -1, -1, &a);
  std::printf("  direction from (0,0) to (-1,-1):            %8.3f deg\n", a * kDegrees);
  double b = 7.0;
  fpos2pi(kEps, &b);
  std::printf("  7 rad reduced into one turn:                %8.5f rad\n", b);
  std::printf("  is 10 deg on the arc 350 deg -> 20 deg?     %s\n",
              yesNo(ValidAngle(kEps, 350 / kDegrees, 20 / kDegrees, 10 / kDegrees)));
  std::printf("  is 180 deg on the arc 350 deg -> 20 deg?    %s\n",
              yesNo(ValidAngle(kEps, 350 / kDegrees, 20 / kDegrees, 180 / kDegrees)));
}

void intersections() {
  std::printf("Intersections\n");
  double x = 0, y = 0;
  int flag = 0;
  if (D2LInts(kEps, 0, 0, 4, 4, 0, 4, 4, 0, &x, &y, &flag)) {
    std::printf("  diagonals of the square 0..4:               (%g, %g), on both: %s\n", x, y,
                yesNo(flag == 3));
  }
  double xa, ya, xb, yb;
  const int n = DCirLInts(kEps, -5, 0, 5, 0, 0, 0, 2, &xa, &ya, &xb, &yb, &flag);
  std::printf("  x axis and circle r=2 at the origin:        %d points, (%g, %g) then (%g, %g)\n",
              n, xa, ya, xb, yb);
  const int m = D2CirInts(kEps, 0, 0, 1, 1, 0, 1, &xa, &ya, &xb, &yb);
  std::printf(
      "  unit circles about (0,0) and (1,0):         %d points, (%.4f, %.4f), (%.4f, %.4f)\n", m,
      xa, ya, xb, yb);
}

void bulges() {
  std::printf("Bulge arcs\n");
  double cx, cy, r, sa, ea;
  PL_ArcParam(kEps, 0, 0, 2, 0, 1.0, &cx, &cy, &r, &sa, &ea);
  std::printf("  bulge 1 from (0,0) to (2,0):                centre (%g, %g), r %g, %g..%g deg\n",
              cx, cy, r, sa * kDegrees, ea * kDegrees);
  double centre[2] = {cx, cy};
  double x0, y0, x1, y1;
  get_arc_box(kEps, centre, r, sa, ea, &x0, &y0, &x1, &y1);
  std::printf("  its extents:                                x %g..%g, y %g..%g\n", x0, x1, y0, y1);
}

void draftingArcs() {
  std::printf("Arcs from drafting input\n");
  double p1[2] = {0, 0}, p2[2] = {1, 1}, p3[2] = {2, 0};
  double centre[2];
  double r, sa, ea;
  short flag;
  if (DArcParam3P(kEps, p1, p2, p3, centre, &r, &sa, &ea, &flag)) {
    std::printf("  through (0,0), (1,1), (2,0):                centre (%g, %g), r %g, %s\n",
                centre[0] + 0.0, centre[1] + 0.0, r, flag == 1 ? "clockwise" : "counter-clockwise");
  }
  // A polyline segment leaving (0,0) along +x and ending at (1,1): bulge and the next direction.
  double stp[2] = {0, 0}, edp[2] = {1, 1};
  double bulge, endDir;
  if (PL_TestVertex(2, kEps, stp, 0.0, edp) && PL_StpStaEdp(kEps, stp, 0.0, edp, &bulge, &endDir)) {
    std::printf("  from (0,0) heading 0 deg to (1,1):          bulge %.6f, then heading %g deg\n",
                bulge, endDir * kDegrees);
  }
  double nx, ny;
  if (DPnearArc(kEps, 0.1, -1, 0, 0, 1, 0, 180 / kDegrees, &nx, &ny)) {
    std::printf("  upper unit half circle, nearest to (0.1,-1): (%g, %g)\n", nx, ny);
  }
}

}  // namespace

int main() {
  angles();
  intersections();
  bulges();
  draftingArcs();
  return 0;
}
