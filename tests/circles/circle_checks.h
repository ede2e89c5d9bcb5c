// Tarnsysm: planar computational geometry for 2D drafting.
// Plain geometry the circle and tangent-line tests judge results with: objects, distances,
// random configurations and sentinel-filled outputs.
#pragma once

#include "test_support.h"

namespace circles_test {

using namespace tarnsysm::test;

inline constexpr double kEps = 1e-9, kSentinel = -4242.125;

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
// two such points, plain points; everything moved by a shift. With hostile numbers, the inputs
// of robustness tests.
struct Draw {
  std::mt19937_64 rng;
  Pt shift;
  HostileNumbers* hostile = nullptr;  // when set, about a fifth of the numbers come from it
  double uniform(double lo, double hi) {
    const double u = std::uniform_real_distribution<double>(lo, hi)(rng);
    return hostile && std::uniform_real_distribution<double>(0, 1)(rng) < 0.2 ? (*hostile)() : u;
  }
  Pt point() { return {uniform(-10, 10) + shift.x, uniform(-10, 10) + shift.y}; }
  Circ circle() {
    const Pt c = point();
    return {uniform(0.5, 3), c.x, c.y};
  }
  Line line() {
    const Pt a = point(), b = point();
    return {a.x, a.y, b.x, b.y};
  }
};

// Random configurations run at the origin (0) and moved far from it (1), with the same accuracy.
inline const auto kPlacements = testing::Values(Pt{0, 0}, Pt{1e6, -1e6});

// Outputs filled with a sentinel, so "untouched" can be told: a circle's centre and radius (and
// a fit's RMS), or a line's two ends. near() is the one comparison of results.
struct Out {
  double x = kSentinel, y = kSentinel, r = kSentinel, w = kSentinel;
  bool untouched() const { return near(Out{}, 0); }
  bool near(const Out& o, double tol) const {
    return std::fabs(x - o.x) <= tol && std::fabs(y - o.y) <= tol && std::fabs(r - o.r) <= tol &&
           std::fabs(w - o.w) <= tol;
  }
};

}  // namespace circles_test
