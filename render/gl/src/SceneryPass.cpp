// SPDX-License-Identifier: MIT
#include "SceneryPass.h"

#include "SkyPass.h"
#include "plugins/terrain/ObjectScenery.h"
#include "render/scene/CardPictures.h"
#include "render/scene/HillShadows.h"

#include <algorithm>
#include <cmath>

namespace ig {

namespace {

/// As common.glsl has it.
float getClearness(const vec3& p, const FrameBlock& block) {
    const float k = p.z * block.air.x;
    const float mean = std::abs(k) > 1e-3f ? (1 - std::exp(-k)) / k : 1;
    return std::exp(-block.ambient.w * block.air.y * mean * length(p));
}

} // namespace

void SceneryPass::init() {
    constexpr gl::Sampler PICTURES{"uPictures", gl::UNIT_FIRST_OWN};
    m_program.start("card.vert", "card.frag", {}, {PICTURES});
    m_lit_program.start("lights.glsl card.vert", "card.frag", "LIGHTS", {PICTURES});
    m_buffer.create();
    m_vertex_array.create();
    glBindVertexArray(m_vertex_array.getId());
    glBindBuffer(GL_ARRAY_BUFFER, m_buffer.getId());
    for (GLuint i = 0; i < 4; i++) {
        glEnableVertexAttribArray(i);
        glVertexAttribPointer(i, i < 3 ? 4 : 1, GL_FLOAT, GL_FALSE, sizeof(Instance),
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

void SceneryPass::draw(const ObjectScenery& scenery, const SceneryList& list,
                       const FrameBlock& block, const SkyPass& sky, const HillShadows& hills,
                       bool lit) {
    if (list.cards.empty()) return;
    if (m_made_of != scenery.getID()) makePictures(scenery);
    m_instances.clear();
    for (const CardGroup& group : list.groups) {
        const vec3& p = group.middle;
        const float shaded = std::clamp(hills.getAbove(p) * block.hill_shade.x, 0.0f, 1.0f) *
                             block.light_direction.w;
        const float sun = sky.getCloudShade(p) * (1 - shaded);
        const vec4 haze{sky.getHaze({p.x, p.y}), getClearness(p, block)};
        for (int i = group.first; i < group.first + group.count; i++)
            m_instances.push_back({list.cards[static_cast<std::size_t>(i)], haze, sun});
    }
    glActiveTexture(GL_TEXTURE0 + gl::UNIT_FIRST_OWN);
    glBindTexture(GL_TEXTURE_2D_ARRAY, m_pictures.getId());
    gl::stream(m_vertex_array, m_buffer, std::as_bytes(std::span(m_instances)));
    (lit ? m_lit_program : m_program).use();
    glDrawArraysInstanced(GL_TRIANGLE_STRIP, 0, 4, static_cast<GLsizei>(m_instances.size()));
}

} // namespace ig
