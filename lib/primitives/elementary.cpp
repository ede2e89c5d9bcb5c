// Tarnsysm: planar computational geometry for 2D drafting.
// Elementary functions from IEEE-754 arithmetic alone: argument reduction in pieces of pi/2 whose
// products are exact, short polynomials on the reduced range, and the few error-free
// transformations (two-sum, two-product) that carry the rounding error of one step into the next.
#include "primitives/elementary.h"

#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>

namespace tarnsysm::detail::portable {

namespace {

constexpr double kInf = std::numeric_limits<double>::infinity();
constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

// Adding and subtracting 1.5 * 2^52 rounds |v| < 2^51 to the nearest integer (ties to even).
constexpr double kRoundToInteger = 0x1.8p52;

inline double nearestInteger(double v) {
  return (v + kRoundToInteger) - kRoundToInteger;
}

// An unevaluated sum hi + lo with |lo| small against |hi|: about 106 bits of a value.
struct Pair {
  double hi;
  double lo;
};

// hi + lo == a + b exactly (Knuth).
inline Pair twoSum(double a, double b) {
  const double s = a + b;
  const double bv = s - a;
  return {s, (a - (s - bv)) + (b - bv)};
}

// hi + lo == a + b exactly, provided |a| >= |b| or a == 0 (Dekker).
inline Pair fastTwoSum(double a, double b) {
  const double s = a + b;
  return {s, b - (s - a)};
}

// a == hi + lo with at most 26 significant bits in each half, so products of halves are exact.
inline Pair split(double a) {
  const double c = 134217729.0 * a;  // 2^27 + 1
  const double hi = c - (c - a);
  return {hi, a - hi};
}

// hi + lo == a * b exactly, for |a|, |b| well inside the normal range (Dekker, without fma).
inline Pair twoProduct(double a, double b) {
  const double p = a * b;
  const Pair as = split(a);
  const Pair bs = split(b);
  return {p, ((as.hi * bs.hi - p) + as.hi * bs.lo + as.lo * bs.hi) + as.lo * bs.lo};
}

double fromBits(std::uint64_t bits) {
  double v;
  std::memcpy(&v, &bits, sizeof v);
  return v;
}

std::uint64_t toBits(double v) {
  std::uint64_t bits;
  std::memcpy(&bits, &v, sizeof bits);
  return bits;
}

inline double negateIf(bool negative, double v) {
  return negative ? -v : v;
}

// pi/2 and pi as pairs (the leading doubles are kHalfPi and kPi).
constexpr Pair kHalfPiPair = {0x1.921fb54442d18p+0, 0x1.1a62633145c07p-54};
constexpr Pair kPiPair = {0x1.921fb54442d18p+1, 0x1.1a62633145c07p-53};
constexpr double kQuarterPi = 0x1.921fb54442d18p-1;
constexpr double kTwoOverPi = 0x1.45f306dc9c883p-1;
constexpr double kOneOverTwoPi = 0x1.45f306dc9c883p-3;

// ---------------------------------------------------------------------------------------------
// Argument reduction: x = n pi/2 + r with |r| <= pi/4 (to rounding), r returned as a pair.

struct Reduced {
  int quadrant;  // n mod 4
  Pair r;
};

// pi/2 = a + b + c to about 2^-119. a and b carry 33 significant bits, so n a and n b are exact
// for |n| < 2^20; x - n a is then exact as well (the two are within a factor 2 of each other).
constexpr double kHalfPiA = 0x1.921fb544p+0;
constexpr double kHalfPiB = 0x1.0b4611a6p-34;
constexpr double kHalfPiC = 0x1.3198a2e037073p-69;
constexpr double kMediumLimit = 1.6e6;  // |x| below this has |n| < 2^20

// pi/2 in five pieces of 24 bits (to about 2^-120): n times a piece is exact for |n| < 2^29.
constexpr double kHalfPiPieces[] = {0x1.921fb4p+0, 0x1.4442d0p-24, 0x1.846988p-48, 0x1.8cc516p-72,
                                    0x1.01b838p-96};
constexpr double kLargeLimit = 8e8;  // |x| below this has |n| < 2^29

Reduced reduceMedium(double x) {
  const double n = nearestInteger(x * kTwoOverPi);
  const double t = x - n * kHalfPiA;
  const Pair u = twoSum(t, -n * kHalfPiB);
  const Pair r = twoSum(u.hi, u.lo - n * kHalfPiC);
  return {static_cast<int>(n) & 3, r};
}

Reduced reduceLarge(double x) {
  const double n = nearestInteger(x * kTwoOverPi);
  double hi = x - n * kHalfPiPieces[0];
  double lo = 0.0;
  for (int i = 1; i < 5; ++i) {
    const Pair s = twoSum(hi, -n * kHalfPiPieces[i]);
    hi = s.hi;
    lo += s.lo;
  }
  return {static_cast<int>(n) & 3, fastTwoSum(hi, lo)};
}

// Finite |x| > pi/4.
Reduced reduce(double x) {
  const double ax = std::fabs(x);
  if (ax < kMediumLimit)
    return reduceMedium(x);
  if (ax < kLargeLimit)
    return reduceLarge(x);
  // Far beyond any drawing's angles: keep the fraction of whole turns. Deterministic and within
  // [-pi, pi], though the rounding of x / 2 pi has long swamped the true angle.
  const double turns = x * kOneOverTwoPi;
  const double whole = std::fabs(turns) < 0x1p51 ? nearestInteger(turns) : turns;
  return reduceMedium((turns - whole) * 0x1.921fb54442d18p+2);
}

// ---------------------------------------------------------------------------------------------
// sin and cos of r = a + b, |r| <= pi/4. With z = a^2:
//   sin r = a - a^3 / 6 + a^3 z S(z) + b (1 - z / 2),   S(z) = (sin a - a + a^3 / 6) / a^5,
//   cos r = 1 - z / 2 + z^2 C(z) - a b,                  C(z) = (cos a - 1 + z / 2) / z^2,
// S and C near-minimax on [0, (pi/4)^2] (errors below 1e-20 and 2e-18). The leading terms a^3 / 6
// and z / 2 are formed exactly, so only the small rest carries rounding error.

// -1/6 = kSixthHead + kSixthTail, the head short enough for an exact product.
constexpr double kSixthHead = -0x1.555555p-3;
constexpr double kSixthTail = -0x1.5555555555555p-29;
constexpr double kS[] = {0x1.1111111111110p-7,   -0x1.a01a01a019938p-13, 0x1.71de3a546095bp-19,
                         -0x1.ae645412c560cp-26, 0x1.61217f0b800d5p-33,  -0x1.ab17d404de5b3p-41};
constexpr double kC[] = {0x1.5555555555555p-5,   -0x1.6c16c16c16967p-10, 0x1.a01a019f4eb01p-16,
                         -0x1.27e4fa17da09ep-22, 0x1.1eeb68e93b64cp-29,  -0x1.907da367a37cbp-37};

// c x exactly when c has at most 26 significant bits.
inline Pair shortProduct(double c, double x) {
  const double p = c * x;
  const Pair xs = split(x);
  return {p, (c * xs.hi - p) + c * xs.lo};
}

// sin r as a pair.
inline Pair sinParts(double a, double b) {
  const Pair z = twoProduct(a, a);
  const Pair cube = twoProduct(a, z.hi);
  const Pair lead = shortProduct(kSixthHead, cube.hi);
  const double zh = z.hi;
  const double s = kS[0] + zh * (kS[1] + zh * (kS[2] + zh * (kS[3] + zh * (kS[4] + zh * kS[5]))));
  const double rest = lead.lo + (cube.lo + a * z.lo) * kSixthHead + cube.hi * kSixthTail +
                      cube.hi * zh * s + (b - 0.5 * zh * b);
  const Pair head = fastTwoSum(a, lead.hi);
  return fastTwoSum(head.hi, head.lo + rest);
}

// cos r as a pair: w = 1 - z / 2 rounded plus the rest, its rounding error included.
inline Pair cosParts(double a, double b) {
  const Pair z = twoProduct(a, a);
  const double zh = z.hi;
  const double c = kC[0] + zh * (kC[1] + zh * (kC[2] + zh * (kC[3] + zh * (kC[4] + zh * kC[5]))));
  const double hz = 0.5 * zh;
  const double w = 1.0 - hz;
  return fastTwoSum(w, ((1.0 - w) - hz) + ((zh * zh * c - 0.5 * z.lo) - a * b));
}

inline double sum(Pair p) {
  return p.hi + p.lo;
}

// Below this, sin x and tan x round to x and cos x to 1.
constexpr double kTinyAngle = 0x1p-27;

// ---------------------------------------------------------------------------------------------
// atan. For a ratio q = n / d in [0, 1] take the nearest c = k / 16 and
// t = (q - c) / (1 + c q) = (n - c d) / (d + c n), |t| <= 1/32: atan q = atan c + atan t, with
// atan t = t + t^3 (-1/3 + t^2 / 5 - ...) to 2^-63 in five terms.

// atan(k / 16) as pairs, k = 0..16.
constexpr Pair kAtanSixteenths[] = {{0.0, 0.0},
                                    {0.06241880999595735, -1.5490756308295046e-18},
                                    {0.12435499454676144, -3.1253241424539383e-18},
                                    {0.18534794999569476, 4.180692268843079e-18},
                                    {0.24497866312686414, 1.0698755618734451e-17},
                                    {0.3028848683749714, -1.1010827903001369e-17},
                                    {0.35877067027057225, -2.4623815582638635e-17},
                                    {0.4124104415973873, -1.587652227770689e-17},
                                    {0.4636476090008061, 2.2698777452961687e-17},
                                    {0.5123894603107377, -2.5462781472855804e-17},
                                    {0.5585993153435624, -5.4556305485916264e-18},
                                    {0.6022873461349642, 2.950430737228402e-17},
                                    {0.6435011087932844, 1.5834785051444286e-17},
                                    {0.6823165548747481, 6.943223671560008e-18},
                                    {0.7188299996216245, -2.1478388444456983e-17},
                                    {0.7531512809621944, -2.4256934659182068e-17},
                                    {0.7853981633974483, 3.061616997868383e-17}};

// num / den for pairs, den.hi well inside the normal range: the quotient times 1 / den.hi,
// corrected once by the exact residual.
inline Pair divide(Pair num, Pair den) {
  const double inv = 1.0 / den.hi;
  const double q = num.hi * inv;
  const Pair p = twoProduct(q, den.hi);
  return {q, ((((num.hi - p.hi) - p.lo) + num.lo) - q * den.lo) * inv};
}

// atan(num / den) for pairs with 0 <= num <= den, both well inside the normal range.
inline Pair atanUnit(Pair num, Pair den) {
  const int k = static_cast<int>(num.hi / den.hi * 16.0 + 0.5);
  Pair t;
  if (k == 0) {
    t = divide(num, den);
  } else {
    const double c = k * 0.0625;
    const Pair cd = shortProduct(c, den.hi);
    const Pair cn = shortProduct(c, num.hi);
    // num.hi - c den.hi is exact: num / den lies within 1/32 of c >= 1/16.
    const Pair n = twoSum(num.hi - cd.hi, (num.lo - cd.lo) - c * den.lo);
    const Pair d = fastTwoSum(den.hi, cn.hi);
    t = divide(n, {d.hi, d.lo + ((den.lo + cn.lo) + c * num.lo)});
  }
  const double z = t.hi * t.hi;
  const double poly =
      t.hi * z *
      (-0x1.5555555555555p-2 +
       z * (0x1.999999999999ap-3 +
            z * (-0x1.2492492492492p-3 + z * (0x1.c71c71c71c71cp-4 + z * -0x1.745d1745d1746p-4))));
  const Pair base = kAtanSixteenths[k];
  const Pair s = fastTwoSum(base.hi, t.hi);  // atan c >= 1/16 > |t| once k > 0
  return {s.hi, s.lo + (base.lo + (t.lo + poly))};
}

// The angle of the point (x, y) for pairs y >= 0, x > 0 well inside the normal range, mirrored to
// (-x, y) when mirrored is set: in [0, pi]. The smaller coordinate over the larger keeps the
// quotient in [0, 1]; the angle is then offset + atan or offset - atan, rounded once.
inline double angleOf(Pair y, Pair x, bool mirrored) {
  const bool steep = y.hi > x.hi;
  const Pair a = steep ? atanUnit(x, y) : atanUnit(y, x);
  // Offsets: flat 0, steep pi/2 - a; mirrored flat pi - a, mirrored steep pi/2 + a.
  const Pair offset = steep ? kHalfPiPair : (mirrored ? kPiPair : Pair{0.0, 0.0});
  const bool subtract = steep != mirrored;
  const double ah = subtract ? -a.hi : a.hi;
  const double al = subtract ? -a.lo : a.lo;
  const Pair s = fastTwoSum(offset.hi, ah);  // the offset, when not 0, is at least pi/2 >= 2 a
  return s.hi + (s.lo + (offset.lo + al));
}

// sqrt(1 - x^2) as a pair for 2^-57 <= x < 1: 1 - x and 1 + x with their rounding errors,
// multiplied exactly, then the root corrected once.
Pair sqrtOneMinusSquare(double x) {
  const Pair a = fastTwoSum(1.0, -x);
  const Pair b = fastTwoSum(1.0, x);
  const Pair p = twoProduct(a.hi, b.hi);
  const Pair d = fastTwoSum(p.hi, p.lo + (a.hi * b.lo + a.lo * b.hi));
  const double s = std::sqrt(d.hi);
  const Pair ss = twoProduct(s, s);
  return {s, (((d.hi - ss.hi) - ss.lo) + d.lo) / (2.0 * s)};
}

}  // namespace

double sin(double x) {
  const double ax = std::fabs(x);
  if (ax < kTinyAngle)
    return x;
  if (ax <= kQuarterPi)
    return sum(sinParts(x, 0.0));
  if (!(ax < kInf))
    return kNaN;
  const Reduced red = reduce(x);
  const Pair v = (red.quadrant & 1) ? cosParts(red.r.hi, red.r.lo) : sinParts(red.r.hi, red.r.lo);
  return negateIf(red.quadrant >= 2, sum(v));
}

double cos(double x) {
  const double ax = std::fabs(x);
  if (ax < kTinyAngle)
    return 1.0;
  if (ax <= kQuarterPi)
    return sum(cosParts(x, 0.0));
  if (!(ax < kInf))
    return kNaN;
  const Reduced red = reduce(x);
  const Pair v = (red.quadrant & 1) ? sinParts(red.r.hi, red.r.lo) : cosParts(red.r.hi, red.r.lo);
  return negateIf(red.quadrant == 1 || red.quadrant == 2, sum(v));
}

double tan(double x) {
  const double ax = std::fabs(x);
  if (ax < kTinyAngle)
    return x;
  if (!(ax < kInf))
    return kNaN;
  const Reduced red = ax <= kQuarterPi ? Reduced{0, {x, 0.0}} : reduce(x);
  // sin r / cos r with both as pairs; odd quadrants give -cos r / sin r.
  const Pair s = sinParts(red.r.hi, red.r.lo);
  const Pair c = cosParts(red.r.hi, red.r.lo);
  if (!(red.quadrant & 1))
    return sum(divide(s, c));
  if (s.hi == 0.0)  // only for a huge x whose whole-turn fraction is a quadrant boundary
    return -kInf;
  return -sum(divide(c, s));
}

double atan(double x) {
  const double ax = std::fabs(x);
  if (std::isnan(x) || ax < kTinyAngle)
    return x;
  // Beyond 2^60, pi/2 - 1/x rounds to pi/2 (infinity included).
  if (ax >= 0x1p60)
    return negateIf(x < 0.0, kHalfPiPair.hi);
  return negateIf(x < 0.0, angleOf({ax, 0.0}, {1.0, 0.0}, false));
}

double atan2(double y, double x) {
  const bool negX = std::signbit(x);
  const bool negY = std::signbit(y);
  const double ax = std::fabs(x);
  const double ay = std::fabs(y);
  // The everyday case first: a ratio within 2^60 of 1, both coordinates well inside the normal
  // range (NaN, zeros and infinities all fail one of the tests).
  const double larger = ax > ay ? ax : ay;
  const double smaller = ax > ay ? ay : ax;
  if (smaller * 0x1p60 > larger && larger < 0x1p500 && smaller > 0x1p-440)
    return negateIf(negY, angleOf({ay, 0.0}, {ax, 0.0}, negX));
  if (std::isnan(x) || std::isnan(y))
    return x + y;
  // Zeros and infinities by the C library's rules.
  if (ay == 0.0)
    return negX ? negateIf(negY, kPiPair.hi) : y;
  if (ax == 0.0)
    return negateIf(negY, kHalfPiPair.hi);
  if (ax == kInf || ay == kInf) {
    double angle;
    if (ax == kInf && ay == kInf)
      angle = negX ? 0x1.2d97c7f3321d2p+1 : kQuarterPi;  // 3 pi/4, pi/4
    else if (ax == kInf)
      angle = negX ? kPiPair.hi : 0.0;
    else
      angle = kHalfPiPair.hi;
    return negateIf(negY, angle);
  }
  // atan q = q to the last bit below 2^-60 (q may even be subnormal), and pi/2 - q = pi/2.
  if (ay * 0x1p60 <= ax)
    return negateIf(negY, negX ? kPiPair.hi : ay / ax);
  if (ax * 0x1p60 <= ay)
    return negateIf(negY, kHalfPiPair.hi);
  // The ratio stays within 2^60 of 1, so one common power of two brings both well inside the
  // normal range, exactly, and the exact products of the division step cannot overflow.
  const double scale = larger > 0x1p500 ? 0x1p-600 : (larger < 0x1p-500 ? 0x1p600 : 1.0);
  return negateIf(negY, angleOf({ay * scale, 0.0}, {ax * scale, 0.0}, negX));
}

double asin(double x) {
  const double ax = std::fabs(x);
  if (std::isnan(x) || ax < kTinyAngle)
    return x;
  if (ax >= 1.0)
    return ax == 1.0 ? negateIf(x < 0.0, kHalfPiPair.hi) : kNaN;
  // asin x = atan(x / sqrt(1 - x^2)).
  return negateIf(x < 0.0, angleOf({ax, 0.0}, sqrtOneMinusSquare(ax), false));
}

double acos(double x) {
  const double ax = std::fabs(x);
  if (std::isnan(x))
    return x;
  if (ax >= 1.0)
    return ax == 1.0 ? (x < 0.0 ? kPiPair.hi : 0.0) : kNaN;
  // Below 2^-57, pi/2 - x rounds to pi/2.
  if (ax < 0x1p-57)
    return kHalfPiPair.hi;
  // acos |x| = atan(sqrt(1 - x^2) / |x|), and acos x = pi - acos |x| for negative x.
  return angleOf(sqrtOneMinusSquare(ax), {ax, 0.0}, x < 0.0);
}

double powOneThird(double x) {
  if (!(x > 0.0) || x == kInf)
    return x == 0.0 ? 0.0 : (x > 0.0 ? x : kNaN);
  // x = m 2^e with m in [1, 2); subnormals are scaled up first.
  int e = 0;
  if (x < 0x1p-1022) {
    x *= 0x1p54;
    e = -54;
  }
  const std::uint64_t bits = toBits(x);
  e += static_cast<int>(bits >> 52) - 1023;
  const double m = fromBits((bits & 0x000fffffffffffffULL) | 0x3ff0000000000000ULL);
  // e = 3 k + j with j in {0, 1, 2}: cbrt x = 2^k cbrt(v), v = m 2^j in [1, 8).
  const int k = (e >= 0 ? e : e - 2) / 3;
  const int j = e - 3 * k;
  const double v = m * static_cast<double>(1 << j);

  // Cube root of v: a cubic fit (within 1 %) as a start, two Halley steps (each cubes the
  // relative error), then y + yl with yl from the exact residual v - y^3.
  double y = 0x1.6ef7d7cd66d8cp-1 +
             v * (0x1.50ba80e69b747p-2 + v * (-0x1.16bdce74d65dbp-5 + v * 0x1.aaa35d014643bp-10));
  for (int i = 0; i < 2; ++i) {
    const double y3 = y * y * y;
    y *= (y3 + 2.0 * v) / (2.0 * y3 + v);
  }
  const Pair y2 = twoProduct(y, y);
  const Pair y3 = twoProduct(y, y2.hi);
  const double yl = (((v - y3.hi) - y3.lo) - y * y2.lo) / (3.0 * y2.hi);

  // x^0.3333333333333333 = cbrt(x) x^-d with d = 1/3 - 0.3333333333333333 = 2^-54 / 3, and
  // x^-d = 1 - d ln x to far below the last bit; ln x needs only a few digits. ln m from
  // ln((1 + s) / (1 - s)) = 2 (s + s^3/3 + s^5/5 + s^7/7), |s| <= 1/3.
  const double s = (m - 1.0) / (m + 1.0);
  const double s2 = s * s;
  const double lnM = 2.0 * s * (1.0 + s2 * (1.0 / 3.0 + s2 * (0.2 + s2 * (1.0 / 7.0))));
  const double lnX = e * 0x1.62e42fefa39efp-1 + lnM;
  const double d = 0x1p-54 / 3.0;
  const double root = y + (yl - y * (d * lnX));
  return root * fromBits(static_cast<std::uint64_t>(k + 1023) << 52);
}

}  // namespace tarnsysm::detail::portable
