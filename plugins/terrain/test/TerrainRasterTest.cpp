// SPDX-License-Identifier: MIT
#include "RasterFiles.h"

#include "ig/math/EllipsoidModel.h"
#include "ig/scene/World.h"
#include "plugins/terrain/ObjectTerrain.h"
#include "testkit/LogCapture.h"

#include <optional>

namespace {

using namespace ig;
const EllipsoidModel EARTH;

std::optional<double> getAltitude(const ObjectTerrain& terrain, double longitude, double latitude) {
    double altitude;
    if (!terrain.getAltitudeByLonLat(longitude, latitude, &altitude, nullptr)) return {};
    return altitude;
}

/// The heights that GDAL itself reads, at the middles of the pixels.
void expectAllSamples(const ObjectTerrain& terrain, const jString& path) {
    GDALDatasetH dataset = GDALOpen(path.c_str(), GA_ReadOnly);
    ASSERT_TRUE(dataset);
    double g[6];
    ASSERT_EQ(GDALGetGeoTransform(dataset, g), CE_None);
    const int columns = GDALGetRasterXSize(dataset), rows = GDALGetRasterYSize(dataset);
    ASSERT_EQ(terrain.getGrid().columns, columns);
    ASSERT_EQ(terrain.getGrid().rows, rows);
    for (int j = 0; j < rows; j += 1 + rows / 40) {
        for (int i = 0; i < columns; i += 1 + columns / 40) {
            double height;
            ASSERT_EQ(GDALRasterIO(GDALGetRasterBand(dataset, 1), GF_Read, i, j, 1, 1, &height, 1,
                                   1, GDT_Float64, 0, 0),
                      CE_None);
            const auto altitude =
                getAltitude(terrain, g[0] + (i + 0.5) * g[1], g[3] + (j + 0.5) * g[5]);
            ASSERT_TRUE(altitude) << i << " " << j;
            // A place errs by the last digit of a longitude, which is 3 nm.
            EXPECT_NEAR(*altitude, height, 1e-5) << i << " " << j;
        }
    }
    GDALClose(dataset);
}

TEST(TerrainRaster, HeightsStandAtPixelMiddlesInEveryFormat) {
    const RasterFolder folder;
    const auto hills = [](int i, int j) {
        return std::floor(500 + 300 * std::sin(i * 0.11) * std::cos(j * 0.07));
    };
    RasterFile file = RasterFile::degrees(1201, 1201, -156, 20, 1 / 1200.0, hills);
    file.type = GDT_Int16;
    const jString paths[] = {folder.writeRaster(file, "area.tif"),
                             folder.writeRaster(file, "point.tif", "GTiff", true),
                             folder.writeRaster(file, "level1.dt1", "DTED"),
                             folder.writeRaster(file, "N19W156.hgt", "SRTMHGT")};
    for (const jString& path : paths) {
        SCOPED_TRACE(path.c_str());
        const LogCapture log;
        ObjectTerrain terrain;
        ASSERT_TRUE(terrain.load(path));
        EXPECT_TRUE(log.lines.empty()) << log.lines[0];
        expectAllSamples(terrain, path);
        EXPECT_EQ(getAltitude(terrain, -156, 20), hills(0, 0));
        EXPECT_FLOAT_EQ(terrain.getGrid().highest, 799);
    }
}

TEST(TerrainRaster, APlaneIsReproducedWithItsNormal) {
    const RasterFolder folder;
    const auto plane = [](double u, double v) { return 100 + 0.5 * u - 0.25 * v; };
    ObjectTerrain terrain;
    ASSERT_TRUE(
        terrain.load(folder.writeRaster(RasterFile::degrees(41, 31, 10, 60, 0.001, plane))));
    for (int n = 0; n < 500; n++) {
        const double u = std::fmod(n * 7.77, 40), v = std::fmod(n * 3.33, 30);
        const double longitude = 10 + u * 0.001, latitude = 60 - v * 0.001;
        double altitude;
        dvec3 normal;
        ASSERT_TRUE(terrain.getAltitudeByLonLat(longitude, latitude, &altitude, &normal));
        EXPECT_NEAR(altitude, plane(u, v), 1e-8);
        // Across two small steps along the plane, in the world.
        const auto world = [&](double du, double dv) {
            return EARTH.toWorld(
                {longitude + du * 0.001, latitude - dv * 0.001, plane(u + du, v + dv)});
        };
        const dvec3 expected =
            normalize(cross(world(0, 0.01) - world(0, -0.01), world(0.01, 0) - world(-0.01, 0)));
        EXPECT_LT(length(normal - expected), 1e-7);
    }
    EXPECT_FALSE(getAltitude(terrain, 9.99999, 59.99));
    EXPECT_FALSE(getAltitude(terrain, 10.01, 60.00001));
    EXPECT_FALSE(getAltitude(terrain, NAN, 59.99));
    EXPECT_FALSE(getAltitude(terrain, -169.98, 59.99));
}

TEST(TerrainRaster, TheDateLineAndSouthernOrderAreNoObstacle) {
    const RasterFolder folder;
    ObjectTerrain terrain;
    ASSERT_TRUE(terrain.load(folder.writeRaster(
        RasterFile::degrees(21, 11, 179, -10, 0.1, [](int i, int j) { return 10 * i + j; }))));
    EXPECT_NEAR(getAltitude(terrain, 179.5, -10.2).value(), 52, 1e-6);
    EXPECT_NEAR(getAltitude(terrain, -179.5, -10.2).value(), 152, 1e-6);

    RasterFile file{21, 11, {179, 0.1, 0, -10, 0, 0.1}, [](int i, int j) { return 10 * i + j; }};
    const LogCapture log;
    ASSERT_TRUE(terrain.load(folder.writeRaster(file, "up.tif")));
    EXPECT_TRUE(log.lines.empty());
    EXPECT_NEAR(getAltitude(terrain, 179.55, -9.75).value(), 52, 1e-6);
}

TEST(TerrainRaster, ScaleAndHolesAreHeededAndVerticalDatumsAreNot) {
    const RasterFolder folder;
    RasterFile file = RasterFile::degrees(9, 9, 10, 50, 0.01,
                                          [](int i, int j) { return i + j < 15 ? i + j : -999; });
    file.type = GDT_Int16;
    file.no_data = -999;
    file.scale = 0.5;
    file.offset = 100;
    for (const char* system : {"EPSG:4326+5773", "EPSG:4979", ""}) {
        SCOPED_TRACE(system);
        file.system = system;
        const LogCapture log;
        ObjectTerrain terrain;
        ASSERT_TRUE(terrain.load(folder.writeRaster(file)));
        EXPECT_TRUE(log.lines.empty());
        EXPECT_NEAR(getAltitude(terrain, 10.03, 49.95).value(), 104, 1e-6);
        EXPECT_FALSE(getAltitude(terrain, 10.08, 49.92));
        EXPECT_EQ(terrain.getGrid().lowest, 100);
        EXPECT_EQ(terrain.getGrid().highest, 107);
    }
}

TEST(TerrainRaster, OtherGridsAreResampledWithOneMessage) {
    const RasterFolder folder;
    // A plane over a metric grid, one over a turned one, and one in an older datum (which lies
    // 300 m beside WGS84 here).
    const double c = std::cos(0.3), s = std::sin(0.3);
    const RasterFile files[] = {
        {300, 280, {280000, 30, 0, 2190000, 0, -30}, {}, "EPSG:32605"},
        {300, 280, {-156, 3e-4 * c, 3e-4 * s, 20, 3e-4 * s, -3e-4 * c}, {}, "EPSG:4326"},
        {300, 280, {-156, 3e-4, 0, 20, 0, -3e-4}, {}, "EPSG:4135"},
    };
    for (RasterFile file : files) {
        SCOPED_TRACE(file.system);
        file.height = [](int i, int j) { return 0.5 * i + 0.25 * j; };
        const jString path = folder.writeRaster(file);
        ObjectTerrain terrain;
        const LogCapture log;
        ASSERT_TRUE(terrain.load(path));
        ASSERT_EQ(log.lines.size(), 1u);
        EXPECT_EQ(log.levels[0], LogLevel::message);
        EXPECT_NE(log.lines[0].find(path.c_str()), std::string::npos);

        OGRSpatialReferenceH from = OSRNewSpatialReference(nullptr), to = OSRClone(from);
        OSRSetFromUserInput(from, file.system.c_str());
        OSRImportFromEPSG(to, 4326);
        OSRSetAxisMappingStrategy(from, OAMS_TRADITIONAL_GIS_ORDER);
        OSRSetAxisMappingStrategy(to, OAMS_TRADITIONAL_GIS_ORDER);
        OGRCoordinateTransformationH convert = OCTNewCoordinateTransformation(from, to);
        const double* g = file.transform;
        for (int n = 0; n < 200; n++) {
            const double u = 5 + std::fmod(n * 12.34, 290), v = 5 + std::fmod(n * 5.67, 270);
            double x = g[0] + (u + 0.5) * g[1] + (v + 0.5) * g[2];
            double y = g[3] + (u + 0.5) * g[4] + (v + 0.5) * g[5];
            ASSERT_TRUE(OCTTransform(convert, 1, &x, &y, nullptr));
            const auto altitude = getAltitude(terrain, x, y);
            ASSERT_TRUE(altitude);
            EXPECT_NEAR(*altitude, file.height(0, 0) + 0.5 * u + 0.25 * v, 0.02);
        }
        EXPECT_FALSE(getAltitude(terrain, -150, 19.9));
        OCTDestroyCoordinateTransformation(convert);
        OSRDestroySpatialReference(from);
        OSRDestroySpatialReference(to);
    }
}

TEST(TerrainRaster, WhatCannotBeReadGivesOneMessageAndNoGround) {
    const RasterFolder folder;
    const RasterFile good = RasterFile::degrees(64, 64, 10, 50, 0.01, [](int, int) { return 5; });
    folder.writeRaster(good, "cut.tif");
    std::filesystem::resize_file(folder.file("cut.tif").c_str(), 9000);
    folder.write("text.tif", "heights: none\n");
    RasterFile metric = good;
    metric.system = "";
    metric.transform[0] = 500000;
    folder.writeRaster(metric, "nowhere.tif");
    RasterFile line = good;
    line.rows = 1;
    folder.writeRaster(line, "line.tif");
    for (const char* name : {"missing.tif", "cut.tif", "text.tif", "nowhere.tif", "line.tif"}) {
        SCOPED_TRACE(name);
        ObjectTerrain terrain;
        ASSERT_TRUE(terrain.load(folder.writeRaster(good)));
        const LogCapture log;
        EXPECT_FALSE(terrain.load(folder.file(name)));
        ASSERT_EQ(log.lines.size(), 1u);
        EXPECT_EQ(log.levels[0], LogLevel::error);
        EXPECT_NE(log.lines[0].find(folder.file(name).c_str()), std::string::npos);
        EXPECT_TRUE(terrain.getGrid().empty());
        EXPECT_TRUE(terrain.getBounds().isEmpty());
        EXPECT_FALSE(getAltitude(terrain, 10.1, 49.9));
        EXPECT_FALSE(terrain.getIntersection(0, EARTH.toWorld({10.1, 49.9, 100}),
                                             EARTH.toWorld({10.1, 49.9, -100}), nullptr));
    }
}

TEST(TerrainRaster, ANodeOfAWorldIsFoundByItsBounds) {
    const RasterFolder folder;
    const double step = 0.25;
    const RasterFile file =
        RasterFile::degrees(33, 25, 170, 60, step, [](int i, int j) { return 90.0 * i + j; });
    folder.writeRaster(file);
    folder.write("a.world", std::string("nodes:\n  - {name: terrain, type: terrain, raster: ") +
                                folder.file("heights.tif").c_str() +
                                "}\n  - {name: bare, type: terrain}\n");
    World world;
    const LogCapture log;
    ASSERT_TRUE(world.load(folder.file("a.world")));
    ASSERT_EQ(log.lines.size(), 1u); // "bare" has no raster
    EXPECT_NE(log.lines[0].find("a.world:3"), std::string::npos);
    const Node* terrain = world.getNodeByName("terrain");
    ASSERT_TRUE(terrain);
    EXPECT_EQ(terrain->getType(), OBJECT_TERRAIN);
    EXPECT_TRUE(world.getNodeByName("bare"));

    const BoundSphere& bounds = terrain->getBounds();
    for (int j = 0; j < file.rows; j++)
        for (int i = 0; i < file.columns; i++)
            EXPECT_LE(length(EARTH.toWorld({170 + i * step, 60 - j * step, 90.0 * i + j}) -
                             bounds.center),
                      bounds.radius);
    EXPECT_LT(bounds.radius, 500e3); // the raster's diagonal is 860 km
    jVector<Node*> nodes;
    EXPECT_TRUE(world.getIntersection(EARTH.toWorld({171, 58, 9000}),
                                      EARTH.toWorld({171, 58, -90000}), nodes));
    EXPECT_FALSE(world.getIntersection(EARTH.toWorld({160, 58, 9000}),
                                       EARTH.toWorld({160, 58, -90000}), nodes));
}

} // namespace
