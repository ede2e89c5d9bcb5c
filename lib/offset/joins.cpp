// Tarnsysm: planar computational geometry for 2D drafting.
// Corner joins of offset segments: where two neighbouring segments, each moved sideways by the
// offset distance, meet again, and where a single point of a segment moves to.
#include "intersect/intersect.h"
#include "offset/internal.h"
#include "offset/offset.h"

#include <cmath>
#include <limits>

using namespace tarnsysm::detail;

namespace {

// Writes a join at the shared vertex that one segment alone decides (the other one is
// degenerate): the point itself, t1 = 1 and t2 = 0.
int writeVertexJoin(int code, double x, double y, double* ox, double* oy, double* t1, double* t2) {
  *ox = x;
  *oy = y;
  *t1 = 1.0;
  *t2 = 0.0;
  return code;
}

// Which of the two points where a line crosses a circle a corner uses: minus is the one met
// first along the line's direction, plus the one met last.
enum class Branch { none, minus, plus };

// The line p + t*a meets the circle of radius r about c where, with q = p - c,
//   |a|^2 t^2 + 2(a.q) t + |q|^2 - r^2 = 0.
// Written with A = 2|a|^2, B = 2(a.q), Cq = |q|^2 - r^2 the roots are
//   t = (-B +- sqrt(disc)) / A,  disc = B^2 - 2*A*Cq.
struct LineCircleQuadratic {
  double A, B, disc;
};

LineCircleQuadratic lineCircleQuadratic(double ax, double ay, double qx, double qy, double r) {
  const double A = 2.0 * (ax * ax + ay * ay);
  const double B = 2.0 * (ax * qx + ay * qy);
  const double Cq = qx * qx + qy * qy - r * r;
  return {A, B, B * B - 2.0 * A * Cq};
}

// The branch on which the unmoved line meets the unmoved circle at the corner's vertex, which
// sits at parameter `target` on the line (1 for a line ending there, 0 for one starting there).
// A line that touches the circle has one double root; then the turn (cross product of the two
// directions times the bulge) says on which side the arc leaves, and a turn within eps leaves
// no way to tell.
Branch branchAtVertex(double eps, double ax, double ay, double qx, double qy, double r,
                      double target, double turn) {
  const LineCircleQuadratic eq = lineCircleQuadratic(ax, ay, qx, qy, r);
  if (eq.disc < -eps)
    return Branch::none;
  if (eq.disc >= eps) {
    const double root = std::sqrt(eq.disc);
    const double tMinus = (-eq.B - root) / eq.A;
    const double tPlus = (-eq.B + root) / eq.A;
    if (std::fabs(tMinus - target) < eps)
      return Branch::minus;
    if (std::fabs(tPlus - target) < eps)
      return Branch::plus;
    // The vertex lies on the circle only up to the rounding of |q|^2 - r^2 (and of a.q), which
    // moves the roots by about that over sqrt(disc): for a short chord of a large circle, far
    // more than eps. Within that round-off the nearer root is the vertex, provided the other
    // root lies well clear of it; a line all but touching the circle stays undecided.
    const double rounding = 16.0 * std::numeric_limits<double>::epsilon() *
                            ((qx * qx + qy * qy + r * r) / root +
                             2.0 * (std::fabs(ax * qx) + std::fabs(ay * qy)) / eq.A);
    const double reach = eps + rounding;
    const double offMinus = std::fabs(tMinus - target);
    const double offPlus = std::fabs(tPlus - target);
    if (offMinus < reach && offPlus > 4.0 * reach)
      return Branch::minus;
    if (offPlus < reach && offMinus > 4.0 * reach)
      return Branch::plus;
    // The vertex is not where the line meets the circle.
    return Branch::none;
  }
  if (turn > eps)
    return Branch::plus;
  if (turn < -eps)
    return Branch::minus;
  return Branch::none;
}

// Parameter on the moved line q + t*a (q relative to the centre) where it meets the moved
// circle of radius rMoved on the given branch; false when it misses the circle. A touching
// line's discriminant is taken as zero within eps, where round-off decides its sign.
bool movedLineRoot(double eps, double ax, double ay, double qx, double qy, double rMoved,
                   Branch branch, double* t) {
  const LineCircleQuadratic eq = lineCircleQuadratic(ax, ay, qx, qy, rMoved);
  if (eq.disc < -eps)
    return false;
  if (eq.disc >= eps) {
    const double root = std::sqrt(eq.disc);
    *t = branch == Branch::plus ? (-eq.B + root) / eq.A : (-eq.B - root) / eq.A;
  } else {
    *t = -eq.B / eq.A;
  }
  return true;
}

// Half turn of angles around the point where a line of direction angle phi crosses a circle:
// the plus (exit) point looks along the line from the centre, the minus (entry) point against it.
void branchAngleRange(Branch branch, double phi, double* lo, double* hi) {
  *lo = phi - kHalfPi;
  *hi = phi + kHalfPi;
  if (branch == Branch::minus) {
    *lo += kPi;
    *hi += kPi;
  }
}

// The join of a line and an arc that share the corner's vertex. The line runs from (lx0, ly0)
// along a, `target` is the vertex's parameter on it and `vertexAngle` the arc's angle there.
// Returns 1 with the point, the line parameter and the arc parameter, or 0 writing nothing.
int lineArcJoin(double eps, double d, double lx0, double ly0, double ax, double ay, double target,
                double turn, const BulgeArc& arc, double bulge, double vertexAngle, double* ox,
                double* oy, double* tLine, double* tArc) {
  const Branch branch =
      branchAtVertex(eps, ax, ay, lx0 - arc.cx, ly0 - arc.cy, arc.r, target, turn);
  if (branch == Branch::none)
    return 0;

  double lo, hi;
  branchAngleRange(branch, portable::atan2(ay, ax), &lo, &hi);
  shiftRangeToReach(lo, hi, vertexAngle, eps);

  // The moved line: its start point moved along the line's normal, the same direction.
  double qx, qy;
  moveAlongNormal(d, 0.0, 0.0, ax, ay, lx0, ly0, &qx, &qy);
  const double rMoved = movedRadius(arc.r, bulge, d);
  double t = 0.0;
  if (!movedLineRoot(eps, ax, ay, qx - arc.cx, qy - arc.cy, rMoved, branch, &t))
    return 0;

  const double x = qx + t * ax;
  const double y = qy + t * ay;
  double theta = portable::atan2(y - arc.cy, x - arc.cx);
  bringAngleIntoRange(theta, lo, hi, eps);
  double start, end;
  arcAnglesInTravelOrder(bulge, arc.sa, arc.ea, &start, &end);
  *ox = x;
  *oy = y;
  *tLine = t;
  *tArc = sweepFraction(theta, start, end);
  return 1;
}

}  // namespace

