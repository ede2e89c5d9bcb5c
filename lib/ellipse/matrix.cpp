// Tarnsysm: planar computational geometry for 2D drafting.
// Matrix3, the plane transform of the ellipse routines, and TransPoint.
#include "ellipse/ellipse.h"
#include "primitives/elementary.h"

#include <cmath>

Matrix3::Matrix3() {
  SetZero();
}

Matrix3::Matrix3(Matrix3 const& other) : Matrix<3>(other) {}

Matrix3::Matrix3(Matrix<3> const& other) {
  static_cast<Matrix<3>&>(*this) = other;
}

Matrix3& Matrix3::operator=(Matrix3 const& other) {
  Matrix<3>::operator=(other);
  return *this;
}

void Matrix3::SetShift(double dx, double dy) {
  SetIdentity();
  m[2][0] = dx;
  m[2][1] = dy;
}

void Matrix3::SetScale(double sx, double sy) {
  SetZero();
  m[0][0] = sx;
  m[1][1] = sy;
  m[2][2] = 1.0;
}

void Matrix3::SetRotate(double a) {
  SetIdentity();
  const double c = tarnsysm::detail::portable::cos(a);
  const double s = tarnsysm::detail::portable::sin(a);
  m[0][0] = c;
  m[0][1] = s;
  m[1][0] = -s;
  m[1][1] = c;
}

void TransPoint(Matrix3& m, double* const p) {
  const double x = p[0];
  const double y = p[1];
  const double* const r0 = m.m[0];
  const double* const r1 = m.m[1];
  const double* const r2 = m.m[2];
  p[0] = x * r0[0] + y * r1[0] + r2[0];
  p[1] = x * r0[1] + y * r1[1] + r2[1];
  p[2] = 0.0;
}
