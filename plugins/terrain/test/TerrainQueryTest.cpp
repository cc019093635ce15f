// SPDX-License-Identifier: MIT
#include "RasterFiles.h"

#include "ig/math/EllipsoidModel.h"
#include "plugins/terrain/ObjectTerrain.h"

#include <array>
#include <numbers>
#include <optional>
#include <random>

namespace {

using namespace ig;
const EllipsoidModel EARTH;

/// A small rough raster, 24 × 20 samples about 30 m apart, that queries are put to.
class TerrainQuery : public testing::Test {
protected:
    static constexpr int COLUMNS = 24, ROWS = 20;
    static constexpr double WEST = -155.0625125, NORTH = 19.7124631, STEP = 1 / 3600.0;
    static constexpr double LOWEST = 0, HIGHEST = 60;

    TerrainQuery() {
        for (float& height : heights)
            height = float(LOWEST + (HIGHEST - LOWEST) * random());
    }
    void load() {
        ASSERT_TRUE(terrain.load(folder.writeRaster(RasterFile::degrees(
            COLUMNS, ROWS, WEST, NORTH, STEP, [this](int i, int j) { return at(i, j); }))));
    }
    float& at(int i, int j) { return heights[std::size_t(j * COLUMNS + i)]; }
    double random() { return std::uniform_real_distribution<>(0, 1)(engine); }
    int random(int count) { return std::uniform_int_distribution<>(0, count - 1)(engine); }

    static double longitude(double column) { return WEST + column * STEP; }
    static double latitude(double row) { return NORTH - row * STEP; }
    static dvec3 world(double column, double row, double altitude) {
        return EARTH.toWorld({longitude(column), latitude(row), altitude});
    }

    /// The hit in the world.
    std::optional<dvec3> query(const dvec3& from, const dvec3& to) const {
        dvec3 hit;
        if (!terrain.getIntersection(0, terrain.toLocal(from), terrain.toLocal(to), &hit))
            return {};
        return terrain.toWorld(hit);
    }
    /// The feedback's query: 100 km along the local vertical.
    std::optional<dvec3> queryDown(const dvec3& from) const {
        return query(from, from - EARTH.getWGSTransform(from).getZ() * 100000.0);
    }

