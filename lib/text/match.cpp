// Tarnsysm: planar computational geometry for 2D drafting.
// Wildcard name matching: comma-separated pattern lists, and the matcher with its in-place
// deletion of backslashes from the name.
#include "text/internal.h"
#include "text/text.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <memory>
#include <unordered_map>
#include <utility>

namespace {

using tarnsysm::detail::isCSpace;

unsigned char foldCase(char c) {
  const unsigned char u = static_cast<unsigned char>(c);
  return u >= 'a' && u <= 'z' ? static_cast<unsigned char>(u - ('a' - 'A')) : u;
}

bool sameFolded(char a, char b) {
  return foldCase(a) == foldCase(b);
}

bool isAsciiDigit(char c) {
  return c >= '0' && c <= '9';
}

bool isAsciiLetter(char c) {
  const unsigned char upper = foldCase(c);
  return upper >= 'A' && upper <= 'Z';
}

// A growable array of plain values that lives inside its owner until it outgrows kInline
// elements: most names and patterns are short, and Match runs once per name in a filter loop.
template <typename T, std::size_t kInline>
class Scratch {
 public:
  Scratch() = default;
  Scratch(const Scratch&) = delete;
  Scratch& operator=(const Scratch&) = delete;

  T* data() { return data_; }
  const T* data() const { return data_; }
  std::size_t size() const { return size_; }
  bool empty() const { return size_ == 0; }
  T& operator[](std::size_t k) { return data_[k]; }
  const T& operator[](std::size_t k) const { return data_[k]; }
  T& back() { return data_[size_ - 1]; }

  /// Makes room for n elements, keeping the first min(n, size) of them (the rest are
  /// uninitialised).
  void resize(std::size_t n) {
    if (n > capacity_) {
      std::size_t grown = capacity_ * 2 > n ? capacity_ * 2 : n;
      std::unique_ptr<T[]> bigger(new T[grown]);
      std::copy(data_, data_ + size_, bigger.get());
      heap_ = std::move(bigger);
      data_ = heap_.get();
      capacity_ = grown;
    }
    size_ = n;
  }
  void push_back(const T& v) {
    resize(size_ + 1);
    data_[size_ - 1] = v;
  }
  void pop_back() { --size_; }
  void clear() { size_ = 0; }

 private:
  T inline_[kInline];
  std::unique_ptr<T[]> heap_;
  T* data_ = inline_;
  std::size_t size_ = 0;
  std::size_t capacity_ = kInline;
};

// 0 when c is among the first n characters of a set description, 1 when not. Single members
// fold case; ranges x-y compare raw codes (as unsigned characters), and a range with y <= x ends
// the whole set with 1.
int WildcardSetContains(char c, const char* d, std::size_t n) {
  const unsigned char code = static_cast<unsigned char>(c);
  for (;;) {
    if (n < 1)
      return 1;
    if (sameFolded(c, d[0]))
      return 0;
    if (n < 2)
      return 1;
    if (d[1] != '-') {
      ++d;
      --n;
      continue;
    }
    if (n == 2)  // a trailing '-' is a member
      return c == '-' ? 0 : 1;
    const unsigned char low = static_cast<unsigned char>(d[0]);
    const unsigned char high = static_cast<unsigned char>(d[2]);
    if (high <= low)
      return 1;
    if (low <= code && code <= high)
      return 0;
    d += 3;
    n -= 3;
  }
}

// A set item at p[0] == '[' against the name character c: -1 malformed, 1 no match, or 0 with
// *length the item's pattern length.
int matchSet(const char* p, char c, std::size_t* length) {
  const bool negated = p[1] == '~';
  // The closing ']' is searched from the third character (fourth when negated), so ']' may be
  // the first member.
  const std::size_t from = negated ? 3 : 2;
  for (std::size_t k = 1; k < from; ++k)
    if (p[k] == '\0')
      return -1;
  const char* close = std::strchr(p + from, ']');
  if (close == nullptr)
    return -1;
  *length = static_cast<std::size_t>(close - p) + 1;
  if (negated) {
    // The test takes the pattern's own '[' against the members after the first, through the
    // closing ']'; unless they cover '[', the name's character is taken untested.
    if (WildcardSetContains('[', p + 3, static_cast<std::size_t>(close - p) - 2) == 0)
      return 1;
    return c == '\0' ? 1 : 0;
  }
  if (c == '\0')
    return 1;
  return WildcardSetContains(c, p + 1, static_cast<std::size_t>(close - p) - 1);
}

// Failed calls, keyed by (name offset, pattern offset), valid for one generation: a deletion
// from the name, or a new pattern, starts the next one. A table while it stays small, else a hash
// map of the positions actually tried.
class FailureMemo {
 public:
  void reset(std::size_t rows, std::size_t columns) {
    columns_ = columns;
    dense_ = rows <= kDenseCells / columns;
    if (dense_ && rows * columns > stamps_.size()) {
      const std::size_t old = stamps_.size();
      stamps_.resize(rows * columns);
      results_.resize(rows * columns);
      std::fill(stamps_.data() + old, stamps_.data() + stamps_.size(), 0u);
    }
    nextGeneration();
  }
  void nextGeneration() {
    sparse_.clear();
    if (++generation_ == 0) {
      std::fill(stamps_.data(), stamps_.data() + stamps_.size(), 0u);
      generation_ = 1;
    }
  }
  bool find(std::size_t i, std::size_t j, int* result) const {
    const std::size_t cell = i * columns_ + j;
    if (!dense_) {
      const auto found = sparse_.find(cell);
      if (found == sparse_.end())
        return false;
      *result = found->second;
      return true;
    }
    if (stamps_[cell] != generation_)
      return false;
    *result = results_[cell];
    return true;
  }
  void put(std::size_t i, std::size_t j, int result) {
    const std::size_t cell = i * columns_ + j;
    if (!dense_) {
      sparse_[cell] = static_cast<signed char>(result);
      return;
    }
    stamps_[cell] = generation_;
    results_[cell] = static_cast<signed char>(result);
  }

