// Tarnsysm: planar computational geometry for 2D drafting.
// The last check of PLineOffset: does the result keep its distance from the polyline it came
// from, reach it, and run the same way round?
//
// The sharp-corner offset is built step by step, and on hard input (near-reversing corners,
// joins that reach across the region) the pieces trimming keeps can be something other than an
// offset. Rather than trust every stage, the result is measured against its source once more,
// lines and arcs as they are, nothing sampled. A box tree over the source segments gives, for
// each result segment, only the source segments whose boxes come within d + eps of its own box
// (Euclidean gaps between boxes, which never exceed the gaps between what they hold).
//
// The distance between two segments that do not meet is reached at an end of one of them, or
// where the connection is normal to both: for an arc, at its points facing the other arc's
// centre or square to the other line; for a line, at the foot of the other arc's centre. Each
// candidate is measured exactly to the other segment. Segments whose boxes overlap may meet;
// D2LInts, DArcLInts and D2ArcInts decide, and a meeting is a distance of 0.
//
// An arc is worked out from its chord and bulge without trigonometry (the check runs over every
// row of the result): centre at (1 - b^2)/(4b) chords left of the chord's midpoint, radius
// chord (1 + b^2)/(4|b|), and a point of its circle lies on the arc exactly when it lies on the
// arc's side of the chord (the right of travel for a positive bulge), whatever the sweep.
#include "offset/offset.h"

#include "intersect/intersect.h"
#include "offset/internal.h"
#include "offset/segment_index.h"
#include "primitives/internal.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <vector>

using namespace tarnsysm::detail;

namespace {

struct Point {
  double x, y;
};

// A segment from one row to the next, straight or an arc (a bulge outside (-eps, eps) on a chord
// of eps or more, as the offset takes it).
struct Piece {
  Point a, b;
  double bulge;
  bool isArc;
  Point c;
  double r;
  SegmentBox box;
  double nx, ny, off;  // the chord's line: signed distance nx x + ny y + off

