// Tarnsysm: planar computational geometry for 2D drafting.
// The round-corner offset: stitching the kept slices into loops, and the exported entries.
//
// Stitching never compares coordinates: every slice starts and ends at a node of the slicing,
// so the kept slices leaving each node are listed once (a counting sort by node) and a loop
// follows them from node to node, preferring the slice that continues the same stretch of the
// raw curve (where two loops only touch, that keeps them apart). The work is linear in the
// number of slices.
#include "offset/offset.h"

#include "offset/round_internal.h"
#include "primitives/internal.h"

#include <algorithm>
#include <climits>
#include <cmath>
#include <new>
#include <utility>

using namespace tarnsysm::detail;

namespace {

// A loop of the result as the pieces its rows start.
struct RoundLoop {
  std::vector<Piece> pieces;
  bool closed = false;
  // Where each piece starts along the raw curve (raw piece, parameter): the order of loops and
  // the start of a closed loop come from it.
  std::vector<std::pair<int, double>> along;
  bool endsAtInputEnd = false;
};

struct RoundResult {
  std::vector<RoundLoop> loops;
  long long rows = 0;
};

// Chains of kept slices, as slice indices.
std::vector<std::vector<int>> stitchSlices(const SlicedOffset& s, bool closedInput,
                                           std::vector<char>& closedChain) {
  const int sliceCount = static_cast<int>(s.slices.size());
  const auto fromNode = [&](int k) {
    return s.nodeOf[static_cast<size_t>(s.slices[static_cast<size_t>(k)].from)];
  };
  const auto toNode = [&](int k) {
    return s.nodeOf[static_cast<size_t>(s.slices[static_cast<size_t>(k)].to)];
  };
  std::vector<int> first(static_cast<size_t>(s.nodeCount) + 1, 0);
  std::vector<int> incoming(static_cast<size_t>(s.nodeCount), 0);
  for (int k = 0; k < sliceCount; ++k) {
    if (!s.slices[static_cast<size_t>(k)].kept)
      continue;
    ++first[static_cast<size_t>(fromNode(k)) + 1];
    ++incoming[static_cast<size_t>(toNode(k))];
  }
  for (int v = 0; v < s.nodeCount; ++v)
    first[static_cast<size_t>(v) + 1] += first[static_cast<size_t>(v)];
  std::vector<int> leaving(static_cast<size_t>(first.back()));
  std::vector<int> fill(first.begin(), first.end() - 1);
  for (int k = 0; k < sliceCount; ++k)
    if (s.slices[static_cast<size_t>(k)].kept)
      leaving[static_cast<size_t>(fill[static_cast<size_t>(fromNode(k))]++)] = k;

  std::vector<char> used(static_cast<size_t>(sliceCount), 0);
  const auto nextOf = [&](int k) {
    const int v = toNode(k);
    int any = -1;
    for (int i = first[static_cast<size_t>(v)]; i < first[static_cast<size_t>(v) + 1]; ++i) {
      const int c = leaving[static_cast<size_t>(i)];
      if (used[static_cast<size_t>(c)])
        continue;
      if (s.slices[static_cast<size_t>(c)].from == s.slices[static_cast<size_t>(k)].to)
        return c;
      if (any < 0)
        any = c;
    }
    return any;
  };
  std::vector<std::vector<int>> chains;
  closedChain.clear();
  const auto follow = [&](int k) {
    std::vector<int> chain{k};
    used[static_cast<size_t>(k)] = 1;
    const int startNode = fromNode(k);
    bool closed = false;
    for (int cur = k;;) {
      if (toNode(cur) == startNode) {
        closed = true;
        break;
      }
      const int next = nextOf(cur);
      if (next < 0)
        break;
      used[static_cast<size_t>(next)] = 1;
      chain.push_back(next);
      cur = next;
    }
    // A closed input gives closed loops only; a chain that cannot close is round-off debris.
    if (closed || !closedInput) {
      chains.push_back(std::move(chain));
      closedChain.push_back(closed ? 1 : 0);
    }
  };
  // Open pieces start where no kept slice arrives.
  if (!closedInput)
    for (int k = 0; k < sliceCount; ++k)
      if (s.slices[static_cast<size_t>(k)].kept && !used[static_cast<size_t>(k)] &&
          incoming[static_cast<size_t>(fromNode(k))] == 0)
        follow(k);
  for (int k = 0; k < sliceCount; ++k)
    if (s.slices[static_cast<size_t>(k)].kept && !used[static_cast<size_t>(k)])
      follow(k);
  return chains;
}

// The pieces of a chain of slices, neighbouring parts of one raw piece merged and parts shorter
// than tol left out.
void chainPieces(const SlicedOffset& s, const std::vector<Piece>& raw, bool closedInput,
                 const std::vector<int>& chain, double tol, RoundLoop& loop) {
  const int count = static_cast<int>(raw.size());
  int lastPiece = -1;
  loop.pieces.reserve(chain.size() * 2);
  double lastT = 0.0;
  for (int k : chain) {
    const Slice& slice = s.slices[static_cast<size_t>(k)];
    const int fromNode = s.nodeOf[static_cast<size_t>(slice.from)];
    const int toNode = s.nodeOf[static_cast<size_t>(slice.to)];
    const Cut& endCut = s.cuts[static_cast<size_t>(slice.to)];
    bool firstFragment = true;
    forEachFragment(s, slice, count, closedInput, [&](int p, double ta, double tb) {
      const Piece& piece = raw[static_cast<size_t>(p)];
      const bool lastFragment = p == endCut.piece && tb == endCut.t;
      double xa = piece.x0, ya = piece.y0, xb = piece.x1, yb = piece.y1;
      if (firstFragment) {
        xa = s.nodeX[static_cast<size_t>(fromNode)];
        ya = s.nodeY[static_cast<size_t>(fromNode)];
      } else if (ta > 0.0) {
        pointOnPiece(piece, ta, &xa, &ya);
      }
      if (lastFragment) {
        xb = s.nodeX[static_cast<size_t>(toNode)];
        yb = s.nodeY[static_cast<size_t>(toNode)];
      } else if (tb < 1.0) {
        pointOnPiece(piece, tb, &xb, &yb);
      }
      firstFragment = false;
      if (p == lastPiece && ta == lastT && !loop.pieces.empty()) {
        Piece& prev = loop.pieces.back();
        prev.sweep += piece.sweep * (tb - ta);
        prev.x1 = xb;
        prev.y1 = yb;
      } else {
        Piece part = subPiece(piece, ta, tb, xa, ya, xb, yb);
        if (pieceLength(part) > tol || loop.pieces.empty()) {
          loop.pieces.push_back(part);
          loop.along.emplace_back(p, ta);
        } else
          loop.pieces.back().x1 = xb, loop.pieces.back().y1 = yb;
      }
      lastPiece = p;
      lastT = tb;
    });
  }
  if (!loop.pieces.empty() && pieceLength(loop.pieces.front()) <= tol && loop.pieces.size() > 1) {
    loop.pieces.erase(loop.pieces.begin());
    loop.along.erase(loop.along.begin());
  }
  // A closed loop starts at its piece that comes first along the input, wherever the crossings
  // that bound it lie.
  if (loop.closed && !loop.pieces.empty()) {
    const auto first = std::min_element(loop.along.begin(), loop.along.end());
    const auto k = first - loop.along.begin();
    std::rotate(loop.pieces.begin(), loop.pieces.begin() + k, loop.pieces.end());
    std::rotate(loop.along.begin(), first, loop.along.end());
  }
  loop.endsAtInputEnd = !closedInput && lastPiece == count - 1 && lastT == 1.0;
}

// The whole round-corner offset of a read input at signed distance d.
void roundOffset(double eps, const RoundInput& in, double d, RoundResult& result) {
  result = RoundResult();
  // Round-off alone must never drop a piece: the tolerance is at least 1e-12 of the extent.
  constexpr double kRelativeRoundOff = 1e-12;
  const double tol = std::max(eps, kRelativeRoundOff * (in.extent + std::fabs(d)));
  std::vector<Piece> raw;
  buildRawOffset(in, d, tol, raw);
  if (raw.empty())
    return;
  SlicedOffset sliced;
  sliceRawOffset(in, raw, d, tol, sliced);
  std::vector<char> closedChain;
  const std::vector<std::vector<int>> chains = stitchSlices(sliced, in.closed, closedChain);
  for (size_t c = 0; c < chains.size(); ++c) {
    const std::vector<int>& chain = chains[c];
    RoundLoop loop;
    loop.closed = closedChain[c] != 0;
    chainPieces(sliced, raw, in.closed, chain, tol, loop);
    const size_t rows = loop.pieces.size() + (loop.closed ? 0 : 1);
    if (rows < 2)
      continue;
    result.rows += static_cast<long long>(rows);
    result.loops.push_back(std::move(loop));
  }
  std::stable_sort(result.loops.begin(), result.loops.end(),
                   [](const RoundLoop& a, const RoundLoop& b) { return a.along[0] < b.along[0]; });
}

// Writes the rows of a loop; returns how many.
int writeLoop(const RoundInput& in, const RoundLoop& loop, double (*out)[5]) {
  int k = 0;
  for (const Piece& p : loop.pieces) {
    const double* src = in.row(p.src);
    out[k][0] = p.x0;
    out[k][1] = p.y0;
    out[k][2] = p.isArc() ? portable::tan(p.sweep / 4.0) : 0.0;
    out[k][3] = p.kind == PieceKind::kMoved ? src[3] : -1.0;
    out[k][4] = src[4];
    ++k;
  }
  if (!loop.closed) {
    const Piece& last = loop.pieces.back();
    const double* src = loop.endsAtInputEnd ? in.row(in.rowCount - 1) : in.row(last.src);
    out[k][0] = last.x1;
    out[k][1] = last.y1;
    out[k][2] = 0.0;
    out[k][3] = loop.endsAtInputEnd ? src[3] : -1.0;
    out[k][4] = src[4];
    ++k;
  }
  return k;
}

bool usableDistance(double eps, double d) {
  return std::fabs(d) < kLargestExtent && !withinOpen(d, eps);
}

bool usableInput(double eps, int n, double (*const v)[5], RoundInput& in, int closed) {
  if (!v || n < 1 || !std::isfinite(eps) || eps < 0.0)
    return false;
  return readRoundInput(eps, closed, n, v, in);
}

}  // namespace

