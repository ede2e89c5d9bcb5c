// Tarnsysm: planar computational geometry for 2D drafting.
// Distances: the signed distance of a point from a polyline (PLineDist), from a two-segment piece
// (VertexDist), and the visibility test behind them (IntersPLine).
//
// PLineDist answers with the eligible run of smallest (|d|, run index), which does not depend on
// the order the runs are tried in: they are tried nearest the point first, and a run that cannot
// beat the best so far is passed over before its piece is built. The visibility tests use a box
// tree over the segments (segment_index.h) once a few have been walked. The loop scan measures
// each loop only as far as its comparisons need (LazyDistance: is it nearer than eps, than the
// saved loop, than the rest).
//
// A straight segment and an arc cross only at a point that DArcLInts puts on the arc and its flag
// puts within the sight segment: points on the infinite line would make every pick inside a
// circle of four arcs invisible.
#include "offset/offset.h"

#include "intersect/intersect.h"
#include "offset/internal.h"
#include "offset/segment_index.h"
#include "primitives/internal.h"

#include <cmath>
#include <limits>
#include <memory>
#include <new>

using namespace tarnsysm::detail;

namespace {

// Signed distance from p to the carrier of a segment: the perpendicular distance for a line
// (positive on the right of travel), (|p - C| - R)*sign(bulge) for an arc. False for a straight
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

// The segment's circle as arcOfBulge gives it for the segment's own rows: a segment is an arc
// exactly when its bulge lies outside (-eps, eps) and PL_ArcParam accepts it, and then it holds
// PL_ArcParam's results.
BulgeArc arcOf(const Segment& s) {
  BulgeArc arc;
  if (s.isArc)
    arc = {s.cx, s.cy, s.r, s.sa, s.ea, true};
  return arc;
}

// Does p lie on the three-row open piece s1, s2 moved by d? (s1 ends where s2 starts.)
bool onMovedPiece(double eps, double* p, const Segment& s1, const Segment& s2, double d) {
  double rows[6][5] = {{s1.x1, s1.y1, s1.bulge, 0.0, 0.0},
                       {s2.x1, s2.y1, s2.bulge, 0.0, 0.0},
                       {s2.x2, s2.y2, 0.0, 0.0, 0.0}};
  // BuildOffsetPLine, with the arcs the segments carry already.
  const BulgeArc arcs[3] = {arcOf(s1), arcOf(s2), BulgeArc()};
  const int k = buildOffsetPLineWithin(eps, d, 0, 3, rows, 6, arcs);
  return k >= 2 && PointsOnPLine(eps, p, 0, k, rows) == 1;
}

// The corner of the piece moved by d as the raw builder joins it.
struct PieceJoin {
  int code;
  double x, y, t1, t2;
};

PieceJoin joinOfPiece(double eps, const Segment& s1, const Segment& s2, double d) {
  PieceJoin j{0, 0.0, 0.0, 1.0, 0.0};
  const bool inArc = !isStraightBulge(s1.bulge, eps);
  const bool outArc = !isStraightBulge(s2.bulge, eps);
  // AAOffset, ALOffset and LAOffset, with the arcs the segments carry already.
  if (inArc && outArc)
    j.code = aaOffsetWithArcs(eps, d, s1.x2, s1.y2, s1.bulge, s2.bulge, arcOf(s1), arcOf(s2), &j.x,
                              &j.y, &j.t1, &j.t2);
  else if (inArc)
    j.code = alOffsetWithArc(eps, d, s1.x1, s1.y1, s1.x2, s1.y2, s2.x2, s2.y2, s1.bulge, arcOf(s1),
                             &j.x, &j.y, &j.t1, &j.t2);
  else if (outArc)
    j.code = laOffsetWithArc(eps, d, s1.x1, s1.y1, s1.x2, s1.y2, s2.x2, s2.y2, s2.bulge, arcOf(s2),
                             &j.x, &j.y, &j.t1, &j.t2);
  else
    j.code = LLOffset(eps, d, s1.x1, s1.y1, s1.x2, s1.y2, s2.x2, s2.y2, &j.x, &j.y, &j.t1, &j.t2);
  return j;
}

// Is p certainly away from the part of segment s, moved by d, that runs from parameter tFrom to
// parameter tTo? `carrier` is p's signed distance from s's line or circle. False when unsure.
// The margins are far wider than round-off in the moved rows that PointsOnPLine tests: this
// only spares the full test where p is plainly elsewhere.
bool awayFromMovedPart(double eps, const double* p, const Segment& s, bool carrierOk,
                       double carrier, double d, double tFrom, double tTo, double tolLen) {
  if (!carrierOk || !std::isfinite(carrier))
    return false;
  // Not on the moved line or circle at all.
  if (std::fabs(carrier - d) > tolLen)
    return true;
  const double lo = std::fmin(tFrom, tTo);
  const double hi = std::fmax(tFrom, tTo);
  if (!s.isArc) {
    const double dx = s.x2 - s.x1;
    const double dy = s.y2 - s.y1;
    const double len2 = dx * dx + dy * dy;
    const double tp = ((p[0] - s.x1) * dx + (p[1] - s.y1) * dy) / len2;
    const double margin = eps * (1.0 + hi - lo) + 1e-6 + tolLen / std::sqrt(len2);
    return tp < lo - margin || tp > hi + margin;
  }
  const double rMoved = movedRadius(s.r, s.bulge, d);
  if (!(rMoved > 1e3 * tolLen))
    return false;
  double start, end;
  arcAnglesInTravelOrder(s.bulge, s.sa, s.ea, &start, &end);
  const double a0 = start + tFrom * (end - start);
  const double a1 = start + tTo * (end - start);
  const double half = std::fabs(a1 - a0) / 2.0;
  // A sweep near a whole turn is written as a chord; leave that to the full test.
  if (!(half < kPi - 1e-3))
    return false;
  const double mid = (a0 + a1) / 2.0;
  double alpha = portable::atan2(p[1] - s.cy, p[0] - s.cx);
  bringAngleIntoRange(alpha, mid - kPi, mid + kPi, 0.0);
  const double margin = eps + 1e-6 + tolLen / rMoved;
  return std::fabs(alpha - mid) > half + margin;
}

// True when p certainly does not lie on the three-row piece s1, s2 moved by d: the corner joins
// in one row (no half circle), and p is away from both moved segments, the first running from
// parameter 0 to the join, the second from the join to parameter 1.
bool pieceMissesPoint(double eps, const double* p, const Segment& s1, const Segment& s2,
                      const Candidates& c, double d) {
  const PieceJoin j = joinOfPiece(eps, s1, s2, d);
  if (j.code != 1 && j.code != 2)
    return false;
  const double scale = std::fmax(std::fmax(std::fabs(s1.x1), std::fabs(s1.y1)),
                                 std::fmax(std::fmax(std::fabs(s2.x1), std::fabs(s2.y1)),
                                           std::fmax(std::fabs(s2.x2), std::fabs(s2.y2)))) +
                       std::fabs(p[0]) + std::fabs(p[1]) + std::fabs(d) + s1.r + s2.r;
  const double tolLen = 4.0 * eps + 1e-9 * (1.0 + scale);
  if (!std::isfinite(tolLen))
    return false;
  return awayFromMovedPart(eps, p, s1, c.ok[0], c.d[0], d, 0.0, j.t1, tolLen) &&
         awayFromMovedPart(eps, p, s2, c.ok[1], c.d[1], d, j.t2, 1.0, tolLen);
}

// Does p lie on the piece moved by candidate m? A moved piece that plainly misses p is told
// without building it.
bool candidatePasses(double eps, double* p, const Segment& s1, const Segment& s2,
                     const Candidates& c, int m) {
  return c.ok[m] && !pieceMissesPoint(eps, p, s1, s2, c, c.d[m]) &&
         onMovedPiece(eps, p, s1, s2, c.d[m]);
}

// VertexDist's answer when it beats `bound` (|d| < bound, or |d| == bound when a tie wins);
// false when it does not. VertexDist answers with its first passing candidate, so the
// candidates that could beat are tried first, in order; only when one passes are the earlier
// ones that could not beat tried as well (if one of those passes, the answer cannot beat).
bool vertexDistBeating(double eps, double* p, const Segment& s1, const Segment& s2,
                       const Candidates& c, double bound, bool tieWins, double* dist) {
  bool beats[3];
  for (int m = 0; m < 3; ++m) {
    const double ad = std::fabs(c.d[m]);
    beats[m] = c.ok[m] && (ad < bound || (tieWins && ad == bound));
  }
  for (int m = 0; m < 3; ++m) {
    if (!beats[m] || !candidatePasses(eps, p, s1, s2, c, m))
      continue;
    for (int earlier = 0; earlier < m; ++earlier) {
      if (!beats[earlier] && candidatePasses(eps, p, s1, s2, c, earlier))
        return false;
    }
    *dist = c.d[m];
    return true;
  }
  return false;
}

}  // namespace

