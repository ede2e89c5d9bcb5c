// Tarnsysm: planar computational geometry for 2D drafting.
// The umbrella header: consumers include this one file and get every exported name.
#pragma once

#include "arcs/arcs.h"
#include "intersect/intersect.h"
#include "offset/offset.h"
#include "primitives/primitives.h"
