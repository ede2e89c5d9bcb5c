// Tarnsysm: planar computational geometry for 2D drafting.
// The test polylines of the offset measurements: the shared shapes (circle, star, gear, rounded
// rectangle) and two hostile ones (a zigzag on one line, a spiky star).
#pragma once

// These are the shapes that the project's shared measurement script writes as text, built here
// with the same formulas in the same operation order, so every vertex is bit-identical to the
// script's output read back with strtod (its cos, sin, tan and atan2 are the C library's, like
// ours). Changing the order of an operation below changes the last bit of some vertex, and the
// golden files in tests/data would catch it.
//
// Every shape is closed and counter-clockwise (y up). A row's bulge belongs to the segment from
// that row to the next; the last row's bulge to the closing segment.

#include "primitives/internal.h"

#include <cmath>
#include <stdexcept>
#include <string>
#include <vector>

namespace tarnsysm::bench {

struct ShapeVertex {
  double x;
  double y;
  double bulge;
};

enum class ShapeKind { kCircle, kStar, kGear, kRoundedRect };

namespace shape_detail {

// Vertices at angles 2 pi i / n, radius and bulge chosen by the parity of i.
inline std::vector<ShapeVertex> radialVertices(int n, double rEven, double rOdd, double bulgeEven,
                                               double bulgeOdd) {
  std::vector<ShapeVertex> rows;
  rows.reserve(static_cast<std::size_t>(n));
  for (int i = 0; i < n; ++i) {
    // (2 pi) i / n, left to right: the script's order.
    const double a = 2.0 * detail::kPi * static_cast<double>(i) / static_cast<double>(n);
    const double r = i % 2 == 0 ? rEven : rOdd;
    const double b = i % 2 == 0 ? bulgeEven : bulgeOdd;
    rows.push_back({r * detail::portable::cos(a), r * detail::portable::sin(a), b});
  }
  return rows;
}

// Tips at even i, notches at odd i; the segment from a notch to the next tip bows into the gap
// between two tips with an included angle of half that gap's angle, so the outline never
// crosses itself.
inline std::vector<ShapeVertex> spikyVertices(int n, double outer, double inner) {
  std::vector<ShapeVertex> rows = radialVertices(n, outer, inner, 0.0, 0.0);
  const double x0 = rows[0].x, y0 = rows[0].y;
  const double x1 = rows[1].x, y1 = rows[1].y;
  const double x2 = rows[2].x, y2 = rows[2].y;
  // Angle at notch 1 between the directions to tip 0 and tip 2 (cross, dot).
  const double gap =
      std::fabs(detail::portable::atan2((x0 - x1) * (y2 - y1) - (y0 - y1) * (x2 - x1),
                                        (x0 - x1) * (x2 - x1) + (y0 - y1) * (y2 - y1)));
  const double bulge = detail::portable::tan(gap / 2.0 / 4.0);  // included angle = gap / 2
  for (int i = 0; i < n; ++i)
    rows[static_cast<std::size_t>(i)].bulge = i % 2 != 0 ? bulge : 0.0;
  return rows;
}

// The script prints x + 0.0, which turns a negative zero into +0.0; do the same.
inline std::vector<ShapeVertex> withoutNegativeZeros(std::vector<ShapeVertex> rows) {
  for (ShapeVertex& r : rows) {
    r.x = r.x + 0.0;
    r.y = r.y + 0.0;
  }
  return rows;
}

}  // namespace shape_detail

/// circle N (N even, >= 4): vertices on the circle of radius 100 about the origin; even segments
/// are arcs of that circle, odd segments straight chords. Size 100.
inline std::vector<ShapeVertex> makeCircle(int n) {
  if (n < 4 || n % 2 != 0)
    throw std::invalid_argument("circle needs an even N >= 4");
  const double arcBulge = detail::portable::tan(detail::kPi / (2.0 * static_cast<double>(n)));
  return shape_detail::withoutNegativeZeros(
      shape_detail::radialVertices(n, 100.0, 100.0, arcBulge, 0.0));
}

/// star N (N even, >= 6): tips at radius 100, notches at 80, notch-to-tip segments bowed
/// outwards. The spikes thin as N grows, so offsets cross many neighbours. Size 100.
inline std::vector<ShapeVertex> makeStar(int n) {
  if (n < 6 || n % 2 != 0)
    throw std::invalid_argument("star needs an even N >= 6");
  return shape_detail::withoutNegativeZeros(shape_detail::spikyVertices(n, 100.0, 80.0));
}

/// gear N (N even, >= 16): the star's construction with a fixed tooth, outer radius N / (2 pi)
/// (arc length 1 per vertex) and tooth depth 2, so the shape grows with N. Size N / (2 pi).
inline std::vector<ShapeVertex> makeGear(int n) {
  if (n < 16 || n % 2 != 0)
    throw std::invalid_argument("gear needs an even N >= 16");
  const double outer = static_cast<double>(n) / (2.0 * detail::kPi);
  return shape_detail::withoutNegativeZeros(shape_detail::spikyVertices(n, outer, outer - 2.0));
}

/// rrect N (N a multiple of 4, >= 8): a 200 x 100 rectangle centred on the origin with corner
/// radius 20; each corner is one quarter arc, each side N/4 - 1 equal collinear segments. Size 50.
inline std::vector<ShapeVertex> makeRoundedRect(int n) {
  if (n < 8 || n % 4 != 0)
    throw std::invalid_argument("rrect needs N a multiple of 4, >= 8");
  const double hw = 100.0, hh = 50.0, r = 20.0;
  const int k = n / 4 - 1;  // straight segments per side
  const double quarter = detail::portable::tan(detail::kPi / 8.0);
  // Each side runs counter-clockwise from the end of one corner arc to the start of the next;
  // the corner arc follows the side's last vertex.
  const double sides[4][4] = {
      {-hw + r, -hh, hw - r, -hh},  // bottom, left to right
      {hw, -hh + r, hw, hh - r},    // right, bottom to top
      {hw - r, hh, -hw + r, hh},    // top, right to left
      {-hw, hh - r, -hw, -hh + r},  // left, top to bottom
  };
  std::vector<ShapeVertex> rows;
  rows.reserve(static_cast<std::size_t>(n));
  for (const auto& s : sides) {
    const double x0 = s[0], y0 = s[1], x1 = s[2], y1 = s[3];
    for (int j = 0; j < k; ++j) {
      const double t = static_cast<double>(j) / static_cast<double>(k);
      rows.push_back({x0 + (x1 - x0) * t, y0 + (y1 - y0) * t, 0.0});
    }
    rows.push_back({x1, y1, quarter});
  }
  return shape_detail::withoutNegativeZeros(std::move(rows));
}

/// The shape of the given kind with n vertices; throws std::invalid_argument for an n the shape
/// does not allow.
inline std::vector<ShapeVertex> makeShape(ShapeKind kind, int n) {
  switch (kind) {
    case ShapeKind::kCircle:
      return makeCircle(n);
    case ShapeKind::kStar:
      return makeStar(n);
    case ShapeKind::kGear:
      return makeGear(n);
    case ShapeKind::kRoundedRect:
      return makeRoundedRect(n);
  }
  throw std::invalid_argument("unknown shape");
}

/// The size that offset distances refer to: the radius of circle and star, the gear's outer
/// radius, half the rounded rectangle's height.
inline double shapeSize(ShapeKind kind, int n) {
  switch (kind) {
    case ShapeKind::kCircle:
    case ShapeKind::kStar:
      return 100.0;
    case ShapeKind::kGear:
      return static_cast<double>(n) / (2.0 * detail::kPi);
    case ShapeKind::kRoundedRect:
      return 50.0;
  }
  return 0.0;
}

/// The script's name of the shape ("circle", "star", "gear", "rrect").
inline std::string shapeName(ShapeKind kind) {
  switch (kind) {
    case ShapeKind::kCircle:
      return "circle";
    case ShapeKind::kStar:
      return "star";
    case ShapeKind::kGear:
      return "gear";
    case ShapeKind::kRoundedRect:
      return "rrect";
  }
  return "";
}

// ---- Shapes that once made the trimming quadratic (not written by the script) ---------------

/// zigzag N (N >= 2): rows running back and forth along one line, x = i mod 2, y = 0, all
/// straight. Every segment overlaps every other one.
inline std::vector<ShapeVertex> makeZigzag(int n) {
  if (n < 2)
    throw std::invalid_argument("zigzag needs N >= 2");
  std::vector<ShapeVertex> rows;
  rows.reserve(static_cast<std::size_t>(n));
  for (int i = 0; i < n; ++i)
    rows.push_back({static_cast<double>(i % 2), 0.0, 0.0});
  return rows;
}

/// spiky N (N even, >= 6): the star's tips at radius 100 and notches at 50, all segments
/// straight: long slanted spokes packed tightly round the centre. Size 100.
inline std::vector<ShapeVertex> makeSpikyStar(int n) {
  if (n < 6 || n % 2 != 0)
    throw std::invalid_argument("spiky needs an even N >= 6");
  return shape_detail::radialVertices(n, 100.0, 50.0, 0.0, 0.0);
}

/// Which side of a shape an offset goes to.
enum class Side { kInward, kOutward };

// The pick point decides the side. Outward: well outside every shape (3 S on the x axis, a
// little off it so that it does not line up with the vertex at angle 0). Inward, circle and
// rounded rectangle: next to the centre. Inward, gear and star: the picked point's distance is
// the one at which the raw offset of some three-vertex piece passes through it, and no such piece
// of a toothed outline passes through the centre (the offset would fail), so the pick sits just
// inside the middle of the first tooth flank (segment 0, straight), a twentieth of the vertex
// spacing 2 pi S / N away from it, as a user would click next to the outline.
void pickPoint(ShapeKind kind, const std::vector<ShapeVertex>& shape, Side side, double* pick) {
  const int n = static_cast<int>(shape.size());
  if (side == Side::kOutward) {
    pick[0] = 3.0 * shapeSize(kind, n);
    pick[1] = 0.1;
  } else if (kind == ShapeKind::kCircle || kind == ShapeKind::kRoundedRect) {
    pick[0] = 0.1;
    pick[1] = 0.05;
  } else {
    const double dx = shape[1].x - shape[0].x;
    const double dy = shape[1].y - shape[0].y;
    const double length = std::sqrt(dx * dx + dy * dy);
    const double h = 0.05 * 2.0 * tarnsysm::detail::kPi * shapeSize(kind, n) / n;
    // Left of travel is inside a counter-clockwise outline.
    pick[0] = (shape[0].x + shape[1].x) / 2.0 - dy / length * h;
    pick[1] = (shape[0].y + shape[1].y) / 2.0 + dx / length * h;
  }
}

}  // namespace tarnsysm::bench
