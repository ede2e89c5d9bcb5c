// Tarnsysm: planar computational geometry for 2D drafting.
// The round-corner offset: where pieces meet, how near they come, and the slicing of the raw
// offset into runs that are kept or dropped.
//
// Every point of the raw offset lies at distance |d| from the segment or vertex it was made
// from, so no point of it is farther than |d| from the input: a point belongs to the offset
// exactly when nothing else comes nearer. For a closed input that does not cross itself that
// can change along the raw curve only where the curve meets itself (a point at distance |d|
// from a second part of the input lies on that part's own moved copy or round corner), so once
// the curve is cut at its crossings one point decides each slice. An open input can also be
// entered from its far side and from the circles of radius |d| about its ends (the ends are cut
// too), and an input that crosses itself has no sides to speak of: there every piece of a slice
// is measured against the input near it, with exact line and arc distances, and a slice that
// comes nearer than |d| anywhere is dropped.
#include "offset/round_internal.h"

#include "primitives/internal.h"

#include <algorithm>
#include <cmath>
#include <numeric>

namespace tarnsysm::detail {

namespace {

double cross(double ax, double ay, double bx, double by) {
  return ax * by - ay * bx;
}

// On the arc's sweep, or within tol of one of its ends.
bool nearArc(const Piece& p, double x, double y, double tol) {
  return directionOnArc(p, x - p.cx, y - p.cy) || length(x - p.x0, y - p.y0) <= tol ||
         length(x - p.x1, y - p.y1) <= tol;
}

// Parameter of (x, y) along a line piece, with tol slack at both ends.
bool nearLine(const Piece& p, double x, double y, double tol) {
  const double ux = p.x1 - p.x0, uy = p.y1 - p.y0;
  const double len = length(ux, uy);
  const double s = ((x - p.x0) * ux + (y - p.y0) * uy) / (len * len);
  const double slack = tol / len;
  return s >= -slack && s <= 1.0 + slack;
}

bool nearPiece(const Piece& p, double x, double y, double tol) {
  return p.isArc() ? nearArc(p, x, y, tol) : nearLine(p, x, y, tol);
}

// Adds (x, y) unless it repeats a point already found (within tol); at most two.
void addPoint(double x, double y, double tol, double (*pts)[2], int& count) {
  for (int i = 0; i < count; ++i)
    if (length(pts[i][0] - x, pts[i][1] - y) <= tol)
      return;
  if (count < 2) {
    pts[count][0] = x;
    pts[count][1] = y;
    ++count;
  }
}

// The ends of a and b that lie on the other piece: where collinear or concentric pieces overlap.
void overlapEnds(const Piece& a, const Piece& b, double tol, double (*pts)[2], int& count) {
  if (nearPiece(a, b.x0, b.y0, tol))
    addPoint(b.x0, b.y0, tol, pts, count);
  if (nearPiece(a, b.x1, b.y1, tol))
    addPoint(b.x1, b.y1, tol, pts, count);
  if (nearPiece(b, a.x0, a.y0, tol))
    addPoint(a.x0, a.y0, tol, pts, count);
  if (nearPiece(b, a.x1, a.y1, tol))
    addPoint(a.x1, a.y1, tol, pts, count);
}

int meetLines(const Piece& a, const Piece& b, double tol, double (*pts)[2]) {
  const double ux = a.x1 - a.x0, uy = a.y1 - a.y0;
  const double vx = b.x1 - b.x0, vy = b.y1 - b.y0;
  const double wx = b.x0 - a.x0, wy = b.y0 - a.y0;
  const double lenA = length(ux, uy), lenB = length(vx, vy);
  const double den = cross(ux, uy, vx, vy);
  int count = 0;
  if (!(lenA > 0.0 && lenB > 0.0))
    return 0;
  // Parallel within round-off: collinear pieces overlap at their ends, others never meet.
  if (std::fabs(den) <= 1e-14 * lenA * lenB) {
    if (std::fabs(cross(ux, uy, wx, wy)) <= tol * lenA)
      overlapEnds(a, b, tol, pts, count);
    return count;
  }
  const double s = cross(wx, wy, vx, vy) / den;
  const double t = cross(wx, wy, ux, uy) / den;
  const double slackA = tol / lenA, slackB = tol / lenB;
  if (s < -slackA || s > 1.0 + slackA || t < -slackB || t > 1.0 + slackB)
    return 0;
  const double sc = std::clamp(s, 0.0, 1.0);
  pts[0][0] = a.x0 + ux * sc;
  pts[0][1] = a.y0 + uy * sc;
  return 1;
}

// A line piece and the circle of an arc piece. The foot F of the centre on the line lies at
// distance h from the centre; the line meets the circle at F +- sqrt(r^2 - h^2) along it, once
// where that half chord is within tol.
int meetLineArc(const Piece& line, const Piece& arc, double tol, double (*pts)[2]) {
  const double ux = line.x1 - line.x0, uy = line.y1 - line.y0;
  const double len = length(ux, uy);
  const double ex = ux / len, ey = uy / len;
  const double fx = line.x0 - arc.cx, fy = line.y0 - arc.cy;
  const double s0 = -(fx * ex + fy * ey);
  const double hx = fx + s0 * ex, hy = fy + s0 * ey;
  const double h = length(hx, hy);
  if (h > arc.r + tol)
    return 0;
  double cand[2][2];
  int candCount = 0;
  const double half2 = (arc.r - h) * (arc.r + h);
  const double half = half2 > 0.0 ? std::sqrt(half2) : 0.0;
  if (half <= tol) {
    // A touch: the foot, moved onto the circle.
    const double k = h > 0.0 ? arc.r / h : 1.0;
    cand[0][0] = arc.cx + hx * k;
    cand[0][1] = arc.cy + hy * k;
    candCount = 1;
  } else {
    cand[0][0] = arc.cx + hx - half * ex;
    cand[0][1] = arc.cy + hy - half * ey;
    cand[1][0] = arc.cx + hx + half * ex;
    cand[1][1] = arc.cy + hy + half * ey;
    candCount = 2;
  }
  int count = 0;
  for (int i = 0; i < candCount; ++i)
    if (nearLine(line, cand[i][0], cand[i][1], tol) && nearArc(arc, cand[i][0], cand[i][1], tol))
      addPoint(cand[i][0], cand[i][1], tol, pts, count);
  return count;
}

// Two arc pieces, a the one of smaller radius. With the centre distance c and
// m = (c^2 - rb^2 + ra^2)/(2c) the distance from a's centre to the common chord (c^2 - rb^2
// taken as (c - rb)(c + rb): a large circle touching a small one would lose the chord to
// cancellation otherwise), the circles meet at m along the centre line, +- the half chord
// sqrt(ra^2 - m^2) across it; once where that is within tol or the circles touch.
int meetArcs(const Piece& first, const Piece& second, double tol, double (*pts)[2]) {
  const Piece& a = first.r <= second.r ? first : second;
  const Piece& b = first.r <= second.r ? second : first;
  const double dx = b.cx - a.cx, dy = b.cy - a.cy;
  const double c = length(dx, dy);
  int count = 0;
  if (c <= tol) {
    if (b.r - a.r <= tol)
      overlapEnds(a, b, tol, pts, count);
    return count;
  }
  if (c > a.r + b.r + tol || c < b.r - a.r - tol)
    return 0;
  const double ux = dx / c, uy = dy / c;
  const double m = std::clamp(((c - b.r) * (c + b.r) + a.r * a.r) / (2.0 * c), -a.r, a.r);
  const double half2 = (a.r - m) * (a.r + m);
  const double half = half2 > 0.0 ? std::sqrt(half2) : 0.0;
  const double mx = a.cx + m * ux, my = a.cy + m * uy;
  double cand[2][2] = {{mx - half * uy, my + half * ux}, {mx + half * uy, my - half * ux}};
  const int candCount = half <= tol ? 1 : 2;
  for (int i = 0; i < candCount; ++i)
    if (nearArc(a, cand[i][0], cand[i][1], tol) && nearArc(b, cand[i][0], cand[i][1], tol))
      addPoint(cand[i][0], cand[i][1], tol, pts, count);
  return count;
}

// Whether the arc comes nearer than lim to the line where their normals line up: at the arc's
// points C +- r n, n the line's unit normal.
bool arcNearLineInside(const Piece& arc, const Piece& line, double lim) {
  const double ux = line.x1 - line.x0, uy = line.y1 - line.y0;
  const double len = length(ux, uy);
  const double nx = uy / len, ny = -ux / len;
  for (double s : {1.0, -1.0})
    if (directionOnArc(arc, s * nx, s * ny) &&
        distanceToPiece(line, arc.cx + s * arc.r * nx, arc.cy + s * arc.r * ny) < lim)
      return true;
  return false;
}

// Whether arc a comes nearer than lim to arc b at a point of a on the line through both centres.
bool arcNearArcInside(const Piece& a, const Piece& b, double lim) {
  const double dx = b.cx - a.cx, dy = b.cy - a.cy;
  const double c = length(dx, dy);
  if (!(c > 0.0))
    return false;  // concentric: the ends decide
  for (double s : {1.0, -1.0}) {
    const double ux = s * dx / c, uy = s * dy / c;
    if (directionOnArc(a, ux, uy) && distanceToPiece(b, a.cx + a.r * ux, a.cy + a.r * uy) < lim)
      return true;
  }
  return false;
}

// Whether some point of f lies nearer than lim to e. The least distance between two pieces is
// 0 where they meet, else it is taken at an end of one of them or at a pair of inner points
// whose connecting line is normal to both: for a line and an arc the arc's points on the
// normal through its centre, for two arcs their points on the line through both centres.
bool comesNearer(const Piece& f, const Piece& e, double lim) {
  if (distanceToPiece(e, f.x0, f.y0) < lim || distanceToPiece(e, f.x1, f.y1) < lim ||
      distanceToPiece(f, e.x0, e.y0) < lim || distanceToPiece(f, e.x1, e.y1) < lim)
    return true;
  double pts[2][2];
  if (meetPoints(f, e, 0.0, pts) > 0)
    return true;
  if (f.isArc() && e.isArc())
    return arcNearArcInside(f, e, lim) || arcNearArcInside(e, f, lim);
  if (f.isArc())
    return arcNearLineInside(f, e, lim);
  if (e.isArc())
    return arcNearLineInside(e, f, lim);
  return false;
}

class UnionFind {
 public:
  explicit UnionFind(int count) : parent_(static_cast<size_t>(count)) {
    std::iota(parent_.begin(), parent_.end(), 0);
  }
  int find(int k) {
    while (parent_[static_cast<size_t>(k)] != k) {
      parent_[static_cast<size_t>(k)] =
          parent_[static_cast<size_t>(parent_[static_cast<size_t>(k)])];
      k = parent_[static_cast<size_t>(k)];
    }
    return k;
  }
  void unite(int a, int b) { parent_[static_cast<size_t>(find(a))] = find(b); }

