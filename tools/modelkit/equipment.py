# SPDX-License-Identifier: MIT
"""What the helicopter drops, fires and lowers, and the deck commander who waves it in."""

from .mesh import Part, add


def torpedo():
    """2.8 m, nose along −Z: it hangs below its parachute and falls nose first."""
    body, canopy = Part("torpedo"), Part("parachute")
    body.cylinder("weapon_green", (0, 0, -1.1), (0, 0, 1.0), 0.162, 16)
    body.cone("weapon_dark", (0, 0, -1.1), (0, 0, -1.4), 0.162, 0.06, 16)
    body.cone("weapon_dark", (0, 0, 1.0), (0, 0, 1.4), 0.162, 0.08, 16)
    for x, y in ((1, 0), (-1, 0), (0, 1), (0, -1)):
        body.box("weapon_dark", (0.02 + 0.26 * abs(x), 0.02 + 0.26 * abs(y), 0.22),
                 (0.2 * x, 0.2 * y, 1.28))
    rims = [(0.0, 5.2), (0.7, 5.05), (1.2, 4.6), (1.45, 4.0)]
    for (r0, z0), (r1, z1) in zip(rims, rims[1:]):
        canopy.cone("parachute", (0, 0, z1), (0, 0, z0), r1, r0, 16)
    for x, y in ((1.4, 0), (-1.4, 0), (0, 1.4), (0, -1.4)):
        canopy.beam("weapon_dark", (0, 0, 1.4), (x, y, 4.0), 0.02, 0.02)
    return [body, canopy]


def missile():
    """2.7 m, nose along +Y."""
    part = Part("missile")
    part.cylinder("weapon_white", (0, -1.25, 0), (0, 1.1, 0), 0.09, 14)
    part.cone("weapon_dark", (0, 1.1, 0), (0, 1.45, 0), 0.09, 0.02, 14)
    for y in (-1.1, 0.25):
        part.box("weapon_white", (0.62, 0.26, 0.015), (0, y, 0))
        part.box("weapon_white", (0.015, 0.26, 0.62), (0, y, 0))
    return [part]


def dipping_sonar():
    """The lowered transducer, its cable's end at the origin, and the buoy."""
    body, buoy, anchor = Part("sonar_body"), Part("sonar_buoy"), Part("cable_anchor")
    body.cone("heli_dark", (0, 0, 0.0), (0, 0, -0.25), 0.03, 0.17, 14)
    body.cylinder("sonar_body", (0, 0, -0.25), (0, 0, -1.05), 0.17, 14)
    body.cone("heli_dark", (0, 0, -1.05), (0, 0, -1.2), 0.17, 0.08, 14)
    buoy.cylinder("boat_orange", (0, 0, -0.12), (0, 0, 0.12), 0.16, 12)
    anchor.box("heli_dark", (0.10, 0.10, 0.06))
    return [body, buoy, anchor]


def sonobuoy():
    part = Part("sonobuoy")
    part.cylinder("weapon_white", (0, 0, -0.45), (0, 0, 0.40), 0.062, 12)
    part.cylinder("boat_orange", (0, 0, 0.40), (0, 0, 0.47), 0.062, 12)
    return [part]


def rescue_car():
    """The load of the winch: a small vehicle in a sling, whose ring is at the origin."""
    load, hook = Part("car"), Part("hook")
    load.box("cargo_green", (1.5, 3.1, 0.55), (0, 0, -2.35))
    load.hexahedron("cargo_green", [(-0.7, -1.2, -2.07), (0.7, -1.2, -2.07), (0.7, 0.7, -2.07),
                                    (-0.7, 0.7, -2.07)],
                    [(-0.6, -1.1, -1.5), (0.6, -1.1, -1.5), (0.6, 0.3, -1.5), (-0.6, 0.3, -1.5)])
    for x in (-0.75, 0.75):
        for y in (-1.0, 1.0):
            load.cylinder("tyre", (x - 0.1, y, -2.6), (x + 0.1, y, -2.6), 0.3, 12)
            load.beam("weapon_dark", (0, 0, 0), (0.8 * x, 1.3 * y, -2.1), 0.03, 0.03)
    hook.cylinder("heli_dark", (0, 0, -0.25), (0, 0, 0.05), 0.05, 8)
    hook.box("boat_orange", (0.26, 0.26, 0.12), (0, 0, -0.31))
    return [load, hook]


def decoy():
    part = Part("decoy")
    part.cylinder("decoy_flare", (-0.10, 0, 0), (0.10, 0, 0), 0.03, 10)
    return [part]


def commander():
    """A deck commander, 1.8 m, facing +Y; the arms point forward from the shoulders."""
    body, arm = Part("body"), Part("arm")
    for side in (-1, 1):
        body.box("boots", (0.13, 0.30, 0.10), (side * 0.11, 0.04, 0.05))
        body.cone("uniform", (side * 0.11, 0, 0.10), (side * 0.10, 0, 0.90), 0.08, 0.10, 10)
    body.hexahedron("vest", [(-0.20, -0.12, 0.88), (0.20, -0.12, 0.88), (0.20, 0.12, 0.88),
                             (-0.20, 0.12, 0.88)],
                    [(-0.23, -0.11, 1.48), (0.23, -0.11, 1.48), (0.23, 0.11, 1.48),
                     (-0.23, 0.11, 1.48)])
    body.cylinder("skin", (0, 0, 1.46), (0, 0, 1.56), 0.06, 8)
    body.ellipsoid("skin", (0, 0.01, 1.66), (0.09, 0.10, 0.13), 6, 10)
    body.ellipsoid("helmet", (0, -0.01, 1.71), (0.12, 0.13, 0.11), 6, 10)
    arm.beam("vest", (0, 0, 0), (0, 0.30, 0), 0.10, 0.10)
    arm.beam("uniform", (0, 0.30, 0), (0, 0.58, 0), 0.08, 0.08)
    arm.ellipsoid("skin", (0, 0.62, 0), (0.04, 0.06, 0.05), 4, 8)
    top = add((0, 0.64, 0), (0, 0.25, 0.33))
    arm.beam("wand", (0, 0.64, -0.02), top, 0.05, 0.05)
    return [body, arm]
