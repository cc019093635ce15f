# SPDX-License-Identifier: MIT
"""What the helicopter drops, fires and lowers, and the deck commander who waves it in."""

import math

from .curves import airfoil, superellipse
from .mesh import Part, add, rotate_z


def round_nose(radius, start, length, power=2.2, steps=6):
    """(radius, height) of a blunt nose from its shoulder at `start` to its tip."""
    return [(radius * (1 - (k / steps) ** power) ** (1 / power), start + length * k / steps)
            for k in range(steps + 1)]


def torpedo():
    """2.8 m, nose along -Z: it hangs below its parachute and falls nose first."""
    body, canopy = Part("torpedo"), Part("parachute")

    def down(p):  # the lathe's axis turned over, so that profiles run towards the nose
        return (p[0], -p[1], -p[2])

    body.lathe("weapon_dark", [(0.0, -1.40), (0.075, -1.39), (0.095, -1.30), (0.162, -0.98)], 24,
               down)
    body.lathe("weapon_green", [(0.162, -0.98), (0.162, 0.62)], 24, down)
    body.lathe("weapon_yellow", [(0.162, 0.62), (0.1625, 0.62), (0.1625, 0.70), (0.162, 0.70)], 24,
               down)
    body.lathe("weapon_green", [(0.162, 0.70), (0.162, 1.12)], 24, down)
    body.lathe("weapon_dark", round_nose(0.162, 1.12, 0.28), 24, down)
    for z in (-0.45, 0.30):  # bands of the suspension lugs
        body.lathe("heli_metal", [(0.162, z), (0.168, z + 0.01), (0.168, z + 0.05),
                                  (0.162, z + 0.06)],
                   24, down)
    fin = Part("fin")
    fin.solid("weapon_dark", [[(x, v * c, z + u * c) for u, v in airfoil(1.0, 0.07, 4)]
                              for x, c, z in ((0.09, 0.34, 1.13), (0.27, 0.24, 1.17))])
    blade = Part("blade")
    profile = ((-1, -0.03), (0, 0.008), (1, 0.03), (0, -0.008))
    blade.solid("heli_metal", [[(r, t * w, 1.30 + d) for t, d in profile]
                               for r, w in ((0.06, 0.03), (0.12, 0.055), (0.15, 0.02))])
    for k in range(4):
        body.merge(fin, lambda p, a=90 * k: rotate_z(p, a))
    for k in range(6):
        body.merge(blade, lambda p, a=60 * k + 15: rotate_z(p, a))
    parachute(canopy, 20, 1.45, 4.0, 5.2)
    return [body, canopy]


def parachute(part, gores, radius, low, high):
    """A canopy of bulging gores in two colours over its lines, which meet above the tail."""
    steps, across = 6, 4
    vent = 0.08

    def point(i, j):  # i counts quarter gores around, j runs from the vent to the skirt
        t = vent + (1 - vent) * j / steps
        bulge = 1 + 0.05 * t * math.sin(math.pi * (i % across) / across)
        angle = 2 * math.pi * i / (gores * across)
        r = radius * math.sin(t * math.pi / 2) ** 0.85 * bulge
        z = low + (high - low) * math.cos(t * math.pi / 2) ** 0.9 + 0.10 * (bulge - 1) * 8 * t ** 6
        return (r * math.cos(angle), r * math.sin(angle), z)

    for i in range(gores * across):
        material = "parachute" if i // across % 2 else "parachute_white"
        for j in range(steps):
            part.polygon(material, [point(i, j), point(i, j + 1), point(i + 1, j + 1),
                                    point(i + 1, j)])
    for g in range(gores):
        part.pipe("weapon_dark", [(0, 0, 1.85), point(g * across, steps)], 0.008, 3, hollow=True)
    part.pipe("weapon_dark", [(0, 0, 1.38), (0, 0, 1.87)], 0.02, 6)


