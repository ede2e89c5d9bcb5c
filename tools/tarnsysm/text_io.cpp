// Tarnsysm tool: polylines as plain text, for quick use and tests.
// Reading is strict: a malformed or non-finite number is an error naming its line.
#include "text_io.h"

#include <charconv>
#include <cmath>
#include <cstdio>
#include <istream>
#include <ostream>
#include <sstream>

#include "numbers.h"

namespace tarnsysm::tool {

namespace {

// The words of one line, split at blanks and tabs.
std::vector<std::string> wordsOf(const std::string& line) {
  std::vector<std::string> words;
  std::istringstream in(line);
  std::string word;
  while (in >> word)
    words.push_back(word);
  return words;
}

bool isBlankOrComment(const std::string& line) {
  for (char c : line) {
    if (c == '#')
      return true;
    if (c != ' ' && c != '\t' && c != '\r')
      return false;
  }
  return true;
}

}  // namespace

bool looksLikeText(std::istream& in) {
  const auto start = in.tellg();
  std::string word;
  in >> word;
  in.clear();
  in.seekg(start);
  return word == "closed" || word == "open";
}

Drawing readText(std::istream& in, const std::string& name) {
  Drawing drawing;
  std::string line;
  int lineNumber = 0;
  auto fail = [&](const std::string& what) {
    throw UserError(name + ":" + std::to_string(lineNumber) + ": " + what);
  };
  auto number = [&](const std::string& word, const char* what) {
    double value = 0.0;
    if (!parseFiniteNumber(word, &value))
      fail("malformed " + std::string(what) + " '" + word + "'");
    return value;
  };

  while (std::getline(in, line)) {
    ++lineNumber;
    if (isBlankOrComment(line))
      continue;
    const auto header = wordsOf(line);
    if (header.size() != 2 || (header[0] != "closed" && header[0] != "open")) {
      fail("expected 'closed N' or 'open N', found '" + line + "'");
    }
    long count = 0;
    const char* first = header[1].data();
    const char* last = first + header[1].size();
    const auto [end, ec] = std::from_chars(first, last, count);
    if (ec != std::errc() || end != last || count < 1) {
      fail("malformed vertex count '" + header[1] + "'");
    }
    Polyline polyline;
    polyline.closed = header[0] == "closed";
    while (static_cast<long>(polyline.vertices.size()) < count) {
      if (!std::getline(in, line)) {
        fail("the polyline announced " + std::to_string(count) + " vertices, the file ends after " +
             std::to_string(polyline.vertices.size()));
      }
      ++lineNumber;
      if (isBlankOrComment(line))
        continue;
      const auto row = wordsOf(line);
      if (row.size() != 3)
        fail("expected 'x y bulge', found '" + line + "'");
      polyline.vertices.push_back(
          {number(row[0], "x"), number(row[1], "y"), number(row[2], "bulge")});
    }
    drawing.polylines.push_back(std::move(polyline));
  }
  if (in.bad())
    throw UserError(name + ": read error");
  return drawing;
}

void writeText(std::ostream& out, const std::vector<Polyline>& polylines) {
  for (const Polyline& polyline : polylines) {
    out << (polyline.closed ? "closed " : "open ") << polyline.vertices.size() << '\n';
    for (const Vertex& v : polyline.vertices) {
      out << formatNumber(v.x) << ' ' << formatNumber(v.y) << ' ' << formatNumber(v.bulge) << '\n';
    }
  }
}

}  // namespace tarnsysm::tool
