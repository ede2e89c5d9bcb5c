// Tarnsysm tool: offsetting the polylines of a drawing with the library's PLineOffset.
// Turns a side (left, right, inside, outside) into a pick point for each polyline.
#pragma once

#include <string>

#include "drawing.h"

namespace tarnsysm::tool {

enum class Side { kLeft, kRight, kInside, kOutside };

struct OffsetOptions {
  double distance = 0.0;  // positive; unused when through is set
  bool through = false;   // the offset passes through the pick point
  bool usePick = false;   // pick is given (otherwise side decides)
  Point pick;
  Side side = Side::kRight;
  double eps = 1e-9;  // the library's tolerance, in drawing units
};

struct OffsetOutcome {
  bool offset = false;   // the library made an offset
  bool hasPick = false;  // a pick point was found (pick is valid)
  Point pick;
  Polyline result;      // the offset polyline, when offset is set
  std::string problem;  // why there is no offset, when offset is not set
};

/// The pick point that puts the offset on the given side of the polyline: a point a small
/// distance from the midpoint of its first segment of non-zero length, to the right or left
/// of the direction of travel there. For inside and outside, the signed area of the closed
/// polyline says which of the two is inside. False, with *problem set, for an open polyline
/// asked for inside or outside, one with no segment of non-zero length, or one enclosing no
/// area.
bool sidePickPoint(const Polyline& polyline, Side side, double distance, double eps, Point* pick,
                   std::string* problem);

/// Offsets one polyline. The input is left as it is.
OffsetOutcome offsetPolyline(const Polyline& polyline, const OffsetOptions& options);

}  // namespace tarnsysm::tool
