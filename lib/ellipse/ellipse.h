// Tarnsysm: planar computational geometry for 2D drafting.
// Ellipse geometry: the plane transform, the ellipse, line, arc and intersection records,
// intersections, nearest points, length, area and division.
#pragma once

#include "../tarnsysm_export.h"

#include <cmath>
#include <cstddef>
#include <cstdint>

// ---- The plane transform ---------------------------------------------------------------------
// Points are row vectors multiplied on the left, [x y 1] * M: the translation stands in the third
// row and a product A * B applies A first, then B.

/// A square matrix of doubles, row-major m[row][column], with nothing else in it. Wholly inline:
/// only the 3 by 3 instance is used, as the base of Matrix3.
template <int N>
class Matrix {
 public:
  double m[N][N];  ///< the elements, m[row][column]

  /// The zero matrix.
  Matrix() { SetZero(); }
  Matrix(Matrix const&) = default;             ///< Copies every element.
  Matrix& operator=(Matrix const&) = default;  ///< Copies every element.

  /// Sets every element to 0.
  void SetZero() {
    for (auto& row : m)
      for (double& v : row)
        v = 0.0;
  }
  /// The identity: 1 on the diagonal, 0 elsewhere.
  void SetIdentity() {
    SetZero();
    for (int i = 0; i < N; ++i)
      m[i][i] = 1.0;
  }

  /// Adds b element by element.
  Matrix& operator+=(Matrix const& b) {
    for (int i = 0; i < N; ++i)
      for (int j = 0; j < N; ++j)
        m[i][j] += b.m[i][j];
    return *this;
  }
  /// Subtracts b element by element.
  Matrix& operator-=(Matrix const& b) {
    for (int i = 0; i < N; ++i)
      for (int j = 0; j < N; ++j)
        m[i][j] -= b.m[i][j];
    return *this;
  }
  /// Multiplies every element by s.
  Matrix& operator*=(double s) {
    for (auto& row : m)
      for (double& v : row)
        v *= s;
    return *this;
  }
  /// Divides by s unless |s| <= 1e-8: such a divisor leaves the matrix unchanged, silently.
  Matrix& operator/=(double s) {
    if (std::fabs(s) > 1e-8)
      for (auto& row : m)
        for (double& v : row)
          v /= s;
    return *this;
  }
  /// Replaces the matrix by the product this * b.
  Matrix& operator*=(Matrix const& b) {
    *this = *this * b;
    return *this;
  }

  /// The element-wise sum.
  Matrix operator+(Matrix const& b) const { return Matrix(*this) += b; }
  /// The element-wise difference.
  Matrix operator-(Matrix const& b) const { return Matrix(*this) -= b; }
  /// Every element times s.
  Matrix operator*(double s) const { return Matrix(*this) *= s; }
  /// Every element divided by s, with the divisor guard of operator/=.
  Matrix operator/(double s) const { return Matrix(*this) /= s; }
  /// The product, each element summed over k ascending from 0.0.
  Matrix operator*(Matrix const& b) const {
    Matrix r;
    for (int i = 0; i < N; ++i)
      for (int j = 0; j < N; ++j)
        for (int k = 0; k < N; ++k)
          r.m[i][j] += m[i][k] * b.m[k][j];
    return r;
  }

