// Tarnsysm: planar computational geometry for 2D drafting.
// Fitted circles: the least-squares circle through a point set, and the four-centre arcs that
// stand in for an ellipse.
#include "circles/circles.h"
#include "circles/internal.h"

#include <algorithm>
#include <cmath>

using namespace tarnsysm::detail;

namespace {

// Sums of the geometric fit at one trial circle (a, b, R) in the scaled frame: the squared
// residuals and the normal equations J^T J, J^T e of the residuals e_i = |p_i - c| - R.
struct FitSums {
  double f = 0.0;
  double jtj[3][3] = {};
  double jte[3] = {};
};

FitSums fitSums(int n, const double (*pts)[2], double mx, double my, double invScale, double a,
                double b, double R) {
  FitSums s;
  for (int i = 0; i < n; ++i) {
    const double dx = (pts[i][0] - mx) * invScale - a;
    const double dy = (pts[i][1] - my) * invScale - b;
    const double d = std::sqrt(dx * dx + dy * dy);
    const double e = d - R;
    // d (e) / d (a, b, R); a point on the centre has no direction and contributes only to R.
    const double invD = d > 0.0 ? 1.0 / d : 0.0;
    const double ja = -dx * invD;
    const double jb = -dy * invD;
    s.f += e * e;
    s.jtj[0][0] += ja * ja;
    s.jtj[0][1] += ja * jb;
    s.jtj[0][2] -= ja;
    s.jtj[1][1] += jb * jb;
    s.jtj[1][2] -= jb;
    s.jte[0] += ja * e;
    s.jte[1] += jb * e;
    s.jte[2] -= e;
  }
  s.jtj[1][0] = s.jtj[0][1];
  s.jtj[2][0] = s.jtj[0][2];
  s.jtj[2][1] = s.jtj[1][2];
  s.jtj[2][2] = n;
  return s;
}

// Solves the symmetric 3 x 3 system m x = v by Cramer's rule; false when singular.
bool solve3(const double m[3][3], const double v[3], double x[3]) {
  const auto det3 = [](const double c0[3], const double c1[3], const double c2[3]) {
    return c0[0] * (c1[1] * c2[2] - c2[1] * c1[2]) - c1[0] * (c0[1] * c2[2] - c2[1] * c0[2]) +
           c2[0] * (c0[1] * c1[2] - c1[1] * c0[2]);
  };
  const double c0[3] = {m[0][0], m[1][0], m[2][0]};
  const double c1[3] = {m[0][1], m[1][1], m[2][1]};
  const double c2[3] = {m[0][2], m[1][2], m[2][2]};
  const double det = det3(c0, c1, c2);
  if (!(std::fabs(det) > 0.0) || !std::isfinite(det))
    return false;
  x[0] = det3(v, c1, c2) / det;
  x[1] = det3(c0, v, c2) / det;
  x[2] = det3(c0, c1, v) / det;
  return true;
}

}  // namespace

