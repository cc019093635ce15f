#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""Draws the icons of the camera panel.

    tools/build_icons.py [FOLDER]

FOLDER holds data/ (default: the present one). Standard library only. Each icon is a function of the
place in a square from (-1, -1), top left, to (1, 1) that tells whether it is ink; sixteen samples a
pixel smooth the edges. PNG files are true colour with opacity, DDS files plain 32-bit BGRA.
"""

import math
import pathlib
import struct
import sys
import zlib

SIZE = 32  # pixels: twice what the panel shows, for dense displays
SAMPLES = 4  # along each edge of a pixel
INK = (244, 246, 248)
TILE, TILE_OPACITY = (33, 46, 61), 200  # behind the ink, so that it shows in bright scenes


def run(x, y):
    """A speedometer: arc, hub and needle."""
    r = math.hypot(x, y - 0.25)
    arc = 0.72 < r < 0.92 and y < 0.45
    along = (x * 0.6 - (y - 0.25) * 0.8) / 0.62  # the needle points to the upper right
    across = abs(x * 0.8 + (y - 0.25) * 0.6)
    return arc or r < 0.17 or (0 < along < 1 and across < 0.09)


def position(x, y):
    """A map pin: a disc with a hole, running out into a point."""
    head = math.hypot(x, y + 0.3)
    tip = 0 < y + 0.1 < 1.0 and abs(x) < 0.5 * (1 - (y + 0.1))
    return (head < 0.56 or tip) and head > 0.22


def collective(x, y):
    """A lever in its quadrant, with an arrow up."""
    grip = abs(x + 0.45) < 0.17 and -0.85 < y < -0.1
    rod = abs(x + 0.45) < 0.07 and -0.2 < y < 0.85
    base = -0.85 < x < 0.0 and 0.65 < y < 0.85
    shaft = abs(x - 0.45) < 0.09 and -0.4 < y < 0.85
    head = -0.85 < y < -0.25 and abs(x - 0.45) < 0.62 * (y + 0.85)
    return grip or rod or base or shaft or head


def draw(icon):
    """Rows of (red, green, blue, opacity), from the top."""
    rows = []
    for py in range(SIZE):
        row = []
        for px in range(SIZE):
            hits = 0
            for sy in range(SAMPLES):
                for sx in range(SAMPLES):
                    x = (px + (sx + 0.5) / SAMPLES) / SIZE * 2 - 1
                    y = (py + (sy + 0.5) / SAMPLES) / SIZE * 2 - 1
                    hits += icon(x, y)
            ink = hits / SAMPLES**2
            color = (round(i * ink + t * (1 - ink)) for i, t in zip(INK, TILE))
            row.append((*color, round(255 * ink + TILE_OPACITY * (1 - ink))))
        rows.append(row)
    return rows


def png(rows):
    def chunk(kind, data):
        return struct.pack(">I", len(data)) + kind + data + struct.pack(">I", zlib.crc32(kind + data))

    lines = b"".join(b"\0" + bytes(value for pixel in row for value in pixel) for row in rows)
    header = struct.pack(">IIBBBBB", len(rows[0]), len(rows), 8, 6, 0, 0, 0)
    return (b"\x89PNG\r\n\x1a\n" + chunk(b"IHDR", header) + chunk(b"IDAT", zlib.compress(lines, 9))
            + chunk(b"IEND", b""))


def dds(rows):
    height, width = len(rows), len(rows[0])
    caps, height_flag, width_flag, pitch, pixel_format = 0x1, 0x2, 0x4, 0x8, 0x1000
    header = struct.pack("<7I44x", 124, caps | height_flag | width_flag | pitch | pixel_format,
                         height, width, width * 4, 0, 0)
    rgb_with_alpha = 0x41
    header += struct.pack("<2I4x5I", 32, rgb_with_alpha, 32, 0xFF0000, 0xFF00, 0xFF, 0xFF000000)
    header += struct.pack("<I16x", 0x1000)  # a texture
    return b"DDS " + header + bytes(v for row in rows for r, g, b, a in row for v in (b, g, r, a))


ICONS = {
    "data/core/editor/gui/run.dds": run,
    "data/core/editor/gui/position.dds": position,
    "data/PELMAR_PROJECT/gui/thr.png": collective,
}


def main():
    folder = pathlib.Path(sys.argv[1] if len(sys.argv) > 1 else ".")
    for name, icon in ICONS.items():
        path = folder / name
        path.parent.mkdir(parents=True, exist_ok=True)
        rows = draw(icon)
        path.write_bytes(png(rows) if path.suffix == ".png" else dds(rows))


if __name__ == "__main__":
    main()
