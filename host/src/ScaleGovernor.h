// SPDX-License-Identifier: MIT
#pragma once

#include <algorithm>
#include <array>

/// Chooses the render scale so that a frame rate holds: less detail when frames take too long, more
/// again when there is time to spare. Told the seconds that every frame took; answers a new scale
/// at most once in so many frames, by what most of them took, so that a slow frame now and then
/// changes nothing. A step down saves less than what calls for a step up, so that the scale
/// settles.
class ScaleGovernor {
public:
    static constexpr int FRAMES = 12;          ///< between two scales
    static constexpr double BUDGET = 1 / 20.0; ///< of a frame, s

    /// The scale for the frames to come, given the present one.
    float update(double seconds, float scale) {
        m_seconds[static_cast<std::size_t>(m_count)] = seconds;
        if (++m_count < FRAMES) return scale;
        m_count = 0;
        const auto middle = m_seconds.begin() + FRAMES / 2;
        std::nth_element(m_seconds.begin(), middle, m_seconds.end());
        if (*middle > BUDGET) return scale * 0.85f;
        if (*middle < 0.6 * BUDGET) return scale * 1.1f;
        return scale;
    }

private:
    std::array<double, FRAMES> m_seconds{};
    int m_count = 0;
};
