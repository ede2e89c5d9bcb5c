// Tarnsysm: planar computational geometry for 2D drafting.
// The wildcard matcher as plain recursion, read straight off its rules: the oracle that the
// library's matcher is compared with on short inputs (it takes exponential time on long ones).
#pragma once

#include <cstring>
#include <string>

namespace plain {

inline int upper(char c) {
  return c >= 'a' && c <= 'z' ? c - 32 : static_cast<unsigned char>(c);
}

inline int setContains(char c, const char* d, long n) {
  if (n < 1)
    return 1;
  if (upper(c) == upper(d[0]))
    return 0;
  if (n < 2)
    return 1;
  if (d[1] != '-')
    return setContains(c, d + 1, n - 1);
  if (n == 2)
    return c == '-' ? 0 : 1;
  const unsigned char x = d[0], y = d[2], u = c;
  if (y <= x)
    return 1;
  if (x <= u && u <= y)
    return 0;
  return setContains(c, d + 3, n - 3);
}

inline int match(int pos, int limit, char* name, const char* pat) {
  if (pos > limit)
    return 0;
  if (!*name && !*pat)
    return 0;
  if (!*pat)
    return 1;
  if (*name == '\\')
    std::memmove(name, name + 1, std::strlen(name));
  const char c = *name;
  const bool digit = c >= '0' && c <= '9';
  const bool letter = (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
  const auto next = [&](bool ok, int skip) {
    return ok ? match(pos + 1, limit, name + 1, pat + skip) : 1;
  };
  switch (*pat) {
    case '#':
      return next(digit, 1);
    case '*':
      if (match(pos, limit, name, pat + 1) == 0)
        return 0;
      if (!*name)
        return 1;
      return match(pos + 1, limit, name + 1, pat);
    case '.':
      return next(c && !digit && !letter, 1);
    case '?':
      return next(c != 0, 1);
    case '@':
      return next(letter, 1);
    case '[': {
      const long len = static_cast<long>(std::strlen(pat));
      if (pat[1] == '~') {
        if (len < 4)
          return -1;
        const char* close = std::strchr(pat + 3, ']');
        if (!close)
          return -1;
        if (setContains('[', pat + 3, close - pat - 2) == 0)
          return 1;
        return c ? match(pos + 1, limit, name + 1, close + 1) : 1;
      }
      if (len < 3)
        return -1;
      const char* close = std::strchr(pat + 2, ']');
      if (!close)
        return -1;
      if (!c || setContains(c, pat + 1, close - pat - 1) != 0)
        return 1;
      return match(pos + 1, limit, name + 1, close + 1);
    }
    case '\\':
      if (!pat[1])
        return -1;
      return next(c && upper(c) == upper(pat[1]), 2);
    case '`':
      if (pat[1] == '\\') {
        if (!pat[2])
          return -1;
        return next(c && upper(c) == upper(pat[2]), 3);
      }
      if (!pat[1])
        return -1;
      return next(c && upper(c) == upper(pat[1]), 2);
    case '~':
      if (pos == 0)
        return match(0, limit, name, pat + 1) == 0 ? 1 : 0;
      return next(c == '~', 1);
    default:
      return next(c && upper(c) == upper(*pat), 1);
  }
}

// Match over a comma-separated list, on one copy of the name shared by the patterns.
inline int matchList(const std::string& name, const std::string& list, int limit) {
  std::string buffer = name;
  const int length = static_cast<int>(name.size());
  const auto space = [](char c) { return c == ' ' || (c >= '\t' && c <= '\r'); };
  std::string rest = list;
  while (!rest.empty()) {
    const std::size_t comma = rest.find(',');
    std::string pattern = rest.substr(0, comma);
    rest = comma == std::string::npos ? std::string() : rest.substr(comma + 1);
    while (!pattern.empty() && space(pattern.front()))
      pattern.erase(0, 1);
    while (!pattern.empty() && space(pattern.back()))
      pattern.pop_back();
    if (match(0, limit < length ? limit : length, &buffer[0], pattern.c_str()) == 0)
      return 1;
  }
  return 0;
}

}  // namespace plain