 private:
  static constexpr std::size_t kDenseCells = std::size_t{1} << 22;
  std::size_t columns_ = 1;
  bool dense_ = true;
  std::uint32_t generation_ = 0;
  Scratch<std::uint32_t, 512> stamps_;
  Scratch<signed char, 512> results_;
  std::unordered_map<std::size_t, signed char> sparse_;
};

// The matcher, run without recursion. Items that take one character continue in a loop;
// '*' and the leading '~' wait on a sub-match, kept on an explicit stack, so no input deepens
// the call stack. '*' retries a failed rest at every later name position, which on inputs like
// *a*a*a*b costs exponential time; failed (name, pattern) positions are therefore remembered
// until the name next loses a backslash. A call during which a backslash was deleted records
// nothing: repeating it would see another name. Results and deletions are those of the plain
// recursion.
class Matcher {
 public:
  Matcher(char* name, long long limit) : name_(name), length_(std::strlen(name)), limit_(limit) {}

  int run(long long pos0, const char* pattern) {
    pattern_ = pattern;
    pos0_ = pos0;
    const std::size_t patternLength = std::strlen(pattern);
    // Without '*' no position is tried twice.
    remember_ = std::memchr(pattern, '*', patternLength) != nullptr;
    if (remember_) {
      memo_.reset(length_ + 1, patternLength + 1);
      memoReady_ = true;
    }
    frames_.clear();
    pending_.clear();
    return solve();
  }

 private:
  enum class Step { kDone, kNext, kStar, kNegate };
  struct Frame {
    bool star;  // else a negation
    std::size_t i, j, chainStart;
  };
  struct Pending {
    std::size_t i, j;
    std::uint64_t deletions;
  };

  // One call of the matcher at name offset i and pattern offset j: either a result, or the next
  // call it hands over to (i, j updated), or a sub-match to wait on.
  Step call(std::size_t& i, std::size_t& j, int* result) {
    if (remember_) {
      if (memo_.find(i, j, result))
        return Step::kDone;
      pending_.push_back({i, j, deletions_});
    }
    const long long pos = pos0_ + static_cast<long long>(i);
    if (pos > limit_) {
      *result = 0;  // everything past the limit is accepted
      return Step::kDone;
    }
    char* s = name_ + i;
    const char* p = pattern_ + j;
    if (*p == '\0') {
      *result = *s == '\0' ? 0 : 1;
      return Step::kDone;
    }
    if (*s == '\\')
      deleteAt(i);
    std::size_t length = 1;
    bool ok = false;
    switch (*p) {
      case '#':
        ok = isAsciiDigit(*s);
        break;
      case '*':
        return Step::kStar;
      case '.':
        ok = *s != '\0' && !isAsciiDigit(*s) && !isAsciiLetter(*s);
        break;
      case '?':
        ok = *s != '\0';
        break;
      case '@':
        ok = isAsciiLetter(*s);
        break;
      case '[': {
        const int set = matchSet(p, *s, &length);
        if (set != 0) {
          *result = set;
          return Step::kDone;
        }
        ok = true;
        break;
      }
      case '\\':
        if (p[1] == '\0') {
          *result = -1;
          return Step::kDone;
        }
        ok = *s != '\0' && sameFolded(*s, p[1]);
        length = 2;
        break;
      case '`':
        length = p[1] == '\\' ? 3 : 2;
        if (p[1] == '\0' || p[length - 1] == '\0') {
          *result = -1;
          return Step::kDone;
        }
        ok = *s != '\0' && sameFolded(*s, p[length - 1]);
        break;
      case '~':
        if (pos == 0)
          return Step::kNegate;
        ok = *s == '~';  // a literal, not case-folded
        break;
      default:
        ok = *s != '\0' && sameFolded(*s, *p);
        break;
    }
    if (!ok) {
      *result = 1;
      return Step::kDone;
    }
    ++i;
    j += length;
    return Step::kNext;
  }

