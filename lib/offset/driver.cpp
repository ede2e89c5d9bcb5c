// Tarnsysm: planar computational geometry for 2D drafting.
// The offset driver: the step loop of PLineOffset, the step limit of one segment with its event
// solvers, and the raw one-step builder that moves every segment and joins the corners.
//
// Step limit, side signs. A straight segment of length L between two straight neighbours
// shrinks at each end while it moves: moving by x towards the side on which the neighbour lies
// pulls that end back by x*tan(phi/2), phi the deflection angle at the corner (the angle
// between the two unit normals); moving away pushes it out by as much. With c = cot(phi/2) and
// s = +1 when the neighbour's far vertex lies to the right of the segment (the side a positive
// offset moves to), -1 when to the left, the moved length is L - x*(s_A/c_A + s_B/c_B), which
// reaches 0 at
//     x = L / (s_A/c_A + s_B/c_B) = L*cA*cB / (cA + cB)    with cA = s_A*c_A, cB = s_B*c_B.
// That is the concurrency point of the three moved lines: the point at signed distance x from
// all three. An end whose neighbour runs along the segment's own line (its line passes through
// the far end within eps: a straight continuation, or a reversal that the builder bridges with
// a half circle) does not move along the segment, and the other end alone decides:
// x = L*cB (or L*cA). The open end of an open polyline moves straight along the normal (the
// builder places it with GetOffsetP), so it is such an end too: its virtual neighbour, the
// perpendicular through the end point, stays where it is. Where an arc is involved the open end
// E(x) = P + x*n lies on the moved segment at every x, and the event is the x at which the
// moved neighbour passes through E(x) (linear in x for a line and for a circle alike).
//
// Bridges. Where two moved segments do not meet, the builder joins them with a half circle
// between two inserted rows. Line-line corners, arc-arc corners and any corner with a
// degenerate segment use the same rule: the first row is the vertex moved as the end of the
// incoming segment (GetOffsetP at t = 1), the second the vertex moved as the start of the
// outgoing one (t = 0), so an arc-arc bridge keeps both moved arcs whole, just as a line-line
// bridge keeps both lines; the half circle turns against the cross product of the new chord
// with the incoming direction of travel at the vertex. Line-arc and arc-line corners use the
// feet on the perpendicular from the arc's centre to the moved line. A row that cannot be moved
// (a degenerate segment, an arc turned inside out) stays where its source vertex is.
//
// Room. The builder keeps its copy of the current rows at the top of the caller's 2n rows and
// writes the moved rows from row 0 up, never past a copied row it has still to read; a step whose
// rows would reach one fails (PLineOffset then returns 0). With the copy at rows n .. 2n-1 (the
// first step, and BuildOffsetPLine) a single step always fits, half circles at every corner
// included; later steps of a polyline that has grown beyond n rows may not.
//
// The step loop gives up after 4n + 256 steps: each real event removes a segment, so that many
// would mean limits that keep finding events which remove nothing.
#include "offset/offset.h"

#include "arcs/arcs.h"
#include "offset/internal.h"
#include "primitives/internal.h"

#include <cmath>
#include <cstring>
#include <limits>
#include <memory>
#include <new>

using namespace tarnsysm::detail;

