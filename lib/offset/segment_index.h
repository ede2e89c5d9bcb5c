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

/// A straight segment grown by a margin, for quick tests against boxes: its own box, then the
/// side of its line.
class SightSegment {
 public:
  SightSegment(double x1, double y1, double x2, double y2, double pad);

  /// False when the box certainly lies apart from the grown segment.
  bool mayMeet(const SegmentBox& box) const;

 private:
  SegmentBox box_;
  double x1_, y1_, nx_, ny_, pad_;
  bool hasLine_;
};

/// A balanced binary tree of boxes over the ids 0 .. count-1, leaves in id order, each inner node
/// holding the union of its leaves. Ids can be removed (their leaf becomes empty); boxes never
/// grow, so a stored box may only be larger than its segment, never smaller.
class SegmentIndex {
 public:
  /// Builds the tree over the boxes boxOf(0) .. boxOf(count - 1) in O(count). Throws
  /// std::bad_alloc when memory (or the leaf count) runs out.
  template <class BoxOf>
  void build(int count, BoxOf&& boxOf);

  /// Leaves id out of every later query.
  void remove(int id);

  /// Leaves the ids first .. last out of every later query.
  void removeRange(int first, int last);

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

  /// Calls visit(id) for the ids whose boxes, and the boxes of every subtree holding them, pass
  /// accept(const SegmentBox&) (a box may only be larger than what it holds, so accept must
  /// pass any box that holds a passing one), in no particular order, until visit returns true;
  /// returns whether it did.
  template <class Accept, class Visit>
  bool visitWhere(Accept&& accept, Visit&& visit) const;

 private:
  // Boxes are kept in single precision, rounded outwards, which halves the tree's memory.
  struct Node {
    float xmin, ymin, xmax, ymax;

    bool overlaps(const SegmentBox& q) const {
      return xmin <= q.xmax && q.xmin <= xmax && ymin <= q.ymax && q.ymin <= ymax;
    }
    operator SegmentBox() const { return {xmin, ymin, xmax, ymax}; }
  };
  static Node nodeOf(const SegmentBox& b);
  static Node unite(const Node& a, const Node& b);
  void allocate(int count);
  void refitAbove(int lo, int hi);

  int leaves_ = 0;  // a power of two, at least 1
  int count_ = 0;
  std::vector<Node> nodes_;  // 1-based heap: node k has children 2k and 2k + 1
};

template <class BoxOf>
void SegmentIndex::build(int count, BoxOf&& boxOf) {
  allocate(count);
  for (int i = 0; i < count; ++i)
    nodes_[leaves_ + i] = nodeOf(boxOf(i));
  refitAbove(leaves_, 2 * leaves_ - 1);
}

template <class Visit>
bool SegmentIndex::visitBelowDescending(int limit, const SegmentBox& query, Visit&& visit) const {
  if (limit > count_)
    limit = count_;
  if (limit <= 0)
    return false;
  // Climb from the leaf just below the limit: every left sibling on the way up holds the next
  // lower ids, so visiting each (right child first) yields decreasing ids. The stack holds at most
  // one pending left child per level.
  int node = leaves_ + limit - 1;
  if (nodes_[node].overlaps(query) && visit(limit - 1))
    return true;
  int stack[64];
  for (; node > 1; node /= 2) {
    if ((node & 1) == 0 || !nodes_[node - 1].overlaps(query))
      continue;
    int top = 0;
    stack[top++] = node - 1;
    while (top > 0) {
      const int k = stack[--top];
      if (k >= leaves_) {
        if (visit(k - leaves_))
          return true;
        continue;
      }
      if (nodes_[2 * k].overlaps(query))
        stack[top++] = 2 * k;
      if (nodes_[2 * k + 1].overlaps(query))
        stack[top++] = 2 * k + 1;
    }
  }
  return false;
}

template <class Visit>
bool SegmentIndex::visitAlongSegment(double x1, double y1, double x2, double y2, double pad,
                                     Visit&& visit) const {
  const SightSegment sight(x1, y1, x2, y2, pad);
  return visitWhere([&](const SegmentBox& box) { return sight.mayMeet(box); }, visit);
}

template <class Accept, class Visit>
bool SegmentIndex::visitWhere(Accept&& accept, Visit&& visit) const {
  if (count_ == 0)
    return false;
  int stack[64];
  int top = 0;
  stack[top++] = 1;
  while (top > 0) {
    const int node = stack[--top];
    if (!accept(static_cast<SegmentBox>(nodes_[node])))
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
