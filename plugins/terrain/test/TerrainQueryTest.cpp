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

TEST_F(TerrainQuery, DownwardQueryAgreesWithTheAltitude) {
    load();
    terrain.setWgsPosition({-154, 20, 30}); // its own frame must not matter
    terrain.setWgsHPR({30, 20, 10});
    for (int n = 0; n < 2000; n++) {
        const double u = random() * (COLUMNS - 1), v = random() * (ROWS - 1);
        double altitude = 0;
        ASSERT_TRUE(terrain.getAltitudeByLonLat(longitude(u), latitude(v), &altitude, nullptr));
        const auto hit = queryDown(world(u, v, 70 + 3000 * random()));
        ASSERT_TRUE(hit);
        const dvec3 g = EARTH.toWGS(*hit);
        EXPECT_NEAR(g.z, altitude, 1e-6);
        EXPECT_NEAR(g.x, longitude(u), 1e-12);
        EXPECT_NEAR(g.y, latitude(v), 1e-12);
    }
}

TEST_F(TerrainQuery, NoRayThroughGridPointsAndEdgesIsMissed) {
    load();
    int missed = 0, off = 0;
    for (int n = 0; n < 20000; n++) {
        // On a point, a column, a row or a diagonal; the outer border included.
        const int i = random(COLUMNS), j = random(ROWS), kind = random(4);
        double u = i, v = j;
        if (kind == 1) v = random() * (ROWS - 1);
        if (kind == 2) u = random() * (COLUMNS - 1);
        if (kind == 3) {
            u = std::min(i, COLUMNS - 2) + random();
            v = std::floor(v) - (u - std::min(i, COLUMNS - 2)) + (j == 0);
        }
        const auto hit = queryDown(world(u, v, 500));
        double altitude = 0;
        if (!hit || !terrain.getAltitudeByLonLat(longitude(u), latitude(v), &altitude, nullptr))
            missed++;
        else
            off += std::abs(EARTH.getAltitude(*hit) - altitude) > 1e-6;
        // From above everything to below everything, over and through grid points.
        const int di = random(7) - 3, dj = random(7) - 3;
        const int to_i = std::clamp(i + di, 0, COLUMNS - 1), to_j = std::clamp(j + dj, 0, ROWS - 1);
        if (j == 0 && to_j == 0 && i != to_i) continue; // straight lines leave the northern border
        const dvec3 above = world(i, j, HIGHEST + 1), below = world(to_i, to_j, LOWEST - 1);
        missed += !query(above, below) + !query(below, above);
    }
    EXPECT_EQ(missed, 0);
    EXPECT_EQ(off, 0);
}

TEST_F(TerrainQuery, NoRayThatCrossesTheGroundOnAnEdgeIsMissed) {
    load();
    int missed = 0;
    for (int n = 0; n < 20000; n++) {
        // Through a place on the surface, on an edge or a corner of its triangles, from above
        // everything to below everything.
        const double u = 7 + random(10), v = 7 + random(6) + (n % 2) * random();
        double altitude;
        ASSERT_TRUE(terrain.getAltitudeByLonLat(longitude(u), latitude(v), &altitude, nullptr));
        const dvec3 place = world(u, v, altitude);
        const dmat4 frame = EARTH.getWGSTransform(place);
        const double bearing = random(8) * std::numbers::pi / 4; // along the edges or near them
        const dvec3 slant = frame.getX() * (150 * std::cos(bearing)) +
                            frame.getY() * (150 * std::sin(bearing)) + frame.getZ() * 100.0;
        missed += !query(place + slant, place - slant);
    }
    EXPECT_EQ(missed, 0);
}

