// SPDX-License-Identifier: MIT
#include "ShadowMap.h"

namespace ig {

bool ShadowMap::init() { return make(m_near, SHADOW_SIZE) && make(m_far, FAR_SHADOW_SIZE); }

bool ShadowMap::make(Map& map, int size) {
    gl::TextureFormat format{GL_DEPTH_COMPONENT24, GL_DEPTH_COMPONENT, GL_UNSIGNED_INT};
    gl::makeTexture(map.depth, size, size, format);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_COMPARE_MODE, GL_COMPARE_REF_TO_TEXTURE);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_COMPARE_FUNC, GL_LEQUAL);
    gl::attach(map.target, map.depth, GL_DEPTH_ATTACHMENT);
    glDrawBuffer(GL_NONE);
    glReadBuffer(GL_NONE);
    return glCheckFramebufferStatus(GL_FRAMEBUFFER) == GL_FRAMEBUFFER_COMPLETE;
}

void ShadowMap::begin(const Map& map, int size) {
    glBindFramebuffer(GL_FRAMEBUFFER, map.target.getId());
    glViewport(0, 0, size, size);
    glDepthFunc(GL_LEQUAL);
    glClearDepth(1);
    glClear(GL_DEPTH_BUFFER_BIT);
    glEnable(GL_POLYGON_OFFSET_FILL);
    glPolygonOffset(1.5f, 2);
}

void ShadowMap::beginNear() { begin(m_near, SHADOW_SIZE); }
void ShadowMap::beginFar() { begin(m_far, FAR_SHADOW_SIZE); }

void ShadowMap::end() {
    glDisable(GL_POLYGON_OFFSET_FILL);
    glDepthFunc(GL_GEQUAL);
    glClearDepth(0);
}

void ShadowMap::bind() const {
    gl::bindTexture(gl::UNIT_SHADOW, m_near.depth);
    gl::bindTexture(gl::UNIT_SHADOW_FAR, m_far.depth);
}

} // namespace ig