  /// Gauss-Jordan inverse. A pivot is searched for only when the diagonal element is at most
  /// 1e-8 in magnitude (the first row below with more is swapped up); when no row has more, the
  /// matrix is singular and comes back unchanged, without an error.
  Matrix Inverse() const {
    constexpr double kPivotFloor = 1e-8;
    Matrix a(*this);
    Matrix r;
    r.SetIdentity();
    for (int i = 0; i < N; ++i) {
      if (std::fabs(a.m[i][i]) <= kPivotFloor) {
        int j = i + 1;
        while (j < N && !(std::fabs(a.m[j][i]) > kPivotFloor))
          ++j;
        if (j == N)
          return *this;
        a.swapRows(i, j);
        r.swapRows(i, j);
      }
      const double p = a.m[i][i];
      for (int k = 0; k < N; ++k) {
        a.m[i][k] /= p;
        r.m[i][k] /= p;
      }
      for (int row = 0; row < N; ++row) {
        if (row == i)
          continue;
        const double f = -1.0 * a.m[row][i];
        for (int k = 0; k < N; ++k) {
          a.m[row][k] += f * a.m[i][k];
          r.m[row][k] += f * r.m[i][k];
        }
      }
    }
    return r;
  }

 private:
  void swapRows(int i, int j) {
    for (int k = 0; k < N; ++k) {
      const double t = m[i][k];
      m[i][k] = m[j][k];
      m[j][k] = t;
    }
  }
};

/// The plane transform of the ellipse routines: Matrix<3> with constructors and setters. A
/// default-constructed Matrix3 is the zero matrix, not the identity: call a setter first.
class Matrix3 : public Matrix<3> {
 public:
  /// The zero matrix.
  TARNSYSM_API Matrix3();
  /// Copies every element.
  TARNSYSM_API Matrix3(Matrix3 const& other);
  /// Turns the result of Matrix<3> arithmetic back into a Matrix3.
  TARNSYSM_API Matrix3(Matrix<3> const& other);  // NOLINT: implicit on purpose
  /// Copies every element.
  TARNSYSM_API Matrix3& operator=(Matrix3 const& other);
  /// Identity with the translation (dx, dy).
  TARNSYSM_API void SetShift(double dx, double dy);
  /// Scales x by sx and y by sy (zero translation).
  TARNSYSM_API void SetScale(double sx, double sy);
  /// Turns points counter-clockwise by `a` radians about the origin.
  TARNSYSM_API void SetRotate(double a);
};

/// Applies m to the point p[0..2]: p[0], p[1] become [x y 1] * m (both from the old x, y; no
/// projective divide) and p[2] is set to 0.0. p must hold three doubles; m is not changed.
TARNSYSM_API void TransPoint(Matrix3& m, double* const p);

// ---- Records -----------------------------------------------------------------------------------
// These cross the library boundary by value and by address; their layout is fixed.

/// An elliptical arc. byte 0: center x, y, z (z carried, never used); 24: a, the semi-axis along
/// the first axis, at `rotation` from +x (not necessarily the larger); 32: b, along the second
/// axis; 40: rotation; 48: start; 56: end. start and end are parameters (eccentric angles t of
/// the frame point (a cos t, b sin t)), not polar angles; the arc runs counter-clockwise in t
/// from start to end.
struct TSellipse {
  double center[3];  ///< centre x, y, z (z carried, never used)
  double a;          ///< semi-axis along the first axis
  double b;          ///< semi-axis along the second axis
  double rotation;   ///< angle of the first axis from +x
  double start;      ///< start parameter
  double end;        ///< end parameter
};

/// A line through two points, directed from start to end. byte 0: four doubles the ellipse
/// routines neither read nor write; 32: start x, y, z; 56: end x, y, z.
struct TSline {
  double user[4];   ///< the caller's, neither read nor written
  double start[3];  ///< start point x, y, z
  double end[3];    ///< end point x, y, z
};

/// A circular arc. byte 0: four doubles not read; 32: center x, y, z; 56: radius; 64: start and
/// 72: end polar angles about the centre (counter-clockwise from start to end).
struct TSarc {
  double user[4];    ///< the caller's, not read
  double center[3];  ///< centre x, y, z
  double radius;     ///< radius
  double start;      ///< start polar angle
  double end;        ///< end polar angle
};

/// An intersection point (z always written 0.0) and its status code (see SkLineEllipsearc).
struct TSinterpoint {
  double point[3];      ///< x, y, z (z = 0.0)
  std::int32_t status;  ///< the status code of the point
};

