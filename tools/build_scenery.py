#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""Writes what stands on the ground of the demo world: a land cover raster, by which trees grow, the
places of the village's houses with the ground that is kept free, and its roads, draped onto the
terrain's triangles.

Needs what build_terrain.py needs, and the raster that it writes. Lengths are metres, x east and y
north of the helipad. Nothing is random: noise comes from hashed grid points.
"""

import math
import pathlib

import numpy as np
from osgeo import gdal

from build_terrain import (AIRFIELD, DEGREE_EAST, DEGREE_NORTH, EAST, NORTH, PAD, SOUTH, WEST,
                           distance_from_airfield, fractal, hashed, smoothstep)
from modelkit.glb import glb_bytes
from modelkit.mesh import Part

DATA = pathlib.Path(__file__).resolve().parent.parent / "data/PELMAR_PROJECT"
TREES, SHRUB, GRASS, BUILT_UP = 10, 20, 30, 50  # as ESA WorldCover counts
PIXEL = 12.0

# Centre lines: from the apron to the village and through it, down to the harbour, and inland.
MAIN = [(-146, 30), (-230, 70), (-330, 170), (-430, 280), (-560, 390), (-680, 500), (-790, 580),
        (-900, 640), (-1030, 690), (-1150, 720), (-1290, 700)]
HARBOUR = [(-790, 580), (-775, 650), (-745, 705)]
LANE = [(-900, 640), (-930, 560), (-985, 490), (-1060, 440)]
COAST = [(-330, 170), (-400, 40), (-440, -140), (-460, -400), (-470, -700), (-450, -1000),
         (-330, -1280), (-60, -1480), (300, -1600), (640, -1680), (960, -1760)]
ROADS = [(MAIN, 6.0), (HARBOUR, 5.0), (LANE, 4.5), (COAST, 6.0)]  # and width
NAMES = ["main_road", "harbour_road", "lane", "coast_road"]
# Where houses stand: of a road, from and to which metre along it, and how far apart.
ROWS = [(0, 760, 1330, 19.0), (1, 22, 118, 17.0), (2, 24, 240, 20.0), (3, 2150, 2560, 27.0)]
CHURCH = (-965, 700, 200)  # and heading
CENTER = (-900, 620)  # of the village

LIFT = 0.1    # m: roads lie above the ground
STEP = 5.0    # m along a road
FRONT = 4.0   # m between a road's edge and a wall


class Ground:
    """The terrain's triangles: each cell is split from north-east to south-west."""

    def __init__(self, path):
        raster = gdal.Open(str(path))
        self.heights = raster.ReadAsArray().astype(float)
        west, self.step_x, _, north, _, self.step_y = raster.GetGeoTransform()
        self.west, self.north = west + self.step_x / 2, north + self.step_y / 2

    def at(self, x, y):
        longitude, latitude = degrees(x, y)
        u, v = (longitude - self.west) / self.step_x, (latitude - self.north) / self.step_y
        i, j = int(u), int(v)
        u, v = u - i, v - j
        nw, ne = self.heights[j, i], self.heights[j, i + 1]
        sw, se = self.heights[j + 1, i], self.heights[j + 1, i + 1]
        if u + v <= 1:
            return nw + u * (ne - nw) + v * (sw - nw)
        return se + (1 - u) * (sw - se) + (1 - v) * (ne - se)

    def around(self, x, y, reach):
        """Highest, so that nothing sticks out of what is laid there."""
        return max(self.at(x + dx, y + dy) for dx in (-reach, 0, reach) for dy in (-reach, 0, reach))


def degrees(x, y):
    return PAD[0] + x / DEGREE_EAST, PAD[1] + y / DEGREE_NORTH


