// Tarnsysm: planar computational geometry for 2D drafting.
// Circles tangent to circles and lines or through points, chosen by pick points. Tangency to
// circle i is |X - Ci| = |r - si| with si = +ri or -ri; a line asks for the signed distance
// sigma r. Pairs of conditions subtract to linear ones for the centre/radius solver. Work is done
// about the first object.
#include "circles/circles.h"
#include "circles/internal.h"
#include "intersect/intersect.h"
#include "primitives/primitives.h"

#include <cmath>

using namespace tarnsysm::detail;

namespace {

// A circle or a line of a three-object construction, with its pick, cut into pieces at its
// intersections with the other two. A circle's cuts are angles about its centre, a line's are
// positions along it from its first point.
struct MatchObject {
  bool isLine = false;
  double r = 0.0, cx = 0.0, cy = 0.0;                                 // circle
  double x1 = 0.0, y1 = 0.0, x2 = 0.0, y2 = 0.0, ux = 0.0, uy = 0.0;  // line
  double px = 0.0, py = 0.0;
  ArcList cuts;
  int pickPiece = 0;

  static MatchObject circle(double px, double py, double r, double cx, double cy) {
    MatchObject o;
    o.r = r;
    o.cx = cx;
    o.cy = cy;
    o.px = px;
    o.py = py;
    return o;
  }

  static MatchObject line(double px, double py, double x1, double y1, double x2, double y2,
                          const UnitLine& l) {
    MatchObject o;
    o.isLine = true;
    o.x1 = x1;
    o.y1 = y1;
    o.x2 = x2;
    o.y2 = y2;
    o.ux = -l.b;
    o.uy = l.a;
    o.px = px;
    o.py = py;
    return o;
  }

  double along(double x, double y) const { return (x - x1) * ux + (y - y1) * uy; }

  void cut(double x, double y) { cuts.add(isLine ? along(x, y) : portable::atan2(y - cy, x - cx)); }

  // The piece a position falls on; every position falls on piece 0 of an uncut object.
  int piece(double eps, double x, double y) const {
    if (cuts.count == 0)
      return 0;
    return isLine ? cuts.index(eps, along(x, y), false)
                  : cuts.index(eps, portable::atan2(y - cy, x - cx), true);
  }

  // The piece holding a candidate's tangency point: the foot of its centre on a line; on a
  // circle the point towards the candidate's centre, or away from it when the candidate
  // encloses the circle.
  int candidatePiece(double eps, const Circle& c) const {
    if (isLine || cuts.count == 0)
      return piece(eps, c.x, c.y);
    const double dist = std::sqrt((c.x - cx) * (c.x - cx) + (c.y - cy) * (c.y - cy));
    const bool encloses = c.r > r + eps && dist < c.r - r + eps;
    return encloses ? piece(eps, 2.0 * cx - c.x, 2.0 * cy - c.y) : piece(eps, c.x, c.y);
  }

  double score(double eps, const Circle& c) const {
    return isLine ? LinePickDeviation(eps, px, py, x1, y1, x2, y2, c.x, c.y, c.r)
                  : CirclePickDeviation(eps, px, py, r, cx, cy, c.x, c.y, c.r);
  }
};

// Cuts both objects at their intersections.
void cutPair(double eps, MatchObject& p, MatchObject& q) {
  double xs[2] = {}, ys[2] = {};
  int n = 0;
  int flag = 0;
  if (!p.isLine && !q.isLine)
    n = D2CirInts(eps, p.cx, p.cy, p.r, q.cx, q.cy, q.r, &xs[0], &ys[0], &xs[1], &ys[1]);
  else if (p.isLine && q.isLine)
    n = D2LInts(eps, p.x1, p.y1, p.x2, p.y2, q.x1, q.y1, q.x2, q.y2, &xs[0], &ys[0], &flag);
  else {
    const MatchObject& l = p.isLine ? p : q;
    const MatchObject& c = p.isLine ? q : p;
    n = DCirLInts(eps, l.x1, l.y1, l.x2, l.y2, c.cx, c.cy, c.r, &xs[0], &ys[0], &xs[1], &ys[1],
                  &flag);
  }
  for (int i = 0; i < n; ++i) {
    p.cut(xs[i], ys[i]);
    q.cut(xs[i], ys[i]);
  }
}

// Chooses among the candidates: most picked pieces hit first, then the summed pick score.
int selectMatched(double eps, MatchObject (&objects)[3], const CandidateList& list,
                  const LocalFrame& f, double* cx, double* cy, double* r) {
  cutPair(eps, objects[0], objects[1]);
  cutPair(eps, objects[0], objects[2]);
  cutPair(eps, objects[1], objects[2]);
  for (MatchObject& o : objects) {
    o.cuts.sort();
    o.pickPiece = o.piece(eps, o.px, o.py);
  }
  const int i = selectByMatchesThenScore(
      eps, list.count,
      [&](int k) {
        int matches = 0;
        for (const MatchObject& o : objects)
          matches += o.candidatePiece(eps, list.items[k]) == o.pickPiece ? 1 : 0;
        return matches;
      },
      [&](int k) {
        double sum = 0.0;
        for (const MatchObject& o : objects)
          sum += o.score(eps, list.items[k]);
        return sum;
      });
  return f.write(list, i, cx, cy, r);
}

}  // namespace