namespace {

// ---- Event solvers ---------------------------------------------------------------------------

// The moving point X(x) = p*x + q of two conditions, and the circle (c, r) it must stay at
// distance r + x from: |p*x + q - c|^2 = (r + x)^2, i.e.
//   (|p|^2 - 1)*x^2 + 2((q - c)*p - r)*x + |q - c|^2 - r^2 = 0.
// Of its roots the nearest one reached before the step on the step's side wins; ties keep the
// earlier root.
int pickEventRoot(double eps, double step, double px, double py, double qx, double qy, double cx,
                  double cy, double r, double* out) {
  const double qcx = qx - cx;
  const double qcy = qy - cy;
  const double a = px * px + py * py - 1.0;
  const double b = 2.0 * (qcx * px + qcy * py - r);
  const double c0 = qcx * qcx + qcy * qcy - r * r;
  double roots[2];
  const int count = SolveQuadratic(eps, a, b, c0, roots);
  int found = 0;
  for (int k = 0; k < count; ++k) {
    const double x = roots[k];
    if (step * x >= eps && std::fabs(x) < std::fabs(*out) - eps) {
      *out = x;
      found = 1;
    }
  }
  return found;
}

// The linear condition that the point X is at distance r1 + x from circle 1 and r2 + x from
// circle 2 (the difference of the two squared conditions):
//   2(C2 - C1)*X + K - 2(r1 - r2)*x = 0,
//   K = (c1x - c2x)(c1x + c2x) + (c1y - c2y)(c1y + c2y) - (r1 - r2)(r1 + r2).
// Written as u*X.x + w*X.y = g*x + h.
struct LinearCondition {
  double u, w, g, h;
};

LinearCondition circlePairCondition(double c1x, double c1y, double r1, double c2x, double c2y,
                                    double r2) {
  const double k = (c1x - c2x) * (c1x + c2x) + (c1y - c2y) * (c1y + c2y) - (r1 - r2) * (r1 + r2);
  return {2.0 * (c2x - c1x), 2.0 * (c2y - c1y), 2.0 * (r1 - r2), -k};
}

// Solves u1*X + w1*Y = g1*x + h1, u2*X + w2*Y = g2*x + h2 for X(x) = p*x + q by Cramer's rule;
// false when the determinant is within eps (open).
bool solveMovingPoint(double eps, const LinearCondition& e1, const LinearCondition& e2, double* px,
                      double* py, double* qx, double* qy) {
  const double det = e1.u * e2.w - e2.u * e1.w;
  if (withinOpen(det, eps) || std::isnan(det))
    return false;
  *px = (e1.g * e2.w - e2.g * e1.w) / det;
  *py = (e1.u * e2.g - e2.u * e1.g) / det;
  *qx = (e1.h * e2.w - e2.h * e1.w) / det;
  *qy = (e1.u * e2.h - e2.u * e1.h) / det;
  return true;
}

// ---- Elements of the step limit --------------------------------------------------------------

// A segment as the step limit sees it: a line (unit right-hand normal (a, b) and constant c, the
// signed distance of (x, y) being a*x + b*y + c) or a circle (centre and radius, negated for a
// clockwise arc, so that the moved circle has radius r + x either way).
struct Element {
  bool valid = false;  // false: a straight segment shorter than eps, no direction
  bool isArc = false;
  double a = 0.0, b = 0.0, c = 0.0;
  double cx = 0.0, cy = 0.0, r = 0.0;
  double radius = 0.0;  // unsigned
  double bulge = 0.0;
  double x1 = 0.0, y1 = 0.0, x2 = 0.0, y2 = 0.0;
};

// `known`, when given, is the segment's arcOfBulge (read only for a bulge outside (-eps, eps)).
Element elementOf(double eps, const double* from, const double* to,
                  const BulgeArc* known = nullptr) {
  Element e;
  e.x1 = from[0];
  e.y1 = from[1];
  e.x2 = to[0];
  e.y2 = to[1];
  e.bulge = from[2];
  if (!isStraightBulge(e.bulge, eps)) {
    const BulgeArc arc = known ? *known : arcOfBulge(eps, e.x1, e.y1, e.x2, e.y2, e.bulge);
    if (arc.ok) {
      e.cx = arc.cx;
      e.cy = arc.cy;
      e.radius = arc.r;
      e.valid = true;
      e.isArc = true;
      e.r = e.bulge < 0.0 ? -e.radius : e.radius;
      return e;
    }
  }
  // Straight, or an arc PL_ArcParam rejects (treated as straight).
  const double dx = e.x2 - e.x1;
  const double dy = e.y2 - e.y1;
  const double len = std::sqrt(dx * dx + dy * dy);
  if (!(len >= eps) || !std::isfinite(len))
    return e;
  e.valid = true;
  e.a = dy / len;
  e.b = -dx / len;
  e.c = -(e.a * e.x1 + e.b * e.y1);
  return e;
}

// Signed cotangent of half the deflection between the current line and a straight neighbour,
// signed by the side of the neighbour's far vertex (fx, fy); false when that end does not move
// along the segment (see the file comment): the neighbour's line passes within eps of the
// current segment's far end (ex, ey), or the cotangent is 0 or infinite.
bool signedHalfCotangent(double eps, const Element& cur, const Element& nb, double fx, double fy,
                         double ex, double ey, double* value) {
  if (withinClosed(nb.a * ex + nb.b * ey + nb.c, eps))
    return false;
  // k = -cos(phi); round-off can push it a hair beyond [-1, 1].
  double k = -(cur.a * nb.a + cur.b * nb.b);
  if (k > 1.0)
    k = 1.0;
  if (k < -1.0)
    k = -1.0;
  const double cot = std::sqrt((1.0 - k) / (1.0 + k));
  if (!(cot > 0.0) || !std::isfinite(cot))
    return false;
  const double side = cur.a * fx + cur.b * fy + cur.c;
  *value = side > 0.0 ? cot : -cot;
  return true;
}

// All three straight (a missing neighbour is an open end).
double threeLineLimit(double eps, double step, const Element& cur, const Element* prev,
                      const Element* next) {
  const double len = std::sqrt(square(cur.x2 - cur.x1) + square(cur.y2 - cur.y1));
  double cA = 0.0;
  double cB = 0.0;
  const bool movesA =
      prev && signedHalfCotangent(eps, cur, *prev, prev->x1, prev->y1, cur.x2, cur.y2, &cA);
  const bool movesB =
      next && signedHalfCotangent(eps, cur, *next, next->x2, next->y2, cur.x1, cur.y1, &cB);
  double x;
  if (!movesA && !movesB)
    return step;
  if (!movesA) {
    x = len * cB;
  } else if (!movesB) {
    x = len * cA;
  } else {
    const double sum = cA + cB;
    // The two ends move the same way: the segment slides without shrinking.
    if (withinClosed(sum, eps))
      return step;
    x = len * cA * cB / sum;
  }
  // The event lies on the other side, or is not reached within this step.
  if (!(x * step > 0.0))
    return step;
  if (std::fabs(step) - eps >= std::fabs(x))
    return x;
  return step;
}

// The open end P of the current segment moves along its right-hand normal n0: E(x) = P + x*n0.
// The segment vanishes when the moved neighbour passes through E(x):
//   line:   a*E + b*E + c = x       ->  x = (a*P.x + b*P.y + c) / (1 - (a, b)*n0)
//   circle: |E - C|^2 = (r + x)^2     ->  x = (|P - C|^2 - r^2) / (2(r - n0*(P - C)))
// The root is filtered like the solvers' roots.
double openEndLimit(double eps, double step, const Element& cur, double px, double py,
                    const Element& nb) {
  double nx, ny;
  if (cur.isArc) {
    nx = (px - cur.cx) / cur.r;
    ny = (py - cur.cy) / cur.r;
  } else {
    nx = cur.a;
    ny = cur.b;
  }
  double num, den;
  if (nb.isArc) {
    const double dx = px - nb.cx;
    const double dy = py - nb.cy;
    num = dx * dx + dy * dy - nb.r * nb.r;
    den = 2.0 * (nb.r - (nx * dx + ny * dy));
  } else {
    num = nb.a * px + nb.b * py + nb.c;
    den = 1.0 - (nb.a * nx + nb.b * ny);
  }
  if (withinOpen(den, eps) || std::isnan(den))
    return step;
  const double x = num / den;
  if (step * x >= eps && std::fabs(x) < std::fabs(step) - eps)
    return x;
  return step;
}

// Two arcs of one circle: their centres, each worked out from its own chord, differ only by
// round-off. The difference of their conditions, which the circle solvers build on, is then that
// round-off, and no single point follows from it (a segment between two arcs of one circle
// keeps its length while both move); the limit passes over such a pair.
bool sameCircle(const Element& a, const Element& b) {
  const double apart = std::sqrt(square(a.cx - b.cx) + square(a.cy - b.cy));
  return apart <= 1e-9 * (a.radius + b.radius);
}

double solverLimit(double eps, double step, const Element& p, const Element& c, const Element& nx) {
  double out = step;
  int found = 0;
  // The circle solvers pair circle 1 with the last circle (CLCOffset), or circles 1 and 2 with
  // circle 3 (CCCOffset).
  if (p.isArc && c.isArc && nx.isArc ? sameCircle(p, nx) || sameCircle(c, nx)
      : p.isArc && nx.isArc          ? sameCircle(p, nx)
      : c.isArc && nx.isArc          ? sameCircle(c, nx)
      : p.isArc && c.isArc           ? sameCircle(p, c)
                                     : false)
    return step;
  if (!p.isArc && !c.isArc && nx.isArc) {
    found = LLCOffset(eps, step, p.a, p.b, p.c, c.a, c.b, c.c, nx.cx, nx.cy, nx.r, &out);
  } else if (p.isArc && !c.isArc && !nx.isArc) {
    found = LLCOffset(eps, step, c.a, c.b, c.c, nx.a, nx.b, nx.c, p.cx, p.cy, p.r, &out);
  } else if (p.isArc && !c.isArc && nx.isArc) {
    found = CLCOffset(eps, step, p.cx, p.cy, p.r, c.a, c.b, c.c, nx.cx, nx.cy, nx.r, &out);
  } else if (!p.isArc && c.isArc && !nx.isArc) {
    found = LLCOffset(eps, step, p.a, p.b, p.c, nx.a, nx.b, nx.c, c.cx, c.cy, c.r, &out);
  } else if (!p.isArc && c.isArc && nx.isArc) {
    found = CLCOffset(eps, step, c.cx, c.cy, c.r, p.a, p.b, p.c, nx.cx, nx.cy, nx.r, &out);
  } else if (p.isArc && c.isArc && !nx.isArc) {
    found = CLCOffset(eps, step, p.cx, p.cy, p.r, nx.a, nx.b, nx.c, c.cx, c.cy, c.r, &out);
  } else if (p.isArc && c.isArc && nx.isArc) {
    found = CCCOffset(eps, step, p.cx, p.cy, p.r, c.cx, c.cy, c.r, nx.cx, nx.cy, nx.r, &out);
  }
  return found ? out : step;
}

// The step limit of a closed polyline of two rows with an arc: the two segments share both rows,
// and the step ends where their moved elements stop meeting, since no corner can be joined past
// that. Two circles moved by x, signed radii r1 + x and r2 + x, centres D apart, meet while
// |r1 + r2 + 2x| and |r1 - r2| lie on either side of D: they part at
//   x = (+-D - r1 - r2) / 2.
// A line (signed distance x) and a circle part where the centre's distance from the moved line,
// h - x with h its distance from the line itself, equals r + x: x = (h - r) / 2. The roots are
// filtered like the event solvers' roots.
double twoRowLimit(double eps, double step, double (*const v)[5]) {
  const Element first = elementOf(eps, v[0], v[1]);
  const Element second = elementOf(eps, v[1], v[0]);
  if (!first.valid || !second.valid || (!first.isArc && !second.isArc))
    return step;
  double roots[2];
  int count = 0;
  if (first.isArc && second.isArc) {
    const double apart = std::sqrt(square(first.cx - second.cx) + square(first.cy - second.cy));
    roots[count++] = (apart - first.r - second.r) / 2.0;
    roots[count++] = (-apart - first.r - second.r) / 2.0;
  } else {
    const Element& line = first.isArc ? second : first;
    const Element& circle = first.isArc ? first : second;
    roots[count++] = (line.a * circle.cx + line.b * circle.cy + line.c - circle.r) / 2.0;
  }
  double limit = step;
  for (int k = 0; k < count; ++k) {
    if (step * roots[k] >= eps && std::fabs(roots[k]) < std::fabs(limit) - eps)
      limit = roots[k];
  }
  return limit;
}

// The step limit of `cur` between `prev` and `next` (null: the open end of an open polyline).
double limitStep(double eps, double step, const Element* prev, const Element& cur,
                 const Element* next) {
  // A shrinking arc may reach its centre, never pass it.
  if (cur.isArc && step * cur.bulge < 0.0 && std::fabs(step) - eps > cur.radius)
    step = step < 0.0 ? -cur.radius : cur.radius;
  if (!cur.valid)
    return step;
  // A degenerate neighbour has no direction; its end behaves like an open end.
  if (prev && !prev->valid)
    prev = nullptr;
  if (next && !next->valid)
    next = nullptr;
  if (!cur.isArc && (!prev || !prev->isArc) && (!next || !next->isArc))
    return threeLineLimit(eps, step, cur, prev, next);
  if (!prev && !next)
    return step;
  if (!prev)
    return openEndLimit(eps, step, cur, cur.x1, cur.y1, *next);
  if (!next)
    return openEndLimit(eps, step, cur, cur.x2, cur.y2, *prev);
  return solverLimit(eps, step, *prev, cur, *next);
}

// ---- Raw builder -----------------------------------------------------------------------------

// The moved rows grow from row 0 while the source rows are read from a copy at the top of the
// array. A row may be written only below `limit`, the lowest copied row still to be read (and
// below the capacity); a write that would go further fails the build.
class MovedRows {
 public:
  MovedRows(double (*v)[5], long long capacity) : v_(v), capacity_(capacity) {}

