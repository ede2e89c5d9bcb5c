// Tarnsysm: planar computational geometry for 2D drafting.
// Loop trimming and distances: duplicate rows, self-intersection loops, the signed distance of a
// point from a polyline and the visibility test behind it.
//
// The loop scan tests every segment against the earlier ones, nearest first (i-1 down to 0), and
// cuts at the first that crosses it. It keeps exactly that order and those results, but asks a
// box tree over the segments (segment_index.h) for the earlier segments that can cross at all,
// so a polyline with few crossings costs O(n log n) instead of O(n^2). Segments keep stable ids
// (their row at the start of the scan); a cut removes the ids inside the loop and the row X takes
// the id of row i, so id order stays position order and stored boxes only ever grow too large,
// never too small. The boxes come from each segment's chord and bulge (an arc's extreme points on
// its side of the chord) rather than from PL_ArcParam and get_arc_box: the same box without
// trigonometry, so PL_ArcParam runs only for pairs the boxes and a quick look at a shared row
// cannot rule out. The visibility tests of PLineDist use the same kind of tree.
//
// PLineDist answers with the eligible run of smallest (|d|, run index), which does not depend on
// the order the runs are tried in: they are tried nearest the point first, and a run that cannot
// beat the best so far is passed over before its piece is built. The scan measures each loop only
// as far as its comparisons need (is it nearer than eps, than the saved loop, than the rest).
//
// Choices made here:
//  - A straight segment and an arc cross only at a point that DArcLInts puts on the arc and its
//    flag puts within the straight segment (for IntersPLine: within the sight segment). Points
//    on the infinite line would make every pick inside a circle of four arcs invisible.
//  - Of a pair, the earlier segment j is passed first to D2LInts and D2ArcInts, the straight one
//    first to DArcLInts.
//  - The closing segment of a closed polyline and segment 0 share row 0 and are neighbours like
//    segments i - 1 and i: they form a loop only where they meet a second time, and of their two
//    points the one farther from row 0 along segment 0 is cut. A simple closed polygon comes
//    back as itself.
//  - Cutting a loop: the row X that replaces row j+1 carries the tail piece of segment i and the
//    attributes (fields 3 and 4) of row i; row j keeps its attributes and the head piece of
//    segment j. In the loop, X carries the tail piece of segment j and the attributes of row j.
//  - Trimming an offset step (trimStepLoops) never keeps a closed loop that runs the other way
//    round from the polyline the step started from: such a loop is a piece of the offset turned
//    inside out (caps about far points, corners that reached across the region), not a part of
//    the offset, however near the picked point it lies.
//  - A loop is measured with the polyline's own closed flag, as the scan is defined; an open
//    polyline's loop is measured without its closing segment.
//  - Once two neighbouring segments have been cut at their second crossing, a second report of
//    one (round-off far from the origin) moves the scan on instead of cutting forever.
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
  double x1, y1, x2, y2, bulge;
  bool isArc;
  double cx, cy, r, sa, ea;
};

Segment segmentOf(double eps, double x1, double y1, double bulge, double x2, double y2) {
  Segment s{x1, y1, x2, y2, bulge, false, 0.0, 0.0, 0.0, 0.0, 0.0};
  if (!withinOpen(bulge, eps))
    s.isArc = PL_ArcParam(eps, x1, y1, x2, y2, bulge, &s.cx, &s.cy, &s.r, &s.sa, &s.ea) != 0;
  return s;
}

Segment segmentOf(double eps, const double* from, const double* to) {
  return segmentOf(eps, from[0], from[1], from[2], to[0], to[1]);
}

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

