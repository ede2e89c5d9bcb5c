// Tarnsysm: planar computational geometry for 2D drafting.
// Circle constructions: circles through points, of a given radius, tangent to and perpendicular to
// circles, lines and points, chosen by pick points; fitted circles.
#pragma once

#include "../tarnsysm_export.h"

// Conventions of the circle constructions:
//  - A circle argument is (r, cx, cy): radius first. A line is (x1, y1, x2, y2), unbounded; its
//    normal is (y2 - y1, x1 - x2), so a positive signed distance lies right of the direction.
//  - Each picked object is preceded by its pick point (px, py). Picks never change the geometry:
//    of the candidate circles, the one whose tangency points lie best in the directions of the
//    picks is returned; of scores within eps the earlier candidate in the stated order wins.
//  - Results are 1 (found) or 0. On 0 the outputs are left untouched, except where stated.
//  - NaN or infinity in any argument that is read gives 0; a result is never non-finite.
//  - Work is done about the first object, so far-away drawings lose no accuracy.

// ---- Circles through points and with a given radius ------------------------------------------

/// The circle with the segment (x1, y1)-(x2, y2) as diameter into *cx, *cy, *r; returns 1.
/// Coincident points (half distance below eps) return 0 with the midpoint already written to
/// *cx, *cy and *r untouched.
TARNSYSM_API int DGetPPCircle(double eps, double x1, double y1, double x2, double y2, double* cx,
                              double* cy, double* r);

/// The circle through three points into *cx, *cy, *r; returns 1. Returns 0 (outputs untouched)
/// when point 2 or 3 lies within eps of point 1 or the three are collinear (the determinant of
/// the two chords, an area, within eps, open).
TARNSYSM_API int DGetPPPCircle(double eps, double x1, double y1, double x2, double y2, double x3,
                               double y3, double* cx, double* cy, double* r);

/// Centre of a circle of radius R tangent to two circles (outer or inner tangency, R smaller
/// than both radii included), chosen by the picks, into *cx, *cy; returns 1. Candidates in the
/// order of the signed-radius pairs (-r1, -r2), (-r1, +r2), (+r1, -r2), (+r1, +r2), two each.
/// Returns 0 for centres closer than eps / 2 (concentric) or no candidate; outputs untouched.
TARNSYSM_API int DGetCCRCircle(double eps, double px1, double py1, double r1, double cx1,
                               double cy1, double px2, double py2, double r2, double cx2,
                               double cy2, double R, double* cx, double* cy);

/// Centre of a circle of radius R tangent to a circle and a line, into *cx, *cy; returns 1.
/// Only the circle's pick (px, py) chooses; the line's pick (qx, qy) is not read, so between the
/// line's sides ties go to the earlier candidate. Returns 0 for a line shorter than eps or no
/// candidate; outputs untouched.
TARNSYSM_API int DGetCLRCircle(double eps, double px, double py, double r, double cx, double cy,
                               double qx, double qy, double x1, double y1, double x2, double y2,
                               double R, double* ocx, double* ocy);

/// Centre of a circle of radius R tangent to two lines, chosen by both picks, into *cx, *cy;
/// returns 1. Returns 0 for a line shorter than eps or parallel lines (sine of the angle within
/// eps, open); outputs untouched.
TARNSYSM_API int DGetLLRCircle(double eps, double px1, double py1, double x1, double y1, double x2,
                               double y2, double px2, double py2, double x3, double y3, double x4,
                               double y4, double R, double* cx, double* cy);

/// A common tangent of two circles: its tangency points on circle 1 into (*x1, *y1) and on
/// circle 2 into (*x2, *y2); returns 1. Of the outer tangents and (for circles apart by more
/// than eps) the inner ones, the one whose points are nearest the picks (sum of squared
/// distances) is chosen. Returns 0 when one circle lies within the other or touches it from
/// inside within eps; outputs untouched.
TARNSYSM_API int DGetCCTanLine(double eps, double px1, double py1, double r1, double cx1,
                               double cy1, double px2, double py2, double r2, double cx2,
                               double cy2, double* x1, double* y1, double* x2, double* y2);

// ---- Circles whose centre lies on a line (perpendicular to it) -------------------------------
// The centre line's own pick is never read. Each writes *cx, *cy, *r and returns 1, or returns
// 0 with the outputs untouched for a line shorter than eps or when no circle exists.

/// Centre on the line, tangent to circles 1 and 2 (inner or outer each), chosen by picks 1, 2.
TARNSYSM_API int DGetCCLPerCircle(double eps, double px1, double py1, double r1, double cx1,
                                  double cy1, double px2, double py2, double r2, double cx2,
                                  double cy2, double px3, double py3, double x1, double y1,
                                  double x2, double y2, double* cx, double* cy, double* r);

