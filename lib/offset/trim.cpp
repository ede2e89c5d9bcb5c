// Tarnsysm: planar computational geometry for 2D drafting.
// Loop trimming and distances: duplicate rows, self-intersection loops, the signed distance of a
// point from a polyline and the visibility test behind it.
//
// The loop scan tests every segment against the earlier ones, nearest first (i-1 down to 0), and
// cuts at the first that crosses it. It keeps exactly that order and those results, but asks a
// box tree over the segments (segment_index.h) for the earlier segments that can cross at all,
// so a polyline with few crossings costs O(n log n) instead of O(n²). Segments keep stable ids
// (their row at the start of the scan); a cut removes the ids inside the loop and the row X takes
// the id of row i, so id order stays position order and stored boxes only ever grow too large,
// never too small. The visibility tests of PLineDist use the same tree.
//
// Choices made here:
//  - A straight segment and an arc cross only at a point that DArcLInts puts on the arc and its
//    flag puts within the straight segment (for IntersPLine: within the sight segment). Points
//    on the infinite line would make every pick inside a circle of four arcs invisible.
//  - Of a pair, the earlier segment j is passed first to D2LInts and D2ArcInts, the straight one
//    first to DArcLInts.
//  - Cutting a loop: the row X that replaces row j+1 carries the tail piece of segment i and the
//    attributes (fields 3 and 4) of row i; row j keeps its attributes and the head piece of
//    segment j. In the loop, X carries the tail piece of segment j and the attributes of row j,
//    so a closed polygon whose closing segment meets segment 0 at row 0 comes back as itself.
//  - Segments with coordinates that are not finite never cross anything.
//  - TrimLoopS works on a copy and writes the caller's rows only at the end, so when memory runs
//    out it returns with the rows and the flag untouched.
#include "offset/offset.h"

#include "arcs/arcs.h"
#include "intersect/intersect.h"
#include "offset/internal.h"
#include "offset/segment_index.h"
#include "primitives/internal.h"

#include <cmath>
#include <cstring>
#include <limits>
#include <memory>
#include <new>
#include <vector>

using namespace tarnsysm::detail;

