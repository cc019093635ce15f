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

constexpr float GROUND_CHANGES_IN = 0.6f; ///< s: the dust in the air is still that of before
} // namespace

void ObjectParticles::setOfDisplay(bool of_display) {
    m_of_display = of_display;
    forChildEmitters(*this, [of_display](ObjectParticles* e) { e->setOfDisplay(of_display); });
}

void ObjectParticles::passOver(const Ground& below, float dt) {
    using Kind = Ground::Kind;
    const bool known = below.kind != Kind::any;
    const bool suits = m_surface == Kind::any || m_surface == below.kind ||
                       (m_surface == Kind::land && below.kind != Kind::water);
    m_silent = known && !suits;
    if (!known) return;
    const float share = m_ground_known ? 1 - std::exp(-dt / GROUND_CHANGES_IN) : 1;
    m_ground = {m_ground.xyz() + (below.lifted.xyz() - m_ground.xyz()) * share,
                std::lerp(m_ground.w, below.lifted.w, share)};
    m_ground_known = true;
}

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
    const double reach = flight + length(m_spread);
    const dvec3 place = getWorldPosition(), half(reach, reach, reach);
    return {place - half, place + half};
}

float ObjectParticles::getSpawnTime(float dt) const {
    if (!m_running || m_silent) return 0;
    return m_burst <= 0 ? dt : std::clamp(m_burst - (m_elapsed - dt), 0.0f, dt);
}

void ObjectParticles::advance(float dt) {
    if (!m_running || !(dt > 0)) return;
    m_elapsed += dt;
    if (m_duration > 0 && m_elapsed >= m_duration) m_running = false;
}

} // namespace ig
