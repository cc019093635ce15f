# SPDX-License-Identifier: MIT
"""The frigate: 160 m x 20 m, flight deck aft with its top exactly 6.00 m above the waterline."""

from .markings import number
from .mesh import Part, flipped_x
from .naval import (Hull, anchor_gear, approach_aids, array_face, bar_radar, boat, close_in_gun, davit,
                    deck_lights, deck_rails, dome, door, flag, flag_staff, flight_deck, gun, hangar,
                    hatches, ladder, louvres, mast, net, panel, portholes, rafts, railing, sloped,
                    tubes, whip, windows, yard)

DECK = (8.4, -77.0, -49.0, 6.00, 0.20)
FORM = Hull([  # y, deck, waterline, deck's height, keel, fullness
    (-80.0, 8.7, 7.4, 5.8, -1.3, 3.0), (-70.0, 9.2, 8.4, 5.8, -2.9, 3.0),
    (-50.0, 9.7, 9.3, 5.8, -4.6, 3.6), (-20.0, 10.0, 9.8, 5.8, -5.6, 4.0),
    (15.0, 10.0, 9.5, 5.8, -5.6, 3.6), (35.0, 9.8, 8.0, 5.9, -5.6, 2.8),
    (50.0, 9.0, 5.6, 6.4, -5.6, 2.2), (62.0, 7.3, 3.2, 7.2, -5.6, 2.0),
    (72.0, 4.6, 1.3, 8.2, -5.3, 2.0), (77.0, 2.8, 0.42, 8.8, -4.4, 2.0),
    (79.0, 2.0, 0.12, 9.0, -0.8, 2.0), (80.0, 1.6, 0.05, 9.15, 1.2, 2.0),
    (82.0, 0.8, 0.0, 9.4, 5.6, 2.0), (83.4, 0.10, 0.0, 9.6, 9.0, 2.0)],
    [-80, -78, -74, -70, -64, -57, -50, -42, -34, -26, -18, -8, 2, 12, 20, 28, 35, 41, 46, 51, 55,
     59, 63, 66, 69, 72, 74, 76, 77.5, 79, 80, 81, 82, 82.8, 83.4])


def hull():
    part = FORM.skin(("ship_deck", "ship_grey", "ship_black", "ship_bottom"))
    part.ellipsoid("ship_bottom", (0, 76.5, -4.3), (1.35, 6.0, 1.9), 12, 16)  # bow sonar's dome
    for side in (-1, 1):
        part.pipe("ship_dark", [(side * 3.4, -56, -4.4), (side * 3.4, -70, -4.2)], 0.28, 10)
        part.hexahedron("ship_bottom", [(side * 3.6 - 0.2, -76.5, -4.8),
                                        (side * 3.6 + 0.2, -76.5, -4.8),
                                        (side * 3.6 + 0.2, -73.5, -4.8),
                                        (side * 3.6 - 0.2, -73.5, -4.8)],
                        [(side * 3.6 - 0.2, -77.0, -1.5), (side * 3.6 + 0.2, -77.0, -1.5),
                         (side * 3.6 + 0.2, -73.5, -1.5), (side * 3.6 - 0.2, -73.5, -1.5)])
    number(part, "marking_white", "55", 2.2, lambda u, v: FORM.side(u, 3.2 + v, 55.0, 0.03))
    number(part, "marking_white", "55", 2.2,
           lambda u, v: flipped_x(FORM.side(2.6 - u, 3.2 + v, 55.0, 0.03)))
    return part


