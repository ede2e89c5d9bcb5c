// Tarnsysm: planar computational geometry for 2D drafting.
// Bounding-box tree over polyline segments: padded segment boxes, build, removal, side tests.
#include "offset/segment_index.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <new>

namespace tarnsysm::detail {

SegmentBox SegmentBox::empty() {
  const double inf = std::numeric_limits<double>::infinity();
  return {inf, inf, -inf, -inf};
}

SegmentIndex::Node SegmentIndex::nodeOf(const SegmentBox& b) {
  // Lower bounds move down and upper bounds up by more than the rounding to float (half a unit
  // in the last place, about 6e-8 relative, or a tiny absolute amount near 0), so the float box
  // holds the double one; a finite bound beyond the float range becomes the largest float (or
  // infinity) on the safe side.
  constexpr float kMax = std::numeric_limits<float>::max();
  constexpr float kInf = std::numeric_limits<float>::infinity();
  // The empty box stays infinite: clamped to the largest floats it would overlap a query that
  // spans the whole float range (coordinates near 1e150), and removed or padding leaves would
  // be visited.
  if (b.xmin > b.xmax || b.ymin > b.ymax)
    return {kInf, kInf, -kInf, -kInf};
  const auto down = [](double v) {
    if (!(v > -kMax))
      return -kInf;
    if (v > kMax)
      return kMax;
    return static_cast<float>(v - std::fabs(v) * 2.4e-7 - 1e-37);
  };
  const auto up = [](double v) {
    if (!(v < kMax))
      return kInf;
    if (v < -kMax)
      return -kMax;
    return static_cast<float>(v + std::fabs(v) * 2.4e-7 + 1e-37);
  };
  return {down(b.xmin), down(b.ymin), up(b.xmax), up(b.ymax)};
}

SegmentIndex::Node SegmentIndex::unite(const Node& a, const Node& b) {
  return {std::min(a.xmin, b.xmin), std::min(a.ymin, b.ymin), std::max(a.xmax, b.xmax),
          std::max(a.ymax, b.ymax)};
}

void SegmentIndex::allocate(int count) {
  // More than 2^29 segments would overflow the leaf count; that is far beyond any memory anyway.
  if (count > (1 << 29))
    throw std::bad_alloc();
  count_ = count > 0 ? count : 0;
  leaves_ = 1;
  while (leaves_ < count_)
    leaves_ *= 2;
  nodes_.assign(2 * static_cast<size_t>(leaves_), nodeOf(SegmentBox::empty()));
}

// Recomputes the parents of nodes lo .. hi, one level at a time up to the root.
void SegmentIndex::refitAbove(int lo, int hi) {
  for (lo /= 2, hi /= 2; lo >= 1; lo /= 2, hi /= 2) {
    for (int k = lo; k <= hi; ++k)
      nodes_[k] = unite(nodes_[2 * k], nodes_[2 * k + 1]);
    if (lo == 1)
      break;
  }
}

void SegmentIndex::remove(int id) {
  removeRange(id, id);
}

void SegmentIndex::removeRange(int first, int last) {
  if (first < 0)
    first = 0;
  if (last >= count_)
    last = count_ - 1;
  if (first > last)
    return;
  const Node empty = nodeOf(SegmentBox::empty());
  for (int k = leaves_ + first; k <= leaves_ + last; ++k)
    nodes_[k] = empty;
  refitAbove(leaves_ + first, leaves_ + last);
}

SightSegment::SightSegment(double x1, double y1, double x2, double y2, double pad)
    : box_{std::min(x1, x2) - pad, std::min(y1, y2) - pad, std::max(x1, x2) + pad,
           std::max(y1, y2) + pad},
      x1_(x1),
      y1_(y1),
      nx_(0.0),
      ny_(0.0),
      pad_(pad),
      hasLine_(false) {
  // Unit normal of the segment's line; a point has no line, the box test alone decides.
  const double dx = x2 - x1;
  const double dy = y2 - y1;
  const double len = std::sqrt(dx * dx + dy * dy);
  if (len > 0.0 && len < 1e300) {
    nx_ = dy / len;
    ny_ = -dx / len;
    hasLine_ = true;
  }
}

bool SightSegment::mayMeet(const SegmentBox& b) const {
  if (!box_.overlaps(b))
    return false;
  if (!hasLine_)
    return true;
  // The box lies wholly on one side of the line, farther than pad: the signed distances of its
  // nearest and farthest corners along the normal have the same sign.
  const double ax = (nx_ >= 0.0 ? b.xmin : b.xmax) - x1_;
  const double ay = (ny_ >= 0.0 ? b.ymin : b.ymax) - y1_;
  const double bx = (nx_ >= 0.0 ? b.xmax : b.xmin) - x1_;
  const double by = (ny_ >= 0.0 ? b.ymax : b.ymin) - y1_;
  const double lowest = ax * nx_ + ay * ny_;
  const double highest = bx * nx_ + by * ny_;
  return !(lowest > pad_ || highest < -pad_);
}

}  // namespace tarnsysm::detail
