# SPDX-License-Identifier: MIT
"""The burnt-out airframe: crushed on to its belly, the tail broken off, skin burnt through to the
frames, blades severed. The scatter is the same every time, so that the file never changes by
itself."""

import math
import random

from . import airframe
from .mesh import Part, add, lerp, rotate_x, rotate_z
from .rotors import severed

GROUND = -1.22
BREAK = -4.2       # where the tail came off
SINK = 0.34        # how far the hull settled when the gear collapsed


def crush(p, strength):
    """The dent of a heavy landing: flat below, bulging at the sides, buckled along its length."""
    x, y, z = p
    buckle = 0.10 * math.sin(2.3 * y + 1.1 * x) + 0.06 * math.sin(5.1 * y - 2.0 * z)
    squeeze = 0.80 if z > 0 else 0.78
    return (x * (1.04 + 0.10 * max(0.0, 0.6 - abs(z))) + 0.5 * strength * buckle, y,
            squeeze * z - SINK + strength * buckle * (1 if z > -0.2 else 0.2))


def shell(scatter):
    """Skin with holes burnt into its upper half and with every pane gone."""
    part = Part("shell")
    stations = [y for y in airframe.STATIONS if y >= BREAK]
    skip = len(airframe.STATIONS) - len(stations)
    rings = []
    for y in stations:
        ragged = 0.28 if y == BREAK else 0.0
        rough = 0.03 if y < 3 else 0.012  # the nose's stations lie closer together
        rings.append([crush(add(p, (scatter.uniform(-rough, rough), -scatter.random() * ragged,
                                    scatter.uniform(-rough, rough))), 1.0)
                      for p in airframe.ring(y)])
    burnt = burnt_through(scatter, len(rings), len(rings[0]))

    def material(i, j):
        if airframe.opening(i + skip, j) or (i, j) in burnt:
            return None
        near = any((i + di, j + dj) in burnt for di in (-1, 0, 1) for dj in (-1, 0, 1))
        return "wreck_ash" if near or scorched(stations[i], j) else "wreck"

    part.loft(rings, material, close=False)
    return part


def scorched(y, side):
    """Whether a cell of the skin is burnt to ash: large blotches, not single cells."""
    return math.sin(1.9 * y + 0.45 * side) + math.sin(1.1 * y - 0.31 * side + 2) > 1.35


def burnt_through(scatter, stations, sides):
    """Cells of the skin that are gone: patches around a few hot places of the roof and sides."""
    cells = set()
    for place in ((10, 3, 3), (13, 44, 4), (6, 9, 2), (17, 38, 3), (4, 40, 2), (19, 6, 3)):
        middle, side, radius = place
        for i in range(middle - radius, middle + radius + 1):
            for j in range(side - radius, side + radius + 1):
                if math.hypot(i - middle, j - side) + scatter.random() < radius + 0.4:
                    cells.add((i % stations, j % sides))
    return cells


def skeleton(part):
    """Frames and stringers that show through the holes, and the blackened floor."""
    for y in (-3.6, -2.6, -1.6, -0.6, 0.4, 1.4, 2.4):
        ring = [crush(p, 1.0) for p in airframe.ring(y, 0.07)[::3]]
        for a, b in zip(ring, ring[1:] + ring[:1]):
            part.beam("wreck", a, b, 0.05, 0.05)
    for x, z in ((-0.7, 1.40), (0.0, 1.42), (0.7, 1.40), (-1.12, 0.5), (1.12, 0.5)):
        line = [crush((x, y, z), 1.0) for y in (-3.8, -2.6, -1.4, -0.2, 1.0, 2.2)]
        for a, b in zip(line, line[1:]):
            part.beam("wreck", a, b, 0.04, 0.05)
    part.box("wreck_ash", (1.9, 7.6, 0.05), (0, -0.2, -0.80))
    for x in (-0.5, 0.5):
        part.box("wreck", (0.44, 0.45, 0.30), (x, 2.95, -0.52))
        part.beam("wreck", (x, 2.70, -0.4), (x + 0.1, 2.55, 0.35), 0.44, 0.08)


