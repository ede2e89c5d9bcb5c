// Tarnsysm: planar computational geometry for 2D drafting.
// Line, circle and arc intersections. The arithmetic order below decides borderline cases and is
// kept as it is; the squared, radius-normalised circle tests in particular.
#include "intersect/intersect.h"
#include "primitives/internal.h"
#include "primitives/primitives.h"

#include <cmath>
#include <limits>

using namespace tarnsysm::detail;

namespace {

// Does the point lie on the arc about (cx, cy) swept from sa to ea? eps, a length tolerance,
// serves as the angular tolerance here, as the drafting host expects.
bool onArc(double eps, double cx, double cy, double sa, double ea, double x, double y) {
  return ValidAngle(eps, sa, ea, portable::atan2(y - cy, x - cx)) == 1;
}

// Strict position test along a line of length len: -eps < p < len + eps.
bool withinSegmentOpen(double p, double len, double eps) {
  return -eps < p && p < len + eps;
}

// Closed parameter test: -eps <= t <= 1 + eps (eps as a parameter tolerance).
bool withinParameterClosed(double t, double eps) {
  return -eps <= t && t <= 1.0 + eps;
}

}  // namespace

int D2LInts(double eps, double x1, double y1, double x2, double y2, double x3, double y3, double x4,
            double y4, double* x, double* y, int* flag) {
  *flag = 0;
  const double dx1 = x2 - x1;
  const double dy1 = y2 - y1;
  const double dx2 = x4 - x3;
  const double dy2 = y4 - y3;
  const bool vertical1 = withinClosed(dx1, eps);
  const bool vertical2 = withinClosed(dx2, eps);
  if (vertical1 && vertical2)
    return 0;
  // The slope test only applies when neither line is vertical.
  if (!vertical1 && !vertical2 && withinOpen(dy1 / dx1 - dy2 / dx2, eps))
    return 0;
  // det is an area and is compared with eps unscaled, deliberately.
  const double det = dx2 * dy1 - dx1 * dy2;
  if (withinOpen(det, eps) || std::isnan(det))
    return 0;
  const double ex = x1 - x3;
  const double ey = y1 - y3;
  const double t = (ex * dy2 - ey * dx2) / det;
  const double u = (ex * dy1 - ey * dx1) / det;
  *x = x1 + dx1 * t;
  *y = y1 + dy1 * t;
  if (withinParameterClosed(t, eps))
    *flag = 1;
  if (withinParameterClosed(u, eps))
    *flag += 2;
  return 1;
}

int DCirLInts(double eps, double x1, double y1, double x2, double y2, double cx, double cy,
              double r, double* xa, double* ya, double* xb, double* yb, int* flag) {
  *flag = 0;
  const double dx = x2 - x1;
  const double dy = y2 - y1;
  const double len2 = dx * dx + dy * dy;
  if (len2 <= eps * eps)
    return 0;
  const double len = std::sqrt(len2);
  if (len <= eps)
    return 0;
  const double ux = dx / len;
  const double uy = dy / len;

  // Foot of the perpendicular from the centre.
  const double fx = uy * uy * x1 - ux * uy * (y1 - cy) + ux * ux * cx;
  const double fy = ux * uy * (cx - x1) + ux * ux * y1 + uy * uy * cy;
  const double dist = std::sqrt(square(fx - cx) + square(fy - cy));

  if (r - eps < dist && dist < r + eps) {
    // Tangent: the single point is the foot, placed by its distance along the line.
    const double p = (cx - x1) * ux + (cy - y1) * uy;
    *xa = x1 + p * ux;
    *ya = y1 + p * uy;
    *flag = withinSegmentOpen(p, len, eps) ? 1 : 0;
    return 1;
  }
  // dist exactly r - eps falls between the two strict tests and is no intersection, as is a
  // non-finite distance.
  if (!(dist < r - eps))
    return 0;

  // Secant. eps is compared with a unit-vector component to pick the better-conditioned axis.
  const double p0 = withinOpen(ux, eps) ? (fy - y1) / uy : (fx - x1) / ux;
  const double h = std::sqrt(r * r - dist * dist);
  const double p1 = p0 - h;
  const double p2 = p0 + h;
  if (withinSegmentOpen(p1, len, eps))
    *flag = 1;
  if (withinSegmentOpen(p2, len, eps))
    *flag += 2;
  const double ax = x1 + p1 * ux;
  const double ay = y1 + p1 * uy;
  const double bx = x1 + p2 * ux;
  const double by = y1 + p2 * uy;
  *xa = ax;
  *ya = ay;
  *xb = bx;
  *yb = by;
  if (std::sqrt(square(ax - bx) + square(ay - by)) >= eps)
    return 2;

  // Two points closer than eps merge into their midpoint; B stays in xb, yb.
  *xa = (ax + bx) / 2.0;
  *ya = (ay + by) / 2.0;
  *flag = withinSegmentOpen((p1 + p2) / 2.0, len, eps) ? 1 : 0;
  return 1;
}

