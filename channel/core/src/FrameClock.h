// SPDX-License-Identifier: MIT
#pragma once

#include <functional>

/// Paces the frames and tells how long each lasts. In real time frames begin at the deadlines of
/// the asked rate, which are absolute, so that no error adds up; after a stall the schedule starts
/// anew instead of catching up.
class FrameClock {
public:
    /// What frames are paced by: seconds on a clock that never jumps, and waiting until then.
    struct Time {
        std::function<double()> now;
        std::function<void(double)> sleepUntil;
        static Time ofSystem();
    };

    /// `rate` in frames per second, 0: don't wait. With a `step` above 0 every frame counts as that
    /// many seconds.
    FrameClock(double rate, double step, Time time = Time::ofSystem());

    /// Waits until the next frame is due and begins it. Returns the seconds that it advances the
    /// scene by: the time since the last frame began, or the fixed step. The first frame counts as
    /// one period.
    float beginFrame();

private:
    Time m_time;
    double m_period; ///< 0: don't wait
    double m_step;
    double m_deadline = 0;
    double m_last = 0;
};
