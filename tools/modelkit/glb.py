# SPDX-License-Identifier: MIT
"""Parts as a binary glTF 2.0 file: half the size of text, and read in a third of the time.

glTF's Y is up and its -Z lies ahead, so (x, y, z) is written as (x, z, -y). One node and mesh a
part, one primitive a surface; the three buffer views hold positions, normals with texture
coordinates, and indices.
"""

import json
import math
import struct

from .mesh import rounded

FLOAT, UNSIGNED_SHORT, UNSIGNED_INT = 5126, 5123, 5125
ARRAY_BUFFER, ELEMENT_ARRAY_BUFFER = 34962, 34963


class Surface:
    """The triangles of one material of a part, with their corners numbered."""

    def __init__(self):
        self.numbers, self.indices = {}, []

    def add(self, corners, normals, places):
        for p, n, uv in zip(corners, normals, places or [None] * 3):
            key = (rounded(p), rounded(n, 3), uv)
            self.indices.append(self.numbers.setdefault(key, len(self.numbers)))


def surfaces_of(part):
    """Surfaces by material, in the order of the materials' first use."""
    found = {}
    for number, ((material, corners), normals) in enumerate(zip(part.triangles,
                                                                part.corner_normals())):
        found.setdefault(material, Surface()).add(corners, normals, part.places.get(number))
    return found


def turned(p):
    return (p[0], p[2], -p[1])


def unit(n):
    length = math.hypot(*n)
    return tuple(v / length for v in n)


class Writer:
    """Collects the buffer views and the accessors that cut them up."""

    def __init__(self):
        self.views, self.accessors = [bytearray(), bytearray(), bytearray()], []

    def accessor(self, view, data, kind, component, count, **bounds):
        while len(self.views[view]) % 4:
            self.views[view].append(0)
        self.accessors.append({"bufferView": view, "byteOffset": len(self.views[view]),
                               "componentType": component, "count": count, "type": kind, **bounds})
        self.views[view] += data
        return len(self.accessors) - 1

    def vectors(self, view, vectors, **bounds):
        data = b"".join(struct.pack("<3f", *v) for v in vectors)
        return self.accessor(view, data, "VEC3", FLOAT, len(vectors), **bounds)

    def primitive(self, surface, material):
        points = [turned(p) for p, _, _ in surface.numbers]
        # The bounds must be those of the single-precision values that are stored.
        stored = [struct.unpack("<3f", struct.pack("<3f", *p)) for p in points]
        position = self.vectors(0, points, min=list(map(min, zip(*stored))),
                                max=list(map(max, zip(*stored))))
        normal = self.vectors(1, [unit(turned(n)) for _, n, _ in surface.numbers])
        attributes = {"POSITION": position, "NORMAL": normal}
        places = [uv for _, _, uv in surface.numbers]
        if None not in places:
            data = b"".join(struct.pack("<2f", *uv) for uv in places)
            attributes["TEXCOORD_0"] = self.accessor(1, data, "VEC2", FLOAT, len(places))
        short = len(points) <= 65535
        data = struct.pack(f"<{len(surface.indices)}{'H' if short else 'I'}", *surface.indices)
        indices = self.accessor(2, data, "SCALAR", UNSIGNED_SHORT if short else UNSIGNED_INT,
                                len(surface.indices))
        return {"attributes": attributes, "indices": indices, "material": material}


def glb_bytes(parts):
    writer, materials, meshes = Writer(), {}, []
    for part in parts:
        primitives = [writer.primitive(surface, materials.setdefault(name, len(materials)))
                      for name, surface in surfaces_of(part).items()]
        meshes.append({"name": part.name, "primitives": primitives})
    views, offset = [], 0
    for n, view in enumerate(writer.views):
        view += bytes(-len(view) % 4)
        views.append({"buffer": 0, "byteOffset": offset, "byteLength": len(view),
                      "target": ARRAY_BUFFER if n < 2 else ELEMENT_ARRAY_BUFFER})
        offset += len(view)
    document = {
        "asset": {"version": "2.0"},
        "scene": 0, "scenes": [{"nodes": list(range(len(parts)))}],
        "nodes": [{"name": part.name, "mesh": n} for n, part in enumerate(parts)],
        "meshes": meshes, "materials": [{"name": name} for name in materials],
        "accessors": writer.accessors, "bufferViews": views, "buffers": [{"byteLength": offset}],
    }
    text = json.dumps(document, separators=(",", ":")).encode()
    text += b" " * (-len(text) % 4)
    size = 12 + 8 + len(text) + 8 + offset
    return b"".join([struct.pack("<4sII", b"glTF", 2, size),
                     struct.pack("<I4s", len(text), b"JSON"),
                     text, struct.pack("<I4s", offset, b"BIN\0"), *writer.views])
