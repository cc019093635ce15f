// SPDX-License-Identifier: MIT
#pragma once

#include "ig/base/jString.h"
#include "ig/math/vec.h"

#include <cstdint>
#include <memory>
#include <set>
#include <string>
#include <vector>

namespace ig {

struct LonLatBox;

/// One of the squares that the pictures of the ground are cut into.
struct ImageTile {
    int level = 0; ///< 0: the coarsest; each level has twice as many along each edge as the last
    int column = 0, row = 0; ///< from the west and from the north

    ImageTile getParent() const { return {level - 1, column / 2, row / 2}; }
    auto operator<=>(const ImageTile&) const = default;
};

/// Pictures taken from above, to be laid over the ground: a pyramid of tiles of the same number of
/// samples, each level twice as fine as the last. A tile reaches from its first sample to its last,
/// which is the neighbour's first, so that no seam shows between tiles of a level. Where only
/// coarse pictures are, the pyramid ends early. Owned by the terrain; immutable, so that any thread
/// may read.
class Imagery {
public:
    static constexpr int EDGE = 512; ///< samples along a tile

    /// Where the tiles lie: level 0 covers a box of longitude and latitude, degrees.
    struct Layout {
        double west = 0, north = 0;
        double tile_width = 0, tile_height = 0; ///< of a tile of level 0
        int columns = 0, rows = 0;              ///< tiles of level 0

        /// In tiles of a level from the north-western corner; the longitude on the same side of
        /// 180 as `west`, or run on from there.
        dvec2 toTiles(int level, double longitude, double latitude) const;
        /// Degrees of latitude between two samples of a level.
        double getSpacing(int level) const { return tile_height / (EDGE - 1) / (1 << level); }
    };
    /// Where the tiles' bytes are.
    class Store {
    public:
        virtual ~Store() = default;
        /// Empty when there are none.
        virtual std::string read(const ImageTile& tile) const = 0;
        virtual bool write(const ImageTile& tile, const std::string& bytes) = 0;
        virtual bool has(const ImageTile& tile) const = 0;
    };

    Imagery(const Layout& layout, std::set<ImageTile> tiles, std::unique_ptr<const Store> store);
    /// What a built world's folder holds. Null, with the reason in `failure`, when it is not whole.
    static std::unique_ptr<const Imagery> open(const std::string& folder, std::string& failure);
    /// Made at once from pictures, from coarse to fine, and kept in memory: at most
    /// `MOST_IN_MEMORY` tiles. Null with the reason in `failure`.
    static std::unique_ptr<const Imagery> make(const std::vector<jString>& paths,
                                               const LonLatBox& ground, std::string& failure);
    static constexpr int MOST_IN_MEMORY = 400; ///< as JPEG some 25 MB, made in some seconds

    const Layout& getLayout() const { return m_layout; }
    bool has(const ImageTile& tile) const { return m_tiles.contains(tile); }
    /// The tile's samples from the north-west, red, green, blue (sRGB, 0 where there is no picture)
    /// and 255 where there is one, 0 elsewhere. False when its bytes are damaged.
    bool read(const ImageTile& tile, std::vector<std::uint8_t>& samples) const;

private:
    Layout m_layout;
    std::set<ImageTile> m_tiles;
    std::unique_ptr<const Store> m_store;
};

} // namespace ig
