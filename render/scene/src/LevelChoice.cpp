// SPDX-License-Identifier: MIT
#include "render/scene/LevelChoice.h"

#include "ig/scene/Mesh.h"

#include <algorithm>
#include <cmath>

namespace ig {

namespace {

constexpr float RETURN = 7.0f / 6; ///< how much larger it must be for a finer level
constexpr unsigned FORGET = 600;   ///< frames
constexpr int COARSEST = 9;        ///< that names can tell

int levelAt(float pixels) {
    if (pixels >= LevelChoice::FIRST) return 0;
    const float halvings = std::log2(LevelChoice::FIRST / std::max(pixels, 1e-3f));
    return std::min(1 + static_cast<int>(halvings), COARSEST);
}

} // namespace

void LevelChoice::beginFrame() {
    if (++m_frame % FORGET == 0)
        std::erase_if(m_shown,
                      [this](const auto& entry) { return m_frame - entry.second.frame > FORGET; });
}

const std::shared_ptr<const Mesh>& LevelChoice::choose(const std::shared_ptr<const Mesh>& mesh,
                                                       int object, float pixels) {
    if (mesh->getCoarser().empty()) return mesh;
    const auto [entry, is_new] = m_shown.try_emplace(object, Shown{levelAt(pixels), m_frame});
    int& level = entry->second.level;
    // Between the two thresholds it stays what it is.
    if (!is_new) level = std::clamp(level, levelAt(pixels), levelAt(pixels / RETURN));
    entry->second.frame = m_frame;
    const std::shared_ptr<const Mesh>* chosen = &mesh;
    for (const Mesh::Coarser& coarser : mesh->getCoarser())
        if (coarser.level <= level) chosen = &coarser.mesh;
    return *chosen;
}

} // namespace ig
