// Tarnsysm tool: the drawing as the tarnsysm command sees it.
// Polylines of lines and bulge arcs, with where each came from so messages can name it.
#pragma once

#include <array>
#include <cstddef>
#include <stdexcept>
#include <string>
#include <vector>

namespace tarnsysm::tool {

struct Point {
  double x = 0.0;
  double y = 0.0;
};

/// One vertex: its position and the bulge of the segment that starts here (0: straight).
struct Vertex {
  double x = 0.0;
  double y = 0.0;
  double bulge = 0.0;
};

struct Polyline {
  std::vector<Vertex> vertices;
  bool closed = false;
  std::string layer;   // DXF layer, empty for text input
  std::string handle;  // DXF entity handle in hex, empty when the file gives none
  // The plane a DXF polyline lies in: its height and the direction it is seen from. Vertices
  // are always in drawing coordinates; one seen from below (0, 0, -1) is mirrored on output.
  double elevation = 0.0;
  std::array<double, 3> extrusion{0.0, 0.0, 1.0};
};

struct Drawing {
  std::vector<Polyline> polylines;
  // Polylines the reader left out (3D ones, meshes, tilted planes): "polyline (handle 3A, layer
  // WALLS): a 3D polyline".
  std::vector<std::string> leftOut;
};

/// Largest magnitude of a coordinate, bulge, distance or pick point the tool takes in: far
/// beyond any drawing (1e12 millimetres is a million kilometres), and small enough that every
/// offset, arc radius and extent stays a number that DXF files and SVG renderers can hold.
inline constexpr double kLargestInput = 1e12;
/// Largest magnitude of a coordinate or bulge the tool accepts back from the library; an
/// offset vertex beyond it (a join of nearly parallel segments far away) counts as a failure.
inline constexpr double kLargestResult = 1e15;

/// True when x, y and bulge are finite and no larger in magnitude than `limit`.
bool isVertexWithin(const Vertex& v, double limit);

/// A mistake in what the user asked for or gave us (missing file, malformed number, ...):
/// reported as one line on stderr, exit status 2, and no output file is written.
class UserError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// "handle 2F, layer PARTS": where a polyline comes from, empty when nothing is known.
std::string placeOf(const Polyline& polyline);

/// "polyline 3 (handle 2F, layer PARTS)": how messages name polyline `index` (counted from 1).
std::string describePolyline(const Polyline& polyline, std::size_t index);

/// Lowest and highest x and y over all vertices and arc bulges of the polylines; false when
/// there is nothing to measure.
struct Extent {
  Point low;
  Point high;
};
bool extentOf(const std::vector<const Polyline*>& polylines, Extent* extent);

/// The point halfway along the segment from a to b with the given bulge (on the arc, not on
/// the chord), and the unit direction of travel there.
void segmentMidpoint(const Vertex& a, const Vertex& b, Point* mid, Point* direction);

/// Centre and radius of the arc from a to b with a's bulge; false for a straight or zero-length
/// segment.
bool arcCentre(const Vertex& a, const Vertex& b, Point* centre, double* radius);

/// Distance from p to the segment from a to b with a's bulge (line or arc).
double distanceToSegment(const Vertex& a, const Vertex& b, Point p);

}  // namespace tarnsysm::tool
