# SPDX-License-Identifier: MIT
"""Solids built from convex polygons.

Coordinates are metres, X right, Y forward, Z up. Polygons run counter-clockwise when seen from
outside, so that the right-hand rule gives the outward normal.
"""

import math

# Edges sharper than this stay sharp; below it, neighbouring faces share a smooth normal.
CREASE_COSINE = math.cos(math.radians(40))
# Triangles smaller than this (m²) are the leftovers of rings that close to a point.
SMALLEST_AREA = 1e-7


def add(a, b):
    return (a[0] + b[0], a[1] + b[1], a[2] + b[2])


def sub(a, b):
    return (a[0] - b[0], a[1] - b[1], a[2] - b[2])


def scale(a, s):
    return (a[0] * s, a[1] * s, a[2] * s)


def dot(a, b):
    return a[0] * b[0] + a[1] * b[1] + a[2] * b[2]


def cross(a, b):
    return (a[1] * b[2] - a[2] * b[1], a[2] * b[0] - a[0] * b[2], a[0] * b[1] - a[1] * b[0])


def normalize(a):
    return scale(a, 1 / math.sqrt(dot(a, a)))


def rotate_x(p, degrees):
    c, s = math.cos(math.radians(degrees)), math.sin(math.radians(degrees))
    return (p[0], c * p[1] - s * p[2], s * p[1] + c * p[2])


def rotate_z(p, degrees):
    c, s = math.cos(math.radians(degrees)), math.sin(math.radians(degrees))
    return (c * p[0] - s * p[1], s * p[0] + c * p[1], p[2])


def lerp(a, b, t):
    return add(scale(a, 1 - t), scale(b, t))


def flipped_x(p):
    return (-p[0], p[1], p[2])


def mirrored(half):
    """A closed ring from its right half, which runs from top centre to bottom centre."""
    return half + [(-x, y, z) for x, y, z in reversed(half[1:-1])]


