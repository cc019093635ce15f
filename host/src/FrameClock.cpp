// SPDX-License-Identifier: MIT
#include "FrameClock.h"

#include <chrono>
#include <cmath>
#include <ctime>

FrameClock::FrameClock(double rate, double step)
    : m_period(rate > 0 ? 1 / rate : 0), m_step(step) {}

double FrameClock::now() {
    return std::chrono::duration<double>(std::chrono::steady_clock::now().time_since_epoch())
        .count();
}

float FrameClock::beginFrame() {
    const bool first = m_last == 0;
    if (first) m_deadline = now();
    if (m_period > 0 && !first) {
        m_deadline += m_period;
        if (now() > m_deadline + m_period) m_deadline = now();
        timespec deadline;
        deadline.tv_sec = static_cast<time_t>(m_deadline);
        deadline.tv_nsec = static_cast<long>((m_deadline - std::floor(m_deadline)) * 1e9);
        clock_nanosleep(CLOCK_MONOTONIC, TIMER_ABSTIME, &deadline, nullptr);
    }
    const double begin = now();
    const double passed = first ? m_period : begin - m_last;
    m_last = begin;
    return static_cast<float>(m_step > 0 ? m_step : passed);
}