int LLOffset(double eps, double d, double x1, double y1, double x2, double y2, double x3, double y3,
             double* ox, double* oy, double* t1, double* t2) {
  const double ax = x2 - x1;
  const double ay = y2 - y1;
  const double bx = x3 - x2;
  const double by = y3 - y2;
  const double epsSqr = eps * eps;  // compared with squared lengths
  const bool aDegenerate = ax * ax + ay * ay < epsSqr;
  const bool bDegenerate = bx * bx + by * by < epsSqr;
  double px, py;
  if (aDegenerate && bDegenerate)
    return -3;
  // Either degenerate line reports -2: the other one moves the vertex.
  if (bDegenerate) {
    moveAlongNormal(d, x1, y1, x2, y2, x2, y2, &px, &py);
    return writeVertexJoin(-2, px, py, ox, oy, t1, t2);
  }
  if (aDegenerate) {
    moveAlongNormal(d, x2, y2, x3, y3, x2, y2, &px, &py);
    return writeVertexJoin(-2, px, py, ox, oy, t1, t2);
  }

  // Moved lines A1 + t1*a and B2 + t2*b. c is the negated cross product of the unnormalised
  // directions, compared with eps itself (an area against a length, deliberately).
  double a1x, a1y, b2x, b2y;
  moveAlongNormal(d, x1, y1, x2, y2, x1, y1, &a1x, &a1y);
  moveAlongNormal(d, x2, y2, x3, y3, x2, y2, &b2x, &b2y);
  const double c = ay * bx - ax * by;
  if (c <= -eps || c >= eps) {
    const double ex = a1x - b2x;
    const double ey = a1y - b2y;
    const double s1 = -(ex * -by - ey * -bx) / c;
    const double s2 = -(ey * ax - ex * ay) / c;
    *ox = a1x + s1 * ax;
    *oy = a1y + s1 * ay;
    *t1 = s1;
    *t2 = s2;
    return 1;
  }

  // Parallel: the second line continues the first, or the path turns back on itself.
  if (ax * bx >= 0.0 && ay * by >= 0.0)
    return writeVertexJoin(2, b2x, b2y, ox, oy, t1, t2);
  return 0;
}

