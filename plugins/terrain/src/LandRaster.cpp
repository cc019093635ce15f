// SPDX-License-Identifier: MIT
#include "LandRaster.h"

#include "ig/base/jLog.h"

#include <algorithm>
#include <limits>

namespace ig {

namespace {

/// Stands where the raster has no data.
constexpr std::int32_t NO_DATA = std::numeric_limits<std::int32_t>::min();
constexpr std::int64_t LARGEST = std::int64_t{1} << 26; ///< pieces in memory: 64 MiB
constexpr int STRIP = 256;                              ///< rows that are read at a time

/// ESA WorldCover's values: tree cover, shrubland, grassland, cropland, built-up, bare or sparse
/// vegetation, snow and ice, permanent water, herbaceous wetland, mangroves, moss and lichen.
const std::map<std::int32_t, LandClass> WORLD_COVER{
    {10, LandClass::forest}, {20, LandClass::shrub},    {30, LandClass::grass},
    {40, LandClass::crop},   {50, LandClass::built_up}, {60, LandClass::bare},
    {70, LandClass::snow},   {80, LandClass::water},    {90, LandClass::wetland},
    {95, LandClass::forest}, {100, LandClass::grass},
};

std::string listNames() {
    std::string names;
    for (int i = 1; i <= static_cast<int>(LandClass::water); i++)
        names += (i > 1 ? ", " : "") + std::string(LandCover::getTraits(LandClass(i)).name);
    return names;
}

} // namespace

bool LandRaster::readClasses(const TerrainSources::LandCover& source, std::string& failure) {
    if (source.classes.empty()) m_classes = WORLD_COVER;
    for (const auto& [value, name] : source.classes) {
        const std::optional<LandClass> land = LandCover::find(name.view());
        if (!land) {
            failure = "value " + std::to_string(value) + " is \"" + name.c_str() +
                      "\", which is no class of land: " + listNames();
            return false;
        }
        m_classes[value] = *land;
    }
    return true;
}

bool LandRaster::open(const TerrainSources::LandCover& source, const LonLatBox& ground,
                      std::string& failure) {
    if (!readClasses(source, failure)) return false;
    const Dataset file = openRaster(source.raster, failure);
    if (!file) return false;
    const GDALDataType type = GDALGetRasterCount(file.get()) < 1
                                  ? GDT_Unknown
                                  : GDALGetRasterDataType(GDALGetRasterBand(file.get(), 1));
    if (type == GDT_Unknown || GDALDataTypeIsFloating(type) || GDALDataTypeIsComplex(type)) {
        failure = "its first band is not of whole numbers, each the value of a class";
        return false;
    }
    Dataset band = makeView(file.get(), {"-of", "VRT", "-b", "1"});
    if (!band) {
        failure = getLastError("cannot be read");
        return false;
    }
    if (!m_raster.open(std::move(band), (ground.west + ground.east) / 2, failure)) return false;
    m_pixels = m_raster.getPixels(ground);
    if (m_pixels.columns < 1 || m_pixels.rows < 1) {
        failure = "lies nowhere on this ground";
        return false;
    }
    return true;
}

bool LandRaster::read(int first, std::span<LandClass> classes) {
    LonLatPixels strip = m_pixels;
    strip.north -= first * strip.spacing_latitude;
    strip.rows = static_cast<int>(classes.size() / static_cast<std::size_t>(strip.columns));
    const QuietErrors quiet;
    const Dataset picture = makePicture(strip, 1, GDT_Int32);
    if (!picture) return false;
    GDALRasterBandH band = GDALGetRasterBand(picture.get(), 1);
    std::vector<std::int32_t> values(classes.size());
    if (GDALFillRaster(band, NO_DATA, 0) != CE_None ||
        !m_raster.drawOnto(picture.get(), strip, "near") ||
        GDALRasterIO(band, GF_Read, 0, 0, strip.columns, strip.rows, values.data(), strip.columns,
                     strip.rows, GDT_Int32, 0, 0) != CE_None)
        return false;
    std::int32_t last = NO_DATA; // neighbours are mostly alike
    LandClass land = LandClass::none;
    for (std::size_t i = 0; i < values.size(); i++) {
        if (values[i] != last) {
            last = values[i];
            const auto known = m_classes.find(last);
            land = known == m_classes.end() ? LandClass::none : known->second;
            if (known == m_classes.end() && last != NO_DATA && last != 0) m_unknown.insert(last);
        }
        classes[i] = land;
    }
    return true;
}

void LandRaster::tellUnknown(const jString& path) const {
    if (m_unknown.empty()) return;
    std::string text;
    int count = 0;
    for (const std::int32_t value : m_unknown) {
        if (count++ == 10) {
            text += " ...";
            break;
        }
        text += (text.empty() ? "" : ", ") + std::to_string(value);
    }
    jLog::warning("LandRaster::read: \"%s\" has values of no class: %s (the ground looks there "
                  "as without a land cover; \"classes\" may name them)",
                  path.c_str(), text.c_str());
}

std::unique_ptr<const LandCover> loadLandCover(const TerrainSources::LandCover& source,
                                               const LonLatBox& ground) {
    const QuietErrors quiet;
    LandRaster raster;
    std::string failure;
    const auto fail = [&](const std::string& why) {
        jLog::error("ObjectTerrain::load: no land cover from \"%s\": %s", source.raster.c_str(),
                    why.c_str());
        return nullptr;
    };
    if (!raster.open(source, ground, failure)) return fail(failure);
    const LonLatPixels& pixels = raster.getPixels();
    const std::int64_t count = std::int64_t{pixels.columns} * pixels.rows;
    if (count > LARGEST)
        return fail("has " + std::to_string(count >> 20) +
                    " million pixels on this ground, and 64 fit into memory: let `visual_channel "
                    "world build` make the ground once");
    const auto width = static_cast<std::size_t>(pixels.columns);
    const auto classes = std::make_shared<LandClass[]>(static_cast<std::size_t>(count));
    for (int row = 0; row < pixels.rows; row += STRIP) {
        const auto rows = static_cast<std::size_t>(std::min(STRIP, pixels.rows - row));
        const std::span strip(classes.get() + static_cast<std::size_t>(row) * width, rows * width);
        if (!raster.read(row, strip)) return fail(getLastError("cannot be read"));
    }
    raster.tellUnknown(source.raster);
    return std::make_unique<LandCover>(LandCover::Grid{pixels.columns, pixels.rows, pixels.west,
                                                       pixels.north, pixels.spacing_longitude,
                                                       pixels.spacing_latitude},
                                       classes);
}

} // namespace ig
