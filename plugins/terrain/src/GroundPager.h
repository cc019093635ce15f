// SPDX-License-Identifier: MIT
#pragma once

#include "HeightFile.h"
#include "HeightStack.h"

#include <condition_variable>
#include <mutex>
#include <thread>

namespace ig {

/// Keeps the part of a built world in memory that an eye is near to or about to reach, and gives
/// back what it has left, on a thread of its own. What the ground answers doesn't depend on it: a
/// place that isn't in memory is read when somebody asks for it. Owned by the terrain.
class GroundPager {
public:
    explicit GroundPager(std::shared_ptr<const HeightStack> ground);
    GroundPager(const GroundPager&) = delete;
    GroundPager& operator=(const GroundPager&) = delete;
    ~GroundPager() = default;

    /// Where an eye is, degrees: every frame, or whenever it moves. The thread begins with the
    /// first and gets no signals. The last one told counts.
    void lookFrom(double longitude, double latitude);

private:
    struct Place {
        double longitude = 0, latitude = 0;
    };
    void run(const std::stop_token& stop);
    /// Samples of a field around a place, as far as it reaches.
    static HeightFile::Window around(const TerrainGrid& grid, const Place& place, int reach);

    std::shared_ptr<const HeightStack> m_ground;
    std::mutex m_mutex; ///< of the place
    std::condition_variable_any m_ended;
    Place m_place;
    std::jthread m_thread; ///< ends first
};

} // namespace ig
