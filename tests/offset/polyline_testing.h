// Tarnsysm: planar computational geometry for 2D drafting.
// Test helpers for polylines: exact-size row buffers, shapes, reversal and geometric measures
// computed here from first principles (not through the library).
#pragma once

#include <cmath>
#include <initializer_list>
#include <memory>
#include <vector>

namespace tarnsysm_test {

inline constexpr double kPi = 3.141592653589793;

struct Vertex {
  double x, y, bulge;
};

/// A heap array of exactly `capacity` rows, so AddressSanitizer catches any write beyond it.
/// Rows from `count` on are filled with a sentinel.
class Polyline {
 public:
  static constexpr double kSentinel = -7.25e77;

  Polyline(std::initializer_list<Vertex> vertices, int capacityFactor = 2)
      : Polyline(std::vector<Vertex>(vertices), capacityFactor) {}

  explicit Polyline(const std::vector<Vertex>& vertices, int capacityFactor = 2)
      : count_(static_cast<int>(vertices.size())),
        capacity_(capacityFactor * static_cast<int>(vertices.size())),
        rows_(new double[capacity_ > 0 ? capacity_ : 1][5]) {
    for (int i = 0; i < capacity_; ++i) {
      for (int f = 0; f < 5; ++f)
        rows_[i][f] = kSentinel;
    }
    for (int i = 0; i < count_; ++i) {
      rows_[i][0] = vertices[i].x;
      rows_[i][1] = vertices[i].y;
      rows_[i][2] = vertices[i].bulge;
      rows_[i][3] = 100.0 + i;  // attributes that tell the source row
      rows_[i][4] = 200.0 + i;
    }
  }

  double (*rows())[5] { return rows_.get(); }
  double* operator[](int i) { return rows_[i]; }
  int count() const { return count_; }
  int capacity() const { return capacity_; }

 private:
  int count_;
  int capacity_;
  std::unique_ptr<double[][5]> rows_;
};

/// The closed polyline traversed backwards: the segment from row i to row i+1 (bulge b) becomes
/// the segment from row i+1 to row i with bulge -b.
inline std::vector<Vertex> reversedClosed(const std::vector<Vertex>& v) {
  const int n = static_cast<int>(v.size());
  std::vector<Vertex> r(n);
  for (int k = 0; k < n; ++k) {
    const int src = n - 1 - k;          // the vertex
    const int seg = (src - 1 + n) % n;  // the segment that arrives at it
    r[k] = {v[src].x, v[src].y, -v[seg].bulge};
  }
  return r;
}

inline std::vector<Vertex> rectangle(double x0, double y0, double w, double h) {
  // Counter-clockwise.
  return {{x0, y0, 0.0}, {x0 + w, y0, 0.0}, {x0 + w, y0 + h, 0.0}, {x0, y0 + h, 0.0}};
}

/// Counter-clockwise circle of two half-circle arcs.
inline std::vector<Vertex> circleOfTwoArcs(double cx, double cy, double r) {
  return {{cx + r, cy, 1.0}, {cx - r, cy, 1.0}};
}

/// Counter-clockwise rounded rectangle: straight sides joined by quarter arcs of radius r.
inline std::vector<Vertex> roundedRectangle(double w, double h, double r) {
  const double q = std::tan(kPi / 8.0);
  const double hw = w / 2.0, hh = h / 2.0;
  return {{-hw + r, -hh, 0.0}, {hw - r, -hh, q}, {hw, -hh + r, 0.0}, {hw, hh - r, q},
          {hw - r, hh, 0.0},   {-hw + r, hh, q}, {-hw, hh - r, 0.0}, {-hw, -hh + r, q}};
}

/// Signed area enclosed by rows 0 .. n-1 (closed), positive when clockwise: the shoelace sum
/// plus, for each arc, its circular segment (taken away when it bows to the right of travel).
inline double enclosedArea(double (*v)[5], int n) {
  double sum = 0.0;
  for (int i = 0; i < n; ++i) {
    const double* a = v[i];
    const double* b = v[(i + 1) % n];
    sum += (a[0] * b[1] - b[0] * a[1]) / 2.0;  // counter-clockwise positive here
    if (a[2] != 0.0) {
      const double chord = std::hypot(b[0] - a[0], b[1] - a[1]);
      const double theta = 4.0 * std::atan(a[2]);
      const double r = chord / (2.0 * std::sin(std::fabs(theta) / 2.0));
      const double segment = r * r * (std::fabs(theta) - std::sin(std::fabs(theta))) / 2.0;
      // A positive bulge bows to the right: outwards on a counter-clockwise boundary.
      sum += a[2] > 0.0 ? segment : -segment;
    }
  }
  return -sum;
}

/// Length of rows 0 .. n-1 as a closed (or open) polyline, arcs measured along the arc.
inline double pathLength(double (*v)[5], int n, bool closed) {
  double len = 0.0;
  const int segments = closed ? n : n - 1;
  for (int i = 0; i < segments; ++i) {
    const double* a = v[i];
    const double* b = v[(i + 1) % n];
    const double chord = std::hypot(b[0] - a[0], b[1] - a[1]);
    if (a[2] == 0.0) {
      len += chord;
    } else {
      const double theta = std::fabs(4.0 * std::atan(a[2]));
      len += chord / (2.0 * std::sin(theta / 2.0)) * theta;
    }
  }
  return len;
}

}  // namespace tarnsysm_test
