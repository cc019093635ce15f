// SPDX-License-Identifier: MIT
#pragma once

/// Chooses the render scale so that a frame rate holds: less detail when frames take too long, more
/// again when there is time to spare. Told the seconds of work of every frame; answers a new scale
/// at most once in so many frames, so that one slow frame changes nothing.
class ScaleGovernor {
public:
    /// The scale for the frames to come, given the present one.
    float update(double seconds, float scale) {
        m_sum += seconds;
        if (++m_frames < FRAMES) return scale;
        const double mean = m_sum / m_frames;
        m_sum = 0;
        m_frames = 0;
        if (mean > BUDGET) return scale * 0.85f;
        if (mean < 0.6 * BUDGET) return scale * 1.1f;
        return scale;
    }

private:
    static constexpr int FRAMES = 12;
    static constexpr double BUDGET = 1 / 20.0; ///< s
    double m_sum = 0;
    int m_frames = 0;
};
