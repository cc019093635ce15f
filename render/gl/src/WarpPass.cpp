// SPDX-License-Identifier: MIT
#include "WarpPass.h"

#include "Targets.h"
#include "ig/app/Renderer.h"

#include <cmath>
#include <cstdint>

namespace ig {

namespace {

/// OpenGL's rows come from the bottom.
std::vector<vec4> meshTexels(const Warp& warp) {
    std::vector<vec4> texels;
    texels.reserve(warp.places.size());
    for (int y = warp.height - 1; y >= 0; y--)
        for (int x = 0; x < warp.width; x++) {
            const vec2& place = warp.places[static_cast<std::size_t>(y * warp.width + x)];
            const bool shown = std::isfinite(place.x) && std::isfinite(place.y);
            texels.push_back(shown ? vec4(place.x, 1 - place.y, 1, 0) : vec4());
        }
    return texels;
}

std::vector<std::uint8_t> maskTexels(const Picture& mask) {
    if (mask.width == 0) return {255, 255, 255, 255};
    std::vector<std::uint8_t> texels;
    for (int y = mask.height - 1; y >= 0; y--)
        for (int x = 0; x < mask.width; x++) {
            const std::uint8_t* rgb = mask.at(x, y);
            texels.insert(texels.end(), {rgb[0], rgb[1], rgb[2], 255});
        }
    return texels;
}

} // namespace

void WarpPass::set(const Warp& warp) {
    if (warp.places.empty()) {
        m_mesh.destroy();
        return;
    }
    gl::makeTexture(m_mesh, warp.width, warp.height, {GL_RGBA32F, GL_RGBA, GL_FLOAT},
                    meshTexels(warp).data());
    const Picture& mask = warp.mask;
    gl::makeTexture(m_mask, std::max(mask.width, 1), std::max(mask.height, 1), {},
                    maskTexels(mask).data());
    m_program.start("screen.vert", "warp.frag", "",
                    {{"uPicture", gl::UNIT_FIRST_OWN},
                     {"uMesh", gl::UNIT_FIRST_OWN + 1},
                     {"uMask", gl::UNIT_FIRST_OWN + 2}});
    if (!m_program.finish()) m_mesh.destroy(); // which has told why
}

void WarpPass::draw(const Targets& targets, const gl::VertexArray& empty) {
    const int width = targets.getWidth(), height = targets.getHeight();
    if (width != m_width || height != m_height) {
        gl::makeTexture(m_copy, width, height, {});
        gl::attach(m_copy_target, m_copy);
        m_width = width;
        m_height = height;
    }
    glBindFramebuffer(GL_READ_FRAMEBUFFER, targets.finished_target.getId());
    glBindFramebuffer(GL_DRAW_FRAMEBUFFER, m_copy_target.getId());
    glBlitFramebuffer(0, 0, width, height, 0, 0, width, height, GL_COLOR_BUFFER_BIT, GL_NEAREST);
    glBindFramebuffer(GL_FRAMEBUFFER, targets.finished_target.getId());
    glViewport(0, 0, width, height);
    glDisable(GL_DEPTH_TEST);
    glDisable(GL_BLEND);
    gl::bindTexture(gl::UNIT_FIRST_OWN, m_copy);
    gl::bindTexture(gl::UNIT_FIRST_OWN + 1, m_mesh);
    gl::bindTexture(gl::UNIT_FIRST_OWN + 2, m_mask);
    glBindVertexArray(empty.getId());
    m_program.use();
    glDrawArrays(GL_TRIANGLES, 0, 3);
}

} // namespace ig