  void setLimit(long long limit) { limit_ = limit < capacity_ ? limit : capacity_; }
  int count() const { return k_; }
  double* row(int i) { return v_[i]; }

  bool put(double x, double y, double bulge, double f3, double f4) {
    if (k_ >= limit_)
      return false;
    double* r = v_[k_++];
    r[0] = x;
    r[1] = y;
    r[2] = bulge;
    r[3] = f3;
    r[4] = f4;
    return true;
  }

 private:
  double (*v_)[5];
  long long capacity_;
  long long limit_ = 0;
  int k_ = 0;
};

// Sign of the half circle that bridges from (ex, ey) to (sx, sy) when travel arrived in
// direction (tx, ty): the opposite of the sign of chord x direction.
double bridgeBulge(double ex, double ey, double sx, double sy, double tx, double ty) {
  const double cross = (sx - ex) * ty - (sy - ey) * tx;
  return cross > 0.0 ? -1.0 : 1.0;
}

// The source segment that arrives at a corner, with what the builder needs to finish its moved
// version: its arc (when it is one) and the parameter at which the moved arc starts.
struct Incoming {
  const double* from;   // source row where it starts (x, y, bulge)
  const double* to;     // source row where it ends
  double tStart;        // parameter of the moved segment's first row on the moved arc
  const BulgeArc* arc;  // its arcOfBulge, read only when the bulge lies outside (-eps, eps)
};

// The arcs of the source segments, each worked out once per build (PL_ArcParam is the costly
// part of a corner, and every arc has two corners). Segment s runs from row s to the next row.
// Either a table the caller filled for every segment, or worked out here: the corners go in
// order, so the arc worked out last is kept for the next corner, which starts on it.
class SourceArcs {
 public:
  SourceArcs(double eps, const BulgeArc* table) : eps_(eps), table_(table) {}