int PLineOffsetRound(double eps, int closed, int n, double (*const v)[5], double dist,
                     double (*out)[5], int outRoom, int* loopStart, int* loopClosed, int loopRoom,
                     int* loopCount) {
  if (!loopCount)
    return 0;
  *loopCount = 0;
  try {
    RoundInput in;
    if (!usableInput(eps, n, v, in, closed) || !usableDistance(eps, dist))
      return 0;
    RoundResult result;
    roundOffset(eps, in, dist, result);
    const long long loops = static_cast<long long>(result.loops.size());
    if (result.rows > INT_MAX || loops == 0)
      return 0;
    const long long rowRoom = out ? outRoom : 0;
    const long long loopsRoom = loopStart && loopClosed ? loopRoom : 0;
    if (result.rows > rowRoom || loops > loopsRoom) {
      *loopCount = static_cast<int>(loops);
      return -static_cast<int>(result.rows);
    }
    int rows = 0;
    for (size_t k = 0; k < result.loops.size(); ++k) {
      loopStart[k] = rows;
      loopClosed[k] = result.loops[k].closed ? 1 : 0;
      rows += writeLoop(in, result.loops[k], out + rows);
    }
    *loopCount = static_cast<int>(loops);
    return rows;
  } catch (const std::bad_alloc&) {
    *loopCount = 0;
    return 0;
  }
}