namespace {

// ---- Segments --------------------------------------------------------------------------------

// A segment from one row to the next, with its circle when it is an arc (a bulge outside
// (-eps, eps) that PL_ArcParam accepts; any other segment is straight).
struct Segment {
  double x1 = 0.0, y1 = 0.0, x2 = 0.0, y2 = 0.0, bulge = 0.0;
  bool isArc = false;
  double cx = 0.0, cy = 0.0, r = 0.0, sa = 0.0, ea = 0.0;
};

Segment segmentOf(double eps, double x1, double y1, double bulge, double x2, double y2) {
  Segment s;
  s.x1 = x1;
  s.y1 = y1;
  s.x2 = x2;
  s.y2 = y2;
  s.bulge = bulge;
  if (!withinOpen(bulge, eps))
    s.isArc = PL_ArcParam(eps, x1, y1, x2, y2, bulge, &s.cx, &s.cy, &s.r, &s.sa, &s.ea) != 0;
  return s;
}

Segment segmentOf(double eps, const double* from, const double* to) {
  return segmentOf(eps, from[0], from[1], from[2], to[0], to[1]);
}

SegmentBox boxOf(double eps, const Segment& s) {
  return paddedSegmentBox(eps, s.x1, s.y1, s.x2, s.y2, s.isArc, s.cx, s.cy, s.r, s.sa, s.ea);
}

// Angle of (x, y) seen from an arc's centre, brought into the arc's range with tolerance eps;
// a point outside it takes the turn centred on the arc (never one a whole turn away).
double angleOnArc(double eps, const Segment& s, double x, double y) {
  double theta = std::atan2(y - s.cy, x - s.cx);
  const double mid = (s.sa + s.ea) / 2.0;
  bringAngleIntoRange(theta, mid - kPi, mid + kPi, eps);
  return theta;
}

// Parameter of X along a segment: the projection for a line, the sweep fraction from the
// arc's start in its direction of travel for an arc.
double parameterAlong(double eps, const Segment& s, double x, double y) {
  if (!s.isArc) {
    const double dx = s.x2 - s.x1;
    const double dy = s.y2 - s.y1;
    return ((x - s.x1) * dx + (y - s.y1) * dy) / (dx * dx + dy * dy);
  }
  const double theta = angleOnArc(eps, s, x, y);
  double start, end;
  arcAnglesInTravelOrder(s.bulge, s.sa, s.ea, &start, &end);
  return sweepFraction(theta, start, end);
}

// Bulges of the two pieces of a segment cut at X: head from its start to X, tail from X to its
// end, each sign(bulge)·tan(sweep/4) of its own sweep; 0 for a straight segment.
void splitBulges(double eps, const Segment& s, double x, double y, double* head, double* tail) {
  if (!s.isArc) {
    *head = 0.0;
    *tail = 0.0;
    return;
  }
  const double theta = angleOnArc(eps, s, x, y);
  double start, end;
  arcAnglesInTravelOrder(s.bulge, s.sa, s.ea, &start, &end);
  const double sign = bulgeSign(s.bulge);
  *head = sign * std::tan((theta - start) * sign / 4.0);
  *tail = sign * std::tan((end - theta) * sign / 4.0);
}

// Does the straight segment from (kx, ky) to (px, py) cross segment s?
bool sightCrosses(double eps, double kx, double ky, double px, double py, const Segment& s) {
  double xa, ya, xb, yb;
  int flag = 0;
  if (!s.isArc)
    return D2LInts(eps, kx, ky, px, py, s.x1, s.y1, s.x2, s.y2, &xa, &ya, &flag) == 1 && flag == 3;
  const int count =
      DArcLInts(eps, kx, ky, px, py, s.cx, s.cy, s.r, s.sa, s.ea, &xa, &ya, &xb, &yb, &flag);
  return (count >= 1 && (flag & 1)) || (count == 2 && (flag & 2));
}

// Segment s touches row k: it starts or ends there (the closing segment ends at row 0).
bool touchesRow(int s, int k, int n) {
  return s == k || s == k - 1 || (k == 0 && s == n - 1);
}

// Where segment i (later) crosses segment j (earlier) in the loop scan, if it does.
bool loopCrossing(double eps, const Segment& si, const Segment& sj, bool adjacent, double* x,
                  double* y) {
  if (!si.isArc && !sj.isArc) {
    // Neighbouring lines always meet at their shared row; only other pairs are tested.
    if (adjacent)
      return false;
    int flag = 0;
    return D2LInts(eps, sj.x1, sj.y1, sj.x2, sj.y2, si.x1, si.y1, si.x2, si.y2, x, y, &flag) == 1 &&
           flag == 3;
  }
  double px[2], py[2];
  int count = 0;
  double xa, ya, xb, yb;
  if (si.isArc != sj.isArc) {
    const Segment& line = si.isArc ? sj : si;
    const Segment& arc = si.isArc ? si : sj;
    int flag = 0;
    const int m = DArcLInts(eps, line.x1, line.y1, line.x2, line.y2, arc.cx, arc.cy, arc.r, arc.sa,
                            arc.ea, &xa, &ya, &xb, &yb, &flag);
    if (m >= 1 && (flag & 1)) {
      px[count] = xa;
      py[count++] = ya;
    }
    if (m == 2 && (flag & 2)) {
      px[count] = xb;
      py[count++] = yb;
    }
  } else {
    const int m = D2ArcInts(eps, sj.cx, sj.cy, sj.r, sj.sa, sj.ea, si.cx, si.cy, si.r, si.sa, si.ea,
                            &xa, &ya, &xb, &yb);
    if (m >= 1) {
      px[count] = xa;
      py[count++] = ya;
    }
    if (m == 2) {
      px[count] = xb;
      py[count++] = yb;
    }
  }
  if (adjacent) {
    // They always meet at the shared row: a loop needs a second point; the one farther from
    // the shared row (in |dx| + |dy|) is taken, the first on a tie.
    if (count < 2)
      return false;
    const double d0 = std::fabs(px[0] - si.x1) + std::fabs(py[0] - si.y1);
    const double d1 = std::fabs(px[1] - si.x1) + std::fabs(py[1] - si.y1);
    const int pick = d1 > d0 ? 1 : 0;
    *x = px[pick];
    *y = py[pick];
    return true;
  }
  if (count == 0)
    return false;
  int pick = 0;
  if (count == 2 && parameterAlong(eps, sj, px[1], py[1]) < parameterAlong(eps, sj, px[0], py[0]))
    pick = 1;
  *x = px[pick];
  *y = py[pick];
  return true;
}

// ---- Distances -------------------------------------------------------------------------------

// Signed distance from p to the carrier of a segment: the perpendicular distance for a line
// (positive on the right of travel), (|p - C| - R)·sign(bulge) for an arc. False for a straight
// segment shorter than eps.
bool carrierDistance(double eps, const double* p, const Segment& s, double* d) {
  if (s.isArc) {
    *d = (std::sqrt(square(p[0] - s.cx) + square(p[1] - s.cy)) - s.r) * bulgeSign(s.bulge);
    return true;
  }
  const double dx = s.x2 - s.x1;
  const double dy = s.y2 - s.y1;
  const double len = std::sqrt(dx * dx + dy * dy);
  if (!(len >= eps))
    return false;
  *d = ((p[0] - s.x1) * dy - (p[1] - s.y1) * dx) / len;
  return true;
}

// The three distances VertexDist tries, in its order: to the first segment, to the second, to
// the middle row.
struct Candidates {
  double d[3];
  bool ok[3];
};

Candidates candidatesOf(double eps, const double* p, const Segment& s1, const Segment& s2) {
  Candidates c{};
  c.ok[0] = carrierDistance(eps, p, s1, &c.d[0]);
  c.ok[1] = carrierDistance(eps, p, s2, &c.d[1]);
  c.d[2] = std::sqrt(square(p[0] - s1.x2) + square(p[1] - s1.y2));
  c.ok[2] = true;
  return c;
}

// Does p lie on the three-row open piece s1, s2 moved by d?
bool onMovedPiece(double eps, double* p, const Segment& s1, const Segment& s2, double d) {
  double rows[6][5] = {{s1.x1, s1.y1, s1.bulge, 0.0, 0.0},
                       {s2.x1, s2.y1, s2.bulge, 0.0, 0.0},
                       {s2.x2, s2.y2, 0.0, 0.0, 0.0}};
  const int k = BuildOffsetPLine(eps, d, 0, 3, rows);
  return k >= 2 && PointsOnPLine(eps, p, 0, k, rows) == 1;
}

// VertexDist's answer, but giving up (false) as soon as every candidate still to be tried is at
// least `bound` in magnitude: then whatever it would answer cannot beat `bound`.
bool vertexDistBelow(double eps, double* p, const Segment& s1, const Segment& s2,
                     const Candidates& c, double bound, double* dist) {
  for (int m = 0; m < 3; ++m) {
    bool anyBelow = false;
    for (int r = m; r < 3; ++r)
      anyBelow = anyBelow || (c.ok[r] && std::fabs(c.d[r]) < bound);
    if (!anyBelow)
      return false;
    if (c.ok[m] && onMovedPiece(eps, p, s1, s2, c.d[m])) {
      *dist = c.d[m];
      return true;
    }
  }
  return false;
}

// Segments of a polyline for the distance scan: computed once each, and a box tree for the
// visibility tests built at the first test.
class PolylineSegments {
 public:
  PolylineSegments(double eps, int closed, int n, double (*const v)[5])
      : eps_(eps), closed_(closed), n_(n), v_(v), segments_(n), ready_(n, 0) {}

