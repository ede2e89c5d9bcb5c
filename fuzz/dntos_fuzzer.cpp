// Tarnsysm: planar computational geometry for 2D drafting.
// Fuzz target for DnTos, plain and sized, with property checks.
//
// Input layout (values as read by fuzz::ByteReader, fuzz_support.h):
//   byte 0     mode = byte % 8 - 1, so -1 .. 6
//   bytes 1-2  precision of the plain form: (little-endian) % 409 - 8, so -8 .. 400
//   byte 3, 4  zeros and style, as signed bytes
//   value      the distance
//   bytes      4: precision of the sized form (any int); 2: its size (0 .. 65535)
//
// Properties, each aborting with a message when broken:
//   - the plain form writes within the documented room, in a buffer of exactly that size: with
//     P = prec (6 when negative) P + 9 in mode 1, P + 312 in mode 2, P + 30 in mode 3, 69 in
//     modes 4 and 5; it returns 1 for modes 1 to 5 and 0 (out untouched) otherwise;
//   - the sized form never writes past size; it returns -1 (out untouched) exactly when the text
//     and its NUL do not fit, else the same text as the plain form (compared when that text can
//     be had, |prec| <= 4096; otherwise it must end within size).
#include <Tarnsysm.h>

#include "fuzz_support.h"

#include <cstddef>
#include <cstdint>
#include <cstring>

namespace {

using fuzz::require;

constexpr unsigned char kUntouched = 0x3C;

std::size_t documentedRoom(int mode, int prec) {
  const std::size_t p = prec < 0 ? 6 : static_cast<std::size_t>(prec);
  switch (mode) {
    case 1:
      return p + 9;
    case 2:
      return p + 312;
    case 3:
      return p + 30;
    default:
      return 69;
  }
}

bool untouched(const unsigned char* bytes, std::size_t size) {
  for (std::size_t k = 0; k < size; ++k)
    if (bytes[k] != kUntouched)
      return false;
  return true;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  fuzz::ByteReader in(data, size);
  const int mode = in.byte() % 8 - 1;
  const int prec = static_cast<int>(in.integer(2) % 409) - 8;
  const int zeros = static_cast<std::int8_t>(in.byte());
  const int style = static_cast<std::int8_t>(in.byte());
  const double value = in.value();
  const int sizedPrec = static_cast<std::int32_t>(static_cast<std::uint32_t>(in.integer(4)));
  const std::size_t sizedRoom = static_cast<std::size_t>(in.integer(2));
  const bool known = mode >= 1 && mode <= 5;

  const std::size_t room = known ? documentedRoom(mode, prec) : 1;
  fuzz::GuardedBytes plain(room);
  std::memset(plain.data(), kUntouched, room);
  char* text = reinterpret_cast<char*>(plain.data());
  const int result = DnTos(mode, prec, zeros, style, value, text);
  require(plain.guardIntact(), "DnTos wrote past the documented room");
  require(result == (known ? 1 : 0), "DnTos result is not 1 for modes 1-5 and 0 otherwise");
  if (!known)
    require(untouched(plain.data(), room), "DnTos touched out for an unknown mode");
  else
    require(std::memchr(text, '\0', room) != nullptr, "DnTos text is not terminated");

  fuzz::GuardedBytes sized(sizedRoom);
  std::memset(sized.data(), kUntouched, sizedRoom);
  char* sizedText = reinterpret_cast<char*>(sized.data());
  const int sizedResult = DnTos(mode, sizedPrec, zeros, style, value, sizedText, sizedRoom);
  require(sized.guardIntact(), "sized DnTos wrote past size");
  if (!known) {
    require(sizedResult == 0 && untouched(sized.data(), sizedRoom),
            "sized DnTos: an unknown mode must give 0 and leave out untouched");
    return 0;
  }
  require(sizedResult == 1 || sizedResult == -1, "sized DnTos result is not 1 or -1");
  if (sizedResult == -1)
    require(untouched(sized.data(), sizedRoom), "sized DnTos touched out when giving -1");
  else
    require(std::memchr(sizedText, '\0', sizedRoom) != nullptr, "sized DnTos text unterminated");
  if (sizedPrec < -4096 || sizedPrec > 4096)
    return 0;
  fuzz::GuardedBytes reference(documentedRoom(mode, sizedPrec));
  char* expected = reinterpret_cast<char*>(reference.data());
  DnTos(mode, sizedPrec, zeros, style, value, expected);
  const bool fits = std::strlen(expected) < sizedRoom;
  require(fits == (sizedResult == 1), "sized DnTos gave -1 for a text that fits, or 1 otherwise");
  if (fits)
    require(std::strcmp(expected, sizedText) == 0, "sized DnTos text differs from the plain one");
  return 0;
}