RoughSegment roughOf(double eps, const double* from, const double* to) {
  RoughSegment s{from[0], from[1], to[0], to[1], from[2], RoughSegment::straight,
                 0.0,     0.0,     0.0,   0.0};
  const double dx = s.x2 - s.x1;
  const double dy = s.y2 - s.y1;
  s.chord = std::sqrt(dx * dx + dy * dy);
  if (withinOpen(s.bulge, eps))
    return s;
  const double b = s.bulge;
  const double ae = std::fabs(eps);
  // |sin(angle/2)| = 2|b| / (1 + b^2), compared without dividing.
  const double twiceB = 2.0 * std::fabs(b);
  const double onePlus = 1.0 + b * b;
  const bool chordNearEps = s.chord >= 0.5 * ae && s.chord <= 2.0 * ae;
  const bool sineNearEps = twiceB >= 0.5 * ae * onePlus && twiceB <= 2.0 * ae * onePlus;
  if (!std::isfinite(s.chord) || !std::isfinite(onePlus) || chordNearEps || sineNearEps) {
    s.kind = RoughSegment::unsure;
    return s;
  }
  if (s.chord < eps || twiceB < eps * onePlus)
    return s;  // PL_ArcParam gives up: straight
  s.kind = RoughSegment::arc;
  const double quarter = 1.0 / (4.0 * b);
  const double k = (1.0 - b * b) * quarter;  // (1/2)(1 - b^2)/(2b), per unit of chord
  s.cx = (s.x1 + s.x2) / 2.0 - dy * k;
  s.cy = (s.y1 + s.y2) / 2.0 + dx * k;
  s.r = s.chord * onePlus * std::fabs(quarter);
  return s;
}

// Side of (x, y) from the segment's chord line, positive on the side an arc with this bulge lies
// on (the right of travel for a positive bulge), as a distance times the chord's length.
double sideOfChordScaled(const RoughSegment& s, double x, double y) {
  const double cross = (s.x2 - s.x1) * (y - s.y1) - (s.y2 - s.y1) * (x - s.x1);
  return s.bulge > 0.0 ? -cross : cross;
}

// A box holding the rough segment and everything its intersection tests can accept: the ends,
// the arc's extreme points that lie on its side of the chord, and margins for eps (as a length,
// and as a parameter and an angle: eps L, eps R) and for round-off.
SegmentBox roughBoxOf(double eps, const RoughSegment& s) {
  SegmentBox box{std::min(s.x1, s.x2), std::min(s.y1, s.y2), std::max(s.x1, s.x2),
                 std::max(s.y1, s.y2)};
  const double size = std::max(std::max(-box.xmin, box.xmax), std::max(-box.ymin, box.ymax));
  double radius = 0.0;
  if (s.kind == RoughSegment::arc) {
    radius = s.r;
    const double slack = 1e-9 * (1.0 + std::fabs(size) + s.r);
    const double ex[4][2] = {
        {s.cx + s.r, s.cy}, {s.cx - s.r, s.cy}, {s.cx, s.cy + s.r}, {s.cx, s.cy - s.r}};
    for (const auto& e : ex) {
      if (sideOfChordScaled(s, e[0], e[1]) >= -slack * s.chord) {
        box.xmin = std::min(box.xmin, e[0]);
        box.ymin = std::min(box.ymin, e[1]);
        box.xmax = std::max(box.xmax, e[0]);
        box.ymax = std::max(box.ymax, e[1]);
      }
    }
  } else if (s.kind == RoughSegment::unsure) {
    radius = s.chord * (std::fabs(s.bulge) + 0.5);  // no centre: the arc lies within L|b|
  }
  const double pad = 8.0 * std::fabs(eps) * (1.0 + s.chord + radius) +
                     1e-9 * (1.0 + std::fabs(size) + s.chord + radius) +
                     (s.kind == RoughSegment::unsure ? radius : 0.0);
  box.xmin -= pad;
  box.ymin -= pad;
  box.xmax += pad;
  box.ymax += pad;
  if (!(box.xmax - box.xmin < std::numeric_limits<double>::infinity()) ||
      !(box.ymax - box.ymin < std::numeric_limits<double>::infinity()))
    return SegmentBox::empty();
  return box;
}

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
      state = !withinOpen(s.bulge, eps) && PL_ArcParam(eps, s.x1, s.y1, s.x2, s.y2, s.bulge, &a.cx,
                                                       &a.cy, &a.r, &a.sa, &a.ea)
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
// end, each sign(bulge)*tan(sweep/4) of its own sweep; 0 for a straight segment.
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

