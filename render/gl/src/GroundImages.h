// SPDX-License-Identifier: MIT
#pragma once

#include "GlObjects.h"
#include "render/scene/ImageryPager.h"

namespace ig {

struct TerrainGrid;

/// The imagery of a terrain on the device: one texture whose layers are tiles. Owned by the pass
/// that draws the ground.
class GroundImages {
public:
    /// Lays what this view wants into the layers: all of it, or in a view that is hurried one tile,
    /// some 1.4 MB. The terrain has imagery.
    void prepare(const FrameView& view, const ObjectTerrain& terrain);
    /// Tells the program in use, which has the word IMAGERY, what lies on a chunk of that grid.
    void set(gl::Program& program, const TerrainGrid& grid, int column, int row, int step) const;

    static constexpr int UNIT = gl::UNIT_FIRST_OWN;

private:
    void make();
    void upload(const ImageryPager::Ready& tile) const;

    ImageryPager m_pager;
    gl::Texture m_layers;
    Imagery::Layout m_layout;
};

} // namespace ig
