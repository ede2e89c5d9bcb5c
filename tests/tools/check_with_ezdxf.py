#!/usr/bin/env python3
"""Tarnsysm tool test: another DXF reader (ezdxf) opens what the tool writes and its audit
finds nothing to fix.

Usage: check_with_ezdxf.py TARNSYSM GASKET.DXF
Offsets the example drawing, and a drawing of many squares (more entities than fixed handles
leave room for), into a temporary folder; loads each result with ezdxf, audits it and checks
layers, entity kinds and that the input polylines come back unchanged.
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
    if auditor.has_errors or auditor.fixes:
        fail("%s: ezdxf audit: %s" % (path, [e.message for e in auditor.errors + auditor.fixes]))
    return doc


def offset(tool, source, out):
    run = subprocess.run([tool, "offset", source, "--distance", "1.5", "--side", "right",
                          "--output", out], capture_output=True, text=True)
    if run.returncode != 0:
        fail("tool exit status %d: %s" % (run.returncode, run.stderr))
    doc = load(out)
    if doc.dxfversion != "AC1015":
        fail("expected an AutoCAD 2000 file, got %s" % doc.dxfversion)
    for layer in ("INPUT", "OFFSET", "PICK"):
        if layer not in doc.layers:
            fail("layer %s missing" % layer)
    return doc.modelspace()


def main(tool, gasket):
    polylines = load(gasket).modelspace().query("LWPOLYLINE")
    if len(polylines) < 5 or not any(p.has_arc for p in polylines):
        fail("the example should hold several polylines with arcs")

    with tempfile.TemporaryDirectory() as folder:
        msp = offset(tool, gasket, os.path.join(folder, "out.dxf"))
        inputs = msp.query('LWPOLYLINE[layer=="INPUT"]')
        offsets = msp.query('LWPOLYLINE[layer=="OFFSET"]')
        if len(inputs) != len(polylines) or len(offsets) != len(polylines):
            fail("%d inputs, %d offsets of %d" % (len(inputs), len(offsets), len(polylines)))
        if len(msp.query('POINT[layer=="PICK"]')) != len(polylines):
            fail("one pick point per polyline expected")
        for original, written in zip(polylines, inputs):
            if (original.closed != written.closed or
                    original.get_points("xyb") != written.get_points("xyb")):
                fail("input polyline %s changed" % original.dxf.handle)

        squares = os.path.join(folder, "squares.txt")
        with open(squares, "w") as text:
            for i in range(100):
                text.write("closed 4\n%d 0 0\n%d 0 0\n%d 5 0\n%d 5 0\n" % (i * 9, i * 9 + 5,
                                                                            i * 9 + 5, i * 9))
        if len(offset(tool, squares, os.path.join(folder, "squares.dxf"))) != 300:
            fail("100 squares should give 300 entities")
    print("ezdxf %s reads and audits the written drawings clean" % ezdxf.__version__)


if __name__ == "__main__":
    if len(sys.argv) != 3:
        sys.exit(__doc__)
    main(sys.argv[1], sys.argv[2])
