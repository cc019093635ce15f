# SPDX-License-Identifier: MIT
"""What ships are made of: hull forms, houses with panels on their walls, and deck fittings.

A ship's origin is the middle of its still waterline; the bow points along +Y.
"""

import math

from .curves import rounded_rectangle, table
from .mesh import Part, add, cross, dot, lerp, mirrored, normalize, scale, sub

LEVELS = (0.8, 0.6, 0.4, 0.2)          # lines of the topsides, as fractions from 0.7 m to the deck
BOOT_TOP = (0.7, -0.35)                # the black stripe at the waterline, metres
DEPTHS = (0.25, 0.5, 0.72, 0.88, 0.96)  # lines of the underwater hull, as fractions of its depth


class Hull:
    """A hull over a table of stations: y, half-widths of deck and waterline, heights of deck and
    keel, and the fullness of the bilge (2 is round, 8 nearly square)."""

    def __init__(self, rows, stations):
        self.at, self.stations = table(rows), stations

    def half(self, y):
        """Right half of the section at a station, from the deck's middle to the keel."""
        deck, water, top, keel, full = self.at(y)
        low = max(keel, BOOT_TOP[0])
        heights = [top, *(low + f * (top - low) for f in LEVELS), *BOOT_TOP,
                   *(min(f * keel, BOOT_TOP[1]) for f in DEPTHS), keel]

        def width(z):
            if z <= keel:
                return 0.0
            if z >= 0:
                floor = max(keel, 0.0)
                start = water if keel < 0 else 0.0
                return start + (deck - start) * ((z - floor) / (top - floor)) ** 1.35
            return water * (1 - (z / keel) ** full) ** (1 / full)

        heights = [max(z, keel) for z in heights]
        return [(0, y, top), *((width(z), y, z) for z in heights), (0, y, keel)]

    def skin(self, paint):
        """`paint` names the materials of deck, topsides, stripe and bottom."""
        part = Part("hull")
        lines = len(self.half(0)) - 1
        stripe = 1 + len(LEVELS) + 1

        def material(_, side):
            line = min(side, 2 * lines - 1 - side)
            return paint[0 if line == 0 else 1 if line < stripe else 2 if line == stripe else 3]

        rings = [mirrored(self.half(y)) for y in self.stations]
        part.loft(rings, material, close=False)
        part.cap(paint[1], rings[0][::-1])  # the transom
        part.cap(paint[1], rings[-1])
        return part

    def edge(self, y, inboard=0.0, above=0.0):
        """A point of the right deck edge."""
        _, p = self.half(y)[:2]
        return (p[0] - inboard, y, p[2] + above)

    def side(self, u, v, y, lift=0.02):
        """A point of the right topside: u metres towards the bow from y, at height v."""
        deck, water, top, _, _ = self.at(y + u)
        return (water + (deck - water) * (v / top) ** 1.35 + lift, y + u, v)


def octagon(x, y0, y1, front=0.0, rear=0.0):
    """A plan of half-width x with cut corners, counter-clockwise from the rear left; a corner that
    is not cut is one point."""
    points = [(-x + rear, y0), (x - rear, y0), (x, y0 + rear), (x, y1 - front), (x - front, y1),
              (-x + front, y1), (-x, y1 - front), (-x, y0 + rear)]
    return [p for i, p in enumerate(points[:-1]) if i == 0 or p != points[i - 1]] + [
        p for p in points[-1:] if p != points[0]]


class Face:
    """A flat wall, on which panels are placed by metres to the right and up from its lower left
    corner as seen from outside."""

    def __init__(self, a, b, top_b, top_a):
        self.origin, self.right = a, normalize(sub(b, a))
        self.out = normalize(cross(self.right, sub(top_a, a)))
        self.up = cross(self.out, self.right)
        self.width, self.height = math.dist(a, b), dot(sub(top_a, a), self.up)

    def __call__(self, u, v, lift=0.0):
        return add(self.origin, add(scale(self.right, u), add(scale(self.up, v),
                                                              scale(self.out, lift))))


def block(part, material, low, high, z0, z1):
    """A house between two plans of equally many corners; answers its walls, in the plans' order."""
    bottom, top = [(*p, z0) for p in low], [(*p, z1) for p in high]
    part.polygon("ship_deck" if material == "ship_grey" else material, top)
    part.polygon(material, bottom[::-1])
    walls = []
    for i in range(len(low)):
        j = (i + 1) % len(low)
        part.polygon(material, [bottom[i], bottom[j], top[j], top[i]])
        walls.append(Face(bottom[i], bottom[j], top[j], top[i]))
    return walls


