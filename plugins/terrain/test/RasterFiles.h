// SPDX-License-Identifier: MIT
#pragma once

#include "testkit/TempFolder.h"

#include <functional>
#include <gdal.h>
#include <gtest/gtest.h>
#include <ogr_srs_api.h>
#include <string>
#include <vector>

/// What a test writes to a file: heights by column and row, row 0 first in the file.
struct RasterFile {
    int columns = 2, rows = 2;
    double transform[6] = {0, 1, 0, 0, 0, -1}; ///< of pixel corners, as GDAL counts them
    std::function<double(int, int)> height;
    std::string system = "EPSG:4326"; ///< of coordinates; empty: none
    GDALDataType type = GDT_Float32;
    double no_data = -32767;
    double scale = 1, offset = 0; ///< of the band

    /// Heights at `west + column · step` and `north − row · step`.
    static RasterFile degrees(int columns, int rows, double west, double north, double step,
                              std::function<double(int, int)> height) {
        RasterFile file{columns, rows, {}, std::move(height)};
        const double corner[6] = {west - step / 2, step, 0, north + step / 2, 0, -step};
        std::copy(corner, corner + 6, file.transform);
        return file;
    }
};

/// A folder of a test's own, and the rasters in it.
class RasterFolder : public TempFolder {
public:
    RasterFolder() { GDALAllRegister(); }

    ig::jString writeRaster(const RasterFile& raster, const std::string& name = "heights.tif",
                            const char* format = "GTiff") const {
        const int width = raster.columns;
        GDALDatasetH memory =
            GDALCreate(GDALGetDriverByName("MEM"), "", width, raster.rows, 1, raster.type, nullptr);
        GDALSetGeoTransform(memory, const_cast<double*>(raster.transform));
        OGRSpatialReferenceH system = OSRNewSpatialReference(nullptr);
        if (OSRSetFromUserInput(system, raster.system.c_str()) == OGRERR_NONE)
            GDALSetSpatialRef(memory, system);
        OSRDestroySpatialReference(system);
        GDALRasterBandH band = GDALGetRasterBand(memory, 1);
        GDALSetRasterNoDataValue(band, raster.no_data);
        if (raster.scale != 1) GDALSetRasterScale(band, raster.scale);
        if (raster.offset != 0) GDALSetRasterOffset(band, raster.offset);
        for (int row = 0; row < raster.rows; row++) {
            std::vector<double> line;
            for (int column = 0; column < width; column++)
                line.push_back(raster.height(column, row));
            EXPECT_EQ(GDALRasterIO(band, GF_Write, 0, row, width, 1, line.data(), width, 1,
                                   GDT_Float64, 0, 0),
                      CE_None);
        }
        GDALDatasetH copy = GDALCreateCopy(GDALGetDriverByName(format), file(name).c_str(), memory,
                                           false, nullptr, nullptr, nullptr);
        EXPECT_TRUE(copy) << name;
        GDALClose(copy);
        GDALClose(memory);
        return file(name);
    }
};