  BulgeArc of(int s, const double* from, const double* to) {
    if (table_)
      return table_[s];
    if (s != lastSegment_) {
      last_ = arcOfBulge(eps_, from[0], from[1], to[0], to[1], from[2]);
      lastSegment_ = s;
    }
    return last_;
  }

 private:
  double eps_;
  const BulgeArc* table_;
  int lastSegment_ = -1;
  BulgeArc last_;
};

// Appends the row that ends the moved incoming segment at parameter tEnd. For an arc the bulge
// of the row before is cut to the sweep between tStart and tEnd: sign(bulge)*tan(delta/4), 0
// for a sweep of 2 pi - eps or more (a full circle has no bulge). A chord shorter than eps
// drops the new row instead and merges it into the row before as TrimLoop0 merges a duplicate:
// that row takes `bulgeAfter`, the bulge of what follows, and the new row's attributes (so a
// half circle inserted where the moved arc shrank to a point keeps the marks of an inserted
// row).
bool appendSegmentEnd(double eps, MovedRows& out, const Incoming& in, double tEnd, double x,
                      double y, double bulgeAfter, double f3, double f4) {
  const double bulge = in.from[2];
  if (isStraightBulge(bulge, eps) || out.count() == 0)
    return out.put(x, y, bulgeAfter, f3, f4);
  double* last = out.row(out.count() - 1);
  if (std::sqrt(square(x - last[0]) + square(y - last[1])) < eps) {
    last[2] = bulgeAfter;
    last[3] = f3;
    last[4] = f4;
    return true;
  }
  const BulgeArc& arc = *in.arc;
  if (arc.ok) {
    const double sweep = (tEnd - in.tStart) * (arc.ea - arc.sa);
    last[2] =
        std::fabs(sweep) >= kTwoPi - eps ? 0.0 : bulgeSign(bulge) * portable::tan(sweep / 4.0);
  }
  return out.put(x, y, bulgeAfter, f3, f4);
}

// The point at parameter t of the source segment moved by d; the source point itself when the
// segment cannot be moved (degenerate, or an arc turned inside out).
void movedPointOrSource(double eps, double d, double t, const double* from, const double* to,
                        const BulgeArc& arc, double* x, double* y) {
  if (!offsetPointWithArc(eps, d, t, from[0], from[1], to[0], to[1], from[2], arc, x, y)) {
    const double* p = t < 0.5 ? from : to;
    *x = p[0];
    *y = p[1];
  }
}

// Direction of travel of a segment at its end vertex.
void arrivalDirection(double eps, const double* from, const double* to, const BulgeArc& arc,
                      double* tx, double* ty) {
  *tx = to[0] - from[0];
  *ty = to[1] - from[1];
  if (isStraightBulge(from[2], eps) || !arc.ok)
    return;
  // Perpendicular to the radius, turning the way the arc turns.
  const double rx = to[0] - arc.cx;
  const double ry = to[1] - arc.cy;
  *tx = from[2] > 0.0 ? -ry : ry;
  *ty = from[2] > 0.0 ? rx : -rx;
}

// Parameter of the point at angle theta (seen from the centre) on a bulge arc. The angle is
// taken in the turn centred on the arc, so a point a little before the start or past the end
// gets a parameter a little below 0 or above 1, not one a whole turn away.
double arcParameterOf(double eps, double bulge, double sa, double ea, double theta) {
  const double mid = (sa + ea) / 2.0;
  bringAngleIntoRange(theta, mid - kPi, mid + kPi, eps);
  double start, end;
  arcAnglesInTravelOrder(bulge, sa, ea, &start, &end);
  return sweepFraction(theta, start, end);
}

// Feet of a line-arc bridge: the line (lx1, ly1)-(lx2, ly2) moved by d, and the circle of the
// arc moved by d. The foot F of the perpendicular from the centre on the moved line, and the
// point G of the moved circle on the same perpendicular, on F's side of the centre; the angle
// of G seen from the centre. False when the line is degenerate or the arc is not one.
struct LineArcFeet {
  double fx, fy, gx, gy, gAngle, sa, ea;
};

bool lineArcFeet(double eps, double d, const double* l1, const double* l2, const double* a1,
                 const BulgeArc& arc, LineArcFeet* feet) {
  const double dx = l2[0] - l1[0];
  const double dy = l2[1] - l1[1];
  if (dx * dx + dy * dy < eps * eps)
    return false;
  if (!arc.ok)
    return false;
  const double cx = arc.cx;
  const double cy = arc.cy;
  const double r = arc.r;
  const double sa = arc.sa;
  const double ea = arc.ea;
  const double len = std::sqrt(dx * dx + dy * dy);
  const double nx = dy / len;
  const double ny = -dx / len;
  double qx, qy;
  moveAlongNormal(d, l1[0], l1[1], l2[0], l2[1], l1[0], l1[1], &qx, &qy);
  // h: signed distance of the moved line from the centre along n.
  const double h = (qx - cx) * nx + (qy - cy) * ny;
  const double rMoved = movedRadius(r, a1[2], d);
  const double m = h >= 0.0 ? rMoved : -rMoved;
  feet->fx = cx + h * nx;
  feet->fy = cy + h * ny;
  feet->gx = cx + m * nx;
  feet->gy = cy + m * ny;
  feet->gAngle = portable::atan2(m * ny, m * nx);
  feet->sa = sa;
  feet->ea = ea;
  return true;
}

}  // namespace

