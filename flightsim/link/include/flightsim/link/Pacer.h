// SPDX-License-Identifier: MIT
#pragma once

#include <cmath>
#include <cstdint>

namespace flightsim {

/// How far behind schedule datagrams left.
struct PacingStats {
    std::int64_t count = 0;
    std::int64_t moved = 0; ///< times that the schedule was given up and laid anew
    double sum_ns = 0;
    double sum_squares_ns2 = 0;
    std::int64_t max_ns = 0;

    double mean_us() const { return count ? sum_ns / double(count) * 1e-3 : 0; }
    double rms_us() const { return count ? std::sqrt(sum_squares_ns2 / double(count)) * 1e-3 : 0; }
    double max_us() const { return double(max_ns) * 1e-3; }
};

/// Flight time of record `n` at `rate` records a second. Worked out from the number, so that a long
/// flight doesn't drift from the clock.
inline std::int64_t recordTime_ns(std::int64_t n, double rate) {
    return std::llround(double(n) * 1e9 / rate);
}

/// Lays the times of a flight onto the steady clock. It only reckons: the sender asks for the
/// deadline, waits, and tells when it sent.
///
/// The flight's first datagram is due at once and fixes the schedule; every other deadline counts
/// from there, so that errors of single waits don't add up. A sender that falls behind catches up
/// without bunching: two datagrams are never closer than half the time between them on the
/// schedule. One that falls behind by more than two seconds, as a suspended process does, doesn't
/// catch up: the schedule moves. A busy machine doesn't hold it up for so long.
class Pacer {
public:
    /// The steady-clock time at which the datagram of flight time `time_ns` is due. Flight times
    /// must not decrease. `now_ns`: the steady clock.
    std::int64_t due(std::int64_t time_ns, std::int64_t now_ns);
    /// The datagram asked about last leaves now.
    void sent(std::int64_t now_ns);
    std::int64_t getLastSent_ns() const { return m_sent_ns; }
    const PacingStats& getStats() const { return m_stats; }

private:
    std::int64_t m_origin_ns = 0; ///< flight time 0 on the steady clock
    std::int64_t m_time_ns = 0;   ///< flight time of the datagram asked about last
    std::int64_t m_sent_ns = 0;   ///< when it left
    bool m_started = false;
    PacingStats m_stats;
};

} // namespace flightsim
