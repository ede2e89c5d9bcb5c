// Tarnsysm: planar computational geometry for 2D drafting.
// Parametric line intersections with edges, circles, arcs, ellipses and elliptical arcs: results
// are parameters along the line, and arc ends lying on the line are flagged. The tolerance tests
// below decide borderline cases and are kept exactly as they are.
#include "intersect/intersect.h"
#include "primitives/internal.h"
#include "primitives/primitives.h"

#include <cmath>
#include <initializer_list>

using namespace tarnsysm::detail;

namespace {

bool finiteArguments(std::initializer_list<double> values) {
  for (double v : values)
    if (!std::isfinite(v))
      return false;
  return true;
}

// A parametric line: base point and direction.
struct Ray {
  double x0, y0, dx, dy;

  double dd() const { return dx * dx + dy * dy; }
  // Signed distance of (px, py): negative to the left of the direction.
  double offset(double px, double py) const {
    return ((px - x0) * dy - (py - y0) * dx) / std::sqrt(dd());
  }
  // Parameter of the foot of (px, py).
  double parameter(double px, double py) const { return ((px - x0) * dx + (py - y0) * dy) / dd(); }
  double x(double t) const { return x0 + t * dx; }
  double y(double t) const { return y0 + t * dy; }
};

// What an arc's ends contribute: their parameters and flags (0 when off the line).
struct ArcEnds {
  double tS, tE;
  int startFlag, endFlag;
};

// `leftness` is the cross product of the line's direction with the direction the curve takes
// away from the end: positive when the curve leaves to the left (bit value 4).
ArcEnds arcEnds(double eps, const Ray& ray, double sx, double sy, double ex, double ey,
                double startLeftness, double endLeftness) {
  ArcEnds ends{ray.parameter(sx, sy), ray.parameter(ex, ey), 0, 0};
  if (withinOpen(ray.offset(sx, sy), eps))
    ends.startFlag = startLeftness <= eps ? 1 : 5;
  if (withinOpen(ray.offset(ex, ey), eps))
    ends.endFlag = endLeftness >= -eps ? 2 : 6;
  return ends;
}

// Settles the circle or ellipse crossings t1, t2 (n of them) against the arc: ends on the line
// replace the nearer crossing, the rest are tested with onArc. The ellipse replaces the nearer
// crossing by its start point without tolerance, the circle with eps.
template <class OnArc>
int clipToArc(double eps, int n, const ArcEnds& ends, bool startWithoutTolerance, OnArc onArc,
              double* t1, double* t2, int* flag1, int* flag2) {
  *flag1 = ends.startFlag;
  *flag2 = ends.endFlag;
  if (n == 1) {
    if (*flag1 != 0) {
      *t1 = ends.tS;
      return 1;
    }
    if (*flag2 == 0) {
      *flag1 = 3;  // the line touches the curve
      return onArc(*t1) ? 1 : 0;
    }
    *t1 = ends.tE;
    *flag1 = *flag2;
    return 1;
  }
  if (*flag1 != 0 && *flag2 != 0) {
    *t1 = ends.tS;
    *t2 = ends.tE;
    return 2;
  }
  if (*flag1 != 0) {
    const double d1 = std::fabs(*t1 - ends.tS);
    const double d2 = std::fabs(*t2 - ends.tS);
    const bool firstIsNearer = startWithoutTolerance ? !(d2 < d1) : d1 <= d2 + eps;
    if (!firstIsNearer)
      *t2 = *t1;
    *t1 = ends.tS;
  } else if (*flag2 != 0) {
    if (!(std::fabs(*t2 - ends.tE) - eps <= std::fabs(*t1 - ends.tE)))
      *t1 = *t2;
    *t2 = ends.tE;
  }
  const bool first = *flag1 != 0 || onArc(*t1);
  const bool second = *flag2 != 0 || onArc(*t2);
  if (first && second)
    return 2;
  if (first)
    return 1;
  if (!second)
    return 0;
  *t1 = *t2;
  *flag1 = *flag2;
  return 1;
}

// The circle crossings; unitLength keeps the half chord as a parameter step (a unit direction),
// otherwise it is divided by the component that gave the foot's parameter.
int lineCircle(double eps, const Ray& ray, double cx, double cy, double r, bool unitLength,
               double* t1, double* t2) {
  if (!finiteArguments({eps, ray.x0, ray.y0, ray.dx, ray.dy, cx, cy, r}))
    return 0;
  const double dx = ray.dx;
  const double dy = ray.dy;
  const double dd = ray.dd();
  const double fx = (dy * dy * ray.x0 - dx * dy * (ray.y0 - cy) + dx * dx * cx) / dd;
  const double fy = (dx * dy * (cx - ray.x0) + dx * dx * ray.y0 + dy * dy * cy) / dd;
  const double dist = std::sqrt(square(fx - cx) + square(fy - cy));
  if (!(dist <= r + eps))
    return 0;  // misses, or a zero direction
  if (dist > r - eps) {
    *t1 = ((cx - ray.x0) * dx + (cy - ray.y0) * dy) / dd;
    return 1;
  }
  const bool useY = withinOpen(dx, eps);
  const double t0 = useY ? (fy - ray.y0) / dy : (fx - ray.x0) / dx;
  const double h = std::sqrt(r * r - dist * dist);
  const double w = unitLength ? h : h / (useY ? dy : dx);
  *t1 = t0 - w;
  *t2 = t0 + w;
  return 2;
}

int lineArc(double eps, const Ray& ray, double cx, double cy, double r, double sa, double ea,
            bool unitLength, double* t1, double* t2, int* flag1, int* flag2) {
  *flag1 = 0;
  *flag2 = 0;
  if (!finiteArguments({sa, ea}))
    return 0;
  const int n = lineCircle(eps, ray, cx, cy, r, unitLength, t1, t2);
  if (n == 0)
    return 0;
  if (withinOpen(kTwoPi - (ea - sa), eps)) {
    if (n == 1)
      *flag1 = 3;
    return n;
  }
  const double cs = portable::cos(sa);
  const double ss = portable::sin(sa);
  const double ce = portable::cos(ea);
  const double se = portable::sin(ea);
  const ArcEnds ends = arcEnds(eps, ray, cx + r * cs, cy + r * ss, cx + r * ce, cy + r * se,
                               ray.dx * cs + ray.dy * ss, ray.dx * ce + ray.dy * se);
  // Crossings away from the ends are tested exactly (tolerance 0), deliberately.
  const auto onArc = [&](double t) {
    return ValidAngle(0.0, sa, ea, portable::atan2(ray.y(t) - cy, ray.x(t) - cx)) == 1;
  };
  return clipToArc(eps, n, ends, false, onArc, t1, t2, flag1, flag2);
}

}  // namespace

