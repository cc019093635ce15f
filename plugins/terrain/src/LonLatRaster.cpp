// SPDX-License-Identifier: MIT
#include "LonLatRaster.h"

#include "ig/math/quat.h"

#include <algorithm>
#include <cmath>
#include <gdal_alg.h>
#include <gdal_utils.h>
#include <ogr_srs_api.h>
#include <optional>

namespace ig {

namespace {

/// GDAL doesn't write into them.
std::vector<char*> toArguments(const std::vector<const char*>& words) {
    std::vector<char*> arguments;
    for (const char* word : words)
        arguments.push_back(const_cast<char*>(word));
    arguments.push_back(nullptr);
    return arguments;
}

struct DestroyTransformer {
    void operator()(void* transformer) const { GDALDestroyGenImgProjTransformer(transformer); }
};
using Transformer = std::unique_ptr<void, DestroyTransformer>;

/// From a raster's pixels and lines to longitude and latitude; null when nothing leads there.
Transformer makeTransformer(GDALDatasetH raster) {
    const char* const options[] = {"DST_SRS=" SRS_WKT_WGS84_LAT_LONG, "INSERT_CENTER_LONG=NO",
                                   nullptr};
    return Transformer(
        GDALCreateGenImgProjTransformer2(raster, nullptr, const_cast<char**>(options)));
}

struct Place {
    double longitude, latitude;
};

/// The place of a pixel's corner; nothing where the raster's projection has none.
std::optional<Place> locate(const Transformer& transformer, double column, double row) {
    double x = column, y = row, z = 0;
    int good = 0;
    GDALGenImgProjTransform(transformer.get(), false, 1, &x, &y, &z, &good);
    if (!good || !std::isfinite(x) || !std::isfinite(y)) return {};
    return Place{x, y};
}

bool isWgs84(GDALDatasetH raster) {
    OGRSpatialReferenceH own = GDALGetSpatialRef(raster);
    if (!own) return true; // degrees, or it isn't placed at all
    OGRSpatialReferenceH wgs84 = OSRNewSpatialReference(SRS_WKT_WGS84_LAT_LONG);
    const char* const options[] = {"CRITERION=EQUIVALENT_EXCEPT_AXIS_ORDER_GEOGCRS",
                                   "IGNORE_DATA_AXIS_TO_SRS_AXIS_MAPPING=YES",
                                   "IGNORE_COORDINATE_EPOCH=YES", nullptr};
    const bool same = OSRIsSameEx(own, wgs84, options);
    OSRDestroySpatialReference(wgs84);
    return same;
}

bool isGeographic(GDALDatasetH raster) {
    OGRSpatialReferenceH own = GDALGetSpatialRef(raster);
    return !own || OSRIsGeographic(own);
}

} // namespace

bool LonLatRaster::open(Dataset raster, double middle, std::string& failure) {
    m_raster = std::move(raster);
    const int columns = GDALGetRasterXSize(getDataset()), rows = GDALGetRasterYSize(getDataset());
    m_has_system = GDALGetSpatialRef(getDataset()) || GDALGetGCPCount(getDataset()) > 0;
    const bool placed = GDALGetGeoTransform(getDataset(), m_transform) == CE_None;
    m_is_lon_lat = placed && m_transform[2] == 0 && m_transform[4] == 0 && isWgs84(getDataset());
    const Transformer transformer = makeTransformer(getDataset());
    if ((!placed && GDALGetGCPCount(getDataset()) == 0) || !transformer) {
        failure = "is not georeferenced";
        return false;
    }
    // A projection's own longitudes may jump by a turn within the raster; those of degrees don't.
    const bool runs_on = isGeographic(getDataset());
    m_box = {1e9, -1e9, 1e9, -1e9};
    constexpr int STEPS = 32;
    for (int j = 0; j <= STEPS; j++)
        for (int i = 0; i <= STEPS; i++) {
            auto place = locate(transformer, columns * double(i) / STEPS, rows * double(j) / STEPS);
            if (!place) continue;
            if (!runs_on)
                place->longitude = middle + std::remainder(place->longitude - middle, 360);
            m_box = {std::min(m_box.west, place->longitude), std::max(m_box.east, place->longitude),
                     std::min(m_box.south, place->latitude),
                     std::max(m_box.north, place->latitude)};
        }
    const auto at = locate(transformer, columns / 2.0, rows / 2.0);
    const auto right = locate(transformer, columns / 2.0 + 1, rows / 2.0);
    const auto below = locate(transformer, columns / 2.0, rows / 2.0 + 1);
    if (m_box.isEmpty() || !at || !right || !below || m_box.north > 91 || m_box.south < -91) {
        failure = "names no coordinate system and is not in degrees";
        return false;
    }
    if (m_is_lon_lat) {
        m_spacing_longitude = std::abs(m_transform[1]);
        m_spacing_latitude = std::abs(m_transform[5]);
    } else {
        const double shrink = std::max(std::cos(at->latitude * DEG_TO_RAD<double>), 0.01);
        const auto step = [&](const Place& to) {
            return std::hypot(std::remainder(to.longitude - at->longitude, 360) * shrink,
                              to.latitude - at->latitude);
        };
        m_spacing_latitude = std::sqrt(step(*right) * step(*below));
        m_spacing_longitude = m_spacing_latitude / shrink;
    }
    m_turns = {0};
    if (runs_on) {
        const LonLatBox own = m_box;
        m_turns.clear();
        for (const double turn : {-720.0, -360.0, 0.0, 360.0, 720.0})
            if (own.west + turn < middle + 180 && own.east + turn > middle - 180) {
                if (m_turns.empty()) m_box.west = std::max(own.west + turn, middle - 180);
                m_box.east = std::min(own.east + turn, middle + 180);
                m_turns.push_back(turn);
            }
    }
    return true;
}

LonLatPixels LonLatRaster::getPixels(const LonLatBox& box) const {
    const LonLatBox part = m_box.cut(box);
    if (part.isEmpty()) return {};
    // Where its own lines lie: anywhere unless it runs along them.
    const double line_u = m_is_lon_lat ? m_transform[0] + m_turns.front() : part.west;
    const double line_v = m_is_lon_lat ? m_transform[3] : part.north;
    constexpr double SLACK = 1e-6; // of a pixel: what lies on a line ends there
    const double west = std::floor((part.west - line_u) / m_spacing_longitude + SLACK);
    const double east = std::ceil((part.east - line_u) / m_spacing_longitude - SLACK);
    const double north = std::floor((line_v - part.north) / m_spacing_latitude + SLACK);
    const double south = std::ceil((line_v - part.south) / m_spacing_latitude - SLACK);
    return {static_cast<int>(std::min(east - west, 2e9)),
            static_cast<int>(std::min(south - north, 2e9)),
            line_u + west * m_spacing_longitude,
            line_v - north * m_spacing_latitude,
            m_spacing_longitude,
            m_spacing_latitude};
}

bool LonLatRaster::drawOnto(GDALDatasetH picture, const LonLatPixels& pixels,
                            const char* method) const {
    // The approximation of the transformation errs by a twentieth of a pixel.
    std::vector<const char*> words = {
        "-r", method, "-et", "0.05", "-novshift", "-wo", "UNIFIED_SRC_NODATA=YES"};
    if (!m_has_system) words.insert(words.end(), {"-s_srs", "EPSG:4326"});
    if (GDALGetRasterCount(getDataset()) == 4) words.push_back("-srcalpha");
    GDALWarpAppOptions* options = GDALWarpAppOptionsNew(toArguments(words).data(), nullptr);
    bool good = options != nullptr;
    for (const double turn : m_turns) {
        double transform[6] = {
            pixels.west - turn,      pixels.spacing_longitude, 0, pixels.north, 0,
            -pixels.spacing_latitude};
        GDALDatasetH source = getDataset();
        GDALSetGeoTransform(picture, transform);
        const LonLatBox box = pixels.getBox().cut(m_box);
        if (!good || box.isEmpty()) break;
        good = GDALWarp(nullptr, picture, 1, &source, options, nullptr) == picture;
    }
    GDALWarpAppOptionsFree(options);
    return good;
}

Dataset makeView(GDALDatasetH raster, const std::vector<const char*>& words) {
    GDALTranslateOptions* options = GDALTranslateOptionsNew(toArguments(words).data(), nullptr);
    if (!options) return nullptr;
    Dataset view(GDALTranslate("", raster, options, nullptr));
    GDALTranslateOptionsFree(options);
    return view;
}

Dataset makePicture(const LonLatPixels& pixels, int bands, GDALDataType type) {
    Dataset picture(GDALCreate(GDALGetDriverByName("MEM"), "", pixels.columns, pixels.rows, bands,
                               type, nullptr));
    if (!picture) return nullptr;
    GDALSetProjection(picture.get(), SRS_WKT_WGS84_LAT_LONG);
    if (bands == 4)
        GDALSetRasterColorInterpretation(GDALGetRasterBand(picture.get(), 4), GCI_AlphaBand);
    return picture;
}

} // namespace ig
