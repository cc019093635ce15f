# SPDX-License-Identifier: MIT
"""Skin of the helicopter: fuselage, engine deck, tail, sponsons and what is painted on them.

The fuselage is a grid of stations along Y and of lines around each station; every opening is a
range of both, so that frames, panes and lining meet edge to edge. All shapes of one side are made
on the right and mirrored.
"""

import math

from .curves import airfoil, rounded_rectangle, superellipse, table, through
from .markings import number
from .mesh import Part, add, dot, flipped_x, mirrored, normalize, rounded, sub

# y, top, half-width of the flat roof, radius of its edge, half-width at the belt (the windows'
# sill), heights of belt, waist and chine, bottom.
SHAPE = table([
    (-9.95, 1.66, 0.05, 0.04, 0.12, 1.52, 1.40, 1.30, 1.24),
    (-9.30, 1.70, 0.09, 0.07, 0.23, 1.46, 1.28, 1.10, 1.01),
    (-8.00, 1.70, 0.15, 0.11, 0.33, 1.42, 1.14, 0.88, 0.76),
    (-6.50, 1.68, 0.22, 0.15, 0.44, 1.36, 0.98, 0.62, 0.46),
    (-5.20, 1.64, 0.36, 0.20, 0.66, 1.24, 0.74, 0.26, 0.08),
    (-4.00, 1.58, 0.56, 0.27, 0.95, 1.08, 0.40, -0.18, -0.36),
    (-2.90, 1.54, 0.72, 0.30, 1.14, 0.98, 0.12, -0.42, -0.61),
    (-1.60, 1.51, 0.79, 0.31, 1.21, 0.94, 0.02, -0.48, -0.69),
    (0.00, 1.50, 0.80, 0.32, 1.22, 0.92, 0.00, -0.48, -0.70),
    (2.00, 1.50, 0.80, 0.32, 1.22, 0.90, 0.00, -0.48, -0.70),
    (2.70, 1.50, 0.80, 0.26, 1.215, 0.62, 0.00, -0.48, -0.70),
    (3.66, 1.50, 0.85, 0.08, 1.18, 0.46, 0.00, -0.46, -0.69),
    (3.74, 1.46, 0.855, 0.07, 1.175, 0.45, 0.00, -0.46, -0.69),
    (4.70, 0.50, 0.85, 0.07, 1.02, 0.30, 0.00, -0.38, -0.62),
    (5.00, 0.37, 0.75, 0.24, 0.93, 0.20, -0.02, -0.34, -0.57),
    (5.30, 0.23, 0.59, 0.24, 0.76, 0.09, -0.06, -0.29, -0.48),
    (5.55, 0.09, 0.40, 0.20, 0.54, 0.00, -0.09, -0.25, -0.38),
    (5.72, -0.02, 0.23, 0.14, 0.32, -0.06, -0.12, -0.21, -0.29),
    (5.80, -0.10, 0.10, 0.07, 0.14, -0.12, -0.14, -0.18, -0.21),
])
SCREEN = (3.74, 4.64)         # stations between which the windscreen is glass
ROOF_PANES = (2.99, 3.66)
DOOR_PANES = (2.78, 3.66)
QUARTER_PANES = (3.74, 4.46)
RAKE = 5.2                    # the windscreen is the plane y + z = 5.2
BULKHEAD = 2.55               # behind the pilots
STATIONS = [-9.95, -9.7, -9.3, -8.8, -8.2, -7.6, -7.0, -6.4, -5.8, -5.4, -5.0, -4.6, -4.2, -3.8,
            -3.4, -2.9, -2.4, -1.8, -1.2, -0.5, 0.2, 0.9, 1.6, 2.1, 2.4, 2.55, 2.78, 2.99, 3.2,
            3.43, 3.66, 3.74, 3.98, 4.22, 4.46, 4.64, 4.70, 4.80, 4.90, 5.0, 5.1, 5.2, 5.3, 5.4,
            5.48, 5.55, 5.62, 5.68, 5.72, 5.76, 5.80]
