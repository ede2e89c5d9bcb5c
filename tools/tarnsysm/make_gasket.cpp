// Tarnsysm tool: writes the example drawing examples/gasket.dxf with the tool's DXF writer.
// A flat gasket in millimetres, drawn with the material on the left of travel (outline
// counter-clockwise, holes clockwise), so `--side right` moves every curve off the material.
#include <cmath>
#include <fstream>
#include <iostream>

#include "dxf_io.h"

namespace {

using tarnsysm::tool::DxfContent;
using tarnsysm::tool::Polyline;

// Bulge of a quarter circle, tan(90 deg / 4).
const double kQuarter = std::tan(3.141592653589793 / 8.0);

Polyline polyline(const char* layer, bool closed, std::vector<tarnsysm::tool::Vertex> vertices) {
  Polyline p;
  p.layer = layer;
  p.closed = closed;
  p.vertices = std::move(vertices);
  return p;
}

// A round hole of the given radius, as two clockwise half circles.
Polyline hole(double cx, double cy, double r) {
  return polyline("HOLES", true, {{cx + r, cy, -1.0}, {cx - r, cy, -1.0}});
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 2) {
    std::cerr << "usage: tarnsysm_make_gasket OUT.dxf\n";
    return 2;
  }
  DxfContent gasket;
  gasket.layers = {{"OUTLINE", 7}, {"HOLES", 3}, {"BEAD", 4}};

  // Outline: a 120 x 80 plate with 20 mm corner rounds and a bolt ear of radius 12 on each
  // short side; the ears meet the sides at sharp inside corners.
  gasket.polylines.push_back(polyline("OUTLINE", true,
                                      {{-40.0, -40.0, 0.0},
                                       {40.0, -40.0, kQuarter},
                                       {60.0, -20.0, 0.0},
                                       {60.0, -12.0, 1.0},
                                       {60.0, 12.0, 0.0},
                                       {60.0, 20.0, kQuarter},
                                       {40.0, 40.0, 0.0},
                                       {-40.0, 40.0, kQuarter},
                                       {-60.0, 20.0, 0.0},
                                       {-60.0, 12.0, 1.0},
                                       {-60.0, -12.0, 0.0},
                                       {-60.0, -20.0, kQuarter}}));

  // Bolt holes in the ears, and the port: a 50 x 24 slot with 6 mm corners, clockwise.
  gasket.polylines.push_back(hole(-60.0, 0.0, 5.0));
  gasket.polylines.push_back(hole(60.0, 0.0, 5.0));
  gasket.polylines.push_back(polyline("HOLES", true,
                                      {{-19.0, -12.0, -kQuarter},
                                       {-25.0, -6.0, 0.0},
                                       {-25.0, 6.0, -kQuarter},
                                       {-19.0, 12.0, 0.0},
                                       {19.0, 12.0, -kQuarter},
                                       {25.0, 6.0, 0.0},
                                       {25.0, -6.0, -kQuarter},
                                       {19.0, -12.0, 0.0}}));
  // Two small holes for locating pins, above and below the port.
  gasket.polylines.push_back(hole(-30.0, 28.0, 2.5));
  gasket.polylines.push_back(hole(30.0, -28.0, 2.5));

  // Open polylines: a wavy sealing bead above the port, and below it a score line that
  // steps down through two tangent quarter arcs.
  gasket.polylines.push_back(
      polyline("BEAD", false,
               {{-15.0, 28.0, 0.4}, {-5.0, 28.0, -0.4}, {5.0, 28.0, 0.4}, {15.0, 28.0, 0.0}}));
  gasket.polylines.push_back(polyline("BEAD", false,
                                      {{-40.0, -22.0, 0.0},
                                       {-26.0, -22.0, -kQuarter},
                                       {-22.0, -26.0, kQuarter},
                                       {-18.0, -30.0, 0.0},
                                       {15.0, -30.0, 0.0}}));

  try {
    std::ofstream out(argv[1], std::ios::binary);
    out << tarnsysm::tool::dxfText(gasket);
    if (!out.flush())
      throw std::runtime_error(std::string("cannot write ") + argv[1]);
  } catch (const std::exception& e) {
    std::cerr << "tarnsysm_make_gasket: " << e.what() << "\n";
    return 2;
  }
  return 0;
}
