# SPDX-License-Identifier: MIT
"""Trees and houses: few triangles, since hundreds of them stand in a picture. The foot is the
origin; trunks and walls reach below it, for slopes. X right, Y forward, Z up."""

import math

from .mesh import Part, add

ROOTS = -0.8  # how deep trunks go
CELLAR = -2.5  # how deep walls go


def crown(part, material, middle, radii, sides=7, rings=4, seed=0):
    """A lumpy ball of leaves."""
    levels = []
    for i in range(rings + 1):
        lat = math.pi * (i / rings - 0.5)
        ring = []
        for j in range(sides):
            t = 2 * math.pi * (j + 0.5 * (i % 2)) / sides
            lump = 1 + 0.16 * math.sin(3.7 * i + 2.3 * j + 1.9 * seed)
            ring.append(add(middle, (radii[0] * lump * math.cos(lat) * math.cos(t),
                                     radii[1] * lump * math.cos(lat) * math.sin(t),
                                     radii[2] * math.sin(lat))))
        levels.append(ring)
    part.solid(material, levels)


def broadleaf():
    part = Part("broadleaf")
    part.cone("bark", (0, 0, ROOTS), (0.1, 0, 4.2), 0.26, 0.14, 5)
    crown(part, "leaves", (0.0, 0.0, 5.6), (2.7, 2.5, 2.3))
    crown(part, "leaves", (1.2, -0.9, 4.4), (1.7, 1.8, 1.4), 6, 3, 2)
    crown(part, "leaves", (-1.1, 1.0, 4.6), (1.8, 1.6, 1.5), 6, 3, 5)
    return [part]


def palm():
    part = Part("palm")
    bend = [(0, 0, ROOTS), (0.15, 0.05, 2.8), (0.5, 0.2, 5.6), (1.0, 0.4, 8.2)]
    radii = [0.3, 0.24, 0.2, 0.17]
    for a, b, ra, rb in zip(bend, bend[1:], radii, radii[1:]):
        part.cone("bark", a, b, ra, rb, 5)
    top = bend[-1]
    for i in range(9):
        t = 2 * math.pi * i / 9
        droop = 0.9 + 0.5 * math.sin(2.1 * i)
        way, side = (math.cos(t), math.sin(t)), (-math.sin(t), math.cos(t))

        def at(out, across, up):
            return add(top, (way[0] * out + side[0] * across, way[1] * out + side[1] * across, up))

        root, ridge, tip = at(0.1, 0, 0.1), at(1.7, 0, 0.75 - 0.2 * droop), at(3.2, 0, -droop)
        left, right = at(1.6, 0.5, 0.3 - 0.2 * droop), at(1.6, -0.5, 0.3 - 0.2 * droop)
        for a, b, c in ((root, right, ridge), (root, ridge, left), (ridge, right, tip),
                        (left, ridge, tip)):
            part.polygon("fronds", [a, b, c])
            part.polygon("fronds", [a, c, b])
    return [part]


def bush():
    part = Part("bush")
    crown(part, "scrub", (0, 0, 0.5), (0.6, 0.55, 0.8), 5, 3)
    crown(part, "scrub", (0.55, 0.3, 0.35), (0.45, 0.5, 0.55), 5, 3, 3)
    crown(part, "scrub", (-0.3, -0.5, 0.3), (0.5, 0.4, 0.5), 5, 3, 5)
    return [part]


def house(name, width, depth, eaves, ridge, porch=0.0):
    """Gables to the left and right; the porch is ahead."""
    part = Part(name)
    x, y, over = width / 2, depth / 2, 0.45
    part.hexahedron("wall", [(-x, -y, CELLAR), (x, -y, CELLAR), (x, y, CELLAR), (-x, y, CELLAR)],
                    [(-x, -y, eaves), (x, -y, eaves), (x, y, eaves), (-x, y, eaves)])
    for side in (-1, 1):
        gable = [(side * x, -y * side, eaves), (side * x, y * side, eaves), (side * x, 0, ridge)]
        part.polygon("wall", gable)
    drop = (ridge - eaves) * over / y
    for side in (-1, 1):
        low = [(-side * (x + over), side * (y + over), eaves - drop),
               (side * (x + over), side * (y + over), eaves - drop)]
        high = [(side * (x + over), 0, ridge + 0.12), (-side * (x + over), 0, ridge + 0.12)]
        sheet = [low[1], low[0], high[1], high[0]]
        part.polygon("tiles", sheet)
        part.polygon("tiles", sheet[::-1])
    if porch:
        posts = [(-x, y), (x, y), (x, y + porch), (-x, y + porch)]
        part.hexahedron("tiles", [(px, py, eaves - 0.5) for px, py in posts],
                        [(px, py, eaves - 0.35) for px, py in posts])
        for px in (-x + 0.15, x - 0.15):
            part.box("wall", (0.2, 0.2, eaves - CELLAR - 0.5),
                     (px, y + porch - 0.15, (eaves - 0.5 + CELLAR) / 2))
    for px in (-x / 2, x / 2):
        for side in (-1, 1):
            window(part, px, side * y, 1.5, side)
    window(part, 0, y, 1.05, 1, 1.0, 2.1)
    return [part]


def window(part, x, y, z, side, width=1.1, height=1.2):
    """Of a wall that faces Y, or −Y."""
    w, h, at = width / 2, height / 2, y + 0.03 * side
    part.polygon("window_dark", [(x - w * side, at, z + h), (x + w * side, at, z + h),
                                 (x + w * side, at, z - h), (x - w * side, at, z - h)])


def church():
    part = house("church", 16.0, 8.0, 5.2, 8.6)[0]
    part.box("wall", (4.2, 4.2, 13.0 - CELLAR), (-9.6, 0, (13.0 + CELLAR) / 2))
    part.cone("tiles", (-9.6, 0, 13.0), (-9.6, 0, 18.5), 3.3, 0.0, 4)
    return [part]


def parts():
    """Every tree and house by the name of its part."""
    return [*broadleaf(), *palm(), *bush(), *house("cottage", 9.0, 6.5, 3.0, 5.2, 2.2),
            *house("villa", 12.0, 8.0, 5.6, 8.4), *house("shed", 14.0, 9.0, 4.0, 5.6), *church()]