# Pieces of the right half of a ring, from the top down: roof, its edge, window band, side, belly.
POST, ROOF, EDGE, BAND, SIDE, CHINE, BELLY = 1, 4, 7, 13, 15, 17, 22
TOP_PANE = range(POST, ROOF - 1)
SIDE_PANE = range(EDGE + 1, BAND - 1)


def section(y):
    """Right half of the ring at a station, (x, z) from the top centre to the bottom centre."""
    top, roof, edge, belt, z_belt, z_waist, z_chine, bottom = SHAPE(y)
    on_screen = 3.70 <= y <= 4.70
    if on_screen:
        top = RAKE - y
    crown = 0.0 if on_screen else 0.03 * min(1, abs(y - 4.2) - 0.5) * roof
    post = 0.20 if y <= 3.70 else 0.035
    flat = roof - edge
    post = min(post, 0.3 * flat)
    shoulder = (0.42 * roof + 0.58 * belt, 0.52 * top + 0.48 * z_belt)
    half = [(x, top + crown * (1 - (x / roof) ** 2))
            for x in (0, post, 0.5 * (post + flat), max(flat - 0.02, 0.9 * flat), flat)]
    # The edge of the roof: a parabola from the roof to the line towards the shoulder.
    run = math.dist((roof, top), shoulder)
    end = tuple(a + (b - a) * min(edge / run, 0.5) for a, b in zip((roof, top), shoulder))
    for t in (1 / 3, 2 / 3, 1):
        half.append(tuple(a * (1 - t) ** 2 + 2 * b * t * (1 - t) + c * t * t
                          for a, b, c in zip(half[ROOF], (roof, top), end)))
    side = [half[EDGE], shoulder, (belt, z_belt), (belt, z_waist), (0.88 * belt, z_chine),
            (0.50 * belt, bottom)]
    half += through(side, [(0.08, 0.55, 1), (0.45, 0.90, 1), (0.5, 1), (0.5, 1),
                           (1 / 3, 2 / 3, 1)])[1:]
    return half + [(0.25 * belt, bottom - 0.005), (0, bottom - 0.008)]


def ring(y, inset=0.0):
    """The closed ring at a station, `inset` metres inside the skin."""
    half = section(y)
    if inset:
        ends = [(-half[1][0], half[1][1]), *half, (-half[-2][0], half[-2][1])]
        moved = []
        for a, p, b in zip(ends, half, ends[2:]):
            length = math.dist(a, b)
            moved.append((max(0.0, p[0] + inset * (b[1] - a[1]) / length),
                          p[1] - inset * (b[0] - a[0]) / length))
        moved[0], moved[-1] = (0, moved[0][1]), (0, moved[-1][1])
        half = moved
    return mirrored([(x, y, z) for x, z in half])


def fold(side):
    """The right side's number of a line's piece on either side."""
    return min(side, 2 * BELLY - 1 - side)


def within(i, span):
    return span[0] - 1e-9 <= STATIONS[i] and STATIONS[i + 1] <= span[1] + 1e-9


def opening(i, side):
    """Which pane fills a panel of the fuselage: "windows", "glass_top_left" or None."""
    right = fold(side)
    if right in TOP_PANE and within(i, ROOF_PANES):
        return "glass_top_left" if side >= BELLY else "windows"
    if right in TOP_PANE and within(i, SCREEN):
        return "windows"
    if right in SIDE_PANE and (within(i, DOOR_PANES) or within(i, QUARTER_PANES)):
        return "windows"
    return None


def is_frame(i, side):
    """Whether a panel borders an opening or lies between two of them."""
    right = fold(side)
    cockpit = DOOR_PANES[0] - 1e-9 <= STATIONS[i] and STATIONS[i + 1] <= 4.70 + 1e-9
    if not cockpit or opening(i, side) or right >= BAND:
        return False
    if right < POST:
        return STATIONS[i] >= ROOF_PANES[1] - 1e-9
    if right < ROOF:
        return STATIONS[i] >= ROOF_PANES[0] - 1e-9
    return True


