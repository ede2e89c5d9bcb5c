// Tarnsysm tool: reading and printing numbers independently of the locale.
// std::from_chars / std::to_chars never consult the locale, so "1.5" means 1.5 everywhere.
#include "numbers.h"

#include <charconv>
#include <cmath>
#include <system_error>

namespace tarnsysm::tool {

bool parseFiniteNumber(const std::string& word, double* value) {
  const char* first = word.data();
  const char* last = first + word.size();
  // from_chars takes no leading plus sign; people write one.
  const bool plus = first != last && *first == '+';
  if (plus)
    ++first;
  if (first == last || (plus && *first == '-'))
    return false;
  double parsed = 0.0;
  const auto [end, ec] = std::from_chars(first, last, parsed);
  if (ec != std::errc() || end != last || !std::isfinite(parsed))
    return false;
  *value = parsed;
  return true;
}

std::string formatNumber(double value) {
  // A negative zero (a bulge of -0 from a negated straight segment) reads better as 0.
  if (value == 0.0)
    value = 0.0;
  char buffer[32];
  const auto result = std::to_chars(buffer, buffer + sizeof buffer, value);
  return std::string(buffer, result.ptr);
}

}  // namespace tarnsysm::tool
