// SPDX-License-Identifier: MIT
#pragma once

#include <algorithm>
#include <array>
#include <cstddef>

/// The last N values of something, of which it tells quantiles.
template <std::size_t N>
class RecentValues {
public:
    void add(double value) {
        m_values[m_next] = value;
        m_next = (m_next + 1) % N;
        m_count = std::min(m_count + 1, N);
    }
    void clear() { m_next = m_count = 0; }
    std::size_t getCount() const { return m_count; }
    /// Any of them, below their count; in the order in which they came until there are N.
    double operator[](std::size_t i) const { return m_values[i]; }
    /// The value that this share of them doesn't exceed; 0 when there is none.
    double getQuantile(double share) const {
        if (m_count == 0) return 0;
        std::array<double, N> sorted = m_values;
        const auto at = [&sorted](std::size_t i) {
            return sorted.begin() + static_cast<std::ptrdiff_t>(i);
        };
        const auto rank = static_cast<std::size_t>(share * static_cast<double>(m_count - 1) + 0.5);
        std::nth_element(at(0), at(rank), at(m_count));
        return sorted[rank];
    }

private:
    std::array<double, N> m_values{};
    std::size_t m_next = 0, m_count = 0;
};