  const Segment& segment(int s) {
    if (!ready_[s]) {
      segments_[s] = segmentOf(eps_, v_[s], v_[(s + 1) % n_]);
      ready_[s] = 1;
    }
    return segments_[s];
  }

  // IntersPLine(eps, k, px, py, closed, n, v) through the tree.
  bool sightBlocked(int k, double px, double py) {
    if (!indexed_)
      buildIndex();
    const double kx = v_[k][0];
    const double ky = v_[k][1];
    const double len = std::sqrt(square(px - kx) + square(py - ky));
    const double size =
        std::fmax(std::fmax(std::fabs(kx), std::fabs(ky)), std::fmax(std::fabs(px), std::fabs(py)));
    const double pad = 8.0 * std::fabs(eps_) * (1.0 + len) + 1e-12 * (1.0 + size + len);
    if (!std::isfinite(pad))
      return plainSightBlocked(k, px, py);
    return index_.visitAlongSegment(kx, ky, px, py, pad, [&](int s) {
      return !touchesRow(s, k, n_) && sightCrosses(eps_, kx, ky, px, py, segment(s));
    });
  }

 private:
  void buildIndex() {
    const int segments = closed_ ? n_ : n_ - 1;
    std::vector<SegmentBox> boxes(n_, SegmentBox::empty());
    for (int s = 0; s < segments; ++s)
      boxes[s] = boxOf(eps_, segment(s));
    index_.build(boxes);
    indexed_ = true;
  }

