// SPDX-License-Identifier: MIT
#include "HillMap.h"

namespace ig {

void HillMap::init() {
    constexpr float NONE = HillShadows::NONE;
    gl::makeTexture(m_texture, 1, 1, {GL_R32F, GL_RED, GL_FLOAT}, &NONE);
}

void HillMap::upload(const HillShadows& hills) {
    gl::makeTexture(m_texture, HillShadows::SIZE, HillShadows::SIZE, {GL_R32F, GL_RED, GL_FLOAT},
                    hills.getMap().data());
}

} // namespace ig
