// Tarnsysm: planar computational geometry for 2D drafting.
// Circles whose centre lies on a given line (the line crosses them along a diameter) and that
// touch or pass through the other objects. The centre line enters the centre/radius solver as a
// condition without a radius term. Work is done about the first object.
#include "circles/circles.h"
#include "circles/internal.h"

#include <cmath>

using namespace tarnsysm::detail;

int DGetCCLPerCircle(double eps, double px1, double py1, double r1, double cx1, double cy1,
                     double px2, double py2, double r2, double cx2, double cy2, double /*px3*/,
                     double /*py3*/, double x1, double y1, double x2, double y2, double* cx,
                     double* cy, double* r) {
  if (!allFinite({eps, px1, py1, r1, cx1, cy1, px2, py2, r2, cx2, cy2, x1, y1, x2, y2}))
    return 0;
  const LocalFrame f{cx1, cy1};
  // The centre line by its raw normal: a x + b y + c = 0.
  const double a = y2 - y1;
  const double b = x1 - x2;
  if (eps * eps > a * a + b * b)
    return 0;
  const LinearCondition centreLine{a, b, -a * f.x(x1) - b * f.y(y1), 0.0};
  // Circle 1's sign stays +r1: the sign of r in the solver covers both of its tangencies.
  CandidateList list;
  for (const double s2 : {r2, -r2})
    list.solve(eps, circleAgainst(f.x(cx2), f.y(cy2), r2, s2, 0.0, 0.0, r1, r1), centreLine, 0.0,
               0.0, r1);
  return f.writeBest(
      eps, list,
      [&](const Circle& c) {
        return f.circleScore(eps, px1, py1, r1, cx1, cy1, c) +
               f.circleScore(eps, px2, py2, r2, cx2, cy2, c);
      },
      cx, cy, r);
}

int DGetLLCPerCircle(double eps, double /*px1*/, double /*py1*/, double x1, double y1, double x2,
                     double y2, double px2, double py2, double x3, double y3, double x4, double y4,
                     double px3, double py3, double r, double ccx, double ccy, double* cx,
                     double* cy, double* r_out) {
  if (!allFinite({eps, x1, y1, x2, y2, px2, py2, x3, y3, x4, y4, px3, py3, r, ccx, ccy}))
    return 0;
  const LocalFrame f{ccx, ccy};
  UnitLine centre, line;
  if (!f.line(eps, x1, y1, x2, y2, &centre) || !f.line(eps, x3, y3, x4, y4, &line))
    return 0;
  // One solver call reaches one kind of tangency to the circle on the circle's side of line 2;
  // the second call, with the circle's sign flipped, reaches the other.
  const double sigma = sideOf(eps, line, 0.0, 0.0);
  CandidateList list;
  for (const double s : {r, -r})
    list.solve(eps, centre.tangent(0.0), line.tangent(sigma), 0.0, 0.0, s);
  return f.writeBest(
      eps, list,
      [&](const Circle& c) {
        return f.lineScore(eps, px2, py2, x3, y3, x4, y4, c) +
               f.circleScore(eps, px3, py3, r, ccx, ccy, c);
      },
      cx, cy, r_out);
}

int DGetLLPPerCircle(double eps, double /*px1*/, double /*py1*/, double x1, double y1, double x2,
                     double y2, double px2, double py2, double x3, double y3, double x4, double y4,
                     double x, double y, double* cx, double* cy, double* r) {
  if (!allFinite({eps, x1, y1, x2, y2, px2, py2, x3, y3, x4, y4, x, y}))
    return 0;
  const LocalFrame f{x, y};
  UnitLine centre, line;
  if (!f.line(eps, x1, y1, x2, y2, &centre) || !f.line(eps, x3, y3, x4, y4, &line))
    return 0;
  CandidateList list;
  list.solve(eps, centre.tangent(0.0), line.tangent(sideOf(eps, line, 0.0, 0.0)), 0.0, 0.0, 0.0);
  return f.writeBest(
      eps, list, [&](const Circle& c) { return f.lineScore(eps, px2, py2, x3, y3, x4, y4, c); }, cx,
      cy, r);
}

