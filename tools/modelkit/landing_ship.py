# SPDX-License-Identifier: MIT
"""The landing ship: 130 m x 16 m, flight deck aft, its top exactly 8.00 m above the waterline."""

from .markings import number
from .mesh import Part, add, flipped_x
from .naval import (Hull, anchor_gear, approach_aids, bar_radar, boat, close_in_gun, davit,
                    deck_lights, deck_rails, dome, door, flag, flag_staff, flight_deck, hangar,
                    ladder, louvres, mast, net, panel, portholes, rafts, railing, rod, sloped, whip,
                    windows, yard)

DECK = (7.4, -62.5, -25.0, 8.00, 0.20)
FORM = Hull([  # y, deck, waterline, deck's height, keel, fullness
    (-65.0, 7.7, 7.4, 7.8, -2.2, 4.0), (-55.0, 7.9, 7.7, 7.8, -3.6, 5.0),
    (-30.0, 8.0, 8.0, 7.8, -4.2, 6.0), (20.0, 8.0, 8.0, 7.8, -4.2, 6.0),
    (38.0, 8.0, 7.3, 8.2, -4.2, 4.5), (50.0, 7.4, 5.0, 9.2, -4.1, 3.2),
    (58.0, 5.9, 2.4, 10.0, -3.6, 2.4), (62.0, 4.5, 0.9, 10.3, -2.4, 2.0),
    (64.0, 3.4, 0.2, 10.4, -0.6, 2.0), (65.5, 2.3, 0.0, 10.5, 2.4, 2.0),
    (67.0, 1.0, 0.0, 10.6, 6.8, 2.0), (67.8, 0.12, 0.0, 10.6, 10.2, 2.0)],
    [-65, -63, -59, -55, -46, -38, -30, -18, -6, 6, 20, 27, 33, 38, 43, 47, 50, 53, 56, 58, 60, 62,
     63, 64, 65, 65.8, 66.5, 67.2, 67.8])


def hull():
    part = FORM.skin(("ship_deck", "ship_grey", "ship_black", "ship_bottom"))
    part.box("ship_dark", (10.6, 0.12, 5.6), (0, -65.02, 4.4))  # the stern gate of the dock
    part.box("ship_light", (10.2, 0.12, 5.2), (0, -65.06, 4.4))
    for k in range(7):
        part.box("ship_grey", (0.25, 0.2, 5.2), (-4.5 + 1.5 * k, -65.08, 4.4))
    strake = [FORM.side(0, 3.6, y, 0.05) for y in (-60, -30, 0, 20, 38, 50)]
    part.pipe("ship_dark", strake, 0.16, 6)  # rubbing strakes
    part.pipe("ship_dark", [flipped_x(p) for p in strake], 0.16, 6)
    number(part, "marking_white", "904", 2.2, lambda u, v: FORM.side(u, 4.6 + v, 47.0, 0.03))
    number(part, "marking_white", "904", 2.2,
           lambda u, v: flipped_x(FORM.side(4.2 - u, 4.6 + v, 47.0, 0.03)))
    return part


def houses(top):
    """Three tiers with the hangar at the rear and the bridge at the front."""
    walls = sloped(top, 7.75, -24.8, 27, 7.75, 14.5, 0.04, 1.5, 0.0)
    hangar(top, walls[0], 1, 9.0, 5.4)
    for wall in (walls[1], walls[5]):
        portholes(top, wall, 4.9, 4.0, wall.width - 4.0, 2.6)
        portholes(top, wall, 2.0, 14.0, wall.width - 6.0, 2.6)
        door(top, wall, 0.25 * wall.width)
        door(top, wall, 0.7 * wall.width)
        ladder(top, wall, 0.4 * wall.width, 0.2, 6.6)
    windows(top, walls[3], 4.2, 5.2, 0.6, 0.7, 1.2)
    upper = sloped(top, 6.9, -4, 25, 14.5, 17.4, 0.05, 1.8, 1.0)
    for wall in (upper[2], upper[6]):
        portholes(top, wall, 1.6, 2.0, wall.width - 2.0, 2.4)
        door(top, wall, 0.5 * wall.width)
    bridge = sloped(top, 7.3, 8, 24.6, 17.4, 20.4, -0.04, 2.4, 1.2, rake=-0.14)
    for wall in bridge[2:7]:
        windows(top, wall, 1.2, 2.3)
    sloped(top, 4.6, 7, 20, 20.4, 22.0, 0.12, 1.4, 1.0)
    for side in (-1, 1):
        railing(top, [(side * 7.3, -24.0, 14.5), (side * 7.3, 25.0, 14.5)][::side])
        railing(top, [(side * 7.0, 9.5, 20.4), (side * 7.0, 22.0, 20.4)][::side])
        whip(top, (side * 6.2, 10.0, 20.4), 8.0)
    rafts(top, 6.4, -22.5, 14.5, 4)


