# SPDX-License-Identifier: MIT
"""What the pilots see around them. The right-hand pilot's eye is at (0.5, 3.15, 0.85)."""

import math

from . import airframe
from .curves import rounded_rectangle
from .mesh import Part, add, flipped_x, lerp, rotate_x

INSET = 0.05          # of the lining in the skin
FLOOR = -0.34
PANEL_TILT = 12.0     # the panel's top leans away from the pilots, degrees
PANEL_ORIGIN = (0.0, 4.10, 0.32)  # middle of its face
SEATS = (-0.5, 0.5)


def lining(part):
    """The inside of the cabin's walls, the bulkhead and the floor."""
    first = airframe.STATIONS.index(airframe.BULKHEAD)
    last = airframe.STATIONS.index(5.2)
    rings = [airframe.ring(y, INSET) for y in airframe.STATIONS[first:last + 1]]
    walls = Part("walls")
    walls.loft(rings, lambda i, j: None if airframe.opening(i + first, j) else "cockpit_lining",
               close=False)
    for material, (a, b, c) in walls.triangles:  # seen from inside
        part.triangles.append((material, (a, c, b)))
    cap(part, rings[0])          # the bulkhead faces forward
    cap(part, rings[-1][::-1])   # the end of the footwell faces back
    airframe.reveals(part, "cockpit_lining", INSET)
    edge = [(airframe.on_side(y, FLOOR)[0] - INSET, y, FLOOR)
            for y in airframe.STATIONS[first:last + 1] if y < 5.15]
    for a, b in zip(edge, edge[1:]):
        part.polygon("cockpit_floor", [flipped_x(a), a, b, flipped_x(b)])
    part.box("cockpit_floor", (0.8, 0.02, 1.5), (0, airframe.BULKHEAD + 0.02, 0.42))  # its door
    for side in (-1, 1):  # padded ledge below the side windows, with a grip
        part.beam("cockpit_lining", (side * 1.10, 2.60, 0.56), (side * 1.08, 3.95, 0.34), 0.12,
                  0.05)
        part.pipe("glare_shield", [(side * 1.04, 3.60, 0.62), (side * 0.99, 3.60, 0.68),
                                   (side * 0.96, 3.76, 0.66), (side * 1.01, 3.80, 0.60)], 0.014, 8)


