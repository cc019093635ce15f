// SPDX-License-Identifier: MIT
#include "SceneryPass.h"

#include "plugins/terrain/ObjectScenery.h"
#include "render/scene/CardPictures.h"

namespace ig {

void SceneryPass::init() {
    constexpr gl::Sampler PICTURES{"uPictures", gl::UNIT_FIRST_OWN};
    m_program.start("cloudshade.glsl shadow.glsl card.vert", "card.frag", {}, {PICTURES});
    m_lit_program.start("cloudshade.glsl shadow.glsl lights.glsl card.vert", "card.frag", "LIGHTS",
                        {PICTURES});
    m_buffer.create();
    m_vertex_array.create();
    glBindVertexArray(m_vertex_array.getId());
    glBindBuffer(GL_ARRAY_BUFFER, m_buffer.getId());
    for (GLuint i = 0; i < 2; i++) {
        glEnableVertexAttribArray(i);
        glVertexAttribPointer(i, 4, GL_FLOAT, GL_FALSE, sizeof(CardItem),
                              reinterpret_cast<const void*>(i * sizeof(vec4)));
        glVertexAttribDivisor(i, 1);
    }
}

void SceneryPass::makePictures(const ObjectScenery& scenery) {
    m_made_of = scenery.getID();
    const CardPictures pictures = CardPictures::make(scenery.getKinds());
    m_pictures.create();
    glActiveTexture(GL_TEXTURE0 + gl::UNIT_FIRST_OWN);
    glBindTexture(GL_TEXTURE_2D_ARRAY, m_pictures.getId());
    for (int level = 0; level < CardPictures::LEVELS; level++)
        glTexImage3D(GL_TEXTURE_2D_ARRAY, level, GL_RGBA8, CardPictures::EDGE >> level,
                     CardPictures::EDGE >> level, pictures.kinds * CardPictures::TILES, 0, GL_RGBA,
                     GL_UNSIGNED_BYTE, pictures.levels[static_cast<std::size_t>(level)].data());
    glTexParameteri(GL_TEXTURE_2D_ARRAY, GL_TEXTURE_MAX_LEVEL, CardPictures::LEVELS - 1);
    glTexParameteri(GL_TEXTURE_2D_ARRAY, GL_TEXTURE_MIN_FILTER, GL_LINEAR_MIPMAP_NEAREST);
    glTexParameteri(GL_TEXTURE_2D_ARRAY, GL_TEXTURE_WRAP_S, GL_CLAMP_TO_EDGE);
    glTexParameteri(GL_TEXTURE_2D_ARRAY, GL_TEXTURE_WRAP_T, GL_CLAMP_TO_EDGE);
}

void SceneryPass::draw(const ObjectScenery& scenery, const std::vector<CardItem>& cards, bool lit) {
    if (cards.empty()) return;
    if (m_made_of != scenery.getID()) makePictures(scenery);
    glActiveTexture(GL_TEXTURE0 + gl::UNIT_FIRST_OWN);
    glBindTexture(GL_TEXTURE_2D_ARRAY, m_pictures.getId());
    gl::stream(m_vertex_array, m_buffer, std::as_bytes(std::span(cards)));
    (lit ? m_lit_program : m_program).use();
    glDrawArraysInstanced(GL_TRIANGLE_STRIP, 0, 4, static_cast<GLsizei>(cards.size()));
}

} // namespace ig
