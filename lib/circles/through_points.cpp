// Tarnsysm: planar computational geometry for 2D drafting.
// Circles through two or three points, circles of a given radius tangent to two objects, and the
// common tangent line of two circles, each chosen by the pick points.
//
// Every construction works about a local origin (the first object's centre or point): the
// formulas square coordinates, and squaring absolute coordinates of far-away drawings throws
// away the digits that decide the answer.
#include "circles/circles.h"
#include "circles/internal.h"

#include <cmath>

using namespace tarnsysm::detail;

namespace {

// Centres on the line A x + B y + K = 0 at distance rho from the origin, larger y first (or,
// for a line with |A| < eps, larger x first). The discriminant, a squared length, is compared
// with eps itself: within eps the line touches and the root is taken as 0.
void centresOnLineAroundOrigin(double eps, double A, double B, double K, double rho, double R,
                               CandidateList* list) {
  if (std::fabs(A) >= eps) {
    const double ba = B / A;
    const double ka = K / A;
    const double qa = 1.0 + ba * ba;
    const double qb = 2.0 * ba * ka;
    const double qc = ka * ka - rho * rho;
    const double disc = qb * qb - 4.0 * qa * qc;
    if (!(disc >= -eps))
      return;
    const double root = disc < eps ? 0.0 : std::sqrt(disc);
    for (const double y : {(-qb + root) / (2.0 * qa), (-qb - root) / (2.0 * qa)})
      list->add(-(B * y + K) / A, y, R);
    return;
  }
  const double y = -K / B;
  const double h2 = rho * rho - y * y;
  if (!(h2 >= -eps))
    return;
  const double h = h2 < eps ? 0.0 : std::sqrt(h2);
  list->add(h, y, R);
  list->add(-h, y, R);
}

}  // namespace

int DGetPPCircle(double eps, double x1, double y1, double x2, double y2, double* cx, double* cy,
                 double* r) {
  if (!allFinite({eps, x1, y1, x2, y2}))
    return 0;
  const double mx = (x1 + x2) / 2.0;
  const double my = (y1 + y2) / 2.0;
  // The midpoint is written even when the points coincide; the drafting host reads it back.
  *cx = mx;
  *cy = my;
  const double d2 = (x1 - mx) * (x1 - mx) + (y1 - my) * (y1 - my);
  if (eps * eps > d2 || !std::isfinite(d2))
    return 0;
  *r = std::sqrt(d2);
  return 1;
}

int DGetPPPCircle(double eps, double x1, double y1, double x2, double y2, double x3, double y3,
                  double* cx, double* cy, double* r) {
  if (!allFinite({eps, x1, y1, x2, y2, x3, y3}))
    return 0;
  // About point 1: the bisectors dx2 x + dy2 y + c1 = 0 and dx3 x + dy3 y + c2 = 0.
  const double dx2 = x2 - x1;
  const double dy2 = y2 - y1;
  if (dx2 * dx2 + dy2 * dy2 < eps * eps)
    return 0;
  const double c1 = -(dx2 * dx2 + dy2 * dy2) / 2.0;
  const double dx3 = x3 - x1;
  const double dy3 = y3 - y1;
  if (dx3 * dx3 + dy3 * dy3 < eps * eps)
    return 0;
  const double c2 = -(dx3 * dx3 + dy3 * dy3) / 2.0;
  const double det = dx2 * dy3 - dx3 * dy2;
  if (withinOpen(det, eps))
    return 0;
  const double ux = (c2 * dy2 - c1 * dy3) / det;
  const double uy = (dx3 * c1 - dx2 * c2) / det;
  const double radius = std::sqrt(ux * ux + uy * uy);
  if (!allFinite({ux, uy, radius}))
    return 0;
  *cx = ux + x1;
  *cy = uy + y1;
  *r = radius;
  return 1;
}

