// Tarnsysm: planar computational geometry for 2D drafting.
// Polyline offset: vertex rows and measures, corner joins, the offset driver and loop trimming.
#pragma once

#include "../tarnsysm_export.h"

// A polyline is an array of vertex rows, double (*)[5], row 0 first:
//   [0] x, [1] y, [2] bulge of the segment from this row to the next (0: straight),
//   [3] first caller attribute, carried through unchanged (-1.0 on rows the offset inserts),
//   [4] second caller attribute, carried through unchanged (inserted rows take it from the
//       source row at which they were inserted).
// n rows have the segments 0 .. n-2; a closed polyline (flag non-zero) has one more, from row
// n-1 back to row 0 with the bulge of row n-1. A bulge counts as zero when -eps < bulge < eps,
// and a bulge of exactly 0 whatever eps is; so does every distance this subsystem tests against
// zero (with eps = 0 only exact zeros count).
// Signed areas are positive for a clockwise boundary; signed distances and offsets are positive
// to the right of the direction of travel.
//
// Rows whose x, y or bulge is not a finite number: PLineOffset refuses them at once (returns 0,
// rows untouched). The other functions run to the end on them: a segment with such a row never
// crosses, blocks a sight line or holds a point, TrimLoop0 merges no such row, a three-row piece
// through one gives no distance (PLineDist answers from the other pieces), and areas come out
// NaN. A picked point that is not finite has no distance from anything, so TrimLoopS cuts every
// loop it finds and keeps none of them.

// ---- Vertex rows and measures ----------------------------------------------------------------

/// Signed area between the segment (x1, y1)-(x2, y2) and the x axis: one term of a boundary's
/// area sum, positive for the edges of a clockwise boundary. The straight part is the trapezoid
/// (y1 + y2)*(x2 - x1)/2; an arc (bulge outside (-eps, eps), and not exactly 0) subtracts its
/// circular segment (theta - sin theta)*R^2/2, theta = 4*atan(bulge), which carries theta's sign:
/// a positive bulge bows to the right of travel. Never fails; an input that is not finite gives
/// NaN.
TARNSYSM_API double LineArea(double eps, double x1, double y1, double x2, double y2, double bulge);

/// Signed area enclosed by the polyline v[0 .. n-1]: positive when it runs clockwise, negative
/// when counter-clockwise; reversing the rows negates it. Arc edges count with their circular
/// segments as in LineArea, so a positive bulge on a clockwise boundary bows inwards and makes
/// the area smaller. An open polyline is closed by a straight chord from row n-1 to row 0 (the
/// bulge of its last row is ignored). Returns 0.0 for n < 3, even for a closed pair of arcs, and
/// NaN when a coordinate or a bulge it uses is not finite. Reads n rows; writes nothing.
TARNSYSM_API double PLineArea(double eps, int closed, int n, double (*const v)[5]);

/// 1 when p = (p[0], p[1]) lies on some segment of the polyline, else 0 (also for n < 2). A
/// straight segment takes p when its parameter along the segment is within [-eps, 1 + eps] (eps
/// in parameter units, whatever the length) and its perpendicular distance is strictly below
/// eps (or exactly 0); a segment shorter than eps never matches. An arc takes p when its angle is
/// on the sweep (ValidAngle) and its distance from the circle is strictly below eps (or exactly
/// 0). The closing segment is
/// tested only when closed is non-zero. Reads n rows; writes nothing.
TARNSYSM_API int PointsOnPLine(double eps, double* const p, int closed, int n,
                               double (*const v)[5]);

