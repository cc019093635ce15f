// SPDX-License-Identifier: MIT
#include "SpritePass.h"

#include "SceneList.h"
#include "ig/app/Renderer.h"
#include "ig/scene/ParticleSystem.h"
#include "ig/scene/SceneObjects.h"

#include <algorithm>
#include <cmath>
#include <cstddef>

using namespace ig;

namespace {
constexpr float LONGEST_STREAK = 2.5f; ///< m: longer ones would reach through the cabin's walls
constexpr float LAMP_SIZE = 0.55f;     ///< half the edge of a lamp's glow, m
constexpr float LAMP_LIGHT = 9;        ///< at density 1
} // namespace

bool SpritePass::init() {
    if (!m_program.build("sprite.vert", "sprite.frag")) return false;
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
    return true;
}

void SpritePass::release() {
    m_program.destroy();
    m_buffer.destroy();
    m_vertex_array.destroy();
}

// ------------------------------------------------------------------ gathering

void SpritePass::gather(const FrameView& view, const FrameInfo& frame,
                        const std::vector<LampItem>& lamps) {
    m_sprites.clear();
    const vec3 eye_velocity(view.toFrameDirection(frame.eye_velocity));
    if (frame.particles)
        frame.particles->forEach([&](const ParticleCloud& cloud) {
            if (!cloud.flat) addCloud(view, cloud, eye_velocity);
        });
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

void SpritePass::addCloud(const FrameView& view, const ParticleCloud& cloud,
                          const vec3& eye_velocity) {
    const Material* material = cloud.emitter->getSurfaceMaterial(0);
    const vec4 color = readValue(material, "diffuse_color", {1, 1, 1, 1});
    const float size = readSlider(material, "particle_size", 0.3f);
    const float growth = readSlider(material, "particle_growth", 0);
    const float emission = readSlider(material, "emission", 0);
    const float streak = readSlider(material, "streak", 0);
    const float exposure = streak / std::max(std::abs(cloud.emitter->getLinearVelocity()), 0.1f);
    const mat4 to_frame = view.toFrame(dmat4(dmat3(), cloud.origin));
    const mat3 turn = to_frame.getMat3();
    for (const Particle& p : cloud.particles) {
        const vec3 place = to_frame * p.position;
        const float radius = size + growth * p.age, youth = p.age / p.life;
        // In quickly, out slowly; what spreads thins out.
        float opacity = color.w * std::min(youth * 8, 1.0f) * (1 - youth) * size / radius;
        if (!view.sees(place, radius + LONGEST_STREAK)) continue;
        vec3 stretch;
        if (streak > 0) { // as long as it passes the eye while the eye looks
            const vec3 passing = turn * p.velocity - eye_velocity;
            const float speed = length(passing), trail = std::min(exposure * speed, LONGEST_STREAK);
            if (trail > 2 * radius) stretch = passing * (trail / (2 * std::max(speed, 1e-3f)));
            opacity *= std::min(std::sqrt(streak / std::max(trail, streak)), 1.0f);
        }
        // Nothing pops up right before the eye.
        const float near = std::clamp(length(place) / (2 * radius) - 0.4f, 0.0f, 1.0f);
        m_sprites.push_back({place, radius, vec4(color.xyz(), opacity * near), p.turn, emission,
                             emission > 0 ? 1.0f : 0.0f, 0, stretch, 0});
    }
}

// ------------------------------------------------------------------ drawing

void SpritePass::draw() {
    if (m_sprites.empty()) return;
    glBindVertexArray(m_vertex_array.id());
    glBindBuffer(GL_ARRAY_BUFFER, m_buffer.id());
    glBufferData(GL_ARRAY_BUFFER, static_cast<GLsizeiptr>(m_sprites.size() * sizeof(Sprite)),
                 m_sprites.data(), GL_STREAM_DRAW);
    glEnable(GL_BLEND);
    glBlendFunc(GL_ONE, GL_ONE_MINUS_SRC_ALPHA);
    glDepthMask(GL_FALSE);
    m_program.use();
    glDrawArraysInstanced(GL_TRIANGLE_STRIP, 0, 4, static_cast<GLsizei>(m_sprites.size()));
    glDepthMask(GL_TRUE);
    glDisable(GL_BLEND);
}
