// SPDX-License-Identifier: MIT
#pragma once

#include "render/scene/FrameBlock.h"
#include "render/scene/FrameView.h"

namespace ig {

constexpr int NUM_SHADOW_MAPS = 4;
/// Half the edge of each shadow map, m: around the focus a frigate's deck and the sea beside;
/// around the eye what is near, ships and houses in view, and what of them still shows far away.
constexpr double SHADOW_RADII[NUM_SHADOW_MAPS] = {95, 450, 1500, 5000};

/// Where the shadow maps lie: squares across the light, each of the same number of texels, the
/// first around the focus, the others around the eye.
///
/// All is measured along the light's own axes from the earth's middle, so that neither the eye's
/// movement nor its frame changes a map. Its middle goes in steps of many texels, and its axes
/// follow the light only when it has turned visibly: in between a still world's shadows are the
/// very same.
///
/// Each frame: `follow`, then `settle` for each map that is drawn where it is wanted, then `fill`.
class ShadowPlace {
public:
    /// `size`: edge of a map, texels.
    explicit ShadowPlace(int size) : m_size(size) {}

    /// Where the maps are wanted: world positions, and the direction to the light in world axes.
    void follow(const dvec3& eye, const dvec3& focus, const dvec3& light);
    /// The next `follow` is again the first.
    void forget() { *this = ShadowPlace(m_size); }

    /// Whether there was a `follow` before.
    bool isPlaced() const { return m_age >= 0; }
    /// No map shows anything yet from this light: all must be drawn in this frame.
    bool isNew() const { return m_new; }
    /// The light that the maps are drawn for, world.
    const dvec3& getLight() const { return m_axes.getZ(); }
    /// Whether a map is wanted elsewhere than it was drawn.
    bool isElsewhere(int map) const;
    /// From now on the map shows what is drawn with `toMap`.
    void settle(int map) { m_shown[map] = m_wanted[map]; }

    /// The maps, a bit each, into which a sphere (world) may cast a shadow that shows.
    unsigned findMaps(const dvec3& center, double radius) const;
    /// From a mesh's own frame to a map's unit cube.
    mat4 toMap(int map, const dmat4& pose) const;
    /// Middle and half the edge of what a sphere (world) covers of a map, in its texels.
    vec3 toTexels(int map, const dvec3& center, double radius) const;
    /// Edge of a texel, m.
    double getTexel(int map) const { return 2 * SHADOW_RADII[map] / m_size; }
    int getSize() const { return m_size; }

    /// How a place in the view's frame is found in the maps.
    void fill(const FrameView& view, FrameBlock& block) const;

private:
    int m_size;
    dmat3 m_axes; ///< world: right and up in the maps, towards the light
    dvec2 m_wanted[NUM_SHADOW_MAPS], m_shown[NUM_SHADOW_MAPS]; ///< middles
    dvec3 m_focus;                                             ///< along the axes
    double m_level = 0; ///< along the light: the middle of the depth
    int m_age = -1;     ///< frames since the axes followed the light; −1: never
    bool m_new = true;
};

} // namespace ig