def machinery(part):
    """What is left above the roof: gearbox, one engine in place and one thrown to the side."""
    top = crush((0, 0.2, 1.5), 1.0)[2]
    part.lathe("wreck", [(0.52, top - 0.2), (0.50, top + 0.25), (0.34, top + 0.45),
                         (0.18, top + 0.6), (0.16, top + 0.95), (0.0, top + 0.97)], 14,
               lambda p: add(rotate_x((p[0], p[1], p[2] - top), 9), (0.1, 0.25, top)))
    part.lathe("wreck", [(0.0, 0.86), (0.42, 0.88), (0.58, 0.98), (0.40, 1.08), (0.0, 1.14)], 12,
               lambda p: add(rotate_x(p, 9), (0.1, 0.22, top)))
    engine = [(0.0, -1.2), (0.24, -1.2), (0.30, -0.6), (0.32, 0.2), (0.27, 0.8), (0.20, 1.0),
              (0.0, 1.0)]

    def lying(p, heading, at):
        return add(rotate_z((p[0], p[2], -p[1]), heading), at)

    part.lathe("wreck_ash", engine, 14, lambda p: lying(p, 6, (-0.74, -0.4, top + 0.12)))
    part.lathe("wreck", engine, 14, lambda p: lying(p, -52, (2.3, -1.9, -0.90)))


def tail(part):
    """The boom with its pylon, lying beside the stump and turned away."""
    boom = Part("boom")
    stations = [y for y in airframe.STATIONS if y <= -4.6]
    rings = [airframe.ring(y) for y in stations]
    rings[-1] = [add(p, (0, 0.22 * math.sin(2.7 * i), 0)) for i, p in enumerate(rings[-1])]
    boom.loft(rings, "wreck", close=False)
    boom.merge(boom_inside(rings))
    airframe.tail(boom)
    part.merge(boom, lambda p: add(rotate_z(rotate_x(p, 9.5), 14), (-1.15, -0.5, -0.28)), "wreck")


def boom_inside(rings):
    """The dark inside of the torn end, a metre deep."""
    inside = Part("inside")
    near, far = rings[-1], [lerp(p, (0, p[1], 0.9), 0.3) for p in rings[-4]]
    inside.loft([near[::-1], far[::-1]], "wreck", close=False)
    return inside


def debris(part, scatter):
    """Blades, sheets and lumps around the hull, on the ground."""
    hub = crush((0, 0.2, 1.5), 1.0)[2] + 0.98
    for angle, length, bend in ((20, 5.2, 2.0), (97, 3.0, 0.8), (170, 6.0, 2.4), (243, 2.2, 0.4),
                                (310, 4.2, 1.6)):
        part.merge(severed(length, bend), lambda p, a=angle: add(rotate_z(p, a), (0.1, 0.08, hub)),
                   "wreck")
    part.merge(severed(3.4, 0.05), lambda p: add(rotate_z(p, 70), (4.6, 3.0, GROUND + 0.10)),
               "wreck")
    for _ in range(26):
        angle, radius = scatter.uniform(0, 360), scatter.uniform(2.0, 5.5)
        at = rotate_z((radius, 0, GROUND + 0.05), angle)
        size = scatter.uniform(0.12, 0.45)
        corners = [rotate_z((size * a, size * b * scatter.uniform(0.4, 1), 0), angle * 3)
                   for a, b in ((-1, -1), (1, -0.8), (0.8, 1), (-0.7, 0.9))]
        low = [add(c, at) for c in corners]
        high = [add(c, (0, 0, 0.02 + scatter.uniform(0, 0.12))) for c in low]
        part.hexahedron(scatter.choice(("wreck", "wreck_ash")), low, high)
    for side in (-1, 1):
        tyre = Part("tyre")
        tyre.lathe("wreck", [(0.17, -0.11), (0.30, -0.12), (0.34, -0.06), (0.34, 0.06),
                             (0.30, 0.12), (0.17, 0.11), (0.17, -0.11)], 16)
        part.merge(tyre, lambda p, s=side: add(rotate_x(p, 12 * s),
                                               (s * 1.75, -1.7, GROUND + 0.14)))


def wreck():
    scatter = random.Random(1220)
    part = Part("wreck")
    part.merge(shell(scatter))
    skeleton(part)
    machinery(part)
    tail(part)
    debris(part, scatter)
    glow = [(-0.2, 0.6, 0.86), (0.4, -1.0, 0.88), (-0.5, -2.0, 0.80)]
    for n, at in enumerate(glow):  # embers among the remains of the roof
        part.ellipsoid("ember", crush(at, 1.0), (0.16, 0.22 - 0.03 * n, 0.06), 5, 9)
    return part
