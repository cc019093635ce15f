// SPDX-License-Identifier: MIT
#pragma once

#include "ig/base/Function.h"

#include <memory>
#include <vector>

namespace ig {

/// Repeating timers that are advanced with the frame.
///
/// A timer can only expire at the end of an advance, and does so at the advance that ends nearest
/// to the time it is due: after `elapsed += dt`, when elapsed + dt/2 >= period. Waiting until the
/// due time is past would be wrong for a timer as short as a frame: with frame times that jitter
/// about the period, half of the frames would end a moment too early, and a receiver polled by the
/// timer would get nothing in one frame and two frames' data in the next. On average a timer keeps
/// its period, since what an expiry is early or late stays in the elapsed time.
///
/// There is at most one expiry in an advance: a handler that drains a queue has nothing to do the
/// second time. Periods that were missed in a long frame are dropped.
class TimerManager {
public:
    class Timer {
    public:
        /// Called at every expiry with this timer.
        SignalList<Timer*> m_sig_expired;
    };

    TimerManager() = default;
    /// Timers have one owner and their handlers mean one receiver, so a copy starts empty, and a
    /// manager that is assigned to keeps its own timers.
    TimerManager(const TimerManager&) {}
    TimerManager& operator=(const TimerManager&) { return *this; }

    /// A timer, owned by the manager, that first expires one period from now. Null, after an error
    /// message, unless `period` is finite and above 0. Added from a handler, it runs from the next
    /// advance on.
    Timer* addTimer(float period);
    /// Advances all timers, in the order in which they were added. A `dt` that is negative or no
    /// finite number is ignored. Not from a handler.
    void update(float dt);

private:
    struct Running {
        double period;      ///< seconds
        double elapsed = 0; ///< since the last due time, in [-dt/2, period)
        Timer timer = {};
    };
    static void advance(Running& running, double dt);

    std::vector<std::unique_ptr<Running>> m_timers;
    bool m_updating = false;
};

} // namespace ig
