// SPDX-License-Identifier: MIT
#include "flightsim/link/Pacer.h"

#include "program/Clock.h"

#include <algorithm>

namespace flightsim {

std::int64_t Pacer::due(std::int64_t time_ns, std::int64_t now_ns) {
    constexpr std::int64_t GIVE_UP_NS = 2 * program::NS_PER_SECOND;
    const std::int64_t step_ns = time_ns - m_time_ns;
    m_time_ns = time_ns;
    if (!m_started) {
        m_started = true;
        m_origin_ns = now_ns - time_ns;
        return now_ns;
    }
    if (now_ns - (m_origin_ns + time_ns) > GIVE_UP_NS) {
        m_origin_ns = std::max(now_ns, m_sent_ns + step_ns) - time_ns;
        m_stats.moved++;
    }
    return std::max(m_origin_ns + time_ns, m_sent_ns + step_ns / 2);
}

void Pacer::sent(std::int64_t now_ns) {
    m_sent_ns = now_ns;
    const std::int64_t late_ns = now_ns - (m_origin_ns + m_time_ns);
    m_stats.count++;
    m_stats.sum_ns += double(late_ns);
    m_stats.sum_squares_ns2 += double(late_ns) * double(late_ns);
    m_stats.max_ns = std::max(m_stats.max_ns, late_ns);
}

} // namespace flightsim
