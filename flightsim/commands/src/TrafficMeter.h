// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <map>
#include <span>
#include <string>
#include <vector>

namespace flightsim {

/// What is known of the datagrams of one direction that were seen on their way. It only reckons;
/// times are on the steady clock.
class TrafficMeter {
public:
    /// `size`: of a right datagram, bytes.
    explicit TrafficMeter(std::size_t size) : m_size(size) {}

    void take(std::span<const std::uint8_t> datagram, const std::string& sender,
              std::int64_t steady_ns);
    /// What came, from whom, how evenly. Rate and longest interval are those since the line before;
    /// the first line, before anything came, is the beginning.
    std::string line(std::int64_t now_ns);
    /// The same since the beginning.
    std::string summary(std::int64_t now_ns) const;

    /// The last datagram of the right size; empty when there was none.
    const std::vector<std::uint8_t>& getLast() const { return m_last; }

private:
    /// What was true when a span began.
    struct Mark {
        std::int64_t time_ns = 0;
        std::int64_t received = 0;
        std::int64_t longest_ns = 0; ///< interval since then
    };
    std::string tell(const Mark& since, std::int64_t now_ns) const;

    std::size_t m_size;
    std::vector<std::uint8_t> m_last;
    std::map<std::string, std::int64_t> m_senders; ///< what came from each
    std::string m_sender;                          ///< of the last datagram
    std::int64_t m_received = 0;
    std::int64_t m_unusual = 0; ///< of another size
    /// Intervals of more than twice the usual one: as records carry no count, nothing else tells
    /// that some are missing.
    std::int64_t m_gaps = 0;
    std::int64_t m_last_ns = 0;
    double m_usual_ns = 0;        ///< interval, smoothed over some sixteen
    std::int64_t m_intervals = 0; ///< in that
    Mark m_begin;
    Mark m_line; ///< the last one
};

/// The fields of a datagram side by side, in three columns, each with its value and unit. A value
/// that is not plausible carries a mark.
std::string fieldColumns(bool feedback, std::span<const std::uint8_t> datagram);

} // namespace flightsim
