// Tarnsysm tool: a pre-scan of a DXF drawing's group codes before dxflib reads it.
// dxflib takes nearly anything: it reads a cut-off file as far as it goes, believes vertex counts,
// reads "12xyz" as 12 and allocates whatever a count asks for.
#pragma once

#include <string>

namespace tarnsysm::tool {

/// Checks that the text of a DXF drawing is whole and that the polylines the tool reads hold what
/// they claim. Throws UserError naming the line (and the entity and its handle) for: a line that
/// is not a group code, a drawing that ends without EOF (inside an entity or not), an LWPOLYLINE
/// whose vertex count (code 90) differs from its vertices or exceeds what the rest of the file can
/// hold, a coordinate or other number of a polyline or vertex that is not a finite number, and a
/// count of any entity dxflib allocates for that the rest of the file cannot hold. Returns the
/// length of the drawing up to its EOF marker: dxflib reads on past it, so what follows (padding,
/// or anything else) is not to be given to it.
std::size_t checkDxfText(const std::string& text, const std::string& name);

}  // namespace tarnsysm::tool