def missile():
    """2.7 m, nose along +Y."""
    part = Part("missile")

    def ahead(p):
        return (p[0], p[2], -p[1])

    part.lathe("weapon_dark", [(0.0, -1.20), (0.055, -1.20), (0.065, -1.25), (0.088, -1.25)], 20,
               ahead)
    part.lathe("weapon_white", [(0.09, -1.25), (0.09, -0.35)], 20, ahead)
    part.lathe("weapon_yellow", [(0.09, -0.35), (0.0905, -0.35), (0.0905, -0.28), (0.09, -0.28)],
               20, ahead)
    part.lathe("weapon_white", [(0.09, -0.28), (0.09, 0.98)], 20, ahead)
    part.lathe("weapon_dark", round_nose(0.09, 0.98, 0.47, 1.7), 20, ahead)
    for k in range(4):
        for y, chord, reach in ((-1.06, 0.34, 0.33), (0.30, 0.42, 0.24)):
            wing = Part("wing")
            wing.solid("weapon_white", [[(x, y + u * c, v * c) for u, v in airfoil(1.0, 0.05, 4)]
                                        for x, c in ((0.08, chord), (reach, 0.45 * chord))])
            turn = math.radians(45 + 90 * k)
            part.merge(wing, lambda p, t=turn: (p[0] * math.cos(t) - p[2] * math.sin(t), p[1],
                                                p[0] * math.sin(t) + p[2] * math.cos(t)))
    part.box("weapon_dark", (0.03, 1.3, 0.02), (0, -0.2, -0.095))  # cable duct
    return [part]


def dipping_sonar():
    """The lowered transducer, its cable's end at the origin, the buoy, and the cable's anchor."""
    body, buoy, anchor = Part("sonar_body"), Part("sonar_buoy"), Part("cable_anchor")
    body.lathe("heli_dark", [(0.175, -0.27), (0.16, -0.22), (0.09, -0.14), (0.045, -0.10),
                             (0.03, 0.0), (0.0, 0.01)], 24)
    body.lathe("heli_dark", [(0.0, -1.20), (0.08, -1.19), (0.14, -1.13), (0.17, -1.05)], 24)
    body.lathe("sonar_body", [(0.17, -1.05), (0.17, -0.66), (0.155, -0.65), (0.155, -0.60),
                              (0.172, -0.59), (0.175, -0.27)], 24)
    for k in range(12):  # staves of the receiving array
        t = math.radians(30 * k)
        x, y = 0.172 * math.cos(t), 0.172 * math.sin(t)
        body.pipe("heli_metal", [(x, y, -1.03), (x, y, -0.69)], 0.010, 5)
    for k in range(3):
        t = math.radians(120 * k)
        body.pipe("heli_metal", [(0.05 * math.cos(t), 0.05 * math.sin(t), -0.08),
                                 (0.175 * math.cos(t), 0.175 * math.sin(t), -0.24)], 0.012, 6)
    buoy.lathe("boat_orange", [(0.0, -0.12), (0.10, -0.115), (0.155, -0.07), (0.16, 0.0),
                               (0.155, 0.07), (0.10, 0.115), (0.0, 0.12)], 20)
    buoy.lathe("weapon_dark", [(0.158, -0.02), (0.164, -0.018), (0.164, 0.018), (0.158, 0.02)], 20)
    anchor.lathe("heli_dark", [(0.02, -0.10), (0.05, -0.06), (0.05, 0.02), (0.03, 0.04),
                               (0.0, 0.04)], 12)
    return [body, buoy, anchor]


def sonobuoy():
    part = Part("sonobuoy")
    part.lathe("weapon_white", [(0.0, -0.45), (0.050, -0.45), (0.062, -0.44), (0.062, 0.36)], 20)
    part.lathe("boat_orange", [(0.062, 0.36), (0.066, 0.37), (0.066, 0.45), (0.055, 0.47),
                               (0.0, 0.47)], 20)
    part.pipe("weapon_dark", [(0, 0, 0.46), (0, 0, 0.62)], 0.004, 5)
    for z in (-0.2, 0.1):
        part.lathe("weapon_dark", [(0.0622, z), (0.0632, z + 0.004), (0.0632, z + 0.02),
                                   (0.0622, z + 0.024)], 20)
    return [part]


