// SPDX-License-Identifier: MIT
#pragma once

#include "GlObjects.h"
#include "render/scene/LightGrid.h"
#include "render/scene/LightList.h"

namespace ig {

/// The frame's local lights on the device, for the programs whose words include LIGHTS
/// (shaders/lights.glsl). A pass asks the list whether any light comes near what it draws, and uses
/// such a program only then.
class LightTable {
public:
    void init();
    /// Before the draws; while there are no lights nothing goes to the device.
    void upload(const FrameView& view, const LightList& list);

private:
    LightGrid m_grid;
    bool m_any = false; ///< lights on the device
    gl::Buffer m_block, m_cells;
    gl::Texture m_texture; ///< shows the cells to the shaders
};

} // namespace ig