TEST_F(TerrainQuery, LongRaysMeetALonelyMast) {
    // 20 km of plain with one mast of one sample, 50 m high and two samples wide at its foot.
    constexpr int SIZE = 700, MAST_U = 300, MAST_V = 411;
    ASSERT_TRUE(terrain.load(
        folder.writeRaster(RasterFile::degrees(SIZE, SIZE, WEST, NORTH, STEP, [](int i, int j) {
            return i == MAST_U && j == MAST_V ? 50 : 0;
        }))));
    for (int n = 0; n < 400; n++) {
        const double bearing = random() * 2 * std::numbers::pi, reach = 200 + random() * 20000;
        const auto cross = [&](double aside) {
            const dvec3 middle = world(MAST_U, MAST_V, 25);
            const dmat4 frame = EARTH.getWGSTransform(middle);
            const dvec3 ahead = frame.getX() * std::cos(bearing) + frame.getY() * std::sin(bearing);
            const dvec3 right = frame.getX() * std::sin(bearing) - frame.getY() * std::cos(bearing);
            const dvec3 at = middle + right * aside;
            return query(at - ahead * reach, at + ahead * reach);
        };
        const auto hit = cross(0);
        ASSERT_TRUE(hit);
        EXPECT_LT(length(*hit - world(MAST_U, MAST_V, 25)), 32);
        EXPECT_FALSE(cross(50));
        EXPECT_FALSE(cross(-50));
    }
}

/// The triangles of the raster as flat ones of the world, each tested by solving for its plane. A
/// flat triangle of the world lies within 0.02 mm of one that is flat in longitude and latitude.
class BruteForce {
public:
    BruteForce(const dvec3& origin) : m_origin(origin) {}
    void add(const dvec3& a, const dvec3& b, const dvec3& c) {
        m_triangles.push_back({a - m_origin, b - m_origin, c - m_origin});
    }
    struct Hit {
        double t;
        double steepness; ///< sine of the angle between ray and triangle
    };
    std::optional<Hit> solve(const dvec3& from, const dvec3& to) const {
        std::optional<Hit> best;
        const dvec3 o = from - m_origin, d = to - from;
        for (const auto& [a, b, c] : m_triangles) {
            const dvec3 normal = cross(b - a, c - a);
            const double slope = dot(normal, d);
            const double t = dot(normal, a - o) / slope;
            const dvec3 p = o + d * t;
            const bool inside = dot(cross(b - a, p - a), normal) >= 0 &&
                                dot(cross(c - b, p - b), normal) >= 0 &&
                                dot(cross(a - c, p - c), normal) >= 0;
            if (inside && t >= 0 && t <= 1 && (!best || t < best->t))
                best = Hit{t, std::abs(slope) / (length(normal) * length(d))};
        }
        return best;
    }

private:
    dvec3 m_origin;
    std::vector<std::array<dvec3, 3>> m_triangles;
};

TEST_F(TerrainQuery, SlantedRaysMeetTheFirstOfAllTriangles) {
    for (int n = 0; n < 12; n++)
        at(random(COLUMNS), random(ROWS)) = -32767;
    load();
    BruteForce brute(world(0, 0, 0));
    const auto addUnlessHole = [&](std::array<std::array<int, 2>, 3> corners) {
        dvec3 p[3];
        for (std::size_t k = 0; k < 3; k++) {
            const auto [i, j] = corners[k];
            if (at(i, j) < LOWEST) return;
            p[k] = world(i, j, at(i, j));
        }
        brute.add(p[0], p[1], p[2]);
    };
    for (int j = 0; j + 1 < ROWS; j++) {
        for (int i = 0; i + 1 < COLUMNS; i++) {
            addUnlessHole({{{i, j}, {i, j + 1}, {i + 1, j}}});
            addUnlessHole({{{i + 1, j + 1}, {i + 1, j}, {i, j + 1}}});
        }
    }
    int hits = 0;
    for (int n = 0; n < 6000; n++) {
        // Within and around the raster, grazing to steep; some start below the ground.
        const double reach = n % 3 == 0 ? 100 : 1; // up to 70 km
        const auto place = [&](double scale) {
            return world((random() * 1.4 - 0.2) * COLUMNS * scale,
                         (random() * 1.4 - 0.2) * ROWS * scale,
                         (random() * 1.5 - 0.25) * HIGHEST * (1 + 4 * (scale - 1)));
        };
        dvec3 from = place(reach);
        const dvec3 through = place(1);
        if (reach > 1) from = from + (from - through) * 0.5;
        const dvec3 to = reach > 1 ? through + (through - from) * 0.001 : through;
        const auto expected = brute.solve(from, to);
        const auto found = query(from, to);
        ASSERT_EQ(found.has_value(), expected.has_value()) << n;
        if (!found) continue;
        hits++;
        EXPECT_NEAR(length(*found - from), expected->t * length(to - from),
                    1e-4 / expected->steepness)
            << n;
    }
    EXPECT_GT(hits, 1500);
}

