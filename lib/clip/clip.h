// Tarnsysm: planar computational geometry for 2D drafting.
// Polygon clipping against the four edges of a rectangle.
#pragma once

#include "../tarnsysm_export.h"