 private:
  std::vector<int> parent_;
};

// The parts of the raw curve that take part in the search for crossings: the raw pieces
// themselves, or where some were cleared, what is left of them.
struct CurveParts {
  const std::vector<PieceSpan>* spans = nullptr;  // null: every raw piece whole
  const std::vector<Piece>* pieces = nullptr;
  const std::vector<PieceBox>* boxes = nullptr;  // grown by tol
  const PieceTree* index = nullptr;

  int count() const { return static_cast<int>(pieces->size()); }
  PieceSpan span(int k) const {
    return spans ? (*spans)[static_cast<size_t>(k)] : PieceSpan{k, 0.0, 1.0};
  }
};

// A cut on the raw piece of part k at (x, y), its parameter kept within the part.
Cut cutOnPart(const std::vector<Piece>& raw, const CurveParts& parts, int k, double x, double y,
              int node, int other) {
  const PieceSpan s = parts.span(k);
  const double t = parameterOnPiece(raw[static_cast<size_t>(s.piece)], x, y);
  return {s.piece, std::clamp(t, s.a, s.b), node, x, y, other};
}

// Cuts where the parts of the raw curve meet one another. Parts that continue one another share
// an end: where they meet along a common tangent nothing else can be shared, otherwise only
// their other meeting points count. Parts of one raw piece never meet. Gives up (false) after
// `budget` pairs of overlapping boxes (none: no limit).
bool selfCuts(const RoundInput& in, const std::vector<Piece>& raw, const CurveParts& parts,
              double tol, long long budget, std::vector<Cut>& cuts, int& nodes) {
  const int count = static_cast<int>(raw.size());
  const int partCount = parts.count();
  // Whether part i starts where part j ends.
  const auto continues = [&](int j, int i) {
    const PieceSpan a = parts.span(j), b = parts.span(i);
    return a.b == 1.0 && b.a == 0.0 &&
           (b.piece == a.piece + 1 || (in.closed && a.piece == count - 1 && b.piece == 0));
  };
  std::vector<int> near;
  return !visitNearPairs(*parts.index, *parts.boxes, 0.0, near, [&](int i, int j) {
    const int pieceI = parts.span(i).piece, pieceJ = parts.span(j).piece;
    if (pieceI == pieceJ)
      return false;
    if (budget >= 0 && --budget < 0)
      return true;
    const Piece& p = (*parts.pieces)[static_cast<size_t>(i)];
    const Piece& q = (*parts.pieces)[static_cast<size_t>(j)];
    const bool afterQ = j == i - 1 && continues(j, i);
    const bool beforeQ = j == 0 && i == partCount - 1 && continues(i, j);
    if ((afterQ || beforeQ) && (!afterQ || p.smoothStart) && (!beforeQ || q.smoothStart))
      return false;
    double pts[2][2];
    const int found = meetPoints(p, q, tol, pts);
    for (int k = 0; k < found; ++k) {
      const double x = pts[k][0], y = pts[k][1];
      if ((afterQ && length(x - p.x0, y - p.y0) <= tol) ||
          (beforeQ && length(x - q.x0, y - q.y0) <= tol))
        continue;
      cuts.push_back(cutOnPart(raw, parts, i, x, y, nodes, pieceJ));
      cuts.push_back(cutOnPart(raw, parts, j, x, y, nodes, pieceI));
      ++nodes;
    }
    return false;
  });
}

// Cuts where a cleared run of the raw curve begins or ends (the ends of an open chain are no
// such place).
void clearedCuts(const RoundInput& in, const std::vector<Piece>& raw,
                 const std::vector<PieceSpan>& spans, std::vector<Cut>& cuts, int& nodes) {
  const int count = static_cast<int>(raw.size());
  const int partCount = static_cast<int>(spans.size());
  for (int k = 0; k < partCount; ++k) {
    const PieceSpan& s = spans[static_cast<size_t>(k)];
    const PieceSpan& prev = spans[static_cast<size_t>((k + partCount - 1) % partCount)];
    const PieceSpan& next = spans[static_cast<size_t>((k + 1) % partCount)];
    const bool chainStart = !in.closed && s.piece == 0 && s.a == 0.0;
    const bool chainEnd = !in.closed && s.piece == count - 1 && s.b == 1.0;
    const bool before = !chainStart && !(s.a == 0.0 && prev.b == 1.0 &&
                                         prev.piece == (s.piece + count - 1) % count);
    const bool after =
        !chainEnd && !(s.b == 1.0 && next.a == 0.0 && next.piece == (s.piece + 1) % count);
    const Piece& p = raw[static_cast<size_t>(s.piece)];
    double x, y;
    if (before) {
      pointOnPiece(p, s.a, &x, &y);
      cuts.push_back({s.piece, s.a, nodes++, x, y, kClearedRun});
    }
    if (after) {
      pointOnPiece(p, s.b, &x, &y);
      cuts.push_back({s.piece, s.b, nodes++, x, y, kClearedRun});
    }
  }
}

// Raw pieces whose boxes meet the boxes of kCrowded others or more: where the raw curve folds
// over itself again and again. A walk of the tree serves a run of neighbouring pieces, as in
// visitNearPairs, and stops where the run's surroundings are crowded themselves.
std::vector<char> crowdedPieces(const PieceTree& index, const std::vector<PieceBox>& boxes,
                                bool& any) {
  constexpr int kCrowded = 12;
  constexpr int kRun = 8;
  constexpr size_t kRunReach = 4 * kCrowded;
  const int count = static_cast<int>(boxes.size());
  std::vector<char> crowded(static_cast<size_t>(count), 0);
  std::vector<int> near;
  any = false;
  for (int first = 0; first < count; first += kRun) {
    const int last = std::min(count, first + kRun);
    const PieceBox run = unitedBoxes(boxes, first, last);
    near.clear();
    const bool full = index.visit(count, run, 0.0, [&](int j) {
      near.push_back(j);
      return near.size() > kRunReach;
    });
    for (int i = first; i < last; ++i) {
      int meets = 0;
      for (int j : near)
        meets += j != i &&
                 boxGapSquared(boxes[static_cast<size_t>(i)], boxes[static_cast<size_t>(j)]) <= 0.0;
      // Where the run's surroundings are crowded, every piece of it counts as crowded.
      crowded[static_cast<size_t>(i)] = full || meets >= kCrowded;
      any = any || crowded[static_cast<size_t>(i)];
    }
  }
  return crowded;
}

// Cuts where the raw offset of an open input enters the circle of radius |d| about either end,
// and the raw curve's own two ends.
void endCuts(const RoundInput& in, const std::vector<Piece>& raw, const CurveParts& parts,
             double ad, double tol, std::vector<Cut>& cuts, int& nodes) {
  const int count = static_cast<int>(raw.size());
  for (int end = 0; end < 2; ++end) {
    const double* row = in.row(end == 0 ? 0 : in.rowCount - 1);
    const Piece circle = fullCircle(row[0], row[1], ad);
    const int own = end == 0 ? 0 : count - 1;
    const Piece& ownPiece = raw[static_cast<size_t>(own)];
    const double ox = end == 0 ? ownPiece.x0 : ownPiece.x1;
    const double oy = end == 0 ? ownPiece.y0 : ownPiece.y1;
    parts.index->visit(parts.count(), pieceBox(circle, tol), 0.0, [&](int j) {
      double pts[2][2];
      const int found = meetPoints((*parts.pieces)[static_cast<size_t>(j)], circle, tol, pts);
      for (int k = 0; k < found; ++k) {
        if (parts.span(j).piece == own && length(pts[k][0] - ox, pts[k][1] - oy) <= tol)
          continue;
        cuts.push_back(cutOnPart(raw, parts, j, pts[k][0], pts[k][1], nodes++, -1));
      }
      return false;
    });
  }
  cuts.push_back({0, 0.0, nodes++, raw[0].x0, raw[0].y0, -1});
  cuts.push_back({count - 1, 1.0, nodes++, raw.back().x1, raw.back().y1, -1});
}

// Whether the closed input meets itself anywhere but at the rows its neighbouring segments share.
bool crossesItself(const RoundInput& in, const PieceTree& index, const std::vector<PieceBox>& boxes,
                   double tol) {
  const int count = static_cast<int>(in.segs.size());
  std::vector<int> near;
  return visitNearPairs(index, boxes, tol, near, [&](int i, int j) {
    const Piece& p = in.segs[static_cast<size_t>(i)];
    double pts[2][2];
    const int found = meetPoints(p, in.segs[static_cast<size_t>(j)], tol, pts);
    for (int k = 0; k < found; ++k) {
      const bool sharedStart = j == i - 1 && length(pts[k][0] - p.x0, pts[k][1] - p.y0) <= tol;
      const bool sharedEnd =
          j == 0 && i == count - 1 && length(pts[k][0] - p.x1, pts[k][1] - p.y1) <= tol;
      if (!sharedStart && !sharedEnd)
        return true;
    }
    return false;
  });
}

// Whether the run of the slice keeps at least lim from the input everywhere (a moved segment
// is not measured against its own source, from which it keeps |d| exactly).
bool sliceKeepsAway(const RoundInput& in, const std::vector<Piece>& raw,
                    const PieceTree& inputIndex, const SlicedOffset& s, const Slice& slice,
                    double lim, bool measureAll, const std::vector<PieceBox>& segBoxes,
                    std::vector<Piece>& frags, std::vector<PieceBox>& boxes,
                    std::vector<int>& nearScratch) {
  const int count = static_cast<int>(raw.size());
  const auto fragment = [&](int p, double ta, double tb) {
    const Piece& piece = raw[static_cast<size_t>(p)];
    double xa, ya, xb, yb;
    pointOnPiece(piece, ta, &xa, &ya);
    pointOnPiece(piece, tb, &xb, &yb);
    return subPiece(piece, ta, tb, xa, ya, xb, yb);
  };
  const auto nearer = [&](const Piece& f, auto&& test) {
    return inputIndex.visit(static_cast<int>(in.segs.size()), pieceBox(f, 0.0), lim, [&](int e) {
      return !(f.kind == PieceKind::kMoved && e == f.src) && test(in.segs[static_cast<size_t>(e)]);
    });
  };
  // The middle point first: a dropped slice usually shows it there at once.
  int fragCount = 0;
  forEachFragment(s, slice, count, in.closed, [&](int, double, double) { ++fragCount; });
  Piece mid;
  int k = 0;
  forEachFragment(s, slice, count, in.closed, [&](int p, double ta, double tb) {
    if (k++ == fragCount / 2)
      mid = fragment(p, ta, tb);
  });
  double mx, my;
  pointOnPiece(mid, 0.5, &mx, &my);
  Piece point = mid;
  point.r = 0.0;
  point.x0 = point.x1 = mx;
  point.y0 = point.y1 = my;
  // Where the slice enters or leaves the band of another segment, the piece crossing there was
  // made from that segment (or from a corner at one of its ends): asking those first settles
  // most dropped slices without a search.
  const int segCount = static_cast<int>(in.segs.size());
  for (int c : {slice.from, slice.to}) {
    const int other = s.cuts[static_cast<size_t>(c)].other;
    if (other < 0)
      continue;
    const int src = raw[static_cast<size_t>(other)].src;
    for (int e : {src, src - 1, src + 1}) {
      const int seg = in.closed ? (e + segCount) % segCount : e;
      if (seg >= 0 && seg < segCount && !(mid.kind == PieceKind::kMoved && seg == mid.src) &&
          distanceToPiece(in.segs[static_cast<size_t>(seg)], mx, my) < lim)
        return false;
    }
  }
  if (nearer(point, [&](const Piece& e) { return distanceToPiece(e, mx, my) < lim; }))
    return false;
  if (!measureAll)
    return true;
  frags.clear();
  forEachFragment(s, slice, count, in.closed,
                  [&](int p, double ta, double tb) { frags.push_back(fragment(p, ta, tb)); });
  // Then every fragment, a run of them at a time: one walk of the tree finds the segments near
  // the run's box, and each fragment is measured against those whose boxes come near its own.
  constexpr size_t kRun = 16;
  std::vector<int>& near = nearScratch;
  for (size_t first = 0; first < frags.size(); first += kRun) {
    const size_t last = std::min(frags.size(), first + kRun);
    PieceBox run = pieceBox(frags[first], 0.0);
    boxes.clear();
    for (size_t f = first; f < last; ++f) {
      boxes.push_back(pieceBox(frags[f], 0.0));
      run = unite(run, boxes.back());
    }
    near.clear();
    inputIndex.visit(static_cast<int>(in.segs.size()), run, lim, [&](int e) {
      near.push_back(e);
      return false;
    });
    for (size_t f = first; f < last; ++f)
      for (int e : near) {
        const Piece& seg = in.segs[static_cast<size_t>(e)];
        if (!(frags[f].kind == PieceKind::kMoved && e == frags[f].src) &&
            boxGapSquared(boxes[f - first], segBoxes[static_cast<size_t>(e)]) < lim * lim &&
            comesNearer(frags[f], seg, lim))
          return false;
      }
  }
  return true;
}

}  // namespace

int meetPoints(const Piece& a, const Piece& b, double tol, double (*pts)[2]) {
  if (!a.isArc() && !b.isArc())
    return meetLines(a, b, tol, pts);
  if (!a.isArc())
    return meetLineArc(a, b, tol, pts);
  if (!b.isArc())
    return meetLineArc(b, a, tol, pts);
  return meetArcs(a, b, tol, pts);
}

void sliceRawOffset(const RoundInput& in, const std::vector<Piece>& raw, double d, double tol,
                    SlicedOffset& out) {
  const int count = static_cast<int>(raw.size());
  const double ad = std::fabs(d);
  out = SlicedOffset();
  std::vector<PieceBox> boxes;  // of the raw pieces, grown by tol
  boxes.reserve(raw.size());
  for (const Piece& p : raw)
    boxes.push_back(pieceBox(p, tol));
  PieceTree index;
  index.build(count, [&](int i) { return boxes[static_cast<size_t>(i)]; });
  std::vector<PieceBox> segBoxes;
  segBoxes.reserve(in.segs.size());
  for (const Piece& seg : in.segs)
    segBoxes.push_back(pieceBox(seg, 0.0));
  PieceTree inputIndex;
  inputIndex.build(static_cast<int>(in.segs.size()),
                   [&](int e) { return segBoxes[static_cast<size_t>(e)]; });
  const double lim = ad - std::min(tol, ad / 2.0);

  // The crossings are searched among the raw pieces as they are, while their boxes meet only a
  // few others on average. Where the raw curve folds over itself again and again they meet
  // many: then what lies too near the input is cleared from the crowded pieces first, and the
  // search runs again on what is left. Not where round-off is large against the distance (a
  // drawing far larger than it), where the slack of the crossings reaches across the margin
  // between what clearing keeps and what it drops, nor for distances whose squares overflow.
  constexpr long long kPairsPerPiece = 4;  // a plain outline meets one: its neighbour
  std::vector<Cut>& cuts = out.cuts;
  int nodes = 0;
  bool anyCrowded = false;
  std::vector<char> crowded(raw.size(), 0);
  CurveParts parts{nullptr, &raw, &boxes, &index};
  std::vector<PieceSpan> spans;
  std::vector<Piece> partPieces;
  std::vector<PieceBox> partBoxes;
  PieceTree partIndex;
  const bool mayClear = 4.0 * tol <= ad && ad < kLargestExtent;
  if (!selfCuts(in, raw, parts, tol, mayClear ? kPairsPerPiece * count : -1, cuts, nodes)) {
    cuts.clear();
    nodes = 0;
    crowded = crowdedPieces(index, boxes, anyCrowded);
    if (anyCrowded) {
      clearTooNear(in, raw, inputIndex, lim, crowded, spans);
      if (spans.empty())
        return;  // nothing is far enough from the input
      partPieces.reserve(spans.size());
      partBoxes.reserve(spans.size());
      for (const PieceSpan& s : spans) {
        const Piece& p = raw[static_cast<size_t>(s.piece)];
        double xa, ya, xb, yb;
        pointOnPiece(p, s.a, &xa, &ya);
        pointOnPiece(p, s.b, &xb, &yb);
        partPieces.push_back(subPiece(p, s.a, s.b, xa, ya, xb, yb));
        partBoxes.push_back(pieceBox(partPieces.back(), tol));
      }
      partIndex.build(static_cast<int>(spans.size()),
                      [&](int k) { return partBoxes[static_cast<size_t>(k)]; });
      parts = CurveParts{&spans, &partPieces, &partBoxes, &partIndex};
    }
    selfCuts(in, raw, parts, tol, -1, cuts, nodes);
  }
  if (anyCrowded)
    clearedCuts(in, raw, spans, cuts, nodes);
  if (!in.closed)
    endCuts(in, raw, parts, ad, tol, cuts, nodes);
  else if (cuts.empty())
    cuts.push_back({0, 0.0, nodes++, raw[0].x0, raw[0].y0, -1});
  std::stable_sort(cuts.begin(), cuts.end(), [](const Cut& a, const Cut& b) {
    return a.piece < b.piece || (a.piece == b.piece && a.t < b.t);
  });

  // Cuts closer than tol along the curve are one node, and the run between them is none.
  std::vector<double> start(static_cast<size_t>(count) + 1, 0.0);
  for (int i = 0; i < count; ++i)
    start[static_cast<size_t>(i) + 1] =
        start[static_cast<size_t>(i)] + pieceLength(raw[static_cast<size_t>(i)]);
  const auto position = [&](const Cut& c) {
    return start[static_cast<size_t>(c.piece)] +
           c.t * pieceLength(raw[static_cast<size_t>(c.piece)]);
  };
  const int cutCount = static_cast<int>(cuts.size());
  UnionFind joined(nodes);
  std::vector<char> empty(static_cast<size_t>(cutCount), 0);
  for (int k = 0; k < cutCount; ++k) {
    const bool last = k + 1 == cutCount;
    if (last && (!in.closed || cutCount == 1))
      break;
    const Cut& a = cuts[static_cast<size_t>(k)];
    const Cut& b = cuts[static_cast<size_t>(last ? 0 : k + 1)];
    const double gap = last ? start.back() - position(a) + position(b) : position(b) - position(a);
    if (gap <= tol) {
      joined.unite(a.node, b.node);
      empty[static_cast<size_t>(k)] = 1;
    }
  }
  out.nodeOf.resize(static_cast<size_t>(cutCount));
  std::vector<int> rootIndex(static_cast<size_t>(nodes), -1);
  for (int k = 0; k < cutCount; ++k) {
    const Cut& c = cuts[static_cast<size_t>(k)];
    int& id = rootIndex[static_cast<size_t>(joined.find(c.node))];
    if (id < 0) {
      id = out.nodeCount++;
      out.nodeX.push_back(c.x);
      out.nodeY.push_back(c.y);
    }
    out.nodeOf[static_cast<size_t>(k)] = id;
  }

  // Whether every fragment of a slice must be measured (open or self-crossing input), found
  // when a slice first needs it.
  int measureAll = -1;

  std::vector<Piece> frags;
  std::vector<PieceBox> fragBoxes;
  std::vector<int> near;
  for (int k = 0; k < cutCount; ++k) {
    if (empty[static_cast<size_t>(k)] || (k + 1 == cutCount && !in.closed))
      continue;
    Slice slice{k, k + 1 == cutCount ? 0 : k + 1, false};
    // A run that reaches into a cleared one lies too near the input like it. One made only of
    // what clearing left of crowded pieces of a closed input keeps lim from it throughout: it
    // needs no measuring, nor the test whether the input crosses itself.
    if (cuts[static_cast<size_t>(slice.from)].other == kClearedRun ||
        cuts[static_cast<size_t>(slice.to)].other == kClearedRun) {
      slice.kept = false;
    } else {
      bool cleared = anyCrowded && in.closed;
      forEachFragment(out, slice, count, in.closed, [&](int p, double, double) {
        cleared = cleared && crowded[static_cast<size_t>(p)];
      });
      if (!cleared && measureAll < 0)
        measureAll = !in.closed || crossesItself(in, inputIndex, segBoxes, tol) ? 1 : 0;
      slice.kept = cleared || sliceKeepsAway(in, raw, inputIndex, out, slice, lim, measureAll == 1,
                                             segBoxes, frags, fragBoxes, near);
    }
    out.slices.push_back(slice);
  }
}

}  // namespace tarnsysm::detail
