#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""Paints the textures of the models: plates, deck paint, panels and cladding, each a square that
repeats without seam; and the decals, with opacity: soot, oil and tyre marks.

    tools/build_textures.py [DATA]

DATA is the data folder (default: the repository's). Needs what build_terrain.py needs. A texture
multiplies the colour of its material, so all are near white and say only where the surface is
darker. Nothing is random: noise comes from hashed grid points, as the terrain's does. Values are
rounded to few levels, which keeps the files small.
"""

import struct
import zlib

import numpy as np

from build_terrain import hashed, smoothstep
from modelkit.files import write

LEVEL = 6  # values are rounded to multiples of this: finer ones are not seen under light and haze


def grid(size):
    """Places of the pixels' middles, (u, v) in [0, 1), v upwards: the first row is the top."""
    steps = (np.arange(size) + 0.5) / size
    return np.meshgrid(steps, steps[::-1])


def noise(u, v, cells_u, cells_v, seed):
    """Value noise in [0, 1] that repeats after the unit square."""
    x, y = u * cells_u, v * cells_v
    i, j = np.floor(x), np.floor(y)
    fx, fy = smoothstep(0, 1, x - i), smoothstep(0, 1, y - j)

    def at(di, dj):
        return hashed((i + di) % cells_u, (j + dj) % cells_v, seed)

    low = at(0, 0) * (1 - fx) + at(1, 0) * fx
    high = at(0, 1) * (1 - fx) + at(1, 1) * fx
    return low * (1 - fy) + high * fy


def clouds(u, v, cells, seed, octaves=4):
    total = sum(noise(u, v, cells << o, cells << o, seed + o) / 2 ** o for o in range(octaves))
    return total / (2 - 2.0 ** (1 - octaves))


def line(distance, half_width, pixel):
    """How much of a pixel a line covers, from the distance to its middle."""
    return np.clip((half_width - np.abs(distance)) / pixel + 0.5, 0, 1)


def to_seam(x, count):
    """Signed distance to the nearest of `count` equal borders of the unit, in units."""
    return (x * count + 0.5) % 1 / count - 0.5 / count


def mix(color, other, share):
    return color * (1 - share[..., None]) + np.array(other) * share[..., None]


def plating(size=512):
    """A ship's side, 8 m: strakes of plates that buckle a little between frames, weld seams, and
    rust and salt that run down from them."""
    u, v = grid(size)
    pixel = 1 / size
    row = np.floor(v * 4)
    shifted = (u + 0.5 * (row % 2) / 3) % 1
    plate = hashed(np.floor(shifted * 3) % 3, row, 3)
    frames = 0.5 + 0.5 * np.cos(2 * np.pi * 16 * u)
    tone = 0.90 + 0.06 * (plate - 0.5) - 0.03 * frames + 0.05 * (clouds(u, v, 4, 10) - 0.5)
    color = np.repeat(tone[..., None], 3, 2)
    seams = np.maximum(line(to_seam(v, 4), 0.0012, pixel), line(to_seam(shifted, 3), 0.0012, pixel))
    color = mix(color, (0.66, 0.66, 0.67), 0.7 * seams)
    # Streaks hang from the seams and fade downwards; few places let them begin.
    below = 1 - (v * 4) % 1
    source = smoothstep(0.86, 0.98, noise(u, np.floor(v * 4) / 4, 40, 4, 21))
    streak = source * smoothstep(0.9, 0.0, below / (0.3 + 0.7 * noise(u, np.floor(v * 4) / 4, 80, 4, 30)))
    color = mix(color, (0.55, 0.40, 0.30), 0.40 * streak)
    salt = smoothstep(0.55, 0.9, noise(u, v, 64, 3, 40)) * smoothstep(0.2, 0.8, clouds(u, v, 3, 41))
    return mix(color, (1.0, 1.0, 1.0), 0.35 * salt)


def deck(size=512):
    """Non-slip paint of a deck, 6 m: scuffs, tyre and drag marks, lashing points every 1.5 m."""
    u, v = grid(size)
    pixel = 1 / size
    tone = 0.84 + 0.14 * (clouds(u, v, 4, 50) - 0.5) + 0.10 * (noise(u, v, 128, 128, 55) - 0.5)
    tone = tone - 0.06 * (noise(u, v, 3, 40, 57) > 0.78)
    tone = tone + 0.07 * smoothstep(0.6, 0.9, clouds(u, v, 6, 60))
    radius = np.hypot(to_seam(u + 0.125, 4), to_seam(v + 0.125, 4))
    cup = np.clip((0.012 - radius) / pixel + 0.5, 0, 1)
    rim = line(radius - 0.0145, 0.0022, pixel)
    tone = tone * (1 - 0.65 * cup) + 0.12 * rim
    return np.repeat(tone[..., None], 3, 2)


def panels(size=512):
    """An airframe's skin, 4 m: panels of unequal size, lines of rivets, hatches and smudges."""
    u, v = grid(size)
    pixel = 1 / size
    tone = 0.90 + 0.05 * (clouds(u, v, 3, 70) - 0.5)
    lines = np.zeros_like(u)
    rivets = np.zeros_like(u)

    def rivet_row(along, across):
        dots = np.hypot(to_seam(along, 80), across)
        return np.clip((0.0022 - dots) / pixel + 0.5, 0, 1)

    rows = (0.0, 0.19, 0.34, 0.58, 0.73)
    for n, low in enumerate(rows):
        high = rows[n + 1] if n + 1 < len(rows) else 1.0
        inside = (v >= low) & (v < high)
        lines = np.maximum(lines, line((v - low + 0.5) % 1 - 0.5, 0.0012, pixel))
        for side in (-0.008, 0.008):
            rivets = np.maximum(rivets, rivet_row(u, (v - low - side + 0.5) % 1 - 0.5))
        x, m = 0.13 * n % 1, 0
        while m < 5:
            at = (x + m * 0.2 + 0.07 * float(hashed(np.array([m]), np.array([n]), 80)[0])) % 1
            away = (u - at + 0.5) % 1 - 0.5
            lines = np.maximum(lines, inside * line(away, 0.0012, pixel))
            rivets = np.maximum(rivets, inside * rivet_row(v, away - 0.008))
            tone = tone + inside * 0.025 * ((away > 0) & (away < 0.1)) * (m % 2)
            m += 1
    for cu, cv, w, h in ((0.30, 0.46, 0.05, 0.035), (0.72, 0.10, 0.03, 0.03), (0.55, 0.86, 0.06, 0.03)):
        edge = np.maximum(np.abs(u - cu) - w, np.abs(v - cv) - h)
        lines = np.maximum(lines, line(edge, 0.0014, pixel))
        tone = tone - 0.03 * (edge < 0)
    smudge = smoothstep(0.55, 0.95, noise(u, v, 5, 24, 90)) * smoothstep(0.4, 0.8, clouds(u, v, 3, 95))
    tone = tone * (1 - 0.42 * lines) * (1 - 0.16 * rivets) * (1 - 0.14 * smudge)
    return np.repeat(tone[..., None], 3, 2)


def cladding(size=256):
    """Walls and roofs of sheet metal, 4 m: ribs, sheets of unequal age, rust from the laps."""
    u, v = grid(size)
    pixel = 1 / size
    rib = 0.5 + 0.5 * np.cos(2 * np.pi * 16 * u)
    sheet = hashed(np.floor(u * 4), np.floor(v * 2), 100)
    tone = 0.80 + 0.16 * rib ** 2 + 0.06 * (sheet - 0.5) + 0.06 * (clouds(u, v, 4, 110) - 0.5)
    color = np.repeat(tone[..., None], 3, 2)
    color = mix(color, (0.5, 0.5, 0.5), 0.6 * line(to_seam(v, 2), 0.003, pixel))
    below = 1 - (v * 2) % 1
    source = smoothstep(0.75, 1.0, noise(u, np.floor(v * 2) / 2, 24, 2, 120))
    return mix(color, (0.52, 0.38, 0.28), 0.4 * source * smoothstep(0.8, 0.0, below))


def stain(color, opacity):
    """Four channels: one colour whose opacity varies."""
    return np.concatenate([np.broadcast_to(color, (*opacity.shape, 3)), opacity[..., None]], 2)


def soot(size=256):
    """What jets and fires leave: dense in the middle, ragged and streaked towards the edge."""
    u, v = grid(size)
    x, y = 2 * u - 1, 2 * v - 1
    radius, angle = np.hypot(x, y), np.arctan2(y, x) / (2 * np.pi) + 0.5
    rays = noise(angle, radius * 0.5, 40, 4, 130)
    ragged = radius * (0.75 + 0.5 * rays) + 0.3 * (clouds(u, v, 5, 135) - 0.5)
    return stain((0.10, 0.095, 0.09), 0.85 * smoothstep(0.85, 0.15, ragged))


def oil(size=256):
    """Drips and puddles that ran together."""
    u, v = grid(size)
    radius = np.hypot(2 * u - 1, 2 * v - 1)
    wet = clouds(u, v, 6, 140) + 0.35 * clouds(u, v, 3, 145)
    shape = smoothstep(0.68, 0.82, wet - 0.35 * radius + 0.1) * smoothstep(1.0, 0.7, radius)
    return stain((0.13, 0.12, 0.11), 0.8 * shape + 0.25 * smoothstep(0.9, 0.2, radius) * shape ** 0.3)


def skid(size=256):
    """Tyre marks of a turn on the spot: two pairs of arcs, broken up by the ground's grain."""
    u, v = grid(size)
    pixel = 2 / size
    x, y = 2 * u - 1.25, 2 * v - 0.95
    radius, angle = np.hypot(x, y), np.arctan2(y, x)
    marks = np.zeros_like(u)
    for middle, start, stop in ((0.45, -2.4, 1.9), (0.51, -2.2, 2.1), (0.80, -2.6, 2.3), (0.86, -2.5, 2.2)):
        along = smoothstep(start, start + 0.7, angle) * smoothstep(stop, stop - 0.9, angle)
        marks = np.maximum(marks, line(radius - middle, 0.018, pixel) * along)
    edge = np.minimum(np.minimum(u, 1 - u), np.minimum(v, 1 - v))
    grain = 0.45 + 0.55 * clouds(u, v, 24, 150, 3)
    return stain((0.09, 0.09, 0.09), 0.75 * marks * grain * smoothstep(0.0, 0.05, edge))


TEXTURES = {"soot": soot, "oil": oil, "skid": skid, "plating": plating, "deck": deck, "panels": panels, "cladding": cladding}


def png(color):
    """A PNG file of values from 0 to 1; grey where the three channels agree."""
    value = np.round(np.clip(color, 0, 1) * 255 / LEVEL) * LEVEL
    pixels = np.minimum(value, 255).astype(np.uint8)
    grey = pixels.shape[2] == 3 and bool((pixels == pixels[..., :1]).all())
    rows = pixels[..., 0] if grey else pixels.reshape(len(pixels), -1)
    color_type = 0 if grey else {3: 2, 4: 6}[pixels.shape[2]]

    def chunk(kind, data):
        return struct.pack(">I", len(data)) + kind + data + struct.pack(">I", zlib.crc32(kind + data))

    header = struct.pack(">IIBBBBB", *pixels.shape[1::-1], 8, color_type, 0, 0, 0)
    lines = b"".join(b"\0" + row.tobytes() for row in rows)
    return (b"\x89PNG\r\n\x1a\n" + chunk(b"IHDR", header) + chunk(b"IDAT", zlib.compress(lines, 9)) +
            chunk(b"IEND", b""))


def contents():
    """The bytes of every file that is written, by path below the data folder."""
    return {f"PELMAR_PROJECT/textures/{name}.png": png(paint()) for name, paint in TEXTURES.items()}


if __name__ == "__main__":
    write(contents(), __doc__)
