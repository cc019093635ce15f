# SPDX-License-Identifier: MIT
"""The naval helicopter: origin at its reference point, 1.22 m above the ground it stands on."""

from .airframe import fuselage, pane
from .cockpit import cockpit
from .mesh import Part
from .rotors import main_rotor, tail_rotor
from .wreck import wreck


def wiper(name):
    """Arm and blade along +Y, lying on the glass, whose normal is Z."""
    part = Part(name)
    part.lathe("heli_dark", [(0.032, -0.02), (0.032, 0.045), (0.022, 0.06), (0.0, 0.06)], 12)
    part.beam("heli_dark", (0, 0, 0.045), (0, 0.40, 0.040), 0.022, 0.014)
    part.beam("heli_metal", (0, 0.22, 0.050), (0, 0.40, 0.046), 0.010, 0.010)
    part.beam("heli_dark", (0, 0.12, 0.028), (0, 0.66, 0.028), 0.016, 0.012)
    part.beam("wiper_rubber", (0, 0.12, 0.012), (0, 0.66, 0.012), 0.006, 0.022)
    return part


def wheel(name, radius, width, tracks):
    """Tyres on an axle along X through the origin; `tracks` are the middles of the tyres. A corner
    of the tyre's outline stands straight below the axle, so that its depth is the radius."""
    part = Part(name)
    half, bead = width / 2, 0.56 * radius
    tyre = [(bead, -0.80 * half), (0.86 * radius, -half), (0.965 * radius, -0.80 * half),
            (radius, -0.45 * half), (radius, 0.45 * half), (0.965 * radius, 0.80 * half),
            (0.86 * radius, half), (bead, 0.80 * half)]
    hub = [(0.0, -0.72 * half), (0.16 * radius, -0.72 * half), (0.20 * radius, -0.45 * half),
           (0.44 * radius, -0.45 * half), (0.52 * radius, -0.86 * half), (bead, -0.80 * half)]
    for x in tracks:
        def lying(p, x=x):  # the lathe's axis along X, its first corner straight down
            return (x + p[2], p[1], -p[0])

        part.lathe("tyre", tyre, 18, lying)
        part.lathe("heli_grey", hub, 18, lying)
        part.lathe("heli_grey", [(r, -z) for r, z in reversed(hub)], 18, lying)
    return part


def stowed_sonar():
    """The dipping sonar in its well; its origin is where the cable leaves the belly."""
    part = Part("sonar")
    part.lathe("heli_dark", [(0.18, -0.07), (0.24, -0.10), (0.30, -0.06), (0.315, 0.0),
                             (0.315, 0.14), (0.27, 0.14), (0.20, 0.0), (0.18, 0.10), (0.0, 0.10)],
               24)
    part.lathe("sonar_body", [(0.0, -0.36), (0.10, -0.355), (0.16, -0.32), (0.175, -0.26),
                              (0.175, -0.06), (0.165, 0.08)], 18)
    part.lathe("heli_metal", [(0.176, -0.20), (0.180, -0.196), (0.180, -0.184), (0.176, -0.18)], 18)
    return part


def hoist():
    """The rescue winch above the cabin door; the cable leaves it at the origin."""
    part = Part("hoist")
    for y in (-0.20, 0.20):
        part.beam("heli_dark", (-0.66, y, 0.16), (0.04, 0.5 * y, 0.12), 0.05, 0.07)
    part.pipe("heli_dark", [(-0.52, 0.14, -0.18), (-0.06, 0.06, 0.10)], 0.026, 8)

    def across(p):  # the drum's axis along Y
        return (p[0], p[2], -p[1])

    part.lathe("heli_grey", [(0.0, -0.25), (0.11, -0.25), (0.14, -0.22), (0.14, 0.10), (0.10, 0.13),
                             (0.10, 0.24), (0.07, 0.27), (0.0, 0.27)], 18,
               lambda p: add_z(across(p), 0.10))
    part.lathe("heli_metal", [(0.145, -0.10), (0.150, -0.08), (0.150, 0.0), (0.145, 0.02)], 18,
               lambda p: add_z(across(p), 0.10))
    part.lathe("heli_dark", [(0.018, -0.19), (0.035, -0.17), (0.035, -0.05), (0.02, 0.0)], 12)
    hook = [(0, 0, -0.18), (0, 0.0, -0.24), (0, 0.04, -0.29), (0, 0.0, -0.33), (0, -0.04, -0.30)]
    part.pipe("heli_metal", hook, 0.012, 8)
    return part


def add_z(p, z):
    return (p[0], p[1], p[2] + z)


def front_lamp():
    """The landing lamp, shining along +Y."""
    part = Part("front_lamp")

    def forward(p):
        return (p[0], p[2], -p[1])

    part.lathe("heli_dark", [(0.0, -0.13), (0.06, -0.12), (0.11, -0.05), (0.135, 0.02),
                             (0.135, 0.04), (0.122, 0.04), (0.118, 0.02)], 20, forward)
    part.lathe("front_lamp", [(0.119, 0.022), (0.08, 0.036), (0.0, 0.042)], 20, forward)
    part.pipe("heli_dark", [(0, -0.06, 0.05), (0, -0.05, 0.22)], 0.03, 10)
    return part


def parts():
    return [fuselage(), cockpit(), pane("windows"), pane("glass_top_left"), *main_rotor(),
            *tail_rotor(), wiper("wiper_left"), wiper("wiper_right"),
            wheel("wheel_nose", 0.27, 0.14, (-0.15, 0.15)), wheel("wheel_main", 0.35, 0.24, (0.0,)),
            wreck(), stowed_sonar(), hoist(), front_lamp()]
