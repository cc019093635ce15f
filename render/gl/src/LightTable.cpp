// SPDX-License-Identifier: MIT
#include "LightTable.h"

namespace ig {

void LightTable::init() {
    m_block.create();
    glBindBuffer(GL_UNIFORM_BUFFER, m_block.getId());
    glBufferData(GL_UNIFORM_BUFFER, sizeof(LightBlock), nullptr, GL_STREAM_DRAW);
    glBindBufferBase(GL_UNIFORM_BUFFER, gl::LIGHT_BLOCK, m_block.getId());
    m_cells.create();
    glBindBuffer(GL_TEXTURE_BUFFER, m_cells.getId());
    const auto cells = std::as_bytes(std::span(m_grid.getCells()));
    glBufferData(GL_TEXTURE_BUFFER, static_cast<GLsizeiptr>(cells.size()), cells.data(),
                 GL_STREAM_DRAW);
    m_texture.create();
    glActiveTexture(GL_TEXTURE0 + gl::UNIT_LIGHTS);
    glBindTexture(GL_TEXTURE_BUFFER, m_texture.getId());
    glTexBuffer(GL_TEXTURE_BUFFER, GL_RG32UI, m_cells.getId());
}

void LightTable::upload(const FrameView& view, const LightList& list) {
    if (list.lights.empty() && !m_any) return;
    m_any = !list.lights.empty();
    m_grid.sort(view, list.lights);
    // New memory each time: the device may still read what the last frame gave it. The frame's own
    // block stays bound.
    glBindBuffer(GL_COPY_WRITE_BUFFER, m_block.getId());
    glBufferData(GL_COPY_WRITE_BUFFER, sizeof(LightBlock), &m_grid.getBlock(), GL_STREAM_DRAW);
    const auto cells = std::as_bytes(std::span(m_grid.getCells()));
    glBindBuffer(GL_TEXTURE_BUFFER, m_cells.getId());
    glBufferData(GL_TEXTURE_BUFFER, static_cast<GLsizeiptr>(cells.size()), cells.data(),
                 GL_STREAM_DRAW);
}

} // namespace ig
