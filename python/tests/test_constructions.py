"""Circle constructions, arcs and bulge segments, tangent lines and dimension helpers, against
figures worked out by hand."""
import math

import pytest

import tarnsysm
from test_curves import H, close

T = tarnsysm
Q = math.tan(math.pi / 8)  # the bulge of a quarter circle
S = math.sqrt(0.5)
X_AXIS, Y_AXIS = ((-10, 0), (10, 0)), ((0, -10), (0, 10))


@pytest.mark.parametrize(
    "name, objects, kw, expected",
    [
        # Picks at the tangency points choose among the four circles in the corners.
        ("two lines, radius", (X_AXIS, Y_AXIS), dict(picks=[(2, 0), (0, 2)], radius=2), ((2, 2), 2)),
        ("two lines, other corner", (X_AXIS, Y_AXIS), dict(picks=[(-2, 0), (0, -2)], radius=2), ((-2, -2), 2)),
        ("parallel lines, radius", (X_AXIS, ((0, 1), (1, 1))), dict(picks=[(0, 0), (0, 1)], radius=2), None),
        # Centres 4 apart, both at 1 + 1.5 from the new centre: (2, +-1.5); the picks say above.
        ("two circles, radius", (((0, 0), 1), ((4, 0), 1)), dict(picks=[(0.8, 0.6), (3.2, 0.6)], radius=1.5), ((2, 1.5), 1.5)),
        ("circle and line, radius", (((0, 0), 1), ((-10, -3), (10, -3))), dict(picks=[(0, -1), (0, -3)], radius=1),
         ((0, -2), 1)),
        # The 3-4-5 triangle's incircle: radius (3 + 4 - 5) / 2.
        ("three lines", (((0, 0), (4, 0)), ((0, 0), (0, 3)), ((4, 0), (0, 3))), dict(picks=[(1, 0), (0, 1), (1.6, 1.8)]),
         ((1, 1), 1)),
        # Outside both circles and through (3, 4): centre (3, y) with 3^2 + y^2 = (4 - y + 1)^2.
        ("two circles and a point", (((0, 0), 1), ((6, 0), 1), (3, 4)), dict(picks=[(0.88, 0.47), (5.12, 0.47)]),
         ((3, 1.6), 2.4)),
        # Centre (0, y), radius y, through (2, 4): 4 + (4 - y)^2 = y^2.
        ("two points and a line", ((-2, 4), (2, 4), X_AXIS), dict(picks=[(0, 0)]), ((0, 2.5), 2.5)),
        ("circle and line, centre on the perpendicular", (((0, 5), 1), X_AXIS), dict(picks=[(0, 4), (0, 0)]), ((0, 2), 2)),
        ("line and point, centre on the perpendicular", (X_AXIS, (0, 4)), dict(picks=[(0, 0)]), ((0, 2), 2)),
        ("circle and point, centre on their line", (((0, 0), 1), (5, 0)), dict(picks=[(1, 0)]), ((3, 0), 2)),
        ("two points, centre on a line", ((0, 0), (4, 0)), dict(centre_on=((0, 0), (1, 1))), ((2, 2), math.sqrt(8))),
    ],
)
def test_tangent_circle(name, objects, kw, expected):
    got = tarnsysm.tangent_circle(*objects, **kw)
    if expected is None:
        assert got is None, name
    else:
        close(got, expected)


@pytest.mark.parametrize(
    "objects, kw, reason",
    [(((0, 0), (1, 0), (2, 1)), {}, "no circle construction"), ((X_AXIS, Y_AXIS), dict(picks=[(0, 0)], radius=1), "one pick"),
     (((0, 0), (1, 0)), dict(radius=1, centre_on=X_AXIS), "not both")],
)
def test_tangent_circle_misuse(objects, kw, reason):
    with pytest.raises(ValueError, match=reason):
        tarnsysm.tangent_circle(*objects, **kw)