// ---- Corner joins -----------------------------------------------------------------------------
//
// The corner P1 -> P2 -> P3 has a first segment P1-P2 and a second segment P2-P3. Each is moved
// by d to the right of its travel: a line by (d/L)*(dy, -dx), an arc about the same centre to
// the radius R' = R + d for a positive bulge, R - d for a negative one. A bulge counts as zero
// when -eps < bulge < eps; a line is degenerate when its squared length is below eps^2, an arc
// when PL_ArcParam fails. t1 and t2 are the join's parameters on the moved first and second
// segment: 0 at its start, 1 at its end (an arc's fraction of its sweep in travel order). t1 > 1
// or t2 < 0: the moved segments had to be extended to meet; t1 < 0 or t2 > 1: a moved segment
// has vanished.
//
// Result codes of the four joins, and what they write to *ox, *oy, *t1, *t2:
//    1  the moved segments meet (AAOffset also: concentric arcs turning the same way, at P2
//       moved onto the first arc's moved circle, t1 = 1, t2 = 0): join point, t1, t2
//    2  LLOffset only, collinear lines going on the same way: P2 moved along their common
//       normal, t1 = 1, t2 = 0
//    0  the moved segments do not meet: nothing written
//   -1  only the first segment is degenerate (not LLOffset): P2 moved as a point of the second
//       segment, t1 = 1, t2 = 0
//   -2  only the second segment is degenerate; LLOffset also for a degenerate first line: P2
//       moved as a point of the other segment, t1 = 1, t2 = 0
//   -3  both segments are degenerate: nothing written
// "P2 moved as a point" of a line is P2 + (d/L)*(dy, -dx), of an arc C + (P2 - C)*R'/R.

/// Join of the line P1-P2 and the line P2-P3, each moved by d. Returns 1 where the moved lines
/// cross (the lines count as parallel when the cross product of the unnormalised directions is
/// strictly within eps), 2 for a straight continuation, 0 when the path turns back on itself,
/// -2 when either line is degenerate, -3 when both are. Outputs untouched on 0 and -3.
TARNSYSM_API int LLOffset(double eps, double d, double x1, double y1, double x2, double y2,
                          double x3, double y3, double* ox, double* oy, double* t1, double* t2);

/// Join of the line P1-P2 and the arc P2-P3 of the given bulge (LLOffset for a zero bulge). The
/// moved line meets the moved circle on the same branch (entry or exit point along the line) on
/// which P2 lies; when the line touches the arc at P2 the branch follows the sign of the cross
/// product (P2 - P1) x (P3 - P2) times the bulge, and a value within [-eps, eps] gives 0. Also 0
/// when P2 is not where the line meets the circle or the moved line misses the moved circle.
/// -1 for a degenerate line, -2 for a degenerate arc, -3 for both. Outputs untouched on 0, -3.
TARNSYSM_API int LAOffset(double eps, double d, double x1, double y1, double x2, double y2,
                          double x3, double y3, double bulge, double* ox, double* oy, double* t1,
                          double* t2);

/// Join of the arc P1-P2 of the given bulge and the line P2-P3: the mirror of LAOffset (LLOffset
/// for a zero bulge; a touching line takes its branch from (P3 - P2) x (P2 - P1) times the
/// bulge). -1 for a degenerate arc, -2 for a degenerate line, -3 for both. Outputs untouched on
/// 0 and -3.
TARNSYSM_API int ALOffset(double eps, double d, double x1, double y1, double x2, double y2,
                          double x3, double y3, double bulge, double* ox, double* oy, double* t1,
                          double* t2);

/// Join of the arc P1-P2 (bulge1) and the arc P2-P3 (bulge2). A zero bulge1 hands over to
/// LAOffset with bulge2, otherwise a zero bulge2 to ALOffset with bulge1. The moved circles are
/// intersected with D2CirInts; of two points the one on P2's side of the line through both
/// centres is taken. Returns 1 (also for concentric arcs turning the same way), 0 when the moved
/// circles do not meet or concentric arcs turn opposite ways, -1/-2/-3 for a degenerate first,
/// second or both arcs. Outputs untouched on 0 and -3.
TARNSYSM_API int AAOffset(double eps, double d, double x1, double y1, double x2, double y2,
                          double x3, double y3, double bulge1, double bulge2, double* ox,
                          double* oy, double* t1, double* t2);

