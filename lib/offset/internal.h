// Tarnsysm: planar computational geometry for 2D drafting.
// Internal helpers of the polyline offset: moving points of a segment sideways, moved radii,
// arc angles in the order of travel and whole-turn angle ranges. Not installed.
#pragma once

#include "arcs/arcs.h"
#include "offset/segment_index.h"
#include "primitives/internal.h"

#include <memory>

namespace tarnsysm::detail {

/// The circle of a bulge segment as PL_ArcParam gives it; ok is false for a degenerate segment
/// (a chord shorter than eps or a zero bulge), which callers treat as straight.
struct BulgeArc {
  double cx = 0.0;
  double cy = 0.0;
  double r = 0.0;
  double sa = 0.0;
  double ea = 0.0;
  bool ok = false;
};

inline BulgeArc arcOfBulge(double eps, double x1, double y1, double x2, double y2, double bulge) {
  BulgeArc arc;
  arc.ok = PL_ArcParam(eps, x1, y1, x2, y2, bulge, &arc.cx, &arc.cy, &arc.r, &arc.sa, &arc.ea) != 0;
  return arc;
}

/// v lies strictly between -eps and eps, or is exactly 0: the offset's tests against zero hold
/// for an exact 0 whatever eps is, so that eps = 0 asks for exact results rather than for none.
inline bool withinOpenOrZero(double v, double eps) {
  return v == 0.0 || withinOpen(v, eps);
}

/// A segment is straight when its bulge lies strictly between -eps and eps, and a bulge of
/// exactly 0 is straight whatever eps is (eps = 0 must not turn every line into an arc of no
/// angle).
inline bool isStraightBulge(double bulge, double eps) {
  return withinOpenOrZero(bulge, eps);
}

/// The sense of an arc segment as the offset sees it: +1 for bulge >= 0, -1 otherwise.
inline double bulgeSign(double bulge) {
  return bulge >= 0.0 ? 1.0 : -1.0;
}

/// Radius of an arc moved by d to the right of travel: a counter-clockwise arc (centre on the
/// left) grows, a clockwise one shrinks. The result may be zero or negative.
inline double movedRadius(double r, double bulge, double d) {
  return r + bulgeSign(bulge) * d;
}

/// Moves (px, py) by d along the right-hand normal of the straight segment (x1, y1)-(x2, y2):
/// the point plus (d/L)*(dy, -dx). The caller has rejected segments shorter than eps.
inline void moveAlongNormal(double d, double x1, double y1, double x2, double y2, double px,
                            double py, double* ox, double* oy) {
  const double dx = x2 - x1;
  const double dy = y2 - y1;
  const double k = d / std::sqrt(dx * dx + dy * dy);
  *ox = px + k * dy;
  *oy = py + k * -dx;
}

/// Moves (px, py), a point of the circle about (cx, cy) with radius r, onto the concentric
/// circle of radius rMoved: centre + (p - centre)*rMoved/r.
inline void moveRadially(double cx, double cy, double r, double rMoved, double px, double py,
                         double* ox, double* oy) {
  *ox = cx + (px - cx) * rMoved / r;
  *oy = cy + (py - cy) * rMoved / r;
}

/// The angles of a bulge arc (counter-clockwise sa to ea, as PL_ArcParam gives them) in the
/// order of travel: a clockwise arc runs from ea back to sa.
inline void arcAnglesInTravelOrder(double bulge, double sa, double ea, double* start, double* end) {
  if (bulge > 0.0) {
    *start = sa;
    *end = ea;
  } else {
    *start = ea;
    *end = sa;
  }
}

/// Where the angle lies on the sweep from start to end: 0 at start, 1 at end.
inline double sweepFraction(double angle, double start, double end) {
  return (angle - start) / (end - start);
}

/// Brings an angle into [lo - eps, hi + eps] by whole turns: 2 pi is added while it is below
/// lo - eps, then subtracted while it is above hi + eps.
inline void bringAngleIntoRange(double& angle, double lo, double hi, double eps) {
  addTurnsWhileBelow(angle, lo - eps);
  subtractTurnsWhileAbove(angle, hi + eps);
}

/// Shifts the range [lo, hi] by whole turns, both ends together, so that it reaches the angle
/// with eps slack: lowered while lo lies above angle + eps, then raised while hi lies below
/// angle - eps.
inline void shiftRangeToReach(double& lo, double& hi, double angle, double eps) {
  subtractTurnsWhileAbove(lo, angle + eps, &hi);
  addTurnsWhileBelow(hi, angle - eps, &lo);
}

}  // namespace tarnsysm::detail

