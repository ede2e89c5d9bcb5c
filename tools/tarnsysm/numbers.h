// Tarnsysm tool: reading and printing numbers independently of the locale.
// Reading is strict (the whole word, finite); printing round-trips.
#pragma once

#include <string>

namespace tarnsysm::tool {

/// Parses the whole of `word` as a finite double ("1.5", "-2e3", "+4"); false for anything
/// else, including "nan", "inf", trailing characters and an empty word.
bool parseFiniteNumber(const std::string& word, double* value);

/// The shortest text that reads back as the same double.
std::string formatNumber(double value);

}  // namespace tarnsysm::tool
