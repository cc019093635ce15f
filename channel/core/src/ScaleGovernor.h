// SPDX-License-Identifier: MIT
#pragma once

#include <algorithm>
#include <array>
#include <cmath>

/// Chooses the render scale so that a frame rate holds: less detail when frames take too long, more
/// again when there is time to spare. Told the seconds that every frame took; answers a new scale
/// after some frames, by what most of them took, so that a slow frame now and then changes nothing.
///
/// A frame takes a fixed time and one that grows with the pixels, the square of the scale. Both are
/// estimated from the frames seen, by recursive least squares with forgetting (as a Kalman filter
/// whose state wanders): at one scale only their sum can be told, so that what isn't known is
/// learned by each step. What the scale can't save is not paid for in sharpness.
class ScaleGovernor {
public:
    static constexpr double BUDGET = 1 / 20.0; ///< of a frame, s
    static constexpr float LEAST = 0.5f;       ///< scale: below, pictures are blurred for little

    /// To begin with on a renderer without graphics hardware: as many pixels as 640 x 360.
    static float getSoftwareStart(int width, int height) {
        const float pixels = static_cast<float>(width) * static_cast<float>(height);
        return std::clamp(std::sqrt(640 * 360 / pixels), LEAST, 1.0f);
    }

    /// The scale for the frames to come, LEAST to 1, given the present one.
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
        const double took = *middle / BUDGET;
        learn(took, static_cast<double>(scale) * static_cast<double>(scale));
        if (took <= HIGHEST && took >= LOWEST) return scale;
        // Up step by step: what is above is known the less the farther it is.
        const float wanted = std::clamp(findScale(), LEAST, std::min(scale * MOST_UP, 1.0f));
        const float more = took < LOWEST ? 0 : LEAST_GAIN; // there: lower was no use
        const bool better = wanted > scale + more || (more > 0 && wanted < scale - LEAST_LOSS);
        return better ? wanted : scale;
    }

private:
    static constexpr std::size_t FEW = 3; ///< frames will do when they take long together
    static constexpr double LONG = 0.6;   ///< s
    // Shares of the budget: what is left alone, and what a new scale aims at.
    static constexpr double LOWEST = 0.7, HIGHEST = 0.95, AIM = 0.83;
    /// Of a frame's time at the least scale: what costs no more is left to the pixels. So little
    /// that a frame which would be in time at that scale still is.
    static constexpr double WORTH = 0.05;
    static constexpr double SEEN = 1.2; ///< times the pixels: fewer more are nothing gained
    static constexpr float MOST_UP = 1.25f;
    static constexpr float LEAST_GAIN = 0.05f, LEAST_LOSS = 0.01f; ///< of the scale, else it stays
    static constexpr double NOISE = 0.03 * 0.03; ///< of what most frames took, squared
    static constexpr double WANDER = 0.1 * 0.1;  ///< of each time from one answer to the next
    static constexpr double UNKNOWN = 1.5 * 1.5; ///< that either may have become at most

    /// Frames with so many pixels, as a share of all, took so long.
    void learn(double took, double pixels) {
        m_fixed_variance = std::min(m_fixed_variance + WANDER, UNKNOWN);
        m_pixel_variance = std::min(m_pixel_variance + WANDER, UNKNOWN);
        const double most = std::sqrt(m_fixed_variance * m_pixel_variance);
        m_covariance = std::clamp(m_covariance, -most, most);
        const double with_fixed = m_fixed_variance + m_covariance * pixels;
        const double with_pixels = m_covariance + m_pixel_variance * pixels;
        const double gain = 1 / (with_fixed + with_pixels * pixels + NOISE);
        const double missed = took - m_fixed - m_per_picture * pixels;
        m_fixed += gain * with_fixed * missed;
        m_per_picture += gain * with_pixels * missed;
        m_fixed_variance -= gain * with_fixed * with_fixed;
        m_covariance -= gain * with_fixed * with_pixels;
        m_pixel_variance -= gain * with_pixels * with_pixels;
        // Neither is less than nothing, and together they are what was seen.
        if (m_fixed < 0 || m_per_picture < LEAST_PER_PICTURE) {
            m_fixed = m_fixed < 0 ? 0 : std::max(took - LEAST_PER_PICTURE * pixels, 0.0);
            m_per_picture = std::max((took - m_fixed) / pixels, LEAST_PER_PICTURE);
        }
    }
    float findScale() const {
        constexpr double LEAST_PIXELS = static_cast<double>(LEAST) * static_cast<double>(LEAST);
        const double aimed = (AIM - m_fixed) / m_per_picture;
        const double useful = LEAST_PIXELS + WORTH * (m_fixed / m_per_picture + LEAST_PIXELS);
        const double spent = useful > SEEN * LEAST_PIXELS ? useful : LEAST_PIXELS;
        return static_cast<float>(std::sqrt(std::max(aimed, spent)));
    }

    static constexpr double LEAST_PER_PICTURE = 0.02;
    // Shares of the budget: the fixed time, and that of a picture's pixels at scale 1.
    double m_fixed = 0.3, m_per_picture = 1;
    double m_fixed_variance = UNKNOWN, m_pixel_variance = UNKNOWN, m_covariance = 0;
    std::array<double, 12> m_seconds{};
    std::size_t m_count = 0;
    double m_sum = 0;
};