TEST_F(TerrainQuery, WhatLiesBesideBelowOrBehindIsNotMet) {
    load();
    const auto from = [](double altitude) { return world(5.3, 4.6, altitude); };
    EXPECT_TRUE(query(from(-10), from(100))); // from below
    EXPECT_FALSE(query(from(-10), from(-100000)));
    EXPECT_FALSE(query(from(200), from(100)));
    EXPECT_FALSE(query(from(100), from(100)));
    EXPECT_FALSE(queryDown(world(-0.01, 3, 100)));
    EXPECT_FALSE(queryDown(world(3, ROWS - 0.99, 100)));
    // Over the far side of the earth and through its middle.
    EXPECT_FALSE(query(from(100) * -1.0, from(100) * -1.0 - from(0)));
    const dvec3 up = EARTH.getUp(from(0));
    EXPECT_TRUE(query(from(0) - up * 1.3e7, from(100)));
    EXPECT_TRUE(query(from(100), from(0) - up * 1.3e7));
    EXPECT_FALSE(query(from(100), dvec3(NAN, 0, 0)));
    // Along the ground for 100 km, just above the highest sample and just below.
    for (const double side : {1.0, -1.0}) {
        const dvec3 middle = world(COLUMNS / 2, ROWS / 2, HIGHEST + side * 30);
        const dvec3 east = EARTH.getWGSTransform(middle).getX() * 50000.0;
        EXPECT_EQ(query(middle - east, middle + east).has_value(), side < 0);
    }
    terrain.setIntersection(0, false);
    EXPECT_FALSE(queryDown(from(100)));
}

TEST_F(TerrainQuery, HolesHaveNoAltitudeAndAreNotMet) {
    at(10, 8) = -32767;
    load();
    const auto hasGround = [&](double u, double v) {
        double altitude = -1;
        dvec3 normal(7, 7, 7);
        const bool found =
            terrain.getAltitudeByLonLat(longitude(u), latitude(v), &altitude, &normal);
        EXPECT_EQ(found, queryDown(world(u, v, 100)).has_value()) << u << " " << v;
        if (!found) {
            EXPECT_EQ(altitude, -1);
            EXPECT_EQ(normal, dvec3(7, 7, 7));
        }
        return found;
    };
    EXPECT_FALSE(hasGround(10, 8));
    EXPECT_FALSE(hasGround(10.2, 8.2));
    EXPECT_FALSE(hasGround(9.6, 8.2)); // the diagonal runs from (10, 8) to (9, 9)
    EXPECT_TRUE(hasGround(9.4, 7.5));
    EXPECT_TRUE(hasGround(10.6, 8.6)); // beyond the diagonal of the cell to the south-east
    for (int n = 0; n <= 10; n++) {    // the hole's border has data
        EXPECT_TRUE(hasGround(9, 8 + n / 10.0));
        EXPECT_TRUE(hasGround(11 - n / 10.0, 8 + n / 10.0));
        EXPECT_TRUE(hasGround(10 + n / 10.0, 7));
    }
    EXPECT_TRUE(terrain.getGrid().has_holes);
    EXPECT_TRUE(TerrainGrid::isHole(terrain.getGrid().getHeight(10, 8)));
}

} // namespace
