// Tarnsysm: planar computational geometry for 2D drafting.
// Fuzz target for RectClipPolygon on arbitrary polygons and rectangles, with property checks.
//
// Input layout (values as read by fuzz::ByteReader, fuzz_support.h):
//   byte 0   point count: n = byte % 67 - 2, so -2 .. 64
//   values   x0, y0, x1, y1 of the rectangle, then x, y of each point.
//
// Properties, each aborting with a message when broken:
//   - nothing is written past the caller's 3n points (guard bytes), nor past count (sentinels);
//   - count is in [0, 3n] and a non-empty result is closed by repeating its first point;
//   - count and points equal, bit for bit (any NaN for any NaN), those of a plain four-pass
//   transcription of the
//     clipping rules (count 0 where that ring needs more than 3n points).
#include <Tarnsysm.h>

#include "fuzz_support.h"

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <vector>

namespace {

using fuzz::require;

struct Point {
  double x, y;
};

bool isInside(int side, double value, const Point& p) {
  switch (side) {
    case 0:
      return p.x > value;
    case 1:
      return p.y < value;
    case 2:
      return p.x < value;
    default:
      return p.y > value;
  }
}

// The crossing along the unit direction, or interpolated along the edge where the unit
// direction's component across the side is not above 1e-10.
Point crossing(int side, double value, const Point& s, const Point& p) {
  const double len = std::sqrt((p.x - s.x) * (p.x - s.x) + (p.y - s.y) * (p.y - s.y));
  const double ux = (p.x - s.x) / len, uy = (p.y - s.y) / len;
  if (side == 1 || side == 3) {
    if (std::fabs(uy) > 1e-10)
      return {s.x + (value - s.y) * ux / uy, value};
    const double t = (value - s.y) / (p.y - s.y);
    return {s.x + t * (p.x - s.x), value};
  }
  if (std::fabs(ux) > 1e-10)
    return {value, s.y + (value - s.x) * uy / ux};
  const double t = (value - s.x) / (p.x - s.x);
  return {value, s.y + t * (p.y - s.y)};
}

std::vector<Point> plainPass(int side, double value, const std::vector<Point>& in) {
  std::vector<Point> out;
  for (std::size_t i = 1; i < in.size(); ++i) {
    const bool sIn = isInside(side, value, in[i - 1]), pIn = isInside(side, value, in[i]);
    if (sIn != pIn)
      out.push_back(crossing(side, value, in[i - 1], in[i]));
    if (pIn)
      out.push_back(in[i]);
  }
  if (!out.empty())
    out.push_back(out[0]);
  return out;
}

// Bit for bit, except that any NaN equals any NaN: the compiler may swap the operands of a
// commutative operation, and with them which NaN payload and sign come out.
bool samePoint(const double* a, const double* b) {
  for (int k = 0; k < 2; ++k)
    if (!(std::isnan(a[k]) && std::isnan(b[k])) && std::memcmp(&a[k], &b[k], sizeof(double)) != 0)
      return false;
  return true;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  fuzz::ByteReader in(data, size);
  const int n = in.byte() % 67 - 2;
  double rect[2][2];
  for (auto& corner : rect)
    for (double& v : corner)
      v = in.value();
  const std::size_t points = n > 0 ? static_cast<std::size_t>(n) : 0;
  std::vector<Point> polygon(points);
  std::vector<double> flat(2 * points + 2);  // one spare point so data() is never null
  for (std::size_t i = 0; i < points; ++i) {
    polygon[i] = {in.value(), in.value()};
    flat[2 * i] = polygon[i].x;
    flat[2 * i + 1] = polygon[i].y;
  }

  const std::size_t room = 3 * points;
  fuzz::GuardedBytes outBytes(room * sizeof(double[2]));
  std::memset(outBytes.data(), 0x5A, outBytes.size());
  double(*out)[2] = reinterpret_cast<double(*)[2]>(outBytes.data());
  int count = -1;
  RectClipPolygon(rect, n, reinterpret_cast<double(*)[2]>(flat.data()), count, out);

  require(outBytes.guardIntact(), "RectClipPolygon wrote past the caller's 3n points");
  require(count >= 0 && static_cast<std::size_t>(count) <= room, "count outside [0, 3n]");
  const std::size_t written = static_cast<std::size_t>(count) * sizeof(double[2]);
  for (std::size_t k = written; k < outBytes.size(); ++k)
    require(outBytes.data()[k] == 0x5A, "RectClipPolygon wrote past count");
  require(count == 0 || samePoint(out[0], out[count - 1]), "the result ring is not closed");

  std::vector<Point> ring = polygon;
  const int sides[4] = {0, 1, 2, 3};
  const double values[4] = {rect[0][0], rect[1][1], rect[1][0], rect[0][1]};
  for (int k = 0; k < 4; ++k)
    ring = plainPass(sides[k], values[k], ring);
  if (ring.size() > room)
    ring.clear();
  require(static_cast<std::size_t>(count) == ring.size(), "count differs from the plain passes");
  for (int i = 0; i < count; ++i)
    if (!samePoint(out[i], &ring[static_cast<std::size_t>(i)].x)) {
      std::fprintf(stderr, "point %d: (%a, %a) against plain (%a, %a)\n", i, out[i][0], out[i][1],
                   ring[static_cast<std::size_t>(i)].x, ring[static_cast<std::size_t>(i)].y);
      fuzz::fail("a point differs from the plain passes");
    }
  return 0;
}
