// Tarnsysm: planar computational geometry for 2D drafting.
// Internals of the round-corner offset shared by its raw offset, slicing and stitching. Not
// installed.
#pragma once

#include <algorithm>
#include <cmath>
#include <vector>

namespace tarnsysm::detail {

/// What a piece of the raw offset is: a moved source segment (it keeps its source row's
/// attributes), a round corner about a source vertex, or a connector that bridges a corner whose
/// moved neighbours neither meet nor pull apart (a chord through the corner's circle, or an arc
/// moved past its centre). Corners and connectors are inserted rows.
enum class PieceKind : unsigned char { kMoved, kCorner, kConnector };

/// A line or a circular arc from (x0, y0) to (x1, y1). An arc (r > 0) has its centre, radius,
/// start angle a0 and signed sweep (positive counter-clockwise); its end points are stored as
/// computed, so neighbouring pieces share them bit for bit. src is the source row: the start
/// row of the moved segment, or the vertex of a corner.
/// Rows, radii and distances from this on make squared lengths overflow; such input is refused.
constexpr double kLargestExtent = 1e100;

/// Length of (dx, dy). Extents are kept below 1e100, so the squares cannot overflow (and
/// std::hypot's care for that would cost more than the rest of a distance test).
inline double length(double dx, double dy) {
  return std::sqrt(dx * dx + dy * dy);
}

/// An axis-aligned box.
struct PieceBox {
  double xmin, ymin, xmax, ymax;
};

inline PieceBox unite(const PieceBox& a, const PieceBox& b) {
  return {std::min(a.xmin, b.xmin), std::min(a.ymin, b.ymin), std::max(a.xmax, b.xmax),
          std::max(a.ymax, b.ymax)};
}

/// Squared distance between two boxes (0 where they overlap): never more than between any of
/// their contents.
inline double boxGapSquared(const PieceBox& a, const PieceBox& b) {
  const double dx = std::max({0.0, a.xmin - b.xmax, b.xmin - a.xmax});
  const double dy = std::max({0.0, a.ymin - b.ymax, b.ymin - a.ymax});
  return dx * dx + dy * dy;
}

struct Piece {
  double x0 = 0.0, y0 = 0.0, x1 = 0.0, y1 = 0.0;
  double cx = 0.0, cy = 0.0, r = 0.0;
  double a0 = 0.0, sweep = 0.0;
  int src = 0;
  PieceKind kind = PieceKind::kMoved;
  /// The raw curve arrives at the start of this piece along a common tangent (no cut can lie
  /// at the shared point other than the shared point itself).
  bool smoothStart = false;

  bool isArc() const { return r > 0.0; }
};

/// The cleaned input: rows with duplicates merged, and its segments as pieces.
struct RoundInput {
  std::vector<double> rows;  // five doubles per row
  std::vector<Piece> segs;   // segment k runs from row k to row k + 1 (wrapping when closed)
  int rowCount = 0;
  bool closed = false;
  double extent = 0.0;  // largest coordinate magnitude of the segments' boxes

  const double* row(int k) const { return &rows[static_cast<size_t>(k) * 5]; }
};

/// Reads and cleans the rows; false for bad input (non-finite coordinates or bulges, fewer than
/// two distinct vertices, an extent beyond 1e100).
bool readRoundInput(double eps, int closed, int n, const double (*v)[5], RoundInput& in);

/// The raw offset of the input at signed distance d: moved segments joined by round corners,
/// trimmed where moved neighbours cross, bridged by connectors elsewhere. Consecutive pieces
/// share end points exactly; closed input gives a closed chain. Pieces shorter than tol are
/// dropped.
void buildRawOffset(const RoundInput& in, double d, double tol, std::vector<Piece>& raw);

// ---- Piece geometry (round_raw.cpp) ----------------------------------------------------------

/// The point at parameter t (0 start, 1 end: along a line, or a fraction of an arc's sweep).
void pointOnPiece(const Piece& p, double t, double* x, double* y);

/// Parameter of a point on (or next to) the piece: the nearer of the two readings across the
/// arc's gap.
double parameterOnPiece(const Piece& p, double x, double y);

/// The part of p from parameter ta to tb, its ends at (xa, ya) and (xb, yb).
Piece subPiece(const Piece& p, double ta, double tb, double xa, double ya, double xb, double yb);

double pieceLength(const Piece& p);
PieceBox pieceBox(const Piece& p, double pad);

/// Whether the direction (wx, wy) from an arc's centre lies on its sweep (closed).
bool directionOnArc(const Piece& p, double wx, double wy);

/// Distance from (x, y) to the piece.
double distanceToPiece(const Piece& p, double x, double y);

/// A balanced tree of boxes over the ids 0 .. count-1 (leaves in id order, each inner node the
/// union of its leaves) that hands back the ids whose boxes overlap a box, or lie nearer to it
/// than a distance.
class PieceTree {
 public:
  template <class BoxOf>
  void build(int count, BoxOf&& boxOf);

