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
    points, normals = Indices("v", 4), Indices("vn", 3)
    groups = []
    for part in parts:
        groups.append(f"o {part.name}")
        surfaces = {}
        for (material, corners), corner_normals in zip(part.triangles, part.corner_normals()):
            words = [f"{points.of(p)}//{normals.of(n)}" for p, n in zip(corners, corner_normals)]
            surfaces.setdefault(material, []).append("f " + " ".join(words))
        for material, faces in surfaces.items():
            groups += [f"usemtl {material}", *faces]
    return "\n".join(["# SPDX-License-Identifier: MIT", *points.lines(), *normals.lines(),
                      *groups, ""])
