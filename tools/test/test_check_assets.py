# SPDX-License-Identifier: MIT
"""The checker passes the repository's data and reports each kind of damage done to a copy."""

import json
import pathlib
import re
import shutil
import struct
import sys
import tempfile
import unittest

import yaml
from osgeo import gdal

TOOLS = pathlib.Path(__file__).resolve().parent.parent
sys.path.insert(0, str(TOOLS))

from check_assets import (Checker, EFFECTS, HELICOPTER, NODES, PREFABS, PROJECT,  # noqa: E402
                          RADAR_FAN, WORLD)

FRIGATE = f"{PREFABS}/SM_055_CN_2023/SM_055_CN_2023.prefab"
MODEL = FRIGATE.replace(".prefab", ".glb")
TERRAIN = f"{PROJECT}/terrain/coast.tif"


def schema_of(data):
    """What the nodes below a folder say, as a schema that knows their keys and nothing else."""
    schema = {"node": {"node": {}}, "body": {"rigid": {}, "rope": {}}, "surface": {"surface": {}},
              "shape": {"shape": {}}, "joint": {"joint": {}}, "drag": {"drag": {}},
              "sector": {"sector": {}}, "kinds": {"kinds": {}}, "stands": {"stands": {}},
              "land_cover": {"land_cover": {}}}
    maps = {"body": "map of body", "surfaces": "list of surface", "shapes": "list of shape",
            "joints": "list of joint", "drag": "list of drag", "children": "list of node",
            "sector": "list of sector", "kinds": "list of kinds", "stands": "list of stands",
            "land_cover": "map of land_cover"}
    triples = ["position", "wgs", "hpr", "rotation", "center", "size", "spread", "parameters",
               "color"]
    pairs = ["azimuth", "elevation"]  # that may be below 0

    def add(family, values):
        types = schema[family]
        first = next(iter(types))
        keys = types.setdefault(values.get("type", first) if family in ("node", "body") else first, {})
        for key, value in values.items():
            scalar = {bool: "flag", str: "text", list: "pair from 0"}.get(type(value), "number")
            listed = ("texts" if key == "materials" else "triple" if key in triples else
                      "pair" if key in pairs else scalar)
            keys[key] = maps.get(key, listed)
            if key in maps:
                for each in value if isinstance(value, list) else [value]:
                    add(keys[key].split()[-1], each)

    for file in [*data.rglob("*.prefab"), *data.rglob("*.world")]:
        if "${" in file.read_text("utf-8"):
            continue  # to be filled in
        content = yaml.safe_load(file.read_text("utf-8"))
        for node in content.get("nodes") or [content["node"]]:
            add("node", node)
    return schema


SCHEMA = schema_of(TOOLS.parent / "data")


