// SPDX-License-Identifier: MIT
#include "heli/kit/LogicActions.h"

#include "heli/kit/TorpedoInfo.h"
#include "ig/app/Engine.h"
#include "ig/scene/Node.h"

using namespace ig;

namespace {

const char* const SOURCE = "src/kit/LogicActions";

/// Makes an action and initialises it; null, with everything given back, when that fails.
template <class T, class... Args>
T* create(const char* function, Args... args) {
    T* action = memNew<T>({SOURCE, function});
    if (!action || action->init(args...)) return action;
    action->release();
    memDelete(action, {SOURCE, function});
    return nullptr;
}

} // namespace

// ------------------------------------------------------------------ torpedo

ActionEmitTorpedo* ActionEmitTorpedo::Create(TorpedoInfo* info, float delay) {
    return create<ActionEmitTorpedo>("ActionEmitTorpedo::Create", info, delay);
}

// The allocator soon hands the same address to another action, which the record must not take for
// this one.
ActionEmitTorpedo::~ActionEmitTorpedo() {
    if (m_info && m_info->action == this) m_info->action = nullptr;
}

bool ActionEmitTorpedo::init(TorpedoInfo* info, float delay) {
    if (!info) return false;
    m_info = info;
    m_delay = delay;
    m_limit = info->time_left;
    hideParachute();
    return true;
}

bool ActionEmitTorpedo::start() {
    m_done = false;
    m_elapsed = 0;
    return true;
}

bool ActionEmitTorpedo::step(float dt) {
    if (isPause()) return false;
    m_elapsed += dt;
    update(dt);
    const auto finish = [this] {
        if (!m_done) hideParachute();
        m_done = true;
    };
    if (m_elapsed >= m_limit) finish();
    Node* torpedo = m_info->torpedo;
    if (!torpedo) return true;
    if (Engine::get()->getEllipsoidModel()->toWGS(torpedo->getWorldPosition(), true).z <= 0)
        finish();
    if (!m_shown && m_elapsed > m_delay) {
        if (m_info->parachute) {
            m_info->parachute->setWorldTransform(torpedo->getWorldTransform());
            m_info->parachute->setEnabled(true);
        }
        m_shown = true;
    }
    return true;
}

bool ActionEmitTorpedo::forceDone() {
    m_done = true;
    return true;
}

void ActionEmitTorpedo::hideParachute() {
    if (m_info->parachute) m_info->parachute->setEnabled(false);
}

// ------------------------------------------------------------------ missile

ActionEmitMissile* ActionEmitMissile::Create(Node* node, float speed, float lifetime) {
    return create<ActionEmitMissile>("ActionEmitMissile::Create", node, speed, lifetime);
}

bool ActionEmitMissile::init(Node* node, float speed, float lifetime) {
    if (!node) return false;
    m_speed = speed;
    m_node = node;
    m_lifetime = lifetime;
    m_start = node->getWorldTransform();
    m_direction = {m_start.getY(), 0};
    return true;
}

bool ActionEmitMissile::start() {
    m_done = false;
    m_elapsed = 0;
    m_node->setWorldTransform(m_start);
    return true;
}

bool ActionEmitMissile::step(float dt) {
    if (isPause()) return true;
    m_elapsed += dt;
    update(dt);
    if (m_elapsed >= m_lifetime) {
        if (!m_done) m_node->setEnabled(false);
        m_done = true;
    }
    return true;
}

void ActionEmitMissile::update(float dt) {
    if (!m_node->isEnabled()) return;
    m_node->setPosition(m_node->getPosition() + m_direction.xyz() * (dt * m_speed));
}
