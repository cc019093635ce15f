// SPDX-License-Identifier: MIT
#pragma once

#include "FrameView.h"
#include "GlObjects.h"

#include <vector>

namespace ig {
class ParticleSystem;
struct ParticleCloud;
} // namespace ig
struct LampItem;

/// Draws particles and lamps as squares that face the eye, all in one call, far to near. Foam that
/// lies on the water goes into a map of effects around the eye instead, which the sea reads.
class SpritePass {
public:
    static constexpr float MAP_EDGE = 800; ///< of the map of effects, m
    static constexpr int MAP_SIZE = 512;   ///< texels

    bool init();
    void release();
    /// Gathers the frame's sprites; `particles` may be null.
    void gather(const FrameView& view, const ig::ParticleSystem* particles,
                const std::vector<LampItem>& lamps);
    /// Paints the map of effects; the caller sets target and viewport back.
    void drawEffects();
    void draw();
    const gl::Texture& getEffects() const { return m_effects; }

private:
    struct Sprite {
        ig::vec3 position;
        float size;
        ig::vec4 color;
        float turn, emission, additive, kind;
        ig::vec3 stretch;
        float depth; ///< along the view, for the order; the shader doesn't read it
    };
    void addCloud(const FrameView& view, const ig::ParticleCloud& cloud);
    void upload(const std::vector<Sprite>& sprites);

    gl::Program m_program, m_splat;
    gl::VertexArray m_vertex_array;
    gl::Buffer m_buffer;
    gl::Texture m_effects;
    gl::Framebuffer m_effects_target;
    std::vector<Sprite> m_sprites, m_flat;
    bool m_effects_dirty = true; ///< the map holds something of an earlier frame
};
