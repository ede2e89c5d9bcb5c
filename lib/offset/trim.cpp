// Tarnsysm: planar computational geometry for 2D drafting.
// Loop trimming: duplicate rows (TrimLoop0) and self-intersection loops (TrimLoopS, and the
// trimming of each offset step).
//
// The loop scan tests every segment against the earlier ones, nearest first (i-1 down to 0), and
// cuts at the first that crosses it. It keeps exactly that order and those results, but asks a
// box tree over the segments (segment_index.h) for the earlier segments that can cross at all,
// so a polyline with few crossings costs O(n log n) instead of O(n^2). Segments keep stable ids
// (their row at the start of the scan); a cut removes the ids inside the loop and the row X takes
// the id of row i, so id order stays position order and stored boxes only ever grow too large,
// never too small. Where the boxes hand back many segments (a zigzag on one line, the long
// slanted spokes of a star), the tree adds oriented boxes and leaves out segments that are
// parallel or concentric with the query, so no shape makes the scan quadratic without crossings
// to show for it.
//
// Choices made here:
//  - A straight segment and an arc cross only at a point that DArcLInts puts on the arc and its
//    flag puts within the straight segment.
//  - Of a pair, the earlier segment j is passed first to D2LInts and D2ArcInts, the straight one
//    first to DArcLInts.
//  - The closing segment of a closed polyline and segment 0 share row 0 and are neighbours like
//    segments i - 1 and i: they form a loop only where they meet a second time, and of their two
//    points the one farther from row 0 along segment 0 is cut. A simple closed polygon comes
//    back as itself.
//  - Cutting a loop: the row X that replaces row j+1 carries the tail piece of segment i and the
//    attributes (fields 3 and 4) of row i; row j keeps its attributes and the head piece of
//    segment j. In the loop, X carries the tail piece of segment j and the attributes of row j.
//  - Trimming an offset step (trimStepLoops) never keeps a closed loop that runs the other way
//    round from the polyline the step started from: such a loop is a piece of the offset turned
//    inside out (caps about far points, corners that reached across the region), not a part of
//    the offset, however near the picked point it lies.
//  - A loop is measured with the polyline's own closed flag, as the scan is defined; an open
//    polyline's loop is measured without its closing segment.
//  - Once two neighbouring segments have been cut at their second crossing, a second report of
//    one (round-off far from the origin) moves the scan on instead of cutting forever.
//  - TrimLoopS works on a copy and writes the caller's rows only at the end, so when memory runs
//    out it returns with the rows and the flag untouched.
#include "offset/offset.h"

#include "intersect/intersect.h"
#include "offset/internal.h"
#include "offset/segment_index.h"
#include "primitives/internal.h"

#include <cmath>
#include <cstring>
#include <memory>
#include <new>
#include <vector>

using namespace tarnsysm::detail;

