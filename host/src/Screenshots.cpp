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
    keep(renderer, path);
}

void Screenshots::take(ig::Renderer& renderer, const std::string& name) {
    const std::size_t slash = m_path.rfind('/');
    keep(renderer, m_path.substr(0, slash == std::string::npos ? 0 : slash + 1) + name + ".png");
}

void Screenshots::keep(ig::Renderer& renderer, const std::string& path) {
    renderer.savePicture(path);
    ig::Picture picture;
    if (!m_sheet_path.empty() && renderer.readPicture(picture)) m_sheet.add(picture);
}

void Screenshots::afterLast(ig::Renderer& renderer) {
    if (!m_path.empty()) renderer.savePicture(m_path);
    if (!m_sheet.isEmpty()) renderer.writePicture(m_sheet_path, m_sheet.compose());
}