def paint(i, side):
    if opening(i, side):
        return None
    if is_frame(i, side):
        return "heli_dark"
    return "heli_light" if fold(side) >= SIDE + 1 else "heli_grey"


def skin():
    """The outer skin with the openings left out; the tail's end is closed by the pylon."""
    part = Part("skin")
    part.loft([ring(y) for y in STATIONS], paint)
    return part


def pane(name):
    """The glass of one name, set a little inside the frames. The first texture coordinate is the
    distance from the pane's edge."""
    part = Part(name)
    part.loft([ring(y, 0.012) for y in STATIONS],
              lambda i, j: "glass" if opening(i, j) == name else None, close=False)
    rims = borders(part)
    for number, (_, corners) in enumerate(part.triangles):
        part.places[number] = tuple((min(apart(p, *rim) for rim in rims), 0.0) for p in corners)
    return part


def borders(part):
    """The edges that only one triangle has, as pairs of points."""
    edges = {}
    for _, corners in part.triangles:
        for a, b in zip(corners, corners[1:] + corners[:1]):
            edges.setdefault(frozenset((rounded(a), rounded(b))), []).append((a, b))
    return [sides[0] for sides in edges.values() if len(sides) == 1]


def apart(p, a, b):
    """Distance of a point from the line between two others."""
    along, to = sub(b, a), sub(p, a)
    t = max(0.0, min(1.0, dot(to, along) / dot(along, along)))
    return round(math.dist(to, tuple(t * v for v in along)), 4)


def reveals(part, material, inset):
    """The depth of the window frames, from the skin's edge to the lining's, where no other pane
    adjoins."""
    outer, inner = [ring(y) for y in STATIONS], [ring(y, inset) for y in STATIONS]
    count = len(outer[0])
    for i in range(len(outer) - 1):
        for j in range(count):
            if opening(i, j) is None:
                continue
            k = (j + 1) % count
            corners = [(i, j), (i, k), (i + 1, k), (i + 1, j)]
            beyond = [(i - 1, j), (i, k), (i + 1, j), (i, (j - 1) % count)]
            for n, neighbour in enumerate(beyond):
                if opening(*neighbour) is None:
                    (a, b), (c, d) = corners[n], corners[(n + 1) % 4]
                    part.polygon(material, [inner[a][b], outer[a][b], outer[c][d], inner[c][d]])


# ---- things that lie on the skin


def on_side(y, z, lift=0.0):
    """The point of the right side's skin at a station and height, `lift` outside it."""
    half = section(y)[EDGE:]
    for (x0, z0), (x1, z1) in zip(half, half[1:]):
        if z1 <= z <= z0:
            x = x0 + (x1 - x0) * (z0 - z) / (z0 - z1)
            length = math.hypot(x1 - x0, z1 - z0)
            return (x + lift * (z0 - z1) / length, y, z + lift * (x1 - x0) / length)
    raise ValueError(f"no skin at y {y}, z {z}")


def applied(part, place, material, u0, u1, v0, v1, radius=0.06, lift=0.006):
    """A patch with round corners on a surface: `place(u, v, lift)` answers its points."""
    outline = [place(u, v, lift) for u, v in rounded_rectangle(u0, u1, v0, v1, radius)]
    part.lens(material, outline, place(0.5 * (u0 + u1), 0.5 * (v0 + v1), lift))


def outlined(part, place, material, u0, u1, v0, v1, radius=0.06, width=0.025, lift=0.006):
    """The seam around such a patch."""
    outer = rounded_rectangle(u0, u1, v0, v1, radius)
    inner = rounded_rectangle(u0 + width, u1 - width, v0 + width, v1 - width,
                              max(radius - width, 0.01))
    part.band(material, [place(u, v, lift) for u, v in outer],
              [place(u, v, lift) for u, v in inner])