int DGetNPCircle(double eps, int n, const double (*pts)[2], double* cx, double* cy, double* r,
                 double* rms) {
  if (n < 3 || pts == nullptr || !std::isfinite(eps))
    return 0;
  // Centroid, then the largest offset from it; a sum that overflows (or a non-finite point)
  // leaves the offset non-finite and the set is refused.
  double mx = 0.0, my = 0.0;
  for (int i = 0; i < n; ++i) {
    mx += pts[i][0];
    my += pts[i][1];
  }
  mx /= n;
  my /= n;
  double reach = 0.0;
  for (int i = 0; i < n; ++i)
    reach = std::max({reach, std::fabs(pts[i][0] - mx), std::fabs(pts[i][1] - my)});
  if (!(reach > 0.0) || !std::isfinite(reach + mx + my))
    return 0;

  // Second moments of the offsets divided by reach, then the RMS spread as the scale.
  double sxx = 0.0, syy = 0.0, sxy = 0.0;
  const double invReach = 1.0 / reach;
  for (int i = 0; i < n; ++i) {
    const double x = (pts[i][0] - mx) * invReach;
    const double y = (pts[i][1] - my) * invReach;
    sxx += x * x;
    syy += y * y;
    sxy += x * y;
  }
  sxx /= n;
  syy /= n;
  sxy /= n;
  // The smaller eigenvalue of the covariance is the mean squared distance from the best line.
  const double half = (sxx + syy) / 2.0;
  const double lineVar = half - std::sqrt((sxx - syy) * (sxx - syy) / 4.0 + sxy * sxy);
  if (!(reach * std::sqrt(std::max(lineVar, 0.0)) > eps))
    return 0;
  const double scale = reach * std::sqrt(sxx + syy);

  // Taubin's fit on the scaled points (spread 1): moments about the centroid with z = x^2 + y^2.
  double Mxx = 0.0, Myy = 0.0, Mxy = 0.0, Mxz = 0.0, Myz = 0.0, Mzz = 0.0;
  const double invScale = 1.0 / scale;
  for (int i = 0; i < n; ++i) {
    const double x = (pts[i][0] - mx) * invScale;
    const double y = (pts[i][1] - my) * invScale;
    const double z = x * x + y * y;
    Mxx += x * x;
    Myy += y * y;
    Mxy += x * y;
    Mxz += x * z;
    Myz += y * z;
    Mzz += z * z;
  }
  Mxx /= n;
  Myy /= n;
  Mxy /= n;
  Mxz /= n;
  Myz /= n;
  Mzz /= n;
  const double Mz = Mxx + Myy;
  const double covXY = Mxx * Myy - Mxy * Mxy;
  const double varZ = Mzz - Mz * Mz;
  // Characteristic cubic A3 t^3 + A2 t^2 + A1 t + A0; its root nearest 0 from Newton's steps.
  const double A3 = 4.0 * Mz;
  const double A2 = -3.0 * Mz * Mz - Mzz;
  const double A1 = varZ * Mz + 4.0 * covXY * Mz - Mxz * Mxz - Myz * Myz;
  const double A0 = Mxz * (Mxz * Myy - Myz * Mxy) + Myz * (Myz * Mxx - Mxz * Mxy) - varZ * covXY;
  double t = 0.0;
  double value = A0;
  for (int iter = 0; iter < 100; ++iter) {
    const double slope = A1 + t * (2.0 * A2 + 3.0 * A3 * t);
    const double next = t - value / slope;
    if (next == t || !std::isfinite(next))
      break;
    const double nextValue = A0 + next * (A1 + next * (A2 + next * A3));
    if (std::fabs(nextValue) >= std::fabs(value))
      break;
    t = next;
    value = nextValue;
  }
  const double det = t * t - t * Mz + covXY;
  double a = (Mxz * (Myy - t) - Myz * Mxy) / det / 2.0;
  double b = (Myz * (Mxx - t) - Mxz * Mxy) / det / 2.0;
  double R = std::sqrt(a * a + b * b + Mz);
  if (!allFinite({a, b, R}))
    return 0;

  // Levenberg-Marquardt on the geometric distances, damping scaled by the diagonal.
  FitSums sums = fitSums(n, pts, mx, my, invScale, a, b, R);
  double lambda = 1e-3;
  for (int step = 0; step < 20 && sums.f > 0.0; ++step) {
    double m[3][3];
    for (int i = 0; i < 3; ++i)
      for (int j = 0; j < 3; ++j)
        m[i][j] = sums.jtj[i][j] * (i == j ? 1.0 + lambda : 1.0);
    const double rhs[3] = {-sums.jte[0], -sums.jte[1], -sums.jte[2]};
    double delta[3];
    if (!solve3(m, rhs, delta))
      break;
    const FitSums trial =
        fitSums(n, pts, mx, my, invScale, a + delta[0], b + delta[1], R + delta[2]);
    if (!(trial.f < sums.f)) {
      lambda *= 10.0;
      continue;
    }
    const double improvement = (sums.f - trial.f) / sums.f;
    a += delta[0];
    b += delta[1];
    R += delta[2];
    sums = trial;
    lambda /= 10.0;
    if (improvement < 1e-12)
      break;
  }

  const double ox = mx + a * scale;
  const double oy = my + b * scale;
  const double radius = std::fabs(R) * scale;
  const double residual = std::sqrt(sums.f / n) * scale;
  if (!allFinite({ox, oy, radius, residual}))
    return 0;
  *cx = ox;
  *cy = oy;
  *r = radius;
  *rms = residual;
  return 1;
}

int DGetEllipseCircle(double eps, double cx, double cy, double a, double b, double rotation,
                      double (*arcs)[5]) {
  if (!allFinite({eps, cx, cy, a, b, rotation}) || arcs == nullptr || a < eps || b < eps)
    return 0;
  // In the frame of the first axis: the arc about (kA, 0) passes through its end (a, 0), the arc
  // about (0, kB) through the second axis end (0, b). With M, m the major and minor semi-axes
  // and c = sqrt(M^2 + m^2), the major end's centre lies M - c (c - M + m) / (2 M) from the
  // middle and the minor end's m - c (c + M - m) / (2 m) (beyond the middle).
  double kA = 0.0, kB = 0.0, rA = a, rB = b;
  double theta = kHalfPi / 2.0;  // equal axes: four quarter arcs of one circle
  if (!withinClosed(a - b, eps)) {
    const double M = std::max(a, b);
    const double m = std::min(a, b);
    const double c = std::sqrt(M * M + m * m);
    const double rMajor = c * (c - M + m) / (2.0 * M);
    const double rMinor = c * (c + M - m) / (2.0 * m);
    const bool firstIsMajor = a >= b;
    rA = firstIsMajor ? rMajor : rMinor;
    rB = firstIsMajor ? rMinor : rMajor;
    kA = a - rA;
    kB = b - rB;
    // The arcs meet on the line through both centres, beyond the smaller arc's centre.
    theta = portable::atan2(std::fabs(kB), std::fabs(kA));
  }
  const double cosR = portable::cos(rotation);
  const double sinR = portable::sin(rotation);
  double start = rotation - theta;
  fpos2pi(eps, &start);
  // Counter-clockwise from the first axis end: (kA, 0), (0, kB), (-kA, 0), (0, -kB).
  const double local[4][3] = {{kA, 0.0, rA}, {0.0, kB, rB}, {-kA, 0.0, rA}, {0.0, -kB, rB}};
  const double sweeps[4] = {2.0 * theta, kPi - 2.0 * theta, 2.0 * theta, kPi - 2.0 * theta};
  double rows[4][5];
  for (int k = 0; k < 4; ++k) {
    rows[k][0] = cx + cosR * local[k][0] - sinR * local[k][1];
    rows[k][1] = cy + sinR * local[k][0] + cosR * local[k][1];
    rows[k][2] = local[k][2];
    rows[k][3] = start;
    rows[k][4] = start + sweeps[k];
    start = rows[k][4];
    if (start >= kTwoPi)
      start -= kTwoPi;
  }
  for (const auto& row : rows)
    if (!allFinite({row[0], row[1], row[2], row[3], row[4]}))
      return 0;
  for (int k = 0; k < 4; ++k)
    std::copy(rows[k], rows[k] + 5, arcs[k]);
  return 4;
}
