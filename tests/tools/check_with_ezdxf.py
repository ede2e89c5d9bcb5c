#!/usr/bin/env python3
"""Tarnsysm tool test: another DXF reader (ezdxf) opens what the tool writes.

Usage: check_with_ezdxf.py TARNSYSM GASKET.DXF
Offsets the example drawing into a temporary folder, then loads the result and the example
with ezdxf, runs its auditor and checks layers, entity kinds and bulges.
"""
import os
import subprocess
import sys
import tempfile

import ezdxf


def fail(message):
    print("FAIL:", message)
    sys.exit(1)


def load(path):
    doc = ezdxf.readfile(path)
    auditor = doc.audit()
    if auditor.has_errors:
        fail("%s: ezdxf audit errors: %s" % (path, [e.message for e in auditor.errors]))
    return doc


def main(tool, gasket):
    source = load(gasket)
    polylines = source.modelspace().query("LWPOLYLINE")
    if len(polylines) < 5 or not any(p.has_arc for p in polylines):
        fail("the example should hold several polylines with arcs")

    with tempfile.TemporaryDirectory() as folder:
        out = os.path.join(folder, "out.dxf")
        run = subprocess.run([tool, "offset", gasket, "--distance", "1.5", "--side", "right",
                              "--output", out], capture_output=True, text=True)
        if run.returncode not in (0, 1):
            fail("tool exit status %d: %s" % (run.returncode, run.stderr))
        doc = load(out)
        if doc.dxfversion != "AC1015":
            fail("expected an AutoCAD 2000 file, got %s" % doc.dxfversion)
        for layer in ("INPUT", "OFFSET", "PICK"):
            if layer not in doc.layers:
                fail("layer %s missing" % layer)
        msp = doc.modelspace()
        inputs = msp.query('LWPOLYLINE[layer=="INPUT"]')
        offsets = msp.query('LWPOLYLINE[layer=="OFFSET"]')
        points = msp.query('POINT[layer=="PICK"]')
        if len(inputs) != len(polylines):
            fail("%d input polylines written, %d read" % (len(inputs), len(polylines)))
        if len(offsets) == 0 or len(points) != len(polylines):
            fail("%d offsets, %d pick points" % (len(offsets), len(points)))
        for original, written in zip(polylines, inputs):
            if original.closed != written.closed:
                fail("closed flag changed")
            a = original.get_points("xyb")
            b = written.get_points("xyb")
            if len(a) != len(b) or any(abs(p - q) > 1e-12 for u, v in zip(a, b)
                                       for p, q in zip(u, v)):
                fail("input polyline %s changed" % original.dxf.handle)
    print("ezdxf %s reads the written drawing: %d offsets" % (ezdxf.__version__, len(offsets)))


if __name__ == "__main__":
    if len(sys.argv) != 3:
        sys.exit(__doc__)
    main(sys.argv[1], sys.argv[2])