int LAOffset(double eps, double d, double x1, double y1, double x2, double y2, double x3, double y3,
             double bulge, double* ox, double* oy, double* t1, double* t2) {
  if (isStraightBulge(bulge, eps))
    return LLOffset(eps, d, x1, y1, x2, y2, x3, y3, ox, oy, t1, t2);
  return laOffsetWithArc(eps, d, x1, y1, x2, y2, x3, y3, bulge,
                         arcOfBulge(eps, x2, y2, x3, y3, bulge), ox, oy, t1, t2);
}

int ALOffset(double eps, double d, double x1, double y1, double x2, double y2, double x3, double y3,
             double bulge, double* ox, double* oy, double* t1, double* t2) {
  if (isStraightBulge(bulge, eps))
    return LLOffset(eps, d, x1, y1, x2, y2, x3, y3, ox, oy, t1, t2);
  return alOffsetWithArc(eps, d, x1, y1, x2, y2, x3, y3, bulge,
                         arcOfBulge(eps, x1, y1, x2, y2, bulge), ox, oy, t1, t2);
}

int AAOffset(double eps, double d, double x1, double y1, double x2, double y2, double x3, double y3,
             double bulge1, double bulge2, double* ox, double* oy, double* t1, double* t2) {
  if (isStraightBulge(bulge1, eps))
    return LAOffset(eps, d, x1, y1, x2, y2, x3, y3, bulge2, ox, oy, t1, t2);
  if (isStraightBulge(bulge2, eps))
    return ALOffset(eps, d, x1, y1, x2, y2, x3, y3, bulge1, ox, oy, t1, t2);
  return aaOffsetWithArcs(eps, d, x2, y2, bulge1, bulge2, arcOfBulge(eps, x1, y1, x2, y2, bulge1),
                          arcOfBulge(eps, x2, y2, x3, y3, bulge2), ox, oy, t1, t2);
}

int GetOffsetP(double eps, double d, double t, double x1, double y1, double x2, double y2,
               double bulge, double* ox, double* oy) {
  const double dx = x2 - x1;
  const double dy = y2 - y1;
  if (dx * dx + dy * dy < eps * eps || isStraightBulge(bulge, eps))
    return offsetPointWithArc(eps, d, t, x1, y1, x2, y2, bulge, BulgeArc(), ox, oy);
  return offsetPointWithArc(eps, d, t, x1, y1, x2, y2, bulge,
                            arcOfBulge(eps, x1, y1, x2, y2, bulge), ox, oy);
}