/// The point at parameter t of the segment P1-P2 (with bulge) moved by d: a line's point is
/// P1 + (d/L)*(dy, -dx) + t*(dx, dy); an arc's is at the angle start + t*(end - start) (travel
/// order) on the moved circle, or the centre itself when the moved radius R' is within
/// [-eps, eps). Returns 1 when it wrote (*ox, *oy); 0, writing nothing, for a degenerate segment
/// (squared chord below eps^2, or PL_ArcParam fails) or a moved radius below -eps.
TARNSYSM_API int GetOffsetP(double eps, double d, double t, double x1, double y1, double x2,
                            double y2, double bulge, double* ox, double* oy);

// ---- Offset driver and event solvers ------------------------------------------------------------

/// Offsets the polyline v (n rows, closed flag *closed) in place, keeping lines straight and arcs
/// concentric, and removes the loops the offset makes, keeping the piece nearest the picked
/// point pick = (pick[0], pick[1]). The side comes from the picked point (positive distances lie
/// to the right of travel); with `through` non-zero the offset passes through the point and dist
/// is ignored, otherwise it moves |dist|. The offset advances in steps, none longer than the
/// distance at which a segment would shrink to a point or an arc to its centre, and trims after
/// each step. A closed polyline of two rows with an arc steps only as far as its two moved
/// segments still meet (moved circles tangent, or the moved line tangent to the moved circle);
/// distance left after that step means it has collapsed. The trimming of a step (unlike
/// TrimLoopS called on its own) never keeps a closed loop whose signed area has the opposite
/// sign of the polyline the step started from: such a loop is a piece turned inside out, not a
/// part of the offset.
///
/// Before it returns, the result is checked against the polyline as trimmed on entry, with exact
/// line and arc distances: it must come no nearer to it than |distance| - eps anywhere, reach
/// |distance| + eps somewhere, and, both being closed, run the same way round (signed areas of
/// the same sign). Where it does not, the offset cannot be made with sharp corners, and the
/// result is 0.
///
/// Room: v must hold 2n rows. Each step writes the moved rows from row 0 up while reading a copy
/// of the current rows kept at the top of those 2n rows; rows beyond the result are scratch.
/// Nothing is written past row 2n - 1, and a step whose rows and copy would not both fit (half
/// circles that bridge corners add rows, and later steps add more) makes the call return 0.
///
/// Returns the row count of the result (2 or more), or 0 when the offset cannot be made: the
/// picked point lies on the polyline (within eps) or its distance cannot be measured, the
/// polyline collapses, a two-row polyline would need more than one step, a step would not fit,
/// the distance to go is not finite, more than 4n + 256 steps would be needed, the final check
/// fails (the offset cannot be made with sharp corners), or memory for the copy that the check
/// reads runs out. On 0 the rows are left as the last step left them: keep a copy. Returns 0 at
/// once, rows untouched, for n < 1, a null pointer, an x, y or bulge that is not finite, a picked
/// point that is not finite, or (when `through` is 0) a distance that is not finite. A non-zero
/// *closed is set to 1 on every call, these included; trimming may set it to 1 when a loop is
/// kept, and a closed result of two straight rows is returned open.
TARNSYSM_API int PLineOffset(double eps, int* closed, int n, double (*const v)[5], int through,
                             double* const pick, double dist);

// The event solvers find the distance x at which three elements, each moved by x, pass through
// one point: a line is its unit normal and constant (a, b, c), the signed distance of (X, Y)
// being a X + b Y + c; a circle is its centre and a signed radius r (negated for a clockwise
// arc), at distance r + x when moved. The roots of the resulting quadratic are taken in the
// solver's order; a root counts when step * x >= eps and |x| < |*out| - eps, and the smallest
// such root wins (the earlier on a tie). Each writes *out = step first, so *out holds step on
// every 0 result, parallel or degenerate configurations included.

/// Event of two lines and a circle. Returns 1 and the event distance in *out, or 0.
TARNSYSM_API int LLCOffset(double eps, double step, double a1, double b1, double c1, double a2,
                           double b2, double c2, double cx, double cy, double r, double* out);

