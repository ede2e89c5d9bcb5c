// Tarnsysm: planar computational geometry for 2D drafting.
// Fuzz target for PLineOffset and TrimLoopS on arbitrary vertex rows, with property checks.
//
// Input layout (missing bytes read as 0):
//   byte 0   row count: n = byte % 66 - 1, so -1 .. 64
//   byte 1   flags: bit 0 closed, bit 1 pass a closed flag of 7 instead of 1, bit 2 through the
//            pick point, bit 3 call TrimLoopS instead of PLineOffset, bits 4-6 the tolerance
//            (an entry of kTolerances; 7 reads it as a value)
//   values   [eps], pick x, pick y, dist, then x, y, bulge for each row (values as read by
//            fuzz::ByteReader, fuzz_support.h).
//
// Properties, each aborting with a message when broken:
//   - every call returns within one second in an optimised build (AddressSanitizer and
//     unoptimised code slow the library down about tenfold and threefold: the limit grows
//     with them, so the property stays about the library, not the instrumentation);
//   - nothing is written past the caller's room (2n rows for PLineOffset, n for TrimLoopS): the
//     buffer is followed by sentinel rows, poisoned under AddressSanitizer so reads trap too;
//   - the result is in range (PLineOffset: 0 or 2 .. 2n; TrimLoopS: at most n) and the closed
//     flag is 0 or 1 (TrimLoopS may also leave the caller's value);
//   - result rows carry the caller's attributes (field 3 = -1.0 on inserted rows);
//   - result rows are finite when every input was finite and of moderate size;
//   - a PLineOffset result of moderate input keeps its distance: no nearer the polyline (as the
//     offset's own first trimming leaves it) than the distance, reaching it, and running the
//     same way round, measured by the checker of the offset tests within a few eps.
#include "../tests/offset/offset_validity.h"

#include <Tarnsysm.h>

#include "fuzz_support.h"

#include <chrono>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace {

constexpr int kMaxRows = 64;

// Attributes the caller gives row i; any result row must carry one of them.
constexpr double kAttr3Base = 1000.0;
constexpr double kAttr4Base = 2000.0;

// Inputs above this magnitude may overflow squared lengths legitimately; the finiteness property
// is only checked below it.
constexpr double kModerate = 1e6;

constexpr double kTolerances[7] = {1e-9, 1e-8, 1e-6, 1e-4, 1e-3, 1e-12, 0.1};

using fuzz::ByteReader;
using fuzz::fail;
using fuzz::require;

bool isModerate(double v) {
  return std::isfinite(v) && std::fabs(v) <= kModerate;
}

// The caller's rows followed by guard bytes that no call may touch.
class GuardedRows {
 public:
  explicit GuardedRows(int room)
      : bytes_(sizeof(double[5]) * static_cast<std::size_t>(room < 0 ? 0 : room)) {}

  double (*get())[5] { return reinterpret_cast<double(*)[5]>(bytes_.data()); }
  bool guardIntact() { return bytes_.guardIntact(); }

 private:
  fuzz::GuardedBytes bytes_;
};

// Every result row takes its attributes from some input row, except field 3 = -1.0 on the rows
// that the offset inserts at a join.
bool attributesCarried(const double (*rows)[5], int count, int n) {
  for (int i = 0; i < count; ++i) {
    const double a3 = rows[i][3] - kAttr3Base;
    const double a4 = rows[i][4] - kAttr4Base;
    const bool a3ok = rows[i][3] == -1.0 || (a3 >= 0.0 && a3 < n && a3 == std::floor(a3));
    const bool a4ok = a4 >= 0.0 && a4 < n && a4 == std::floor(a4);
    if (!a3ok || !a4ok)
      return false;
  }
  return true;
}

bool geometryFinite(const double (*rows)[5], int count) {
  for (int i = 0; i < count; ++i)
    for (int f = 0; f < 3; ++f)
      if (!std::isfinite(rows[i][f]))
        return false;
  return true;
}

// Rows as the checker should read them: the library takes a bulge within (-eps, eps) for a
// straight segment, so a bulge the checker would draw as a faint arc (its own threshold is 1e-9)
// is straightened first. Read as an arc, a bulge just under eps on a long chord bows by up to
// eps/2 chords, which is far more than the tolerance of the distance test.
std::vector<tarnsysm_test::ValidityRow> rowsAsTaken(double eps, const double (*v)[5], int n) {
  std::vector<tarnsysm_test::ValidityRow> rows = tarnsysm_test::validityRows(v, n);
  for (tarnsysm_test::ValidityRow& r : rows) {
    if (-eps < r.bulge && r.bulge < eps)
      r.bulge = 0.0;
  }
  return rows;
}

