// SPDX-License-Identifier: MIT
#pragma once

#include "FrameBlock.h"
#include "GlObjects.h"

/// What the sun (or moon) sees of the surroundings of one place: the depth of the nearest caster.
class ShadowMap {
public:
    static constexpr float RADIUS =
        95;                           ///< around the focus, m: a frigate's deck and the sea beside
    static constexpr int SIZE = 2048; ///< texels; 0.1 m each

    bool init();
    void release();
    /// Puts the transform into the frame block: the light's direction must be there already.
    /// `center` in E.
    void place(const ig::vec3& center, FrameBlock& block) const;
    /// Makes the map the target of the casters' draws; the caller sets the viewport back.
    void begin();
    void end();
    void bind() const;

private:
    gl::Texture m_map;
    gl::Framebuffer m_target;
};
