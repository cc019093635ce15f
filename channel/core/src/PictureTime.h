// SPDX-License-Identifier: MIT
#pragma once

#include <cmath>

/// The time that a frame's picture is for, as what moves between records is shown at: even where
/// the frames' beginnings are not. In a window frames begin earlier when their work grows, while
/// the blanks that they are for come evenly, and so do the frames' lengths. The lengths are
/// therefore added up. Where they are no real time, with a fixed step, the beginnings tell.
class PictureTime {
public:
    /// Once per frame: when it began, and its length, s. Returns the picture's time on the clock of
    /// the beginnings.
    double next(double begin, double length) {
        m_time += length;
        if (std::abs(m_time - begin) > MOST_OFF) m_time = m_since = begin;
        return begin - m_since < PROVEN ? begin : m_time;
    }

private:
    static constexpr double MOST_OFF = 0.1; ///< s: what frames begin earlier by is less
    static constexpr double PROVEN = 0.5;   ///< s for which the lengths must have been true

    double m_time = -1;  ///< s; no frame's yet
    double m_since = -1; ///< the lengths are added up from here, s
};