namespace tarnsysm::detail {

// Segments of a polyline for the distance scan: computed once each, and a box tree for the
// visibility tests built at the first test.
class PolylineSegments {
 public:
  PolylineSegments(double eps, int closed, int n, double (*const v)[5])
      : eps_(eps), closed_(closed), n_(n), v_(v), cache_(n) {}

  Segment segment(int s) { return cache_.get(eps_, s, v_[s], v_[(s + 1) % n_]); }

  // Takes segment s as already worked out from the same rows elsewhere.
  void adopt(int s, const Segment& segment) { cache_.adopt(s, segment); }

  // IntersPLine(eps, k, px, py, closed, n, v): the first few by walking the segments, passing
  // over those whose rough box the sight segment misses; later ones through a tree of the boxes.
  bool sightBlocked(int k, double px, double py) {
    const double kx = v_[k][0];
    const double ky = v_[k][1];
    const double len = std::sqrt(square(px - kx) + square(py - ky));
    const double size =
        std::fmax(std::fmax(std::fabs(kx), std::fabs(ky)), std::fmax(std::fabs(px), std::fabs(py)));
    const double pad = 8.0 * std::fabs(eps_) * (1.0 + len) + 1e-12 * (1.0 + size + len);
    if (!std::isfinite(pad))
      return plainSightBlocked(k, px, py);
    const auto crosses = [&](int s) {
      return !touchesRow(s, k, n_) && sightCrosses(eps_, kx, ky, px, py, segment(s));
    };
    if (++queries_ <= kWalkedQueries) {
      const SightSegment sight(kx, ky, px, py, pad);
      const int segments = closed_ ? n_ : n_ - 1;
      for (int s = 0; s < segments; ++s) {
        if (sight.mayMeet(roughBox(s)) && crosses(s))
          return true;
      }
      return false;
    }
    if (!indexed_)
      buildIndex();
    const SegmentBox box{std::fmin(kx, px) - pad, std::fmin(ky, py) - pad, std::fmax(kx, px) + pad,
                         std::fmax(ky, py) + pad};
    const bool blocked =
        index_.visitAll(crossingProbe(eps_, SegmentShape::line(box, kx, ky, px, py, pad)), crosses);
    index_.summariseWhenCrowded([&](int s) { return shapeOf(s); });
    return blocked;
  }

