// SPDX-License-Identifier: MIT
#include "channel/interface/PaceMonitor.h"

#include "channel/interface/Texts.h"
#include "ig/base/jLog.h"

#include <algorithm>
#include <cmath>
#include <numeric>

using namespace ig;

namespace {

constexpr double CLASS_ENDS[] = {0.9, 1.1, 1.5, 2.5};

std::string milliseconds(double seconds, int places = 1) {
    return Texts::decimal(seconds * 1e3, places);
}

} // namespace

void PaceMonitor::addFrame(const FrameTiming& timing) {
    m_interval = m_begun ? timing.begin - m_last_begin : -1;
    if (m_interval >= 0) { // else frames of a box ran inside it
        m_intervals.add(m_interval);
        if (timing.period > 0)
            m_shares[std::lower_bound(CLASS_ENDS, std::end(CLASS_ENDS),
                                      m_interval / timing.period) -
                     CLASS_ENDS]++;
    }
    m_last_begin = std::max(m_last_begin, timing.begin);
    m_last = timing;
    m_begun = true;
    watchPace();
    watchLateness();
    addAge();
}

// ------------------------------------------------------------------ what is going on

void PaceMonitor::watchPace() {
    const double rate = m_last.refresh_rate;
    const int divisor = static_cast<int>(std::lround(rate * m_last.period));
    if ((rate > 0) == (m_told_rate > 0) && divisor == m_told_divisor) return;
    m_told_rate = rate;
    m_told_divisor = divisor;
    const std::string left_out =
        divisor > 1 ? "every " + std::to_string(divisor) + ". picture a frame, " : "";
    if (rate <= 0)
        jLog::message(
            "pacing: pictures no longer wait for the display: frames keep their own time");
    else
        jLog::message("pacing: the display sets the pace: %.2f Hz, %s%.1f frames/s, --fps being a "
                      "limit",
                      rate, left_out.c_str(), 1 / m_last.period);
}

void PaceMonitor::watchLateness() {
    m_late += m_last.late;
    m_late_recently += m_last.late - m_recent[m_next];
    m_recent[m_next] = m_last.late;
    m_works[m_next] = m_last.work;
    m_next = (m_next + 1) % WATCHED;
    m_watched = std::min(m_watched + 1, WATCHED);
    if (m_last.late) m_last_late = m_last.begin;
    if (!m_is_late && m_late_recently >= MANY) {
        m_is_late = true;
        const double work =
            std::accumulate(m_works.begin(), m_works.end(), 0.0) / static_cast<double>(m_watched);
        jLog::warning("pacing: %s: their work takes %.1f of %.1f ms; a lower --fps, a smaller "
                      "--size or --scale, or less else on this machine helps",
                      getStatus().c_str(), work * 1e3, m_last.period * 1e3);
    } else if (m_is_late && m_last.begin - m_last_late > HOLD) {
        m_is_late = false;
        jLog::message("pacing: frames are in time again");
    }
}

void PaceMonitor::addAge() {
    if (m_last.records != m_records) {
        for (const double age : m_waiting_ages)
            m_ages.add(age);
        m_waiting_ages.clear();
        m_records = m_last.records;
    }
    if (m_records == 0) return;
    m_age = std::max(m_last.handed_over - m_last.last_record, 0.0);
    if (m_last.silent)
        m_waiting_ages.clear();
    else
        m_waiting_ages.push_back(m_age);
}

// ------------------------------------------------------------------ telling

std::string PaceMonitor::getStatus() const {
    if (!m_is_late || m_late_recently == 0) return {};
    return "frames are late: " + std::to_string(m_late_recently) + " of the last " +
           std::to_string(m_watched);
}

/// Of the intervals, percent.
std::vector<std::string> PaceMonitor::listShares() const {
    const std::uint64_t all = std::accumulate(m_shares, m_shares + CLASSES, std::uint64_t{0});
    std::vector<std::string> texts = {milliseconds(m_last.period, 2)};
    for (const std::uint64_t share : m_shares)
        texts.push_back(Texts::decimal(
            all > 0 ? 100 * static_cast<double>(share) / static_cast<double>(all) : 0.0, 1));
    return texts;
}

std::string PaceMonitor::getStatistics() const {
    std::string text = Texts::fill(
        "statistics.intervals", {milliseconds(m_intervals.getQuantile(0.5), 2),
                                 milliseconds(m_intervals.getQuantile(0.99), 2),
                                 milliseconds(m_intervals.getLongest()), std::to_string(m_late)});
    if (m_last.period > 0)
        text += '\n' + Texts::fillIn(Texts::get("statistics.shares"), listShares());
    if (m_last.refresh_rate > 0)
        text += '\n' + Texts::fill("statistics.display", {Texts::decimal(m_last.refresh_rate, 2)});
    if (m_ages.getCount() > 0)
        text += '\n' + Texts::fill("statistics.ages", {milliseconds(m_ages.getQuantile(0.5)),
                                                       milliseconds(m_ages.getQuantile(0.99))});
    return text;
}

std::string PaceMonitor::getSummary() const {
    if (m_intervals.getCount() == 0) return {};
    std::string text = "frame to frame: " + milliseconds(m_intervals.getQuantile(0.5), 2) +
                       " ms p50, " + milliseconds(m_intervals.getQuantile(0.99), 2) + " ms p99, " +
                       milliseconds(m_intervals.getLongest()) + " ms max; " +
                       std::to_string(m_late) + " frames late\n";
    if (m_last.period > 0)
        text += Texts::fillIn("in periods of {1} ms: up to 0.9: {2} %, to 1.1: {3} %, to 1.5: "
                              "{4} %, to 2.5: {5} %, more: {6} %\n",
                              listShares());
    if (m_ages.getCount() > 0)
        text += "age of the newest record at hand-over: " + milliseconds(m_ages.getQuantile(0.5)) +
                " ms p50, " + milliseconds(m_ages.getQuantile(0.99)) + " ms p99\n";
    return text;
}
