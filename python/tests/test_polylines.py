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


Q = math.sqrt(2) - 1  # the bulge of a quarter circle
CORNER = -Q  # a round corner of a clockwise outward offset turns right


@pytest.mark.parametrize(
    "name, rows, distance, kw, expected",
    [
        ("inside, sharp corners", SQUARE, 1, {}, [square(1, 9)]),
        # Outside, each corner becomes a quarter circle about its vertex; attributes: moved
        # segments keep their start row's, corners take -1 and the vertex row's second one.
        ("outside, round corners", np.array([[0, 0, 0, 7, 70], [0, 10, 0, 8, 80], [10, 10, 0, 9, 90], [10, 0, 0, 6, 60]]),
         -1, {},
         [[[-1, 0, 0, 7, 70], [-1, 10, CORNER, -1, 80], [0, 11, 0, 8, 80], [10, 11, CORNER, -1, 90],
           [11, 10, 0, 9, 90], [11, 0, CORNER, -1, 60], [10, -1, 0, 6, 60], [0, -1, CORNER, -1, 70]]]),
        ("through a picked point", SQUARE, 0, dict(pick=(5, 12), through=True),
         [[[-2, 0, 0], [-2, 10, CORNER], [0, 12, 0], [10, 12, CORNER], [12, 10, 0], [12, 0, CORNER], [10, -2, 0],
           [0, -2, CORNER]]]),
        ("open segment", np.array([[0, 0, 0], [10, 0, 0]], float), 1, {}, [[[0, -1, 0], [10, -1, 0]]]),
    ],
)
def test_offset_round(name, rows, distance, kw, expected):
    got = tarnsysm.offset_round(rows, distance, closed=len(rows) > 2, **kw)
    assert len(got) == len(expected), name
    for g, e in zip(got, expected):
        np.testing.assert_allclose(g, e, atol=1e-9, err_msg=name)


def segment_distance(p, a, b):
    ab, ap = b - a, p - a
    t = min(max(np.dot(ap, ab) / np.dot(ab, ab), 0), 1)
    return np.linalg.norm(ap - t * ab)


def test_offset_round_splits_a_dumbbell():
    # Two 10 x 10 squares joined by a neck 2 wide, run clockwise: 1.5 inside cuts the neck, and
    # each half keeps a cusp where the arcs about the neck's corners meet, sqrt(1.25) short of it.
    pts = np.array([(0, 0), (0, 10), (10, 10), (10, 6), (20, 6), (20, 10), (30, 10), (30, 0), (20, 0), (20, 4), (10, 4),
                    (10, 0)], float)
    loops = tarnsysm.offset_round(np.hstack([pts, np.zeros((12, 1))]), 1.5, closed=True, return_closed=True)
    ranges = [(a[:, 0].min(), a[:, 0].max()) for a, _ in loops]
    np.testing.assert_allclose(ranges, [(1.5, 10 - math.sqrt(1.25)), (20 + math.sqrt(1.25), 28.5)])
    # Loops come in the order they start along the input, each from its piece that comes first:
    # the left square's from the first segment, the right one's from the corner at (20, 6).
    np.testing.assert_allclose(loops[0][0][0, :2], (1.5, 1.5))
    np.testing.assert_allclose(loops[1][0][0, :2], (20 + math.sqrt(1.25), 5))
    for loop, closed in loops:
        assert closed
        for p in loop[:, :2]:
            near = min(segment_distance(p, pts[i], pts[(i + 1) % 12]) for i in range(12))
            assert near == pytest.approx(1.5), p


@pytest.mark.parametrize(
    "name, distance, kw, reason",
    [
        ("collapse", 6, {}, "collapses"),
        ("zero distance", 0, {}, "within eps of 0"),
        ("not finite", math.nan, {}, "not finite"),
        ("pick on the polyline", 1, dict(pick=(0, 5)), "lies on the polyline"),
        ("through without a pick", 1, dict(through=True), "needs a pick"),
    ],
)
def test_offset_round_reasons(name, distance, kw, reason):
    with pytest.raises(ValueError, match=reason):
        tarnsysm.offset_round(SQUARE, distance, closed=True, **kw)
