# SPDX-License-Identifier: MIT
"""The two ships: origin at the middle of the still waterline, bow along +Y."""

import math

from .mesh import Part, mirrored


def hull_rings(length, beam, draught, deck, bow_deck, transom, stations=17):
    """Hull sections from stern to bow. `transom` is the stern's width as a fraction of the beam;
    the deck rises from `deck` to `bow_deck` over the forward third."""
    rings = []
    for i in range(stations):
        t = i / (stations - 1)  # 0 at the stern, 1 at the bow
        y = length * (t - 0.5)
        entry = max(0.0, (t - 0.55) / 0.45)
        run = max(0.0, (0.35 - t) / 0.35)
        water = (1 - entry ** 1.9) * (1 - (1 - transom) * run ** 2)
        flare = (1 - entry ** 3.4) * (1 - 0.7 * (1 - transom) * run ** 2)
        half_water = max(0.02, beam / 2 * water)
        half_deck = max(0.12, beam / 2 * flare)
        keel = -draught * (1 - 0.8 * run ** 2) * (1 - 0.15 * entry ** 4)
        top = deck + (bow_deck - deck) * max(0.0, (t - 0.6) / 0.4) ** 1.5
        rake = 0.055 * length * entry ** 3  # the stem leans forward above the water
        half = [(0, y + rake * 0.6, top), (half_deck, y + rake * 0.6, top),
                (0.5 * (half_deck + half_water), y + rake * 0.2, 0.4 * top),
                (half_water, y - rake * 0.3, 0.0), (0.85 * half_water, y - rake * 0.8, 0.7 * keel),
                (0.12 * half_water, y - rake, keel), (0, y - rake, keel)]
        rings.append(mirrored(half))
    return rings


def hull(*shape):
    """Hull with its weather deck; red below the waterline."""
    part = Part("hull")

    def paint(_, side):
        depth = min(side, 11 - side)  # 0 deck, 1 and 2 topsides, 3 and 4 underwater, 5 keel
        return "ship_deck" if depth == 0 else "ship_grey" if depth < 3 else "ship_bottom"

    part.loft(hull_rings(*shape), paint)
    return part


def house(part, x, y0, y1, z0, z1, slope=0.12, material="ship_grey"):
    """A deckhouse of half-width x with sloping sides."""
    inset = slope * (z1 - z0)
    part.hexahedron(material, [(-x, y0, z0), (x, y0, z0), (x, y1, z0), (-x, y1, z0)],
                    [(inset - x, y0 + inset, z1), (x - inset, y0 + inset, z1),
                     (x - inset, y1 - inset, z1), (inset - x, y1 - inset, z1)])


def window_band(part, x, y, z, height):
    """The bridge's windows: a dark band on the front of a house."""
    part.box("window_dark", (2 * x, 0.12, height), (0, y, z))


def lattice_mast(part, y, z0, z1, spread):
    """A pyramid mast with yards and a radar."""
    part.hexahedron("ship_grey", [(-spread, y - spread, z0), (spread, y - spread, z0),
                                  (spread, y + spread, z0), (-spread, y + spread, z0)],
                    [(-0.5, y - 0.5, z1), (0.5, y - 0.5, z1), (0.5, y + 0.5, z1),
                     (-0.5, y + 0.5, z1)])
    part.cylinder("ship_dark", (0, y, z1), (0, y, z1 + 4), 0.15, 8)
    part.box("ship_dark", (7.0, 0.3, 0.3), (0, y, 0.35 * z0 + 0.65 * z1))
    part.box("ship_dark", (4.6, 0.25, 1.2), (0, y + 0.9, z1 - 0.8))


def flight_deck(x, y0, y1, top, thickness):
    """The landing deck with its circle, lines and touch-down spot, painted into the surface's own
    level: the part's top is flat at `top`, the paint lies 1 cm above it."""
    deck, paint = Part("deck"), Part("deck_markings")
    deck.box("ship_deck", (2 * x, y1 - y0, thickness), (0, (y0 + y1) / 2, top - thickness / 2))
    level = top + 0.01
    middle = (y0 + y1) / 2
    paint.disc("marking_white", 3.6, 4.0, 0, 36, lambda p: (p[0], p[1] + middle, level))
    paint.rectangle("marking_white", -0.15, 0.15, y0 + 0.5, middle - 4.2, level)
    paint.rectangle("marking_white", -0.15, 0.15, middle + 4.2, y1 - 0.5, level)
    paint.rectangle("marking_white", -1.3, -0.9, middle - 1.6, middle + 1.6, level)
    paint.rectangle("marking_white", 0.9, 1.3, middle - 1.6, middle + 1.6, level)
    paint.rectangle("marking_white", -0.9, 0.9, middle - 0.2, middle + 0.2, level)
    for side in (-1, 1):
        edge = side * (x - 0.4)
        paint.rectangle("marking_white", edge - 0.1, edge + 0.1, y0 + 0.4, y1 - 0.4, level)
    return deck, paint


