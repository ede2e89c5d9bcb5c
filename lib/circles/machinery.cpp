// Tarnsysm: planar computational geometry for 2D drafting.
// Shared machinery of the circle constructions: pick scores, the sort, the centre/radius solver,
// linear conditions, the arc-list index and the common tangents of two circles.
#include "circles/internal.h"
#include "intersect/intersect.h"

#include <cmath>

namespace tarnsysm::detail {

namespace {

// (1 - cos(u, v))^2, or 0 when either vector is too short to have a direction.
double directionDeviation(double eps, double ux, double uy, double vx, double vy) {
  const double uuvv = (ux * ux + uy * uy) * (vx * vx + vy * vy);
  if (!(eps * eps <= uuvv))
    return 0.0;
  const double off = 1.0 - (ux * vx + uy * vy) / std::sqrt(uuvv);
  return off * off;
}

}  // namespace

double CirclePickDeviation(double eps, double px, double py, double r, double cx, double cy,
                           double qx, double qy, double R) {
  double ux = qx - cx;
  double uy = qy - cy;
  const double dist = std::sqrt(ux * ux + uy * uy);
  // A larger candidate around the given centre touches it from outside: the tangency point lies
  // away from the candidate's centre.
  if (R - eps > dist && R - eps > r) {
    ux = -ux;
    uy = -uy;
  }
  return directionDeviation(eps, ux, uy, px - cx, py - cy);
}

double LinePickDeviation(double eps, double px, double py, double x1, double y1, double x2,
                         double y2, double qx, double qy, double /*R*/) {
  double nx = y2 - y1;
  double ny = x1 - x2;
  // Turn the normal to point from the candidate centre towards the line.
  if (nx * (qx - x1) + ny * (qy - y1) > eps) {
    nx = -nx;
    ny = -ny;
  }
  return directionDeviation(eps, nx, ny, px - qx, py - qy);
}

void SortDoubles(double* values, int lo, int hi) {
  if (lo >= hi)
    return;
  // Hole-filling partition about the first entry.
  const double pivot = values[lo];
  int i = lo;
  int j = hi;
  while (i < j) {
    while (i < j && values[j] > pivot)
      --j;
    if (i == j)
      break;
    values[i++] = values[j];
    while (i < j && values[i] < pivot)
      ++i;
    if (i < j)
      values[j--] = values[i];
  }
  values[i] = pivot;
  if (i - lo > 1)
    SortDoubles(values, lo, i - 1);
  if (hi - i > 1)
    SortDoubles(values, i + 1, hi);
}

int SolveCenterRadiusSystem(double eps, double a1, double b1, double c1, double d1, double a2,
                            double b2, double c2, double d2, double px, double py, double s,
                            double* x1, double* y1, double* r1, double* x2, double* y2,
                            double* r2) {
  const double det = a1 * b2 - a2 * b1;
  if (std::fabs(det) >= eps) {
    // Centre linear in r: x = X1 r + X0, y = Y1 r + Y0. Then |X - P|^2 = (r - s)^2 reads
    // A r^2 + B r + C = 0.
    const double X1 = -(b2 * d1 - b1 * d2) / det;
    const double X0 = -(c1 * b2 - c2 * b1) / det;
    const double Y1 = -(a1 * d2 - a2 * d1) / det;
    const double Y0 = -(a1 * c2 - a2 * c1) / det;
    const double X0p = X0 - px;
    const double Y0p = Y0 - py;
    const double A = X1 * X1 + Y1 * Y1 - 1.0;
    const double B = 2.0 * (X0p * X1 + Y0p * Y1 + s);
    const double C = X0p * X0p + Y0p * Y0p - s * s;
    if (std::fabs(A) < eps) {
      if (std::fabs(B) < eps)
        return 0;
      const double r = -C / B;
      *x1 = X1 * r + X0;
      *y1 = Y1 * r + Y0;
      *r1 = std::fabs(r);
      return 1;
    }
    const double disc = B * B - 4.0 * A * C;
    if (!(disc >= 0.0))
      return 0;
    const double root = std::sqrt(disc);
    const double ra = (-B + root) / (2.0 * A);
    const double rb = (-B - root) / (2.0 * A);
    *x1 = X1 * ra + X0;
    *y1 = Y1 * ra + Y0;
    *r1 = std::fabs(ra);
    *x2 = X1 * rb + X0;
    *y2 = Y1 * rb + Y0;
    *r2 = std::fabs(rb);
    return 2;
  }

  // Parallel (a, b) parts: one condition fixes r, the other is the line of centres.
  const double n1 = std::sqrt(a1 * a1 + b1 * b1);
  const double n2 = std::sqrt(a2 * a2 + b2 * b2);
  double a, b, c, d, r;
  if (n1 < eps) {
    if (n2 < eps || std::fabs(d1) < eps)
      return 0;
    r = -c1 / d1;
    a = a2 / n2;
    b = b2 / n2;
    c = c2 / n2;
    d = d2 / n2;
  } else {
    a = a1 / n1;
    b = b1 / n1;
    c = c1 / n1;
    d = d1 / n1;
    if (n2 < eps) {
      if (std::fabs(d2) < eps)
        return 0;
      r = -c2 / d2;
    } else {
      const double na = a2 / n2;
      const double nb = b2 / n2;
      const double nc = c2 / n2;
      const double nd = d2 / n2;
      const bool sameDirection = a * na + b * nb >= -eps;
      const double D = sameDirection ? d - nd : d + nd;
      if (std::fabs(D) < eps)
        return 0;
      r = sameDirection ? -(c - nc) / D : -(c + nc) / D;
    }
  }
  if (!(std::fabs(r) >= eps))
    return 0;

  // Two points of the line a x + b y + (c + d r) = 0, taken along its steeper axis.
  const double k = c + d * r;
  double lx1, ly1, lx2, ly2;
  if (std::fabs(b) + eps >= std::fabs(a)) {
    lx1 = 0.0;
    ly1 = -k / b;
    lx2 = 1.0;
    ly2 = -(a + k) / b;
  } else {
    lx1 = -k / a;
    ly1 = 0.0;
    lx2 = -(b + k) / a;
    ly2 = 1.0;
  }
  double xa = 0.0, ya = 0.0, xb = 0.0, yb = 0.0;
  int flag = 0;
  const int n =
      DCirLInts(eps, lx1, ly1, lx2, ly2, px, py, std::fabs(r - s), &xa, &ya, &xb, &yb, &flag);
  if (n >= 1) {
    *x1 = xa;
    *y1 = ya;
    *r1 = std::fabs(r);
  }
  if (n == 2) {
    *x2 = xb;
    *y2 = yb;
    *r2 = std::fabs(r);
  }
  return n;
}

LinearCondition circleAgainst(double xj, double yj, double rj, double sj, double xref, double yref,
                              double rref, double sref) {
  return {2.0 * (xj - xref), 2.0 * (yj - yref),
          rj * rj - rref * rref - (xj * xj - xref * xref) - (yj * yj - yref * yref),
          -2.0 * (sj - sref)};
}

bool unitLine(double eps, double x1, double y1, double x2, double y2, UnitLine* line) {
  const double a = y2 - y1;
  const double b = x1 - x2;
  const double len2 = a * a + b * b;
  if (!(len2 >= eps * eps) || !std::isfinite(len2))
    return false;
  const double len = std::sqrt(len2);
  line->a = a / len;
  line->b = b / len;
  line->c = -line->a * x1 - line->b * y1;
  return true;
}

void CandidateList::solve(double eps, const LinearCondition& k1, const LinearCondition& k2,
                          double px, double py, double s) {
  Circle c[2] = {};
  const int n = SolveCenterRadiusSystem(eps, k1.a, k1.b, k1.c, k1.d, k2.a, k2.b, k2.c, k2.d, px, py,
                                        s, &c[0].x, &c[0].y, &c[0].r, &c[1].x, &c[1].y, &c[1].r);
  for (int i = 0; i < n; ++i)
    add(c[i].x, c[i].y, c[i].r);
}

CandidateList sortedByRadius(const CandidateList& list) {
  double radii[8];
  bool taken[8] = {};
  for (int i = 0; i < list.count; ++i)
    radii[i] = list.items[i].r;
  SortDoubles(radii, 0, list.count - 1);
  // Equal radii go out in their solver order: each sorted radius takes the first unused match.
  CandidateList sorted;
  for (int k = 0; k < list.count; ++k)
    for (int i = 0; i < list.count; ++i)
      if (!taken[i] && list.items[i].r == radii[k]) {
        taken[i] = true;
        sorted.items[sorted.count++] = list.items[i];
        break;
      }
  return sorted;
}

void addThreeLineCircle(double eps, const UnitLine lines[3], const double sigma[3],
                        CandidateList* list) {
  // Rows (a_i, b_i, -sigma_i) . (x, y, r) = -c_i, by Cramer's rule.
  const auto det3 = [](double a1, double b1, double c1, double a2, double b2, double c2, double a3,
                       double b3, double c3) {
    return a1 * (b2 * c3 - c2 * b3) - b1 * (a2 * c3 - c2 * a3) + c1 * (a2 * b3 - b2 * a3);
  };
  const UnitLine& l1 = lines[0];
  const UnitLine& l2 = lines[1];
  const UnitLine& l3 = lines[2];
  const double m1 = -sigma[0], m2 = -sigma[1], m3 = -sigma[2];
  const double det = det3(l1.a, l1.b, m1, l2.a, l2.b, m2, l3.a, l3.b, m3);
  if (!(std::fabs(det) >= eps))
    return;
  const double x = det3(-l1.c, l1.b, m1, -l2.c, l2.b, m2, -l3.c, l3.b, m3) / det;
  const double y = det3(l1.a, -l1.c, m1, l2.a, -l2.c, m2, l3.a, -l3.c, m3) / det;
  const double r = det3(l1.a, l1.b, -l1.c, l2.a, l2.b, -l2.c, l3.a, l3.b, -l3.c) / det;
  if (std::fabs(r) < eps)
    return;
  list->add(x, y, std::fabs(r));
}

int ArcList::index(double eps, double value, bool wraps) const {
  int k = count;
  while (k > 0 && values[k - 1] - eps > value)
    --k;
  if (wraps && k == count)
    k = 0;
  return k;
}

int commonTangents(double eps, double r1, double dx, double dy, double r2, double segments[4][4]) {
  const double d2 = dx * dx + dy * dy;
  if (!((std::fabs(r1 - r2) + eps) * (std::fabs(r1 - r2) + eps) <= d2))
    return 0;
  // Unit normals n with n . (dx, dy) = k, the first and the second, per axis case.
  const auto normals = [&](double k, double n[2][2]) {
    if (std::fabs(dx) < eps) {
      n[0][1] = n[1][1] = k / dy;
      n[0][0] = std::sqrt(1.0 - n[0][1] * n[0][1]);
      n[1][0] = -n[0][0];
    } else if (std::fabs(dy) < eps) {
      n[0][0] = n[1][0] = k / dx;
      n[0][1] = std::sqrt(1.0 - n[0][0] * n[0][0]);
      n[1][1] = -n[0][1];
    } else {
      const double h = std::sqrt(k * k * dy * dy - (k * k - dx * dx) * d2);
      n[0][1] = (k * dy + h) / d2;
      n[1][1] = (k * dy - h) / d2;
      n[0][0] = (k - dy * n[0][1]) / dx;
      n[1][0] = (k - dy * n[1][1]) / dx;
    }
  };
  // Outer tangents touch both circles on the same side (k = r1 - r2), inner ones on opposite
  // sides (k = r1 + r2).
  const auto fill = [&](double k, double side2, double(*out)[4]) {
    double n[2][2];
    normals(k, n);
    for (int i = 0; i < 2; ++i) {
      out[i][0] = r1 * n[i][0];
      out[i][1] = r1 * n[i][1];
      out[i][2] = dx + side2 * r2 * n[i][0];
      out[i][3] = dy + side2 * r2 * n[i][1];
    }
  };
  fill(r1 - r2, 1.0, segments);
  if (!((r1 + r2 + eps) * (r1 + r2 + eps) <= d2))
    return 2;
  fill(r1 + r2, -1.0, segments + 2);
  return 4;
}

}  // namespace tarnsysm::detail
