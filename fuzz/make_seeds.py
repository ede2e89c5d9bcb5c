#!/usr/bin/env python3
"""Writes the seed inputs of the fuzz targets into fuzz/corpus/<target>/.

The byte layouts are the ones documented at the top of each fuzz/<target>_fuzzer.cpp. Coordinates that
are multiples of 1/64 in [-256, 256) take two bytes; other values are written as raw
little-endian doubles (tag 0xC0) or as an index into the target's table of special values.
Run from anywhere: python3 fuzz/make_seeds.py
"""

import math
import os
import struct

TOLERANCES = [1e-9, 1e-8, 1e-6, 1e-4, 1e-3, 1e-12, 0.1]
SPECIAL = {"nan": 0, "-nan": 1, "inf": 2, "-inf": 3, "max": 4, "-max": 5, "1e300": 8,
           "-1e300": 9}


def value(v):
    if isinstance(v, str):
        return bytes([0x80 + SPECIAL[v]])
    g = v * 64.0
    if g == int(g) and -0x4000 <= g < 0x4000:
        code = int(g) + 0x4000
        return bytes([code >> 8, code & 0xFF])
    return bytes([0xC0]) + struct.pack("<d", v)


def seed(rows, closed=True, pick=(0.0, 0.0), dist=1.0, through=False, trim=False,
         eps=1e-9, closed_as=1, n=None):
    count = len(rows) if n is None else n
    flags = (1 if closed else 0) | (2 if closed and closed_as != 1 else 0)
    flags |= (4 if through else 0) | (8 if trim else 0)
    # A tolerance outside the table (eps = 0) is written as a value of its own.
    flags |= (TOLERANCES.index(eps) if eps in TOLERANCES else 7) << 4
    out = bytes([(count + 1) % 66, flags])
    if eps not in TOLERANCES:
        out += value(eps)
    out += value(pick[0]) + value(pick[1]) + value(dist)
    for x, y, b in rows:
        out += value(x) + value(y) + value(b)
    return out


SQUARE = [(0.0, 0.0, 0.0), (10.0, 0.0, 0.0), (10.0, 10.0, 0.0), (0.0, 10.0, 0.0)]
# Closed, crossing itself at (5, 5): a left and a right triangle.
FIGURE_EIGHT = [(0.0, 0.0, 0.0), (10.0, 10.0, 0.0), (10.0, 0.0, 0.0), (0.0, 10.0, 0.0)]
# A circle of radius 10 as two counter-clockwise half circles.
TWO_HALF_ARCS = [(-10.0, 0.0, 1.0), (10.0, 0.0, 1.0)]
OPEN_MIXED = [(0.0, 0.0, 0.0), (10.0, 0.0, 0.5), (20.0, 0.0, -0.3), (30.0, 5.0, 0.0)]


def star(n, outer, inner):
    rows = []
    for i in range(n):
        a = 2.0 * math.pi * i / n
        r = outer if i % 2 == 0 else inner
        rows.append((r * math.cos(a), r * math.sin(a), 0.0 if i % 2 == 0 else 0.2))
    return rows


def zigzag(n):
    return [(float(i % 2), 0.0, 0.0) for i in range(n)]


# A half circle inserted where the first moved arc shrinks to a point leads the result.
BRIDGE_FIRST = [(5.990407496782505, -3.557091504054636, -0.3679940733115682),
                (6.293942137999557, -5.159163653612389, 0.0),
                (4.331777934844769, -9.34324305858366, -0.4404229002266613),
                (-2.1338456592191726, -12.54540648803549, 0.0),
                (-5.370830288728458, -11.868416056265243, 0.0),
                (0.2960317792457432, 5.0580646295327805, 0.0),
                (4.687667963608581, 2.9294899972911725, 0.0)]

