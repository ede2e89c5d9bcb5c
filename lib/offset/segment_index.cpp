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

namespace {

constexpr float kFloatMax = std::numeric_limits<float>::max();
constexpr float kFloatInf = std::numeric_limits<float>::infinity();

// A float at or below v (and at or above below: lower bounds move down by more than the rounding
// to float, half a unit in the last place, about 6e-8 relative, or a tiny absolute amount near
// 0); a finite bound beyond the float range becomes the largest float or infinity, on the safe
// side.
float floatDown(double v) {
  if (!(v > -kFloatMax))
    return -kFloatInf;
  if (v > kFloatMax)
    return kFloatMax;
  return static_cast<float>(v - std::fabs(v) * 2.4e-7 - 1e-37);
}

float floatUp(double v) {
  if (!(v < kFloatMax))
    return kFloatInf;
  if (v < -kFloatMax)
    return -kFloatMax;
  return static_cast<float>(v + std::fabs(v) * 2.4e-7 + 1e-37);
}

// Round-off of a dot product of a point with an axis of about unit length is below 3e-16 of
// |x| + |y|; the frames allow a thousand times that.
constexpr double kProjectionSlack = 1e-13;

// The extent of a frame along another axis (U, W) and its normal (-W, U): each corner
// (a u + b v)/|u|^2 projected, the extremes taken coordinate by coordinate.
struct Extent {
  double ulo, uhi, vlo, vhi;
};

bool isEmpty(float lo, float hi) {
  return !(lo <= hi);
}

}  // namespace

SegmentIndex::Node SegmentIndex::nodeOf(const SegmentBox& b) {
  // The empty box stays infinite: clamped to the largest floats it would overlap a query that
  // spans the whole float range (coordinates near 1e150), and removed or padding leaves would
  // be visited.
  if (b.xmin > b.xmax || b.ymin > b.ymax)
    return {kFloatInf, kFloatInf, -kFloatInf, -kFloatInf};
  return {floatDown(b.xmin), floatDown(b.ymin), floatUp(b.xmax), floatUp(b.ymax)};
}

SegmentIndex::Node SegmentIndex::unite(const Node& a, const Node& b) {
  return {std::min(a.xmin, b.xmin), std::min(a.ymin, b.ymin), std::max(a.xmax, b.xmax),
          std::max(a.ymax, b.ymax)};
}

namespace {

// A frame with every extent infinite: holds everything, rules nothing out.
constexpr float kUnboundedLo = -std::numeric_limits<float>::infinity();

bool isBounded(float ulo, float uhi, float vlo, float vhi) {
  return std::isfinite(ulo) && std::isfinite(uhi) && std::isfinite(vlo) && std::isfinite(vhi);
}

}  // namespace

SegmentIndex::Frame SegmentIndex::frameOf(const SegmentShape& s) {
  const SegmentBox& b = s.box;
  if (b.xmin > b.xmax || b.ymin > b.ymax)
    return {1.0f, 0.0f, kFloatInf, -kFloatInf, kFloatInf, -kFloatInf};
  if (s.kind == SegmentShape::straight) {
    const double dx = s.x2 - s.x1;
    const double dy = s.y2 - s.y1;
    const double len = std::sqrt(dx * dx + dy * dy);
    const double size = std::fabs(s.x1) + std::fabs(s.y1) + std::fabs(s.x2) + std::fabs(s.y2);
    if (len > 0.0 && std::isfinite(len) && std::isfinite(size) && std::isfinite(s.pad)) {
      const float fu = static_cast<float>(dx / len);
      const float fw = static_cast<float>(dy / len);
      const double u = fu, w = fw;
      // The segment grown by a square of half-width pad: its ends' projections, widened by the
      // square's, pad (|u| + |w|).
      const double grow = s.pad * (std::fabs(u) + std::fabs(w)) + kProjectionSlack * size;
      const double u1 = s.x1 * u + s.y1 * w, u2 = s.x2 * u + s.y2 * w;
      const double v1 = s.y1 * u - s.x1 * w, v2 = s.y2 * u - s.x2 * w;
      return {fu,
              fw,
              floatDown(std::min(u1, u2) - grow),
              floatUp(std::max(u1, u2) + grow),
              floatDown(std::min(v1, v2) - grow),
              floatUp(std::max(v1, v2) + grow)};
    }
  }
  // Along x and y: the box itself.
  return {1.0f, 0.0f, floatDown(b.xmin), floatUp(b.xmax), floatDown(b.ymin), floatUp(b.ymax)};
}

