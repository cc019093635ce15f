// SPDX-License-Identifier: MIT
#pragma once

#include "ig/base/jLog.h"
#include "ig/base/jString.h"

#include <cstdlib>
#include <filesystem>
#include <functional>
#include <gdal.h>
#include <gtest/gtest.h>
#include <ogr_srs_api.h>
#include <string>
#include <vector>

/// Gathers the log's lines while it lives.
struct LogCapture {
    LogCapture() {
        ig::jLog::setSink([this](ig::LogLevel level, std::string_view line) {
            levels.push_back(level);
            lines.emplace_back(line);
        });
    }
    ~LogCapture() { ig::jLog::setSink({}); }
    LogCapture(const LogCapture&) = delete;

    std::vector<ig::LogLevel> levels;
    std::vector<std::string> lines;
};

/// What a test writes to a file: heights by column and row, row 0 first in the file.
struct RasterFile {
    int columns = 2, rows = 2;
    double transform[6] = {0, 1, 0, 0, 0, -1}; ///< of pixel corners, as GDAL counts them
    std::function<double(int, int)> height;
    int epsg = 4326; ///< 0: none
    GDALDataType type = GDT_Float32;
    double no_data = -32767;

    /// Heights at `west + column · step` and `north − row · step`.
    static RasterFile degrees(int columns, int rows, double west, double north, double step,
                              std::function<double(int, int)> height) {
        RasterFile file{columns, rows, {}, std::move(height)};
        const double corner[6] = {west - step / 2, step, 0, north + step / 2, 0, -step};
        std::copy(corner, corner + 6, file.transform);
        return file;
    }
};

/// A folder of its own for a test, removed at the end, and the rasters in it.
class RasterFolder {
public:
    RasterFolder() {
        std::string name = (std::filesystem::temp_directory_path() / "terrain_XXXXXX").string();
        m_path = mkdtemp(name.data());
        GDALAllRegister();
    }
    ~RasterFolder() { std::filesystem::remove_all(m_path); }
    RasterFolder(const RasterFolder&) = delete;

    ig::jString path(const std::string& name) const { return (m_path / name).string(); }

    ig::jString write(const RasterFile& file, const std::string& name = "heights.tif",
                      const char* format = "GTiff", bool point = false) const {
        GDALDatasetH memory = GDALCreate(GDALGetDriverByName("MEM"), "", file.columns, file.rows, 1,
                                         file.type, nullptr);
        double transform[6];
        std::copy(file.transform, file.transform + 6, transform);
        GDALSetGeoTransform(memory, transform);
        if (file.epsg) {
            OGRSpatialReferenceH system = OSRNewSpatialReference(nullptr);
            OSRImportFromEPSG(system, file.epsg);
            GDALSetSpatialRef(memory, system);
            OSRDestroySpatialReference(system);
        }
        if (point) GDALSetMetadataItem(memory, "AREA_OR_POINT", "Point", nullptr);
        GDALRasterBandH band = GDALGetRasterBand(memory, 1);
        GDALSetRasterNoDataValue(band, file.no_data);
        std::vector<double> line(static_cast<std::size_t>(file.columns));
        for (int row = 0; row < file.rows; row++) {
            for (int column = 0; column < file.columns; column++)
                line[static_cast<std::size_t>(column)] = file.height(column, row);
            EXPECT_EQ(GDALRasterIO(band, GF_Write, 0, row, file.columns, 1, line.data(),
                                   file.columns, 1, GDT_Float64, 0, 0),
                      CE_None);
        }
        GDALDatasetH copy = GDALCreateCopy(GDALGetDriverByName(format), path(name).c_str(), memory,
                                           false, nullptr, nullptr, nullptr);
        EXPECT_TRUE(copy) << name;
        GDALClose(copy);
        GDALClose(memory);
        return path(name);
    }

private:
    std::filesystem::path m_path;
};