def curve(points, step):
    """Places and directions along a Catmull-Rom curve, `step` apart."""
    p = [points[0], *points, points[-1]]
    fine = []
    for a, b, c, d in zip(p, p[1:], p[2:], p[3:]):
        for s in np.arange(0, 1, 0.02):
            fine.append([0.5 * (2 * b[k] + (c[k] - a[k]) * s + (2 * a[k] - 5 * b[k] + 4 * c[k] - d[k])
                                * s ** 2 + (3 * b[k] - a[k] - 3 * c[k] + d[k]) * s ** 3)
                         for k in (0, 1)])
    fine = np.array([*fine, points[-1]])
    along = np.concatenate([[0], np.cumsum(np.hypot(*np.diff(fine, axis=0).T))])
    stations = np.linspace(0, along[-1], max(int(along[-1] / step), 1) + 1)
    x, y = (np.interp(stations, along, fine[:, k]) for k in (0, 1))
    heading = np.arctan2(np.gradient(x), np.gradient(y))
    return stations, x, y, heading


def to_world(longitude, latitude, altitude):
    a, f = 6378137.0, 1 / 298.257223563
    lon, lat = math.radians(longitude), math.radians(latitude)
    n = a / math.sqrt(1 - f * (2 - f) * math.sin(lat) ** 2)
    return np.array([(n + altitude) * math.cos(lat) * math.cos(lon),
                     (n + altitude) * math.cos(lat) * math.sin(lon),
                     (n * (1 - f) ** 2 + altitude) * math.sin(lat)])


class LocalFrame:
    """East, north, up at the helipad's place on the ellipsoid."""

    def __init__(self):
        lon, lat = map(math.radians, PAD)
        self.origin = to_world(*PAD, 0)
        self.axes = np.array([[-math.sin(lon), math.cos(lon), 0],
                              [-math.sin(lat) * math.cos(lon), -math.sin(lat) * math.sin(lon),
                               math.cos(lat)],
                              [math.cos(lat) * math.cos(lon), math.cos(lat) * math.sin(lon),
                               math.sin(lat)]])

    def place(self, x, y, altitude):
        return tuple(self.axes @ (to_world(*degrees(x, y), altitude) - self.origin))


def road_parts(ground):
    """A strip of two lanes of quads for each road."""
    frame, parts = LocalFrame(), []
    for number, (line, width) in enumerate(ROADS):
        part = Part(NAMES[number])
        _, x, y, heading = curve(line, STEP)
        rows = []
        for px, py, h in zip(x, y, heading):
            row = []
            for across in (-0.5, 0, 0.5):
                qx, qy = px + across * width * math.cos(h), py - across * width * math.sin(h)
                # Side roads lie lower where they join: no two surfaces fight.
                lift = LIFT - 0.012 * number
                row.append(frame.place(qx, qy, ground.around(qx, qy, 0.6) + lift))
            rows.append(row)
        for a, b in zip(rows, rows[1:]):
            for k in range(2):
                part.polygon("road", [a[k], a[k + 1], b[k + 1], b[k]])
        parts.append(part)
    return parts


def house_sites(ground):
    """(kind, x, y, heading) of all houses: their porches face the road."""
    sites = [("church", *CHURCH)]
    depth = {"cottage": 6.5 / 2 + 2.2, "villa": 4.0, "shed": 4.5}
    centre_lines = [np.stack(curve(line, 3)[1:3], 1) for line, _ in ROADS]
    for road, first, last, apart in ROWS:
        line, width = ROADS[road]
        stations, x, y, heading = curve(line, 1.0)
        for side in (-1, 1):
            for n, s in enumerate(np.arange(first + (apart / 2 if side > 0 else 0), last, apart)):
                i = min(int(s / stations[-1] * (len(stations) - 1)), len(stations) - 1)
                chance = float(hashed(np.array([n]), np.array([road * 2 + (side > 0)]), 90)[0])
                kind = "villa" if chance > 0.72 else "shed" if chance < 0.1 else "cottage"
                off = side * (width / 2 + FRONT + depth[kind] + 3 * chance)
                px, py = x[i] + off * math.cos(heading[i]), y[i] - off * math.sin(heading[i])
                if ground.at(px, py) < 2.5:
                    continue
                if any(np.hypot(*(c - (px, py)).T).min() < depth[kind] + 4.5 for c in centre_lines):
                    continue
                if any(math.hypot(px - q[1], py - q[2]) < 15 for q in sites):
                    continue
                face = math.degrees(heading[i]) - 90 * side + 8 * (chance - 0.5)
                sites.append((kind, px, py, face % 360))
    return sites


