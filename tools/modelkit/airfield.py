# SPDX-License-Identifier: MIT
"""The islet with its apron, runway and helipad.

The origin is the middle of the pad's top; all levels are tangent planes there. X is east, Y north.
"""

import math

from .mesh import Part

PAD_HALF = 15.0
APRON_LEVEL = -0.01          # the apron lies 1 cm below the pad
SEA_LEVEL = -12.45           # the pad's height above the ellipsoid, with its sign turned
WEST, EAST, SOUTH, NORTH = -150.0, 250.0, -250.0, 450.0
RUNWAY = (150.0, 180.0, -240.0, 440.0)
PAINT = 0.01                 # height of the paint above what it is painted on

# Rings of the shore around the apron: distance outwards, height, and by how much the distance
# varies with the bearing.
SHORE = [(18, -0.25, 4), (70, -2.6, 22), (115, -7.5, 30), (140, -11.4, 32), (165, -14.0, 34),
         (230, -30.0, 36)]


def grid_lines(low, high, step, extra):
    """Cell borders from low to high, no farther apart than `step`, meeting every extra border."""
    borders = sorted({low, high, *extra})
    lines = [low]
    for a, b in zip(borders, borders[1:]):
        count = math.ceil((b - a) / step)
        lines += [a + (b - a) * i / count for i in range(1, count + 1)]
    return lines


def apron_grid():
    x = grid_lines(WEST, EAST, 50, (-PAD_HALF, PAD_HALF, RUNWAY[0], RUNWAY[1]))
    y = grid_lines(SOUTH, NORTH, 50, (-PAD_HALF, PAD_HALF, RUNWAY[2], RUNWAY[3]))
    return x, y


def apron():
    """Concrete and runway, in cells small enough for per-vertex haze, with a hole for the pad."""
    part, (xs, ys) = Part("apron"), apron_grid()
    for x0, x1 in zip(xs, xs[1:]):
        for y0, y1 in zip(ys, ys[1:]):
            x, y = (x0 + x1) / 2, (y0 + y1) / 2
            if abs(x) < PAD_HALF and abs(y) < PAD_HALF:
                continue
            on_runway = RUNWAY[0] < x < RUNWAY[1] and RUNWAY[2] < y < RUNWAY[3]
            part.rectangle("runway" if on_runway else "apron", x0, x1, y0, y1, APRON_LEVEL)
    return part


def pad():
    """The landing slab. Its cells are laid so that no edge runs through its middle, where heights
    are compared."""
    part = Part("pad")
    xs, ys = (-PAD_HALF, -4, 7, PAD_HALF), (-PAD_HALF, -6, 5, PAD_HALF)
    for x0, x1 in zip(xs, xs[1:]):
        for y0, y1 in zip(ys, ys[1:]):
            part.rectangle("pad", x0, x1, y0, y1, 0.0)
    ring = [(-PAD_HALF, -PAD_HALF), (PAD_HALF, -PAD_HALF), (PAD_HALF, PAD_HALF),
            (-PAD_HALF, PAD_HALF)]
    for (ax, ay), (bx, by) in zip(ring, ring[1:] + ring[:1]):
        part.polygon("pad", [(ax, ay, APRON_LEVEL), (bx, by, APRON_LEVEL), (bx, by, 0),
                             (ax, ay, 0)])
    return part


def apron_border():
    """The grid's outer corners, counter-clockwise from the south-west."""
    xs, ys = apron_grid()
    return ([(x, SOUTH) for x in xs[:-1]] + [(EAST, y) for y in ys[:-1]] +
            [(x, NORTH) for x in reversed(xs[1:])] + [(WEST, y) for y in reversed(ys[1:])])


def shore_point(x, y, distance, variation):
    """A point outwards of the apron's border, in a direction that turns smoothly at its corners."""
    middle_x, middle_y = (WEST + EAST) / 2, (SOUTH + NORTH) / 2
    u, v = (x - middle_x) / (EAST - WEST) * 2, (y - middle_y) / (NORTH - SOUTH) * 2
    du, dv = u * abs(u) ** 3, v * abs(v) ** 3
    size = math.hypot(du, dv)
    bearing = math.atan2(v, u)
    reach = distance + variation * (0.6 * math.sin(3 * bearing + 0.8) +
                                    0.4 * math.sin(7 * bearing + 2.1))
    return (x + du / size * reach, y + dv / size * reach)


def shore():
    """Grass, sand and rock from the apron's border down below the sea."""
    part, border = Part("shore"), apron_border()
    rings = [[(x, y, APRON_LEVEL) for x, y in border]]
    for distance, height, variation in SHORE:
        rings.append([(*shore_point(x, y, distance, variation), height) for x, y in border])
    materials = ("grass", "grass", "grass", "sand", "sand", "rock")
    for material, inner, outer in zip(materials, rings, rings[1:]):
        for i in range(len(border)):
            j = (i + 1) % len(border)
            part.polygon(material, [inner[i], outer[i], outer[j], inner[j]])
    return part