def cap(part, ring):
    center = lerp(ring[0], ring[len(ring) // 2], 0.5)
    part.lens("cockpit_lining", ring, center)


def on_panel(u, v, lift=0.0):
    """A point of the instrument panel: u to the right, v up, `lift` towards the pilots."""
    return add(PANEL_ORIGIN, rotate_x((u, -lift, v), -PANEL_TILT))


def panel(part):
    """The instrument panel: a board with five displays, standby instruments and switches."""
    half, top, bottom = 1.01, 0.25, -0.36
    outline = [(-half, top), (-half, bottom), (half, bottom), (half, top)]
    face = [on_panel(u, v) for u, v in outline]
    part.polygon("panel_grey", face)
    back = [add(p, (0, 0.01, 0)) for p in face]
    part.polygon("glare_shield", back[::-1])  # seen from outside
    for a, b, c, d in zip(face, face[1:], back[1:], back):
        part.polygon("panel_grey", [b, a, d, c])
    for u in (-0.76, -0.49, 0.0, 0.49, 0.76):
        display(part, u, 0.075)
    for u in (-0.245, 0.245):
        standby(part, u, 0.15, 0.062)
        standby(part, u, -0.01, 0.062)
    for row in range(2):
        for k in range(15):
            u = -0.84 + 0.12 * k
            lit = (3 * k + 5 * row) % 7 == 0
            knob(part, on_panel, u, -0.16 - 0.07 * row, "screen_green" if lit else "glare_shield")
    for k in range(9):  # warning lights along the top
        u = -0.20 + 0.05 * k
        quad(part, "screen_amber" if k in (2, 6) else "window_dark", on_panel, u - 0.02, u + 0.02,
             0.222, 0.240, 0.004)


def display(part, u, v):
    """One display with its bezel, keys and picture."""
    size = 0.118
    outer = rounded_rectangle(u - size, u + size, v - size, v + size, 0.016)
    inner = rounded_rectangle(u - 0.096, u + 0.096, v - 0.096, v + 0.096, 0.006)
    front = [on_panel(a, b, 0.018) for a, b in outer]
    part.band("glare_shield", front, [on_panel(a, b, 0.018) for a, b in inner])
    part.band("glare_shield", [on_panel(a, b) for a, b in outer], front)
    part.band("glare_shield", [on_panel(a, b, 0.018) for a, b in inner],
              [on_panel(a, b, 0.008) for a, b in inner])
    for k in range(-3, 4):
        for edge in (-0.107, 0.107):
            x0, z0 = u + 0.025 * k, v + edge
            quad(part, "panel_grey", on_panel, x0 - 0.008, x0 + 0.008, z0 - 0.005, z0 + 0.005,
                 0.021)
    draw = attitude if abs(u) > 0.6 else engines if abs(u) < 0.1 else chart

    def at(a, b, lift=0.0):
        return on_panel(u + 0.094 * a, v + 0.094 * b, 0.009 + lift)

    draw(part, at)


def quad(part, material, at, u0, u1, v0, v1, lift=0.0):
    part.polygon(material, [at(u0, v0, lift), at(u1, v0, lift), at(u1, v1, lift), at(u0, v1, lift)])


def attitude(part, at):
    quad(part, "screen_blue", at, -1, 1, 0.1, 1)
    quad(part, "screen_brown", at, -1, 1, -1, 0.1)
    for v, w in ((0.55, 0.3), (0.32, 0.18), (-0.12, 0.18), (-0.34, 0.3)):
        quad(part, "screen_white", at, -w, w, v - 0.012, v + 0.012, 0.001)
    quad(part, "screen_white", at, -1, 1, 0.09, 0.115, 0.001)
    quad(part, "screen_amber", at, -0.5, -0.14, -0.02, 0.03, 0.002)
    quad(part, "screen_amber", at, 0.14, 0.5, -0.02, 0.03, 0.002)
    for side in (-1, 1):  # speed and height tapes
        quad(part, "instrument", at, min(0.72 * side, 0.98 * side), max(0.72 * side, 0.98 * side),
             -0.8, 0.8, 0.001)
        for k in range(7):
            x0, x1 = sorted((0.72 * side, 0.82 * side))
            quad(part, "screen_white", at, x0, x1, -0.66 + 0.22 * k, -0.64 + 0.22 * k, 0.002)


def ring_line(part, material, at, radius, width=0.03, lift=0.001, sides=24):
    turns = [2 * math.pi * k / sides for k in range(sides)]
    part.band(material, [at(radius * math.cos(t), radius * math.sin(t), lift) for t in turns],
              [at((radius - width) * math.cos(t), (radius - width) * math.sin(t), lift)
               for t in turns])


def chart(part, at):
    """Range rings, own track and a few contacts."""
    quad(part, "instrument", at, -1, 1, -1, 1)
    for radius in (0.35, 0.65, 0.95):
        ring_line(part, "screen_green", at, radius, 0.02)
    quad(part, "screen_green", at, -0.01, 0.01, 0, 0.95, 0.001)
    for u, v, material in ((0.4, 0.5, "screen_amber"), (-0.5, 0.3, "screen_white"),
                           (-0.2, -0.6, "screen_white"), (0.6, -0.3, "screen_amber")):
        quad(part, material, at, u - 0.05, u + 0.05, v - 0.05, v + 0.05, 0.002)


def engines(part, at):
    """Bars of torque, temperature and rotor speed."""
    quad(part, "instrument", at, -1, 1, -1, 1)
    for k, (height, material) in enumerate(((0.9, "screen_green"), (0.86, "screen_green"),
                                            (1.2, "screen_amber"), (1.15, "screen_green"),
                                            (1.4, "screen_green"), (1.38, "screen_green"))):
        u = -0.75 + 0.27 * k
        quad(part, material, at, u, u + 0.12, -0.75, -0.75 + height, 0.001)
        quad(part, "screen_white", at, u - 0.04, u + 0.16, 0.72, 0.75, 0.002)
    for k in range(3):
        quad(part, "screen_white", at, -0.8 + 0.55 * k, -0.45 + 0.55 * k, -0.92, -0.86, 0.001)


def standby(part, u, v, radius):
    """A round instrument with a needle."""
    def at(a, b, lift=0.0):
        return on_panel(u + radius * a, v + radius * b, 0.004 + lift)

    turns = [2 * math.pi * k / 24 for k in range(24)]
    part.lens("window_dark", [at(math.cos(t), math.sin(t)) for t in turns], at(0, 0))
    ring_line(part, "panel_grey", at, 1.08, 0.12, 0.006, 24)
    for k in range(12):
        t = math.radians(30 * k)
        c, s = math.cos(t), math.sin(t)
        part.polygon("screen_white", [at(a * c - b * s, a * s + b * c, 0.001) for a, b in
                                      ((0.72, -0.03), (0.88, -0.03), (0.88, 0.03), (0.72, 0.03))])
    c, s = math.cos(2.1 + 9 * u), math.sin(2.1 + 9 * u)
    part.polygon("screen_white", [at(a * c - b * s, a * s + b * c, 0.002) for a, b in
                                  ((-0.2, -0.05), (0.7, -0.015), (0.7, 0.015), (-0.2, 0.05))])


def knob(part, place, u, v, material, size=0.011):
    """A push button or a rotary knob standing out of a surface."""
    foot, top = ([place(u + a * k * size, v + b * k * size, lift)
                  for a, b in ((-1, -1), (1, -1), (1, 1), (-1, 1))]
                 for k, lift in ((1.25, 0.0), (1.0, 0.014)))
    part.polygon(material, top)
    for i in range(4):
        j = (i + 1) % 4
        part.polygon("panel_grey", [foot[i], foot[j], top[j], top[i]])


def glare_shield(part):
    """The hood over the panel: rolled edge towards the pilots, falling away to the windscreen."""
    half = [(1.02, 0.0), (0.62, 0.0), (0.30, 0.025), (0.0, 0.03)]
    across = half[:-1] + [(0.0, 0.03)] + [(-x, z) for x, z in reversed(half[:-1])]
    lines = [(3.985, 0.535, 1.0), (3.965, 0.560, 1.0), (3.985, 0.590, 1.0), (4.06, 0.604, 0.995),
             (4.30, 0.590, 0.955), (4.60, 0.555, 0.87), (4.655, 0.520, 0.80), (4.66, 0.45, 0.80)]
    rows = [[(x * w, y, z + dz * (1 if y < 4.5 else 0.3)) for x, dz in across]
            for y, z, w in lines]
    for low, high in zip(rows, rows[1:]):
        for i in range(len(across) - 1):
            part.polygon("glare_shield", [low[i + 1], low[i], high[i], high[i + 1]])
    under = [(x, 4.16, z - 0.01) for x, _, z in rows[0]]
    for i in range(len(across) - 1):
        part.polygon("glare_shield", [under[i + 1], under[i], rows[0][i], rows[0][i + 1]])
    part.polygon("glare_shield", [under[0], *(row[0] for row in rows)][::-1])
    part.polygon("glare_shield", [under[-1], *(row[-1] for row in rows)])
    skirt = Part("skirt")  # closes the hood towards the quarter windows
    edge = [row[0] for row in rows[3:]]
    for a, b in zip(edge, edge[1:]):
        skirt.polygon("glare_shield", [(a[0], a[1], 0.44), (b[0], b[1], 0.44), b, a])
    part.merge_both_sides(skirt)


def on_console(u, v, lift=0.0):
    """A point of the centre console's top: u to the right, v along it from the rear."""
    return (u, 3.05 + v, 0.02 + 0.10 * v + lift)


def console(part):
    """The pedestal between the seats: radio and navigation boxes, levers for the engines."""
    part.hexahedron("cockpit_lining", [(-0.21, 3.0, FLOOR), (0.21, 3.0, FLOOR), (0.21, 4.12, FLOOR),
                                       (-0.21, 4.12, FLOOR)],
                    [(-0.19, 3.05, 0.02), (0.19, 3.05, 0.02), (0.19, 4.10, 0.125),
                     (-0.19, 4.10, 0.125)])
    for box in range(4):
        v0 = 0.05 + 0.24 * box
        airframe.applied(part, on_console, "panel_grey", -0.17, 0.17, v0, v0 + 0.22, 0.01, 0.003)
        if box in (1, 3):
            airframe.applied(part, on_console, "instrument", -0.14, 0.0, v0 + 0.13, v0 + 0.20,
                             0.006, 0.006)
        for row in range(4 if box in (0, 2) else 2):
            for k in range(6):
                knob(part, on_console, -0.135 + 0.054 * k, v0 + 0.035 + 0.05 * row,
                     "screen_green" if (k + row + box) % 5 == 0 else "glare_shield", 0.013)
    for x in (-0.05, 0.05):
        part.pipe("heli_metal", [(x, 3.62, 0.07), (x, 3.60, 0.20)], 0.010, 8)
        part.ellipsoid("screen_amber", (x, 3.60, 0.215), (0.022, 0.022, 0.022), 6, 10)


def overhead(part):
    """Switch panel between the roof's panes."""
    def place(u, v, lift=0.0):  # seen from below: u to the right when looking forward and up
        return (u, 2.80 + v, 1.425 - 0.05 * v - lift)

    part.hexahedron("cockpit_lining", [place(-0.17, 0.0), place(0.17, 0.0), place(0.15, 0.80),
                                       place(-0.15, 0.80)],
                    [(-0.19, 2.78, 1.50), (0.19, 2.78, 1.50), (0.17, 3.64, 1.50),
                     (-0.17, 3.64, 1.50)])

    def down(u, v, lift=0.0):
        return place(-u, v, lift)

    for block in range(3):
        v0 = 0.03 + 0.25 * block
        airframe.applied(part, down, "panel_grey", -0.14, 0.14, v0, v0 + 0.23, 0.01, 0.003)
        for row in range(3):
            for k in range(5):
                knob(part, down, -0.11 + 0.055 * k, v0 + 0.045 + 0.07 * row,
                     "screen_green" if (2 * k + row + block) % 9 == 0 else "glare_shield", 0.010)
    for x in (-0.06, 0.06):  # fire handles
        part.pipe("light_red", [(x, 3.50, 1.385), (x, 3.47, 1.345)], 0.016, 8)
    part.ellipsoid("glare_shield", (0, 4.10, 1.005), (0.05, 0.045, 0.05), 8, 12)  # standby compass
    part.cylinder("instrument", (0, 4.068, 1.005), (0, 4.052, 1.005), 0.030, 14)
    part.pipe("glare_shield", [(0, 4.11, 1.03), (0, 4.15, 1.08)], 0.012, 6)


def seat(part, x):
    """An armoured seat with cushions, head-rest and harness."""
    def block(material, width, profile, chamfer=0.03):
        """A cushion: a profile in (y, z) across the seat, narrower at its ends."""
        def at(half, shrink):
            cy = sum(p[0] for p in profile) / len(profile)
            cz = sum(p[1] for p in profile) / len(profile)
            return [(x + half, cy + (y - cy) * shrink, cz + (z - cz) * shrink) for y, z in profile]

        w = width / 2
        part.solid(material, [at(-w, 0.84), at(-w + chamfer, 1.0), at(w - chamfer, 1.0),
                              at(w, 0.84)])

    block("cockpit_lining", 0.52, [(2.66, FLOOR + 0.12), (3.20, FLOOR + 0.12), (3.24, 0.0),
                                   (2.70, 0.0)])
    block("seat", 0.50, [(2.72, 0.0), (3.24, 0.02), (3.30, 0.06), (3.26, 0.11), (2.74, 0.07)], 0.05)
    block("cockpit_lining", 0.54, [(2.60, -0.05), (2.68, -0.05), (2.64, 0.78), (2.58, 0.78)])
    block("seat", 0.46, [(2.69, 0.06), (2.80, 0.10), (2.77, 0.45), (2.72, 0.72), (2.64, 0.72)],
          0.05)
    block("seat", 0.26, [(2.62, 0.76), (2.70, 0.76), (2.69, 1.00), (2.64, 1.03), (2.60, 1.0)], 0.04)
    for side in (-1, 1):
        wing = [(2.62, 0.0), (2.98, 0.0), (2.98, 0.16), (2.74, 0.66), (2.62, 0.66)]
        part.solid("cockpit_lining", [[(x + side * k, y, z) for y, z in wing]
                                      for k in (0.26, 0.285)])
        strap = [(x + side * 0.10, 2.70, 0.745), (x + side * 0.10, 2.785, 0.52),
                 (x + side * 0.05, 2.86, 0.24), (x + side * 0.02, 2.93, 0.125)]
        for a, b in zip(strap, strap[1:]):
            part.beam("harness", a, b, 0.045, 0.012)
    for rail in (-0.16, 0.16):
        part.box("heli_metal", (0.04, 0.62, 0.10), (x + rail, 2.94, FLOOR + 0.05))


def controls(part, x):
    """Cyclic stick, collective lever and pedals of one pilot."""
    part.lathe("glare_shield", [(0.075, FLOOR), (0.06, FLOOR + 0.05), (0.028, FLOOR + 0.11),
                                (0.0, FLOOR + 0.12)], 14, lambda p: add(p, (x, 3.52, 0)))
    part.pipe("heli_metal", [(x, 3.52, FLOOR + 0.10), (x, 3.56, -0.05), (x, 3.46, 0.12),
                             (x, 3.45, 0.18)], 0.016, 10)
    part.pipe("glare_shield", [(x, 3.45, 0.16), (x, 3.435, 0.24), (x, 3.45, 0.30)], 0.026, 12)
    part.ellipsoid("glare_shield", (x, 3.452, 0.315), (0.036, 0.034, 0.030), 6, 12)
    part.box("light_red", (0.014, 0.012, 0.014), (x + 0.018, 3.428, 0.322))
    part.box("panel_grey", (0.016, 0.012, 0.016), (x - 0.012, 3.424, 0.322))
    lever = x - 0.36
    part.pipe("heli_metal", [(lever, 2.72, -0.20), (lever, 3.06, -0.02)], 0.018, 10)
    part.pipe("glare_shield", [(lever, 3.04, -0.03), (lever, 3.22, 0.065)], 0.027, 12)
    part.box("glare_shield", (0.075, 0.07, 0.06), (lever, 3.25, 0.085))
    for dx in (-0.02, 0.02):
        part.box("panel_grey", (0.014, 0.014, 0.012), (lever + dx, 3.245, 0.120))
    for side in (-1, 1):
        px = x + side * 0.14
        part.pipe("heli_metal", [(px, 4.32, FLOOR), (px, 4.24, -0.10)], 0.014, 8)
        part.beam("glare_shield", (px, 4.17, -0.17), (px, 4.24, -0.02), 0.12, 0.02)


def cockpit():
    part = Part("cockpit")
    lining(part)
    panel(part)
    glare_shield(part)
    console(part)
    overhead(part)
    for x in SEATS:
        seat(part, x)
        controls(part, x)
    return part
