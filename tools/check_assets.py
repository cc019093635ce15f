#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""Checks the data folder: that every file that is named exists and is well formed, that every node
which the programs look up by name is there once, and that models and terrain are sound and to
measure.

Needs PyYAML, numpy and GDAL's Python module. Prints one line for each fault, with the file's path,
and exits 1 if there is any.
"""

import argparse
import functools
import json
import math
import pathlib
import struct
import subprocess
import sys

import numpy as np
import yaml
from osgeo import gdal

import build_models
import build_terrain
from modelkit import airfield

gdal.UseExceptions()

ROOT = pathlib.Path(__file__).resolve().parent.parent
PROJECT = "data/PELMAR_PROJECT"
PREFABS = f"{PROJECT}/prefabs"
WORLD = f"{PROJECT}/PELMAR_PROJECT.world"
HELICOPTER = f"{PREFABS}/KZ_CORAX_CN_NERITH/KZ_CORAX_CN_NERITH.prefab"
SHIPS = {"SM_055_CN_2023": 6.00, "LNJ_2023": 8.00}  # and their flight decks' heights
LARGEST_MODELS = 4_000_000  # bytes of all models
LARGEST_TOTAL = 5_000_000  # bytes of all data
SHIP_DEPTH, SHIP_ROOM, OPEN_SEA = -12.0, 150.0, 10_000.0  # m below, around and north of a ship
WHEEL_DEPTH = -1.22

EMITTERS = ["out_blade", "out_snow", "h_blade", "leaf_1", "leaf_2", "water"]
DISPENSERS = ["dl_0", "dl_1", "dl_2", "dr_0", "dr_1", "dr_2"]
MOUNTS = ["cam_first_player", *DISPENSERS, "sonar", "winch", "deflector"]

# What is looked up by name, with the type it must have, for each prefab. Every name occurs once.
NODES = {
    HELICOPTER: {
        **{name: None for name in MOUNTS},
        **{name: "node" for name in ("normal", "destroyed", "fire", "downwash", "wing", "tail",
                                     "front_proj", "wiper_right", "wiper_left")},
        **{name: "mesh" for name in ("wing_mesh", "wing_plane", "tail_mesh", "tail_plane",
                                     "glass_top_left", "windows", "wheel_front", "wheel_left",
                                     "wheel_right")},
        **{name: "particles" for name in ("fire_spe", "downwash_spe", *EMITTERS)},
        "field_anim": "field", "downdraught": "downdraught", "tail_light": "light",
    },
    f"{PREFABS}/SM_055_CN_2023/SM_055_CN_2023.prefab": {
        "hull": "mesh", "superstructure": "mesh", "deck": "mesh", "qizi1": None, "qizi2": None,
        "wakes": "node", "foam": "decal"},
    f"{PREFABS}/LNJ_2023/LNJ_2023.prefab": {
        "hull": "mesh", "superstructure": "mesh", "deck": "mesh", "qizhi": None,
        "wakes": "node", "foam": "decal"},
    f"{PREFABS}/cmder/cmder.prefab": {"left_hand": None, "right_hand": None},
    f"{PREFABS}/yulei_CORAXF/yulei.prefab": {"torpedo": "mesh", "parachute": None},
    f"{PREFABS}/missile/missile.prefab": {},
    f"{PREFABS}/sonar/sonar.prefab": {"sonar": None},
    f"{PREFABS}/sonar/sonar_rope.prefab": {
        name: None for name in ("sonar_root", "anchor", "sonar", "sonar_mesh", "buoy", "rope")},
    f"{PREFABS}/winch/winch.prefab": {n: None for n in ("root", "anchor", "rope", "obj")},
    f"{PREFABS}/rope_car/rope_car.prefab": {n: None for n in ("root", "anchor", "rope", "obj")},
    f"{PREFABS}/vfx/decoy/decoy.prefab": {},
}
EFFECTS = ["data/art/prefab/vfx/explosion/explosion.prefab",
           "data/art/prefab/vfx/explosion_1/explosion_1.prefab",
           f"{PREFABS}/vfx/water_explosion/water_explosion.prefab",
           f"{PREFABS}/vfx/water_drop/water_drop.prefab"]
WORLD_NODES = {"start_heli": "node", "ocean": "ocean", "terrain": "terrain",
               "rain": "particles", "hail": "particles", "snow": "particles",
               "cmder": "prefab", "airfield": "prefab",
               "SM_055_CN_2023": "prefab", "LNJ_2023": "prefab"}
RADAR_FAN = "data/core/post/post_radar.mat"
TRACKS = [f"{PROJECT}/ANIM/{name}.anim" for name in ("runway_ssr", "runway_ice", "light")]
# Everything in these belongs to the helicopter or flies from it; the height ray starts among it.
UNSEEN_BY_RAYS = [p for p in NODES if not any(ship in p for ship in SHIPS)]
BODY_ON_ROOT = [HELICOPTER, *(f"{PREFABS}/{s}/{s}.prefab" for s in SHIPS),
                f"{PREFABS}/missile/missile.prefab", f"{PREFABS}/sonar/sonar.prefab",
                f"{PREFABS}/vfx/decoy/decoy.prefab"]


class UniqueKeys(yaml.SafeLoader):
    """A loader that refuses a key given twice, as the programs do."""

    def construct_mapping(self, node, deep=False):
        keys = [key.value for key, _ in node.value]
        for key in keys:
            if keys.count(key) > 1:
                raise yaml.constructor.ConstructorError(None, None, f'duplicate key "{key}"',
                                                        node.start_mark)
        return super().construct_mapping(node, deep)


def walk(node):
    """The node and all nodes below it."""
    yield node
    for child in node.get("children") or []:
        yield from walk(child)


def kind(node):
    return node.get("type", "node")


class Model:
    """A file's parts: surfaces in order, and triangles as corner and normal triples, in the axes of
    the nodes."""

    def __init__(self):
        self.surfaces, self.triangles = {}, {}

    def points(self, part):
        return [p for corners, _ in self.triangles[part] for p in corners]


def obj_model(text):
    model, points, normals, part = Model(), [], [], None
    for line in text.splitlines():
        word, *rest = line.split() or [""]
        if word == "o":
            part = rest[0]
            model.surfaces[part], model.triangles[part] = [], []
        elif word == "usemtl":
            model.surfaces[part].append(rest[0])
        elif word in ("v", "vn"):
            (points if word == "v" else normals).append(tuple(map(float, rest)))
        elif word == "f":
            pairs = [tuple(map(int, corner.split("/")[::2])) for corner in rest]
            model.triangles[part].append(([points[p - 1] for p, _ in pairs],
                                          [normals[n - 1] for _, n in pairs]))
    return model


def glb_model(content):
    """Reads what is written here: one node a part, positions, normals and indices."""
    magic, version, size, json_size, json_kind = struct.unpack_from("<4sII I4s", content)
    if (magic, version, size, json_kind) != (b"glTF", 2, len(content), b"JSON"):
        raise ValueError("not a binary glTF 2.0 file")
    document = json.loads(content[20:20 + json_size])
    binary = content[28 + json_size:]

    def values(index, code):
        accessor = document["accessors"][index]
        width = {"SCALAR": 1, "VEC3": 3}[accessor["type"]]
        view = document["bufferViews"][accessor["bufferView"]]
        numbers = struct.unpack_from(f"<{width * accessor['count']}{code}", binary,
                                     view["byteOffset"] + accessor["byteOffset"])
        return numbers if width == 1 else [(x, -z, y) for x, y, z in zip(*[iter(numbers)] * 3)]

    model = Model()
    for node in document["nodes"]:
        surfaces, triangles = [], []
        for primitive in document["meshes"][node["mesh"]]["primitives"]:
            surfaces.append(document["materials"][primitive["material"]]["name"])
            points = values(primitive["attributes"]["POSITION"], "f")
            normals = values(primitive["attributes"]["NORMAL"], "f")
            short = document["accessors"][primitive["indices"]]["componentType"] == 5123
            for corners in zip(*[iter(values(primitive["indices"], "H" if short else "I"))] * 3):
                triangles.append(([points[i] for i in corners], [normals[i] for i in corners]))
        model.surfaces[node["name"]], model.triangles[node["name"]] = surfaces, triangles
    return model


@functools.cache
def read_model(suffix, content):
    return glb_model(content) if suffix == ".glb" else obj_model(content.decode())


def triangle_normal(corners):
    """Twice the area, along the right-hand normal."""
    (ax, ay, az), (bx, by, bz), (cx, cy, cz) = corners
    ux, uy, uz, vx, vy, vz = bx - ax, by - ay, bz - az, cx - ax, cy - ay, cz - az
    return (uy * vz - uz * vy, uz * vx - ux * vz, ux * vy - uy * vx)


@functools.cache
def unsound_parts(model):
    """Faults of a model's triangles."""
    faults = []
    for part, triangles in model.triangles.items():
        for corners, normals in triangles:
            area = triangle_normal(corners)
            size = math.hypot(*area)
            if size < 1e-8:
                faults.append(f'degenerate triangle in "{part}"')
            elif not all(sum(a * b for a, b in zip(area, n)) > 0.5 * size and
                         abs(math.hypot(*n) - 1) < 1e-2 for n in normals):
                faults.append(f'normals of "{part}" do not point the way its triangles face')
    return faults


