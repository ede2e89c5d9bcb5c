// Tarnsysm: planar computational geometry for 2D drafting.
// Distances as text in the drafting unit styles: scientific, decimal, feet and decimal inches,
// feet-inches-fractions and whole units with fractions.
#include "text/text.h"

#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstring>

namespace {

// A double's exact decimal expansion has at most 1074 digits after the point and 767
// significant digits, so printf's digits past this precision are all zeros: a longer precision
// is formatted at this one and the rest of its digits stand as a run of zeros.
constexpr int kExactDigits = 1100;
// "%-.*f" of the largest double at kExactDigits: sign, 309 digits, point, digits, NUL.
constexpr std::size_t kNumberRoom = 1 + 309 + 1 + kExactDigits + 1;
// Feet, whole units and fractions are 64-bit: their texts fit well within this.
constexpr std::size_t kSmallRoom = 64;
// Magnitudes from here on have no 64-bit integer part.
constexpr double kTwoTo63 = 9223372036854775808.0;
// The fraction denominators of modes 4 and 5 stop at 2^62, whose numerators still fit.
constexpr int kMaxFractionBits = 62;

// A run of text: head, then `zeros` '0' characters, then tail.
struct Piece {
  const char* head = "";
  std::size_t headLength = 0;
  std::uint64_t zeros = 0;
  const char* tail = "";
  std::size_t tailLength = 0;

  std::uint64_t length() const { return headLength + zeros + tailLength; }
};

Piece literal(const char* text) {
  Piece piece;
  piece.head = text;
  piece.headLength = std::strlen(text);
  return piece;
}

// The whole text: at most feet, separator and inches (or whole, separator and fraction).
class Text {
 public:
  void add(const Piece& piece) {
    if (piece.length() > 0)
      pieces_[count_++] = piece;
  }
  std::uint64_t length() const {
    std::uint64_t total = 0;
    for (int k = 0; k < count_; ++k)
      total += pieces_[k].length();
    return total;
  }
  void writeTo(char* out) const {
    for (int k = 0; k < count_; ++k) {
      const Piece& p = pieces_[k];
      std::memcpy(out, p.head, p.headLength);
      out += p.headLength;
      std::memset(out, '0', static_cast<std::size_t>(p.zeros));
      out += p.zeros;
      std::memcpy(out, p.tail, p.tailLength);
      out += p.tailLength;
    }
    *out = '\0';
  }

