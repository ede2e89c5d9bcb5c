#!/usr/bin/env python3
"""Writes the seed inputs of the circles fuzz target into fuzz/corpus/circles/.

The byte layout is the one documented at the top of fuzz/circles_fuzzer.cpp. Run from anywhere:
python3 fuzz/make_circles_seeds.py
"""

import math
import os
import struct

SPECIAL = {"nan": 0, "inf": 1, "-inf": 2, "1e300": 6, "-1e300": 7}
NP, CCC, LLL = 0, 1, 2


def value(v):
    if isinstance(v, str):
        return bytes([0x80 + SPECIAL[v]])
    g = v * 64.0
    if g == int(g) and -0x4000 <= g < 0x4000:
        code = int(g) + 0x4000
        return bytes([code >> 8, code & 0xFF])
    return bytes([0xC0]) + struct.pack("<d", v)


def seed(call, values, n=0, tolerance=0):
    out = bytes([call | tolerance << 2, (n + 2) % 67])
    return out + b"".join(value(v) for v in values)


def arc(cx, cy, r, a0, sweep, n):
    pts = []
    for i in range(n):
        a = a0 + sweep * i / (n - 1)
        pts += [cx + r * math.cos(a), cy + r * math.sin(a)]
    return pts


SEEDS = {
    "np_quarter_arc": seed(NP, arc(3, -2, 10, 0.3, math.pi / 2, 12), n=12),
    "np_full_circle_far": seed(NP, arc(1e6, -1e6, 5, 0, 6, 16), n=16),
    "np_collinear": seed(NP, [0, 0, 1, 1, 2, 2, 3, 3], n=4),
    "np_coincident": seed(NP, [5, 5, 5, 5, 5, 5], n=3),
    "np_two_points": seed(NP, [0, 0, 1, 0], n=2),
    "np_negative_count": seed(NP, [], n=-2),
    "np_nan_point": seed(NP, [0, 0, 1, 0, "nan", 1], n=3),
    "np_huge_points": seed(NP, [1e300, 0, "-1e300", 0, 0, "1e300"], n=3),
    "ccc_apart": seed(CCC, [-2, 0, 1, 0, 0, 10, 1, 2, 8, 0, 5, 9, 1.5, 5, 8]),
    "ccc_overlapping": seed(CCC, [-2, 0, 2, 0, 0, 4, 0, 2, 2, 0, 1, 3, 2, 1, 2]),
    "ccc_concentric": seed(CCC, [1, 0, 1, 0, 0, 2, 0, 2, 0, 0, 3, 0, 3, 0, 0]),
    "ccc_equal_collinear": seed(CCC, [0, 1, 1, 0, 0, 4, 1, 1, 4, 0, 8, 1, 1, 8, 0]),
    "ccc_nan_radius": seed(CCC, [0, 1, "nan", 0, 0, 4, 1, 1, 4, 0, 8, 1, 1, 8, 0]),
    "lll_triangle": seed(LLL, [1, 0, 0, 0, 4, 0, 4, 1, 4, 0, 0, 3, 1, 2, 0, 3, 0, 0]),
    "lll_two_parallel": seed(LLL, [1, 0, 0, 0, 4, 0, 1, 2, 0, 2, 4, 2, 0, 1, 0, 0, 0, 3]),
    "lll_all_parallel": seed(LLL, [1, 0, 0, 0, 4, 0, 1, 2, 0, 2, 4, 2, 1, 5, 0, 5, 4, 5]),
    "lll_huge_line": seed(LLL, [1, 0, 0, 0, "1e300", 0, 4, 1, 4, 0, 0, 3, 1, 2, 0, 3, 0, 0]),
}

if __name__ == "__main__":
    folder = os.path.join(os.path.dirname(os.path.abspath(__file__)), "corpus", "circles")
    os.makedirs(folder, exist_ok=True)
    for name, data in SEEDS.items():
        with open(os.path.join(folder, name), "wb") as f:
            f.write(data)
