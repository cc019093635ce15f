// SPDX-License-Identifier: MIT
#pragma once

#include <algorithm>
#include <array>
#include <cmath>

/// Chooses the render scale so that a frame rate holds: less detail when frames take too long, more
/// again when there is time to spare. Told the seconds that every frame took; answers a new scale
/// after some frames, by what most of them took, so that a slow frame now and then changes nothing.
///
/// A frame takes a fixed time and one that grows with the pixels, the square of the scale. A step
/// aims at 0.8 of the budget as if there were no fixed time: so the frames after a step down never
/// take less than that, nor those after a step up more, and the scale settles.
class ScaleGovernor {
public:
    static constexpr double BUDGET = 1 / 20.0; ///< of a frame, s

    /// The scale for the frames to come, given the present one.
    float update(double seconds, float scale) {
        m_seconds[m_count++] = seconds;
        m_sum += seconds;
        const bool enough = m_count == m_seconds.size() || (m_count >= FEW && m_sum > LONG);
        if (!enough) return scale;
        const auto middle = m_seconds.begin() + static_cast<std::ptrdiff_t>(m_count / 2);
        std::nth_element(m_seconds.begin(), middle,
                         m_seconds.begin() + static_cast<std::ptrdiff_t>(m_count));
        m_count = 0;
        m_sum = 0;
        if (*middle <= BUDGET && *middle >= 0.6 * BUDGET) return scale;
        const double step = std::sqrt(0.8 * BUDGET / std::max(*middle, 1e-6));
        return scale * static_cast<float>(std::clamp(step, 0.5, 1.25));
    }

private:
    static constexpr std::size_t FEW = 3; ///< frames will do when they take long together
    static constexpr double LONG = 0.6;   ///< s
    std::array<double, 12> m_seconds{};
    std::size_t m_count = 0;
    double m_sum = 0;
};