SEEDS = {
    "square_inward": seed(SQUARE, pick=(5.0, 5.0), dist=2.0),
    "square_inward_collapse": seed(SQUARE, pick=(5.0, 5.0), dist=6.0),
    "square_outward": seed(SQUARE, pick=(20.0, 5.0), dist=1.0),
    "square_through": seed(SQUARE, pick=(5.0, 3.0), through=True, closed_as=7),
    "square_pick_on_edge": seed(SQUARE, pick=(5.0, 0.0), dist=1.0),
    "square_trim": seed(SQUARE, pick=(5.0, 5.0), trim=True),
    "square_repeated_rows": seed(SQUARE[:2] + [(10.0, 1e-5, 0.0)] + SQUARE[2:] + [SQUARE[0]],
                                 pick=(5.0, 5.0), dist=1.0),
    "figure_eight_trim": seed(FIGURE_EIGHT, pick=(1.0, 5.0), trim=True),
    "figure_eight_offset": seed(FIGURE_EIGHT, pick=(1.0, 5.0), dist=0.5),
    "figure_eight_open": seed(FIGURE_EIGHT, closed=False, pick=(9.0, 5.0), dist=0.5),
    "two_half_arcs_inward": seed(TWO_HALF_ARCS, pick=(0.0, 0.0), dist=3.0),
    "two_half_arcs_collapse": seed(TWO_HALF_ARCS, pick=(0.0, 0.0), dist=15.0),
    "two_half_arcs_outward": seed(TWO_HALF_ARCS, pick=(30.0, 0.0), dist=5.0),
    "two_half_arcs_trim": seed(TWO_HALF_ARCS, pick=(0.0, 0.0), trim=True),
    "open_mixed_arcs": seed(OPEN_MIXED, closed=False, pick=(15.0, -5.0), dist=1.0),
    "open_mixed_arcs_through": seed(OPEN_MIXED, closed=False, pick=(15.0, 8.0), through=True),
    "star_inward": seed(star(24, 100.0, 80.0), pick=(0.1, 0.05), dist=10.0, eps=1e-6),
    "star_outward": seed(star(24, 100.0, 80.0), pick=(250.0, 0.1), dist=10.0),
    "nan_row": seed(SQUARE[:2] + [("nan", 10.0, 0.0)] + SQUARE[3:], pick=(5.0, 5.0), dist=1.0),
    "nan_bulge_trim": seed(SQUARE[:1] + [(10.0, 0.0, "nan")] + SQUARE[2:], pick=(5.0, 5.0),
                           trim=True),
    "infinite_pick": seed(SQUARE, pick=("inf", 5.0), dist=1.0),
    "nan_distance": seed(SQUARE, pick=(5.0, 5.0), dist="nan"),
    "huge_coordinates": seed([(x * 1e299, y * 1e299, b) for x, y, b in SQUARE],
                             pick=(5e299, 5e299), dist="1e300"),
    "no_rows": seed([], n=0, pick=(1.0, 1.0)),
    "negative_count": seed([], n=-1, pick=(1.0, 1.0)),
    "single_row": seed(SQUARE[:1], pick=(1.0, 1.0)),
    "two_rows_open": seed(SQUARE[:2], closed=False, pick=(5.0, 3.0), dist=1.0),
    "three_rows_nan_bulge": seed([(0.0, 0.0, "nan"), (10.0, 0.0, "nan"), (5.0, 8.0, "nan")],
                                 pick=(5.0, 3.0), dist=1.0),
    "square_eps_zero": seed(SQUARE, pick=(5.0, 5.0), dist=1.0, eps=0.0),
    "negative_count_closed_7": seed([], n=-1, closed_as=7, pick=(1.0, 1.0)),
    "zigzag_trim": seed(zigzag(64), pick=(0.5, 1.0), trim=True),
    "zigzag_beyond_turn": seed(zigzag(64), closed=False, pick=(2.0, 0.0), dist=0.5),
    "spiky_star_outward": seed([(x, y, 0.0) for x, y, _ in star(64, 100.0, 50.0)],
                               pick=(300.0, 0.1), dist=5.0),
    "bridge_row_first": seed(BRIDGE_FIRST, closed=False, through=True,
                             pick=(0.7542533573819346, 0.4088000195373258)),
}


def clip_seed(rect, points, n=None):
    count = len(points) if n is None else n
    out = bytes([(count + 2) % 67])
    for v in rect:
        out += value(v)
    for x, y in points:
        out += value(x) + value(y)
    return out


UNIT_SQUARE = [(0.0, 0.0), (10.0, 0.0), (10.0, 10.0), (0.0, 10.0), (0.0, 0.0)]
CLIP_SEEDS = {
    "inside_ring": clip_seed([-1, -1, 11, 11], UNIT_SQUARE),
    "crossing_square": clip_seed([5, 5, 15, 15], UNIT_SQUARE),
    "zigzag_three_n": clip_seed([0, 0, 10, 10], [(-14, -29), (27, 30), (-7, -8), (22, 28)]),
    "flat_edge": clip_seed([0, 0, 10, 10], [(6, -1), (0, 10), (15, 10)]),
    "vertex_on_side": clip_seed([0, 0, 10, 10], [(2, 2), (10, 5), (2, 8), (2, 2)]),
    "huge_and_nan": clip_seed([0, 0, 10, 10], [("-1e300", "-1e300"), ("1e300", 5.0),
                                              ("nan", 1.0), ("-1e300", "-1e300")]),
    "negative_count": clip_seed([0, 0, 1, 1], [], n=-2),
}


def dntos_seed(mode, prec, zeros, style, v, sized_prec, size):
    out = bytes([(mode + 1) % 8]) + struct.pack("<H", (prec + 8) % 409)
    out += struct.pack("<bb", zeros, style) + value(v)
    return out + struct.pack("<iH", sized_prec, size)


