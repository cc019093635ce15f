# SPDX-License-Identifier: MIT
"""Solids against the volumes that geometry books give them: a wrong sign or value means a face that
is missing, doubled or wound the wrong way."""

import math
import pathlib
import sys
import unittest

import yaml

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parent.parent))

from check_assets import glb_model, obj_model  # noqa: E402
from modelkit import airfield, equipment, frigate, landing_ship, rotors  # noqa: E402
from modelkit.curves import Monotone  # noqa: E402
from modelkit.glb import glb_bytes  # noqa: E402
from modelkit.mesh import Part, mirrored  # noqa: E402
from modelkit.obj import obj_text  # noqa: E402


def polygon_factor(sides):
    """Area of a regular polygon in a unit circle."""
    return sides / 2 * math.sin(2 * math.pi / sides)


class Solids(unittest.TestCase):
    def volume(self, operation, *arguments):
        part = Part("solid")
        getattr(part, operation)(*arguments)
        return part.volume()

    def test_volumes_are_those_of_the_closed_solid(self):
        self.assertAlmostEqual(self.volume("box", "m", (1, 2, 3), (40, 50, 60)), 6)
        for end in ((3, 0, 0), (0, 3, 0), (0, 0, 3), (-1, -2, 2)):
            self.assertAlmostEqual(self.volume("beam", "m", (0, 0, 0), end, 1, 2), 6)
            self.assertAlmostEqual(self.volume("cylinder", "m", (0, 0, 0), end, 2, 9),
                                   3 * 4 * polygon_factor(9))
            self.assertAlmostEqual(self.volume("cone", "m", (0, 0, 0), end, 2, 0, 9),
                                   4 * polygon_factor(9))
        outline = [(0, 0, 0), (0, 1, 0), (0, 1, 1), (0, 0, 1)]
        self.assertAlmostEqual(self.volume("extrusion", "m", outline, (2, 0, 0)), 2)
        self.assertAlmostEqual(self.volume("ellipsoid", "m", (7, 8, 9), (1, 2, 3), 60, 60),
                               8 * math.pi, delta=0.1)
        self.assertAlmostEqual(self.volume("pipe", "m", [(0, 0, 0), (0, 0, 2), (0, 3, 2)], 1, 9),
                               5 * polygon_factor(9))
        self.assertAlmostEqual(self.volume("lathe", "m", [(0, 0), (2, 0), (2, 3), (1, 3), (1, 1),
                                                          (0, 1)], 9), 10 * polygon_factor(9))
        square = [(0, 0), (0, 2), (2, 2), (2, 0)]
        for order in (1, -1):
            slices = [[(x, y, z) for x, y in square[::order]] for z in (5, 8)]
            self.assertAlmostEqual(self.volume("solid", "m", slices), 12)
        ring = [(0, 1), (1, 1), (1, -1), (0, -1)]
        rings = [mirrored([(x, y, z) for x, z in ring]) for y in (0, 5)]
        self.assertAlmostEqual(self.volume("loft", rings, "m"), 20)

    def test_an_opening_in_a_loft_takes_out_just_its_panel(self):
        rings = [mirrored([(0, y, 1), (1, y, 0), (0, y, -1)]) for y in (0, 1, 2)]
        whole, open_loft = Part("a"), Part("b")
        whole.loft(rings, "m")
        open_loft.loft(rings, lambda i, j: None if (i, j) == (1, 2) else "m")
        self.assertEqual(len(whole.triangles) - len(open_loft.triangles), 2)

    def test_closed_models_face_outwards(self):
        closed = [*equipment.missile(), *equipment.dipping_sonar(), *equipment.decoy(),
                  *equipment.commander(), rotors.blade(8, 0.7, 0.5, 0.3), frigate.hull(),
                  landing_ship.hull()]
        for part in closed:
            self.assertGreater(part.volume(), 0, part.name)

    def test_a_mirrored_side_faces_outwards_too(self):
        right, both = Part("right"), Part("both")
        right.box("m", (1, 1, 1), (2, 0, 0))
        both.merge_both_sides(right)
        self.assertAlmostEqual(both.volume(), 2)
        self.assertEqual({round(sum(p[0] for p in c) / 3) for _, c in both.triangles} & {-2, 2},
                         {-2, 2})

    def test_normals_smooth_gentle_edges_and_keep_sharp_ones(self):
        part = Part("drum")
        part.cylinder("m", (0, 0, 0), (0, 0, 1), 1, 36)
        for (_, corners), normals in zip(part.triangles, part.corner_normals()):
            for p, n in zip(corners, normals):
                radial = (p[0], p[1], 0)
                expected = (0, 0, 1 if p[2] else -1) if abs(n[2]) > 0.5 else radial
                self.assertLess(math.dist(n, expected), 0.06)


