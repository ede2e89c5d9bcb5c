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

// Least distance from the segment (x0, y0)-(x1, y1) to seg: never more than the true one.
// Segments that do not cross are nearest at an end of one of them; an arc whose sweep no point
// of the segment faces (seen from its centre) is nearest at one of its ends, else it is no
// nearer than its circle.
double segmentGapBound(const Piece& seg, double x0, double y0, double x1, double y1) {
  Piece chord;
  chord.x0 = x0;
  chord.y0 = y0;
  chord.x1 = x1;
  chord.y1 = y1;
  const auto side = [](double ax, double ay, double bx, double by, double x, double y) {
    return (bx - ax) * (y - ay) - (by - ay) * (x - ax);
  };
  const double toEnds =
      std::min(distanceToPiece(chord, seg.x0, seg.y0), distanceToPiece(chord, seg.x1, seg.y1));
  if (!seg.isArc()) {
    const bool crosses =
        side(seg.x0, seg.y0, seg.x1, seg.y1, x0, y0) *
                side(seg.x0, seg.y0, seg.x1, seg.y1, x1, y1) <=
            0.0 &&
        side(x0, y0, x1, y1, seg.x0, seg.y0) * side(x0, y0, x1, y1, seg.x1, seg.y1) <= 0.0;
    if (crosses)
      return 0.0;
    return std::min({toEnds, distanceToPiece(seg, x0, y0), distanceToPiece(seg, x1, y1)});
  }
  // Whether some direction from the centre to the chord lies on the arc: a chord end does, or
  // an arc end lies between the directions to the chord's ends (the chord misses the centre).
  const double ax = x0 - seg.cx, ay = y0 - seg.cy, bx = x1 - seg.cx, by = y1 - seg.cy;
  const double turn = ax * by - ay * bx;
  const auto between = [&](double wx, double wy) {
    return turn * (ax * wy - ay * wx) >= 0.0 && turn * (wx * by - wy * bx) >= 0.0 &&
           ax * wx + ay * wy + bx * wx + by * wy > 0.0;
  };
  const bool faces = side(x0, y0, x1, y1, seg.cx, seg.cy) == 0.0 || directionOnArc(seg, ax, ay) ||
                     directionOnArc(seg, bx, by) || between(seg.x0 - seg.cx, seg.y0 - seg.cy) ||
                     between(seg.x1 - seg.cx, seg.y1 - seg.cy);
  if (!faces)
    return toEnds;
  const double near = distanceToPiece(chord, seg.cx, seg.cy);
  const double far = std::max(length(ax, ay), length(bx, by));
  return seg.r < near ? near - seg.r : seg.r > far ? seg.r - far : 0.0;
}

// A span of a piece seen from afar: its chord, and how far the span strays from it.
struct SpanChord {
  double x0, y0, x1, y1, sagitta;
};

// The chords of the spans of p, or none when some span is an arc of more than a half turn (it
// does not stay within its sagitta of its chord).
void spanChords(const Piece& p, const std::vector<PieceSpan>& spans,
                std::vector<SpanChord>& chords) {
  chords.clear();
  const double sweep = std::fabs(p.sweep);
  for (const PieceSpan& s : spans) {
    if (p.isArc() && sweep * (s.b - s.a) > kPi) {
      chords.clear();
      return;
    }
    SpanChord c;
    pointOnPiece(p, s.a, &c.x0, &c.y0);
    pointOnPiece(p, s.b, &c.x1, &c.y1);
    // r (1 - cos(theta/2)) = (chord/2) tan(theta/4), theta the span's sweep.
    c.sagitta = p.isArc()
                    ? length(c.x1 - c.x0, c.y1 - c.y0) / 2.0 * std::tan(sweep * (s.b - s.a) / 4.0)
                    : 0.0;
    chords.push_back(c);
  }
}

// Whether seg stays at least lim from every span with these chords: a cheap test that spares
// the exact one for most segments near short spans.
bool segmentMissesChords(const Piece& seg, double lim, const std::vector<SpanChord>& chords) {
  for (const SpanChord& c : chords)
    if (segmentGapBound(seg, c.x0, c.y0, c.x1, c.y1) < lim + c.sagitta)
      return false;
  return !chords.empty();
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
  std::vector<SpanChord> chords;
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
      spanChords(p, left, chords);
    };
    // Whether segment e, not tried before for this piece, took something away.
    const auto tryRemove = [&](int e) {
      if (seenBy[static_cast<size_t>(e)] == i || (p.kind == PieceKind::kMoved && e == p.src))
        return false;  // a moved segment keeps |d| from its own source
      seenBy[static_cast<size_t>(e)] = i;
      const Piece& seg = in.segs[static_cast<size_t>(e)];
      return distanceToPiece(seg, mx, my) < reach && !segmentMissesChords(seg, lim, chords) &&
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
