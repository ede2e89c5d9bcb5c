"""Polyline offset, area, signed distance and loop trimming, against shapes worked out by hand."""
import math

import numpy as np
import pytest

import tarnsysm

# A 10 x 10 square run clockwise: right of travel is inside.
SQUARE = np.array([[0, 0, 0], [0, 10, 0], [10, 10, 0], [10, 0, 0]], float)
# The unit circle as two half circles run counter-clockwise: right of travel is outside.
CIRCLE = np.array([[1, 0, 1], [-1, 0, 1]], float)


def square(lo, hi):
    return [[lo, lo, 0], [lo, hi, 0], [hi, hi, 0], [hi, lo, 0]]


@pytest.mark.parametrize(
    "name, rows, distance, kw, expected",
    [
        ("inside by side", SQUARE, 1, dict(side="right"), square(1, 9)),
        ("outside by side", SQUARE, 1, dict(side="left"), square(-1, 11)),
        ("side from the sign", SQUARE, -1, {}, square(-1, 11)),
        ("through a point", SQUARE, 0, dict(pick=(5, 12), through=True), square(-2, 12)),
        ("circle grows", CIRCLE, 0.5, dict(side="right"), [[1.5, 0, 1], [-1.5, 0, 1]]),
        ("arc side pick", CIRCLE, 0.5, dict(side="left"), [[0.5, 0, 1], [-0.5, 0, 1]]),
    ],
)
def test_offset_closed(name, rows, distance, kw, expected):
    got = tarnsysm.offset(rows, distance, closed=True, **kw)
    np.testing.assert_allclose(got, expected, atol=1e-9, err_msg=name)


def test_offset_open_segment_keeps_attributes():
    rows = np.array([[0, 0, 0, 7, 8], [10, 0, 0, 9, 10]], float)
    got, closed = tarnsysm.offset(rows, 2, closed=False, side="right", return_closed=True)
    np.testing.assert_allclose(got, [[0, -2, 0, 7, 8], [10, -2, 0, 9, 10]], atol=1e-12)
    assert not closed
    assert rows[0, 1] == 0  # the input is not touched


@pytest.mark.parametrize(
    "name, distance, kw, reason",
    [
        ("pick on the polyline", 1, dict(pick=(0, 5)), "lies on the polyline"),
        ("collapse", 6, dict(side="right"), "collapses"),
        ("not finite", math.inf, dict(pick=(5, 5)), "not finite"),
        ("pick and side", 1, dict(pick=(5, 5), side="left"), "not both"),
        ("unknown side", 1, dict(side="up"), "'left' or 'right'"),
    ],
)
def test_offset_reasons(name, distance, kw, reason):
    with pytest.raises(ValueError, match=reason):
        tarnsysm.offset(SQUARE, distance, closed=True, **kw)


def test_rows_must_be_n_by_3_or_5():
    with pytest.raises(ValueError):
        tarnsysm.area(np.zeros((4, 4)))


@pytest.mark.parametrize(
    "name, rows, expected",
    [
        ("clockwise square", SQUARE, 100.0),
        ("counter-clockwise square", SQUARE[::-1], -100.0),
        ("triangle, open rows closed by a chord", [[0, 0, 0], [0, 4, 0], [3, 0, 0]], 6.0),
        ("two rows have no area", CIRCLE, 0.0),
    ],
)
def test_area(name, rows, expected):
    assert tarnsysm.area(np.asarray(rows, float)) == pytest.approx(expected), name


def test_area_of_arc_edges():
    # A square with its top edge bowed outwards by a half circle of radius 5 (clockwise run).
    rows = np.array([[0, 0, 0], [0, 10, -1], [10, 10, 0], [10, 0, 0]], float)
    assert tarnsysm.area(rows) == pytest.approx(100 + math.pi * 25 / 2)


@pytest.mark.parametrize(
    "name, point, expected",
    [("inside", (5, 5), 5.0), ("outside", (5, 12), -2.0), ("beside", (-3, 4), -3.0)],
)
def test_signed_distance(name, point, expected):
    assert tarnsysm.signed_distance(SQUARE, point, closed=True) == pytest.approx(expected), name


def test_signed_distance_not_measurable():
    with pytest.raises(ValueError):
        tarnsysm.signed_distance(SQUARE[:1], (1, 1), closed=False)


def test_trim_loops_cuts_the_crossing():
    # The last segment crosses the first at y = 0, two thirds of the way down from (10, 10).
    rows = np.array([[0, 0, 0], [10, 0, 0], [10, 10, 0], [5, -5, 0]], float)
    got, closed = tarnsysm.trim_loops(rows, closed=False, pick=(0, -1))
    np.testing.assert_allclose(got, [[0, 0, 0], [20 / 3, 0, 0], [5, -5, 0]], atol=1e-9)
    assert not closed
    loop, closed = tarnsysm.trim_loops(rows, closed=False, pick=(9, 4))
    assert closed and len(loop) == 3
