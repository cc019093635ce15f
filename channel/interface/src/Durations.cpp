// SPDX-License-Identifier: MIT
#include "channel/interface/Durations.h"

#include <algorithm>
#include <cmath>

namespace {
constexpr double SHORTEST = 1e-5; ///< s; the first step has all that is shorter too
constexpr double STEP = 1.001;
} // namespace

void Durations::add(double seconds) {
    const double step = std::log(std::max(seconds, SHORTEST) / SHORTEST) / std::log(STEP);
    m_counts[std::min(static_cast<std::size_t>(step), STEPS - 1)]++;
    m_count++;
    m_longest = std::max(m_longest, seconds);
}

double Durations::getQuantile(double share) const {
    if (m_count == 0) return 0;
    const auto rank = static_cast<std::uint64_t>(std::ceil(share * static_cast<double>(m_count)));
    std::uint64_t passed = 0;
    std::size_t step = 0;
    while (step < STEPS - 1 && (passed += m_counts[step]) < rank)
        step++;
    const double middle = SHORTEST * std::pow(STEP, static_cast<double>(step) + 0.5);
    return std::min(middle, m_longest);
}
