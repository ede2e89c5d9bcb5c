// Tarnsysm: planar computational geometry for 2D drafting.
// Proves that a consumer needs only the package, the target and the umbrella header.
#include <Tarnsysm.h>

#include <cstdio>

int main() {
  double x = 0.0, y = 0.0;
  int flag = 0;
  if (D2LInts(1e-9, 0, 0, 2, 2, 0, 2, 2, 0, &x, &y, &flag) != 1 || flag != 3 || x != 1.0 ||
      y != 1.0) {
    std::fprintf(stderr, "consumer: unexpected intersection\n");
    return 1;
  }
  std::printf("consumer: diagonals meet at (%g, %g)\n", x, y);
  return 0;
}