def places_text(sites):
    def place(x, y, last):
        return "[{:.7f}, {:.7f}, {:.4g}]".format(*degrees(x, y), last)

    lines = ["# SPDX-License-Identifier: MIT",
             "# Written by tools/build_scenery.py: no trees on roads, and the village's houses.",
             "clearings:"]
    for line, width in ROADS:
        _, x, y, _ = curve(line, 60)
        for ax, ay, bx, by in zip(x, y, x[1:], y[1:]):
            lines.append(f"  - {{from: {place(ax, ay, 0)}, to: {place(bx, by, 0)}, "
                         f"width: {width + 7:g}}}")
    lines.append("sites:")
    lines += [f"  - {{kind: {kind}, at: {place(x, y, heading)}}}" for kind, x, y, heading in sites]
    return "\n".join([*lines, ""])


def land_cover(ground, sites):
    """Woods in folds of the hills, scrub around them, palms behind the beach, gardens."""
    columns, rows = int((EAST - WEST) / PIXEL), int((NORTH - SOUTH) / PIXEL)
    x = WEST + (np.arange(columns) + 0.5) * PIXEL
    y = NORTH - (np.arange(rows) + 0.5) * PIXEL
    x, y = np.meshgrid(x, y)
    u = (PAD[0] + x / DEGREE_EAST - ground.west) / ground.step_x
    v = (PAD[1] + y / DEGREE_NORTH - ground.north) / ground.step_y
    u, v = (np.clip(np.round(w).astype(int), 0, n - 1) for w, n in
            zip((u, v), ground.heights.shape[::-1]))
    h = ground.heights[v, u]
    smooth = ground.heights
    for axis in (0, 1):
        smooth = sum(np.roll(smooth, n, axis) for n in range(-4, 5)) / 9
    hollow = (smooth - ground.heights)[v, u]  # how far below its surroundings

    apart = distance_from_airfield(x, y)
    wild = 0.7 * fractal(x, y, 900, 70, 4) + 0.05 * np.clip(hollow, -6, 6)
    wild -= 0.5 * (1 - smoothstep(260, 700, apart)) + 0.9 * smoothstep(160, 300, h)
    cover = np.zeros(h.shape, np.uint8)
    cover[(h > 2) & (h < 12) & (apart > 90)] = GRASS
    cover[(wild > -0.02) & (h > 5)] = SHRUB
    cover[(wild > 0.14) & (h > 7)] = TREES
    for _, sx, sy, _ in sites:
        cover[np.hypot(x - sx, y - sy) < 42] = GRASS
    for _, sx, sy, _ in sites:
        cover[np.hypot(x - sx, y - sy) < 16] = BUILT_UP
    cover[(apart < 60) | (h < 1.5)] = 0
    return cover


def write_cover(path, cover):
    rows, columns = cover.shape
    raster = gdal.GetDriverByName("GTiff").Create(
        str(path), columns, rows, 1, gdal.GDT_Byte, ["COMPRESS=DEFLATE", "ZLEVEL=9"])
    west, north = degrees(WEST, NORTH)
    raster.SetGeoTransform((west, PIXEL / DEGREE_EAST, 0, north, 0, -PIXEL / DEGREE_NORTH))
    raster.SetProjection(gdal.Open(str(DATA / "terrain/coast.tif")).GetProjection())
    band = raster.GetRasterBand(1)
    band.SetNoDataValue(0)
    band.WriteArray(cover)


def main():
    gdal.UseExceptions()
    ground = Ground(DATA / "terrain/coast.tif")
    sites = house_sites(ground)
    (DATA / "terrain/places.yaml").write_text(places_text(sites))
    folder = DATA / "prefabs/scenery"
    folder.mkdir(parents=True, exist_ok=True)
    (folder / "roads.glb").write_bytes(glb_bytes(road_parts(ground)))
    cover = land_cover(ground, sites)
    write_cover(DATA / "terrain/cover.tif", cover)
    for value, name in ((TREES, "woods"), (SHRUB, "scrub"), (GRASS, "palms and gardens")):
        print(f"{name}: {np.sum(cover == value) * PIXEL ** 2 / 1e6:.1f} km²")
    print(f"{len(sites)} houses")


if __name__ == "__main__":
    main()
