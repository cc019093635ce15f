# SPDX-License-Identifier: MIT
"""The airfield: helipad, apron, taxiway, runway, buildings and lamps, to stand on level ground.

The origin is the middle of the pad's top. X is east, Y north. Heights are drawn level and then bent
by the curvature of the earth, so that slabs hold their height above the ellipsoid, as the ground
around them does: a tangent plane would rise above it by 7 cm at the far end of the runway.
"""

import math

from .mesh import Part

EARTH_RADIUS = 6.361e6       # mean at the airfield's latitude; the direction changes it by 0.3 %
PAD_HALF = 15.0
APRON_LEVEL = -0.01          # the apron lies 1 cm below the pad
GROUND_LEVEL = -0.05         # the ground lies 4 cm below the apron
PAINT = 0.01                 # height of the paint above what it is painted on
MARGIN = 0.12                # drawn beyond the paint's edges for their smoothing
STEP = 50.0                  # longest edge along a slab: its middle errs by 0.05 mm

# Slabs: west, east, south, north.
APRON = (-145.0, 70.0, -90.0, 150.0)
TAXIWAY = (70.0, 150.0, -11.5, 11.5)
RUNWAY = (150.0, 180.0, -780.0, 420.0)


def grid_lines(low, high, step, extra):
    """Cell borders from low to high, no farther apart than `step`, meeting every extra border."""
    borders = sorted({low, high, *extra})
    lines = [low]
    for a, b in zip(borders, borders[1:]):
        count = math.ceil((b - a) / step)
        lines += [a + (b - a) * i / count for i in range(1, count + 1)]
    return lines


def slab(part, material, bounds, level, x_borders=(), y_borders=(), hole=0.0):
    """A level rectangle in cells, with a square hole of that half-width around the origin."""
    xs = grid_lines(bounds[0], bounds[1], STEP, (-hole, hole, *x_borders) if hole else x_borders)
    ys = grid_lines(bounds[2], bounds[3], STEP, (-hole, hole, *y_borders) if hole else y_borders)
    for x0, x1 in zip(xs, xs[1:]):
        for y0, y1 in zip(ys, ys[1:]):
            if max(abs(x0 + x1), abs(y0 + y1)) / 2 >= hole:
                part.rectangle(material, x0, x1, y0, y1, level)


def apron():
    """Concrete and runway. Slabs meet at common corners."""
    part = Part("apron")
    slab(part, "apron", APRON, APRON_LEVEL, y_borders=TAXIWAY[2:], hole=PAD_HALF)
    slab(part, "apron", TAXIWAY, APRON_LEVEL)
    slab(part, "runway", RUNWAY, APRON_LEVEL, y_borders=TAXIWAY[2:])
    return part


def pad():
    """The landing slab. Its cells are laid so that no edge runs through its middle, where heights
    are compared."""
    part = Part("pad")
    xs, ys = (-PAD_HALF, -4, 7, PAD_HALF), (-PAD_HALF, -6, 5, PAD_HALF)
    for x0, x1 in zip(xs, xs[1:]):
        for y0, y1 in zip(ys, ys[1:]):
            part.rectangle("pad", x0, x1, y0, y1, 0.0)
    # The edges slope, so that they are lit as the slab is: upright they would be a dotted line.
    ring = [(-1, -1), (1, -1), (1, 1), (-1, 1)]
    foot = PAD_HALF + 0.05
    for (ax, ay), (bx, by) in zip(ring, ring[1:] + ring[:1]):
        part.polygon("pad", [(foot * ax, foot * ay, APRON_LEVEL), (foot * bx, foot * by, APRON_LEVEL),
                             (PAD_HALF * bx, PAD_HALF * by, 0), (PAD_HALF * ax, PAD_HALF * ay, 0)])
    return part


