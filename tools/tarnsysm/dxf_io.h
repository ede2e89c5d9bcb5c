// Tarnsysm tool: DXF drawings in and out, through dxflib.
// dxflib is GPL-2.0-or-later; it is linked into this tool only, never into the library.
#pragma once

#include <string>
#include <vector>

#include "drawing.h"

namespace tarnsysm::tool {

// Layers of the written drawing.
inline constexpr const char* kInputLayer = "INPUT";
inline constexpr const char* kOffsetLayer = "OFFSET";
inline constexpr const char* kPickLayer = "PICK";

/// Reads the polylines of a DXF drawing's text (`name` is for messages): every LWPOLYLINE (and
/// two-dimensional R12 POLYLINE) of the ENTITIES section with its bulges, closed flag, elevation
/// and extrusion, in file order. A polyline drawn from below (extrusion 0, 0, -1) is mirrored
/// into the drawing plane. Polylines inside block definitions are ignored; 3D polylines, meshes
/// and polylines in tilted planes are left out and listed in `leftOut`. The text is checked
/// whole first (checkDxfText); throws UserError when it is not.
Drawing readDxf(const std::string& text, const std::string& name);

struct DxfLayer {
  std::string name;
  int colour = 7;  // AutoCAD colour index: 1 red, 5 blue, 7 black/white, 8 grey
};

/// What a written drawing holds: its layers (layer "0" is always added), the polylines, each
/// on the layer its `layer` field names, and points on one layer.
struct DxfContent {
  std::vector<DxfLayer> layers;
  std::vector<Polyline> polylines;
  std::vector<Point> points;
  std::string pointLayer;
};

/// The tool's result drawing: the input polylines on layer INPUT, the offsets on layer OFFSET
/// and the pick points on layer PICK.
DxfContent offsetDrawing(const std::vector<Polyline>& input, const std::vector<Polyline>& offsets,
                         const std::vector<Point>& picks);

/// An AutoCAD 2000 DXF drawing (LWPOLYLINE and POINT entities, with the header, tables, blocks
/// and objects that other readers expect, every object owned), as text. Polylines keep their
/// elevation and extrusion. Throws std::runtime_error when a number is out of range.
std::string dxfText(const DxfContent& content);

}  // namespace tarnsysm::tool
