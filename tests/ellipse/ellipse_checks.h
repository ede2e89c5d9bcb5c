// Tarnsysm: planar computational geometry for 2D drafting.
// What the ellipse tests share: records, frame points computed by hand, distances to an ellipse
// by its implicit equation or by dense sampling, and random ellipses with fixed seeds.
#pragma once

#include <Tarnsysm.h>

#include "test_support.h"

#include <algorithm>
#include <cmath>
#include <random>

namespace tarnsysm::test {

inline constexpr double kSentinel = -4242.125;

inline TSellipse ellipse(double cx, double cy, double a, double b, double rot, double start = 0.0,
                         double end = kTwoPi) {
  return TSellipse{{cx, cy, 0.0}, a, b, rot, start, end};
}

inline TSline segment(double x1, double y1, double x2, double y2) {
  return TSline{{0, 0, 0, 0}, {x1, y1, 0.0}, {x2, y2, 0.0}};
}

/// The world point of parameter t, written out from the definition.
inline void pointAt(const TSellipse& e, double t, double* p) {
  const double x = e.a * std::cos(t), y = e.b * std::sin(t);
  p[0] = e.center[0] + x * std::cos(e.rotation) - y * std::sin(e.rotation);
  p[1] = e.center[1] + x * std::sin(e.rotation) + y * std::cos(e.rotation);
  p[2] = 0.0;
}

/// The world point (x, y) in the ellipse's frame.
inline void toLocal(const TSellipse& e, double x, double y, double* q) {
  const double dx = x - e.center[0], dy = y - e.center[1];
  q[0] = dx * std::cos(e.rotation) + dy * std::sin(e.rotation);
  q[1] = -dx * std::sin(e.rotation) + dy * std::cos(e.rotation);
}

/// x^2 / a^2 + y^2 / b^2 - 1 of the world point: negative inside.
inline double implicit(const TSellipse& e, double x, double y) {
  double q[2];
  toLocal(e, x, y, q);
  return q[0] * q[0] / (e.a * e.a) + q[1] * q[1] / (e.b * e.b) - 1.0;
}

/// Frame gradient of the implicit value / 2, i.e. a normal at the curve point near (x, y).
inline void normalAt(const TSellipse& e, double x, double y, double* n) {
  double q[2];
  toLocal(e, x, y, q);
  n[0] = q[0] / (e.a * e.a);
  n[1] = q[1] / (e.b * e.b);
}

/// First-order distance of a point near the curve: |F| / |grad F|.
inline double offCurve(const TSellipse& e, double x, double y) {
  double n[2];
  normalAt(e, x, y, n);
  return std::fabs(implicit(e, x, y)) / (2.0 * std::hypot(n[0], n[1]));
}

/// Smallest distance from (x, y) to the arc's points at `samples` even parameter steps.
inline double sampledDistance(const TSellipse& e, double x, double y, int samples) {
  const double sweep = e.end - e.start > 0 && e.end - e.start <= kTwoPi ? e.end - e.start : kTwoPi;
  double best = INFINITY, p[3];
  for (int i = 0; i <= samples; ++i) {
    pointAt(e, e.start + sweep * i / samples, p);
    best = std::min(best, std::hypot(p[0] - x, p[1] - y));
  }
  return best;
}

/// Random ellipses: first semi-axis in [amin, amax], the second scaled by a log-uniform ratio
/// up to maxRatio either way, centres within 10, any rotation and arc.
class EllipseDraws {
 public:
  EllipseDraws(unsigned seed, double amin, double amax, double maxRatio)
      : rng_(seed), size_(amin, amax), logRatio_(-std::log(maxRatio), std::log(maxRatio)) {}

  TSellipse operator()() {
    const double a = size_(rng_), b = a * std::exp(logRatio_(rng_)), start = turn();
    return ellipse(coord(), coord(), a, b, turn(), start, start + turn());
  }
  double coord() { return 20.0 * unit_(rng_) - 10.0; }
  double turn() { return kTwoPi * unit_(rng_); }

 private:
  std::mt19937 rng_;
  std::uniform_real_distribution<double> size_, logRatio_, unit_{0.0, 1.0};
};

}  // namespace tarnsysm::test
