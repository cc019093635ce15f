// SPDX-License-Identifier: MIT
#include "plugins/terrain/LandCover.h"

#include "RasterFiles.h"
#include "ig/math/EllipsoidModel.h"
#include "plugins/terrain/ObjectTerrain.h"
#include "testkit/LogCapture.h"

#include <cmath>

namespace {

using namespace ig;

/// Level ground of 10 m, 0.4 degrees wide around a place.
TerrainSources groundAround(const RasterFolder& folder, double longitude, double latitude) {
    TerrainSources sources;
    sources.rasters = {folder.writeRaster(RasterFile::degrees(
        41, 41, longitude - 0.2, latitude + 0.2, 0.01, [](int, int) { return 10; }))};
    return sources;
}

jString writeClasses(const RasterFolder& folder, RasterFile file) {
    file.type = GDT_Byte;
    file.no_data = 0;
    return folder.writeRaster(file, "cover.tif");
}

TEST(LandCover, PiecesReachFromEdgeToEdgeAlsoAcrossTheDateLine) {
    using enum LandClass;
    const LandCover cover(
        {3, 2, 179.99, -10, 0.01, 0.02},
        std::shared_ptr<const LandClass[]>(new LandClass[]{grass, sand, rock, snow, water, crop}));
    constexpr double HAIR = 1e-9;
    EXPECT_EQ(cover.getClass(179.99 + HAIR, -10 - HAIR), grass);
    EXPECT_EQ(cover.getClass(180 - HAIR, -10.02 + HAIR), grass);
    EXPECT_EQ(cover.getClass(-180 + HAIR, -10.02 + HAIR), sand);
    EXPECT_EQ(cover.getClass(180 + HAIR, -10.02 - HAIR), water);
    EXPECT_EQ(cover.getClass(-179.98 - HAIR, -10.04 + HAIR), crop);
    EXPECT_EQ(cover.getClass(-179.98 + HAIR, -10.03), none);
    EXPECT_EQ(cover.getClass(179.99 - HAIR, -10.01), none);
    EXPECT_EQ(cover.getClass(180, -10 + HAIR), none);
    EXPECT_EQ(cover.getClass(180, -10.04 - HAIR), none);
    EXPECT_EQ(cover.getClass(NAN, -10.01), none);
}

/// Squares of ten pixels, in a projection: each place that is not within a pixel of a border is of
/// its square's class.
TEST(LandCover, AProjectedRasterLiesWhereItShould) {
    const RasterFolder folder;
    constexpr int SQUARE = 10;
    constexpr double EDGE = 60, WEST = 491500, NORTH = 7218000; // m
    const auto value = [](int i, int j) { return (i / SQUARE + j / SQUARE) % 3 + 1; };
    TerrainSources sources = groundAround(folder, 27, 65);
    sources.land_cover.raster =
        writeClasses(folder, {300, 300, {WEST, EDGE, 0, NORTH, 0, -EDGE}, value, "EPSG:32635"});
    sources.land_cover.classes = {{1, "forest"}, {2, "built_up"}, {3, "water"}};
    const LogCapture log;
    ObjectTerrain terrain;
    ASSERT_TRUE(terrain.load(sources));
    ASSERT_TRUE(terrain.getLandCover()) << log.lines[0];
    constexpr LandClass CLASSES[] = {LandClass::forest, LandClass::built_up, LandClass::water};
    OGRSpatialReferenceH utm = OSRNewSpatialReference(nullptr);
    OGRSpatialReferenceH wgs84 = OSRNewSpatialReference(nullptr);
    OSRImportFromEPSG(utm, 32635);
    OSRImportFromEPSG(wgs84, 4326);
    OSRSetAxisMappingStrategy(wgs84, OAMS_TRADITIONAL_GIS_ORDER);
    OGRCoordinateTransformationH way = OCTNewCoordinateTransformation(utm, wgs84);
    for (int n = 0; n < 2000; n++) {
        const double i = 20 + std::fmod(n * 7.77, 260), j = 20 + std::fmod(n * 3.33, 260);
        const auto is_near_border = [](double at) {
            return std::abs(std::remainder(at, SQUARE)) < 1;
        };
        if (is_near_border(i) || is_near_border(j)) continue;
        double x = WEST + i * EDGE, y = NORTH - j * EDGE;
        ASSERT_TRUE(OCTTransform(way, 1, &x, &y, nullptr));
        ASSERT_EQ(terrain.getLandCover()->getClass(x, y),
                  CLASSES[value(static_cast<int>(i), static_cast<int>(j)) - 1])
            << i << ' ' << j;
    }
    OCTDestroyCoordinateTransformation(way);
    OSRDestroySpatialReference(utm);
    OSRDestroySpatialReference(wgs84);
}

TEST(LandCover, EmittersFindItAndBeyondTheDateLineToo) {
    const RasterFolder folder;
    TerrainSources sources = groundAround(folder, 180, -17);
    // East of the date line, in WorldCover's values: a column of trees, of houses, of nothing
    // known, and of no data.
    constexpr int VALUES[] = {10, 50, 77, 0};
    sources.land_cover.raster =
        writeClasses(folder, RasterFile::degrees(4, 1, -179.975, -17, 0.05,
                                                 [&](int i, int) { return VALUES[i]; }));
    const LogCapture log;
    ObjectTerrain terrain;
    ASSERT_TRUE(terrain.load(sources));
    const auto ground = [&](double longitude) {
        return terrain.getGroundAt(0, EllipsoidModel().toWorld({longitude, -17.01, 10})).kind;
    };
    using enum Ground::Kind;
    EXPECT_EQ(ground(-179.9999), grass);
    EXPECT_EQ(ground(-179.9501), grass);
    EXPECT_EQ(ground(-179.9499), hard);
    EXPECT_EQ(ground(180.0999), hard);
    EXPECT_EQ(ground(180.1001), grass) << "as without a land cover";
    EXPECT_EQ(ground(179.9999), grass);
    EXPECT_EQ(terrain.getLandCover()->getClass(179.9999, -17.01), LandClass::none);
    EXPECT_EQ(terrain.getLandCover()->getClass(-179.9999, -17.01), LandClass::forest);
    ASSERT_EQ(log.lines.size(), 1u);
    EXPECT_NE(log.lines[0].find("77"), std::string::npos) << log.lines[0];
}

TEST(LandCover, WhatCannotBeReadIsNamedAndTheGroundStays) {
    const RasterFolder folder;
    const auto fails = [&](const TerrainSources& sources, const char* why) {
        const LogCapture log;
        ObjectTerrain terrain;
        EXPECT_TRUE(terrain.load(sources));
        EXPECT_FALSE(terrain.getLandCover()) << why;
        ASSERT_EQ(log.lines.size(), 1u) << why;
        EXPECT_NE(log.lines[0].find(why), std::string::npos) << log.lines[0];
    };
    TerrainSources sources = groundAround(folder, 20, 40);
    sources.land_cover.raster = "missing.tif";
    fails(sources, "missing.tif");
    sources.land_cover.raster =
        writeClasses(folder, RasterFile::degrees(4, 4, 20, 40, 0.01, [](int, int) { return 10; }));
    sources.land_cover.classes = {{10, "wood"}};
    fails(sources, "\"wood\"");
    sources.land_cover = {sources.rasters[0], {}};
    fails(sources, "whole numbers");
    sources.land_cover.raster =
        writeClasses(folder, RasterFile::degrees(4, 4, 60, 40, 0.01, [](int, int) { return 10; }));
    fails(sources, "nowhere");
}

} // namespace