static_assert(sizeof(Matrix3) == 72, "Matrix3 is nine doubles");
static_assert(sizeof(TSellipse) == 64 && offsetof(TSellipse, a) == 24 &&
                  offsetof(TSellipse, b) == 32 && offsetof(TSellipse, rotation) == 40 &&
                  offsetof(TSellipse, start) == 48 && offsetof(TSellipse, end) == 56,
              "TSellipse layout");
static_assert(sizeof(TSline) == 80 && offsetof(TSline, start) == 32 && offsetof(TSline, end) == 56,
              "TSline layout");
static_assert(sizeof(TSarc) == 80 && offsetof(TSarc, center) == 32 &&
                  offsetof(TSarc, radius) == 56 && offsetof(TSarc, start) == 64 &&
                  offsetof(TSarc, end) == 72,
              "TSarc layout");
static_assert(sizeof(TSinterpoint) == 32 && offsetof(TSinterpoint, status) == 24,
              "TSinterpoint layout");

// ---- Frames and small queries ------------------------------------------------------------------
// The ellipse frame has its origin at the centre and its x axis along the first semi-axis.
// Point buffers hold three doubles wherever a result passes the frame transform (z becomes 0.0).

/// The world point of parameter t: centre + R(rotation) (a cos t, b sin t). Writes out[0..1] only.
TARNSYSM_API void EllipsePAngleToPoint(double const (&centre)[3], double a, double b,
                                       double rotation, double t, double* const out);

/// The parameter, in [0, 2 pi), of the frame point at polar angle theta. Near the second axis
/// (|b cos theta| < 1e-10) theta itself is returned, lifted by 2 pi only when negative.
TARNSYSM_API double AngleToParameter(double a, double b, double theta);

/// The polar angle, in [0, 2 pi), of the frame point of parameter t; near the second axis
/// (|a cos t| < 1e-10) t itself, lifted by 2 pi only when negative.
TARNSYSM_API double ParametertoAngle(double a, double b, double t);

/// Moves the world point in[0..1] into the ellipse frame, into out[0..2] (z = 0.0); in and out may
/// be the same buffer. Returns 1.
TARNSYSM_API int WcToEllipse(TSellipse const& e, double* const in, double* const out);

/// Moves the frame point in[0..1] to world coordinates, into out[0..2] (z = 0.0). Returns 1.
TARNSYSM_API int EllipseToWc(TSellipse const& e, double* const in, double* const out);

/// 1 when p lies strictly inside the whole ellipse, -1 when on it or outside (no tolerance; the
/// arc limits play no part). A non-finite point or record, or a or b zero, gives -1.
TARNSYSM_API int PointInEllipse(TSellipse const& e, double* const p);

/// 1 when t lies within 1e-4 / r of s or of e, also one turn either way; else 0. r is the size
/// that turns the length 1e-4 into an angle (callers pass the larger semi-axis).
TARNSYSM_API int PointInArcEndPoint(double t, double r, double s, double e);

/// 1 when t (in [0, 2 pi)) lies on the sweep from s to e with tolerance 1e-4 / r: t below
/// s - tol is lifted by one turn, then t < e + tol passes. The caller passes e >= s.
TARNSYSM_API int PointInArc(double t, double r, double s, double e);

/// The two points of the ellipse whose tangent has the world direction `angle`: the first into
/// p1, the opposite one into p3 (x and y only, always written). p2 is never written. Returns how
/// many of the two lie on the arc (parameter below the stored end + eps after lifting below the
/// stored start by one turn; a wrapping arc must be stored with end > start).
TARNSYSM_API int GetEllipseAngleTanPoint(double eps, TSellipse const& e, double angle,
                                         double* const p1, double* const p2, double* const p3);

