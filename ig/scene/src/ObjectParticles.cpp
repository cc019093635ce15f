// SPDX-License-Identifier: MIT
#include "ig/scene/SceneObjects.h"

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