namespace {

// A line and an arc that share a row always meet there; a loop needs their second point, the
// other place where the line's carrier crosses the circle, to lie within the line and on the
// arc. True when it plainly does not (with margins far wider than the round-off between this
// and DArcLInts' own arithmetic), so DArcLInts need not be asked.
bool secondCrossingMisses(double eps, const RoughSegment& line, const RoughSegment& arc) {
  if (line.kind != RoughSegment::straight || arc.kind != RoughSegment::arc)
    return false;
  const double len = line.chord;
  if (!(len > 0.0))
    return false;
  const double ux = (line.x2 - line.x1) / len;
  const double uy = (line.y2 - line.y1) / len;
  // Along the line from its start: the foot of the centre at p0, the crossings at p0 -+ h.
  const double p0 = (arc.cx - line.x1) * ux + (arc.cy - line.y1) * uy;
  const double fx = line.x1 + p0 * ux - arc.cx;
  const double fy = line.y1 + p0 * uy - arc.cy;
  const double h2 = arc.r * arc.r - (fx * fx + fy * fy);
  if (!(h2 > 0.0))
    return false;
  const double h = std::sqrt(h2);
  // The shared row is the line's end when the arc follows it, its start otherwise.
  const bool sharedAtEnd = line.x2 == arc.x1 && line.y2 == arc.y1;
  const double shared = sharedAtEnd ? len : 0.0;
  const double p = std::fabs(p0 - h - shared) > std::fabs(p0 + h - shared) ? p0 - h : p0 + h;
  const double scale = len + arc.r + std::fabs(line.x1) + std::fabs(line.y1);
  const double margin = 4.0 * std::fabs(eps) * (1.0 + arc.r) + 1e-9 * scale;
  if (p < -eps - margin || p > len + eps + margin)
    return true;
  // On the arc: the arc lies on its own side of its chord; DArcLInts' angular tolerance reaches
  // eps R past the arc's ends.
  return sideOfChordScaled(arc, line.x1 + p * ux, line.y1 + p * uy) < -margin * arc.chord;
}

// How segment j (earlier) meets segment i (later) in the loop scan: apart, or sharing a row,
// either the start of i (j = i - 1) or, for the closing segment i and segment 0, row 0.
enum class Neighbours { none, previous, closing };

// Where segment i (later) crosses segment j (earlier) in the loop scan, if it does.
bool loopCrossing(double eps, const Segment& si, const Segment& sj, Neighbours neighbours,
                  double* x, double* y) {
  const bool adjacent = neighbours != Neighbours::none;
  if (!si.isArc && !sj.isArc) {
    // Neighbouring lines always meet at their shared row; only other pairs are tested.
    if (adjacent)
      return false;
    int flag = 0;
    return D2LInts(eps, sj.x1, sj.y1, sj.x2, sj.y2, si.x1, si.y1, si.x2, si.y2, x, y, &flag) == 1 &&
           flag == 3;
  }
  double px[2], py[2];
  int count = 0;
  double xa, ya, xb, yb;
  if (si.isArc != sj.isArc) {
    const Segment& line = si.isArc ? sj : si;
    const Segment& arc = si.isArc ? si : sj;
    int flag = 0;
    const int m = DArcLInts(eps, line.x1, line.y1, line.x2, line.y2, arc.cx, arc.cy, arc.r, arc.sa,
                            arc.ea, &xa, &ya, &xb, &yb, &flag);
    if (m >= 1 && (flag & 1)) {
      px[count] = xa;
      py[count++] = ya;
    }
    if (m == 2 && (flag & 2)) {
      px[count] = xb;
      py[count++] = yb;
    }
  } else {
    const int m = D2ArcInts(eps, sj.cx, sj.cy, sj.r, sj.sa, sj.ea, si.cx, si.cy, si.r, si.sa, si.ea,
                            &xa, &ya, &xb, &yb);
    if (m >= 1) {
      px[count] = xa;
      py[count++] = ya;
    }
    if (m == 2) {
      px[count] = xb;
      py[count++] = yb;
    }
  }
  if (adjacent) {
    // They always meet at the shared row: a loop needs a second point; the one farther from
    // the shared row is taken, the first on a tie. At the start of i that is farther in
    // |dx| + |dy|; at row 0, farther along segment 0.
    if (count < 2)
      return false;
    int pick;
    if (neighbours == Neighbours::closing) {
      pick = parameterAlong(eps, sj, px[1], py[1]) > parameterAlong(eps, sj, px[0], py[0]) ? 1 : 0;
    } else {
      const double d0 = std::fabs(px[0] - si.x1) + std::fabs(py[0] - si.y1);
      const double d1 = std::fabs(px[1] - si.x1) + std::fabs(py[1] - si.y1);
      pick = d1 > d0 ? 1 : 0;
    }
    *x = px[pick];
    *y = py[pick];
    return true;
  }
  if (count == 0)
    return false;
  int pick = 0;
  if (count == 2 && parameterAlong(eps, sj, px[1], py[1]) < parameterAlong(eps, sj, px[0], py[0]))
    pick = 1;
  *x = px[pick];
  *y = py[pick];
  return true;
}

// ---- Rows ------------------------------------------------------------------------------------

// A heap array of rows, double (*)[5] like the caller's.
class RowArray {
 public:
  explicit RowArray(int n) : rows_(n > 0 ? new double[n][5] : nullptr), n_(n) {}
  double (*get())[5] { return rows_.get(); }
  double* operator[](int i) { return rows_[i]; }
  int size() const { return n_; }

