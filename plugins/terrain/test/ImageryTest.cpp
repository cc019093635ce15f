// SPDX-License-Identifier: MIT
#include "plugins/terrain/Imagery.h"

#include "RasterFiles.h"
#include "plugins/terrain/ObjectTerrain.h"
#include "testkit/LogCapture.h"

#include <algorithm>
#include <cmath>

namespace {

using namespace ig;

/// A picture whose red tells the column and whose green tells the row.
struct Ramps {
    int columns, rows;
    double transform[6]; ///< of pixel corners
    const char* system;
    int step;      ///< of a colour from pixel to pixel
    int blue;      ///< everywhere
    int alpha = 0; ///< 1: a fourth band, which covers all but the northern half

    jString write(const RasterFolder& folder, const std::string& name) const {
        GDALDatasetH memory =
            GDALCreate(GDALGetDriverByName("MEM"), "", columns, rows, 3 + alpha, GDT_Byte, nullptr);
        GDALSetGeoTransform(memory, const_cast<double*>(transform));
        OGRSpatialReferenceH reference = OSRNewSpatialReference(nullptr);
        OSRSetFromUserInput(reference, system);
        GDALSetSpatialRef(memory, reference);
        OSRDestroySpatialReference(reference);
        std::vector<std::uint8_t> pixels;
        for (int j = 0; j < rows; j++)
            for (int i = 0; i < columns; i++)
                for (const int value : {i * step, j * step, blue, j * 2 < rows ? 0 : 255})
                    pixels.push_back(static_cast<std::uint8_t>(value));
        if (alpha) GDALSetRasterColorInterpretation(GDALGetRasterBand(memory, 4), GCI_AlphaBand);
        EXPECT_EQ(GDALDatasetRasterIO(memory, GF_Write, 0, 0, columns, rows, pixels.data(), columns,
                                      rows, GDT_Byte, 3 + alpha, nullptr, 4, 4 * columns, 1),
                  CE_None);
        GDALClose(GDALCreateCopy(GDALGetDriverByName("GTiff"), folder.file(name).c_str(), memory,
                                 false, nullptr, nullptr, nullptr));
        GDALClose(memory);
        return folder.file(name);
    }
};

struct Sample {
    int level = -1; ///< of the finest tile there; −1: none
    int red = 0, green = 0, blue = 0, alpha = 0;
};

/// The nearest sample of the finest tile at a place; the place is moved to where it stands.
Sample look(const Imagery& imagery, double& longitude, double& latitude) {
    for (int level = 12; level >= 0; level--) {
        const Imagery::Layout& layout = imagery.getLayout();
        const dvec2 at = layout.toTiles(level, longitude, latitude);
        const ImageTile tile{level, static_cast<int>(std::floor(at.x)),
                             static_cast<int>(std::floor(at.y))};
        if (!imagery.has(tile)) continue;
        std::vector<std::uint8_t> samples;
        EXPECT_TRUE(imagery.read(tile, samples));
        const long column = std::lround((at.x - tile.column) * 511);
        const long row = std::lround((at.y - tile.row) * 511);
        const std::uint8_t* s = &samples[static_cast<std::size_t>(4 * (row * 512 + column))];
        longitude += ((tile.column + column / 511.0) - at.x) * layout.tile_width / (1 << level);
        latitude -= ((tile.row + row / 511.0) - at.y) * layout.tile_height / (1 << level);
        return {level, s[0], s[1], s[2], s[3]};
    }
    return {};
}

/// Level ground of 0.1 degrees around a place, with imagery.
TerrainSources groundAround(const RasterFolder& folder, double longitude, double latitude,
                            std::vector<jString> imagery) {
    TerrainSources sources;
    sources.rasters = {folder.writeRaster(RasterFile::degrees(
        21, 21, longitude - 0.05, latitude + 0.05, 0.005, [](int, int) { return 10; }))};
    sources.imagery = std::move(imagery);
    return sources;
}

/// Looks at places of a picture's pixels and compares with what its ramps say there.
void expectRampsInPlace(const Imagery& imagery, const Ramps& ramps) {
    OGRSpatialReferenceH own = OSRNewSpatialReference(nullptr);
    OGRSpatialReferenceH wgs84 = OSRNewSpatialReference(nullptr);
    OSRSetFromUserInput(own, ramps.system);
    OSRImportFromEPSG(wgs84, 4326);
    for (OGRSpatialReferenceH system : {own, wgs84})
        OSRSetAxisMappingStrategy(system, OAMS_TRADITIONAL_GIS_ORDER);
    OGRCoordinateTransformationH way = OCTNewCoordinateTransformation(own, wgs84);
    OGRCoordinateTransformationH back = OCTNewCoordinateTransformation(wgs84, own);
    double columns_off = 0, rows_off = 0, worst = 0;
    int count = 0;
    for (int n = 0; n < 60; n++, count++) {
        double x =
            ramps.transform[0] + ramps.transform[1] * std::fmod(5 + n * 7.77, ramps.columns - 10);
        double y =
            ramps.transform[3] + ramps.transform[5] * std::fmod(5 + n * 3.33, ramps.rows - 10);
        OCTTransform(way, 1, &x, &y, nullptr);
        const double west = imagery.getLayout().west;
        const double turn = std::round((west - x) / 360) * 360; // to the ground's side of the globe
        x += turn;
        const Sample sample = look(imagery, x, y);
        x -= turn;
        ASSERT_EQ(sample.alpha, 255) << x << ' ' << y;
        EXPECT_NEAR(sample.blue, ramps.blue, 4);
        OCTTransform(back, 1, &x, &y, nullptr);
        const double column = (x - ramps.transform[0]) / ramps.transform[1] - 0.5;
        const double row = (y - ramps.transform[3]) / ramps.transform[5] - 0.5;
        const double off_x = double(sample.red) / ramps.step - column;
        const double off_y = double(sample.green) / ramps.step - row;
        columns_off += off_x;
        rows_off += off_y;
        worst = std::max({worst, std::abs(off_x), std::abs(off_y)});
    }
    EXPECT_LT(std::abs(columns_off / count), 0.4) << "pixels, of which compression takes the most";
    EXPECT_LT(std::abs(rows_off / count), 0.4) << "pixels";
    EXPECT_LT(worst * ramps.step, 6) << "tones";
    for (OGRCoordinateTransformationH each : {way, back})
        OCTDestroyCoordinateTransformation(each);
    for (OGRSpatialReferenceH each : {own, wgs84})
        OSRDestroySpatialReference(each);
}

TEST(Imagery, ProjectedPicturesLieWhereTheyShould) {
    const RasterFolder folder;
    // Around 65° N on zone 35, 60° S in Mercator's projection, and in degrees.
    const Ramps utm{100, 90, {499000, 20, 0, 7210000, 0, -20}, "EPSG:32635", 2, 90};
    const Ramps mercator{120, 120, {3005300, 30, 0, -8397000, 0, -30}, "EPSG:3857", 2, 60};
    const Ramps degrees{80, 80, {27, 0.0002, 0, 65, 0, -0.0002}, "EPSG:4326", 3, 120};
    for (const auto& [ramps, latitude] :
         {std::pair(utm, 65.0), {mercator, -60.0}, {degrees, 65.0}}) {
        SCOPED_TRACE(ramps.system);
        const LogCapture log;
        ObjectTerrain terrain;
        ASSERT_TRUE(
            terrain.load(groundAround(folder, 27, latitude, {ramps.write(folder, "picture.tif")})));
        ASSERT_TRUE(terrain.getImagery()) << log.lines[0];
        expectRampsInPlace(*terrain.getImagery(), ramps);
    }
}

TEST(Imagery, PicturesInDegreesCrossTheDateLine) {
    const RasterFolder folder;
    const Ramps east{100, 100, {-180, 0.0002, 0, -17, 0, -0.0002}, "EPSG:4326", 2, 90};
    ObjectTerrain terrain;
    ASSERT_TRUE(terrain.load(groundAround(folder, 180, -17, {east.write(folder, "picture.tif")})));
    ASSERT_TRUE(terrain.getImagery());
    expectRampsInPlace(*terrain.getImagery(), east);
    double longitude = 179.99, latitude = -17.01;
    EXPECT_EQ(look(*terrain.getImagery(), longitude, latitude).alpha, 0);
}

TEST(Imagery, FinePicturesLieOnCoarseOnesAndLetThemThroughWhereTheyHaveNone) {
    const RasterFolder folder;
    const Ramps coarse{50, 50, {26.95, 0.002, 0, 65.05, 0, -0.002}, "EPSG:4326", 5, 30};
    const Ramps fine{400, 400, {26.98, 0.0001, 0, 65.02, 0, -0.0001}, "EPSG:4326", 0, 200, 1};
    ObjectTerrain terrain;
    ASSERT_TRUE(terrain.load(groundAround(
        folder, 27, 65, {coarse.write(folder, "coarse.tif"), fine.write(folder, "fine.tif")})));
    const Imagery& imagery = *terrain.getImagery();
    const auto blue = [&](double longitude, double latitude) {
        return look(imagery, longitude, latitude).blue;
    };
    EXPECT_NEAR(blue(27, 64.99), 200, 3);
    EXPECT_NEAR(blue(27, 65.01), 30, 3) << "where its alpha is 0";
    EXPECT_NEAR(blue(26.96, 65), 30, 3);
    // What the coarsest tiles show has been made of both.
    std::vector<std::uint8_t> samples;
    const auto at = [&](int row, double u, double v) {
        EXPECT_TRUE(imagery.read({0, 0, row}, samples));
        return samples[4 * (static_cast<std::size_t>(v * 511) * 512 +
                            static_cast<std::size_t>(u * 511)) +
                       2];
    };
    ASSERT_EQ(imagery.getLayout().rows, 2);
    EXPECT_NEAR(at(1, 0.5, 0.2), 200, 4);
    EXPECT_NEAR(at(0, 0.5, 0.8), 30, 4);
}

TEST(Imagery, WhatCannotBeReadIsNamedWithTheRemedy) {
    const RasterFolder folder;
    const auto fails = [&](const jString& path, const char* why) {
        const LogCapture log;
        ObjectTerrain terrain;
        EXPECT_TRUE(terrain.load(groundAround(folder, 27, 65, {path})));
        EXPECT_FALSE(terrain.getImagery());
        ASSERT_EQ(log.lines.size(), 1u);
        EXPECT_NE(log.lines[0].find(path.c_str()), std::string::npos) << log.lines[0];
        EXPECT_NE(log.lines[0].find(why), std::string::npos) << log.lines[0];
    };
    fails("missing.tif", "o such file");
    fails(folder.writeRaster(RasterFile::degrees(9, 9, 27, 65, 0.01, [](int, int) { return 1; }),
                             "float.tif"),
          "-ot Byte");
}

} // namespace
