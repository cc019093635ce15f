# SPDX-License-Identifier: MIT
"""The naval helicopter: origin at its reference point, 1.22 m above the ground it stands on."""

import random

from .mesh import Part, add, mirrored, rotate_x, rotate_z, scale

GROUND = -1.22  # lowest points of the wheels
ROTOR_RADIUS = 8.0
TAIL_ROTOR_RADIUS = 1.55
BLADES = 5

# Fuselage sections from tail to nose: y, top, half-width of the flat roof, half-width at the belt,
# height of the belt and of the waist, height of the chine, bottom.
SECTIONS = [
    (-9.75, 1.62, 0.05, 0.16, 1.50, 1.35, 1.22, 1.15),
    (-6.80, 1.68, 0.18, 0.42, 1.42, 1.10, 0.82, 0.66),
    (-4.20, 1.62, 0.45, 0.88, 1.18, 0.55, 0.05, -0.18),
    (-2.90, 1.55, 0.72, 1.15, 1.02, 0.10, -0.42, -0.62),
    (-0.20, 1.50, 0.80, 1.22, 0.95, 0.00, -0.48, -0.70),
    (2.40, 1.50, 0.80, 1.22, 0.95, 0.00, -0.48, -0.70),
    (2.95, 1.50, 0.80, 1.21, 0.90, 0.00, -0.48, -0.70),
    (3.70, 1.50, 0.86, 1.18, 0.60, 0.00, -0.46, -0.69),
    (4.70, 0.50, 0.84, 1.00, 0.34, 0.02, -0.36, -0.60),
    (5.30, 0.27, 0.52, 0.72, 0.14, -0.05, -0.26, -0.44),
    (5.72, 0.04, 0.20, 0.28, -0.03, -0.10, -0.17, -0.24),
]
ROOF_REAR, ROOF_FRONT, SCREEN = 5, 7, 7  # first sections of the cockpit's roof and windscreen


def section_ring(y, top, roof, belt, z_belt, z_waist, z_chine, bottom, inset=0.0):
    """One ring of the fuselage, 14 points; `inset` shrinks it to the cockpit's lining."""
    half = [(0, top - inset), (roof - inset, top - inset),
            (0.45 * roof + 0.55 * belt - inset, 0.55 * top + 0.45 * z_belt),
            (belt - inset, z_belt), (belt - inset, z_waist), (0.88 * belt - inset, z_chine),
            (0.55 * belt, bottom + inset), (0, bottom + inset)]
    return mirrored([(x, y, z) for x, z in half])


def opening(section, side):
    """Which pane fills a panel of the fuselage: "windows", "glass_top_left" or None. Sides 0 to 6
    run down the right side from the top, 13 to 7 down the left one."""
    right = min(side, 13 - side)
    if section == ROOF_FRONT - 1 and right == 0:
        return "glass_top_left" if side == 13 else "windows"
    if section == SCREEN and right in (0, 1, 2):
        return "windows"
    if section in (ROOF_REAR, ROOF_FRONT - 1) and right == 2:
        return "windows"
    return None


def pane(name):
    """The glass of one name, set a little inside the frames."""
    part = Part(name)
    part.loft([section_ring(*s, inset=0.01) for s in SECTIONS],
              lambda i, j: "glass" if opening(i, j) == name else None, close=False)
    return part


def tail_fin(part):
    root, tip = [(-9.85, 1.1), (-8.35, 1.35)], [(-10.05, 3.25), (-9.25, 3.25)]
    outline = [root[0], root[1], tip[1], tip[0]]
    part.extrusion("heli_grey", [(-0.09, y, z) for y, z in outline], (0.18, 0, 0))
    part.hexahedron("heli_grey", [(-1.7, -8.9, 1.48), (1.7, -8.9, 1.48), (1.7, -8.1, 1.48),
                                  (-1.7, -8.1, 1.48)],
                    [(-1.7, -8.8, 1.56), (1.7, -8.8, 1.56), (1.7, -8.3, 1.56), (-1.7, -8.3, 1.56)])
    part.cylinder("heli_dark", (-0.55, -9.4, 2.55), (0.09, -9.4, 2.55), 0.13, 10)


