// Tarnsysm: planar computational geometry for 2D drafting.
// Plain geometry the circle construction tests judge results with: objects, distances, and the
// conditions a constructed circle must meet.
#pragma once

#include "test_support.h"

#include <gtest/gtest.h>

#include <cmath>
#include <random>
#include <string>

namespace circles_test {

using namespace tarnsysm::test;

inline constexpr double kEps = 1e-9;
inline constexpr double kSentinel = -4242.125;

struct Pt {
  double x, y;
};
struct Circ {
  double r, x, y;  // radius first, as the constructions take it
};
struct Line {
  double x1, y1, x2, y2;
};

inline double dist(Pt a, Pt b) {
  return std::hypot(a.x - b.x, a.y - b.y);
}
inline double lineDistance(Pt p, const Line& l) {
  return std::fabs((p.x - l.x1) * (l.y2 - l.y1) - (p.y - l.y1) * (l.x2 - l.x1)) /
         std::hypot(l.x2 - l.x1, l.y2 - l.y1);
}

// Draws configurations: circles of radius 0.5 to 3 about points of [-10, 10]^2, lines through
// two such points, plain points; everything moved by a shift.
struct Draw {
  std::mt19937_64 rng;
  double sx, sy;
  Draw(unsigned seed, double shiftX, double shiftY) : rng(seed), sx(shiftX), sy(shiftY) {}
  double uniform(double lo, double hi) {
    return std::uniform_real_distribution<double>(lo, hi)(rng);
  }
  Pt point() { return {uniform(-10, 10) + sx, uniform(-10, 10) + sy}; }
  Circ circle() {
    const Pt c = point();
    return {uniform(0.5, 3), c.x, c.y};
  }
  Line line() {
    const Pt a = point(), b = point();
    return {a.x, a.y, b.x, b.y};
  }
};

// Random configurations run at the origin and moved far from it, with the same accuracy.
inline const auto kPlacements = testing::Values(Pt{0, 0}, Pt{1e6, -1e6});
inline std::string placementName(const testing::TestParamInfo<Pt>& info) {
  return info.param.x == 0 ? "at_origin" : "shifted_far";
}

// Outputs filled with a sentinel, so "untouched" can be told.
struct Out {
  double x = kSentinel, y = kSentinel, r = kSentinel;
  bool untouched() const { return x == kSentinel && y == kSentinel && r == kSentinel; }
};

}  // namespace circles_test
