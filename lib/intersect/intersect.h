// Tarnsysm: planar computational geometry for 2D drafting.
// Intersections of lines, circles and circular arcs, with segment-position flags.
#pragma once

#include "../tarnsysm_export.h"

// Lines are given by two points and intersected as infinite lines; the flag bits say whether a
// written point lies within the given segment(s). Arcs are a centre, a radius and the
// counter-clockwise sweep from a start angle to an end angle. Outputs beyond the returned count
// may hold intermediate values: read only as many points as the result says.

/// Intersection of the line (x1, y1)-(x2, y2) with the line (x3, y3)-(x4, y4), into *x, *y.
/// Returns 1 for one point, 0 for parallel, coincident or degenerate lines (the determinant, an
/// area, is compared with eps unscaled). *flag is set to 0 on entry, then bit 1 when the point
/// lies on the first segment and bit 2 when on the second, with eps as a parameter tolerance
/// (closed: -eps <= t <= 1 + eps).
TARNSYSM_API int D2LInts(double eps, double x1, double y1, double x2, double y2, double x3,
                         double y3, double x4, double y4, double* x, double* y, int* flag);

/// Intersection of the line (x1, y1)-(x2, y2) with the circle about (cx, cy) of radius r.
/// Returns 2 with A in (xa, ya) and B in (xb, yb), A met first going from the first point to the
/// second; 1 for a tangent (the foot of the perpendicular, in xa, ya) or when A and B are closer
/// than eps (their midpoint in xa, ya; B stays in xb, yb); 0 for no point or a line not longer
/// than eps. A line at distance exactly r - eps from the centre meets nothing (it falls between
/// the strict tangent and secant tests). *flag is set to 0 on entry, then bit 1 when the first
/// written point lies on the segment and bit 2 when the second does (strict: -eps < p < L + eps,
/// p the distance along the line from the first point).
TARNSYSM_API int DCirLInts(double eps, double x1, double y1, double x2, double y2, double cx,
                           double cy, double r, double* xa, double* ya, double* xb, double* yb,
                           int* flag);

/// Intersection of the line (x1, y1)-(x2, y2) with the arc about (cx, cy), radius r, swept
/// counter-clockwise from sa to ea; eps also serves as the angular tolerance at the arc's ends.
/// Returns the number of points on the arc (0, 1, 2). The line-circle points are those of
/// DCirLInts; an accepted point always stands in the first slot and *flag keeps the segment bit
/// of the points kept (bit 1 for a single point), 0 when none is kept.
TARNSYSM_API int DArcLInts(double eps, double x1, double y1, double x2, double y2, double cx,
                           double cy, double r, double sa, double ea, double* xa, double* ya,
                           double* xb, double* yb, int* flag);

/// Intersection of two circles. Returns 2 with A (right of the directed line from the first
/// centre to the second) in xa, ya and B (left) in xb, yb; 1 for touching circles (the foot of
/// the common chord, in xa, ya); 0 for none, for concentric circles, for a NaN or infinite radius
/// and for circles whose radius squared is not a normal double (points, not curves). Distances are
/// compared as squares normalised by the larger radius; the squared half chord times the squared
/// centre distance is compared with eps unscaled, so small circles crossing at a clear angle may
/// count as touching.
TARNSYSM_API int D2CirInts(double eps, double x1, double y1, double r1, double x2, double y2,
                           double r2, double* xa, double* ya, double* xb, double* yb);

/// Intersection of two arcs. Returns the number of points on both arcs (0, 1, 2); when only the
/// second circle point counts it is copied to xa, ya; when only the first counts, xb, yb keep the
/// rejected point.
TARNSYSM_API int D2ArcInts(double eps, double x1, double y1, double r1, double start1, double end1,
                           double x2, double y2, double r2, double start2, double end2, double* xa,
                           double* ya, double* xb, double* yb);

// ---- Parametric line intersections ------------------------------------------------------------
// The line is a base point (x0, y0) and a direction (dx, dy), not necessarily of unit length, and
// every crossing is returned as the line parameter t of the point base + t (dx, dy); nothing is
// clipped to a piece of the line. Outputs beyond the returned count are undefined. Non-finite
// input gives 0. Arc flags describe the t of their slot: 0 an ordinary crossing, 1 or 5 the arc's
// start point lies on the line, 2 or 6 its end point, 3 the line touches. Bit value 4 (flags 5,
// 6) says that near that end the edge or arc lies to the left of the line's direction.

