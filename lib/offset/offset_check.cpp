// Tarnsysm: planar computational geometry for 2D drafting.
// The last check of PLineOffset: does the result keep its distance from the polyline it came
// from, reach it, and run the same way round?
//
// The sharp-corner offset is built step by step, and on hard input (near-reversing corners,
// joins that reach across the region) the pieces trimming keeps can be something other than an
// offset. Rather than trust every stage, the result is measured against its source once more,
// lines and arcs as they are, nothing sampled. A box tree over the source segments gives, for
// each run of consecutive result segments, only the source segments whose boxes come within
// d + eps of the run's box (Euclidean gaps between boxes, which never exceed the gaps between
// what they hold); each member of the run sifts that list by its own box. Where the distance is
// large against the segments of a curved outline, those lists are long (on a circle of 10,000
// rows offset inwards by half its radius, some 140 source segments per result segment), and
// most of them are ruled out by bounds taken about the centre of the run's circle (see Polar)
// before anything is measured. Every bound is a true lower bound with room for round-off, and
// every pair that no bound rules out is measured exactly.
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

// Result segments asked about together: one tree query serves the run.
constexpr int kRunLength = 16;

// Room for round-off, relative to the lengths that enter a bound: kRoundOff for the bounds about
// a ring's centre (angles and differences of radii, a few units in the last place of the
// radius, with room to spare), kUlps for a single difference of lengths. Both stay far below
// eps for drawings of ordinary size, so that pairs exactly at the distance are still ruled out.
constexpr double kRoundOff = 1e-13;
constexpr double kUlps = 16.0 * std::numeric_limits<double>::epsilon();

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
  Point m;             // an arc's chord midpoint; its centre is m + k (-dy, dx)
  double k, chord2;    // chord2: the squared chord

  // Whether p, a point of the arc's circle, lies on the arc: on its side of the chord.
  bool holds(Point p) const {
    const double side = (b.x - a.x) * (p.y - a.y) - (b.y - a.y) * (p.x - a.x);
    return bulge > 0.0 ? side <= 0.0 : side >= 0.0;
  }

  // rho - r for a point q at rho from the centre, worked out from the chord: an arc of a bulge
  // just above eps has a centre and a radius far beyond the drawing, and rho - r taken from
  // them directly keeps none of the digits that matter. With w = q - m and the chord (dx, dy),
  // rho^2 - r^2 = |w|^2 - chord^2/4 - 2k (dx w.y - dy w.x), as r^2 = k^2 chord^2 + chord^2/4.
  double circleGap(Point q, double rho) const {
    const double wx = q.x - m.x;
    const double wy = q.y - m.y;
    const double cross = (b.x - a.x) * wy - (b.y - a.y) * wx;
    return (wx * wx + wy * wy - chord2 / 4.0 - 2.0 * k * cross) / (rho + r);
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
  p.k = (1.0 - p.bulge * p.bulge) / (4.0 * p.bulge);
  p.m = {(p.a.x + p.b.x) / 2.0, (p.a.y + p.b.y) / 2.0};
  p.chord2 = dx * dx + dy * dy;
  p.c = {p.m.x - p.k * dy, p.m.y + p.k * dx};
  p.r = chord * (1.0 + p.bulge * p.bulge) / (4.0 * std::fabs(p.bulge));
  if (std::fabs(p.bulge) <= 0.4) {
    // Up to about a quarter circle the arc lies in the triangle of its ends and the meeting
    // of its end tangents, b/(1 - b^2) chords off the midpoint on the arc's side: worked out
    // from the chord, which a nearly straight arc's far centre would not give to the digit.
    const double t = p.bulge / (1.0 - p.bulge * p.bulge);
    grow(p.box, p.m.x + t * dy, p.m.y - t * dx);
    return p;
  }
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
    // The point of the circle facing q lies on the arc's side of the chord when
    // k chord^2 (rho - r) + r (dx w.y - dy w.x) does (its side, times rho).
    const double gap = s.circleGap(q, rho);
    const double cross = (s.b.x - s.a.x) * (q.y - s.m.y) - (s.b.y - s.a.y) * (q.x - s.m.x);
    const double side = s.k * s.chord2 * gap + s.r * cross;
    const bool onArc = s.bulge > 0.0 ? side <= 0.0 : side >= 0.0;
    return onArc ? std::fabs(gap) : nearerEnd();
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
      Point q{a.c.x + sign * a.r * dx / len, a.c.y + sign * a.r * dy / len};
      // Taken from a far centre the point may lie off the circle by that centre's round-off:
      // it is put back on it along its radius.
      const double rho = length(q.x - a.c.x, q.y - a.c.y);
      const double off = a.circleGap(q, rho) / rho;
      q = {q.x - off * (q.x - a.c.x), q.y - off * (q.y - a.c.y)};
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
  if (o.isArc && std::fabs(o.bulge) < 1e-4) {
    // So nearly straight an arc has its centre so far off that the point facing the line is
    // not known to the width of its sagitta; the meeting of its end tangents, worked out from
    // the chord, bounds it instead.
    const double t = o.bulge / (1.0 - o.bulge * o.bulge);
    const double dt = line.nx * (o.m.x + t * (o.b.y - o.a.y)) +
                      line.ny * (o.m.y - t * (o.b.x - o.a.x)) + line.off;
    if (!(dt * da > 0.0))
      return 0.0;
    return std::min({std::fabs(da), std::fabs(db), std::fabs(dt)}) -
           kUlps * (std::fabs(o.a.x) + std::fabs(o.a.y) + std::fabs(o.b.x) + std::fabs(o.b.y) +
                    std::fabs(line.off));
  }
  // Less the round-off of the lengths involved (an arc's centre and radius may be large).
  if (o.isArc && o.holds({o.c.x + toward * o.r * line.nx, o.c.y + toward * o.r * line.ny}))
    return -toward * (line.nx * o.c.x + line.ny * o.c.y + line.off) - o.r -
           kUlps * (std::fabs(o.c.x) + std::fabs(o.c.y) + std::fabs(line.off) + o.r);
  return std::min(std::fabs(da), std::fabs(db)) -
         kUlps * (std::fabs(o.a.x) + std::fabs(o.a.y) + std::fabs(o.b.x) + std::fabs(o.b.y) +
                  std::fabs(line.off));
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
  // With room for the round-off of the lengths involved.
  const double slack = kUlps * (s.r + std::sqrt(far2));
  const double out = s.r + reach + slack;
  const double in = s.r - reach - slack;
  return near2 > out * out || (in > 0.0 && far2 < in * in);
}

