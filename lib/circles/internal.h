// Tarnsysm: planar computational geometry for 2D drafting.
// Internal machinery of the circle constructions: pick-point scores, the centre/radius solver,
// candidate lists, the selection rules and the arc lists used to match picks. Not installed.
#pragma once

#include "primitives/internal.h"

#include <cmath>
#include <initializer_list>

namespace tarnsysm::detail {

/// True when every value is finite; constructions refuse NaN and infinities up front.
inline bool allFinite(std::initializer_list<double> values) {
  for (double v : values)
    if (!std::isfinite(v))
      return false;
  return true;
}

/// Score of a candidate circle (centre qx, qy, radius R) against a given circle (r, cx, cy) and
/// its pick point: 0 when the pick lies in the direction of the tangency point, 4 opposite.
double CirclePickDeviation(double eps, double px, double py, double r, double cx, double cy,
                           double qx, double qy, double R);

/// Score of a candidate centre (qx, qy) against a given line and its pick point; R is unused.
double LinePickDeviation(double eps, double px, double py, double x1, double y1, double x2,
                         double y2, double qx, double qy, double R);

/// Sorts values[lo..hi] (both inclusive) ascending in place.
void SortDoubles(double* values, int lo, int hi);

/// Circles with a1 x + b1 y + c1 + d1 r = 0, a2 x + b2 y + c2 + d2 r = 0 and |X - P| = |r - s|.
/// Writes up to two (x, y, |r|) and returns their number (0, 1 or 2).
int SolveCenterRadiusSystem(double eps, double a1, double b1, double c1, double d1, double a2,
                            double b2, double c2, double d2, double px, double py, double s,
                            double* x1, double* y1, double* r1, double* x2, double* y2, double* r2);

/// One linear condition a x + b y + c + d r = 0 on a candidate's centre and signed radius.
struct LinearCondition {
  double a, b, c, d;
};

/// |X - Cj| = |r - sj| minus |X - Cref| = |r - sref|: circle j (or a point, rj = sj = 0) against
/// the reference circle.
LinearCondition circleAgainst(double xj, double yj, double rj, double sj, double xref, double yref,
                              double rref, double sref);

/// A line by its unit normal: signed distance a x + b y + c of a point, positive right of the
/// direction from the first point to the second.
struct UnitLine {
  double a, b, c;
  double distance(double x, double y) const { return a * x + b * y + c; }
  /// The centre at signed distance sigma r: a x + b y + c - sigma r = 0.
  LinearCondition tangent(double sigma) const { return {a, b, c, -sigma}; }
};

/// The line through (x1, y1) and (x2, y2) by its unit normal; false when it is shorter than eps.
bool unitLine(double eps, double x1, double y1, double x2, double y2, UnitLine* line);

/// Side of a point for a tangency condition: +1 when its signed distance is at least -eps.
inline double sideOf(double eps, const UnitLine& line, double x, double y) {
  return line.distance(x, y) >= -eps ? 1.0 : -1.0;
}

struct Circle {
  double x, y, r;
};

/// At most eight candidate circles, in the order they were found; a circle whose centre or
/// radius is not finite is never stored.
struct CandidateList {
  Circle items[8];
  int count = 0;

  void add(double x, double y, double r) {
    if (count < 8 && allFinite({x, y, r}))
      items[count++] = {x, y, r};
  }