def engine_deck(part):
    """Gearbox fairing, engines with their exhausts, and the fixed part of the mast."""
    stations = [(-4.6, 0.25, 1.62), (-3.4, 0.75, 2.10), (-1.2, 0.98, 2.38), (0.8, 0.98, 2.38),
                (1.9, 0.85, 2.15), (2.7, 0.45, 1.60)]
    part.loft([mirrored([(0, y, top), (0.55 * w, y, top), (w, y, 0.45 * top + 0.75),
                         (1.05 * w, y, 1.35), (0, y, 1.35)]) for y, w, top in stations],
              "heli_grey")
    for side in (-1, 1):
        part.cylinder("heli_dark", (side * 0.62, 2.20, 1.93), (side * 0.62, 2.36, 1.93), 0.27)
        part.cone("heli_dark", (side * 0.80, -2.1, 2.05), (side * 1.22, -2.75, 2.12), 0.26, 0.22)
    part.cone("heli_dark", (0, 0.25, 2.30), (0, 0.285, 2.95), 0.42, 0.17, 14)


def landing_gear(part):
    for side in (-1, 1):
        part.ellipsoid("heli_grey", (side * 1.28, -1.5, -0.42), (0.42, 1.35, 0.30), 8, 12)
        part.beam("heli_dark", (side * 1.30, -1.6, -0.5), (side * 1.38, -1.6, -0.87), 0.12, 0.12)
        part.cylinder("heli_dark", (side * 1.34, -1.6, -0.87), (side * 1.62, -1.6, -0.87), 0.05, 8)
        part.beam("heli_dark", (side * 1.25, -0.4, 0.1), (side * 1.95, -0.4, 0.02), 0.5, 0.07)
        part.cylinder("heli_dark", (side * 1.88, -1.0, -0.10), (side * 1.88, 0.3, -0.10), 0.12, 10)
    part.beam("heli_dark", (0, 3.9, -0.6), (0, 3.9, -0.95), 0.11, 0.11)
    part.cylinder("heli_dark", (-0.18, 3.9, -0.95), (0.18, 3.9, -0.95), 0.045, 8)


def fuselage():
    part = Part("fuselage")

    def skin(section, side):
        return None if opening(section, side) else "heli_grey"

    part.loft([section_ring(*s) for s in SECTIONS], skin)
    engine_deck(part)
    tail_fin(part)
    landing_gear(part)
    part.cylinder("heli_dark", (0, 4.35, -0.86), (0, 4.35, -0.55), 0.48, 16)  # search radar
    part.box("heli_dark", (0.02, 1.5, 1.25), (1.24, 1.1, 0.25))  # cargo door, rails on the right
    for z in (-0.40, 0.92):
        part.box("heli_dark", (0.05, 3.2, 0.05), (1.25, 0.4, z))
    part.beam("heli_dark", (0, 3.68, 1.50), (0, 4.71, 0.50), 0.07, 0.05)  # windscreen's posts
    frames = [((0.85, 3.69, 1.49), (0.83, 4.71, 0.49)), ((1.02, 3.70, 1.09), (1.17, 3.70, 0.58)),
              ((1.03, 3.69, 1.09), (0.92, 4.71, 0.42)), ((1.02, 2.95, 1.22), (1.20, 2.95, 0.88))]
    for side in (-1, 1):
        for (ax, ay, az), (bx, by, bz) in frames:
            part.beam("heli_dark", (side * ax, ay, az), (side * bx, by, bz), 0.07, 0.06)
    for side in (-1, 1):  # dispensers' pods, outboard of the tail's root
        part.box("heli_dark", (0.22, 0.95, 0.34), (side * 1.02, -3.75, 0.62))
    return part


def reveals(part, outer, inner):
    """The depth of the window frames, from the skin's edge to the lining's, where no other pane
    adjoins."""
    for i in range(len(outer) - 1):
        for j in range(len(outer[0])):
            if opening(i, j) is None:
                continue
            k = (j + 1) % len(outer[0])
            corners = [(i, j), (i, k), (i + 1, k), (i + 1, j)]
            beyond = [(i - 1, j), (i, k), (i + 1, j), (i, (j - 1) % len(outer[0]))]
            for n, neighbour in enumerate(beyond):
                if opening(*neighbour) is None:
                    (a, b), (c, d) = corners[n], corners[(n + 1) % 4]
                    part.polygon("cockpit_lining", [inner[a][b], outer[a][b], outer[c][d],
                                                    inner[c][d]])


