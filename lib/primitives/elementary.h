// Tarnsysm: planar computational geometry for 2D drafting.
// The library's own elementary functions. The C runtimes round sin, atan2 or pow differently in
// the last bit (glibc, MinGW's msvcrt), and a last bit is enough to move an offset vertex across a
// tolerance test. These use only IEEE-754 +, -, *, / and sqrt (correctly rounded everywhere) and
// exact bit operations, so every platform with SSE2 doubles and no contraction gets the same bits.
// Results are within one unit in the last place of the true value, usually the nearest double.
#pragma once

namespace tarnsysm::detail::portable {

/// sin(x). NaN and infinities give NaN. Beyond about 8e8 radians the argument is reduced by
/// whole turns in plain double arithmetic: the result is then deterministic and in [-1, 1], but
/// no longer close to the true sine (no drawing has such angles).
double sin(double x);

/// cos(x), with the same handling of special and huge arguments as sin.
double cos(double x);

/// tan(x), with the same handling of special and huge arguments as sin.
double tan(double x);

/// atan(x) in [-pi/2, pi/2]; NaN for NaN.
double atan(double x);

/// atan2(y, x) in [-pi, pi], with the C library's signed zeros and infinities: atan2(+-0, -0) is
/// +-pi, atan2(+-0, +0) is +-0, atan2(+-inf, -inf) is +-3 pi/4; NaN when either argument is NaN.
double atan2(double y, double x);

/// asin(x) in [-pi/2, pi/2]; NaN outside [-1, 1].
double asin(double x);

/// acos(x) in [0, pi]; NaN outside [-1, 1].
double acos(double x);

/// pow(x, 1/3) for x >= 0, with 1/3 the double 0.3333333333333333 (slightly below one third, so
/// this is not quite the cube root: pow(2^-999, that) exceeds 2^-333 by about 58 ulp). +0 for
/// +-0, +inf for +inf; NaN for NaN and negative x.
double powOneThird(double x);

}  // namespace tarnsysm::detail::portable
