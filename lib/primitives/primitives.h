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
/// coordinate on its own); otherwise returns 1. An atan2 result in [-eps, 0) is left negative.
TARNSYSM_API int DAngle(double eps, double x1, double y1, double x2, double y2, double* angle);

/// Reduces *angle into one turn: fmod by 2 pi, then 2 pi is added when the remainder is below
/// -eps. A value in [-eps, 0) stays negative; 2 pi becomes 0, -2 pi becomes -0. A NaN stays NaN
/// and an infinity becomes NaN.
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
