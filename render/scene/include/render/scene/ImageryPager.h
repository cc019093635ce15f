// SPDX-License-Identifier: MIT
#pragma once

#include "plugins/terrain/Imagery.h"
#include "render/scene/FrameView.h"
#include "render/scene/ShaderConstants.h"

#include <array>
#include <condition_variable>
#include <map>
#include <mutex>
#include <optional>
#include <thread>

namespace ig {

class ObjectTerrain;

/// Chooses the tiles of a terrain's imagery that a view needs, has them read, and tells which of
/// the device's layers shows what. Tiles are as fine as the picture asks for where they lie, and as
/// the layers allow; coarser ones stand in for those that aren't there yet. In a view that is
/// hurried a thread of its own reads them, which begins with the first of these and gets no
/// signals. Owned by the pass that draws the ground; all operations are called on its thread, in
/// each view in the order given here.
class ImageryPager {
public:
    static constexpr int LAYERS = 44; ///< of the device: 59 MiB with their mipmaps
    static constexpr int LEVELS = 5;  ///< of a layer's mipmaps: 512² to 32²

    ImageryPager() = default;
    ImageryPager(const ImageryPager&) = delete;
    ImageryPager& operator=(const ImageryPager&) = delete;

    /// The tiles that this view wants of the terrain's imagery, which there must be; `finest` is
    /// the finest level that patches can show.
    void want(const FrameView& view, const ObjectTerrain& terrain, int finest);

    /// A tile's samples and their mipmaps: four bytes a texel, colours times coverage.
    using Levels = std::array<std::vector<std::uint8_t>, LEVELS>;
    struct Ready {
        int layer;
        Levels levels;
    };
    /// A tile that is to be laid into a layer now. Hurried: one that has been read meanwhile, if
    /// any; else the next of those that the view lacks, until all are there.
    std::optional<Ready> take();

    /// What is drawn on a rectangle of the ground: cells as large as tiles of one level, each with
    /// the layer of its tile or of a coarser one that holds it.
    struct Patch {
        static constexpr int MOST = PATCH_CELLS;
        int level = 0, column = 0, row = 0; ///< of the cell in the north-west
        int columns = 0, rows = 0;
        /// By row from the north: from a place in the cell, 0 to 1 each way, to one in the layer:
        /// scale, offset; w: the layer, −1 where there is nothing.
        std::vector<vec4> cells;
    };
    Patch getPatch(double west, double north, double east, double south) const;

    /// The finest level of which no more than `Patch::MOST` cells lie on a square of that many
    /// degrees of longitude and latitude, wherever it lies.
    static int findFinest(const Imagery::Layout& layout, double width, double height);

private:
    struct Layer {
        ImageTile tile{-1, 0, 0}; ///< level −1: none
        int wanted = -1;          ///< last view that did
    };
    struct Wish {
        ImageTile tile;
        float distance;
    };
    struct Made {
        std::shared_ptr<const Imagery> imagery;
        ImageTile tile;
        Levels levels;
        bool is_bare; ///< it could not be read
    };

    void adopt(const std::shared_ptr<const Imagery>& imagery);
    void choose(const FrameView& view, const ObjectTerrain& terrain, const ImageTile& tile,
                int finest, float coarser);
    bool isRefinable(const ImageTile& tile) const;
    vec4 findLayer(const ImageTile& cell) const;
    int makeRoom();
    std::optional<Ready> lay(Made made);
    static Made read(const std::shared_ptr<const Imagery>& imagery, const ImageTile& tile);
    void order();
    bool start();
    void run(const std::stop_token& stop);

    std::shared_ptr<const Imagery> m_imagery;
    std::vector<Layer> m_layers;
    std::set<ImageTile> m_refined;       ///< those whose parts are wanted in their place
    std::map<ImageTile, float> m_wanted; ///< and how far they are, m
    std::map<ImageTile, int> m_places;   ///< layer of each tile that has one
    std::set<ImageTile> m_told;          ///< that they can't be read
    bool m_hurried = false;
    int m_view = 0; ///< counts views

    std::mutex m_mutex; ///< of what follows
    std::condition_variable_any m_changed;
    std::shared_ptr<const Imagery> m_read_from;
    std::vector<Wish> m_wishes; ///< the most urgent last
    std::vector<Made> m_made;
    std::jthread m_thread; ///< ends first
};

} // namespace ig
