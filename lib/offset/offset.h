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
// n-1 back to row 0 with the bulge of row n-1. A bulge counts as zero when -eps < bulge < eps.
// Signed areas are positive for a clockwise boundary; signed distances and offsets are positive
// to the right of the direction of travel.

// ---- Vertex rows and measures ----------------------------------------------------------------

/// Signed area between the segment (x1, y1)-(x2, y2) with the given bulge and the x axis: one
/// term of a polygon's area sum (trapezoid term minus the arc's segment term).
TARNSYSM_API double LineArea(double eps, double x1, double y1, double x2, double y2, double bulge);

/// Signed area enclosed by the polyline, positive when clockwise; 0.0 for fewer than 3 rows. An
/// open polyline is closed by a straight chord from row n-1 to row 0.
TARNSYSM_API double PLineArea(double eps, int closed, int n, double (*const v)[5]);

/// 1 when p = (p[0], p[1]) lies on some segment of the polyline within eps, else 0 (also for
/// fewer than 2 rows).
TARNSYSM_API int PointsOnPLine(double eps, double* const p, int closed, int n,
                               double (*const v)[5]);

// ---- Corner joins -----------------------------------------------------------------------------

/// Join of the line P1-P2 and the line P2-P3, each moved by d (positive: to the right of travel).
TARNSYSM_API int LLOffset(double eps, double d, double x1, double y1, double x2, double y2,
                          double x3, double y3, double* ox, double* oy, double* t1, double* t2);

/// Join of the line P1-P2 and the arc P2-P3 of the given bulge, each moved by d.
TARNSYSM_API int LAOffset(double eps, double d, double x1, double y1, double x2, double y2,
                          double x3, double y3, double bulge, double* ox, double* oy, double* t1,
                          double* t2);

/// Join of the arc P1-P2 of the given bulge and the line P2-P3, each moved by d.
TARNSYSM_API int ALOffset(double eps, double d, double x1, double y1, double x2, double y2,
                          double x3, double y3, double bulge, double* ox, double* oy, double* t1,
                          double* t2);

/// Join of the arc P1-P2 (bulge1) and the arc P2-P3 (bulge2), each moved by d.
TARNSYSM_API int AAOffset(double eps, double d, double x1, double y1, double x2, double y2,
                          double x3, double y3, double bulge1, double bulge2, double* ox,
                          double* oy, double* t1, double* t2);

/// The point at parameter t of the segment P1-P2 (with bulge) moved by d.
TARNSYSM_API int GetOffsetP(double eps, double d, double t, double x1, double y1, double x2,
                            double y2, double bulge, double* ox, double* oy);

// ---- Offset driver and event solvers ------------------------------------------------------------

/// Offsets the polyline in place, by dist or through the picked point.
TARNSYSM_API int PLineOffset(double eps, int* closed, int n, double (*const v)[5], int through,
                             double* const pick, double dist);

/// Event solvers: the distance x at which the two lines and the circle, each moved by x, pass
/// through one point.
TARNSYSM_API int LLCOffset(double eps, double step, double a1, double b1, double c1, double a2,
                           double b2, double c2, double cx, double cy, double r, double* out);

/// Event solver for circle 1, a line and circle 2.
TARNSYSM_API int CLCOffset(double eps, double step, double c1x, double c1y, double r1, double a,
                           double b, double c, double c2x, double c2y, double r2, double* out);

/// Event solver for three circles.
TARNSYSM_API int CCCOffset(double eps, double step, double c1x, double c1y, double r1, double c2x,
                           double c2y, double r2, double c3x, double c3y, double r3, double* out);

// ---- Loop trimming and distances --------------------------------------------------------------

/// Removes zero-length segments (rows within sqrt(eps) of the last kept row); returns the new
/// row count.
TARNSYSM_API int TrimLoop0(double eps, int closed, int n, double (*const v)[5]);

/// Removes all self-intersection loops, keeping the piece nearest to the picked point.
TARNSYSM_API int TrimLoopS(double eps, double* const pick, int* closed, int n,
                           double (*const v)[5]);

/// Signed distance from p to the polyline into *dist.
TARNSYSM_API int PLineDist(double eps, int closed, int n, double (*const v)[5], double* const p,
                           double* dist);

/// Signed distance from p to the two-segment piece (x1, y1) - (x2, y2) - (x3, y3).
TARNSYSM_API int VertexDist(double eps, double* const p, double x1, double y1, double bulge1,
                            double x2, double y2, double bulge2, double x3, double y3,
                            double* dist);

/// 1 when the straight segment from row k to (px, py) crosses a segment not touching row k.
TARNSYSM_API int IntersPLine(double eps, int k, double px, double py, int closed, int n,
                             double (*const v)[5]);