// ---- Exported event solvers ------------------------------------------------------------------

int LLCOffset(double eps, double step, double a1, double b1, double c1, double a2, double b2,
              double c2, double cx, double cy, double r, double* out) {
  *out = step;
  // Two lines a*X + b*Y + c = x: the point at distance x from both.
  const LinearCondition e1{a1, b1, 1.0, -c1};
  const LinearCondition e2{a2, b2, 1.0, -c2};
  double px, py, qx, qy;
  if (!solveMovingPoint(eps, e1, e2, &px, &py, &qx, &qy))
    return 0;
  return pickEventRoot(eps, step, px, py, qx, qy, cx, cy, r, out);
}

int CLCOffset(double eps, double step, double c1x, double c1y, double r1, double a, double b,
              double c, double c2x, double c2y, double r2, double* out) {
  *out = step;
  const LinearCondition e1 = circlePairCondition(c1x, c1y, r1, c2x, c2y, r2);
  const LinearCondition e2{a, b, 1.0, -c};
  double px, py, qx, qy;
  if (!solveMovingPoint(eps, e1, e2, &px, &py, &qx, &qy))
    return 0;
  return pickEventRoot(eps, step, px, py, qx, qy, c2x, c2y, r2, out);
}

int CCCOffset(double eps, double step, double c1x, double c1y, double r1, double c2x, double c2y,
              double r2, double c3x, double c3y, double r3, double* out) {
  *out = step;
  const LinearCondition e1 = circlePairCondition(c1x, c1y, r1, c3x, c3y, r3);
  const LinearCondition e2 = circlePairCondition(c2x, c2y, r2, c3x, c3y, r3);
  double px, py, qx, qy;
  if (!solveMovingPoint(eps, e1, e2, &px, &py, &qx, &qy))
    return 0;
  return pickEventRoot(eps, step, px, py, qx, qy, c3x, c3y, r3, out);
}

// ---- Step limit and builder ------------------------------------------------------------------