def test_common_tangent_and_four_centre_arcs():
    close(tarnsysm.common_tangent((0, 0), 1, (4, 0), 1, picks=[(0, -1), (4, -1)]), [(0, -1), (4, -1)])
    assert tarnsysm.common_tangent((0, 0), 1, (0, 0), 3, picks=[(0, 1), (0, 3)]) is None
    # 2:1 ellipse, c = sqrt(5): radii c (c - 1) / 4 and c (c + 1) / 2 about the centres on the axes;
    # the arcs join on the lines from the minor-axis centres through the major-axis ones, slope 2.
    small, big = (5 - math.sqrt(5)) / 4, (5 + math.sqrt(5)) / 2
    arcs = tarnsysm.four_centre_arcs((0, 0), 2, 1)
    close([c for c, _, _, _ in arcs], [(2 - small, 0), (0, 1 - big), (small - 2, 0), (0, big - 1)])
    close([r for _, r, _, _ in arcs], [small, big, small, big])
    close(arcs[1][2:], [math.atan(2), math.pi - math.atan(2)])
    with pytest.raises(ValueError):
        tarnsysm.four_centre_arcs((0, 0), 0, 1)


UPPER = ((0, 0), 1, 0, math.pi)


@pytest.mark.parametrize(
    "name, call, expected",
    [
        ("arc through three points", lambda: T.arc_from_points((1, 0), (0, 1), (-1, 0)), UPPER + (False,)),
        ("clockwise through three points", lambda: T.arc_from_points((-1, 0), (0, 1), (1, 0)), UPPER + (True,)),
        ("arc by included angle", lambda: T.arc_from_angle((1, 0), (-1, 0), math.pi), UPPER + (False,)),
        ("clockwise by included angle", lambda: T.arc_from_angle((1, 0), (-1, 0), -math.pi),
         ((0, 0), 1, math.pi, 2 * math.pi, True)),
        ("arc by start direction", lambda: T.arc_from_direction((1, 0), math.pi / 2, (-1, 0)), UPPER + (False,)),
        ("arc by radius", lambda: T.arc_from_radius((1, 0), 1, (0, 1)), ((0, 0), 1, 0, math.pi / 2, False)),
        ("arc by chord", lambda: T.arc_from_chord((1, 0), math.pi / 2, 1, 3 * math.pi / 4), ((0, 0), 1, 0, math.pi / 2, False)),
        # From (1, 0) through the quadrant point (0, 1) to (-S, S).
        ("box of an arc", lambda: T.arc_extents((0, 0), 1, 0, 0.75 * math.pi), ((-S, 0), (1, 1))),
        ("segment through three points", lambda: T.bulge_from_points((1, 0), (0, 1), (-1, 0)), (1, (-1, 0), 1.5 * math.pi)),
        ("segment by included angle", lambda: T.bulge_from_angle((1, 0), math.pi, (-1, 0)), (1, (-1, 0), 1.5 * math.pi)),
        ("segment by start direction", lambda: T.bulge_from_direction((1, 0), math.pi / 2, (-1, 0)),
         (1, (-1, 0), 1.5 * math.pi)),
        ("segment by radius", lambda: T.bulge_from_radius((1, 0), 1, (0, 1)), (Q, (0, 1), math.pi)),
        # Clockwise about (1, 1): at (0, 1) the way runs up.
        ("clockwise segment by radius", lambda: T.bulge_from_radius((1, 0), -1, (0, 1)), (-Q, (0, 1), math.pi / 2)),
        ("segment to a ray from the centre", lambda: T.bulge_from_centre((1, 0), (0, 0), end=(0, 5)), (Q, (0, 1), math.pi)),
        ("segment by angle about the centre", lambda: T.bulge_from_centre((1, 0), (0, 0), angle=math.pi / 2),
         (Q, (0, 1), math.pi)),
        ("clockwise segment by chord", lambda: T.bulge_from_centre((1, 0), (0, 0), chord=-math.sqrt(2)),
         (-Q, (0, -1), math.pi)),
        ("segment by chord direction", lambda: T.bulge_from_chord((1, 0), math.pi / 2, 1, 3 * math.pi / 4),
         (Q, (0, 1), math.pi)),
        # Leaving (0, 0) along +x towards (1, 1): a quarter turn.
        ("tangent continuation", lambda: T.bulge_continuing((-1, 0), 0, (0, 0), (1, 1)), (Q, (1, 1), math.pi / 2)),
    ],
)
def test_arcs_and_segments(name, call, expected):
    got = call()
    if len(expected) == 5:
        # An arc's start may come a whole turn up: compare its sweep from start in [0, 2 pi).
        turns = 2 * math.pi * math.floor((got[2] + 1e-9) / (2 * math.pi))
        got = got[:2] + (got[2] - turns, got[3] - turns, got[4])
        assert got[4] is expected[4], name
    close(got[:4], expected[:4])


