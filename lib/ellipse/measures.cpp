// Tarnsysm: planar computational geometry for 2D drafting.
// Length, area figure, walking by length and division of elliptical arcs. All integrate
// a sqrt(1 - k cos^2 t) (a >= b after swapping) by left sums with the fixed step 0.005 radian,
// and use one closed formula for the whole perimeter.
#include "ellipse/ellipse.h"
#include "ellipse/internal.h"
#include "primitives/internal.h"

#include <cmath>
#include <limits>

using namespace tarnsysm::detail;

namespace {

constexpr double kStep = 0.005;  // radian of ellipse parameter
constexpr int kStepsPerTurn = 1257;
constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

// The arc in normal form: a >= b, parameters turned by pi/2 when the axes were swapped.
struct NormalForm {
  double a, b, k;
  double shift;  // pi/2 when swapped, else 0
};

NormalForm normalForm(double a, double b) {
  if (a < b)
    return {b, a, (b * b - a * a) / (b * b), kHalfPi};
  return {a, b, (a * a - b * b) / (a * a), 0.0};
}

double speed(const NormalForm& f, double t) {
  const double c = portable::cos(t);
  return f.a * std::sqrt(1.0 - f.k * c * c);
}

// pi (a + b) (64 - 3 l^4) / (64 - 16 l^2) with l = (a - b) / (a + b).
double perimeter(double a, double b) {
  const double l = (a - b) / (a + b);
  const double l2 = l * l;
  return kPi * (a + b) * (64.0 - 3.0 * l2 * l2) / (64.0 - 16.0 * l2);
}

// The left-sum steps over [s, e): N = trunc((e - s) / 0.005) + 1 steps of h = (e - s) / N.
// Callers bound the span, so the count fits an int.
struct Steps {
  int n;
  double h;
};

Steps stepsOver(double s, double e) {
  const int n = static_cast<int>((e - s) / kStep) + 1;
  return {n, (e - s) / n};
}

bool finiteRecord(TSellipse const& e) {
  return allFinite({e.center[0], e.center[1], e.a, e.b, e.rotation, e.start, e.end});
}

// Sums term(t, ds) over the arc's left-sum steps; NaN for a non-finite record.
template <class Term>
double sumOverArc(TSellipse const& e, Term term) {
  double s = e.start;
  double end = e.end;
  if (end < s)
    end += kTwoPi;
  const NormalForm f = normalForm(e.a, e.b);
  s += f.shift;
  end += f.shift;
  const Steps steps = stepsOver(s, end);
  double sum = 0.0;
  double t = s;
  for (int i = 0; i < steps.n; ++i) {
    sum += term(f, t, speed(f, t) * steps.h);
    t += steps.h;
  }
  return sum;
}

}  // namespace

double CalEllipseLen(TSellipse const& e) {
  if (!finiteRecord(e))
    return kNaN;
  if (storedWhole(e))
    return perimeter(e.a, e.b);
  return sumOverArc(e, [](const NormalForm&, double, double ds) { return ds; });
}

double CalEllipseArea(TSellipse const& e) {
  if (!finiteRecord(e))
    return kNaN;
  if (storedWhole(e))
    return kPi * e.a * e.b;
  // The sum of r ds, r the distance from the centre; no factor one half, deliberately.
  return sumOverArc(e, [](const NormalForm& f, double t, double ds) {
    return ds * std::sqrt(square(f.a * portable::cos(t)) + square(f.b * portable::sin(t)));
  });
}

int EllipseLengthToPAngle(TSellipse const& e, double t0, double& t, double length, int direction) {
  if (!allFinite({e.a, e.b, t0, length}) || !(e.a > 0.0 && e.b > 0.0))
    return 0;
  const NormalForm f = normalForm(e.a, e.b);
  if (length > perimeter(e.a, e.b))
    return 0;
  const double step = direction == 1 ? kStep : -kStep;
  double walked = t0 + f.shift;
  double acc = 0.0;
  // A length up to the perimeter formula is reached within a turn; the bound is a backstop.
  for (int i = 0; i < kStepsPerTurn + 16 && acc < length; ++i) {
    acc += kStep * speed(f, walked);
    walked += step;
  }
  t = walked - f.shift;
  return 1;
}

int EllipseDivide(TSellipse const& e, int& n, double (*const out)[3], double margin) {
  if (n <= 0 || !finiteRecord(e) || !std::isfinite(margin) || !(e.a > 0.0 && e.b > 0.0)) {
    n = 0;
    return 1;
  }
  double length = CalEllipseLen(e);
  double m = margin;
  if (m > 0.0)
    length -= 2.0 * m;
  const double seg = length / n;
  int wanted = n;
  if (m < -kTol1e10) {
    m = seg / 2.0;  // midpoints of the n parts
    wanted = n - 1;
  }

  // No 2 pi correction here: a wrapping arc must be stored with end > start.
  const NormalForm f = normalForm(e.a, e.b);
  const double s = e.start + f.shift;
  const double span = e.end - e.start;
  if (!(span > 0.0)) {
    n = 0;
    return 1;
  }
  // The walk stops after two turns, past any arc's need.
  const Steps steps = stepsOver(s, s + std::fmin(span, 2.0 * kTwoPi));
  Matrix3 back = frameToWorld(e);
  double acc = 0.0;
  double t = s;
  int written = 0;
  bool started = !(m > 0.0);
  for (int j = 0; j < steps.n && written <= wanted; ++j) {
    acc += speed(f, t) * steps.h;
    t += steps.h;
    if (!started && written == 0 && acc > m) {
      acc -= m;
      started = true;
    }
    if (!started || !(acc / seg > written + kTol1e10))
      continue;
    const double p = t - f.shift;
    const double x = e.a * portable::cos(p);
    const double y = e.b * portable::sin(p);
    // The direction of travel with increasing parameter.
    double angle;
    if (std::fabs(x) >= kTol1e10 && std::fabs(y) >= kTol1e10)
      angle = portable::atan(-(e.b * portable::cos(p)) / (e.a * portable::sin(p))) +
              (y > 0.0 ? kPi : 0.0);
    else if (std::fabs(x) >= kTol1e10)
      angle = x <= 0.0 ? 3.0 * kHalfPi : kHalfPi;
    else
      angle = y > 0.0 ? kPi : 0.0;
    transformInto(back, x, y, out[written]);
    out[written][2] = angle + e.rotation;
    ++written;
  }
  n = written;
  return 1;
}
