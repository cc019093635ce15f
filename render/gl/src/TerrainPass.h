// SPDX-License-Identifier: MIT
#pragma once

#include "GlObjects.h"
#include "plugins/terrain/ObjectTerrain.h"
#include "render/scene/FrameView.h"
#include "render/scene/LightList.h"

#include <unordered_map>
#include <vector>

namespace ig {

/// Draws the ground. A quadtree over the samples of the terrain: a node is a square of 32 × 32
/// cells, of every sample at the leaves, of every second, fourth, ... above. Near the eye nodes are
/// split until their cells are small in the picture; there the drawn triangles are the very ones
/// that queries meet. Skirts hide the gaps between neighbours of different detail.
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
        dmat4 frame; ///< of the chunk's middle, world
        dvec2 patch; ///< place of the middle in the noise, m
        int last_drawn = 0;
    };
    struct Square { ///< of the quadtree
        int column, row, step;
    };
    struct Extent {
        float lowest, highest; ///< altitude; lowest above highest: no data
    };

    void adopt(const TerrainGrid& grid);
    Extent measure(const Square& square);
    void use(gl::Program& program);
    void visit(const FrameView& view, const TerrainGrid& grid, const Square& square);
    void drawChunk(const FrameView& view, const TerrainGrid& grid, const Square& square,
                   gl::Program& program);
    void fill(Chunk& chunk, const TerrainGrid& grid, const Square& square);
    void purge();
    static std::uint64_t key(const Square& square);

    /// The second is for chunks that lamps or fires light, the third for hills that cast shadows,
    /// the last for those of which no pixel shows a grain.
    gl::Program m_program, m_lit_program, m_hilly_program, m_far_program;
    bool m_hills = false;
    gl::Program* m_used = nullptr;
    std::unordered_map<std::uint64_t, Chunk> m_chunks;
    std::unordered_map<std::uint64_t, Extent> m_extents;
    TerrainGrid m_made_of; ///< whose chunks these are; only to be compared
    const TerrainGrid* m_grid = nullptr;
    const Material* m_material = nullptr; ///< of the ground, may be null
    const LightList* m_lights = nullptr;  ///< of the frame
    int m_frame = 0;
};

} // namespace ig
