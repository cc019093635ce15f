// SPDX-License-Identifier: MIT

// Grounds far from the demo's: north of 60 degrees, across 180, in the south, in projections.

#include "RasterFiles.h"

#include "ig/math/EllipsoidModel.h"
#include "plugins/terrain/ObjectTerrain.h"
#include "testkit/LogCapture.h"

#include <cmath>
#include <gdal_alg.h>
#include <optional>

namespace {

using namespace ig;
const EllipsoidModel EARTH;

/// What GDAL reads of a raster at a place: bilinear between the middles of its pixels.
class Reading {
public:
    explicit Reading(const jString& path) : m_raster(GDALOpen(path.c_str(), GA_ReadOnly)) {
        const char* const options[] = {"DST_SRS=EPSG:4326", nullptr};
        m_to_pixels =
            GDALCreateGenImgProjTransformer2(m_raster, nullptr, const_cast<char**>(options));
    }
    ~Reading() {
        GDALDestroyGenImgProjTransformer(m_to_pixels);
        GDALClose(m_raster);
    }
    Reading(const Reading&) = delete;
    std::optional<double> at(double longitude, double latitude) const {
        double x = longitude, y = latitude, z = 0;
        int good = 0;
        GDALGenImgProjTransform(m_to_pixels, true, 1, &x, &y, &z, &good);
        const int i = int(std::floor(x - 0.5)), j = int(std::floor(y - 0.5));
        if (!good || i < 0 || j < 0 || i > GDALGetRasterXSize(m_raster) - 2 ||
            j > GDALGetRasterYSize(m_raster) - 2)
            return {};
        double h[4] = {};
        EXPECT_EQ(GDALRasterIO(GDALGetRasterBand(m_raster, 1), GF_Read, i, j, 2, 2, h, 2, 2,
                               GDT_Float64, 0, 0),
                  CE_None);
        const double u = x - 0.5 - i, v = y - 0.5 - j;
        return std::lerp(std::lerp(h[0], h[1], u), std::lerp(h[2], h[3], u), v);
    }

private:
    GDALDatasetH m_raster;
    void* m_to_pixels;
};

/// The feedback's query: 100 km down.
std::optional<double> getHeightBelow(const ObjectTerrain& terrain, double longitude,
                                     double latitude) {
    const dvec3 from = EARTH.toWorld({longitude, latitude, 2000});
    dvec3 hit;
    if (!terrain.getIntersection(0, terrain.toLocal(from),
                                 terrain.toLocal(from - EARTH.getUp(from) * 100000.0), &hit))
        return {};
    return EARTH.getAltitude(terrain.toWorld(hit));
}

/// A place in the axes of a raster's coordinate system, x to the right.
dvec2 project(const char* name, double longitude, double latitude) {
    OGRSpatialReferenceH from = OSRNewSpatialReference(nullptr), to = OSRClone(from);
    OSRImportFromEPSG(from, 4326);
    OSRSetFromUserInput(to, name);
    OSRSetAxisMappingStrategy(from, OAMS_TRADITIONAL_GIS_ORDER);
    OSRSetAxisMappingStrategy(to, OAMS_TRADITIONAL_GIS_ORDER);
    OGRCoordinateTransformationH transformation = OCTNewCoordinateTransformation(from, to);
    EXPECT_TRUE(OCTTransform(transformation, 1, &longitude, &latitude, nullptr));
    OCTDestroyCoordinateTransformation(transformation);
    OSRDestroySpatialReference(from);
    OSRDestroySpatialReference(to);
    return {longitude, latitude};
}

struct Far {
    const char* system;
    double step;                ///< in the system's units
    double longitude, latitude; ///< of the middle
};

TEST(FarGround, FeedbackHeightsAreGdalsOwnReadingInEveryProjection) {
    const RasterFolder folder;
    for (const Far& far : {Far{"EPSG:3413", 30, 26.8, 69.8}, Far{"EPSG:32601", 30, 180, 52},
                           Far{"EPSG:3395", 50, -68, -54}, Far{"EPSG:4326", 0.0003, 180, -17}}) {
        SCOPED_TRACE(far.system);
        constexpr int SIZE = 400;
        const dvec2 middle = project(far.system, far.longitude, far.latitude);
        const double half = SIZE / 2 * far.step;
        RasterFile file{
            SIZE,
            SIZE,
            {middle.x - half, far.step, 0, middle.y + half, 0, -far.step},
            [](int i, int j) { return 150 + 30 * std::sin(i / 32.0) * std::cos(j / 41.0); }};
        file.system = far.system;
        const jString path = folder.writeRaster(file);
        ObjectTerrain terrain;
        const LogCapture log;
        ASSERT_TRUE(terrain.load(path));
        const Reading reading(path);
        int met = 0;
        const double reach = 0.05;
        for (int n = 0; n < 2000; n++) {
            // A spiral about the middle; every tenth within millimetres of the meridian.
            const double turn = n * 2.4, out = reach * std::sqrt(n / 2000.0);
            const double latitude = far.latitude + out * std::sin(turn);
            const double longitude =
                far.longitude +
                (n % 10 ? out * std::cos(turn) / std::cos(latitude * DEG_TO_RAD<double>)
                        : (n % 3 - 1) * 1e-8);
            const auto expected = reading.at(std::remainder(longitude, 360), latitude);
            if (!expected) continue;
            met++;
            double altitude = 0;
            ASSERT_TRUE(terrain.getAltitudeByLonLat(std::remainder(longitude, 360), latitude,
                                                    &altitude, nullptr))
                << longitude << " " << latitude;
            ASSERT_NEAR(altitude, *expected, 0.01) << longitude << " " << latitude;
            ASSERT_NEAR(getHeightBelow(terrain, longitude, latitude).value_or(-1), *expected, 0.01);
        }
        EXPECT_GT(met, 1800);
    }
}

TEST(FarGround, HeightsAboveTheEllipsoidAreLoweredByTheGeoid) {
    const RasterFolder folder;
    // Round the earth from Greenwich, so that 180 degrees lie in its middle and 0 on its seam.
    const auto geoid = [](double longitude, double latitude) {
        return 30 + 20 * std::cos(longitude * DEG_TO_RAD<double>) - latitude / 3;
    };
    const jString grid = folder.writeRaster(
        RasterFile::degrees(720, 361, 0, 90, 0.5,
                            [&](int i, int j) { return geoid(i * 0.5, 90 - j * 0.5); }),
        "geoid.gtx", "GTX");
    for (const double middle : {0.0, 180.0}) {
        TerrainSources sources;
        sources.rasters = {folder.writeRaster(
            RasterFile::degrees(41, 41, middle - 1, 51, 0.05, [](int, int) { return 100; }))};
        sources.heights = TerrainSources::Heights::ellipsoid;
        sources.geoid = grid;
        ObjectTerrain terrain;
        ASSERT_TRUE(terrain.load(sources));
        for (int n = 0; n <= 40; n++) {
            const double longitude = middle - 1 + n * 0.05, latitude = 51 - n * 0.05;
            double altitude = 0;
            ASSERT_TRUE(terrain.getAltitudeByLonLat(std::remainder(longitude, 360), latitude,
                                                    &altitude, nullptr));
            EXPECT_NEAR(altitude, 100 - geoid(longitude, latitude), 1e-3) << longitude;
        }
    }
    // A part of the earth that isn't the ground's.
    TerrainSources sources;
    sources.rasters = {folder.file("heights.tif")};
    sources.heights = TerrainSources::Heights::ellipsoid;
    sources.geoid = folder.writeRaster(
        RasterFile::degrees(20, 20, 10, 50, 0.1, [](int, int) { return 40; }), "part.tif");
    ObjectTerrain terrain;
    const LogCapture log;
    EXPECT_FALSE(terrain.load(sources));
    ASSERT_EQ(log.lines.size(), 1u);
    EXPECT_NE(log.lines[0].find("part.tif\": doesn't reach all of the ground"), std::string::npos)
        << log.lines[0];
}

} // namespace
