// Tarnsysm: planar computational geometry for 2D drafting.
// Text utilities: distances written in the drafting unit styles, and wildcard name matching.
#pragma once

#include "../tarnsysm_export.h"
