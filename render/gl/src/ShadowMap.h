// SPDX-License-Identifier: MIT
#pragma once

#include "GlObjects.h"
#include "render/scene/ShadowPlace.h"

namespace ig {

/// What the sun (or moon) sees, as the depth of the nearest caster: a near map of the surroundings
/// of one place, and a far one, fitted around what looks largest of the large things in view beyond
/// it.
class ShadowMap {
public:
    bool init();
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