int DGetCCRCircle(double eps, double px1, double py1, double r1, double cx1, double cy1, double px2,
                  double py2, double r2, double cx2, double cy2, double R, double* cx, double* cy) {
  if (!allFinite({eps, px1, py1, r1, cx1, cy1, px2, py2, r2, cx2, cy2, R}))
    return 0;
  const LocalFrame f{cx1, cy1};
  const double dx = f.x(cx2);
  const double dy = f.y(cy2);
  const double A = 2.0 * dx;
  const double B = 2.0 * dy;
  // Centres closer than eps / 2.
  if (!(eps * eps <= A * A + B * B))
    return 0;
  // |X - C1| = R + s1 and |X - C2| = R + s2, subtracted: A x + B y + K = 0.
  const double signs[4][2] = {{-r1, -r2}, {-r1, r2}, {r1, -r2}, {r1, r2}};
  CandidateList list;
  for (const auto& s : signs) {
    const double K = (s[1] - s[0]) * (2.0 * R + s[0] + s[1]) - dx * dx - dy * dy;
    centresOnLineAroundOrigin(eps, A, B, K, R + s[0], R, &list);
  }
  double radius = 0.0;
  return f.writeBest(
      eps, list,
      [&](const Circle& c) {
        return f.circleScore(eps, px1, py1, r1, cx1, cy1, c) +
               f.circleScore(eps, px2, py2, r2, cx2, cy2, c);
      },
      cx, cy, &radius);
}

// The line's pick is not read: the circle's score alone chooses.
int DGetCLRCircle(double eps, double px, double py, double r, double cx, double cy, double /*qx*/,
                  double /*qy*/, double x1, double y1, double x2, double y2, double R, double* ocx,
                  double* ocy) {
  const LocalFrame f{cx, cy};
  UnitLine line;
  if (!allFinite({eps, px, py, r, cx, cy, x1, y1, x2, y2, R}) ||
      !f.line(eps, x1, y1, x2, y2, &line))
    return 0;
  const double signs[4][2] = {{-r, -1.0}, {-r, 1.0}, {r, -1.0}, {r, 1.0}};
  CandidateList list;
  for (const auto& s : signs)
    centresOnLineAroundOrigin(eps, line.a, line.b, line.c - R * s[1], R + s[0], R, &list);
  double radius = 0.0;
  return f.writeBest(
      eps, list, [&](const Circle& c) { return f.circleScore(eps, px, py, r, cx, cy, c); }, ocx,
      ocy, &radius);
}

int DGetLLRCircle(double eps, double px1, double py1, double x1, double y1, double x2, double y2,
                  double px2, double py2, double x3, double y3, double x4, double y4, double R,
                  double* cx, double* cy) {
  if (!allFinite({eps, px1, py1, x1, y1, x2, y2, px2, py2, x3, y3, x4, y4, R}))
    return 0;
  const LocalFrame f{x1, y1};
  UnitLine l1, l2;
  if (!f.line(eps, x1, y1, x2, y2, &l1) || !f.line(eps, x3, y3, x4, y4, &l2))
    return 0;
  const double det = l1.a * l2.b - l2.a * l1.b;
  if (withinOpen(det, eps))  // parallel
    return 0;
  const double signs[4][2] = {{-1.0, -1.0}, {-1.0, 1.0}, {1.0, -1.0}, {1.0, 1.0}};
  CandidateList list;
  for (const auto& s : signs) {
    const double c1 = l1.c - R * s[0];
    const double c2 = l2.c - R * s[1];
    list.add((c2 * l1.b - c1 * l2.b) / det, (l2.a * c1 - l1.a * c2) / det, R);
  }
  double radius = 0.0;
  return f.writeBest(
      eps, list,
      [&](const Circle& c) {
        return f.lineScore(eps, px1, py1, x1, y1, x2, y2, c) +
               f.lineScore(eps, px2, py2, x3, y3, x4, y4, c);
      },
      cx, cy, &radius);
}

int DGetCCTanLine(double eps, double px1, double py1, double r1, double cx1, double cy1, double px2,
                  double py2, double r2, double cx2, double cy2, double* x1, double* y1, double* x2,
                  double* y2) {
  if (!allFinite({eps, px1, py1, r1, cx1, cy1, px2, py2, r2, cx2, cy2}))
    return 0;
  double seg[4][4];
  const int n = commonTangents(eps, r1, cx2 - cx1, cy2 - cy1, r2, seg);
  const double qx1 = px1 - cx1, qy1 = py1 - cy1, qx2 = px2 - cx1, qy2 = py2 - cy1;
  const int i = selectByScore(eps, n, [&](int k) {
    const double* s = seg[k];
    if (!allFinite({s[0], s[1], s[2], s[3]}))
      return 1e300;
    return (s[0] - qx1) * (s[0] - qx1) + (s[1] - qy1) * (s[1] - qy1) + (s[2] - qx2) * (s[2] - qx2) +
           (s[3] - qy2) * (s[3] - qy2);
  });
  if (i < 0)
    return 0;
  *x1 = seg[i][0] + cx1;
  *y1 = seg[i][1] + cy1;
  *x2 = seg[i][2] + cx1;
  *y2 = seg[i][3] + cy1;
  return 1;
}
