// SPDX-License-Identifier: MIT
#pragma once

#include "GlObjects.h"

namespace ig {

struct Warp;
class Targets;

/// The last pass of a picture that a projector throws: bends it over a mesh and dims it by a mask.
class WarpPass {
public:
    /// What it does from the next picture on; with an empty mesh nothing.
    void set(const Warp& warp);
    bool isOn() const { return static_cast<bool>(m_mesh.getId()); }
    /// Over the finished picture, of which it keeps a copy meanwhile. `empty`: no vertices.
    void draw(const Targets& targets, const gl::VertexArray& empty);

private:
    gl::Program m_program;
    gl::Texture m_mesh, m_mask, m_copy;
    gl::Framebuffer m_copy_target;
    int m_width = 0, m_height = 0; ///< of the copy
};

} // namespace ig