// A line and an arc that share a row always meet there; a loop needs their second point, the
// other place where the line's carrier crosses the circle, to lie within the line and on the
// arc. True when it plainly does not (with margins far wider than the round-off between this
// and DArcLInts' own arithmetic), so DArcLInts need not be asked.
bool secondCrossingMisses(double eps, const RoughSegment& line, const RoughSegment& arc) {
  if (line.kind != RoughSegment::straight || arc.kind != RoughSegment::arc)
    return false;
  const double len = line.chord;
  if (!(len > 0.0))
    return false;
  const double ux = (line.x2 - line.x1) / len;
  const double uy = (line.y2 - line.y1) / len;
  // Along the line from its start: the foot of the centre at p0, the crossings at p0 -+ h.
  const double p0 = (arc.cx - line.x1) * ux + (arc.cy - line.y1) * uy;
  const double fx = line.x1 + p0 * ux - arc.cx;
  const double fy = line.y1 + p0 * uy - arc.cy;
  const double h2 = arc.r * arc.r - (fx * fx + fy * fy);
  if (!(h2 > 0.0))
    return false;
  const double h = std::sqrt(h2);
  // The shared row is the line's end when the arc follows it, its start otherwise.
  const bool sharedAtEnd = line.x2 == arc.x1 && line.y2 == arc.y1;
  const double shared = sharedAtEnd ? len : 0.0;
  const double p = std::fabs(p0 - h - shared) > std::fabs(p0 + h - shared) ? p0 - h : p0 + h;
  const double scale = len + arc.r + std::fabs(line.x1) + std::fabs(line.y1);
  const double margin = 4.0 * std::fabs(eps) * (1.0 + arc.r) + 1e-9 * scale;
  if (p < -eps - margin || p > len + eps + margin)
    return true;
  // On the arc: the arc lies on its own side of its chord; DArcLInts' angular tolerance reaches
  // eps R past the arc's ends.
  return sideOfChordScaled(arc, line.x1 + p * ux, line.y1 + p * uy) < -margin * arc.chord;
}

// How segment j (earlier) meets segment i (later) in the loop scan: apart, or sharing a row,
// either the start of i (j = i - 1) or, for the closing segment i and segment 0, row 0.
enum class Neighbours { none, previous, closing };

