// SPDX-License-Identifier: MIT
#include "plugins/terrain/Imagery.h"

#include "ImageryMaker.h"
#include "TileCodec.h"
#include "TileFolder.h"

#include <map>

namespace ig {

namespace {

class TileMemory : public Imagery::Store {
public:
    std::string read(const ImageTile& tile) const override {
        const auto found = m_tiles.find(tile);
        return found == m_tiles.end() ? std::string() : found->second;
    }
    bool write(const ImageTile& tile, const std::string& bytes) override {
        m_tiles[tile] = bytes;
        return !bytes.empty();
    }
    bool has(const ImageTile& tile) const override { return m_tiles.contains(tile); }

private:
    std::map<ImageTile, std::string> m_tiles;
};

} // namespace

dvec2 Imagery::Layout::toTiles(int level, double longitude, double latitude) const {
    const double scale = 1 << level;
    return {(longitude - west) / tile_width * scale, (north - latitude) / tile_height * scale};
}

Imagery::Imagery(const Layout& layout, std::set<ImageTile> tiles,
                 std::unique_ptr<const Store> store)
    : m_layout(layout), m_tiles(std::move(tiles)), m_store(std::move(store)) {}

std::unique_ptr<const Imagery> Imagery::open(const std::string& folder, std::string& failure) {
    auto store = std::make_unique<TileFolder>(folder);
    Layout layout;
    std::set<ImageTile> tiles;
    if (store->readIndex(layout, tiles))
        return std::make_unique<Imagery>(layout, std::move(tiles), std::move(store));
    failure = "its imagery is not whole: build it anew";
    return nullptr;
}

std::unique_ptr<const Imagery> Imagery::make(const std::vector<jString>& paths,
                                             const LonLatBox& ground, std::string& failure) {
    ImageryMaker maker;
    if (!maker.open(paths, ground, failure)) return nullptr;
    const std::vector<ImageTile>& tiles = maker.getTiles();
    if (tiles.size() > MOST_IN_MEMORY) {
        failure = "it makes " + std::to_string(tiles.size()) + " tiles, and " +
                  std::to_string(MOST_IN_MEMORY) +
                  " are made at the start: let `visual_channel world build` make the ground once";
        return nullptr;
    }
    auto store = std::make_unique<TileMemory>();
    for (const ImageTile& tile : tiles)
        if (!maker.make(tile, *store, failure)) return nullptr;
    return std::make_unique<Imagery>(
        maker.getLayout(), std::set<ImageTile>(tiles.begin(), tiles.end()), std::move(store));
}

bool Imagery::read(const ImageTile& tile, std::vector<std::uint8_t>& samples) const {
    return decodeTile(m_store->read(tile), samples);
}

} // namespace ig
