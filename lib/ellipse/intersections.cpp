// Tarnsysm: planar computational geometry for 2D drafting.
// Ellipse intersections with lines, circles and ellipses, on whole curves and filtered to arcs.
// Each problem is solved in the frame of the ellipse argument: a line gives a quadratic in closed
// form, a circle or another ellipse a quartic in the half-angle tangent w of the first curve.
#include "ellipse/ellipse.h"
#include "ellipse/internal.h"
#include "primitives/internal.h"
#include "primitives/primitives.h"

#include <cmath>

using namespace tarnsysm::detail;

namespace {

// Fixed tolerances of these routines: the line's implicit coefficients and discriminant, the
// quartic's coefficients, the implicit equation at w = infinity and point coincidence.
constexpr double kLineTol = 1e-8;
constexpr double kQuarticTol = 1e-8;

// The first curve as a function of the half-angle tangent w, in the second ellipse's frame:
// centre (h, k), first axis at angle phi (c = cos phi, s = sin phi), semi-axes ra, rb (a circle:
// ra = rb = r, phi = 0).
struct RationalCurve {
  double h, k, c, s, ra, rb;

  void at(double w, double* out) const {
    const double q = 1.0 + w * w;
    const double X = ra * (1.0 - w * w) / q;
    const double Y = 2.0 * rb * w / q;
    out[0] = h + X * c - Y * s;
    out[1] = k + X * s + Y * c;
    out[2] = 0.0;
  }
  // The point at w = infinity (the curve's own angle pi), never a root of the quartic.
  void atInfinity(double* out) const {
    out[0] = h - ra * c;
    out[1] = k - ra * s;
    out[2] = 0.0;
  }
};

// Solves the quartic, writes its points, adds the point at w = infinity when it lies on the
// ellipse (semi-axes A, B) and is not yet written, and moves every row back to world.
int quarticPoints(const double (&coef)[5], const RationalCurve& curve, const TSellipse& e2,
                  double (*out)[3]) {
  double roots[4];
  const int n = SolveQuartic(kQuarticTol, coef[0], coef[1], coef[2], coef[3], coef[4], roots);
  if (n < 0)
    return -1;  // the curves coincide
  int count = 0;
  for (int i = 0; i < n; ++i)
    curve.at(roots[i], out[count++]);
  if (n < 4) {
    double p[3];
    curve.atInfinity(p);
    const double A = e2.a;
    const double B = e2.b;
    bool onEllipse = std::fabs(p[0] * p[0] / (A * A) + p[1] * p[1] / (B * B) - 1.0) < kQuarticTol;
    for (int i = 0; onEllipse && i < count; ++i)
      if (std::fabs(out[i][0] - p[0]) < kQuarticTol && std::fabs(out[i][1] - p[1]) < kQuarticTol)
        onEllipse = false;
    if (onEllipse) {
      out[count][0] = p[0];
      out[count][1] = p[1];
      out[count][2] = 0.0;
      ++count;
    }
  }
  if (count > 0) {
    Matrix3 back = frameToWorld(e2);
    for (int i = 0; i < count; ++i)
      TransPoint(back, out[i]);
  }
  return count;
}

// Where a point lies on one curve of the arc filters.
enum class Position { Missed, AtEnd, Inside };

Position onSweep(double t, double size, double start, double end) {
  if (PointInArcEndPoint(t, size, start, end) == 1)
    return Position::AtEnd;
  return PointInArc(t, size, start, end) == 1 ? Position::Inside : Position::Missed;
}

Position onEllipseArc(TSellipse const& e, const double* p) {
  const double polar = directionBetween(kLineTol, e.center[0], e.center[1], p[0], p[1]);
  const double t = AngleToParameter(e.a, e.b, polar - e.rotation);
  return onSweep(t, std::fmax(e.a, e.b), e.start, e.end);
}

Position onCircleArc(TSarc const& arc, const double* p) {
  const double angle = directionBetween(kLineTol, arc.center[0], arc.center[1], p[0], p[1]);
  return onSweep(angle, arc.radius, arc.start, arc.end);
}

Position onSegment(TSline const& line, const double* p) {
  const double dx = line.end[0] - line.start[0];
  const double dy = line.end[1] - line.start[1];
  const double lambda =
      std::fabs(dx) <= kLineTol ? (p[1] - line.start[1]) / dy : (p[0] - line.start[0]) / dx;
  if (!(-kLineTol <= lambda && lambda <= 1.00000001))
    return Position::Missed;
  return std::fabs(lambda) > kLineTol && std::fabs(1.0 - lambda) > kLineTol ? Position::Inside
                                                                            : Position::AtEnd;
}

// The status of a point from its positions on the first curve and the ellipse arc; 0 drops it.
int statusCode(Position first, Position second, int mode) {
  const bool keepOffSecond = (mode & 2) != 0;
  switch (first) {
    case Position::AtEnd:
      if (second == Position::AtEnd)
        return 4;
      return second == Position::Inside ? 2 : (keepOffSecond ? 8 : 0);
    case Position::Inside:
      if (second == Position::AtEnd)
        return 2;
      return second == Position::Inside ? 1 : (keepOffSecond ? 8 : 0);
    case Position::Missed:
      if ((mode & 1) == 0)
        return 0;
      // Off the first curve at an end of the arc gets the code of two meeting ends, deliberately.
      if (second == Position::AtEnd)
        return 4;
      return second == Position::Inside || keepOffSecond ? 8 : 0;
  }
  return 0;
}

template <class FirstPosition>
int filterToArcs(int n, const double (*points)[3], TSellipse const& e, int mode,
                 FirstPosition firstPosition, TSinterpoint* out) {
  int kept = 0;
  for (int i = 0; i < n; ++i) {
    const double* p = points[i];
    TSinterpoint& slot = out[kept];
    slot.point[0] = p[0];
    slot.point[1] = p[1];
    slot.point[2] = 0.0;
    const int code = statusCode(firstPosition(p), onEllipseArc(e, p), mode);
    if (code != 0) {
      slot.status = code;
      ++kept;
    }
  }
  return kept;
}

}  // namespace

