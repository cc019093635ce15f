// SPDX-License-Identifier: MIT
#pragma once

#include "GlObjects.h"
#include "GroundImages.h"
#include "plugins/terrain/ObjectTerrain.h"
#include "render/scene/FrameView.h"
#include "render/scene/LightList.h"
#include "render/scene/TerrainMaker.h"

#include <list>
#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

namespace ig {

/// Draws the ground. A quadtree over the samples of the terrain, of which each node is a
/// `TerrainSquare`. Near the eye nodes are split until their cells are small in the picture; there
/// the drawn triangles are the very ones that queries meet.
///
/// In a view that is hurried, a thread makes the meshes, and a node stands in for parts that aren't
/// there yet. Only what lies below the eye is never waited for: there, drawn ground is the ground
/// that queries meet.
class TerrainPass {
public:
    /// `hills`: these cast shadows.
    void draw(const FrameView& view, const ObjectTerrain& terrain, const LightList& lights,
              bool hills);
    /// Place in the noise that colours the ground, m, of a geodetic place.
    static dvec2 placeInNoise(const TerrainGrid& grid, double longitude, double latitude);
    static constexpr float SHORE_HEIGHT = 3.5f; ///< where the beach ends, unless the material tells
    static vec3 readTurf(const Material* material); ///< colour of the grass

private:
    struct Chunk {
        gl::VertexArray vertex_array;
        gl::Buffer vertices, indices, cover; ///< the last: LandShares, with a land cover
        int num_indices = 0;
        std::uint64_t cut = 0; ///< which finer grids' cells were left out
        dmat4 frame;           ///< of the chunk's middle, world
        dvec2 patch;           ///< place of the middle in the noise, m
        int last_drawn = 0;
    };
    struct Layer { ///< what is kept of a grid
        TerrainGrid grid;
        std::unordered_map<std::uint64_t, Chunk> chunks;
        TerrainMaker maker;
        bool is_shown = false; ///< in the view being drawn
    };
    /// How much of a square finer grids show in this view.
    struct Cover {
        bool is_whole = false;
        std::uint64_t cut = 0; ///< bits of those that show part of it
    };
    /// How a square shows in a view.
    struct Sight {
        bool is_ground = false; ///< within the grid, above the sea's bed, of no finer grid
        bool is_seen = false;
        bool is_coarse = false; ///< its cells are too large in the picture, and can be split
        bool is_soon = false;   ///< they will be when the eye comes somewhat nearer
        std::uint64_t cut = 0;  ///< see `Cover`
        vec3 center;            ///< E
        float radius = 0, distance = 0;
    };

    void adopt(const ObjectTerrain& terrain);
    bool isShown(const FrameView& view, const Layer& layer) const;
    static TerrainSquare getRoot(const TerrainGrid& grid);
    Cover getCover(const Layer& layer, const TerrainSquare& square) const;
    std::vector<TerrainGrid::Cells> getReplaced(std::uint64_t cut) const;
    Sight look(const FrameView& view, const Layer& layer, const TerrainSquare& square) const;
    void dress();
    void use(gl::Program& program);
    void take(Layer& layer);
    void wishFor(const FrameView& view, Layer& layer, const TerrainSquare& square,
                 const Sight& sight);
    void visit(const FrameView& view, Layer& layer, const TerrainSquare& square,
               const Sight& sight);
    bool canSplit(const FrameView& view, Layer& layer, const TerrainSquare& square);
    bool canShow(const FrameView& view, const Layer& layer, const TerrainSquare& square) const;
    static bool isBelow(const FrameView& view, const TerrainGrid& grid,
                        const TerrainSquare& square);
    void drawChunk(const FrameView& view, Layer& layer, const TerrainSquare& square,
                   std::uint64_t cut, gl::Program& program);
    void upload(Chunk& chunk, const TerrainGrid& grid, const TerrainMaker::Made& made) const;
    static void addCover(Chunk& chunk, const std::vector<LandShares>& shares);
    void purge();

    /// The second is for chunks that lamps or fires light, the third for hills that cast shadows,
    /// the last for those of which no pixel shows a grain.
    struct Programs {
        gl::Program plain, lit, hilly, far;

        void start(const std::string& words);
        bool finish();
    };
    Programs m_programs;
    std::optional<std::string> m_words; ///< of the land cover and imagery that they are for
    GroundImages m_images;
    const ObjectTerrain* m_terrain = nullptr; ///< of the view
    bool m_hills = false;
    gl::Program* m_used = nullptr;
    std::list<Layer> m_layers; ///< of the terrain's grids; samples are read while it is drawn
    std::shared_ptr<const LandCover> m_cover; ///< on their chunks
    const Material* m_material = nullptr;     ///< of the ground, may be null
    const LightList* m_lights = nullptr;      ///< of the frame
    int m_frame = 0;
};

} // namespace ig
