// Tarnsysm tool: offsetting the polylines of a drawing with the library's PLineOffset and its
// round-corner engine. PLineOffset rewrites rows in place in an array of twice the row count;
// the tool hands it a scratch copy so the drawing's own polyline is kept for the output.
#include "offset_job.h"

#include <Tarnsysm.h>

#include <algorithm>
#include <climits>
#include <cmath>
#include <memory>
#include <optional>

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
// A pick point this much nearer (relative to its distance) another segment than its own counts
// as nearer that one: round-off must not turn an equal distance into a stray.
constexpr double kStrayMargin = 1e-9;

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

// The library's signed distance from p to the polyline (positive right of travel); false when
// it cannot be measured.
bool signedDistance(const Polyline& source, double eps, Point p, double* dist) {
  const Rows rows = rowsOf(source);
  double at[2] = {p.x, p.y};
  return PLineDist(eps, source.closed ? 1 : 0, static_cast<int>(source.vertices.size()), rows.get(),
                   at, dist) == 1;
}

// Where the pick point stands: measured (the signed distance in *dist), or why it cannot be
// used: it lies on the polyline, or its distance cannot be measured.
bool pickMeasured(const Polyline& source, double eps, Point pick, double* dist,
                  std::string* problem) {
  if (!signedDistance(source, eps, pick, dist)) {
    *problem =
        "its distance from the pick point cannot be measured (no segment faces the pick point, as "
        "beyond an open end)";
    return false;
  }
  if (std::fabs(*dist) < eps) {
    *problem = "the pick point lies on it";
    return false;
  }
  return true;
}

const char* const kCollapses = "it collapses at this distance: nothing of it is left";

// Appends rows to a polyline in the source's plane; false when one is not a number within reach.
bool appendRows(const double (*rows)[5], int count, bool closed, const Polyline& source,
                std::vector<Polyline>* results) {
  Polyline result;
  result.closed = closed;
  // The offset lies in its source's plane.
  result.elevation = source.elevation;
  result.extrusion = source.extrusion;
  for (int i = 0; i < count; ++i) {
    result.vertices.push_back({rows[i][0], rows[i][1], rows[i][2]});
    if (!isVertexWithin(result.vertices.back(), kLargestResult))
      return false;
  }
  results->push_back(std::move(result));
  return true;
}

// The round-corner offset's loop nearest the pick; 0 rows when there is none.
int roundNearestLoop(const Polyline& source, const OffsetOptions& options, Point at, Rows* out,
                     int* closed) {
  const Rows rows = rowsOf(source);
  double pick[2] = {at.x, at.y};
  // A first guess at the room, then exactly what the engine asks for.
  int room = static_cast<int>(std::min<std::size_t>(4 * source.vertices.size() + 64, INT_MAX));
  for (int attempt = 0; attempt < 2; ++attempt) {
    out->reset(new double[room][5]());
    const int count = PLineOffsetRoundPick(
        options.eps, source.closed ? 1 : 0, static_cast<int>(source.vertices.size()), rows.get(),
        options.through ? 1 : 0, pick, options.distance, out->get(), room, closed);
    if (count >= 0)
      return count;
    room = -count;
  }
  return 0;
}

// Every loop of the round-corner offset at the signed distance; false when there is none.
bool roundAllLoops(const Polyline& source, const Polyline& polyline, double eps, double dist,
                   std::vector<Polyline>* results) {
  const Rows rows = rowsOf(source);
  const int n = static_cast<int>(source.vertices.size());
  const int closed = source.closed ? 1 : 0;
  int loops = 0;
  const int needed =
      -PLineOffsetRound(eps, closed, n, rows.get(), dist, nullptr, 0, nullptr, nullptr, 0, &loops);
  if (needed <= 0 || loops <= 0)
    return false;
  const Rows out(new double[needed][5]());
  std::vector<int> starts(static_cast<std::size_t>(loops));
  std::vector<int> closedLoops(static_cast<std::size_t>(loops));
  const int count = PLineOffsetRound(eps, closed, n, rows.get(), dist, out.get(), needed,
                                     starts.data(), closedLoops.data(), loops, &loops);
  for (int k = 0; count > 0 && k < loops; ++k) {
    const int end = k + 1 < loops ? starts[static_cast<std::size_t>(k) + 1] : count;
    const int start = starts[static_cast<std::size_t>(k)];
    if (!appendRows(out.get() + start, end - start, closedLoops[static_cast<std::size_t>(k)] != 0,
                    polyline, results))
      return false;
  }
  return count > 0;
}