// Where pieces lie about a centre c: every point of them is between lo and hi from c and, when
// `cone`, within the angle alpha of the axis u (cosAlpha no more, sinAlpha no less than its own).
//
// A run of result segments that follows a circle, as the offset of arcs about one centre does,
// lies in a thin piece of ring about that centre (the centre of the run's first arc). The source
// segments along the same circle, which a box around the run reaches in their hundreds where the
// distance is large against the segments, are told apart from the whole run at once: arcs by
// their distances from c, straight segments by the distance of their lines from the piece of
// ring, and either, where that is not enough, by the angle between their own piece of ring and
// the run's.
struct Polar {
  bool known;
  Point c;
  double lo, hi;
  bool cone;
  Point u;
  double cosAlpha, sinAlpha;
};

// The cone holds every point given to it; a straight piece lies in the cone of its ends, an arc
// (up to about a quarter circle) in the triangle of its ends and the meeting of its end
// tangents, so those points are given. The cosine and the sine of alpha are kept apart, the
// least cosine and the largest sine of the points' angles: a sine worked out from a cosine near
// 1 would lose half its digits, and the angle with them.
void widenCone(Polar& polar, Point p) {
  const double dx = p.x - polar.c.x;
  const double dy = p.y - polar.c.y;
  const double len = length(dx, dy);
  const double cosine = (dx * polar.u.x + dy * polar.u.y) / len;
  const double sine = std::fabs(dx * polar.u.y - dy * polar.u.x) / len;
  polar.cosAlpha = std::min(polar.cosAlpha, cosine);
  polar.sinAlpha = std::max(polar.sinAlpha, sine);
  // Not a number (a point at the centre): no cone.
  if (!(cosine == cosine) || !(sine == sine))
    polar.cosAlpha = -1.0;
}

