// Tarnsysm: planar computational geometry for 2D drafting.
// Dimension helpers: points, angles, coordinate changes and text extents for laying out dimensions.
#pragma once

#include "../tarnsysm_export.h"
