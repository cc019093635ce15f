// SPDX-License-Identifier: MIT
#pragma once

#include "DisplayClock.h"

#include <functional>

/// Paces the frames and tells how long each lasts. In real time frames begin at the deadlines of
/// the asked rate, which are absolute, so that no error adds up; after a stall the schedule starts
/// anew instead of catching up. In a window whose swaps wait for the display these are the clock:
/// frames begin as late as they may to be finished for a blank, and the asked rate is an upper
/// limit, kept by leaving out whole blanks.
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

    /// Before a frame: the refresh rate of the display that shows it, 1/s; 0: none does, or nobody
    /// knows.
    void setRefreshRate(double rate) { m_display.setRefreshRate(rate); }
    /// Waits until the next frame is due and begins it. Returns the seconds that it advances the
    /// scene by: the time since the last frame began, or the fixed step. The first frame counts as
    /// one period. Where the display is the clock it is the time between the blanks that the two
    /// frames are for.
    float beginFrame();
    /// After a window has shown the frame: when it was finished and handed over, and when control
    /// came back from there.
    void endShown(double finished, double shown);

    /// The frame began more than half a period after its time, or its blank was missed.
    bool isLate() const { return m_late; }
    /// The next frame is due, and no display sets the pace.
    bool isBehind() const;
    double getBegin() const { return m_begin; } ///< of the frame, s
    /// What is asked for between the beginnings of two frames, s; 0: nothing is.
    double getPeriod() const;
    /// Refresh rate of the display as measured while it is the clock; 0 while it isn't.
    double getRefreshRate() const { return isOnDisplay() ? 1 / m_display.getPeriod() : 0; }

private:
    bool isOnDisplay() const { return m_period > 0 && m_display.isFound(); }
    void waitForDeadline();

    Time m_time;
    DisplayClock m_display;
    double m_period; ///< 0: don't wait
    double m_step;
    double m_deadline = 0;
    double m_begin = 0;
    double m_stamp = 0; ///< of the frame, whose differences are the frames' lengths, s
    double m_lead = 0;  ///< from a frame's beginning to its stamp, s
    bool m_late = false;
};
