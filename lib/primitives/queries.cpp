// Tarnsysm: planar computational geometry for 2D drafting.
// Point queries for snapping and picking: on a segment or arc, foot of the perpendicular, point at
// a distance or fraction along a segment, arc or polyline segment, nearest point.
#include "primitives/internal.h"
#include "primitives/primitives.h"

#include <cmath>

using namespace tarnsysm::detail;

// Every test below is phrased "passes when ...", so that a NaN fails it instead of slipping
// through a "reject when ..." comparison.

int DPointOnLine(double eps, double px, double py, double x1, double y1, double x2, double y2) {
  const double epsSqr = eps * eps;  // compared with squared distances
  const double dy = y2 - y1;
  const double mdx = x1 - x2;
  const double lenSqr = dy * dy + mdx * mdx;
  // A segment shorter than eps has no line: it is a point with a box around it.
  if (lenSqr > epsSqr) {
    // g / len is the signed distance from the line; exactly eps still passes.
    const double g = dy * px + mdx * py - dy * x1 - mdx * y1;
    if (!(g * g / lenSqr <= epsSqr))
      return 0;
  }
  // Closed box around the segment, enlarged by eps.
  const bool inX = (x1 - eps <= px || x2 - eps <= px) && (x1 + eps >= px || x2 + eps >= px);
  const bool inY = (y1 - eps <= py || y2 - eps <= py) && (y1 + eps >= py || y2 + eps >= py);
  return inX && inY ? 1 : 0;
}

int DPointOnArc(double eps, double px, double py, double cx, double cy, double r, double sa,
                double ea) {
  const double dSqr = square(px - cx) + square(py - cy);
  // Within eps of the circle (closed on both sides), and a circle of at least eps radius.
  if (!(square(r - eps) <= dSqr && square(r + eps) >= dSqr && r >= eps))
    return 0;
  // The cosine is taken against the radius, not the point's own distance, deliberately: a point
  // off the circle by up to eps gets a slightly shifted angle.
  const double c = (px - cx) / r;
  double angle = 0.0;
  if (c >= 1.0) {
    angle = 0.0;
  } else if (c <= -1.0) {
    angle = kPi;
  } else {
    angle = arccos(c);
  }
  if (py - cy < -eps)
    angle = kTwoPi - angle;
  return ValidAngle(eps, sa, ea, angle);
}

int DPointVerL(double eps, double px, double py, double x1, double y1, double x2, double y2,
               double* fx, double* fy) {
  const double dx = x2 - x1;
  const double dy = y2 - y1;
  const double len = std::sqrt(dx * dx + dy * dy);
  if (!(len >= eps))
    return 0;  // no direction: outputs untouched
  const double ux = dx / len;
  const double uy = dy / len;
  const double s = (px - x1) * ux + (py - y1) * uy;
  *fx = x1 + s * ux;
  *fy = y1 + s * uy;
  if (s < -eps)
    return 2;
  return s <= len + eps ? 1 : 2;
}

int DPonLdisP(double eps, double dist, double x1, double y1, double x2, double y2, double* x,
              double* y) {
  const double dx = x2 - x1;
  const double dy = y2 - y1;
  const double len = std::sqrt(dx * dx + dy * dy);
  if (!(len >= eps))
    return 0;  // no direction: outputs untouched
  *x = x1 + dist * dx / len;
  *y = y1 + dist * dy / len;
  return 1;
}