namespace tarnsysm::detail {

double OffsetStepLimit(double eps, double step, int i, int closed, int n, double (*const v)[5]) {
  if (n < 2)
    return 0.0;
  if (n == 2)
    return closed ? twoRowLimit(eps, step, v) : step;
  const int segments = closed ? n : n - 1;
  if (i < 0 || i >= segments)
    return step;
  const Element cur = elementOf(eps, v[i], v[(i + 1) % n]);
  Element prev, next;
  const bool hasPrev = closed || i > 0;
  const bool hasNext = closed || i + 1 < segments;
  if (hasPrev) {
    const int p = (i + n - 1) % n;
    prev = elementOf(eps, v[p], v[(p + 1) % n]);
  }
  if (hasNext) {
    const int q = (i + 1) % n;
    next = elementOf(eps, v[q], v[(q + 1) % n]);
  }
  return limitStep(eps, step, hasPrev ? &prev : nullptr, cur, hasNext ? &next : nullptr);
}

int buildOffsetPLineWithin(double eps, double step, int closed, int n, double (*const v)[5],
                           long long capacity) {
  return buildOffsetPLineWithin(eps, step, closed, n, v, capacity, nullptr);
}

int buildOffsetPLineWithin(double eps, double step, int closed, int n, double (*const v)[5],
                           long long capacity, const BulgeArc* arcs) {
  if (n < 2)
    return 0;
  SourceArcs arcOf(eps, arcs);
  const long long base = capacity - n;
  if (base < 1)
    return -1;
  std::memmove(v[base], v[0], sizeof(double[5]) * static_cast<size_t>(n));
  const auto src = [&](int idx) -> const double* { return v[base + idx]; };
  MovedRows out(v, capacity);

  // Rows read again after the copy area starts to be overwritten are kept here.
  double first[5], lastRow[5];
  std::memcpy(first, src(0), sizeof first);
  std::memcpy(lastRow, src(n - 1), sizeof lastRow);
  const auto row = [&](int idx) -> const double* {
    if (idx == 0)
      return first;
    if (idx == n - 1)
      return lastRow;
    return src(idx);
  };

  Incoming in{nullptr, nullptr, 0.0, nullptr};
  double closingEnd = 1.0;  // parameter where the moved closing arc ends (corner 0)
  int firstCorner = 0;
  int lastCorner = n - 1;
  if (!closed) {
    double x, y;
    movedPointOrSource(eps, step, 0.0, row(0), row(1), arcOf.of(0, row(0), row(1)), &x, &y);
    out.setLimit(base);
    if (!out.put(x, y, row(0)[2], row(0)[3], row(0)[4]))
      return -1;
    firstCorner = 1;
    lastCorner = n - 2;
  }

  for (int j = firstCorner; j <= lastCorner; ++j) {
    const int inSegment = (j + n - 1) % n;
    const double* p1 = row(inSegment);
    const double* p2 = row(j);
    const double* p3 = row((j + 1) % n);
    in.from = p1;
    in.to = p2;
    if (closed && j == 0)
      in.tStart = 0.0;  // the closing arc is finished after the last corner
    // The lowest copied row still to be read once this corner is written.
    if (closed && j == n - 1)
      out.setLimit(capacity);
    else
      out.setLimit(base + (closed && j == 0 ? 1 : j));

    const double b1 = p1[2];
    const double b2 = p2[2];
    const bool inArc = !isStraightBulge(b1, eps);
    const bool outArc = !isStraightBulge(b2, eps);
    // The arcs of the two segments, each read only where its bulge makes it an arc.
    const BulgeArc arcIn = inArc ? arcOf.of(inSegment, p1, p2) : BulgeArc();
    const BulgeArc arcOut = outArc ? arcOf.of(j, p2, p3) : BulgeArc();
    in.arc = &arcIn;
    double ox = 0.0, oy = 0.0, t1 = 1.0, t2 = 0.0;
    int code;
    if (inArc && outArc)
      code = aaOffsetWithArcs(eps, step, p2[0], p2[1], b1, b2, arcIn, arcOut, &ox, &oy, &t1, &t2);
    else if (inArc)
      code = alOffsetWithArc(eps, step, p1[0], p1[1], p2[0], p2[1], p3[0], p3[1], b1, arcIn, &ox,
                             &oy, &t1, &t2);
    else if (outArc)
      code = laOffsetWithArc(eps, step, p1[0], p1[1], p2[0], p2[1], p3[0], p3[1], b2, arcOut, &ox,
                             &oy, &t1, &t2);
    else
      code = LLOffset(eps, step, p1[0], p1[1], p2[0], p2[1], p3[0], p3[1], &ox, &oy, &t1, &t2);

    double tEnd = 1.0;
    if (code == 1 || code == 2) {
      tEnd = t1;
      if (!appendSegmentEnd(eps, out, in, t1, ox, oy, b2, p2[3], p2[4]))
        return -1;
      in.tStart = t2;
    } else {
      LineArcFeet feet;
      if (!inArc && outArc && lineArcFeet(eps, step, p1, p2, p2, arcOut, &feet)) {
        // Moved line to its foot, half circle to the moved circle, then the moved arc.
        if (!appendSegmentEnd(eps, out, in, 1.0, feet.fx, feet.fy, -bulgeSign(b2), -1.0, p2[4]) ||
            !out.put(feet.gx, feet.gy, b2, p2[3], p2[4]))
          return -1;
        in.tStart = arcParameterOf(eps, b2, feet.sa, feet.ea, feet.gAngle);
      } else if (inArc && !outArc && lineArcFeet(eps, step, p2, p3, p1, arcIn, &feet)) {
        // The moved arc ends on the perpendicular, half circle to the foot on the moved line.
        tEnd = arcParameterOf(eps, b1, feet.sa, feet.ea, feet.gAngle);
        if (!appendSegmentEnd(eps, out, in, tEnd, feet.gx, feet.gy, -bulgeSign(b1), -1.0, p2[4]) ||
            !out.put(feet.fx, feet.fy, b2, p2[3], p2[4]))
          return -1;
        in.tStart = 0.0;
      } else {
        double ex, ey, sx, sy, tx, ty;
        movedPointOrSource(eps, step, 1.0, p1, p2, arcIn, &ex, &ey);
        movedPointOrSource(eps, step, 0.0, p2, p3, arcOut, &sx, &sy);
        arrivalDirection(eps, p1, p2, arcIn, &tx, &ty);
        if (!appendSegmentEnd(eps, out, in, 1.0, ex, ey, bridgeBulge(ex, ey, sx, sy, tx, ty), -1.0,
                              p2[4]) ||
            !out.put(sx, sy, b2, p2[3], p2[4]))
          return -1;
        in.tStart = 0.0;
      }
    }
    if (closed && j == 0)
      closingEnd = tEnd;
  }

  if (!closed) {
    // The free end: the end of the moved last segment.
    const double* p1 = row(n - 2);
    const double* p2 = row(n - 1);
    const BulgeArc arcLast = arcOf.of(n - 2, p1, p2);
    double x, y;
    movedPointOrSource(eps, step, 1.0, p1, p2, arcLast, &x, &y);
    in.from = p1;
    in.to = p2;
    in.arc = &arcLast;
    out.setLimit(capacity);
    if (!appendSegmentEnd(eps, out, in, 1.0, x, y, p2[2], p2[3], p2[4]))
      return -1;
    return out.count();
  }

  // The closing segment ends at moved row 0; finish its bulge when it is an arc.
  const double* p1 = row(n - 1);
  const double* p2 = row(0);
  const double bulge = p1[2];
  const int k = out.count();
  if (!isStraightBulge(bulge, eps) && k >= 2) {
    double* last = out.row(k - 1);
    const double* head = out.row(0);
    if (std::sqrt(square(head[0] - last[0]) + square(head[1] - last[1])) < eps) {
      // A closing segment of no length: TrimLoop0 removes it.
      last[2] = 0.0;
    } else if (const BulgeArc arc = arcOf.of(n - 1, p1, p2); arc.ok) {
      const double sweep = (closingEnd - in.tStart) * (arc.ea - arc.sa);
      last[2] =
          std::fabs(sweep) >= kTwoPi - eps ? 0.0 : bulgeSign(bulge) * portable::tan(sweep / 4.0);
    }
  }
  return k;
}

int BuildOffsetPLine(double eps, double step, int closed, int n, double (*const v)[5]) {
  if (n < 2)
    return 0;
  const int built = buildOffsetPLineWithin(eps, step, closed, n, v, 2LL * n);
  return built < 0 ? 0 : built;
}

}  // namespace tarnsysm::detail