def rescue_basket():
    """The load of the winch: a rescue basket below a ring at the origin, 1.3 m high; and the bare
    hook."""
    load, hook = Part("basket"), Part("hook")
    floor, rim = -1.30, -0.86

    def outline(half_width, half_length, z):  # closed, with rounded corners
        points = [(x * (half_width - u), y * (half_length - v), z)
                  for x, y, corner in ((1, 1, ((0, 0.12), (0.04, 0.04), (0.12, 0))),
                                       (-1, 1, ((0.12, 0), (0.04, 0.04), (0, 0.12))),
                                       (-1, -1, ((0, 0.12), (0.04, 0.04), (0.12, 0))),
                                       (1, -1, ((0.12, 0), (0.04, 0.04), (0, 0.12))))
                  for u, v in corner]
        middle = (half_width, 0, z)
        return [middle] + points + [middle]

    for width, length, z, radius in ((0.36, 0.62, rim, 0.022), (0.345, 0.60, -1.08, 0.012),
                                     (0.32, 0.56, floor + 0.02, 0.02)):
        load.pipe("heli_metal", outline(width, length, z), radius, 6)
    for y in (-0.44, -0.22, 0.0, 0.22, 0.44):  # ribs down the sides and across below
        load.pipe("heli_metal", [(-0.36, y, rim), (-0.32, y, floor + 0.02), (0.32, y, floor + 0.02),
                                 (0.36, y, rim)], 0.012, 5)
    for x in (-0.16, 0.16):
        load.pipe("heli_metal", [(x, -0.62, rim), (x, -0.56, floor + 0.02),
                                 (x, 0.56, floor + 0.02), (x, 0.62, rim)], 0.012, 5)
    load.box("weapon_dark", (0.58, 1.04, 0.03), (0, 0, floor + 0.055))
    float_profile = [(0.0, -0.30), (0.10, -0.29), (0.135, -0.24), (0.135, 0.24), (0.10, 0.29),
                     (0.0, 0.30)]
    for y in (-0.77, 0.77):  # they carry it on the sea
        load.lathe("boat_orange", float_profile, 16, lambda p, y=y: (p[2], y + p[0], p[1] - 1.14))
        for x in (-0.15, 0.15):
            load.lathe("harness", [(0.137, x - 0.025), (0.141, x - 0.02), (0.141, x + 0.02),
                                   (0.137, x + 0.025)], 16,
                       lambda p, y=y: (p[2], y + p[0], p[1] - 1.14))
    for x in (-1, 1):
        for y in (-1, 1):  # two bails
            load.pipe("boat_orange", [(0.36 * x, 0.46 * y, rim), (0.34 * x, 0.42 * y, -0.58),
                                      (0.24 * x, 0.27 * y, -0.30), (0.03 * x, 0.03 * y, -0.10)],
                      0.018, 6)
    load.lathe("heli_metal", ring_profile(0.075, 0.016), 16, lambda p: (p[0], -p[2], p[1] - 0.03))
    hook.lathe("heli_dark", [(0.0, -0.24), (0.05, -0.23), (0.055, -0.05), (0.03, 0.04),
                             (0.0, 0.05)], 14)
    hook.lathe("boat_orange", [(0.055, -0.16), (0.11, -0.14), (0.13, -0.10), (0.11, -0.06),
                               (0.055, -0.04)], 18)
    hook.pipe("heli_metal", [(0, 0, -0.22), (0, 0.015, -0.29), (0, 0.05, -0.34), (0, 0.045, -0.40),
                             (0, 0.0, -0.43), (0, -0.05, -0.40), (0, -0.055, -0.36)], 0.016, 8)
    return [load, hook]


def ring_profile(radius, thickness):
    """The closed outline of a torus, for a lathe."""
    return [(radius + thickness * math.sin(t), -thickness * math.cos(t))
            for t in (2 * math.pi * k / 8 for k in range(9))]


def decoy():
    part = Part("decoy")

    def lying(p):
        return (p[2], p[0], p[1])

    part.lathe("weapon_dark", [(0.0, -0.10), (0.028, -0.10), (0.03, -0.095), (0.03, -0.02)], 16,
               lying)
    part.lathe("decoy_flare", [(0.03, -0.02), (0.034, 0.02), (0.03, 0.06), (0.018, 0.095),
                               (0.0, 0.10)],
               16, lying)
    return [part]


# ---- the commander


def limb(part, material, sections, count=12, offset=(0, 0, 0)):
    """A rounded limb along Z: sections of (z, x, y, half-width, half-depth)."""
    part.solid(material, [[add((x + u, y + v, z), offset)
                           for u, v in superellipse(w, d, d, 2.2, count)]
                          for z, x, y, w, d in sections])


def legs(part):
    for side in (-1, 1):
        at = (side * 0.105, 0, 0)
        part.solid("boots", [[add((u * w, y, z0 + (v + 1) * h), at) for u, v in
                              superellipse(1.0, 1.0, 1.0, 3.0, 10)]
                             for y, w, h, z0 in ((-0.10, 0.045, 0.05, 0.0),
                                                 (-0.07, 0.055, 0.075, 0.0),
                                                 (0.06, 0.055, 0.06, 0.0), (0.15, 0.055, 0.04, 0.0),
                                                 (0.20, 0.04, 0.025, 0.0))])
        limb(part, "boots", [(0.06, 0, -0.03, 0.055, 0.065), (0.22, 0, -0.03, 0.058, 0.066)], 12,
             at)
        limb(part, "uniform", [(0.20, 0, -0.03, 0.070, 0.080), (0.30, 0, -0.03, 0.068, 0.080),
                               (0.46, 0, -0.005, 0.068, 0.076), (0.50, 0, 0.0, 0.074, 0.080),
                               (0.72, -0.01 * side, 0, 0.088, 0.095),
                               (0.90, -0.03 * side, 0, 0.085, 0.10)],
             12, at)


