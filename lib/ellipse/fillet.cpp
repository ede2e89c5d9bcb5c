// Tarnsysm: planar computational geometry for 2D drafting.
// Fillet centres between two elliptical arcs: points at a given distance from both.
#include "ellipse/ellipse.h"
#include "ellipse/internal.h"
#include "primitives/internal.h"

#include <cmath>
#include <limits>

using namespace tarnsysm::detail;

namespace {

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

// The arc's parameter range [s, s + sweep]; a stored sweep of about a turn or more is whole.
struct Sweep {
  double s, sweep;
};

Sweep sweepOf(TSellipse const& e) {
  if (storedWhole(e))
    return {e.start, kTwoPi};
  double end = e.end;
  addTurnsWhileBelow(end, e.start);
  return {e.start, end - e.start};
}

// True distance from the frame point (X, Y) to the arc: the best of dense samples, refined by a
// golden-section search between its neighbours. The squared distance has one minimum within a
// sample spacing of the nearest one when the samples are this dense.
double arcDistance(TSellipse const& e, const Sweep& w, double X, double Y) {
  constexpr int kSamples = 192;
  const auto dist2 = [&](double t) {
    return square(e.a * portable::cos(t) - X) + square(e.b * portable::sin(t) - Y);
  };
  const double h = w.sweep / kSamples;
  int best = 0;
  double bestD = dist2(w.s);
  for (int i = 1; i <= kSamples; ++i) {
    const double d = dist2(w.s + i * h);
    if (d < bestD) {
      best = i;
      bestD = d;
    }
  }
  const bool whole = w.sweep >= kTwoPi;
  double lo = best == 0 && !whole ? w.s : w.s + (best - 1) * h;
  double hi = best == kSamples && !whole ? w.s + w.sweep : w.s + (best + 1) * h;
  constexpr double kGolden = 0.6180339887498949;
  for (int i = 0; i < 80 && hi - lo > 1e-15 * (1.0 + std::fabs(lo)); ++i) {
    const double m1 = hi - kGolden * (hi - lo);
    const double m2 = lo + kGolden * (hi - lo);
    if (dist2(m1) < dist2(m2))
      hi = m2;
    else
      lo = m1;
  }
  return std::sqrt(std::fmin(bestD, dist2((lo + hi) / 2.0)));
}

// A candidate centre on e1's offset curve and what it says about e2.
struct Probe {
  double p[3];
  bool rightSide;  // inside or outside e2 as asked
  double gap;      // distance to e2's arc less the radius
};

}  // namespace

int EllipseDistPoint(double eps, TSellipse e1, TSellipse e2, double d, double* const out) {
  out[0] = kNaN;
  out[1] = kNaN;
  out[2] = 0.0;
  const double r = std::fabs(d);
  if (!usableEllipse(e1) || !usableEllipse(e2) || !std::isfinite(eps) || !std::isfinite(d) ||
      r < eps)
    return 1;
  // Inside an ellipse when the other's centre is inside it, else outside.
  const int side1 = PointInEllipse(e1, e2.center) == 1 ? 1 : -1;
  const int inside2 = PointInEllipse(e2, e1.center);
  const Sweep w1 = sweepOf(e1);
  const Sweep w2 = sweepOf(e2);
  Matrix3 toFrame1 = worldToFrame(e1);
  Matrix3 toFrame2 = worldToFrame(e2);

  const auto probe = [&](double t) {
    Probe q{};
    EllipseAngleDistPoint(e1, side1, t, r, q.p);
    double local[3];
    transformInto(toFrame2, q.p[0], q.p[1], local);
    q.rightSide = PointInEllipse(e2, q.p) == inside2;
    q.gap = arcDistance(e2, w2, local[0], local[1]) - r;
    return q;
  };
  const auto touchesFirst = [&](const Probe& q) {
    double local[3];
    transformInto(toFrame1, q.p[0], q.p[1], local);
    return std::fabs(arcDistance(e1, w1, local[0], local[1]) - r) <= eps;
  };

  // Walk e1's offset curve from e1's start and take the first crossing of the gap's zero.
  constexpr int kSteps = 360;
  const double h = w1.sweep / kSteps;
  double t0 = w1.s;
  Probe q0 = probe(t0);
  for (int i = 1; i <= kSteps; ++i) {
    const double t1 = w1.s + i * h;
    const Probe q1 = probe(t1);
    if (q0.rightSide && q1.rightSide && (q0.gap <= 0.0) != (q1.gap <= 0.0)) {
      double lo = t0;
      double hi = t1;
      Probe mid = q0;
      for (int k = 0; k < 60; ++k) {
        const double tm = (lo + hi) / 2.0;
        mid = probe(tm);
        if ((mid.gap <= 0.0) == (q0.gap <= 0.0))
          lo = tm;
        else
          hi = tm;
      }
      if (mid.rightSide && std::fabs(mid.gap) <= eps && touchesFirst(mid)) {
        out[0] = mid.p[0];
        out[1] = mid.p[1];
        return 1;
      }
    }
    t0 = t1;
    q0 = q1;
  }
  return 1;
}
