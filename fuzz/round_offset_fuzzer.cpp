// Tarnsysm: planar computational geometry for 2D drafting.
// Fuzz target for the round-corner offset (PLineOffsetRound, PLineOffsetRoundPick).
//
// Input layout (missing bytes read as 0):
//   byte 0   row count: n = byte % 66 - 1, so -1 .. 64
//   byte 1   flags: bit 0 closed, bit 1 the pick form, bit 2 through the pick point, bits 3-5
//            the tolerance (an entry of kTolerances; 7 reads it as a value)
//   values   [eps], dist, pick x, pick y, then x, y, bulge for each row.
// A value starts with a tag byte t: t < 0x80 takes one more byte and gives a multiple of 1/64 in
// [-256, 256) (so collinear, coincident and tangent cases are common); 0x80 <= t < 0xC0 picks
// one of fuzz::kSpecialValues; t >= 0xC0 takes the next 8 bytes as a raw double.
//
// Properties, each aborting with a message when broken: every call returns within a second
// (scaled for sanitized and unoptimised builds); the room query and the call agree; nothing is
// written past the exact room asked for (sentinels, poisoned under AddressSanitizer); loops
// start at 0, rise, hold two rows or more and are closed for a closed input; rows carry the
// caller's attributes (-1.0 in field 3 on inserted rows); and where the input is of moderate
// size and does not cross itself, every loop is an offset of it by the distance (the checker
// the tests use, with the tolerance the call was given).
#include <Tarnsysm.h>

#include "../tests/offset/offset_validity.h"
#include "fuzz_support.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <vector>

namespace {

constexpr int kMaxRows = 64;
constexpr double kAttr3Base = 1000.0, kAttr4Base = 2000.0;
constexpr double kTolerances[7] = {1e-9, 1e-8, 1e-6, 1e-4, 1e-3, 1e-12, 0.1};

using fuzz::require;

// `count` elements in a guarded buffer (null when there are none, as a caller without room
// would pass).
template <class T>
class Guarded {
 public:
  explicit Guarded(std::size_t count) : count_(count), bytes_(count * sizeof(T)) {}
  T* get() { return count_ > 0 ? reinterpret_cast<T*>(bytes_.data()) : nullptr; }
  bool intact() { return bytes_.guardIntact(); }