  // A sight segment whose margin overflows: test every segment.
  bool plainSightBlocked(int k, double px, double py) {
    const int segments = closed_ ? n_ : n_ - 1;
    for (int s = 0; s < segments; ++s) {
      if (!touchesRow(s, k, n_) && sightCrosses(eps_, v_[k][0], v_[k][1], px, py, segment(s)))
        return true;
    }
    return false;
  }

  double eps_;
  int closed_;
  int n_;
  double (*v_)[5];
  std::vector<Segment> segments_;
  std::vector<char> ready_;
  SegmentIndex index_;
  bool indexed_ = false;
};

// PLineDist for n >= 2, other than a single open segment. `fast` prunes runs that cannot win and
// uses the segment cache and tree; it allocates. The plain scan allocates nothing.
int plineDistRuns(double eps, int closed, int n, double (*const v)[5], double* const p,
                  double* dist, bool fast) {
  const int runs = closed ? n : n - 2;
  double best = std::numeric_limits<double>::infinity();
  double result = 0.0;
  bool found = false;
  std::unique_ptr<PolylineSegments> cache;
  if (fast)
    cache = std::make_unique<PolylineSegments>(eps, closed, n, v);
  for (int i = 0; i < runs; ++i) {
    const int a = i;
    const int b = (i + 1) % n;
    const int c = (i + 2) % n;
    double d = 0.0;
    if (fast) {
      const Segment& s1 = cache->segment(a);
      const Segment& s2 = cache->segment(b);
      const Candidates cand = candidatesOf(eps, p, s1, s2);
      if (!vertexDistBelow(eps, p, s1, s2, cand, best, &d) || !(std::fabs(d) < best))
        continue;
      if (cache->sightBlocked(b, p[0], p[1]))
        continue;
    } else {
      if (!VertexDist(eps, p, v[a][0], v[a][1], v[a][2], v[b][0], v[b][1], v[b][2], v[c][0],
                      v[c][1], &d) ||
          !(std::fabs(d) < best))
        continue;
      if (IntersPLine(eps, b, p[0], p[1], closed, n, v))
        continue;
    }
    best = std::fabs(d);
    result = d;
    found = true;
  }
  if (!found)
    return 0;
  *dist = result;
  return 1;
}

// ---- Rows ------------------------------------------------------------------------------------

// A heap array of rows, double (*)[5] like the caller's.
class RowArray {
 public:
  explicit RowArray(int n) : rows_(n > 0 ? new double[n][5] : nullptr), n_(n) {}
  double (*get())[5] { return rows_.get(); }
  double* operator[](int i) { return rows_[i]; }
  int size() const { return n_; }

 private:
  std::unique_ptr<double[][5]> rows_;
  int n_;
};

void copyRows(double (*dst)[5], double (*const src)[5], int n) {
  if (n > 0)
    std::memmove(dst[0], src[0], sizeof(double[5]) * static_cast<size_t>(n));
}

// ---- The loop scan ---------------------------------------------------------------------------

// The polyline during the scan: rows under stable ids, linked in order; ids only disappear.
class ScanState {
 public:
  ScanState(double eps, int closed, int n, double (*const rows)[5])
      : eps_(eps),
        closed_(closed),
        rows_(rows),
        next_(n),
        prev_(n),
        segments_(n),
        ready_(n, 0),
        last_(n - 1) {
    for (int i = 0; i < n; ++i) {
      next_[i] = i + 1 < n ? i + 1 : -1;
      prev_[i] = i - 1;
    }
    std::vector<SegmentBox> boxes(n, SegmentBox::empty());
    for (int i = 0; i < n; ++i) {
      if (hasSegment(i))
        boxes[i] = boxOf(eps_, segment(i));
    }
    index_.build(boxes);
  }