 private:
  std::unique_ptr<double[][5]> rows_;
  int n_;
};

void copyRows(double (*dst)[5], double (*const src)[5], int n) {
  if (n > 0)
    std::memmove(dst[0], src[0], sizeof(double[5]) * static_cast<size_t>(n));
}

// ---- The loop scan ---------------------------------------------------------------------------

// The polyline during the scan: rows under stable ids, linked in order; ids only disappear.
class ScanState {
 public:
  ScanState(double eps, int closed, int n, double (*const rows)[5])
      : eps_(eps), closed_(closed), rows_(rows), next_(n), prev_(n), cache_(n), last_(n - 1) {
    for (int i = 0; i < n; ++i) {
      next_[i] = i + 1 < n ? i + 1 : -1;
      prev_[i] = i - 1;
    }
    index_.build(n, [&](int i) { return shape(i); });
  }

  bool hasSegment(int id) const { return next_[id] != -1 || (closed_ && id == last_); }
  int next(int id) const { return next_[id]; }
  int prev(int id) const { return prev_[id]; }
  double* row(int id) { return rows_[id]; }

  Segment segment(int id) {
    return cache_.get(eps_, id, rows_[id], rows_[next_[id] != -1 ? next_[id] : 0]);
  }

  // The exact segment when it was already worked out.
  bool knownSegment(int id, Segment* seg) {
    if (!cache_.known(id))
      return false;
    *seg = segment(id);
    return true;
  }

  RoughSegment rough(int id) const {
    return roughOf(eps_, rows_[id], rows_[next_[id] != -1 ? next_[id] : 0]);
  }

  SegmentShape shape(int id) const {
    return hasSegment(id) ? roughShapeOf(eps_, rough(id)) : SegmentShape::empty();
  }

  // The latest earlier segment that segment `id` crosses, nearest first, and the point. The
  // exact shapes (PL_ArcParam) are worked out only for pairs the rough ones cannot rule out.
  int firstCrossingBelow(int id, double* x, double* y) {
    const RoughSegment ri = rough(id);
    int hit = -1;
    // The closing segment shares row 0 (id 0, which is never cut out) with segment 0.
    const bool closing = closed_ && next_[id] == -1;
    index_.visitBelowDescending(id, crossingProbe(eps_, roughShapeOf(eps_, ri)), [&](int j) {
      const Neighbours neighbours = j == prev_[id]      ? Neighbours::previous
                                    : closing && j == 0 ? Neighbours::closing
                                                        : Neighbours::none;
      if (neighbours != Neighbours::none) {
        const RoughSegment rj = rough(j);
        // Neighbouring lines only meet at their shared row.
        if (ri.kind == RoughSegment::straight && rj.kind == RoughSegment::straight)
          return false;
        if (secondCrossingMisses(eps_, ri, rj) || secondCrossingMisses(eps_, rj, ri))
          return false;
      }
      if (!loopCrossing(eps_, segment(id), segment(j), neighbours, x, y))
        return false;
      hit = j;
      return true;
    });
    // Boxes that hand back many segments (long slanted fans, runs overlapping on one line or
    // circle) get the finer summaries.
    index_.summariseWhenCrowded([&](int j) { return shape(j); });
    return hit;
  }

  // Cuts out the loop between segment j and segment i at X: the rows after j up to i go, row i's
  // slot becomes X with the tail piece of segment i, row j keeps the head piece of segment j.
  void cut(int j, int i, double x, double y, double headJ, double tailI) {
    // The ids inside the loop lie between j and i.
    if (next_[j] != i)
      index_.removeRange(next_[j], prev_[i]);
    rows_[i][0] = x;
    rows_[i][1] = y;
    rows_[i][2] = tailI;
    rows_[j][2] = headJ;
    next_[j] = i;
    prev_[i] = j;
    cache_.forget(i);
    cache_.forget(j);
    // Both are parts of what they were: their boxes still hold them, their directions moved.
    index_.shrink(j, shape(j));
    index_.shrink(i, shape(i));
  }