/// Centre on line 1, tangent to line 2 and to the circle (either kind), chosen by the picks of
/// line 2 and the circle. The centre stays on the circle centre's side of line 2.
TARNSYSM_API int DGetLLCPerCircle(double eps, double px1, double py1, double x1, double y1,
                                  double x2, double y2, double px2, double py2, double x3,
                                  double y3, double x4, double y4, double px3, double py3, double r,
                                  double ccx, double ccy, double* cx, double* cy, double* r_out);

/// Centre on line 1, tangent to line 2 and through the point (x, y), chosen by line 2's pick.
TARNSYSM_API int DGetLLPPerCircle(double eps, double px1, double py1, double x1, double y1,
                                  double x2, double y2, double px2, double py2, double x3,
                                  double y3, double x4, double y4, double x, double y, double* cx,
                                  double* cy, double* r);

/// Centre on the line, tangent to the circle and through the point (x, y), chosen by the
/// circle's pick.
TARNSYSM_API int DGetCLPPerCircle(double eps, double px, double py, double r, double ccx,
                                  double ccy, double qx, double qy, double x1, double y1, double x2,
                                  double y2, double x, double y, double* cx, double* cy,
                                  double* r_out);

/// Centre on line 1, tangent to lines 2 and 3, chosen by their picks; candidates are visited by
/// ascending radius, so of scores within eps the smaller circle wins.
TARNSYSM_API int DGetLLLPerCircle(double eps, double px1, double py1, double x1, double y1,
                                  double x2, double y2, double px2, double py2, double x3,
                                  double y3, double x4, double y4, double px3, double py3,
                                  double x5, double y5, double x6, double y6, double* cx,
                                  double* cy, double* r);

/// Centre on the line (x3, y3)-(x4, y4), through both points: the one solution. When the line is
/// the points' bisector, the smallest such circle (centre at the midpoint). Returns 0 when the
/// line (eps^2 >= its squared length) is too short or runs parallel to the bisector elsewhere.
TARNSYSM_API int DGetPPLPerCircle(double eps, double x1, double y1, double x2, double y2, double qx,
                                  double qy, double x3, double y3, double x4, double y4, double* cx,
                                  double* cy, double* r);

// ---- Tangent circles ---------------------------------------------------------------------------
// Each writes *cx, *cy, *r and returns 1, or returns 0 with the outputs untouched when no
// circle exists (including lines shorter than eps and coincident circles or points). Every
// geometric solution is a candidate, so picks can select each. The three-object forms with
// circles and lines cut each object at its intersections with the others and prefer candidates
// whose tangency points fall on the picked piece, then the best pick score.

/// Tangent to three circles (all eight inner/outer combinations).
TARNSYSM_API int DGetCCCTanCircle(double eps, double px1, double py1, double r1, double cx1,
                                  double cy1, double px2, double py2, double r2, double cx2,
                                  double cy2, double px3, double py3, double r3, double cx3,
                                  double cy3, double* cx, double* cy, double* r);

/// Tangent to two circles and a line.
TARNSYSM_API int DGetCCLTanCircle(double eps, double px1, double py1, double r1, double cx1,
                                  double cy1, double px2, double py2, double r2, double cx2,
                                  double cy2, double px3, double py3, double x1, double y1,
                                  double x2, double y2, double* cx, double* cy, double* r);

/// Tangent to two circles and through the point (x, y), chosen by the circle picks.
TARNSYSM_API int DGetCCPTanCircle(double eps, double px1, double py1, double r1, double cx1,
                                  double cy1, double px2, double py2, double r2, double cx2,
                                  double cy2, double x, double y, double* cx, double* cy,
                                  double* r);

/// Tangent to two lines and a circle.
TARNSYSM_API int DGetLLCTanCircle(double eps, double px1, double py1, double x1, double y1,
                                  double x2, double y2, double px2, double py2, double x3,
                                  double y3, double x4, double y4, double px3, double py3, double r,
                                  double ccx, double ccy, double* cx, double* cy, double* r_out);

/// Tangent to three lines (the incircle and the three excircles of their triangle), chosen by
/// the line picks.
TARNSYSM_API int DGetLLLTanCircle(double eps, double px1, double py1, double x1, double y1,
                                  double x2, double y2, double px2, double py2, double x3,
                                  double y3, double x4, double y4, double px3, double py3,
                                  double x5, double y5, double x6, double y6, double* cx,
                                  double* cy, double* r);

/// Tangent to two lines, through the point (x, y), on the point's side of each line.
TARNSYSM_API int DGetLLPTanCircle(double eps, double px1, double py1, double x1, double y1,
                                  double x2, double y2, double px2, double py2, double x3,
                                  double y3, double x4, double y4, double x, double y, double* cx,
                                  double* cy, double* r);

