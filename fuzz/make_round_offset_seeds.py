#!/usr/bin/env python3
"""Writes the seed inputs of the round offset fuzz target into fuzz/corpus/round_offset/.

The byte layout is the one documented at the top of fuzz/round_offset_fuzzer.cpp; values are
encoded as make_seeds.py encodes them (fuzz_support.h reads them).
Run from anywhere: python3 fuzz/make_round_offset_seeds.py
"""

import math
import os
import sys

sys.path.insert(0, os.path.dirname(os.path.abspath(__file__)))

from make_seeds import TOLERANCES, value  # the same value encoding and special values


def seed(rows, closed=True, dist=1.0, pick=None, through=False, eps=1e-9, n=None):
    count = len(rows) if n is None else n
    flags = (1 if closed else 0) | (2 if pick else 0) | (4 if through else 0)
    flags |= TOLERANCES.index(eps) << 3
    px, py = pick if pick else (0.0, 0.0)
    out = bytes([(count + 1) % 66, flags]) + value(dist) + value(px) + value(py)
    for x, y, b in rows:
        out += value(x) + value(y) + value(b)
    return out


SQUARE = [(0.0, 0.0, 0.0), (10.0, 0.0, 0.0), (10.0, 10.0, 0.0), (0.0, 10.0, 0.0)]
BOWED = [(0.0, 0.0, 0.25), (10.0, 0.0, -0.5), (10.0, 10.0, 0.0), (0.0, 10.0, 0.125)]
TWO_HALVES = [(5.0, 0.0, 1.0), (-5.0, 0.0, 1.0)]
FIGURE_EIGHT = [(0.0, 0.0, 0.0), (10.0, 10.0, 0.0), (10.0, 0.0, 0.0), (0.0, 10.0, 0.0)]
ROOMS = [(0, 0, 0), (10, 0, 0), (10, 4.5, 0), (14, 4.5, 0), (14, 0, 0), (24, 0, 0), (24, 10, 0),
         (14, 10, 0), (14, 5.5, 0), (10, 5.5, 0), (10, 10, 0), (0, 10, 0)]
STAR = [((100 if i % 2 == 0 else 80) / 4 * math.cos(math.pi * i / 16) // (1 / 64) / 64,
         (100 if i % 2 == 0 else 80) / 4 * math.sin(math.pi * i / 16) // (1 / 64) / 64,
         0.0 if i % 2 == 0 else 0.0625) for i in range(32)]

SEEDS = {
    "square_outward": seed(SQUARE, dist=1.0),
    "square_inward": seed(SQUARE, dist=-2.0),
    "square_collapse": seed(SQUARE, dist=-6.0),
    "square_open_both_sides": seed(SQUARE, closed=False, dist=3.0),
    "bowed_square_inward": seed(BOWED, dist=-3.0),
    "bowed_square_open": seed(BOWED, closed=False, dist=-4.0),
    "circle_of_two_halves_in": seed(TWO_HALVES, dist=-4.5),
    "circle_of_two_halves_past_centre": seed(TWO_HALVES, dist=-6.0),
    "figure_eight": seed(FIGURE_EIGHT, dist=1.0),
    "rooms_split_inward": seed(ROOMS, dist=-1.0),
    "rooms_pick_right_room": seed(ROOMS, dist=1.0, pick=(20.0, 8.0)),
    "rooms_through_outside": seed(ROOMS, pick=(-3.0, 5.0), through=True),
    "star_inward": seed(STAR, dist=-1.5),
    "star_open_outward": seed(STAR, closed=False, dist=2.0),
    "doubled_line": seed([(0.0, 0.0, 0.0), (10.0, 0.0, 0.0)], dist=1.0),
    "repeated_rows": seed([(0.0, 0.0, 0.0), (0.0, 0.0, 0.0), (5.0, 0.0, 0.0), (5.0, 5.0, 0.0)]),
    "nan_row": seed([(0.0, 0.0, 0.0), ("nan", 1.0, 0.0), (1.0, 1.0, 0.0)]),
    "huge_coordinates": seed([(0.0, 0.0, 0.0), ("1e300", 0.0, 0.0), (0.0, "1e300", 0.0)]),
    "huge_bulge": seed([(0.0, 0.0, "max"), (1.0, 0.0, 0.0), (0.0, 1.0, 0.0)]),
    "infinite_distance": seed(SQUARE, dist="inf"),
    "coarse_tolerance": seed(BOWED, dist=-1.0, eps=0.1),
    "no_rows": seed([], n=0),
    # Findings: an arc of bulge eps (radius 1e11), whose round-off about its centre sets the
    # tolerance; a near-full circle closed by a chord whose bulge is a denormal.
    "flat_arc_of_huge_radius": seed([(0.0, 32.0, 520.2501106262206), (-255.0, -253.109375, 1e-9),
                                     (1e-9, 1e-9, 1e-9), (1e-9, 1e-9, 1e-9)], dist=-6.0),
    "near_full_circle_with_denormal_bulge": seed([(-255.0, 0.96875, 5.32571241e-315),
                                                  (-256.0, -256.0, -256.0)], dist=-6.0),
}

if __name__ == "__main__":
    folder = os.path.join(os.path.dirname(os.path.abspath(__file__)), "corpus", "round_offset")
    os.makedirs(folder, exist_ok=True)
    for name, data in SEEDS.items():
        with open(os.path.join(folder, name), "wb") as f:
            f.write(data)
