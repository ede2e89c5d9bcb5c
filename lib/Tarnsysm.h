// Tarnsysm: planar computational geometry for 2D drafting.
// The umbrella header: consumers include this one file and get every exported name.
#pragma once

#include "arcs/arcs.h"
#include "circles/circles.h"
#include "clip/clip.h"
#include "dimension/dimension.h"
#include "ellipse/ellipse.h"
#include "intersect/intersect.h"
#include "offset/offset.h"
#include "primitives/primitives.h"
#include "tangents/tangents.h"
#include "text/text.h"
