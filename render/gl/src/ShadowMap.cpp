// SPDX-License-Identifier: MIT
#include "ShadowMap.h"

namespace ig {

bool ShadowMap::init(int size) {
    m_size = size;
    return make(m_maps, m_maps_target, 2 * size) && make(m_resting, m_resting_target, size);
}

bool ShadowMap::make(gl::Texture& depth, gl::Framebuffer& target, int size) {
    gl::TextureFormat format{GL_DEPTH_COMPONENT24, GL_DEPTH_COMPONENT, GL_UNSIGNED_INT};
    gl::makeTexture(depth, size, size, format);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_COMPARE_MODE, GL_COMPARE_REF_TO_TEXTURE);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_COMPARE_FUNC, GL_LEQUAL);
    gl::attach(target, depth, GL_DEPTH_ATTACHMENT);
    glDrawBuffer(GL_NONE);
    glReadBuffer(GL_NONE);
    return glCheckFramebufferStatus(GL_FRAMEBUFFER) == GL_FRAMEBUFFER_COMPLETE;
}

void ShadowMap::begin(const ShadowCasters::Job& job) const {
    const int left = job.resting ? 0 : job.map % 2 * m_size;
    const int bottom = job.resting ? 0 : job.map / 2 * m_size;
    const int x = left + job.x, y = bottom + job.y;
    glBindFramebuffer(GL_FRAMEBUFFER, (job.resting ? m_resting_target : m_maps_target).getId());
    glViewport(left, bottom, m_size, m_size);
    glDepthFunc(GL_LEQUAL);
    glEnable(GL_POLYGON_OFFSET_FILL);
    glPolygonOffset(1.5f, 2);
    glScissor(x, y, job.width, job.height);
    if (job.before == ShadowCasters::Job::RESTORE) {
        glBindFramebuffer(GL_READ_FRAMEBUFFER, m_resting_target.getId());
        glBlitFramebuffer(job.x, job.y, job.x + job.width, job.y + job.height, x, y, x + job.width,
                          y + job.height, GL_DEPTH_BUFFER_BIT, GL_NEAREST);
    }
    glEnable(GL_SCISSOR_TEST);
    if (job.before == ShadowCasters::Job::CLEAR) {
        glClearDepth(1);
        glClear(GL_DEPTH_BUFFER_BIT);
    }
}

void ShadowMap::end() {
    glDisable(GL_SCISSOR_TEST);
    glDisable(GL_POLYGON_OFFSET_FILL);
    glDepthFunc(GL_GEQUAL);
    glClearDepth(0);
}

void ShadowMap::bind() const { gl::bindTexture(gl::UNIT_SHADOW, m_maps); }

} // namespace ig
