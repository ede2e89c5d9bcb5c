// Tarnsysm tool: a picture of an offset, as SVG.
// Input in thin grey, offsets in colour, pick points as dots; arcs drawn as true SVG arcs.
#pragma once

#include <iosfwd>
#include <string>
#include <vector>

#include "drawing.h"

namespace tarnsysm::tool {

struct SvgPicture {
  std::vector<Polyline> input;
  std::vector<bool> inputFailed;  // per input polyline: no offset was made (drawn dashed)
  std::vector<Polyline> offsets;
  std::vector<Point> picks;
  std::string caption;
};

/// Writes the picture scaled to fit about 960 x 720 pixels with y pointing up.
void writeSvg(std::ostream& out, const SvgPicture& picture);

}  // namespace tarnsysm::tool
