// Tarnsysm: planar computational geometry for 2D drafting.
// Dimension helpers: points, angles, coordinate changes and text extents for laying out dimensions.
#pragma once

#include "../tarnsysm_export.h"

// Points are pointers to two doubles (x, y); angles are radians, counter-clockwise from +x.

/// *out = cos(a) (p2.x - p1.x) + sin(a) (p2.y - p1.y): the signed distance from p1 to p2 measured
/// along the direction a. The first argument is not read.
TARNSYSM_API void DIM_DisAng2P(double unused, double* p1, double* p2, double a, double* out);

/// The diameter of the circle (cx, cy, r) through the direction of (px, py) (DAngle from the
/// centre, 0 when they coincide within eps): (x1, y1) = centre - r (cos t, sin t), away from P, and
/// (x2, y2) = centre + r (cos t, sin t), towards it. Returns 1.
TARNSYSM_API int DIM_GetCirDiaPt(double eps, double cx, double cy, double px, double py, double r,
                                 double* x1, double* y1, double* x2, double* y2);

/// With X = p + o: q = (X.x cos a + X.y sin a, X.y cos a - X.x sin a). Returns 1. Not the inverse
/// of DIM_WcToUc, which takes X = p - o: both rotate by -a.
TARNSYSM_API int DIM_UcToWc(double* o, double a, double* p, double* q);

/// With X = p - o: q = (X.x cos a + X.y sin a, X.y cos a - X.x sin a). Returns 1.
TARNSYSM_API int DIM_WcToUc(double* o, double a, double* p, double* q);

/// Half-length of a w by h text box along the direction a: w/2 along the text, h/2 across it,
/// else the half-length to the box's edge. With a non-zero flag the result becomes 0 (still
/// returning 1) unless the box's projected half-extent, less eps, reaches `limit`. Returns 0 with
/// *out = 0 when w or h is below eps, else 1.
TARNSYSM_API int DIM_GetTxtEfctLen(unsigned char flag, double eps, double w, double h, double a,
                                   double limit, double* out);

/// Perpendicular distance from (px, py) to the line through (x1, y1) and (x2, y2) into *out; a
/// line shorter than eps measures to its second point. Returns 1.
TARNSYSM_API int DIM_PToLineDis1(double eps, double px, double py, double x1, double y1, double x2,
                                 double y2, double* out);

/// Distance from (px, py) to the line through (x0, y0) with unit direction (ux, uy), and the foot
/// of the perpendicular. Returns 1. The root is not guarded: when rounding makes the foot distance
/// exceed the point distance, *distance is NaN.
TARNSYSM_API int DIM_PToLineDis2(double px, double py, double x0, double y0, double ux, double uy,
                                 double* distance, double* footX, double* footY);

/// Angular dimension between the line p1-p2 and the line p3-p4, placed through the picked point
/// q. Of the four wedges that the lines' rays from their crossing (written to vertex) make, the arc
/// spans the one containing q: it starts on the ray met first turning clockwise from q (q on a
/// ray: that ray) and ends on the next ray counter-clockwise, an included angle in (0, pi).
/// Writes radius = |q - vertex|, start in [0, 2 pi), end = start + included (less 2 pi when above
/// 2 pi), mid = the mean of start and the unreduced end (it may exceed 2 pi), and the arc's end
/// points startPt and endPt (two doubles each, from the unreduced angles). The result depends only
/// on the lines and q, not on the order of lines or points. Returns 1, or 0 with nothing written
/// for a line shorter than eps, parallel lines, or q within eps of the vertex.
TARNSYSM_API int DIM_ArcCal(double eps, double* p1, double* p2, double* p3, double* p4, double* q,
                            double* radius, double* vertex, double* start, double* mid, double* end,
                            double* startPt, double* endPt);