// ---- The driver ------------------------------------------------------------------------------

namespace {

// Steps beyond this many (per input row, plus a fixed allowance) mean the limits keep finding
// events that do not remove anything; the offset gives up rather than spin.
constexpr long long kStepsPerRow = 4;
constexpr long long kStepAllowance = 256;

bool isDoubledLine(double eps, int n, double (*const v)[5]) {
  return n == 2 && isStraightBulge(v[0][2], eps) && isStraightBulge(v[1][2], eps);
}

// The step limit over every segment, each element computed once: a rolling window of the
// previous, current and next segment.
double limitStepOverAll(double eps, double step, int closed, int n, double (*const v)[5],
                        const BulgeArc* arcs) {
  if (n < 2)
    return 0.0;
  if (n == 2)
    return closed ? twoRowLimit(eps, step, v) : step;
  const int segments = closed ? n : n - 1;
  const auto element = [&](int s) {
    return elementOf(eps, v[s], v[(s + 1) % n], arcs ? &arcs[s] : nullptr);
  };
  Element prev, cur = element(0), next;
  if (closed)
    prev = element(n - 1);
  for (int i = 0; i < segments; ++i) {
    const bool hasPrev = closed || i > 0;
    const bool hasNext = closed || i + 1 < segments;
    if (hasNext)
      next = (closed && i == n - 1) ? element(0) : element(i + 1);
    step = limitStep(eps, step, hasPrev ? &prev : nullptr, cur, hasNext ? &next : nullptr);
    prev = cur;
    cur = next;
  }
  return step;
}

// The arcs of the current rows' segments, for the step limit and the builder of one step.
void fillSourceArcs(double eps, int closed, int n, double (*const v)[5], BulgeArc* arcs) {
  const int segments = closed ? n : n - 1;
  for (int s = 0; s < segments; ++s) {
    const double* from = v[s];
    const double* to = v[(s + 1) % n];
    arcs[s] = isStraightBulge(from[2], eps)
                  ? BulgeArc()
                  : arcOfBulge(eps, from[0], from[1], to[0], to[1], from[2]);
  }
}

// Whether the step limit and the builder should share a table of the rows' arcs: worth its
// memory when arcs are a fair share of the segments (each table entry saves one PL_ArcParam per
// arc and step; on mostly straight rows the table is only memory traffic).
bool arcTableWorthIt(double eps, int closed, int n, double (*const v)[5]) {
  const int segments = closed ? n : n - 1;
  int arcs = 0;
  for (int s = 0; s < segments; ++s) {
    if (!isStraightBulge(v[s][2], eps))
      ++arcs;
  }
  return arcs >= 16 && 8LL * arcs >= segments;
}

// The geometry is all finite numbers: x, y and bulge of every row (the attributes are the
// caller's and are only carried), the picked point, and the distance unless `through` ignores it.
bool finiteInput(int n, double (*const v)[5], int through, const double* pick, double dist) {
  if (!std::isfinite(pick[0]) || !std::isfinite(pick[1]) || (!through && !std::isfinite(dist)))
    return false;
  for (int i = 0; i < n; ++i) {
    if (!std::isfinite(v[i][0]) || !std::isfinite(v[i][1]) || !std::isfinite(v[i][2]))
      return false;
  }
  return true;
}

}  // namespace