def markings():
    """Paint. Segment queries pass through it, so that heights are those of the slabs."""
    part = Part("markings")
    level = PAINT
    part.disc("marking_white", 9.5, 10.1, level, 48)
    for x in (-2.6, 2.0):
        part.rectangle("marking_white", x, x + 0.6, -3.2, 3.2, level)
    part.rectangle("marking_white", -2.0, 2.0, -0.3, 0.3, level)
    inner, outer = PAD_HALF - 0.9, PAD_HALF - 0.4
    for x0, x1, y0, y1 in ((-outer, outer, -outer, -inner), (-outer, outer, inner, outer),
                           (-outer, -inner, -inner, inner), (inner, outer, -inner, inner)):
        part.rectangle("marking_yellow", x0, x1, y0, y1, level)
    level = APRON_LEVEL + PAINT
    west, east, south, north = RUNWAY
    middle = (west + east) / 2
    for y in range(int(south) + 60, int(north) - 70, 50):
        part.rectangle("marking_white", middle - 0.45, middle + 0.45, y, y + 30, level)
    for x in (west + 0.6, east - 1.5):
        part.rectangle("marking_white", x, x + 0.9, south, north, level)
    for i in range(8):
        x = west + 3 + i * 3.25
        for y in (south + 6, north - 36):
            part.rectangle("marking_white", x, x + 1.6, y, y + 30, level)
    part.rectangle("marking_yellow", PAD_HALF, west, -0.15, 0.15, level)
    return part


def building(part, x0, x1, y0, y1, height, roof=0.0):
    """A house with a flat or a gabled roof, its ridge along Y."""
    base = APRON_LEVEL
    walls = [(x0, y0), (x1, y0), (x1, y1), (x0, y1)]
    for (ax, ay), (bx, by) in zip(walls, walls[1:] + walls[:1]):
        part.polygon("building", [(ax, ay, base), (bx, by, base), (bx, by, height),
                                  (ax, ay, height)])
    ridge, top = (x0 + x1) / 2, height + roof
    if roof == 0.0:
        part.rectangle("roof", x0, x1, y0, y1, height)
        return
    part.polygon("roof", [(x1, y0, height), (x1, y1, height), (ridge, y1, top), (ridge, y0, top)])
    part.polygon("roof", [(x0, y1, height), (x0, y0, height), (ridge, y0, top), (ridge, y1, top)])
    part.polygon("building", [(x0, y0, height), (x1, y0, height), (ridge, y0, top)])
    part.polygon("building", [(x1, y1, height), (x0, y1, height), (ridge, y1, top)])


def buildings():
    """Hangars, tower and sheds along the western edge, clear of the approach."""
    part = Part("buildings")
    building(part, -135, -95, 40, 80, 9.0, 4.0)
    building(part, -135, -95, 95, 135, 9.0, 4.0)
    building(part, -128, -108, -60, -20, 6.0)
    for y in (60, 115):
        part.box("window_dark", (0.2, 26, 7.5), (-94.9, y, 3.75))
    building(part, -123, -115, 0, 8, 16.0)
    part.hexahedron("window_dark", [(-124, -1, 16), (-114, -1, 16), (-114, 9, 16), (-124, 9, 16)],
                    [(-125, -2, 19), (-113, -2, 19), (-113, 10, 19), (-125, 10, 19)])
    part.box("roof", (13, 13, 0.6), (-119, 4, 19.3))
    part.cylinder("boat_orange", (-119, 4, 19.6), (-119, 4, 25.0), 0.15, 8)
    part.cylinder("building", (-60, -40, APRON_LEVEL), (-60, -40, 7.0), 0.08, 8)
    part.cone("boat_orange", (-60.2, -40, 6.7), (-63.0, -40, 6.4), 0.45, 0.22, 10)
    return part


def lamp_places():
    """Where the pad's and the runway's edge lights stand: (x, y) with z at lamp height."""
    edge = PAD_HALF + 0.6
    pad_lights = [(x, y) for x in (-edge, -edge / 3, edge / 3, edge) for y in (-edge, edge)]
    pad_lights += [(x, y) for x in (-edge, edge) for y in (-edge / 3, edge / 3)]
    west, east, south, north = RUNWAY
    count = 12
    runway_lights = [(x, south + (north - south) * i / (count - 1)) for i in range(count)
                     for x in (west - 1.0, east + 1.0)]
    return pad_lights, runway_lights


def lamps():
    part = Part("lamps")
    pad_lights, runway_lights = lamp_places()
    for material, places in (("pad_light", pad_lights), ("runway_light", runway_lights)):
        for x, y in places:
            part.cylinder(material, (x, y, APRON_LEVEL), (x, y, 0.28), 0.12, 6)
    return part


def parts():
    return [pad(), apron(), shore(), markings(), buildings(), lamps()]