def sloped(part, x, y0, y1, z0, z1, slope=0.12, front=0.0, rear=0.0, rake=None,
           material="ship_grey"):
    """A house with cut corners whose walls lean inwards by `slope` metres a metre, the front one by
    `rake`. Answers its walls: rear, then round by the right side."""
    inset = slope * (z1 - z0)
    lean = inset if rake is None else rake * (z1 - z0)
    return block(part, material, octagon(x, y0, y1, front, rear),
                 octagon(x - inset, y0 + inset, y1 - lean, front, rear), z0, z1)


def panel(part, face, material, u0, u1, v0, v1, lift=0.03):
    part.polygon(material, [face(u0, v0, lift), face(u1, v0, lift), face(u1, v1, lift),
                            face(u0, v1, lift)])


def windows(part, face, v0, v1, gap=0.18, width=1.1, margin=0.35):
    """A row of panes along a wall, on a dark band."""
    room = face.width - 2 * margin
    count = max(1, round(room / (width + gap)))
    step = room / count
    panel(part, face, "ship_dark", margin - 0.12, face.width - margin + 0.12, v0 - 0.12, v1 + 0.12)
    for k in range(count):
        u = margin + step * k
        panel(part, face, "window_dark", u + gap / 2, u + step - gap / 2, v0, v1, 0.06)


def door(part, face, u, v=0.25, width=0.85, height=1.9):
    outer = rounded_rectangle(u, u + width, v, v + height, 0.15, 2)
    inner = rounded_rectangle(u + 0.07, u + width - 0.07, v + 0.07, v + height - 0.07, 0.10, 2)
    part.band("ship_dark", [face(a, b, 0.05) for a, b in outer],
              [face(a, b, 0.05) for a, b in inner])
    part.polygon("ship_light", [face(a, b, 0.03) for a, b in inner])
    panel(part, face, "ship_dark", u + 0.66 * width, u + 0.72 * width, v + 0.5 * height - 0.15,
          v + 0.5 * height + 0.15, 0.06)


def portholes(part, face, v, u0, u1, step=2.2, radius=0.17):
    """A row of round windows; behind two of three somebody has light at night."""
    for k in range(int((u1 - u0) / step) + 1):
        u = u0 + step * k
        turns = [2 * math.pi * n / 10 for n in range(10)]
        rims = [[face(u + r * math.cos(t), v + r * math.sin(t), 0.03) for t in turns]
                for r in (radius + 0.05, radius)]
        part.band("ship_dark", *rims)
        part.polygon("window_dark" if k % 3 == round(v * 10) % 3 else "porthole", rims[1])


def louvres(part, face, u0, u1, v0, v1, step=0.30):
    panel(part, face, "ship_dark", u0, u1, v0, v1)
    for k in range(int((v1 - v0) / step)):
        v = v0 + step * (k + 0.3)
        part.polygon("ship_grey", [face(u0 + 0.05, v, 0.10), face(u1 - 0.05, v, 0.10),
                                   face(u1 - 0.05, v + 0.5 * step, 0.04),
                                   face(u0 + 0.05, v + 0.5 * step, 0.04)])


def rod(part, material, a, b, radius):
    """A thin bar of three sides without ends."""
    part.pipe(material, [a, b], radius, 3, hollow=True)


def railing(part, points, height=1.05, step=2.0, wires=(1.0, 0.66, 0.33)):
    """Stanchions with wires along a line on deck."""
    posts = [points[0]]
    for a, b in zip(points, points[1:]):
        count = max(1, round(math.dist(a, b) / step))
        posts += [lerp(a, b, (k + 1) / count) for k in range(count)]
    for p in posts:
        rod(part, "ship_grey", p, add(p, (0, 0, height)), 0.035)
    for level in wires:
        for a, b in zip(points, points[1:]):
            rod(part, "ship_grey", add(a, (0, 0, level * height)), add(b, (0, 0, level * height)),
                0.02)


def both_sides(points):
    return points, [(-x, y, z) for x, y, z in points][::-1]


def deck_rails(part, hull, ys, inboard=0.25):
    for line in both_sides([hull.edge(y, inboard) for y in ys]):
        railing(part, line)


