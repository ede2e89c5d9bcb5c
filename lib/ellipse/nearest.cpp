// Tarnsysm: planar computational geometry for 2D drafting.
// Nearest points, feet of normals, tangent points and normal offsets of ellipses. Each works in
// the ellipse frame and moves its results back to world coordinates, except where it says not.
#include "ellipse/ellipse.h"
#include "ellipse/internal.h"
#include "intersect/intersect.h"
#include "primitives/internal.h"
#include "primitives/primitives.h"

#include <cmath>

using namespace tarnsysm::detail;

namespace {

// The foot (x, y) of a normal through (X, Y) satisfies X = x (1 + l / a^2), Y = y (1 + l / b^2)
// for some l; eliminating l and y with x^2 / a^2 + y^2 / b^2 = 1 gives, with c = b^2 - a^2 and
// m = a^2 X,
//   c^2 x^4 + 2 c m x^3 + (m^2 + a^2 b^2 Y^2 - a^2 c^2) x^2 - 2 c m a^2 x - a^2 m^2 = 0,
// divided by D = a^2 b^2, and y = b^2 Y x / (c x + m). The closed-form roots are used unpolished.
struct NormalFeet {
  int n;
  double x[4];
  double y[4];
};

NormalFeet normalFeet(double a, double b, double X, double Y) {
  const double a2 = a * a;
  const double b2 = b * b;
  const double c = b2 - a2;
  const double m = a2 * X;
  const double D = a2 * b2;
  NormalFeet feet{};
  feet.n =
      SolveQuartic(kTol1e10, c * c / D, 2.0 * c * m / D, (m * m + a2 * b2 * Y * Y - a2 * c * c) / D,
                   -2.0 * c * m * a2 / D, -a2 * m * m / D, feet.x);
  for (int i = 0; i < feet.n; ++i)
    feet.y[i] = b2 * Y * feet.x[i] / (c * feet.x[i] + m);
  return feet;
}

// Writes the frame point (x, y) to world coordinates into out.
void frameToWorldInto(TSellipse const& e, double x, double y, double* out) {
  Matrix3 back = frameToWorld(e);
  transformInto(back, x, y, out);
}

// The circle-shaped record: the direction of p is measured from (cx, cx), the centre's x in both
// places (deliberate: only records with cx = cy get the true direction); arc limits are ignored.
double nearestOnCircleShape(TSellipse const& e, double* const p, double* const out) {
  const double theta = directionBetween(kTol1e8, e.center[0], e.center[0], p[0], p[1]);
  out[0] = e.center[0] + e.a * portable::cos(theta);
  out[1] = e.center[1] + e.b * portable::sin(theta);
  out[2] = 0.0;
  return DistBetweenPoint(p, out);
}

// The world point p in the ellipse frame.
struct FramePoint {
  double x, y;
};

FramePoint inFrame(TSellipse const& e, double* const p) {
  double q[3];
  WcToEllipse(e, p, q);
  return {q[0], q[1]};
}

bool circleShaped(TSellipse const& e) {
  return std::fabs(e.a - e.b) < kTol1e8;
}

TSline frameLine(TSline line, TSellipse const& e) {
  Matrix3 toFrame = worldToFrame(e);
  TransPoint(toFrame, line.start);
  TransPoint(toFrame, line.end);
  return line;
}

}  // namespace

