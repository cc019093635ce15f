// SPDX-License-Identifier: MIT
#include "ig/scene/SceneObjects.h"

#include <algorithm>
#include <cmath>

namespace ig {

namespace {
/// Calls `act` for every emitter among the children of `node`.
template <class Act>
void forChildEmitters(const Node& node, Act act) {
    for (int i = 0; i < node.getNumChildren(); i++)
        if (node.getChild(i)->getType() == OBJECT_PARTICLES)
            act(static_cast<ObjectParticles*>(node.getChild(i)));
}
} // namespace

void ObjectParticles::play() {
    m_running = true;
    m_elapsed = 0;
    forChildEmitters(*this, [](ObjectParticles* emitter) { emitter->play(); });
}

void ObjectParticles::stop() {
    m_running = false;
    forChildEmitters(*this, [](ObjectParticles* emitter) { emitter->stop(); });
}

void ObjectParticles::clearParticles() {
    m_cleared++;
    forChildEmitters(*this, [](ObjectParticles* emitter) { emitter->clearParticles(); });
}

WorldBoundBox ObjectParticles::getWorldBoundBox() const {
    const float flight =
        (std::abs(m_velocity) + m_velocity_spread) * std::max(0.0f, m_life + m_life_spread);
    const double reach = static_cast<double>(flight + length(m_spread));
    const dvec3 place = getWorldPosition(), half(reach, reach, reach);
    return {place - half, place + half};
}

float ObjectParticles::getPresentRate() const {
    const bool spawns = m_running && !m_silent && (m_burst <= 0 || m_elapsed < m_burst);
    return spawns ? m_spawn_rate : 0;
}

void ObjectParticles::advance(float dt) {
    if (!m_running || !(dt > 0)) return;
    m_elapsed += dt;
    if (m_duration > 0 && m_elapsed >= m_duration) m_running = false;
}

} // namespace ig
