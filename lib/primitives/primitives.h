// Tarnsysm: planar computational geometry for 2D drafting.
// Geometric primitives: angles, arc membership, point coincidence, distances and point helpers.
#pragma once

#include "../tarnsysm_export.h"

// Conventions shared by the whole library:
//  - eps, the leading argument, is an absolute tolerance used unscaled against coordinate
//    differences, lengths and (in the angle functions) angles in radians.
//  - "zero within eps" is the closed interval -eps <= v <= eps unless a function says otherwise.
//  - Angles are radians, counter-clockwise from +x. Angles produced here lie in [-eps, 2 pi):
//    a slightly negative angle, by no more than eps, stands for 0 and is not lifted.
//  - An arc is the counter-clockwise sweep from its start angle to its end angle.

/// Direction of the vector from (x1, y1) to (x2, y2), written to *angle in [-eps, 2 pi).
/// Returns 0 and writes 0 when both coordinate differences are within eps (closed, each
/// coordinate on its own); otherwise returns 1. An atan2 result in [-eps, 0) is left negative; one
/// below -eps is lifted by a turn, and when that sum rounds to 2 pi the angle is 0 and 0 is
/// written.
TARNSYSM_API int DAngle(double eps, double x1, double y1, double x2, double y2, double* angle);

/// Reduces *angle into one turn: fmod by 2 pi, then 2 pi is added when the remainder is below
/// -eps. A value in [-eps, 0) stays negative; 2 pi becomes 0, -2 pi becomes -0, and a tiny negative
/// value whose sum with 2 pi rounds to 2 pi is the angle 0 and becomes 0, so the result is always
/// below 2 pi. A NaN stays NaN and an infinity becomes NaN.
TARNSYSM_API void fpos2pi(double eps, double* angle);

/// asin(x) for -1 < x < 1, -pi/2 for exactly -1, pi/2 for exactly 1, and 0 for anything else
/// (out of range or NaN). It does not clamp: callers clamp when rounding can leave [-1, 1].
TARNSYSM_API double arcsin(double x);

/// acos(x) for -1 < x < 1, pi for exactly -1, and 0 for anything else, including exactly 1 and
/// values a rounding step below -1.
TARNSYSM_API double arccos(double x);

/// 1 when `angle` lies on the counter-clockwise sweep from `start` to `end`, both ends included
/// with tolerance eps; else 0. end == start is an empty sweep (only angles within eps of start
/// pass); end == start + 2 pi, or more, passes every angle. The angle may be given in any turn.
/// Returns 0 when any argument is not finite.
TARNSYSM_API int ValidAngle(double eps, double start, double end, double angle);

/// 1 when the two points are closer than eps (strictly; a distance of exactly eps is not the
/// same point), else 0.
TARNSYSM_API int SamePoint(double eps, double x1, double y1, double x2, double y2);

/// Planar distance between (p[0], p[1]) and (q[0], q[1]); any third component is ignored.
TARNSYSM_API double DistBetweenPoint(double* p, double* q);
/// Planar distance between (x1, y1) and (x2, y2).
TARNSYSM_API double DistBetweenPoint(double x1, double y1, double x2, double y2);
/// Spatial distance between (x1, y1, z1) and (x2, y2, z2).
TARNSYSM_API double DistBetweenPoint(double x1, double y1, double z1, double x2, double y2,
                                     double z2);

/// Copies src[0..2] to dst[0..2].
TARNSYSM_API void Assign3DPoint(double* dst, double* src);
/// Writes dst[0] = x, dst[1] = y, dst[2] = z.
TARNSYSM_API void Assign3DPoint(double* dst, double x, double y, double z);

/// Rotates (p[0], p[1]) counter-clockwise about the origin by `angle`; p[2] is not touched.
TARNSYSM_API void RotatePoint(double angle, double* p);

/// Unit vector of the segment from (x1, y1) to (x2, y2) into *ux, *uy; returns 1. A segment
/// shorter than eps (strictly; exactly eps still has a direction), or one whose length is NaN,
/// returns 0 and leaves *ux, *uy untouched.
TARNSYSM_API int DLineUnitVector(double eps, double x1, double y1, double x2, double y2, double* ux,
                                 double* uy);

// ---- Point queries ---------------------------------------------------------------------------

/// 1 when (px, py) lies within eps of the line through the segment (exactly eps passes) and
/// inside the segment's box enlarged by eps (closed); else 0. A segment shorter than eps is a
/// point with that box.
TARNSYSM_API int DPointOnLine(double eps, double px, double py, double x1, double y1, double x2,
                              double y2);

/// 1 when (px, py) lies within eps of the circle about (cx, cy) of radius r (closed) and its
/// angle on the counter-clockwise sweep from sa to ea (ValidAngle); else 0, also for r < eps.
/// The angle's cosine is taken against r, not the point's distance.
TARNSYSM_API int DPointOnArc(double eps, double px, double py, double cx, double cy, double r,
                             double sa, double ea);

/// Foot of the perpendicular from (px, py) on the line through the segment, into *fx, *fy.
/// Returns 1 when the foot lies within the segment (eps slack at both ends, closed), 2 when
/// outside, 0 for a segment shorter than eps (outputs untouched).
TARNSYSM_API int DPointVerL(double eps, double px, double py, double x1, double y1, double x2,
                            double y2, double* fx, double* fy);

/// The point at signed distance dist from (x1, y1) towards (x2, y2), into *x, *y (dist may be
/// negative or beyond the segment). Returns 1; 0 for a segment shorter than eps (untouched).
TARNSYSM_API int DPonLdisP(double eps, double dist, double x1, double y1, double x2, double y2,
                           double* x, double* y);

/// The point at fraction k (-eps <= k <= 1 + eps) of the polyline segment from p1 to p2 with the
/// given bulge, and the direction of travel there: result[0..2] = x, y, direction. The direction
/// lies in [-eps, 2 pi) like every angle of the library: a value below -eps is lifted by whole
/// turns. Returns 1; 0 for k out of range or a chord shorter than eps (result untouched).
TARNSYSM_API int DPonPLperV(double eps, double k, double* p1, double* p2, double bulge,
                            double* result);

/// The point at fraction k of the arc about centre[0..1] of radius r swept from sa to ea, into
/// *x, *y. Returns 1; 0 for k outside [0, 1] (exact bounds; outputs untouched).
TARNSYSM_API int DPonAperK(double eps, double k, double* centre, double r, double sa, double ea,
                           double* x, double* y);

/// Point of the segment nearest to (px, py), into *nx, *ny. eps acts on the segment parameter
/// and inward: a foot within eps of an end, in parameter terms, snaps to that end. Returns 1; 0
/// for a segment shorter than eps (outputs untouched).
TARNSYSM_API int DPnearLine(double eps, double px, double py, double x1, double y1, double x2,
                            double y2, double* nx, double* ny);

/// Point of the arc about (cx, cy), radius r, swept counter-clockwise from sa to ea, nearest to
/// (px, py), into *nx, *ny: the radial projection when it falls on the arc, else the end nearer
/// by angle (a tie within eps goes to the start). Expects the arc as PL_ArcParam delivers it
/// (ea at most one turn below sa is lifted once). Returns 1; 0 when the point is within eps of
/// the centre or r < eps (outputs untouched).
TARNSYSM_API int DPnearArc(double eps, double px, double py, double cx, double cy, double r,
                           double sa, double ea, double* nx, double* ny);
