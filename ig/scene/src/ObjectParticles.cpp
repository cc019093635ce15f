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
/// What rotor wind lifts off a surface.
vec4 liftedFrom(ObjectParticles::Surface surface) {
    using Surface = ObjectParticles::Surface;
    switch (surface) {
    case Surface::water:
        return {0.84f, 0.88f, 0.92f, 1};
    case Surface::grass:
        return {0.24f, 0.2f, 0.1f, 0.9f};
    case Surface::sand:
        return {0.5f, 0.41f, 0.27f, 3.2f};
    case Surface::snow:
        return {0.82f, 0.87f, 0.95f, 3.6f};
    case Surface::hard:
    case Surface::land:
        return {0.42f, 0.41f, 0.4f, 0.6f};
    default:
        return {1, 1, 1, 1};
    }
}

constexpr float GROUND_CHANGES_IN = 0.6f; ///< s: the dust in the air is still that of before
} // namespace

void ObjectParticles::passOver(Surface surface, float dt) {
    const bool known = surface != Surface::any;
    const bool suits = m_surface == Surface::any || m_surface == surface ||
                       (m_surface == Surface::land && surface != Surface::water);
    m_silent = known && !suits;
    if (!known) return;
    const float share = m_ground_known ? 1 - std::exp(-dt / GROUND_CHANGES_IN) : 1;
    const vec4 lifted = liftedFrom(surface);
    m_ground = {m_ground.xyz() + (lifted.xyz() - m_ground.xyz()) * share,
                std::lerp(m_ground.w, lifted.w, share)};
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
    const double reach = static_cast<double>(flight + length(m_spread));
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
