// SPDX-License-Identifier: MIT
#pragma once

#include "GlObjects.h"
#include "render/scene/FrameBlock.h"

#include <vector>

namespace ig {

/// What the sun (or moon) sees, as the depth of the nearest caster: a near map of the surroundings
/// of one place, and a far one, fitted around what looks largest of the large things in view beyond
/// it.
class ShadowMap {
public:
    static constexpr float RADIUS =
        95;                           ///< around the focus, m: a frigate's deck and the sea beside
    static constexpr int SIZE = 2048; ///< texels; 0.1 m each
    static constexpr int FAR_SIZE = 1024; ///< of the far map; their size follows what is in it

    bool init();
    /// Puts the near map's transform into the frame block: the light's direction must be there
    /// already. `center` in E.
    void place(const vec3& center, FrameBlock& block) const;
    /// Puts the far map's into the block: around the largest to the eye of the spheres (E; w:
    /// radius) of what may cast into it, and those beside it. After `place`.
    void fit(const std::vector<vec4>& casters, FrameBlock& block) const;
    /// Make a map the target of the casters' draws; the caller sets the viewport back.
    void beginNear();
    void beginFar();
    void end();
    void bind() const;

private:
    struct Map {
        gl::Texture depth;
        gl::Framebuffer target;
    };
    static bool make(Map& map, int size);
    static void begin(const Map& map, int size);

    Map m_near, m_far;
};

} // namespace ig