def ladder(part, face, u, v0, v1):
    for side in (0.0, 0.4):
        rod(part, "ship_dark", face(u + side, v0, 0.15), face(u + side, v1, 0.15), 0.03)
    for k in range(int((v1 - v0) / 0.35)):
        v = v0 + 0.35 * (k + 0.5)
        rod(part, "ship_dark", face(u, v, 0.15), face(u + 0.4, v, 0.15), 0.02)


def net(part, x, y0, y1, z, out=1.5, step=2.3):
    """A safety net beside a flight deck, folded out on the right and on the left."""
    right = Part("net")
    count = round((y1 - y0) / step)
    for k in range(count + 1):
        y = y0 + (y1 - y0) * k / count
        rod(right, "ship_dark", (x, y, z - 0.12), (x + out, y, z + 0.08), 0.05)
    for f in (0.25, 0.5, 0.75, 1.0):
        rod(right, "ship_dark", (x + out * f, y0, z - 0.12 + 0.2 * f),
            (x + out * f, y1, z - 0.12 + 0.2 * f), 0.03 if f < 1 else 0.05)
    part.merge_both_sides(right)


def mast(part, y, z0, z1, base, top):
    """A plated mast of eight sides; answers its walls."""
    return block(part, "ship_grey", octagon(base, y - base, y + base, 0.45 * base, 0.45 * base),
                 octagon(top, y - top, y + top, 0.45 * top, 0.45 * top), z0, z1)


def array_face(part, face, v, size):
    """A fixed radar array on a wall: a dark frame with a paler face."""
    u = face.width / 2
    cut = 0.28 * size
    outline = [(-size + cut, -size), (size - cut, -size), (size, -size + cut), (size, size - cut),
               (size - cut, size), (-size + cut, size), (-size, size - cut), (-size, -size + cut)]
    part.polygon("ship_dark", [face(u + 1.1 * a, v + 1.1 * b, 0.04) for a, b in outline])
    part.polygon("radome", [face(u + a, v + b, 0.08) for a, b in outline])


def bar_radar(part, at, length):
    """A rotating bar on its pedestal."""
    x, y, z = at
    part.cylinder("ship_grey", (x, y, z), (x, y, z + 0.7), 0.22, 12)
    part.box("radome", (length, 0.28, 0.30), (x, y, z + 0.85))


def dome(part, at, radius, material="radome"):
    """A satellite aerial's radome on a stub."""
    x, y, z = at
    part.cylinder("ship_grey", (x, y, z), (x, y, z + 0.5 * radius), 0.45 * radius, 12)
    profile = [(0.62 * radius, 0.35 * radius)]
    profile += [(radius * math.cos(t), radius * (1.15 + math.sin(t)))
                for t in (math.radians(-50 + 28 * k) for k in range(6))]
    part.lathe(material, [(0.0, 0.35 * radius), *profile[1:-1], (0.0, 2.15 * radius)], 18,
               lambda p: add(p, at))


def whip(part, at, height, lean=0.0):
    rod(part, "ship_dark", at, add(at, (0, lean, height)), 0.05)


def yard(part, y, z, half):
    part.pipe("ship_grey", [(-half, y, z + 0.5), (0, y, z), (half, y, z + 0.5)], 0.12, 6)
    for x in (-half, -0.6 * half, 0.6 * half, half):
        dz = 0.5 * abs(x) / half
        part.cylinder("ship_dark", (x, y, z + dz), (x, y, z + dz + 0.9), 0.10, 8)


def gun(part, y, z, size):
    """A faceted turret with its barrel, on a barbette."""
    s = size
    part.cylinder("ship_grey", (0, y, z), (0, y, z + 0.22 * s), 0.72 * s, 20)
    low = [(-0.55, -0.75), (0.55, -0.75), (0.68, -0.1), (0.38, 0.85), (-0.38, 0.85), (-0.68, -0.1)]
    high = [(-0.30, -0.55), (0.30, -0.55), (0.36, -0.1), (0.16, 0.30), (-0.16, 0.30), (-0.36, -0.1)]
    block(part, "ship_light", [(s * a, y + s * b) for a, b in low],
          [(s * a, y + s * b) for a, b in high], z + 0.22 * s, z + 1.0 * s)
    muzzle = add((0, y + 0.6 * s, z + 0.62 * s), (0, 1.75 * s, 0.24 * s))
    part.cone("ship_dark", (0, y + 0.5 * s, z + 0.605 * s), (0, y + 1.0 * s, z + 0.675 * s),
              0.13 * s, 0.09 * s, 12)
    part.cone("ship_dark", (0, y + 0.9 * s, z + 0.66 * s), muzzle, 0.055 * s, 0.04 * s, 10)


