// Tarnsysm: planar computational geometry for 2D drafting.
// The closed-form polynomial solvers: root counts, the fixed order of the roots, the open zero
// tests, and roots that solve their equations.
#include "test_support.h"

namespace {

using namespace tarnsysm::detail;
using tarnsysm::test::kE;

struct SolverRow {
  const char* name;
  int degree;
  double c[5];  // highest degree first
  int count;
  std::vector<double> roots;  // in the order written
  bool sorted = false;        // compare as a set: the order is the method's, not the contract's
  double eps = 1e-9;
};

int solve(const SolverRow& r, double eps, double* out) {
  switch (r.degree) {
    case 2:
      return SolveQuadratic(eps, r.c[0], r.c[1], r.c[2], out);
    case 3:
      return SolveCubic(eps, r.c[0], r.c[1], r.c[2], r.c[3], out);
    default:
      return SolveQuartic(eps, r.c[0], r.c[1], r.c[2], r.c[3], r.c[4], out);
  }
}

TEST(Solvers, table) {
  const SolverRow rows[] = {
      // clang-format off
      {"quadratic_plus_root_first", 2, {1, -3, 2}, 2, {2, 1}},
      {"quadratic_negative_a_plus_root_first", 2, {-1, 3, -2}, 2, {1, 2}},
      {"quadratic_identity", 2, {0, 0, 0}, -1, {}},
      {"quadratic_contradiction", 2, {0, 0, 5}, 0, {}},
      {"quadratic_linear", 2, {0, 2, -4}, 1, {2}},
      {"quadratic_a_within_eps_open", 2, {kE / 2, 2, -4}, 1, {2}, false, kE},
      {"quadratic_a_exactly_eps_counts", 2, {kE, 0, -1}, 2, {32, -32}, false, kE},
      {"quadratic_disc_exactly_eps_two_roots", 2, {1, 0, -kE / 4}, 2, {1.0 / 64, -1.0 / 64}, false, kE},
      {"quadratic_disc_within_eps_one_root", 2, {1, 2, 1 + kE / 8}, 1, {-1}, false, kE},
      {"quadratic_disc_below_minus_eps", 2, {1, 0, 1}, 0, {}},
      {"cubic_three_roots_in_method_order", 3, {1, -6, 11, -6}, 3, {3, 1, 2}},
      {"cubic_one_real_root", 3, {1, 0, 1, -10}, 1, {2}},
      {"cubic_double_root_written_once", 3, {1, -4, 5, -2}, 2, {2, 1}},
      {"cubic_zero_d_appends_zero_last", 3, {1, -3, 2, 0}, 3, {2, 1, 0}},
      {"cubic_zero_d_zero_not_twice", 3, {1, -1, 0, 0}, 2, {1, 0}},
      {"cubic_falls_to_quadratic", 3, {0, 1, -3, 2}, 2, {2, 1}},
      {"quartic_in_factor_order", 4, {1, 0, -5, 0, 4}, 4, {-1, -2, 2, 1}},
      {"quartic_zero_e", 4, {1, -2, 1, 0, 0}, 2, {1, 0}},
      {"quartic_duplicate_dropped_and_rest_moved_down", 4, {1, -1, -12, 28, -16}, 3, {-4, 1, 2}, true, 1e-6},
      {"quartic_no_real_root", 4, {1, 0, 0, 0, 1}, 0, {}},
      {"quartic_falls_to_cubic", 4, {0, 1, -6, 11, -6}, 3, {3, 1, 2}},
      {"quartic_not_a_number", 4, {1, tarnsysm::test::kNaN, 0, 0, 1}, 0, {}},
  };
  // clang-format on
  for (const SolverRow& r : rows) {
    SCOPED_TRACE(r.name);
    double out[4] = {99, 99, 99, 99};
    const int n = solve(r, r.eps, out);
    ASSERT_EQ(n, r.count);
    std::vector<double> got(out, out + std::max(n, 0));
    if (r.sorted)
      std::sort(got.begin(), got.end());
    for (int i = 0; i < n; ++i)
      EXPECT_NEAR(got[i], r.roots[i], 1e-7) << "root " << i;
  }
  EXPECT_EQ(CubeRoot(-27.0), -3.0);
  EXPECT_TRUE(CubeRoot(0.0) == 0.0 && std::signbit(CubeRoot(0.0)));
  EXPECT_NEAR(CubeRoot(8.0), 2.0, 1e-15);
}

// Polynomials built from random roots: every root written solves the equation, and every
// chosen root is found (the roots are kept well apart, so none is a near-duplicate).
TEST(Solvers, random_roots_are_found_and_solve_their_equations) {
  std::mt19937_64 rng(5);
  std::uniform_real_distribution<double> root(-4.0, 4.0), lead(0.5, 3.0);
  for (int i = 0; i < 3000; ++i) {
    const int degree = 2 + i % 3;
    std::vector<double> chosen;
    while (static_cast<int>(chosen.size()) < degree) {
      const double x = root(rng);
      if (std::none_of(chosen.begin(), chosen.end(),
                       [&](double y) { return std::fabs(x - y) < 0.3; }))
        chosen.push_back(x);
    }
    std::vector<double> c = {(i % 2 ? -1 : 1) * lead(rng)};  // c[0] x^d + ... built root by root
    for (double x : chosen) {
      c.push_back(0.0);
      for (std::size_t k = c.size() - 1; k > 0; --k)
        c[k] -= x * c[k - 1];
    }
    double out[4];
    SolverRow row{"random", degree, {}, 0, {}};
    std::copy(c.begin(), c.end(), row.c);
    ASSERT_EQ(solve(row, 1e-12, out), degree) << i;
    for (double x : chosen) {
      EXPECT_TRUE(std::any_of(out, out + degree, [&](double y) { return std::fabs(x - y) < 1e-6; }))
          << "case " << i << " lost the root " << x;
    }
  }
}

TEST(Solvers, hostile_coefficients_give_a_count_in_range) {
  tarnsysm::test::HostileNumbers h(9);
  for (int i = 0; i < 20000; ++i) {
    double out[4];
    const double eps = std::fabs(h());
    const int q = SolveQuadratic(eps, h(), h(), h(), out);
    const int c = SolveCubic(eps, h(), h(), h(), h(), out);
    const int r = SolveQuartic(eps, h(), h(), h(), h(), h(), out);
    ASSERT_TRUE(q >= -1 && q <= 2 && c >= -1 && c <= 3 && r >= -1 && r <= 4) << q << c << r;
  }
}

}  // namespace
