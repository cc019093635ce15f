// SPDX-License-Identifier: MIT
#include "HostClock.h"

#include <algorithm>
#include <cmath>

void HostClock::note(double arrival, double steps) {
    const Sample last = m_samples[m_newest];
    if (m_size >= KNOWN) {
        const double late = arrival - (m_due + steps * m_period);
        if (std::abs(late) > std::max(3 * m_period, BREAK)) shift(late);
    }
    m_newest = (m_newest + 1) % m_samples.size();
    m_samples[m_newest] = {arrival, m_size > 0 ? last.step + steps : 0};
    m_size = std::min(m_size + 1, m_samples.size());
    fit();
}

void HostClock::shift(double time) {
    for (Sample& sample : m_samples)
        sample.arrival += time;
}

/// Times and steps count from the newest sample, so that the sums stay small.
void HostClock::fit() {
    const Sample newest = m_samples[m_newest];
    double n = 0, x = 0, y = 0, xx = 0, xy = 0;
    std::size_t kept = 0;
    for (; kept < m_size; kept++) {
        const Sample& s = m_samples[(m_newest + m_samples.size() - kept) % m_samples.size()];
        const double step = s.step - newest.step, time = s.arrival - newest.arrival;
        if (time < -WINDOW) break;
        n++, x += step, y += time, xx += step * step, xy += step * time;
    }
    m_size = kept;
    const double spread = n * xx - x * x;
    m_period = spread > 0 ? (n * xy - x * y) / spread : 0;
    m_due = newest.arrival + (y - m_period * x) / n;
}
