// Tarnsysm: planar computational geometry for 2D drafting.
// Measures on vertex rows: the signed area of a segment and of a polyline, and point-on-polyline.
#include "arcs/arcs.h"
#include "offset/internal.h"
#include "offset/offset.h"
#include "primitives/primitives.h"

#include <cmath>
#include <limits>

using namespace tarnsysm::detail;

namespace {

// Area of the circular segment between a bulge arc and its chord, signed like the included
// angle theta = 4 atan(bulge). With the signed radius R = L / sin(theta/2) / 2 the segment is
// (theta - sin theta)*R^2/2; R^2 is positive, so the sign comes from theta alone.
double arcSegmentArea(double chord, double bulge) {
  const double theta = 4.0 * portable::atan(bulge);
  const double radius = chord / portable::sin(theta / 2.0) / 2.0;
  return (theta - portable::sin(theta)) * (radius * radius) / 2.0;
}

// Trapezoid between the straight edge (x1, y1)-(x2, y2) and the x axis. Summed round a
// boundary it is positive when the boundary runs clockwise.
double trapezoidArea(double x1, double y1, double x2, double y2) {
  return (y1 + y2) * (x2 - x1) / 2.0;
}

double chordLength(double x1, double y1, double x2, double y2) {
  const double dx = x2 - x1;
  const double dy = y2 - y1;
  return std::sqrt(dx * dx + dy * dy);
}

// The numbers of a row that make up geometry are all finite.
bool finiteRow(double x, double y, double bulge) {
  return std::isfinite(x) && std::isfinite(y) && std::isfinite(bulge);
}

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

}  // namespace

double LineArea(double eps, double x1, double y1, double x2, double y2, double bulge) {
  if (!finiteRow(x1, y1, bulge) || !std::isfinite(x2) || !std::isfinite(y2))
    return kNaN;
  const double trapezoid = trapezoidArea(x1, y1, x2, y2);
  if (isStraightBulge(bulge, eps))
    return trapezoid;
  // A positive bulge bows to the right of travel and takes its segment away from the area of
  // a clockwise boundary; a negative one adds it. The subtraction covers both signs.
  return trapezoid - arcSegmentArea(chordLength(x1, y1, x2, y2), bulge);
}

double PLineArea(double eps, int closed, int n, double (*const v)[5]) {
  if (n < 3)
    return 0.0;

  // The edge into row 0 comes from row n-1: the closing segment when closed, otherwise a
  // straight chord, so an open polyline measures the area it makes with that chord.
  double prevX = v[n - 1][0];
  double prevY = v[n - 1][1];
  double prevBulge = closed ? v[n - 1][2] : 0.0;
  double sum = 0.0;
  for (int i = 0; i < n; ++i) {
    const double x = v[i][0];
    const double y = v[i][1];
    // An open polyline's last bulge is not used.
    if (!finiteRow(x, y, closed || i < n - 1 ? v[i][2] : 0.0))
      return kNaN;
    sum += trapezoidArea(prevX, prevY, x, y);
    if (!isStraightBulge(prevBulge, eps))
      sum -= arcSegmentArea(chordLength(prevX, prevY, x, y), prevBulge);
    prevX = x;
    prevY = y;
    prevBulge = v[i][2];
  }
  return sum;
}

namespace {

// Is p on the straight segment from s to e? The parameter along the segment gets eps slack in
// parameter units, the perpendicular distance eps in length units.
bool onStraightSegment(double eps, const double* p, const double* s, const double* e) {
  const double dx = e[0] - s[0];
  const double dy = e[1] - s[1];
  const double lenSqr = dx * dx + dy * dy;
  const double len = std::sqrt(lenSqr);
  // Zero-length segment: its neighbours decide.
  if (!(len >= eps))
    return false;
  const double t = ((p[0] - s[0]) * dx + (p[1] - s[1]) * dy) / lenSqr;
  if (t < -eps || t > 1.0 + eps)
    return false;
  const double dist = ((p[0] - s[0]) * dy - (p[1] - s[1]) * dx) / len;
  return withinOpenOrZero(dist, eps);
}

// Is p on the bulge arc from s to e? Its angle must be on the sweep, its radius within eps.
bool onArcSegment(double eps, const double* p, const double* s, const double* e, double bulge) {
  double cx, cy, r, sa, ea;
  if (!PL_ArcParam(eps, s[0], s[1], e[0], e[1], bulge, &cx, &cy, &r, &sa, &ea))
    return false;
  const double rp = std::sqrt(square(p[0] - cx) + square(p[1] - cy));
  const double ap = portable::atan2(p[1] - cy, p[0] - cx);
  if (!ValidAngle(eps, sa, ea, ap))
    return false;
  return withinOpenOrZero(rp - r, eps);
}

}  // namespace

int PointsOnPLine(double eps, double* const p, int closed, int n, double (*const v)[5]) {
  if (n < 2)
    return 0;
  for (int i = 0; i < n; ++i) {
    if (i == n - 1 && !closed)
      return 0;
    const double* start = v[i];
    const double* end = i == n - 1 ? v[0] : v[i + 1];
    const double bulge = start[2];
    const bool on = isStraightBulge(bulge, eps) ? onStraightSegment(eps, p, start, end)
                                                : onArcSegment(eps, p, start, end, bulge);
    if (on)
      return 1;
  }
  return 0;
}