double DPnearEllipseArc(TSellipse const& e, double* const p, double* const out) {
  if (!usableEllipse(e) || !allFinite({p[0], p[1]}))
    return -1.0;
  if (circleShaped(e))
    return nearestOnCircleShape(e, p, out);
  const double a = e.a;
  const double b = e.b;
  const auto [X, Y] = inFrame(e, p);
  const bool arc = e.end - e.start <= kTwoPi - kTol1e10;

  if (std::fabs(X * X / (a * a) + Y * Y / (b * b) - 1.0) < kTol1e10) {
    out[0] = p[0];  // on the curve, whatever the arc limits
    out[1] = p[1];
    out[2] = 0.0;
    return 0.0;
  }
  double fx;
  double fy;
  double d;
  // On an axis line the vertex on p's side is taken, even deep inside (a simplification kept).
  if (std::fabs(X) < kTol1e10) {
    fx = 0.0;
    fy = Y <= 0.0 ? -b : b;
    d = Y <= 0.0 ? std::fabs(Y + b) : std::fabs(Y - b);
  } else if (std::fabs(Y) < kTol1e10) {
    fx = X <= 0.0 ? -a : a;
    fy = 0.0;
    d = X <= 0.0 ? std::fabs(X + a) : std::fabs(X - a);
  } else {
    const NormalFeet feet = normalFeet(a, b, X, Y);
    if (feet.n == 0)
      return -1.0;
    if (feet.n < 0 && !arc)
      return -1.0;  // every x a root: no foot to name
    int best = -1;
    double bestD = 0.0;
    double bestT = 0.0;
    for (int i = 0; i < feet.n; ++i) {
      const double di = DistBetweenPoint(X, Y, feet.x[i], feet.y[i]);
      double t = 0.0;
      if (arc) {
        t = frameParameter(kTol1e10, a, b, feet.x[i], feet.y[i]);
        addTurnsWhileBelow(t, e.start - kTol1e10);
        if (!(t < e.end + kTol1e10))
          continue;
      }
      if (best < 0 || di < bestD) {
        best = i;
        bestD = di;
        bestT = t;
      }
    }
    if (!arc) {
      fx = feet.x[best];
      fy = feet.y[best];
      d = bestD;
    } else {
      // The nearer end stands unless a foot inside the arc is strictly nearer; ties go to end.
      const double sx = a * portable::cos(e.start);
      const double sy = b * portable::sin(e.start);
      const double ex = a * portable::cos(e.end);
      const double ey = b * portable::sin(e.end);
      const double ds = DistBetweenPoint(X, Y, sx, sy);
      const double de = DistBetweenPoint(X, Y, ex, ey);
      fx = ds >= de ? ex : sx;
      fy = ds >= de ? ey : sy;
      d = ds >= de ? de : ds;
      if (best >= 0 && bestD < d) {
        fx = a * portable::cos(bestT);
        fy = b * portable::sin(bestT);
        d = bestD;
      }
    }
  }
  frameToWorldInto(e, fx, fy, out);
  return d;
}

double DPnearEllipseArc_means(TSellipse const& e, double* const p, double* const out) {
  if (!usableEllipse(e) || !allFinite({p[0], p[1]}))
    return -1.0;
  if (circleShaped(e))
    return nearestOnCircleShape(e, p, out);
  const auto [X, Y] = inFrame(e, p);
  const double A = e.a * e.a;
  const double B = e.b * e.b;
  // The slope of an approximate normal, and the quadratic in the distance r moved along it.
  const double k = A * Y / (B * X);
  const double norm = std::sqrt(k * k + 1.0);
  double s1 = 2.0 * B * std::fabs(k) * std::fabs(X) / norm;
  if (!(X > kTol1e10))
    s1 = -s1;
  const double s2 = 2.0 * A * std::fabs(Y) / norm;
  double roots[2];
  const int n = SolveQuadratic(kTol1e10, (k * k * B + A) / (k * k + 1.0), s1 + s2,
                               B * X * X + A * Y * Y - A * B, roots);
  double r;
  if (n == 1)
    r = roots[0];
  else if (n == 2)
    r = std::fmax(roots[0], roots[1]);
  else
    return -1.0;
  if (!std::isfinite(r))
    return -1.0;  // a point on the second axis line has no slope to follow
  double dx = std::fabs(k) * r / norm;
  if (X > kTol1e10)
    dx = -dx;
  double dy = r / norm;
  if (Y > kTol1e10)
    dy = -dy;
  // Shift by the centre, then turn about the world origin (deliberately not the frame inverse).
  Matrix3 shift;
  shift.SetShift(e.center[0], e.center[1]);
  Matrix3 turn;
  turn.SetRotate(e.rotation);
  Matrix3 back = shift * turn;
  transformInto(back, X + dx, Y + dy, out);
  return r;
}

double DLineNearEllipse(TSline line, TSellipse const& e, double* const out) {
  const TSline local = frameLine(line, e);
  const double dx = local.end[0] - local.start[0];
  const double dy = local.end[1] - local.start[1];
  const double a = e.a;
  const double b = e.b;
  double p1[3] = {0.0, 0.0, 0.0};
  if (std::fabs(dx) > kTol1e10 && std::fabs(dy) > kTol1e10) {
    // The two points whose tangent is parallel to the line.
    const double m = dy / dx;
    p1[0] = a * a * std::fabs(m) / std::sqrt(a * a * m * m + b * b);
    p1[1] = -b * b * p1[0] / (a * a * m);
  } else if (std::fabs(dx) >= kTol1e10) {
    p1[0] = a;  // along the first axis: that axis' ends, as the drafting host has it
  } else {
    p1[1] = b;
  }
  double p2[3] = {-p1[0], -p1[1], 0.0};
  const double d1 = DistPointToLine(kTol1e10, p1, local);
  const double d2 = DistPointToLine(kTol1e10, p2, local);
  const double* chosen = d1 >= d2 ? p2 : p1;
  out[0] = chosen[0];
  out[1] = chosen[1];
  return d1 >= d2 ? d2 : d1;
}

