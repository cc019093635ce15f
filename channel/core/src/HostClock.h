// SPDX-License-Identifier: MIT
#pragma once

#include <array>
#include <cstddef>

/// When the flight simulation's records were due, seen from when they arrived: a simulation takes
/// its steps evenly, but its datagrams come some milliseconds early or late. Over the last WINDOW
/// seconds arrival is a straight line in the count of steps,
///
///   arrival = due of step 0 + period · step + jitter,
///
/// which least squares find. Where a host stood still for a while and goes on, the line goes on
/// from there.
class HostClock {
public:
    /// The newest record arrived at `arrival`, s, the host's `steps`, above 0, after the one that
    /// was noted before.
    void note(double arrival, double steps);
    /// Enough has come to tell period and due.
    bool isKnown() const { return m_size >= KNOWN; }
    double getPeriod() const { return m_period; } ///< of the host's steps, s; 0 before two records
    double getDue() const { return m_due; }       ///< of the newest record, s

private:
    static constexpr double WINDOW = 2;   ///< s; a longer one follows a host's drift too late
    static constexpr double BREAK = 0.05; ///< s; what is later was no jitter
    static constexpr std::size_t KNOWN = 4;

    struct Sample {
        double arrival = 0;
        double step = 0; ///< counted from some step of the past
    };
    void shift(double time);
    void fit();

    std::array<Sample, 512> m_samples; ///< a ring: the last WINDOW seconds at most frame rates
    std::size_t m_newest = 0, m_size = 0;
    double m_period = 0, m_due = 0;
};
