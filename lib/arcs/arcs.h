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
/// within eps of 0 (or exactly 0, whatever eps is) returns 0 and writes cx = x1, cy = y1,
/// r = sa = ea = 0 (treat it as straight); so does input whose circle is not finite (not a
/// number, or overflowing).
TARNSYSM_API int PL_ArcParam(double eps, double x1, double y1, double x2, double y2, double bulge,
                             double* cx, double* cy, double* r, double* sa, double* ea);

/// Axis-aligned extents of the counter-clockwise arc about centre[0..1] with radius r from sa to
/// ea (ea >= sa, as PL_ArcParam delivers). Quadrant points within eps of the start angle are
/// never added; the end point widens the box to one side only. Always writes all four outputs.
TARNSYSM_API void get_arc_box(double eps, double* centre, double r, double sa, double ea,
                              double* xmin, double* ymin, double* xmax, double* ymax);

// ---- Input checks and tangent continuation -------------------------------------------------

/// Checks the input of a polyline arc construction before it is called; returns 1 valid, 0
/// invalid. The arguments after p depend on kind (points as double*, others as double):
///   2: double a, double* q  - 0 when q lies on the line through p in direction a, ahead or
///      behind (|sin(chord direction - a)| < eps);
///   6: double* q            - 0 when p and q coincide (|q - p|^2 < eps^2);
///   7: double* q, double len - 0 when p is within eps of the centre q, or the chord len is
///      longer than the diameter of the circle about q through p;
///   8: double rad, double* q - 0 when the chord p-q is longer than the diameter 2 rad (so any
///      negative rad fails);
///   9: double* q, double* w - 0 when p, q, w are collinear (twice the triangle's area within
///      eps, unscaled, formed from the differences to p: points on one line give exactly 0 even
///      far from the origin).
/// Kinds 3, 4, 5 and unknown kinds return 1 and read no further argument. Input that is not a
/// number, eps included, fails every check.
TARNSYSM_API int PL_TestVertex(int kind, double eps, double* p, ...);

/// Bulge and end direction of a new arc segment from p1 to p2 that continues the segment from p0
/// to p1 (of the given bulge) tangentially: it leaves p1 in that segment's direction of travel.
/// A previous bulge within eps of 0, or one that PL_ArcParam cannot turn into an arc, counts as
/// straight. Returns 1; returns 0 and writes nothing when p2 lies on the tangent line at p1.
TARNSYSM_API int PL_Arc_PBPP(double eps, double* p0, double bulge, double* p1, double* p2,
                             double* newBulge, double* endDir);

// ---- Arcs from drafting input --------------------------------------------------------------
// Each member writes the centre (centre[0..1]), the radius where it has one, and the angles sa,
// ea of the counter-clockwise sweep that is the arc, with ea >= sa - eps (ea may exceed 2 pi).
// When the user's arc runs clockwise from its start point, sa belongs to the end point and ea to
// the start point; the flag tells. Returns 1 when built, 0 (outputs untouched) when impossible,
// which includes every input whose arc would not be finite (not a number, or overflowing).

/// Arc from p1 through p2 to p3. flag -1: counter-clockwise, sa at p1; 1: clockwise, angles
/// swapped (sa at p3). Returns 0 when p2 or p3 is within eps of p1 or the three points are
/// collinear (twice the triangle's area within eps, open, unscaled).
TARNSYSM_API int DArcParam3P(double eps, double* p1, double* p2, double* p3, double* centre,
                             double* r, double* sa, double* ea, short* flag);

/// Arc from stp to edp with the signed included angle ina (positive counter-clockwise); the
/// sweep ea - sa is |ina|. flag -1: centre to the left of the chord from stp to edp; 1: to its
/// right. Returns 0 when the half-angle sine of ina is within eps of 0 (open).
TARNSYSM_API int DArcStpEdpIna(double eps, double* stp, double* edp, double ina, double* centre,
                               double* r, double* sa, double* ea, short* flag);

/// Arc from stp to edp leaving stp in direction dir (reduced into one turn first). flag -1:
/// counter-clockwise (centre to the left of dir); 1: clockwise. Returns 0 when edp lies straight
/// ahead or straight behind along dir (chord direction within eps of dir or dir + pi, open).
TARNSYSM_API int DArcStpEdpDir(double eps, double* stp, double* edp, double dir, double* centre,
                               double* r, double* sa, double* ea, short* flag);

/// Arc from stp leaving in direction sta and ending at edp; as DArcStpEdpDir with the arguments
/// in drafting order. Returns 0 when edp lies on the start tangent line.
TARNSYSM_API int DArcStpStaEdp(double eps, double* stp, double sta, double* edp, double* centre,
                               double* r, double* sa, double* ea, short* flag);

