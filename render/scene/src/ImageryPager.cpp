// SPDX-License-Identifier: MIT
#include "render/scene/ImageryPager.h"

#include "ig/base/jLog.h"
#include "ig/math/EllipsoidModel.h"
#include "ig/math/quat.h"
#include "plugins/terrain/ObjectTerrain.h"
#include "program/Process.h"

#include <algorithm>
#include <bit>
#include <cmath>

namespace ig {

namespace {

constexpr std::size_t EDGE = Imagery::EDGE;
constexpr float SHARP = 1.5f;    ///< pixels that a sample may cover
constexpr float COARSER = 1.25f; ///< what sharpness is divided by until the layers suffice
constexpr std::size_t AHEAD = 4; ///< tiles that are read before they are fetched

/// Half the size, each texel the mean of four.
std::vector<std::uint8_t> shrink(const std::vector<std::uint8_t>& from, std::size_t edge) {
    std::vector<std::uint8_t> to;
    to.reserve(edge * edge);
    for (std::size_t j = 0; j < edge; j += 2)
        for (std::size_t i = 0; i < edge; i += 2)
            for (std::size_t c = 0; c < 4; c++) {
                const std::uint8_t* p = &from[4 * (j * edge + i) + c];
                to.push_back(static_cast<std::uint8_t>(
                    (p[0] + p[4] + p[4 * edge] + p[4 * edge + 4] + 2) / 4));
            }
    return to;
}

/// Of a place on the ground, m, near enough for whoever looks at `height` degrees around it: of a
/// built world only the coarse copies are read.
double getAltitudeAbout(const TerrainGrid& grid, double longitude, double latitude, double height) {
    const auto cells =
        static_cast<unsigned>(std::clamp(height / 2 / grid.spacing_latitude, 1.0, 1e6));
    const int step = static_cast<int>(std::bit_floor(cells));
    const auto find = [step](double at, int count) {
        return static_cast<int>(std::clamp(at / step, 0.0, double((count - 1) / step))) * step;
    };
    const float altitude = grid.getHeight(find(grid.getColumn(longitude), grid.columns),
                                          find(grid.getRow(latitude), grid.rows), step);
    return TerrainGrid::isHole(altitude) ? 0 : static_cast<double>(altitude);
}

ImageTile getPart(const ImageTile& tile, int i) {
    return {tile.level + 1, 2 * tile.column + (i & 1), 2 * tile.row + (i >> 1)};
}

} // namespace

// ------------------------------------------------------------------ what a view wants

void ImageryPager::adopt(const std::shared_ptr<const Imagery>& imagery) {
    if (imagery == m_imagery) return;
    m_imagery = imagery;
    m_layers.assign(LAYERS, {});
    m_places.clear();
    m_told.clear();
    const std::lock_guard lock(m_mutex);
    m_read_from = imagery;
    m_wishes.clear();
    m_made.clear();
}

void ImageryPager::want(const FrameView& view, const ObjectTerrain& terrain, int finest) {
    adopt(terrain.getImagery());
    m_view++;
    m_hurried = view.hurried;
    const Imagery::Layout& layout = m_imagery->getLayout();
    float coarser = SHARP;
    do {
        m_refined.clear();
        m_wanted.clear();
        for (int row = 0; row < layout.rows; row++)
            for (int column = 0; column < layout.columns; column++) {
                const ImageTile tile{0, column, row};
                if (m_imagery->has(tile)) m_wanted[tile] = 0; // stands in for all others
                choose(view, terrain, tile, finest, coarser);
            }
        coarser *= COARSER;
    } while (m_wanted.size() > LAYERS && !m_refined.empty());
    for (const auto& [tile, distance] : m_wanted)
        if (const auto place = m_places.find(tile); place != m_places.end())
            m_layers[static_cast<std::size_t>(place->second)].wanted = m_view;
    if (m_hurried) order();
}

void ImageryPager::choose(const FrameView& view, const ObjectTerrain& terrain,
                          const ImageTile& tile, int finest, float coarser) {
    const Imagery::Layout& layout = m_imagery->getLayout();
    const double scale = 1 << tile.level;
    const double longitude = layout.west + (tile.column + 0.5) * layout.tile_width / scale;
    const double latitude = layout.north - (tile.row + 0.5) * layout.tile_height / scale;
    const EllipsoidModel earth;
    const dvec2 degree = earth.getDegreeLengths(latitude);
    const double width = layout.tile_width / scale * degree.x;
    const double height = layout.tile_height / scale * degree.y;
    const double altitude =
        getAltitudeAbout(terrain.getGrids().front(), longitude, latitude, height / degree.y);
    const vec3 center(view.toFrame(earth.toWorld({longitude, latitude, altitude})));
    // Ground rises by at most one in two on that scale; the earth bends away.
    const double half = std::hypot(width, height) / 2;
    const auto radius = static_cast<float>(half * 1.12 + half * half / 1.2e7);
    if (!view.sees(center, radius)) return;
    const float distance = view.orthographic ? 1 : std::max(length(center) - radius, 1.0f);
    const auto sample = static_cast<float>(layout.getSpacing(tile.level) * degree.y);
    if (tile.level < finest && sample > coarser * view.pixel_angle * distance &&
        isRefinable(tile)) {
        m_refined.insert(tile);
        for (int i = 0; i < 4; i++)
            choose(view, terrain, getPart(tile, i), finest, coarser);
        return;
    }
    ImageTile there = tile;
    while (there.level > 0 && !m_imagery->has(there))
        there = there.getParent();
    if (!m_imagery->has(there)) return;
    const auto [entry, is_new] = m_wanted.try_emplace(there, distance);
    if (!is_new) entry->second = std::min(entry->second, distance);
}

bool ImageryPager::isRefinable(const ImageTile& tile) const {
    for (int i = 0; i < 4; i++)
        if (m_imagery->has(getPart(tile, i))) return true;
    return false;
}

// ------------------------------------------------------------------ from files to layers

/// The layer of a tile that is wanted by no view for longest, emptied; −1 when this one wants all.
int ImageryPager::makeRoom() {
    const auto oldest = std::ranges::min_element(m_layers, {}, &Layer::wanted);
    if (oldest->wanted == m_view) return -1;
    if (oldest->tile.level >= 0) m_places.erase(oldest->tile);
    return static_cast<int>(oldest - m_layers.begin());
}

/// On either thread.
ImageryPager::Made ImageryPager::read(const std::shared_ptr<const Imagery>& imagery,
                                      const ImageTile& tile) {
    Made made{imagery, tile, {}, false};
    made.is_bare = !imagery->read(tile, made.levels[0]);
    if (made.is_bare) made.levels[0].assign(4 * EDGE * EDGE, 0);
    std::size_t edge = EDGE;
    for (std::size_t level = 1; level < LEVELS; level++, edge /= 2)
        made.levels[level] = shrink(made.levels[level - 1], edge);
    return made;
}

std::optional<ImageryPager::Ready> ImageryPager::lay(Made made) {
    const ImageTile& tile = made.tile;
    if (made.is_bare && m_told.insert(tile).second)
        jLog::error("ImageryPager::lay: tile %d of row %d of level %d of the terrain's imagery is "
                    "damaged or missing: the ground is bare there until it is built anew",
                    tile.column, tile.row, tile.level);
    const int layer = makeRoom();
    if (layer < 0) return {};
    m_layers[static_cast<std::size_t>(layer)] = {tile,
                                                 m_wanted.contains(tile) ? m_view : m_view - 1};
    m_places[tile] = layer;
    return Ready{layer, std::move(made.levels)};
}

std::optional<ImageryPager::Ready> ImageryPager::take() {
    if (!m_hurried) {
        for (const auto& [tile, distance] : m_wanted)
            if (!m_places.contains(tile)) return lay(read(m_imagery, tile));
        return {};
    }
    Made made;
    {
        const std::lock_guard lock(m_mutex);
        if (m_made.empty()) return {};
        made = std::move(m_made.front());
        m_made.erase(m_made.begin());
    }
    m_changed.notify_all();
    if (made.imagery != m_imagery || m_places.contains(made.tile)) return {};
    return lay(std::move(made));
}

/// Has the thread read what this view wants and isn't there: the coarse first, then the near.
void ImageryPager::order() {
    std::vector<Wish> wishes;
    for (const auto& [tile, distance] : m_wanted)
        if (!m_places.contains(tile)) wishes.push_back({tile, distance});
    std::ranges::sort(wishes, [](const Wish& a, const Wish& b) {
        return a.tile.level != b.tile.level ? a.tile.level > b.tile.level : a.distance > b.distance;
    });
    {
        const std::lock_guard lock(m_mutex);
        std::erase_if(wishes, [this](const Wish& wish) {
            return std::ranges::find(m_made, wish.tile, &Made::tile) != m_made.end();
        });
        m_wishes = std::move(wishes);
        if (m_wishes.empty()) return;
    }
    if (start()) {
        m_changed.notify_all();
        return;
    }
    m_hurried = false; // a system without threads to spare makes the view wait
}

bool ImageryPager::start() {
    return program::beginThread(m_thread, [this](const std::stop_token& stop) { run(stop); });
}

void ImageryPager::run(const std::stop_token& stop) {
    std::unique_lock lock(m_mutex);
    while (m_changed.wait(lock, stop, [this] {
        return !m_wishes.empty() && m_made.size() < AHEAD;
    }) && !stop.stop_requested()) {
        const ImageTile tile = m_wishes.back().tile;
        const std::shared_ptr<const Imagery> imagery = m_read_from;
        m_wishes.pop_back();
        lock.unlock();
        Made made = read(imagery, tile);
        lock.lock();
        if (imagery == m_read_from) m_made.push_back(std::move(made));
    }
}

// ------------------------------------------------------------------ patches

int ImageryPager::findFinest(const Imagery::Layout& layout, double width, double height) {
    int level = 0;
    while (level < 24) {
        const double scale = 2 << level;
        const double columns = std::ceil(width / layout.tile_width * scale) + 1;
        const double rows = std::ceil(height / layout.tile_height * scale) + 1;
        if (columns * rows > Patch::MOST) break;
        level++;
    }
    return level;
}

ImageryPager::Patch ImageryPager::getPatch(double west, double north, double east,
                                           double south) const {
    const Imagery::Layout& layout = m_imagery->getLayout();
    const auto place = [&](int level) {
        constexpr double HAIR = 1e-6; // of a tile: what ends at a border doesn't reach beyond it
        const double scale = 1 << level;
        const dvec2 from = layout.toTiles(0, west, north), to = layout.toTiles(0, east, south);
        const auto first = [&](double at) {
            return static_cast<int>(std::floor(std::max(at, 0.0) * scale + HAIR));
        };
        const auto end = [&](double at, int tiles) {
            return static_cast<int>(std::ceil(std::min(at, double(tiles)) * scale - HAIR));
        };
        Patch patch{level, first(from.x), first(from.y), 0, 0, {}};
        patch.columns = std::max(end(to.x, layout.columns) - patch.column, 1);
        patch.rows = std::max(end(to.y, layout.rows) - patch.row, 1);
        return patch;
    };
    // As fine as what is wanted there, unless that is too much for one patch.
    int level = 0;
    for (Patch patch = place(0);; patch = place(++level)) {
        std::vector<ImageTile> refined;
        for (int j = 0; j < patch.rows; j++)
            for (int i = 0; i < patch.columns; i++) {
                const ImageTile tile{level, patch.column + i, patch.row + j};
                if (m_refined.contains(tile)) refined.push_back(tile);
            }
        const Patch finer = place(level + 1);
        if (refined.empty() || finer.columns * finer.rows > Patch::MOST) {
            for (int j = 0; j < patch.rows; j++)
                for (int i = 0; i < patch.columns; i++)
                    patch.cells.push_back(findLayer({level, patch.column + i, patch.row + j}));
            return patch;
        }
    }
}

vec4 ImageryPager::findLayer(const ImageTile& cell) const {
    for (ImageTile tile = cell; tile.level >= 0; tile = tile.getParent()) {
        const auto place = m_places.find(tile);
        if (place == m_places.end()) {
            if (tile.level == 0) break;
            continue;
        }
        const Layer& layer = m_layers[static_cast<std::size_t>(place->second)];
        if (m_hurried || layer.wanted == m_view) {
            const double scale = std::ldexp(1, tile.level - cell.level);
            return {
                static_cast<float>(scale), static_cast<float>(cell.column * scale - tile.column),
                static_cast<float>(cell.row * scale - tile.row), static_cast<float>(place->second)};
        }
        if (tile.level == 0) break;
    }
    return {1, 0, 0, -1};
}

} // namespace ig