int DGetCCCTanCircle(double eps, double px1, double py1, double r1, double cx1, double cy1,
                     double px2, double py2, double r2, double cx2, double cy2, double px3,
                     double py3, double r3, double cx3, double cy3, double* cx, double* cy,
                     double* r) {
  if (!allFinite({eps, px1, py1, r1, cx1, cy1, px2, py2, r2, cx2, cy2, px3, py3, r3, cx3, cy3}))
    return 0;
  const LocalFrame f{cx1, cy1};
  MatchObject objects[3] = {MatchObject::circle(f.x(px1), f.y(py1), r1, 0.0, 0.0),
                            MatchObject::circle(f.x(px2), f.y(py2), r2, f.x(cx2), f.y(cy2)),
                            MatchObject::circle(f.x(px3), f.y(py3), r3, f.x(cx3), f.y(cy3))};
  // The other four sign triples are these negated and give the same circles.
  const double signs[4][3] = {{-r1, r2, r3}, {r1, -r2, r3}, {r1, r2, -r3}, {r1, r2, r3}};
  CandidateList list;
  for (const auto& s : signs)
    list.solve(eps, circleAgainst(f.x(cx2), f.y(cy2), r2, s[1], 0.0, 0.0, r1, s[0]),
               circleAgainst(f.x(cx3), f.y(cy3), r3, s[2], 0.0, 0.0, r1, s[0]), 0.0, 0.0, s[0]);
  return selectMatched(eps, objects, list, f, cx, cy, r);
}

int DGetCCLTanCircle(double eps, double px1, double py1, double r1, double cx1, double cy1,
                     double px2, double py2, double r2, double cx2, double cy2, double px3,
                     double py3, double x1, double y1, double x2, double y2, double* cx, double* cy,
                     double* r) {
  if (!allFinite({eps, px1, py1, r1, cx1, cy1, px2, py2, r2, cx2, cy2, px3, py3, x1, y1, x2, y2}))
    return 0;
  const LocalFrame f{cx1, cy1};
  UnitLine line;
  if (!f.line(eps, x1, y1, x2, y2, &line))
    return 0;
  MatchObject objects[3] = {
      MatchObject::circle(f.x(px1), f.y(py1), r1, 0.0, 0.0),
      MatchObject::circle(f.x(px2), f.y(py2), r2, f.x(cx2), f.y(cy2)),
      MatchObject::line(f.x(px3), f.y(py3), f.x(x1), f.y(y1), f.x(x2), f.y(y2), line)};
  const double signs[4][2] = {{r2, 1.0}, {r2, -1.0}, {-r2, 1.0}, {-r2, -1.0}};
  CandidateList list;
  for (const auto& s : signs)
    list.solve(eps, circleAgainst(f.x(cx2), f.y(cy2), r2, s[0], 0.0, 0.0, r1, r1),
               line.tangent(s[1]), 0.0, 0.0, r1);
  return selectMatched(eps, objects, list, f, cx, cy, r);
}

int DGetCCPTanCircle(double eps, double px1, double py1, double r1, double cx1, double cy1,
                     double px2, double py2, double r2, double cx2, double cy2, double x, double y,
                     double* cx, double* cy, double* r) {
  if (!allFinite({eps, px1, py1, r1, cx1, cy1, px2, py2, r2, cx2, cy2, x, y}))
    return 0;
  const LocalFrame f{cx1, cy1};
  // Circle 1's sign stays +r1; the point is a circle of radius 0.
  CandidateList list;
  for (const double s2 : {r2, -r2})
    list.solve(eps, circleAgainst(f.x(cx2), f.y(cy2), r2, s2, 0.0, 0.0, r1, r1),
               circleAgainst(f.x(x), f.y(y), 0.0, 0.0, 0.0, 0.0, r1, r1), 0.0, 0.0, r1);
  return f.writeBest(
      eps, list,
      [&](const Circle& c) {
        return f.circleScore(eps, px1, py1, r1, cx1, cy1, c) +
               f.circleScore(eps, px2, py2, r2, cx2, cy2, c);
      },
      cx, cy, r);
}