 private:
  // Sight tests walked before the tree is worth building.
  static constexpr int kWalkedQueries = 2;

  // A box that holds segment s and every point its intersection tests can accept, from its rows
  // alone.
  SegmentShape roughShape(int s) const {
    return roughShapeOf(eps_, roughOf(eps_, v_[s], v_[(s + 1) % n_]));
  }
  SegmentBox roughBox(int s) const { return roughShape(s).box; }
  SegmentShape shapeOf(int s) const {
    return s < (closed_ ? n_ : n_ - 1) ? roughShape(s) : SegmentShape::empty();
  }

  void buildIndex() {
    index_.build(n_, [&](int s) { return shapeOf(s); });
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
  SegmentCache cache_;
  SegmentIndex index_;
  bool indexed_ = false;
  int queries_ = 0;
};

// The runs of PLineDist (three consecutive rows, each asked for VertexDist and checked for the
// sight of its middle row) over one polyline and one point. PLineDist answers with the eligible
// run (VertexDist succeeds, the middle row is visible) of smallest (|d|, run index): the run it
// keeps when it walks them in order, taking only strictly smaller distances. That answer does
// not depend on the order the runs are tried in, so they are tried nearest first and any run
// that cannot beat the best so far is passed over cheaply.
class DistanceRuns {
 public:
  DistanceRuns(double eps, int closed, int n, double (*const v)[5], double* const p)
      : eps_(eps), n_(n), v_(v), p_(p), segments_(eps, closed, n, v), runs_(closed ? n : n - 2) {
    // The run whose middle row lies nearest the point comes first, with its neighbours.
    double nearest = std::numeric_limits<double>::infinity();
    for (int i = 0; i < runs_; ++i) {
      const double* m = v[(i + 1) % n];
      const double d2 = square(m[0] - p[0]) + square(m[1] - p[1]);
      if (d2 < nearest) {
        nearest = d2;
        seed_ = i;
      }
    }
  }

