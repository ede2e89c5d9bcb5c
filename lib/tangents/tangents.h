// Tarnsysm: planar computational geometry for 2D drafting.
// Tangent and perpendicular lines: lines tangent to two circles, tangent and parallel, through a
// point, perpendicular constructions.
#pragma once

#include "../tarnsysm_export.h"

// A circle here is (cx, cy, r): centre first, unlike the circle constructions. An arc adds its
// start and end angles (the counter-clockwise sweep, as ValidAngle reads it). A constructed line
// is a pair of points, the first where the line starts (tangency point, foot or given point).
// NaN or infinity in an argument that is read gives 0 with the outputs untouched.

/// All common tangents of two circles as point pairs: pts[0], pts[1] and pts[2], pts[3] the two
/// outer tangents (tangency point on circle 1, then on circle 2); for circles apart by more than
/// eps also pts[4], pts[5] and pts[6], pts[7] the inner ones. Returns the number of lines (0, 2,
/// 4) and sets *count to the number of points (0, 4, 8); 0 when one circle lies within the other
/// or touches it from inside. Room: 8 points.
TARNSYSM_API int DTangLof2Cir(double eps, double cx1, double cy1, double r1, double cx2, double cy2,
                              double r2, double (*pts)[2], int* count);

/// The two tangents of the circle parallel to the line (x1, y1)-(x2, y2): line A from
/// (*ax1, *ay1), its tangency point left of the line's direction, to (*ax2, *ay2) = that point
/// plus the line's vector; line B the same on the right. Returns 2; 0 for a line shorter than eps
/// (outputs untouched). A vertical line (x2 == x1) gives non-finite x coordinates, as the
/// drafting host's formula does.
TARNSYSM_API int DLtangCparaL(double eps, double cx, double cy, double r, double x1, double y1,
                              double x2, double y2, double* ax1, double* ay1, double* ax2,
                              double* ay2, double* bx1, double* by1, double* bx2, double* by2);

/// Tangents from the point (px, py) to the circle. Outside: the two tangency points into
/// (*x1, *y1), then (*x2, *y2), the first right of the way from the point to the centre; returns
/// 2. On the circle within eps: a second point of the tangent at P into (*x1, *y1); returns 1.
/// Inside: 0. Outputs not reported are untouched.
TARNSYSM_API int DLthrPtangC(double eps, double cx, double cy, double r, double px, double py,
                             double* x1, double* y1, double* x2, double* y2);

/// DLthrPtangC with the tangency points kept only on the arc's sweep from a to b: 2 both, 1 one
/// (moved into (*x1, *y1); (*x2, *y2) then keeps the other), 0 none. For a point on the circle
/// the angle of the written second point is tested.
TARNSYSM_API int DLthrPtangArc(double eps, double cx, double cy, double r, double a, double b,
                               double px, double py, double* x1, double* y1, double* x2,
                               double* y2);

/// Lines perpendicular to the line (x1, y1)-(x2, y2) and tangent to the circle: pts[0] the foot
/// on the line and pts[1] the tangency point ahead along the line's direction, pts[2], pts[3]
/// the same behind; returns 2. A circle of radius below eps gives one line from the centre's foot
/// (or the line's start) to the centre, result 1. A line shorter than eps gives the tangents from
/// the point (cx, y1), as DLthrPtangC into pts[0], pts[1]. On 0 the points are untouched.
/// Room: 4 points.
TARNSYSM_API int DLperLtangC(double eps, double x1, double y1, double x2, double y2, double cx,
                             double cy, double r, double (*pts)[2]);

/// Lines perpendicular to the line through the arc's centre, ending on the arc: pts[0] the foot
/// of the centre on the line, pts[1] (and pts[2]) the points of that perpendicular on the arc, in
/// the order DArcLInts gives them; returns their number. A line shorter than eps uses the line
/// from its point through the centre instead; a point at the centre uses the vertical, upper end
/// first, a single valid end in pts[1]. A radius below eps gives one line to the centre, result 1.
/// On 0 the points are untouched. Room: 3 points.
TARNSYSM_API int DLperLperArc(double eps, double x1, double y1, double x2, double y2, double cx,
                              double cy, double r, double a, double b, double (*pts)[2]);
