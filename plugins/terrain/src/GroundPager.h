// SPDX-License-Identifier: MIT
#pragma once

#include "GroundEyes.h"

#include <condition_variable>
#include <memory>
#include <mutex>
#include <thread>

namespace ig {

/// Keeps the part of a built world in memory that eyes are near to or about to reach, and gives
/// back what they have left, on a thread of its own. What the ground answers doesn't depend on it:
/// a place that isn't in memory is read when somebody asks for it. Owned by the terrain.
class GroundPager {
public:
    explicit GroundPager(std::shared_ptr<const HeightStack> ground);
    GroundPager(const GroundPager&) = delete;
    GroundPager& operator=(const GroundPager&) = delete;
    ~GroundPager() = default;

    /// Where an eye is, degrees: every frame that is drawn for it. The thread begins with the first
    /// and gets no signals.
    void lookFrom(double longitude, double latitude);

private:
    void run(const std::stop_token& stop);

    std::shared_ptr<const HeightStack> m_ground;
    std::mutex m_mutex; ///< of the eyes
    std::condition_variable_any m_ended;
    GroundEyes m_eyes;
    std::jthread m_thread; ///< ends first
};

} // namespace ig
