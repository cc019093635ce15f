// SPDX-License-Identifier: MIT
#pragma once

#include "GlObjects.h"
#include "RadarLand.h"
#include "render/scene/FrameView.h"
#include "render/scene/RadarHorizon.h"

#include <vector>

namespace ig {

class Node;
class ObjectMesh;
class ObjectOcean;
class ObjectTerrain;
class World;
struct FrameInfo;

/// Vision mode 3: what a weather radar at the camera's place sees, in the camera's projection and
/// in shades of one green, black without any echo. Nothing of the scene itself is drawn; one pass
/// over the picture finds for each texel the place on earth and what returns from there:
/// - land, by its slope: what rises away from the radar faces it;
/// - sea clutter near the radar, the farther out and the stronger the higher the waves, stronger
///   against them;
/// - precipitation in four steps, from a field of cells that belongs to the place on earth and
///   drifts with the wind. How much of it is wet, and how strong, is the frame's rain, snow (the
///   weakest) and hail (the strongest).
///
/// Then what stands up from the ground is laid over it, brighter the more it shows to the side:
/// each mesh of some size, as the rectangle of its bounds, never smaller than a few texels, so that
/// a ship is seen at any range. The frame's focus, which carries the radar, is left out.
///
/// What lies behind hills or beyond the horizon (`RadarHorizon`) returns nothing, but for
/// precipitation, which stands high.
///
/// The gain multiplies every echo before it is cut off at full brightness.
class RadarPass {
public:
    void init();
    /// Onto the bound framebuffer, whose viewport is set, and within the scissor. `sea` stands in
    /// for the world's unless it is null.
    void draw(const World& world, const FrameView& view, const FrameInfo& frame,
              const gl::Texture& noise, float gain, const ObjectOcean* sea);
    /// The next picture is again the first.
    void forget() { m_drawn = {}; }

private:
    struct Corner { ///< of a target's rectangle
        vec3 place; ///< x, y, w in clip space
        float strength;
    };

    void findGround(const Node& node);
    void updateHorizon(const FrameView& view);
    void gather(const Node& node, const FrameInfo& frame, const FrameView& view);
    void addTarget(const ObjectMesh& object, const FrameView& view);
    float getShareSeen(const vec3& center, float height, const FrameView& view) const;
    void addRectangle(const vec3& center, const vec3& x, const vec3& y, float strength,
                      const FrameView& view);
    void moveCells(const FrameView& view, const FrameInfo& frame);
    void drawGround(const FrameView& view, const FrameInfo& frame, const gl::Texture& noise,
                    float gain);
    void setSea(float texel);
    void setCells(const FrameInfo& frame);
    void drawTargets(float gain);

    gl::Program m_ground, m_target;
    gl::VertexArray m_empty, m_corner_array;
    gl::Buffer m_corner_buffer;
    RadarLand m_land;
    RadarHorizon m_horizon;
    gl::Texture m_horizon_texture;

    const ObjectTerrain* m_terrain = nullptr; ///< of the present world
    const ObjectOcean* m_ocean = nullptr;     ///< of the present world
    std::vector<Corner> m_corners;

    struct Drawn {                   ///< what a picture knows of those before
        double cells_latitude = 1e9; ///< where the plane of the cells is true, degrees
        dvec2 cells_place;           ///< of the radar in the drifting plane, m
        dvec2 drift;                 ///< of the cells since the first picture, m east and north
        double drift_time = 0;       ///< scene time that the drift stands at, s
        int pictures = 0;
    };
    Drawn m_drawn;
};

} // namespace ig