def torso(part):
    limb(part, "uniform", [(0.84, 0, 0, 0.165, 0.105), (0.94, 0, 0, 0.17, 0.11)], 16)
    sections = [(0.90, 0, 0, 0.185, 0.125), (1.02, 0, 0, 0.175, 0.12),
                (1.18, 0, 0.005, 0.195, 0.13), (1.34, 0, 0.0, 0.215, 0.13),
                (1.43, 0, -0.01, 0.20, 0.11), (1.49, 0, -0.01, 0.12, 0.08)]
    limb(part, "vest", sections, 20)
    for z, w, d in ((1.03, 0.181, 0.126), (1.24, 0.206, 0.135)):  # reflecting bands
        limb(part, "reflective", [(z, 0, 0.003, w, d), (z + 0.05, 0, 0.003, w + 0.006, d + 0.001)],
             20)
    for side in (-1, 1):
        part.ellipsoid("uniform", (side * 0.245, 0.0, 1.42), (0.075, 0.075, 0.08), 8, 12)
        part.box("vest", (0.10, 0.05, 0.12), (side * 0.09, 0.135, 1.13))


def head(part):
    limb(part, "skin", [(1.46, 0, -0.01, 0.058, 0.058), (1.56, 0, 0.0, 0.056, 0.058)], 12)
    part.ellipsoid("skin", (0, 0.012, 1.655), (0.080, 0.098, 0.120), 10, 16)
    part.ellipsoid("skin", (0, 0.110, 1.640), (0.014, 0.020, 0.026), 6, 8)
    part.lathe("helmet", [(0.108, 1.665), (0.112, 1.70), (0.106, 1.755), (0.080, 1.80),
                          (0.045, 1.822), (0.0, 1.828)], 20,
               lambda p: (p[0], 1.12 * p[1] - 0.004, p[2]))
    part.lathe("weapon_dark", [(0.100, 1.666), (0.113, 1.666), (0.114, 1.684), (0.108, 1.69)], 20,
               lambda p: (p[0], 1.12 * p[1] - 0.004, p[2]))
    for side in (-1, 1):
        part.ellipsoid("weapon_dark", (side * 0.094, 0.0, 1.655), (0.030, 0.042, 0.052), 8, 12)
    part.solid("window_dark", [[(x, y, z) for y, z in ((0.085 + b, 1.675), (0.112 + b, 1.672),
                                                       (0.112 + b, 1.722), (0.085 + b, 1.726))]
                               for x, b in ((-0.07, -0.028), (-0.035, 0.0), (0.035, 0.0),
                                            (0.07, -0.028))])


def arm():
    """From the shoulder forward along +Y, with a lit wand held up."""
    part = Part("arm")

    def along(sections, material):
        part.solid(material, [[(u, y, z + v) for u, v in superellipse(w, w, w, 2.0, 12)]
                              for y, z, w in sections])

    along([(-0.02, 0.0, 0.055), (0.06, 0.0, 0.068), (0.18, -0.005, 0.060), (0.28, -0.012, 0.055),
           (0.34, -0.012, 0.054)], "uniform")
    along([(0.33, -0.012, 0.052), (0.42, -0.004, 0.050), (0.54, 0.0, 0.042)], "uniform")
    along([(0.525, 0.0, 0.046), (0.56, 0.0, 0.044)], "reflective")
    part.ellipsoid("boots", (0, 0.615, 0.0), (0.042, 0.062, 0.050), 8, 12)
    part.pipe("weapon_dark", [(0, 0.60, -0.06), (0, 0.655, 0.06)], 0.018, 10)
    part.pipe("wand", [(0, 0.655, 0.06), (0, 0.81, 0.38)], 0.024, 12)
    return part


def commander():
    """A deck commander, 1.8 m, facing +Y; the arms point forward from the shoulders."""
    body = Part("body")
    legs(body)
    torso(body)
    head(body)
    return [body, arm()]
