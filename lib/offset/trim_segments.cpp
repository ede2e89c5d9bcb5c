// Tarnsysm: planar computational geometry for 2D drafting.
// The segments that the loop scan and the distances work on: exact shapes from PL_ArcParam,
// rough shapes and boxes from chord and bulge alone, parameters along a segment, the bulges of
// a cut segment's pieces, and the sight test of IntersPLine.
//
// The boxes come from each segment's chord and bulge (an arc's extreme points on its side of the
// chord) rather than from PL_ArcParam and get_arc_box: the same box without trigonometry, so
// PL_ArcParam runs only for pairs the boxes and a quick look at a shared row cannot rule out.
// Segments with coordinates that are not finite get empty boxes and never cross anything.
#include "arcs/arcs.h"
#include "intersect/intersect.h"
#include "offset/internal.h"
#include "primitives/internal.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace tarnsysm::detail {

Segment segmentOf(double eps, double x1, double y1, double bulge, double x2, double y2) {
  Segment s{x1, y1, x2, y2, bulge, false, 0.0, 0.0, 0.0, 0.0, 0.0};
  if (!isStraightBulge(bulge, eps))
    s.isArc = PL_ArcParam(eps, x1, y1, x2, y2, bulge, &s.cx, &s.cy, &s.r, &s.sa, &s.ea) != 0;
  return s;
}

Segment segmentOf(double eps, const double* from, const double* to) {
  return segmentOf(eps, from[0], from[1], from[2], to[0], to[1]);
}

RoughSegment roughOf(double eps, const double* from, const double* to) {
  RoughSegment s{from[0], from[1], to[0], to[1], from[2], RoughSegment::straight,
                 0.0,     0.0,     0.0,   0.0};
  const double dx = s.x2 - s.x1;
  const double dy = s.y2 - s.y1;
  s.chord = std::sqrt(dx * dx + dy * dy);
  if (isStraightBulge(s.bulge, eps))
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

double sideOfChordScaled(const RoughSegment& s, double x, double y) {
  const double cross = (s.x2 - s.x1) * (y - s.y1) - (s.y2 - s.y1) * (x - s.x1);
  return s.bulge > 0.0 ? -cross : cross;
}

SegmentShape roughShapeOf(double eps, const RoughSegment& s) {
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
    return SegmentShape::empty();
  if (s.kind == RoughSegment::straight)
    return SegmentShape::line(box, s.x1, s.y1, s.x2, s.y2, pad);
  if (s.kind == RoughSegment::arc && std::fabs(s.bulge) <= 4.0) {
    // PL_ArcParam's circle differs from this one by round-off of a few units in the last place of
    // the radius and the coordinates (its included angle stays well away from a whole turn).
    const double size = s.r + std::fabs(s.x1) + std::fabs(s.y1) + std::fabs(s.x2) + std::fabs(s.y2);
    return SegmentShape::circle(box, s.cx, s.cy, s.r, 1e-12 * size);
  }
  return SegmentShape::boxed(box);
}

SegmentBox roughBoxOf(double eps, const RoughSegment& s) {
  return roughShapeOf(eps, s).box;
}

// Two straight segments whose cross product lies within eps never cross (D2LInts takes them as
// parallel), a straight segment no longer than eps never meets an arc (DCirLInts takes no such
// line), and two arcs within eps of one circle never meet (D2CirInts takes them as concentric or
// nested): so segments overlapping one another on one line or one circle cost nothing. The arc
// test is left off where the radius or eps is so extreme that squares of their ratio leave the
// range of doubles.
SegmentProbe crossingProbe(double eps, const SegmentShape& s) {
  SegmentProbe probe{s, 0.0, 0.0, 0.0};
  if (!(eps > 0.0) || !(eps < 1e300))
    return probe;
  if (s.kind == SegmentShape::straight)
    probe.parallelBelow = eps / 2.0;
  if (s.kind == SegmentShape::circular) {
    probe.shortUpTo = eps;
    if (eps >= 1e-50 && s.r <= 1e50)
      probe.concentricUpTo = eps / 4.0;
  }
  return probe;
}

double angleOnArc(double eps, const Segment& s, double x, double y) {
  double theta = portable::atan2(y - s.cy, x - s.cx);
  const double mid = (s.sa + s.ea) / 2.0;
  bringAngleIntoRange(theta, mid - kPi, mid + kPi, eps);
  return theta;
}

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
  *head = sign * portable::tan((theta - start) * sign / 4.0);
  *tail = sign * portable::tan((end - theta) * sign / 4.0);
}

bool sightCrosses(double eps, double kx, double ky, double px, double py, const Segment& s) {
  double xa, ya, xb, yb;
  int flag = 0;
  if (!s.isArc)
    return D2LInts(eps, kx, ky, px, py, s.x1, s.y1, s.x2, s.y2, &xa, &ya, &flag) == 1 && flag == 3;
  const int count =
      DArcLInts(eps, kx, ky, px, py, s.cx, s.cy, s.r, s.sa, s.ea, &xa, &ya, &xb, &yb, &flag);
  return (count >= 1 && (flag & 1)) || (count == 2 && (flag & 2));
}

bool touchesRow(int s, int k, int n) {
  return s == k || s == k - 1 || (k == 0 && s == n - 1);
}

}  // namespace tarnsysm::detail