// ---- Offset driver and loop trimming (driver.cpp, trim.cpp) -----------------------------------

namespace tarnsysm::detail {

/// The part of the signed `step` that segment i (row i to row i+1, or to row 0 for the closing
/// segment) can take before it shrinks to a point or, for an arc moving towards its centre,
/// before its radius reaches 0. A closed polyline of two rows with an arc is limited where its
/// two moved segments stop meeting (either segment). Returns step when nothing limits it, 0.0
/// for n < 2, and step for an open or straight n = 2 or an index without a segment. See
/// driver.cpp for the side signs.
double OffsetStepLimit(double eps, double step, int i, int closed, int n, double (*const v)[5]);

/// Writes the polyline moved by `step` into rows 0 .. of v and returns the new row count; reads
/// a copy of the n rows kept in rows n .. 2n-1 (v holds 2n rows). Returns 0 for n < 2.
int BuildOffsetPLine(double eps, double step, int closed, int n, double (*const v)[5]);

/// BuildOffsetPLine in an array of `capacity` rows: the copy of the n rows goes to the top,
/// rows capacity-n .. capacity-1, and the moved rows grow from row 0. Returns -1, with the rows
/// in an unspecified state, when the moved rows would reach a copied row that is still to be
/// read or run past the capacity.
int buildOffsetPLineWithin(double eps, double step, int closed, int n, double (*const v)[5],
                           long long capacity);

/// buildOffsetPLineWithin with the arcs of the n source rows' segments worked out already:
/// arcs[s] is arcOfBulge of segment s (row s to the next row) wherever its bulge lies outside
/// (-eps, eps). Null: each arc is worked out where needed. The results are the same either way.
int buildOffsetPLineWithin(double eps, double step, int closed, int n, double (*const v)[5],
                           long long capacity, const BulgeArc* arcs);

/// What trimLoopsAndMeasure learnt of PLineDist(eps, *closed, result rows, pick) on the way:
/// when `known`, `ok` and `dist` are what that call would return and write (dist is only
/// guaranteed to lie within eps of 0 when the picked point lies on the result).
struct TrimMeasure {
  bool known = false;
  bool ok = false;
  double dist = 0.0;
};

/// TrimLoopS (pick, closed and v must be valid) that also reports the picked point's distance
/// from the result when it was measured on the way.
int trimLoopsAndMeasure(double eps, double* const pick, int* closed, int n, double (*const v)[5],
                        TrimMeasure* measure);

/// TrimLoopS for the rows of one offset step: a closed loop (a loop cut out, or what remains of
/// a closed polyline) whose signed area has the opposite sign of `sourceArea`, the area of the
/// polyline the step started from, is never kept; when nothing else is left it returns 0. A
/// sourceArea of 0 keeps every loop, as TrimLoopS does.
int trimStepLoops(double eps, double* const pick, int* closed, int n, double (*const v)[5],
                  double sourceArea);

/// Signed area enclosed by rows 0 .. n-1 taken as closed, positive when clockwise: the sum of
/// LineArea over every segment, the closing one included, so a closed pair of rows counts too.
double closedArea(double eps, int n, const double (*v)[5]);

/// PLineOffset, with its last check (keepsOffsetDistance) or, for measuring what that check
/// costs, without it.
int offsetPLine(double eps, int* closed, int n, double (*const v)[5], int through,
                double* const pick, double dist, bool finalCheck);

/// The last check of PLineOffset: whether the polyline v (n rows) keeps the offset distance from
/// the polyline it was made from (ns rows of source): no point of it nearer the source than
/// |distance| - eps, some point within |distance| + eps, and, both being closed, enclosing an
/// area of the same sign. sourceArea is the source's closedArea where the caller has it, else
/// NaN. False for fewer than 2 rows in either. Throws std::bad_alloc.
bool keepsOffsetDistance(double eps, int sourceClosed, int ns, const double (*source)[5],
                         double sourceArea, int closed, int n, const double (*v)[5],
                         double distance);

}  // namespace tarnsysm::detail