def cabin_window(part, y0, y1, z0, z1):
    applied(part, on_side, "heli_dark", y0, y1, z0, z1, 0.10, 0.006)
    applied(part, on_side, "window_dark", y0 + 0.035, y1 - 0.035, z0 + 0.035, z1 - 0.035, 0.07,
            0.011)


def side_details(door):
    """What the right side carries; `door` is where its cabin door lies, as a span of stations."""
    part = Part("side")
    outlined(part, on_side, "heli_dark", door[0], door[1], -0.42, 1.06, 0.10)
    middle = 0.5 * (door[0] + door[1])
    cabin_window(part, middle - 0.36, middle + 0.36, 0.34, 0.90)
    part.box("heli_dark", (0.03, 0.16, 0.04), on_side(door[1] - 0.16, 0.16, 0.012))
    for z in (1.10, -0.46):  # rails on which it slides to the rear
        part.pipe("heli_dark", [on_side(y, z, 0.03) for y in (door[0] - 1.5, door[0], door[1])],
                  0.022)
    outlined(part, on_side, "heli_dark", 2.62, 3.56, -0.36, 0.44, 0.10)  # the pilot's door
    part.box("heli_dark", (0.03, 0.14, 0.04), on_side(2.78, 0.06, 0.012))
    part.box("heli_dark", (0.10, 0.34, 0.03), on_side(3.1, -0.56, 0.03))  # step
    cabin_window(part, -2.05, -1.45, 0.38, 0.86)
    for y0, y1, z0, z1 in ((-3.0, -2.5, 0.3, 0.7), (-1.2, -0.8, -0.35, -0.05),
                           (4.8, 5.1, -0.12, 0.1), (-6.9, -6.3, 1.02, 1.25)):
        outlined(part, on_side, "heli_seam", y0, y1, z0, z1, 0.04, 0.014)
    for y in (-5.4, -3.2, 2.48):
        seam(part, y)
    for k in range(5):  # cooling slots of the avionics bay
        applied(part, on_side, "heli_dark", -4.62 + 0.12 * k, -4.56 + 0.12 * k, 0.72, 1.0, 0.02)
    return part


def seam(part, y, width=0.012):
    """A joint of the skin's sheets around the right side of a station."""
    rear, front = ([(x + 0.004, v, z) for x, z in section(v)[EDGE:CHINE + 1]]
                   for v in (y - width / 2, y + width / 2))
    for a, b, c, d in zip(rear, rear[1:], front[1:], front):
        part.polygon("heli_seam", [a, b, c, d])


def numbers(part):
    number(part, "marking_white", "37", 0.36, lambda u, v: on_side(-6.2 + u, 0.88 + v, 0.007))
    number(part, "marking_white", "37", 0.36,
           lambda u, v: flipped_x(on_side(-5.77 - u, 0.88 + v, 0.007)))


# ---- engine deck


FAIRING = table([  # y, half-width, top
    (-5.3, 0.10, 1.66), (-4.6, 0.28, 1.80), (-3.6, 0.50, 2.02), (-2.4, 0.64, 2.24),
    (-1.2, 0.70, 2.40), (0.2, 0.71, 2.46), (1.2, 0.68, 2.38), (1.9, 0.56, 2.06), (2.3, 0.40, 1.78),
    (2.5, 0.26, 1.52)])
NACELLE = table([  # y, radius
    (-2.45, 0.29), (-2.1, 0.33), (-1.2, 0.375), (0.2, 0.385), (1.2, 0.365), (1.75, 0.335),
    (1.92, 0.30)])
NACELLE_X, NACELLE_Z = 0.80, 1.84


def arch(y):
    width, top = FAIRING(y)
    outline = superellipse(width, top - 1.35, 0.25, 2.7, 24)
    return [(x, y, 1.35 + z) for x, z in outline]