 private:
  double eps_;
  int closed_;
  double (*rows_)[5];
  std::vector<int> next_, prev_;
  SegmentCache cache_;
  int last_;
  SegmentIndex index_;
};

// A loop cut out of the polyline, with its distance from the picked point.
struct CutLoop {
  std::unique_ptr<RowArray> rows;
  std::unique_ptr<LazyDistance> distance;
};

// How an offset step is trimmed (trimStepLoops): loops enclosing an area of the other sign than
// sourceArea (when it is not 0) are never kept, and a loop that is kept is trimmed in turn, at
// most `retrims` times deep, since the scan never looks inside a loop it cuts out.
struct StepTrim {
  double sourceArea;
  int retrims;
};

// TrimLoopS; when the PLineDist of the rows it returns (with the flag it returns) was worked out
// on the way, or nearly, it is reported through *measure (when measure is not null). `step`
// holds the rules of an offset step's trimming, null for TrimLoopS itself.
int trimLoops(double eps, double* const pick, int* closed, int n, double (*const v)[5],
              tarnsysm::detail::TrimMeasure* measure, const StepTrim* step = nullptr) {
  const auto reversed = [&](int count, double(*const rows)[5]) {
    return step && step->sourceArea != 0.0 && closedArea(eps, count, rows) * step->sourceArea < 0.0;
  };
  // A loop kept by a step, now in v, trimmed of its own loops (it has fewer rows than the input,
  // so this ends).
  const auto keptLoop = [&](int count) {
    if (!step || step->retrims <= 0 || count >= n)
      return count;
    const StepTrim inner{step->sourceArea, step->retrims - 1};
    return trimLoops(eps, pick, closed, count, v, nullptr, &inner);
  };
  const bool wasClosed = *closed == 1;
  RowArray work(n);
  copyRows(work.get(), v, n);
  const int m = TrimLoop0(eps, *closed, n, work.get());
  ScanState scan(eps, *closed, m, work.get());

  CutLoop saved;
  int i = m >= 2 ? scan.next(0) : -1;
  int adjacentCutAt = -1;
  while (i != -1 && scan.hasSegment(i)) {
    double x, y;
    const int j = scan.firstCrossingBelow(i, &x, &y);
    // Once the loop between two segments that share a row is cut, they meet only at X. Where
    // round-off (coordinates far beyond 1/eps) still reports a second crossing, cutting again
    // changes nothing and would repeat forever: move on. Every other cut removes rows.
    if (j < 0 || (j == scan.prev(i) && adjacentCutAt == i)) {
      i = scan.next(i);
      continue;
    }
    adjacentCutAt = j == scan.prev(i) ? i : -1;
    const Segment segI = scan.segment(i);
    const Segment segJ = scan.segment(j);
    double headJ, tailJ, headI, tailI;
    splitBulges(eps, segJ, x, y, &headJ, &tailJ);
    splitBulges(eps, segI, x, y, &headI, &tailI);

    // The loop: X (tail piece of j, attributes of row j), rows j+1 .. i (row i with the head
    // piece of i).
    int count = 1;
    for (int id = scan.next(j);; id = scan.next(id)) {
      ++count;
      if (id == i)
        break;
    }
    auto loop = std::make_unique<RowArray>(count);
    double* head = (*loop)[0];
    head[0] = x;
    head[1] = y;
    head[2] = tailJ;
    head[3] = scan.row(j)[3];
    head[4] = scan.row(j)[4];
    int k = 1;
    for (int id = scan.next(j);; id = scan.next(id)) {
      std::memcpy((*loop)[k++], scan.row(id), sizeof(double[5]));
      if (id == i)
        break;
    }
    (*loop)[count - 1][2] = headI;
    if (reversed(count, loop->get())) {
      scan.cut(j, i, x, y, headJ, tailI);
      i = j >= 1 ? i : scan.next(i);
      continue;
    }

    // Measured with PLineDist: a loop the picked point lies on (|s| < eps) is the result; one
    // strictly nearer than the saved loop replaces it; an equal or farther one, or one without a
    // distance, is dropped. Only as much of the distance is worked out as these need.
    auto distance = std::make_unique<LazyDistance>(eps, *closed, count, loop->get(), pick);
    // The loop's segments between rows j+1 .. i are the scan's own.
    int row = 1;
    for (int id = scan.next(j); id != i; id = scan.next(id), ++row) {
      Segment known;
      if (scan.knownSegment(id, &known))
        distance->adopt(row, known);
    }
    if (distance->below(eps)) {
      copyRows(v, loop->get(), count);
      *closed = 1;
      if (measure && wasClosed)
        *measure = {true, true, 0.0};  // on the loop: |s| < eps
      return keptLoop(count);
    }
    const double best = saved.rows ? saved.distance->magnitude() : 1e100;
    if (distance->below(best)) {
      saved.rows = std::move(loop);
      saved.distance = std::move(distance);
    }

    scan.cut(j, i, x, y, headJ, tailI);
    // Continue behind the cut: at X's segment, or past it when the cut was at segment 0.
    i = j >= 1 ? i : scan.next(i);
  }

  // The remaining polyline, in order: ids only grow along it, so it packs down in place.
  double(*const rest)[5] = work.get();
  int r = 0;
  if (m >= 1) {
    for (int id = 0; id != -1; id = scan.next(id), ++r) {
      if (id != r)
        std::memcpy(rest[r], rest[id], sizeof(double[5]));
    }
  }
  const bool restReversed = *closed && reversed(r, rest);
  if (restReversed && !saved.rows)
    return 0;
  if (saved.rows) {
    // The remaining polyline wins ties: the saved loop is kept only when strictly nearer.
    double s = 0.0;
    const bool restWins = !restReversed && PLineDist(eps, *closed, r, rest, pick, &s) &&
                          !saved.distance->below(std::fabs(s));
    if (restWins)
      copyRows(v, rest, r);
    else {
      const int count = saved.rows->size();
      copyRows(v, saved.rows->get(), count);
      *closed = 1;
      const int kept = TrimLoop0(eps, 1, count, v);
      if (measure && wasClosed && kept == count)
        *measure = {true, true, saved.distance->value()};
      return keptLoop(kept);
    }
    const int kept = TrimLoop0(eps, *closed, r, v);
    if (measure && kept == r)
      *measure = {true, true, s};
    return kept;
  }
  copyRows(v, rest, r);
  return TrimLoop0(eps, *closed, r, v);
}

}  // namespace

