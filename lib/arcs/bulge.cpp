// Tarnsysm: planar computational geometry for 2D drafting.
// Bulge segments as arcs, and arc extents. PL_ArcParam is the library's definition of a bulge:
// its centre side, its angle order for clockwise bulges and its degenerate outputs.
#include "arcs/arcs.h"
#include "arcs/internal.h"
#include "primitives/internal.h"
#include "primitives/primitives.h"

#include <cmath>

using namespace tarnsysm::detail;

int PL_ArcParam(double eps, double x1, double y1, double x2, double y2, double bulge, double* cx,
                double* cy, double* r, double* sa, double* ea) {
  const auto degenerate = [&] {
    // Callers treat the segment as straight.
    *cx = x1;
    *cy = y1;
    *r = 0.0;
    *sa = 0.0;
    *ea = 0.0;
    return 0;
  };
  const double chord = std::sqrt(square(x1 - x2) + square(y1 - y2));
  if (!(chord >= eps))
    return degenerate();

  // theta becomes the included angle of the minor-or-half arc, side says where the centre is.
  const double theta0 = 4.0 * portable::atan(bulge);
  double theta = theta0;
  int side = 1;
  if (theta < -eps) {
    side = -side;
    theta = -theta;
  }
  if (theta - kPi > eps) {
    side = -side;
    theta = kTwoPi - theta;
  }
  const double h = portable::sin(theta / 2.0);
  // A zero bulge, or a chord that is a full turn; exactly 0 is straight whatever eps is.
  if (h == 0.0 || withinOpen(h, eps) || std::isnan(h))
    return degenerate();
  const double radius = (0.5 / h) * chord;

  double phi = 0.0;
  DAngle(eps, x1, y1, x2, y2, &phi);
  const double psi = side == 1 ? phi + kHalfPi - theta / 2.0 : phi - kHalfPi + theta / 2.0;
  const double ccx = x1 + radius * portable::cos(psi);
  const double ccy = y1 + radius * portable::sin(psi);

  double start = 0.0;
  double end = 0.0;
  if (theta0 <= eps) {
    // Clockwise (and any positive angle not above eps): the sweep runs from the end vertex.
    DAngle(eps, ccx, ccy, x2, y2, &start);
    DAngle(eps, ccx, ccy, x1, y1, &end);
  } else {
    DAngle(eps, ccx, ccy, x1, y1, &start);
    DAngle(eps, ccx, ccy, x2, y2, &end);
  }
  if (start - eps > end)
    end += kTwoPi;
  // Overflowing input (a chord beyond the largest double) gives no usable circle either.
  if (!allFinite({ccx, ccy, radius, start, end}))
    return degenerate();
  *cx = ccx;
  *cy = ccy;
  *r = radius;
  *sa = start;
  *ea = end;
  return 1;
}

namespace {

struct Box {
  double xmin, ymin, xmax, ymax;

  // A quadrant point widens the box on the side it falls, with eps slack on both sides.
  void merge(double eps, double x, double y) {
    if (x >= xmin - eps) {
      if (x > xmax + eps)
        xmax = x;
    } else {
      xmin = x;
    }
    if (y >= ymin - eps) {
      if (y > ymax + eps)
        ymax = y;
    } else {
      ymin = y;
    }
  }
};

// Does the sweep from sa to ea pass the quadrant angle q (given also one turn up)?
bool passes(double eps, double sa, double ea, double q, double qNextTurn) {
  return (sa < q - eps && ea > q + eps) || (sa > q + eps && ea > qNextTurn + eps);
}

}  // namespace

void get_arc_box(double eps, double* centre, double r, double sa, double ea, double* xmin,
                 double* ymin, double* xmax, double* ymax) {
  const double cx = centre[0];
  const double cy = centre[1];
  const double sx = cx + r * portable::cos(sa);
  const double sy = cy + r * portable::sin(sa);
  Box box{sx, sy, sx, sy};

  // The end point widens the box to one side without comparing with the other bound.
  const double ex = cx + r * portable::cos(ea);
  const double ey = cy + r * portable::sin(ea);
  if (ex >= box.xmin - eps) {
    box.xmax = ex;
  } else {
    box.xmin = ex;
  }
  if (ey >= box.ymin - eps) {
    box.ymax = ey;
  } else {
    box.ymin = ey;
  }

  addTurnsWhileBelow(sa, -eps, &ea);
  subtractTurnsWhileAbove(sa, kTwoPi + eps, &ea);

  constexpr double kThreeHalfPi = 3.0 * kHalfPi;
  if (ea > kTwoPi + eps)
    box.merge(eps, cx + r, cy);
  if (passes(eps, sa, ea, kHalfPi, kHalfPi + kTwoPi))
    box.merge(eps, cx, cy + r);
  if (passes(eps, sa, ea, kPi, kPi + kTwoPi))
    box.merge(eps, cx - r, cy);
  if (passes(eps, sa, ea, kThreeHalfPi, kThreeHalfPi + kTwoPi))
    box.merge(eps, cx, cy - r);

  *xmin = box.xmin;
  *ymin = box.ymin;
  *xmax = box.xmax;
  *ymax = box.ymax;
}
