# SPDX-License-Identifier: MIT
"""The helicopter's model as its crew and its machinery need it: what turns strikes nothing, the
wipers lie on the glass, and the pilot sees out and sees the instruments."""

import math
import pathlib
import sys
import unittest

import yaml

TOOLS = pathlib.Path(__file__).resolve().parent.parent
sys.path.insert(0, str(TOOLS))

from check_assets import HELICOPTER, walk  # noqa: E402
from modelkit import airframe, helicopter  # noqa: E402
from modelkit.mesh import add, cross, dot, normalize, rotate_x, rotate_z, sub  # noqa: E402
from modelkit.rotors import TAIL_ROTOR_RADIUS  # noqa: E402


def crossing(origin, direction, corners):
    """Distance along a ray to a triangle, or infinity (Moeller and Trumbore 1997)."""
    a, b, c = corners
    u, v = sub(b, a), sub(c, a)
    p = cross(direction, v)
    determinant = dot(u, p)
    if abs(determinant) < 1e-12:
        return math.inf
    t = sub(origin, a)
    s = dot(t, p) / determinant
    q = cross(t, u)
    r = dot(direction, q) / determinant
    distance = dot(v, q) / determinant
    return distance if s >= 0 and r >= 0 and s + r <= 1 and distance > 0 else math.inf


class Helicopter(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.parts = {part.name: part for part in helicopter.parts()}
        root = yaml.safe_load((TOOLS.parent / HELICOPTER).read_text("utf-8"))["node"]
        cls.nodes = {node.get("name"): node for node in walk(root)}

    def points(self, name):
        return {p for _, corners in self.parts[name].triangles for p in corners}

    def seen(self, heading, elevation):
        """Distance and material of the first opaque surface that the pilot sees; heading to the
        right of straight ahead."""
        eye = tuple(self.nodes["cam_first_player"]["position"])
        direction = rotate_z(rotate_x((0, 1, 0), elevation), -heading)
        return min((crossing(eye, direction, corners), material)
                   for name in ("fuselage", "cockpit")
                   for material, corners in self.parts[name].triangles)

    def test_main_rotor_clears_the_airframe_at_rest(self):
        mast = self.nodes["mast"]
        hub, tilt = tuple(mast["position"]), mast["rotation"][0]
        lowest = {}  # of the blades, by whole metres of radius
        for x, y, z in self.points("wing_mesh"):
            radius = int(math.hypot(x, y))
            lowest[radius] = min(lowest.get(radius, 0), z)
        for p in self.points("fuselage") | self.points("tail_mesh") | self.points("hoist"):
            x, y, z = rotate_x(sub(p, hub), -tilt)
            radius = math.hypot(x, y)
            if 1 < radius < 8:
                self.assertLess(z, lowest[int(radius)] - 0.2, p)

    def test_tail_rotor_strikes_neither_pylon_nor_stabiliser(self):
        hub = tuple(self.nodes["tail"]["position"])
        for p in self.points("fuselage"):
            x, y, z = sub(p, hub)
            if 0.25 < math.hypot(y, z) < TAIL_ROTOR_RADIUS + 0.1:
                self.assertGreater(x, 0.2, p)

    def test_wipers_lie_on_flat_glass(self):
        for side in ("left", "right"):
            mount = self.nodes[f"wiper_{side}_mount"]
            normal = normalize(rotate_x((0, 0, 1), mount["rotation"][0]))
            glass = [p for name in ("windows", "glass_top_left") for p in self.points(name)
                     if airframe.SCREEN[0] <= p[1] <= airframe.SCREEN[1] and abs(p[0]) < 0.8 and
                     abs(p[1] + p[2] - airframe.RAKE) < 0.1]
            self.assertGreater(len(glass), 10)
            for p in glass:
                gap = dot(sub(tuple(mount["position"]), p), normal)
                self.assertTrue(0.005 < gap < 0.035, (p, gap))

    def test_the_pilot_sees_out(self):
        for heading, elevation in ((0, 0), (0, -9), (-8, -5), (10, 0), (0, 20), (60, -5), (90, 5)):
            distance, material = self.seen(heading, elevation)
            self.assertGreater(distance, 1.6, (heading, elevation, material))

    def test_the_pilot_sees_the_instruments(self):
        distance, material = self.seen(0, -24)
        self.assertTrue(material.startswith(("screen", "instrument")), material)
        self.assertTrue(0.7 < distance < 1.3, distance)
        self.assertEqual(self.seen(0, -13)[1], "glare_shield")

    def test_every_opening_is_glazed_and_nothing_else(self):
        stations, sides = len(airframe.STATIONS) - 1, 2 * airframe.BELLY
        cells = [airframe.opening(i, j) for i in range(stations) for j in range(sides)]
        for name in ("windows", "glass_top_left"):
            self.assertEqual(len(self.parts[name].triangles), 2 * cells.count(name))
        self.assertTrue(all(p[0] < 0 for p in self.points("glass_top_left")))
        ends = 2 * sides
        whole = 2 * cells.count(None) + ends
        self.assertEqual(len(airframe.skin().triangles), whole)

    def test_the_wreck_lies_on_the_ground(self):
        lowest = min(p[2] for p in self.points("wreck"))
        self.assertTrue(-1.40 < lowest < -1.15, lowest)


if __name__ == "__main__":
    unittest.main()
