// SPDX-License-Identifier: MIT
#include "ig/action/ActionInterval.h"

#include <algorithm>
#include <utility>

namespace ig {

ActionInterval* ActionInterval::Create(float duration, Completion completion) {
    auto* action = memNew<ActionInterval>({"ig/action/ActionInterval", "ActionInterval::Create"});
    if (!action) return nullptr;
    action->setDuration(duration);
    action->m_completion = std::move(completion);
    return action;
}

bool ActionInterval::start() {
    m_elapsed = 0;
    return true;
}

bool ActionInterval::step(float dt) {
    if (!FiniteTimeAction::step(dt)) return false;
    m_elapsed = std::min(m_elapsed + dt, getDuration());
    return true;
}

// Written so that a duration that is no number ends the action instead of keeping it for ever.
bool ActionInterval::isDone() const { return !(m_elapsed < getDuration()); }

bool ActionInterval::forceDone() {
    m_elapsed = getDuration();
    return true;
}

void ActionInterval::trigger() {
    if (m_completion) m_completion(this);
}

void ActionInterval::release() {
    if (isDoneIfDel()) m_elapsed = getDuration();
}

} // namespace ig
