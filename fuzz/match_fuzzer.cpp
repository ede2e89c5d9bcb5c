// Tarnsysm: planar computational geometry for 2D drafting.
// Fuzz target for Match and match on arbitrary names and patterns, with property checks.
//
// Input layout:
//   byte 0   bit 0: call Match (else match); bits 1-2 the limit: 0 byte 1 as a signed byte,
//            1 INT_MAX, 2 INT_MIN, 3 bytes 1-2 as a signed 16-bit number
//   byte 1-2 limit (see above); byte 3: pos of match, a signed byte
//   bytes    the name up to a 0 byte, then the pattern (list) up to the end, 0 bytes dropped.
//
// Properties, each aborting with a message when broken:
//   - name and pattern sit in buffers of exactly their length and NUL: nothing reads or writes
//     past them;
//   - match gives -1, 0 or 1, Match 0 or 1;
//   - the name only loses backslashes;
//   - with name and pattern of 12 characters or fewer, results and the name agree with the plain
//     recursive matcher (plain_match.h).
#include <Tarnsysm.h>

#include "fuzz_support.h"
#include "plain_match.h"

#include <climits>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string>

namespace {

using fuzz::require;

constexpr std::size_t kCompared = 12;

// A NUL-terminated copy in a buffer of exactly its size.
class GuardedText {
 public:
  explicit GuardedText(const std::string& s) : bytes_(s.size() + 1) {
    std::memcpy(bytes_.data(), s.c_str(), s.size() + 1);
  }
  char* get() { return reinterpret_cast<char*>(bytes_.data()); }
  bool guardIntact() { return bytes_.guardIntact(); }

 private:
  fuzz::GuardedBytes bytes_;
};

// `after` is `before` with some backslashes taken out, and nothing else changed.
bool onlyBackslashesLost(const std::string& before, const char* after) {
  std::size_t j = 0;
  for (char c : before) {
    if (after[j] == c && c != '\0')
      ++j;
    else if (c != '\\')
      return false;
  }
  return after[j] == '\0';
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  fuzz::ByteReader in(data, size);
  const std::uint8_t flags = in.byte();
  const std::uint64_t limitBytes = in.integer(2);
  const int pos = static_cast<std::int8_t>(in.byte());
  int limit = static_cast<std::int8_t>(limitBytes & 0xFF);
  switch ((flags >> 1) & 3) {
    case 1:
      limit = INT_MAX;
      break;
    case 2:
      limit = INT_MIN;
      break;
    case 3:
      limit = static_cast<std::int16_t>(limitBytes);
      break;
    default:
      break;
  }
  const std::string name = in.text();
  const std::string pattern = in.text() + in.text() + in.text();
  const bool compared = name.size() <= kCompared && pattern.size() <= kCompared;

  if ((flags & 1) != 0) {
    const int result = Match(name.c_str(), pattern.c_str(), limit);
    require(result == 0 || result == 1, "Match gave neither 0 nor 1");
    if (compared)
      require(result == plain::matchList(name, pattern, limit),
              "Match differs from the plain recursion");
    return 0;
  }
  GuardedText ours(name), patternText(pattern);
  const int result = match(pos, limit, ours.get(), patternText.get());
  require(ours.guardIntact() && patternText.guardIntact(), "match wrote past a buffer");
  require(result >= -1 && result <= 1, "match gave a result outside -1 .. 1");
  require(onlyBackslashesLost(name, ours.get()), "match changed the name beyond backslashes");
  if (compared) {
    std::string theirs = name;
    require(result == plain::match(pos, limit, &theirs[0], pattern.c_str()),
            "match differs from the plain recursion");
    require(std::strcmp(ours.get(), theirs.c_str()) == 0,
            "match deleted other backslashes than the plain recursion");
  }
  return 0;
}