// Segments tried for a side's pick point before settling for a weaker one: keeps the search
// linear on long polylines.
constexpr std::size_t kMostPickCandidates = 32;

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
  auto usable = [&](std::size_t i) {
    const Vertex& a = v[i];
    const Vertex& b = v[(i + 1) % v.size()];
    return std::hypot(b.x - a.x, b.y - a.y) > kShortSegmentInEps * eps;
  };
  std::size_t first = 0;
  while (first < segments && !usable(first))
    ++first;
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

  // The library keeps the piece of the offset nearest the pick, so the pick goes where the
  // wanted piece will be: |d| off the middle of a segment, on the asked side (as the library
  // measures sides), and no nearer any other part of the polyline than |d|. Where a segment's
  // point fails (a crossing or a reflex corner next to it), the next segment's is tried.
  const Polyline source = withFirstArcSplit(polyline, eps);
  std::optional<Point> onSide;
  std::size_t tried = 0;
  for (std::size_t i = first; i < segments && tried < kMostPickCandidates; ++i) {
    if (!usable(i))
      continue;
    ++tried;
    const Vertex& a = v[i];
    const Vertex& b = v[(i + 1) % v.size()];
    Point mid;
    Point u;
    segmentMidpoint(a, b, &mid, &u);
    double reach = distance;
    Point centre;
    double radius = 0.0;
    // Towards an arc's centre (left of travel for a positive bulge) its offset ends at the
    // centre: stay well short of it.
    if (arcCentre(a, b, &centre, &radius) && (a.bulge > 0.0) == (toRight < 0.0))
      reach = std::min(reach, radius / 2.0);
    // The right of the direction u is (u.y, -u.x).
    const Point candidate{mid.x + toRight * reach * u.y, mid.y - toRight * reach * u.x};
    double dist = 0.0;
    if (!(reach > 0.0) || !signedDistance(source, eps, candidate, &dist) || !(dist * toRight > eps))
      continue;
    if (!onSide)
      onSide = candidate;
    bool nearerElsewhere = false;
    for (std::size_t j = 0; j < segments && !nearerElsewhere; ++j) {
      nearerElsewhere = j != i && distanceToSegment(v[j], v[(j + 1) % v.size()], candidate) <
                                      reach * (1.0 - kStrayMargin);
    }
    if (!nearerElsewhere) {
      *pick = candidate;
      return true;
    }
  }
  if (onSide) {
    *pick = *onSide;
    return true;
  }

  // Nothing measured on the asked side: a point just off the first segment's middle, nearer
  // it than anything else.
  const Vertex& a = v[first];
  const Vertex& b = v[(first + 1) % v.size()];
  Point mid;
  Point u;
  segmentMidpoint(a, b, &mid, &u);
  const double chord = std::hypot(b.x - a.x, b.y - a.y);
  double reach = chord;
  const double bulge = std::fabs(a.bulge);
  if (bulge > 0.0)
    reach = std::min(reach, chord / 2.0 * (1.0 + bulge * bulge) / (2.0 * bulge));
  if (distance > 0.0)
    reach = std::min(reach, distance);
  const double step = std::max(reach / 1000.0, 100.0 * eps);
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
  double dist = 0.0;
  if (!pickMeasured(source, options.eps, outcome.pick, &dist, &outcome.problem))
    return outcome;
  const char* const outOfReach = "the library returned a vertex that is not a number within +-1e15";

  if (options.allLoops) {
    // The side (and, through the pick, the distance) as PLineOffset takes them from the pick.
    const double signedDist = options.through ? dist : std::copysign(options.distance, dist);
    if (!roundAllLoops(source, polyline, options.eps, signedDist, &outcome.results)) {
      outcome.problem = outcome.results.empty() ? kCollapses : outOfReach;
      outcome.results.clear();
      return outcome;
    }
    outcome.offset = true;
    return outcome;
  }

  if (!options.roundCorners) {
    const std::size_t rowCount = source.vertices.size();
    Rows rows = rowsOf(source);
    int closed = source.closed ? 1 : 0;
    double pick[2] = {outcome.pick.x, outcome.pick.y};
    const int count = PLineOffset(options.eps, &closed, static_cast<int>(rowCount), rows.get(),
                                  options.through ? 1 : 0, pick, options.distance);
    if (count > 0 && static_cast<std::size_t>(count) <= 2 * rowCount) {
      outcome.offset = appendRows(rows.get(), count, closed != 0, polyline, &outcome.results);
      outcome.problem = outcome.offset ? "" : outOfReach;
      return outcome;
    }
  }
  // Round corners throughout, or where sharp corners gave nothing: an offset the round-corner
  // engine finds near the pick means sharp corners could not make it; none means a collapse.
  Rows rows;
  int closed = 0;
  const int count = roundNearestLoop(source, options, outcome.pick, &rows, &closed);
  if (count <= 0) {
    outcome.problem = kCollapses;
    return outcome;
  }
  if (!appendRows(rows.get(), count, closed != 0, polyline, &outcome.results)) {
    outcome.problem = outOfReach;
    outcome.results.clear();
    return outcome;
  }
  if (!options.roundCorners)
    outcome.note = "its offset cannot be made with sharp corners: offset with round corners";
  outcome.offset = true;
  return outcome;
}

}  // namespace tarnsysm::tool