def cockpit():
    """What the pilots see around them: lining, panel, glare shield, console and seats."""
    part = Part("cockpit")
    rings = [section_ring(*s, inset=0.05) for s in SECTIONS[ROOF_REAR:SCREEN + 2]]
    lining = Part("lining")
    lining.loft(rings, lambda i, j: None if opening(i + ROOF_REAR, j) else "cockpit_lining",
                close=False)
    for material, (a, b, c) in lining.triangles:  # seen from inside
        part.triangles.append((material, (a, c, b)))
    part.polygon("cockpit_lining", rings[0])  # the bulkhead faces forward
    reveals(part, [section_ring(*s) for s in SECTIONS], [section_ring(*s, inset=0.05) for s in
                                                         SECTIONS])
    part.hexahedron("cockpit_lining", [(-0.95, 3.85, -0.3), (0.95, 3.85, -0.3),
                                       (0.90, 4.60, -0.3), (-0.90, 4.60, -0.3)],
                    [(-0.95, 3.95, 0.40), (0.95, 3.95, 0.40), (0.86, 4.60, 0.40),
                     (-0.86, 4.60, 0.40)])
    part.hexahedron("glare_shield", [(-0.98, 3.86, 0.41), (0.98, 3.86, 0.41), (0.84, 4.62, 0.41),
                                     (-0.84, 4.62, 0.41)],
                    [(-0.96, 3.90, 0.46), (0.96, 3.90, 0.46), (0.80, 4.66, 0.46),
                     (-0.80, 4.66, 0.46)])
    for x in (-0.72, -0.42, 0.0, 0.42, 0.72):
        part.box("instrument", (0.24, 0.03, 0.24), (x, 3.905, 0.18))
    part.box("cockpit_lining", (0.34, 1.1, 0.45), (0, 3.30, -0.25))
    part.box("cockpit_lining", (0.30, 0.60, 0.06), (0, 3.25, 1.42))
    for side in (-1, 1):
        part.box("seat", (0.52, 0.50, 0.14), (side * 0.5, 3.00, -0.08))
        part.box("seat", (0.50, 0.12, 0.85), (side * 0.5, 2.72, 0.35))
    return part


def blade(radius, root, chord, droop):
    """A blade along +X: a lens section, slightly drooping at rest."""
    section = [(-0.5, 0.0), (-0.1, 0.06), (0.3, 0.06), (0.5, 0.0), (0.3, -0.05), (-0.1, -0.05)]
    part = Part("blade")
    stations = [root + (radius - root) * i / 4 for i in range(5)]
    rings = [[(x, v * chord, w * chord - droop * (x / radius) ** 2) for v, w in section]
             for x in stations]
    for a, b in zip(rings, rings[1:]):
        for i in range(len(section)):
            j = (i + 1) % len(section)
            part.polygon("rotor_blade", [a[i], b[i], b[j], a[j]])
    part.polygon("rotor_blade", rings[0])
    part.polygon("rotor_blade", rings[-1][::-1])
    return part


def main_rotor():
    mesh, plane = Part("wing_mesh"), Part("wing_plane")
    mesh.cylinder("heli_dark", (0, 0, -0.12), (0, 0, 0.16), 0.38, 15)
    mesh.cone("heli_dark", (0, 0, 0.16), (0, 0, 0.34), 0.22, 0.05, 12)
    one = blade(ROTOR_RADIUS, 0.7, 0.52, 0.35)
    for i in range(BLADES):
        angle = 360 / BLADES * i
        mesh.beam("heli_dark", rotate_z((0.3, 0, 0), angle), rotate_z((0.85, 0, 0), angle),
                  0.16, 0.12)
        mesh.merge(one, lambda p, a=angle: rotate_z(p, a))
    plane.disc("rotor_disc", 0.7, 5.5, 0.05)
    plane.disc("rotor_disc", 5.5, ROTOR_RADIUS, 0.05)
    plane.cylinder("heli_dark", (0, 0, -0.12), (0, 0, 0.16), 0.38, 15)
    plane.cone("heli_dark", (0, 0, 0.16), (0, 0, 0.34), 0.22, 0.05, 12)
    return mesh, plane


def upright(p):
    """Carries the rotor plane X-Y into Y-Z, its axis Z into X."""
    return (p[2], p[0], p[1])


