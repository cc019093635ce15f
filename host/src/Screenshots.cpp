// SPDX-License-Identifier: MIT
#include "Screenshots.h"

#include "ig/app/Renderer.h"

#include <cstdio>

void Screenshots::afterFrame(ig::Renderer& renderer, double time) {
    if (m_path.empty() || m_interval <= 0 || time < m_next) return;
    m_next = time + m_interval;
    take(renderer);
}

void Screenshots::take(ig::Renderer& renderer) {
    char number[16];
    std::snprintf(number, sizeof number, "_%04d", ++m_number);
    std::string path = m_path.empty() ? "picture.png" : m_path;
    const std::size_t dot = path.rfind('.');
    path.insert(dot == std::string::npos ? path.size() : dot, number);
    renderer.savePicture(path);
}

void Screenshots::afterLast(ig::Renderer& renderer) {
    if (!m_path.empty()) renderer.savePicture(m_path);
}