  PolylineSegments& segments() { return segments_; }

  // The eligible run of smallest (|d|, run) that beats (bound, boundRun), or with firstOnly any
  // eligible run that beats it. False when there is none.
  bool smallest(double bound, int boundRun, bool firstOnly, double* dist, int* run) {
    double best = bound;
    int bestRun = boundRun;
    bool found = false;
    const int window = runs_ < 2 * kSeedWindow + 1 ? runs_ : 2 * kSeedWindow + 1;
    const int first = runs_ <= window ? 0 : (seed_ - kSeedWindow + runs_) % runs_;
    // The window round the seed, then every other run.
    for (int k = 0; k < runs_; ++k) {
      const int i = k < window ? (first + k) % runs_ : nthOutsideWindow(first, window, k - window);
      double d;
      if (tryRun(i, best, bestRun, &d)) {
        best = std::fabs(d);
        bestRun = i;
        *dist = d;
        *run = i;
        found = true;
        if (firstOnly)
          return true;
      }
    }
    return found;
  }

 private:
  static constexpr int kSeedWindow = 4;

  // The k-th run (0-based) after the window of `window` runs starting at `first`, wrapping.
  int nthOutsideWindow(int first, int window, int k) const { return (first + window + k) % runs_; }

  // Can run i beat (best, bestRun) at all? Its candidates from the rough shapes, each within a
  // margin of the exact one, say no when every one of them is plainly too far.
  bool mightBeat(int i, double best, bool tieWins) const {
    const int b = (i + 1) % n_;
    const int c = (i + 2) % n_;
    const double* rows[3] = {v_[i], v_[b], v_[c]};
    const double vertex = std::sqrt(square(p_[0] - rows[1][0]) + square(p_[1] - rows[1][1]));
    if (vertex < best || (tieWins && vertex == best))
      return true;
    for (int k = 0; k < 2; ++k) {
      const RoughSegment r = roughOf(eps_, rows[k], rows[k + 1]);
      double low;
      if (r.kind == RoughSegment::straight) {
        // Straight: the same arithmetic as the exact distance.
        if (!(r.chord >= eps_))
          continue;
        low =
            std::fabs(((p_[0] - r.x1) * (r.y2 - r.y1) - (p_[1] - r.y1) * (r.x2 - r.x1)) / r.chord);
      } else if (r.kind == RoughSegment::arc) {
        const double slack = 1e-9 * (1.0 + r.r + std::fabs(p_[0]) + std::fabs(p_[1]) +
                                     std::fabs(r.cx) + std::fabs(r.cy));
        low = std::fabs(std::sqrt(square(p_[0] - r.cx) + square(p_[1] - r.cy)) - r.r) - slack;
      } else {
        return true;
      }
      if (!(low >= best) || (tieWins && low <= best))
        return true;
    }
    return false;
  }

  // Does run i beat (best, bestRun)? Its distance goes to *d.
  bool tryRun(int i, double best, int bestRun, double* d) {
    if (!mightBeat(i, best, i < bestRun))
      return false;
    const int b = (i + 1) % n_;
    const Segment s1 = segments_.segment(i);
    const Segment s2 = segments_.segment(b);
    const Candidates cand = candidatesOf(eps_, p_, s1, s2);
    // Equal distances go to the earlier run.
    const bool tieWins = i < bestRun;
    if (!vertexDistBeating(eps_, p_, s1, s2, cand, best, tieWins, d))
      return false;
    const double ad = std::fabs(*d);
    if (!(ad < best || (tieWins && ad == best)))
      return false;
    return !segments_.sightBlocked(b, p_[0], p_[1]);
  }

