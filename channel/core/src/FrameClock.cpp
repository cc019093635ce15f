// SPDX-License-Identifier: MIT
#include "FrameClock.h"

#include "program/Clock.h"

#include <algorithm>
#include <cmath>
#include <utility>

FrameClock::Time FrameClock::Time::ofSystem() {
    return {program::steadyNow,
            [](double time) { program::sleepUntil(std::llround(time * program::NS_PER_SECOND)); }};
}

FrameClock::FrameClock(double rate, double step, Time time)
    : m_time(std::move(time)), m_period(rate > 0 ? 1 / rate : 0), m_step(step) {}

float FrameClock::beginFrame() {
    const bool first = m_begin == 0;
    if (first) m_deadline = m_time.now();
    const bool waits = m_period > 0 && !first;
    const bool by_display = waits && m_display.isPacing();
    m_late = false;
    if (by_display)
        m_time.sleepUntil(m_display.plan(m_time.now(), m_period));
    else if (waits)
        waitForDeadline();
    m_begin = m_time.now();
    // The lead stays when the display ceases to be the clock: no frame goes back.
    if (by_display) m_lead = m_display.getTarget() - m_begin;
    if (by_display) m_deadline = m_begin;
    const double before = std::exchange(m_stamp, std::max(m_stamp, m_begin + m_lead));
    const double passed = first ? m_period : m_stamp - before;
    return static_cast<float>(m_step > 0 ? m_step : passed);
}

void FrameClock::waitForDeadline() {
    m_deadline += m_period - m_display.takeShift(m_begin);
    const double due = m_deadline;
    if (m_time.now() > m_deadline + m_period) m_deadline = m_time.now();
    m_time.sleepUntil(m_deadline);
    m_late = m_time.now() > due + m_period / 2;
}

void FrameClock::endShown(double finished, double shown) {
    const bool by_display = m_display.isPacing();
    m_display.addFrame(m_begin, finished, shown);
    if (m_period > 0 && by_display) m_late = m_display.hasMissed();
}

bool FrameClock::isBehind() const {
    return !m_display.isPacing() && (m_period <= 0 || m_time.now() >= m_deadline + m_period);
}

double FrameClock::getPeriod() const {
    return isOnDisplay() ? m_display.getDivisor() * m_display.getPeriod() : m_period;
}