// The checker's verdict on distance and direction (the side and self-crossings are left to the
// tests: on arbitrary input the picked side of a polyline that touches itself is not defined).
bool keepsDistance(double eps, bool closedIn, int n, double (*source)[5], double* pick, int through,
                   double dist, int closed, double (*v)[5], int result) {
  int sourceClosed = closedIn ? 1 : 0;
  const int ns = TrimLoopS(eps, pick, &sourceClosed, n, source);
  double s = 0.0;
  if (ns < 2 || !PLineDist(eps, sourceClosed, ns, source, pick, &s))
    return false;
  const double d = through ? std::fabs(s) : std::fabs(dist);
  std::vector<tarnsysm_test::ValidityRow> sourceRows = rowsAsTaken(eps, source, ns);
  std::vector<tarnsysm_test::ValidityRow> resultRows = rowsAsTaken(eps, v, result);
  double size = d;
  for (int i = 0; i < ns; ++i)
    size = std::fmax(size, std::fmax(std::fabs(source[i][0]), std::fabs(source[i][1])));
  // The checker takes an arc's distances from its centre and radius; a bulge just above eps on a
  // long chord puts both near 1e10, and rho - r then carries their round-off, some 1e-16 of
  // them (the library's own check works from the chord and needs no such room).
  double radius = 0.0;
  for (const auto* rows : {&sourceRows, &resultRows}) {
    for (size_t i = 0; i < rows->size(); ++i) {
      const tarnsysm_test::ValidityRow& a = (*rows)[i];
      const tarnsysm_test::ValidityRow& b = (*rows)[(i + 1) % rows->size()];
      if (a.bulge != 0.0)
        radius = std::fmax(radius, std::hypot(b.x - a.x, b.y - a.y) / std::fabs(a.bulge));
    }
  }
  const double tol = 4.0 * eps + 1e-9 * (1.0 + size) + 1e-15 * radius;
  // Where two such circles nearly touch, their crossing points carry that round-off squared and
  // come out anywhere: an arc that bows less than tol / 8 off its chord is measured as the chord,
  // which moves the least distance by at most tol / 4.
  for (auto* rows : {&sourceRows, &resultRows}) {
    for (size_t i = 0; i < rows->size(); ++i) {
      tarnsysm_test::ValidityRow& a = (*rows)[i];
      const tarnsysm_test::ValidityRow& b = (*rows)[(i + 1) % rows->size()];
      if (std::hypot(b.x - a.x, b.y - a.y) * std::fabs(a.bulge) / 2.0 <= tol / 8.0)
        a.bulge = 0.0;
    }
  }
  bool sameWay = true;
  const double gap =
      tarnsysm_test::offsetGap(sourceRows, sourceClosed != 0, resultRows, closed != 0, &sameWay);
  return sameWay && gap >= d - tol && gap <= d + tol;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  ByteReader in(data, size);
  const int n = in.byte() % (kMaxRows + 2) - 1;
  const std::uint8_t flags = in.byte();
  const bool closedIn = (flags & 1) != 0;
  const int closedFlag = closedIn ? ((flags & 2) != 0 ? 7 : 1) : 0;
  const int through = (flags & 4) != 0 ? 1 : 0;
  const bool trimOnly = (flags & 8) != 0;
  const int tolIndex = (flags >> 4) & 7;
  const double eps = tolIndex < 7 ? kTolerances[tolIndex] : in.value();

  double pick[2];
  pick[0] = in.value();
  pick[1] = in.value();
  const double dist = in.value();
  bool moderate = tolIndex < 7 && isModerate(pick[0]) && isModerate(pick[1]) && isModerate(dist);

  // PLineOffset needs room for 2n rows; TrimLoopS only shortens, so n rows are its room.
  const int room = n <= 0 ? 0 : (trimOnly ? n : 2 * n);
  GuardedRows rows(room);
  double(*v)[5] = rows.get();
  for (int i = 0; i < n; ++i) {
    v[i][0] = in.value();
    v[i][1] = in.value();
    v[i][2] = in.value();
    v[i][3] = kAttr3Base + i;
    v[i][4] = kAttr4Base + i;
    moderate = moderate && isModerate(v[i][0]) && isModerate(v[i][1]) && isModerate(v[i][2]);
  }

  // The polyline as PLineOffset's first trimming leaves it, and the distance it offsets by.
  std::unique_ptr<double[][5]> source(new double[n > 0 ? n : 1][5]);
  if (n > 0)
    std::memcpy(source[0], v[0], sizeof(double[5]) * static_cast<std::size_t>(n));

  int closed = closedFlag;
  int result = 0;
  if (trimOnly) {
    result = fuzz::timedCall([&] { return TrimLoopS(eps, pick, &closed, n, v); });
    require(rows.guardIntact(), "TrimLoopS wrote past the caller's n rows");
    require(result <= (n > 0 ? n : 0) && result >= (n < 0 ? n : 0),
            "TrimLoopS returned more rows than it was given");
    require(closed == closedFlag || closed == 1, "TrimLoopS set an unexpected closed flag");
  } else {
    result = fuzz::timedCall([&] { return PLineOffset(eps, &closed, n, v, through, pick, dist); });
    require(rows.guardIntact(), "PLineOffset wrote past the caller's 2n rows");
    require(result == 0 || (result >= 2 && result <= 2 * n),
            "PLineOffset result outside 0 and 2 .. 2n");
    require(closed == 0 || closed == 1, "PLineOffset left a closed flag other than 0 or 1");
    if (result > 0 && moderate && eps <= 1e-4)
      require(keepsDistance(eps, closedFlag != 0, n, source.get(), pick, through, dist, closed, v,
                            result),
              "PLineOffset returned a result that does not keep its distance");
  }

  if (result > 0) {
    require(attributesCarried(v, result, n), "a result row lost the caller's attributes");
    if (moderate)
      require(geometryFinite(v, result), "finite input gave a non-finite result row");
  }
  return 0;
}
