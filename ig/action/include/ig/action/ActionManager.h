// SPDX-License-Identifier: MIT
#pragma once

#include "ig/base/jVector.h"

namespace ig {

class Action;

/// Owns running actions and steps them, once a frame, in the order in which they were added.
///
/// All operations but `update` may be called at any time, also by an action that is being stepped
/// and by a completion handler, about any action including that one: what is removed is not stepped
/// again, what is added is stepped from the next `update` on. An action that is removed during its
/// own step is paused at once and freed after it returns.
class ActionManager {
public:
    ActionManager() = default;
    /// Actions have one owner, so a copy starts empty, and a manager that is assigned to keeps its
    /// own actions.
    ActionManager(const ActionManager&) {}
    ActionManager& operator=(const ActionManager&) { return *this; }
    /// Removes all actions.
    ~ActionManager();

    /// Takes `action` over, pauses it or not and starts it. Null and an action that the manager
    /// already holds are ignored; one whose start fails is released and freed.
    void addAction(Action* action, bool paused);
    /// Releases and frees the action without calling its completion handler. A pointer that is not
    /// held (any more) is ignored and never looked through.
    void removeAction(Action* action);
    void removeAllActions();

    /// Steps every action by `dt` seconds (what is negative or no number counts as 0). A finished
    /// one leaves the manager, is triggered once, released and freed. Not from inside an action.
    void update(float dt);

    /// Number of actions held.
    int size() const;

private:
    void stepAt(int i, float dt);
    void drop(Action* action);
    void compact();

    // Entries are set to null while anything walks over them, and closed up at the end.
    jVector<Action*> m_actions;
    int m_walks = 0;
    Action* m_current = nullptr; ///< being stepped or finished
    bool m_current_removed = false;
};

} // namespace ig