/// Through two points, tangent to the line on point 1's side, chosen by the line's pick;
/// candidates by ascending radius, so of scores within eps the smaller circle wins.
TARNSYSM_API int DGetPPLTanCircle(double eps, double x1, double y1, double x2, double y2, double px,
                                  double py, double lx1, double ly1, double lx2, double ly2,
                                  double* cx, double* cy, double* r);

/// Through two points, tangent to the circle, chosen by the circle's pick.
TARNSYSM_API int DGetPPCTanCircle(double eps, double x1, double y1, double x2, double y2, double px,
                                  double py, double rc, double ccx, double ccy, double* cx,
                                  double* cy, double* r);

/// Tangent to the circle and to the line on the point's side, through the point; chosen by the
/// circle's pick alone (the line's pick is not read), candidates by ascending radius.
TARNSYSM_API int DGetCLPTanCircle(double eps, double px1, double py1, double rc, double ccx,
                                  double ccy, double px2, double py2, double x1, double y1,
                                  double x2, double y2, double x, double y, double* cx, double* cy,
                                  double* r);

/// Tangent to two circles with its centre on the line through their centres: as
/// DGetCCLPerCircle with that line.
TARNSYSM_API int DGetCCTanCircle(double eps, double px1, double py1, double r1, double cx1,
                                 double cy1, double px2, double py2, double r2, double cx2,
                                 double cy2, double* cx, double* cy, double* r);

/// Tangent to the circle and the line with its centre on the perpendicular from the circle's
/// centre to the line: as DGetLLCPerCircle with that perpendicular. 0 when the centre lies on
/// the line.
TARNSYSM_API int DGetCLTanCircle(double eps, double px1, double py1, double rc, double ccx,
                                 double ccy, double px2, double py2, double x1, double y1,
                                 double x2, double y2, double* cx, double* cy, double* r);

/// Tangent to the circle and through the point, centre on the line from the circle's centre to
/// the point: as DGetCLPPerCircle with that line.
TARNSYSM_API int DGetCPTanCircle(double eps, double px, double py, double rc, double ccx,
                                 double ccy, double x, double y, double* cx, double* cy, double* r);

/// Tangent to the line and through the point, centre on the perpendicular from the point to the
/// line: as DGetLLPPerCircle with that perpendicular. 0 when the point lies on the line.
TARNSYSM_API int DGetLPTanCircle(double eps, double px, double py, double x1, double y1, double x2,
                                 double y2, double x, double y, double* cx, double* cy, double* r);

// ---- Fitted circles ----------------------------------------------------------------------------

/// Geometric least-squares circle of n points pts[0..n-1]: minimises the sum of squared
/// distances (|p - c| - r)^2. Algorithm: shift to the centroid and scale by the RMS spread,
/// Taubin's algebraic fit from the moments (Newton on its characteristic cubic from 0), then at
/// most 20 Levenberg-Marquardt steps on (centre, radius) until the relative improvement falls
/// below 1e-12. Exact points on a circle, even a 30 degree arc, come back to within 1e-9 of r.
/// Writes the centre, the radius and the RMS residual sqrt(sum / n); returns 1. Returns 0,
/// outputs untouched, for n < 3, a null array, a non-finite coordinate, points whose RMS distance
/// from their best-fitting line is at most eps (collinear or coincident), or a fit that overflows.
/// O(n), no heap allocation; reads pts[0..n-1] only.
TARNSYSM_API int DGetNPCircle(double eps, int n, const double (*pts)[2], double* cx, double* cy,
                              double* r, double* rms);

/// Four-centre approximation of the ellipse about (cx, cy) with semi-axis a along the direction
/// `rotation` and b across it. With M >= m the semi-axes, the axis ends A (major) and B (minor)
/// are joined, E marked on AB with BE = M - m, and the bisector of AE meets the axes at the
/// centres: arcs of radius c (c - M + m) / (2 M) about the major-axis centres and
/// c (c + M - m) / (2 m) about the minor-axis ones, c = sqrt(M^2 + m^2), meeting tangentially.
/// Writes four rows arcs[k] = (centre x, centre y, radius, start, end), counter-clockwise with
/// start in [-eps, 2 pi) and end > start: row 0 passes through the end of the first axis (at
/// angle `rotation`), the others follow counter-clockwise. Returns 4. a = b (within eps) gives
/// four quarter arcs of the circle. The arcs deviate from the ellipse by at most about 2.8% of M
/// (the worst is near m / M = 0.22). Returns 0, arcs untouched, for a or b below eps or any
/// non-finite argument. Room: 4 rows.
TARNSYSM_API int DGetEllipseCircle(double eps, double cx, double cy, double a, double b,
                                   double rotation, double (*arcs)[5]);
