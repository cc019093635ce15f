// SPDX-License-Identifier: MIT
#include "ig/action/TimerManager.h"

#include "ig/base/jLog.h"

#include <cmath>

namespace ig {

TimerManager::Timer* TimerManager::addTimer(float period) {
    if (!std::isfinite(period) || period <= 0) {
        jLog::error("TimerManager::addTimer: %g s is not a period", static_cast<double>(period));
        return nullptr;
    }
    return m_timers.emplace_back(std::make_unique<Timer>(period)).get();
}

void TimerManager::removeTimer(Timer* timer) {
    for (const auto& held : m_timers)
        if (held.get() == timer) held->m_removed = true;
    if (!m_updating) std::erase_if(m_timers, [](const auto& held) { return held->m_removed; });
}

void TimerManager::update(float dt) {
    if (m_updating || !std::isfinite(dt) || dt < 0) return;
    m_updating = true;
    const std::size_t count = m_timers.size(); // what is added meanwhile waits for the next advance
    for (std::size_t i = 0; i < count; i++)
        if (!m_timers[i]->m_removed) advance(*m_timers[i], static_cast<double>(dt));
    m_updating = false;
    std::erase_if(m_timers, [](const auto& held) { return held->m_removed; });
}

void TimerManager::advance(Timer& timer, double dt) {
    timer.m_elapsed += dt;
    if (timer.m_elapsed + dt / 2 < timer.m_period) return;
    timer.m_elapsed -= timer.m_period;
    if (timer.m_elapsed >= timer.m_period)
        timer.m_elapsed = std::fmod(timer.m_elapsed, timer.m_period);
    for (int i = 0; i < timer.m_sig_expired.size() && !timer.m_removed; i++)
        timer.m_sig_expired[i](&timer);
}

} // namespace ig
