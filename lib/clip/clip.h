// Tarnsysm: planar computational geometry for 2D drafting.
// Polygon clipping against the four edges of a rectangle.
#pragma once

#include "../tarnsysm_export.h"

// A polygon is an array of (x, y) points closed by repeating its first point: only the edges from
// point i-1 to point i, i = 1 .. n-1, are clipped, and no closing edge is implied. Every result is
// closed the same way (no closing point is added to an empty result).
//
// A rectangle side is a code and the boundary value that goes with it; a point is inside when
//   side 0: x > value (left, x0)     side 1: y < value (top, y1)
//   side 2: x < value (right, x1)    side 3: y > value (bottom, y0)
// All four tests are strict: a point on a side is outside. Any other code has every point outside.

/// Crossing of the line through s and p with the boundary line of `side`: writes out[0], out[1]
/// and returns 1. Returns 0 with out untouched for an unknown side and whenever the component of
/// the unit direction (p - s)/|p - s| across the boundary is not above 1e-10 (an edge parallel to
/// the boundary, a zero-length edge, or one whose length overflows or is NaN).
TARNSYSM_API int CalInsertPoint(int side, double value, double* s, double* p, double* out);

/// Where the edge from s to p lies against `side`: 0 s outside and p inside, 1 both inside,
/// 2 s inside and p outside, 3 both outside (always 3 for an unknown side).
TARNSYSM_API int JudgeRelativPos(int side, double value, double* s, double* p);

/// Clips the edge from s to p against `side`, appending to out[count], out[count + 1], ... and
/// advancing count: the crossing point when the edge crosses the side, then p when p is inside.
/// At most 2 points are appended. A crossing that CalInsertPoint reports as parallel (a nearly
/// flat edge, or coordinates so large that the length overflows) is still appended, as
/// s + t (p - s) with the boundary coordinate set to `value`.
TARNSYSM_API void EdgeClipEdge(int side, double value, double* s, double* p, int& count,
                               double (*out)[2]);

/// Clips the closed-by-repetition polygon in[0 .. n-1] against `side` into out, setting count to
/// the number of points written (0 for n < 2 or an unknown side). A non-empty result is closed by
/// repeating its first point, which is the end of the first edge that reaches the inside. out
/// needs room for floor(3n/2) points; that many can be needed.
TARNSYSM_API void EdgeClipPolygon(int side, double value, int n, double (*in)[2], int& count,
                                  double (*out)[2]);

/// Clips the closed-by-repetition polygon in[0 .. n-1] against the rectangle from rect[0] (lower
/// left x0, y0) to rect[1] (upper right x1, y1): sides 0, 1, 2, 3 in turn, each pass starting its
/// ring at the end of its first edge that reaches the inside, so a polygon wholly inside comes back
/// with its ring started four points later. count receives the number of points written to out.
/// out needs room for 3n points; nothing is ever written past count. count is 0 and out untouched
/// for n < 2, for a polygon wholly outside, for a result that would need more than 3n points, and
/// when scratch memory cannot be had.
TARNSYSM_API void RectClipPolygon(double (*rect)[2], int n, double (*in)[2], int& count,
                                  double (*out)[2]);