int DGetCLPPerCircle(double eps, double px, double py, double r, double ccx, double ccy,
                     double /*qx*/, double /*qy*/, double x1, double y1, double x2, double y2,
                     double x, double y, double* cx, double* cy, double* r_out) {
  if (!allFinite({eps, px, py, r, ccx, ccy, x1, y1, x2, y2, x, y}))
    return 0;
  const LocalFrame f{x, y};
  UnitLine centre;
  if (!f.line(eps, x1, y1, x2, y2, &centre))
    return 0;
  CandidateList list;
  list.solve(eps, circleAgainst(f.x(ccx), f.y(ccy), r, r, 0.0, 0.0, 0.0, 0.0), centre.tangent(0.0),
             0.0, 0.0, 0.0);
  return f.writeBest(
      eps, list, [&](const Circle& c) { return f.circleScore(eps, px, py, r, ccx, ccy, c); }, cx,
      cy, r_out);
}

int DGetLLLPerCircle(double eps, double /*px1*/, double /*py1*/, double x1, double y1, double x2,
                     double y2, double px2, double py2, double x3, double y3, double x4, double y4,
                     double px3, double py3, double x5, double y5, double x6, double y6, double* cx,
                     double* cy, double* r) {
  if (!allFinite({eps, x1, y1, x2, y2, px2, py2, x3, y3, x4, y4, px3, py3, x5, y5, x6, y6}))
    return 0;
  const LocalFrame f{x1, y1};
  UnitLine lines[3];
  if (!f.line(eps, x1, y1, x2, y2, &lines[0]) || !f.line(eps, x3, y3, x4, y4, &lines[1]) ||
      !f.line(eps, x5, y5, x6, y6, &lines[2]))
    return 0;
  CandidateList list;
  for (const double sigma3 : {1.0, -1.0}) {
    const double sigma[3] = {0.0, 1.0, sigma3};
    addThreeLineCircle(eps, lines, sigma, &list);
  }
  return f.writeBest(
      eps, sortedByRadius(list),
      [&](const Circle& c) {
        return f.lineScore(eps, px2, py2, x3, y3, x4, y4, c) +
               f.lineScore(eps, px3, py3, x5, y5, x6, y6, c);
      },
      cx, cy, r);
}

int DGetPPLPerCircle(double eps, double x1, double y1, double x2, double y2, double /*qx*/,
                     double /*qy*/, double x3, double y3, double x4, double y4, double* cx,
                     double* cy, double* r) {
  if (!allFinite({eps, x1, y1, x2, y2, x3, y3, x4, y4}))
    return 0;
  // About point 1; the centre line a x + b y + c = 0.
  const double a = y4 - y3;
  const double b = x3 - x4;
  const double c = -a * (x3 - x1) - b * (y3 - y1);
  if (eps * eps >= a * a + b * b)
    return 0;
  const double dx = x2 - x1;
  const double dy = y2 - y1;
  const double k2 = 2.0 * (dx * b - a * dy);
  double ux, uy, radius;
  if (withinOpen(k2, eps)) {
    // The bisector runs parallel to the centre line: only the bisector itself holds centres,
    // and of those the smallest circle, about the midpoint, is returned.
    ux = dx / 2.0;
    uy = dy / 2.0;
    if (!withinClosed(a * ux + b * uy + c, eps))
      return 0;
    radius = std::sqrt(dx * dx + dy * dy) / 2.0;
  } else {
    // The centre line meets the bisector 2 dx x + 2 dy y + f = 0.
    const double e = 2.0 * c;
    const double f = -(dx * dx) - (dy * dy);
    ux = (e * dy - f * b) / k2;
    uy = (f * a - e * dx) / k2;
    radius = std::sqrt(ux * ux + uy * uy);
  }
  if (!allFinite({ux, uy, radius}))
    return 0;
  *cx = ux + x1;
  *cy = uy + y1;
  *r = radius;
  return 1;
}