  double eps_;
  int n_;
  double (*v_)[5];
  double* p_;
  PolylineSegments segments_;
  int runs_;
  int seed_ = 0;
};

}  // namespace tarnsysm::detail

namespace {

// PLineDist for n >= 2, other than a single open segment, without allocating: every run in
// order, as the definition reads.
int plineDistPlain(double eps, int closed, int n, double (*const v)[5], double* const p,
                   double* dist) {
  const int runs = closed ? n : n - 2;
  double best = std::numeric_limits<double>::infinity();
  double result = 0.0;
  bool found = false;
  for (int i = 0; i < runs; ++i) {
    const int a = i;
    const int b = (i + 1) % n;
    const int c = (i + 2) % n;
    double d = 0.0;
    if (!VertexDist(eps, p, v[a][0], v[a][1], v[a][2], v[b][0], v[b][1], v[b][2], v[c][0], v[c][1],
                    &d) ||
        !(std::fabs(d) < best))
      continue;
    if (IntersPLine(eps, b, p[0], p[1], closed, n, v))
      continue;
    best = std::fabs(d);
    result = d;
    found = true;
  }
  if (!found)
    return 0;
  *dist = result;
  return 1;
}

// PLineDist of a single open segment: the perpendicular distance of a line, the radial distance
// of an arc; false for a line shorter than eps or an arc PL_ArcParam rejects.
bool singleSegmentDistance(double eps, double (*const v)[5], const double* p, double* d) {
  const Segment s = segmentOf(eps, v[0], v[1]);
  if (!isStraightBulge(s.bulge, eps) && !s.isArc)
    return false;
  return carrierDistance(eps, p, s, d);
}

}  // namespace

namespace tarnsysm::detail {

LazyDistance::LazyDistance(double eps, int closed, int n, double (*const v)[5], double* const p) {
  if (n < 2)
    return;
  if (n == 2 && !closed) {
    single_ = true;
    singleOk_ = singleSegmentDistance(eps, v, p, &value_);
    return;
  }
  runs_ = std::make_unique<DistanceRuns>(eps, closed, n, v, p);
  count_ = n;
}

LazyDistance::~LazyDistance() = default;

void LazyDistance::adopt(int s, const Segment& segment) {
  if (runs_)
    runs_->segments().adopt(s, segment);
}

bool LazyDistance::below(double bound) {
  if (single_)
    return singleOk_ && std::fabs(value_) < bound;
  if (!runs_)
    return false;
  if (known_)
    return ok_ && std::fabs(value_) < bound;
  double d;
  int run;
  return runs_->smallest(bound, -1, true, &d, &run);
}

double LazyDistance::value() {
  magnitude();
  return value_;
}

double LazyDistance::magnitude() {
  if (!single_ && !known_ && runs_) {
    int run;
    ok_ = runs_->smallest(std::numeric_limits<double>::infinity(), count_, false, &value_, &run);
    known_ = true;
  }
  return std::fabs(value_);
}

}  // namespace tarnsysm::detail

// ---- Exported --------------------------------------------------------------------------------

int PLineDist(double eps, int closed, int n, double (*const v)[5], double* const p, double* dist) {
  if (n < 2 || !v || !p || !dist)
    return 0;
  if (n == 2 && !closed) {
    double d;
    if (!singleSegmentDistance(eps, v, p, &d))
      return 0;
    *dist = d;
    return 1;
  }
  try {
    DistanceRuns runs(eps, closed, n, v, p);
    double d;
    int run;
    if (!runs.smallest(std::numeric_limits<double>::infinity(), n, false, &d, &run))
      return 0;
    *dist = d;
    return 1;
  } catch (const std::bad_alloc&) {
    return plineDistPlain(eps, closed, n, v, p, dist);
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
