// SPDX-License-Identifier: MIT
#include "ShadowMap.h"

#include <cmath>

using namespace ig;

bool ShadowMap::init() {
    gl::TextureFormat format{GL_DEPTH_COMPONENT24, GL_DEPTH_COMPONENT, GL_UNSIGNED_INT};
    gl::makeTexture(m_map, SIZE, SIZE, format);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_COMPARE_MODE, GL_COMPARE_REF_TO_TEXTURE);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_COMPARE_FUNC, GL_LEQUAL);
    m_target.create();
    glBindFramebuffer(GL_FRAMEBUFFER, m_target.id());
    glFramebufferTexture2D(GL_FRAMEBUFFER, GL_DEPTH_ATTACHMENT, GL_TEXTURE_2D, m_map.id(), 0);
    glDrawBuffer(GL_NONE);
    glReadBuffer(GL_NONE);
    return glCheckFramebufferStatus(GL_FRAMEBUFFER) == GL_FRAMEBUFFER_COMPLETE;
}

void ShadowMap::release() {
    m_map.destroy();
    m_target.destroy();
}

void ShadowMap::place(const vec3& center, FrameBlock& block) const {
    constexpr float DEPTH = 4 * RADIUS; // casters up the light's path count too
    constexpr float BIAS = 0.06f;       // m; about half a texel
    const vec3 light = block.light_direction.xyz();
    const vec3 right =
        normalize(cross(std::abs(light.z) < 0.99f ? vec3(0, 0, 1) : vec3(0, 1, 0), light));
    const vec3 up = cross(light, right);
    const vec3 axes[3] = {right / (2 * RADIUS), up / (2 * RADIUS), -light / (2 * DEPTH)};
    const float offsets[3] = {0.5f - dot(axes[0], center), 0.5f - dot(axes[1], center),
                              0.5f - dot(axes[2], center) - BIAS / (2 * DEPTH)};
    block.shadow.columns[0] = {axes[0].x, axes[1].x, axes[2].x, 0};
    block.shadow.columns[1] = {axes[0].y, axes[1].y, axes[2].y, 0};
    block.shadow.columns[2] = {axes[0].z, axes[1].z, axes[2].z, 0};
    block.shadow.columns[3] = {offsets[0], offsets[1], offsets[2], 1};
    // A light that grazes the ground casts shadows without end: leave them out.
    block.light_direction.w = light.z > 0.02f ? 1.0f : 0.0f;
}

void ShadowMap::begin() {
    glBindFramebuffer(GL_FRAMEBUFFER, m_target.id());
    glViewport(0, 0, SIZE, SIZE);
    glDepthFunc(GL_LEQUAL);
    glClearDepth(1);
    glClear(GL_DEPTH_BUFFER_BIT);
    glEnable(GL_POLYGON_OFFSET_FILL);
    glPolygonOffset(1.5f, 2);
}

void ShadowMap::end() {
    glDisable(GL_POLYGON_OFFSET_FILL);
    glDepthFunc(GL_GEQUAL);
    glClearDepth(0);
}

void ShadowMap::bind() const { gl::bindTexture(gl::UNIT_SHADOW, m_map); }