def stripe(part, material, x0, x1, y0, y1, level, margin=MARGIN):
    """A level rectangle of paint, drawn `margin` beyond its edges: the first texture coordinate is
    the distance from the edge, inwards positive, by which the picture smooths or frays it. Four
    pieces meet in the middle line, each with the edge that is nearest to it."""
    along_y = y1 - y0 >= x1 - x0
    if not along_y:
        x0, x1, y0, y1 = y0, y1, x0, x1
    half, middle = (x1 - x0) / 2, (x0 + x1) / 2
    outside, inside = (-margin, 0.0), (half, 0.0)

    def piece(points):
        """(x, y, whether on the middle line), counter-clockwise when the stripe lies along Y."""
        corners = [(x, y, level) if along_y else (y, x, level) for x, y, _ in points]
        places = [inside if within else outside for _, _, within in points]
        order = 1 if along_y else -1
        part.polygon(material, corners[::order], places[::order])

    ends = (y0 + half, y1 - half)
    stations = grid_lines(*ends, STEP, ()) if ends[1] - ends[0] > 1e-6 else [ends[0]]
    left, right = x0 - margin, x1 + margin
    piece([(left, y0 - margin, 0), (right, y0 - margin, 0), (middle, ends[0], 1)])
    piece([(right, y1 + margin, 0), (left, y1 + margin, 0), (middle, stations[-1], 1)])
    edge = [y0 - margin, *stations[1:-1], y1 + margin]
    if len(stations) == 1:
        piece([(left, y0 - margin, 0), (middle, stations[0], 1), (left, y1 + margin, 0)])
        piece([(right, y0 - margin, 0), (right, y1 + margin, 0), (middle, stations[0], 1)])
        return
    for a, b, low, high in zip(stations, stations[1:], edge, edge[1:]):
        piece([(left, low, 0), (middle, a, 1), (middle, b, 1), (left, high, 0)])
        piece([(right, low, 0), (right, high, 0), (middle, b, 1), (middle, a, 1)])


def painted_ring(part, material, inner, outer, level, sides=64):
    """A ring of paint around the origin, with the distances that `stripe` has."""
    half = (outer - inner) / 2

    def circle(radius):
        return [(radius * math.cos(t), radius * math.sin(t), level)
                for t in (2 * math.pi * i / sides for i in range(sides + 1))]

    rims = [circle(inner - MARGIN), circle(inner + half), circle(outer + MARGIN)]
    for low, high, d in ((rims[0], rims[1], (-MARGIN, half)), (rims[1], rims[2], (half, -MARGIN))):
        for i in range(sides):
            part.polygon(material, [low[i], high[i], high[i + 1], low[i + 1]],
                         [(d[0], 0.0), (d[1], 0.0), (d[1], 0.0), (d[0], 0.0)])


def blot(part, material, x, y, radius, level):
    """A spot that fades from its middle."""
    rim = [(x + radius * math.cos(t), y + radius * math.sin(t), level)
           for t in (2 * math.pi * i / 12 for i in range(12))]
    for a, b in zip(rim, rim[1:] + rim[:1]):
        part.polygon(material, [(x, y, level), a, b], [(radius, 0.0), (0.0, 0.0), (0.0, 0.0)])


def scattered(count):
    """Pairs of numbers between 0 and 1 that fill the square evenly without order: the generalised
    golden ratio's sequence."""
    return [((0.5 + 0.7548776662 * i) % 1, (0.5 + 0.5698402910 * i) % 1) for i in range(count)]


def markings():
    """Paint. Segment queries pass through it, so that heights are those of the slabs."""
    part = Part("markings")
    level = PAINT
    painted_ring(part, "paint_white", 9.5, 10.1, level)
    for x in (-2.6, 2.0):
        stripe(part, "paint_white", x, x + 0.6, -3.2, 3.2, level)
    stripe(part, "paint_white", -2.0, 2.0, -0.3, 0.3, level)
    inner, outer = PAD_HALF - 0.9, PAD_HALF - 0.4
    for x0, x1, y0, y1 in ((-outer, outer, -outer, -inner), (-outer, outer, inner, outer),
                           (-outer, -inner, -inner, inner), (inner, outer, -inner, inner)):
        stripe(part, "paint_yellow", x0, x1, y0, y1, level)
    level = APRON_LEVEL + PAINT
    west, east, south, north = RUNWAY
    middle = (west + east) / 2
    for y in range(int(south) + 60, int(north) - 70, 50):
        stripe(part, "paint_white", middle - 0.45, middle + 0.45, y, y + 30, level)
    for x in (west + 0.6, east - 1.5):
        stripe(part, "paint_white", x, x + 0.9, south + 0.6, north - 0.6, level)
    for i in range(8):
        x = west + 3 + i * 3.25
        for y in (south + 6, north - 36):
            stripe(part, "paint_white", x, x + 1.6, y, y + 30, level)
    for y in (south + 130, north - 175):  # where wheels shall meet the runway
        for x in (middle - 7.5, middle + 4.5):
            stripe(part, "paint_white", x, x + 3.0, y, y + 45, level)
    stripe(part, "paint_yellow", PAD_HALF + 1, west - 1, -0.15, 0.15, level)
    return part


