// Tarnsysm for Python: circles, arcs and bulge segments built from drafting input, tangent and
// perpendicular lines, and the helpers that lay out dimensions.
#include "bindings.h"

#include <Tarnsysm.h>

#include <pybind11/stl.h>

#include <cmath>
#include <optional>
#include <string>
#include <utility>

namespace tarnsysm_python {
namespace {

using namespace py::literals;

// ---- Circle constructions ------------------------------------------------------------------
// An object is a point (x, y), a circle ((cx, cy), r) or an unbounded line ((x1, y1), (x2, y2));
// circles and lines carry the pick point that says which of the candidates is meant.

struct Shape {
  char kind = 'P';
  Point a{};  // the point, the circle's centre or the line's first point
  Point b{};  // the line's second point
  double r = 0.0;
  Point pick{};
};

Shape readShape(py::handle o) {
  if (!py::isinstance<py::sequence>(o) || py::len(o) != 2)
    throw py::value_error("an object is (x, y), ((cx, cy), r) or ((x1, y1), (x2, y2))");
  auto s = py::reinterpret_borrow<py::sequence>(o);
  Shape sh;
  if (!py::isinstance<py::sequence>(s[0])) {
    sh.a = s.cast<Point>();
  } else if (!py::isinstance<py::sequence>(s[1])) {
    sh.kind = 'C';
    sh.a = s[0].cast<Point>();
    sh.r = s[1].cast<double>();
  } else {
    sh.kind = 'L';
    sh.a = s[0].cast<Point>();
    sh.b = s[1].cast<Point>();
  }
  return sh;
}

py::object tangentCircle(py::args objects, std::vector<Point> const& picks,
                         std::optional<double> radius, std::optional<std::array<Point, 2>> on,
                         double eps) {
  if (radius && on)
    throw py::value_error("give radius or centre_on, not both");
  std::vector<Shape> c, l, p;
  std::size_t picked = 0;
  for (auto o : objects) {
    Shape s = readShape(o);
    if (s.kind != 'P') {
      require(picked < picks.size(), "give one pick for every circle and line, in their order");
      s.pick = picks[picked++];
    }
    (s.kind == 'C' ? c : s.kind == 'L' ? l : p).push_back(s);
  }
  require(picked == picks.size(), "give one pick for every circle and line, in their order");
  const int key = static_cast<int>(100 * c.size() + 10 * l.size() + p.size());
  // The centre line's own pick is never read.
  const Shape q{'L', on ? (*on)[0] : Point{}, on ? (*on)[1] : Point{}, 0.0, {}};
#define TS_C(s) s.pick[0], s.pick[1], s.r, s.a[0], s.a[1]
#define TS_L(s) s.pick[0], s.pick[1], s.a[0], s.a[1], s.b[0], s.b[1]
#define TS_P(s) s.a[0], s.a[1]
  double cx = 0.0, cy = 0.0, r = radius ? *radius : 0.0;
  int ok = -1;
  if (radius) {
    const double R = *radius;
    switch (key) {
      case 200:
        ok = DGetCCRCircle(eps, TS_C(c[0]), TS_C(c[1]), R, &cx, &cy);
        break;
      case 110:
        ok = DGetCLRCircle(eps, TS_C(c[0]), TS_L(l[0]), R, &cx, &cy);
        break;
      case 20:
        ok = DGetLLRCircle(eps, TS_L(l[0]), TS_L(l[1]), R, &cx, &cy);
        break;
    }
  } else if (on) {
    switch (key) {
      case 200:
        ok = DGetCCLPerCircle(eps, TS_C(c[0]), TS_C(c[1]), TS_L(q), &cx, &cy, &r);
        break;
      case 110:
        ok = DGetLLCPerCircle(eps, TS_L(q), TS_L(l[0]), TS_C(c[0]), &cx, &cy, &r);
        break;
      case 11:
        ok = DGetLLPPerCircle(eps, TS_L(q), TS_L(l[0]), TS_P(p[0]), &cx, &cy, &r);
        break;
      case 101:
        ok = DGetCLPPerCircle(eps, TS_C(c[0]), TS_L(q), TS_P(p[0]), &cx, &cy, &r);
        break;
      case 20:
        ok = DGetLLLPerCircle(eps, TS_L(q), TS_L(l[0]), TS_L(l[1]), &cx, &cy, &r);
        break;
      case 2:
        ok = DGetPPLPerCircle(eps, TS_P(p[0]), TS_P(p[1]), TS_L(q), &cx, &cy, &r);
        break;
    }
  } else {
    switch (key) {
      case 300:
        ok = DGetCCCTanCircle(eps, TS_C(c[0]), TS_C(c[1]), TS_C(c[2]), &cx, &cy, &r);
        break;
      case 210:
        ok = DGetCCLTanCircle(eps, TS_C(c[0]), TS_C(c[1]), TS_L(l[0]), &cx, &cy, &r);
        break;
      case 201:
        ok = DGetCCPTanCircle(eps, TS_C(c[0]), TS_C(c[1]), TS_P(p[0]), &cx, &cy, &r);
        break;
      case 120:
        ok = DGetLLCTanCircle(eps, TS_L(l[0]), TS_L(l[1]), TS_C(c[0]), &cx, &cy, &r);
        break;
      case 30:
        ok = DGetLLLTanCircle(eps, TS_L(l[0]), TS_L(l[1]), TS_L(l[2]), &cx, &cy, &r);
        break;
      case 21:
        ok = DGetLLPTanCircle(eps, TS_L(l[0]), TS_L(l[1]), TS_P(p[0]), &cx, &cy, &r);
        break;
      case 12:
        ok = DGetPPLTanCircle(eps, TS_P(p[0]), TS_P(p[1]), TS_L(l[0]), &cx, &cy, &r);
        break;
      case 102:
        ok = DGetPPCTanCircle(eps, TS_P(p[0]), TS_P(p[1]), TS_C(c[0]), &cx, &cy, &r);
        break;
      case 111:
        ok = DGetCLPTanCircle(eps, TS_C(c[0]), TS_L(l[0]), TS_P(p[0]), &cx, &cy, &r);
        break;
      case 200:
        ok = DGetCCTanCircle(eps, TS_C(c[0]), TS_C(c[1]), &cx, &cy, &r);
        break;
      case 110:
        ok = DGetCLTanCircle(eps, TS_C(c[0]), TS_L(l[0]), &cx, &cy, &r);
        break;
      case 101:
        ok = DGetCPTanCircle(eps, TS_C(c[0]), TS_P(p[0]), &cx, &cy, &r);
        break;
      case 11:
        ok = DGetLPTanCircle(eps, TS_L(l[0]), TS_P(p[0]), &cx, &cy, &r);
        break;
    }
  }
#undef TS_C
#undef TS_L
#undef TS_P
  require(ok >= 0, "no circle construction takes these objects (see the docstring for the list)");
  if (!ok)
    return py::none();
  return py::make_tuple(tup({cx, cy}), r);
}

py::tuple fourCentreArcs(Point c, double a, double b, double rotation, double eps) {
  double arcs[4][5];
  require(DGetEllipseCircle(eps, c[0], c[1], a, b, rotation, arcs) == 4,
          "a or b is below eps, or an argument is not finite");
  py::tuple t(4);
  for (std::size_t k = 0; k < 4; ++k)
    t[k] = py::make_tuple(tup({arcs[k][0], arcs[k][1]}), arcs[k][2], arcs[k][3], arcs[k][4]);
  return t;
}

void defineCircles(py::module_& m) {
  m.def("tangent_circle", &tangentCircle, "picks"_a = std::vector<Point>{}, "radius"_a = py::none(),
        "centre_on"_a = py::none(), "eps"_a = kDefaultEps,
        "(centre, radius) of a circle tangent to the circles and lines given and through the "
        "points given, or None when no such circle exists. An object is a point (x, y), a circle "
        "((cx, cy), r) or an unbounded line ((x1, y1), (x2, y2)); `picks` holds one point for "
        "each circle and line, in their order. Picks never change the geometry: of the candidate "
        "circles, the one whose tangency points lie best in the directions of the picks is "
        "returned, ties to the earlier candidate. The forms: with radius=R two circles or lines "
        "(any mix); with centre_on=((x1, y1), (x2, y2)) the centre on that line and two of "
        "circle, line, point (a circle or line may be tangent either way; two points give the "
        "one solution); otherwise three of circle, line, point (not three points), or two "
        "objects with the centre on the line through the circles' centres (two circles), on "
        "the perpendicular from the circle's centre to the line, on the line from the circle's "
        "centre to the point, or on the perpendicular from the point to the line. Tangent to a "
        "line through a point takes the point's side; with three objects candidates whose "
        "tangency points fall on the picked piece (between the crossings with the others) win.");

  m.def(
      "common_tangent",
      [](Point c1, double r1, Point c2, double r2, std::array<Point, 2> picks,
         double eps) -> py::object {
        Point a{}, b{};
        if (!DGetCCTanLine(eps, picks[0][0], picks[0][1], r1, c1[0], c1[1], picks[1][0],
                           picks[1][1], r2, c2[0], c2[1], &a[0], &a[1], &b[0], &b[1]))
          return py::none();
        return py::make_tuple(tup(a), tup(b));
      },
      "centre1"_a, "radius1"_a, "centre2"_a, "radius2"_a, py::kw_only(), "picks"_a,
      "eps"_a = kDefaultEps,
      "The common tangent of two circles nearest the picks (pick1, pick2) as (point on circle "
      "1, point on circle 2): of the outer tangents and, for circles apart by more than eps, the "
      "inner ones, the one whose points lie nearest the picks (sum of squared distances). None "
      "when one circle lies within the other or touches it from inside.");

  m.def("four_centre_arcs", &fourCentreArcs, "centre"_a, "a"_a, "b"_a, "rotation"_a = 0.0,
        py::kw_only(), "eps"_a = kDefaultEps,
        "The four-centre approximation of the ellipse: four (centre, radius, start, end) arcs, "
        "counter-clockwise with start in [-eps, 2 pi) and end > start, meeting tangentially; "
        "the first passes through the end of the axis a (at `rotation` from +x), the others "
        "follow counter-clockwise. They deviate from the ellipse by at most about 2.8% of the "
        "larger semi-axis. Raises ValueError when a or b is below eps or an argument is not "
        "finite.");
}

// ---- Arcs and bulge segments ---------------------------------------------------------------

// An arc as the drafting input gives it: the counter-clockwise sweep from start to end, and
// whether the user's arc runs clockwise from its start point (then `start` belongs to its end).
py::tuple arc(double const* centre, double r, double sa, double ea, bool clockwise) {
  return py::make_tuple(tup({centre[0], centre[1]}), r, sa, ea, clockwise);
}

// A polyline segment: the bulge of its start row, its end point, and the direction of travel
// there (the next segment's start direction).
py::tuple segment(double bulge, Point end, double direction) {
  return py::make_tuple(bulge, tup(end), direction);
}

constexpr char const* kNoFiniteSegment = "no finite segment for this input";

void defineArcs(py::module_& m) {
  constexpr char const* kArcResult =
      " Returns (centre, radius, start, end, clockwise): the counter-clockwise sweep from start "
      "to end (end >= start - eps, possibly above 2 pi); when the arc runs clockwise from its "
      "start point, clockwise is True and start belongs to its end point.";
  m.def(
      "arc_from_points",
      [](Point p1, Point p2, Point p3, double eps) {
        double c[2], r, sa, ea;
        short flag = 0;
        require(DArcParam3P(eps, p1.data(), p2.data(), p3.data(), c, &r, &sa, &ea, &flag),
                "p2 or p3 lies within eps of p1, or the three points are collinear");
        return arc(c, r, sa, ea, flag == 1);
      },
      "p1"_a, "p2"_a, "p3"_a, py::kw_only(), "eps"_a = kDefaultEps,
      (std::string("The arc from p1 through p2 to p3.") + kArcResult +
       " Raises ValueError when p2 or p3 lies within eps of p1 or the points are collinear.")
          .c_str());

  m.def(
      "arc_from_angle",
      [](Point start, Point end, double angle, double eps) {
        double c[2], r, sa, ea;
        short flag = 0;
        require(DArcStpEdpIna(eps, start.data(), end.data(), angle, c, &r, &sa, &ea, &flag),
                "no arc for this included angle: the sine of its half is within eps of 0");
        return arc(c, r, sa, ea, angle < 0.0);
      },
      "start"_a, "end"_a, "angle"_a, py::kw_only(), "eps"_a = kDefaultEps,
      (std::string("The arc from start to end with the signed included angle (positive "
                   "counter-clockwise); the sweep end - start is |angle|.") +
       kArcResult + " Raises ValueError when the sine of half the angle is within eps of 0.")
          .c_str());

  m.def(
      "arc_from_direction",
      [](Point start, double direction, Point end, double eps) {
        double c[2], r, sa, ea;
        short flag = 0;
        require(DArcStpStaEdp(eps, start.data(), direction, end.data(), c, &r, &sa, &ea, &flag),
                "the end point lies on the start tangent line");
        return arc(c, r, sa, ea, flag == 1);
      },
      "start"_a, "direction"_a, "end"_a, py::kw_only(), "eps"_a = kDefaultEps,
      (std::string("The arc leaving start in the direction (radians) and ending at end.") +
       kArcResult + " Raises ValueError when end lies straight ahead or behind.")
          .c_str());

  m.def(
      "arc_from_radius",
      [](Point start, double radius, Point end, double eps) {
        double c[2], sa, ea;
        require(DArcStpRadEdp(eps, start.data(), radius, end.data(), c, &sa, &ea),
                "the chord is longer than the diameter");
        return arc(c, radius, sa, ea, false);
      },
      "start"_a, "radius"_a, "end"_a, py::kw_only(), "eps"_a = kDefaultEps,
      (std::string("The counter-clockwise minor arc of the radius from start to end (start is "
                   "the start point's angle, not reduced into one turn).") +
       kArcResult +
       " Raises ValueError when the chord is longer than the diameter (every "
       "negative radius).")
          .c_str());

  m.def(
      "arc_from_chord",
      [](Point start, double angle, double radius, double direction, double eps) {
        double c[2], sa, ea;
        short flag = 0;
        require(DArcStpInaRadDir(eps, start.data(), angle, radius, direction, c, &sa, &ea, &flag),
                "the arc is not finite");
        return arc(c, radius, sa, ea, flag > 0);
      },
      "start"_a, "angle"_a, "radius"_a, "direction"_a, py::kw_only(), "eps"_a = kDefaultEps,
      (std::string("The arc from start with the signed included angle (reduced by whole turns "
                   "into [-2 pi - eps, 2 pi + eps]), the radius, and the chord leaving start in "
                   "the direction.") +
       kArcResult + " Raises ValueError when the arc is not finite.")
          .c_str());

  m.def(
      "arc_extents",
      [](Point c, double r, double start, double end, double eps) {
        Point lo{}, hi{};
        get_arc_box(eps, c.data(), r, start, end, &lo[0], &lo[1], &hi[0], &hi[1]);
        return py::make_tuple(tup(lo), tup(hi));
      },
      "centre"_a, "radius"_a, "start"_a, "end"_a, py::kw_only(), "eps"_a = kDefaultEps,
      "((xmin, ymin), (xmax, ymax)), the axis-aligned box of the arc swept counter-clockwise "
      "from start to end (end >= start, as arc_from_bulge gives them). Quadrant points within "
      "eps of the start angle are not added.");

  constexpr char const* kSegmentResult =
      " Returns (bulge, end, direction): the bulge of the row at start, the end point, and the "
      "direction of travel there, in [-eps, 2 pi).";
  m.def(
      "bulge_from_points",
      [](Point p1, Point p2, Point p3, double eps) {
        double bulge, dir;
        require(PL_TestVertex(9, eps, p1.data(), p2.data(), p3.data()),
                "the three points are collinear");
        require(PL_3points(eps, p1.data(), p2.data(), p3.data(), &bulge, &dir), kNoFiniteSegment);
        return segment(bulge, p3, dir);
      },
      "p1"_a, "p2"_a, "p3"_a, py::kw_only(), "eps"_a = kDefaultEps,
      (std::string("The segment from p1 through p2 to p3.") + kSegmentResult +
       " Raises ValueError for collinear points (twice the triangle's area within eps).")
          .c_str());

  m.def(
      "bulge_from_angle",
      [](Point start, double angle, Point end, double eps) {
        double bulge, dir;
        require(PL_TestVertex(6, eps, start.data(), end.data()),
                "the end point coincides with the start point");
        require(PL_StpInaEdp(eps, start.data(), angle, end.data(), &bulge, &dir), kNoFiniteSegment);
        return segment(bulge, end, dir);
      },
      "start"_a, "angle"_a, "end"_a, py::kw_only(), "eps"_a = kDefaultEps,
      (std::string("The segment from start to end with the signed included angle: bulge = "
                   "tan(angle / 4). The direction is the arc's tangent when its centre lies left "
                   "of the chord; otherwise it comes, as the drafting host takes it, from a "
                   "centre on the chord's right-hand normal through start, and is not.") +
       kSegmentResult + " Raises ValueError when end lies within eps of start.")
          .c_str());

  m.def(
      "bulge_from_direction",
      [](Point start, double direction, Point end, double eps) {
        double bulge, dir;
        require(PL_TestVertex(2, eps, start.data(), direction, end.data()),
                "the end point lies on the start tangent line");
        require(PL_StpStaEdp(eps, start.data(), direction, end.data(), &bulge, &dir),
                kNoFiniteSegment);
        return segment(bulge, end, dir);
      },
      "start"_a, "direction"_a, "end"_a, py::kw_only(), "eps"_a = kDefaultEps,
      (std::string("The segment leaving start in the direction and ending at end.") +
       kSegmentResult + " Raises ValueError when end lies on the start tangent line.")
          .c_str());

  m.def(
      "bulge_from_radius",
      [](Point start, double radius, Point end, double eps) {
        double bulge, dir;
        require(PL_TestVertex(8, eps, start.data(), std::fabs(radius), end.data()),
                "the chord is longer than the diameter");
        require(PL_StpRadEdp(eps, start.data(), radius, end.data(), &bulge, &dir),
                kNoFiniteSegment);
        return segment(bulge, end, dir);
      },
      "start"_a, "radius"_a, "end"_a, py::kw_only(), "eps"_a = kDefaultEps,
      (std::string("The minor-arc segment of the radius from start to end: counter-clockwise "
                   "for a positive radius, clockwise for a negative one.") +
       kSegmentResult + " Raises ValueError when the chord is longer than the diameter.")
          .c_str());

  m.def(
      "bulge_from_centre",
      [](Point start, Point centre, std::optional<Point> end, std::optional<double> angle,
         std::optional<double> chord, double eps) {
        require((end ? 1 : 0) + (angle ? 1 : 0) + (chord ? 1 : 0) == 1,
                "give one of end, angle and chord");
        require(PL_TestVertex(6, eps, start.data(), centre.data()),
                "the start point lies on the centre");
        require(!chord || PL_TestVertex(7, eps, start.data(), centre.data(), *chord),
                "the chord is longer than the diameter");
        double bulge, dir;
        // The library writes the end point over the centre or the given end.
        Point to = end ? *end : centre;
        const int ok = end ? PL_StpCenEdp(eps, start.data(), centre.data(), to.data(), &bulge, &dir)
                       : angle ? PL_StpInaCen(eps, start.data(), *angle, to.data(), &bulge, &dir)
                               : PL_StpCenLen(eps, start.data(), to.data(), *chord, &bulge, &dir);
        require(ok, kNoFiniteSegment);
        return segment(bulge, to, dir);
      },
      "start"_a, "centre"_a, py::kw_only(), "end"_a = py::none(), "angle"_a = py::none(),
      "chord"_a = py::none(), "eps"_a = kDefaultEps,
      (std::string("The segment from start about the centre, given one of: end, counter-"
                   "clockwise to the circle's point on the ray from the centre towards end; "
                   "angle, the signed included angle (bulge = tan(angle / 4)); chord, the chord "
                   "length (negative: clockwise).") +
       kSegmentResult +
       " Raises ValueError when start lies within eps of the centre or the "
       "chord is longer than the diameter.")
          .c_str());

  m.def(
      "bulge_from_chord",
      [](Point start, double angle, double radius, double direction, double eps) {
        double bulge, dir;
        Point end{};
        require(
            PL_StpInaRadDir(eps, start.data(), angle, radius, direction, end.data(), &bulge, &dir),
            "the radius is below eps or the included angle within eps of 0");
        return segment(bulge, end, dir);
      },
      "start"_a, "angle"_a, "radius"_a, "direction"_a, py::kw_only(), "eps"_a = kDefaultEps,
      (std::string("The segment of arc_from_chord: from start with the signed included angle, "
                   "the radius and the chord direction; bulge = tan(angle / 4).") +
       kSegmentResult +
       " Raises ValueError when the radius is below eps or the angle within "
       "eps of 0.")
          .c_str());

  m.def(
      "bulge_continuing",
      [](Point previous, double bulge, Point start, Point end, double eps) {
        double b, dir;
        require(PL_Arc_PBPP(eps, previous.data(), bulge, start.data(), end.data(), &b, &dir),
                "the end point lies on the tangent line at the start point");
        return segment(b, end, dir);
      },
      "previous"_a, "bulge"_a, "start"_a, "end"_a, py::kw_only(), "eps"_a = kDefaultEps,
      (std::string("The segment from start to end that continues the segment previous -> start "
                   "(of the given bulge) tangentially.") +
       kSegmentResult + " Raises ValueError when end lies on the tangent line at start.")
          .c_str());
}

// ---- Tangent and perpendicular lines -------------------------------------------------------

py::tuple lines(int count, double const (*pts)[2], bool fromFirst) {
  py::tuple t(static_cast<std::size_t>(count));
  for (int i = 0; i < count; ++i) {
    const auto* from = pts[fromFirst ? 0 : 2 * i];
    const auto* to = pts[fromFirst ? i + 1 : 2 * i + 1];
    t[static_cast<std::size_t>(i)] = py::make_tuple(tup({from[0], from[1]}), tup({to[0], to[1]}));
  }
  return t;
}

void defineTangents(py::module_& m) {
  m.def(
      "common_tangents",
      [](Point c1, double r1, Point c2, double r2, double eps) {
        double pts[8][2];
        int count = 0;
        return lines(DTangLof2Cir(eps, c1[0], c1[1], r1, c2[0], c2[1], r2, pts, &count), pts,
                     false);
      },
      "centre1"_a, "radius1"_a, "centre2"_a, "radius2"_a, py::kw_only(), "eps"_a = kDefaultEps,
      "The common tangents of two circles as (point on circle 1, point on circle 2) pairs: the "
      "two outer ones, then for circles apart by more than eps the two inner ones. Empty when "
      "one circle lies within the other.");

  m.def(
      "parallel_tangents",
      [](Point c, double r, Point p1, Point p2, double eps) {
        double pts[4][2];
        const int n =
            DLtangCparaL(eps, c[0], c[1], r, p1[0], p1[1], p2[0], p2[1], &pts[0][0], &pts[0][1],
                         &pts[1][0], &pts[1][1], &pts[2][0], &pts[2][1], &pts[3][0], &pts[3][1]);
        require(n == 0 || std::isfinite(pts[0][0] + pts[2][0]),
                "a vertical line has no finite parallel tangents here");
        return lines(n, pts, false);
      },
      "centre"_a, "radius"_a, "p1"_a, "p2"_a, py::kw_only(), "eps"_a = kDefaultEps,
      "The two tangents of the circle parallel to the line p1-p2 as (tangency point, that point "
      "plus the line's vector): the one touching left of the line's direction first. Empty for "
      "a line shorter than eps. Raises ValueError for a vertical line (x2 == x1), whose x "
      "coordinates the drafting host's formula cannot give.");

  m.def(
      "perpendicular_tangents",
      [](Point p1, Point p2, Point c, double r, double eps) {
        double pts[4][2];
        return lines(DLperLtangC(eps, p1[0], p1[1], p2[0], p2[1], c[0], c[1], r, pts), pts, false);
      },
      "p1"_a, "p2"_a, "centre"_a, "radius"_a, py::kw_only(), "eps"_a = kDefaultEps,
      "The lines perpendicular to the line p1-p2 and tangent to the circle as (foot on the line, "
      "tangency point): the one ahead along the line's direction first. A radius below eps "
      "gives one line from the centre's foot to the centre; a line shorter than eps the "
      "tangents from the point (cx, y1).");

  m.def(
      "perpendicular_to_arc",
      [](Point p1, Point p2, Point c, double r, double start, double end, double eps) {
        double pts[3][2];
        return lines(DLperLperArc(eps, p1[0], p1[1], p2[0], p2[1], c[0], c[1], r, start, end, pts),
                     pts, true);
      },
      "p1"_a, "p2"_a, "centre"_a, "radius"_a, "start"_a, "end"_a, py::kw_only(),
      "eps"_a = kDefaultEps,
      "The lines perpendicular to the line p1-p2 through the centre of the arc (swept counter-"
      "clockwise from start to end), as (foot of the centre on the line, point on the arc), in "
      "the order line_arc gives the points. A line shorter than eps uses the line from its point "
      "through the centre; a point at the centre the vertical, upper end first. A radius below "
      "eps gives one line to the centre.");
}

// ---- Dimension helpers ---------------------------------------------------------------------

void defineDimension(py::module_& m) {
  m.def(
      "angular_dimension",
      [](Point p1, Point p2, Point p3, Point p4, Point pick, double eps) {
        double radius, vertex[2], start, mid, end, sp[2], ep[2];
        require(DIM_ArcCal(eps, p1.data(), p2.data(), p3.data(), p4.data(), pick.data(), &radius,
                           vertex, &start, &mid, &end, sp, ep),
                "a line is shorter than eps, the lines are parallel, or the pick lies on their "
                "crossing");
        return py::make_tuple(tup({vertex[0], vertex[1]}), radius, start, mid, end,
                              tup({sp[0], sp[1]}), tup({ep[0], ep[1]}));
      },
      "p1"_a, "p2"_a, "p3"_a, "p4"_a, "pick"_a, py::kw_only(), "eps"_a = kDefaultEps,
      "The angular dimension between the lines p1-p2 and p3-p4 through the picked point: "
      "(vertex, radius, start, mid, end, start_point, end_point). Of the four wedges the lines' "
      "rays from their crossing (vertex) make, the arc spans the one holding the pick, from the "
      "ray met first turning clockwise from it to the next ray counter-clockwise, an included "
      "angle in (0, pi). radius = |pick - vertex|, start in [0, 2 pi), end = start + included "
      "(less 2 pi above 2 pi), mid the mean of start and the unreduced end. Raises ValueError for "
      "a line shorter than eps, parallel lines, or a pick within eps of the vertex.");

  m.def(
      "text_half_length",
      [](double w, double h, double angle, std::optional<double> limit, double eps) {
        double out = 0.0;
        require(DIM_GetTxtEfctLen(limit ? 1 : 0, eps, w, h, angle, limit ? *limit : 0.0, &out),
                "the text box is narrower or lower than eps");
        return out;
      },
      "width"_a, "height"_a, "angle"_a, py::kw_only(), "limit"_a = py::none(),
      "eps"_a = kDefaultEps,
      "Half the length of a width by height text box along the direction: width/2 along the "
      "text, height/2 across it, else the half-length to the box's edge. With a limit, 0.0 "
      "unless the box's half-extent across the direction, less eps, reaches it. Raises "
      "ValueError when width or height is below eps.");

  m.def(
      "diameter_points",
      [](Point c, double r, Point towards, double eps) {
        Point a{}, b{};
        DIM_GetCirDiaPt(eps, c[0], c[1], towards[0], towards[1], r, &a[0], &a[1], &b[0], &b[1]);
        return py::make_tuple(tup(a), tup(b));
      },
      "centre"_a, "radius"_a, "towards"_a, py::kw_only(), "eps"_a = kDefaultEps,
      "The ends of the circle's diameter in the direction of the point from the centre (0 when "
      "they coincide within eps): (end away from the point, end towards it).");

  m.def(
      "world_to_user",
      [](Point p, Point origin, double angle) {
        Point q{};
        DIM_WcToUc(origin.data(), angle, p.data(), q.data());
        return tup(q);
      },
      "point"_a, "origin"_a, "angle"_a,
      "The point in the frame with the origin whose x axis lies at the angle: (p - origin) "
      "turned by -angle.");

  m.def(
      "distance_along",
      [](Point p1, Point p2, double angle) {
        double out = 0.0;
        DIM_DisAng2P(0.0, p1.data(), p2.data(), angle, &out);
        return out;
      },
      "p1"_a, "p2"_a, "angle"_a,
      "The signed distance from p1 to p2 measured along the direction angle.");

  m.def(
      "line_distance",
      [](Point p, Point p1, Point p2, double eps) {
        double out = 0.0;
        DIM_PToLineDis1(eps, p[0], p[1], p1[0], p1[1], p2[0], p2[1], &out);
        return out;
      },
      "point"_a, "p1"_a, "p2"_a, py::kw_only(), "eps"_a = kDefaultEps,
      "The distance from the point to the line through p1 and p2; a line shorter than eps "
      "measures to p2.");

  m.def(
      "perpendicular_foot",
      [](Point p, Point origin, Point direction) {
        double d = 0.0;
        Point foot{};
        DIM_PToLineDis2(p[0], p[1], origin[0], origin[1], direction[0], direction[1], &d, &foot[0],
                        &foot[1]);
        return py::make_tuple(d, tup(foot));
      },
      "point"_a, "origin"_a, "direction"_a,
      "(distance, foot) of the perpendicular from the point to the line through the origin "
      "with the unit direction. The root is not guarded: where rounding makes the foot's "
      "distance exceed the point's, the distance is NaN.");
}

}  // namespace

void defineConstructions(py::module_& m) {
  defineCircles(m);
  defineArcs(m);
  defineTangents(m);
  defineDimension(m);
}

}  // namespace tarnsysm_python
