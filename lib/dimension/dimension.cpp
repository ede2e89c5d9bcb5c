// Tarnsysm: planar computational geometry for 2D drafting.
// Dimension helpers: distances along a direction, diameters, frame changes, text extents,
// point-line distances and the arc of an angular dimension.
#include "dimension/dimension.h"
#include "primitives/internal.h"
#include "primitives/primitives.h"

#include <cmath>
#include <utility>

using namespace tarnsysm::detail;

void DIM_DisAng2P(double, double* p1, double* p2, double a, double* out) {
  *out = portable::cos(a) * (p2[0] - p1[0]) + portable::sin(a) * (p2[1] - p1[1]);
}

int DIM_GetCirDiaPt(double eps, double cx, double cy, double px, double py, double r, double* x1,
                    double* y1, double* x2, double* y2) {
  const double t = directionBetween(eps, cx, cy, px, py);
  const double rc = r * portable::cos(t);
  const double rs = r * portable::sin(t);
  *x1 = cx - rc;
  *y1 = cy - rs;
  *x2 = cx + rc;
  *y2 = cy + rs;
  return 1;
}

namespace {

// Both frame changes rotate by -a; they differ in the sign of the origin, deliberately, so they
// are not each other's inverse.
int rotateByMinusA(double x, double y, double a, double* q) {
  const double c = portable::cos(a);
  const double s = portable::sin(a);
  q[0] = x * c + y * s;
  q[1] = y * c - x * s;
  return 1;
}

}  // namespace

int DIM_UcToWc(double* o, double a, double* p, double* q) {
  return rotateByMinusA(p[0] + o[0], p[1] + o[1], a, q);
}

int DIM_WcToUc(double* o, double a, double* p, double* q) {
  return rotateByMinusA(p[0] - o[0], p[1] - o[1], a, q);
}

int DIM_GetTxtEfctLen(unsigned char flag, double eps, double w, double h, double a, double limit,
                      double* out) {
  if (w < eps || h < eps) {
    *out = 0.0;  // a box thinner than eps
    return 0;
  }
  const double s = std::fabs(portable::sin(a));
  const double c = std::fabs(portable::cos(a));
  const double ratio = h / w;
  double half = 0.0;
  if (s < eps) {
    half = w / 2.0;  // along the text
  } else if (c < eps) {
    half = h / 2.0;  // across it
  } else {
    // The direction leaves the box through its long sides when its slope passes h / w.
    const double t = s / c;
    half = ratio + eps <= t ? h / (2.0 * s) : w / (2.0 * c);
  }
  if (flag != 0) {
    // The box's half-extent across the direction; a thin box gives no length at all.
    double p = std::fabs(s * w / 2.0 + c * h / 2.0);
    const double q = std::fabs(s * w / 2.0 - c * h / 2.0);
    if (q - eps > p)
      p = q;
    if (!(p - eps >= limit))
      half = 0.0;
  }
  *out = half;
  return 1;
}

int DIM_PToLineDis1(double eps, double px, double py, double x1, double y1, double x2, double y2,
                    double* out) {
  const double dx = x2 - x1;
  const double dy = y2 - y1;
  const double len = std::sqrt(dx * dx + dy * dy);
  if (len < eps)
    *out = DistBetweenPoint(px, py, x2, y2);  // to the second point, as the host expects
  else
    *out = std::fabs((x1 - px) * dy / len + (py - y1) * dx / len);
  return 1;
}

int DIM_PToLineDis2(double px, double py, double x0, double y0, double ux, double uy,
                    double* distance, double* footX, double* footY) {
  const double dx = px - x0;
  const double dy = py - y0;
  const double t = dx * ux + dy * uy;
  *footX = x0 + t * ux;
  *footY = y0 + t * uy;
  // Unguarded: rounding may make t^2 exceed the squared distance.
  *distance = std::sqrt(dx * dx + dy * dy - t * t);
  return 1;
}

int DIM_ArcCal(double eps, double* p1, double* p2, double* p3, double* p4, double* q,
               double* radius, double* vertex, double* start, double* mid, double* end,
               double* startPt, double* endPt) {
  // Each line runs towards non-decreasing x; the first line is the one with the larger angle.
  double a[2] = {p1[0], p1[1]}, b[2] = {p2[0], p2[1]};
  double c[2] = {p3[0], p3[1]}, d[2] = {p4[0], p4[1]};
  const double pick[2] = {q[0], q[1]};
  if (b[0] < a[0])
    std::swap(a, b);
  if (d[0] < c[0])
    std::swap(c, d);
  double a1 = 0.0, a2 = 0.0;
  if (DAngle(eps, a[0], a[1], b[0], b[1], &a1) == 0 ||
      DAngle(eps, c[0], c[1], d[0], d[1], &a2) == 0)
    return 0;
  if (a1 < a2) {
    std::swap(a, c);
    std::swap(b, d);
    std::swap(a1, a2);
  }

  // The first line's frame: origin a, axis u along it, t across it.
  const double len = std::sqrt(square(b[0] - a[0]) + square(b[1] - a[1]));
  const double ux = (b[0] - a[0]) / len;
  const double uy = (b[1] - a[1]) / len;
  const auto along = [&](const double* p) { return (p[0] - a[0]) * ux + (p[1] - a[1]) * uy; };
  const auto across = [&](const double* p) { return (p[1] - a[1]) * ux - (p[0] - a[0]) * uy; };
  const double s3 = along(c), t3 = across(c), s4 = along(d), t4 = across(d);
  const double sq = along(pick), tq = across(pick);

  if (std::fabs(t4 - t3) < eps)
    return 0;  // parallel lines
  const double s0 = s3 - t3 * (s4 - s3) / (t4 - t3);
  const double r = std::sqrt(square(s0 - sq) + tq * tq);
  if (r < eps)
    return 0;  // the pick is on the vertex

  // delta: counter-clockwise from the first line to the second, as lines, in (0, pi].
  double delta = std::fmod(a2 - a1, kPi);
  if (delta <= 0.0)
    delta += kPi;
  // A pick on the negative side (or behind the vertex on the first line) is turned by pi, and
  // so is the arc; phi is then its angle from the first line, in [0, pi).
  double base = a1;
  double qs = sq - s0, qt = tq;
  if (tq < 0.0 || (tq == 0.0 && sq < s0)) {
    qs = -qs;
    qt = -qt;
    base = a1 + kPi;
  }
  const double phi = portable::atan2(qt, qs);
  double from = base, included = delta;
  if (!(phi < delta)) {
    from = base + delta;
    included = kPi - delta;
  }
  if (from >= kTwoPi)
    from -= kTwoPi;
  else if (from < 0.0)
    from += kTwoPi;
  double to = from + included;

  const double vx = a[0] + s0 * ux;
  const double vy = a[1] + s0 * uy;
  *radius = r;
  vertex[0] = vx;
  vertex[1] = vy;
  startPt[0] = vx + r * portable::cos(from);
  startPt[1] = vy + r * portable::sin(from);
  endPt[0] = vx + r * portable::cos(to);
  endPt[1] = vy + r * portable::sin(to);
  *mid = (from + to) / 2.0;
  if (to > kTwoPi)
    to -= kTwoPi;  // after the points and the middle, which keep the unreduced end
  *start = from;
  *end = to;
  return 1;
}
