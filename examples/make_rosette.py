#!/usr/bin/env python3
"""Writes rosette.png: a flower of two wreaths of petals in a moulded round frame, light where the relief is high.

Usage: examples/make_rosette.py examples/rosette.png
"""
import math
import struct
import sys
import zlib

SIDE = 240   # pixels


def smooth(a, b, x):
    t = min(1.0, max(0.0, (x - a) / (b - a)))
    return t * t * (3.0 - 2.0 * t)


def petals(r, angle, count, inner, outer):
    """Height of a wreath of petals, each a rounded leaf with a vein."""
    across = abs((angle * count / (2.0 * math.pi) + 0.5) % 1.0 - 0.5) * 2.0   # 0 in the middle of a petal
    along = (r - inner) / (outer - inner)
    if not 0.0 < along < 1.0:
        return 0.0
    width = math.sin(math.pi * along ** 0.8) ** 0.6 * 0.95
    if across >= width:
        return 0.0
    leaf = math.sqrt(1.0 - (across / width) ** 2)
    vein = 1.0 - 0.25 * (1.0 - smooth(0.0, 0.12, across))
    return leaf * vein * (0.55 + 0.45 * along)


def height(x, y):
    """0 to 1."""
    r, angle = math.hypot(x, y), math.atan2(y, x)
    if r > 0.97:
        return 1.0                                      # the block around the medal
    h = 0.12 + 0.1 * (1.0 - r * r)                      # a slightly domed ground
    h = max(h, 0.62 * petals(r, angle + math.pi / 8, 8, 0.22, 0.80))
    h = max(h, 0.85 * petals(r, angle, 8, 0.12, 0.58))
    if r < 0.17:
        h = max(h, 0.95 * math.sqrt(1.0 - (r / 0.17) ** 2) * (0.93 + 0.07 * math.cos(40 * r)))
    ring = abs(r - 0.89) / 0.07
    if ring < 1.0:
        h = max(h, 0.25 + 0.65 * math.sqrt(1.0 - ring * ring) * (0.9 + 0.1 * math.cos(36 * angle)))
    return h


def main():
    lines = b""
    for row in range(SIDE):
        y = 1.0 - 2.0 * (row + 0.5) / SIDE
        values = (height(2.0 * (col + 0.5) / SIDE - 1.0, y) for col in range(SIDE))
        lines += b"\0" + bytes(round(255 * v) for v in values)

    def chunk(kind, data):
        return struct.pack(">I", len(data)) + kind + data + struct.pack(">I", zlib.crc32(kind + data))

    header = struct.pack(">IIBBBBB", SIDE, SIDE, 8, 0, 0, 0, 0)
    with open(sys.argv[1], "wb") as f:
        f.write(b"\x89PNG\r\n\x1a\n" + chunk(b"IHDR", header) + chunk(b"IDAT", zlib.compress(lines, 9)) +
                chunk(b"IEND", b""))


main()