def on_fairing(y, angle, lift):
    """A point of the fairing's right side; `angle` counts from the top, negative on the right."""
    width, top = FAIRING(y)
    t = math.radians(-angle)
    x = (width + lift) * math.sin(t) ** (2 / 2.7)
    return (x, y, 1.35 + (top - 1.35 + lift) * math.cos(t) ** (2 / 2.7))


def nacelle():
    """The right engine: cowling, air intake and the exhaust, which bends outboard."""
    part = Part("nacelle")
    ys = [-2.45, -2.1, -1.6, -1.0, -0.4, 0.2, 0.8, 1.3, 1.6, 1.8, 1.92]

    def forward(p):
        return (NACELLE_X + p[0], p[2], NACELLE_Z - p[1])

    part.lathe("heli_grey", [(0.2, ys[0])] + [(NACELLE(y)[0], y) for y in ys], 20, forward)
    part.lathe(lambda n: "heli_metal" if n < 5 else "heli_dark",
               [(0.30, 1.92), (0.305, 1.97), (0.29, 2.01), (0.265, 2.02), (0.24, 1.99),
                (0.225, 1.92), (0.22, 1.5), (0.0, 1.5)], 20, forward)
    part.lathe("heli_metal", [(0.13, 1.5), (0.11, 1.64), (0.06, 1.76), (0.0, 1.80)], 16, forward)
    bend = [(0.80, -2.35, 1.86), (0.84, -2.62, 1.87), (0.98, -2.86, 1.90), (1.16, -3.02, 1.93)]
    part.pipe("heli_hot", bend, 0.25, 16, hollow=True)
    inner = Part("inner")
    inner.pipe("heli_dark", bend[1:], 0.215, 16, hollow=True)
    for material, (a, b, c) in inner.triangles:
        part.triangles.append((material, (a, c, b)))
    out = normalize(sub(bend[3], bend[2]))
    rim(part, "heli_hot", bend[3], out, 0.25, 0.215, 16)
    side = normalize((-out[1], out[0], 0))
    part.lens("heli_dark", [add(bend[1], (0.21 * side[0] * math.cos(t),
                                          0.21 * side[1] * math.cos(t), 0.21 * math.sin(t)))
                            for t in (2 * math.pi * k / 16 for k in range(16))], bend[1])
    for y in (-1.3, 0.5):  # joints of the cowling's doors
        part.lathe("heli_seam", [(NACELLE(v)[0] + 0.003, v) for v in (y, y + 0.012)], 20, forward)
    return part


def rim(part, material, center, along, outer, inner, sides):
    """The annular end of a pipe."""
    u = normalize((-along[1], along[0], 0)) if abs(along[2]) < 0.9 else (1, 0, 0)
    v = (along[1] * u[2] - along[2] * u[1], along[2] * u[0] - along[0] * u[2],
         along[0] * u[1] - along[1] * u[0])
    circles = [[add(center, tuple(r * (a * math.cos(t) + b * math.sin(t)) for a, b in zip(u, v)))
                for t in (2 * math.pi * k / sides for k in range(sides))] for r in (outer, inner)]
    part.band(material, *circles)


def engine_deck(part):
    """Gearbox fairing, engines and the fixed part of the mast."""
    ys = [-5.3, -4.9, -4.4, -3.8, -3.1, -2.4, -1.7, -1.0, -0.3, 0.4, 1.0, 1.4, 1.7, 1.95, 2.2, 2.37,
          2.5]
    part.loft([arch(y) for y in ys], "heli_grey")
    part.merge_both_sides(nacelle())
    grilles = Part("grilles")
    for k in range(7):  # oil cooler's louvres
        applied(grilles, on_fairing, "heli_dark", -3.50 + 0.13 * k, -3.43 + 0.13 * k, -58, -24,
                0.015)
    part.merge_both_sides(grilles)
    part.cylinder("heli_dark", (0, 2.0, 1.90), (0, 2.20, 1.93), 0.11, 14)  # cooling air inlet
    part.lathe("heli_dark", [(0.46, 2.34), (0.40, 2.44), (0.26, 2.52), (0.19, 2.62), (0.16, 2.90),
                             (0.0, 2.90)], 20,
               lambda p: add(p, (0, 0.255 + 0.01 * (p[2] - 2.3), 0)))
    part.lathe("heli_metal", [(0.17, 2.60), (0.35, 2.60), (0.36, 2.62), (0.36, 2.67), (0.18, 2.70)],
               20, lambda p: add(p, (0, 0.265, 0)))  # swashplate


