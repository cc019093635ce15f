// SPDX-License-Identifier: MIT
#pragma once

#include "ig/action/Action.h"
#include "ig/base/Function.h"

namespace ig {

/// Lasts for its duration; by itself a delay with a completion handler.
class ActionInterval : public FiniteTimeAction {
public:
    using Completion = Function<void(Action*)>;

    /// `completion` is called once, with this action, when `duration` seconds are over; it may be
    /// empty. Null when memory ran out.
    static ActionInterval* Create(float duration, Completion completion = {});

    /// Back to the beginning.
    bool start() override;
    /// Adds `dt` to the elapsed time, which stops at the duration.
    bool step(float dt) override;
    /// True once the elapsed time has reached the duration.
    bool isDone() const override;
    bool forceDone() override;
    /// Calls the completion handler.
    void trigger() override;
    void release() override;

    /// Whether the action counts as done when it is taken away before its time: `release` then
    /// leaves `isDone` true. The completion handler stays uncalled all the same. False at first.
    virtual bool isDoneIfDel() const { return m_done_if_del; }
    virtual void setDoneIfDel(bool done) { m_done_if_del = done; }

protected:
    float m_elapsed = 0; ///< seconds since the start, in [0, duration]

private:
    Completion m_completion;
    bool m_done_if_del = false;
};

} // namespace ig
