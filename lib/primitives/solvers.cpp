// Tarnsysm: planar computational geometry for 2D drafting.
// Closed-form real roots of quadratics, cubics and quartics. No iteration, no polishing and no
// sorting: callers rely on the fixed order in which the formulas deliver the roots.
#include "primitives/internal.h"

#include <cmath>

namespace tarnsysm::detail {

namespace {

// Appends x = 0 to the roots of the reduced polynomial unless one of them already counts as 0.
int appendZeroRoot(double eps, int n, double* roots) {
  for (int i = 0; i < n; ++i) {
    if (withinOpen(roots[i], eps))
      return n;
  }
  roots[n] = 0.0;
  return n + 1;
}

}  // namespace

double CubeRoot(double x) {
  return x <= 0.0 ? -portable::powOneThird(-x) : portable::powOneThird(x);
}

int SolveQuadratic(double eps, double a, double b, double c, double* roots) {
  if (withinOpen(a, eps)) {
    if (!withinOpen(b, eps)) {
      roots[0] = -c / b;
      return 1;
    }
    return withinOpen(c, eps) ? -1 : 0;
  }
  const double disc = b * b - 4.0 * a * c;
  if (disc < -eps)
    return 0;
  if (disc < eps) {
    roots[0] = -b / (2.0 * a);
    return 1;
  }
  if (std::isnan(disc))
    return 0;
  const double s = std::sqrt(disc);
  // The +s root comes first whatever the sign of a.
  roots[0] = (-b + s) / (2.0 * a);
  roots[1] = (-b - s) / (2.0 * a);
  return 2;
}

int SolveCubic(double eps, double a, double b, double c, double d, double* roots) {
  if (withinOpen(a, eps))
    return SolveQuadratic(eps, b, c, d, roots);
  if (withinOpen(d, eps)) {
    // a is not zero here, so the quadratic cannot report the identity.
    const int n = SolveQuadratic(eps, a, b, c, roots);
    return appendZeroRoot(eps, n, roots);
  }
  const double bn = b / a;
  const double cn = c / a;
  const double dn = d / a;
  // Depressed cubic t^3 + p t + q with x = t - bn/3.
  const double p = cn - bn * bn / 3.0;
  const double q = 2.0 * bn * bn * bn / 27.0 - bn * cn / 3.0 + dn;
  const double h = -q / 2.0;
  const double k = p / 3.0;
  const double disc = h * h + k * k * k;
  const double shift = bn / 3.0;
  if (disc > eps) {
    const double s = std::sqrt(disc);
    roots[0] = CubeRoot(h + s) + CubeRoot(h - s) - shift;
    return 1;
  }
  if (disc > -eps) {
    const double u = CubeRoot(h);
    roots[0] = 2.0 * u - shift;  // the simple root
    roots[1] = -u - shift;       // the double root, written once
    return 2;
  }
  if (std::isnan(disc))
    return 0;
  // Three real roots, trigonometric form; theta lies in [0, pi].
  const double r = std::sqrt(-disc);
  double theta = kHalfPi;
  if (!withinOpen(h, eps)) {
    theta = portable::atan(r / h);
    if (theta < 0.0)
      theta += kPi;
  }
  const double m = CubeRoot(std::sqrt(h * h + r * r));
  roots[0] = 2.0 * m * portable::cos(theta / 3.0) - shift;
  roots[1] = 2.0 * m * portable::cos((theta + kTwoPi) / 3.0) - shift;
  roots[2] = 2.0 * m * portable::cos((theta + 2.0 * kTwoPi) / 3.0) - shift;
  return 3;
}

int SolveQuartic(double eps, double a, double b, double c, double d, double e, double* roots) {
  if (withinOpen(a, eps))
    return SolveCubic(eps, b, c, d, e, roots);
  if (withinOpen(e, eps)) {
    const int n = SolveCubic(eps, a, b, c, d, roots);
    return appendZeroRoot(eps, n, roots);
  }
  const double bn = b / a;
  const double cn = c / a;
  const double dn = d / a;
  const double en = e / a;
  // Resolvent cubic; only its first root is used, the output array serves as scratch.
  const int resolvent =
      SolveCubic(eps, 1.0, -cn, bn * dn - 4.0 * en, 4.0 * cn * en - bn * bn * en - dn * dn, roots);
  if (resolvent <= 0)
    return 0;
  const double y = roots[0];

  const double rr = bn * bn - 4.0 * cn + 4.0 * y;
  if (rr < -eps || std::isnan(rr))
    return 0;
  const double r = rr > eps ? std::sqrt(rr) : 0.0;
  const double ss = y * y - 4.0 * en;
  if (ss < -eps || std::isnan(ss))
    return 0;
  const double s = ss > eps ? std::sqrt(ss) : 0.0;

  // g decides which constant terms pair with which linear terms.
  const double g = bn * y - 2.0 * dn;
  const double first = g > 0.0 ? (y + s) / 2.0 : (y - s) / 2.0;
  const double second = g > 0.0 ? (y - s) / 2.0 : (y + s) / 2.0;
  // A leading coefficient of 1 only counts as zero for eps > 1; such a factor adds no roots.
  int n = SolveQuadratic(eps, 1.0, (bn + r) / 2.0, first, roots);
  if (n < 0)
    n = 0;
  int m = SolveQuadratic(eps, 1.0, (bn - r) / 2.0, second, roots + n);
  if (m < 0)
    m = 0;
  n += m;

  // Drop near-duplicates. j advances after a removal too, so the entry moved into place j is not
  // compared with roots[i] in that pass: three equal roots may leave two.
  for (int i = 0; i < n - 1; ++i) {
    for (int j = i + 1; j < n; ++j) {
      if (withinOpen(roots[i] - roots[j], eps)) {
        --n;
        for (int k = j; k < n; ++k)
          roots[k] = roots[k + 1];
      }
    }
  }
  return n;
}

}  // namespace tarnsysm::detail
