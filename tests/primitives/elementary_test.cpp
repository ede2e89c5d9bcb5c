// Tarnsysm: planar computational geometry for 2D drafting.
// The library's own elementary functions: values rounded from the exact ones, the C library's
// special cases, agreement with the host's libm over random angles, and huge arguments.
#include "primitives/elementary.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>
#include <random>

namespace {

namespace p = tarnsysm::detail::portable;

constexpr double kInf = std::numeric_limits<double>::infinity();
constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

// Distance in representable doubles (same sign assumed; zeros of either sign are 0 apart).
std::int64_t ulpsApart(double a, double b) {
  std::int64_t ia, ib;
  std::memcpy(&ia, &a, sizeof a);
  std::memcpy(&ib, &b, sizeof b);
  return a == b ? 0 : (ia > ib ? ia - ib : ib - ia);
}

TEST(Elementary, values_and_special_cases) {
  // Expected: the exact value rounded to nearest (by multi-precision arithmetic), or the C
  // library's rule for zeros, infinities and NaN. Compared bit for bit, sign of zero included.
  // clang-format off
  const struct { const char* name; double got, want; } rows[] = {
      {"sin(kPi)", p::sin(3.141592653589793), 1.2246467991473532e-16},
      {"cos(kHalfPi)", p::cos(1.5707963267948966), 6.123233995736766e-17},
      {"tan(kPi/4)", p::tan(0.7853981633974483), 0.9999999999999999},
      {"sin(100)", p::sin(100.0), -0.5063656411097588},
      {"cos(3)", p::cos(3.0), -0.9899924966004454}, {"tan(1.5)", p::tan(1.5), 14.101419947171719},
      {"sin(1e6)", p::sin(1e6), -0.34999350217129294},
      {"cos(1e6)", p::cos(1e6), 0.9367521275331447}, {"sin(-0)", p::sin(-0.0), -0.0},
      {"sin(subnormal)", p::sin(5e-324), 5e-324}, {"cos(-0)", p::cos(-0.0), 1.0},
      {"tan(-0)", p::tan(-0.0), -0.0}, {"atan(1e10)", p::atan(1e10), 1.5707963266948965},
      {"atan(0.1)", p::atan(0.1), 0.09966865249116204},
      {"atan(-inf)", p::atan(-kInf), -1.5707963267948966},
      {"atan2(1,-1)", p::atan2(1.0, -1.0), 2.356194490192345},
      {"atan2(-3,-4)", p::atan2(-3.0, -4.0), -2.498091544796509},
      {"atan2(1e-300,1e300)", p::atan2(1e-300, 1e300), 0.0},
      {"atan2(-0,-0)", p::atan2(-0.0, -0.0), -3.141592653589793},
      {"atan2(-0,+0)", p::atan2(-0.0, 0.0), -0.0},
      {"atan2(5,-0)", p::atan2(5.0, -0.0), 1.5707963267948966},
      {"atan2(inf,-inf)", p::atan2(kInf, -kInf), 2.356194490192345},
      {"atan2(-1,inf)", p::atan2(-1.0, kInf), -0.0},
      {"atan2(1,-inf)", p::atan2(1.0, -kInf), 3.141592653589793},
      {"asin(0.5)", p::asin(0.5), 0.5235987755982989}, {"asin(1e-10)", p::asin(1e-10), 1e-10},
      {"asin(-1)", p::asin(-1.0), -1.5707963267948966},
      {"acos(0.5)", p::acos(0.5), 1.0471975511965979},
      {"acos(-0.9999999999)", p::acos(-0.9999999999), 3.1415785114535844},
      {"acos(1)", p::acos(1.0), 0.0}, {"pow(27,1/3)", p::powOneThird(27.0), 3.0},
      {"pow(1000,1/3)", p::powOneThird(1000.0), 9.999999999999998},
      {"pow(2^-999,1/3)", p::powOneThird(0x1p-999), 0x1.000000000003ap-333},
      {"pow(subnormal,1/3)", p::powOneThird(5e-324), 0x1.000000000003ep-358},
      {"pow(-0,1/3)", p::powOneThird(-0.0), 0.0}, {"pow(inf,1/3)", p::powOneThird(kInf), kInf},
  };
  // clang-format on
  for (const auto& r : rows)
    EXPECT_TRUE(r.got == r.want && std::signbit(r.got) == std::signbit(r.want))
        << r.name << ": got " << r.got << ", want " << r.want;
  for (double bad : {kNaN, kInf, -kInf})
    EXPECT_TRUE(std::isnan(p::sin(bad)) && std::isnan(p::cos(bad)) && std::isnan(p::tan(bad)));
  for (double bad : {kNaN, 1.0000000000000002, -kInf})
    EXPECT_TRUE(std::isnan(p::asin(bad)) && std::isnan(p::acos(bad)) &&
                std::isnan(p::powOneThird(bad < 0.0 ? bad : kNaN)));
  EXPECT_TRUE(std::isnan(p::atan(kNaN)) && std::isnan(p::atan2(kNaN, 1.0)));
}

TEST(Elementary, within_two_ulps_of_the_host_libm) {
  // The host's libm is itself within about half an ulp of the exact value on each side.
  std::mt19937_64 rng(20261123);
  std::uniform_real_distribution<double> angle(-20.0, 20.0), unit(-1.0, 1.0), wide(-40.0, 40.0);
  for (int i = 0; i < 20000; ++i) {
    const double a = angle(rng), u = unit(rng), y = std::exp2(wide(rng)) * u, x = angle(rng);
    const double pairs[][2] = {{p::sin(a), std::sin(a)},
                               {p::cos(a), std::cos(a)},
                               {p::tan(a), std::tan(a)},
                               {p::atan(y), std::atan(y)},
                               {p::atan2(y, x), std::atan2(y, x)},
                               {p::asin(u), std::asin(u)},
                               {p::acos(u), std::acos(u)},
                               {p::powOneThird(std::fabs(y)), std::pow(std::fabs(y), 1.0 / 3.0)}};
    for (int f = 0; f < 8; ++f)
      ASSERT_LE(ulpsApart(pairs[f][0], pairs[f][1]), 2)
          << "function " << f << " at " << a << " " << u << " " << y << " " << x;
  }
  // Huge arguments: no hang, a finite value in [-1, 1].
  for (double huge : {1e9, -1e22, 1e300, std::numeric_limits<double>::max()})
    EXPECT_TRUE(std::fabs(p::sin(huge)) <= 1.0 && std::fabs(p::cos(huge)) <= 1.0) << huge;
}

}  // namespace
