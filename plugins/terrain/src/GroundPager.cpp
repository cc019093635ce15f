// SPDX-License-Identifier: MIT
#include "GroundPager.h"

#include "program/Process.h"

#include <chrono>

namespace ig {

namespace {

constexpr std::chrono::milliseconds PERIOD(250);
constexpr int RELEASED_EVERY = 4; ///< periods
/// Samples from the eye that are read before anybody asks, and those that stay once they are read:
/// with pages of 1024 samples at most 40 MiB of each grid.
constexpr int READ_AHEAD = 320, KEPT = 1024;
constexpr double LEAD = 10 / 0.25; ///< periods of flight that it looks ahead: 10 s
constexpr double FASTEST = 0.004;  ///< degrees in a period; an eye that goes farther has jumped

} // namespace

GroundPager::GroundPager(std::shared_ptr<const HeightStack> ground) : m_ground(std::move(ground)) {}

void GroundPager::lookFrom(double longitude, double latitude) {
    const std::lock_guard lock(m_mutex);
    m_place = {longitude, latitude};
    // Without a thread to spare the kernel takes back what it needs.
    program::beginThread(m_thread, [this](const std::stop_token& stop) { run(stop); });
}

HeightFile::Window GroundPager::around(const TerrainGrid& grid, const Place& place, int reach) {
    const double column = grid.getColumn(place.longitude), row = grid.getRow(place.latitude);
    const auto limit = [](double at, int end) {
        return static_cast<int>(std::clamp(at, 0.0, static_cast<double>(end)));
    };
    return {limit(column - reach, grid.columns), limit(column + reach, grid.columns),
            limit(row - reach, grid.rows), limit(row + reach, grid.rows)};
}

void GroundPager::run(const std::stop_token& stop) {
    std::unique_lock lock(m_mutex);
    Place before = m_place;
    for (int period = 0; !stop.stop_requested(); period++) {
        const Place now = m_place;
        const double east = std::remainder(now.longitude - before.longitude, 360);
        const double north = now.latitude - before.latitude;
        before = now;
        lock.unlock();
        Place ahead = now;
        if (std::max(std::abs(east), std::abs(north)) < FASTEST)
            ahead = {now.longitude + east * LEAD, now.latitude + north * LEAD};
        for (const HeightStack::Layer& layer : m_ground->getLayers()) {
            const HeightFile* file = layer.field->getFile();
            if (!file) continue;
            const TerrainGrid& grid = layer.field->getGrid();
            file->fetch(around(grid, now, READ_AHEAD / 2));
            file->fetch(around(grid, ahead, READ_AHEAD));
            if (period % RELEASED_EVERY == RELEASED_EVERY - 1)
                file->release({around(grid, now, KEPT)});
        }
        lock.lock();
        m_ended.wait_for(lock, stop, PERIOD, [] { return false; });
    }
}

} // namespace ig
