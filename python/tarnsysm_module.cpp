// Tarnsysm for Python: polylines as numpy arrays, points as (x, y) tuples, failures as ValueError.
// Everything goes through the exported C++ interface of the shared library.
#include "bindings.h"

#include <Tarnsysm.h>

#include <pybind11/numpy.h>
#include <pybind11/pybind11.h>
#include <pybind11/stl.h>

#include <algorithm>
#include <array>
#include <climits>
#include <cmath>
#include <optional>
#include <string>
#include <utility>
#include <vector>

using namespace tarnsysm_python;
using namespace py::literals;

namespace {

using Rows = py::array_t<double, py::array::c_style | py::array::forcecast>;

// A polyline in the library's row layout, with the width (3 or 5) the caller gave it in.
struct Polyline {
  std::vector<std::array<double, 5>> rows;
  py::ssize_t width = 5;

  double (*data())[5] { return reinterpret_cast<double(*)[5]>(rows.data()); }
  int count() const { return static_cast<int>(rows.size()); }
};

Polyline toPolyline(Rows const& a) {
  if (a.ndim() != 2 || (a.shape(1) != 3 && a.shape(1) != 5))
    throw py::value_error("a polyline is an array of shape (n, 3) or (n, 5)");
  if (a.shape(0) > INT_MAX / 4)
    throw py::value_error("too many rows");
  Polyline p;
  p.width = a.shape(1);
  p.rows.assign(static_cast<std::size_t>(a.shape(0)), {0.0, 0.0, 0.0, 0.0, 0.0});
  auto r = a.unchecked<2>();
  for (py::ssize_t i = 0; i < a.shape(0); ++i)
    for (py::ssize_t j = 0; j < p.width; ++j)
      p.rows[static_cast<std::size_t>(i)][static_cast<std::size_t>(j)] = r(i, j);
  return p;
}

// Rows first .. first + n - 1 as an array of the caller's width.
py::array_t<double> toArray(Polyline const& p, int n, int first = 0) {
  py::array_t<double> out({static_cast<py::ssize_t>(n), p.width});
  auto w = out.mutable_unchecked<2>();
  for (int i = 0; i < n; ++i)
    for (py::ssize_t j = 0; j < p.width; ++j)
      w(i, j) = p.rows[static_cast<std::size_t>(first + i)][static_cast<std::size_t>(j)];
  return out;
}

// The first `count` of up to two points an intersection wrote, optionally only those whose
// segment bit (1 for the first point, 2 for the second) is set in `flag`.
py::tuple points(int count, Point a, Point b, int flag = 3, bool filter = false) {
  Points kept;
  if (count >= 1 && (!filter || (flag & 1)))
    kept.push_back(a);
  if (count >= 2 && (!filter || (flag & 2)))
    kept.push_back(b);
  return tuples(kept);
}

py::tuple points3(int count, double const (*rows)[3]) {
  Points kept;
  for (int i = 0; i < count; ++i)
    kept.push_back({rows[i][0], rows[i][1]});
  return tuples(kept);
}

std::optional<double> signedDistance(Polyline& p, bool closed, Point pick, double eps) {
  double d = 0.0;
  if (!PLineDist(eps, closed ? 1 : 0, p.count(), p.data(), pick.data(), &d))
    return std::nullopt;
  return d;
}

// A point off the middle of the first segment, |d| to the given side of travel.
Point sidePick(Polyline const& p, std::string const& side, double d) {
  if (side != "left" && side != "right")
    throw py::value_error("side is 'left' or 'right'");
  auto const& r0 = p.rows[0];
  auto const& r1 = p.rows[1];
  const double dx = r1[0] - r0[0];
  const double dy = r1[1] - r0[1];
  const double len = std::hypot(dx, dy);
  if (!(len > 0.0))
    throw py::value_error("the first segment has no length");
  // The right-hand normal; an arc's midpoint lies along it by the sagitta bulge * len / 2.
  const double nx = dy / len;
  const double ny = -dx / len;
  const double off = r0[2] * len / 2.0 + (side == "right" ? 1.0 : -1.0) * std::fabs(d);
  return {(r0[0] + r1[0]) / 2.0 + off * nx, (r0[1] + r1[1]) / 2.0 + off * ny};
}

// Why an offset through or towards the picked point has no result: the point itself, else
// what the caller's offset says happened to the polyline.
[[noreturn]] void noOffset(Polyline& p, bool closed, Point at, double eps, char const* otherwise) {
  const auto d = signedDistance(p, closed, at, eps);
  if (!d)
    throw py::value_error("the distance of the picked point from the polyline cannot be measured");
  if (*d > -eps && *d < eps)
    throw py::value_error("the picked point lies on the polyline");
  throw py::value_error(otherwise);
}

py::object offset(Rows const& rows, double distance, bool closed, std::optional<Point> pick,
                  std::optional<std::string> side, bool through, double eps, bool with_closed) {
  Polyline p = toPolyline(rows);
  const int n = p.count();
  if (n < 2)
    throw py::value_error("a polyline needs two rows");
  if (pick && side)
    throw py::value_error("give pick or side, not both");
  if (!through && !std::isfinite(distance))
    throw py::value_error("the distance is not finite");
  if (!pick && !side && distance == 0.0)
    throw py::value_error("a zero distance needs a pick or a side");
  const Point at =
      pick ? *pick : sidePick(p, side ? *side : (distance < 0 ? "left" : "right"), distance);
  // The offset needs room for twice the rows and leaves them spoilt when it fails.
  Polyline work = p;
  work.rows.resize(static_cast<std::size_t>(2 * n));
  int flag = closed ? 1 : 0;
  Point target = at;
  const int m = PLineOffset(eps, &flag, n, work.data(), through ? 1 : 0, target.data(), distance);
  if (m == 0)
    noOffset(p, closed, at, eps, "not a valid offset: the polyline collapses at this distance");
  auto out = toArray(work, m);
  if (with_closed)
    return py::make_tuple(out, flag != 0);
  return std::move(out);
}

py::list offsetRound(Rows const& rows, double distance, bool closed, std::optional<Point> pick,
                     bool through, double eps, bool with_closed) {
  Polyline p = toPolyline(rows);
  const int n = p.count();
  require(!through || pick, "through needs a pick");
  for (auto const& r : p.rows)
    require(std::isfinite(r[0]) && std::isfinite(r[1]) && std::isfinite(r[2]),
            "a row is not finite");
  require(through || std::isfinite(distance), "the distance is not finite");
  require(through || !(distance > -eps && distance < eps), "the distance is within eps of 0");
  constexpr char const* kEmpty =
      "the offset is empty: the polyline collapses at this distance or its rows are one point";
  const int c = closed ? 1 : 0;
  Point at = pick ? *pick : Point{};
  std::vector<int> starts, shut;
  int loops = 0;
  auto run = [&](Polyline& out) {
    int* start = starts.empty() ? nullptr : starts.data();
    int* flags = shut.empty() ? nullptr : shut.data();
    if (pick) {
      shut.resize(1);
      return PLineOffsetRoundPick(eps, c, n, p.data(), through ? 1 : 0, at.data(), distance,
                                  out.data(), out.count(), shut.data());
    }
    return PLineOffsetRound(eps, c, n, p.data(), distance, out.data(), out.count(), start, flags,
                            static_cast<int>(starts.size()), &loops);
  };
  // The first call asks for the room, the second fills it.
  Polyline out;
  out.width = p.width;
  int m = run(out);
  if (m < 0) {
    out.rows.resize(static_cast<std::size_t>(-m));
    starts.resize(static_cast<std::size_t>(loops));
    shut.resize(static_cast<std::size_t>(loops));
    m = run(out);
  }
  if (m <= 0) {
    if (pick)
      noOffset(p, closed, at, eps, kEmpty);
    throw py::value_error(kEmpty);
  }
  if (pick) {
    starts.assign(1, 0);
    loops = 1;
  }
  py::list result;
  for (int k = 0; k < loops; ++k) {
    const int first = starts[static_cast<std::size_t>(k)];
    const int last = k + 1 < loops ? starts[static_cast<std::size_t>(k) + 1] : m;
    auto a = toArray(out, last - first, first);
    if (with_closed)
      result.append(py::make_tuple(a, shut[static_cast<std::size_t>(k)] != 0));
    else
      result.append(a);
  }
  return result;
}

py::tuple trimLoops(Rows const& rows, bool closed, Point pick, double eps) {
  Polyline p = toPolyline(rows);
  int flag = closed ? 1 : 0;
  const int m = TrimLoopS(eps, pick.data(), &flag, p.count(), p.data());
  return py::make_tuple(toArray(p, m), flag != 0);
}

// ---- Ellipses ------------------------------------------------------------------------------

TSellipse makeEllipse(Point centre, double a, double b, double rotation, double start, double end) {
  TSellipse e{};
  e.center[0] = centre[0];
  e.center[1] = centre[1];
  e.a = a;
  e.b = b;
  e.rotation = rotation;
  e.start = start;
  e.end = end;
  return e;
}

TSline makeLine(Point p1, Point p2) {
  TSline l{};
  l.start[0] = p1[0];
  l.start[1] = p1[1];
  l.end[0] = p2[0];
  l.end[1] = p2[1];
  return l;
}

void defineEllipse(py::module_& m) {
  py::class_<TSellipse>(m, "Ellipse",
                        "An elliptical arc: centre, semi-axis a along the first axis at `rotation` "
                        "from +x, b along the second, and the counter-clockwise sweep of eccentric "
                        "angles (parameters t of the frame point (a cos t, b sin t), not polar "
                        "angles) from start to end. The defaults give the whole ellipse.")
      .def(py::init(&makeEllipse), "centre"_a, "a"_a, "b"_a, "rotation"_a = 0.0, "start"_a = 0.0,
           "end"_a = 2 * kPi)
      .def_property_readonly("centre",
                             [](TSellipse const& e) {
                               return tup({e.center[0], e.center[1]});
                             })
      .def_readwrite("a", &TSellipse::a)
      .def_readwrite("b", &TSellipse::b)
      .def_readwrite("rotation", &TSellipse::rotation)
      .def_readwrite("start", &TSellipse::start)
      .def_readwrite("end", &TSellipse::end)
      .def(
          "point_at",
          [](TSellipse const& e, double t) {
            Point p{};
            EllipsePAngleToPoint(e.center, e.a, e.b, e.rotation, t, p.data());
            return tup(p);
          },
          "t"_a, "The world point of parameter t.")
      .def("length", &CalEllipseLen,
           "Length of the arc from start to end (end below start is lifted by 2 pi). Arcs are "
           "summed in steps of 0.005 radian, short by at most 0.0025 max(a, b); a sweep of a "
           "whole turn gets the closed perimeter formula. NaN for non-finite input.")
      .def("area", &CalEllipseArea,
           "pi a b for a whole ellipse; for an arc, the sum of r ds over its steps (r the "
           "distance from the centre): twice the sector area for a circular arc.")
      .def(
          "nearest",
          [](TSellipse const& e, Point p) -> py::object {
            double out[3] = {0.0, 0.0, 0.0};
            const double d = DPnearEllipseArc(e, p.data(), out);
            if (d < 0.0)
              return py::none();
            return py::make_tuple(tup({out[0], out[1]}), d);
          },
          "point"_a,
          "(point, distance) of the arc's point nearest to `point`, or None when the quartic of "
          "the feet of normals has no root, the input is not finite or a or b is not positive. "
          "An end of the arc wins when no foot on the arc is strictly nearer. Accurate to about "
          "1e-7 of the size for a >= 2; scale small drawings up first.")
      .def(
          "intersect_line",
          [](TSellipse const& e, Point p1, Point p2, bool whole) {
            TSline l = makeLine(p1, p2);
            if (whole) {
              double out[2][3];
              return points3(SkLineEllipseAided(&l, &e, out), out);
            }
            TSinterpoint rec[3];
            const int n = SkLineEllipsearc(&l, &e, 0, rec);
            double out[2][3];
            for (int i = 0; i < n && i < 2; ++i)
              std::copy(rec[i].point, rec[i].point + 3, out[i]);
            return points3(std::min(n, 2), out);
          },
          "p1"_a, "p2"_a, py::kw_only(), "whole"_a = false,
          "Points where the segment p1-p2 meets the arc; with whole=True, where the infinite "
          "line meets the whole ellipse (of two, the one farther along p1 -> p2 first).")
      .def_static(
          "between",
          [](Point centre, double a, double b, Point p1, Point p2, double rotation, double eps) {
            TSellipse e{};
            require(CalEllipseArc(eps, centre.data(), a, b, rotation, p1.data(), p2.data(), &e),
                    "a or b is below eps, or a point lies within eps of the centre");
            return e;
          },
          "centre"_a, "a"_a, "b"_a, "p1"_a, "p2"_a, py::kw_only(), "rotation"_a = 0.0,
          "eps"_a = kDefaultEps,
          "The arc of the ellipse running counter-clockwise from its point on the ray from the "
          "centre through p1 to the one through p2: start in [0, 2 pi), end in (start, start + 2 "
          "pi]; rays whose parameters agree within eps give the whole ellipse. Raises ValueError "
          "when a or b is below eps or p1 or p2 lies within eps of the centre.")
      .def_static(
          "through",
          [](Point p1, Point p2, Point p3, double ratio, double rotation, double eps) {
            TSellipse e{};
            const int r = CalEllipseArc(eps, ratio, rotation, p1.data(), p2.data(), p3.data(), &e);
            require(r != 0, "the ratio is below eps, or the points coincide or are collinear");
            return py::make_tuple(e, r == 2);
          },
          "p1"_a, "p2"_a, "p3"_a, py::kw_only(), "ratio"_a, "rotation"_a = 0.0,
          "eps"_a = kDefaultEps,
          "(ellipse, clockwise): the arc from p1 through p2 to p3 of an ellipse with b = ratio a "
          "whose first axis lies at `rotation`. When it runs clockwise from p1, clockwise is True "
          "and start belongs to p3. Raises ValueError when the ratio is below eps or the points "
          "coincide or are collinear.")
      .def(
          "stretch",
          [](TSellipse const& e, Point grip, Point to, double eps) {
            static char const* const kGrips[] = {"centre", "start", "end", "first axis",
                                                 "second axis"};
            TSellipse out{};
            const int code = CalStretchEllipseArc(eps, e, grip.data(), to.data(), &out);
            require(code >= 1 && code <= 5,
                    "no grip lies within eps of the point, or the edit would leave a degenerate "
                    "arc");
            return py::make_tuple(out, kGrips[code - 1]);
          },
          "grip"_a, "to"_a, py::kw_only(), "eps"_a = kDefaultEps,
          "(ellipse, grip): the arc edited by dragging the grip to `to`. The grip is the first "
          "within eps of the point of: 'centre' (moved to `to`), 'start' and 'end' (not on a "
          "whole ellipse; set to the parameter of the ray from the centre through `to`, keeping "
          "end > start), 'first axis' and 'second axis' (the end of an axis: a = |x|, b = |y| of "
          "`to` in the ellipse frame). Raises ValueError when no grip is hit or the result would "
          "be degenerate (`to` within eps of the centre for an end, a semi-axis below eps).")
      .def("__repr__", [](TSellipse const& e) {
        return "Ellipse((" + std::to_string(e.center[0]) + ", " + std::to_string(e.center[1]) +
               "), a=" + std::to_string(e.a) + ", b=" + std::to_string(e.b) +
               ", rotation=" + std::to_string(e.rotation) + ", start=" + std::to_string(e.start) +
               ", end=" + std::to_string(e.end) + ")";
      });
}

// ---- Clipping and text ---------------------------------------------------------------------

py::array_t<double> clipPolygon(py::array_t<double, py::array::c_style | py::array::forcecast> pts,
                                std::array<Point, 2> rect) {
  if (pts.ndim() != 2 || pts.shape(1) != 2)
    throw py::value_error("a polygon is an array of shape (n, 2)");
  if (pts.shape(0) > INT_MAX / 4)
    throw py::value_error("too many points");
  auto r = pts.unchecked<2>();
  std::vector<Point> in;
  for (py::ssize_t i = 0; i < pts.shape(0); ++i)
    in.push_back({r(i, 0), r(i, 1)});
  // The library clips only the edges between listed points: close the ring for it.
  if (!in.empty() && in.front() != in.back())
    in.push_back(in.front());
  const int n = static_cast<int>(in.size());
  std::vector<Point> out(static_cast<std::size_t>(3 * n) + 1);
  double box[2][2] = {{rect[0][0], rect[0][1]}, {rect[1][0], rect[1][1]}};
  int count = 0;
  RectClipPolygon(box, n, reinterpret_cast<double(*)[2]>(in.data()), count,
                  reinterpret_cast<double(*)[2]>(out.data()));
  py::array_t<double> res({static_cast<py::ssize_t>(count), py::ssize_t{2}});
  std::copy(&out[0][0], &out[0][0] + 2 * count, res.mutable_data());
  return res;
}

std::string distanceText(double value, int mode, int prec, int zeros, int style) {
  // The documented room is prec + 312 characters; a huge precision is refused by the library.
  const std::size_t size = static_cast<std::size_t>(std::min(prec < 0 ? 6 : prec, 4096)) + 312;
  std::string buf(size, '\0');
  const int r = DnTos(mode, prec, zeros, style, value, buf.data(), size);
  if (r == 0)
    throw py::value_error("unknown mode (1 to 5)");
  if (r < 0)
    throw py::value_error("the text does not fit: precision too large");
  buf.resize(buf.find('\0'));
  return buf;
}

}  // namespace

