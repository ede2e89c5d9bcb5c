// Tarnsysm: planar computational geometry for 2D drafting.
// Point primitives: coincidence, distances, 3-component copies, rotation and unit vectors.
#include "primitives/internal.h"
#include "primitives/primitives.h"

#include <cmath>

using namespace tarnsysm::detail;

int SamePoint(double eps, double x1, double y1, double x2, double y2) {
  // Strict: a distance of exactly eps is two points, and with eps = 0 no two points are one.
  return square(x2 - x1) + square(y2 - y1) < eps * eps ? 1 : 0;
}

double DistBetweenPoint(double* p, double* q) {
  return std::sqrt(square(q[0] - p[0]) + square(q[1] - p[1]));
}

double DistBetweenPoint(double x1, double y1, double x2, double y2) {
  return std::sqrt(square(x2 - x1) + square(y2 - y1));
}

double DistBetweenPoint(double x1, double y1, double z1, double x2, double y2, double z2) {
  return std::sqrt(square(x2 - x1) + square(y2 - y1) + square(z2 - z1));
}

void Assign3DPoint(double* dst, double* src) {
  dst[0] = src[0];
  dst[1] = src[1];
  dst[2] = src[2];
}

void Assign3DPoint(double* dst, double x, double y, double z) {
  dst[0] = x;
  dst[1] = y;
  dst[2] = z;
}

void RotatePoint(double angle, double* p) {
  const double c = portable::cos(angle);
  const double s = portable::sin(angle);
  const double x = p[0];
  const double y = p[1];
  p[0] = c * x - s * y;
  p[1] = s * x + c * y;
}

int DLineUnitVector(double eps, double x1, double y1, double x2, double y2, double* ux,
                    double* uy) {
  const double dx = x2 - x1;
  const double dy = y2 - y1;
  const double len = std::sqrt(dx * dx + dy * dy);
  // A length of exactly eps still has a direction.
  if (len < eps || std::isnan(len))
    return 0;
  *ux = dx / len;
  *uy = dy / len;
  return 1;
}
