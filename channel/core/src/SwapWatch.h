// SPDX-License-Identifier: MIT
#pragma once

#include <limits>

/// Whether swaps may wait for the display. Window systems hold back the swaps of a window that
/// nobody sees, some for a second each, and the link would stand still with them. After one that
/// took that long none waits for a while; when the next that may does so too, none until there is a
/// sign that the window is seen again.
class SwapWatch {
public:
    static constexpr double PATIENCE = 0.25; ///< s that a swap may take
    static constexpr double PAUSE = 5;       ///< s after the first that took longer

    bool mayWait(double now) const { return now >= m_until; }
    /// After a swap that might wait, and ended at `now`.
    void addSwap(double took, double now) {
        m_held = took > PATIENCE ? m_held + 1 : 0;
        if (m_held > 0)
            m_until = m_held == 1 ? now + PAUSE : std::numeric_limits<double>::infinity();
    }
    /// The window has come back, was moved, resized, entered, or got the keyboard.
    void noteSign() { m_until = 0; }

private:
    int m_held = 0;     ///< swaps in a row that took too long
    double m_until = 0; ///< s
};