// Where segment i (later) crosses segment j (earlier) in the loop scan, if it does.
bool loopCrossing(double eps, const Segment& si, const Segment& sj, Neighbours neighbours,
                  double* x, double* y) {
  const bool adjacent = neighbours != Neighbours::none;
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
    // the shared row is taken, the first on a tie. At the start of i that is farther in
    // |dx| + |dy|; at row 0, farther along segment 0.
    if (count < 2)
      return false;
    int pick;
    if (neighbours == Neighbours::closing) {
      pick = parameterAlong(eps, sj, px[1], py[1]) > parameterAlong(eps, sj, px[0], py[0]) ? 1 : 0;
    } else {
      const double d0 = std::fabs(px[0] - si.x1) + std::fabs(py[0] - si.y1);
      const double d1 = std::fabs(px[1] - si.x1) + std::fabs(py[1] - si.y1);
      pick = d1 > d0 ? 1 : 0;
    }
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
  const bool inArc = !withinOpen(s1.bulge, eps);
  const bool outArc = !withinOpen(s2.bulge, eps);
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
  double alpha = std::atan2(p[1] - s.cy, p[0] - s.cx);
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
    return index_.visitAlongSegment(kx, ky, px, py, pad, crosses);
  }

 private:
  // Sight tests walked before the tree is worth building.
  static constexpr int kWalkedQueries = 2;

  // A box that holds segment s and every point its intersection tests can accept, from its rows
  // alone.
  SegmentBox roughBox(int s) const {
    return roughBoxOf(eps_, roughOf(eps_, v_[s], v_[(s + 1) % n_]));
  }

  void buildIndex() {
    const int segments = closed_ ? n_ : n_ - 1;
    index_.build(n_, [&](int s) { return s < segments ? roughBox(s) : SegmentBox::empty(); });
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
      : eps_(eps), closed_(closed), rows_(rows), next_(n), prev_(n), cache_(n), last_(n - 1) {
    for (int i = 0; i < n; ++i) {
      next_[i] = i + 1 < n ? i + 1 : -1;
      prev_[i] = i - 1;
    }
    index_.build(
        n, [&](int i) { return hasSegment(i) ? roughBoxOf(eps_, rough(i)) : SegmentBox::empty(); });
  }

  bool hasSegment(int id) const { return next_[id] != -1 || (closed_ && id == last_); }
  int next(int id) const { return next_[id]; }
  int prev(int id) const { return prev_[id]; }
  double* row(int id) { return rows_[id]; }

  Segment segment(int id) {
    return cache_.get(eps_, id, rows_[id], rows_[next_[id] != -1 ? next_[id] : 0]);
  }

  // The exact segment when it was already worked out.
  bool knownSegment(int id, Segment* seg) {
    if (!cache_.known(id))
      return false;
    *seg = segment(id);
    return true;
  }

  RoughSegment rough(int id) const {
    return roughOf(eps_, rows_[id], rows_[next_[id] != -1 ? next_[id] : 0]);
  }

  // The latest earlier segment that segment `id` crosses, nearest first, and the point. The
  // exact shapes (PL_ArcParam) are worked out only for pairs the rough ones cannot rule out.
  int firstCrossingBelow(int id, double* x, double* y) {
    const RoughSegment ri = rough(id);
    const SegmentBox query = roughBoxOf(eps_, ri);
    int hit = -1;
    // The closing segment shares row 0 (id 0, which is never cut out) with segment 0.
    const bool closing = closed_ && next_[id] == -1;
    index_.visitBelowDescending(id, query, [&](int j) {
      const Neighbours neighbours = j == prev_[id]      ? Neighbours::previous
                                    : closing && j == 0 ? Neighbours::closing
                                                        : Neighbours::none;
      if (neighbours != Neighbours::none) {
        const RoughSegment rj = rough(j);
        // Neighbouring lines only meet at their shared row.
        if (ri.kind == RoughSegment::straight && rj.kind == RoughSegment::straight)
          return false;
        if (secondCrossingMisses(eps_, ri, rj) || secondCrossingMisses(eps_, rj, ri))
          return false;
      }
      if (!loopCrossing(eps_, segment(id), segment(j), neighbours, x, y))
        return false;
      hit = j;
      return true;
    });
    return hit;
  }

  // Cuts out the loop between segment j and segment i at X: the rows after j up to i go, row i's
  // slot becomes X with the tail piece of segment i, row j keeps the head piece of segment j.
  void cut(int j, int i, double x, double y, double headJ, double tailI) {
    // The ids inside the loop lie between j and i.
    if (next_[j] != i)
      index_.removeRange(next_[j], prev_[i]);
    rows_[i][0] = x;
    rows_[i][1] = y;
    rows_[i][2] = tailI;
    rows_[j][2] = headJ;
    next_[j] = i;
    prev_[i] = j;
    cache_.forget(i);
    cache_.forget(j);
  }

 private:
  double eps_;
  int closed_;
  double (*rows_)[5];
  std::vector<int> next_, prev_;
  SegmentCache cache_;
  int last_;
  SegmentIndex index_;
};