    std::mt19937 engine{1};
    std::array<float, COLUMNS * ROWS> heights;
    RasterFolder folder;
    ObjectTerrain terrain;
};

TEST_F(TerrainQuery, RaysAgreeWithTheAltitudeAndSlipThroughNoEdge) {
    load();
    terrain.setWgsPosition({-154, 20, 30}); // its own frame must not matter
    terrain.setWgsHPR({30, 20, 10});
    for (int n = 0; n < 8000; n++) {
        // On a point, a column, a row, a diagonal or anywhere, the outer border included.
        const int kind = random(5);
        const double along = random();
        double u = random(COLUMNS), v = random(ROWS);
        if (kind == 1 || kind == 4) v = random() * (ROWS - 1);
        if (kind == 2 || kind == 4) u = random() * (COLUMNS - 1);
        if (kind == 3) u = random(COLUMNS - 1) + along, v = random(ROWS - 1) + 1 - along;
        double altitude = 0;
        ASSERT_TRUE(terrain.getAltitudeByLonLat(longitude(u), latitude(v), &altitude, nullptr));
        const dvec3 place = world(u, v, altitude);
        const auto hit = queryDown(world(u, v, 70 + 3000 * random()));
        ASSERT_TRUE(hit) << u << " " << v;
        ASSERT_LT(length(*hit - place), 1e-6);
        // From above everything to below everything and back: aslant over it, then through it.
        const double to_u = std::clamp(u + random(7) - 3, 0.0, COLUMNS - 1.0);
        const double to_v = std::clamp(v + random(7) - 3, 0.0, ROWS - 1.0);
        const dvec3 above = world(u, v, HIGHEST + 1), below = world(to_u, to_v, LOWEST - 1);
        if (v + to_v > 0 || u == to_u) { // straight lines leave the northern border
            ASSERT_TRUE(query(above, below) && query(below, above)) << u << " " << v;
        }
    }
}

TEST_F(TerrainQuery, LongRaysMeetALonelyMast) {
    // 20 km of plain with one mast of one sample, 50 m high and two samples wide at its foot.
    constexpr int SIZE = 700, MAST_U = 300, MAST_V = 411;
    ASSERT_TRUE(terrain.load(
        folder.writeRaster(RasterFile::degrees(SIZE, SIZE, WEST, NORTH, STEP, [](int i, int j) {
            return i == MAST_U && j == MAST_V ? 50 : 0;
        }))));
    const dvec3 middle = world(MAST_U - 0.2, MAST_V - 0.2, 25); // inside
    const dmat4 frame = EARTH.getWGSTransform(middle);
    for (int n = 0; n < 600; n++) {
        const double bearing = random() * 2 * std::numbers::pi, reach = 200 + random() * 20000;
        const dvec3 ahead = frame.getX() * std::cos(bearing) + frame.getY() * std::sin(bearing);
        const dvec3 right = frame.getX() * std::sin(bearing) - frame.getY() * std::cos(bearing);
        const dvec3 at = middle + right * (n % 3 - 1) * 55.0;
        const auto hit = query(at - ahead * reach, at + ahead * reach);
        ASSERT_EQ(hit.has_value(), n % 3 == 1);
        if (!hit) continue;
        EXPECT_LT(length(*hit - middle), 32);
        EXPECT_LT(dot(*hit - middle, ahead), 0) << "the near side";
    }
}

using Triangle = std::array<dvec3, 3>;

/// Distance along the ray to the first of flat triangles of the world, each tested by solving for
/// its plane, and the sine of the angle that they meet at. A flat triangle of the world lies within
/// 0.02 mm of one that is flat in longitude and latitude.
std::optional<std::pair<double, double>> meetFirst(const std::vector<Triangle>& triangles,
                                                   const dvec3& from, const dvec3& to) {
    std::optional<std::pair<double, double>> best;
    const dvec3 d = to - from;
    for (const auto& [a, b, c] : triangles) {
        const dvec3 normal = cross(b - a, c - a);
        const double slope = dot(normal, d), t = dot(normal, a - from) / slope;
        const dvec3 p = from + d * t;
        const bool inside = dot(cross(b - a, p - a), normal) >= 0 &&
                            dot(cross(c - b, p - b), normal) >= 0 &&
                            dot(cross(a - c, p - c), normal) >= 0;
        if (inside && t >= 0 && t <= 1 && (!best || t * length(d) < best->first))
            best = {t * length(d), std::abs(slope) / (length(normal) * length(d))};
    }
    return best;
}

TEST_F(TerrainQuery, SlantedRaysMeetTheFirstOfAllTrianglesAndHolesHaveNone) {
    for (int n = 0; n < 12; n++)
        at(random(COLUMNS), random(ROWS)) = -32767;
    load();
    std::vector<Triangle> triangles;
    for (int n = 0; n < 2 * (ROWS - 1) * (COLUMNS - 1); n++) {
        const int south = n % 2, i = n / 2 % (COLUMNS - 1), j = n / 2 / (COLUMNS - 1);
        const int corners[3][2] = {{i + south, j + south}, {i, j + 1}, {i + 1, j}};
        Triangle triangle;
        bool hole = false;
        for (std::size_t k = 0; k < 3; k++) {
            const auto [u, v] = corners[k];
            hole = hole || at(u, v) < LOWEST;
            triangle[k] = world(u, v, at(u, v));
        }
        if (!hole) triangles.push_back(triangle);
    }
    int hits = 0;
    for (int n = 0; n < 3000; n++) {
        // Within and around the raster, grazing to steep; some start below the ground.
        const auto place = [&](double scale) {
            return world((random() * 1.4 - 0.2) * COLUMNS * scale,
                         (random() * 1.4 - 0.2) * ROWS * scale,
                         (random() * 1.5 - 0.25) * HIGHEST * (1 + 4 * (scale - 1)));
        };
        const dvec3 from = place(n % 3 == 0 ? 100 : 1); // up to 70 km
        const dvec3 through = place(1), to = through + (through - from) * (n % 3 == 0 ? 0.001 : 0);
        const auto expected = meetFirst(triangles, from, to);
        const auto found = query(from, to);
        ASSERT_EQ(found.has_value(), expected.has_value()) << n;
        if (!found) continue;
        hits++;
        EXPECT_NEAR(length(*found - from), expected->first, 1e-4 / expected->second) << n;
    }
    EXPECT_GT(hits, 750);
}

TEST_F(TerrainQuery, WhatLiesBesideBelowOrBehindIsNotMet) {
    load();
    const auto over = [](double altitude) { return world(5.3, 4.6, altitude); };
    const dvec3 up = EARTH.getUp(over(0)), antipode = over(100) * -1.0;
    EXPECT_TRUE(query(over(-10), over(100)));            // from below
    EXPECT_TRUE(query(over(0) - up * 1.3e7, over(100))); // through the whole earth
    const std::pair<dvec3, dvec3> misses[] = {
        {over(-10), over(-100000)},
        {over(200), over(100)},
        {antipode, antipode - over(0)},
        {world(3, ROWS - 0.99, 100), world(3, ROWS - 0.99, -100)},
        {over(100), dvec3(NAN, 0, 0)}};
    for (const auto& [from, to] : misses)
        EXPECT_FALSE(query(from, to)) << &from - &misses[0].first;
    // Along the ground for 100 km, just above the highest sample and just below.
    for (const double side : {1.0, -1.0}) {
        const dvec3 middle = world(COLUMNS / 2, ROWS / 2, HIGHEST + side * 30);
        const dvec3 east = EARTH.getWGSTransform(middle).getX() * 50000.0;
        EXPECT_EQ(query(middle - east, middle + east).has_value(), side < 0);
    }
    terrain.setIntersection(0, false);
    EXPECT_FALSE(queryDown(over(100)));
}

TEST_F(TerrainQuery, TheBorderOfAHoleHasGround) {
    at(10, 8) = -32767;
    load();
    for (const auto& [u, v] : {std::pair(9.0, 8.5), {10.5, 8.5}, {10.5, 7}})
        EXPECT_TRUE(queryDown(world(u, v, 100))) << u << " " << v;
}

} // namespace
