// SPDX-License-Identifier: MIT
#pragma once

#include "GlObjects.h"
#include "plugins/terrain/ObjectTerrain.h"
#include "render/scene/FrameView.h"
#include "render/scene/LightList.h"

#include <unordered_map>
#include <vector>

namespace ig {

/// Draws the ground. A quadtree over the samples of each of the terrain's grids: a node is a square
/// of 32 × 32 cells, of every sample at the leaves, of every second, fourth, ... above. Near the
/// eye nodes are split until their cells are small in the picture; there the drawn triangles are
/// the very ones that queries meet. Skirts hide the gaps between neighbours of different detail.
/// Where a coarser grid's own cells would be large in the picture, the finer one is drawn in their
/// place; elsewhere the coarser one is what is seen of both.
///
/// A chunk's vertices are floats in the frame of the chunk's own middle, so that they are exact
/// wherever the chunk lies.
class TerrainPass {
public:
    void init();
    /// `hills`: these cast shadows.
    void draw(const FrameView& view, const ObjectTerrain& terrain, const LightList& lights,
              bool hills);
    /// Place in the noise that colours the ground, m, of a geodetic place.
    static dvec2 placeInNoise(const TerrainGrid& grid, double longitude, double latitude);
    static constexpr float SHORE_HEIGHT = 3.5f; ///< where the beach ends, unless the material tells
    static vec3 readTurf(const Material* material); ///< colour of the grass

private:
    static constexpr int CELLS = 32;
    struct Chunk {
        gl::VertexArray vertex_array;
        gl::Buffer vertices, indices;
        int num_indices = 0;
        std::uint64_t cut = 0; ///< which finer grids' cells were left out
        dmat4 frame;           ///< of the chunk's middle, world
        dvec2 patch;           ///< place of the middle in the noise, m
        int last_drawn = 0;
    };
    struct Square { ///< of the quadtree
        int column, row, step;
    };
    struct Extent {
        float lowest, highest; ///< altitude; lowest above highest: no data
    };

    struct Layer { ///< what is kept of a grid
        TerrainGrid grid;
        std::unordered_map<std::uint64_t, Chunk> chunks;
        std::unordered_map<std::uint64_t, Extent> extents;
        bool is_shown = false; ///< in the view being drawn
    };
    /// How much of a square finer grids show in this view.
    struct Cover {
        bool is_whole = false;
        std::uint64_t cut = 0; ///< bits of those that show part of it
    };

    void adopt(TerrainGrids grids);
    bool isShown(const FrameView& view, Layer& layer);
    static Square getRoot(const TerrainGrid& grid);
    Cover getCover(const Layer& layer, const Square& square) const;
    bool isReplaced(std::uint64_t cut, int column, int row) const;
    static Extent measure(Layer& layer, const Square& square);
    void use(gl::Program& program);
    void visit(const FrameView& view, Layer& layer, const Square& square);
    void drawChunk(const FrameView& view, Layer& layer, const Square& square, gl::Program& program);
    void fill(Chunk& chunk, const TerrainGrid& grid, const Square& square);
    void purge();
    static std::uint64_t key(const Square& square);

    /// The second is for chunks that lamps or fires light, the third for hills that cast shadows,
    /// the last for those of which no pixel shows a grain.
    gl::Program m_program, m_lit_program, m_hilly_program, m_far_program;
    bool m_hills = false;
    gl::Program* m_used = nullptr;
    std::vector<Layer> m_layers; ///< of the terrain's grids; samples are read while it is drawn
    const Material* m_material = nullptr; ///< of the ground, may be null
    const LightList* m_lights = nullptr;  ///< of the frame
    int m_frame = 0;
};

} // namespace ig
