// Tarnsysm: planar computational geometry for 2D drafting.
// Bounding-box tree over the segments of a polyline, in segment order, for the loop scan and the
// visibility tests of the trimming. Not installed.
#pragma once

#include <cmath>
#include <vector>

namespace tarnsysm::detail {

/// An axis-aligned box. The empty box (min above max) overlaps nothing.
struct SegmentBox {
  double xmin, ymin, xmax, ymax;

  static SegmentBox empty();
  bool overlaps(const SegmentBox& o) const {
    return xmin <= o.xmax && o.xmin <= xmax && ymin <= o.ymax && o.ymin <= ymax;
  }
};

/// The box of the segment from (x1, y1) to (x2, y2) with the given bulge, grown by a margin that
/// covers every tolerance the intersection routines apply to it: eps as a parameter tolerance
/// along a line (eps·L), as an angular tolerance on an arc (eps·R), as a length, plus round-off
/// of the coordinates. (cx, cy, r, sa, ea) is the arc as PL_ArcParam gives it when isArc is set;
/// the arc's own box comes from get_arc_box, joined with both end points. A segment with a
/// coordinate or margin that is not finite gets the empty box: it is left out of the index.
SegmentBox paddedSegmentBox(double eps, double x1, double y1, double x2, double y2, bool isArc,
                            double cx, double cy, double r, double sa, double ea);

/// A balanced binary tree of boxes over the ids 0 .. count-1, leaves in id order, each inner node
/// holding the union of its leaves. Ids can be removed (their leaf becomes empty); boxes never
/// grow, so a stored box may only be larger than its segment, never smaller.
class SegmentIndex {
 public:
  /// Builds the tree over boxes[0 .. count-1] in O(count).
  void build(const std::vector<SegmentBox>& boxes);

  /// Leaves id out of every later query.
  void remove(int id);

  /// Calls visit(id) for the ids below `limit` whose boxes overlap `query`, in decreasing id
  /// order, until visit returns true; returns whether it did.
  template <class Visit>
  bool visitBelowDescending(int limit, const SegmentBox& query, Visit&& visit) const;

  /// Calls visit(id) for the ids whose boxes may meet the straight segment from (x1, y1) to
  /// (x2, y2) grown by pad (box overlap, then the side of the segment's line), in no particular
  /// order, until visit returns true; returns whether it did.
  template <class Visit>
  bool visitAlongSegment(double x1, double y1, double x2, double y2, double pad,
                         Visit&& visit) const;

 private:
  bool lineSeparates(int node, double x1, double y1, double nx, double ny, double pad) const;

  int leaves_ = 0;  // a power of two, at least 1
  int count_ = 0;
  std::vector<SegmentBox> nodes_;  // 1-based heap: node k has children 2k and 2k + 1
};

template <class Visit>
bool SegmentIndex::visitBelowDescending(int limit, const SegmentBox& query, Visit&& visit) const {
  if (count_ == 0 || limit <= 0)
    return false;
  // Depth-first, right child first, so leaves come out in decreasing id order. The stack holds
  // at most one pending left sibling per level.
  struct Item {
    int node, lo, width;
  };
  Item stack[64];
  int top = 0;
  stack[top++] = {1, 0, leaves_};
  while (top > 0) {
    const Item it = stack[--top];
    if (it.lo >= limit || !nodes_[it.node].overlaps(query))
      continue;
    if (it.width == 1) {
      if (visit(it.lo))
        return true;
      continue;
    }
    const int half = it.width / 2;
    stack[top++] = {2 * it.node, it.lo, half};
    stack[top++] = {2 * it.node + 1, it.lo + half, half};
  }
  return false;
}

template <class Visit>
bool SegmentIndex::visitAlongSegment(double x1, double y1, double x2, double y2, double pad,
                                     Visit&& visit) const {
  if (count_ == 0)
    return false;
  const SegmentBox query{(x1 < x2 ? x1 : x2) - pad, (y1 < y2 ? y1 : y2) - pad,
                         (x1 < x2 ? x2 : x1) + pad, (y1 < y2 ? y2 : y1) + pad};
  // Unit normal of the segment's line; a point has no line, the box test alone decides.
  const double dx = x2 - x1;
  const double dy = y2 - y1;
  const double len = std::sqrt(dx * dx + dy * dy);
  const bool hasLine = len > 0.0 && len < 1e300;
  const double nx = hasLine ? dy / len : 0.0;
  const double ny = hasLine ? -dx / len : 0.0;
  int stack[64];
  int top = 0;
  stack[top++] = 1;
  while (top > 0) {
    const int node = stack[--top];
    if (!nodes_[node].overlaps(query))
      continue;
    if (hasLine && lineSeparates(node, x1, y1, nx, ny, pad))
      continue;
    if (node >= leaves_) {
      if (visit(node - leaves_))
        return true;
      continue;
    }
    stack[top++] = 2 * node;
    stack[top++] = 2 * node + 1;
  }
  return false;
}

}  // namespace tarnsysm::detail