class Damage(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.root = pathlib.Path(folder.name)
        shutil.copytree(TOOLS.parent / "data", self.root / "data")

    def faults_after(self, path, old, new, count=1):
        file = self.root / path
        text = file.read_text("utf-8")
        self.assertIn(old, text)
        file.write_text(text.replace(old, new, count), "utf-8")
        faults = Checker(self.root, SCHEMA).run()
        file.write_text(text, "utf-8")
        return "\n".join(faults)

    def test_the_data_has_no_faults(self):
        self.assertEqual(Checker(self.root, SCHEMA).run(), [])

    def test_missing_files_are_named(self):
        for path in (WORLD, HELICOPTER, TERRAIN, *EFFECTS, f"{PROJECT}/ANIM/light.anim",
                     f"{PROJECT}/materials/glass.mat", MODEL):
            file = self.root / path
            text = file.read_bytes()
            file.unlink()
            self.assertTrue([f for f in Checker(self.root, SCHEMA).run() if f.startswith(path)], path)
            file.write_bytes(text)

    def test_every_name_that_is_looked_up_is_missed(self):
        for path, names in NODES.items():
            file = self.root / path
            intact = damaged = file.read_text("utf-8")
            for name in names:
                # A joint may have the name of its node.
                damaged, count = re.subn(rf"(?<!joints: \[{{)\bname: {name}(?=[\n,])",
                                         "name: other", damaged)
                self.assertEqual(count, 1, f"{path} {name}")
            file.write_text(damaged, "utf-8")
            faults = Checker(self.root, SCHEMA).run()
            for name in names:
                self.assertIn(f'{path}: 0 nodes "{name}" instead of one', faults)
            file.write_text(intact, "utf-8")

    def test_other_damage_is_reported(self):
        cases = [
            (HELICOPTER, "intersect: false", "intersect: true", "takes part in queries"),
            (HELICOPTER, "position: [1.5, -1.6, -0.87]", "position: [1.5, -1.6, -0.8]",
             "stands at"),
            (HELICOPTER, "name: leaf_2", "name: leaf_1", '2 nodes "leaf_1"'),
            (HELICOPTER, "mass: 10800", "mass: 10800\n    mass: 9", "duplicate key"),
            (HELICOPTER, "glb#cockpit", "glb#cellar", 'no part "cellar"'),
            (HELICOPTER, "materials/seat.mat", "materials/tyre.mat", "materials differ"),
            (FRIGATE, "type: decal", "type: sticker", "unknown type"),
            (FRIGATE, "position: [0, 13, 39.8]", "position: [0, 13]", "not three numbers"),
            (EFFECTS[0], "rate: 130", "speed: 90", 'unknown key "speed"'),
            (HELICOPTER, "mass: 10800", "mas: 10800", 'unknown key "mas"'),
            (HELICOPTER, "mass: 10800", "mass: heavy", "mass is not a number"),
            (WORLD, "deflector_size: [", "deflector_size: [-", "two numbers from 0"),
            (EFFECTS[0], "  type: particles\n", "", "not of type particles"),
            (WORLD, "13.67]", "13.68]", "does not stand on the pad"),
            (f"{PROJECT}/ANIM/light.anim", "node: runway_lights", "node: lamp", 'no node "lamp"'),
            (f"{PROJECT}/ANIM/runway_ice.anim", "parameter: ice", "parameter: cold", "no param"),
            (f"{PROJECT}/materials/glass.mat", "rain_power: ", "rain: ", "no rain_power"),
            (f"{PROJECT}/materials/glass.mat", "[0.1, 0.13, 0.14, 0.22]", "[0.1]", "neither"),
            (RADAR_FAN, "max_angle", "max", "no angles"),
        ]
        for path, old, new, expected in cases:
            with self.subTest(path=path, new=new):
                self.assertIn(expected, self.faults_after(path, old, new))

    def test_unsound_models_are_reported(self):
        file = self.root / MODEL
        intact = file.read_bytes()
        length = struct.unpack_from("<I", intact, 12)[0]
        document = json.loads(intact[20:20 + length])
        start = 28 + length + document["bufferViews"][2]["byteOffset"]  # of the first triangle
        a, b, c = struct.unpack_from("<3H", intact, start)

        def with_triangle(*corners):
            return intact[:start] + struct.pack("<3H", *corners) + intact[start + 6:]

        cases = [(with_triangle(a, a, c), "degenerate triangle"),
                 (with_triangle(b, a, c), "do not point the way"),
                 (with_triangle(a, b, 65535), "cannot be read"),
                 (intact[:-100], "cannot be read"), (intact[:9], "cannot be read"),
                 (b"text" + intact[4:], "cannot be read"),
                 (intact[:20] + b"?" + intact[21:], "cannot be read"),
                 (intact.replace(b'"nodes"', b'"knots"'), "cannot be read"),
                 (with_triangle(b, c, a), "differs from what build_models.py writes")]
        for content, expected in cases:
            file.write_bytes(content)
            faults = [f for f in Checker(self.root, SCHEMA).run() if f.startswith(MODEL)]
            self.assertTrue(any(expected in f for f in faults), (expected, faults))

    def test_ground_in_the_wrong_place_is_reported(self):
        file = self.root / TERRAIN
        intact = file.read_bytes()
        places = [((-155.0608, 19.7056), 12.43, "not level at 12.40 m"),    # the runway's far end
                  ((-155.0911, 19.7900), 3, "does not end below the sea"),  # the northern border
                  ((-155.0552, 19.7193), -3, "leaves SM_055_CN_2023"),      # shoals off its bow
                  ((-155.0603, 19.7440), -3, "leaves LNJ_2023")]            # 2 km ahead
        for (longitude, latitude), height, expected in places:
            raster = gdal.Open(str(file), gdal.GA_Update)
            west, step, _, north, _, _ = raster.GetGeoTransform()
            row = max(0, int((north - latitude) / step))
            raster.GetRasterBand(1).WriteRaster(int((longitude - west) / step), row, 1, 1,
                                                struct.pack("f", height), buf_type=gdal.GDT_Float32)
            del raster
            faults = Checker(self.root, SCHEMA).run()
            self.assertEqual(len(faults), 1, faults)
            self.assertIn(expected, faults[0])
            file.write_bytes(intact)


if __name__ == "__main__":
    unittest.main()
