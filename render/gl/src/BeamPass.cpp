// SPDX-License-Identifier: MIT
#include "BeamPass.h"

#include "render/scene/ShaderConstants.h"

#include <cmath>

namespace ig {

namespace {
constexpr int VERTICES = 72;            // of a pyramid of twelve sides: as many triangles, twice
constexpr float LEAST_COSINE = 0.7071f; // wider cones are no beams
} // namespace

void BeamPass::init() {
    m_program.start("beam.vert", "beam.frag", {}, {{"uDepth", gl::UNIT_FIRST_OWN}});
    m_empty.create();
}

void BeamPass::draw(const FrameView& view, const LightList& lights, const gl::Texture& depth) {
    if (view.orthographic || !gl::hasClipControl()) return;
    bool first = true;
    for (const LightItem& light : lights.lights) {
        if (light.beam <= 0 || light.cone.y < LEAST_COSINE) continue;
        if (first) {
            glBindVertexArray(m_empty.getId());
            glDisable(GL_DEPTH_TEST); // the far side is drawn, once a pixel, wherever the eye is
            glDepthMask(GL_FALSE);
            glEnable(GL_CULL_FACE);
            glCullFace(GL_FRONT);
            glEnable(GL_BLEND);
            glBlendFunc(GL_ONE, GL_ONE);
            m_program.use();
            gl::bindTexture(gl::UNIT_FIRST_OWN, depth);
            m_program.set("uNear", static_cast<float>(view.near));
            m_program.set("uFar", static_cast<float>(view.far));
        }
        first = false;
        m_program.set("uPlace", vec4(light.position, light.reach));
        m_program.set("uAxis", vec4(light.axis, light.cone.y));
        m_program.set("uPower",
                      vec4(light.color * (light.beam * LUX), 1 / (light.cone.x - light.cone.y)));
        glDrawArrays(GL_TRIANGLES, 0, VERTICES);
    }
    if (first) return;
    glDisable(GL_BLEND);
    glCullFace(GL_BACK);
    glDisable(GL_CULL_FACE);
    glDepthMask(GL_TRUE);
    glEnable(GL_DEPTH_TEST);
}

} // namespace ig
