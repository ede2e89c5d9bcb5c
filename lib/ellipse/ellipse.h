// Tarnsysm: planar computational geometry for 2D drafting.
// Ellipse geometry: the plane transform, the ellipse, line, arc and intersection records,
// intersections, nearest points, length, area and division.
#pragma once

#include "../tarnsysm_export.h"
