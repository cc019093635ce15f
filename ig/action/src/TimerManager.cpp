// SPDX-License-Identifier: MIT
#include "ig/action/TimerManager.h"

#include "ig/base/jLog.h"

#include <cmath>

namespace ig {

TimerManager::Timer* TimerManager::addTimer(float period) {
    if (!std::isfinite(period) || period <= 0) {
        jLog::error("TimerManager::addTimer: %g s is not a period", period);
        return nullptr;
    }
    return &m_timers.emplace_back(new Running{period})->timer;
}

void TimerManager::update(float dt) {
    if (m_updating || !std::isfinite(dt) || dt < 0) return;
    m_updating = true;
    const std::size_t count = m_timers.size(); // what is added meanwhile waits for the next advance
    for (std::size_t i = 0; i < count; i++)
        advance(*m_timers[i], dt);
    m_updating = false;
}

void TimerManager::advance(Running& running, double dt) {
    running.elapsed += dt;
    if (running.elapsed + dt / 2 < running.period) return;
    running.elapsed -= running.period;
    if (running.elapsed >= running.period)
        running.elapsed = std::fmod(running.elapsed, running.period);
    emit(running.timer.m_sig_expired, &running.timer);
}

} // namespace ig