def close_in_gun(part, at, heading=1):
    """A small automatic gun with its tracking radar; `heading` 1 looks ahead, -1 astern."""
    x, y, z = at
    part.cylinder("ship_grey", (x, y, z), (x, y, z + 0.5), 0.9, 16)
    part.hexahedron("ship_grey", [(x - 0.6, y - 0.6, z + 0.5), (x + 0.6, y - 0.6, z + 0.5),
                                  (x + 0.6, y + 0.6, z + 0.5), (x - 0.6, y + 0.6, z + 0.5)],
                    [(x - 0.45, y - 0.5, z + 1.6), (x + 0.45, y - 0.5, z + 1.6),
                     (x + 0.45, y + 0.4, z + 1.6), (x - 0.45, y + 0.4, z + 1.6)])
    part.lathe("radome", [(0.40, 1.6), (0.42, 2.2), (0.34, 2.55), (0.18, 2.75), (0.0, 2.8)], 14,
               lambda p: add(p, (x, y, z)))
    for dx in (-0.09, 0.09):
        part.cylinder("ship_dark", (x + dx, y + 0.3 * heading, z + 1.15),
                      (x + dx, y + 2.2 * heading, z + 1.3), 0.06, 8)


def hatches(part, x, y0, y1, z, columns, rows):
    """A battery of vertical launch cells: a low coaming with a lid for each cell."""
    part.box("ship_light", (2 * x, y1 - y0, 0.5), (0, (y0 + y1) / 2, z + 0.25))
    dx, dy = 2 * x / columns, (y1 - y0) / rows
    for i in range(columns):
        for j in range(rows):
            cx, cy = -x + dx * (i + 0.5), y0 + dy * (j + 0.5)
            u, v = 0.40 * dx, 0.40 * dy
            part.hexahedron("ship_grey", [(cx - u, cy - v, z + 0.5), (cx + u, cy - v, z + 0.5),
                                          (cx + u, cy + v, z + 0.5), (cx - u, cy + v, z + 0.5)],
                            [(cx - 0.85 * u, cy - 0.85 * v, z + 0.62),
                             (cx + 0.85 * u, cy - 0.85 * v, z + 0.62),
                             (cx + 0.85 * u, cy + 0.85 * v, z + 0.62),
                             (cx - 0.85 * u, cy + 0.85 * v, z + 0.62)])


def tubes(part, at, out, count, length, radius, material="ship_grey"):
    """A rack of launching tubes side by side along Y, pointing along `out`."""
    for k in range(count):
        a = add(at, (0, 2.3 * radius * (k - (count - 1) / 2), 0))
        b = add(a, scale(normalize(out), length))
        part.cylinder(material, a, b, radius, 10)
        part.cylinder("ship_dark", lerp(a, b, 0.98), lerp(a, b, 1.005), 0.8 * radius, 10)


def rafts(part, x, y, z, count, step=1.7):
    """Life-raft canisters on cradles along the right and the left side."""
    right = Part("rafts")
    for k in range(count):
        at = (x, y + step * k, z + 0.55)
        right.lathe("ship_white", [(0.0, -0.65), (0.26, -0.62), (0.33, -0.5), (0.33, 0.5),
                                   (0.26, 0.62), (0.0, 0.65)], 12,
                    lambda p, at=at: add((p[0], p[2], -p[1]), at))
        for dy in (-0.4, 0.4):
            right.box("ship_dark", (0.6, 0.08, 0.25), (x, at[1] + dy, z + 0.13))
    part.merge_both_sides(right)


