// Tarnsysm: planar computational geometry for 2D drafting.
// Circle constructions: circles through points, of a given radius, tangent to and perpendicular to
// circles, lines and points, chosen by pick points; fitted circles.
#pragma once

#include "../tarnsysm_export.h"
