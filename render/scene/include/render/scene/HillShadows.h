// SPDX-License-Identifier: MIT
#pragma once

#include "plugins/terrain/TerrainGrid.h"
#include "render/scene/FrameBlock.h"
#include "render/scene/FrameView.h"
#include "render/scene/PictureRect.h"

#include <span>
#include <vector>

namespace ig {

/// How far up the shadow of the hills reaches, at each place of a map: what is below lies in it.
/// One number a place serves ground, sea, ships and whatever flies, at any distance.
///
/// The map lies level over the terrain's middle and is a quarter wider on each side, since shadows
/// fall onto the sea. Height is measured there too, straight up from that plane, so that light goes
/// in straight lines and the earth's bend counts by itself. It is swept once, away from the light:
/// a place's shadow is the higher of what stands a step towards the light and of that place's
/// own shadow, lowered by the light's fall over the step. The mean of neighbours that a step needs
/// softens a shadow with its length, as the sun's width does.
class HillShadows {
public:
    static constexpr int SIZE = 512;      ///< texels along an edge
    static constexpr float NONE = -10000; ///< m: no shadow

    /// Sweeps anew for another light (world; one that holds still from frame to frame while it
    /// turns invisibly) or another terrain; no grids: none. True when the map has changed.
    bool update(TerrainGrids grids, const dvec3& light);
    /// Whether there is any shadow.
    bool isAny() const { return m_any; }
    /// The map, rows from the south; m.
    std::span<const float> getMap() const { return m_shadow; }
    /// How a place in the view's frame is found in the map; once a frame.
    void fill(const FrameView& view, FrameBlock& block);
    /// How far the shadow reaches above a place of that frame, m; negative: the place is above it.
    float getAbove(const vec3& place) const;
    /// The part of the picture where it may be seen to lie on the sea, whose waves are so high, m.
    PictureRect findOnSea(const FrameView& view, float crest) const;

private:
    void layOut(const TerrainGrid& grid);
    void sweep(const dvec3& light);
    void note(std::size_t place, float shadow);

    TerrainGrid m_made_of; ///< only to be compared: the terrain may have gone
    dvec3 m_light;         ///< that it was swept for
    dmat4 m_frame;         ///< of the map's middle, world
    mat4 m_to_map;         ///< from the view's frame, as in the frame block
    double m_half = 1;     ///< half the edge, m
    vec3 m_sea_low,
        m_sea_high;       ///< what lies in shadow of the sea, m in the map; low above high: none
    float m_fall = 1;     ///< m that a shadow falls from texel to texel
    float m_softness = 1; ///< m: height over which light comes back
    bool m_any = false;
    std::vector<float> m_ground, m_shadow; ///< m above the plane; `NONE` without land
};

} // namespace ig