class Curves(unittest.TestCase):
    def test_a_curve_passes_its_points_without_overshooting(self):
        xs, ys = [0, 1, 1.2, 4, 5, 9], [0, 5, 5, 2, 1.9, -3]
        curve = Monotone(xs, ys)
        for x0, x1, y0, y1 in zip(xs, xs[1:], ys, ys[1:]):
            self.assertAlmostEqual(curve(x0), y0)
            between = [round(curve(x0 + (x1 - x0) * k / 50), 9) for k in range(51)]
            self.assertEqual(between, sorted(between, reverse=y1 < y0))
            self.assertAlmostEqual(between[-1], y1)
        self.assertEqual((curve(-7), curve(99)), (0, -3))


class Files(unittest.TestCase):
    def setUp(self):
        first, second = Part("first"), Part("second")
        first.box("red", (1, 1, 1))
        first.box("blue", (1, 2, 3), (10, 20, 123.4567))
        first.box("red", (1, 1, 1), (5, 0, 0))
        second.box("blue", (1, 1, 1))
        self.parts = [first, second]

    def test_both_kinds_read_back_with_parts_and_surfaces_in_order(self):
        for model in (obj_model(obj_text(self.parts)), glb_model(glb_bytes(self.parts))):
            self.assertEqual(model.surfaces, {"first": ["red", "blue"], "second": ["blue"]})
            self.assertEqual([len(t) for t in model.triangles.values()], [36, 12])
            highest = max(model.points("first"), key=lambda p: (p[2], p[1], p[0]))
            self.assertLess(math.dist(highest, (10.5, 21, 124.9567)), 1e-5)
            for part in self.parts:
                self.assertEqual({round(sum(v) / 3, 3) for v in model.points(part.name)},
                                 {round(sum(v) / 3, 3) for _, c in part.triangles for v in c})

    def test_many_corners_get_wide_indices(self):
        part = Part("grid")
        for k in range(9000):
            part.box("m", (0.5, 0.5, 0.5), (k % 100, k // 100, 0))
        model = glb_model(glb_bytes([part]))
        self.assertEqual(max(p[1] for p in model.points("grid")), 89.25)
        self.assertEqual(len(model.triangles["grid"]), 9000 * 12)


class Airfield(unittest.TestCase):
    def levels_at(self, x, y):
        """Heights of all slabs straight above and below a place."""
        found = []
        for part in airfield.parts():
            if part.name not in ("pad", "apron"):
                continue
            for _, corners in part.triangles:
                weights = [(b[0] - a[0]) * (y - a[1]) - (b[1] - a[1]) * (x - a[0])
                           for a, b in zip(corners, corners[1:] + corners[:1])]
                if min(weights) > 0:
                    total = sum(weights)
                    found.append(sum(w / total * corners[(i + 2) % 3][2]
                                     for i, w in enumerate(weights)))
        return found

    def test_slabs_lie_once_under_every_place_at_their_height_above_the_ellipsoid(self):
        places = [(0.3, 0.2, 0.0)]
        places += [(x + 0.31, y + 0.17, airfield.APRON_LEVEL)
                   for x in range(-140, 70, 13) for y in range(-85, 145, 11)
                   if max(abs(x), abs(y)) > 16]
        places += [(x + 0.31, 7.3, airfield.APRON_LEVEL) for x in range(71, 150, 7)]
        places += [(165.7, y + 0.19, airfield.APRON_LEVEL) for y in range(-779, 419, 17)]
        for x, y, height in places:
            level, = self.levels_at(x, y)
            self.assertAlmostEqual(level + math.hypot(x, y) ** 2 / (2 * 6.361e6), height,
                                   delta=2e-4, msg=(x, y))
        self.assertEqual(self.levels_at(200, 100), [])

    def test_lights_shine_over_the_lamps(self):
        lamps = next(part for part in airfield.parts() if part.name == "lamps")
        tops = [p for _, corners in lamps.triangles for p in corners if p[2] > 0]
        lights = yaml.safe_load(airfield.lights_prefab())["node"]["children"]
        places = [light["position"] for edge in lights for light in edge["children"]]
        self.assertEqual(len(places), 12 + 42)
        for place in places:
            self.assertLess(min(math.dist(place, top) for top in tops), 0.13)


if __name__ == "__main__":
    unittest.main()