int LineIntEdge(double eps, double x0, double y0, double dx, double dy, double x1, double y1,
                double x2, double y2, double* t1, double* t2, int* flag1, int* flag2) {
  *flag1 = 0;
  *flag2 = 0;
  if (!finiteArguments({eps, x0, y0, dx, dy, x1, y1, x2, y2}))
    return 0;
  const Ray ray{x0, y0, dx, dy};
  const double dd = ray.dd();
  const double s1 = ray.offset(x1, y1);
  const double s2 = ray.offset(x2, y2);
  if (withinOpen(s1, eps))
    *flag1 = 1;
  if (withinOpen(s2, eps))
    *flag1 += 2;
  const double p1 = (x1 - x0) * dx + (y1 - y0) * dy;
  const double p2 = (x2 - x0) * dx + (y2 - y0) * dy;

  switch (*flag1) {
    case 3:  // the edge lies on the line
      *t1 = p1 / dd;
      *t2 = p2 / dd;
      *flag2 = 3;
      return 2;
    case 2:
      if (s1 < 0.0)
        *flag1 += 4;
      *t1 = p2 / dd;
      return 1;
    case 1:
      if (s2 < 0.0)
        *flag1 += 4;
      *t1 = p1 / dd;
      return 1;
    default:
      break;
  }

  const double edx = x2 - x1;
  const double edy = y2 - y1;
  const double den = dx * edy - dy * edx;
  if (withinOpen(den, eps))
    return 0;  // parallel
  const double t = ((x1 - x0) * edy - (y1 - y0) * edx) / den;
  // The edge parameter from the better-conditioned coordinate; its tolerance is dimensionless.
  const double u =
      std::fabs(edy) + eps >= std::fabs(edx) ? (dy * t + y0 - y1) / edy : (dx * t + x0 - x1) / edx;
  if (!(-eps <= u && u <= 1.0 + eps))
    return 0;
  *t1 = t;
  return 1;
}

int LineIntCircle(double eps, double x0, double y0, double dx, double dy, double cx, double cy,
                  double r, double* t1, double* t2) {
  return lineCircle(eps, Ray{x0, y0, dx, dy}, cx, cy, r, true, t1, t2);
}

int LineIntCircle1(double eps, double x0, double y0, double dx, double dy, double cx, double cy,
                   double r, double* t1, double* t2) {
  return lineCircle(eps, Ray{x0, y0, dx, dy}, cx, cy, r, false, t1, t2);
}

int LineIntArc(double eps, double x0, double y0, double dx, double dy, double cx, double cy,
               double r, double sa, double ea, double* t1, double* t2, int* flag1, int* flag2) {
  return lineArc(eps, Ray{x0, y0, dx, dy}, cx, cy, r, sa, ea, true, t1, t2, flag1, flag2);
}

int LineIntArc1(double eps, double x0, double y0, double dx, double dy, double cx, double cy,
                double r, double sa, double ea, double* t1, double* t2, int* flag1, int* flag2) {
  return lineArc(eps, Ray{x0, y0, dx, dy}, cx, cy, r, sa, ea, false, t1, t2, flag1, flag2);
}