def traces():
    """What use has left on the slabs: rubber where wheels touch down and turn, oil where engines
    stand. Lies above the paint."""
    part = Part("traces")
    west, east, south, north = RUNWAY
    middle, level = (west + east) / 2, APRON_LEVEL + 2 * PAINT
    for end, way in ((south + 150, 1), (north - 150, -1)):
        for u, v in scattered(34):
            x = middle + (2.2 + 2.4 * (u - 0.5)) * (1 if v * 40 % 2 < 1 else -1)
            length, start = 16 + 45 * u, end + way * 190 * (v - 0.35)
            y = sorted((start, start + way * length))
            stripe(part, "rubber", x - 0.2, x + 0.2, *y, level, 0.25)
    for u, v in scattered(7):  # along the way to the runway
        x, y = PAD_HALF + 4 + 110 * u, 5 * (v - 0.5)
        stripe(part, "rubber", x, x + 9 + 14 * v, y - 0.15, y + 0.15, level, 0.2)
    for u, v in scattered(16):
        blot(part, "oil", -90 + 150 * u, -80 + 60 * v, 0.5 + 1.2 * ((u + v) % 1), level)
    for u, v in scattered(9):
        blot(part, "oil", -90 + 40 * u, 40 + 95 * v, 0.6 + 1.8 * v, level)
    for u, v in scattered(6):
        blot(part, "oil", 5 * u - 2.5, 7 * v - 4.5, 0.3 + 0.4 * u, 2 * PAINT)
    return part


def verge():
    """Soil and grass that creep over the edges of the slabs and hide where they end."""
    part = Part("verge")
    inward, outward, level = 0.7, 1.5, APRON_LEVEL + PAINT
    west, _, south, north = RUNWAY
    low, high = TAXIWAY[2:]
    x_edges = [(APRON[0], -1, *APRON[2:]), (APRON[1], 1, APRON[2], low), (APRON[1], 1, high, APRON[3]),
               (west, -1, south, low), (west, -1, high, north), (RUNWAY[1], 1, south, north)]
    y_edges = [(APRON[2], -1, *APRON[:2]), (APRON[3], 1, *APRON[:2]),
               (low, -1, *TAXIWAY[:2]), (high, 1, *TAXIWAY[:2]),
               (south, -1, *RUNWAY[:2]), (north, 1, *RUNWAY[:2])]
    for at, out, a, b in x_edges:
        x = sorted((at - out * inward, at + out * outward))
        stripe(part, "verge", *x, a - outward, b + outward, level, 0.0)
    for at, out, a, b in y_edges:
        y = sorted((at - out * inward, at + out * outward))
        stripe(part, "verge", a - outward, b + outward, *y, level, 0.0)
    return part


def building(part, x0, x1, y0, y1, height, roof=0.0):
    """A house with a flat or a gabled roof, its ridge along Y, its foot in the ground."""
    base = GROUND_LEVEL - 0.3
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
    count = 21
    runway_lights = [(x, south + (north - south) * i / (count - 1)) for i in range(count)
                     for x in (west - 1.0, east + 1.0)]
    return pad_lights, runway_lights


def lamps():
    part = Part("lamps")
    pad_lights, runway_lights = lamp_places()
    for material, places in (("pad_light", pad_lights), ("runway_light", runway_lights)):
        for x, y in places:
            part.cylinder(material, (x, y, GROUND_LEVEL - 0.1), (x, y, 0.28), 0.12, 6)
    return part


def bent(point):
    """A point of the level drawing at its height above the ellipsoid."""
    x, y, z = point
    return (x, y, z - (x * x + y * y) / (2 * EARTH_RADIUS))


def parts():
    result = []
    for level in (pad(), apron(), verge(), markings(), traces(), buildings(), lamps()):
        part = Part(level.name)
        part.merge(level, bent)
        result.append(part)
    return result


def lights_prefab():
    """The file of the lights that shine over the lamps."""
    lines = ["# SPDX-License-Identifier: MIT",
             "# Lights of the pad's and the runway's edges, over the lamps of the airfield model, in",
             "# its frame. Written by tools/build_models.py.",
             "node:", "  name: runway_lights_root", "  children:"]
    materials = "data/PELMAR_PROJECT/materials"
    shine = {"pad": "intensity: 50, reach: 8", "runway": "intensity: 120, reach: 14"}
    for edge, places in zip(("pad", "runway"), lamp_places()):
        lines += [f"    - name: {edge}_edge", "      children:"]
        for x, y in places:
            position = ", ".join(f"{v:.6g}" for v in bent((x, y, 0.3)))
            lines.append(f"        - {{type: light, position: [{position}], {shine[edge]}, "
                         f"material: {materials}/{edge}_light.mat}}")
    return "\n".join([*lines, ""])
