// Tarnsysm: planar computational geometry for 2D drafting.
// Arc construction: bulge segments as arcs, arc extents, and arcs from drafting input sets.
#pragma once

#include "../tarnsysm_export.h"

// A bulge is tan(included angle / 4) of a polyline arc segment: positive for a counter-clockwise
// turn from the segment's start vertex to its end vertex, 0 (within eps) for a straight segment,
// +-1 for a half circle, beyond +-1 for more than a half circle.

/// Circle of the bulge segment from (x1, y1) to (x2, y2): centre, radius and the angles sa, ea
/// of the counter-clockwise sweep that covers it, with ea >= sa - eps (ea may exceed 2 pi). For a
/// clockwise bulge the angles are swapped (sa belongs to the end vertex): keep the bulge's sign to
/// know the direction. Returns 1; a chord shorter than eps or a bulge whose half-angle sine is
/// within eps of 0 returns 0 and writes cx = x1, cy = y1, r = sa = ea = 0 (treat it as straight).
TARNSYSM_API int PL_ArcParam(double eps, double x1, double y1, double x2, double y2, double bulge,
                             double* cx, double* cy, double* r, double* sa, double* ea);

/// Axis-aligned extents of the counter-clockwise arc about centre[0..1] with radius r from sa to
/// ea (ea >= sa, as PL_ArcParam delivers). Quadrant points within eps of the start angle are
/// never added; the end point widens the box to one side only. Always writes all four outputs.
TARNSYSM_API void get_arc_box(double eps, double* centre, double r, double sa, double ea,
                              double* xmin, double* ymin, double* xmax, double* ymax);
