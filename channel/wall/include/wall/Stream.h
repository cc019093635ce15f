// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <map>
#include <span>
#include <vector>

namespace wall {

/// The latest run's stream, put together of pieces that come in any order, more than once, or late.
/// Holds all of it, compressed as it is some 40 MB an hour, so that a display can begin again.
class Stream {
public:
    /// Pieces of earlier runs are passed over; one of a later run begins that.
    void add(std::uint64_t run, std::uint64_t offset, std::uint64_t size,
             std::span<const std::uint8_t> bytes);
    /// What follows what was taken so far, as far as it has come without a gap.
    std::vector<std::uint8_t> take();
    void restart() { m_taken = 0; }
    bool hasMore() const { return m_taken < m_bytes.size(); }
    std::uint64_t getRun() const { return m_run; } ///< 0: none yet
    std::uint64_t getSize() const { return m_size; }

private:
    void join(std::uint64_t offset, std::span<const std::uint8_t> bytes);

    std::uint64_t m_run = 0;
    std::uint64_t m_size = 0;          ///< that is known to have been sent
    std::vector<std::uint8_t> m_bytes; ///< without a gap
    std::size_t m_taken = 0;           ///< of those
    /// Behind a gap, by offset.
    std::map<std::uint64_t, std::vector<std::uint8_t>> m_ahead;
    std::size_t m_ahead_size = 0; ///< bytes
};

} // namespace wall