def funnel():
    part = Part("funnel")
    walls = sloped(part, 1.5, -17.0, -9.5, 14.5, 20.2, 0.06, 0.5, 0.5)
    for wall in (walls[2], walls[6]):
        louvres(part, wall, 0.6, wall.width - 0.6, 3.2, 5.0)
    sloped(part, 1.25, -16.5, -10.0, 20.2, 20.9, 0.2, 0.4, 0.4, material="ship_black")
    for y in (-14.8, -12.0):
        part.lathe("ship_black", [(0.45, 20.6), (0.42, 21.8), (0.34, 21.8), (0.30, 21.2),
                                  (0.0, 21.2)],
                   12, lambda p, y=y: add(p, (0, y, 0)))
    return part


def aloft(top):
    """Funnels side by side, masts, aerials and guns."""
    for x in (-4.0, 4.0):
        top.merge(funnel(), lambda p, x=x: add(p, (x, 0, 0)))
    main = mast(top, 11, 22.0, 29.5, 1.8, 0.8)
    for wall in main[::2]:
        panel(top, wall, "ship_dark", 0.3 * wall.width, 0.7 * wall.width, 4.8, 6.2)
    yard(top, 11, 26.4, 4.2)
    yard(top, 11, 28.6, 2.4)
    bar_radar(top, (0, 11, 29.5), 4.2)
    flag_staff(top, (0, 10.4, 29.5), 4.5)
    dome(top, (-2.8, 16.5, 21.6), 0.9)
    dome(top, (2.8, 16.5, 21.6), 0.9)
    dome(top, (0, -6.5, 14.5), 1.2)
    close_in_gun(top, (0, 17.2, 22.0), 1)
    close_in_gun(top, (0, -20.5, 14.5), -1)


def cargo(top):
    """Vehicles and containers on the forward deck, and the crane that lands them."""
    for x in (-3.6, 0.0, 3.6):
        truck(top, x, 31.5, 8.0)
    for x in (-3.2, 3.2):
        container(top, x, 41.0, 8.35, "cargo_green" if x < 0 else "ship_light")
    container(top, 0.0, 41.0, 8.35, "cargo_green")
    top.cylinder("ship_grey", (6.2, 36.5, 8.0), (6.2, 36.5, 13.6), 0.7, 16)
    top.box("ship_grey", (1.8, 2.0, 1.8), (6.2, 36.5, 14.2))
    top.box("window_dark", (1.84, 0.9, 0.8), (6.2, 37.1, 14.5))
    jib = [(5.8, 37.4, 14.6), (-2.0, 45.5, 17.6)]
    for dx, dz in ((-0.35, -0.3), (0.35, -0.3), (0.0, 0.35)):
        top.pipe("marking_yellow", [(x + dx, y, z + dz) for x, y, z in jib], 0.09, 6)
    for k in range(12):
        t = k / 12
        a, b = ([p0 + (p1 - p0) * (t + dt) for p0, p1 in zip(*jib)] for dt in (0.0, 1 / 12))
        rod(top, "marking_yellow", (a[0] - 0.35, a[1], a[2] - 0.3), (b[0], b[1], b[2] + 0.35), 0.04)
        rod(top, "marking_yellow", (a[0] + 0.35, a[1], a[2] - 0.3), (b[0], b[1], b[2] + 0.35), 0.04)
    rod(top, "ship_dark", jib[1], (-2.0, 45.5, 12.0), 0.03)
    top.box("ship_dark", (0.4, 0.4, 0.6), (-2.0, 45.5, 11.8))