# ---- tail


def fin_section(z, leading, trailing, thickness, x=0.0):
    chord = leading - trailing
    return [(x + v, leading - 0.25 * chord + u, z) for u, v in airfoil(chord, thickness / chord, 7)]


def tail(part):
    """Pylon with the tail rotor's gearbox, stabiliser with end plates, skid and shaft cover."""
    part.solid("heli_grey", [fin_section(*s) for s in (
        (1.28, -7.6, -9.97, 0.26), (1.55, -7.9, -9.98, 0.25), (1.75, -8.25, -10.0, 0.24),
        (2.05, -8.55, -10.02, 0.23), (2.4, -8.78, -10.05, 0.25), (2.7, -8.95, -10.08, 0.25),
        (3.0, -9.14, -10.1, 0.20), (3.18, -9.28, -10.1, 0.14), (3.26, -9.42, -10.06, 0.06))])
    part.ellipsoid("heli_grey", (-0.02, -9.40, 2.55), (0.24, 0.38, 0.26), 10, 16)
    part.lathe("heli_dark", [(0.15, 0.16), (0.13, 0.34), (0.075, 0.37), (0.075, 0.46)], 14,
               lambda p: (-p[2], -9.40 + p[0], 2.55 - p[1]))
    half = Part("half")
    half.solid("heli_grey", [[(x, -7.02 - 0.09 * x + u * c, 1.30 + v * c)
                              for u, v in airfoil(1.0, 0.13, 6)]
                             for x, c in ((0.0, 0.92), (0.9, 0.82), (1.66, 0.70), (1.72, 0.64))])
    half.solid("heli_grey", [fin_section(z, lead, trail, 0.07, 1.74) for z, lead, trail in (
        (0.86, -7.02, -7.50), (1.0, -6.92, -7.66), (1.30, -6.86, -7.72), (1.66, -7.10, -7.80),
        (1.78, -7.28, -7.80))])
    part.merge_both_sides(half)
    part.solid("heli_grey", [[(x, y, z) for x, z in ((-w, 1.6), (-w, h), (0, h + 0.05), (w, h),
                                                     (w, 1.6))]
                             for y, w, h in ((-8.3, 0.10, 1.77), (-6.5, 0.12, 1.77),
                                             (-5.0, 0.14, 1.76), (-4.4, 0.10, 1.70))])
    part.pipe("heli_dark", [(0, -8.9, 0.95), (0, -9.5, 0.74), (0, -9.85, 0.76)], 0.035)
    for y in (-9.35, -6.2):
        part.pipe("heli_dark", [(0.0, y, 1.1), (0.0, y - 0.12, 0.86)], 0.02, 6)