int LineIntEllips(double eps, double x0, double y0, double dx, double dy, double cx, double cy,
                  double a, double b, double rot, double* t1, double* t2) {
  if (!finiteArguments({eps, x0, y0, dx, dy, cx, cy, a, b, rot}) || !(a > 0.0 && b > 0.0))
    return 0;
  // Into the ellipse frame: turn by -rot.
  const double c = portable::cos(-rot);
  const double s = portable::sin(-rot);
  const double px = x0 - cx;
  const double py = y0 - cy;
  const double X = px * c - py * s;
  const double Y = px * s + py * c;
  const double u = dx * c - dy * s;
  const double v = dx * s + dy * c;

  // (X + t u)^2 / a^2 + (Y + t v)^2 / b^2 = 1, times a^2 b^2.
  const double a2 = a * a;
  const double b2 = b * b;
  const double A = u * u * b2 + v * v * a2;
  const double B = 2.0 * (u * X * b2 + v * Y * a2);
  const double C = X * X * b2 + Y * Y * a2 - a2 * b2;
  if (withinOpen(A, eps)) {
    if (withinOpen(B, eps))
      return 0;
    *t1 = *t2 = -C / B;
    return 1;
  }
  const double disc = B * B - 4.0 * A * C;
  // eps as a length, turned into the discriminant's scale.
  const double thr = 4.0 * A * A * eps * eps / (u * u + v * v);
  if (!std::isfinite(disc) || disc < -thr)
    return 0;
  if (disc >= thr) {
    const double root = std::sqrt(disc);
    *t1 = (-B + root) / 2.0 / A;
    *t2 = (-B - root) / 2.0 / A;
    return 2;
  }
  *t1 = *t2 = -B / 2.0 / A;
  return 1;
}

int LineIntEarc(double eps, double x0, double y0, double dx, double dy, double cx, double cy,
                double a, double b, double rot, double sa, double ea, double* t1, double* t2,
                int* flag1, int* flag2) {
  *flag1 = 0;
  *flag2 = 0;
  if (!finiteArguments({sa, ea}))
    return 0;
  const int n = LineIntEllips(eps, x0, y0, dx, dy, cx, cy, a, b, rot, t1, t2);
  if (n == 0)
    return 0;
  if (withinOpen(kTwoPi - (ea - sa), eps)) {
    if (n == 1)
      *flag1 = 3;
    return n;
  }
  const Ray ray{x0, y0, dx, dy};
  const double cr = portable::cos(rot);
  const double sr = portable::sin(rot);
  const auto worldX = [&](double t) {
    return cx + a * portable::cos(t) * cr - b * portable::sin(t) * sr;
  };
  const auto worldY = [&](double t) {
    return cy + a * portable::cos(t) * sr + b * portable::sin(t) * cr;
  };
  // The side tests use the unrotated axes, as the drafting host does.
  const ArcEnds ends = arcEnds(eps, ray, worldX(sa), worldY(sa), worldX(ea), worldY(ea),
                               dx * b * portable::cos(sa) + dy * a * portable::sin(sa),
                               dx * b * portable::cos(ea) + dy * a * portable::sin(ea));
  // A point is on the arc by its parameter angle, tested exactly.
  const auto onArc = [&](double t) {
    const double px = ray.x(t) - cx;
    const double py = ray.y(t) - cy;
    const double X = px * cr + py * sr;
    const double Y = -px * sr + py * cr;
    double theta = arccos(X / a);
    if (Y < -eps)
      theta = kTwoPi - theta;
    return ValidAngle(0.0, sa, ea, theta) == 1;
  };
  return clipToArc(eps, n, ends, true, onArc, t1, t2, flag1, flag2);
}

int DEArcLInts(double eps, double x1, double y1, double x2, double y2, double cx, double cy,
               double a, double b, double rot, double sa, double ea, double* xa, double* ya,
               double* xb, double* yb) {
  const double dx = x2 - x1;
  const double dy = y2 - y1;
  if (!(std::sqrt(dx * dx + dy * dy) >= eps))
    return 0;
  double t1 = 0.0;
  double t2 = 0.0;
  int flag1 = 0;
  int flag2 = 0;
  const int n =
      LineIntEarc(eps, x1, y1, dx, dy, cx, cy, a, b, rot, sa, ea, &t1, &t2, &flag1, &flag2);
  if (n == 0)
    return 0;
  int count = 0;
  if (-eps < t1 && t1 < 1.0 + eps) {
    count = 1;
    *xa = x1 + t1 * dx;
    *ya = y1 + t1 * dy;
  }
  if (n == 2 && -eps < t2 && t2 < 1.0 + eps) {
    ++count;
    *xb = x1 + t2 * dx;
    *yb = y1 + t2 * dy;
    if (count == 1) {
      *xa = *xb;
      *ya = *yb;
    }
  }
  return count;
}