// ---- Corner joins with the arcs already worked out (joins.cpp) ---------------------------------

namespace tarnsysm::detail {

// The exported joins work out each arc with PL_ArcParam and then call these. A caller that has
// the arcs already (the builder meets every arc at both of its corners) passes them in and gets
// the same results, bit for bit. Each arc must be arcOfBulge(eps, ...) of its own segment, and
// the bulges must lie outside (-eps, eps) (the exported functions pass those on to LLOffset).

/// LAOffset; `arc` is arcOfBulge(eps, x2, y2, x3, y3, bulge).
int laOffsetWithArc(double eps, double d, double x1, double y1, double x2, double y2, double x3,
                    double y3, double bulge, const BulgeArc& arc, double* ox, double* oy,
                    double* t1, double* t2);

/// ALOffset; `arc` is arcOfBulge(eps, x1, y1, x2, y2, bulge).
int alOffsetWithArc(double eps, double d, double x1, double y1, double x2, double y2, double x3,
                    double y3, double bulge, const BulgeArc& arc, double* ox, double* oy,
                    double* t1, double* t2);

/// AAOffset at the vertex (x2, y2); arc1 and arc2 are the arcs of the incoming and outgoing
/// segments.
int aaOffsetWithArcs(double eps, double d, double x2, double y2, double bulge1, double bulge2,
                     BulgeArc arc1, BulgeArc arc2, double* ox, double* oy, double* t1, double* t2);

/// GetOffsetP; `arc` is arcOfBulge(eps, x1, y1, x2, y2, bulge) (read only for a bulge outside
/// (-eps, eps) and a chord of eps or more).
int offsetPointWithArc(double eps, double d, double t, double x1, double y1, double x2, double y2,
                       double bulge, const BulgeArc& arc, double* ox, double* oy);

}  // namespace tarnsysm::detail

// ---- Segments of the loop scan and the distances (trim_segments.cpp) ---------------------------

namespace tarnsysm::detail {

// A segment from one row to the next, with its circle when it is an arc (a bulge outside
// (-eps, eps) that PL_ArcParam accepts; any other segment is straight).
struct Segment {
  double x1, y1, x2, y2, bulge;
  bool isArc;
  double cx, cy, r, sa, ea;
};

Segment segmentOf(double eps, double x1, double y1, double bulge, double x2, double y2);

Segment segmentOf(double eps, const double* from, const double* to);

// A segment's shape worked out without trigonometry, from its chord and bulge: enough to bound
// it and to rule a pair out, never to decide a crossing. An arc's centre lies off the chord's
// midpoint by (L/2)(1 - b^2)/(2b) along the chord's left normal, its radius is L(1 + b^2)/(4|b|),
// and it lies wholly on one side of its chord (the right for a positive bulge). Near the limits
// where PL_ArcParam gives up (a chord of eps, |sin(angle/2)| = 2|b|/(1 + b^2) of eps) the kind is
// left unsure and PL_ArcParam decides.
struct RoughSegment {
  enum Kind { straight, arc, unsure };
  double x1, y1, x2, y2, bulge;
  Kind kind;
  double cx, cy, r;
  double chord;
};

RoughSegment roughOf(double eps, const double* from, const double* to);

// Side of (x, y) from the segment's chord line, positive on the side an arc with this bulge lies
// on (the right of travel for a positive bulge), as a distance times the chord's length.
double sideOfChordScaled(const RoughSegment& s, double x, double y);

// A box holding the rough segment and everything its intersection tests can accept: the ends,
// the arc's extreme points that lie on its side of the chord, and margins for eps (as a length,
// and as a parameter and an angle: eps L, eps R) and for round-off.
SegmentBox roughBoxOf(double eps, const RoughSegment& s);

// roughBoxOf with what the segment tree can use beyond the box: a straight segment's ends and
// margin (the segment grown by a square of that half-width lies in the box), an arc's circle and
// how far PL_ArcParam's may lie from it.
SegmentShape roughShapeOf(double eps, const RoughSegment& s);

// A query for the segments that may cross s, leaving out those that certainly cannot (parallel
// straight segments, straight segments no longer than eps against an arc, concentric arcs).
SegmentProbe crossingProbe(double eps, const SegmentShape& s);

// Angle of (x, y) seen from an arc's centre, brought into the arc's range with tolerance eps;
// a point outside it takes the turn centred on the arc (never one a whole turn away).
double angleOnArc(double eps, const Segment& s, double x, double y);

// Parameter of X along a segment: the projection for a line, the sweep fraction from the
// arc's start in its direction of travel for an arc.
double parameterAlong(double eps, const Segment& s, double x, double y);

// Bulges of the two pieces of a segment cut at X: head from its start to X, tail from X to its
// end, each sign(bulge)*tan(sweep/4) of its own sweep; 0 for a straight segment.
void splitBulges(double eps, const Segment& s, double x, double y, double* head, double* tail);

// Does the straight segment from (kx, ky) to (px, py) cross segment s?
bool sightCrosses(double eps, double kx, double ky, double px, double py, const Segment& s);

// Segment s touches row k: it starts or ends there (the closing segment ends at row 0).
bool touchesRow(int s, int k, int n);

// The circles of a polyline's arc segments, each worked out once (PL_ArcParam is the costly part
// of a segment); ends and bulge are read from the rows each time.
class SegmentCache {
 public:
  explicit SegmentCache(int n)
      : arcs_(new Arc[n > 0 ? n : 1]), state_(new unsigned char[n > 0 ? n : 1]()) {}