namespace {

// The extent of frame f along the axis (u, w) and its normal (-w, u).
template <class F>
Extent extentAlong(const F& f, double u, double w) {
  if (f.ux == u && f.uy == w)
    return {f.ulo, f.uhi, f.vlo, f.vhi};
  // A point p with p.fu = a and p.fv = b is (a fu + b fv)/|fu|^2, fv = (-fuy, fux); its
  // projections are linear in a and b, so the extremes come from the ends of each range.
  const double fu = f.ux, fw = f.uy;
  const double s = fu * fu + fw * fw;
  const double au = (fu * u + fw * w) / s;   // fu.(u, w) / |fu|^2
  const double bu = (-fw * u + fu * w) / s;  // fv.(u, w) / |fu|^2
  const double av = (-fu * w + fw * u) / s;  // fu.(-w, u) / |fu|^2
  const double bv = (fw * w + fu * u) / s;   // fv.(-w, u) / |fu|^2
  const auto range = [&](double ka, double kb, double* lo, double* hi) {
    const double a1 = f.ulo * ka, a2 = f.uhi * ka, b1 = f.vlo * kb, b2 = f.vhi * kb;
    const double slack =
        kProjectionSlack * (std::fabs(a1) + std::fabs(a2) + std::fabs(b1) + std::fabs(b2));
    *lo = std::min(a1, a2) + std::min(b1, b2) - slack;
    *hi = std::max(a1, a2) + std::max(b1, b2) + slack;
  };
  Extent e;
  range(au, bu, &e.ulo, &e.uhi);
  range(av, bv, &e.vlo, &e.vhi);
  return e;
}

}  // namespace

SegmentIndex::Frame SegmentIndex::unite(const Frame& a, const Frame& b) {
  if (isEmpty(a.ulo, a.uhi))
    return b;
  if (isEmpty(b.ulo, b.uhi))
    return a;
  if (!isBounded(a.ulo, a.uhi, a.vlo, a.vhi) || !isBounded(b.ulo, b.uhi, b.vlo, b.vhi))
    return {1.0f, 0.0f, kUnboundedLo, kFloatInf, kUnboundedLo, kFloatInf};
  // Along either child's axis, whichever encloses less area.
  Frame best{};
  double bestArea = 0.0;
  bool found = false;
  for (const Frame* axis : {&a, &b}) {
    const double u = axis->ux, w = axis->uy;
    const Extent ea = extentAlong(a, u, w);
    const Extent eb = extentAlong(b, u, w);
    const Frame f{axis->ux,
                  axis->uy,
                  floatDown(std::min(ea.ulo, eb.ulo)),
                  floatUp(std::max(ea.uhi, eb.uhi)),
                  floatDown(std::min(ea.vlo, eb.vlo)),
                  floatUp(std::max(ea.vhi, eb.vhi))};
    const double area = (static_cast<double>(f.uhi) - f.ulo) * (static_cast<double>(f.vhi) - f.vlo);
    if (!found || area < bestArea) {
      best = f;
      bestArea = area;
      found = true;
    }
  }
  return best;
}

namespace {

constexpr double kUnknown = -1.0;
constexpr double kNoArc = -1.0;

}  // namespace

SegmentIndex::Members SegmentIndex::membersOf(const SegmentShape& s) {
  const double inf = std::numeric_limits<double>::infinity();
  Members m{1.0, 0.0, 0.0, 0.0, 0.0, 0.0, 0.0, kNoArc};
  const SegmentBox& b = s.box;
  if (b.xmin > b.xmax || b.ymin > b.ymax)
    return m;
  if (s.kind == SegmentShape::circular) {
    if (std::isfinite(s.cx) && std::isfinite(s.cy) && std::isfinite(s.r) && s.dev >= 0.0 &&
        s.dev < inf) {
      m.cx = s.cx;
      m.cy = s.cy;
      m.r = s.r;
      m.dev = s.dev;
    } else {
      m.dev = inf;
    }
    return m;
  }
  if (s.kind != SegmentShape::straight) {
    m.length = kUnknown;
    m.dev = inf;
    return m;
  }
  const double dx = s.x2 - s.x1;
  const double dy = s.y2 - s.y1;
  const double len = std::sqrt(dx * dx + dy * dy);
  if (!std::isfinite(len)) {
    m.length = kUnknown;
  } else if (len > 0.0) {
    // e = d/|d| turns from d by round-off only: |e x d| stays below 2.3e-16 |d|.
    m.ex = dx / len;
    m.ey = dy / len;
    m.length = len * (1.0 + 1e-15);
    m.spread = 1e-15 * len;
  }
  return m;
}