int DArcLInts(double eps, double x1, double y1, double x2, double y2, double cx, double cy,
              double r, double sa, double ea, double* xa, double* ya, double* xb, double* yb,
              int* flag) {
  const int n = DCirLInts(eps, x1, y1, x2, y2, cx, cy, r, xa, ya, xb, yb, flag);
  if (n == 0)
    return 0;
  if (onArc(eps, cx, cy, sa, ea, *xa, *ya)) {
    if (n == 1)
      return 1;
    if (onArc(eps, cx, cy, sa, ea, *xb, *yb))
      return 2;
    *flag = (*flag & 1) ? 1 : 0;
    return 1;
  }
  if (n == 1 || !onArc(eps, cx, cy, sa, ea, *xb, *yb)) {
    *flag = 0;
    return 0;
  }
  // Only the second point is on the arc: it moves to the first slot, with its own flag bit.
  *flag = (*flag & 2) ? 1 : 0;
  *xa = *xb;
  *ya = *yb;
  return 1;
}

int D2CirInts(double eps, double x1, double y1, double r1, double x2, double y2, double r2,
              double* xa, double* ya, double* xb, double* yb) {
  // All distance tests are on squares normalised by the larger radius.
  const double big = r1 <= r2 ? r2 : r1;
  const double dx = x2 - x1;
  const double dy = y2 - y1;
  const double d2 = dx * dx + dy * dy;
  // Concentric circles never meet in a point. A radius whose square is not a normal double (0,
  // or below about 1e-154) makes a point, not a curve: normalising by it would turn every
  // distance into infinity and report far-apart points as touching.
  // A NaN or infinite radius is no circle.
  const double big2 = big * big;
  if (d2 == 0.0 || !(big2 >= std::numeric_limits<double>::min()) || !std::isfinite(r1) ||
      !std::isfinite(r2))
    return 0;
  const double q = d2 / big2;
  if (std::isnan(q))
    return 0;
  if (square((r1 + r2 + eps) / big) < q)
    return 0;  // too far apart
  if (square((std::fabs(r1 - r2) - eps) / big) > q)
    return 0;  // nested, or concentric
  int n = 2;
  if (square((r1 + r2 - eps) / big) <= q) {
    n = 1;  // touching from outside
  } else if (square((std::fabs(r1 - r2) + eps) / big) >= q) {
    n = 1;  // touching from inside
  }

  // Foot of the common chord on the line of centres.
  const double k = ((r1 - r2) * (r1 + r2) / d2 + 1.0) / 2.0;
  const double mx = x1 + k * (x2 - x1);
  const double my = y1 + k * (y2 - y1);
  if (n == 1) {
    *xa = mx;
    *ya = my;
    return 1;
  }
  const double dyv = y2 - y1;
  const double dxn = x1 - x2;
  const double dd = dyv * dyv + dxn * dxn;
  const double g = (my - y1) * dyv - (mx - x1) * dxn;
  // disc is D^2 times the squared half chord, a fourth power compared with eps unscaled.
  const double disc = r1 * r1 * dd - g * g;
  if (disc < -eps)
    return 0;
  if (disc < eps) {
    *xa = mx;
    *ya = my;
    return 1;
  }
  const double w = std::sqrt(disc) / dd;
  *xa = mx + dyv * w;  // right of the line from the first centre to the second
  *ya = my + dxn * w;
  *xb = mx - dyv * w;  // left of it
  *yb = my - dxn * w;
  return 2;
}

int D2ArcInts(double eps, double x1, double y1, double r1, double start1, double end1, double x2,
              double y2, double r2, double start2, double end2, double* xa, double* ya, double* xb,
              double* yb) {
  const int n = D2CirInts(eps, x1, y1, r1, x2, y2, r2, xa, ya, xb, yb);
  if (n == 0)
    return 0;
  const auto onBoth = [&](double x, double y) {
    return onArc(eps, x1, y1, start1, end1, x, y) && onArc(eps, x2, y2, start2, end2, x, y);
  };
  const bool first = onBoth(*xa, *ya);
  if (n == 1)
    return first ? 1 : 0;
  const bool second = onBoth(*xb, *yb);
  if (first)
    return second ? 2 : 1;  // a rejected second point stays in xb, yb
  if (!second)
    return 0;
  *xa = *xb;
  *ya = *yb;
  return 1;
}
