#!/usr/bin/env python3
"""Writes relief.ngc: a shallow bowl with waves, cut line by line with a ball-nosed mill, and a helix around it.

Usage: examples/make_relief.py > examples/relief.ngc
"""
import math

SIZE = 60.0        # mm, square
ROWS = 61          # passes along X, 1 mm apart
STEP = 1.0         # mm between two points of a pass
SAFE = 5.0         # mm
BORE = 12.0        # mm, radius of the helix around the middle
DEPTH = -6.0       # mm, of the helix


def height(x, y):
    """Depth of the relief below the face, in mm."""
    r = math.hypot(x - SIZE / 2, y - SIZE / 2) / (SIZE / 2)
    bowl = -2.5 * max(0.0, 1.0 - r * r)
    waves = 0.6 * math.cos(3 * math.pi * r) - 0.7
    return min(-0.05, bowl + waves)


def main():
    print("(Relief, 60 x 60 mm, ball-nosed mill; written by make_relief.py)")
    print("G21 G90 G17")
    print(f"G0 Z{SAFE:g}")
    print("M3 S12000")
    print("F900")
    points = round(SIZE / STEP)
    for row in range(ROWS):
        y = SIZE * row / (ROWS - 1)
        xs = [SIZE * n / points for n in range(points + 1)]
        if row % 2:
            xs.reverse()
        if row == 0:
            print(f"G0 X{xs[0]:g} Y{y:g}")
        for x in xs:
            print(f"G1 X{x:.3f} Y{y:.3f} Z{height(x, y):.3f}")
    print(f"G0 Z{SAFE:g}")
    print("(The helix: a full circle has no end words in the plane)")
    middle = SIZE / 2
    print(f"G0 X{middle + BORE:g} Y{middle:g}")
    print("G0 Z0")
    print("F600")
    turns = 12
    for turn in range(1, turns + 1):
        print(f"G3 I{-BORE:g} J0 Z{DEPTH * turn / turns:g}")
    print(f"G3 I{-BORE:g} J0")
    print(f"G0 Z{SAFE:g}")
    print("M5")
    print("G0 X0 Y0")
    print("M30")


main()