def sponson():
    """Right sponson with the main gear's leg, and the pylon for stores."""
    part = Part("sponson")
    rows = table([(-3.05, 1.10, 0.06, 0.05), (-2.85, 1.18, 0.22, 0.17), (-2.3, 1.27, 0.40, 0.27),
                  (-1.6, 1.31, 0.45, 0.29), (-0.8, 1.30, 0.44, 0.28), (0.0, 1.24, 0.35, 0.24),
                  (0.40, 1.17, 0.20, 0.15), (0.55, 1.12, 0.05, 0.04)])
    ys = [-3.05, -2.97, -2.85, -2.6, -2.3, -1.9, -1.5, -1.1, -0.7, -0.3, 0.1, 0.3, 0.45, 0.55]
    rings = []
    for y in ys:
        x, width, height = rows(y)
        rings.append([(x + u, y, -0.22 + v)
                      for u, v in superellipse(width, height, height, 2.6, 20)])
    part.loft(rings, "heli_grey")
    part.box("heli_dark", (0.34, 0.92, 0.02), (1.50, -1.62, -0.497))  # the well's mouth
    part.pipe("heli_metal", [(1.31, -1.60, -0.40), (1.34, -1.60, -0.87)], 0.065, 12)
    part.pipe("heli_metal", [(1.28, -1.60, -0.87), (1.62, -1.60, -0.87)], 0.045, 12)
    part.pipe("heli_metal", [(1.30, -0.85, -0.44), (1.34, -1.52, -0.84)], 0.04, 10)
    part.solid("heli_grey", [[(1.20, y, z) for y, z in ((-0.1, 0.2), (-1.0, 0.2), (-1.0, 0.08),
                                                        (-0.1, 0.08))],
                             [(1.84, y, z) for y, z in ((-0.2, 0.12), (-0.85, 0.12), (-0.85, 0.03),
                                                        (-0.2, 0.03))]])
    part.box("heli_dark", (0.10, 0.95, 0.09), (1.84, -0.52, 0.04))
    for y in (-0.85, -0.2):
        part.pipe("heli_dark", [(1.79, y, 0.01), (1.74, y, -0.10)], 0.018, 6)
        part.pipe("heli_dark", [(1.89, y, 0.01), (1.94, y, -0.10)], 0.018, 6)
    return part


def lamps(part):
    """Position lights, beacons and the sonar well's floodlight."""
    for x, material in ((1.73, "light_green"), (-1.73, "light_red")):
        part.ellipsoid(material, (x, -0.9, -0.22), (0.05, 0.10, 0.05), 6, 10)
    part.ellipsoid("light_white", (0, -10.12, 2.90), (0.04, 0.05, 0.04), 6, 10)
    part.lathe("light_red", [(0.07, 3.24), (0.07, 3.30), (0.05, 3.35), (0.0, 3.37)], 12,
               lambda p: add(p, (0, -9.65, 0)))
    part.lathe("light_red", [(0.0, -0.79), (0.05, -0.77), (0.06, -0.70)], 12,
               lambda p: add(p, (0, 2.9, 0)))


def antennas(part):
    for y, z, h, chord in ((1.95, 2.03, 0.28, 0.22), (-4.35, 1.80, 0.34, 0.26),
                           (-5.75, 1.75, 0.26, 0.2)):
        part.solid("heli_dark", [[(u, y - 0.25 * k + v * c, z - 0.05 + h * k)
                                  for v, u in airfoil(1.0, 0.14, 4)] for k, c in
                                 ((0.0, chord), (0.7, 0.7 * chord), (1.0, 0.5 * chord))])
    part.solid("heli_dark", [[(u, 3.0 + 0.2 * k + v * c, -0.66 - 0.24 * k)
                              for v, u in airfoil(1.0, 0.14, 4)]
                             for k, c in ((0, 0.24), (1, 0.12))])
    rail = [(-0.55, -5.0, 0.95), (-0.86, -5.0, 0.95), (-0.64, -6.6, 1.08), (-0.36, -6.6, 1.08)]
    part.pipe("heli_dark", rail, 0.016, 6)  # short-wave aerial along the boom
    part.pipe("heli_dark", [(-0.45, -5.8, 1.015), (-0.75, -5.8, 1.015)], 0.014, 6)
    part.pipe("heli_metal", [(0.30, 5.52, 0.02), (0.33, 5.60, 0.02), (0.36, 5.86, 0.02)], 0.014, 6)
    part.pipe("heli_metal", [(-0.30, 5.52, 0.02), (-0.33, 5.60, 0.02), (-0.36, 5.86, 0.02)], 0.014,
              6)
    part.lathe("heli_light", [(0.16, 1.70), (0.15, 1.79), (0.09, 1.83), (0.0, 1.84)], 16,
               lambda p: add(p, (0, -3.95, 0.16)))
    eye = Part("eye")  # warning receivers
    eye.ellipsoid("heli_dark", (0.98, 4.72, 0.02), (0.08, 0.10, 0.08), 6, 10)
    eye.ellipsoid("heli_dark", (0.33, -8.3, 1.28), (0.07, 0.10, 0.07), 6, 10)
    part.merge_both_sides(eye)