int DPonPLperV(double eps, double k, double* p1, double* p2, double bulge, double* result) {
  if (!(-eps <= k && k <= 1.0 + eps))
    return 0;
  const double len = std::sqrt(square(p2[0] - p1[0]) + square(p2[1] - p1[1]));
  if (!(len >= eps))
    return 0;
  double phi = 0.0;
  DAngle(eps, p1[0], p1[1], p2[0], p2[1], &phi);

  if (std::fabs(bulge) <= eps) {
    result[0] = p1[0] + len * k * portable::cos(phi);
    result[1] = p1[1] + len * k * portable::sin(phi);
    result[2] = phi;
    return 1;
  }

  // theta is the signed included angle; thetaA the minor-or-half angle, side the centre's side
  // (1: left of the chord).
  const double theta = 4.0 * portable::atan(bulge);
  const double r = std::fabs(len / portable::sin(theta / 2.0) / 2.0);
  int side = 1;
  double thetaA = theta;
  if (theta < -eps) {
    side = -1;
    thetaA = -theta;
  }
  if (thetaA - kPi > eps) {
    side = -side;
    thetaA = kTwoPi - thetaA;
  }
  const double psi = side == 1 ? phi + (kPi - thetaA) / 2.0 : phi - (kPi - thetaA) / 2.0;
  const double cx = p1[0] + r * portable::cos(psi);
  const double cy = p1[1] + r * portable::sin(psi);

  // p1's radial angle is psi + pi; the point at fraction k has turned by theta k from it.
  const double alpha = psi + kPi + theta * k;
  double dir = bulge > eps ? alpha + kHalfPi : alpha - kHalfPi;
  // Into [-eps, 2 pi) like every angle the library delivers: lifted from below -eps, and
  // lowered while at or above 2 pi (the ceiling is the double just below 2 pi).
  addTurnsWhileBelow(dir, -eps);
  subtractTurnsWhileAbove(dir, std::nextafter(kTwoPi, 0.0));
  result[0] = cx + r * portable::cos(alpha);
  result[1] = cy + r * portable::sin(alpha);
  result[2] = dir;
  return 1;
}

int DPonAperK(double eps, double k, double* centre, double r, double sa, double ea, double* x,
              double* y) {
  // Exact bounds: any k beyond [0, 1], however slightly, is refused.
  if (!(k >= 0.0 && k <= 1.0))
    return 0;
  double angle = sa + k * (ea - sa);
  addTurnsWhileBelow(angle, -eps);
  subtractTurnsWhileAbove(angle, kTwoPi + eps);
  *x = centre[0] + r * portable::cos(angle);
  *y = centre[1] + r * portable::sin(angle);
  return 1;
}

int DPnearLine(double eps, double px, double py, double x1, double y1, double x2, double y2,
               double* nx, double* ny) {
  const double dx = x2 - x1;
  const double dy = y2 - y1;
  const double lenSqr = dx * dx + dy * dy;
  if (!(lenSqr >= eps * eps))
    return 0;  // a segment shorter than eps: outputs untouched
  // eps is applied to the dimensionless parameter, inward: a foot within eps of an end snaps to
  // that end.
  const double t = ((px - x1) * dx + (py - y1) * dy) / lenSqr;
  if (t < eps) {
    *nx = x1;
    *ny = y1;
  } else if (t <= 1.0 - eps) {
    *nx = x1 + t * dx;
    *ny = y1 + t * dy;
  } else {
    *nx = x2;
    *ny = y2;
  }
  return 1;
}

int DPnearArc(double eps, double px, double py, double cx, double cy, double r, double sa,
              double ea, double* nx, double* ny) {
  const double dSqr = square(px - cx) + square(py - cy);
  // The point on the centre has no direction; a circle below eps has no arc.
  if (!(dSqr >= eps * eps && r >= eps))
    return 0;
  const double d = std::sqrt(dSqr);
  double theta = arccos((px - cx) / d);
  if (py - cy < -eps)
    theta = kTwoPi - theta;

  // One turn at most is added to each: the arc is expected in the form PL_ArcParam delivers.
  if (sa - eps > ea)
    ea += kTwoPi;
  if (sa - eps > theta)
    theta += kTwoPi;
  if (theta > ea + eps) {
    // Off the arc: the nearer end by angle; a tie within eps goes to the start.
    theta = theta - ea + eps <= sa - (theta - kTwoPi) ? ea : sa;
  }
  *nx = cx + r * portable::cos(theta);
  *ny = cy + r * portable::sin(theta);
  return 1;
}
