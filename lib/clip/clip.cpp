// Tarnsysm: planar computational geometry for 2D drafting.
// Re-entrant clipping of a polygon against a rectangle, one side (half-plane) at a time.
#include "clip/clip.h"

#include <climits>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <new>
#include <type_traits>

namespace {

// Compared with a component of a unit direction: below it an edge counts as parallel to the side.
constexpr double kParallelComponent = 1e-10;

template <int Side>
using SideTag = std::integral_constant<int, Side>;

// Calls f(SideTag<side>{}) for the four known sides, so each pass runs a loop specialised to its
// side; returns `unknown` for any other code.
template <typename Result, typename F>
Result dispatchSide(int side, Result unknown, F&& f) {
  switch (side) {
    case 0:
      return f(SideTag<0>{});
    case 1:
      return f(SideTag<1>{});
    case 2:
      return f(SideTag<2>{});
    case 3:
      return f(SideTag<3>{});
    default:
      return unknown;
  }
}

// The coordinate a side bounds: x for the vertical sides 0 and 2, y for the horizontal 1 and 3.
template <int Side>
constexpr int kAcross = (Side == 0 || Side == 2) ? 0 : 1;

// Strict on every side: a point on the boundary is outside.
template <int Side>
inline bool isInside(const double* pt, double value) {
  if constexpr (Side == 0)
    return pt[0] > value;
  else if constexpr (Side == 1)
    return pt[1] < value;
  else if constexpr (Side == 2)
    return pt[0] < value;
  else
    return pt[1] > value;
}

// Crossing of the line through s and p with the boundary, stepped along the unit direction from s.
template <int Side>
inline bool unitDirectionCrossing(double value, const double* s, const double* p, double* out) {
  constexpr int a = kAcross<Side>;
  constexpr int b = 1 - a;
  const double dx = p[0] - s[0];
  const double dy = p[1] - s[1];
  const double len = std::sqrt(dx * dx + dy * dy);
  const double u[2] = {dx / len, dy / len};
  // Also false for a NaN component: a zero or overflowing length has no direction.
  if (!(std::fabs(u[a]) > kParallelComponent))
    return false;
  out[b] = s[b] + (value - s[a]) * u[b] / u[a];
  out[a] = value;
  return true;
}

// The crossing of an edge known to cross the side. When the unit direction calls it parallel
// (a nearly flat edge whose ends still lie on both sides, or a length that overflows), the
// crossing is interpolated along the edge instead, so a slot is never left unwritten.
template <int Side>
inline void edgeCrossing(double value, const double* s, const double* p, double* out) {
  if (unitDirectionCrossing<Side>(value, s, p, out))
    return;
  constexpr int a = kAcross<Side>;
  constexpr int b = 1 - a;
  const double t = (value - s[a]) / (p[a] - s[a]);
  out[b] = s[b] + t * (p[b] - s[b]);
  out[a] = value;
}

inline void copyPoint(const double* from, double* to) {
  to[0] = from[0];
  to[1] = from[1];
}

// One pass: the edges in[i-1] -> in[i] against one side, the result closed by repetition.
// Writes at most floor(3n/2) points: an entering edge gives two, and it is followed by an edge
// that starts inside.
template <int Side>
std::size_t clipPass(double value, const double (*in)[2], std::size_t n, double (*out)[2]) {
  if (n < 2)
    return 0;
  std::size_t count = 0;
  bool sInside = isInside<Side>(in[0], value);
  for (std::size_t i = 1; i < n; ++i) {
    const bool pInside = isInside<Side>(in[i], value);
    if (sInside != pInside)
      edgeCrossing<Side>(value, in[i - 1], in[i], out[count++]);
    if (pInside)
      copyPoint(in[i], out[count++]);
    sInside = pInside;
  }
  if (count > 0) {
    copyPoint(out[0], out[count]);
    ++count;
  }
  return count;
}

// The most points a pass can give from m input points.
std::uint64_t passRoom(std::uint64_t m) {
  return m + m / 2;
}

}  // namespace

int CalInsertPoint(int side, double value, double* s, double* p, double* out) {
  return dispatchSide(side, 0, [&](auto tag) {
    return unitDirectionCrossing<decltype(tag)::value>(value, s, p, out) ? 1 : 0;
  });
}

int JudgeRelativPos(int side, double value, double* s, double* p) {
  return dispatchSide(side, 3, [&](auto tag) {
    constexpr int kSide = decltype(tag)::value;
    const bool sInside = isInside<kSide>(s, value);
    const bool pInside = isInside<kSide>(p, value);
    if (pInside)
      return sInside ? 1 : 0;
    return sInside ? 2 : 3;
  });
}

void EdgeClipEdge(int side, double value, double* s, double* p, int& count, double (*out)[2]) {
  // Copies first: the caller's output may overlap the edge's points.
  const double sCopy[2] = {s[0], s[1]};
  const double pCopy[2] = {p[0], p[1]};
  dispatchSide(side, 0, [&](auto tag) {
    constexpr int kSide = decltype(tag)::value;
    const bool sInside = isInside<kSide>(sCopy, value);
    const bool pInside = isInside<kSide>(pCopy, value);
    if (sInside != pInside)
      edgeCrossing<kSide>(value, sCopy, pCopy, out[count++]);
    if (pInside)
      copyPoint(pCopy, out[count++]);
    return 0;
  });
}

void EdgeClipPolygon(int side, double value, int n, double (*in)[2], int& count, double (*out)[2]) {
  const std::size_t points = n < 2 ? 0 : static_cast<std::size_t>(n);
  count = dispatchSide(side, 0, [&](auto tag) {
    return static_cast<int>(clipPass<decltype(tag)::value>(value, in, points, out));
  });
}

void RectClipPolygon(double (*rect)[2], int n, double (*in)[2], int& count, double (*out)[2]) {
  if (n < 2) {
    count = 0;
    return;
  }
  const double x0 = rect[0][0];
  const double y0 = rect[0][1];
  const double x1 = rect[1][0];
  const double y1 = rect[1][1];
  const std::uint64_t points = static_cast<std::uint64_t>(n);
  // The caller's room, capped where the count would no longer fit its int.
  const std::uint64_t room = 3 * points < INT_MAX ? 3 * points : INT_MAX;

  // Scratch A takes passes 1 and 3, B pass 2 (and pass 4 when its result might not fit out).
  const std::uint64_t roomA = passRoom(passRoom(passRoom(points)));
  const std::uint64_t roomB = passRoom(roomA);
  const std::uint64_t total = roomA + roomB;
  if (total > SIZE_MAX / sizeof(double[2])) {
    count = 0;
    return;
  }
  double(*scratch)[2] = new (std::nothrow) double[static_cast<std::size_t>(total)][2];
  if (scratch == nullptr) {
    count = 0;
    return;
  }
  double(*a)[2] = scratch;
  double(*b)[2] = scratch + roomA;

  std::size_t m = clipPass<0>(x0, in, static_cast<std::size_t>(points), a);
  m = clipPass<1>(y1, a, m, b);
  m = clipPass<2>(x1, b, m, a);
  std::size_t result = 0;
  if (passRoom(m) <= room) {
    result = clipPass<3>(y0, a, m, out);
  } else {
    // Rare: four passes may outgrow 3n. Clip into scratch and hand over only a ring that fits.
    result = clipPass<3>(y0, a, m, b);
    if (result > room)
      result = 0;
    for (std::size_t i = 0; i < result; ++i)
      copyPoint(b[i], out[i]);
  }
  delete[] scratch;
  count = static_cast<int>(result);
}
