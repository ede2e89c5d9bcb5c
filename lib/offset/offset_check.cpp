// Tarnsysm: planar computational geometry for 2D drafting.
// The last check of PLineOffset: does the result keep its distance from the polyline it came
// from, reach it, and run the same way round?
//
// The sharp-corner offset is built step by step, and on hard input (near-reversing corners,
// joins that reach across the region) the pieces trimming keeps can be something other than an
// offset. Rather than trust every stage, the result is measured against its source once more:
// the exact distance between each result segment and the source segments near it (a box tree
// over the source finds those), lines and arcs as they are, nothing sampled.
//
// The distance between two segments that do not cross is reached at an end of one of them, or
// where the connecting segment is normal to both: for an arc, at its points facing the other
// arc's centre or square to the other line; for a line, at the foot of the other arc's centre.
// Those candidates, each measured to the other segment with DPnearLine or DPnearArc, give the
// distance exactly; a crossing (D2LInts, DArcLInts, D2ArcInts) gives 0.
#include "offset/offset.h"

#include "intersect/intersect.h"
#include "offset/internal.h"
#include "offset/segment_index.h"
#include "primitives/internal.h"
#include "primitives/primitives.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <vector>

using namespace tarnsysm::detail;

namespace {

// A segment from one row to the next: straight, or an arc of the circle PL_ArcParam gives.
struct Piece {
  double x1, y1, x2, y2;
  BulgeArc arc;  // arc.ok: the segment is an arc
  SegmentBox box;
};

void grow(SegmentBox& box, double x, double y) {
  box.xmin = std::min(box.xmin, x);
  box.ymin = std::min(box.ymin, y);
  box.xmax = std::max(box.xmax, x);
  box.ymax = std::max(box.ymax, y);
}

Piece pieceOf(double eps, const double* from, const double* to) {
  Piece p{from[0], from[1], to[0], to[1], BulgeArc(), {from[0], from[1], from[0], from[1]}};
  grow(p.box, p.x2, p.y2);
  if (!withinOpen(from[2], eps))
    p.arc = arcOfBulge(eps, p.x1, p.y1, p.x2, p.y2, from[2]);
  // An arc's box takes the points of its circle due east, north, west and south on its sweep.
  for (int k = 0; p.arc.ok && k < 4; ++k) {
    if (ValidAngle(0.0, p.arc.sa, p.arc.ea, k * kHalfPi))
      grow(p.box, p.arc.cx + p.arc.r * std::cos(k * kHalfPi),
           p.arc.cy + p.arc.r * std::sin(k * kHalfPi));
  }
  return p;
}

// Distance from (px, py) to the piece: its nearest point from DPnearLine or DPnearArc, or, where
// those have no answer (a line shorter than eps, a point at an arc's centre, a radius below eps),
// the nearer end, which is then as near as any point.
double pointDistance(double eps, const Piece& s, double px, double py) {
  double nx, ny;
  const bool found = s.arc.ok ? DPnearArc(eps, px, py, s.arc.cx, s.arc.cy, s.arc.r, s.arc.sa,
                                          s.arc.ea, &nx, &ny) == 1
                              : DPnearLine(eps, px, py, s.x1, s.y1, s.x2, s.y2, &nx, &ny) == 1;
  if (found)
    return std::hypot(px - nx, py - ny);
  return std::min(std::hypot(px - s.x1, py - s.y1), std::hypot(px - s.x2, py - s.y2));
}

// Whether the two pieces share a point.
bool piecesCross(double eps, const Piece& a, const Piece& b) {
  double xa, ya, xb, yb;
  int flag = 0;
  if (!a.arc.ok && !b.arc.ok)
    return D2LInts(eps, a.x1, a.y1, a.x2, a.y2, b.x1, b.y1, b.x2, b.y2, &xa, &ya, &flag) == 1 &&
           flag == 3;
  if (a.arc.ok && b.arc.ok)
    return D2ArcInts(eps, a.arc.cx, a.arc.cy, a.arc.r, a.arc.sa, a.arc.ea, b.arc.cx, b.arc.cy,
                     b.arc.r, b.arc.sa, b.arc.ea, &xa, &ya, &xb, &yb) > 0;
  const Piece& line = a.arc.ok ? b : a;
  const BulgeArc& arc = a.arc.ok ? a.arc : b.arc;
  const int count = DArcLInts(eps, line.x1, line.y1, line.x2, line.y2, arc.cx, arc.cy, arc.r,
                              arc.sa, arc.ea, &xa, &ya, &xb, &yb, &flag);
  return (count >= 1 && (flag & 1)) || (count == 2 && (flag & 2));
}

// The least distance from b of a's candidate points (see the file comment).
double nearestFrom(double eps, const Piece& a, const Piece& b) {
  double best = std::min(pointDistance(eps, b, a.x1, a.y1), pointDistance(eps, b, a.x2, a.y2));
  if (a.arc.ok) {
    // The direction of b's centre, or the normal of b's line.
    const double dx = b.arc.ok ? b.arc.cx - a.arc.cx : b.y1 - b.y2;
    const double dy = b.arc.ok ? b.arc.cy - a.arc.cy : b.x2 - b.x1;
    if (dx == 0.0 && dy == 0.0)
      return best;
    const double toward = std::atan2(dy, dx);
    for (const double angle : {toward, toward + kPi}) {
      if (ValidAngle(0.0, a.arc.sa, a.arc.ea, angle))
        best = std::min(best, pointDistance(eps, b, a.arc.cx + a.arc.r * std::cos(angle),
                                            a.arc.cy + a.arc.r * std::sin(angle)));
    }
  } else if (b.arc.ok) {
    const double dx = a.x2 - a.x1;
    const double dy = a.y2 - a.y1;
    const double t = ((b.arc.cx - a.x1) * dx + (b.arc.cy - a.y1) * dy) / (dx * dx + dy * dy);
    if (t > 0.0 && t < 1.0)
      best = std::min(best, pointDistance(eps, b, a.x1 + t * dx, a.y1 + t * dy));
  }
  return best;
}

double pieceDistance(double eps, const Piece& a, const Piece& b) {
  if (piecesCross(eps, a, b))
    return 0.0;
  return std::min(nearestFrom(eps, a, b), nearestFrom(eps, b, a));
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

  // Every source segment within d + eps of a result segment (by their boxes) is measured.
  const double reach = d + eps + 1e-9 * (1.0 + d);
  double nearest = std::numeric_limits<double>::infinity();
  const int segments = closed ? n : n - 1;
  for (int k = 0; k < segments; ++k) {
    const Piece r = pieceOf(eps, v[k], v[(k + 1) % n]);
    const SegmentBox query{r.box.xmin - reach, r.box.ymin - reach, r.box.xmax + reach,
                           r.box.ymax + reach};
    const bool tooNear = index.visitBelowDescending(sourceSegments, query, [&](int s) {
      const double gap = pieceDistance(eps, r, pieces[static_cast<size_t>(s)]);
      nearest = std::min(nearest, gap);
      return !(gap >= d - eps);
    });
    if (tooNear)
      return false;
  }
  return nearest <= d + eps;
}

}  // namespace tarnsysm::detail