double DLineNearEllipsearc(TSline line, TSellipse const& e, double* const out) {
  const double d = DLineNearEllipse(line, e, out);
  const double t = frameParameter(kTol1e8, e.a, e.b, out[0], out[1]);
  if (t <= e.start || t >= e.end)
    return -1.0;
  return d;
}

int EllipseAngleDistPoint(TSellipse const& e, int side, double t, double dist, double* const out) {
  const double a = e.a;
  const double b = e.b;
  const double px = a * portable::cos(t);
  const double py = b * portable::sin(t);
  double x = px;
  double y = py;
  // At an axis end the normal is the axis; side 1 moves towards the centre, -1 away from it.
  const auto alongAxis = [&](double coordinate) {
    if (side == 1)
      return coordinate < 0.0 ? coordinate + dist : coordinate - dist;
    if (side == -1)
      return coordinate <= 0.0 ? coordinate - dist : coordinate + dist;
    return coordinate - dist;
  };
  if (std::fabs(px) < kTol1e10) {
    y = alongAxis(py);
  } else if (std::fabs(py) < kTol1e10) {
    x = alongAxis(px);
  } else {
    // The unit normal with positive x, turned to the requested side.
    const double s = (a / b) * portable::tan(t);
    const double norm = std::sqrt(1.0 + s * s);
    double vx = dist / norm;
    double vy = dist * s / norm;
    const double k = vx * px + vy * py;
    if ((side == -1 && k < -kTol1e10) || (side == 1 && k > kTol1e10)) {
      vx = -vx;
      vy = -vy;
    }
    x = px + vx;
    y = py + vy;
  }
  frameToWorldInto(e, x, y, out);
  return 1;
}

int DLthrPtangEllipse(double eps, TSellipse e, double* const p, double* const t1,
                      double* const t2) {
  if (!usableEllipse(e) || !allFinite({eps, p[0], p[1]}))
    return 0;
  const auto [X, Y] = inFrame(e, p);
  const double a2 = e.a * e.a;
  const double b2 = e.b * e.b;
  const double f = X * X / a2 + Y * Y / b2 - 1.0;
  if (!(std::fabs(f) >= eps && f >= 0.0))
    return 0;  // inside, or on the curve within eps
  // The tangent points lie on the polar line X x / a^2 + Y y / b^2 = 1.
  const double b4 = b2 * b2;
  const double a4 = a2 * a2;
  double roots[2];
  const int n = SolveQuadratic(kTol1e10, a2 * b2 * Y * Y + b4 * X * X, -2.0 * a2 * b4 * X,
                               a4 * b4 - a4 * b2 * Y * Y, roots);
  double* const targets[2] = {t1, t2};
  for (int i = 0; i < n && i < 2; ++i) {
    targets[i][0] = roots[i];
    targets[i][1] = (a2 - X * roots[i]) * b2 / (a2 * Y);
  }
  // Both buffers pass the transform, the second even when only one root was found.
  Matrix3 back = frameToWorld(e);
  TransPoint(back, t1);
  TransPoint(back, t2);
  return n < 0 ? 0 : n;
}

int GetEllipsePerpoint(TSellipse const& e, double* const p, double (*const out)[3]) {
  if (!usableEllipse(e) || !allFinite({p[0], p[1]}))
    return 0;
  if (circleShaped(e)) {
    int flag = 0;
    return DCirLInts(kTol1e10, p[0], p[1], e.center[0], e.center[1], e.center[0], e.center[1], e.a,
                     &out[0][0], &out[0][1], &out[1][0], &out[1][1], &flag);
  }
  const double a = e.a;
  const double b = e.b;
  const auto [X, Y] = inFrame(e, p);
  if (std::fabs(X) < kTol1e10 || std::fabs(Y) < kTol1e10) {
    // On an axis line: that axis' two ends, whatever the arc limits.
    const bool second = std::fabs(X) < kTol1e10;
    frameToWorldInto(e, second ? 0.0 : a, second ? b : 0.0, out[0]);
    frameToWorldInto(e, second ? 0.0 : -a, second ? -b : 0.0, out[1]);
    return 2;
  }
  const NormalFeet feet = normalFeet(a, b, X, Y);
  // Only arcs of at most a half turn filter their feet, deliberately.
  const bool filter = e.end - e.start <= kPi - kTol1e10;
  int count = 0;
  for (int i = 0; i < feet.n; ++i) {
    if (filter) {
      double t = frameParameter(kTol1e10, a, b, feet.x[i], feet.y[i]);
      if (t < e.start)
        t += kTwoPi;
      if (t > e.end + kTol1e10)
        continue;
    }
    frameToWorldInto(e, feet.x[i], feet.y[i], out[count++]);
  }
  return count;
}
