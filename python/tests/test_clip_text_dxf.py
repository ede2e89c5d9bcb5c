"""Rectangle clipping, distance text, name matching, and the DXF offset example end to end."""
import os
import subprocess
import sys

import numpy as np
import pytest

import tarnsysm

ROOT = os.path.join(os.path.dirname(__file__), "..", "..")


def test_clip_square_to_inner_rectangle():
    got = tarnsysm.clip_polygon(np.array([[0, 0], [0, 10], [10, 10], [10, 0]]), ((2, 2), (5, 5)))
    assert got.shape == (5, 2) and (got[0] == got[-1]).all()
    assert {tuple(p) for p in got} == {(2, 2), (2, 5), (5, 5), (5, 2)}


def test_clip_triangle_cut_by_a_side():
    # The triangle (0,0) (4,0) (0,4) clipped to x < 2 keeps a trapezoid of area 6.
    got = tarnsysm.clip_polygon(np.array([[0, 0], [4, 0], [0, 4], [0, 0]]), ((-1, -1), (2, 5)))
    x, y = got[:, 0], got[:, 1]
    assert abs(np.dot(x[:-1], y[1:]) - np.dot(x[1:], y[:-1])) / 2 == pytest.approx(6)
    assert len(tarnsysm.clip_polygon(np.array([[20, 20], [21, 20], [20, 21]]), ((0, 0), (1, 1)))) == 0


@pytest.mark.parametrize(
    "value, kw, text",
    [
        (1.5, dict(mode=2, prec=3), "1.500"),
        (30.5, dict(mode=4, prec=1), "2'-6 1/2\""),
        (2.25, dict(mode=5, prec=2), "2 1/4"),
        (1500.0, dict(mode=1, prec=2), "1.50e+03"),
    ],
)
def test_distance_text(value, kw, text):
    assert tarnsysm.distance_text(value, **kw) == text


def test_distance_text_unknown_mode():
    with pytest.raises(ValueError):
        tarnsysm.distance_text(1.0, mode=9)


@pytest.mark.parametrize(
    "name, patterns, expected",
    [("LAYER1", "lay*", True), ("DOOR", "wall, door", True), ("A7", "@#", True), ("A7", "@@", False),
     ("WALL", "~wall", False)],
)
def test_match(name, patterns, expected):
    assert tarnsysm.match(name, patterns) is expected


def test_offset_dxf_example(tmp_path):
    ezdxf = pytest.importorskip("ezdxf")
    out = tmp_path / "out.dxf"
    script = os.path.join(ROOT, "examples", "offset_dxf.py")
    subprocess.run([sys.executable, script, os.path.join(ROOT, "examples", "gasket.dxf"), str(out), "1.5"],
                   check=True)
    plines = list(ezdxf.readfile(out).modelspace().query("LWPOLYLINE"))
    originals, offsets = plines[: len(plines) // 2], plines[len(plines) // 2:]
    assert len(originals) == len(offsets) == 8
    for src, moved in zip(originals, offsets):
        rows = np.array(src.get_points("xyb"), float)
        for x, y, _ in moved.get_points("xyb"):
            assert tarnsysm.signed_distance(rows, (x, y), closed=src.closed) == pytest.approx(1.5, abs=1e-6)
