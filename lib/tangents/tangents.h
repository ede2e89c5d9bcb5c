// Tarnsysm: planar computational geometry for 2D drafting.
// Tangent and perpendicular lines: lines tangent to two circles, tangent and parallel, through a
// point, perpendicular constructions.
#pragma once

#include "../tarnsysm_export.h"