/// Event of circle 1, a line and circle 2 (the quadratic is taken with circle 2). Returns 1 and
/// the event distance in *out, or 0.
TARNSYSM_API int CLCOffset(double eps, double step, double c1x, double c1y, double r1, double a,
                           double b, double c, double c2x, double c2y, double r2, double* out);

/// Event of three circles (circles 1 and 2 each against circle 3). Returns 1 and the event
/// distance in *out, or 0.
TARNSYSM_API int CCCOffset(double eps, double step, double c1x, double c1y, double r1, double c2x,
                           double c2y, double r2, double c3x, double c3y, double r3, double* out);

// ---- Loop trimming and distances --------------------------------------------------------------

/// Removes zero-length segments in place: a row whose squared distance from the last kept row
/// is at most eps (rows within sqrt(eps)) merges into it, the kept row taking the later row's
/// bulge and attributes; a closed polyline of at least three kept rows also loses its last row
/// when that lies closer than that to row 0 (strictly: the closing test keeps the row at
/// equality). Returns the new row count; fewer than 2 rows are returned as they are (a negative
/// count as 0).
TARNSYSM_API int TrimLoop0(double eps, int closed, int n, double (*const v)[5]);

/// Removes every self-intersection loop in place, keeping the piece nearest to the picked point
/// pick: each segment is tested against the earlier ones, nearest first, and the first crossing
/// cuts a loop out. Segments that share a row (i - 1 and i, and on a closed polyline the closing
/// segment and segment 0, which share row 0) cut a loop only where they meet a second time; of
/// their two points the one farther from the shared row is cut (for the closing segment, the
/// one farther from row 0 along segment 0). A simple closed polygon comes back as itself. A loop
/// the picked point lies on is returned at once; otherwise the remaining polyline is kept unless a
/// loop lies strictly nearer (by PLineDist), in which case that loop is returned. A returned loop
/// sets *closed to 1. Rows are only ever removed or cut: the result has at most n rows, none
/// written beyond row n - 1. A cut row takes the attributes of the row that ends the loop; rows
/// inside a returned loop keep theirs. Straight segments cross an arc only where the crossing lies
/// on the arc and within the straight segment. Returns the new row count (0 for n <= 0). If memory
/// runs out, the rows and *closed are left untouched and n is returned.
TARNSYSM_API int TrimLoopS(double eps, double* const pick, int* closed, int n,
                           double (*const v)[5]);

/// Signed distance from p = (p[0], p[1]) to the polyline into *dist, positive to the right of
/// travel: the smallest distance by which some three-row piece (VertexDist) must be offset to
/// pass through p, counting only pieces whose middle row p can see (IntersPLine); a single open
/// segment gives its perpendicular or radial distance. Returns 1, or 0 with *dist untouched for
/// fewer than 2 rows, a single degenerate segment, or no visible piece. Each piece is offset in
/// one step by one of its candidate distances (VertexDist), so a point farther out than a concave
/// arc of every piece near it can shrink (farther than the arc's radius, where the moved arc
/// would turn inside out) may have no distance at all, though every corner sees it.
TARNSYSM_API int PLineDist(double eps, int closed, int n, double (*const v)[5], double* const p,
                           double* dist);

/// Signed distance from p to the two-segment piece (x1, y1) - (x2, y2) - (x3, y3) with the bulges
/// of its two segments: tries the distance to the first segment's line or circle, then to the
/// second's, then the distance to the middle row, and returns 1 with the first that puts p on the
/// piece offset by it (an arc's distance is (|p - C| - R) * sign(bulge)). Returns 0, *dist
/// untouched, when none does.
TARNSYSM_API int VertexDist(double eps, double* const p, double x1, double y1, double bulge1,
                            double x2, double y2, double bulge2, double x3, double y3,
                            double* dist);

/// 1 when the straight segment from row k to (px, py) crosses a segment of the polyline that does
/// not touch row k (the closing segment touches row 0): within both segments for a line, on the
/// arc and within the sight segment for an arc. 0 otherwise, and for k outside 0 .. n-1.
TARNSYSM_API int IntersPLine(double eps, int k, double px, double py, int closed, int n,
                             double (*const v)[5]);

