// Tarnsysm for Python: what the binding files share. Points cross as (x, y) tuples.
#pragma once

#include <pybind11/pybind11.h>

#include <array>
#include <vector>

namespace tarnsysm_python {

namespace py = pybind11;

using Point = std::array<double, 2>;
using Points = std::vector<Point>;
constexpr double kDefaultEps = 1e-9;
constexpr double kPi = 3.14159265358979323846;

inline py::tuple tup(Point p) {
  return py::make_tuple(p[0], p[1]);
}

inline py::tuple tuples(Points const& ps) {
  py::tuple t(ps.size());
  for (std::size_t i = 0; i < ps.size(); ++i)
    t[i] = tup(ps[i]);
  return t;
}

// The library's answer 0 means no result: say why, in the words of its header.
inline void require(bool ok, char const* reason) {
  if (!ok)
    throw py::value_error(reason);
}

// Circle constructions, arc and bulge builders, tangent lines and dimension helpers.
void defineConstructions(py::module_& m);

}  // namespace tarnsysm_python
