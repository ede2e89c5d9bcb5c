// Tarnsysm: planar computational geometry for 2D drafting.
// The 8-bit string class for hosts without their framework's own: owned text, clamped slices.
#include "text/internal.h"
#include "text/text.h"

#if !defined(TARNSYSM_WITH_MFC)

#include <climits>
#include <cstring>
#include <new>
#include <utility>

namespace {

// A fresh NUL-terminated copy of text[0 .. length-1]; null for the empty text or when memory
// cannot be had (the string is then empty).
char* copyText(const char* text, int length) {
  if (length <= 0)
    return nullptr;
  char* copy = new (std::nothrow) char[static_cast<std::size_t>(length) + 1];
  if (copy == nullptr)
    return nullptr;
  std::memcpy(copy, text, static_cast<std::size_t>(length));
  copy[length] = '\0';
  return copy;
}

int lengthOf(const char* text) {
  if (text == nullptr)
    return 0;
  const std::size_t length = std::strlen(text);
  return length < static_cast<std::size_t>(INT_MAX) ? static_cast<int>(length) : 0;
}

}  // namespace

CString::CString() noexcept : text_(nullptr), length_(0) {}

CString::CString(const char* text) : text_(nullptr), length_(0) {
  const int length = lengthOf(text);
  text_ = copyText(text, length);
  length_ = text_ == nullptr ? 0 : length;
}

CString::CString(const CString& other)
    : text_(copyText(other.text_, other.length_)), length_(text_ == nullptr ? 0 : other.length_) {}

CString::CString(CString&& other) noexcept : text_(other.text_), length_(other.length_) {
  other.text_ = nullptr;
  other.length_ = 0;
}

CString& CString::operator=(const CString& other) {
  if (this != &other)
    *this = CString(other);
  return *this;
}

CString& CString::operator=(CString&& other) noexcept {
  std::swap(text_, other.text_);
  std::swap(length_, other.length_);
  return *this;
}

CString& CString::operator=(const char* text) {
  // Through a temporary: text may point into this string.
  return *this = CString(text);
}

CString::~CString() {
  delete[] text_;
}

int CString::GetLength() const {
  return length_;
}

bool CString::IsEmpty() const {
  return length_ == 0;
}

char CString::GetAt(int index) const {
  return index >= 0 && index < length_ ? text_[index] : '\0';
}

char CString::operator[](int index) const {
  return GetAt(index);
}

int CString::Find(char ch, int start) const {
  if (start < 0 || start >= length_)
    return -1;
  const char* found = std::strchr(text_ + start, ch);
  return found == nullptr ? -1 : static_cast<int>(found - text_);
}

int CString::Find(const char* text, int start) const {
  if (start < 0 || start > length_)
    return -1;
  const char* own = *this;
  const char* found = std::strstr(own + start, text == nullptr ? "" : text);
  return found == nullptr ? -1 : static_cast<int>(found - own);
}

CString CString::Left(int count) const {
  CString part;
  if (count >= length_)
    return *this;
  part.text_ = copyText(text_, count);
  part.length_ = part.text_ == nullptr ? 0 : count;
  return part;
}

CString CString::Right(int count) const {
  CString part;
  if (count >= length_)
    return *this;
  if (count > 0)
    part.text_ = copyText(text_ + (length_ - count), count);
  part.length_ = part.text_ == nullptr ? 0 : count;
  return part;
}

CString& CString::TrimLeft() {
  int skip = 0;
  while (skip < length_ && tarnsysm::detail::isCSpace(text_[skip]))
    ++skip;
  if (skip > 0)
    *this = CString(text_ + skip);
  return *this;
}

CString& CString::TrimRight() {
  int keep = length_;
  while (keep > 0 && tarnsysm::detail::isCSpace(text_[keep - 1]))
    --keep;
  if (keep < length_)
    *this = Left(keep);
  return *this;
}

CString::operator const char*() const {
  return text_ == nullptr ? "" : text_;
}

#endif
