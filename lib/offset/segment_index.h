// Tarnsysm: planar computational geometry for 2D drafting.
// Bounding-box tree over the segments of a polyline, in segment order, for the loop scan and the
// visibility tests of the trimming. Not installed.
//
// Every node holds an axis-aligned box of the segments below it. Where the boxes hand back many
// segments per query, two more conservative summaries are added (and given up again where they
// rule out little):
//  - an oriented box (a frame): two slabs across a float axis u and its normal. A run of long
//    slanted segments (the spokes of a star) has a wide axis-aligned box but a thin frame, so a
//    query can rule out whole fans of them;
//  - the members by kind: for the straight ones a direction and bounds on their lengths and on
//    how far they turn from it, so that a straight query can rule out every member whose cross
//    product with it is certainly below a tolerance (the parallel test of the line intersection);
//    for the arcs a circle they all lie near, so that an arc query on that circle can rule them
//    out (concentric circles never meet). Segments overlapping one another on one line or one
//    circle are never handed back one by one.
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

/// What the tree holds of one segment: a box that holds it and every point its intersection
/// tests can accept. A straight segment also keeps its ends and the margin around them (the
/// segment grown by a square of half-width pad lies in the box); an arc a circle that lies
/// within dev of its own (centre distance plus radius difference).
struct SegmentShape {
  enum Kind { other, straight, circular };
  Kind kind;
  SegmentBox box;
  double x1, y1, x2, y2, pad;
  double cx, cy, r, dev;

