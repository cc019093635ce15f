// SPDX-License-Identifier: MIT
#pragma once

#include "ig/action/ActionInterval.h"

namespace ig {

/// Runs several actions together and is done when all of them are. Each one's completion handler is
/// called once, when that one is done, and the action is freed with it.
class ActionMulti : public ActionInterval {
public:
    /// Takes the actions over; null ones are skipped. When memory runs out, frees them and answers
    /// null. The duration is that of the longest.
    static ActionMulti* Create(const jVector<ActionInterval*>& actions);
    ~ActionMulti() override;

    /// Pauses or resumes every action with this one; done by one of them, it also holds back those
    /// that come after it in the same step.
    void setPause(bool pause) override;
    /// Starts every action; one that refuses is dropped.
    bool start() override;
    bool step(float dt) override;
    bool isDone() const override;
    bool forceDone() override;
    /// Releases and frees the actions that were not done, without calling their handlers.
    void release() override;

private:
    static void drop(ActionInterval*& action);
    void stepOne(ActionInterval*& action, float dt);

    jVector<ActionInterval*> m_actions; ///< owned; null once done
};

} // namespace ig