 private:
  Piece pieces_[3];
  int count_ = 0;
};

// printf of one number, "%-.*e" or "%-.*f", at precision `digits` (>= 0), with the digits past
// kExactDigits kept as a zero run before the exponent (or at the end).
Piece formatNumber(char (&room)[kNumberRoom], bool scientific, int digits, double value) {
  const int formatted = digits < kExactDigits ? digits : kExactDigits;
  const int length =
      std::snprintf(room, kNumberRoom, scientific ? "%-.*e" : "%-.*f", formatted, value);
  Piece piece;
  piece.head = room;
  piece.headLength = length > 0 ? static_cast<std::size_t>(length) : 0;
  if (formatted < digits && std::isfinite(value)) {
    piece.zeros = static_cast<std::uint64_t>(digits - formatted);
    const char* exponent = scientific ? std::strchr(room, 'e') : nullptr;
    if (exponent != nullptr) {
      piece.tail = exponent;
      piece.tailLength = piece.headLength - static_cast<std::size_t>(exponent - room);
      piece.headLength -= piece.tailLength;
    }
  }
  return piece;
}

// Mode 2's suppression of leading and trailing zeros on a "%-.*f" piece (zeros at its end).
Piece suppressZeros(Piece number, int zeros) {
  std::size_t start = 0;
  if ((zeros & 4) != 0)
    while (start < number.headLength && number.head[start] == '0')
      ++start;
  // Inclusive end over head and zero run: the run goes first, then the head's own '0's.
  std::uint64_t keptZeros = number.zeros;
  std::size_t headEnd = number.headLength;  // one past the last head character kept
  if ((zeros & 8) != 0) {
    keptZeros = 0;
    while (headEnd > start && number.head[headEnd - 1] == '0')
      --headEnd;
  }
  const std::uint64_t length = (headEnd - start) + keptZeros;
  if (length < 2)
    return literal("0");
  Piece piece;
  piece.head = number.head + start;
  piece.headLength = headEnd - start;
  piece.zeros = keptZeros;
  if (keptZeros == 0 && number.head[headEnd - 1] == '.')
    --piece.headLength;  // a bare trailing point goes too
  return piece;
}

Piece formatSmall(char (&room)[kSmallRoom], const char* format, long long a, long long b = 0,
                  long long c = 0) {
  std::snprintf(room, kSmallRoom, format, a, b, c);
  return literal(room);
}

// Feet are left out when zero unless zeros & 3 is 1 or 2.
Piece feetText(char (&room)[kSmallRoom], long long feet, int zeros) {
  if (feet == 0 && ((zeros & 3) == 0 || (zeros & 3) == 3))
    return Piece();
  return formatSmall(room, "%lld'", feet);
}

// The fraction of modes 4 and 5: frac in [0, 1) as numerator over 2^prec, halves rounded up,
// then reduced. A fraction that rounds to a whole stays a fraction (1/1); it never carries.
void fraction(double frac, int prec, long long* numerator, long long* denominator) {
  const int bits = prec > kMaxFractionBits ? kMaxFractionBits : prec;
  long long den = bits <= 0 ? 1 : (1LL << bits);
  long long num = static_cast<long long>(static_cast<double>(den) * frac + 0.5);
  while (num != 0 && num % 2 == 0) {
    num /= 2;
    den /= 2;
  }
  *numerator = num;
  *denominator = den;
}

struct Scratch {
  char number[kNumberRoom];
  char first[kSmallRoom];
  char second[kSmallRoom];
};

// Builds the text of one call; false for an unknown mode.
bool composeDistance(int mode, int prec, int zeros, int style, double value, Scratch& s,
                     Text& text) {
  if (mode < 1 || mode > 5)
    return false;
  const int digits = prec < 0 ? 6 : prec;  // printf's reading of a negative precision
  const bool fallback = mode == 5 ? !(std::fabs(value) < kTwoTo63)
                                  : mode >= 3 && !(std::fabs(value / 12.0) < kTwoTo63);
  if (mode == 1 || fallback) {
    // NaN, infinities and magnitudes without a 64-bit integer part go out in scientific form.
    text.add(formatNumber(s.number, true, fallback ? 6 : digits, value));
    return true;
  }
  if (mode == 2) {
    const Piece number = formatNumber(s.number, false, digits, value);
    text.add(zeros < 4 || prec == 0 ? number : suppressZeros(number, zeros));
    return true;
  }
  if (mode == 5) {
    const long long whole = static_cast<long long>(value);
    long long num = 0, den = 1;
    fraction(std::fabs(value - static_cast<double>(whole)), prec, &num, &den);
    const Piece wholePart = whole == 0 ? Piece() : formatSmall(s.first, "%lld", whole);
    const Piece fractionPart = num == 0 ? Piece() : formatSmall(s.second, "%lld/%lld", num, den);
    if (wholePart.length() == 0 && fractionPart.length() == 0) {
      text.add(literal("0\""));  // the inch mark even here, as the host has always shown it
      return true;
    }
    text.add(wholePart);
    if (wholePart.length() > 0 && fractionPart.length() > 0)
      text.add(literal(style != 0 ? "-" : " "));
    text.add(fractionPart);
    return true;
  }

  // Modes 3 and 4: value in inches; only non-zero feet carry the sign.
  const long long feet = static_cast<long long>(value / 12.0);
  const double remainder = value - 12.0 * static_cast<double>(feet);
  const Piece feetPart = feetText(s.first, feet, zeros);
  Piece inchPart;
  if (mode == 3) {
    inchPart = formatNumber(s.number, false, digits, std::fabs(remainder));
    if ((zeros & 4) != 0)
      while (inchPart.headLength > 0 && inchPart.head[0] == '0') {
        ++inchPart.head;
        --inchPart.headLength;
      }
    // The inch mark always ends the text, so trailing zeros (bit 8) are never reached.
    inchPart.tail = "\"";
    inchPart.tailLength = 1;
    if (inchPart.length() < 2)
      inchPart = Piece();
  } else {
    // The fraction comes from the signed remainder, then both parts lose their sign.
    const double wholeSigned = std::trunc(remainder);
    const long long whole = static_cast<long long>(std::fabs(wholeSigned));
    long long num = 0, den = 1;
    fraction(std::fabs(remainder - wholeSigned), prec, &num, &den);
    if (num != 0)
      inchPart = formatSmall(s.second, style == 1 ? "%lld-%lld/%lld\"" : "%lld %lld/%lld\"", whole,
                             num, den);
    else if (whole != 0 || (zeros & 3) == 1 || (zeros & 3) == 3)
      inchPart = formatSmall(s.second, "%lld\"", whole);
  }
  if (feetPart.length() == 0 && inchPart.length() == 0) {
    text.add(literal("0\""));
    return true;
  }
  text.add(feetPart);
  if (feetPart.length() > 0 && inchPart.length() > 0 && style == 0)
    text.add(literal("-"));
  text.add(inchPart);
  return true;
}

}  // namespace

int DnTos(int mode, int prec, int zeros, int style, double value, char* out) {
  Scratch scratch;
  Text text;
  if (!composeDistance(mode, prec, zeros, style, value, scratch, text))
    return 0;
  text.writeTo(out);
  return 1;
}

int DnTos(int mode, int prec, int zeros, int style, double value, char* out, std::size_t size) {
  Scratch scratch;
  Text text;
  if (!composeDistance(mode, prec, zeros, style, value, scratch, text))
    return 0;
  if (text.length() >= size)
    return -1;
  text.writeTo(out);
  return 1;
}