  bool hasSegment(int id) const { return next_[id] != -1 || (closed_ && id == last_); }
  int next(int id) const { return next_[id]; }
  int prev(int id) const { return prev_[id]; }
  double* row(int id) { return rows_[id]; }

  const Segment& segment(int id) {
    if (!ready_[id]) {
      const int to = next_[id] != -1 ? next_[id] : 0;
      segments_[id] = segmentOf(eps_, rows_[id], rows_[to]);
      ready_[id] = 1;
    }
    return segments_[id];
  }

  // The latest earlier segment that segment `id` crosses, nearest first, and the point.
  int firstCrossingBelow(int id, double* x, double* y) {
    const Segment si = segment(id);
    const SegmentBox query = boxOf(eps_, si);
    int hit = -1;
    index_.visitBelowDescending(id, query, [&](int j) {
      if (!loopCrossing(eps_, si, segment(j), j == prev_[id], x, y))
        return false;
      hit = j;
      return true;
    });
    return hit;
  }

  // Cuts out the loop between segment j and segment i at X: the rows after j up to i go, row i's
  // slot becomes X with the tail piece of segment i, row j keeps the head piece of segment j.
  void cut(int j, int i, double x, double y, double headJ, double tailI) {
    for (int id = next_[j]; id != i; id = next_[id])
      index_.remove(id);
    rows_[i][0] = x;
    rows_[i][1] = y;
    rows_[i][2] = tailI;
    rows_[j][2] = headJ;
    next_[j] = i;
    prev_[i] = j;
    ready_[i] = 0;
    ready_[j] = 0;
  }

 private:
  double eps_;
  int closed_;
  double (*rows_)[5];
  std::vector<int> next_, prev_;
  std::vector<Segment> segments_;
  std::vector<char> ready_;
  int last_;
  SegmentIndex index_;
};

int trimLoops(double eps, double* const pick, int* closed, int n, double (*const v)[5]) {
  RowArray work(n);
  copyRows(work.get(), v, n);
  const int m = TrimLoop0(eps, *closed, n, work.get());
  ScanState scan(eps, *closed, m, work.get());

  std::unique_ptr<RowArray> saved;
  double best = 1e100;
  int i = m >= 2 ? scan.next(0) : -1;
  int adjacentCutAt = -1;
  while (i != -1 && scan.hasSegment(i)) {
    double x, y;
    const int j = scan.firstCrossingBelow(i, &x, &y);
    // Once the loop between two segments that share a row is cut, they meet only at X. Where
    // round-off (coordinates far beyond 1/eps) still reports a second crossing, cutting again
    // changes nothing and would repeat forever: move on.
    if (j < 0 || (j == scan.prev(i) && adjacentCutAt == i)) {
      i = scan.next(i);
      continue;
    }
    adjacentCutAt = j == scan.prev(i) ? i : -1;
    const Segment segI = scan.segment(i);
    const Segment segJ = scan.segment(j);
    double headJ, tailJ, headI, tailI;
    splitBulges(eps, segJ, x, y, &headJ, &tailJ);
    splitBulges(eps, segI, x, y, &headI, &tailI);

    // The loop: X (tail piece of j, attributes of row j), rows j+1 .. i (row i with the head
    // piece of i).
    int count = 1;
    for (int id = scan.next(j);; id = scan.next(id)) {
      ++count;
      if (id == i)
        break;
    }
    auto loop = std::make_unique<RowArray>(count);
    double* head = (*loop)[0];
    head[0] = x;
    head[1] = y;
    head[2] = tailJ;
    head[3] = scan.row(j)[3];
    head[4] = scan.row(j)[4];
    int k = 1;
    for (int id = scan.next(j);; id = scan.next(id)) {
      std::memcpy((*loop)[k++], scan.row(id), sizeof(double[5]));
      if (id == i)
        break;
    }
    (*loop)[count - 1][2] = headI;

    double s = 0.0;
    if (PLineDist(eps, *closed, count, loop->get(), pick, &s)) {
      if (withinOpen(s, eps)) {
        // The picked point lies on this loop: it is the result.
        copyRows(v, loop->get(), count);
        *closed = 1;
        return count;
      }
      // An equal later loop does not replace the saved one.
      if (std::fabs(s) < best) {
        best = std::fabs(s);
        saved = std::move(loop);
      }
    }

    scan.cut(j, i, x, y, headJ, tailI);
    // Continue behind the cut: at X's segment, or past it when the cut was at segment 0.
    i = j >= 1 ? i : scan.next(i);
  }

  // The remaining polyline, in order.
  RowArray rest(m);
  int r = 0;
  if (m >= 1) {
    for (int id = 0; id != -1; id = scan.next(id))
      std::memcpy(rest[r++], scan.row(id), sizeof(double[5]));
  }
  if (saved) {
    double s = 0.0;
    const bool restWins = PLineDist(eps, *closed, r, rest.get(), pick, &s) && std::fabs(s) <= best;
    if (!restWins) {
      copyRows(v, saved->get(), saved->size());
      *closed = 1;
      return TrimLoop0(eps, 1, saved->size(), v);
    }
  }
  copyRows(v, rest.get(), r);
  return TrimLoop0(eps, *closed, r, v);
}

}  // namespace

