#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""Writes the ground of the demo world: an island with an airfield on its north-eastern coast, as a
GeoTIFF of heights above the ellipsoid in WGS84 longitude and latitude.

The coast is a drawn outline, made rough by noise away from the airfield. The hills grow by uplift
while rivers cut into them, which gives ridges and valleys that hang together; the airfield is laid
on top. The sea bed falls away on all sides, so that the raster ends below the sea. Lengths are
metres, x east and y north of the helipad.

Needs numpy and GDAL's Python module. Nothing is random: noise comes from hashed grid points.
"""

import argparse
import pathlib

import numpy as np
from osgeo import gdal, osr

PAD = (-155.0625125, 19.7124631)  # longitude and latitude of the helipad's middle
SPACING = 0.6 / 3600              # degrees between samples
WEST, EAST, SOUTH, NORTH = -9000, 4000, -8500, 4000
DEGREE_EAST, DEGREE_NORTH = 104842.0, 110697.0  # length of a degree at the pad

FLAT = 12.40                              # the airfield's ground: 4 cm below the apron
AIRFIELD = (-170.0, 205.0, -830.0, 470.0)  # all that lies on it: west, east, south, north
FLAT_MARGIN, BLEND = 25.0, 300.0          # flat up to the one, open country from the other
QUANTUM = 1 / 32                          # heights elsewhere are whole multiples: small files

SUMMIT = 380.0
SEA_BED, SEA_BED_SCALE = 45.0, 450.0      # greatest depth, and how far out it is nearly reached

COAST = [(-300, 730), (100, 720), (290, 680), (420, 500), (480, 330), (490, -100), (470, -500),
         (500, -950), (700, -1350), (1150, -1500), (1500, -1850), (1450, -2300), (1000, -2550),
         (850, -3000), (1150, -3500), (1250, -4200), (800, -4900), (-100, -5300), (-1200, -5700),
         (-2500, -6300), (-3900, -6700), (-5200, -6300), (-6300, -5400), (-7100, -4200),
         (-7300, -3000), (-6800, -2000), (-6300, -1500), (-6500, -600), (-6900, 300),
         (-6500, 1300), (-5500, 1800), (-4500, 2300), (-3500, 2000), (-2700, 1300), (-2000, 850),
         (-1400, 1000), (-800, 900)]
ISLETS = [(2400, -2500, 170), (2050, -3300, 95), (-7900, 1100, 130)]  # x, y, radius


def smoothstep(low, high, x):
    t = np.clip((x - low) / (high - low), 0, 1)
    return t * t * (3 - 2 * t)


def hashed(i, j, seed):
    """A number in [0, 1) for every grid point."""
    n = (i.astype(np.int64) * 374761393 + j.astype(np.int64) * 668265263 + seed * 2147483647)
    n = (n.astype(np.uint64) & np.uint64(0xffffffff)).astype(np.uint32)
    for shift, factor in ((15, 2246822519), (13, 3266489917)):
        n = (n ^ (n >> np.uint32(shift))) * np.uint32(factor)
    return (n ^ (n >> np.uint32(16))) / 2.0 ** 32


def noise(x, y, wavelength, seed):
    """Gradient noise in about ±1."""
    x, y = x / wavelength, y / wavelength
    i, j = np.floor(x), np.floor(y)
    total = 0
    for di in (0, 1):
        for dj in (0, 1):
            angle = 2 * np.pi * hashed(i + di, j + dj, seed)
            u, v = x - i - di, y - j - dj
            weight = (1 - smoothstep(0, 1, abs(u))) * (1 - smoothstep(0, 1, abs(v)))
            total = total + weight * (u * np.cos(angle) + v * np.sin(angle))
    return total * 1.5


def fractal(x, y, wavelength, seed, octaves=4):
    return sum(noise(x, y, wavelength / 2 ** o, seed + o) / 2 ** o for o in range(octaves))


def closed_curve(points, steps=6):
    """A Catmull-Rom curve through the points."""
    p = np.array(points, float)
    before, after, beyond = np.roll(p, 1, 0), np.roll(p, -1, 0), np.roll(p, -2, 0)
    curve = []
    for s in np.arange(steps) / steps:
        curve.append(0.5 * (2 * p + (after - before) * s +
                            (2 * before - 5 * p + 4 * after - beyond) * s ** 2 +
                            (3 * p - before - 3 * after + beyond) * s ** 3))
    return np.stack(curve, 1).reshape(-1, 2)


def distance_inland(x, y):
    """Distance to the coast, negative at sea."""
    nearest = np.full(x.shape, np.inf)
    inside = np.zeros(x.shape, bool)
    curve = closed_curve(COAST)
    for (ax, ay), (bx, by) in zip(curve, np.roll(curve, -1, 0)):
        dx, dy = bx - ax, by - ay
        s = np.clip(((x - ax) * dx + (y - ay) * dy) / (dx * dx + dy * dy), 0, 1)
        nearest = np.minimum(nearest, (x - ax - s * dx) ** 2 + (y - ay - s * dy) ** 2)
        if ay != by:
            inside ^= ((ay > y) != (by > y)) & (x < ax + (y - ay) / dy * dx)
    d = np.where(inside, 1, -1) * np.sqrt(nearest)
    for cx, cy, radius in ISLETS:
        d = np.maximum(d, radius - np.hypot(x - cx, y - cy))
    return d


def distance_from_airfield(x, y):
    west, east, south, north = AIRFIELD
    return np.hypot(np.maximum(np.maximum(west - x, x - east), 0),
                    np.maximum(np.maximum(south - y, y - north), 0))


def steepest_descent(height, cell):
    """For every cell of a flattened grid the lower neighbour that water runs to (itself in a pit)
    and the distance to it."""
    rows, columns = height.shape
    here = np.arange(rows * columns).reshape(rows, columns)
    receiver, distance, best = here.copy(), np.full(height.shape, cell), np.zeros(height.shape)
    for dj in (-1, 0, 1):
        for di in (-1, 0, 1):
            if (di, dj) == (0, 0):
                continue
            length = cell * np.hypot(di, dj)
            inner = np.s_[max(0, -dj):rows - max(0, dj), max(0, -di):columns - max(0, di)]
            other = np.s_[max(0, dj):rows + min(0, dj), max(0, di):columns + min(0, di)]
            slope = (height[inner] - height[other]) / length
            steeper = slope > best[inner]
            best[inner] = np.where(steeper, slope, best[inner])
            receiver[inner] = np.where(steeper, here[other], receiver[inner])
            distance[inner] = np.where(steeper, length, distance[inner])
    return receiver.ravel(), distance.ravel()


def erode(height, uplift, land, cell, steps=110):
    """Uplift against rivers whose cutting grows with slope and with the root of their basin, by the
    implicit scheme of Braun and Willett (2013), and creep of the soil. The sea keeps its level."""
    shape, is_land = height.shape, land.ravel()
    for _ in range(steps):
        receiver, distance = steepest_descent(height, cell)
        h = height.ravel() + np.where(is_land, uplift.ravel(), 0)
        order = np.argsort(height.ravel(), kind="stable")
        order = order[is_land[order]]
        area = np.ones(h.size)
        for i in order[::-1].tolist():
            if receiver[i] != i:
                area[receiver[i]] += area[i]
        power = 0.5 * np.sqrt(area) * cell / distance
        level, target = h.tolist(), receiver.tolist()
        share = power.tolist()
        for i in order.tolist():
            if target[i] != i:
                level[i] = (level[i] + share[i] * level[target[i]]) / (1 + share[i])
        height = np.array(level).reshape(shape)
        creep = (np.roll(height, 1, 0) + np.roll(height, -1, 0) + np.roll(height, 1, 1) +
                 np.roll(height, -1, 1) - 4 * height)
        height = height + np.where(land, 0.12 * creep, 0)
    return height


def refine(coarse, shape):
    """Twice as many samples each way, smoothed."""
    fine = np.kron(coarse, np.ones((2, 2)))[:shape[0], :shape[1]]
    for _ in range(3):
        for axis in (0, 1):
            padded = np.pad(fine, [(1, 1) if a == axis else (0, 0) for a in (0, 1)], "edge")
            low, high = ([slice(None)] * 2 for _ in range(2))
            low[axis], high[axis] = slice(0, -2), slice(2, None)
            fine = 0.5 * fine + 0.25 * (padded[tuple(low)] + padded[tuple(high)])
    return fine


def hills(x, y, inland):
    """Heights of the hills alone: nothing at the coast and around the airfield."""
    coarse = (slice(None, None, 2), slice(None, None, 2))
    cx, cy, d = x[coarse], y[coarse], inland[coarse]
    land = d > 90
    away = smoothstep(350, 1700, distance_from_airfield(cx, cy))
    uplift = smoothstep(90, 1300, d) * away * (1 + 0.7 * fractal(cx, cy, 3000, 20, 3))
    start = np.where(land, 0.02 * d * (1 + 0.8 * fractal(cx, cy, 1500, 30, 5)), 0)
    raised = erode(start, uplift, land, 37.0)
    raised = np.where(land, np.maximum(raised, 0), 0)
    # The root lifts the foothills, which end gently at the coast.
    return refine(SUMMIT * (raised / raised.max()) ** 0.9, x.shape)


def heights(x, y):
    apart = distance_from_airfield(x, y)
    rough = smoothstep(350, 1500, apart)
    wobble = [rough * 520 * fractal(x, y, 2300, seed, 5) + 40 * fractal(x, y, 420, seed + 5, 3)
              for seed in (1, 9)]
    inland = distance_inland(x + wobble[0], y + wobble[1])
    print(f"land: {np.mean(inland > 0):.0%} of the raster")

    bed = -0.4 - SEA_BED * (1 - np.exp(np.minimum(inland, 0) / SEA_BED_SCALE))
    bed -= 2.0 * (1 + fractal(x, y, 700, 40, 3)) * smoothstep(0, 300, -inland)
    cliffs = smoothstep(0.05, 0.45, noise(x, y, 1900, 50)) * rough
    d = np.maximum(inland, 0)
    land = 3.2 * (1 - np.exp(-d / 45)) + 9 * smoothstep(60, 450, d)
    land += cliffs * (9 + 16 * smoothstep(200, 900, d)) * smoothstep(8, 55, d)
    land += hills(x, y, inland)
    land += rough * smoothstep(40, 300, d) * (1.5 * fractal(x, y, 260, 60, 4) +
                                              0.02 * land * fractal(x, y, 140, 70, 3))
    natural = np.where(inland > 0, np.maximum(land, 0.1), bed)

    # The airfield's ground gives way over the last 120 m to the shore.
    levelled = (1 - smoothstep(FLAT_MARGIN, BLEND, apart)) * smoothstep(0, 120, inland)
    ground = natural + (FLAT - natural) * levelled
    ground = np.round(ground / QUANTUM) * QUANTUM
    return np.where(apart <= FLAT_MARGIN, FLAT, ground).astype(np.float32)


def write(path, ground, west, north):
    """`west` and `north` are the place of the first sample; a GeoTIFF counts from the corner of its
    pixel."""
    rows, columns = ground.shape
    options = ["COMPRESS=DEFLATE", "PREDICTOR=3", "ZLEVEL=9"]
    raster = gdal.GetDriverByName("GTiff").Create(str(path), columns, rows, 1, gdal.GDT_Float32,
                                                  options)
    raster.SetGeoTransform((west - SPACING / 2, SPACING, 0, north + SPACING / 2, 0, -SPACING))
    wgs84 = osr.SpatialReference()
    wgs84.ImportFromEPSG(4326)
    raster.SetProjection(wgs84.ExportToWkt())
    raster.GetRasterBand(1).WriteArray(ground)


def main():
    default = (pathlib.Path(__file__).resolve().parent.parent /
               "data/PELMAR_PROJECT/terrain/coast.tif")
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("file", nargs="?", type=pathlib.Path, default=default,
                        help="what to write (default: the repository's raster)")
    path = parser.parse_args().file
    gdal.UseExceptions()
    west, north = PAD[0] + WEST / DEGREE_EAST, PAD[1] + NORTH / DEGREE_NORTH
    columns = int((EAST - WEST) / DEGREE_EAST / SPACING)
    rows = int((NORTH - SOUTH) / DEGREE_NORTH / SPACING)
    x = (west + np.arange(columns) * SPACING - PAD[0]) * DEGREE_EAST
    y = (north - np.arange(rows) * SPACING - PAD[1]) * DEGREE_NORTH
    ground = heights(*np.meshgrid(x, y))
    path.parent.mkdir(parents=True, exist_ok=True)
    write(path, ground, west, north)
    print(f"{path}: {columns} x {rows} samples, {ground.min():.2f} to {ground.max():.2f} m, "
          f"{path.stat().st_size} bytes")


if __name__ == "__main__":
    main()
