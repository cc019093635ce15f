// SPDX-License-Identifier: MIT
#include "HeightRaster.h"

#include "RasterFile.h"

#include <gdal_utils.h>
#include <ogr_srs_api.h>

#include <array>
#include <limits>
#include <memory>
#include <vector>

namespace ig {

namespace {

constexpr std::int64_t LARGEST = std::int64_t{1} << 28; ///< samples: 1 GiB

struct DestroySystem {
    void operator()(OGRSpatialReferenceH system) const { OSRDestroySpatialReference(system); }
};
using System = std::unique_ptr<std::remove_pointer_t<OGRSpatialReferenceH>, DestroySystem>;

/// The horizontal part of a raster's coordinate system; null when it names none.
System getSystem(GDALDatasetH dataset) {
    OGRSpatialReferenceH own = GDALGetSpatialRef(dataset);
    if (!own) return nullptr;
    System system(OSRClone(own));
    OSRStripVertical(system.get());
    OSRDemoteTo2D(system.get(), nullptr);
    return system;
}

bool isWgs84(const System& system) {
    const System wgs84(OSRNewSpatialReference(nullptr));
    OSRImportFromEPSG(wgs84.get(), 4326);
    const char* const options[] = {"CRITERION=EQUIVALENT_EXCEPT_AXIS_ORDER_GEOGCRS",
                                   "IGNORE_DATA_AXIS_TO_SRS_AXIS_MAPPING=YES",
                                   "IGNORE_COORDINATE_EPOCH=YES", nullptr};
    return OSRIsSameEx(system.get(), wgs84.get(), options);
}

bool isLonLat(const std::array<double, 6>& transform, GDALDatasetH dataset) {
    const double east = transform[0] + transform[1] * GDALGetRasterXSize(dataset);
    const double south = transform[3] + transform[5] * GDALGetRasterYSize(dataset);
    const double slack = 1;
    return std::abs(transform[0]) <= 360 + slack && std::abs(east) <= 360 + slack &&
           std::abs(transform[3]) <= 90 + slack && std::abs(south) <= 90 + slack;
}

/// A view of the raster in longitude and latitude, computed as it is read. Heights are not shifted
/// to another vertical datum.
Dataset resample(GDALDatasetH source) {
    // The approximation of the transformation errs by a hundredth of a pixel.
    const std::vector<const char*> arguments = {
        "-of",     "VRT",        "-t_srs", "EPSG:4326", "-r",   "bilinear",  "-ot",
        "Float32", "-dstnodata", "nan",    "-et",       "0.01", "-novshift", nullptr};
    std::vector<char*> words;
    for (const char* argument : arguments)
        words.push_back(const_cast<char*>(argument));
    GDALWarpAppOptions* options = GDALWarpAppOptionsNew(words.data(), nullptr);
    if (!options) return nullptr;
    Dataset view(GDALWarp("", nullptr, 1, &source, options, nullptr));
    GDALWarpAppOptionsFree(options);
    return view;
}

/// Replaces what the raster marks as missing by not-a-number and applies its scale.
bool readHeights(GDALDatasetH dataset, std::vector<float>& heights) {
    const int columns = GDALGetRasterXSize(dataset), rows = GDALGetRasterYSize(dataset);
    GDALRasterBandH band = GDALGetRasterBand(dataset, 1);
    GDALRasterBandH mask =
        GDALGetMaskFlags(band) == GMF_ALL_VALID ? nullptr : GDALGetMaskBand(band);
    int has_scale = 0, has_offset = 0;
    const double scale = GDALGetRasterScale(band, &has_scale);
    const double offset = GDALGetRasterOffset(band, &has_offset);
    heights.resize(static_cast<std::size_t>(columns) * static_cast<std::size_t>(rows));
    std::vector<unsigned char> valid(static_cast<std::size_t>(columns), 255);
    for (int row = 0; row < rows; row++) {
        float* line = heights.data() + static_cast<std::size_t>(row) * valid.size();
        if (GDALRasterIO(band, GF_Read, 0, row, columns, 1, line, columns, 1, GDT_Float32, 0, 0) !=
                CE_None ||
            (mask && GDALRasterIO(mask, GF_Read, 0, row, columns, 1, valid.data(), columns, 1,
                                  GDT_Byte, 0, 0) != CE_None))
            return false;
        for (std::size_t i = 0; i < valid.size(); i++) {
            if (!valid[i] || !std::isfinite(line[i]))
                line[i] = std::numeric_limits<float>::quiet_NaN();
            else if ((has_scale && scale != 1) || (has_offset && offset != 0))
                line[i] = static_cast<float>(line[i] * scale + offset);
        }
    }
    return true;
}

/// Turns rows that run from the south to the north.
void flipRows(std::vector<float>& heights, int columns) {
    const auto width = static_cast<std::ptrdiff_t>(columns);
    auto upper = heights.begin(), lower = heights.end() - width;
    for (; upper < lower; upper += width, lower -= width)
        std::swap_ranges(upper, upper + width, lower);
}

} // namespace

bool HeightRaster::read(const jString& path, std::string& failure) {
    const QuietErrors quiet;
    const auto fail = [&](std::string reason) {
        failure = std::move(reason);
        return false;
    };
    const Dataset file = openRaster(path, failure);
    if (!file) return false;
    if (GDALGetRasterCount(file.get()) < 1) return fail("holds no band");

    std::array<double, 6> transform;
    bool placed = GDALGetGeoTransform(file.get(), transform.data()) == CE_None;
    if (!placed && GDALGetGCPCount(file.get()) == 0) return fail("is not georeferenced");
    const System system = getSystem(file.get());
    if (!system && placed && !isLonLat(transform, file.get()))
        return fail("names no coordinate system and is not in degrees");

    GDALDatasetH dataset = file.get();
    Dataset view;
    const bool upright = placed && transform[2] == 0 && transform[4] == 0 && transform[1] > 0;
    if (!upright || (system && !isWgs84(system))) {
        const char* name = system ? OSRGetName(system.get()) : nullptr;
        resampled_from = name ? name : "a turned grid";
        view = resample(file.get());
        if (!view || GDALGetGeoTransform(view.get(), transform.data()) != CE_None)
            return fail(getLastError("cannot be resampled to longitude and latitude"));
        dataset = view.get();
    }

    shape.columns = GDALGetRasterXSize(dataset);
    shape.rows = GDALGetRasterYSize(dataset);
    if (shape.columns < 2 || shape.rows < 2 || transform[5] == 0)
        return fail("is smaller than 2 by 2 samples");
    if (std::int64_t{shape.columns} * shape.rows > LARGEST) return fail("has too many samples");
    // The transform maps pixel corners; heights stand at the middles.
    shape.spacing_longitude = transform[1];
    shape.spacing_latitude = std::abs(transform[5]);
    shape.west = transform[0] + transform[1] / 2;
    shape.north = transform[3] + transform[5] * (transform[5] < 0 ? 0.5 : shape.rows - 0.5);
    if (!readHeights(dataset, heights)) return fail(getLastError("cannot be read"));
    if (transform[5] > 0) flipRows(heights, shape.columns);
    return true;
}

} // namespace ig