class Checker:
    """Reads each file of a repository once and collects the faults."""

    def __init__(self, root, schema):
        self.schema = schema  # what nodes may say: family, type, key and the kind of value
        self.root, self.faults, self.texts, self.models = pathlib.Path(root), [], {}, {}
        self.unreadable = set()  # one line is enough for these: what follows from it is left out

    def fault(self, path, what):
        line = f"{path}: {what}"
        if line not in self.faults and path not in self.unreadable:
            self.faults.append(line)

    def expect(self, condition, path, what):
        if not condition:
            self.fault(path, what)

    def read(self, path):
        """A YAML file's top-level map; an empty one after a fault."""
        if path not in self.texts:
            self.texts[path] = {}
            try:
                self.texts[path] = yaml.load((self.root / path).read_text("utf-8"), UniqueKeys)
            except (OSError, UnicodeDecodeError, yaml.YAMLError) as error:
                self.fault(path, str(error).replace("\n", " "))
                self.unreadable.add(path)
            if not isinstance(self.texts[path], dict):
                self.fault(path, "not a map")
                self.unreadable.add(path)
                self.texts[path] = {}
        return self.texts[path]

    def model(self, path):
        if path not in self.models:
            try:
                file = self.root / path
                self.models[path] = read_model(file.suffix, file.read_bytes())
            except (OSError, ValueError, LookupError, TypeError, struct.error) as error:
                self.fault(path, f"cannot be read: {error}")
                self.unreadable.add(path)
                self.models[path] = Model()
        return self.models[path]

    # ---- nodes

    def check_node(self, path, node):
        """Keys, values and references of one node, without those below it."""
        where = f'node "{node.get("name", "")}"'
        self.check_map(path, where, "node", node)
        if "material" in node:
            self.check_material(node["material"])
        if kind(node) == "mesh":
            self.check_mesh(path, where, node)
        if kind(node) == "prefab":
            self.check_prefab(node.get("path", ""))

    def check_map(self, path, where, family, values):
        """A map of a family of the schema, with the maps in it."""
        types = self.schema[family]
        first = next(iter(types))
        name = first if len(types) == 1 else values.get("type", first)
        if name not in types:
            self.fault(path, f'{where}: unknown type "{name}"')
            return
        for key, value in values.items():
            if key not in types[name]:
                self.fault(path, f'{where}: unknown key "{key}"')
                continue
            what, _, inner = types[name][key].partition(" of ")
            self.check_value(path, f"{where}: {key}", types[name][key], value)
            if inner and inner != "node":
                for each in value if what == "list" and isinstance(value, list) else [value]:
                    if isinstance(each, dict):
                        self.check_map(path, where, inner, each)

    def check_value(self, path, where, described, value):
        """A value against its description: a kind, perhaps with limits ("pair from 0 to 1")."""
        word, *limits = described.split()
        limits = dict(zip(limits[::2], limits[1::2]))
        counts = {"number": 1, "whole": 1, "pair": 2, "triple": 3}
        if word in counts:
            numbers = value if isinstance(value, list) else [value]
            names = {1: "a number", 2: "two numbers", 3: "three numbers"}
            self.expect(len(numbers) == counts[word] and all(
                isinstance(v, (int, float)) and math.isfinite(v) and
                float(limits.get("from", -math.inf)) <= v <= float(limits.get("to", math.inf))
                for v in numbers), path,
                f"{where} is not {names[counts[word]]}{described.removeprefix(word)}")
        types = {"text": str, "material": str, "flag": bool, "map": dict, "list": list}
        if word in types:
            self.expect(isinstance(value, types[word]), path, f"{where} is not a {word}")

    def check_mesh(self, path, where, node):
        file, _, part = node.get("mesh", "").partition("#")
        model = self.model(file)
        if part not in model.surfaces:
            self.fault(path, f'{where}: no part "{part}" in {file}')
            return
        listed = [s.get("material", "") for s in node.get("surfaces", [])]
        for material in listed:
            self.check_material(material)
            tags = self.read(material).get("parameters") or {}
            self.expect("texture_size" in tags or not self.read(material).get("textures"), material,
                        "a texture without texture_size on a mesh without texture coordinates")
        self.expect([pathlib.PurePosixPath(m).stem for m in listed] == model.surfaces[part], path,
                    f"{where}: materials differ from the part's {model.surfaces[part]}")

    def check_material(self, path):
        parameters = self.read(path).get("parameters") or {}
        self.expect("diffuse_color" in parameters, path, "no diffuse_color")
        for tag, value in parameters.items():
            numbers = value if isinstance(value, list) else [value]
            self.expect(all(isinstance(v, (int, float)) for v in numbers) and
                        (not isinstance(value, list) or 2 <= len(value) <= 4), path,
                        f'parameter "{tag}" is neither a number nor a list of two to four')

        for name, texture in (self.read(path).get("textures") or {}).items():
            self.expect(name == "base_color", path, f'unknown texture "{name}"')
            self.expect((self.root / str(texture)).is_file(), path, f"no file {texture}")

    def check_radar(self):
        fan = self.read(RADAR_FAN)
        self.expect("fan" in (fan.get("states") or {}), RADAR_FAN, 'no state "fan"')
        self.expect({"min_angle", "max_angle"} <= self.tags(RADAR_FAN), RADAR_FAN, "no angles")

    def check_prefab(self, path):
        root = self.read(path).get("node") or {}
        for node in walk(root):
            self.check_node(path, node)
        return root

    # ---- what is looked up by name

    def check_names(self, path, nodes, wanted):
        for name, expected in wanted.items():
            found = [n for n in nodes if n.get("name") == name]
            self.expect(len(found) == 1, path, f'{len(found)} nodes "{name}" instead of one')
            for node in found:
                self.expect(expected in (None, kind(node)), path,
                            f'node "{name}" is a {kind(node)}, not a {expected}')

    def check_prefabs(self):
        for path, wanted in NODES.items():
            root = self.check_prefab(path)
            self.check_names(path, list(walk(root)), wanted)
            self.expect(("body" in root) == (path in BODY_ON_ROOT), path,
                        "a body is expected on the root exactly where the root is moved by one")
            if path in UNSEEN_BY_RAYS:
                for node in walk(root):
                    seen = kind(node) == "mesh" and (node.get("intersect", True) or any(
                        s.get("intersect") for s in node.get("surfaces", [])))
                    self.expect(not seen, path, f'node "{node.get("name")}" takes part in queries')
        for path in EFFECTS:
            self.expect(kind(self.check_prefab(path)) == "particles", path,
                        "the root is not of type particles")

    def node(self, path, name):
        """A prefab's node by name; an empty one when it is missing (which is a fault elsewhere)."""
        root = self.read(path).get("node") or {}
        return next((n for n in walk(root) if n.get("name") == name), {})

    def check_helicopter(self):
        root = self.read(HELICOPTER).get("node") or {}
        children = [c.get("name") for c in root.get("children", [])]
        for name in ["normal", "destroyed", "fire", *MOUNTS]:
            self.expect(name in children, HELICOPTER, f'"{name}" is not a child of the root')
        for name in ("destroyed", "fire"):
            self.expect(self.node(HELICOPTER, name).get("enabled") is False, HELICOPTER,
                        f'"{name}" is not hidden')
        emitters = [c.get("name") for c in
                    self.node(HELICOPTER, "downwash_spe").get("children", [])]
        self.expect(emitters == EMITTERS, HELICOPTER, f"downwash_spe holds {emitters}")
        for name in ("windows", "glass_top_left"):
            for surface in self.node(HELICOPTER, name).get("surfaces", [])[:1]:
                self.expect({"rain_power", "wiper"} <= self.tags(surface["material"]),
                            surface["material"], "no rain_power or wiper")
        self.expect("density" in self.tags(self.node(HELICOPTER, "tail_light").get("material", "")),
                    HELICOPTER, "the tail light's material has no density")
        for name in ("wheel_front", "wheel_left", "wheel_right"):
            self.check_wheel(self.node(HELICOPTER, name))

    def tags(self, material):
        return set(self.read(material).get("parameters") or {}) if material else set()

    def check_wheel(self, wheel):
        if "mesh" not in wheel:
            return
        file, _, part = wheel["mesh"].partition("#")
        points = self.model(file).points(part) if part in self.model(file).triangles else []
        lowest = wheel.get("position", [0, 0, 0])[2] + min((p[2] for p in points), default=0)
        self.expect(abs(lowest - WHEEL_DEPTH) < 1e-6, HELICOPTER,
                    f'"{wheel.get("name")}" stands at {lowest:.4f}, not at {WHEEL_DEPTH}')

    def check_ships(self):
        for ship, height in SHIPS.items():
            path = f"{PREFABS}/{ship}/{ship}.prefab"
            deck = self.node(path, "deck")
            if "mesh" not in deck:
                continue
            file, _, part = deck["mesh"].partition("#")
            base = deck.get("position", [0, 0, 0])[2]
            triangles = self.model(file).triangles.get(part, [])
            top = max((p[2] + base for corners, _ in triangles for p in corners), default=0)
            level = [c for c, n in triangles if all(p[2] + base == top for p in c) and
                     all(v == (0, 0, 1) for v in n)]
            self.expect(top == height and level, path, f"the deck's top lies at {top}")
            foam = self.node(path, "foam")
            self.expect(any(kind(n) == "particles" for n in walk(foam)), path,
                        "foam has no emitter")
            self.expect(foam in self.node(path, "wakes").get("children", []), path,
                        "foam is not a child of wakes")

    # ---- world, tracks, models

    def check_world(self):
        nodes = [n for top in self.read(WORLD).get("nodes") or [] for n in walk(top)]
        for node in nodes:
            self.check_node(WORLD, node)
        self.check_names(WORLD, nodes, WORLD_NODES)
        by_name = {n.get("name"): n for n in nodes}
        for ship in SHIPS:
            self.expect(by_name.get(ship, {}).get("hpr", [0, 0, 0])[0] == 0, WORLD,
                        f"{ship} does not head north")
        start, field = (by_name.get(n, {}).get("wgs", [0, 0, 0])
                        for n in ("start_heli", "airfield"))
        self.expect(start[:2] == field[:2] and abs(start[2] + WHEEL_DEPTH - field[2]) < 1e-9,
                    WORLD, "start_heli does not stand on the pad")
        for name in ("rain", "hail", "snow"):
            node = by_name.get(name, {})
            self.expect(node.get("enabled") is False and node.get("deflectors") == 1, WORLD,
                        f'"{name}" must start disabled and have one deflector')
        return by_name

    def check_tracks(self, world_nodes):
        for path in TRACKS:
            channels = self.read(path).get("channels") or []
            self.expect(channels, path, "no channels")
            for channel in channels:
                times = [key[0] for key in channel.get("keys", [])]
                self.expect(times and times == sorted(times), path, "keys do not rise in time")
                if "material" in channel:
                    self.expect(channel.get("parameter") in self.tags(channel["material"]), path,
                                f'no parameter "{channel.get("parameter")}" in '
                                f'{channel["material"]}')
                else:
                    self.expect(channel.get("node") in world_nodes, path,
                                f'no node "{channel.get("node")}" in the world')

    def check_terrain(self, world_nodes):
        """The raster and what stands on it or floats over it."""
        path = world_nodes.get("terrain", {}).get("raster", "")
        try:
            raster = gdal.Open(str(self.root / path))
            heights = raster.ReadAsArray()
        except RuntimeError as error:
            self.fault(path, f"cannot be read: {error}")
            return
        self.expect(raster.GetSpatialRef() and raster.GetSpatialRef().IsGeographic(), path,
                    "is not in longitude and latitude")
        border = np.concatenate([heights[0], heights[-1], heights[:, 0], heights[:, -1]])
        self.expect(np.all(border < SHIP_DEPTH), path, "does not end below the sea")
        corner_x, step_x, _, corner_y, _, step_y = raster.GetGeoTransform()
        x = corner_x + step_x * (np.arange(heights.shape[1]) + 0.5)
        y = corner_y + step_y * (np.arange(heights.shape[0]) + 0.5)

        def around(node, west, east, south, north):
            """Heights of the samples in a rectangle in metres around a node."""
            longitude, latitude, _ = world_nodes.get(node, {}).get("wgs", (0, 0, 0))
            east_of = (x - longitude) * build_terrain.DEGREE_EAST
            north_of = (y - latitude) * build_terrain.DEGREE_NORTH
            return heights[np.ix_((south <= north_of) & (north_of <= north),
                                  (west <= east_of) & (east_of <= east))]

        ground = np.float32(world_nodes.get("airfield", {}).get("wgs", (0, 0, 0))[2] +
                            airfield.GROUND_LEVEL)
        points = [p for part in airfield.parts() for _, corners in part.triangles for p in corners]
        west, east, south, north = (f(p[axis] for p in points) for axis in (0, 1)
                                    for f in (min, max))
        # A sample more on every side: the triangles reach that far.
        under = around("airfield", west - 20, east + 20, south - 20, north + 20)
        self.expect(under.size and np.all(under == ground), path,
                    f"is not level at {ground:.2f} m under the airfield")
        for ship in SHIPS:
            sea = around(ship, -SHIP_ROOM, SHIP_ROOM, -SHIP_ROOM, OPEN_SEA)
            self.expect(sea.size and np.all(sea < SHIP_DEPTH), path,
                        f"leaves {ship} too little water")

    def check_models(self):
        """Sound triangles, and files that are what the model builder writes."""
        total = 0
        for path, content in build_models.model_contents().items():
            total += len(content)
            for what in unsound_parts(self.model(f"data/{path}")):
                self.fault(f"data/{path}", what)
        self.expect(total < LARGEST_MODELS, "data", f"{total} bytes of models")
        for path, content in build_models.contents().items():
            file = self.root / "data" / path
            if file.exists():
                self.expect(file.read_bytes() == content, f"data/{path}",
                            "differs from what build_models.py writes")

    def check_size(self):
        total = sum(f.stat().st_size for f in (self.root / "data").rglob("*")
                    if f.is_file() and "recordings" not in f.parts)
        self.expect(total < LARGEST_TOTAL, "data", f"{total} bytes in all")

    def run(self):
        self.check_prefabs()
        self.check_helicopter()
        self.check_ships()
        world_nodes = self.check_world()
        self.check_tracks(world_nodes)
        self.check_terrain(world_nodes)
        self.check_models()
        self.check_radar()
        self.check_size()
        return self.faults


