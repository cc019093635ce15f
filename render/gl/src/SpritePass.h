// SPDX-License-Identifier: MIT
#pragma once

#include "GlObjects.h"
#include "render/scene/FrameView.h"

#include <vector>

namespace ig {

struct CableItem;
struct FrameInfo;
class ObjectParticles;
struct Particle;
struct ParticleCloud;
struct LampItem;

/// Draws particles, lamps and thin cables as squares that face the eye, all in one call, far to
/// near. Flat ones belong to the sea: see WakePass.
class SpritePass {
public:
    bool init();
    /// Gathers the frame's sprites; its `particles` may be null.
    void gather(const FrameView& view, const FrameInfo& frame, const std::vector<LampItem>& lamps,
                const std::vector<CableItem>& cables);
    /// `depth` of the scene, in which soft particles end softly.
    void draw(const FrameView& view, const gl::Texture& depth);

private:
    struct Sprite { ///< `additive`: 1 adds light only, 0 covers what is behind
        vec3 position;
        float size;
        vec4 color;
        float turn, emission, additive, kind;
        vec3 stretch;
        float youth; ///< 0 at birth, 1 at the end
        float depth; ///< along the view, for the order; the shader doesn't read it
    };
    struct Look { ///< what an emitter's material says
        vec4 color;
        float size, growth, emission, soot, streak, exposure;
        int sheet; ///< 0 discs, 1 puffs, 2 flames, 3 drops
    };
    static Look readLook(const ObjectParticles& emitter);
    static float shapeOf(int sheet, const Particle& particle);
    static vec3 cooled(const Look& look, float youth);
    void addCloud(const FrameView& view, const ParticleCloud& cloud, const vec3& eye_velocity);

    gl::Program m_program;
    gl::VertexArray m_vertex_array;
    gl::Buffer m_buffer;
    gl::Texture m_sheet;
    std::vector<Sprite> m_sprites;
};

} // namespace ig