@pytest.mark.parametrize(
    "name, call, reason",
    [
        ("collinear arc", lambda: T.arc_from_points((0, 0), (1, 1), (2, 2)), "collinear"),
        ("radius too small", lambda: T.arc_from_radius((0, 0), 1, (3, 0)), "longer than the diameter"),
        ("collinear segment", lambda: T.bulge_from_points((0, 0), (1, 1), (2, 2)), "collinear"),
        ("end straight ahead", lambda: T.bulge_from_direction((0, 0), 0, (5, 0)), "tangent line"),
        ("chord too long", lambda: T.bulge_from_radius((0, 0), -1, (3, 0)), "longer than the diameter"),
        ("start on the centre", lambda: T.bulge_from_centre((0, 0), (0, 0), angle=1), "on the centre"),
        ("two ways to end", lambda: T.bulge_from_centre((1, 0), (0, 0), angle=1, chord=1), "one of"),
    ],
)
def test_arcs_and_segments_refused(name, call, reason):
    with pytest.raises(ValueError, match=reason):
        call()



@pytest.mark.parametrize(
    "name, call, expected",
    [
        ("parallel to the diagonal", lambda: T.parallel_tangents((0, 0), 1, (0, 0), (1, 1)),
         [((-S, S), (1 - S, 1 + S)), ((S, -S), (1 + S, 1 - S))]),
        ("perpendicular, tangent", lambda: T.perpendicular_tangents((0, -5), (10, -5), (5, 0), 1),
         [((6, -5), (6, 0)), ((4, -5), (4, 0))]),
        ("perpendicular to an arc", lambda: T.perpendicular_to_arc((0, -5), (10, -5), (5, 0), 1, 0, math.pi),
         [((5, -5), (5, 1))]),
        ("tangent points on an arc", lambda: T.tangent_points((0, 0), 1, (2, 0), arc=(0, math.pi)), [(0.5, H)]),
    ],
)
def test_tangent_lines(name, call, expected):
    got = call()
    assert len(got) == len(expected), name
    for g, e in zip(got, expected):
        close(g, e)


def test_parallel_tangents_of_a_vertical_line():
    with pytest.raises(ValueError, match="vertical"):
        tarnsysm.parallel_tangents((0, 0), 1, (0, 0), (0, 1))


R2 = math.sqrt(2)


@pytest.mark.parametrize(
    "name, call, expected",
    [
        ("right angle", lambda: T.angular_dimension((0, 0), (1, 0), (0, 0), (0, 1), (1, 1)),
         ((0, 0), R2, 0, math.pi / 4, math.pi / 2, (R2, 0), (0, R2))),
        ("wedge of the pick", lambda: T.angular_dimension((0, 0), (1, 0), (0, 0), (0, 1), (-1, 1)),
         ((0, 0), R2, math.pi / 2, 3 * math.pi / 4, math.pi, (0, R2), (-R2, 0))),
        ("text along", lambda: T.text_half_length(4, 2, 0), 2),
        ("text across", lambda: T.text_half_length(4, 2, math.pi / 2), 1),
        ("text to a long edge", lambda: T.text_half_length(4, 2, math.pi / 4), R2),
        ("text across, short of the limit", lambda: T.text_half_length(4, 2, 0, limit=1), 0),
        ("text reaching the limit", lambda: T.text_half_length(4, 2, 0, limit=0.5), 2),
        ("diameter", lambda: T.diameter_points((0, 0), 1, (5, 0)), ((-1, 0), (1, 0))),
        ("user frame", lambda: T.world_to_user((2, 3), (1, 1), math.pi / 2), (2, -1)),
        ("distance along", lambda: T.distance_along((0, 0), (3, 4), math.pi / 2), 4),
        ("distance to a line", lambda: T.line_distance((0, 5), (-1, 0), (1, 0)), 5),
        ("foot", lambda: T.perpendicular_foot((3, 4), (0, 0), (1, 0)), (4, (3, 0))),
    ],
)
def test_dimension_helpers(name, call, expected):
    got = call()
    if isinstance(expected, tuple):
        close(got, expected)
    else:
        assert got == pytest.approx(expected), name


def test_angular_dimension_of_parallel_lines():
    with pytest.raises(ValueError, match="parallel"):
        tarnsysm.angular_dimension((0, 0), (1, 0), (0, 1), (1, 1), (5, 5))
