# SPDX-License-Identifier: MIT
"""Main and tail rotor: blades at rest, and the discs that the eye sees at speed."""

import math

from .curves import airfoil
from .mesh import Part, add, rotate_z

ROTOR_RADIUS = 8.0
TAIL_ROTOR_RADIUS = 1.55
BLADES = 5
TAIL_BLADES = 4
DROOP = 0.42          # of the resting blade's tip below the hub, metres
ROOT_CUT = 1.15


def blade(radius, root, chord, droop, twist=8.0, stripes=()):
    """A blade along +X that turns towards +Y: drooping as the square of the radius, twisted by
    `twist` degrees from root to tip, the last twentieth swept back and tapered. `stripes` lists
    (inner, outer, material) as fractions of the radius."""
    edges = sorted({0.0, 0.04, 0.12, 0.3, 0.5, 0.7, 0.85, 0.95, 0.985, 1.0,
                    *((f * radius - root) / (radius - root) for s in stripes for f in s[:2])})

    def ring(t):
        x = root + (radius - root) * t
        tip = max(0.0, (t - 0.95) / 0.05)
        width = chord * (1 - 0.55 * tip ** 2) * (0.62 + 0.38 * min(1, t / 0.12))
        angle = math.radians(twist * (0.75 - t))
        c, s = math.cos(angle), math.sin(angle)
        back, down = -0.35 * chord * tip ** 2, -droop * (x / radius) ** 2 - 0.02 * tip ** 2
        thickness = 0.10 if t > 0.1 else 0.14
        return [(x, back + u * c - v * s, down + u * s + v * c)
                for u, v in airfoil(width, thickness, 5)]

    def material(section, _):
        middle = root + (radius - root) * 0.5 * (edges[section] + edges[section + 1])
        for inner, outer, name in stripes:
            if inner * radius < middle < outer * radius:
                return name
        return "rotor_blade"

    part = Part("blade")
    part.solid(material, [ring(t) for t in edges])
    return part


def arm():
    """One arm of the main hub along +X: yoke, cuff with its pitch horn and link, and damper."""
    part = Part("arm")
    part.solid("heli_metal", [[(x, w * c, h * s) for c, s in ring8()]
                              for x, w, h in ((0.22, 0.15, 0.10), (0.45, 0.12, 0.075),
                                              (0.62, 0.10, 0.07))])
    part.solid("heli_dark", [[(x, w * c, -0.003 * x + h * s) for c, s in ring8()]
                             for x, w, h in ((0.55, 0.11, 0.09), (0.66, 0.135, 0.10),
                                             (0.95, 0.13, 0.075), (1.12, 0.16, 0.045),
                                             (1.28, 0.14, 0.026))])
    part.pipe("heli_metal", [(0.60, 0.08, 0.02), (0.58, 0.24, -0.02)], 0.03, 8)
    part.pipe("heli_metal", [(0.58, 0.24, -0.02), (0.34, 0.18, -0.32)], 0.018, 8)
    part.pipe("heli_dark", [(0.66, -0.10, 0.05), (0.30, -0.24, 0.05)], 0.045, 10)
    return part


def ring8():
    return [(math.cos(t), math.sin(t)) for t in (math.pi * k / 5 for k in range(10))]


def hub(part):
    part.lathe(lambda n: "heli_dark" if n > 5 else "heli_metal",
               [(0.0, -0.34), (0.15, -0.34), (0.15, -0.16), (0.30, -0.12), (0.34, -0.04),
                (0.34, 0.06), (0.27, 0.11), (0.36, 0.14), (0.36, 0.17), (0.25, 0.23), (0.12, 0.26),
                (0.0, 0.265)], 20)
    one = arm()
    for i in range(BLADES):
        part.merge(one, lambda p, a=360 / BLADES * i: rotate_z(p, a))


def main_rotor():
    mesh, plane = Part("wing_mesh"), Part("wing_plane")
    hub(mesh)
    one = blade(ROTOR_RADIUS, ROOT_CUT, 0.54, DROOP, 9.0,
                [(0.90, 0.925, "marking_white"), (0.965, 0.985, "marking_yellow")])
    for i in range(BLADES):
        mesh.merge(one, lambda p, a=360 / BLADES * i: rotate_z(p, a))
    rings = [0.3, ROOT_CUT, 3.0, 5.0, 7.2, 7.4, ROTOR_RADIUS]
    heights = [0.10 * (r / ROTOR_RADIUS) ** 2 + 0.02 for r in rings]  # it cones under load
    for (r0, z0), (r1, z1) in zip(zip(rings, heights), zip(rings[1:], heights[1:])):
        cone_ring(plane, "rotor_disc_tip" if r0 == 7.2 else "rotor_disc", r0, z0, r1, z1)
    plane.lathe("heli_dark", [(0.15, -0.34), (0.15, -0.16), (0.30, -0.12), (0.34, -0.04),
                              (0.34, 0.06), (0.27, 0.11), (0.36, 0.14), (0.36, 0.17), (0.25, 0.23),
                              (0.12, 0.26), (0.0, 0.265)], 20)
    return mesh, plane


def cone_ring(part, material, r0, z0, r1, z1, sides=60):
    """A flat or slightly coned ring, seen from above."""
    turns = [2 * math.pi * i / sides for i in range(sides)]
    part.band(material, [(r1 * math.cos(t), r1 * math.sin(t), z1) for t in turns],
              [(r0 * math.cos(t), r0 * math.sin(t), z0) for t in turns])


def upright(p):
    """Carries the rotor plane X-Y into Y-Z, its axis Z into X."""
    return (p[2], p[0], p[1])


def tail_rotor():
    mesh, plane = Part("tail_mesh"), Part("tail_plane")
    profile = [(0.0, -0.02), (0.07, -0.02), (0.15, 0.0), (0.16, 0.08), (0.10, 0.13), (0.05, 0.19),
               (0.0, 0.20)]
    for part in (mesh, plane):  # its axis points outboard, to the left
        part.lathe("heli_dark", profile, 14, lambda p: (0.06 - p[2], p[0], -p[1]))
    one = blade(TAIL_ROTOR_RADIUS, 0.22, 0.25, 0.0, 4.0, [(0.86, 0.92, "marking_white")])
    one.cylinder("heli_metal", (0.05, 0, 0), (0.26, 0, 0), 0.035, 8)
    for i in range(TAIL_BLADES):
        mesh.merge(one, lambda p, a=360 / TAIL_BLADES * i: upright(rotate_z(p, a)))
    plane.disc("tail_rotor_disc", 0.14, TAIL_ROTOR_RADIUS, 0.0, 40, upright)
    return mesh, plane


def severed(length, bend):
    """A broken blade along +X: its outer part hangs down and its end is splintered."""
    part = blade(length, 0.5, 0.5, bend, 9.0)
    tip = max(p[0] for _, corners in part.triangles for p in corners)
    for n, (material, corners) in enumerate(part.triangles):
        part.triangles[n] = (material, tuple(
            add(p, (0.25 * math.sin(40 * p[1]), 0, 0.1 * math.cos(55 * p[1])))
            if tip - p[0] < 0.02 * length else p for p in corners))
    return part
