// SPDX-License-Identifier: MIT
#pragma once

#include "LonLatRaster.h"
#include "plugins/terrain/Imagery.h"

namespace ig {

/// Cuts pictures of the ground into tiles. The finest tiles are drawn from the pictures, coarse
/// ones first; the others are made from the four finer ones below them, and from the pictures that
/// are no finer than they. For one thread.
class ImageryMaker {
public:
    /// `paths` from coarse to fine; `ground` is what the tiles of level 0 cover. False with the
    /// reason in `failure`: no such file, not georeferenced, not of 8 bits a channel.
    bool open(const std::vector<jString>& paths, const LonLatBox& ground, std::string& failure);

    const Imagery::Layout& getLayout() const { return m_layout; }
    /// In the order in which they are to be made.
    const std::vector<ImageTile>& getTiles() const { return m_tiles; }
    /// False with the reason in `failure`.
    bool make(const ImageTile& tile, Imagery::Store& store, std::string& failure);

private:
    struct Source {
        jString path;
        LonLatRaster raster;
        int finest_level;
    };
    static Dataset openPicture(const jString& path, std::string& failure);
    void layOut(const LonLatBox& ground);
    void listTiles();
    LonLatPixels getPixels(const ImageTile& tile) const;
    bool addFiner(const ImageTile& tile, const Imagery::Store& store,
                  std::vector<std::uint8_t>& samples) const;

    Imagery::Layout m_layout;
    std::vector<Source> m_sources;
    std::vector<ImageTile> m_tiles;
    std::set<ImageTile> m_known; ///< the same
};

} // namespace ig
