// Tarnsysm: planar computational geometry for 2D drafting.
// What the ellipse and line-intersection tests share: records, frame points computed by hand,
// distances to an ellipse by its implicit equation or by dense sampling, sign changes along a
// parameter, and random ellipses with fixed seeds.
#pragma once

#include "test_support.h"

namespace tarnsysm::test {

inline constexpr double kSentinel = -4242.125;

inline TSellipse ellipse(double cx, double cy, double a, double b, double rot, double start = 0.0,
                         double end = kTwoPi) {
  return TSellipse{{cx, cy, 0.0}, a, b, rot, start, end};
}

inline TSline segment(double x1, double y1, double x2, double y2) {
  return TSline{{0, 0, 0, 0}, {x1, y1, 0.0}, {x2, y2, 0.0}};
}

inline double dist(const double* p, const double* q) {
  return std::hypot(*p - *q, p[1] - q[1]);
}

/// |dP/dt| of the parameterisation at t.
inline double speed(const TSellipse& e, double t) {
  return std::hypot(e.a * std::sin(t), e.b * std::cos(t));
}

/// The world point of parameter t, written out from the definition, into p.
inline double* pointAt(const TSellipse& e, double t, double* p) {
  const double x = e.a * std::cos(t), y = e.b * std::sin(t);
  p[0] = e.center[0] + x * std::cos(e.rotation) - y * std::sin(e.rotation);
  p[1] = e.center[1] + x * std::sin(e.rotation) + y * std::cos(e.rotation);
  p[2] = 0.0;
  return p;
}

/// The world point p in the ellipse's frame.
inline void toLocal(const TSellipse& e, const double* p, double* q) {
  const double dx = p[0] - e.center[0], dy = p[1] - e.center[1];
  q[0] = dx * std::cos(e.rotation) + dy * std::sin(e.rotation);
  q[1] = -dx * std::sin(e.rotation) + dy * std::cos(e.rotation);
}

/// x^2 / a^2 + y^2 / b^2 - 1 of the world point p (negative inside); n receives half its frame
/// gradient, a normal at the curve point near p.
inline double implicit(const TSellipse& e, const double* p, double* n) {
  double q[2];
  toLocal(e, p, q);
  n[0] = q[0] / (e.a * e.a);
  n[1] = q[1] / (e.b * e.b);
  return q[0] * n[0] + q[1] * n[1] - 1.0;
}

/// First-order distance of a point near the curve: |F| / |grad F|.
inline double offCurve(const TSellipse& e, const double* p) {
  double n[2];
  return std::fabs(implicit(e, p, n)) / (2.0 * std::hypot(n[0], n[1]));
}

/// Smallest distance from p to the arc's points at `samples` even parameter steps.
inline double sampledDistance(const TSellipse& e, const double* p, int samples) {
  const double sweep = e.end - e.start > 0 && e.end - e.start <= kTwoPi ? e.end - e.start : kTwoPi;
  double best = INFINITY, q[3];
  for (int i = 0; i <= samples; ++i)
    best = std::min(best, dist(p, pointAt(e, e.start + sweep * i / samples, q)));
  return best;
}

/// Roots of f on [t0, t1]: sign changes at `samples` even steps, refined by bisection. `clear` is
/// set false when an extremum of f lies within `near` of 0 (near-tangency: the count is unclear).
template <class F>
std::vector<double> signChanges(F f, double t0, double t1, int samples, double near, bool* clear) {
  std::vector<double> roots;
  double prev = f(t0), prevStep = 0;
  for (int k = 1; k <= samples; ++k) {
    const double v = f(t0 + (t1 - t0) * k / samples);
    *clear = *clear && !((v - prev) * prevStep < 0 && std::fabs(prev) < near);
    if ((v > 0) != (prev > 0)) {
      double lo = t0 + (t1 - t0) * (k - 1) / samples, hi = t0 + (t1 - t0) * k / samples;
      for (int i = 0; i < 60; ++i)
        ((f((lo + hi) / 2) > 0) == (prev > 0) ? lo : hi) = (lo + hi) / 2;
      roots.push_back(lo);
    }
    prevStep = v - prev;
    prev = v;
  }
  return roots;
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
  double unit() { return unit_(rng_); }
  double coord() { return 20.0 * unit() - 10.0; }
  double turn() { return kTwoPi * unit(); }

 private:
  std::mt19937 rng_;
  std::uniform_real_distribution<double> size_, logRatio_, unit_{0.0, 1.0};
};

}  // namespace tarnsysm::test