/// The arc's point farthest from its chord, in world coordinates, into out[0..2]. Returns 1. A
/// chord through the centre is recognised only for an ellipse centred at the world origin.
TARNSYSM_API int GetEllipseHighestPoint(TSellipse const& e, double* const out);

/// Distance from the arc's highest point (GetEllipseHighestPoint) to its chord.
TARNSYSM_API double GetEllipseArcHeight(TSellipse const& e);

/// Signed distance from p to the line through line.start and line.end: positive to the left of
/// the direction from start to end. A line shorter than eps gives the distance to its start; a
/// point within eps of the start gives 0.0.
TARNSYSM_API double DistPointToLine(double eps, double* const p, TSline line);

// ---- Intersections -----------------------------------------------------------------------------
// The aided functions intersect whole curves and write world rows (x, y, 0.0), exactly as many
// as they count: room for 2 rows (line) or 4 (circle, ellipse). Non-finite input, and a or b not
// positive, give 0. The arc functions keep the points that lie on the arcs as the mode asks and
// tag each: 1 inside both; 2 at an end of one and inside the other; 4 at an end of the ellipse arc
// and at an end of the first curve, or (mode bit 1) off the first curve; 8 a point kept by a mode
// bit though it lies off one of them. Mode bit 1 (value 1) considers points off the first curve
// (segment extension, rest of the circle or first ellipse), bit 2 (value 2) keeps points off the
// ellipse arc. They need room for as many records as the aided call can give (2 or 4); the slot
// after the last kept record may hold a dropped point's x, y, z, never a status.

/// The infinite line through line's points and the whole ellipse. Returns 0, 1 (tangent) or 2;
/// of two, the first is the one farther along the line's direction.
TARNSYSM_API int SkLineEllipseAided(TSline const* line, TSellipse const* e, double (*out)[3]);
/// The whole circle (center, radius) and the whole ellipse: 0 to 4 points, or -1 when they
/// coincide (nothing written).
TARNSYSM_API int SkCircleEllipseAided(TSarc const* c, TSellipse const* e, double (*out)[3]);
/// Two whole ellipses: 0 to 4 points, or -1 when they coincide (nothing written). The quartic's
/// closed-form roots are used as they come; see GetEllipsePerpoint for their accuracy.
TARNSYSM_API int SkEllipseEllipseAided(TSellipse const* e1, TSellipse const* e2, double (*out)[3]);
/// The segment and the ellipse arc; returns the number of records kept.
TARNSYSM_API int SkLineEllipsearc(TSline const* line, TSellipse const* e, int mode,
                                  TSinterpoint* out);
/// The circular arc and the ellipse arc; returns the number of records kept.
TARNSYSM_API int SkArcEllipsearc(TSarc const* arc, TSellipse const* e, int mode, TSinterpoint* out);
/// Two ellipse arcs (e1 is the first curve); returns the number of records kept.
TARNSYSM_API int SkEllipsearcEllipsearc(TSellipse const* e1, TSellipse const* e2, int mode,
                                        TSinterpoint* out);

// ---- Nearest points and distances --------------------------------------------------------------
// The quartic of the feet of normals is solved in closed form with absolute tolerances and used
// unpolished. Measured for a first semi-axis a >= 2 at axis ratios from 1/100 to 100: at least
// 99.7% of nearest points and feet are right to 1e-7 of the size, the worst (points close to an
// axis line) to about 3e-6. At a = 1 a few percent of extreme-ratio cases are wrong, and at
// a = 0.3 most are: roots go missing or wrong by up to the ellipse's size, so scale small
// drawings up first when accuracy matters.

/// The point of the arc nearest to p, into out[0..2] (world, z = 0.0); returns its distance.
/// p on the curve (within 1e-10 of the implicit equation) gives 0.0 and out = p, and a p on an
/// axis line takes that axis' end on its side, both without the arc limits; a circle-shaped
/// record (|a - b| < 1e-8) measures p's direction from (cx, cx) and ignores the arc limits too.
/// An arc's end point wins when no foot inside the arc is strictly nearer. Returns -1.0 (out
/// untouched) when the quartic has no root, for non-finite input, or a or b not positive.
TARNSYSM_API double DPnearEllipseArc(TSellipse const& e, double* const p, double* const out);

