// Tarnsysm: planar computational geometry for 2D drafting.
// The round-corner offset: reading the input, piece geometry, and the raw offset curve.
//
// The raw offset moves every segment by d (a line along its normal, an arc about its centre to
// the radius R + d or R - d) and joins each corner by what the moved neighbours do there:
//   - they pull apart (the path turns away from the offset side): a round corner, the arc of
//     radius |d| about the vertex from the end of one moved segment to the start of the next;
//   - they cross (the path turns towards the offset side): both are cut back to the crossing
//     nearest the vertex, as long as it lies on both;
//   - otherwise (a moved segment too short to reach the crossing, or an arc moved past its
//     centre): a straight connector between the moved ends. It runs inside the circle of radius
//     |d| about the vertex, so the slicing always drops it.
// An arc moved past its centre has no point at distance |d| on its inner side (every point of
// the flipped arc is nearer some other point of the source arc), so it becomes a connector too.
#include "offset/round_internal.h"

#include "primitives/internal.h"

#include <algorithm>
#include <cmath>

namespace tarnsysm::detail {

namespace {

double cross(double ax, double ay, double bx, double by) {
  return ax * by - ay * bx;
}

Piece straightPiece(double x0, double y0, double x1, double y1, int src, PieceKind kind) {
  Piece p;
  p.x0 = x0;
  p.y0 = y0;
  p.x1 = x1;
  p.y1 = y1;
  p.src = src;
  p.kind = kind;
  return p;
}

// A straight segment or the arc of a bulge b from (x0, y0) to (x1, y1). With the chord u and
// its length c, tan(theta/4) = b and theta the signed sweep, the centre lies on the chord's
// left normal at c/(2 tan(theta/2)) = c (1 - b^2)/(4 b) from its midpoint, and the radius is
// c/(2 |sin(theta/2)|) = c (1 + b^2)/(4 |b|); written with 1/b, neither overflows.
Piece segmentPiece(double eps, double x0, double y0, double x1, double y1, double b, int src) {
  Piece p = straightPiece(x0, y0, x1, y1, src, PieceKind::kMoved);
  if (b == 0.0 || withinOpen(b, eps))  // exactly 0 is straight whatever eps is
    return p;
  const double ux = x1 - x0, uy = y1 - y0;
  const double k = (1.0 / b - b) / 4.0;
  p.cx = (x0 + x1) / 2.0 - k * uy;
  p.cy = (y0 + y1) / 2.0 + k * ux;
  p.r = std::sqrt(ux * ux + uy * uy) * (1.0 / std::fabs(b) + std::fabs(b)) / 4.0;
  p.a0 = portable::atan2(y0 - p.cy, x0 - p.cx);
  p.sweep = 4.0 * portable::atan(b);
  return p;
}

// Unit tangent of a piece at its start (t = 0) or end (t = 1).
void tangentAt(const Piece& p, bool atEnd, double* tx, double* ty) {
  if (!p.isArc()) {
    const double ux = p.x1 - p.x0, uy = p.y1 - p.y0;
    const double len = std::sqrt(ux * ux + uy * uy);
    *tx = ux / len;
    *ty = uy / len;
    return;
  }
  const double rx = (atEnd ? p.x1 : p.x0) - p.cx;
  const double ry = (atEnd ? p.y1 : p.y0) - p.cy;
  const double s = p.sweep > 0.0 ? 1.0 : -1.0;
  *tx = -s * ry / p.r;
  *ty = s * rx / p.r;
}

// The segment moved by d (right of travel). An arc whose moved radius is not above tol becomes
// a connector between its moved (flipped) ends.
Piece movedPiece(const Piece& s, double d, double tol) {
  Piece m = s;
  m.kind = PieceKind::kMoved;
  if (!s.isArc()) {
    double tx = 0.0, ty = 0.0;
    tangentAt(s, false, &tx, &ty);
    m.x0 = s.x0 + d * ty;
    m.y0 = s.y0 - d * tx;
    m.x1 = s.x1 + d * ty;
    m.y1 = s.y1 - d * tx;
    return m;
  }
  const double rMoved = s.r + (s.sweep > 0.0 ? d : -d);
  const double k = rMoved / s.r;
  m.x0 = s.cx + (s.x0 - s.cx) * k;
  m.y0 = s.cy + (s.y0 - s.cy) * k;
  m.x1 = s.cx + (s.x1 - s.cx) * k;
  m.y1 = s.cy + (s.y1 - s.cy) * k;
  if (rMoved > tol) {
    m.r = rMoved;
  } else {
    m.r = 0.0;
    m.kind = PieceKind::kConnector;
  }
  return m;
}

// Cuts the end of p back to (x, y) at parameter t.
void cutEnd(Piece& p, double t, double x, double y) {
  p.sweep *= t;
  p.x1 = x;
  p.y1 = y;
}

// Cuts the start of p forward to (x, y) at parameter t.
void cutStart(Piece& p, double t, double x, double y) {
  p.a0 += p.sweep * t;
  p.sweep *= 1.0 - t;
  p.x0 = x;
  p.y0 = y;
}

// Joins the raw chain (ending with `prev`, the moved incoming segment or whatever ended the
// chain) to `next` (the moved outgoing segment) at the source vertex (vx, vy) of row `vertex`:
// returns true with a piece to insert between them in `between`, or false when they now share
// an end (cut back to their crossing, or meeting along a common tangent).
bool joinCorner(double d, double tol, double vx, double vy, int vertex, const Piece& inSeg,
                const Piece& outSeg, Piece& prev, Piece& next, Piece& between) {
  double t1x = 0.0, t1y = 0.0, t2x = 0.0, t2y = 0.0;
  tangentAt(inSeg, true, &t1x, &t1y);
  tangentAt(outSeg, false, &t2x, &t2y);
  const double gap = length(next.x0 - prev.x1, next.y0 - prev.y1);
  if (gap <= tol) {
    next.x0 = prev.x1;
    next.y0 = prev.y1;
    next.smoothStart = true;
    return false;
  }
  // The turn at the vertex: positive to the left. An exact reversal turns round the offset side.
  const double c = cross(t1x, t1y, t2x, t2y);
  const double dot = t1x * t2x + t1y * t2y;
  double turn = portable::atan2(c, dot);
  if (c == 0.0 && dot < 0.0)
    turn = d > 0.0 ? kPi : -kPi;
  if (turn * d > 0.0) {
    // The moved segments pull apart: a round corner, turning with the path.
    between = Piece();
    between.x0 = prev.x1;
    between.y0 = prev.y1;
    between.x1 = next.x0;
    between.y1 = next.y0;
    between.cx = vx;
    between.cy = vy;
    between.r = std::fabs(d);
    between.a0 = portable::atan2(prev.y1 - vy, prev.x1 - vx);
    between.sweep = turn;
    between.src = vertex;
    between.kind = PieceKind::kCorner;
    between.smoothStart = true;
    next.smoothStart = true;
    return true;
  }
  if (prev.kind == PieceKind::kMoved && next.kind == PieceKind::kMoved) {
    // The moved segments cross: cut both back to the crossing nearest the vertex.
    double pts[2][2];
    const int count = meetPoints(prev, next, tol, pts);
    int best = -1;
    double bestDist = 0.0;
    for (int i = 0; i < count; ++i) {
      const double dist = length(pts[i][0] - vx, pts[i][1] - vy);
      if (best < 0 || dist < bestDist) {
        best = i;
        bestDist = dist;
      }
    }
    if (best >= 0) {
      const double x = pts[best][0], y = pts[best][1];
      cutEnd(prev, std::clamp(parameterOnPiece(prev, x, y), 0.0, 1.0), x, y);
      cutStart(next, std::clamp(parameterOnPiece(next, x, y), 0.0, 1.0), x, y);
      next.x0 = prev.x1;
      next.y0 = prev.y1;
      return false;
    }
  }
  between = straightPiece(prev.x1, prev.y1, next.x0, next.y0, vertex, PieceKind::kConnector);
  return true;
}

}  // namespace

// ---- Piece geometry ---------------------------------------------------------------------------

void pointOnPiece(const Piece& p, double t, double* x, double* y) {
  if (t <= 0.0) {
    *x = p.x0;
    *y = p.y0;
  } else if (t >= 1.0) {
    *x = p.x1;
    *y = p.y1;
  } else if (!p.isArc()) {
    *x = p.x0 + (p.x1 - p.x0) * t;
    *y = p.y0 + (p.y1 - p.y0) * t;
  } else {
    const double a = p.a0 + p.sweep * t;
    *x = p.cx + p.r * portable::cos(a);
    *y = p.cy + p.r * portable::sin(a);
  }
}

double parameterOnPiece(const Piece& p, double x, double y) {
  if (!p.isArc()) {
    const double ux = p.x1 - p.x0, uy = p.y1 - p.y0;
    const double len2 = ux * ux + uy * uy;
    return len2 > 0.0 ? ((x - p.x0) * ux + (y - p.y0) * uy) / len2 : 0.0;
  }
  // The angle from the start in the direction of travel, in [0, 2 pi); past the end it may be
  // read as lying before the start instead, whichever is nearer the sweep.
  double rel = (portable::atan2(y - p.cy, x - p.cx) - p.a0) * (p.sweep > 0.0 ? 1.0 : -1.0);
  addTurnsWhileBelow(rel, 0.0);
  subtractTurnsWhileAbove(rel, kTwoPi);
  const double span = std::fabs(p.sweep);
  if (!(span > 0.0))
    return 0.0;
  const double t = rel / span;
  const double before = (rel - kTwoPi) / span;
  return t - 1.0 > -before ? before : t;
}

Piece subPiece(const Piece& p, double ta, double tb, double xa, double ya, double xb, double yb) {
  Piece s = p;
  s.a0 = p.a0 + p.sweep * ta;
  s.sweep = p.sweep * (tb - ta);
  s.x0 = xa;
  s.y0 = ya;
  s.x1 = xb;
  s.y1 = yb;
  return s;
}

double pieceLength(const Piece& p) {
  if (p.isArc())
    return p.r * std::fabs(p.sweep);
  return length(p.x1 - p.x0, p.y1 - p.y0);
}

bool directionOnArc(const Piece& p, double wx, double wy) {
  // Counter-clockwise from s to e.
  double sx = p.x0 - p.cx, sy = p.y0 - p.cy;
  double ex = p.x1 - p.cx, ey = p.y1 - p.cy;
  if (p.sweep < 0.0) {
    std::swap(sx, ex);
    std::swap(sy, ey);
  }
  if (std::fabs(p.sweep) <= kPi)
    return cross(sx, sy, wx, wy) >= 0.0 && cross(wx, wy, ex, ey) >= 0.0;
  return !(cross(ex, ey, wx, wy) > 0.0 && cross(wx, wy, sx, sy) > 0.0);
}

PieceBox pieceBox(const Piece& p, double pad) {
  PieceBox b{std::min(p.x0, p.x1), std::min(p.y0, p.y1), std::max(p.x0, p.x1),
             std::max(p.y0, p.y1)};
  if (p.isArc()) {
    if (directionOnArc(p, 1.0, 0.0))
      b.xmax = p.cx + p.r;
    if (directionOnArc(p, -1.0, 0.0))
      b.xmin = p.cx - p.r;
    if (directionOnArc(p, 0.0, 1.0))
      b.ymax = p.cy + p.r;
    if (directionOnArc(p, 0.0, -1.0))
      b.ymin = p.cy - p.r;
  }
  return {b.xmin - pad, b.ymin - pad, b.xmax + pad, b.ymax + pad};
}

double distanceToPiece(const Piece& p, double x, double y) {
  if (p.isArc()) {
    const double wx = x - p.cx, wy = y - p.cy;
    if (directionOnArc(p, wx, wy))
      return std::fabs(length(wx, wy) - p.r);
    return std::min(length(x - p.x0, y - p.y0), length(x - p.x1, y - p.y1));
  }
  const double ux = p.x1 - p.x0, uy = p.y1 - p.y0;
  const double len2 = ux * ux + uy * uy;
  double t = len2 > 0.0 ? ((x - p.x0) * ux + (y - p.y0) * uy) / len2 : 0.0;
  t = std::clamp(t, 0.0, 1.0);
  return length(x - (p.x0 + ux * t), y - (p.y0 + uy * t));
}

// ---- Input and raw offset ---------------------------------------------------------------------

bool readRoundInput(double eps, int closed, int n, const double (*v)[5], RoundInput& in) {
  in.closed = closed != 0;
  in.rows.clear();
  in.segs.clear();
  for (int i = 0; i < n; ++i)
    if (!std::isfinite(v[i][0]) || !std::isfinite(v[i][1]) || !std::isfinite(v[i][2]))
      return false;
  // Rows closer than eps merge; the kept row takes the later row's bulge and attributes (the
  // segment that leaves the merged point is the later row's).
  in.rows.reserve(static_cast<size_t>(n) * 5);
  int m = 0;
  for (int i = 0; i < n; ++i) {
    if (m > 0) {
      double* last = &in.rows[static_cast<size_t>(m - 1) * 5];
      if (length(v[i][0] - last[0], v[i][1] - last[1]) < eps) {
        last[2] = v[i][2];
        last[3] = v[i][3];
        last[4] = v[i][4];
        continue;
      }
    }
    in.rows.insert(in.rows.end(), v[i], v[i] + 5);
    ++m;
  }
  while (in.closed && m > 2 &&
         length(in.rows[static_cast<size_t>(m - 1) * 5] - in.rows[0],
                in.rows[static_cast<size_t>(m - 1) * 5 + 1] - in.rows[1]) < eps)
    --m;
  in.rows.resize(static_cast<size_t>(m) * 5);
  in.rowCount = m;
  if (m < 2)
    return false;
  const int segCount = in.closed ? m : m - 1;
  in.segs.reserve(static_cast<size_t>(segCount));
  in.extent = 0.0;
  for (int k = 0; k < segCount; ++k) {
    const double* a = in.row(k);
    const double* b = in.row((k + 1) % m);
    in.segs.push_back(segmentPiece(eps, a[0], a[1], b[0], b[1], a[2], k));
    const PieceBox box = pieceBox(in.segs.back(), 0.0);
    in.extent = std::max({in.extent, std::fabs(box.xmin), std::fabs(box.xmax), std::fabs(box.ymin),
                          std::fabs(box.ymax), in.segs.back().r});
  }
  return in.extent < kLargestExtent;
}

void buildRawOffset(const RoundInput& in, double d, double tol, std::vector<Piece>& raw) {
  raw.clear();
  const int segCount = static_cast<int>(in.segs.size());
  raw.reserve(static_cast<size_t>(segCount) * 2 + 1);
  raw.push_back(movedPiece(in.segs[0], d, tol));
  Piece between;
  for (int k = 1; k <= segCount; ++k) {
    if (k == segCount && !in.closed)
      break;
    const int vertex = k % segCount;
    Piece next = k < segCount ? movedPiece(in.segs[static_cast<size_t>(k)], d, tol) : raw[0];
    const bool insert = joinCorner(d, tol, in.row(vertex)[0], in.row(vertex)[1], vertex,
                                   in.segs[static_cast<size_t>(k - 1)],
                                   in.segs[static_cast<size_t>(vertex)], raw.back(), next, between);
    if (insert)
      raw.push_back(between);
    if (k < segCount)
      raw.push_back(next);
    else
      raw[0] = next;
  }
  // Drop pieces shorter than tol; the next piece starts where the previous one ends.
  size_t kept = 0;
  for (size_t i = 0; i < raw.size(); ++i) {
    if (pieceLength(raw[i]) <= tol && raw.size() > 1)
      continue;
    if (kept > 0 && (raw[i].x0 != raw[kept - 1].x1 || raw[i].y0 != raw[kept - 1].y1)) {
      raw[i].x0 = raw[kept - 1].x1;
      raw[i].y0 = raw[kept - 1].y1;
      raw[i].smoothStart = false;
    }
    raw[kept++] = raw[i];
  }
  raw.resize(kept);
  if (in.closed && kept > 1 && (raw[0].x0 != raw[kept - 1].x1 || raw[0].y0 != raw[kept - 1].y1)) {
    raw[0].x0 = raw[kept - 1].x1;
    raw[0].y0 = raw[kept - 1].y1;
    raw[0].smoothStart = false;
  }
}

}  // namespace tarnsysm::detail
