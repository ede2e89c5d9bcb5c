// Tarnsysm tool: offsetting the polylines of a drawing with the library's PLineOffset.
// The library rewrites rows in place in an array of twice the row count; the tool hands it a
// scratch copy so the drawing's own polyline is kept for the output.
#include "offset_job.h"

#include <Tarnsysm.h>

#include <algorithm>
#include <climits>
#include <cmath>
#include <memory>

namespace tarnsysm::tool {

namespace {

using Rows = std::unique_ptr<double[][5]>;

// Room for twice the vertex count, as PLineOffset needs; rows beyond n start as zeros.
Rows rowsOf(const Polyline& polyline) {
  const std::size_t n = polyline.vertices.size();
  Rows rows(new double[2 * n][5]());
  for (std::size_t i = 0; i < n; ++i) {
    rows[i][0] = polyline.vertices[i].x;
    rows[i][1] = polyline.vertices[i].y;
    rows[i][2] = polyline.vertices[i].bulge;
  }
  return rows;
}

// Rows no longer than this (in drawing units, times eps) count as having no length: the
// side of such a segment says nothing.
constexpr double kShortSegmentInEps = 1000.0;

// A polyline of two rows with an arc, with that arc split at its midpoint into two arcs of
// half the included angle. The library treats two rows specially: it counts them as
// enclosing no area, and offsets them in one step without the limit that stops an arc at
// its centre, so a circle drawn as two half circles and offset inwards past its centre would
// come back as a circle again. Three rows describing the same curve get the general rules.
Polyline withFirstArcSplit(const Polyline& polyline, double eps) {
  const auto& v = polyline.vertices;
  if (v.size() != 2)
    return polyline;
  const std::size_t segments = polyline.closed ? 2 : 1;
  for (std::size_t i = 0; i < segments; ++i) {
    const Vertex& a = v[i];
    const Vertex& b = v[1 - i];
    if (!(std::fabs(a.bulge) >= eps))
      continue;
    Point mid;
    Point direction;
    segmentMidpoint(a, b, &mid, &direction);
    // Half the included angle: tan(theta / 8) = t / (1 + sqrt(1 + t^2)) with t = tan(theta / 4).
    const double halfBulge = a.bulge / (1.0 + std::sqrt(1.0 + a.bulge * a.bulge));
    Polyline split = polyline;
    split.vertices[i].bulge = halfBulge;
    split.vertices.insert(split.vertices.begin() + static_cast<std::ptrdiff_t>(i) + 1,
                          {mid.x, mid.y, halfBulge});
    return split;
  }
  return polyline;
}

// The library's signed area (positive for a clockwise boundary).
double enclosedArea(const Polyline& polyline, double eps) {
  const Polyline rowsForArea = withFirstArcSplit(polyline, eps);
  const Rows rows = rowsOf(rowsForArea);
  return PLineArea(eps, 1, static_cast<int>(rowsForArea.vertices.size()), rows.get());
}

}  // namespace

bool sidePickPoint(const Polyline& polyline, Side side, double distance, double eps, Point* pick,
                   std::string* problem) {
  const auto& v = polyline.vertices;
  const bool insideOrOutside = side == Side::kInside || side == Side::kOutside;
  if (insideOrOutside && !polyline.closed) {
    *problem = "it is open, so it has no inside or outside (use --side left|right or --pick)";
    return false;
  }
  const std::size_t segments = v.size() < 2 ? 0 : (polyline.closed ? v.size() : v.size() - 1);
  std::size_t first = segments;
  for (std::size_t i = 0; i < segments; ++i) {
    const Vertex& a = v[i];
    const Vertex& b = v[(i + 1) % v.size()];
    if (std::hypot(b.x - a.x, b.y - a.y) > kShortSegmentInEps * eps) {
      first = i;
      break;
    }
  }
  if (first == segments) {
    *problem = "it has no segment of non-zero length";
    return false;
  }

  // Right of travel is +1, left -1.
  double toRight = side == Side::kLeft ? -1.0 : 1.0;
  if (insideOrOutside) {
    // Signed area: positive for a clockwise boundary, whose inside is on the right of travel.
    const double area = enclosedArea(polyline, eps);
    if (!(std::fabs(area) > eps)) {
      *problem = "it encloses no area, so its inside is undefined";
      return false;
    }
    const bool insideIsRight = area > 0.0;
    toRight = (side == Side::kInside) == insideIsRight ? 1.0 : -1.0;
  }

  const Vertex& a = v[first];
  const Vertex& b = v[(first + 1) % v.size()];
  Point mid;
  Point u;
  segmentMidpoint(a, b, &mid, &u);
  // Step off the segment by a small fraction of what is nearby, so that the segment is
  // the nearest part of the polyline to the pick point: of the segment's chord, of an
  // arc's radius (never past its centre) and of the offset distance.
  const double chord = std::hypot(b.x - a.x, b.y - a.y);
  double reach = chord;
  const double bulge = std::fabs(a.bulge);
  if (bulge > 0.0)
    reach = std::min(reach, chord / 2.0 * (1.0 + bulge * bulge) / (2.0 * bulge));
  if (distance > 0.0)
    reach = std::min(reach, distance);
  const double step = std::max(reach / 1000.0, 100.0 * eps);
  // The right of the direction u is (u.y, -u.x).
  pick->x = mid.x + toRight * step * u.y;
  pick->y = mid.y - toRight * step * u.x;
  return true;
}

OffsetOutcome offsetPolyline(const Polyline& polyline, const OffsetOptions& options) {
  OffsetOutcome outcome;
  const std::size_t n = polyline.vertices.size();
  if (n < 2) {
    outcome.problem = "it has fewer than two vertices";
    return outcome;
  }
  if (n > static_cast<std::size_t>(INT_MAX / 2)) {
    outcome.problem = "it has more vertices than the library can take";
    return outcome;
  }
  if (options.usePick) {
    outcome.pick = options.pick;
  } else if (!sidePickPoint(polyline, options.side, options.distance, options.eps, &outcome.pick,
                            &outcome.problem)) {
    return outcome;
  }
  outcome.hasPick = true;

  const Polyline source = withFirstArcSplit(polyline, options.eps);
  const std::size_t rowCount = source.vertices.size();
  Rows rows = rowsOf(source);
  int closed = source.closed ? 1 : 0;
  double pick[2] = {outcome.pick.x, outcome.pick.y};
  const int count = PLineOffset(options.eps, &closed, static_cast<int>(rowCount), rows.get(),
                                options.through ? 1 : 0, pick, options.distance);
  if (count <= 0 || static_cast<std::size_t>(count) > 2 * rowCount) {
    outcome.problem =
        "the library could not offset it (the pick point lies on it, or the offset "
        "leaves nothing of it)";
    return outcome;
  }
  outcome.result.closed = closed != 0;
  for (int i = 0; i < count; ++i) {
    const Vertex vertex{rows[i][0], rows[i][1], rows[i][2]};
    if (!isVertexWithin(vertex, kLargestResult)) {
      outcome.result.vertices.clear();
      outcome.problem = "the library returned a vertex that is not a number within +-1e15";
      return outcome;
    }
    outcome.result.vertices.push_back(vertex);
  }
  outcome.offset = true;
  return outcome;
}

}  // namespace tarnsysm::tool