  /// Calls visit(id) for the ids below `limit` whose boxes come nearer to `query` than reach
  /// (reach 0: overlap, touching included), until visit returns true; returns whether it did.
  template <class Visit>
  bool visit(int limit, const PieceBox& query, double reach, Visit&& visit) const;

  /// Calls visit(id, query) for the ids whose boxes come nearer to `query` than reach, nearer
  /// subtrees first, until visit returns true; visit may shrink the query as it goes (what is
  /// left to search), and subtrees beyond the new query are skipped. Returns whether visit
  /// returned true.
  template <class Visit>
  bool visitNearestFirst(PieceBox& query, double reach, Visit&& visit) const;

 private:
  template <bool kNearestFirst, class Visit>
  bool walk(int limit, PieceBox& query, double reach, Visit&& visit) const;

  int leaves_ = 1;
  int count_ = 0;
  std::vector<PieceBox> nodes_;  // 1-based heap: node k has children 2k and 2k + 1
};

/// The union of boxes[first] to boxes[last - 1] (first < last).
inline PieceBox unitedBoxes(const std::vector<PieceBox>& boxes, int first, int last) {
  PieceBox run = boxes[static_cast<size_t>(first)];
  for (int i = first + 1; i < last; ++i)
    run = unite(run, boxes[static_cast<size_t>(i)]);
  return run;
}

/// Calls visit(i, j) for every pair j < i whose boxes come nearer than reach, until visit
/// returns true; returns whether it did. The tree holds the same boxes. Neighbouring ids lie
/// near one another, so the tree is walked once for each run of a few ids, with the run's
/// box, and the pairs are sorted out from the ids it hands back.
template <class Visit>
bool visitNearPairs(const PieceTree& tree, const std::vector<PieceBox>& boxes, double reach,
                    std::vector<int>& near, Visit&& visit) {
  constexpr int kRun = 8;
  const int count = static_cast<int>(boxes.size());
  const double reach2 = reach * reach;
  for (int first = 0; first < count; first += kRun) {
    const int last = std::min(count, first + kRun);
    const PieceBox run = unitedBoxes(boxes, first, last);
    near.clear();
    tree.visit(last - 1, run, reach, [&](int j) {
      near.push_back(j);
      return false;
    });
    for (int i = first; i < last; ++i)
      for (int j : near)
        if (j < i &&
            boxGapSquared(boxes[static_cast<size_t>(i)], boxes[static_cast<size_t>(j)]) <= reach2 &&
            visit(i, j))
          return true;
  }
  return false;
}

/// The full circle of radius r about (cx, cy), as an arc piece.
Piece fullCircle(double cx, double cy, double r);

// ---- Clearing what lies too near the input (round_clear.cpp) ---------------------------------

/// A part of a raw piece: parameters a to b along it.
struct PieceSpan {
  int piece;
  double a, b;
};

/// The parts of the raw pieces that may belong to the offset, in order along the raw curve: a
/// piece flagged in `crowded` loses every part that some input segment other than its own
/// source (for a moved segment) comes nearer to than lim; other pieces stay whole.
void clearTooNear(const RoundInput& in, const std::vector<Piece>& raw, const PieceTree& inputIndex,
                  double lim, const std::vector<char>& crowded, std::vector<PieceSpan>& spans);

// ---- Meeting points and distances (round_slice.cpp) -------------------------------------------

/// Points where the pieces a and b meet, within both (tol slack at the ends), at most two, into
/// pts; a touch within tol counts once, and overlapping collinear or concentric pieces report
/// the ends of their overlap. Returns the count.
int meetPoints(const Piece& a, const Piece& b, double tol, double (*pts)[2]);

/// A cut of the raw curve: piece and parameter, the node it belongs to, the point, and the
/// piece that crosses there (-1 at an end of an open chain or the circle about an input end,
/// kClearedRun where a cleared run begins or ends).
constexpr int kClearedRun = -2;

struct Cut {
  int piece;
  double t;
  int node;
  double x, y;
  int other;
};

/// A run of the raw curve between two consecutive cuts (indices into the sorted cuts).
struct Slice {
  int from, to;
  bool kept;
};

/// Everything slicing finds: cuts sorted along the raw curve, their merged nodes (node of cut
/// k is nodes[cuts[k].node], with nodeX/nodeY its point), and the slices with their verdicts.
struct SlicedOffset {
  std::vector<Cut> cuts;
  std::vector<int> nodeOf;  // root node of each cut
  std::vector<double> nodeX, nodeY;
  std::vector<Slice> slices;
  int nodeCount = 0;
};

/// Cuts the raw curve where it meets itself (and, for open input, the circles of radius |d|
/// about the input's ends), and keeps the slices that come no nearer the input than
/// |d| - tol anywhere.
void sliceRawOffset(const RoundInput& in, const std::vector<Piece>& raw, double d, double tol,
                    SlicedOffset& out);

/// The parts of raw pieces a slice runs over, in order: calls visit(piece, ta, tb) for each
/// part of positive length.
template <class Visit>
void forEachFragment(const SlicedOffset& s, const Slice& slice, int pieceCount, bool closed,
                     Visit&& visit) {
  const Cut& a = s.cuts[static_cast<size_t>(slice.from)];
  const Cut& b = s.cuts[static_cast<size_t>(slice.to)];
  const bool wraps = slice.to <= slice.from;  // around the closed chain's end, or all of it
  if (!wraps && a.piece == b.piece) {
    visit(a.piece, a.t, b.t);
    return;
  }
  if (a.t < 1.0)
    visit(a.piece, a.t, 1.0);
  const int last = b.piece + (wraps && closed ? pieceCount : 0);
  for (int p = a.piece + 1; p < last; ++p)
    visit(p % pieceCount, 0.0, 1.0);
  if (b.t > 0.0)
    visit(b.piece, 0.0, b.t);
}

template <class BoxOf>
void PieceTree::build(int count, BoxOf&& boxOf) {
  count_ = count;
  leaves_ = 1;
  while (leaves_ < count)
    leaves_ *= 2;
  const double inf = 1e300;
  nodes_.assign(2 * static_cast<size_t>(leaves_), PieceBox{inf, inf, -inf, -inf});
  for (int i = 0; i < count; ++i)
    nodes_[static_cast<size_t>(leaves_ + i)] = boxOf(i);
  for (int k = leaves_ - 1; k >= 1; --k) {
    nodes_[static_cast<size_t>(k)] =
        unite(nodes_[2 * static_cast<size_t>(k)], nodes_[2 * static_cast<size_t>(k) + 1]);
  }
}

template <class Visit>
bool PieceTree::visit(int limit, const PieceBox& query, double reach, Visit&& visit) const {
  PieceBox fixed = query;
  return walk<false>(limit, fixed, reach, [&](int id, PieceBox&) { return visit(id); });
}

template <class Visit>
bool PieceTree::visitNearestFirst(PieceBox& query, double reach, Visit&& visit) const {
  return walk<true>(count_, query, reach, visit);
}

template <bool kNearestFirst, class Visit>
bool PieceTree::walk(int limit, PieceBox& query, double reach, Visit&& visit) const {
  if (limit > count_)
    limit = count_;
  // (node, first leaf id below it, leaf count): a node whose first id reaches the limit is out.
  struct Entry {
    int node, first, size;
  };
  Entry stack[64];
  const double reach2 = reach * reach;
  int top = 0;
  stack[top++] = {1, 0, leaves_};
  while (top > 0) {
    const Entry e = stack[--top];
    if (e.first >= limit || !(boxGapSquared(nodes_[static_cast<size_t>(e.node)], query) <= reach2))
      continue;
    if (e.size == 1) {
      if (visit(e.first, query))
        return true;
      continue;
    }
    const int half = e.size / 2;
    const Entry lo{2 * e.node, e.first, half}, hi{2 * e.node + 1, e.first + half, half};
    bool hiFirst = false;
    if (kNearestFirst) {
      // The subtree whose box is centred nearer the middle of the query first: where long
      // segments cross, most boxes overlap the query, and the centres still tell them apart.
      const auto centreGap = [&](int node) {
        const PieceBox& b = nodes_[static_cast<size_t>(node)];
        const double dx = b.xmin + b.xmax - query.xmin - query.xmax;
        const double dy = b.ymin + b.ymax - query.ymin - query.ymax;
        return dx * dx + dy * dy;
      };
      hiFirst = centreGap(hi.node) < centreGap(lo.node);
    }
    stack[top++] = hiFirst ? lo : hi;
    stack[top++] = hiFirst ? hi : lo;
  }
  return false;
}

}  // namespace tarnsysm::detail
