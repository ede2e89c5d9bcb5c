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
