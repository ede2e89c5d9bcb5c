// Tarnsysm: the tarnsysm tool's DXF reader on arbitrary bytes.
// The input is the text of a drawing. The pre-scan refuses what dxflib must not be given
// (counts beyond the file, numbers that are not numbers, a file cut short) with a UserError;
// whatever it lets through, dxflib reads.
//
// Properties, each aborting with a message when broken:
//   - no crash, no memory error, no exception other than UserError;
//   - every vertex of every polyline read is finite: a coordinate or bulge that is not a
//     number never gets past the pre-scan.
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>

#include "dxf_io.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace tarnsysm::tool;
  Drawing drawing;
  try {
    drawing = readDxf(std::string(reinterpret_cast<const char*>(data), size), "fuzz.dxf");
  } catch (const UserError&) {
    return 0;
  }
  for (const Polyline& polyline : drawing.polylines) {
    for (const Vertex& v : polyline.vertices) {
      if (!std::isfinite(v.x) || !std::isfinite(v.y) || !std::isfinite(v.bulge)) {
        std::fprintf(stderr, "a vertex that is not a number got past the pre-scan\n");
        std::abort();
      }
    }
  }
  return 0;
}
