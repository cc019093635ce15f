# SPDX-License-Identifier: MIT
"""Parts as an OBJ file: text, for small models that are read in a review."""

from .mesh import rounded


class Indices:
    """Numbers distinct lines of a file from 1 in the order in which they are first asked for."""

    def __init__(self, keyword, digits):
        self.keyword, self.digits, self.numbers = keyword, digits, {}

    def of(self, p):
        return self.numbers.setdefault(rounded(p, self.digits), len(self.numbers) + 1)

    def lines(self):
        return [f"{self.keyword} " + " ".join(f"{v:g}" if abs(v) < 1 else f"{v:.7g}" for v in p)
                for p in self.numbers]


def obj_text(parts):
    """The OBJ file that holds `parts`: one `o` group each, one `usemtl` run for each surface."""
    points, places, normals = Indices("v", 4), Indices("vt", 4), Indices("vn", 3)
    groups = []
    for part in parts:
        groups.append(f"o {part.name}")
        surfaces = {}
        triangles = zip(part.triangles, part.corner_normals())
        for number, ((material, corners), corner_normals) in enumerate(triangles):
            at = [places.of(uv) for uv in part.places.get(number, ())] or [""] * 3
            words = [f"{points.of(p)}/{t}/{normals.of(n)}"
                     for p, t, n in zip(corners, at, corner_normals)]
            surfaces.setdefault(material, []).append("f " + " ".join(words))
        for material, faces in surfaces.items():
            groups += [f"usemtl {material}", *faces]
    return "\n".join(["# SPDX-License-Identifier: MIT", *points.lines(), *places.lines(),
                      *normals.lines(), *groups, ""])
