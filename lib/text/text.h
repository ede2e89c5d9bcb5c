// Tarnsysm: planar computational geometry for 2D drafting.
// Text utilities: distances written in the drafting unit styles, and wildcard name matching.
#pragma once

#include "../tarnsysm_export.h"

#include <cstddef>

#if defined(TARNSYSM_WITH_MFC)
// Hosts built on MFC (multi-byte character set) pass their own string class.
#include <afxstr.h>
#else
/// The host framework's 8-bit string class, for builds without it: a NUL-terminated text with its
/// length, behaving as the framework's class does in every member declared here. Implicitly
/// made from a C string (null gives the empty string). Where memory cannot be had (or the text
/// reaches INT_MAX characters) the string is empty; nothing throws.
class TARNSYSM_API CString {
 public:
  /// The empty string.
  CString() noexcept;
  /// A copy of the C string `text` (null gives the empty string).
  CString(const char* text);  // NOLINT(google-explicit-constructor): the framework converts too
  /// A copy of `other`.
  CString(const CString& other);
  /// Takes over `other`'s text, leaving `other` empty.
  CString(CString&& other) noexcept;
  /// Copies `other`'s text.
  CString& operator=(const CString& other);
  /// Takes over `other`'s text; `other` is left holding this string's former text.
  CString& operator=(CString&& other) noexcept;
  /// Copies the C string `text` (null gives the empty string).
  CString& operator=(const char* text);
  /// Frees the text.
  ~CString();

  /// Number of characters, without the terminating NUL.
  int GetLength() const;
  /// True for the empty string.
  bool IsEmpty() const;
  /// The character at `index`; '\0' when index is outside [0, GetLength()).
  char GetAt(int index) const;
  /// Same as GetAt.
  char operator[](int index) const;
  /// Index of the first `ch` at or after `start`; -1 when there is none or start is outside
  /// [0, GetLength()).
  int Find(char ch, int start = 0) const;
  /// Index of the first occurrence of `text` at or after `start`; -1 when there is none or start
  /// is outside [0, GetLength()]. An empty or null text is found at start.
  int Find(const char* text, int start = 0) const;
  /// The first `count` characters; count is clamped to [0, GetLength()].
  CString Left(int count) const;
  /// The last `count` characters; count is clamped to [0, GetLength()].
  CString Right(int count) const;
  /// Removes leading white space (the C locale's: space, tab, line feed, vertical tab, form feed,
  /// carriage return) in place.
  CString& TrimLeft();
  /// Removes trailing white space in place.
  CString& TrimRight();
  /// The characters, NUL-terminated; valid until the string is next changed.
  operator const char*() const;

 private:
  char* text_;  // owned, NUL-terminated; null for the empty string
  int length_;
};
#endif

/// Writes `value` as text into out in one of the drafting unit styles:
///   mode 1  scientific, prec digits after the point ("%-.*e");
///   mode 2  decimal, prec digits ("%-.*f"); when zeros >= 4 and prec != 0, bit 4 of zeros
///           removes leading '0's and bit 8 trailing '0's and then a trailing '.' ("0" when
///           less than two characters remain);
///   mode 3  feet and decimal inches (value in inches), 2'-6.50";
///   mode 4  feet, inches and a fraction of an inch with denominator 2^prec, 2'-6 1/2";
///   mode 5  whole units and a fraction, 2 1/4.
/// In modes 3 and 4, zeros & 3 decides whether zero feet (and in mode 4 zero inches) are shown,
/// bit 4 (mode 3) removes the leading '0's of the inches; style 0 puts '-' between feet and
/// inches (mode 4: style 1 writes 6-1/2", mode 5: a non-zero style writes 2-1/4). Only non-zero
/// feet (modes 3, 4) or the whole part (mode 5) carry the sign. A negative prec acts as 6 in modes
/// 1 to 3 and as 0 in modes 4 and 5, where a prec above 62 counts as 62. NaN, infinities and
/// values whose feet (modes 3, 4) or whole part (mode 5) reach 2^63 are written as in mode 1 at
/// precision 6.
/// Returns 1, or 0 for an unknown mode with out untouched.
/// Room: with P = prec (6 when negative), the text and its NUL take at most P + 9 characters in
/// mode 1, P + 312 in mode 2, P + 30 in mode 3 and 69 in modes 4 and 5: P + 312 always suffice.
TARNSYSM_API int DnTos(int mode, int prec, int zeros, int style, double value, char* out);

/// The same text written into out[0 .. size-1] with its NUL. Returns 1 when written, 0 for an
/// unknown mode and -1 when the text and its NUL need more than `size` characters; out is
/// untouched on 0 and -1. A huge prec is judged without formatting its digits.
TARNSYSM_API int DnTos(int mode, int prec, int zeros, int style, double value, char* out,
                       std::size_t size);

/// 1 when `name` matches some pattern of the comma-separated list `patterns`, else 0. Every comma
/// splits (also inside a set); each pattern is trimmed of white space; an empty pattern between
/// commas matches only an empty name, a trailing comma adds none. Each pattern is matched by
/// `match` from position 0 with the smaller of limit and the name's length, on one copy of the
/// name shared by the list's patterns (backslashes deleted by one pattern stay deleted for the
/// next). Returns 0 when memory cannot be had.
TARNSYSM_API int Match(CString name, CString patterns, int limit);

/// Matches the name against one wildcard pattern, case-insensitively (ASCII letters); pos counts
/// the name characters consumed before `name`. Returns 0 for a match (also as soon as pos exceeds
/// limit), 1 for none, -1 for a malformed pattern (an unclosed set, a lone escape or backquote).
/// Items: '#' a digit, '@' a letter, '.' a character that is neither, '?' any character, '*' any
/// run (shortest first), "[set]" with members and ranges x-y (raw character codes, ends the set
/// when y <= x), "[~...]" the negated form, '\' then x the literal x, '`' then x (or '`', '\' and
/// x) the literal x, '~' at pos 0 the negation of the rest, anything else itself. Each backslash
/// met at the name's current character is deleted from `name` in place as matching goes. A null
/// name or pattern counts as empty. Returns 1 when memory cannot be had.
TARNSYSM_API int match(int pos, int limit, char* name, const char* pattern);