  static SegmentShape empty() { return boxed(SegmentBox::empty()); }
  static SegmentShape of(const SegmentShape& s) { return s; }
  static SegmentShape of(const SegmentBox& b) { return boxed(b); }
  static SegmentShape boxed(const SegmentBox& b) {
    return {other, b, 0.0, 0.0, 0.0, 0.0, 0.0, 0.0, 0.0, 0.0, 0.0};
  }
  static SegmentShape line(const SegmentBox& b, double x1, double y1, double x2, double y2,
                           double pad) {
    return {straight, b, x1, y1, x2, y2, pad, 0.0, 0.0, 0.0, 0.0};
  }
  static SegmentShape circle(const SegmentBox& b, double cx, double cy, double r, double dev) {
    return {circular, b, 0.0, 0.0, 0.0, 0.0, 0.0, cx, cy, r, dev};
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

/// A query: a segment's shape and the members it can never meet, which need not be handed back
/// (each test is off at 0 or below):
///  - a straight probe: straight members whose cross product with it (both directions as end
///    minus start) is certainly below parallelBelow;
///  - a circular probe: straight members no longer than shortUpTo, and arcs whose circles lie
///    within concentricUpTo of the probe's (centre distance plus radius difference).
struct SegmentProbe {
  SegmentShape shape;
  double parallelBelow;
  double shortUpTo;
  double concentricUpTo;
};

/// A balanced binary tree over the ids 0 .. count-1, leaves in id order. Ids can be removed (their
/// leaf becomes empty); a stored box or frame may only be larger than its segment, never
/// smaller.
class SegmentIndex {
 public:
  /// Builds the tree of axis-aligned boxes over the shapes shapeOf(0) .. shapeOf(count - 1)
  /// (SegmentShape, or just a SegmentBox) in O(count). Throws std::bad_alloc when memory (or the
  /// leaf count) runs out.
  template <class ShapeOf>
  void build(int count, ShapeOf&& shapeOf);

  /// Adds the frames and the summaries by kind, from shapeOf(id) for every id not removed, in
  /// O(count). They cost about as much as the boxes to build and keep, and pay only where the
  /// boxes hand back many segments, so callers add them once handedBack() says so. Throws
  /// std::bad_alloc when memory runs out.
  template <class ShapeOf>
  void summarise(ShapeOf&& shapeOf);

  /// summarise, once the queries have handed back more than a few ids per segment; and drop the
  /// summaries for good once they have been asked often but ruled out few of the nodes the boxes
  /// let through (crossings that are real, not crowding).
  template <class ShapeOf>
  void summariseWhenCrowded(ShapeOf&& shapeOf) {
    if (!rich_ && !droppedSummaries_ && visited_ > 8LL * count_ + 1024)
      summarise(shapeOf);
    else if (rich_ && asked_ > 8LL * count_ + 4096 && 8 * ruledOut_ < asked_)
      dropSummaries();
  }

  /// Leaves id out of every later query.
  void remove(int id);

  /// Leaves the ids first .. last out of every later query.
  void removeRange(int first, int last);

  /// Segment id became a part of itself (cut at a point on it): its summary by kind is taken
  /// from `shape` (when summarised); its boxes, which still hold it, stay.
  void shrink(int id, const SegmentShape& shape);

  /// Calls visit(id) for the ids below `limit` that may meet the probe, in decreasing id order,
  /// until visit returns true; returns whether it did.
  template <class Visit>
  bool visitBelowDescending(int limit, const SegmentProbe& probe, Visit&& visit) const;

  /// Calls visit(id) for the ids that may meet the probe, in no particular order, until visit
  /// returns true; returns whether it did.
  template <class Visit>
  bool visitAll(const SegmentProbe& probe, Visit&& visit) const;

  /// Calls visit(id) for the ids whose boxes, and the boxes of every subtree holding them, pass
  /// accept(const SegmentBox&) (a box may only be larger than what it holds, so accept must
  /// pass any box that holds a passing one), in no particular order, until visit returns true;
  /// returns whether it did.
  template <class Accept, class Visit>
  bool visitWhere(Accept&& accept, Visit&& visit) const;

  /// visitWhere for the straight segment from (x1, y1) to (x2, y2) grown by pad: boxes it may
  /// meet (box overlap, then the side of its line).
  template <class Visit>
  bool visitAlongSegment(double x1, double y1, double x2, double y2, double pad,
                         Visit&& visit) const;

 private:
  template <class Accept, class Visit>
  bool visitWhereNode(Accept&& accept, Visit&& visit) const;

  // Boxes are kept in single precision, rounded outwards, which halves the tree's memory.
  struct Node {
    float xmin, ymin, xmax, ymax;

    bool overlaps(const SegmentBox& q) const {
      return xmin <= q.xmax && q.xmin <= xmax && ymin <= q.ymax && q.ymin <= ymax;
    }
    operator SegmentBox() const { return {xmin, ymin, xmax, ymax}; }
  };
  // The region ulo <= p.u <= uhi, vlo <= p.v <= vhi, v = (-uy, ux), with u as stored (not
  // exactly of unit length). Empty: ulo above uhi.
  struct Frame {
    float ux, uy, ulo, uhi, vlo, vhi;
  };
  // The members by kind. Straight ones run along (ex, ey) (unit, up to round-off): each one's
  // end minus start d has |d| <= length and |e x d| <= spread; length 0: none with a direction
  // (none at all, or zero-length ones only), -1: some member of unknown kind. Arcs lie on circles
  // within dev of (cx, cy, r); dev -1: no arc, infinite: circles unknown.
  struct Members {
    double ex, ey, length, spread;
    double cx, cy, r, dev;
  };
  class Prepared;

  static Node nodeOf(const SegmentBox& b);
  static Node unite(const Node& a, const Node& b);
  static Frame frameOf(const SegmentShape& s);
  static Frame unite(const Frame& a, const Frame& b);
  static Members membersOf(const SegmentShape& s);
  static Members unite(const Members& a, const Members& b);
  void setLeaf(int id, const SegmentShape& s);
  void setSummaries(int id, const SegmentShape& s);
  void startSummaries();
  void dropSummaries();
  bool membersApart(int node, const Prepared& probe) const;
  bool mayMeet(int node, const Prepared& probe) const;
  bool mayMeetFrame(int node, const Prepared& probe) const;
  void allocate(int count);
  void refitAbove(int lo, int hi);

  int leaves_ = 0;  // a power of two, at least 1
  int count_ = 0;
  bool rich_ = false;  // frames_ and members_ are kept
  bool droppedSummaries_ = false;
  mutable long long visited_ = 0;   // ids handed back
  mutable long long asked_ = 0;     // summaries asked (the box let the node through)
  mutable long long ruledOut_ = 0;  // nodes the summaries ruled out
  // 1-based heaps: node k has children 2k and 2k + 1.
  std::vector<Node> nodes_;
  std::vector<Frame> frames_;
  std::vector<Members> members_;
};

/// A probe with the values its node tests need worked out once.
class SegmentIndex::Prepared {
 public:
  // sideTest: a straight probe also rules out boxes that lie wholly to one side of its line.
  Prepared(const SegmentProbe& probe, bool sideTest);

  const SegmentProbe& probe() const { return probe_; }
  bool hasSight() const { return hasSight_; }
  const SightSegment& sight() const { return sight_; }
  double dx() const { return dx_; }
  double dy() const { return dy_; }
  double size() const { return size_; }

 private:
  SegmentProbe probe_;
  SightSegment sight_;
  bool hasSight_;
  double dx_, dy_, size_;
};

template <class ShapeOf>
void SegmentIndex::build(int count, ShapeOf&& shapeOf) {
  allocate(count);
  for (int i = 0; i < count; ++i)
    setLeaf(i, SegmentShape::of(shapeOf(i)));
  refitAbove(leaves_, 2 * leaves_ - 1);
}

template <class ShapeOf>
void SegmentIndex::summarise(ShapeOf&& shapeOf) {
  startSummaries();
  for (int i = 0; i < count_; ++i)
    setSummaries(i, shapeOf(i));
  refitAbove(leaves_, 2 * leaves_ - 1);
}

template <class Visit>
bool SegmentIndex::visitBelowDescending(int limit, const SegmentProbe& probe, Visit&& visit) const {
  if (limit > count_)
    limit = count_;
  if (limit <= 0)
    return false;
  const Prepared prepared(probe, rich_);
  // Climb from the leaf just below the limit: every left sibling on the way up holds the next
  // lower ids, so visiting each (right child first) yields decreasing ids. The stack holds at most
  // one pending left child per level.
  int node = leaves_ + limit - 1;
  if (mayMeet(node, prepared) && (++visited_, visit(limit - 1)))
    return true;
  int stack[64];
  for (; node > 1; node /= 2) {
    if ((node & 1) == 0 || !mayMeet(node - 1, prepared))
      continue;
    int top = 0;
    stack[top++] = node - 1;
    while (top > 0) {
      const int k = stack[--top];
      if (k >= leaves_) {
        ++visited_;
        if (visit(k - leaves_))
          return true;
        continue;
      }
      if (mayMeet(2 * k, prepared))
        stack[top++] = 2 * k;
      if (mayMeet(2 * k + 1, prepared))
        stack[top++] = 2 * k + 1;
    }
  }
  return false;
}

template <class Visit>
bool SegmentIndex::visitAll(const SegmentProbe& probe, Visit&& visit) const {
  const Prepared prepared(probe, true);
  return visitWhereNode([&](int node) { return mayMeet(node, prepared); }, visit);
}

template <class Visit>
bool SegmentIndex::visitAlongSegment(double x1, double y1, double x2, double y2, double pad,
                                     Visit&& visit) const {
  const SightSegment sight(x1, y1, x2, y2, pad);
  return visitWhere([&](const SegmentBox& box) { return sight.mayMeet(box); }, visit);
}

template <class Accept, class Visit>
bool SegmentIndex::visitWhere(Accept&& accept, Visit&& visit) const {
  return visitWhereNode([&](int node) { return accept(static_cast<SegmentBox>(nodes_[node])); },
                        visit);
}

template <class Accept, class Visit>
bool SegmentIndex::visitWhereNode(Accept&& accept, Visit&& visit) const {
  if (count_ == 0)
    return false;
  int stack[64];
  int top = 0;
  stack[top++] = 1;
  while (top > 0) {
    const int node = stack[--top];
    if (!accept(node))
      continue;
    if (node >= leaves_) {
      // Padding leaves hold empty boxes, but an accept test fed overflowing coordinates (NaN
      // gaps) may still let one through: only real segments are handed out.
      if (node - leaves_ >= count_)
        continue;
      ++visited_;
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