  // Whether p, a point of the arc's circle, lies on the arc: on its side of the chord.
  bool holds(Point p) const {
    const double side = (b.x - a.x) * (p.y - a.y) - (b.y - a.y) * (p.x - a.x);
    return bulge > 0.0 ? side <= 0.0 : side >= 0.0;
  }
};

void grow(SegmentBox& box, double x, double y) {
  box.xmin = std::min(box.xmin, x);
  box.ymin = std::min(box.ymin, y);
  box.xmax = std::max(box.xmax, x);
  box.ymax = std::max(box.ymax, y);
}

Piece pieceOf(double eps, const double* from, const double* to) {
  Piece p{};
  p.a = {from[0], from[1]};
  p.b = {to[0], to[1]};
  p.bulge = from[2];
  p.box = {from[0], from[1], from[0], from[1]};
  grow(p.box, p.b.x, p.b.y);
  const double dx = p.b.x - p.a.x;
  const double dy = p.b.y - p.a.y;
  const double chord = std::sqrt(dx * dx + dy * dy);
  if (chord > 0.0) {
    p.nx = dy / chord;
    p.ny = -dx / chord;
    p.off = -(p.nx * p.a.x + p.ny * p.a.y);
  }
  p.isArc = !isStraightBulge(p.bulge, eps) && chord >= eps;
  if (!p.isArc)
    return p;
  const double k = (1.0 - p.bulge * p.bulge) / (4.0 * p.bulge);
  p.c = {(p.a.x + p.b.x) / 2.0 - k * dy, (p.a.y + p.b.y) / 2.0 + k * dx};
  p.r = chord * (1.0 + p.bulge * p.bulge) / (4.0 * std::fabs(p.bulge));
  // The box takes the circle's points due east, north, west and south that lie on the arc.
  const Point extremes[4] = {
      {p.c.x + p.r, p.c.y}, {p.c.x, p.c.y + p.r}, {p.c.x - p.r, p.c.y}, {p.c.x, p.c.y - p.r}};
  for (const Point& e : extremes) {
    if (p.holds(e))
      grow(p.box, e.x, e.y);
  }
  return p;
}

double length(double x, double y) {
  return std::sqrt(x * x + y * y);
}

// Distance from q to the piece.
double pointDistance(const Piece& s, Point q) {
  const auto nearerEnd = [&] {
    return std::min(length(q.x - s.a.x, q.y - s.a.y), length(q.x - s.b.x, q.y - s.b.y));
  };
  if (s.isArc) {
    const double rho = length(q.x - s.c.x, q.y - s.c.y);
    if (rho == 0.0)
      return s.r;
    const Point onCircle{s.c.x + (q.x - s.c.x) * s.r / rho, s.c.y + (q.y - s.c.y) * s.r / rho};
    return s.holds(onCircle) ? std::fabs(rho - s.r) : nearerEnd();
  }
  // The line's own distance where the foot lies within it.
  const double dx = s.b.x - s.a.x;
  const double dy = s.b.y - s.a.y;
  const double t = ((q.x - s.a.x) * dx + (q.y - s.a.y) * dy) / (dx * dx + dy * dy);
  if (!(t > 0.0 && t < 1.0))
    return nearerEnd();
  return std::fabs(s.nx * q.x + s.ny * q.y + s.off);
}

// The least distance from b of a's candidate points (see the file comment).
double nearestFrom(const Piece& a, const Piece& b) {
  double best = std::min(pointDistance(b, a.a), pointDistance(b, a.b));
  if (a.isArc) {
    // Towards b's centre, or along the normal of b's line.
    const double dx = b.isArc ? b.c.x - a.c.x : b.a.y - b.b.y;
    const double dy = b.isArc ? b.c.y - a.c.y : b.b.x - b.a.x;
    const double len = length(dx, dy);
    if (!(len > 0.0))
      return best;
    for (const double sign : {1.0, -1.0}) {
      const Point q{a.c.x + sign * a.r * dx / len, a.c.y + sign * a.r * dy / len};
      if (a.holds(q))
        best = std::min(best, pointDistance(b, q));
    }
  } else if (b.isArc) {
    const double dx = a.b.x - a.a.x;
    const double dy = a.b.y - a.a.y;
    const double t = ((b.c.x - a.a.x) * dx + (b.c.y - a.a.y) * dy) / (dx * dx + dy * dy);
    if (t > 0.0 && t < 1.0)
      best = std::min(best, pointDistance(b, {a.a.x + t * dx, a.a.y + t * dy}));
  }
  return best;
}

// Whether two pieces whose boxes overlap share a point.
bool piecesMeet(double eps, const Piece& a, const Piece& b) {
  double xa, ya, xb, yb;
  int flag = 0;
  if (!a.isArc && !b.isArc)
    return D2LInts(eps, a.a.x, a.a.y, a.b.x, a.b.y, b.a.x, b.a.y, b.b.x, b.b.y, &xa, &ya, &flag) ==
               1 &&
           flag == 3;
  const BulgeArc arcA = a.isArc ? arcOfBulge(eps, a.a.x, a.a.y, a.b.x, a.b.y, a.bulge) : BulgeArc();
  const BulgeArc arcB = b.isArc ? arcOfBulge(eps, b.a.x, b.a.y, b.b.x, b.b.y, b.bulge) : BulgeArc();
  if (a.isArc && b.isArc)
    return arcA.ok && arcB.ok &&
           D2ArcInts(eps, arcA.cx, arcA.cy, arcA.r, arcA.sa, arcA.ea, arcB.cx, arcB.cy, arcB.r,
                     arcB.sa, arcB.ea, &xa, &ya, &xb, &yb) > 0;
  const Piece& line = a.isArc ? b : a;
  const BulgeArc& arc = a.isArc ? arcA : arcB;
  if (!arc.ok)
    return false;
  const int count = DArcLInts(eps, line.a.x, line.a.y, line.b.x, line.b.y, arc.cx, arc.cy, arc.r,
                              arc.sa, arc.ea, &xa, &ya, &xb, &yb, &flag);
  return (count >= 1 && (flag & 1)) || (count == 2 && (flag & 2));
}

// The squared gap between two boxes: never more than between what they hold.
double boxGapSquared(const SegmentBox& p, const SegmentBox& q) {
  const double gx = std::max({0.0, p.xmin - q.xmax, q.xmin - p.xmax});
  const double gy = std::max({0.0, p.ymin - q.ymax, q.ymin - p.ymax});
  return gx * gx + gy * gy;
}

// The least distance of piece o from the whole line through piece `line` (straight) when o lies
// on one side of it, else 0 or less: the nearer end, or, where the point of an arc's circle
// facing the line lies on the arc, that point.
double lineGap(const Piece& line, const Piece& o) {
  const double da = line.nx * o.a.x + line.ny * o.a.y + line.off;
  const double db = line.nx * o.b.x + line.ny * o.b.y + line.off;
  if (!(da * db > 0.0))
    return 0.0;
  const double toward = da > 0.0 ? -1.0 : 1.0;  // along the normal, towards the line
  if (o.isArc && o.holds({o.c.x + toward * o.r * line.nx, o.c.y + toward * o.r * line.ny}))
    return -toward * (line.nx * o.c.x + line.ny * o.c.y + line.off) - o.r;
  return std::min(std::fabs(da), std::fabs(db));
}

// Whether r certainly lies farther than `reach` from s, told cheaply: from the line of either
// when it is straight (a segment is no nearer than its line), or from s's circle when s is an
// arc: r's distances from the centre all farther than reach from the radius (a line is farthest
// from a point at an end and nearest at its foot; an arc's distances lie between |apart - r| and
// apart + r). Squared lengths spare roots.
bool plainlyApart(const Piece& r, const Piece& s, double reach) {
  if ((!s.isArc && lineGap(s, r) > reach) || (!r.isArc && lineGap(r, s) > reach))
    return true;
  if (!s.isArc)
    return false;
  const auto squared = [&](double x, double y) {
    return (x - s.c.x) * (x - s.c.x) + (y - s.c.y) * (y - s.c.y);
  };
  double near2, far2;
  if (r.isArc) {
    const double apart = std::sqrt(squared(r.c.x, r.c.y));
    near2 = (apart - r.r) * (apart - r.r);
    far2 = (apart + r.r) * (apart + r.r);
  } else {
    far2 = std::max(squared(r.a.x, r.a.y), squared(r.b.x, r.b.y));
    const double dx = r.b.x - r.a.x;
    const double dy = r.b.y - r.a.y;
    const double t =
        std::clamp(((s.c.x - r.a.x) * dx + (s.c.y - r.a.y) * dy) / (dx * dx + dy * dy), 0.0, 1.0);
    near2 = squared(r.a.x + t * dx, r.a.y + t * dy);
  }
  const double out = s.r + reach;
  const double in = s.r - reach;
  return near2 > out * out || (in > 0.0 && far2 < in * in);
}

double pieceDistance(double eps, const Piece& a, const Piece& b) {
  if (boxGapSquared(a.box, b.box) == 0.0 && piecesMeet(eps, a, b))
    return 0.0;
  return std::min(nearestFrom(a, b), nearestFrom(b, a));
}

}  // namespace