namespace tarnsysm::detail {

int offsetPLine(double eps, int* closed, int n, double (*const v)[5], int through,
                double* const pick, double dist, bool finalCheck) {
  if (!closed)
    return 0;
  if (*closed)
    *closed = 1;
  if (!v || !pick || n < 1 || !finiteInput(n, v, through, pick, dist))
    return 0;
  const long long capacity = 2LL * n;
  const long long maxSteps = kStepsPerRow * n + kStepAllowance;

  // Trimming the input measures the picked point's distance from it too, as a rule.
  TrimMeasure measure;
  n = trimLoopsAndMeasure(eps, pick, closed, n, v, &measure);
  double s = measure.dist;
  if (measure.known ? !measure.ok : !PLineDist(eps, *closed, n, v, pick, &s))
    return 0;
  // The picked point lies on the polyline: no side to offset to.
  if (withinOpen(s, eps) || std::isnan(s))
    return 0;
  double remaining = through ? s : (s >= 0.0 ? std::fabs(dist) : -std::fabs(dist));
  if (!std::isfinite(remaining))
    return 0;
  // The polyline as trimmed, which the result is checked against before it is returned.
  const double total = remaining;
  const int sourceClosed = *closed;
  const int sourceRows = n;
  std::unique_ptr<double[][5]> source;
  if (finalCheck) {
    try {
      source.reset(new double[static_cast<size_t>(n)][5]);
    } catch (const std::bad_alloc&) {
      return 0;
    }
    std::memcpy(source[0], v[0], sizeof(double[5]) * static_cast<size_t>(n));
  }
  // Room for the arcs of every row the caller provides, taken at the first step that wants it.
  // Without it each arc is worked out where it is needed, with the same results.
  std::unique_ptr<BulgeArc[]> arcs;
  bool arcsTried = false;
  // The area of the polyline as trimmed, which the first step works out (none: not a number).
  double firstArea = std::numeric_limits<double>::quiet_NaN();

  for (long long steps = 0;; ++steps) {
    if (std::fabs(remaining) <= eps) {
      if (*closed && isDoubledLine(eps, n, v))
        *closed = 0;
      // The offset cannot be made with sharp corners where the result comes nearer the
      // polyline than the distance, never reaches it, or runs the other way round.
      if (!finalCheck)
        return n;
      try {
        return keepsOffsetDistance(eps, sourceClosed, sourceRows, source.get(), firstArea, *closed,
                                   n, v, total)
                   ? n
                   : 0;
      } catch (const std::bad_alloc&) {
        return 0;
      }
    }
    if (steps >= maxSteps)
      return 0;
    const BulgeArc* table = nullptr;
    if (arcTableWorthIt(eps, *closed, n, v)) {
      if (!arcsTried) {
        arcsTried = true;
        try {
          arcs.reset(new BulgeArc[static_cast<size_t>(capacity)]);
        } catch (const std::bad_alloc&) {
          arcs.reset();
        }
      }
      if (arcs) {
        fillSourceArcs(eps, *closed, n, v, arcs.get());
        table = arcs.get();
      }
    }
    const double step = limitStepOverAll(eps, remaining, *closed, n, v, table);
    const double sourceArea = *closed ? closedArea(eps, n, v) : 0.0;
    if (steps == 0)
      firstArea = sourceArea;
    remaining = remaining - step;
    // A two-row polyline must be offset in a single step.
    if (n < 3 && std::fabs(remaining) >= eps)
      return 0;
    const int built = buildOffsetPLineWithin(eps, step, *closed, n, v, capacity, table);
    if (built < 0)
      return 0;
    n = trimStepLoops(eps, pick, closed, built, v, sourceArea);
    if (n < 2)
      return 0;
    // A closed polyline of two straight segments has no inside left to offset into.
    if (n == 2 && std::fabs(remaining) >= eps && *closed && isDoubledLine(eps, n, v))
      return 0;
  }
}

}  // namespace tarnsysm::detail

int PLineOffset(double eps, int* closed, int n, double (*const v)[5], int through,
                double* const pick, double dist) {
  return offsetPLine(eps, closed, n, v, through, pick, dist, true);
}
