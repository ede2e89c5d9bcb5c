// Tarnsysm: planar computational geometry for 2D drafting.
// The umbrella header: consumers include this one file and get every exported name.
#pragma once

#include "primitives/primitives.h"
#include "intersect/intersect.h"
#include "arcs/arcs.h"
#include "offset/offset.h"