def boat(part, at, length, beam):
    """A rigid inflatable on its cradle: hull, collar, console and engine."""
    x, y, z = at
    half = length / 2
    sections = [(-1.0, 0.75, 0.05, 0.30), (-0.5, 0.85, 0.0, 0.30), (0.2, 0.80, 0.0, 0.32),
                (0.7, 0.50, 0.12, 0.40), (0.98, 0.08, 0.38, 0.52)]
    part.solid("ship_dark", [[(x - 0.5 * beam * w, y + half * t, z + top),
                              (x, y + half * t, z + top),
                              (x + 0.5 * beam * w, y + half * t, z + top),
                              (x, y + half * t, z + keel)] for t, w, keel, top in sections])
    collar = [(-1.02, 0.42, 0.42), (0.1, 0.44, 0.44), (0.6, 0.36, 0.52), (0.95, 0.10, 0.64)]
    line = [(x + beam * w, y + half * t, z + h) for t, w, h in collar]
    line += [(x - beam * w, y + half * t, z + h) for t, w, h in reversed(collar)]
    part.pipe("boat_orange", line, 0.11 * beam, 10)
    part.box("ship_grey", (0.35 * beam, 0.9, 0.7), (x, y - 0.1 * length, z + 0.65))
    part.box("ship_dark", (0.3 * beam, 0.5, 0.8), (x, y - 0.52 * length, z + 0.55))
    for t in (-0.5, 0.4):
        part.box("ship_dark", (0.8 * beam, 0.15, 0.35), (x, y + half * t, z - 0.12))


def davit(part, x, y, z, side):
    """The crane beside a boat."""
    part.cylinder("ship_grey", (x, y, z), (x, y, z + 2.4), 0.22, 12)
    part.beam("ship_grey", (x, y, z + 2.3), (x + 2.6 * side, y + 1.2, z + 3.5), 0.25, 0.32)
    rod(part, "ship_dark", (x + 2.5 * side, y + 1.15, z + 3.4), (x + 2.5 * side, y + 1.15, z + 1.0),
        0.02)


def anchor_gear(part, hull, y, z):
    """Capstans, chains, bollards and fairleads of the foredeck, and anchors in their hawses."""
    half = Part("anchor")
    half.lathe("ship_dark", [(0.42, 0.0), (0.42, 0.12), (0.28, 0.22), (0.28, 0.62), (0.40, 0.78),
                             (0.0, 0.80)], 14, lambda p: add(p, (1.0, y, z)))
    rod(half, "ship_dark", (0.95, y + 0.3, z + 0.1), (0.75, y + 5.2, z + 0.12), 0.09)
    for dy in (-6.0, 3.6):
        at = hull.edge(y + dy, 0.9)
        for step in (0.0, 0.7):
            half.cylinder("ship_dark", add(at, (0, step, -0.05)), add(at, (0, step, 0.55)), 0.14,
                          10)

    def place(u, v, lift):
        return hull.side(u, v, y + 3.0, lift)

    half.polygon("ship_dark", [place(u, v, 0.06) for u, v in
                               ((-0.9, 4.6), (0.9, 4.6), (0.9, 6.0), (-0.9, 6.0))])
    half.beam("ship_black", place(0, 4.2, 0.18), place(0, 5.9, 0.22), 0.25, 0.25)
    half.beam("ship_black", place(-0.8, 4.5, 0.22), place(0.8, 4.5, 0.22), 0.25, 0.30)
    part.merge_both_sides(half)


def flag_staff(part, at, height):
    x, y, z = at
    part.pipe("ship_dark", [(x, y, z), (x, y, z + height)], 0.06, 8)


def flag(name, material, length, width):
    """A cloth that streams from its staff along X, hanging from the pivot downwards; its material is
    seen from both sides."""
    part = Part(name)
    columns, rows = 12, 4

    def at(i, j):
        u, v = i / columns, j / rows
        wave = 0.16 * length * u * math.sin(7.5 * u - 1.2 * v) * 0.5
        return (length * u, wave, -width * v - 0.10 * length * u * u)

    for i in range(columns):
        for j in range(rows):
            part.polygon(material, [at(i + 1, j + 1), at(i, j + 1), at(i, j), at(i + 1, j)])
    return part


