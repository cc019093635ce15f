// SPDX-License-Identifier: MIT

// Grounds of several rasters: nested grids are one surface.

#include "RasterFiles.h"

#include "ig/math/EllipsoidModel.h"
#include "plugins/terrain/ObjectTerrain.h"
#include "testkit/LogCapture.h"

#include <array>
#include <optional>
#include <random>

namespace {

using namespace ig;
const EllipsoidModel EARTH;

/// Rough ground about 90 m apart, in it a patch of some 10 m and a finer one in that, which hang
/// over the others' lines, across 180 degrees, and one beyond, which counts from the west.
class NestedGround : public testing::Test {
protected:
    static constexpr double STEP = 1 / 1200.0, WEST = 180 - 12.3 * STEP, NORTH = -51;

    NestedGround() {
        const auto rough = [this](double height) {
            return [this, height](int, int) { return height + 40 * random(); };
        };
        TerrainSources sources;
        sources.rasters = {
            folder.writeRaster(RasterFile::degrees(26, 22, WEST, NORTH, STEP, rough(20)), "a.tif"),
            folder.writeRaster(RasterFile::degrees(50, 46, WEST + 7.2 * STEP, NORTH - 6.4 * STEP,
                                                   STEP / 8.7, rough(30)),
                               "b.tif"),
            folder.writeRaster(RasterFile::degrees(20, 20, WEST + 9.1 * STEP, NORTH - 8.1 * STEP,
                                                   STEP / 30, rough(35)),
                               "c.tif"),
            folder.writeRaster(RasterFile::degrees(20, 20, WEST + 17.5 * STEP - 360,
                                                   NORTH - 3 * STEP, STEP / 4, rough(-40)),
                               "d.tif")};
        const LogCapture log;
        EXPECT_TRUE(terrain.load(sources));
        EXPECT_TRUE(log.lines.empty()) << log.lines[0];
    }
    double random() { return std::uniform_real_distribution<>(0, 1)(engine); }

    static dvec3 world(const TerrainGrid& grid, double column, double row, double altitude) {
        return EARTH.toWorld({grid.west + column * grid.spacing_longitude,
                              grid.north - row * grid.spacing_latitude, altitude});
    }

    using Triangle = std::array<dvec3, 3>;
    /// All that none of the finer grids replaces.
    std::vector<Triangle> listTriangles() const {
        std::vector<Triangle> triangles;
        const TerrainGrids grids = terrain.getGrids();
        for (const TerrainGrid& grid : grids)
            for (int row = 0; row < grid.rows - 1; row++)
                for (int column = 0; column < grid.columns - 1; column++) {
                    const bool replaced = std::ranges::any_of(grids, [&](const TerrainGrid& f) {
                        return f.parent >= 0 && &grids[std::size_t(f.parent)] == &grid &&
                               column >= f.within.column && row >= f.within.row &&
                               column < f.within.column + f.within.columns &&
                               row < f.within.row + f.within.rows;
                    });
                    if (replaced) continue;
                    const auto corner = [&](int c, int r) {
                        return world(grid, c, r, grid.getHeight(c, r));
                    };
                    triangles.push_back(
                        {corner(column, row), corner(column, row + 1), corner(column + 1, row)});
                    triangles.push_back({corner(column + 1, row + 1), corner(column + 1, row),
                                         corner(column, row + 1)});
                }
        return triangles;
    }
    /// Distance to the nearest one along a segment, and the sine of the angle that it is met at;
    /// `slack`: how far beyond a triangle's edges it still counts, m.
    static std::optional<std::pair<double, double>>
    meetFirst(const std::vector<Triangle>& all, const dvec3& from, const dvec3& to, double slack) {
        std::optional<std::pair<double, double>> best;
        const dvec3 d = to - from;
        for (const auto& [a, b, c] : all) {
            const dvec3 normal = normalize(cross(b - a, c - a));
            const double slope = dot(normal, d), t = dot(normal, a - from) / slope;
            const dvec3 p = from + d * t;
            const auto inside = [&](const dvec3& q, const dvec3& r) {
                return dot(cross(r - q, p - q), normal) >= -slack * length(r - q);
            };
            if (t >= 0 && t <= 1 && inside(a, b) && inside(b, c) && inside(c, a) &&
                (!best || t * length(d) < best->first))
                best = {t * length(d), std::abs(slope) / length(d)};
        }
        return best;
    }