int PLineOffsetRoundPick(double eps, int closed, int n, double (*const v)[5], int through,
                         double* const pick, double dist, double (*out)[5], int outRoom,
                         int* outClosed) {
  if (!pick || !outClosed || !std::isfinite(pick[0]) || !std::isfinite(pick[1]))
    return 0;
  try {
    RoundInput in;
    if (!usableInput(eps, n, v, in, closed))
      return 0;
    // The side (and with `through` the distance) from the picked point, as PLineOffset takes it.
    std::vector<double> rows = in.rows;
    double s = 0.0;
    if (!PLineDist(eps, in.closed ? 1 : 0, in.rowCount, reinterpret_cast<double(*)[5]>(rows.data()),
                   pick, &s) ||
        !std::isfinite(s) || withinOpen(s, eps))
      return 0;
    const double d = through ? s : (s >= 0.0 ? std::fabs(dist) : -std::fabs(dist));
    if (!usableDistance(eps, d))
      return 0;
    RoundResult result;
    roundOffset(eps, in, d, result);
    const RoundLoop* best = nullptr;
    double bestDist = 0.0;
    for (const RoundLoop& loop : result.loops) {
      double near = INFINITY;
      for (const Piece& p : loop.pieces)
        near = std::min(near, distanceToPiece(p, pick[0], pick[1]));
      if (!best || near < bestDist) {
        best = &loop;
        bestDist = near;
      }
    }
    if (!best)
      return 0;
    const int rowsNeeded = static_cast<int>(best->pieces.size()) + (best->closed ? 0 : 1);
    if (!out || rowsNeeded > outRoom)
      return -rowsNeeded;
    *outClosed = best->closed ? 1 : 0;
    return writeLoop(in, *best, out);
  } catch (const std::bad_alloc&) {
    return 0;
  }
}