  int solve() {
    std::size_t i = 0, j = 0, chainStart = 0;
    int result = 0;
    for (;;) {
      const Step step = call(i, j, &result);
      if (step == Step::kNext)
        continue;
      if (step != Step::kDone) {
        // Wait on the rest of the pattern at this position (pos 0 for a negation).
        frames_.push_back({step == Step::kStar, i, j, chainStart});
        chainStart = pending_.size();
        ++j;
        continue;
      }
      // A result for the current chain of calls: pass it up until some '*' retries.
      for (;;) {
        recordFailure(chainStart, result);
        if (frames_.empty())
          return result;
        const Frame frame = frames_.back();
        frames_.pop_back();
        chainStart = frame.chainStart;
        if (!frame.star) {
          result = result == 0 ? 1 : 0;
          continue;
        }
        if (result == 0)
          continue;
        if (name_[frame.i] == '\0') {
          result = 1;
          continue;
        }
        i = frame.i + 1;
        j = frame.j;
        break;
      }
    }
  }

  // Every call of the finished chain that saw no deletion fails the same way next time.
  void recordFailure(std::size_t chainStart, int result) {
    if (!remember_)
      return;
    if (result != 0)
      for (std::size_t k = pending_.size(); k > chainStart; --k) {
        const Pending& call = pending_[k - 1];
        if (call.deletions != deletions_)
          break;
        memo_.put(call.i, call.j, result);
      }
    pending_.resize(chainStart);
  }

  void deleteAt(std::size_t i) {
    const std::size_t tail = std::strlen(name_ + i);
    std::memmove(name_ + i, name_ + i + 1, tail);
    ++deletions_;
    if (memoReady_)
      memo_.nextGeneration();
  }

  char* name_;
  std::size_t length_;
  long long limit_;
  const char* pattern_ = "";
  long long pos0_ = 0;
  bool remember_ = false;
  bool memoReady_ = false;
  std::uint64_t deletions_ = 0;
  FailureMemo memo_;
  Scratch<Frame, 16> frames_;
  Scratch<Pending, 64> pending_;
};

}  // namespace

int match(int pos, int limit, char* name, const char* pattern) {
  char empty[1] = {'\0'};
  try {
    Matcher matcher(name == nullptr ? empty : name, limit);
    return matcher.run(pos, pattern == nullptr ? "" : pattern);
  } catch (...) {
    return 1;
  }
}

int Match(CString name, CString patterns, int limit) {
  try {
    const char* nameText = name;
    const int nameLength = name.GetLength();
    Scratch<char, 256> nameCopy;
    nameCopy.resize(static_cast<std::size_t>(nameLength) + 1);
    std::copy(nameText, nameText + nameLength, nameCopy.data());
    nameCopy[static_cast<std::size_t>(nameLength)] = '\0';
    const char* listText = patterns;
    const std::size_t end = static_cast<std::size_t>(patterns.GetLength());
    Scratch<char, 256> list;
    list.resize(end + 1);
    std::copy(listText, listText + end, list.data());
    list[end] = '\0';

    Matcher matcher(nameCopy.data(), limit < nameLength ? limit : nameLength);
    for (std::size_t start = 0; start < end;) {
      const void* comma = std::memchr(&list[start], ',', end - start);
      const std::size_t itemEnd =
          comma == nullptr ? end
                           : static_cast<std::size_t>(static_cast<const char*>(comma) - &list[0]);
      std::size_t first = start, last = itemEnd;
      while (first < last && isCSpace(list[first]))
        ++first;
      while (last > first && isCSpace(list[last - 1]))
        --last;
      list[last] = '\0';
      if (matcher.run(0, &list[first]) == 0)
        return 1;
      start = comma == nullptr ? end : itemEnd + 1;
    }
    return 0;
  } catch (...) {
    return 0;
  }
}