// The pieces first .. last - 1 about c, the cone's axis towards `toward`.
Polar polarOf(Point c, const Piece* first, const Piece* last, Point toward) {
  Polar polar{true, c, std::numeric_limits<double>::infinity(), 0.0, false, {0.0, 0.0}, 1.0, 0.0};
  const auto from = [&](Point p) { return length(p.x - c.x, p.y - c.y); };
  const double axis = from(toward);
  polar.u = {(toward.x - c.x) / axis, (toward.y - c.y) / axis};
  for (const Piece* r = first; r != last; ++r) {
    double lo, hi;
    if (r->isArc) {
      const double apart = from(r->c);
      lo = r->r - apart;
      hi = r->r + apart;
      // Bulge 0.4 is a little under a quarter circle (tan(pi/8)); the end tangents meet
      // b/(1 - b^2) chords off the chord's midpoint, on the arc's side.
      const double b = r->bulge;
      if (std::fabs(b) <= 0.4) {
        const double k = b / (1.0 - b * b);
        widenCone(polar, {(r->a.x + r->b.x) / 2.0 + k * (r->b.y - r->a.y),
                          (r->a.y + r->b.y) / 2.0 - k * (r->b.x - r->a.x)});
      } else {
        polar.cosAlpha = -1.0;
      }
    } else {
      hi = std::max(from(r->a), from(r->b));
      const double dx = r->b.x - r->a.x;
      const double dy = r->b.y - r->a.y;
      const double t =
          std::clamp(((c.x - r->a.x) * dx + (c.y - r->a.y) * dy) / (dx * dx + dy * dy), 0.0, 1.0);
      lo = from({r->a.x + t * dx, r->a.y + t * dy});
    }
    widenCone(polar, r->a);
    widenCone(polar, r->b);
    // Not a number (a segment of no length, overflowing coordinates): nothing is known.
    if (!(lo <= hi)) {
      polar.known = false;
      return polar;
    }
    polar.lo = std::min(polar.lo, std::max(lo, 0.0));
    polar.hi = std::max(polar.hi, hi);
  }
  // A cone of a right angle or more is no longer convex.
  polar.cone = polar.cosAlpha > 1e-3;
  return polar;
}

// One piece about c, the cone's axis towards the middle of its chord.
Polar polarOf(Point c, const Piece& piece) {
  return polarOf(c, &piece, &piece + 1,
                 {(piece.a.x + piece.b.x) / 2.0, (piece.a.y + piece.b.y) / 2.0});
}

// The source pieces about the centre of the current ring, each worked out once: runs along one
// circle keep one centre (a run whose first arc's centre lies within 1e-9 of its radius of the
// last centre takes that centre; any centre gives true bounds), so a source piece beside many
// runs is not worked out for each.
class SourcePolars {
 public:
  SourcePolars(const std::vector<Piece>& pieces)
      : pieces_(pieces), polar_(pieces.size()), generation_(pieces.size(), -1) {}

  // The ring of the run about its first arc's centre, or the last centre near it.
  Polar ringOf(const std::vector<Piece>& run) {
    for (const Piece& r : run) {
      if (!r.isArc)
        continue;
      if (!(length(r.c.x - centre_.x, r.c.y - centre_.y) <= 1e-9 * r.r)) {
        centre_ = r.c;
        ++current_;
      }
      return polarOf(centre_, run.data(), run.data() + run.size(), run[run.size() / 2].a);
    }
    Polar none{};
    return none;
  }

  // Source piece s about the current centre.
  const Polar& of(int s) {
    const size_t k = static_cast<size_t>(s);
    if (generation_[k] != current_) {
      polar_[k] = polarOf(centre_, pieces_[k]);
      generation_[k] = current_;
    }
    return polar_[k];
  }

 private:
  const std::vector<Piece>& pieces_;
  std::vector<Polar> polar_;
  std::vector<int> generation_;
  Point centre_{std::numeric_limits<double>::quiet_NaN(), 0.0};
  int current_ = 0;
};

// The largest projection rho cos(angle) onto the unit vector (nx, ny) of a point of the cone:
// its angle from (nx, ny) is at least beta, the angle of (nx, ny) from the axis less alpha.
double largestProjection(const Polar& ring, double nx, double ny) {
  const double cosTheta = nx * ring.u.x + ny * ring.u.y;
  const double sinTheta = std::fabs(nx * ring.u.y - ny * ring.u.x);
  const double cosBeta =
      cosTheta >= ring.cosAlpha ? 1.0 : cosTheta * ring.cosAlpha + sinTheta * ring.sinAlpha;
  return cosBeta >= 0.0 ? ring.hi * cosBeta : ring.lo * cosBeta;
}

// Whether two cones about one centre lie farther apart than reach: where their axes are farther
// apart than their half angles together, by gamma, two points at rho1 and rho2 are at least
// (rho1 - rho2)^2 + 2 rho1 rho2 (1 - cos gamma) apart, squared.
bool conesApart(const Polar& p, const Polar& q, double reach) {
  if (!p.cone || !q.cone)
    return false;
  const double cosTheta = p.u.x * q.u.x + p.u.y * q.u.y;
  const double sinTheta = std::fabs(p.u.x * q.u.y - p.u.y * q.u.x);
  const double cosSum = p.cosAlpha * q.cosAlpha - p.sinAlpha * q.sinAlpha;
  const double sinSum = p.sinAlpha * q.cosAlpha + p.cosAlpha * q.sinAlpha;
  if (!(cosTheta < cosSum))
    return false;
  const double cosGamma = cosTheta * cosSum + sinTheta * sinSum;
  const double radial = std::max({0.0, p.lo - q.hi, q.lo - p.hi});
  const double squared = radial * radial + 2.0 * p.lo * q.lo * (1.0 - cosGamma);
  const double scale = p.hi + q.hi;
  return squared - kRoundOff * scale * scale > reach * reach;
}