/// Arc from stp with the signed included angle ina (reduced by whole turns into
/// [-2 pi - eps, 2 pi + eps]), radius rad, and chord direction dir from stp to the end point.
/// flag -1 / 1: counter-clockwise / clockwise up to a half circle; -2 / 2: more than a half
/// circle. sa is in [-eps, 2 pi) for counter-clockwise arcs; for clockwise ones ea is the start
/// point's angle, raised until sa >= -eps. Returns 1 for any finite arc.
TARNSYSM_API int DArcStpInaRadDir(double eps, double* stp, double ina, double rad, double dir,
                                  double* centre, double* sa, double* ea, short* flag);

/// Counter-clockwise minor arc of radius rad from stp to edp (no flag; sa is the start point's
/// angle, not reduced into one turn, so it may exceed 2 pi). Returns 0 when the chord is longer
/// than the diameter, which includes every negative rad.
TARNSYSM_API int DArcStpRadEdp(double eps, double* stp, double rad, double* edp, double* centre,
                               double* sa, double* ea);

// ---- Polyline arc segments from drafting input ---------------------------------------------
// Each member writes the bulge of the segment from the start point and the end direction: the
// direction of travel at the segment's end, in [-eps, 2 pi), the next segment's start direction.
// They trust their input; check it with PL_TestVertex first. Some write the end point into one
// of the caller's input arrays, as part of their interface: pass a scratch copy to keep it.
// None reports success with an output that is not a finite number: where the input gives one
// (not a number, overflow, collinear points), the member returns 0 and writes nothing.

/// Segment from stp leaving in direction sta and ending at edp. Returns 0 and writes nothing when
/// edp lies on the start tangent line (ahead or behind); otherwise 1.
TARNSYSM_API int PL_StpStaEdp(double eps, double* stp, double sta, double* edp, double* bulge,
                              double* endDir);

/// Segment from stp to edp with the signed included angle ina (reduced by whole turns into
/// [-2 pi - eps, 2 pi + eps]): bulge = tan(ina / 4). The end direction is the arc's tangent when
/// the centre lies to the left of the chord (counter-clockwise up to a half circle, clockwise
/// beyond). Otherwise (clockwise up to a half circle, counter-clockwise beyond) it is taken, as
/// the drafting host does, from a centre on the chord's right-hand normal through stp at the
/// arc's radius, and is not the arc's tangent. Returns 1.
TARNSYSM_API int PL_StpInaEdp(double eps, double* stp, double ina, double* edp, double* bulge,
                              double* endDir);

/// Segment from stp turning by the signed included angle ina (reduced as above) about the centre
/// cen: bulge = tan(ina / 4). Writes the end point over cen[0..1]. A start point within eps of
/// the centre gives the end point stp and the end direction pi / 2 (3 pi / 2 for a bulge not
/// above eps). Returns 1.
TARNSYSM_API int PL_StpInaCen(double eps, double* stp, double ina, double* cen, double* bulge,
                              double* endDir);

/// Segment from stp with the signed included angle ina (reduced as above), radius rad and chord
/// direction dir from stp to the end point: the same arc as DArcStpInaRadDir. Writes the end
/// point to edp[0..1] and bulge = tan(ina / 4); returns 1. Returns 0 and writes nothing when rad
/// is below eps (negative radii included) or ina is within eps of 0 (closed).
TARNSYSM_API int PL_StpInaRadDir(double eps, double* stp, double ina, double rad, double dir,
                                 double* edp, double* bulge, double* endDir);

/// Counter-clockwise segment from stp about the centre cen, ending on the ray from cen towards
/// edp: edp[0..1] is overwritten with that point of the circle. A start point within eps of the
/// centre gives no arc: edp is overwritten with stp, the bulge is 0 and the end direction is a
/// quarter turn counter-clockwise from the direction cen to the given edp. Returns 1.
TARNSYSM_API int PL_StpCenEdp(double eps, double* stp, double* cen, double* edp, double* bulge,
                              double* endDir);

/// Segment from stp about the centre cen with the chord length len (negative: clockwise).
/// Writes the end point over cen[0..1]. A chord longer than the diameter gives bulge 0 and the
/// end point stp (reject it with PL_TestVertex kind 7). Returns 1.
TARNSYSM_API int PL_StpCenLen(double eps, double* stp, double* cen, double len, double* bulge,
                              double* endDir);

/// Minor-arc segment of radius rad from stp to edp: counter-clockwise for rad > 0, clockwise for
/// rad < 0. A chord longer than the diameter gives bulge 0 (reject it with PL_TestVertex kind
/// 8, which also refuses every negative rad). Returns 1.
TARNSYSM_API int PL_StpRadEdp(double eps, double* stp, double rad, double* edp, double* bulge,
                              double* endDir);

/// Segment from p1 through p2 to p3 (counter-clockwise or clockwise as the points run). The
/// points must not be collinear (PL_TestVertex kind 9): collinear points have no finite centre
/// and return 0, writing nothing. Returns 1.
TARNSYSM_API int PL_3points(double eps, double* p1, double* p2, double* p3, double* bulge,
                            double* endDir);