int DGetLLCTanCircle(double eps, double px1, double py1, double x1, double y1, double x2, double y2,
                     double px2, double py2, double x3, double y3, double x4, double y4, double px3,
                     double py3, double r, double ccx, double ccy, double* cx, double* cy,
                     double* r_out) {
  if (!allFinite({eps, px1, py1, x1, y1, x2, y2, px2, py2, x3, y3, x4, y4, px3, py3, r, ccx, ccy}))
    return 0;
  const LocalFrame f{ccx, ccy};
  UnitLine l1, l2;
  if (!f.line(eps, x1, y1, x2, y2, &l1) || !f.line(eps, x3, y3, x4, y4, &l2))
    return 0;
  MatchObject objects[3] = {
      MatchObject::line(f.x(px1), f.y(py1), f.x(x1), f.y(y1), f.x(x2), f.y(y2), l1),
      MatchObject::line(f.x(px2), f.y(py2), f.x(x3), f.y(y3), f.x(x4), f.y(y4), l2),
      MatchObject::circle(f.x(px3), f.y(py3), r, 0.0, 0.0)};
  const double signs[4][2] = {{1.0, 1.0}, {1.0, -1.0}, {-1.0, 1.0}, {-1.0, -1.0}};
  CandidateList list;
  for (const auto& s : signs)
    list.solve(eps, l1.tangent(s[0]), l2.tangent(s[1]), 0.0, 0.0, r);
  return selectMatched(eps, objects, list, f, cx, cy, r_out);
}

int DGetLLLTanCircle(double eps, double px1, double py1, double x1, double y1, double x2, double y2,
                     double px2, double py2, double x3, double y3, double x4, double y4, double px3,
                     double py3, double x5, double y5, double x6, double y6, double* cx, double* cy,
                     double* r) {
  if (!allFinite(
          {eps, px1, py1, x1, y1, x2, y2, px2, py2, x3, y3, x4, y4, px3, py3, x5, y5, x6, y6}))
    return 0;
  const LocalFrame f{x1, y1};
  UnitLine lines[3];
  if (!f.line(eps, x1, y1, x2, y2, &lines[0]) || !f.line(eps, x3, y3, x4, y4, &lines[1]) ||
      !f.line(eps, x5, y5, x6, y6, &lines[2]))
    return 0;
  // Line 1's sign stays +1: the sign of r covers its other side.
  const double signs[4][2] = {{1.0, 1.0}, {1.0, -1.0}, {-1.0, 1.0}, {-1.0, -1.0}};
  CandidateList list;
  for (const auto& s : signs) {
    const double sigma[3] = {1.0, s[0], s[1]};
    addThreeLineCircle(eps, lines, sigma, &list);
  }
  return f.writeBest(
      eps, list,
      [&](const Circle& c) {
        return f.lineScore(eps, px1, py1, x1, y1, x2, y2, c) +
               f.lineScore(eps, px2, py2, x3, y3, x4, y4, c) +
               f.lineScore(eps, px3, py3, x5, y5, x6, y6, c);
      },
      cx, cy, r);
}

int DGetLLPTanCircle(double eps, double px1, double py1, double x1, double y1, double x2, double y2,
                     double px2, double py2, double x3, double y3, double x4, double y4, double x,
                     double y, double* cx, double* cy, double* r) {
  if (!allFinite({eps, px1, py1, x1, y1, x2, y2, px2, py2, x3, y3, x4, y4, x, y}))
    return 0;
  const LocalFrame f{x, y};
  UnitLine l1, l2;
  if (!f.line(eps, x1, y1, x2, y2, &l1) || !f.line(eps, x3, y3, x4, y4, &l2))
    return 0;
  CandidateList list;
  list.solve(eps, l1.tangent(sideOf(eps, l1, 0.0, 0.0)), l2.tangent(sideOf(eps, l2, 0.0, 0.0)), 0.0,
             0.0, 0.0);
  return f.writeBest(
      eps, list,
      [&](const Circle& c) {
        return f.lineScore(eps, px1, py1, x1, y1, x2, y2, c) +
               f.lineScore(eps, px2, py2, x3, y3, x4, y4, c);
      },
      cx, cy, r);
}