SegmentIndex::Members SegmentIndex::unite(const Members& a, const Members& b) {
  const double inf = std::numeric_limits<double>::infinity();
  Members m = a;
  if (a.length < 0.0 || b.length < 0.0) {
    m.length = kUnknown;
  } else if (a.length == 0.0) {
    m.ex = b.ex;
    m.ey = b.ey;
    m.length = b.length;
    m.spread = b.spread;
  } else if (b.length > 0.0) {
    // A member d of b is alpha e_b + beta e_b', |alpha| <= length, |beta| <= spread; across a's
    // direction it reaches |alpha| |e_a x e_b| + |beta|.
    const double turn = std::fabs(a.ex * b.ey - a.ey * b.ex);
    const double spreadB = (b.length * turn + b.spread) * (1.0 + 1e-12) + 2e-15 * b.length;
    m.length = std::max(a.length, b.length);
    m.spread = std::max(a.spread, spreadB);
    if (!std::isfinite(m.length) || !std::isfinite(m.spread))
      m.length = kUnknown;
  }
  if (a.dev < 0.0) {
    m.cx = b.cx;
    m.cy = b.cy;
    m.r = b.r;
    m.dev = b.dev;
  } else if (b.dev >= 0.0) {
    // b's circles lie within b.dev of b's circle, which lies this far from a's.
    const double apart = std::fabs(b.cx - a.cx) + std::fabs(b.cy - a.cy) + std::fabs(b.r - a.r);
    const double devB = (apart + b.dev) * (1.0 + 1e-12) +
                        1e-15 * (std::fabs(a.cx) + std::fabs(a.cy) + std::fabs(a.r));
    m.dev = std::max(a.dev, devB);
    if (!(m.dev < inf))
      m.dev = inf;
  }
  return m;
}

void SegmentIndex::setLeaf(int id, const SegmentShape& s) {
  const int k = leaves_ + id;
  nodes_[k] = nodeOf(s.box);
  if (rich_) {
    frames_[k] = frameOf(s);
    members_[k] = membersOf(s);
  }
}

void SegmentIndex::setSummaries(int id, const SegmentShape& s) {
  const int k = leaves_ + id;
  // A removed leaf stays empty; a kept one gets the summaries of the segment as it is now (its
  // box may be larger, from before a cut).
  const Node& box = nodes_[k];
  const SegmentShape shape = box.xmin > box.xmax ? SegmentShape::empty() : s;
  frames_[k] = frameOf(shape);
  members_[k] = membersOf(shape);
}

void SegmentIndex::dropSummaries() {
  rich_ = false;
  droppedSummaries_ = true;
  frames_.clear();
  members_.clear();
}

void SegmentIndex::startSummaries() {
  rich_ = true;
  const SegmentShape empty = SegmentShape::empty();
  const size_t size = nodes_.size();
  frames_.assign(size, frameOf(empty));
  members_.assign(size, membersOf(empty));
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
  rich_ = false;
  droppedSummaries_ = false;
  visited_ = asked_ = ruledOut_ = 0;
  frames_.clear();
  members_.clear();
}

