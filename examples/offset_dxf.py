#!/usr/bin/env python3
"""Offsets every LWPOLYLINE of a drawing: offset_dxf.py IN.dxf OUT.dxf DISTANCE [left|right]."""
import sys

import ezdxf
import numpy as np
import tarnsysm

source, target, distance = sys.argv[1], sys.argv[2], float(sys.argv[3])
side = sys.argv[4] if len(sys.argv) > 4 else "right"
doc = ezdxf.readfile(source)
msp = doc.modelspace()
for pline in list(msp.query("LWPOLYLINE")):
    rows = np.array(pline.get_points("xyb"), dtype=float)
    try:
        moved, closed = tarnsysm.offset(rows, distance, closed=pline.closed, side=side, return_closed=True)
    except ValueError as reason:
        print(f"LWPOLYLINE {pline.dxf.handle}: {reason}", file=sys.stderr)
        continue
    msp.add_lwpolyline(moved.tolist(), format="xyb", close=closed, dxfattribs={"layer": pline.dxf.layer})
doc.saveas(target)
