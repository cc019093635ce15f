// SPDX-License-Identifier: MIT
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

/// How often durations of every size came, over a run of any length in bounded memory: counted in
/// steps of a thousandth from 10 µs to 100 s.
class Durations {
public:
    void add(double seconds);
    std::uint64_t getCount() const { return m_count; }
    /// The duration that this share of them doesn't exceed, true to a thousandth; 0 when there is
    /// none.
    double getQuantile(double share) const;
    double getLongest() const { return m_longest; } ///< s, exactly

private:
    static constexpr std::size_t STEPS = 16127;

    std::array<std::uint32_t, STEPS> m_counts{};
    std::uint64_t m_count = 0;
    double m_longest = 0;
};
