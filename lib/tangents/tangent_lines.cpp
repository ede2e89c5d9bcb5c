// Tarnsysm: planar computational geometry for 2D drafting.
// Lines tangent to circles and arcs, parallel or perpendicular to given lines. A circle here is
// (cx, cy, r): centre first, unlike the circle constructions.
#include "circles/internal.h"
#include "intersect/intersect.h"
#include "primitives/primitives.h"
#include "tangents/tangents.h"

#include <algorithm>
#include <cmath>

using namespace tarnsysm::detail;

namespace {

// Is the direction from the centre to (x, y) on the arc's sweep?
bool onArcSweep(double eps, double cx, double cy, double a, double b, double x, double y) {
  double angle = 0.0;
  DAngle(eps, cx, cy, x, y, &angle);
  return ValidAngle(eps, a, b, angle) == 1;
}

// Point 0 of a perpendicular construction: the line's first point when the line is shorter
// than eps, else the foot of (px, py) on it.
void footOrStart(double eps, double x1, double y1, double x2, double y2, double px, double py,
                 double* point) {
  const double dx = x2 - x1;
  const double dy = y2 - y1;
  if (dx * dx + dy * dy < eps * eps ||
      DPointVerL(eps, px, py, x1, y1, x2, y2, &point[0], &point[1]) == 0) {
    point[0] = x1;
    point[1] = y1;
  }
}

// A circle of radius below eps is its centre: one line, from the centre's foot on the line (or
// the line's start) to the centre, into out[0] and out[1].
int lineToCentre(double eps, double x1, double y1, double x2, double y2, double cx, double cy,
                 double (*out)[2]) {
  footOrStart(eps, x1, y1, x2, y2, cx, cy, out[0]);
  out[1][0] = cx;
  out[1][1] = cy;
  return 1;
}

// Copies the first k points to the caller when all are finite.
bool copyFinitePoints(const double (*out)[2], int k, double (*pts)[2]) {
  for (int i = 0; i < k; ++i)
    if (!allFinite({out[i][0], out[i][1]}))
      return false;
  for (int i = 0; i < k; ++i) {
    pts[i][0] = out[i][0];
    pts[i][1] = out[i][1];
  }
  return true;
}

}  // namespace

int DTangLof2Cir(double eps, double cx1, double cy1, double r1, double cx2, double cy2, double r2,
                 double (*pts)[2], int* count) {
  *count = 0;
  if (!allFinite({eps, cx1, cy1, r1, cx2, cy2, r2}))
    return 0;
  double seg[4][4];
  const int lines = commonTangents(eps, r1, cx2 - cx1, cy2 - cy1, r2, seg);
  for (int i = 0; i < lines; ++i)
    if (!allFinite({seg[i][0], seg[i][1], seg[i][2], seg[i][3]}))
      return 0;
  for (int i = 0; i < lines; ++i) {
    pts[2 * i][0] = seg[i][0] + cx1;
    pts[2 * i][1] = seg[i][1] + cy1;
    pts[2 * i + 1][0] = seg[i][2] + cx1;
    pts[2 * i + 1][1] = seg[i][3] + cy1;
  }
  *count = 2 * lines;
  return lines;
}

int DLtangCparaL(double eps, double cx, double cy, double r, double x1, double y1, double x2,
                 double y2, double* ax1, double* ay1, double* ax2, double* ay2, double* bx1,
                 double* by1, double* bx2, double* by2) {
  if (!allFinite({eps, cx, cy, r, x1, y1, x2, y2}))
    return 0;
  const double dx = x2 - x1;
  const double dy = y2 - y1;
  const double len2 = dx * dx + dy * dy;
  if (!(eps * eps <= len2) || !std::isfinite(len2))
    return 0;
  // The offset across the line is (dy / dx) t, so a vertical line gives non-finite x
  // coordinates; the drafting host expects exactly this formula.
  const double t = r * dx / std::sqrt(len2);
  const double slope = dy / dx;
  *ax1 = cx - slope * t;
  *ay1 = cy + t;
  *ax2 = *ax1 + dx;
  *ay2 = *ay1 + dy;
  *bx1 = cx + slope * t;
  *by1 = cy - t;
  *bx2 = *bx1 + dx;
  *by2 = *by1 + dy;
  return 2;
}

int DLthrPtangC(double eps, double cx, double cy, double r, double px, double py, double* x1,
                double* y1, double* x2, double* y2) {
  if (!allFinite({eps, cx, cy, r, px, py}))
    return 0;
  const double ex = cx - px;
  const double ey = cy - py;
  const double d2 = ex * ex + ey * ey;
  if (!((r - eps) * (r - eps) <= d2) || !std::isfinite(d2))  // inside the circle
    return 0;
  // w is perpendicular to C - P with |w|^2 = d2.
  const double wx = cy - py;
  const double wy = px - cx;
  if ((r + eps) * (r + eps) > d2) {
    // On the circle: a second point of the tangent at P.
    *x1 = px + wx;
    *y1 = py + wy;
    return 1;
  }
  const double h2 = d2 - r * r;
  const double h = std::sqrt(h2);
  // M, the middle of the chord of contact, at t = h2 / d2 from P towards C.
  const double t = ((h - r) * (h + r) / d2 + 1.0) / 2.0;
  const double mx = px + t * ex;
  const double my = py + t * ey;
  // q = h2 r^2 in exact arithmetic; round-off can take it just below zero for tiny circles.
  const double q = std::max(h2 * d2 - (t * d2) * (t * d2), 0.0);
  const double s = std::sqrt(q) / d2;
  const double tx1 = mx + s * wx, ty1 = my + s * wy, tx2 = mx - s * wx, ty2 = my - s * wy;
  if (!allFinite({tx1, ty1, tx2, ty2}))
    return 0;
  *x1 = tx1;
  *y1 = ty1;
  *x2 = tx2;
  *y2 = ty2;
  return 2;
}

