// Tarnsysm: planar computational geometry for 2D drafting.
// The round-corner offset: stitching the kept slices into loops, and the exported entries.
#include "offset/offset.h"

int PLineOffsetRound(double, int, int, double (*const)[5], double, double (*)[5], int, int*, int*,
                     int, int* loopCount) {
  if (loopCount)
    *loopCount = 0;
  return 0;
}

int PLineOffsetRoundPick(double, int, int, double (*const)[5], int, double* const, double,
                         double (*)[5], int, int*) {
  return 0;
}