def gun(part, y, z, size):
    part.cylinder("ship_grey", (0, y, z), (0, y, z + 0.3 * size), 0.55 * size, 14)
    house(part, 0.5 * size, y - 0.6 * size, y + 0.6 * size, z + 0.3 * size, z + 1.1 * size, 0.25)
    part.cylinder("ship_dark", (0, y + 0.3 * size, z + 0.75 * size),
                  (0, y + 2.1 * size, z + 0.95 * size), 0.09 * size, 8)


def funnel(part, x, y0, y1, z0, z1):
    house(part, x, y0, y1, z0, z1, 0.10)
    part.box("ship_dark", (1.3 * x, 0.6 * (y1 - y0), 1.0), (0, (y0 + y1) / 2, z1 + 0.4))


def flag_staff(part, at, height):
    x, y, z = at
    part.cylinder("ship_dark", (x, y, z), (x, y, z + height), 0.06, 6)


def flag(name, material, length, width):
    """A cloth that streams from its staff along −X, hanging from the pivot downwards."""
    part = Part(name)
    columns = 6
    for i in range(columns):
        x0, x1 = (-length * k / columns for k in (i, i + 1))
        w0, w1 = (0.10 * math.sin(4.5 * k / columns) * k / columns for k in (i, i + 1))
        part.hexahedron(material,
                        [(x1, w1 - 0.01, -width), (x0, w0 - 0.01, -width), (x0, w0 + 0.01, -width),
                         (x1, w1 + 0.01, -width)],
                        [(x1, w1 - 0.01, 0), (x0, w0 - 0.01, 0), (x0, w0 + 0.01, 0),
                         (x1, w1 + 0.01, 0)])
    return part


def frigate():
    """160 m × 20 m; flight deck aft, its top exactly 6.00 m above the waterline."""
    top = Part("superstructure")
    house(top, 9.2, -48, -22, 5.8, 12.6)                      # hangar
    top.box("ship_dark", (6.4, 0.1, 5.2), (-4.0, -47.6, 8.6))  # its doors
    top.box("ship_dark", (6.4, 0.1, 5.2), (4.0, -47.6, 8.6))
    house(top, 8.0, -22, -8, 5.8, 9.5)
    funnel(top, 3.6, -19, -10, 9.4, 16.5)
    house(top, 9.6, -8, 34, 5.6, 12.0)                        # forward house and bridge
    house(top, 8.4, 4, 32, 12.0, 17.0)
    house(top, 6.5, 6, 26, 17.0, 20.0)
    window_band(top, 6.6, 31.6, 15.6, 1.1)
    lattice_mast(top, 13, 20, 31, 2.4)
    lattice_mast(top, -26, 12.6, 21, 1.6)
    top.box("ship_dark", (8.0, 9.0, 0.5), (0, 42, 6.5))       # launch cells before the bridge
    gun(top, 55, 6.9, 3.2)
    for side in (-1, 1):
        top.cylinder("ship_grey", (side * 6.5, -2, 12), (side * 6.5, -2, 14.5), 1.1, 10)
        top.box("boat_orange", (1.8, 7.5, 1.6), (side * 8.6, -15, 10.4))
    flag_staff(top, (0, -78.5, 5.8), 6.0)
    flag_staff(top, (0, 13, 31), 9.0)
    return [hull(160, 20, 5.6, 5.8, 9.2, 0.84), top, *flight_deck(8.4, -77.0, -49.0, 6.00, 0.20),
            flag("flag_ensign", "flag_ensign", 3.6, 2.2),
            flag("flag_command", "flag_command", 2.4, 1.5)]


def landing_ship():
    """130 m × 16 m; flight deck aft, its top exactly 8.00 m above the waterline."""
    top = Part("superstructure")
    house(top, 7.6, -24, 26, 7.6, 14.5, 0.05)
    house(top, 7.0, 0, 25, 14.5, 19.0)
    house(top, 5.0, 6, 22, 19.0, 21.5)
    window_band(top, 5.6, 24.7, 17.6, 1.1)
    top.box("ship_dark", (9.0, 0.1, 5.0), (0, -23.9, 10.6))   # hangar door
    funnel(top, 2.4, -18, -9, 14.5, 20.5)
    lattice_mast(top, 11, 21.5, 31, 1.9)
    top.box("cargo_green", (10, 14, 2.4), (0, 36, 8.9))       # vehicles under covers
    gun(top, 50, 8.4, 2.0)
    for side in (-1, 1):
        top.box("boat_orange", (1.6, 7.0, 1.6), (side * 7.3, -8, 15.4))
        top.beam("ship_dark", (side * 5.0, 28, 7.6), (side * 1.0, 40, 16.0), 0.6, 0.6)
    flag_staff(top, (0, -64.0, 7.8), 5.5)
    return [hull(130, 16, 4.2, 7.8, 10.4, 0.94), top, *flight_deck(7.4, -62.5, -25.0, 8.00, 0.20),
            flag("flag_ensign", "flag_ensign", 3.2, 2.0)]