/// A one-step estimate of the nearest point, ignoring the arc limits: p is moved along an
/// approximate normal by the larger root of a quadratic. out need not lie on the ellipse (most
/// points outside get no answer); use DPnearEllipseArc for the true nearest point. The frame
/// point is returned shifted by the centre and then turned about the world origin, which is the
/// world point only for a centre at the origin or rotation 0. Returns the distance moved, or
/// -1.0 (out untouched) when there is no root, for non-finite input, or a or b not positive.
TARNSYSM_API double DPnearEllipseArc_means(TSellipse const& e, double* const p, double* const out);

/// Of the two points of the ellipse whose tangent is parallel to the line, the one with the
/// smaller signed distance (DistPointToLine, in the frame; ties to the second), into out[0..1]
/// in the ellipse frame. A line along a frame axis takes the ends of the axis parallel to it.
/// Returns that signed distance.
TARNSYSM_API double DLineNearEllipse(TSline line, TSellipse const& e, double* const out);

/// DLineNearEllipse (out written in every case), or -1.0 when the point's parameter is not
/// strictly between the stored start and end.
TARNSYSM_API double DLineNearEllipsearc(TSline line, TSellipse const& e, double* const out);

/// The point at distance dist from the ellipse point of parameter t along its normal, towards
/// the inside for side 1 and the outside for side -1 (other sides: a fixed normal), into
/// out[0..2] (world). Returns 1.
TARNSYSM_API int EllipseAngleDistPoint(TSellipse const& e, int side, double t, double dist,
                                       double* const out);

/// The points where the tangents from p touch the ellipse, into t1 and t2 (world, three doubles
/// each). Returns 2, 1 or 0; 0 (nothing written) when p is inside or within eps of the implicit
/// equation. With one tangent point, t2 is still moved by the frame transform as it stands. A p
/// on the line of the first axis (frame y exactly 0) gives non-finite y values.
TARNSYSM_API int DLthrPtangEllipse(double eps, TSellipse e, double* const p, double* const t1,
                                   double* const t2);

/// The feet of the normals from p (points of the ellipse whose normal passes through p), into
/// out rows (world, x, y, 0.0; room for 4), in the quartic solver's order. For an arc of at most
/// a half turn only feet on the arc are kept; wider arcs keep every foot. p on an axis line gives
/// that axis' two ends (2); a circle-shaped record gives DCirLInts of the line from p to the
/// centre (x, y only). Accuracy as for DPnearEllipseArc. Returns the number written.
TARNSYSM_API int GetEllipsePerpoint(TSellipse const& e, double* const p, double (*const out)[3]);

/// A fillet centre: the centre of a circle of radius |d| touching both arcs, into out[0..2]. It
/// lies inside e1 when e2's centre is inside e1 (PointInEllipse), else outside, and likewise for
/// e2; of several, the first met walking e1's offset curve from e1's start. The distances to
/// both arcs are |d| within eps. Returns 1; out = (NaN, NaN, 0) when there is no such centre,
/// |d| < eps, or the input is not finite.
TARNSYSM_API int EllipseDistPoint(double eps, TSellipse e1, TSellipse e2, double d,
                                  double* const out);

// ---- Length, area and division -----------------------------------------------------------------
// Arc lengths are left sums of a sqrt(1 - k cos^2 t) (a >= b after swapping, parameters turned by
// pi/2) with the step 0.005 radian: an arc's length is short by about (h/2)(f(end) - f(start)),
// at most 0.0025 max(a, b). The whole perimeter is pi (a + b) (64 - 3 l^4) / (64 - 16 l^2),
// l = (a - b) / (a + b): relative error 1.4e-9 at axis ratio 1.5, 2.6e-6 at 3, 8.9e-5 at 7,
// 1.8e-3 for a flat ellipse. Non-finite input gives NaN.

