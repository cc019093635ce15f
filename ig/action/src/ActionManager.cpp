// SPDX-License-Identifier: MIT
#include "ig/action/ActionManager.h"

#include "ig/action/Action.h"

#include <cmath>

namespace ig {

ActionManager::~ActionManager() { removeAllActions(); }

void ActionManager::addAction(Action* action, bool paused) {
    if (!action || action == m_current || m_actions.find(action) >= 0) return;
    action->setPause(paused);
    m_actions.append(action);
    // Found again by pointer afterwards: start may remove the action.
    if (!action->start()) removeAction(action);
}

void ActionManager::removeAction(Action* action) {
    const int i = action ? m_actions.find(action) : -1;
    if (i < 0) return;
    m_actions[i] = nullptr;
    m_walks++;
    drop(action);
    m_walks--;
    compact();
}

void ActionManager::removeAllActions() {
    m_walks++;
    const int count = m_actions.size(); // what a release adds stays
    for (int i = 0; i < count; i++) {
        Action* action = m_actions[i];
        m_actions[i] = nullptr;
        if (action) drop(action);
    }
    m_walks--;
    compact();
}

// Frees an action that is off the list already. The one whose code is running is only paused: what
// it drives stands still, and `stepAt` frees it.
void ActionManager::drop(Action* action) {
    if (action == m_current) {
        m_current_removed = true;
        action->setPause(true);
        return;
    }
    action->release();
    delete action;
}

void ActionManager::update(float dt) {
    if (m_current) return;
    if (!std::isfinite(dt) || dt < 0) dt = 0;
    m_walks++;
    const int count = m_actions.size(); // what is added meanwhile waits for the next frame
    for (int i = 0; i < count; i++)
        if (m_actions[i]) stepAt(i, dt);
    m_walks--;
    compact();
}

void ActionManager::stepAt(int i, float dt) {
    Action* action = m_actions[i];
    m_current = action;
    m_current_removed = false;
    action->step(dt);
    if (!m_current_removed) {
        if (!action->isDone()) {
            m_current = nullptr;
            return;
        }
        m_actions[i] = nullptr;
        action->trigger();
    }
    action->release();
    m_current = nullptr;
    delete action;
}

void ActionManager::compact() {
    if (m_walks) return;
    int kept = 0;
    for (Action* action : m_actions)
        if (action) m_actions[kept++] = action;
    m_actions.resize(kept);
}

int ActionManager::size() const {
    int count = 0;
    for (const Action* action : m_actions)
        count += action != nullptr;
    return count;
}

} // namespace ig