int DGetPPLTanCircle(double eps, double x1, double y1, double x2, double y2, double px, double py,
                     double lx1, double ly1, double lx2, double ly2, double* cx, double* cy,
                     double* r) {
  if (!allFinite({eps, x1, y1, x2, y2, px, py, lx1, ly1, lx2, ly2}))
    return 0;
  const LocalFrame f{x1, y1};
  UnitLine line;
  if (!f.line(eps, lx1, ly1, lx2, ly2, &line))
    return 0;
  CandidateList list;
  list.solve(eps, circleAgainst(f.x(x2), f.y(y2), 0.0, 0.0, 0.0, 0.0, 0.0, 0.0),
             line.tangent(sideOf(eps, line, 0.0, 0.0)), 0.0, 0.0, 0.0);
  // Smaller circles first: two points nearly parallel to the line also give a huge circle that
  // scores within eps of the small one.
  return f.writeBest(
      eps, sortedByRadius(list),
      [&](const Circle& c) { return f.lineScore(eps, px, py, lx1, ly1, lx2, ly2, c); }, cx, cy, r);
}

int DGetPPCTanCircle(double eps, double x1, double y1, double x2, double y2, double px, double py,
                     double rc, double ccx, double ccy, double* cx, double* cy, double* r) {
  if (!allFinite({eps, x1, y1, x2, y2, px, py, rc, ccx, ccy}))
    return 0;
  const LocalFrame f{ccx, ccy};
  CandidateList list;
  list.solve(eps, circleAgainst(f.x(x1), f.y(y1), 0.0, 0.0, 0.0, 0.0, rc, rc),
             circleAgainst(f.x(x2), f.y(y2), 0.0, 0.0, 0.0, 0.0, rc, rc), 0.0, 0.0, rc);
  return f.writeBest(
      eps, list, [&](const Circle& c) { return f.circleScore(eps, px, py, rc, ccx, ccy, c); }, cx,
      cy, r);
}

int DGetCLPTanCircle(double eps, double px1, double py1, double rc, double ccx, double ccy,
                     double /*px2*/, double /*py2*/, double x1, double y1, double x2, double y2,
                     double x, double y, double* cx, double* cy, double* r) {
  if (!allFinite({eps, px1, py1, rc, ccx, ccy, x1, y1, x2, y2, x, y}))
    return 0;
  const LocalFrame f{x, y};
  UnitLine line;
  if (!f.line(eps, x1, y1, x2, y2, &line))
    return 0;
  const LinearCondition tangentLine = line.tangent(sideOf(eps, line, 0.0, 0.0));
  CandidateList list;
  for (const double s : {rc, -rc})
    list.solve(eps, circleAgainst(f.x(ccx), f.y(ccy), rc, s, 0.0, 0.0, 0.0, 0.0), tangentLine, 0.0,
               0.0, 0.0);
  return f.writeBest(
      eps, sortedByRadius(list),
      [&](const Circle& c) { return f.circleScore(eps, px1, py1, rc, ccx, ccy, c); }, cx, cy, r);
}

int DGetCCTanCircle(double eps, double px1, double py1, double r1, double cx1, double cy1,
                    double px2, double py2, double r2, double cx2, double cy2, double* cx,
                    double* cy, double* r) {
  return DGetCCLPerCircle(eps, px1, py1, r1, cx1, cy1, px2, py2, r2, cx2, cy2, 0.0, 0.0, cx1, cy1,
                          cx2, cy2, cx, cy, r);
}

int DGetCLTanCircle(double eps, double px1, double py1, double rc, double ccx, double ccy,
                    double px2, double py2, double x1, double y1, double x2, double y2, double* cx,
                    double* cy, double* r) {
  // The perpendicular from the centre to the line; a line shorter than eps has none.
  double fx = 0.0, fy = 0.0;
  if (DPointVerL(eps, ccx, ccy, x1, y1, x2, y2, &fx, &fy) == 0)
    return 0;
  return DGetLLCPerCircle(eps, 0.0, 0.0, ccx, ccy, fx, fy, px2, py2, x1, y1, x2, y2, px1, py1, rc,
                          ccx, ccy, cx, cy, r);
}

int DGetCPTanCircle(double eps, double px, double py, double rc, double ccx, double ccy, double x,
                    double y, double* cx, double* cy, double* r) {
  return DGetCLPPerCircle(eps, px, py, rc, ccx, ccy, 0.0, 0.0, ccx, ccy, x, y, x, y, cx, cy, r);
}

int DGetLPTanCircle(double eps, double px, double py, double x1, double y1, double x2, double y2,
                    double x, double y, double* cx, double* cy, double* r) {
  // The perpendicular from the point to the line; a line shorter than eps has none.
  double fx = 0.0, fy = 0.0;
  if (DPointVerL(eps, x, y, x1, y1, x2, y2, &fx, &fy) == 0)
    return 0;
  return DGetLLPPerCircle(eps, 0.0, 0.0, x, y, fx, fy, px, py, x1, y1, x2, y2, x, y, cx, cy, r);
}
