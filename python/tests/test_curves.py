"""Intersections, bulge arcs and ellipses, checked against points worked out by hand and, for
random draws, by lying on both curves."""
import math
import random

import pytest

import tarnsysm

H = math.sqrt(3) / 2


def close(got, expected, tol=1e-9):
    assert len(got) == len(expected), (got, expected)
    for g, e in zip(got, expected):
        assert g == pytest.approx(e, abs=tol), (got, expected)


@pytest.mark.parametrize(
    "name, call, expected",
    [
        ("lines cross", lambda: tarnsysm.line_line((0, 0), (2, 2), (0, 2), (2, 0)), [(1, 1)]),
        ("parallel lines", lambda: tarnsysm.line_line((0, 0), (1, 0), (0, 1), (1, 1)), []),
        ("crossing beyond a segment", lambda: tarnsysm.line_line((0, 0), (1, 1), (0, 4), (4, 0), segments=True), []),
        ("line through circle", lambda: tarnsysm.line_circle((5, 0), (-5, 0), (0, 0), 1), [(1, 0), (-1, 0)]),
        ("segment from the centre", lambda: tarnsysm.line_circle((0, 0), (5, 0), (0, 0), 1, segment=True), [(1, 0)]),
        ("tangent line", lambda: tarnsysm.line_circle((-5, 1), (5, 1), (0, 0), 1), [(0, 1)]),
        ("circles cross", lambda: tarnsysm.circle_circle((0, 0), 1, (1, 0), 1), [(0.5, -H), (0.5, H)]),
        ("concentric circles", lambda: tarnsysm.circle_circle((0, 0), 1, (0, 0), 2), []),
        ("line and upper arc", lambda: tarnsysm.line_arc((-5, 0.5), (5, 0.5), (0, 0), 1, 0, math.pi), [(-H, 0.5), (H, 0.5)]),
        ("line misses lower arc", lambda: tarnsysm.line_arc((-5, 0.5), (5, 0.5), (0, 0), 1, math.pi, 2 * math.pi), []),
        ("arcs on opposite halves", lambda: tarnsysm.arc_arc((0, 0), 1, 0, math.pi, (1, 0), 1, math.pi, 2 * math.pi), []),
        ("arcs meet above", lambda: tarnsysm.arc_arc((0, 0), 1, 0, math.pi, (1, 0), 1, math.pi / 2, 1.5 * math.pi), [(0.5, H)]),
    ],
)
def test_intersections(name, call, expected):
    close(call(), expected)


def test_random_crossings_lie_on_both_curves():
    rnd = random.Random(13)
    for _ in range(200):
        c1, c2 = (rnd.uniform(-5, 5), rnd.uniform(-5, 5)), (rnd.uniform(-5, 5), rnd.uniform(-5, 5))
        r1, r2 = rnd.uniform(0.5, 6), rnd.uniform(0.5, 6)
        p1, p2 = (rnd.uniform(-5, 5), rnd.uniform(-5, 5)), (rnd.uniform(-5, 5), rnd.uniform(-5, 5))
        for p in tarnsysm.circle_circle(c1, r1, c2, r2):
            assert math.dist(p, c1) == pytest.approx(r1, abs=1e-6)
            assert math.dist(p, c2) == pytest.approx(r2, abs=1e-6)
        for p in tarnsysm.line_circle(p1, p2, c1, r1):
            assert math.dist(p, c1) == pytest.approx(r1, abs=1e-6)
            cross = (p2[0] - p1[0]) * (p[1] - p1[1]) - (p2[1] - p1[1]) * (p[0] - p1[0])
            assert cross / math.dist(p1, p2) == pytest.approx(0, abs=1e-6)


@pytest.mark.parametrize(
    "name, bulge, centre, radius, start, end",
    [
        ("upper half circle", 1, (0, 0), 1, 0, math.pi),
        ("lower half circle, clockwise", -1, (0, 0), 1, math.pi, 2 * math.pi),
        ("quarter turn", math.tan(math.pi / 8), (0, -1), math.sqrt(2), math.pi / 4, 3 * math.pi / 4),
    ],
)
def test_bulge_and_arc(name, bulge, centre, radius, start, end):
    arc = tarnsysm.arc_from_bulge((1, 0), (-1, 0), bulge)
    close(arc, [centre, radius, start, end])
    p1, p2, b = tarnsysm.bulge_from_arc(*arc, clockwise=bulge < 0)
    close([p1, p2, b], [(1, 0), (-1, 0), bulge])


def test_straight_bulge_has_no_arc():
    assert tarnsysm.arc_from_bulge((0, 0), (1, 0), 0) is None


