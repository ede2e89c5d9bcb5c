// Tarnsysm: planar computational geometry for 2D drafting.
// Bounding-box tree over polyline segments: padded segment boxes, build, removal, side tests.
#include "offset/segment_index.h"

#include "arcs/arcs.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace tarnsysm::detail {

SegmentBox SegmentBox::empty() {
  const double inf = std::numeric_limits<double>::infinity();
  return {inf, inf, -inf, -inf};
}

SegmentBox paddedSegmentBox(double eps, double x1, double y1, double x2, double y2, bool isArc,
                            double cx, double cy, double r, double sa, double ea) {
  SegmentBox box{std::min(x1, x2), std::min(y1, y2), std::max(x1, x2), std::max(y1, y2)};
  double radius = 0.0;
  if (isArc) {
    double centre[2] = {cx, cy};
    double xmin, ymin, xmax, ymax;
    get_arc_box(eps, centre, r, sa, ea, &xmin, &ymin, &xmax, &ymax);
    box.xmin = std::min(box.xmin, xmin);
    box.ymin = std::min(box.ymin, ymin);
    box.xmax = std::max(box.xmax, xmax);
    box.ymax = std::max(box.ymax, ymax);
    radius = std::fabs(r);
  }
  const double chord = std::sqrt((x2 - x1) * (x2 - x1) + (y2 - y1) * (y2 - y1));
  const double size = std::max(
      {std::fabs(box.xmin), std::fabs(box.xmax), std::fabs(box.ymin), std::fabs(box.ymax)});
  // Tolerances reach eps·L along a line, eps·R along an arc and eps across either; a few times
  // that, plus a relative margin for round-off in near-parallel cases, keeps the box a superset
  // of everything the intersection routines can accept. A larger box only costs a test.
  const double slackTol = 8.0 * std::fabs(eps) * (1.0 + chord + radius);
  const double slackRound = 1e-12 * (1.0 + size + chord + radius);
  const double pad = slackTol + slackRound;
  box.xmin -= pad;
  box.ymin -= pad;
  box.xmax += pad;
  box.ymax += pad;
  if (!std::isfinite(box.xmin) || !std::isfinite(box.ymin) || !std::isfinite(box.xmax) ||
      !std::isfinite(box.ymax)) {
    return SegmentBox::empty();
  }
  return box;
}

void SegmentIndex::build(const std::vector<SegmentBox>& boxes) {
  count_ = static_cast<int>(boxes.size());
  leaves_ = 1;
  while (leaves_ < count_)
    leaves_ *= 2;
  nodes_.assign(2 * static_cast<size_t>(leaves_), SegmentBox::empty());
  for (int i = 0; i < count_; ++i)
    nodes_[leaves_ + i] = boxes[i];
  for (int k = leaves_ - 1; k >= 1; --k) {
    const SegmentBox& a = nodes_[2 * k];
    const SegmentBox& b = nodes_[2 * k + 1];
    nodes_[k] = {std::min(a.xmin, b.xmin), std::min(a.ymin, b.ymin), std::max(a.xmax, b.xmax),
                 std::max(a.ymax, b.ymax)};
  }
}

void SegmentIndex::remove(int id) {
  if (id < 0 || id >= count_)
    return;
  int k = leaves_ + id;
  nodes_[k] = SegmentBox::empty();
  for (k /= 2; k >= 1; k /= 2) {
    const SegmentBox& a = nodes_[2 * k];
    const SegmentBox& b = nodes_[2 * k + 1];
    nodes_[k] = {std::min(a.xmin, b.xmin), std::min(a.ymin, b.ymin), std::max(a.xmax, b.xmax),
                 std::max(a.ymax, b.ymax)};
  }
}

bool SegmentIndex::lineSeparates(int node, double x1, double y1, double nx, double ny,
                                 double pad) const {
  // The box lies wholly on one side of the line, farther than pad: the signed distances of its
  // nearest and farthest corners along the normal have the same sign.
  const SegmentBox& b = nodes_[node];
  const double ax = (nx >= 0.0 ? b.xmin : b.xmax) - x1;
  const double ay = (ny >= 0.0 ? b.ymin : b.ymax) - y1;
  const double bx = (nx >= 0.0 ? b.xmax : b.xmin) - x1;
  const double by = (ny >= 0.0 ? b.ymax : b.ymin) - y1;
  const double lowest = ax * nx + ay * ny;
  const double highest = bx * nx + by * ny;
  return lowest > pad || highest < -pad;
}

}  // namespace tarnsysm::detail