namespace tarnsysm::detail {

double closedArea(double eps, int n, const double (*v)[5]) {
  double sum = 0.0;
  for (int i = 0; i < n; ++i) {
    const double* a = v[i];
    const double* b = v[(i + 1) % n];
    sum += LineArea(eps, a[0], a[1], b[0], b[1], a[2]);
  }
  return sum;
}

bool keepsOffsetDistance(double eps, int sourceClosed, int ns, const double (*source)[5],
                         int closed, int n, const double (*v)[5], double distance) {
  if (ns < 2 || n < 2)
    return false;
  if (sourceClosed && closed && closedArea(eps, ns, source) * closedArea(eps, n, v) < 0.0)
    return false;
  const double d = std::fabs(distance);
  const int sourceSegments = sourceClosed ? ns : ns - 1;
  std::vector<Piece> pieces;
  pieces.reserve(static_cast<size_t>(sourceSegments));
  for (int s = 0; s < sourceSegments; ++s)
    pieces.push_back(pieceOf(eps, source[s], source[(s + 1) % ns]));
  SegmentIndex index;
  index.build(sourceSegments, [&](int s) { return pieces[static_cast<size_t>(s)].box; });

  // Every pair that may come nearer than d - eps is measured; pairs within d + eps only until
  // one has shown that the result reaches d.
  const double low = d - eps;
  double reach = d + eps;
  bool reached = false;
  const int segments = closed ? n : n - 1;
  for (int k = 0; k < segments; ++k) {
    const Piece r = pieceOf(eps, v[k], v[(k + 1) % n]);
    const auto near = [&](const SegmentBox& box) {
      return boxGapSquared(r.box, box) <= reach * reach;
    };
    const auto tooNear = [&](int s) {
      const Piece& p = pieces[static_cast<size_t>(s)];
      if (plainlyApart(r, p, reach))
        return false;
      const double gap = pieceDistance(eps, r, p);
      if (!reached && gap <= d + eps) {
        reached = true;
        reach = low;
      }
      return !(gap >= low);
    };
    if (index.visitWhere(near, tooNear))
      return false;
  }
  return reached;
}

}  // namespace tarnsysm::detail
