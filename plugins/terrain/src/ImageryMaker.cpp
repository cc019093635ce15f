// SPDX-License-Identifier: MIT
#include "ImageryMaker.h"

#include "TileCodec.h"

#include "ig/math/quat.h"

#include <algorithm>
#include <cmath>

namespace ig {

namespace {

constexpr int EDGE = Imagery::EDGE;
constexpr std::size_t WIDTH = EDGE;
constexpr int FINEST = 20; ///< level, whatever the pictures' own size
/// How much coarser than a picture's pixels the samples that show it may be.
constexpr double COARSER = 1.2;

/// A picture with three bands, or four of which the last is alpha.
Dataset toColors(GDALDatasetH file) {
    GDALRasterBandH first = GDALGetRasterBand(file, 1);
    if (GDALGetRasterColorTable(first)) return makeView(file, {"-of", "VRT", "-expand", "rgba"});
    const bool is_gray = GDALGetRasterCount(file) < 3;
    std::vector<const char*> words = {"-of", "VRT", "-b", "1"};
    words.insert(words.end(), {"-b", is_gray ? "1" : "2", "-b", is_gray ? "1" : "3"});
    // Missing is what has the value for that in all bands: of this the drawing takes care.
    const int flags = GDALGetMaskFlags(first);
    if (flags != GMF_ALL_VALID && flags != GMF_NODATA) words.insert(words.end(), {"-b", "mask"});
    return makeView(file, words);
}

} // namespace

Dataset ImageryMaker::openPicture(const jString& path, std::string& failure) {
    const Dataset file = openRaster(path, failure);
    if (!file) return nullptr;
    if (GDALGetRasterCount(file.get()) < 1) {
        failure = "holds no band";
        return nullptr;
    }
    const GDALDataType type = GDALGetRasterDataType(GDALGetRasterBand(file.get(), 1));
    if (type != GDT_Byte) {
        failure = std::string("its bands are of type ") + GDALGetDataTypeName(type) +
                  ", not of 8 bits: gdal_translate -ot Byte -scale makes a picture that is";
        return nullptr;
    }
    Dataset colors = toColors(file.get()); // keeps the file
    if (!colors) failure = getLastError("cannot be read");
    return colors;
}

bool ImageryMaker::open(const std::vector<jString>& paths, const LonLatBox& ground,
                        std::string& failure) {
    const QuietErrors quiet;
    layOut(ground);
    for (const jString& path : paths) {
        std::string why;
        Dataset picture = openPicture(path, why);
        Source source{path, {}, 0};
        if (!picture ||
            !source.raster.open(std::move(picture), (ground.west + ground.east) / 2, why)) {
            failure = std::string("\"") + path.c_str() + "\" " + why;
            return false;
        }
        const double spacing = source.raster.getSpacingLatitude();
        while (source.finest_level < FINEST &&
               m_layout.getSpacing(source.finest_level) > COARSER * spacing)
            source.finest_level++;
        m_sources.push_back(std::move(source));
    }
    listTiles();
    return true;
}

/// Tiles of level 0 are about as wide as high, so that samples are.
void ImageryMaker::layOut(const LonLatBox& ground) {
    const double width = ground.east - ground.west, height = ground.north - ground.south;
    const double middle = (ground.north + ground.south) / 2;
    const double shrink = std::max(std::cos(middle * DEG_TO_RAD<double>), 0.01);
    const double ratio = width * shrink / height;
    m_layout.west = ground.west;
    m_layout.north = ground.north;
    m_layout.columns = std::clamp(static_cast<int>(std::lround(ratio)), 1, 16);
    m_layout.rows = std::clamp(static_cast<int>(std::lround(1 / ratio)), 1, 16);
    m_layout.tile_width = width / m_layout.columns;
    m_layout.tile_height = height / m_layout.rows;
}

/// Finest first, row by row.
void ImageryMaker::listTiles() {
    for (const Source& source : m_sources) {
        for (int level = 0; level <= source.finest_level; level++) {
            const LonLatBox& box = source.raster.getBox();
            const dvec2 from = m_layout.toTiles(level, box.west, box.north);
            const dvec2 to = m_layout.toTiles(level, box.east, box.south);
            const int last_column = (m_layout.columns << level) - 1;
            const int last_row = (m_layout.rows << level) - 1;
            const auto cut = [](double at, int last) {
                return static_cast<int>(std::clamp(std::floor(at), -1.0, last + 1.0));
            };
            for (int row = std::max(cut(from.y, last_row), 0);
                 row <= std::min(cut(to.y, last_row), last_row); row++)
                for (int column = std::max(cut(from.x, last_column), 0);
                     column <= std::min(cut(to.x, last_column), last_column); column++)
                    m_known.insert({level, column, row});
        }
    }
    m_tiles.assign(m_known.begin(), m_known.end());
    std::stable_sort(m_tiles.begin(), m_tiles.end(), [](const ImageTile& a, const ImageTile& b) {
        return a.level != b.level ? a.level > b.level
                                  : std::pair(a.row, a.column) < std::pair(b.row, b.column);
    });
}

LonLatPixels ImageryMaker::getPixels(const ImageTile& tile) const {
    const int scale = 1 << tile.level;
    const double spacing_longitude = m_layout.tile_width / scale / (EDGE - 1);
    const double spacing_latitude = m_layout.getSpacing(tile.level);
    return {EDGE,
            EDGE,
            m_layout.west + tile.column * m_layout.tile_width / scale - spacing_longitude / 2,
            m_layout.north - tile.row * m_layout.tile_height / scale + spacing_latitude / 2,
            spacing_longitude,
            spacing_latitude};
}

bool ImageryMaker::make(const ImageTile& tile, Imagery::Store& store, std::string& failure) {
    const QuietErrors quiet;
    const LonLatPixels pixels = getPixels(tile);
    const Dataset picture = makePicture(pixels, 4, GDT_Byte);
    std::vector<std::uint8_t> samples(4 * WIDTH * WIDTH);
    for (const Source& source : m_sources) {
        if (source.finest_level > tile.level) continue; // comes with the finer tiles
        if (!picture || !source.raster.drawOnto(picture.get(), pixels, "bilinear")) {
            failure =
                std::string("\"") + source.path.c_str() + "\" " + getLastError("cannot be read");
            return false;
        }
    }
    if (!picture ||
        GDALDatasetRasterIO(picture.get(), GF_Read, 0, 0, EDGE, EDGE, samples.data(), EDGE, EDGE,
                            GDT_Byte, 4, nullptr, 4, 4 * EDGE, 1) != CE_None) {
        failure = getLastError("no memory for a tile");
        return false;
    }
    for (std::size_t i = 3; i < samples.size(); i += 4)
        samples[i] = samples[i] >= 128 ? 255 : 0;
    if (!addFiner(tile, store, samples)) {
        failure = "a finer tile is damaged: build anew";
        return false;
    }
    if (!store.write(tile, encodeTile(samples))) {
        failure = "no room for a tile";
        return false;
    }
    return true;
}

namespace {

using Samples = std::vector<std::uint8_t>;

/// One of a coarser tile's samples from those around it in one of its quarters; nothing where that
/// has none. Along the quarter's own edges only what lies on them counts, so that neighbours agree.
void addSample(const Samples& finer, int column, int row, std::uint8_t* out) {
    int weights = 0, sum[3] = {};
    const auto is_edge = [](int at) { return at == 0 || at == EDGE - 1; };
    for (int dr = is_edge(row) ? 0 : -1; dr <= (is_edge(row) ? 0 : 1); dr++)
        for (int dc = is_edge(column) ? 0 : -1; dc <= (is_edge(column) ? 0 : 1); dc++) {
            const std::uint8_t* from = &finer[4 * (static_cast<std::size_t>(row + dr) * WIDTH +
                                                   static_cast<std::size_t>(column + dc))];
            if (!from[3]) continue;
            const int weight = (2 - std::abs(dr)) * (2 - std::abs(dc));
            weights += weight;
            for (int c = 0; c < 3; c++)
                sum[c] += weight * from[c];
        }
    if (weights == 0) return;
    for (int c = 0; c < 3; c++)
        out[c] = static_cast<std::uint8_t>((sum[c] + weights / 2) / weights);
    out[3] = 255;
}

} // namespace

/// Every second sample of the four tiles below stands where one of this tile does.
bool ImageryMaker::addFiner(const ImageTile& tile, const Imagery::Store& store,
                            Samples& samples) const {
    Samples finer;
    for (const int r : {0, 1})
        for (const int c : {0, 1}) {
            const ImageTile child{tile.level + 1, 2 * tile.column + c, 2 * tile.row + r};
            if (!m_known.contains(child)) continue;
            if (!decodeTile(store.read(child), finer)) return false;
            // The child's first sample is the parent's first, or lies half a step after its 255th.
            for (int row = 0; row < EDGE / 2; row++)
                for (int column = 0; column < EDGE / 2; column++)
                    addSample(finer, 2 * column + c, 2 * row + r,
                              &samples[4 * (static_cast<std::size_t>(row + r * EDGE / 2) * WIDTH +
                                            static_cast<std::size_t>(column + c * EDGE / 2))]);
        }
    return true;
}

} // namespace ig
