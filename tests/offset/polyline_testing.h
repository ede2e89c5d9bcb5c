// Tarnsysm: planar computational geometry for 2D drafting.
// Test helpers for polylines: exact-size row buffers behind sentinels, and a few shapes.
#pragma once

#include "offset/offset_validity.h"

#include <gtest/gtest.h>

#include <cmath>
#include <memory>
#include <string>
#include <vector>

namespace tarnsysm_test {

inline constexpr double kPi = 3.141592653589793;

using Vertex = ValidityRow;
using Rows = std::vector<ValidityRow>;

/// A heap array of exactly `capacity` rows, so AddressSanitizer catches any write beyond it.
/// Rows from `count` on hold a sentinel; row i carries the attributes 100 + i and 200 + i.
class Polyline {
 public:
  static constexpr double kSentinel = -7.25e77;

  explicit Polyline(const Rows& vertices, int capacityFactor = 2)
      : count_(static_cast<int>(vertices.size())),
        capacity_(capacityFactor * count_),
        rows_(new double[capacity_ > 0 ? capacity_ : 1][5]) {
    for (int i = 0; i < capacity_; ++i)
      for (int f = 0; f < 5; ++f)
        rows_[i][f] = kSentinel;
    for (int i = 0; i < count_; ++i) {
      const double row[5] = {vertices[i].x, vertices[i].y, vertices[i].bulge, 100.0 + i, 200.0 + i};
      std::copy(row, row + 5, rows_[i]);
    }
  }

  double (*rows())[5] { return rows_.get(); }
  double* operator[](int i) { return rows_[i]; }
  int count() const { return count_; }
  Rows first(int n) { return validityRows(rows_.get(), n); }

 private:
  int count_;
  int capacity_;
  std::unique_ptr<double[][5]> rows_;
};

/// Expected rows (x, y, bulge, field 3, field 4; NaN: not checked), and with `inPlace` (a
/// function that never needs more rows than it is given) nothing written past the rows given.
inline void expectRows(Polyline& pl, bool inPlace, const std::vector<std::vector<double>>& want,
                       const std::string& name) {
  for (size_t i = 0; i < want.size(); ++i)
    for (size_t f = 0; f < want[i].size(); ++f)
      EXPECT_TRUE(std::isnan(want[i][f]) ||
                  std::fabs(pl[static_cast<int>(i)][f] - want[i][f]) <= 1e-12)
          << name << " row " << i << " field " << f << ": " << pl[static_cast<int>(i)][f];
  EXPECT_TRUE(!inPlace || pl.count() == 0 || pl[pl.count()][0] == Polyline::kSentinel) << name;
}

/// The closed polyline traversed backwards: segment i -> i+1 (bulge b) becomes i+1 -> i (-b).
inline Rows reversedClosed(const Rows& v) {
  const int n = static_cast<int>(v.size());
  Rows r(n);
  for (int k = 0; k < n; ++k)
    r[k] = {v[n - 1 - k].x, v[n - 1 - k].y, -v[(2 * n - 2 - k) % n].bulge};
  return r;
}

/// Counter-clockwise shapes: a rectangle, a circle of two half arcs, a rounded rectangle of
/// quarter arcs (radius r) and straight sides.
inline Rows rectangle(double x0, double y0, double w, double h) {
  return {{x0, y0, 0.0}, {x0 + w, y0, 0.0}, {x0 + w, y0 + h, 0.0}, {x0, y0 + h, 0.0}};
}

inline Rows circleOfTwoArcs(double cx, double cy, double r) {
  return {{cx + r, cy, 1.0}, {cx - r, cy, 1.0}};
}

inline Rows roundedRectangle(double w, double h, double r) {
  const double q = std::tan(kPi / 8.0), hw = w / 2.0, hh = h / 2.0;
  return {{-hw + r, -hh, 0.0}, {hw - r, -hh, q}, {hw, -hh + r, 0.0}, {hw, hh - r, q},
          {hw - r, hh, 0.0},   {-hw + r, hh, q}, {-hw, hh - r, 0.0}, {-hw, -hh + r, q}};
}

}  // namespace tarnsysm_test