 private:
  std::size_t count_;
  fuzz::GuardedBytes bytes_;
};

struct Row {
  double f[5];
};

bool moderate(double v) {
  return std::isfinite(v) && std::fabs(v) <= 1e4;
}

// Rows and attributes of a result loop as the library promises them.
void checkRows(const Row* rows, int count, int n) {
  for (int i = 0; i < count; ++i) {
    const double a3 = rows[i].f[3] - kAttr3Base, a4 = rows[i].f[4] - kAttr4Base;
    require(rows[i].f[3] == -1.0 || (a3 >= 0.0 && a3 < n && a3 == std::floor(a3)),
            "field 3 of a row is neither the caller's nor -1.0");
    require(a4 >= 0.0 && a4 < n && a4 == std::floor(a4), "field 4 of a row is not the caller's");
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  fuzz::ByteReader in(data, size);
  const int n = in.byte() % (kMaxRows + 2) - 1;
  const std::uint8_t flags = in.byte();
  const int closed = flags & 1;
  const bool pickForm = (flags & 2) != 0;
  const int through = (flags & 4) != 0 ? 1 : 0;
  const int tolIndex = (flags >> 3) & 7;
  const double eps = tolIndex < 7 ? kTolerances[tolIndex] : in.value();
  const double dist = in.value();
  double pick[2] = {in.value(), in.value()};
  std::vector<Row> v(static_cast<std::size_t>(n > 0 ? n : 0));
  bool checkable = tolIndex < 7 && eps <= 1e-4 && moderate(dist) && std::fabs(dist) >= 1e-2;
  std::vector<tarnsysm_test::ValidityRow> source;
  double extent = 0.0;  // of coordinates and arc radii: the offset's round-off grows with it
  for (int i = 0; i < n; ++i) {
    Row& r = v[static_cast<std::size_t>(i)];
    r = {{in.value(), in.value(), in.value(), kAttr3Base + i, kAttr4Base + i}};
    checkable = checkable && moderate(r.f[0]) && moderate(r.f[1]) && moderate(r.f[2]) &&
                std::fabs(r.f[2]) <= 1e3;
    // The polyline as the engine reads it: a bulge within (-eps, eps) is straight (a bulge of
    // 3e-5 on a chord of 258 bows 0.004 off it, far beyond the checker's tolerance), and rows
    // closer than eps are one row with the later row's bulge, the segment that leaves the
    // point being the later row's (a sub-eps chord with a large bulge would otherwise leave a
    // tiny near-full circle whose sides the checker would weigh).
    const double bulge = std::fabs(r.f[2]) < eps ? 0.0 : r.f[2];
    if (!source.empty() && std::hypot(r.f[0] - source.back().x, r.f[1] - source.back().y) < eps)
      source.back().bulge = bulge;
    else
      source.push_back({r.f[0], r.f[1], bulge});
    extent = std::max({extent, std::fabs(r.f[0]), std::fabs(r.f[1])});
  }
  while (closed && source.size() > 2 &&
         std::hypot(source.back().x - source[0].x, source.back().y - source[0].y) < eps)
    source.pop_back();
  for (int i = 0; checkable && i < n; ++i) {
    const Row& a = v[static_cast<std::size_t>(i)];
    const Row& b = v[static_cast<std::size_t>((i + 1) % n)];
    const double bulge = std::fabs(a.f[2]);
    if (bulge >= eps && bulge > 0.0)  // the engine's arcs, radii up to its round-off
      extent =
          std::max(extent, std::hypot(b.f[0] - a.f[0], b.f[1] - a.f[1]) * (1 / bulge + bulge) / 4);
  }
  double(*rows)[5] = n > 0 ? reinterpret_cast<double(*)[5]>(v.data()) : nullptr;

  if (pickForm) {
    int queried = -5;
    const int need = fuzz::timedCall([&] {
      return PLineOffsetRoundPick(eps, closed, n, rows, through, pick, dist, nullptr, 0, &queried);
    });
    require(need <= 0 && queried == -5, "a pick call without room wrote");
    Guarded<Row> out(static_cast<std::size_t>(-need));
    int outClosed = -5;
    const int got = fuzz::timedCall([&] {
      return PLineOffsetRoundPick(eps, closed, n, rows, through, pick, dist,
                                  reinterpret_cast<double(*)[5]>(out.get()), -need, &outClosed);
    });
    require(out.intact(), "the pick form wrote past the room it asked for");
    require(got == -need && (got == 0 ? outClosed == -5 : outClosed == 0 || outClosed == 1),
            "the pick form's room query and call disagree");
    checkRows(out.get(), got, n);
    return 0;
  }

  int loops = -5;
  const int need = fuzz::timedCall([&] {
    return PLineOffsetRound(eps, closed, n, rows, dist, nullptr, 0, nullptr, nullptr, 0, &loops);
  });
  require(need <= 0 && (need == 0) == (loops == 0), "the room query wrote or miscounted");
  Guarded<Row> out(static_cast<std::size_t>(-need));
  Guarded<int> starts(static_cast<std::size_t>(loops)), isClosed(static_cast<std::size_t>(loops));
  int count = -5;
  const int got = fuzz::timedCall([&] {
    return PLineOffsetRound(eps, closed, n, rows, dist, reinterpret_cast<double(*)[5]>(out.get()),
                            -need, starts.get(), isClosed.get(), loops, &count);
  });
  require(out.intact() && starts.intact() && isClosed.intact(),
          "the offset wrote past the room it asked for");
  require(got == -need && count == loops, "the room query and the call disagree");
  checkRows(out.get(), got, n);
  // A closed outline without area (a doubled line) has no inside or outside to judge sides by.
  const double sourceArea = closed ? tarnsysm_test::signedArea(source) : 1.0;
  // The checker finds circles from squared radii: beyond radii of 1e4 its own round-off shows.
  const bool validate = checkable && got > 0 && extent <= 1e4 && std::fabs(sourceArea) > 1e-6 &&
                        tarnsysm_test::selfCrossing(source, closed != 0).empty();
  for (int k = 0; k < count; ++k) {
    const int first = starts.get()[k];
    const int end = k + 1 < count ? starts.get()[k + 1] : got;
    require(first == (k == 0 ? 0 : first) && end - first >= 2, "a loop has fewer than two rows");
    require(!closed || isClosed.get()[k] == 1, "a closed input gave an open piece");
    if (!validate)
      continue;
    std::vector<tarnsysm_test::ValidityRow> loop;
    for (int i = first; i < end; ++i)
      loop.push_back({out.get()[i].f[0], out.get()[i].f[1], out.get()[i].f[2]});
    // A hole runs the other way round by design; its other properties still hold.
    namespace vd = tarnsysm_test::validity_detail;
    const bool hole = closed && tarnsysm_test::signedArea(loop) * sourceArea < 0.0;
    const std::string why =
        tarnsysm_test::offsetValidity(source, closed != 0, loop, isClosed.get()[k] == 1 && !hole,
                                      dist, std::max({1e-6, 10 * eps, 1e-11 * extent}));
    if (!why.empty())
      std::fprintf(stderr, "loop %d: %s\n", k, why.c_str());
    require(why.empty(), "a loop is not an offset of the input");
  }
  return 0;
}