def belly(part):
    """Search radar, camera turret, sonar well and the nose gear's leg and doors."""
    part.lathe("heli_light", [(0.0, -0.99), (0.40, -0.985), (0.58, -0.95), (0.63, -0.88),
                              (0.62, -0.74), (0.56, -0.66)], 20, lambda p: add(p, (0, 1.75, 0)))
    part.lathe("heli_dark", [(0.0, -0.92), (0.12, -0.90), (0.185, -0.80), (0.19, -0.70),
                             (0.13, -0.60), (0.13, -0.45)], 18, lambda p: add(p, (-0.30, 4.98, 0)))
    part.cylinder("window_dark", (-0.30, 5.13, -0.74), (-0.30, 5.175, -0.735), 0.085, 16)
    rim(part, "heli_dark", (0, -0.9, -0.716), (0, 0, -1), 0.46, 0.30, 24)
    part.pipe("heli_metal", [(0, 4.02, -0.52), (0, 3.90, -0.95)], 0.055, 12)
    part.pipe("heli_metal", [(0, 3.50, -0.60), (0, 3.86, -0.84)], 0.032, 8)
    part.pipe("heli_metal", [(-0.20, 3.90, -0.95), (0.20, 3.90, -0.95)], 0.04, 10)
    for x in (-0.26, 0.26):
        part.hexahedron("heli_light", [(x - 0.012, 3.55, -0.94), (x + 0.012, 3.55, -0.94),
                                       (x + 0.012, 4.25, -0.94), (x - 0.012, 4.25, -0.94)],
                        [(x - 0.012, 3.5, -0.66), (x + 0.012, 3.5, -0.66), (x + 0.012, 4.3, -0.63),
                         (x - 0.012, 4.3, -0.63)])
    part.box("heli_dark", (0.44, 0.9, 0.02), (0, 3.9, -0.697))


def dispensers(part):
    """Pods of decoy tubes, whose mouths look outboard, to the rear and down."""
    pod = Part("pod")
    pod.hexahedron("heli_dark", [(0.85, -4.28, 0.42), (1.12, -4.28, 0.46), (1.12, -3.22, 0.46),
                                 (0.85, -3.10, 0.42)],
                   [(0.85, -4.28, 0.84), (1.12, -4.28, 0.78), (1.12, -3.22, 0.78),
                    (0.85, -3.10, 0.84)])
    for y in (-3.45, -3.75, -4.05):
        for dy in (-0.06, 0.06):
            for dz in (-0.06, 0.06):
                pod.lathe(lambda n: "heli_metal" if n == 0 else "tyre",
                          [(0.05, 0.0), (0.036, 0.004), (0.0, 0.003)], 8, lambda p, y=y + dy,
                          z=0.62 + dz: (1.122 + p[2], y + p[0], z + p[1]))
    part.merge_both_sides(pod)


def fuselage():
    """All of the fixed airframe's outside."""
    part = Part("fuselage")
    part.merge(skin())
    part.merge(side_details((0.72, 2.28)))
    left = Part("left")
    left.merge_both_sides(side_details((-0.3, 1.0)))
    for material, corners in left.triangles:
        if sum(p[0] for p in corners) < 0:
            part.triangles.append((material, corners))
    numbers(part)
    engine_deck(part)
    tail(part)
    part.merge_both_sides(sponson())
    belly(part)
    dispensers(part)
    antennas(part)
    lamps(part)
    return part
