// SPDX-License-Identifier: MIT
#include "common/ship/FlagOper.h"

#include "ig/app/Engine.h"
#include "ig/base/jLog.h"
#include "ig/math/jMath.h"
#include "ig/math/quat.h"
#include "ig/scene/Node.h"

#include <algorithm>
#include <cmath>

using namespace ig;

namespace {

constexpr float FULL_WIND = 10000.0f; ///< strength at which a flag lies fully along the wind
constexpr float ASTERN = -90.0f;      ///< turn of the node that points X astern
constexpr float DOWNWIND = 180.0f;    ///< turn from where the wind comes from to where it goes

/// The angle from the ship's heading to north, degrees, counter-clockwise seen from above.
float angleToNorth(const Node& ship) {
    const dmat4 local = ship.getWGSTransform();
    const dvec3 north = local.getY(), heading = normalize(ship.getWorldTransform().getY());
    const double angle = std::acos(std::clamp(dot(heading, north), -1.0, 1.0)) * RAD_TO_DEG<double>;
    return static_cast<float>(dot(cross(heading, north), local.getZ()) < 0 ? -angle : angle);
}

} // namespace

void FlagOper::init(Node* node, float amplitude, float speed) {
    *this = {};
    m_node = node;
    m_amplitude = amplitude;
    m_speed = speed;
    m_direction = 1;
}

void FlagOper::update(float dt) {
    if (!m_node) return;
    const Node* ship = m_node->getPrefabRoot();
    if (!ship) {
        jLog::error("%s:%s", "FlagOper::update", "root");
        return;
    }
    const float wind = Engine::get()->getWindStrength() / FULL_WIND;
    const float origin = Engine::get()->getWindOrigin() * jMath::sign(wind);
    const quat calm(0, 0, angleToNorth(*ship) + m_phase + m_offset + ASTERN);
    const quat windy(0, 0, origin + m_phase + m_offset + DOWNWIND);
    m_node->setRotation(dquat(normalize(slerp(calm, windy, wind))));
    swing(dt);
}

void FlagOper::swing(float dt) {
    if (!std::isfinite(dt)) return;
    m_phase += dt * m_speed * static_cast<float>(m_direction);
    if (m_phase >= m_amplitude) {
        m_phase = m_amplitude;
        m_direction = -m_direction;
    } else if (m_phase <= -m_amplitude) {
        m_phase = -m_amplitude;
        m_direction = -m_direction;
    }
}