def test_ellipse_measures():
    e = tarnsysm.Ellipse((1, 2), 2, 1)
    assert e.area() == pytest.approx(2 * math.pi)
    # Perimeter of the 2:1 ellipse, from the complete elliptic integral: 8 E(3/4).
    assert e.length() == pytest.approx(9.688448220547675, rel=1e-6)
    quarter = tarnsysm.Ellipse((0, 0), 3, 3, start=0, end=math.pi / 2)
    assert quarter.length() == pytest.approx(1.5 * math.pi, abs=0.0025 * 3)
    turned = tarnsysm.Ellipse((0, 0), 2, 1, rotation=math.pi / 2)
    close(turned.point_at(0), (0, 2))


def test_ellipse_nearest_and_line():
    e = tarnsysm.Ellipse((0, 0), 2, 1)
    close(e.nearest((3, 0)), [(2, 0), 1])
    close(e.nearest((0, 3)), [(0, 1), 2])
    close(e.intersect_line((-5, 0), (5, 0), whole=True), [(2, 0), (-2, 0)])
    close(e.intersect_line((0, 0), (5, 0)), [(2, 0)])
    upper = tarnsysm.Ellipse((0, 0), 2, 1, start=0, end=math.pi)
    close(upper.intersect_line((0, -5), (0, 5)), [(0, 1)])
    assert tarnsysm.Ellipse((0, 0), -1, 1).nearest((3, 0)) is None


def test_circles_and_tangents():
    close(tarnsysm.circle_through((1, 0), (0, 1), (-1, 0)), [(0, 0), 1])
    close(tarnsysm.circle_through((0, 0), (4, 0)), [(2, 0), 2])
    assert tarnsysm.circle_through((0, 0), (1, 1), (2, 2)) is None
    ring = [(3 + 2 * math.cos(a), -1 + 2 * math.sin(a)) for a in (0.1, 0.3, 0.5, 0.7)]
    close(tarnsysm.fit_circle(ring), [(3, -1), 2, 0], tol=1e-8)
    # Equal circles side by side: outer tangents along y = +-1, inner ones cross at the middle.
    lines = tarnsysm.common_tangents((0, 0), 1, (4, 0), 1)
    assert len(lines) == 4
    assert sorted(round(p[1], 9) for p, q in lines[:2]) == [-1, 1]
    for p, q in lines:
        assert math.dist(p, (0, 0)) == pytest.approx(1) and math.dist(q, (4, 0)) == pytest.approx(1)
    # From (2, 0) to the unit circle: tangency points at 60 degrees, right of the way first.
    close(tarnsysm.tangent_points((0, 0), 1, (2, 0)), [(0.5, H), (0.5, -H)])


def test_ellipse_arcs_from_points():
    quarter = tarnsysm.Ellipse.between((0, 0), 2, 1, (5, 0), (0, 3))
    close([quarter.start, quarter.end], [0, math.pi / 2])
    for pts, clockwise in ((((2, 0), (0, 1), (-2, 0)), False), (((-2, 0), (0, 1), (2, 0)), True)):
        e, cw = tarnsysm.Ellipse.through(*pts, ratio=0.5)
        close([e.centre, e.a, e.b, e.start, e.end], [(0, 0), 2, 1, 0, math.pi])
        assert cw is clockwise
    with pytest.raises(ValueError):
        tarnsysm.Ellipse.between((0, 0), 2, 1, (0, 0), (0, 3))


@pytest.mark.parametrize(
    "name, grip, to, grip_name, expected",
    [
        ("centre", (0, 0), (1, 1), "centre", [(1, 1), 2, 1, 0, math.pi / 2]),
        # The start point (2, 0) is also the end of the first axis: the start comes first. The
        # ray at 45 degrees meets the 2:1 ellipse at the parameter atan(2).
        ("start", (2, 0), (1, 1), "start", [(0, 0), 2, 1, math.atan(2), math.pi / 2]),
        ("second axis", (0, -1), (4, -3), "second axis", [(0, 0), 2, 3, 0, math.pi / 2]),
    ],
)
def test_ellipse_stretch(name, grip, to, grip_name, expected):
    e, hit = tarnsysm.Ellipse((0, 0), 2, 1, end=math.pi / 2).stretch(grip, to)
    assert hit == grip_name
    close([e.centre, e.a, e.b, e.start, e.end], expected)


def test_ellipse_stretch_misses():
    with pytest.raises(ValueError, match="no grip"):
        tarnsysm.Ellipse((0, 0), 2, 1).stretch((5, 5), (6, 6))