namespace tarnsysm::detail {

int trimStepLoops(double eps, double* const pick, int* closed, int n, double (*const v)[5],
                  double sourceArea) {
  if (n <= 0)
    return 0;
  try {
    // Loops inside kept loops, a few levels deep, are all the trimming of a step has to clear.
    const StepTrim step{sourceArea, 8};
    return trimLoops(eps, pick, closed, n, v, nullptr, &step);
  } catch (const std::bad_alloc&) {
    return n;
  }
}

int trimLoopsAndMeasure(double eps, double* const pick, int* closed, int n, double (*const v)[5],
                        TrimMeasure* measure) {
  *measure = TrimMeasure{};
  if (n <= 0)
    return 0;
  try {
    return trimLoops(eps, pick, closed, n, v, measure);
  } catch (const std::bad_alloc&) {
    *measure = TrimMeasure{};
    return n;
  }
}

}  // namespace tarnsysm::detail

// ---- Exported --------------------------------------------------------------------------------

int TrimLoop0(double eps, int closed, int n, double (*const v)[5]) {
  if (n < 2 || !v)
    return n < 0 ? 0 : n;
  // Squared distances are compared with eps itself, deliberately: rows within sqrt(eps) merge.
  int last = 0;
  for (int i = 1; i < n; ++i) {
    const double d2 = square(v[i][0] - v[last][0]) + square(v[i][1] - v[last][1]);
    if (d2 <= eps) {
      // A duplicate: the kept row takes over its bulge and attributes.
      v[last][2] = v[i][2];
      v[last][3] = v[i][3];
      v[last][4] = v[i][4];
    } else if (++last != i) {
      std::memcpy(v[last], v[i], sizeof(double[5]));
    }
  }
  int kept = last + 1;
  // The closing test keeps the row at equality, where the inner test merges.
  if (closed && kept >= 3 &&
      square(v[kept - 1][0] - v[0][0]) + square(v[kept - 1][1] - v[0][1]) < eps)
    --kept;
  return kept;
}

int TrimLoopS(double eps, double* const pick, int* closed, int n, double (*const v)[5]) {
  if (n <= 0)
    return 0;
  if (!pick || !closed || !v)
    return n;
  try {
    return trimLoops(eps, pick, closed, n, v, nullptr);
  } catch (const std::bad_alloc&) {
    return n;
  }
}