// ---- Exported --------------------------------------------------------------------------------

int TrimLoop0(double eps, int closed, int n, double (*const v)[5]) {
  if (n < 2 || !v)
    return n < 0 ? 0 : n;
  // Squared distances are compared with eps itself, deliberately: rows within sqrt(eps) merge.
  int last = 0;
  for (int i = 1; i < n; ++i) {
    const double d2 = square(v[i][0] - v[last][0]) + square(v[i][1] - v[last][1]);
    if (d2 <= eps) {
      // A duplicate: the kept row takes over its bulge and attributes.
      v[last][2] = v[i][2];
      v[last][3] = v[i][3];
      v[last][4] = v[i][4];
    } else if (++last != i) {
      std::memcpy(v[last], v[i], sizeof(double[5]));
    }
  }
  int kept = last + 1;
  // The closing test keeps the row at equality, where the inner test merges.
  if (closed && kept >= 3 &&
      square(v[kept - 1][0] - v[0][0]) + square(v[kept - 1][1] - v[0][1]) < eps)
    --kept;
  return kept;
}

int TrimLoopS(double eps, double* const pick, int* closed, int n, double (*const v)[5]) {
  if (n <= 0)
    return 0;
  if (!pick || !closed || !v)
    return n;
  try {
    return trimLoops(eps, pick, closed, n, v);
  } catch (const std::bad_alloc&) {
    return n;
  }
}

int PLineDist(double eps, int closed, int n, double (*const v)[5], double* const p, double* dist) {
  if (n < 2 || !v || !p || !dist)
    return 0;
  if (n == 2 && !closed) {
    // A single segment.
    const Segment s = segmentOf(eps, v[0], v[1]);
    if (!withinOpen(s.bulge, eps) && !s.isArc)
      return 0;
    double d;
    if (!carrierDistance(eps, p, s, &d))
      return 0;
    *dist = d;
    return 1;
  }
  try {
    return plineDistRuns(eps, closed, n, v, p, dist, true);
  } catch (const std::bad_alloc&) {
    return plineDistRuns(eps, closed, n, v, p, dist, false);
  }
}

int VertexDist(double eps, double* const p, double x1, double y1, double bulge1, double x2,
               double y2, double bulge2, double x3, double y3, double* dist) {
  if (!p || !dist)
    return 0;
  const Segment s1 = segmentOf(eps, x1, y1, bulge1, x2, y2);
  const Segment s2 = segmentOf(eps, x2, y2, bulge2, x3, y3);
  const Candidates c = candidatesOf(eps, p, s1, s2);
  for (int m = 0; m < 3; ++m) {
    if (c.ok[m] && onMovedPiece(eps, p, s1, s2, c.d[m])) {
      *dist = c.d[m];
      return 1;
    }
  }
  return 0;
}

int IntersPLine(double eps, int k, double px, double py, int closed, int n, double (*const v)[5]) {
  if (!v || n < 2 || k < 0 || k >= n)
    return 0;
  const int segments = closed ? n : n - 1;
  for (int s = 0; s < segments; ++s) {
    if (touchesRow(s, k, n))
      continue;
    if (sightCrosses(eps, v[k][0], v[k][1], px, py, segmentOf(eps, v[s], v[(s + 1) % n])))
      return 1;
  }
  return 0;
}