// ---- Round-corner offset ----------------------------------------------------------------------
//
// The exact offset of a polyline at a distance: the boundary of the set of points at distance
// exactly |dist| from the polyline on the chosen side. Lines stay lines and arcs stay concentric
// arcs; wherever moved neighbours pull apart the corner becomes an arc of radius |dist| about the
// shared vertex (a round corner); an arc moved past its centre leaves nothing. Where the offset
// splits, every loop is returned. A loop runs the way its source runs: a closed input gives
// closed loops that run the same way round as the input (holes that an outward offset encloses
// run the other way, as boundaries of the same region do); an open input gives open pieces in the
// direction of travel, and closed loops where the offset closes on itself.
//
// Attributes: a row that starts a piece of a moved source segment keeps fields 3 and 4 of that
// segment's start row; a row that starts a round corner (or, with the row that ends an open
// piece inside a segment, a point cut by the trimming) takes -1.0 in field 3 and field 4 of the
// source row at whose vertex or segment it lies. The last row of an open piece that ends where
// the input ends keeps fields 3 and 4 of the input's last row.
//
// Tolerances: rows closer than eps merge into one that keeps the later row's bulge and
// attributes (the segment that leaves the point is the later row's), and for a closed polyline
// last rows closer than eps to the first are dropped; a bulge within (-eps, eps) is straight; a
// point of the offset counts as too near the input when it is nearer than |dist| - tol, where tol
// is eps raised to 1e-12 of the drawing's extent (its coordinates, its arcs' radii and |dist|)
// where that is larger, so round-off alone never drops a piece, and lowered to |dist|/2 where that
// is smaller. Crossings closer than tol along the offset count as one.
//
// Bad input gives 0: n < 1, null rows, eps negative or not finite, a non-finite coordinate or
// bulge among the n rows (fields 3 and 4 may hold anything), dist not finite, |dist| < eps or
// |dist| >= 1e100 (as for the rows, whose squares must stay finite), fewer than two distinct
// vertices. Memory exhaustion also gives 0. v is only read.

/// Every loop of the offset of the polyline v (n rows, closed when `closed` is non-zero) at the
/// signed distance dist (positive: right of travel). Rows of loop k are out[loopStart[k]] up to
/// the next loop's start (the last loop's up to the result - 1); loopClosed[k] is 1 for a closed
/// loop, 0 for an open piece (open input only). Loops are ordered by where they start along the
/// input; a closed loop starts at its piece that comes first along the input.
///
/// Returns the total number of rows written and sets *loopCount. Returns 0 with *loopCount = 0
/// when the offset is empty (the polyline collapses) or the input is bad (see above). When
/// outRoom rows or loopRoom loops are too few, returns -(rows needed) with *loopCount = loops
/// needed and writes nothing else (out may then be null with outRoom 0, loopStart and loopClosed
/// null with loopRoom 0: a query of the room).
TARNSYSM_API int PLineOffsetRound(double eps, int closed, int n, double (*const v)[5], double dist,
                                  double (*out)[5], int outRoom, int* loopStart, int* loopClosed,
                                  int loopRoom, int* loopCount);

/// The loop of the round-corner offset nearest to the picked point pick = (pick[0], pick[1]). The
/// side comes from the picked point's signed distance by PLineDist, as PLineOffset takes it: with
/// `through` non-zero the offset passes through the point and dist is ignored, otherwise it
/// moves |dist| to the picked side. Of the loops of PLineOffsetRound the one nearest the picked
/// point (the first on a tie) is written to out, and *outClosed says whether it is closed.
///
/// Returns its row count; 0 when there is none (the picked point lies on the polyline within
/// eps, its distance cannot be measured, the offset is empty or the input is bad), out and
/// *outClosed untouched; -(rows needed) when outRoom is too small, out and *outClosed untouched.
TARNSYSM_API int PLineOffsetRoundPick(double eps, int closed, int n, double (*const v)[5],
                                      int through, double* const pick, double dist,
                                      double (*out)[5], int outRoom, int* outClosed);
