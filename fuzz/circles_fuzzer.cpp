// Tarnsysm: planar computational geometry for 2D drafting.
// Fuzz target for the fitted circle (up to 64 points) and the three-circle and three-line
// tangent circles, with property checks.
//
// Input layout (values as read by fuzz::ByteReader, fuzz_support.h):
//   byte 0   bits 0-1 the call: 0 or 3 DGetNPCircle, 1 DGetCCCTanCircle, 2 DGetLLLTanCircle;
//            bits 2-4 the tolerance (an entry of kTolerances; 7 reads it as a value)
//   byte 1   DGetNPCircle's point count: n = byte % 67 - 2, so -2 .. 64
//   values   [eps], then the points (2n values), or the 15 or 18 arguments in order.
//
// Properties, each aborting with a message when broken:
//   - the result is 0 or 1;
//   - on 1 every output is finite (and the fitted radius and RMS are not negative);
//   - on 0 the outputs keep their sentinels;
//   - the point array is an exact-size heap block, so AddressSanitizer traps any read past n.
#include <Tarnsysm.h>

#include "fuzz_support.h"

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <memory>

namespace {

constexpr double kTolerances[7] = {1e-9, 1e-8, 1e-6, 1e-4, 1e-3, 1e-12, 0.1};

constexpr double kSentinel = -4242.125;

using fuzz::require;

// Result 1 with finite outputs, or result 0 with the outputs untouched.
void checkOutputs(int result, const double* out, int count) {
  require(result == 0 || result == 1, "result is 0 or 1");
  for (int i = 0; i < count; ++i)
    require(result == 1 ? std::isfinite(out[i]) : out[i] == kSentinel,
            result == 1 ? "outputs of a success are finite" : "a failure leaves outputs untouched");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  fuzz::ByteReader in(data, size);
  const std::uint8_t mode = in.byte();
  const int n = in.byte() % 67 - 2;
  const int tolerance = (mode >> 2) & 7;
  const double eps = tolerance < 7 ? kTolerances[tolerance] : in.value();
  double out[4] = {kSentinel, kSentinel, kSentinel, kSentinel};
  switch (mode & 3) {
    case 1:
    case 2: {
      double a[18];
      for (int i = 0; i < ((mode & 3) == 1 ? 15 : 18); ++i)
        a[i] = in.value();
      const int result =
          (mode & 3) == 1
              ? DGetCCCTanCircle(eps, a[0], a[1], a[2], a[3], a[4], a[5], a[6], a[7], a[8], a[9],
                                 a[10], a[11], a[12], a[13], a[14], &out[0], &out[1], &out[2])
              : DGetLLLTanCircle(eps, a[0], a[1], a[2], a[3], a[4], a[5], a[6], a[7], a[8], a[9],
                                 a[10], a[11], a[12], a[13], a[14], a[15], a[16], a[17], &out[0],
                                 &out[1], &out[2]);
      checkOutputs(result, out, 3);
      require(result == 0 || out[2] >= 0, "radius not negative");
      break;
    }
    default: {
      const std::size_t rows = n > 0 ? static_cast<std::size_t>(n) : 1;
      std::unique_ptr<double[][2]> pts(new double[rows][2]);
      for (std::size_t i = 0; i < rows; ++i)
        for (double& v : pts[i])
          v = n > 0 ? in.value() : 0.0;
      const int result = DGetNPCircle(eps, n, pts.get(), &out[0], &out[1], &out[2], &out[3]);
      checkOutputs(result, out, 4);
      require(result == 0 || (out[2] >= 0 && out[3] >= 0), "radius and residual not negative");
      break;
    }
  }
  return 0;
}
