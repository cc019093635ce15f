// SPDX-License-Identifier: MIT
#include "SpritePass.h"

#include "render/scene/Patterns.h"

#include <cstddef>

namespace ig {

void SpritePass::init() {
    m_program.start("cloudshade.glsl shadow.glsl sprite.vert", "sprite.frag");
    m_lit_program.start("cloudshade.glsl shadow.glsl lights.glsl sprite.vert", "sprite.frag",
                        "LIGHTS");
    m_buffer.create();
    m_vertex_array.create();
    glBindVertexArray(m_vertex_array.getId());
    glBindBuffer(GL_ARRAY_BUFFER, m_buffer.getId());
    constexpr GLsizei STRIDE = sizeof(Sprite);
    const auto attribute = [](GLuint index, GLint count, std::size_t offset) {
        glEnableVertexAttribArray(index);
        glVertexAttribPointer(index, count, GL_FLOAT, GL_FALSE, STRIDE,
                              reinterpret_cast<const void*>(offset));
        glVertexAttribDivisor(index, 1);
    };
    attribute(0, 4, offsetof(Sprite, position));
    attribute(1, 4, offsetof(Sprite, color));
    attribute(2, 4, offsetof(Sprite, turn));
    attribute(3, 4, offsetof(Sprite, stretch));
    const Pattern puffs = makePuffPattern();
    gl::TextureFormat format{GL_RG8, GL_RG, GL_UNSIGNED_BYTE};
    format.filter = GL_LINEAR_MIPMAP_LINEAR;
    gl::makeTexture(m_sheet, puffs.edge, puffs.edge, format, puffs.texels.data());
    glGenerateMipmap(GL_TEXTURE_2D);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAX_LEVEL, 4); // beyond, shapes run into each other
}

void SpritePass::draw(const FrameView& view, const std::vector<Sprite>& sprites,
                      const gl::Texture& depth, bool lit) {
    if (sprites.empty()) return;
    gl::stream(m_vertex_array, m_buffer, std::as_bytes(std::span(sprites)));
    glEnable(GL_BLEND);
    glBlendFunc(GL_ONE, GL_ONE_MINUS_SRC_ALPHA);
    glDisable(GL_DEPTH_TEST);
    gl::Program& program = lit ? m_lit_program : m_program;
    program.use();
    gl::bindTexture(gl::UNIT_FIRST_OWN, depth);
    gl::bindTexture(gl::UNIT_FIRST_OWN + 1, m_sheet);
    program.set("uDepth", gl::UNIT_FIRST_OWN);
    program.set("uSheet", gl::UNIT_FIRST_OWN + 1);
    const bool soft = gl::hasClipControl() && !view.orthographic;
    program.set("uNearFar", vec4(static_cast<float>(view.near), static_cast<float>(view.far),
                                 soft ? 1.0f : 0.0f, 0));
    glDrawArraysInstanced(GL_TRIANGLE_STRIP, 0, 4, static_cast<GLsizei>(sprites.size()));
    glEnable(GL_DEPTH_TEST);
    glDisable(GL_BLEND);
}

} // namespace ig