int DLthrPtangArc(double eps, double cx, double cy, double r, double a, double b, double px,
                  double py, double* x1, double* y1, double* x2, double* y2) {
  if (!allFinite({a, b}))
    return 0;
  const int n = DLthrPtangC(eps, cx, cy, r, px, py, x1, y1, x2, y2);
  if (n == 1)  // the angle of the second tangent point P + w is tested, not P's
    return onArcSweep(eps, cx, cy, a, b, *x1, *y1) ? 1 : 0;
  if (n != 2)
    return 0;
  const bool first = onArcSweep(eps, cx, cy, a, b, *x1, *y1);
  const bool second = onArcSweep(eps, cx, cy, a, b, *x2, *y2);
  if (first)
    return second ? 2 : 1;
  if (!second)
    return 0;
  *x1 = *x2;
  *y1 = *y2;
  return 1;
}

int DLperLtangC(double eps, double x1, double y1, double x2, double y2, double cx, double cy,
                double r, double (*pts)[2]) {
  if (!allFinite({eps, x1, y1, x2, y2, cx, cy, r}))
    return 0;
  const double dx = x2 - x1;
  const double dy = y2 - y1;
  const double len2 = dx * dx + dy * dy;
  double out[4][2];
  int lines = 1;
  if (!(r >= eps)) {
    lineToCentre(eps, x1, y1, x2, y2, cx, cy, out);
  } else if (len2 < eps * eps) {
    // The point passed is (centre x, first line y), as the drafting host expects.
    return DLthrPtangC(eps, cx, cy, r, cx, y1, &pts[0][0], &pts[0][1], &pts[1][0], &pts[1][1]);
  } else {
    lines = 2;
    const double len = std::sqrt(len2);
    const double ux = dx / len;
    const double uy = dy / len;
    // Tangency points along the line's direction; each foot is its point moved by dist along
    // the normal (uy, -ux).
    const double dist = (cx - x1) * uy - (cy - y1) * ux;
    out[1][0] = cx + r * ux;
    out[1][1] = cy + r * uy;
    out[3][0] = cx - r * ux;
    out[3][1] = cy - r * uy;
    out[0][0] = out[1][0] - dist * uy;
    out[0][1] = out[1][1] + dist * ux;
    out[2][0] = out[3][0] - dist * uy;
    out[2][1] = out[3][1] + dist * ux;
  }
  return copyFinitePoints(out, 2 * lines, pts) ? lines : 0;
}

int DLperLperArc(double eps, double x1, double y1, double x2, double y2, double cx, double cy,
                 double r, double a, double b, double (*pts)[2]) {
  if (!allFinite({eps, x1, y1, x2, y2, cx, cy, r, a, b}))
    return 0;
  const double dx = x2 - x1;
  const double dy = y2 - y1;
  const double len2 = dx * dx + dy * dy;
  double out[3][2];
  int n = 0;
  if (!(r >= eps)) {
    n = lineToCentre(eps, x1, y1, x2, y2, cx, cy, out);
  } else if (len2 >= eps * eps || square(x1 - cx) + square(y1 - cy) >= eps * eps) {
    // The perpendicular through the centre, or for a point line the line from it through the
    // centre; intersected about the centre, so far-away drawings keep their digits.
    const bool pointLine = !(len2 >= eps * eps);
    double ex = pointLine ? x1 - cx : -dy;
    double ey = pointLine ? y1 - cy : dx;
    double xb = 0.0, yb = 0.0;
    int flag = 0;
    n = DArcLInts(eps, pointLine ? ex : 0.0, pointLine ? ey : 0.0, pointLine ? 0.0 : ex,
                  pointLine ? 0.0 : ey, 0.0, 0.0, r, a, b, &ex, &ey, &xb, &yb, &flag);
    out[1][0] = ex + cx;
    out[1][1] = ey + cy;
    out[2][0] = xb + cx;
    out[2][1] = yb + cy;
    if (pointLine) {
      out[0][0] = x1;
      out[0][1] = y1;
    } else {
      footOrStart(eps, x1, y1, x2, y2, cx, cy, out[0]);
    }
  } else {
    // The point at the centre: the vertical through it, upper end first; a single valid end,
    // upper or lower, takes slot 1.
    out[0][0] = x1;
    out[0][1] = y1;
    for (const double side : {1.0, -1.0})
      if (ValidAngle(eps, a, b, side > 0 ? kHalfPi : 3.0 * kHalfPi) == 1) {
        ++n;
        out[n][0] = cx;
        out[n][1] = cy + side * r;
      }
  }
  return n > 0 && copyFinitePoints(out, n + 1, pts) ? n : 0;
}