def flight_deck(x, y0, y1, top, thickness):
    """The landing deck with its circle, lines and touch-down grid: the part's top is flat at `top`,
    the paint lies 1 cm above it."""
    deck, paint = Part("deck"), Part("deck_markings")
    deck.box("ship_deck", (2 * x, y1 - y0, thickness), (0, (y0 + y1) / 2, top - thickness / 2))
    level = top + 0.01
    middle = (y0 + y1) / 2

    def line(x0, x1, v0, v1, material="marking_white"):
        paint.rectangle(material, x0, x1, v0, v1, level)

    def circle(inner, outer, material, sides=64):
        paint.disc(material, inner, outer, 0, sides, lambda p: (p[0], p[1] + middle, level))

    circle(5.2, 5.55, "marking_white")
    circle(2.55, 2.75, "marking_yellow")
    for side in (-1, 1):
        edge = side * (x - 0.55)
        line(edge - 0.1, edge + 0.1, y0 + 0.6, y1 - 1.2)
    line(-x + 0.65, x - 0.65, y0 + 0.6, y0 + 0.8)
    line(-x + 0.65, x - 0.65, y1 - 1.4, y1 - 1.2)
    line(-0.12, 0.12, y0 + 0.8, middle - 5.55)      # the approach line, broken by the circles
    line(-0.12, 0.12, middle + 5.55, y1 - 1.4)
    for side in (-1, 1):                            # lining-up lines across the circle
        line(*sorted((side * 2.75, side * 5.2)), middle - 0.12, middle + 0.12)
        line(*sorted((side * 5.55, side * (x - 0.65))), middle - 0.12, middle + 0.12)
    letter_h(line, middle)
    grid = y1 - 6.0                                 # hauling-down tracks towards the hangar
    for side in (-1, 1):
        line(side * 1.6 - 0.08, side * 1.6 + 0.08, middle + 5.9, grid + 4.4, "marking_yellow")
    ring_bolts(paint, x, y0, y1, middle, level)
    return deck, paint


def letter_h(line, middle):
    for side in (-1, 1):
        line(side * 0.85 - 0.2, side * 0.85 + 0.2, middle - 1.5, middle + 1.5)
    line(-0.65, 0.65, middle - 0.2, middle + 0.2)


def ring_bolts(paint, x, y0, y1, middle, level):
    """Tie-down points, on a grid of 3 m, clear of the paint."""
    for i in range(-2, 3):
        for j in range(int((y1 - y0 - 4) / 3)):
            cx, cy = 3.0 * i + 0.45, y0 + 2.3 + 3.0 * j
            radius = math.hypot(cx, cy - middle)
            if abs(cx) > x - 1.2 or 4.9 < radius < 5.9 or radius < 3.1 or abs(cy - middle) < 0.5:
                continue
            turns = [2 * math.pi * k / 8 for k in range(8)]
            paint.polygon("ship_dark", [(cx + 0.13 * math.cos(t), cy + 0.13 * math.sin(t), level)
                                        for t in turns])


def deck_lights(part, x, y0, y1, z):
    """Lamps along a flight deck's edges."""
    for k in range(int((y1 - y0) / 4) + 1):
        y = y0 + 0.8 + (y1 - y0 - 1.6) * k / int((y1 - y0) / 4)
        for side in (-1, 1):
            part.lathe("light_green", [(0.10, 0.0), (0.09, 0.06), (0.0, 0.09)], 8,
                       lambda p, s=side, y=y: add(p, (s * (x + 0.25), y, z - 0.1)))


def hangar(part, face, doors, width, height):
    """Roller doors with their ribs, and the bar above them with its fittings."""
    step = (face.width - width * doors) / (doors + 1)
    for n in range(doors):
        u0 = step + n * (width + step)
        panel(part, face, "ship_dark", u0 - 0.2, u0 + width + 0.2, 0.2, height + 0.2, 0.02)
        for k in range(12):
            v0, v1 = 0.2 + (height - 0.2) * k / 12, 0.2 + (height - 0.2) * (k + 0.94) / 12
            panel(part, face, "ship_light", u0, u0 + width, v0, v1, 0.06)
    panel(part, face, "ship_dark", 0.3 * face.width, 0.7 * face.width, height + 0.55, height + 0.85,
          0.1)
    for k in range(9):
        u = face.width * (0.32 + 0.045 * k)
        panel(part, face, "ship_light", u, u + 0.18, height + 0.62, height + 0.78, 0.14)


def approach_aids(part, path, status, bar, foot):
    """Housings of the lamps that guide a helicopter in, which face aft: the glide path indicator, the
    three of the deck status, and the horizon bar's post from its foot's height."""
    def lens(x, y, z):
        part.cylinder("window_dark", (x, y - 0.03, z), (x, y + 0.03, z), 0.16, 12)

    x, y, z = path
    part.box("ship_dark", (0.7, 0.5, 0.6), path)
    lens(x, y - 0.26, z)
    x, y, z = status
    part.box("ship_dark", (0.45, 0.3, 1.3), status)
    for dz in (-0.4, 0.0, 0.4):
        lens(x, y - 0.16, z + dz)
    x, y, z = bar
    part.cylinder("ship_grey", (x, y, foot), bar, 0.08, 8)
    part.ellipsoid("ship_dark", bar, (0.25, 0.2, 0.25), 8, 12)