def aft_house(top):
    """Hangar with the flight control position and a close-in gun."""
    walls = sloped(top, 9.5, -48.9, -22, 5.75, 12.6, 0.10, 0.0, 0.0, rake=0.0)
    hangar(top, walls[0], 2, 6.2, 5.2)
    for wall in (walls[1], walls[3]):
        portholes(top, wall, 4.6, 3.0, 24.0, 2.6)
    door(top, walls[1], 22.5)
    door(top, walls[3], 3.2)
    cab = sloped(top, 2.0, -48.3, -45.0, 12.6, 14.8, 0.08)
    for wall in (cab[0], cab[1], cab[3]):
        windows(top, wall, 1.0, 1.8, 0.12, 0.8, 0.3)
    close_in_gun(top, (0, -40.5, 12.6), -1)
    tubes(top, (-6.5, -38, 13.4), (-1, 0, 0.8), 6, 1.3, 0.14, "ship_light")
    tubes(top, (6.5, -38, 13.4), (1, 0, 0.8), 6, 1.3, 0.14, "ship_light")
    dome(top, (-5.6, -28, 12.6), 1.1)
    dome(top, (5.6, -28, 12.6), 1.1)
    railing(top, [(-8.3, -48, 12.6), (-8.3, -23, 12.6)])
    railing(top, [(8.3, -23, 12.6), (8.3, -48, 12.6)])
    after = mast(top, -26, 12.6, 20.5, 1.7, 0.8)
    for wall in after[::2]:
        panel(top, wall, "ship_dark", 0.3 * wall.width, 0.7 * wall.width, 4.6, 6.0)
    bar_radar(top, (0, -26, 20.5), 4.4)
    yard(top, -26, 18.2, 2.6)


def midships(top):
    """Funnel, boat bays and missile canisters."""
    walls = sloped(top, 8.3, -22, -8, 5.75, 9.5, 0.10, rake=0.0)
    door(top, walls[1], 1.2)
    door(top, walls[3], 11.5)
    for side in (-1, 1):
        boat(top, (side * 6.6, -14.6, 9.9), 7.2, 2.4)
        davit(top, side * 4.6, -18.0, 9.5, side)
        railing(top, [(side * 7.8, -21.5, 9.5), (side * 7.8, -8.5, 9.5)][::side])
    funnel = sloped(top, 3.4, -19.5, -9.5, 9.4, 16.2, 0.12, 1.0, 1.0)
    for wall in (funnel[2], funnel[6]):
        louvres(top, wall, 0.8, wall.width - 0.8, 2.6, 5.4)
    sloped(top, 2.5, -18.5, -10.6, 16.2, 16.9, 0.3, 0.8, 0.8, material="ship_black")
    for y in (-16.5, -14.4, -12.4):
        for x in (-0.9, 0.9):
            top.lathe("ship_black", [(0.55, 16.6), (0.50, 17.9), (0.40, 17.9), (0.36, 17.2),
                                     (0.0, 17.2)],
                      14, lambda p, x=x, y=y: (p[0] + x, p[1] + y, p[2]))
    for side in (-1, 1):
        tubes(top, (side * 0.6, -4.8, 12.5), (side, 0, 0.35), 4, 3.6, 0.36, "ship_light")


def forward_house(top):
    """Bridge block and main mast with its four fixed arrays."""
    walls = sloped(top, 9.75, -8, 36, 5.7, 12.0, 0.12, 3.5, 0.0, rake=0.25)
    for wall in (walls[1], walls[5]):
        portholes(top, wall, 4.4, 3.0, 36.0, 2.8)
        door(top, wall, 0.5 * wall.width)
        ladder(top, wall, 0.3 * wall.width, 0.2, 6.2)
    upper = sloped(top, 8.2, 2, 33, 12.0, 16.4, 0.10, 4.0, 2.0, rake=0.22)
    for wall in (upper[2], upper[6]):
        portholes(top, wall, 1.7, 2.0, wall.width - 2.0, 2.8)
        door(top, wall, 0.35 * wall.width)
    bridge = sloped(top, 7.7, 14, 31.6, 16.4, 19.4, -0.04, 3.4, 1.5, rake=-0.12)
    for wall in bridge[2:7]:
        windows(top, wall, 1.25, 2.35)
    wings(top)
    roof = sloped(top, 5.4, 6, 27, 19.4, 21.4, 0.15, 2.0, 1.5)
    portholes(top, roof[2], 1.0, 2.0, 12.0)
    main = mast(top, 13, 21.4, 31.0, 3.3, 1.1)
    for wall in main[1::2]:
        array_face(top, wall, 2.4, 0.68)
    for wall in main[::2]:
        panel(top, wall, "ship_dark", 0.3 * wall.width, 0.7 * wall.width, 6.6, 8.2)
    yard(top, 13, 27.4, 5.2)
    yard(top, 13, 29.6, 3.2)
    bar_radar(top, (0, 15.2, 27.2), 3.2)
    top.box("ship_grey", (0.7, 2.2, 0.3), (0, 14.9, 27.05))
    top.lathe("radome", [(0.0, 30.9), (1.15, 31.0), (1.25, 31.7), (1.1, 32.6), (0.5, 33.0),
                         (0.0, 33.05)],
              20, lambda p: (p[0], p[1] + 13, p[2]))
    dome(top, (-4.0, 9.0, 21.0), 0.9)
    dome(top, (4.0, 9.0, 21.0), 0.9)
    top.cylinder("ship_grey", (0, 24.5, 21.4), (0, 24.5, 22.6), 0.5, 14)  # fire-control director
    top.ellipsoid("radome", (0, 24.9, 23.2), (0.9, 0.5, 0.9), 8, 16)
    rafts(top, 8.3, 4.0, 12.0, 5)
    for side in (-1, 1):
        railing(top, [(side * 8.7, -7.0, 12.0), (side * 8.7, 30.0, 12.0)][::side])
        railing(top, [(side * 6.9, 15.0, 19.4), (side * 6.9, 27.5, 19.4)][::side])
        whip(top, (side * 6.2, 16.0, 19.4), 7.5)
        whip(top, (side * 8.0, -6.0, 12.0), 8.5, -0.4)
        tubes(top, (side * 7.2, 0.2, 12.9), (side, 0, 0.8), 6, 1.3, 0.14, "ship_light")