def tail_rotor():
    mesh, plane = Part("tail_mesh"), Part("tail_plane")
    for part in (mesh, plane):
        part.cylinder("heli_dark", (-0.12, 0, 0), (0.05, 0, 0), 0.14, 10)
    one = blade(TAIL_ROTOR_RADIUS, 0.12, 0.24, 0.0)
    for i in range(4):
        mesh.merge(one, lambda p, a=90 * i: upright(rotate_z(p, a)))
    plane.disc("rotor_disc", 0.14, TAIL_ROTOR_RADIUS, 0.0, 32, upright)
    return mesh, plane


def wiper(name):
    """Arm and blade along +Y, lying on the glass, whose normal is Z."""
    part = Part(name)
    part.cylinder("heli_dark", (0, 0, 0), (0, 0, 0.06), 0.03, 8)
    part.beam("heli_dark", (0, 0, 0.045), (0, 0.42, 0.045), 0.022, 0.016)
    part.beam("heli_dark", (0, 0.12, 0.022), (0, 0.66, 0.022), 0.028, 0.028)
    return part


def wheel(name, radius, width, tracks):
    """Tyres on an axle along X through the origin; `tracks` are the middles of the tyres."""
    part = Part(name)
    for x in tracks:
        part.cylinder("tyre", (x - width / 2, 0, 0), (x + width / 2, 0, 0), radius, 16)
        part.cylinder("heli_grey", (x - width / 2 - 0.01, 0, 0), (x + width / 2 + 0.01, 0, 0),
                      0.5 * radius, 10)
    return part


def wreck():
    """The burnt-out airframe: the hull crushed on to its belly, the tail broken off, blades bent
    down. The same scatter every time, so that the file never changes by itself."""
    part = Part("wreck")
    scatter = random.Random(1220)

    def crushed(s):
        ring = section_ring(*s)
        return [add((0.92 * x, y, 0.72 * z - 0.34),
                    scale((scatter.uniform(-1, 1), scatter.uniform(-1, 1), scatter.uniform(-1, 0)),
                          0.10)) for x, y, z in ring]

    part.loft([crushed(s) for s in SECTIONS[2:]], lambda i, j: None if opening(i + 2, j) else
              "wreck")
    tail = Part("tail_boom")
    tail.loft([section_ring(*s) for s in SECTIONS[:3]], "wreck")
    tail_fin(tail)
    part.merge(burnt(tail), lambda p: add(rotate_z(rotate_x(p, 10), 12), (-0.9, -0.4, -0.29)))
    one = blade(5.0, 0.4, 0.5, 2.2)
    for angle in (20, 105, 200, 290):
        part.merge(burnt(one), lambda p, a=angle: add(rotate_z(p, a), (0, 0.2, 1.15)))
    part.box("wreck", (1.5, 3.5, 0.5), (0.1, -0.5, 0.95))
    return part


def burnt(part):
    copy = Part(part.name)
    copy.triangles = [("wreck", corners) for _, corners in part.triangles]
    return copy


def equipment():
    """Stowed sonar, winch and lamps, each around its own mount."""
    sonar = Part("sonar")
    sonar.cone("heli_dark", (0, 0, 0.12), (0, 0, -0.08), 0.34, 0.30, 16)
    sonar.cylinder("sonar_body", (0, 0, -0.08), (0, 0, -0.34), 0.17, 14)
    winch = Part("hoist")
    winch.beam("heli_dark", (-0.62, 0, 0.12), (0.10, 0, 0.12), 0.14, 0.12)
    winch.cylinder("heli_grey", (0, -0.22, 0.08), (0, 0.22, 0.08), 0.13, 12)
    winch.cylinder("heli_dark", (0, 0, 0.02), (0, 0, -0.16), 0.03, 8)
    lamp = Part("front_lamp")
    lamp.cone("heli_dark", (0, -0.12, 0), (0, 0.02, 0), 0.07, 0.13, 14)
    lamp.cylinder("front_lamp", (0, 0.02, 0), (0, 0.03, 0), 0.12, 14)
    return [sonar, winch, lamp]


def parts():
    wheels = [wheel("wheel_nose", 0.27, 0.14, (-0.15, 0.15)),
              wheel("wheel_main", 0.35, 0.24, (0.0,))]
    return [fuselage(), cockpit(), pane("windows"), pane("glass_top_left"), *main_rotor(),
            *tail_rotor(), wiper("wiper_left"), wiper("wiper_right"), *wheels, wreck(),
            *equipment()]
