// SPDX-License-Identifier: MIT
#pragma once

#include "FrameView.h"
#include "GlObjects.h"

#include <vector>

namespace ig {
struct FrameInfo;
struct ParticleCloud;
} // namespace ig
struct LampItem;

/// Draws particles and lamps as squares that face the eye, all in one call, far to near. Flat ones
/// belong to the sea: see WakePass.
class SpritePass {
public:
    bool init();
    void release();
    /// Gathers the frame's sprites; its `particles` may be null.
    void gather(const FrameView& view, const ig::FrameInfo& frame,
                const std::vector<LampItem>& lamps);
    void draw();

private:
    struct Sprite {
        ig::vec3 position;
        float size;
        ig::vec4 color;
        float turn, emission, additive, kind;
        ig::vec3 stretch;
        float depth; ///< along the view, for the order; the shader doesn't read it
    };
    void addCloud(const FrameView& view, const ig::ParticleCloud& cloud,
                  const ig::vec3& eye_velocity);

    gl::Program m_program;
    gl::VertexArray m_vertex_array;
    gl::Buffer m_buffer;
    std::vector<Sprite> m_sprites;
};
