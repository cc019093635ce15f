// SPDX-License-Identifier: MIT
#pragma once

#include "GlObjects.h"
#include "plugins/terrain/ObjectTerrain.h"
#include "render/scene/FrameView.h"

#include <cstdint>
#include <unordered_map>
#include <vector>

namespace ig {

class NodeField;
class LightList;
class World;

/// Grass around an eye near the ground: tufts of five blades that stand where the open ground of
/// the terrain is level and dry, thin out with distance, and lean away from the nearest field of
/// the scene as it tells. A field's parameters are how far blades below it lean (1: flat), how much
/// they shiver, and how much they are pressed down; all die away around it and with its height.
///
/// The ground is divided into squares whose tufts are placed when the square comes near, a few
/// squares a frame, and forgotten when it is far.
class GrassPass {
public:
    void init();
    /// Places tufts that are missing, draws those in view. After the opaque passes. `fields` are
    /// the scene's; there may be none.
    void draw(const FrameView& view, const World& world, const ObjectTerrain& terrain,
              const std::vector<const NodeField*>& fields, const LightList& lights);

private:
    struct Tuft {
        vec3 place;   ///< in the square's frame
        float height; ///< of the blades, m
        float chance; ///< 0 to 1: turns, tones and thins out
    };
    struct Square {
        dmat4 frame; ///< of the middle, on the ellipsoid, world
        vec3 middle; ///< on the ground, in that frame
        dvec2 noise; ///< place of the middle in the ground's noise, m
        std::vector<Tuft> tufts;
        int last_used = 0;
    };
    struct Instance {
        vec4 place; ///< E; w: height, m
        vec4 look;  ///< place in the noise, m; chance
    };

    void adopt(const ObjectTerrain& terrain);
    void gather(const FrameView& view, const World& world, const ObjectTerrain& terrain);
    void visit(const FrameView& view, const World& world, const ObjectTerrain& terrain,
               std::int32_t column, std::int32_t row);
    void plant(Square& square, const World& world, const ObjectTerrain& terrain,
               std::int32_t column, std::int32_t row) const;
    void addInstances(const FrameView& view, const Square& square);
    static void setField(gl::Program& program, const FrameView& view,
                         const std::vector<const NodeField*>& fields);
    void purge();

    gl::Program m_program, m_lit_program; ///< the other one is for lamps or fires near the eye
    gl::VertexArray m_vertex_array;
    gl::Buffer m_buffer;
    std::unordered_map<std::uint64_t, Square> m_squares;
    std::vector<Instance> m_instances;
    std::vector<TerrainGrid> m_made_of; ///< whose squares these are; only to be compared
    int m_frame = 0, m_planted = 0;
};

} // namespace ig
