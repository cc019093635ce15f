# SPDX-License-Identifier: MIT
"""Solids against the volumes that geometry books give them: a wrong sign or value means a face that
is missing, doubled or wound the wrong way."""

import math
import pathlib
import sys
import unittest

import yaml

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parent.parent))

from check_assets import Model  # noqa: E402
from modelkit import airfield, equipment, helicopter, ships  # noqa: E402
from modelkit.mesh import Part, mirrored, obj_text  # noqa: E402


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
                  *equipment.commander(), helicopter.blade(8, 0.7, 0.5, 0.3),
                  ships.frigate()[0], ships.landing_ship()[0]]
        for part in closed:
            self.assertGreater(part.volume(), 0, part.name)

    def test_normals_smooth_gentle_edges_and_keep_sharp_ones(self):
        part = Part("drum")
        part.cylinder("m", (0, 0, 0), (0, 0, 1), 1, 36)
        for (_, corners), normals in zip(part.triangles, part.corner_normals()):
            for p, n in zip(corners, normals):
                radial = (p[0], p[1], 0)
                expected = (0, 0, 1 if p[2] else -1) if abs(n[2]) > 0.5 else radial
                self.assertLess(math.dist(n, expected), 0.06)


class Files(unittest.TestCase):
    def test_a_file_reads_back_with_its_parts_and_surfaces_in_order(self):
        first, second = Part("first"), Part("second")
        first.box("red", (1, 1, 1))
        first.box("blue", (1, 1, 1), (0, 0, 123.4567))
        first.box("red", (1, 1, 1), (5, 0, 0))
        second.box("blue", (1, 1, 1))
        model = Model(obj_text([first, second]))
        self.assertEqual(model.surfaces, {"first": ["red", "blue"], "second": ["blue"]})
        self.assertEqual([len(t) for t in model.triangles.values()], [36, 12])
        self.assertAlmostEqual(max(p[2] for p in model.points("first")), 123.9567)


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