PYBIND11_MODULE(tarnsysm, m) {
  m.doc() =
      "Planar computational geometry for 2D drafting.\n\n"
      "A polyline is a numpy array of rows (x, y, bulge) or (x, y, bulge, attribute, attribute); "
      "the bulge of a row belongs to the segment to the next row (tan of a quarter of the "
      "included angle, positive counter-clockwise). Signed areas are positive for clockwise "
      "boundaries, signed distances and offsets positive to the right of travel. eps is the "
      "absolute tolerance of every comparison.";

  m.def("offset", &offset, "rows"_a, "distance"_a, py::kw_only(), "closed"_a, "pick"_a = py::none(),
        "side"_a = py::none(), "through"_a = false, "eps"_a = kDefaultEps,
        "return_closed"_a = false,
        "The polyline offset by |distance|, lines kept straight and arcs concentric, with the "
        "loops the offset makes removed, keeping the piece nearest the picked point. The side "
        "comes from `pick`; side='left'/'right' picks a point off the first segment's middle at "
        "the distance on that side; with neither, a positive distance goes right and a negative "
        "one left. through=True passes through the picked point (the distance is then ignored). "
        "Returns a new array of the input's width (inserted rows have attribute -1); with "
        "return_closed=True, (array, closed), as trimming may keep a closed loop and a closed "
        "result of two straight rows comes back open. Raises ValueError with the reason when "
        "there is no offset: the picked point lies on the polyline, its distance cannot be "
        "measured, the distance is not finite, or the polyline collapses.");

  m.def("offset_round", &offsetRound, "rows"_a, "distance"_a, py::kw_only(), "closed"_a,
        "pick"_a = py::none(), "through"_a = false, "eps"_a = kDefaultEps,
        "return_closed"_a = false,
        "The exact offset at the signed distance (positive right of travel): the boundary of the "
        "points at |distance| from the polyline on that side, lines kept straight, arcs "
        "concentric, and a round corner of radius |distance| about a vertex wherever moved "
        "neighbours pull apart. Returns a list of arrays of the input's width, one for every "
        "loop, ordered by where they start along the input; a closed input gives closed loops "
        "running its way round, an open one open pieces in the direction of travel (and closed "
        "loops where the offset closes on itself). With return_closed=True the items are "
        "(array, closed). With a pick, only the loop nearest it, the side taken from the pick "
        "(through=True: passing through it, the distance ignored). Rows starting a piece of a "
        "moved segment keep its start row's attributes, rows starting a round corner or a cut "
        "take -1 as the first. Raises ValueError with the reason when there is no offset: a row "
        "or the distance is not finite, the distance is within eps of 0, the picked point lies on "
        "the polyline or its distance cannot be measured, or the offset is empty.");

  m.def(
      "area",
      [](Rows const& rows, double eps) {
        Polyline p = toPolyline(rows);
        return PLineArea(eps, 1, p.count(), p.data());
      },
      "rows"_a, py::kw_only(), "eps"_a = kDefaultEps,
      "Signed area enclosed by the polyline: positive clockwise, negative counter-clockwise. Arc "
      "edges count with their circular segments; an open polyline is closed by a straight chord. "
      "0.0 for fewer than three rows.");

  m.def(
      "signed_distance",
      [](Rows const& rows, Point point, bool closed, double eps) {
        Polyline p = toPolyline(rows);
        const auto d = signedDistance(p, closed, point, eps);
        if (!d)
          throw py::value_error("the distance cannot be measured");
        return *d;
      },
      "rows"_a, "point"_a, py::kw_only(), "closed"_a, "eps"_a = kDefaultEps,
      "Signed distance from the point to the polyline, positive to the right of travel: the "
      "smallest offset of a vertex's two-segment piece that the point can see which passes "
      "through the point. Raises ValueError for fewer than two rows, a single degenerate "
      "segment, or no visible piece.");

  m.def("trim_loops", &trimLoops, "rows"_a, py::kw_only(), "closed"_a, "pick"_a,
        "eps"_a = kDefaultEps,
        "Removes every self-intersection loop, keeping the piece nearest the picked point: a "
        "loop the point lies on, else the rest of the polyline unless a loop lies strictly "
        "nearer. Returns (rows, closed); a kept loop is closed. Rows are only removed or cut.");

  m.def(
      "line_line",
      [](Point a, Point b, Point c, Point d, bool segments, double eps) {
        Point p{};
        int flag = 0;
        const int n =
            D2LInts(eps, a[0], a[1], b[0], b[1], c[0], c[1], d[0], d[1], &p[0], &p[1], &flag);
        return points(segments && flag != 3 ? 0 : n, p, p);
      },
      "p1"_a, "p2"_a, "p3"_a, "p4"_a, py::kw_only(), "segments"_a = false, "eps"_a = kDefaultEps,
      "The crossing of the line p1-p2 with the line p3-p4: one point, or none for parallel, "
      "coincident or degenerate lines (the determinant, an area, compared with eps). With "
      "segments=True only a crossing on both segments (parameters in [-eps, 1 + eps]).");

  m.def(
      "line_circle",
      [](Point a, Point b, Point c, double r, bool segment, double eps) {
        Point pa{}, pb{};
        int flag = 0;
        const int n = DCirLInts(eps, a[0], a[1], b[0], b[1], c[0], c[1], r, &pa[0], &pa[1], &pb[0],
                                &pb[1], &flag);
        return points(n, pa, pb, flag, segment);
      },
      "p1"_a, "p2"_a, "centre"_a, "radius"_a, py::kw_only(), "segment"_a = false,
      "eps"_a = kDefaultEps,
      "Points where the line p1-p2 meets the circle, the one met first from p1 first; a tangent "
      "or two points closer than eps give one. None for a line not longer than eps. With "
      "segment=True only points on the segment (strictly within eps of its ends).");

  m.def(
      "circle_circle",
      [](Point c1, double r1, Point c2, double r2, double eps) {
        Point pa{}, pb{};
        return points(
            D2CirInts(eps, c1[0], c1[1], r1, c2[0], c2[1], r2, &pa[0], &pa[1], &pb[0], &pb[1]), pa,
            pb);
      },
      "centre1"_a, "radius1"_a, "centre2"_a, "radius2"_a, py::kw_only(), "eps"_a = kDefaultEps,
      "Points where two circles meet: the one right of the line from the first centre to the "
      "second first; one for touching circles; none for concentric circles.");

  m.def(
      "line_arc",
      [](Point a, Point b, Point c, double r, double start, double end, bool segment, double eps) {
        Point pa{}, pb{};
        int flag = 0;
        const int n = DArcLInts(eps, a[0], a[1], b[0], b[1], c[0], c[1], r, start, end, &pa[0],
                                &pa[1], &pb[0], &pb[1], &flag);
        return points(n, pa, pb, flag, segment);
      },
      "p1"_a, "p2"_a, "centre"_a, "radius"_a, "start"_a, "end"_a, py::kw_only(),
      "segment"_a = false, "eps"_a = kDefaultEps,
      "Points where the line p1-p2 meets the arc swept counter-clockwise from the angle start to "
      "end (eps also the angular tolerance at its ends). With segment=True only points on the "
      "segment.");

  m.def(
      "arc_arc",
      [](Point c1, double r1, double s1, double e1, Point c2, double r2, double s2, double e2,
         double eps) {
        Point pa{}, pb{};
        const int n = D2ArcInts(eps, c1[0], c1[1], r1, s1, e1, c2[0], c2[1], r2, s2, e2, &pa[0],
                                &pa[1], &pb[0], &pb[1]);
        return points(n, pa, pb);
      },
      "centre1"_a, "radius1"_a, "start1"_a, "end1"_a, "centre2"_a, "radius2"_a, "start2"_a,
      "end2"_a, py::kw_only(), "eps"_a = kDefaultEps,
      "Points on both arcs, each swept counter-clockwise from its start angle to its end.");

  m.def(
      "arc_from_bulge",
      [](Point p1, Point p2, double bulge, double eps) -> py::object {
        double cx, cy, r, sa, ea;
        if (!PL_ArcParam(eps, p1[0], p1[1], p2[0], p2[1], bulge, &cx, &cy, &r, &sa, &ea))
          return py::none();
        return py::make_tuple(tup({cx, cy}), r, sa, ea);
      },
      "p1"_a, "p2"_a, "bulge"_a, py::kw_only(), "eps"_a = kDefaultEps,
      "(centre, radius, start, end) of the bulge segment p1 -> p2: the counter-clockwise sweep "
      "from start to end (end >= start - eps, possibly above 2 pi); for a negative bulge start "
      "belongs to p2. None for a straight segment (chord or bulge within eps of 0).");

  m.def(
      "bulge_from_arc",
      [](Point c, double r, double start, double end, bool clockwise, double eps) {
        Point a{c[0] + r * std::cos(start), c[1] + r * std::sin(start)};
        Point b{c[0] + r * std::cos(end), c[1] + r * std::sin(end)};
        const Point from = a;
        double bulge = 0.0, dir = 0.0;
        PL_StpCenEdp(eps, a.data(), c.data(), b.data(), &bulge, &dir);
        if (clockwise)
          return py::make_tuple(tup(b), tup(from), -bulge);
        return py::make_tuple(tup(from), tup(b), bulge);
      },
      "centre"_a, "radius"_a, "start"_a, "end"_a, py::kw_only(), "clockwise"_a = false,
      "eps"_a = kDefaultEps,
      "(p1, p2, bulge) of the arc swept counter-clockwise from the angle start to end: the "
      "reverse of arc_from_bulge. clockwise=True travels it from end to start (negative bulge).");

  m.def(
      "circle_through",
      [](Point a, Point b, std::optional<Point> c, double eps) -> py::object {
        double cx = 0.0, cy = 0.0, r = 0.0;
        const int ok =
            c ? DGetPPPCircle(eps, a[0], a[1], b[0], b[1], (*c)[0], (*c)[1], &cx, &cy, &r)
              : DGetPPCircle(eps, a[0], a[1], b[0], b[1], &cx, &cy, &r);
        if (!ok)
          return py::none();
        return py::make_tuple(tup({cx, cy}), r);
      },
      "p1"_a, "p2"_a, "p3"_a = py::none(), py::kw_only(), "eps"_a = kDefaultEps,
      "(centre, radius) of the circle through three points, or with p1-p2 as its diameter when "
      "p3 is not given. None for coincident points (within eps) or three collinear ones.");

  m.def(
      "fit_circle",
      [](py::array_t<double, py::array::c_style | py::array::forcecast> pts,
         double eps) -> py::object {
        if (pts.ndim() != 2 || pts.shape(1) != 2 || pts.shape(0) > INT_MAX)
          throw py::value_error("points are an array of shape (n, 2)");
        double cx = 0.0, cy = 0.0, r = 0.0, rms = 0.0;
        if (!DGetNPCircle(eps, static_cast<int>(pts.shape(0)),
                          reinterpret_cast<const double(*)[2]>(pts.data()), &cx, &cy, &r, &rms))
          return py::none();
        return py::make_tuple(tup({cx, cy}), r, rms);
      },
      "points"_a, py::kw_only(), "eps"_a = kDefaultEps,
      "(centre, radius, rms) of the geometric least-squares circle of the points (n, 2): rms is "
      "the root mean square of their distances from it. None for fewer than three points, "
      "non-finite ones, or points within eps of a line.");

  m.def(
      "tangent_points",
      [](Point c, double r, Point p, std::optional<std::array<double, 2>> arc, double eps) {
        Point a{}, b{};
        return points(arc ? DLthrPtangArc(eps, c[0], c[1], r, (*arc)[0], (*arc)[1], p[0], p[1],
                                          &a[0], &a[1], &b[0], &b[1])
                          : DLthrPtangC(eps, c[0], c[1], r, p[0], p[1], &a[0], &a[1], &b[0], &b[1]),
                      a, b);
      },
      "centre"_a, "radius"_a, "point"_a, py::kw_only(), "arc"_a = py::none(), "eps"_a = kDefaultEps,
      "Where the tangents from the point touch the circle, the one right of the way from the "
      "point to the centre first; for a point on the circle (within eps), a second point of its "
      "tangent there; empty for a point inside. With arc=(start, end) only points on the arc "
      "swept counter-clockwise from start to end are kept (for a point on the circle, the "
      "second point is tested).");

  defineEllipse(m);
  defineConstructions(m);

  m.def("clip_polygon", &clipPolygon, "points"_a, "rect"_a,
        "The polygon (n, 2) clipped to the rectangle ((x0, y0), (x1, y1)), lower left first; a "
        "ring not closed by repeating its first point is closed. Points on a side count as "
        "outside. Returns an (m, 2) array closed by repetition, empty when nothing is inside.");

  m.def("distance_text", &distanceText, "value"_a, py::kw_only(), "mode"_a = 2, "prec"_a = 4,
        "zeros"_a = 0, "style"_a = 0,
        "The value as text in a drafting unit style: mode 1 scientific, 2 decimal (zeros bit 4 "
        "drops leading and bit 8 trailing zeros), 3 feet and decimal inches, 4 feet, inches and "
        "a fraction of denominator 2**prec, 5 whole units and a fraction. Raises ValueError for "
        "an unknown mode.");

  m.def(
      "match",
      [](std::string const& name, std::string const& patterns, int limit) {
        return Match(name.c_str(), patterns.c_str(), limit) != 0;
      },
      "name"_a, "patterns"_a, "limit"_a = INT_MAX,
      "True when the name matches a pattern of the comma-separated list, case-insensitively: "
      "'#' a digit, '@' a letter, '.' neither, '?' any character, '*' any run, [set] and [~set], "
      "'\\x' or '`x' a literal x, a leading '~' negates. At most `limit` characters are compared.");
}
