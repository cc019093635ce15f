// SPDX-License-Identifier: MIT
#include "HeightRaster.h"

#include "ig/math/EllipsoidModel.h"

#include <algorithm>
#include <array>
#include <cpl_conv.h>
#include <cpl_string.h>
#include <gdal_alg.h>
#include <gdal_utils.h>
#include <limits>
#include <memory>
#include <ogr_srs_api.h>
#include <optional>

namespace ig {

namespace {

constexpr double FARTHEST_NORTH = 89.9; ///< degrees, of what a projected raster may hold

struct DestroySystem {
    void operator()(OGRSpatialReferenceH system) const { OSRDestroySpatialReference(system); }
};
using System = std::unique_ptr<std::remove_pointer_t<OGRSpatialReferenceH>, DestroySystem>;

/// The horizontal part of a raster's coordinate system; null when it names none.
System getSystem(GDALDatasetH dataset) {
    OGRSpatialReferenceH own = GDALGetSpatialRef(dataset);
    if (!own) own = GDALGetGCPSpatialRef(dataset);
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

std::string describe(const System& system) {
    char* text = nullptr;
    const char* const options[] = {"FORMAT=WKT2", nullptr};
    OSRExportToWktEx(system.get(), &text, options);
    std::string words = text ? text : "";
    CPLFree(text);
    return words;
}

bool isLonLat(const std::array<double, 6>& transform, GDALDatasetH dataset) {
    const double east = transform[0] + transform[1] * GDALGetRasterXSize(dataset);
    const double south = transform[3] + transform[5] * GDALGetRasterYSize(dataset);
    const double slack = 1;
    return std::abs(transform[0]) <= 360 + slack && std::abs(east) <= 360 + slack &&
           std::abs(transform[3]) <= 90 + slack && std::abs(south) <= 90 + slack;
}

/// From a raster's pixels and lines to longitude and latitude and back.
class Transformer {
public:
    Transformer(GDALDatasetH raster, const std::string& system) {
        const std::string source = "SRC_SRS=" + system;
        const char* const options[] = {source.c_str(), "DST_SRS=EPSG:4326", nullptr};
        m_transformer =
            GDALCreateGenImgProjTransformer2(raster, nullptr, const_cast<char**>(options));
    }
    Transformer(const Transformer&) = delete;
    ~Transformer() {
        if (m_transformer) GDALDestroyGenImgProjTransformer(m_transformer);
    }
    explicit operator bool() const { return m_transformer != nullptr; }

    struct Place {
        double x, y; ///< longitude and latitude, or pixel and line
    };
    std::optional<Place> toDegrees(double column, double row) const {
        return transform(column, row, false);
    }
    std::optional<Place> toPixels(double longitude, double latitude) const {
        return transform(longitude, latitude, true);
    }

private:
    std::optional<Place> transform(double x, double y, bool back) const {
        double z = 0;
        int good = 0;
        GDALGenImgProjTransform(m_transformer, back, 1, &x, &y, &z, &good);
        if (!good || !std::isfinite(x) || !std::isfinite(y)) return {};
        return Place{x, y};
    }
    void* m_transformer;
};

/// Heights of the raster's first band, rows as in the file, with its scale applied.
class Band {
public:
    explicit Band(GDALDatasetH dataset) : m_band(GDALGetRasterBand(dataset, 1)) {
        if (GDALGetMaskFlags(m_band) != GMF_ALL_VALID) m_mask = GDALGetMaskBand(m_band);
        int has_scale = 0, has_offset = 0;
        const double scale = GDALGetRasterScale(m_band, &has_scale);
        const double offset = GDALGetRasterOffset(m_band, &has_offset);
        m_scale = has_scale ? scale : 1;
        m_offset = has_offset ? offset : 0;
    }
    /// Not a number where the raster marks them as missing.
    bool read(int column, int row, std::span<float> line) {
        const int count = static_cast<int>(line.size());
        m_valid.assign(line.size(), 255);
        if (GDALRasterIO(m_band, GF_Read, column, row, count, 1, line.data(), count, 1, GDT_Float32,
                         0, 0) != CE_None ||
            (m_mask && GDALRasterIO(m_mask, GF_Read, column, row, count, 1, m_valid.data(), count,
                                    1, GDT_Byte, 0, 0) != CE_None))
            return false;
        for (std::size_t i = 0; i < line.size(); i++) {
            if (!m_valid[i] || !std::isfinite(line[i]))
                line[i] = std::numeric_limits<float>::quiet_NaN();
            else if (m_scale != 1 || m_offset != 0)
                line[i] = static_cast<float>(line[i] * m_scale + m_offset);
        }
        return true;
    }

private:
    GDALRasterBandH m_band, m_mask = nullptr;
    double m_scale, m_offset;
    std::vector<unsigned char> m_valid;
};

void lay(std::span<const float> line, float* out) {
    for (std::size_t i = 0; i < line.size(); i++)
        if (!TerrainGrid::isHole(line[i])) out[i] = line[i];
}

/// Bounds of a raster in degrees; longitudes run on across 180.
struct Box {
    double west = 1e9, east = -1e9, south = 1e9, north = -1e9;

    void expand(double longitude, double latitude) {
        west = std::min(west, longitude);
        east = std::max(east, longitude);
        south = std::min(south, latitude);
        north = std::max(north, latitude);
    }
};

/// Line by line from the middle outwards, so that a longitude is never a turn from its neighbour's.
Box findBox(const Transformer& transformer, int columns, int rows, double middle) {
    constexpr int STEPS = 64;
    Box box;
    for (int j = 0; j <= STEPS; j++)
        for (const int direction : {1, -1}) {
            double last = middle;
            for (int i = STEPS / 2; i >= 0 && i <= STEPS; i += direction) {
                const auto place =
                    transformer.toDegrees(columns * double(i) / STEPS, rows * double(j) / STEPS);
                if (!place) continue;
                last += std::remainder(place->x - last, 360);
                box.expand(last, place->y);
            }
        }
    return box;
}

bool holds(const Transformer& transformer, double latitude, int columns, int rows) {
    const auto pixel = transformer.toPixels(0, latitude);
    return pixel && pixel->x >= 0 && pixel->x <= columns && pixel->y >= 0 && pixel->y <= rows;
}

} // namespace

bool HeightRaster::open(const jString& path, std::string& failure) {
    const QuietErrors quiet;
    m_file = openRaster(path, failure);
    if (!m_file) return false;
    if (GDALGetRasterCount(m_file.get()) < 1) {
        failure = "holds no band";
        return false;
    }
    return locate(failure);
}

bool HeightRaster::locate(std::string& failure) {
    const auto fail = [&](std::string reason) {
        failure = std::move(reason);
        return false;
    };
    std::array<double, 6> transform;
    const bool placed = GDALGetGeoTransform(m_file.get(), transform.data()) == CE_None;
    if (!placed && GDALGetGCPCount(m_file.get()) == 0) return fail("is not georeferenced");
    const System system = getSystem(m_file.get());
    if (!system && placed && !isLonLat(transform, m_file.get()))
        return fail("names no coordinate system and is not in degrees");
    m_system = system ? describe(system) : "EPSG:4326";
    m_grid.columns = GDALGetRasterXSize(m_file.get());
    m_grid.rows = GDALGetRasterYSize(m_file.get());
    const bool is_upright = placed && transform[2] == 0 && transform[4] == 0 && transform[1] > 0;
    if (m_grid.columns < 2 || m_grid.rows < 2 || (is_upright && transform[5] == 0))
        return fail("is smaller than 2 by 2 samples");
    if (is_upright && (!system || isWgs84(system))) {
        // The transform maps pixel corners; heights stand at the middles.
        m_is_southern = transform[5] > 0;
        m_grid.spacing_longitude = transform[1];
        m_grid.spacing_latitude = std::abs(transform[5]);
        m_grid.west = transform[0] + transform[1] / 2;
        m_grid.north = transform[3] + transform[5] * (m_is_southern ? m_grid.rows - 0.5 : 0.5);
        return true;
    }
    const char* name = system ? OSRGetName(system.get()) : nullptr;
    m_resampled_from = name ? name : "a turned grid";
    const int columns = m_grid.columns, rows = m_grid.rows;
    const Transformer transformer(m_file.get(), m_system);
    const auto locatePixel = [&](double column, double row) {
        return transformer ? transformer.toDegrees(column, row) : std::nullopt;
    };
    const auto middle = locatePixel(columns / 2.0, rows / 2.0);
    const auto right = locatePixel(columns / 2.0 + 1, rows / 2.0);
    const auto below = locatePixel(columns / 2.0, rows / 2.0 + 1);
    if (!middle || !right || !below)
        return fail(getLastError("cannot be resampled to longitude and latitude"));
    if (system && OSRIsProjected(system.get()) &&
        (holds(transformer, 90, columns, rows) || holds(transformer, -90, columns, rows)))
        return fail("lies over a pole: cut it below " +
                    std::to_string(FARTHEST_NORTH).substr(0, 4) + " degrees of latitude");
    const Box box = findBox(transformer, columns, rows, middle->x);
    // As many samples on an area of ground as there are pixels.
    const dvec2 degree = EllipsoidModel().getDegreeLengths(middle->y);
    const auto metres = [&](const Transformer::Place& to) {
        return std::hypot(std::remainder(to.x - middle->x, 360) * degree.x,
                          (to.y - middle->y) * degree.y);
    };
    const double pixel = std::sqrt(metres(*right) * metres(*below));
    m_grid.spacing_longitude = pixel / degree.x;
    m_grid.spacing_latitude = pixel / degree.y;
    const double across = (box.east - box.west) / m_grid.spacing_longitude;
    const double down = (box.north - box.south) / m_grid.spacing_latitude;
    if (!(pixel > 0 && std::max(across, down) < 1e9))
        return fail("cannot be resampled to longitude and latitude");
    m_grid.columns = std::max(static_cast<int>(across), 2);
    m_grid.rows = std::max(static_cast<int>(down), 2);
    m_grid.west = box.west + m_grid.spacing_longitude / 2;
    m_grid.north = box.north - m_grid.spacing_latitude / 2;
    return true;
}

bool HeightRaster::read(const TerrainGrid& grid, std::span<float> heights,
                        std::string& failure) const {
    const QuietErrors quiet;
    // Samples of the grid and of the raster in one place, if it is in the same system.
    const double column = m_grid.getColumn(grid.west), row = m_grid.getRow(grid.north);
    const auto isSame = [](double a, double b, double slack) { return std::abs(a - b) < slack; };
    constexpr double SLACK = 1e-6; // of a pixel
    const bool is_own =
        m_resampled_from.empty() &&
        isSame(grid.spacing_longitude / m_grid.spacing_longitude, 1, SLACK / grid.columns) &&
        isSame(grid.spacing_latitude / m_grid.spacing_latitude, 1, SLACK / grid.rows) &&
        isSame(column, std::round(column), SLACK) && isSame(row, std::round(row), SLACK);
    const bool good = is_own ? readOwn(grid, static_cast<int>(std::round(column)),
                                       static_cast<int>(std::round(row)), heights)
                             : readResampled(grid, heights);
    if (!good) failure = getLastError("cannot be read");
    return good;
}

/// `column`, `row`: of the raster, where the grid's first sample is.
bool HeightRaster::readOwn(const TerrainGrid& grid, int column, int row,
                           std::span<float> heights) const {
    const int first = std::max(column, 0);
    const int end = std::min(column + grid.columns, m_grid.columns);
    if (first >= end) return true;
    Band band(m_file.get());
    std::vector<float> line(static_cast<std::size_t>(end - first));
    for (int r = std::max(row, 0); r < std::min(row + grid.rows, m_grid.rows); r++) {
        if (!band.read(first, m_is_southern ? m_grid.rows - 1 - r : r, line)) return false;
        lay(line, heights.data() +
                      static_cast<std::size_t>(r - row) * static_cast<std::size_t>(grid.columns) +
                      static_cast<std::size_t>(first - column));
    }
    return true;
}

/// Through a view of the raster whose pixels' middles are the grid's samples, computed as it is
/// read. Heights are not shifted to another vertical datum.
bool HeightRaster::readResampled(const TerrainGrid& grid, std::span<float> heights) const {
    // Longitudes are the raster's own, beyond 180 where it lies across.
    const double half = (grid.columns - 1) / 2.0 * grid.spacing_longitude;
    const double own_middle = m_grid.west + (m_grid.columns - 1) / 2.0 * m_grid.spacing_longitude;
    const double west = own_middle + std::remainder(grid.west + half - own_middle, 360) - half -
                        grid.spacing_longitude / 2;
    const double north = grid.north + grid.spacing_latitude / 2;
    const auto text = [](double value) {
        std::array<char, 32> digits;
        CPLsnprintf(digits.data(), digits.size(), "%.17g", value);
        return std::string(digits.data());
    };
    // The approximation of the transformation errs by less than a thousandth of a pixel, and the
    // kernel isn't widened where pixels are turned against the grid.
    const std::vector<std::string> arguments = {"-of",
                                                "VRT",
                                                "-s_srs",
                                                m_system,
                                                "-t_srs",
                                                "EPSG:4326",
                                                "-r",
                                                "bilinear",
                                                "-ot",
                                                "Float32",
                                                "-dstnodata",
                                                "nan",
                                                "-et",
                                                "0.0005",
                                                "-novshift",
                                                "-wo",
                                                "XSCALE=1",
                                                "-wo",
                                                "YSCALE=1",
                                                "-te",
                                                text(west),
                                                text(north - grid.rows * grid.spacing_latitude),
                                                text(west + grid.columns * grid.spacing_longitude),
                                                text(north),
                                                "-ts",
                                                std::to_string(grid.columns),
                                                std::to_string(grid.rows)};
    std::vector<char*> words;
    for (const std::string& argument : arguments)
        words.push_back(const_cast<char*>(argument.c_str()));
    words.push_back(nullptr);
    GDALWarpAppOptions* options = GDALWarpAppOptionsNew(words.data(), nullptr);
    if (!options) return false;
    GDALDatasetH source = m_file.get();
    const Dataset view(GDALWarp("", nullptr, 1, &source, options, nullptr));
    GDALWarpAppOptionsFree(options);
    if (!view) return false;
    Band band(view.get());
    const auto width = static_cast<std::size_t>(grid.columns);
    std::vector<float> line(width);
    for (int row = 0; row < grid.rows; row++) {
        if (!band.read(0, row, line)) return false;
        lay(line, heights.data() + static_cast<std::size_t>(row) * width);
    }
    return true;
}

} // namespace ig
