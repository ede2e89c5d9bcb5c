// Tarnsysm tool: polylines as plain text, for quick use and tests.
// One or more blocks: a line "closed N" or "open N", then N lines "x y bulge".
#pragma once

#include <iosfwd>
#include <string>
#include <vector>

#include "drawing.h"

namespace tarnsysm::tool {

/// True when the stream's first word is "closed" or "open": the plain text form. Leaves the
/// stream where it was.
bool looksLikeText(std::istream& in);

/// Reads every block of the text form. Blank lines and lines starting with '#' are skipped.
/// Throws UserError naming the file and line for anything it cannot read.
Drawing readText(std::istream& in, const std::string& name);

/// Writes the polylines in the same text form, with numbers that read back bit-identical.
void writeText(std::ostream& out, const std::vector<Polyline>& polylines);

}  // namespace tarnsysm::tool