namespace tarnsysm::detail {

int laOffsetWithArc(double eps, double d, double x1, double y1, double x2, double y2, double x3,
                    double y3, double bulge, const BulgeArc& arc, double* ox, double* oy,
                    double* t1, double* t2) {
  const double ax = x2 - x1;
  const double ay = y2 - y1;
  const bool lineDegenerate = ax * ax + ay * ay < eps * eps;
  double px, py;
  if (lineDegenerate && !arc.ok)
    return -3;
  if (!arc.ok) {
    moveAlongNormal(d, x1, y1, x2, y2, x2, y2, &px, &py);
    return writeVertexJoin(-2, px, py, ox, oy, t1, t2);
  }
  if (lineDegenerate) {
    moveRadially(arc.cx, arc.cy, arc.r, movedRadius(arc.r, bulge, d), x2, y2, &px, &py);
    return writeVertexJoin(-1, px, py, ox, oy, t1, t2);
  }

  // The line ends at the vertex (parameter 1); the arc starts there.
  const double turn = ((y3 - y2) * ax - (x3 - x2) * ay) * bulge;
  double start, end;
  arcAnglesInTravelOrder(bulge, arc.sa, arc.ea, &start, &end);
  return lineArcJoin(eps, d, x1, y1, ax, ay, 1.0, turn, arc, bulge, start, ox, oy, t1, t2);
}

int alOffsetWithArc(double eps, double d, double x1, double y1, double x2, double y2, double x3,
                    double y3, double bulge, const BulgeArc& arc, double* ox, double* oy,
                    double* t1, double* t2) {
  const double ax = x3 - x2;
  const double ay = y3 - y2;
  const bool lineDegenerate = ax * ax + ay * ay < eps * eps;
  double px, py;
  if (lineDegenerate && !arc.ok)
    return -3;
  if (!arc.ok) {
    moveAlongNormal(d, x2, y2, x3, y3, x2, y2, &px, &py);
    return writeVertexJoin(-1, px, py, ox, oy, t1, t2);
  }
  if (lineDegenerate) {
    moveRadially(arc.cx, arc.cy, arc.r, movedRadius(arc.r, bulge, d), x2, y2, &px, &py);
    return writeVertexJoin(-2, px, py, ox, oy, t1, t2);
  }

  // The line starts at the vertex (parameter 0); the arc ends there.
  const double turn = ((y2 - y1) * ax - (x2 - x1) * ay) * bulge;
  double start, end;
  arcAnglesInTravelOrder(bulge, arc.sa, arc.ea, &start, &end);
  return lineArcJoin(eps, d, x2, y2, ax, ay, 0.0, turn, arc, bulge, end, ox, oy, t2, t1);
}

int aaOffsetWithArcs(double eps, double d, double x2, double y2, double bulge1, double bulge2,
                     BulgeArc arc1, BulgeArc arc2, double* ox, double* oy, double* t1, double* t2) {
  double px, py;
  if (!arc1.ok && !arc2.ok)
    return -3;
  if (!arc2.ok) {
    moveRadially(arc1.cx, arc1.cy, arc1.r, movedRadius(arc1.r, bulge1, d), x2, y2, &px, &py);
    return writeVertexJoin(-2, px, py, ox, oy, t1, t2);
  }
  if (!arc1.ok) {
    moveRadially(arc2.cx, arc2.cy, arc2.r, movedRadius(arc2.r, bulge2, d), x2, y2, &px, &py);
    return writeVertexJoin(-1, px, py, ox, oy, t1, t2);
  }
  const double r1Moved = movedRadius(arc1.r, bulge1, d);
  const double r2Moved = movedRadius(arc2.r, bulge2, d);

  // Concentric arcs: turning the same way they stay one circle, turning opposite ways one
  // grows while the other shrinks and they never meet again.
  const double ex = arc2.cx - arc1.cx;
  const double ey = arc2.cy - arc1.cy;
  if (ex * ex + ey * ey < eps * eps) {
    if (bulge1 * bulge2 >= 0.0) {
      moveRadially(arc1.cx, arc1.cy, arc1.r, r1Moved, x2, y2, &px, &py);
      return writeVertexJoin(1, px, py, ox, oy, t1, t2);
    }
    return 0;
  }

  // side(X) = -cross(e, X - C1): negative on the left of the line from C1 to C2. The vertex
  // and its moved image stay on one side, so the half turn of angles on that side (the same
  // seen from either centre) places every angle in the arcs' own turn.
  const auto side = [&](double x, double y) {
    return ey * x - ex * y + (ex * arc1.cy - ey * arc1.cx);
  };
  const double psi = portable::atan2(ey, ex);
  const bool vertexAbove = !(side(x2, y2) <= 0.0);
  const double lo = vertexAbove ? psi - kPi : psi;
  const double hi = vertexAbove ? psi : psi + kPi;

  // Shift each arc's angles by whole turns to the turn of the vertex's angle.
  double vertexAngle1 = portable::atan2(y2 - arc1.cy, x2 - arc1.cx);
  bringAngleIntoRange(vertexAngle1, lo, hi, eps);
  shiftRangeToReach(arc1.sa, arc1.ea, vertexAngle1, eps);
  double vertexAngle2 = portable::atan2(y2 - arc2.cy, x2 - arc2.cx);
  bringAngleIntoRange(vertexAngle2, lo, hi, eps);
  shiftRangeToReach(arc2.sa, arc2.ea, vertexAngle2, eps);

  double xa, ya, xb, yb;
  const int count =
      D2CirInts(eps, arc1.cx, arc1.cy, r1Moved, arc2.cx, arc2.cy, r2Moved, &xa, &ya, &xb, &yb);
  if (count == 0)
    return 0;
  double x = xa;
  double y = ya;
  if (count == 2) {
    // The first point only when it lies strictly on the vertex's side of the centre line.
    const double s = side(xa, ya);
    const bool firstOnVertexSide = vertexAbove ? s > 0.0 : s < 0.0;
    if (!firstOnVertexSide) {
      x = xb;
      y = yb;
    }
  }

  double theta1 = portable::atan2(y - arc1.cy, x - arc1.cx);
  bringAngleIntoRange(theta1, lo, hi, eps);
  double theta2 = portable::atan2(y - arc2.cy, x - arc2.cx);
  bringAngleIntoRange(theta2, lo, hi, eps);
  double start1, end1, start2, end2;
  arcAnglesInTravelOrder(bulge1, arc1.sa, arc1.ea, &start1, &end1);
  arcAnglesInTravelOrder(bulge2, arc2.sa, arc2.ea, &start2, &end2);
  *ox = x;
  *oy = y;
  *t1 = sweepFraction(theta1, start1, end1);
  *t2 = sweepFraction(theta2, start2, end2);
  return 1;
}

int offsetPointWithArc(double eps, double d, double t, double x1, double y1, double x2, double y2,
                       double bulge, const BulgeArc& arc, double* ox, double* oy) {
  const double dx = x2 - x1;
  const double dy = y2 - y1;
  if (dx * dx + dy * dy < eps * eps)
    return 0;

  if (isStraightBulge(bulge, eps)) {
    double px, py;
    moveAlongNormal(d, x1, y1, x2, y2, x1, y1, &px, &py);
    *ox = px + t * dx;
    *oy = py + t * dy;
    return 1;
  }

  if (!arc.ok)
    return 0;
  double start, end;
  arcAnglesInTravelOrder(bulge, arc.sa, arc.ea, &start, &end);
  const double theta = start + t * (end - start);
  const double rMoved = movedRadius(arc.r, bulge, d);
  // A moved radius below -eps has turned the arc inside out.
  if (rMoved < -eps)
    return 0;
  if (rMoved >= eps) {
    *ox = arc.cx + rMoved * portable::cos(theta);
    *oy = arc.cy + rMoved * portable::sin(theta);
  } else {
    // The moved arc has shrunk to its centre.
    *ox = arc.cx;
    *oy = arc.cy;
  }
  return 1;
}

}  // namespace tarnsysm::detail