// PLineDist of a single open segment: the perpendicular distance of a line, the radial distance
// of an arc; false for a line shorter than eps or an arc PL_ArcParam rejects.
bool singleSegmentDistance(double eps, double (*const v)[5], const double* p, double* d) {
  const Segment s = segmentOf(eps, v[0], v[1]);
  if (!withinOpen(s.bulge, eps) && !s.isArc)
    return false;
  return carrierDistance(eps, p, s, d);
}

// A polyline's PLineDist from the picked point, worked out only as far as the comparisons of the
// loop scan need it: whether it is below some bound, and its magnitude only when asked.
class LazyDistance {
 public:
  LazyDistance(double eps, int closed, int n, double (*const v)[5], double* const p) {
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

  // The segment cache of the runs (none for fewer than three rows open).
  PolylineSegments* segments() { return runs_ ? &runs_->segments() : nullptr; }

  // PLineDist succeeds with |s| < bound.
  bool below(double bound) {
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

  // s itself, for a distance known to succeed.
  double value() {
    magnitude();
    return value_;
  }

  // |s|, for a distance known to succeed.
  double magnitude() {
    if (!single_ && !known_ && runs_) {
      int run;
      ok_ = runs_->smallest(std::numeric_limits<double>::infinity(), count_, false, &value_, &run);
      known_ = true;
    }
    return std::fabs(value_);
  }

 private:
  bool single_ = false;
  bool singleOk_ = false;
  bool known_ = false;
  bool ok_ = false;
  double value_ = 0.0;
  int count_ = 0;
  std::unique_ptr<DistanceRuns> runs_;
};

// A loop cut out of the polyline, with its distance from the picked point.
struct CutLoop {
  std::unique_ptr<RowArray> rows;
  std::unique_ptr<LazyDistance> distance;
};

// How an offset step is trimmed (trimStepLoops): loops enclosing an area of the other sign than
// sourceArea (when it is not 0) are never kept, and a loop that is kept is trimmed in turn, at
// most `retrims` times deep, since the scan never looks inside a loop it cuts out.
struct StepTrim {
  double sourceArea;
  int retrims;
};

// TrimLoopS; when the PLineDist of the rows it returns (with the flag it returns) was worked out
// on the way, or nearly, it is reported through *measure (when measure is not null). `step`
// holds the rules of an offset step's trimming, null for TrimLoopS itself.
int trimLoops(double eps, double* const pick, int* closed, int n, double (*const v)[5],
              tarnsysm::detail::TrimMeasure* measure, const StepTrim* step = nullptr) {
  const auto reversed = [&](int count, double(*const rows)[5]) {
    return step && step->sourceArea != 0.0 && closedArea(eps, count, rows) * step->sourceArea < 0.0;
  };
  // A loop kept by a step, now in v, trimmed of its own loops (it has fewer rows than the input,
  // so this ends).
  const auto keptLoop = [&](int count) {
    if (!step || step->retrims <= 0 || count >= n)
      return count;
    const StepTrim inner{step->sourceArea, step->retrims - 1};
    return trimLoops(eps, pick, closed, count, v, nullptr, &inner);
  };
  const bool wasClosed = *closed == 1;
  RowArray work(n);
  copyRows(work.get(), v, n);
  const int m = TrimLoop0(eps, *closed, n, work.get());
  ScanState scan(eps, *closed, m, work.get());

  CutLoop saved;
  int i = m >= 2 ? scan.next(0) : -1;
  int adjacentCutAt = -1;
  while (i != -1 && scan.hasSegment(i)) {
    double x, y;
    const int j = scan.firstCrossingBelow(i, &x, &y);
    // Once the loop between two segments that share a row is cut, they meet only at X. Where
    // round-off (coordinates far beyond 1/eps) still reports a second crossing, cutting again
    // changes nothing and would repeat forever: move on. Every other cut removes rows.
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
    if (reversed(count, loop->get())) {
      scan.cut(j, i, x, y, headJ, tailI);
      i = j >= 1 ? i : scan.next(i);
      continue;
    }

    // Measured with PLineDist: a loop the picked point lies on (|s| < eps) is the result; one
    // strictly nearer than the saved loop replaces it; an equal or farther one, or one without a
    // distance, is dropped. Only as much of the distance is worked out as these need.
    auto distance = std::make_unique<LazyDistance>(eps, *closed, count, loop->get(), pick);
    if (PolylineSegments* known = distance->segments()) {
      // The loop's segments between rows j+1 .. i are the scan's own.
      int k = 1;
      for (int id = scan.next(j); id != i; id = scan.next(id), ++k) {
        Segment known2;
        if (scan.knownSegment(id, &known2))
          known->adopt(k, known2);
      }
    }
    if (distance->below(eps)) {
      copyRows(v, loop->get(), count);
      *closed = 1;
      if (measure && wasClosed)
        *measure = {true, true, 0.0};  // on the loop: |s| < eps
      return keptLoop(count);
    }
    const double best = saved.rows ? saved.distance->magnitude() : 1e100;
    if (distance->below(best)) {
      saved.rows = std::move(loop);
      saved.distance = std::move(distance);
    }

    scan.cut(j, i, x, y, headJ, tailI);
    // Continue behind the cut: at X's segment, or past it when the cut was at segment 0.
    i = j >= 1 ? i : scan.next(i);
  }

  // The remaining polyline, in order: ids only grow along it, so it packs down in place.
  double(*const rest)[5] = work.get();
  int r = 0;
  if (m >= 1) {
    for (int id = 0; id != -1; id = scan.next(id), ++r) {
      if (id != r)
        std::memcpy(rest[r], rest[id], sizeof(double[5]));
    }
  }
  const bool restReversed = *closed && reversed(r, rest);
  if (restReversed && !saved.rows)
    return 0;
  if (saved.rows) {
    // The remaining polyline wins ties: the saved loop is kept only when strictly nearer.
    double s = 0.0;
    const bool restWins = !restReversed && PLineDist(eps, *closed, r, rest, pick, &s) &&
                          !saved.distance->below(std::fabs(s));
    if (restWins)
      copyRows(v, rest, r);
    else {
      const int count = saved.rows->size();
      copyRows(v, saved.rows->get(), count);
      *closed = 1;
      const int kept = TrimLoop0(eps, 1, count, v);
      if (measure && wasClosed && kept == count)
        *measure = {true, true, saved.distance->value()};
      return keptLoop(kept);
    }
    const int kept = TrimLoop0(eps, *closed, r, v);
    if (measure && kept == r)
      *measure = {true, true, s};
    return kept;
  }
  copyRows(v, rest, r);
  return TrimLoop0(eps, *closed, r, v);
}

}  // namespace

namespace tarnsysm::detail {

int trimStepLoops(double eps, double* const pick, int* closed, int n, double (*const v)[5],
                  double sourceArea) {
  if (n <= 0)
    return 0;
  try {
    // Loops inside kept loops, a few levels deep, are all the trimming of a step has to clear.
    const StepTrim step{sourceArea, 8};
    return trimLoops(eps, pick, closed, n, v, nullptr, &step);
  } catch (const std::bad_alloc&) {
    return n;
  }
}

int trimLoopsAndMeasure(double eps, double* const pick, int* closed, int n, double (*const v)[5],
                        TrimMeasure* measure) {
  *measure = TrimMeasure{};
  if (n <= 0)
    return 0;
  try {
    return trimLoops(eps, pick, closed, n, v, measure);
  } catch (const std::bad_alloc&) {
    *measure = TrimMeasure{};
    return n;
  }
}

}  // namespace tarnsysm::detail

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
    return trimLoops(eps, pick, closed, n, v, nullptr);
  } catch (const std::bad_alloc&) {
    return n;
  }
}

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