  Segment get(double eps, int id, const double* from, const double* to) {
    Segment s{from[0], from[1], to[0], to[1], from[2], false, 0.0, 0.0, 0.0, 0.0, 0.0};
    unsigned char& state = state_[id];
    if (state == kUnknown) {
      Arc& a = arcs_[id];
      state = !isStraightBulge(s.bulge, eps) && PL_ArcParam(eps, s.x1, s.y1, s.x2, s.y2, s.bulge,
                                                            &a.cx, &a.cy, &a.r, &a.sa, &a.ea)
                  ? kArc
                  : kStraight;
    }
    if (state == kArc) {
      const Arc& a = arcs_[id];
      s.isArc = true;
      s.cx = a.cx;
      s.cy = a.cy;
      s.r = a.r;
      s.sa = a.sa;
      s.ea = a.ea;
    }
    return s;
  }

  // The rows of segment id changed.
  void forget(int id) { state_[id] = kUnknown; }

  bool known(int id) const { return state_[id] != kUnknown; }

  // Takes segment id as worked out from the same rows elsewhere.
  void adopt(int id, const Segment& s) {
    state_[id] = s.isArc ? kArc : kStraight;
    arcs_[id] = {s.cx, s.cy, s.r, s.sa, s.ea};
  }

 private:
  struct Arc {
    double cx, cy, r, sa, ea;
  };
  static constexpr unsigned char kUnknown = 0, kStraight = 1, kArc = 2;
  std::unique_ptr<Arc[]> arcs_;
  std::unique_ptr<unsigned char[]> state_;
};

}  // namespace tarnsysm::detail

// ---- Distances of the loop scan (distance.cpp) -------------------------------------------------

namespace tarnsysm::detail {

class DistanceRuns;

/// A polyline's PLineDist from a point, worked out only as far as the comparisons of the loop
/// scan need it: whether it is below some bound, and its value only when asked.
class LazyDistance {
 public:
  LazyDistance(double eps, int closed, int n, double (*const v)[5], double* const p);
  ~LazyDistance();

  /// Takes segment s as already worked out from the same rows elsewhere.
  void adopt(int s, const Segment& segment);

  /// PLineDist succeeds with |s| < bound.
  bool below(double bound);

  /// s itself, for a distance known to succeed.
  double value();

  /// |s|, for a distance known to succeed.
  double magnitude();

 private:
  bool single_ = false;
  bool singleOk_ = false;
  bool known_ = false;
  bool ok_ = false;
  double value_ = 0.0;
  int count_ = 0;
  std::unique_ptr<DistanceRuns> runs_;
};

}  // namespace tarnsysm::detail