/// Length of the arc from start to end (end below start is lifted by 2 pi); a record whose
/// |end - start| exceeds 2 pi - 1e-10 is the whole ellipse and gets the perimeter formula.
TARNSYSM_API double CalEllipseLen(TSellipse const& e);

/// pi a b for a whole ellipse; for an arc, the sum of r ds over the steps (r the distance from
/// the centre): a circular arc of radius R over w radians gives R^2 w, twice its sector area.
TARNSYSM_API double CalEllipseArea(TSellipse const& e);

/// Walks from the parameter t0 by steps of 0.005 (direction 1: increasing, else decreasing) until
/// the summed length reaches `length`, and writes the parameter reached into t (it overshoots by
/// up to one step; length <= 0 gives t0). Only a and b are read. Returns 1; 0 (t untouched) when
/// length exceeds the perimeter formula, for non-finite input, or a or b not positive.
TARNSYSM_API int EllipseLengthToPAngle(TSellipse const& e, double t0, double& t, double length,
                                       int direction);

/// Divides the arc (stored with end > start) into n equal lengths and writes the division points
/// as rows (world x, world y, tangent direction of increasing parameter, not reduced into one
/// turn); n becomes the number written. margin > 0 leaves that length free at both ends; margin
/// < -1e-10 writes the n midpoints of the parts instead. The first point falls one step (0.005)
/// after the start, and the one at the full length may be missing. The caller provides n + 1
/// rows. Returns 1; n <= 0, non-finite input or a or b not positive give n = 0.
TARNSYSM_API int EllipseDivide(TSellipse const& e, int& n, double (*const out)[3], double margin);

// ---- Building and editing arcs -----------------------------------------------------------------

/// The arc of the ellipse about centre[0..1] (semi-axes a, b, first axis at rotation) running
/// counter-clockwise from the point on the ray from the centre through p1 to the one through p2,
/// into *out: start in [0, 2 pi), end in (start, start + 2 pi]; directions whose parameters agree
/// within eps give the whole ellipse. Returns 1; 0 (out untouched) when a or b < eps or p1 or p2
/// lies within eps of the centre.
TARNSYSM_API int CalEllipseArc(double eps, double* const centre, double a, double b,
                               double rotation, double* const p1, double* const p2, TSellipse* out);

/// The arc from p1 through p2 to p3 of an ellipse with b = ratio a whose first axis lies at
/// rotation, into *out: the points are turned by -rotation and their y divided by ratio, the
/// circular arc through them (DArcParam3P) gives a = radius and the parameters. Returns 1 when
/// it runs counter-clockwise from p1, 2 clockwise (start and end stored swapped, start at p3);
/// 0 (out untouched) when ratio < eps or the points are coincident or collinear.
TARNSYSM_API int CalEllipseArc(double eps, double ratio, double rotation, double* const p1,
                               double* const p2, double* const p3, TSellipse* out);

/// A grip edit of e into *out (out may be &e). The grip is the first of these within eps of
/// grip: the centre (1), the start point (2) and end point (3) (not on a whole ellipse), an end
/// of the first axis (4), an end of the second axis (5). 1 moves the centre to `to`; 2 and 3 set
/// start or end to the parameter of the ray from the centre through `to`, keeping end > start;
/// 4 sets a = |x| and 5 sets b = |y| of `to` in the ellipse frame. Nothing else changes. Returns
/// the code; 0 (out untouched) when no grip is hit or the result would be degenerate (`to` within
/// eps of the centre for 2 and 3, a new semi-axis below eps).
TARNSYSM_API int CalStretchEllipseArc(double eps, TSellipse const& e, double* const grip,
                                      double* const to, TSellipse* out);
