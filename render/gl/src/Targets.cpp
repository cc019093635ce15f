// SPDX-License-Identifier: MIT
#include "Targets.h"

#include "ig/base/jLog.h"

#include <algorithm>
#include <cmath>

namespace ig {

bool Targets::make(int width, int height, float scale) {
    m_width = std::max(width, 1);
    m_height = std::max(height, 1);
    const auto scaled = [scale](int size) {
        return std::max(static_cast<int>(std::lround(static_cast<float>(size) * scale)), 1);
    };
    m_scene_width = scaled(m_width);
    m_scene_height = scaled(m_height);
    const gl::TextureFormat light_format{GL_RGBA16F, GL_RGBA, GL_FLOAT};
    gl::TextureFormat depth_format{GL_DEPTH32F_STENCIL8, GL_DEPTH_STENCIL,
                                   GL_FLOAT_32_UNSIGNED_INT_24_8_REV};
    gl::TextureFormat water_format{GL_RGBA32F, GL_RGBA, GL_FLOAT};
    depth_format.filter = water_format.filter = GL_NEAREST;
    gl::makeTexture(light, m_scene_width, m_scene_height, light_format);
    gl::makeTexture(depth, m_scene_width, m_scene_height, depth_format);
    gl::makeTexture(water, m_scene_width, m_scene_height, water_format);
    gl::makeTexture(sky, getSkyWidth(), getSkyHeight(), light_format);
    gl::makeTexture(toned, m_scene_width, m_scene_height, {});
    if (isEnlarged())
        gl::makeTexture(filtered, m_scene_width, m_scene_height, {});
    else
        gl::makeTexture(filtered, 1, 1, {}); // it is there, for the scale may change in flight
    gl::makeTexture(finished, m_width, m_height, {});

    bool complete = true;
    const auto attach = [&complete](gl::Framebuffer& target, const gl::Texture& color,
                                    const gl::Texture* with_depth) {
        gl::attach(target, color);
        if (with_depth)
            glFramebufferTexture2D(GL_FRAMEBUFFER, GL_DEPTH_STENCIL_ATTACHMENT, GL_TEXTURE_2D,
                                   with_depth->getId(), 0);
        complete &= glCheckFramebufferStatus(GL_FRAMEBUFFER) == GL_FRAMEBUFFER_COMPLETE;
    };
    attach(scene_target, light, &depth);
    attach(light_target, light, nullptr);
    attach(water_target, water, &depth);
    attach(sky_target, sky, nullptr);
    attach(toned_target, toned, nullptr);
    attach(filtered_target, filtered, nullptr);
    attach(finished_target, finished, nullptr);
    constexpr float NO_WATER[4] = {};
    glBindFramebuffer(GL_FRAMEBUFFER, water_target.getId());
    glClearBufferfv(GL_COLOR, 0, NO_WATER);
    if (!complete)
        jLog::error("RendererGL: the driver refuses framebuffers of %d x %d pixels", m_width,
                    m_height);
    return complete;
}

} // namespace ig
