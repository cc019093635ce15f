// SPDX-License-Identifier: MIT
#pragma once

#include "GlObjects.h"
#include "plugins/terrain/TerrainGrid.h"
#include "render/scene/FrameView.h"

namespace ig {

class ObjectTerrain;

/// The land as a radar needs it: a texture of the terrain's raster with the slope towards east and
/// north (−1 to 1 over red and green), whether there is land at all (blue), and its altitude as a
/// share of the highest (alpha), made once per terrain. The device averages its levels, so that a
/// coarse picture sees mean slopes.
class RadarLand {
public:
    /// Keeps the texture of the present terrain, null for none, on the device.
    void adopt(const ObjectTerrain* terrain);
    /// Sets the uniforms of shaders/radar.frag that tell where the view's nadir lies in the texture
    /// and how places around it do, for a picture whose texels are that large (m); binds it.
    void bind(gl::Program& program, const FrameView& view, float texel) const;

private:
    void fill(const TerrainGrid& grid);

    gl::Texture m_texture;
    int m_columns = 1, m_rows = 1; ///< texels
    int m_step = 1;                ///< samples of the raster per texel
    TerrainGrid m_made_of;         ///< only to be compared: the terrain may have gone
    const ObjectTerrain* m_terrain = nullptr;
};

} // namespace ig