def truck(top, x, y, z):
    """A lorry under its canvas."""
    top.box("cargo_green", (2.3, 6.4, 0.35), (x, y, z + 0.95))
    top.hexahedron("cargo_green", [(x - 1.15, y + 1.5, z + 1.1), (x + 1.15, y + 1.5, z + 1.1),
                                   (x + 1.15, y + 3.2, z + 1.1), (x - 1.15, y + 3.2, z + 1.1)],
                   [(x - 1.0, y + 1.6, z + 2.5), (x + 1.0, y + 1.6, z + 2.5),
                    (x + 1.0, y + 2.8, z + 2.5), (x - 1.0, y + 2.8, z + 2.5)])
    top.box("window_dark", (1.7, 0.05, 0.6), (x, y + 3.06, z + 2.0))
    roof = [(-1.12, 1.1), (1.12, 1.1), (1.15, 2.5), (0.75, 2.95), (-0.75, 2.95), (-1.15, 2.5)]
    top.solid("canvas", [[(x + u, y + v, z + w) for u, w in roof] for v in (-3.2, 1.3)])
    for dy in (-2.3, -1.1, 2.3):
        for side in (-1, 1):
            top.cylinder("tyre", (x + side * 1.15, y + dy, z + 0.52),
                         (x + side * 0.8, y + dy, z + 0.52), 0.52, 14)


def container(top, x, y, z, material):
    top.box(material, (2.44, 6.06, 2.59), (x, y, z + 1.3))
    for k in range(9):
        for side in (-1, 1):
            top.box(material, (0.10, 0.28, 2.3), (x + side * 1.23, y - 2.6 + 0.65 * k, z + 1.3))
    top.box("ship_dark", (0.05, 0.06, 2.3), (x, y - 3.05, z + 1.3))


def boats(top):
    for side in (-1, 1):
        boat(top, (side * 6.2, -7.5, 15.1), 7.6, 2.5)
        davit(top, side * 4.4, -10.2, 14.5, side)
        tub = Part("landing_craft")
        tub.hexahedron("ship_light", [(4.9, 2.0, 15.0), (6.9, 2.0, 15.0), (6.9, 8.6, 15.0),
                                      (4.9, 8.6, 15.0)],
                       [(4.7, 1.8, 16.5), (7.1, 1.8, 16.5), (7.1, 9.4, 16.5), (4.7, 9.4, 16.5)])
        tub.box("ship_dark", (1.9, 5.2, 0.05), (5.9, 6.0, 16.52))
        tub.box("ship_grey", (1.6, 1.4, 1.0), (5.9, 2.9, 17.0))
    top.merge_both_sides(tub)


def superstructure():
    top = Part("superstructure")
    houses(top)
    aloft(top)
    cargo(top)
    boats(top)
    anchor_gear(top, FORM, 55.5, 9.75)
    deck_rails(top, FORM, [27.5, 33, 38, 43, 47, 50, 53, 56, 58, 60, 62, 63, 64, 65, 65.8, 66.5])
    net(top, 7.7, DECK[1], DECK[2], DECK[3], 1.2)
    deck_lights(top, *DECK[:4])
    approach_aids(top, (-6.4, -24.75, 14.8), (6.4, -24.7, 15.15), (0, -24.2, 16.2), 14.5)
    flag_staff(top, (0, -64.0, 7.8), 5.5)
    return top


def parts():
    return [hull(), superstructure(), *flight_deck(*DECK),
            flag("flag_ensign", "flag_ensign", 3.2, 2.0)]
