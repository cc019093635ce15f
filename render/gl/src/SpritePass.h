// SPDX-License-Identifier: MIT
#pragma once

#include "GlObjects.h"
#include "render/scene/SpriteList.h"

namespace ig {

/// Draws a frame's sprites, all in one call.
class SpritePass {
public:
    void init();
    /// `depth` of the scene, in which soft particles end softly.
    void draw(const FrameView& view, const std::vector<Sprite>& sprites, const gl::Texture& depth);

private:
    gl::Program m_program;
    gl::VertexArray m_vertex_array;
    gl::Buffer m_buffer;
    gl::Texture m_sheet;
};

} // namespace ig