  /// Appends what SolveCenterRadiusSystem finds for the two conditions about P with offset s.
  void solve(double eps, const LinearCondition& k1, const LinearCondition& k2, double px, double py,
             double s);
};

/// Index of the best candidate by score: the best starts at 1e100 and a candidate replaces it
/// only when best - eps > its score, so of scores within eps the earliest wins; -1 for none.
template <class Score>
int selectByScore(double eps, int count, Score score) {
  int chosen = -1;
  double best = 1e100;
  for (int i = 0; i < count; ++i) {
    const double s = score(i);
    if (best - eps > s) {
      best = s;
      chosen = i;
    }
  }
  return chosen;
}

/// Index of the best candidate by match count first, then by the score rule of selectByScore
/// among equal counts; -1 for none.
template <class Matches, class Score>
int selectByMatchesThenScore(double eps, int count, Matches matches, Score score) {
  int chosen = -1;
  int bestMatches = 0;
  double best = 0.0;
  for (int i = 0; i < count; ++i) {
    const int m = matches(i);
    if (chosen >= 0 && m < bestMatches)
      continue;
    const double s = score(i);
    if (chosen < 0 || m > bestMatches || best - eps > s) {
      chosen = i;
      bestMatches = m;
      best = s;
    }
  }
  return chosen;
}

/// The candidates by ascending radius, equal radii keeping their order.
CandidateList sortedByRadius(const CandidateList& list);

/// Coordinates about a local origin (the first object): the constructions square coordinates,
/// and squaring those of a far-away drawing would throw away the digits that decide the answer.
/// Arguments are given in drawing coordinates; candidates live in local ones.
struct LocalFrame {
  double ox, oy;

  double x(double v) const { return v - ox; }
  double y(double v) const { return v - oy; }

  bool line(double eps, double x1, double y1, double x2, double y2, UnitLine* l) const {
    return unitLine(eps, x(x1), y(y1), x(x2), y(y2), l);
  }

  double circleScore(double eps, double px, double py, double r, double cx, double cy,
                     const Circle& c) const {
    return CirclePickDeviation(eps, x(px), y(py), r, x(cx), y(cy), c.x, c.y, c.r);
  }

  double lineScore(double eps, double px, double py, double x1, double y1, double x2, double y2,
                   const Circle& c) const {
    return LinePickDeviation(eps, x(px), y(py), x(x1), y(y1), x(x2), y(y2), c.x, c.y, c.r);
  }

  /// Writes candidate i in drawing coordinates and returns 1; 0, outputs untouched, for i < 0.
  int write(const CandidateList& list, int i, double* cx, double* cy, double* r) const {
    if (i < 0)
      return 0;
    *cx = list.items[i].x + ox;
    *cy = list.items[i].y + oy;
    *r = list.items[i].r;
    return 1;
  }

  /// Writes the candidate chosen by selectByScore, as write does.
  template <class Score>
  int writeBest(double eps, const CandidateList& list, Score score, double* cx, double* cy,
                double* r) const {
    return write(list, selectByScore(eps, list.count, [&](int k) { return score(list.items[k]); }),
                 cx, cy, r);
  }
};

/// The circle whose centre and signed radius solve a_i x + b_i y + c_i = sigma_i r for the three
/// lines (sigma 0: the centre lies on that line). Adds (x, y, |r|) to the list unless the system
/// is singular (|det| < eps) or |r| < eps.
void addThreeLineCircle(double eps, const UnitLine lines[3], const double sigma[3],
                        CandidateList* list);

/// Cut values on one object (angles on a circle, positions along a line), sorted ascending.
struct ArcList {
  double values[4];
  int count = 0;
  void add(double v) {
    if (count < 4)
      values[count++] = v;
  }
  void sort() { SortDoubles(values, 0, count - 1); }
  /// The piece holding `value`: the k-th cut is the last one not above value + eps. A circle
  /// wraps (the piece after the last cut is the piece before the first); a line does not.
  int index(double eps, double value, bool wraps) const;
};

/// Common tangents of the circle of radius r1 about the origin and the circle of radius r2 about
/// (dx, dy), as tangency-point pairs {x1, y1, x2, y2}: the two outer tangents, then, when the
/// circles are apart by more than eps, the two inner ones. Returns 0 when one circle lies within
/// the other (or touches it from inside within eps), else 2 or 4.
int commonTangents(double eps, double r1, double dx, double dy, double r2, double segments[4][4]);

}  // namespace tarnsysm::detail
