// SPDX-License-Identifier: MIT
#pragma once

#include "GlObjects.h"
#include "render/scene/ShadowCasters.h"

namespace ig {

/// What the sun (or moon) sees, as the depth of the nearest caster: the maps that `ShadowPlace`
/// lays out, a quarter each of one texture, and the layer of what rests in the first of them.
class ShadowMap {
public:
    /// `size`: edge of a map, texels.
    bool init(int size);
    /// Makes the part of a map that a job changes the target of its draws, cleared or with what
    /// rests; the caller sets framebuffer and viewport back.
    void begin(const ShadowCasters::Job& job) const;
    static void end();
    void bind() const;

private:
    static bool make(gl::Texture& depth, gl::Framebuffer& target, int size);

    int m_size = 0;
    gl::Texture m_maps, m_resting;
    gl::Framebuffer m_maps_target, m_resting_target;
};

} // namespace ig