int SkLineEllipseAided(TSline const* line, TSellipse const* e, double (*out)[3]) {
  if (!usableEllipse(*e) ||
      !allFinite({line->start[0], line->start[1], line->end[0], line->end[1]}))
    return 0;
  Matrix3 toFrame = worldToFrame(*e);
  double s[3];
  double q[3];
  transformInto(toFrame, line->start[0], line->start[1], s);
  transformInto(toFrame, line->end[0], line->end[1], q);
  const double dx = q[0] - s[0];
  const double dy = q[1] - s[1];

  // A x + B y + C = 0 meets (a cos t, b sin t) where u cos t + v sin t = -C.
  const double A = dy;
  const double B = -dx;
  const double C = dx * s[1] - dy * s[0];
  const double a = e->a;
  const double b = e->b;
  const double u = a * A;
  const double v = b * B;
  const double D = u * u + v * v;
  if (D < kLineTol)
    return 0;  // degenerate line
  const double disc = D - C * C;
  if (!std::isfinite(disc) || disc < -kLineTol)
    return 0;
  int n;
  if (disc < kLineTol) {
    out[0][0] = -a * u * C / D;
    out[0][1] = -b * v * C / D;
    n = 1;
  } else {
    const double root = std::sqrt(disc);
    out[0][0] = a * (-u * C - v * root) / D;
    out[0][1] = b * (-v * C + u * root) / D;
    out[1][0] = a * (-u * C + v * root) / D;
    out[1][1] = b * (-v * C - u * root) / D;
    n = 2;
  }
  Matrix3 back = toFrame.Inverse();
  for (int i = 0; i < n; ++i)
    TransPoint(back, out[i]);
  return n;
}

int SkCircleEllipseAided(TSarc const* c, TSellipse const* e, double (*out)[3]) {
  if (!usableEllipse(*e) || !allFinite({c->center[0], c->center[1], c->radius}))
    return 0;
  Matrix3 toFrame = worldToFrame(*e);
  double centre[3];
  transformInto(toFrame, c->center[0], c->center[1], centre);
  const double h = centre[0];
  const double k = centre[1];
  const double r = c->radius;
  const double a2 = e->a * e->a;
  const double b2 = e->b * e->b;
  const double coef[5] = {
      (k * k - b2) / b2 + (h - r) * (h - r) / a2,
      4.0 * k * r / b2,
      2.0 * (h * h - r * r) / a2 + (2.0 * k * k + 4.0 * r * r) / b2 - 2.0,
      4.0 * k * r / b2,
      (k * k - b2) / b2 + (h + r) * (h + r) / a2,
  };
  return quarticPoints(coef, RationalCurve{h, k, 1.0, 0.0, r, r}, *e, out);
}

int SkEllipseEllipseAided(TSellipse const* e1, TSellipse const* e2, double (*out)[3]) {
  if (!usableEllipse(*e1) || !usableEllipse(*e2))
    return 0;
  Matrix3 toFrame = worldToFrame(*e2);
  double centre[3];
  transformInto(toFrame, e1->center[0], e1->center[1], centre);
  const double h = centre[0];
  const double k = centre[1];
  const double phi = e1->rotation - e2->rotation;
  const double c = portable::cos(phi);
  const double s = portable::sin(phi);
  const double a = e1->a;
  const double b = e1->b;
  const double A2 = e2->a * e2->a;
  const double B2 = e2->b * e2->b;
  const double coef[5] = {
      (h - a * c) * (h - a * c) / A2 + (k - a * s) * (k - a * s) / B2 - 1.0,
      4.0 * b * (c * (k - a * s) / B2 - s * (h - a * c) / A2),
      -2.0 * ((a * a * c * c - h * h - 2.0 * b * b * s * s) / A2 +
              (B2 - 2.0 * b * b - k * k + a * a * s * s + 2.0 * b * b * s * s) / B2),
      4.0 * b * (c * (a * s + k) / B2 - s * (a * c + h) / A2),
      (a * c + h) * (a * c + h) / A2 + (a * s + k) * (a * s + k) / B2 - 1.0,
  };
  return quarticPoints(coef, RationalCurve{h, k, c, s, a, b}, *e2, out);
}

int SkLineEllipsearc(TSline const* line, TSellipse const* e, int mode, TSinterpoint* out) {
  double points[2][3];
  const int n = SkLineEllipseAided(line, e, points);
  return filterToArcs(
      n, points, *e, mode, [&](const double* p) { return onSegment(*line, p); }, out);
}

int SkArcEllipsearc(TSarc const* arc, TSellipse const* e, int mode, TSinterpoint* out) {
  double points[4][3];
  const int n = SkCircleEllipseAided(arc, e, points);
  return filterToArcs(
      n, points, *e, mode, [&](const double* p) { return onCircleArc(*arc, p); }, out);
}

int SkEllipsearcEllipsearc(TSellipse const* e1, TSellipse const* e2, int mode, TSinterpoint* out) {
  double points[4][3];
  const int n = SkEllipseEllipseAided(e1, e2, points);
  return filterToArcs(
      n, points, *e2, mode, [&](const double* p) { return onEllipseArc(*e1, p); }, out);
}
