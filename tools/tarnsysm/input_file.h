// Tarnsysm tool: reading the input drawing whole into memory, with bounds.
// Pipes, FIFOs and character devices are read like files; nothing is read twice.
#pragma once

#include <cstddef>
#include <string>

namespace tarnsysm::tool {

/// Largest input the tool reads: far beyond any drawing it is meant for, small enough that a
/// mistaken device or endless pipe stops with an error instead of filling memory.
inline constexpr std::size_t kLargestInputBytes = std::size_t{256} << 20;
/// Longest line of an input file, line end excluded. The DXF reader keeps 1,023 characters of a
/// line and silently loses track of the rest, and no group value the tool reads comes near this.
inline constexpr std::size_t kLongestInputLine = 1000;

/// The whole contents of `path`. Throws UserError for a missing or unreadable file, a directory,
/// binary DXF, an input larger than kLargestInputBytes or a line longer than kLongestInputLine
/// (naming it).
std::string readInputFile(const std::string& path);

}  // namespace tarnsysm::tool