// Whether the source segment s lies farther than reach from every point of the run in `ring`.
// The comparisons leave room for the round-off of the lengths involved, so a pair that is not
// certainly apart is measured.
bool ringApart(const Polar& ring, SourcePolars& polars, int id, const Piece& s, double reach) {
  if (!ring.known)
    return false;
  if (s.isArc) {
    // Its points are between R - apart and R + apart from the ring's centre.
    const double apart = length(s.c.x - ring.c.x, s.c.y - ring.c.y);
    const double gap = std::max(s.r - apart - ring.hi, ring.lo - s.r - apart);
    if (gap - kRoundOff * (ring.hi + s.r + apart) > reach)
      return true;
  } else if (ring.cone && (s.nx != 0.0 || s.ny != 0.0)) {
    // Signed distances from the line: of the centre, and of the ring's points, within the
    // centre's plus or minus the largest projections on the normal either way.
    const double centre = s.nx * ring.c.x + s.ny * ring.c.y + s.off;
    const double roundOff = kRoundOff * (std::fabs(s.nx * ring.c.x) + std::fabs(s.ny * ring.c.y) +
                                         std::fabs(s.off) + ring.hi);
    const double nearest = std::max(centre - largestProjection(ring, -s.nx, -s.ny),
                                    -centre - largestProjection(ring, s.nx, s.ny));
    if (nearest - roundOff > reach)
      return true;
  }
  if (!ring.cone)
    return false;
  const Polar& own = polars.of(id);
  return own.known && conesApart(ring, own, reach);
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
                         double sourceArea, int closed, int n, const double (*v)[5],
                         double distance) {
  if (ns < 2 || n < 2)
    return false;
  if (sourceClosed && closed) {
    const double area = std::isnan(sourceArea) ? closedArea(eps, ns, source) : sourceArea;
    if (area * closedArea(eps, n, v) < 0.0)
      return false;
  }
  const double d = std::fabs(distance);
  const int sourceSegments = sourceClosed ? ns : ns - 1;
  std::vector<Piece> pieces;
  pieces.reserve(static_cast<size_t>(sourceSegments));
  for (int s = 0; s < sourceSegments; ++s)
    pieces.push_back(pieceOf(eps, source[s], source[(s + 1) % ns]));
  SegmentIndex index;
  index.build(sourceSegments, [&](int s) { return pieces[static_cast<size_t>(s)].box; });

  // Every pair that may come nearer than d - eps is measured; pairs within d + eps only until
  // one has shown that the result reaches d. Neighbouring result segments have nearly the same
  // near source segments, so the tree is asked once for a run of them (the run's box), and each
  // member then sifts that list by its own box.
  const double low = d - eps;
  double reach = d + eps;
  bool reached = false;
  const int segments = closed ? n : n - 1;
  std::vector<Piece> run;
  std::vector<int> near;
  SourcePolars polars(pieces);
  for (int first = 0; first < segments; first += kRunLength) {
    const int last = std::min(segments, first + kRunLength);
    run.clear();
    SegmentBox runBox = SegmentBox::empty();
    for (int k = first; k < last; ++k) {
      run.push_back(pieceOf(eps, v[k], v[(k + 1) % n]));
      const SegmentBox& b = run.back().box;
      grow(runBox, b.xmin, b.ymin);
      grow(runBox, b.xmax, b.ymax);
    }
    near.clear();
    const Polar ring = polars.ringOf(run);
    index.visitWhere(
        [&](const SegmentBox& box) { return boxGapSquared(runBox, box) <= reach * reach; },
        [&](int s) {
          if (!ringApart(ring, polars, s, pieces[static_cast<size_t>(s)], reach))
            near.push_back(s);
          return false;
        });
    // Along a circle, each member is its own piece of ring too: what the run's ring could not
    // rule out (the source segments beside the run's own) it may.
    for (const Piece& r : run) {
      Polar own{};
      for (size_t i = 0; i < near.size(); ++i) {
        const Piece& p = pieces[static_cast<size_t>(near[i])];
        if (!(boxGapSquared(r.box, p.box) <= reach * reach) || plainlyApart(r, p, reach))
          continue;
        if (ring.cone) {
          if (!own.known)
            own = polarOf(ring.c, r);
          if (conesApart(own, polars.of(near[i]), reach))
            continue;
        }
        const double gap = pieceDistance(eps, r, p);
        if (!(gap >= low))
          return false;
        if (!reached && gap <= d + eps) {
          reached = true;
          reach = low;
        }
      }
    }
  }
  return reached;
}

}  // namespace tarnsysm::detail