class Part:
    """One named object of a file: what a prefab's mesh node shows.

    Every operation takes the name of the surface's material first. Surfaces appear in the file in
    the order in which their materials are first used.
    """

    def __init__(self, name):
        self.name = name
        self.triangles = []  # (material, (a, b, c))
        self.places = {}  # texture coordinates of the corners, by the triangle's number, if it has any

    def polygon(self, material, points, places=None):
        """A convex polygon, as a fan. Corners that coincide are dropped."""
        for i in range(1, len(points) - 1):
            corners = (points[0], points[i], points[i + 1])
            double_area = cross(sub(corners[1], corners[0]), sub(corners[2], corners[0]))
            if math.sqrt(dot(double_area, double_area)) > 2 * SMALLEST_AREA:
                if places:
                    self.places[len(self.triangles)] = (places[0], places[i], places[i + 1])
                self.triangles.append((material, corners))

    def hexahedron(self, material, bottom, top):
        """A solid between two quadrilaterals that run counter-clockwise seen from the top."""
        self.polygon(material, top)
        self.polygon(material, bottom[::-1])
        for i in range(4):
            j = (i + 1) % 4
            self.polygon(material, [bottom[i], bottom[j], top[j], top[i]])

    def box(self, material, size, center=(0, 0, 0)):
        x, y, z = (s / 2 for s in size)
        corners = [(-x, -y), (x, -y), (x, y), (-x, y)]
        self.hexahedron(material, *([add((cx, cy, h), center) for cx, cy in corners]
                                    for h in (-z, z)))

    def beam(self, material, a, b, width, height):
        """A bar of rectangular section from a to b; `height` is its measure nearest to vertical."""
        along = normalize(sub(b, a))
        side = (1, 0, 0) if abs(along[2]) > 0.99 else normalize(cross(along, (0, 0, 1)))
        up = cross(side, along)
        corners = [(-1, -1), (1, -1), (1, 1), (-1, 1)]
        offsets = [add(scale(side, sx * width / 2), scale(up, sz * height / 2))
                   for sx, sz in corners]
        # Seen from b, which is the end that counts as the top here, the corners run clockwise.
        self.hexahedron(material, [add(a, o) for o in offsets[::-1]],
                        [add(b, o) for o in offsets[::-1]])

    def cone(self, material, a, b, radius_a, radius_b, sides=12):
        """A cylinder or a frustum from a to b; a radius of 0 makes it a point. The first corner of
        both rims lies straight down (for vertical axes: to −Y)."""
        along = normalize(sub(b, a))
        down = (0, -1, 0) if abs(along[2]) > 0.99 else (0, 0, -1)
        v = normalize(sub(down, scale(along, dot(down, along))))
        u = cross(along, v)

        def rim(center, radius):
            angles = [2 * math.pi * i / sides for i in range(sides)]
            return [add(center, add(scale(v, radius * math.cos(t)), scale(u, radius * math.sin(t))))
                    for t in angles]

        rim_a, rim_b = rim(a, radius_a), rim(b, radius_b)
        for i in range(sides):
            j = (i + 1) % sides
            self.polygon(material, [rim_a[i], rim_a[j], rim_b[j], rim_b[i]])
        self.polygon(material, rim_a[::-1])
        self.polygon(material, rim_b)

    def cylinder(self, material, a, b, radius, sides=12):
        self.cone(material, a, b, radius, radius, sides)

    def extrusion(self, material, outline, offset):
        """A prism: `outline` (convex, counter-clockwise when seen against `offset`) swept along
        `offset`."""
        far = [add(p, offset) for p in outline]
        self.polygon(material, outline[::-1])
        self.polygon(material, far)
        for i in range(len(outline)):
            j = (i + 1) % len(outline)
            self.polygon(material, [outline[i], outline[j], far[j], far[i]])

    def loft(self, rings, material, close=True):
        """A skin over rings with equally many points, from the rear to the front, each running
        clockwise as seen from the rear (top, right, bottom, left). `material` is a name or a
        function of (section, side) that answers a name, or None for an opening. `close` adds flat
        ends, which take the material of the first and of the last section's first side."""
        of = material if callable(material) else lambda section, side: material
        count = len(rings[0])
        for i in range(len(rings) - 1):
            for j in range(count):
                if of(i, j) is not None:
                    k = (j + 1) % count
                    self.polygon(of(i, j), [rings[i][j], rings[i][k], rings[i + 1][k],
                                            rings[i + 1][j]])
        if close:
            self.cap(of(0, 0), rings[0][::-1])
            self.cap(of(len(rings) - 2, 0), rings[-1])

    def cap(self, material, ring):
        """A flat end that may be slightly concave: a fan around its centre. The ring runs
        counter-clockwise as seen from outside."""
        center = scale(tuple(map(sum, zip(*ring))), 1 / len(ring))
        for i in range(len(ring)):
            self.polygon(material, [center, ring[i], ring[(i + 1) % len(ring)]])

    def ellipsoid(self, material, center, radii, rings=6, sides=12):
        levels = []
        for i in range(rings + 1):
            lat = math.pi * (i / rings - 0.5)
            levels.append([add(center, (radii[0] * math.cos(lat) * math.sin(t),
                                        radii[1] * math.sin(lat),
                                        radii[2] * math.cos(lat) * math.cos(t)))
                           for t in (2 * math.pi * j / sides for j in range(sides))])
        self.loft(levels, material, close=False)

    def solid(self, material, rings):
        """A closed solid over rings with equally many points, whichever way they run."""
        skin = Part(self.name)
        skin.loft(rings, material)
        inside_out = skin.volume() < 0
        for name, (a, b, c) in skin.triangles:
            self.triangles.append((name, (a, c, b) if inside_out else (a, b, c)))

    def lathe(self, material, profile, sides=16, place=lambda p: p):
        """A body turned about Z: `profile` lists (radius, height) upwards along the outside, and
        may turn back inside to form a hollow. `material` is a name or a function of the section
        that answers one. `place` carries the body to where it belongs; it must not mirror."""
        of = material if callable(material) else lambda section: material
        turns = [2 * math.pi * i / sides for i in range(sides)]
        rims = [[place((r * math.cos(t), r * math.sin(t), z)) for t in turns] for r, z in profile]
        for n, (low, high) in enumerate(zip(rims, rims[1:])):
            for i in range(sides):
                j = (i + 1) % sides
                self.polygon(of(n), [low[i], low[j], high[j], high[i]])

    def pipe(self, material, points, radius, sides=8, hollow=False):
        """A round bar along a line of points, mitred at the bends; a hollow one lacks its ends."""
        along = [normalize(sub(b, a)) for a, b in zip(points, points[1:])]
        side = normalize(cross(along[0], (1, 0, 0) if abs(along[0][0]) < 0.9 else (0, 1, 0)))
        other = cross(along[0], side)
        turns = [2 * math.pi * k / sides for k in range(sides)]
        offsets = [add(scale(side, radius * math.cos(t)), scale(other, radius * math.sin(t)))
                   for t in turns]
        rings = []
        for i, p in enumerate(points):
            before, after = along[max(i - 1, 0)], along[min(i, len(along) - 1)]
            mitre = normalize(add(before, after))
            # Along the bar that ends here to the mitre's plane, then square to the one that begins.
            cut = [sub(o, scale(before, dot(o, mitre) / max(dot(before, mitre), 0.3)))
                   for o in offsets]
            rings.append([add(p, o) for o in cut])
            offsets = [sub(o, scale(after, dot(o, after))) for o in cut]
        self.loft(rings, material, close=not hollow)

    def lens(self, material, outline, center):
        """A slightly domed or flat patch: a fan of `outline`, counter-clockwise seen from outside,
        around `center`."""
        for a, b in zip(outline, outline[1:] + outline[:1]):
            self.polygon(material, [center, a, b])

    def band(self, material, outer, inner):
        """A flat frame between two outlines with equally many points, counter-clockwise seen from
        outside."""
        for i in range(len(outer)):
            j = (i + 1) % len(outer)
            self.polygon(material, [outer[i], outer[j], inner[j], inner[i]])

    def disc(self, material, inner, outer, z=0.0, sides=48, place=lambda p: p):
        """A flat ring, seen from +Z; `place` carries it into its final plane."""
        def point(radius, i):
            t = 2 * math.pi * (i % sides) / sides
            return place((radius * math.cos(t), radius * math.sin(t), z))

        for i in range(sides):
            quad = [point(inner, i), point(outer, i), point(outer, i + 1), point(inner, i + 1)]
            self.polygon(material, quad)

    def rectangle(self, material, x0, x1, y0, y1, z):
        """A level rectangle, seen from above."""
        self.polygon(material, [(x0, y0, z), (x1, y0, z), (x1, y1, z), (x0, y1, z)])

    def merge(self, other, transform=lambda p: p, material=None):
        """Adds a transformed copy, of one material if given; the transform must not mirror."""
        for number, places in other.places.items():
            self.places[len(self.triangles) + number] = places
        for name, corners in other.triangles:
            self.triangles.append((material or name, tuple(transform(p) for p in corners)))

    def merge_both_sides(self, right):
        """Adds a part of the right side and its mirror image."""
        self.merge(right)
        for material, corners in right.triangles:
            self.triangles.append((material, tuple(flipped_x(p) for p in corners[::-1])))

    def volume(self):
        """Signed volume: positive for a closed solid with outward winding."""
        return sum(dot(a, cross(b, c)) for _, (a, b, c) in self.triangles) / 6

    def corner_normals(self):
        """For every triangle the three normals of its corners, smoothed up to the crease angle and
        weighted by area."""
        at = {}
        faces = []
        for _, (a, b, c) in self.triangles:
            area = cross(sub(b, a), sub(c, a))
            faces.append((area, normalize(area)))
            for p in (a, b, c):
                at.setdefault(rounded(p), []).append(faces[-1])
        result = []
        for (_, corners), (_, unit) in zip(self.triangles, faces):
            normals = []
            for p in corners:
                near = [area for area, other in at[rounded(p)] if dot(unit, other) > CREASE_COSINE]
                normals.append(normalize(tuple(map(sum, zip(*near)))))
            result.append(normals)
        return result


def rounded(p, digits=4):
    """Coordinates as they stand in the file: a tenth of a millimetre, without negative zeros."""
    return tuple(round(v, digits) + 0.0 for v in p)
