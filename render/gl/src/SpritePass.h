// SPDX-License-Identifier: MIT
#pragma once

#include "GlObjects.h"
#include "render/scene/SpriteList.h"

namespace ig {

/// Draws a frame's sprites, all in one call.
class SpritePass {
public:
    void init();
    /// `depth` of the scene, which hides them and in which soft particles end softly: it is read,
    /// and must not be attached to what is drawn into. `lit`: lamps or fires may shine on them.
    void draw(const FrameView& view, const std::vector<Sprite>& sprites, const gl::Texture& depth,
              bool lit);

private:
    gl::Program m_program, m_lit_program;
    gl::VertexArray m_vertex_array;
    gl::Buffer m_buffer;
    gl::Texture m_sheet;
};

} // namespace ig
