// SPDX-License-Identifier: MIT
#pragma once

#include "RecentValues.h"

#include <cstddef>

/// A display that takes the picture handed over last at each of its blanks, as a clock for the
/// frames. Where these blanks are is learnt from the swaps: one that waits for the display returns
/// at a blank. Frames are planned so that each is finished just before one, and what it takes in is
/// read as late as its work allows.
///
/// Whether swaps wait at all is found out. Once most of them take longer than a millisecond, or
/// than a part of a short period, frames are begun for blanks on trial, every other one a little
/// earlier: a swap that waits takes the longer for it, any other one doesn't. Without a clock that
/// was found so, whoever asks keeps his own time.
class DisplayClock {
public:
    /// s that nearly all frames are to be finished before their blanks: for late wake-ups and what
    /// the window system does with the picture. Blanks that were missed all the same raise it;
    /// frames that would be shown a blank too early lower it.
    static constexpr double LEAST_MARGIN = 0.002, MOST_MARGIN = 0.008;

    /// What the window system says of the display, 1/s, true to a few percent; 0: there is none, or
    /// it doesn't say, and the display is no clock. Another value than before: another display.
    void setRefreshRate(double rate);
    /// Whether the frames are to be planned by it.
    bool isPacing() const { return m_state != State::free; }
    /// Whether it is known to be a clock.
    bool isFound() const { return m_state == State::found; }

    /// Chooses the blank for a frame that begins at `now` or later, which is no sooner than
    /// `shortest` after the one before, give or take what rates differ by that mean the same.
    /// Answers when to begin it.
    double plan(double now, double shortest);
    /// After a frame that began at `begin`, was finished and handed over at `finished`, from where
    /// control came back at `shown`.
    void addFrame(double begin, double finished, double shown);

    /// Where frames keep their own time: what to begin the next one earlier by than that, s, from
    /// then on; mostly 0. It shows whether swaps wait where the frames so far couldn't.
    double takeShift(double now);

    // As of the last call of `plan`.

    double getTarget() const { return m_target; } ///< the blank that the frame is for, s
    int getDivisor() const { return m_divisor; }  ///< blanks from frame to frame
    double getPeriod() const { return m_period; } ///< between two blanks, s
    /// The last frame came too late for its blank, or for the one that it should have been for.
    bool hasMissed() const { return m_missed; }

private:
    enum class State { free, trial, found };
    static constexpr int TRIAL = 24; ///< frames

    double nextBlank(double time) const;
    double getMargin() const;
    void noteMargin(double shown);
    void addBlank(double time);
    void fit();
    void judgeTrial();
    void giveUp();
    void enter(State state);

    double m_nominal = 0; ///< s; 0: no display
    State m_state = State::free;
    double m_period = 0, m_blank = 0; ///< blanks are at m_blank + i * m_period
    double m_target = 0;
    double m_margin = LEAST_MARGIN;
    int m_divisor = 1;
    bool m_slow = false;  ///< the blank that the frame should have been for was out of reach
    bool m_ample = false; ///< it could have begun earlier
    bool m_missed = false;
    int m_frames = 0;             ///< since the state began
    double m_retry = 0;           ///< not on trial before, s
    double m_pause = 0;           ///< s until the next trial, should this one fail
    double m_doubted = 0;         ///< frames were shifted then, s; 0: not yet
    double m_doubt = 0;           ///< s until they are again
    double m_plainly = 0;         ///< s that a swap takes longer when it plainly waits
    double m_dither = 0;          ///< s that frames are shifted by to see whether swaps wait
    int m_early = 0, m_odd = 0;   ///< of late: swaps that didn't wait, returns far from any blank
    RecentValues<120> m_work;     ///< s
    RecentValues<32> m_waits;     ///< how long swaps took, s
    RecentValues<TRIAL> m_untils; ///< from the end of a frame on trial to the blank, s
    /// Blanks that were seen: how many periods after the first, and how many seconds.
    RecentValues<64> m_counts, m_times;
    double m_first = 0, m_count = 0; ///< s of the first, and periods up to the last
};
