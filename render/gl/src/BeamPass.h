// SPDX-License-Identifier: MIT
#pragma once

#include "GlObjects.h"
#include "render/scene/FrameView.h"
#include "render/scene/LightList.h"

namespace ig {

/// Draws the beams of lamps that have one, as haze, rain and snow show them: light that is
/// scattered once towards the eye, added to the picture where the lamp's cone is in it.
class BeamPass {
public:
    void init();
    /// After all else that the scene's depth hides. With parallel rays none shows.
    void draw(const FrameView& view, const LightList& lights, const gl::Texture& depth);

private:
    gl::Program m_program;
    gl::VertexArray m_empty;
};

} // namespace ig