DNTOS_SEEDS = {
    "scientific": dntos_seed(1, 2, 0, 0, 1500.0, 2, 9),
    "decimal_trimmed": dntos_seed(2, 3, 12, 0, 0.5, 1000000000, 16),
    "scientific_widest": dntos_seed(1, 400, 0, 0, "-max", 62, 71),
    "decimal_widest": dntos_seed(2, 400, 0, 0, "-max", 400, 712),
    "feet_inches_widest": dntos_seed(3, 400, 1, 0, -1.1e20, 62, 92),
    "fraction_inches_widest": dntos_seed(4, 62, 1, 0, -1.1e20, 62, 69),
    "fraction_widest": dntos_seed(5, 62, 1, 1, -9.2e18, 62, 69),
    "feet_inches": dntos_seed(3, 2, 0, 0, 30.5, 2, 8),
    "feet_inches_fraction": dntos_seed(4, 4, 0, 1, -30.5, 70, 10),
    "fraction": dntos_seed(5, 2, 0, 0, 2.25, -3, 3),
    "nan_feet": dntos_seed(3, -8, 4, 0, "nan", -2147483648, 65535),
    "unknown_mode": dntos_seed(6, 2, 0, 0, 1.0, 2, 4),
}


def match_seed(name, pattern, limit=99, list_call=False, pos=0):
    flags = (1 if list_call else 0) | (3 << 1)
    out = bytes([flags]) + struct.pack("<hb", limit, pos)
    return out + name.encode("latin-1") + b"\0" + pattern.encode("latin-1")


MATCH_SEEDS = {
    "star_list": match_seed("barrel", "foo , bar*", list_call=True),
    "sets": match_seed("Bx", "[a-c]x,[~aA-]],[]]", list_call=True),
    "escapes": match_seed("a\\\\b*", "a\\\\b\\*`x`\\y"),
    "negation": match_seed("abc", "~a*"),
    "many_stars": match_seed("a" * 40, "*a*a*a*a*a*a*b"),
    "limit": match_seed("abcdef", "abx", limit=1),
    "unclosed_set": match_seed("a", "[abc"),
}


def circles_seed(call, values, n=0, tolerance=0):
    return bytes([call | tolerance << 2, (n + 2) % 67]) + b"".join(value(v) for v in values)


def arc_points(cx, cy, r, a0, sweep, n):
    pts = []
    for i in range(n):
        a = a0 + sweep * i / (n - 1)
        pts += [cx + r * math.cos(a), cy + r * math.sin(a)]
    return pts


NP, CCC, LLL = 0, 1, 2
CIRCLES_SEEDS = {
    "np_quarter_arc": circles_seed(NP, arc_points(3, -2, 10, 0.3, math.pi / 2, 12), n=12),
    "np_full_circle_far": circles_seed(NP, arc_points(1e6, -1e6, 5, 0, 6, 16), n=16),
    "np_collinear": circles_seed(NP, [0, 0, 1, 1, 2, 2, 3, 3], n=4),
    "np_coincident": circles_seed(NP, [5, 5, 5, 5, 5, 5], n=3),
    "np_two_points": circles_seed(NP, [0, 0, 1, 0], n=2),
    "np_negative_count": circles_seed(NP, [], n=-2),
    "np_nan_point": circles_seed(NP, [0, 0, 1, 0, "nan", 1], n=3),
    "np_huge_points": circles_seed(NP, ["1e300", 0, "-1e300", 0, 0, "1e300"], n=3),
    "ccc_apart": circles_seed(CCC, [-2, 0, 1, 0, 0, 10, 1, 2, 8, 0, 5, 9, 1.5, 5, 8]),
    "ccc_overlapping": circles_seed(CCC, [-2, 0, 2, 0, 0, 4, 0, 2, 2, 0, 1, 3, 2, 1, 2]),
    "ccc_concentric": circles_seed(CCC, [1, 0, 1, 0, 0, 2, 0, 2, 0, 0, 3, 0, 3, 0, 0]),
    "ccc_equal_collinear": circles_seed(CCC, [0, 1, 1, 0, 0, 4, 1, 1, 4, 0, 8, 1, 1, 8, 0]),
    "ccc_nan_radius": circles_seed(CCC, [0, 1, "nan", 0, 0, 4, 1, 1, 4, 0, 8, 1, 1, 8, 0]),
    "lll_triangle": circles_seed(LLL, [1, 0, 0, 0, 4, 0, 4, 1, 4, 0, 0, 3, 1, 2, 0, 3, 0, 0]),
    "lll_two_parallel": circles_seed(LLL, [1, 0, 0, 0, 4, 0, 1, 2, 0, 2, 4, 2, 0, 1, 0, 0, 0, 3]),
    "lll_all_parallel": circles_seed(LLL, [1, 0, 0, 0, 4, 0, 1, 2, 0, 2, 4, 2, 1, 5, 0, 5, 4, 5]),
    "lll_huge_line": circles_seed(LLL, [1, 0, 0, 0, "1e300", 0, 4, 1, 4, 0, 0, 3, 1, 2, 0, 3, 0,
                                        0]),
}


def write(target, seeds):
    here = os.path.dirname(os.path.abspath(__file__))
    directory = os.path.join(here, "corpus", target)
    os.makedirs(directory, exist_ok=True)
    for name, data in seeds.items():
        with open(os.path.join(directory, name), "wb") as f:
            f.write(data)


def main():
    write("offset", SEEDS)
    write("rect_clip", CLIP_SEEDS)
    write("dntos", DNTOS_SEEDS)
    write("match", MATCH_SEEDS)
    write("circles", CIRCLES_SEEDS)


if __name__ == "__main__":
    main()
