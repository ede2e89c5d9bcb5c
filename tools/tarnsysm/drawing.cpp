// Tarnsysm tool: the drawing as the tarnsysm command sees it.
// Names for messages, segment midpoints and the extent of lines and bulge arcs.
#include "drawing.h"

#include <algorithm>
#include <cmath>

namespace tarnsysm::tool {

std::string placeOf(const Polyline& polyline) {
  std::string where;
  if (!polyline.handle.empty())
    where = "handle " + polyline.handle;
  if (!polyline.layer.empty())
    where += (where.empty() ? "" : ", ") + ("layer " + polyline.layer);
  return where;
}

std::string describePolyline(const Polyline& polyline, std::size_t index) {
  const std::string where = placeOf(polyline);
  return "polyline " + std::to_string(index) + (where.empty() ? "" : " (" + where + ")");
}

bool isVertexWithin(const Vertex& v, double limit) {
  // Written so that NaN fails every comparison and so the test.
  return std::fabs(v.x) <= limit && std::fabs(v.y) <= limit && std::fabs(v.bulge) <= limit;
}

void segmentMidpoint(const Vertex& a, const Vertex& b, Point* mid, Point* direction) {
  // The arc is symmetric about the chord's perpendicular bisector, so its midpoint lies on
  // that bisector at the sagitta bulge * chord / 2 from the chord (a positive bulge bows to
  // the right of travel), and the tangent there is parallel to the chord.
  const double dx = b.x - a.x;
  const double dy = b.y - a.y;
  const double length = std::hypot(dx, dy);
  const double halfChord = length / 2.0;
  const double ux = length > 0.0 ? dx / length : 0.0;
  const double uy = length > 0.0 ? dy / length : 0.0;
  const double sagitta = a.bulge * halfChord;
  mid->x = (a.x + b.x) / 2.0 + uy * sagitta;
  mid->y = (a.y + b.y) / 2.0 - ux * sagitta;
  direction->x = ux;
  direction->y = uy;
}

bool arcCentre(const Vertex& a, const Vertex& b, Point* centre, double* radius) {
  Point mid;
  Point u;
  segmentMidpoint(a, b, &mid, &u);
  const double bulge = std::fabs(a.bulge);
  const double halfChord = std::hypot(b.x - a.x, b.y - a.y) / 2.0;
  if (!(bulge > 0.0) || halfChord == 0.0)
    return false;
  // sagitta s = bulge * h, and r = (h^2 + s^2) / (2 s); the centre lies from the arc's
  // midpoint towards the chord, at the radius.
  *radius = halfChord * (1.0 + bulge * bulge) / (2.0 * bulge);
  const double towardsChord = a.bulge > 0.0 ? 1.0 : -1.0;
  centre->x = mid.x - u.y * towardsChord * *radius;
  centre->y = mid.y + u.x * towardsChord * *radius;
  return std::isfinite(*radius);
}

namespace {

// True when q lies on the same side of the chord a-b as the arc's midpoint mid.
bool onArcSide(const Vertex& a, const Vertex& b, Point mid, Point q) {
  const double ux = b.x - a.x;
  const double uy = b.y - a.y;
  return (ux * (q.y - a.y) - uy * (q.x - a.x)) * (ux * (mid.y - a.y) - uy * (mid.x - a.x)) > 0.0;
}

void include(Extent* extent, double x, double y) {
  extent->low.x = std::min(extent->low.x, x);
  extent->low.y = std::min(extent->low.y, y);
  extent->high.x = std::max(extent->high.x, x);
  extent->high.y = std::max(extent->high.y, y);
}

// Below this bulge (sagitta over half chord) an arc counts as flat for its extent.
constexpr double kFlatBulge = 1e-6;

// The arc's extreme points in x and y: a point of the circle belongs to the arc exactly when
// it lies on the same side of the chord as the arc's midpoint.
void includeArc(Extent* extent, const Vertex& a, const Vertex& b) {
  Point mid;
  Point u;
  segmentMidpoint(a, b, &mid, &u);
  include(extent, mid.x, mid.y);
  Point c;
  double radius = 0.0;
  // A nearly flat arc strays from the box of its ends and midpoint by less than its tiny
  // sagitta, while its huge radius would make the centre-plus-radius sums below cancel into
  // noise: the box of those three points is its extent.
  if (std::fabs(a.bulge) < kFlatBulge || !arcCentre(a, b, &c, &radius))
    return;
  const double compass[4][2] = {{1.0, 0.0}, {0.0, 1.0}, {-1.0, 0.0}, {0.0, -1.0}};
  for (const auto& k : compass) {
    if (onArcSide(a, b, mid, {c.x + k[0] * radius, c.y + k[1] * radius}))
      include(extent, c.x + k[0] * radius, c.y + k[1] * radius);
  }
}

}  // namespace

double distanceToSegment(const Vertex& a, const Vertex& b, Point p) {
  const double toEnds =
      std::min(std::hypot(p.x - a.x, p.y - a.y), std::hypot(p.x - b.x, p.y - b.y));
  Point c;
  double radius = 0.0;
  if (a.bulge != 0.0 && arcCentre(a, b, &c, &radius)) {
    // The nearest point of the circle, if it lies on the arc, else the nearer end.
    const double fromCentre = std::hypot(p.x - c.x, p.y - c.y);
    if (fromCentre == 0.0)
      return radius;
    Point mid;
    Point u;
    segmentMidpoint(a, b, &mid, &u);
    const Point q{c.x + (p.x - c.x) * radius / fromCentre, c.y + (p.y - c.y) * radius / fromCentre};
    return onArcSide(a, b, mid, q) ? std::fabs(fromCentre - radius) : toEnds;
  }
  const double dx = b.x - a.x;
  const double dy = b.y - a.y;
  const double lengthSquared = dx * dx + dy * dy;
  if (lengthSquared == 0.0)
    return toEnds;
  const double t = std::clamp(((p.x - a.x) * dx + (p.y - a.y) * dy) / lengthSquared, 0.0, 1.0);
  return std::hypot(p.x - (a.x + t * dx), p.y - (a.y + t * dy));
}

bool extentOf(const std::vector<const Polyline*>& polylines, Extent* extent) {
  bool any = false;
  *extent = Extent{{HUGE_VAL, HUGE_VAL}, {-HUGE_VAL, -HUGE_VAL}};
  for (const Polyline* polyline : polylines) {
    const auto& v = polyline->vertices;
    for (std::size_t i = 0; i < v.size(); ++i) {
      include(extent, v[i].x, v[i].y);
      any = true;
      const bool hasNext = i + 1 < v.size() || (polyline->closed && v.size() > 1);
      if (hasNext && v[i].bulge != 0.0)
        includeArc(extent, v[i], v[(i + 1) % v.size()]);
    }
  }
  return any;
}

}  // namespace tarnsysm::tool
