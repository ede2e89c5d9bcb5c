// Tarnsysm: planar computational geometry for 2D drafting.
// The round-corner offset: clearing the parts of raw pieces that lie too near the input, before
// the crossings are searched.
//
// Where the raw offset folds over itself again and again (the thin spikes of a star offset
// inwards), almost all of it lies nearer the input than |d| and every fold crosses every other:
// finding all those crossings costs the square of the folds. Each such part can be proved too
// near without them: the points nearer than lim to an input segment S form a band about S (a
// capsule about a line, an annular sector about an arc, with discs about the ends), and where a
// raw piece runs inside the band follows exactly from where it crosses the band's boundary (the
// lines or circles at lim from S, and the circles of radius lim about S's ends) and from one
// point between each two such crossings. What the bands of the input cover is cleared; only the
// rest takes part in the crossing search.
//
// Every cleared point is nearer than lim to some segment other than the piece's own source, so a
// run of the raw curve that holds one would be dropped by the slicing anyway; clearing less than
// the bands cover only costs time. Segments are taken nearest first and the search area shrinks
// to what is left of the piece, so a piece deep inside the band is settled by a few segments.
#include "offset/round_internal.h"

#include "primitives/internal.h"

#include <algorithm>
#include <cmath>

namespace tarnsysm::detail {

namespace {

// The line piece s moved by `by` to the right of its travel.
Piece shiftedLine(const Piece& s, double by) {
  const double len = length(s.x1 - s.x0, s.y1 - s.y0);
  const double nx = (s.y1 - s.y0) / len, ny = -(s.x1 - s.x0) / len;
  Piece m = s;
  m.x0 += by * nx;
  m.y0 += by * ny;
  m.x1 += by * nx;
  m.y1 += by * ny;
  return m;
}

// Parameters along p where it meets the boundary of the band of points nearer than lim to seg,
// into t (room for 8); returns the count.
int bandCrossings(const Piece& p, const Piece& seg, double lim, double* t) {
  Piece bounds[4];
  int boundCount = 0;
  bounds[boundCount++] = fullCircle(seg.x0, seg.y0, lim);
  bounds[boundCount++] = fullCircle(seg.x1, seg.y1, lim);
  if (!seg.isArc()) {
    if (length(seg.x1 - seg.x0, seg.y1 - seg.y0) > 0.0) {
      bounds[boundCount++] = shiftedLine(seg, lim);
      bounds[boundCount++] = shiftedLine(seg, -lim);
    }
  } else {
    bounds[boundCount++] = fullCircle(seg.cx, seg.cy, seg.r + lim);
    if (seg.r > lim)
      bounds[boundCount++] = fullCircle(seg.cx, seg.cy, seg.r - lim);
  }
  int count = 0;
  for (int b = 0; b < boundCount; ++b) {
    double pts[2][2];
    const int found = meetPoints(p, bounds[b], 0.0, pts);
    for (int k = 0; k < found; ++k)
      t[count++] = std::clamp(parameterOnPiece(p, pts[k][0], pts[k][1]), 0.0, 1.0);
  }
  return count;
}

// Removes from `left` (sorted, disjoint spans of p) the parts of p nearer than lim to seg.
// Returns whether anything was removed.
bool removeBand(const Piece& p, const Piece& seg, double lim, std::vector<PieceSpan>& left,
                std::vector<PieceSpan>& scratch) {
  double t[16];  // eight crossings at most, and the two ends
  int count = bandCrossings(p, seg, lim, t);
  t[count++] = 0.0;
  t[count++] = 1.0;
  std::sort(t, t + count);
  // Between two neighbouring crossings p is wholly inside the band or wholly outside it.
  scratch.clear();
  for (int k = 0; k + 1 < count; ++k) {
    if (!(t[k + 1] > t[k]))
      continue;
    double x, y;
    pointOnPiece(p, (t[k] + t[k + 1]) / 2.0, &x, &y);
    if (!(distanceToPiece(seg, x, y) < lim))
      continue;
    if (!scratch.empty() && scratch.back().b == t[k])
      scratch.back().b = t[k + 1];
    else
      scratch.push_back({-1, t[k], t[k + 1]});
  }
  if (scratch.empty())
    return false;
  // left minus the covered spans, both sorted.
  bool removed = false;
  std::vector<PieceSpan> rest;
  rest.reserve(left.size() + scratch.size());
  size_t c = 0;
  for (const PieceSpan& s : left) {
    double a = s.a;
    while (c < scratch.size() && scratch[c].b <= a)
      ++c;
    for (size_t k = c; k < scratch.size() && scratch[k].a < s.b; ++k) {
      removed = true;
      if (scratch[k].a > a)
        rest.push_back({s.piece, a, scratch[k].a});
      a = std::max(a, scratch[k].b);
    }
    if (a < s.b)
      rest.push_back({s.piece, a, s.b});
  }
  left.swap(rest);
  return removed;
}

// Whether the straight segment seg stays at least lim from every span of p that is an arc of a
// half turn or less or a line: such a span lies within its sagitta of its chord, and two
// segments that do not cross are nearest at an end of one of them. A cheap test that spares
// the exact one for most segments near a short span.
bool lineMissesSpans(const Piece& p, const Piece& seg, double lim,
                     const std::vector<PieceSpan>& spans) {
  if (seg.isArc())
    return false;
  const double sweep = std::fabs(p.sweep);
  if (p.isArc() && sweep * (spans.back().b - spans.front().a) > kPi)
    return false;
  const auto side = [](double ax, double ay, double bx, double by, double x, double y) {
    return (bx - ax) * (y - ay) - (by - ay) * (x - ax);
  };
  for (const PieceSpan& s : spans) {
    Piece chord;
    pointOnPiece(p, s.a, &chord.x0, &chord.y0);
    pointOnPiece(p, s.b, &chord.x1, &chord.y1);
    const double half = length(chord.x1 - chord.x0, chord.y1 - chord.y0) / 2.0;
    // r (1 - cos(theta/2)) = half tan(theta/4), theta the span's sweep.
    const double sagitta = p.isArc() ? half * std::tan(sweep * (s.b - s.a) / 4.0) : 0.0;
    const double need = lim + sagitta;
    const bool crosses = side(seg.x0, seg.y0, seg.x1, seg.y1, chord.x0, chord.y0) *
                                 side(seg.x0, seg.y0, seg.x1, seg.y1, chord.x1, chord.y1) <=
                             0.0 &&
                         side(chord.x0, chord.y0, chord.x1, chord.y1, seg.x0, seg.y0) *
                                 side(chord.x0, chord.y0, chord.x1, chord.y1, seg.x1, seg.y1) <=
                             0.0;
    if (crosses || distanceToPiece(seg, chord.x0, chord.y0) < need ||
        distanceToPiece(seg, chord.x1, chord.y1) < need ||
        distanceToPiece(chord, seg.x0, seg.y0) < need ||
        distanceToPiece(chord, seg.x1, seg.y1) < need)
      return false;
  }
  return true;
}

// The box of the spans of p.
PieceBox spansBox(const Piece& p, const std::vector<PieceSpan>& spans) {
  PieceBox box{0.0, 0.0, 0.0, 0.0};
  for (size_t k = 0; k < spans.size(); ++k) {
    double xa, ya, xb, yb;
    pointOnPiece(p, spans[k].a, &xa, &ya);
    pointOnPiece(p, spans[k].b, &xb, &yb);
    const PieceBox b = pieceBox(subPiece(p, spans[k].a, spans[k].b, xa, ya, xb, yb), 0.0);
    box = k == 0 ? b : unite(box, b);
  }
  return box;
}

}  // namespace

Piece fullCircle(double cx, double cy, double r) {
  Piece circle;
  circle.cx = cx;
  circle.cy = cy;
  circle.r = r;
  circle.sweep = kTwoPi;
  circle.x0 = circle.x1 = cx + r;
  circle.y0 = circle.y1 = cy;
  return circle;
}

void clearTooNear(const RoundInput& in, const std::vector<Piece>& raw, const PieceTree& inputIndex,
                  double lim, const std::vector<char>& crowded, std::vector<PieceSpan>& spans) {
  spans.clear();
  const int segCount = static_cast<int>(in.segs.size());
  std::vector<int> seenBy(static_cast<size_t>(segCount), -1);  // the piece that tried a segment
  std::vector<PieceSpan> left, scratch;
  for (int i = 0; i < static_cast<int>(raw.size()); ++i) {
    if (!crowded[static_cast<size_t>(i)]) {
      spans.push_back({i, 0.0, 1.0});
      continue;
    }
    const Piece& p = raw[static_cast<size_t>(i)];
    left.assign(1, {i, 0.0, 1.0});
    // What is left lies within `reach` of (mx, my): a segment farther than lim from it misses.
    PieceBox query = pieceBox(p, 0.0);
    double mx = 0.0, my = 0.0, reach = 0.0;
    const auto aroundLeft = [&] {
      query = spansBox(p, left);
      mx = (query.xmin + query.xmax) / 2.0;
      my = (query.ymin + query.ymax) / 2.0;
      reach = lim + length(query.xmax - query.xmin, query.ymax - query.ymin) / 2.0;
    };
    // Whether segment e, not tried before for this piece, took something away.
    const auto tryRemove = [&](int e) {
      if (seenBy[static_cast<size_t>(e)] == i || (p.kind == PieceKind::kMoved && e == p.src))
        return false;  // a moved segment keeps |d| from its own source
      seenBy[static_cast<size_t>(e)] = i;
      const Piece& seg = in.segs[static_cast<size_t>(e)];
      return distanceToPiece(seg, mx, my) < reach && !lineMissesSpans(p, seg, lim, left) &&
             removeBand(p, seg, lim, left, scratch);
    };
    aroundLeft();
    // The segments round the source first: the vertices next to a corner often cover most of it.
    bool changed = false;
    for (int k = p.src - 3; k <= p.src + 2 && !left.empty(); ++k) {
      const int e = in.closed ? ((k % segCount) + segCount) % segCount : k;
      if (e >= 0 && e < segCount && tryRemove(e))
        changed = true;
    }
    // Then nearest first, starting again round what is left after each removal.
    for (bool again = true; again && !left.empty();) {
      if (changed)
        aroundLeft();
      again =
          inputIndex.visitNearestFirst(query, lim, [&](int e, PieceBox&) { return tryRemove(e); });
      changed = again;
    }
    spans.insert(spans.end(), left.begin(), left.end());
  }
}

}  // namespace tarnsysm::detail