    std::mt19937 engine{7};
    RasterFolder folder;
    ObjectTerrain terrain;
};

TEST_F(NestedGround, FinerGridsDivideTheirParentsCellsAndLieOnItsSurface) {
    const TerrainGrids grids = terrain.getGrids();
    ASSERT_EQ(grids.size(), 4u);
    EXPECT_EQ(grids[2].parent, 1);
    EXPECT_EQ(grids[3].parent, 0);
    EXPECT_LE(grids[3].getHeight(grids[3].columns / 2, grids[3].rows / 2), 0) << "its own heights";
    for (const TerrainGrid& fine : grids.subspan(1)) {
        const TerrainGrid& coarse = grids[std::size_t(fine.parent)];
        const int along = (fine.columns - 1) / fine.within.columns;
        ASSERT_EQ(fine.columns, fine.within.columns * along + 1);
        ASSERT_EQ(fine.rows, fine.within.rows * along + 1);
        for (int i = 0; i <= fine.within.columns; i++)
            for (int j = 0; j <= fine.within.rows; j++)
                EXPECT_EQ(fine.getHeight(i * along, j * along),
                          coarse.getHeight(fine.within.column + i, fine.within.row + j))
                    << "the coarser one is the finer one seen from afar, and the border its own";
        for (int i = 0; i < fine.columns; i++) {
            const float a = fine.getHeight(i / along * along, 0);
            const float b =
                fine.getHeight(std::min(i / along * along + along, fine.columns - 1), 0);
            EXPECT_NEAR(fine.getHeight(i, 0), a + (b - a) * float(i % along) / float(along), 1e-4);
        }
    }
}

TEST_F(NestedGround, SegmentsMeetTheFirstOfAllTrianglesAndSlipThroughNoSeam) {
    const std::vector<Triangle> triangles = listTriangles();
    const TerrainGrids grids = terrain.getGrids();
    int hits = 0;
    for (int n = 0; n < 2400; n++) {
        // About a seam: on it, or anywhere near it.
        const TerrainGrid& grid = grids[std::size_t(1 + n % 3)];
        const double share = random();
        double u = n % 2 ? share * (grid.columns - 1) : (n & 4 ? 0 : grid.columns - 1);
        double v = n % 2 ? (n & 4 ? 0 : grid.rows - 1) : share * (grid.rows - 1);
        if (n & 8) u += random() - 0.5, v += random() - 0.5;
        const double reach = (n & 48) == 16 ? 60 : 3; // cells
        const dvec3 place = world(grid, u, v, 0), up = EARTH.getUp(place);
        const auto around = [&](double altitude) {
            return world(grid, u + (random() - 0.5) * reach, v + (random() - 0.5) * reach,
                         altitude);
        };
        double altitude = 0;
        const dvec3 geodetic = EARTH.toWGS(place);
        ASSERT_TRUE(terrain.getAltitudeByLonLat(geodetic.x, geodetic.y, &altitude, nullptr));
        dvec3 hit;
        ASSERT_TRUE(terrain.getIntersection(0, place + up * 900.0, place - up * 900.0, &hit));
        EXPECT_LT(length(hit - (place + up * altitude)), 1e-6) << n;
        // Through a point of the seam, where one field ends and the other begins.
        const dvec3 on_seam = place + up * altitude;
        const dvec3 lean = normalize(world(grid, u + 1, v - 1, altitude) - on_seam);
        const dvec3 half = up * 100.0 + lean * (n % 5 - 2.5);
        ASSERT_TRUE(terrain.getIntersection(0, on_seam + half, on_seam - half, &hit)) << n;
        const dvec3 from = around(n & 32 ? 90 : 20 + 50 * random());
        const dvec3 to = around(n & 32 ? -41 : 20 + 50 * random());
        const bool found = terrain.getIntersection(0, from, to, &hit);
        // What a hair's breadth decides is either.
        const auto sure = meetFirst(triangles, from, to, -1e-3);
        const auto likely = meetFirst(triangles, from, to, 1e-3);
        if (n & 32) {
            ASSERT_TRUE(found) << n << ": from above everything to below";
        }
        if (sure) {
            ASSERT_TRUE(found) << n;
        }
        if (!likely) {
            ASSERT_FALSE(found) << n;
        }
        if (!found || !sure || !likely || std::abs(sure->first - likely->first) > 0.1) continue;
        hits++;
        EXPECT_NEAR(length(hit - from), sure->first, 2e-3 / sure->second) << n;
    }
    EXPECT_GT(hits, 1200);
}

} // namespace
