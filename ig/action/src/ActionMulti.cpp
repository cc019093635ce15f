// SPDX-License-Identifier: MIT
#include "ig/action/ActionMulti.h"

#include <algorithm>

namespace ig {

ActionMulti* ActionMulti::Create(const jVector<ActionInterval*>& actions) {
    auto* multi = memNew<ActionMulti>({"ig/action/ActionMulti", "ActionMulti::Create"});
    float longest = 0;
    for (ActionInterval* action : actions) {
        if (!action) continue;
        longest = std::max(longest, action->getDuration());
        if (multi)
            multi->m_actions.append(action);
        else
            drop(action);
    }
    if (multi) multi->setDuration(longest);
    return multi;
}

ActionMulti::~ActionMulti() {
    for (ActionInterval*& action : m_actions)
        drop(action);
}

void ActionMulti::setPause(bool pause) {
    ActionInterval::setPause(pause);
    for (ActionInterval* action : m_actions)
        if (action) action->setPause(pause);
}

bool ActionMulti::start() {
    for (ActionInterval*& action : m_actions)
        if (action && !action->start()) drop(action);
    return ActionInterval::start();
}

bool ActionMulti::step(float dt) {
    if (!ActionInterval::step(dt)) return false;
    for (ActionInterval*& action : m_actions) {
        if (isPause()) break;
        if (action) stepOne(action, dt);
    }
    return true;
}

void ActionMulti::stepOne(ActionInterval*& action, float dt) {
    action->step(dt);
    if (isPause() || !action->isDone()) return;
    ActionInterval* done = action;
    action = nullptr; // its handler may remove this action, which must not free it a second time
    done->trigger();
    drop(done);
}

bool ActionMulti::isDone() const {
    return std::all_of(m_actions.begin(), m_actions.end(),
                       [](const ActionInterval* action) { return !action; });
}

bool ActionMulti::forceDone() {
    bool all = true;
    for (ActionInterval* action : m_actions)
        all = (!action || action->forceDone()) && all;
    return ActionInterval::forceDone() && all;
}

void ActionMulti::release() {
    for (ActionInterval*& action : m_actions)
        drop(action);
    ActionInterval::release();
}

void ActionMulti::drop(ActionInterval*& action) {
    if (!action) return;
    ActionInterval* dropped = action;
    action = nullptr;
    dropped->release();
    delete dropped;
}

} // namespace ig
