// Tarnsysm: planar computational geometry for 2D drafting.
// Tests of the closed-form polynomial root solvers: counts, the fixed order of the roots, the
// open zero tests on coefficients and discriminants, and that the roots solve the equation.
#include "primitives/internal.h"
#include "test_support.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <random>
#include <vector>

namespace {

using tarnsysm::detail::CubeRoot;
using tarnsysm::detail::SolveCubic;
using tarnsysm::detail::SolveQuadratic;
using tarnsysm::detail::SolveQuartic;

constexpr double kEps = 1e-9;
constexpr double kSentinel = -777.25;
using namespace tarnsysm::test;

// Residual of a polynomial (highest degree first) at x, relative to the size of its terms, so
// that roots of large magnitude are judged fairly.
double relativeResidual(const std::vector<double>& coef, double x) {
  double value = 0.0;
  double scale = 0.0;
  double power = 1.0;
  for (auto it = coef.rbegin(); it != coef.rend(); ++it) {
    value += *it * power;
    scale += std::fabs(*it * power);
    power *= x;
  }
  return scale == 0.0 ? 0.0 : std::fabs(value) / scale;
}

// Monic product of (x - r) for the given roots, times `lead`; highest degree first.
std::vector<double> fromRoots(const std::vector<double>& roots, double lead) {
  std::vector<double> coef{1.0};
  for (double r : roots) {
    coef.push_back(0.0);
    for (std::size_t j = coef.size() - 1; j >= 1; --j)
      coef[j] -= r * coef[j - 1];
  }
  for (double& c : coef)
    c *= lead;
  return coef;
}

// Every expected root is matched by a distinct returned root within tol (relative to its size).
void expectSameRoots(std::vector<double> got, std::vector<double> expected, double tol) {
  ASSERT_EQ(got.size(), expected.size());
  std::sort(got.begin(), got.end());
  std::sort(expected.begin(), expected.end());
  for (std::size_t i = 0; i < got.size(); ++i)
    EXPECT_NEAR(got[i], expected[i], tol * (1.0 + std::fabs(expected[i])));
}

// ---------------------------------------------------------------------------------------------
// CubeRoot

TEST(CubeRoot, is_the_real_cube_root_with_zero_coming_out_negative) {
  EXPECT_NEAR(CubeRoot(27.0), 3.0, 1e-15);
  EXPECT_NEAR(CubeRoot(-8.0), -2.0, 1e-15);
  EXPECT_NEAR(CubeRoot(0.001), 0.1, 1e-16);
  EXPECT_NEAR(CubeRoot(-1e-9), -1e-3, 1e-18);
  EXPECT_EQ(CubeRoot(0.0), 0.0);
  EXPECT_TRUE(std::signbit(CubeRoot(0.0)));
  EXPECT_TRUE(std::signbit(CubeRoot(-0.0)));
  EXPECT_TRUE(std::isnan(CubeRoot(kNaN)));
}

// ---------------------------------------------------------------------------------------------
// SolveQuadratic

TEST(SolveQuadratic, writes_the_plus_root_first_whatever_the_sign_of_a) {
  double roots[2] = {kSentinel, kSentinel};
  ASSERT_EQ(SolveQuadratic(kEps, 1, -3, 2, roots), 2);
  EXPECT_EQ(roots[0], 2.0);
  EXPECT_EQ(roots[1], 1.0);
  ASSERT_EQ(SolveQuadratic(kEps, -1, 3, -2, roots), 2);
  EXPECT_EQ(roots[0], 1.0);
  EXPECT_EQ(roots[1], 2.0);
  ASSERT_EQ(SolveQuadratic(kEps, 2, 0, -8, roots), 2);
  EXPECT_EQ(roots[0], 2.0);
  EXPECT_EQ(roots[1], -2.0);
}

TEST(SolveQuadratic, degenerate_chain_gives_linear_root_none_or_identity) {
  double roots[2] = {kSentinel, kSentinel};
  EXPECT_EQ(SolveQuadratic(kEps, 0, 0, 0, roots), -1);
  EXPECT_EQ(SolveQuadratic(kEps, 0, 0, 5, roots), 0);
  EXPECT_EQ(roots[0], kSentinel);
  ASSERT_EQ(SolveQuadratic(kEps, 0, 2, -4, roots), 1);
  EXPECT_EQ(roots[0], 2.0);
  EXPECT_EQ(roots[1], kSentinel);
}

TEST(SolveQuadratic, coefficients_are_zero_only_strictly_inside_eps) {
  const double eps = 0.25;
  double roots[2] = {kSentinel, kSentinel};
  // a = eps/2 counts as zero: the linear root of 2x - 4.
  ASSERT_EQ(SolveQuadratic(eps, 0.125, 2, -4, roots), 1);
  EXPECT_EQ(roots[0], 2.0);
  // a = eps exactly is a real quadratic: 0.25 x^2 + 2x - 4 has roots -4 +- sqrt(32).
  ASSERT_EQ(SolveQuadratic(eps, 0.25, 2, -4, roots), 2);
  EXPECT_NEAR(roots[0], -4 + std::sqrt(32.0), 1e-14);
  EXPECT_NEAR(roots[1], -4 - std::sqrt(32.0), 1e-14);
  // a = -eps exactly, too.
  ASSERT_EQ(SolveQuadratic(eps, -0.25, 0, 1, roots), 2);
  EXPECT_EQ(roots[0], -2.0);
  EXPECT_EQ(roots[1], 2.0);
  // b within eps: no root for a nonzero constant; b = eps exactly is a line.
  EXPECT_EQ(SolveQuadratic(eps, 0, 0.125, 1, roots), 0);
  ASSERT_EQ(SolveQuadratic(eps, 0, 0.25, 1, roots), 1);
  EXPECT_EQ(roots[0], -4.0);
  // c within eps makes the identity; c = eps exactly does not.
  EXPECT_EQ(SolveQuadratic(eps, 0, 0, 0.125, roots), -1);
  EXPECT_EQ(SolveQuadratic(eps, 0.1, -0.1, -0.125, roots), -1);
  EXPECT_EQ(SolveQuadratic(eps, 0, 0, 0.25, roots), 0);
  EXPECT_EQ(SolveQuadratic(eps, 0, 0, -0.25, roots), 0);
}

TEST(SolveQuadratic, discriminant_decides_with_open_interval_around_zero) {
  // x^2 + x + c: disc = 1 - 4c, exact for these c.
  const double eps = 0.25;
  double roots[2] = {kSentinel, kSentinel};
  // disc = eps exactly: two roots (-1 +- 0.5) / 2.
  ASSERT_EQ(SolveQuadratic(eps, 1, 1, 0.1875, roots), 2);
  EXPECT_EQ(roots[0], -0.25);
  EXPECT_EQ(roots[1], -0.75);
  // disc = eps/2: a double root, written once.
  roots[1] = kSentinel;
  ASSERT_EQ(SolveQuadratic(eps, 1, 1, 0.21875, roots), 1);
  EXPECT_EQ(roots[0], -0.5);
  EXPECT_EQ(roots[1], kSentinel);
  // disc = -eps exactly: still the double root.
  ASSERT_EQ(SolveQuadratic(eps, 1, 1, 0.3125, roots), 1);
  EXPECT_EQ(roots[0], -0.5);
  // disc = -2 eps: none.
  roots[0] = kSentinel;
  EXPECT_EQ(SolveQuadratic(eps, 1, 1, 0.375, roots), 0);
  EXPECT_EQ(roots[0], kSentinel);
}

TEST(SolveQuadratic, random_roots_are_recovered_in_plus_root_order) {
  std::mt19937_64 rng(31);
  std::uniform_real_distribution<double> rootDist(-50, 50);
  std::uniform_real_distribution<double> leadDist(0.1, 10);
  for (int i = 0; i < 2000; ++i) {
    const double r1 = rootDist(rng);
    const double r2 = rootDist(rng);
    if (std::fabs(r1 - r2) < 1e-3)
      continue;
    const double lead = (i % 2 ? -1.0 : 1.0) * leadDist(rng);
    const auto c = fromRoots({r1, r2}, lead);
    double roots[2];
    ASSERT_EQ(SolveQuadratic(kEps, c[0], c[1], c[2], roots), 2);
    expectSameRoots({roots[0], roots[1]}, {r1, r2}, 1e-9);
    for (double r : roots)
      EXPECT_LT(relativeResidual(c, r), 1e-12);
    // (-b + s) / 2a comes first: it is the larger root exactly when a is positive.
    EXPECT_EQ(roots[0] > roots[1], lead > 0);
  }
}

// ---------------------------------------------------------------------------------------------
// SolveCubic

TEST(SolveCubic, three_roots_come_largest_smallest_middle) {
  // (x-1)(x-2)(x-3) has h = 0, so the trigonometric angle is pi/2; (x+1)(x+2)(x+4) has h < 0
  // (the angle is lifted by pi); (x-1)(x-2)(x-4) has h > 0.
  const double cases[][7] = {{1, -6, 11, -6, 3, 1, 2},  // coefficients, then the roots in order
                             {2, 14, 28, 16, -1, -4, -2},
                             {-1, 7, -14, 8, 4, 1, 2}};
  for (const auto& c : cases) {
    double roots[3];
    ASSERT_EQ(SolveCubic(kEps, c[0], c[1], c[2], c[3], roots), 3);
    for (int k = 0; k < 3; ++k)
      EXPECT_NEAR(roots[k], c[4 + k], 1e-13) << c[1] << " root " << k;
  }
}

TEST(SolveCubic, one_real_root) {
  double roots[3] = {kSentinel, kSentinel, kSentinel};
  ASSERT_EQ(SolveCubic(kEps, 1, 0, 0, -1, roots), 1);
  EXPECT_NEAR(roots[0], 1.0, 1e-15);
  EXPECT_EQ(roots[1], kSentinel);
  // (x - 2)(x^2 + x + 1)
  ASSERT_EQ(SolveCubic(kEps, 3, -3, -3, -6, roots), 1);
  EXPECT_NEAR(roots[0], 2.0, 1e-14);
}

TEST(SolveCubic, double_root_is_written_once_after_the_simple_root) {
  double roots[3] = {kSentinel, kSentinel, kSentinel};
  // (x - 1)^2 (x + 2) = x^3 - 3x + 2: the discriminant is exactly 0.
  ASSERT_EQ(SolveCubic(kEps, 1, 0, -3, 2, roots), 2);
  EXPECT_NEAR(roots[0], -2.0, 1e-15);
  EXPECT_NEAR(roots[1], 1.0, 1e-15);
  EXPECT_EQ(roots[2], kSentinel);
}

TEST(SolveCubic, zero_constant_term_appends_zero_root_last_unless_already_found) {
  double roots[3] = {kSentinel, kSentinel, kSentinel};
  // x (x-1)(x-2): the quadratic's roots 2, 1, then 0.
  ASSERT_EQ(SolveCubic(kEps, 1, -3, 2, 0, roots), 3);
  EXPECT_EQ(roots[0], 2.0);
  EXPECT_EQ(roots[1], 1.0);
  EXPECT_EQ(roots[2], 0.0);
  // x^2 (x-1): the quadratic x^2 - x already has the root 0, which is not added twice.
  roots[2] = kSentinel;
  ASSERT_EQ(SolveCubic(kEps, 1, -1, 0, 0, roots), 2);
  EXPECT_EQ(roots[0], 1.0);
  EXPECT_EQ(roots[1], 0.0);
  EXPECT_EQ(roots[2], kSentinel);
  // x (x^2 + 1): only 0.
  ASSERT_EQ(SolveCubic(kEps, 1, 0, 1, 0, roots), 1);
  EXPECT_EQ(roots[0], 0.0);
  // d within eps counts as zero (open test).
  ASSERT_EQ(SolveCubic(0.25, 1, -3, 2, 0.125, roots), 3);
  EXPECT_EQ(roots[2], 0.0);
}

TEST(SolveCubic, vanishing_leading_coefficient_hands_down_to_the_quadratic) {
  double roots[3] = {kSentinel, kSentinel, kSentinel};
  ASSERT_EQ(SolveCubic(kEps, 0, 1, -3, 2, roots), 2);
  EXPECT_EQ(roots[0], 2.0);
  EXPECT_EQ(roots[1], 1.0);
  EXPECT_EQ(SolveCubic(kEps, 0, 0, 0, 0, roots), -1);
  EXPECT_EQ(SolveCubic(kEps, 0, 0, 0, 3, roots), 0);
  EXPECT_EQ(SolveCubic(0.25, 0.125, 0, 2, -4, roots), 1);
  EXPECT_EQ(roots[0], 2.0);
}

TEST(SolveCubic, random_roots_are_recovered_and_satisfy_the_equation) {
  std::mt19937_64 rng(33);
  std::uniform_real_distribution<double> rootDist(-20, 20);
  std::uniform_real_distribution<double> leadDist(0.2, 5);
  int three = 0;
  for (int i = 0; i < 3000; ++i) {
    std::vector<double> r{rootDist(rng), rootDist(rng), rootDist(rng)};
    std::sort(r.begin(), r.end());
    if (r[1] - r[0] < 0.05 || r[2] - r[1] < 0.05)
      continue;
    const double lead = (i % 2 ? -1.0 : 1.0) * leadDist(rng);
    const auto c = fromRoots(r, lead);
    double roots[3];
    const int n = SolveCubic(kEps, c[0], c[1], c[2], c[3], roots);
    ASSERT_EQ(n, 3) << r[0] << " " << r[1] << " " << r[2];
    expectSameRoots({roots[0], roots[1], roots[2]}, r, 1e-7);
    for (int k = 0; k < n; ++k)
      EXPECT_LT(relativeResidual(c, roots[k]), 1e-9);
    EXPECT_GT(roots[0], roots[2]);  // largest, smallest, middle
    EXPECT_GT(roots[2], roots[1]);
    ++three;
  }
  EXPECT_GT(three, 2000);
}

TEST(SolveCubic, random_coefficients_give_roots_that_satisfy_the_equation) {
  std::mt19937_64 rng(34);
  std::uniform_real_distribution<double> coef(-10, 10);
  for (int i = 0; i < 5000; ++i) {
    const std::vector<double> c{coef(rng), coef(rng), coef(rng), coef(rng)};
    double roots[3];
    const int n = SolveCubic(kEps, c[0], c[1], c[2], c[3], roots);
    ASSERT_GE(n, 1);  // a real cubic always has a real root
    ASSERT_LE(n, 3);
    for (int k = 0; k < n; ++k)
      EXPECT_LT(relativeResidual(c, roots[k]), 1e-8)
          << c[0] << " " << c[1] << " " << c[2] << " " << c[3] << " root " << roots[k];
  }
}

// ---------------------------------------------------------------------------------------------
// SolveQuartic

TEST(SolveQuartic, biquadratic_roots_come_factor_by_factor) {
  // x^4 - 5x^2 + 4: resolvent root 4, R = 6, S = 0, g = 0, so the factors are x^2 + 3x + 2 and
  // x^2 - 3x + 2 and the roots come -1, -2, 2, 1.
  double roots[4];
  ASSERT_EQ(SolveQuartic(kEps, 1, 0, -5, 0, 4, roots), 4);
  EXPECT_NEAR(roots[0], -1.0, 1e-14);
  EXPECT_NEAR(roots[1], -2.0, 1e-14);
  EXPECT_NEAR(roots[2], 2.0, 1e-14);
  EXPECT_NEAR(roots[3], 1.0, 1e-14);
}

TEST(SolveQuartic, zero_constant_term_appends_zero_after_the_cubic_roots) {
  double roots[4] = {kSentinel, kSentinel, kSentinel, kSentinel};
  // x^2 (x-1)^2 handled as x * (x^3 - 2x^2 + x): the cubic's d is zero too, its quadratic gives
  // the double root 1 once and 0 is appended, so the quartic finds 0 already there.
  ASSERT_EQ(SolveQuartic(kEps, 1, -2, 1, 0, 0, roots), 2);
  EXPECT_EQ(roots[0], 1.0);
  EXPECT_EQ(roots[1], 0.0);
  EXPECT_EQ(roots[2], kSentinel);
  // x (x-1)(x-2)(x-3): three cubic roots in their order, then 0.
  ASSERT_EQ(SolveQuartic(kEps, 1, -6, 11, -6, 0, roots), 4);
  EXPECT_NEAR(roots[0], 3.0, 1e-14);
  EXPECT_NEAR(roots[1], 1.0, 1e-14);
  EXPECT_NEAR(roots[2], 2.0, 1e-14);
  EXPECT_EQ(roots[3], 0.0);
}

TEST(SolveQuartic, vanishing_leading_coefficient_hands_down_to_the_cubic) {
  double roots[4];
  ASSERT_EQ(SolveQuartic(kEps, 0, 1, -6, 11, -6, roots), 3);
  EXPECT_NEAR(roots[0], 3.0, 1e-14);
  EXPECT_NEAR(roots[1], 1.0, 1e-14);
  EXPECT_NEAR(roots[2], 2.0, 1e-14);
  EXPECT_EQ(SolveQuartic(kEps, 0, 0, 0, 0, 0, roots), -1);
  EXPECT_EQ(SolveQuartic(kEps, 0, 0, 0, 0, 1, roots), 0);
}

TEST(SolveQuartic, shared_root_of_the_two_factors_is_reported_once) {
  // (x-1)^2 (x-2)(x+2): each factor finds the root 1; the copy is removed and the count drops.
  double roots[4];
  const int n = SolveQuartic(kEps, 1, -2, -3, 8, -4, roots);
  ASSERT_EQ(n, 3);
  expectSameRoots({roots, roots + n}, {1, 2, -2}, 1e-9);
  // (x-1)^2 (x-2)^2: 1 and 2 once each.
  const int m = SolveQuartic(kEps, 1, -6, 13, -12, 4, roots);
  ASSERT_EQ(m, 2);
  expectSameRoots({roots, roots + m}, {1, 2}, 1e-9);
  // (x-3)^4: a single root.
  const int k = SolveQuartic(kEps, 1, -12, 54, -108, 81, roots);
  ASSERT_EQ(k, 1);
  EXPECT_NEAR(roots[0], 3.0, 1e-9);
}

TEST(SolveQuartic, no_real_roots_gives_zero) {
  double roots[4];
  EXPECT_EQ(SolveQuartic(kEps, 1, 0, 0, 0, 1, roots), 0);  // x^4 + 1
  EXPECT_EQ(SolveQuartic(kEps, 2, 0, 4, 0, 2, roots), 0);  // 2 (x^2 + 1)^2
  EXPECT_EQ(SolveQuartic(kEps, -1, 0, -3, 0, -5, roots), 0);
}

TEST(SolveQuartic, random_roots_are_recovered_and_satisfy_the_equation) {
  std::mt19937_64 rng(35);
  std::uniform_real_distribution<double> rootDist(-10, 10);
  std::uniform_real_distribution<double> leadDist(0.2, 5);
  int four = 0;
  for (int i = 0; i < 3000; ++i) {
    std::vector<double> r{rootDist(rng), rootDist(rng), rootDist(rng), rootDist(rng)};
    std::sort(r.begin(), r.end());
    if (r[1] - r[0] < 0.1 || r[2] - r[1] < 0.1 || r[3] - r[2] < 0.1)
      continue;
    const double lead = (i % 2 ? -1.0 : 1.0) * leadDist(rng);
    const auto c = fromRoots(r, lead);
    double roots[4];
    const int n = SolveQuartic(kEps, c[0], c[1], c[2], c[3], c[4], roots);
    ASSERT_EQ(n, 4) << r[0] << " " << r[1] << " " << r[2] << " " << r[3];
    expectSameRoots({roots, roots + 4}, r, 1e-6);
    for (int k = 0; k < n; ++k)
      EXPECT_LT(relativeResidual(c, roots[k]), 1e-8);
    ++four;
  }
  EXPECT_GT(four, 1500);
}

TEST(SolveQuartic, two_real_roots_and_a_complex_pair) {
  std::mt19937_64 rng(36);
  std::uniform_real_distribution<double> rootDist(-10, 10);
  std::uniform_real_distribution<double> imagDist(0.5, 5);
  for (int i = 0; i < 2000; ++i) {
    const double r1 = rootDist(rng);
    const double r2 = rootDist(rng);
    if (std::fabs(r1 - r2) < 0.1)
      continue;
    // (x - r1)(x - r2)(x^2 - 2 re x + re^2 + im^2)
    const double re = rootDist(rng);
    const double im = imagDist(rng);
    const auto q = fromRoots({r1, r2}, 1.0);
    const double p1 = -2 * re;
    const double p0 = re * re + im * im;
    const std::vector<double> c{q[0], q[1] + q[0] * p1, q[2] + q[1] * p1 + q[0] * p0,
                                q[2] * p1 + q[1] * p0, q[2] * p0};
    double roots[4];
    const int n = SolveQuartic(kEps, c[0], c[1], c[2], c[3], c[4], roots);
    ASSERT_EQ(n, 2) << r1 << " " << r2 << " " << re << " " << im;
    expectSameRoots({roots, roots + 2}, {r1, r2}, 1e-6);
  }
}

// ---------------------------------------------------------------------------------------------
// Robustness

TEST(Solvers, non_finite_and_huge_coefficients_return_promptly_without_overrunning) {
  const double bad[] = {kNaN, kInf, -kInf, 1e300, -1e300, 0.0, 1.0};
  for (double a : bad) {
    for (double b : bad) {
      for (double c : bad) {
        double roots[4];
        EXPECT_LE(SolveQuadratic(kEps, a, b, c, roots), 2);
        EXPECT_LE(SolveCubic(kEps, a, b, c, b, roots), 3);
        EXPECT_LE(SolveCubic(kEps, 1.0, a, b, c, roots), 3);
        EXPECT_LE(SolveQuartic(kEps, a, b, c, b, a, roots), 4);
        EXPECT_LE(SolveQuartic(kEps, 1.0, a, b, c, a, roots), 4);
      }
    }
  }
}

}  // namespace
