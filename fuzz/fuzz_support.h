// Tarnsysm: planar computational geometry for 2D drafting.
// What the fuzz targets share: reading numbers and strings from the input bytes, reporting a
// broken property, and caller buffers whose overruns trap.
//
// A value starts with a tag byte t: t < 0x80 takes one more byte and gives a multiple of 1/64 in
// [-256, 256) (exact coordinates make collinear, coincident and tangent cases common);
// 0x80 <= t < 0xC0 picks one of kSpecialValues (NaN, infinities, extremes, tolerance-sized
// numbers); t >= 0xC0 takes the next 8 bytes as a raw double. Missing bytes read as 0.
#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <memory>
#include <string>

#if defined(__has_feature)
#if __has_feature(address_sanitizer)
#define TARNSYSM_FUZZ_ASAN 1
#endif
#endif
#if defined(__SANITIZE_ADDRESS__)
#define TARNSYSM_FUZZ_ASAN 1
#endif
#if defined(TARNSYSM_FUZZ_ASAN)
#include <sanitizer/asan_interface.h>
#endif

namespace fuzz {

inline const double kSpecialValues[] = {
    std::numeric_limits<double>::quiet_NaN(),
    -std::numeric_limits<double>::quiet_NaN(),
    std::numeric_limits<double>::infinity(),
    -std::numeric_limits<double>::infinity(),
    std::numeric_limits<double>::max(),
    -std::numeric_limits<double>::max(),
    std::numeric_limits<double>::min(),
    std::numeric_limits<double>::denorm_min(),
    1e300,
    -1e300,
    1e150,
    1e15,
    1e6,
    -1e6,
    -0.0,
    0.0,
    1e-9,
    -1e-9,
    5e-10,
    2e-9,
    1e-10,
    3.1622776601683795e-05,  // sqrt(1e-9): the offset's merge distance of duplicate rows
    1e-15,
    1.0,
    -1.0,
    0.5,
    3.141592653589793,
    100.0,
};
inline constexpr std::size_t kSpecialCount = sizeof kSpecialValues / sizeof kSpecialValues[0];

class ByteReader {
 public:
  ByteReader(const std::uint8_t* data, std::size_t size) : data_(data), left_(size) {}

  std::uint8_t byte() {
    if (left_ == 0)
      return 0;
    --left_;
    return *data_++;
  }

  double value() {
    const std::uint8_t tag = byte();
    if (tag < 0x80) {
      const int grid = (tag << 8 | byte()) - 0x4000;
      return grid / 64.0;
    }
    if (tag < 0xC0)
      return kSpecialValues[(tag - 0x80u) % kSpecialCount];
    std::uint8_t raw[sizeof(double)];
    for (std::uint8_t& b : raw)
      b = byte();
    double v;
    std::memcpy(&v, raw, sizeof v);
    return v;
  }

  /// The next `bytes` bytes as an integer, little-endian.
  std::uint64_t integer(int bytes) {
    std::uint64_t v = 0;
    for (int k = 0; k < bytes; ++k)
      v |= static_cast<std::uint64_t>(byte()) << (8 * k);
    return v;
  }

  /// The bytes up to the next 0 byte (consumed) or the end, as a C string.
  std::string text() {
    std::string s;
    while (left_ > 0) {
      const std::uint8_t b = byte();
      if (b == 0)
        break;
      s += static_cast<char>(b);
    }
    return s;
  }

 private:
  const std::uint8_t* data_;
  std::size_t left_;
};

[[noreturn]] inline void fail(const char* what) {
  std::fprintf(stderr, "fuzzer: property broken: %s\n", what);
  std::fflush(stderr);
  std::abort();
}

inline void require(bool ok, const char* what) {
  if (!ok)
    fail(what);
}

// Every call must return within a second in an optimised build; AddressSanitizer and
// unoptimised code slow the library down about tenfold and threefold, so the limit grows with
// them and the property stays about the library, not the instrumentation.
#if defined(TARNSYSM_FUZZ_ASAN)
inline constexpr int kSanitizerSlowdown = 10;
#else
inline constexpr int kSanitizerSlowdown = 1;
#endif
#if defined(NDEBUG)
inline constexpr int kDebugSlowdown = 1;
#else
inline constexpr int kDebugSlowdown = 3;
#endif
inline constexpr auto kCallLimit = std::chrono::seconds(1) * kSanitizerSlowdown * kDebugSlowdown;

/// call(), failing when it takes longer than kCallLimit.
template <typename Call>
auto timedCall(Call call) {
  const auto start = std::chrono::steady_clock::now();
  const auto result = call();
  if (std::chrono::steady_clock::now() - start > kCallLimit)
    fail("a call took longer than one second (scaled for the build)");
  return result;
}

/// A caller's buffer of exactly `bytes` bytes followed by guard bytes that no call may touch:
/// poisoned under AddressSanitizer (any access traps), checked against a pattern otherwise.
class GuardedBytes {
 public:
  explicit GuardedBytes(std::size_t bytes)
      : bytes_(bytes), data_(new unsigned char[bytes + kGuard]) {
    std::memset(data_.get() + bytes_, kPattern, kGuard);
#if defined(TARNSYSM_FUZZ_ASAN)
    ASAN_POISON_MEMORY_REGION(data_.get() + bytes_, kGuard);
#endif
  }
  GuardedBytes(const GuardedBytes&) = delete;
  GuardedBytes& operator=(const GuardedBytes&) = delete;
  ~GuardedBytes() {
#if defined(TARNSYSM_FUZZ_ASAN)
    ASAN_UNPOISON_MEMORY_REGION(data_.get() + bytes_, kGuard);
#endif
  }

  unsigned char* data() {
    return data_.get();
  }
  std::size_t size() const {
    return bytes_;
  }

  bool guardIntact() {
#if defined(TARNSYSM_FUZZ_ASAN)
    ASAN_UNPOISON_MEMORY_REGION(data_.get() + bytes_, kGuard);
#endif
    bool intact = true;
    for (std::size_t k = 0; k < kGuard; ++k)
      intact = intact && data_[bytes_ + k] == kPattern;
#if defined(TARNSYSM_FUZZ_ASAN)
    ASAN_POISON_MEMORY_REGION(data_.get() + bytes_, kGuard);
#endif
    return intact;
  }

 private:
  static constexpr std::size_t kGuard = 64;
  static constexpr unsigned char kPattern = 0xA5;
  std::size_t bytes_;
  std::unique_ptr<unsigned char[]> data_;
};

}  // namespace fuzz