/// The line and the edge (x1, y1)-(x2, y2). Returns 2 when the edge lies on the line (both ends
/// within eps of it, open): t1, t2 the parameters of its first and second end, flag1 = flag2 =
/// 3. Returns 1 when one end lies on the line (flag1 1 for the first end, 2 for the second, plus
/// 4 when the other end lies left of the line's direction; t1 that end's parameter) or when the
/// line crosses the edge (flag1 0; the edge parameter may overshoot its ends by eps). Returns 0
/// for a parallel edge (cross product of the directions within eps, open) or a miss.
TARNSYSM_API int LineIntEdge(double eps, double x0, double y0, double dx, double dy, double x1,
                             double y1, double x2, double y2, double* t1, double* t2, int* flag1,
                             int* flag2);

/// The line and the circle about (cx, cy) of radius r, for a direction of unit length: the half
/// chord, a length, is added to the foot's parameter as it is. Returns 2 (t1 < t2 along the
/// direction), 1 for a tangent (the foot's parameter in t1), 0 when the line passes farther than
/// r + eps from the centre.
TARNSYSM_API int LineIntCircle(double eps, double x0, double y0, double dx, double dy, double cx,
                               double cy, double r, double* t1, double* t2);

/// LineIntCircle for a direction of any length: the half chord is divided by the direction
/// component that gave the foot's parameter (dy when |dx| < eps, else dx), so a negative
/// component puts the two parameters in descending order.
TARNSYSM_API int LineIntCircle1(double eps, double x0, double y0, double dx, double dy, double cx,
                                double cy, double r, double* t1, double* t2);

/// The line and the arc about (cx, cy), radius r, swept counter-clockwise from sa to ea, through
/// LineIntCircle (a unit direction). An arc end on the line (within eps) replaces the nearer
/// circle crossing, the start's going into t1; other crossings are kept when exactly on the sweep
/// (tolerance 0). A sweep within eps of a turn is the whole circle. Returns the number on the arc
/// (0, 1, 2); a single one stands in t1 with its flag in flag1.
TARNSYSM_API int LineIntArc(double eps, double x0, double y0, double dx, double dy, double cx,
                            double cy, double r, double sa, double ea, double* t1, double* t2,
                            int* flag1, int* flag2);

/// LineIntArc through LineIntCircle1, for a direction of any length.
TARNSYSM_API int LineIntArc1(double eps, double x0, double y0, double dx, double dy, double cx,
                             double cy, double r, double sa, double ea, double* t1, double* t2,
                             int* flag1, int* flag2);

/// The line and the whole ellipse about (cx, cy) with semi-axes a (along the first axis, at
/// angle rot) and b. Returns 2 (t1 from the +sqrt root of the quadratic in t), 1 for a tangent
/// (the discriminant within a tolerance scaled to eps as a length) or a line the quadratic
/// degenerates for, 0 for none, also when a or b is not positive.
TARNSYSM_API int LineIntEllips(double eps, double x0, double y0, double dx, double dy, double cx,
                               double cy, double a, double b, double rot, double* t1, double* t2);

/// The line and the elliptical arc whose parameters (eccentric angles, not polar angles) run
/// counter-clockwise from sa to ea, as LineIntArc does for circles. The start point replaces the
/// nearer crossing without tolerance; points are kept by their parameter on the sweep (tolerance
/// 0). The left-side bit 4 is decided with the unrotated axes, so it holds only at rot = 0.
TARNSYSM_API int LineIntEarc(double eps, double x0, double y0, double dx, double dy, double cx,
                             double cy, double a, double b, double rot, double sa, double ea,
                             double* t1, double* t2, int* flag1, int* flag2);

/// The segment (x1, y1)-(x2, y2) and the elliptical arc: the LineIntEarc crossings whose segment
/// parameter lies in (-eps, 1 + eps), as points (xa, ya) and (xb, yb); a single one stands in
/// (xa, ya). Returns 0, 1 or 2; 0 also for a segment shorter than eps.
TARNSYSM_API int DEArcLInts(double eps, double x1, double y1, double x2, double y2, double cx,
                            double cy, double a, double b, double rot, double sa, double ea,
                            double* xa, double* ya, double* xb, double* yb);
