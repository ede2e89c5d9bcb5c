// Tarnsysm: planar computational geometry for 2D drafting.
// Polyline offset: vertex rows and measures, corner joins, the offset driver and loop trimming.
#pragma once

#include "../tarnsysm_export.h"
