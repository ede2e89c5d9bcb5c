// Tarnsysm: planar computational geometry for 2D drafting.
// Character classes of the text utilities: ASCII only, whatever the C locale of the host.
#pragma once

namespace tarnsysm::detail {

/// The C locale's white space: space, \t, \n, \v, \f, \r.
inline bool isCSpace(char c) {
  return c == ' ' || (c >= '\t' && c <= '\r');
}

}  // namespace tarnsysm::detail