// Recomputes the parents of nodes lo .. hi, one level at a time up to the root.
void SegmentIndex::refitAbove(int lo, int hi) {
  for (lo /= 2, hi /= 2; lo >= 1; lo /= 2, hi /= 2) {
    for (int k = lo; k <= hi; ++k) {
      nodes_[k] = unite(nodes_[2 * k], nodes_[2 * k + 1]);
      if (rich_) {
        frames_[k] = unite(frames_[2 * k], frames_[2 * k + 1]);
        members_[k] = unite(members_[2 * k], members_[2 * k + 1]);
      }
    }
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
  for (int id = first; id <= last; ++id)
    setLeaf(id, SegmentShape::empty());
  refitAbove(leaves_ + first, leaves_ + last);
}

void SegmentIndex::shrink(int id, const SegmentShape& shape) {
  if (!rich_ || id < 0 || id >= count_)
    return;
  int k = leaves_ + id;
  members_[k] = membersOf(shape);
  for (k /= 2; k >= 1; k /= 2)
    members_[k] = unite(members_[2 * k], members_[2 * k + 1]);
}

SegmentIndex::Prepared::Prepared(const SegmentProbe& probe, bool sideTest)
    : probe_(probe),
      sight_(probe.shape.x1, probe.shape.y1, sideTest ? probe.shape.x2 : probe.shape.x1,
             sideTest ? probe.shape.y2 : probe.shape.y1, probe.shape.pad),
      hasSight_(sideTest && probe.shape.kind == SegmentShape::straight),
      dx_(probe.shape.x2 - probe.shape.x1),
      dy_(probe.shape.y2 - probe.shape.y1),
      size_(std::fabs(probe.shape.x1) + std::fabs(probe.shape.y1) + std::fabs(probe.shape.x2) +
            std::fabs(probe.shape.y2)) {}

// Can no member of node meet the probe, by kind? Straight members: parallel to a straight probe,
// or too short for a circular one to meet; arcs: near the circle of a circular probe.
bool SegmentIndex::membersApart(int node, const Prepared& prepared) const {
  const SegmentProbe& probe = prepared.probe();
  const SegmentShape& q = probe.shape;
  const Members& m = members_[node];
  bool straightApart = m.length == 0.0;
  if (!straightApart && m.length > 0.0) {
    if (q.kind == SegmentShape::straight && probe.parallelBelow > 0.0) {
      // |d x d_probe| is below the bound, round-off of the cross product itself included.
      const double dx = prepared.dx(), dy = prepared.dy();
      const double l1 = std::fabs(dx) + std::fabs(dy);
      const double bound =
          (m.length * std::fabs(m.ex * dy - m.ey * dx) + m.spread * l1) * (1.0 + 1e-12) +
          2e-15 * m.length * l1;
      straightApart = bound < probe.parallelBelow;
    } else if (q.kind == SegmentShape::circular && probe.shortUpTo > 0.0) {
      straightApart = m.length <= probe.shortUpTo;
    }
  }
  if (!straightApart)
    return false;
  if (m.dev < 0.0)
    return true;
  if (q.kind != SegmentShape::circular || !(probe.concentricUpTo > 0.0))
    return false;
  const double apart =
      (std::fabs(q.cx - m.cx) + std::fabs(q.cy - m.cy) + std::fabs(q.r - m.r) + q.dev + m.dev) *
      (1.0 + 1e-12);
  return apart <= probe.concentricUpTo;
}

bool SegmentIndex::mayMeet(int node, const Prepared& prepared) const {
  const SegmentShape& q = prepared.probe().shape;
  if (prepared.hasSight() ? !prepared.sight().mayMeet(nodes_[node]) : !nodes_[node].overlaps(q.box))
    return false;
  if (!rich_)
    return true;
  ++asked_;
  if (membersApart(node, prepared)) {
    ++ruledOut_;
    return false;
  }
  if (!mayMeetFrame(node, prepared)) {
    ++ruledOut_;
    return false;
  }
  return true;
}

// The frame of node against the probe: the probe across the frame's two axes, then the frame
// across a straight probe's line.
bool SegmentIndex::mayMeetFrame(int node, const Prepared& prepared) const {
  const SegmentShape& q = prepared.probe().shape;
  const bool straight = q.kind == SegmentShape::straight;
  const Frame& f = frames_[node];
  if (!isBounded(f.ulo, f.uhi, f.vlo, f.vhi))
    return true;
  // The probe across the frame's two axes.
  const double u = f.ux, w = f.uy;
  double plo[2], phi[2];
  if (straight) {
    const double grow = q.pad * (std::fabs(u) + std::fabs(w)) + kProjectionSlack * prepared.size();
    const double u1 = q.x1 * u + q.y1 * w, u2 = q.x2 * u + q.y2 * w;
    const double v1 = q.y1 * u - q.x1 * w, v2 = q.y2 * u - q.x2 * w;
    plo[0] = std::min(u1, u2) - grow;
    phi[0] = std::max(u1, u2) + grow;
    plo[1] = std::min(v1, v2) - grow;
    phi[1] = std::max(v1, v2) + grow;
  } else {
    const SegmentBox& b = q.box;
    const double slack = kProjectionSlack * (std::fabs(b.xmin) + std::fabs(b.xmax) +
                                             std::fabs(b.ymin) + std::fabs(b.ymax));
    if (!std::isfinite(slack))
      return true;
    // Corner extremes of the box along (u, w) and (-w, u).
    plo[0] = (u >= 0.0 ? b.xmin : b.xmax) * u + (w >= 0.0 ? b.ymin : b.ymax) * w - slack;
    phi[0] = (u >= 0.0 ? b.xmax : b.xmin) * u + (w >= 0.0 ? b.ymax : b.ymin) * w + slack;
    plo[1] = (w <= 0.0 ? b.xmin : b.xmax) * -w + (u >= 0.0 ? b.ymin : b.ymax) * u - slack;
    phi[1] = (w <= 0.0 ? b.xmax : b.xmin) * -w + (u >= 0.0 ? b.ymax : b.ymin) * u + slack;
  }
  if (phi[0] < f.ulo || plo[0] > f.uhi || phi[1] < f.vlo || plo[1] > f.vhi)
    return false;
  const double dx = prepared.dx(), dy = prepared.dy();
  if (!straight || !(dx != 0.0 || dy != 0.0))
    return true;
  // The frame across the probe's line, normal (dy, -dx).
  const Extent across = extentAlong(f, dy, -dx);
  const double c1 = q.x1 * dy - q.y1 * dx, c2 = q.x2 * dy - q.y2 * dx;
  const double l1 = std::fabs(dx) + std::fabs(dy);
  const double grow = q.pad * l1 + kProjectionSlack * prepared.size() * l1;
  return !(std::max(c1, c2) + grow < across.ulo || std::min(c1, c2) - grow > across.uhi);
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
