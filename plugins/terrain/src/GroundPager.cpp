// SPDX-License-Identifier: MIT
#include "GroundPager.h"

#include "program/Process.h"

#include <chrono>

namespace ig {

namespace {

constexpr std::chrono::milliseconds PERIOD(250);
constexpr int RELEASED_EVERY = 4; ///< periods

} // namespace

GroundPager::GroundPager(std::shared_ptr<const HeightStack> ground) : m_ground(std::move(ground)) {}

void GroundPager::lookFrom(double longitude, double latitude) {
    const std::lock_guard lock(m_mutex);
    m_eyes.lookFrom(longitude, latitude);
    // Without a thread to spare the kernel takes back what it needs.
    program::beginThread(m_thread, [this](const std::stop_token& stop) { run(stop); });
}

void GroundPager::run(const std::stop_token& stop) {
    std::unique_lock lock(m_mutex);
    for (int period = 0; !stop.stop_requested(); period++) {
        const GroundEyes eyes = m_eyes;
        m_eyes.endPeriod();
        lock.unlock();
        eyes.fetch(*m_ground);
        if (period % RELEASED_EVERY == RELEASED_EVERY - 1) eyes.release(*m_ground);
        lock.lock();
        m_ended.wait_for(lock, stop, PERIOD, [] { return false; });
    }
}

} // namespace ig