def wings(top):
    """Open bridge wings with their screens and searchlights."""
    right = Part("wing")
    right.box("ship_deck", (1.9, 3.6, 0.15), (8.4, 25.6, 16.45))
    right.box("ship_grey", (0.10, 3.6, 1.1), (9.3, 25.6, 17.0))
    for y in (23.85, 27.35):
        right.box("ship_grey", (1.8, 0.10, 1.1), (8.4, y, 17.0))
    right.cylinder("ship_dark", (9.0, 26.6, 16.5), (9.0, 26.6, 17.8), 0.08, 8)
    right.cylinder("light_white", (9.0, 26.75, 18.0), (9.0, 26.95, 18.0), 0.28, 14)
    right.cylinder("ship_dark", (9.0, 26.35, 18.0), (9.0, 26.75, 18.0), 0.28, 14)
    right.box("light_green", (0.12, 0.4, 0.3), (9.4, 27.0, 16.9))
    top.merge(right)
    for material, corners in right.triangles:
        name = "light_red" if material == "light_green" else material
        top.triangles.append((name, tuple(flipped_x(p) for p in corners[::-1])))


def foredeck(top):
    """Launch cells, gun, breakwater and anchor gear."""
    hatches(top, 4.0, 37.5, 46.5, 6.1, 8, 8)
    gun(top, 55.5, 6.6, 3.0)
    for side in (-1, 1):
        top.beam("ship_grey", (0, 62.5, 7.7), (side * 6.2, 60.3, 7.6), 0.12, 0.9)
    anchor_gear(top, FORM, 68.0, 7.85)
    deck_rails(top, FORM, [37, 41, 46, 51, 55, 59, 63, 66, 69, 72, 74, 76, 77.5, 79, 80, 81, 82])
    top.pipe("ship_grey", [(0, 82.6, 9.5), (0, 82.9, 12.0)], 0.05, 6)


def quarterdeck(top):
    """What surrounds the flight deck."""
    net(top, 8.9, DECK[1], DECK[2], DECK[3])
    deck_lights(top, *DECK[:4])
    for side in (-1, 1):
        for y in (-79.2, -78.5):
            top.cylinder("ship_dark", (side * 5.0, y, 5.75), (side * 5.0, y, 6.3), 0.14, 10)
    approach_aids(top, (-4.6, -49.25, 11.9), (4.6, -49.15, 11.9), (0, -47.9, 15.6), 14.7)


def superstructure():
    top = Part("superstructure")
    aft_house(top)
    midships(top)
    forward_house(top)
    foredeck(top)
    quarterdeck(top)
    flag_staff(top, (0, -78.5, 5.8), 6.0)
    flag_staff(top, (0, 13, 32.9), 7.1)
    return top


def parts():
    return [hull(), superstructure(), *flight_deck(*DECK),
            flag("flag_ensign", "flag_ensign", 3.6, 2.2),
            flag("flag_command", "flag_command", 2.4, 1.5)]
