// SPDX-License-Identifier: MIT
#include "SpritePass.h"

#include "SceneList.h"
#include "ig/scene/ParticleSystem.h"
#include "ig/scene/SceneObjects.h"

#include <algorithm>
#include <cmath>
#include <cstddef>

using namespace ig;

namespace {
constexpr float LAMP_SIZE = 0.55f; ///< half the edge of a lamp's glow, m
constexpr float LAMP_LIGHT = 9;    ///< at density 1
} // namespace

bool SpritePass::init() {
    if (!m_program.build("sprite.vert", "sprite.frag") ||
        !m_splat.build("splat.vert", "splat.frag"))
        return false;
    m_buffer.create();
    m_vertex_array.create();
    glBindVertexArray(m_vertex_array.id());
    glBindBuffer(GL_ARRAY_BUFFER, m_buffer.id());
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
    attribute(3, 3, offsetof(Sprite, stretch));
    gl::TextureFormat format;
    format.filter = GL_LINEAR_MIPMAP_LINEAR;
    gl::makeTexture(m_effects, MAP_SIZE, MAP_SIZE, format);
    glGenerateMipmap(GL_TEXTURE_2D);
    m_effects_target.create();
    glBindFramebuffer(GL_FRAMEBUFFER, m_effects_target.id());
    glFramebufferTexture2D(GL_FRAMEBUFFER, GL_COLOR_ATTACHMENT0, GL_TEXTURE_2D, m_effects.id(), 0);
    m_effects_dirty = true;
    return true;
}

void SpritePass::release() {
    m_program.destroy();
    m_splat.destroy();
    m_buffer.destroy();
    m_vertex_array.destroy();
    m_effects.destroy();
    m_effects_target.destroy();
}

// ------------------------------------------------------------------ gathering

void SpritePass::gather(const FrameView& view, const ParticleSystem* particles,
                        const std::vector<LampItem>& lamps) {
    m_sprites.clear();
    m_flat.clear();
    if (particles) particles->forEach([&](const ParticleCloud& cloud) { addCloud(view, cloud); });
    for (const LampItem& lamp : lamps)
        m_sprites.push_back({lamp.position,
                             LAMP_SIZE,
                             vec4(lamp.color, 1),
                             0,
                             LAMP_LIGHT * lamp.power,
                             1,
                             1,
                             {},
                             0});
    const auto& c = view.view.columns;
    const vec3 axis(c[0].z, c[1].z, c[2].z); // backwards, in E
    for (Sprite& sprite : m_sprites)
        sprite.depth = -dot(axis, sprite.position);
    std::sort(m_sprites.begin(), m_sprites.end(),
              [](const Sprite& a, const Sprite& b) { return a.depth > b.depth; });
}

void SpritePass::addCloud(const FrameView& view, const ParticleCloud& cloud) {
    const Material* material = cloud.emitter->getSurfaceMaterial(0);
    const vec4 color = readValue(material, "diffuse_color", {1, 1, 1, 1});
    const float size = readSlider(material, "particle_size", 0.3f);
    const float growth = readSlider(material, "particle_growth", 0);
    const float emission = readSlider(material, "emission", 0);
    const float streak = readSlider(material, "streak", 0);
    const mat4 to_frame = view.toFrame(dmat4(dmat3(), cloud.origin));
    const mat3 turn = to_frame.getMat3();
    for (const Particle& p : cloud.particles) {
        const vec3 place = to_frame * p.position;
        const float radius = size + growth * p.age, youth = p.age / p.life;
        // In quickly, out slowly.
        const float opacity = color.w * std::min(youth * 8, 1.0f) * (1 - youth);
        if (cloud.flat) {
            const vec2 at{place.x / (MAP_EDGE / 2), place.y / (MAP_EDGE / 2)};
            if (std::abs(at.x) < 1 && std::abs(at.y) < 1)
                m_flat.push_back({{at.x, at.y, radius / (MAP_EDGE / 2)},
                                  p.turn,
                                  vec4(color.xyz(), opacity),
                                  0,
                                  0,
                                  0,
                                  0,
                                  {},
                                  0});
            continue;
        }
        if (!view.sees(place, radius + streak)) continue;
        const vec3 stretch = streak > 0 ? turn * normalize(p.velocity) * (streak / 2) : vec3();
        m_sprites.push_back({place, radius, vec4(color.xyz(), opacity), p.turn, emission,
                             emission > 0 ? 1.0f : 0.0f, 0, stretch, 0});
    }
}

// ------------------------------------------------------------------ drawing

void SpritePass::upload(const std::vector<Sprite>& sprites) {
    glBindVertexArray(m_vertex_array.id());
    glBindBuffer(GL_ARRAY_BUFFER, m_buffer.id());
    glBufferData(GL_ARRAY_BUFFER, static_cast<GLsizeiptr>(sprites.size() * sizeof(Sprite)),
                 sprites.data(), GL_STREAM_DRAW);
}

void SpritePass::drawEffects() {
    if (m_flat.empty() && !m_effects_dirty) return;
    m_effects_dirty = !m_flat.empty();
    glBindFramebuffer(GL_FRAMEBUFFER, m_effects_target.id());
    glViewport(0, 0, MAP_SIZE, MAP_SIZE);
    glDisable(GL_DEPTH_TEST);
    glClearColor(128 / 255.0f, 128 / 255.0f, 0, 0);
    glClear(GL_COLOR_BUFFER_BIT);
    if (!m_flat.empty()) {
        upload(m_flat);
        glEnable(GL_BLEND);
        glBlendFunc(GL_ONE, GL_ONE);
        m_splat.use();
        glDrawArraysInstanced(GL_TRIANGLE_STRIP, 0, 4, static_cast<GLsizei>(m_flat.size()));
        glDisable(GL_BLEND);
    }
    gl::bindTexture(gl::UNIT_FIRST_OWN, m_effects);
    glGenerateMipmap(GL_TEXTURE_2D);
}

void SpritePass::draw() {
    if (m_sprites.empty()) return;
    upload(m_sprites);
    glEnable(GL_BLEND);
    glBlendFunc(GL_ONE, GL_ONE_MINUS_SRC_ALPHA);
    glDepthMask(GL_FALSE);
    m_program.use();
    glDrawArraysInstanced(GL_TRIANGLE_STRIP, 0, 4, static_cast<GLsizei>(m_sprites.size()));
    glDepthMask(GL_TRUE);
    glDisable(GL_BLEND);
}
