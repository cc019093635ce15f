// SPDX-License-Identifier: MIT
#pragma once

#include "GlObjects.h"
#include "render/scene/HillShadows.h"

namespace ig {

/// The map of the hills' shadows on the device.
class HillMap {
public:
    void init();
    /// After each change of the map.
    void upload(const HillShadows& hills);
    void bind() const { gl::bindTexture(gl::UNIT_HILLS, m_texture); }

private:
    gl::Texture m_texture;
};

} // namespace ig