def read_schema(file):
    """What nodes may say, as the program tells it: from a file of it, or from the one built last."""
    if file:
        return yaml.safe_load(file)
    programs = sorted(ROOT.glob("build/*/bin/visual_channel"), key=lambda p: p.stat().st_mtime)
    if not programs:
        return None
    try:
        return yaml.safe_load(subprocess.run([programs[-1], "--schema"], check=True,
                                             stdout=subprocess.PIPE).stdout)
    except (OSError, subprocess.CalledProcessError) as error:
        print(f"{programs[-1]}: {error}", file=sys.stderr)
        return None


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("root", nargs="?", default=ROOT, help="the folder that holds data/")
    parser.add_argument("--schema", type=argparse.FileType(),
                        metavar="FILE", help="what nodes may say, as visual_channel "
                        "--schema tells it; default: the program built last is asked")
    arguments = parser.parse_args()
    schema = read_schema(arguments.schema)
    if not schema:
        parser.error("the keys of nodes are not known: build the program (scripts/prepare release "
                     "visual_channel), or name a file with what visual_channel --schema tells: "
                     "--schema FILE")
    faults = Checker(arguments.root, schema).run()
    for fault in faults:
        print(fault, file=sys.stderr)
    print("data: no faults" if not faults else f"data: {len(faults)} faults")
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main())
