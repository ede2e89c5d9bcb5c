// Tarnsysm tool: a pre-scan of a DXF drawing's group codes before dxflib reads it.
// A DXF file is a sequence of pairs of lines: an integer group code, then its value. Code 0
// starts an entity (or a SECTION, ENDSEC, EOF marker); code 5 is an entity's handle.
#include "dxf_scan.h"

#include <algorithm>
#include <charconv>
#include <set>
#include <string_view>
#include <vector>

#include "drawing.h"
#include "numbers.h"

namespace tarnsysm::tool {

namespace {

std::string_view trimmed(std::string_view text) {
  const auto first = text.find_first_not_of(" \t\r");
  if (first == std::string_view::npos)
    return {};
  return text.substr(first, text.find_last_not_of(" \t\r") - first + 1);
}

bool parseInteger(std::string_view text, long long* value) {
  text = trimmed(text);
  if (!text.empty() && text.front() == '+')
    text.remove_prefix(1);
  const auto [end, ec] = std::from_chars(text.data(), text.data() + text.size(), *value);
  return ec == std::errc() && end == text.data() + text.size() && !text.empty();
}

// Group codes whose values are real numbers, and those whose values are integers.
bool isRealCode(long long code) {
  return (code >= 10 && code <= 59) || (code >= 110 && code <= 149) ||
         (code >= 210 && code <= 239) || (code >= 1010 && code <= 1059);
}
bool isIntegerCode(long long code) {
  return (code >= 60 && code <= 99) || (code >= 170 && code <= 179) ||
         (code >= 270 && code <= 289) || (code >= 1060 && code <= 1071);
}

// Counts dxflib sizes an array by when it reads these entities.
bool isAllocatingCount(const std::string& type, long long code) {
  if (type == "LWPOLYLINE")
    return code == 90;
  if (type == "SPLINE")
    return code >= 72 && code <= 74;
  if (type == "LEADER")
    return code == 76;
  if (type == "HATCH")
    return code == 91 || code == 93;
  return false;
}

[[noreturn]] void failAt(const std::string& name, std::size_t line, const std::string& what) {
  throw UserError("'" + name + "' line " + std::to_string(line) + ": " + what);
}

// The entity being scanned.
struct Entity {
  std::string type;  // empty outside an entity
  std::string handle;
  std::size_t line = 0;       // where it starts
  long long count = -1;       // LWPOLYLINE: announced vertices (-1: none announced)
  std::size_t countLine = 0;  // where the count is
  long long vertices = 0;     // LWPOLYLINE: x coordinates seen

  std::string name() const {
    return type + (handle.empty() ? " (no handle)" : " (handle " + handle + ")");
  }
};

}  // namespace

std::size_t checkDxfText(const std::string& text, const std::string& name) {
  std::vector<std::string_view> lines;
  std::vector<std::size_t> ends;  // where each line's text ends, line end included
  for (std::size_t start = 0; start < text.size();) {
    const auto end = text.find('\n', start);
    const std::size_t stop = end == std::string::npos ? text.size() : end;
    lines.push_back(std::string_view(text).substr(start, stop - start));
    start = stop + 1;
    ends.push_back(std::min(start, text.size()));
  }
  auto fail = [&](std::size_t line, const std::string& what) { failAt(name, line, what); };
  if (lines.empty())
    throw UserError("'" + name + "' is empty");

  static const std::set<std::string> polylineTypes = {"LWPOLYLINE", "POLYLINE", "VERTEX"};
  Entity entity;
  bool sectionStart = false;
  bool inSequence = false;  // between an R12 POLYLINE and its SEQEND
  std::string sequenceName;
  auto finish = [&]() {
    if (entity.type == "LWPOLYLINE" && entity.count != entity.vertices) {
      fail(entity.countLine ? entity.countLine : entity.line,
           entity.name() + " announces " + std::to_string(std::max(entity.count, 0LL)) +
               " vertices (code 90) but holds " + std::to_string(entity.vertices));
    }
    entity = Entity{};
  };

  const std::size_t pairs = lines.size() / 2;
  for (std::size_t pair = 0; 2 * pair < lines.size(); ++pair) {
    const std::size_t codeLine = 2 * pair + 1;  // counted from 1
    const std::size_t valueLine = codeLine + 1;
    long long code = 0;
    if (!parseInteger(lines[codeLine - 1], &code) || code < -5 || code > 1071) {
      fail(codeLine, "'" + std::string(trimmed(lines[codeLine - 1]).substr(0, 40)) +
                         "' is not a DXF group code (is it a DXF drawing?)");
    }
    if (valueLine > lines.size())
      break;
    const std::string_view value = trimmed(lines[valueLine - 1]);
    if (code == 0) {
      finish();
      if (value == "EOF")
        return ends[valueLine - 1];
      sectionStart = value == "SECTION";
      if (value == "SECTION" || value == "ENDSEC")
        continue;
      entity.type = std::string(value);
      entity.line = codeLine;
      if (value == "POLYLINE") {
        inSequence = true;
        sequenceName = entity.name();
      }
      if (value == "SEQEND")
        inSequence = false;
      continue;
    }
    if (sectionStart)
      continue;
    if (code == 5) {
      entity.handle = std::string(value.substr(0, 16));
      if (entity.type == "POLYLINE")
        sequenceName = entity.name();
    }
    const bool polylinePart = polylineTypes.count(entity.type) != 0;
    double real = 0.0;
    if (polylinePart && isRealCode(code) && !parseFiniteNumber(std::string(value), &real)) {
      fail(valueLine, entity.name() + ": '" + std::string(value.substr(0, 40)) + "' (code " +
                          std::to_string(code) + ") is not a finite number");
    }
    long long integer = 0;
    const bool allocating = isAllocatingCount(entity.type, code);
    if ((polylinePart || allocating) && isIntegerCode(code) && !parseInteger(value, &integer)) {
      fail(valueLine, entity.name() + ": '" + std::string(value.substr(0, 40)) + "' (code " +
                          std::to_string(code) + ") is not an integer");
    }
    // Every counted item takes at least one pair of lines (a vertex two: x and y).
    const long long pairsLeft = static_cast<long long>(pairs - pair - 1);
    if (allocating && (integer < 0 || integer > pairsLeft)) {
      fail(valueLine, entity.name() + ": count " + std::string(value.substr(0, 40)) + " (code " +
                          std::to_string(code) + ") is more than the rest of the file can hold");
    }
    if (entity.type == "LWPOLYLINE" && code == 90) {
      entity.count = integer;
      entity.countLine = valueLine;
    }
    if (entity.type == "LWPOLYLINE" && code == 10)
      ++entity.vertices;
  }

  std::string where;
  if (!entity.type.empty())
    where = " inside " + entity.name();
  else if (inSequence)
    where = " inside " + sequenceName;
  failAt(name, lines.size(), "the drawing ends" + where + " without EOF: the file is cut short");
}

}  // namespace tarnsysm::tool
