// SPDX-License-Identifier: MIT
#include "heli/logic/HandOper.h"

#include "ig/math/quat.h"
#include "ig/scene/ObjectPrefab.h"

#include <cmath>

using namespace ig;

bool HandOper::init(ObjectPrefab* commander) {
    if (!commander) return false;
    m_root = commander->getRoot();
    m_left_hand = commander->getNodeByName("left_hand");
    m_right_hand = commander->getNodeByName("right_hand");
    m_angle = 0;
    m_angle_limit = 45;
    m_swing_speed = 120;
    m_swing_dir = 1;
    return true;
}

void HandOper::update(float dt) {
    if (!m_root || !std::isfinite(dt)) return;
    m_angle += dt * m_swing_speed * static_cast<float>(m_swing_dir);
    if (m_angle >= m_angle_limit) {
        m_angle = m_angle_limit;
        m_swing_dir = -m_swing_dir;
    } else if (m_angle <= -m_angle_limit) {
        m_angle = -m_angle_limit;
        m_swing_dir = -m_swing_dir;
    }
    const dquat rotation(m_angle, 0.0, 0.0);
    if (m_left_hand) m_left_hand->setRotation(rotation);
    if (m_right_hand) m_right_hand->setRotation(rotation);
}
