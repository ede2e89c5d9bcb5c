// Tarnsysm tool: offsetting the polylines of a drawing with the library's PLineOffset and its
// round-corner engine.
// Turns a side (left, right, inside, outside) into a pick point for each polyline.
#pragma once

#include <string>
#include <vector>

#include "drawing.h"

namespace tarnsysm::tool {

enum class Side { kLeft, kRight, kInside, kOutside };

struct OffsetOptions {
  double distance = 0.0;  // positive; unused when through is set
  bool through = false;   // the offset passes through the pick point
  bool usePick = false;   // pick is given (otherwise side decides)
  Point pick;
  Side side = Side::kRight;
  double eps = 1e-9;          // the library's tolerance, in drawing units
  bool roundCorners = false;  // the round-corner engine throughout (else sharp corners first)
  bool allLoops = false;      // every loop of the round-corner offset (else the one nearest)
};

struct OffsetOutcome {
  bool offset = false;   // the library made an offset
  bool hasPick = false;  // a pick point was found (pick is valid)
  Point pick;
  std::vector<Polyline> results;  // the offset's loops, when offset is set
  std::string problem;            // why there is no offset, when offset is not set
  std::string note;               // said of an offset made otherwise than asked
};

/// The pick point that puts the offset on the given side of the polyline and on the piece of it
/// that is wanted: `distance` off the middle of the first segment of non-zero length (at most
/// half an arc's radius towards its centre), to the right or left of the direction of travel
/// there, on that side by PLineDist's sign and no nearer any other segment than to its own. Where
/// a segment's point fails, the next segment's is tried (up to 32); failing all, the first point
/// on the right side, or else one just off the first segment. For inside and outside, the signed
/// area of the closed polyline says which of the two is inside. False, with *problem set, for an
/// open polyline asked for inside or outside, one with no segment of non-zero length, or one
/// enclosing no area.
bool sidePickPoint(const Polyline& polyline, Side side, double distance, double eps, Point* pick,
                   std::string* problem);

/// Offsets one polyline. With sharp corners (PLineOffset), a polyline the library cannot offset
/// gets the round-corner engine's loop nearest the pick, with a note, when there is one; with
/// round corners that loop throughout; with all loops every loop of the round-corner offset.
/// Without an offset, `problem` says why: the pick lies on the polyline, its distance cannot be
/// measured, or the polyline collapses. The input is left as it is.
OffsetOutcome offsetPolyline(const Polyline& polyline, const OffsetOptions& options);

}  // namespace tarnsysm::tool
