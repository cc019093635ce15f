// SPDX-License-Identifier: MIT
#include "FrameClock.h"

#include "program/Clock.h"

#include <cmath>
#include <utility>

FrameClock::Time FrameClock::Time::ofSystem() {
    return {program::steadyNow,
            [](double time) { program::sleepUntil(std::llround(time * program::NS_PER_SECOND)); }};
}

FrameClock::FrameClock(double rate, double step, Time time)
    : m_time(std::move(time)), m_period(rate > 0 ? 1 / rate : 0), m_step(step) {}

float FrameClock::beginFrame() {
    const bool first = m_last == 0;
    if (first) m_deadline = m_time.now();
    if (m_period > 0 && !first) {
        m_deadline += m_period;
        if (m_time.now() > m_deadline + m_period) m_deadline = m_time.now();
        m_time.sleepUntil(m_deadline);
    }
    const double begin = m_time.now();
    const double passed = first ? m_period : begin - m_last;
    m_last = begin;
    return static_cast<float>(m_step > 0 ? m_step : passed);
}
