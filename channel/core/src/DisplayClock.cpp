// SPDX-License-Identifier: MIT
#include "DisplayClock.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr double SAME_RATE = 0.02; ///< of a period: 60.02 Hz and 60 frames/s mean the same
constexpr double WAITED = 0.0003;  ///< s: a swap that took longer returned at a blank
constexpr double PLAINLY = 0.001;  ///< s that a swap takes longer when it plainly waits
constexpr double DITHER = 0.002;   ///< s by which every other frame on trial begins earlier
/// Likewise of a period, where that is less.
constexpr double PLAIN_PART = 0.15, DITHER_PART = 0.3;
/// s before another trial; each time twice as long.
constexpr double FIRST_PAUSE = 5, LONGEST_PAUSE = 60;
/// s without a decision, from which on frames are shifted; each time twice as long.
constexpr double FIRST_DOUBT = 1, LONGEST_DOUBT = 60;
/// s by which a missed blank raises the margin, and in which it sinks to a third.
constexpr double RAISE = 0.001, CALM = 300;
constexpr double GAP = 0.25;          ///< s without a swap after which blanks are counted anew
constexpr std::size_t FEW = 16;       ///< periods that are needed to measure one
constexpr double MOST_DETUNED = 0.03; ///< of a period: how far off a window system is
constexpr int TOO_OFTEN = 8;          ///< frames

/// Slope of the line through points, as least squares have it.
template <std::size_t N, std::size_t M>
double slope(const RecentValues<N>& x, const RecentValues<M>& y, std::size_t count) {
    double mean_x = 0, mean_y = 0, xx = 0, xy = 0;
    for (std::size_t i = 0; i < count; i++) {
        mean_x += x[i] / static_cast<double>(count);
        mean_y += y[i] / static_cast<double>(count);
    }
    for (std::size_t i = 0; i < count; i++) {
        xx += (x[i] - mean_x) * (x[i] - mean_x);
        xy += (x[i] - mean_x) * (y[i] - mean_y);
    }
    return xx > 0 ? xy / xx : 0;
}

} // namespace

void DisplayClock::setRefreshRate(double rate) {
    const double period = rate > 0 ? 1 / rate : 0;
    if (period == m_nominal) return;
    m_nominal = m_period = period;
    m_retry = m_pause = 0;
    m_doubt = FIRST_DOUBT;
    m_doubted = 0;
    m_plainly = std::min(PLAINLY, PLAIN_PART * period);
    m_dither = std::min(DITHER, DITHER_PART * period);
    enter(State::free);
}

void DisplayClock::enter(State state) {
    m_state = state;
    m_frames = m_early = m_odd = 0;
    m_waits.clear();
    m_untils.clear();
}

// ------------------------------------------------------------------ planning

/// The first blank at that time or later.
double DisplayClock::nextBlank(double time) const {
    return m_blank + std::ceil((time - m_blank) / m_period) * m_period;
}

/// So much that frames whose work is the least are not shown a blank too early.
double DisplayClock::getMargin() const {
    const double scatter = m_work.getQuantile(0.95) - m_work.getQuantile(0.05);
    const double most = isFound() ? m_period - m_plainly - scatter : MOST_MARGIN;
    return std::min(m_margin, std::max(most, std::min(LEAST_MARGIN, m_period / 2)));
}

/// Most frames make the blank that is chosen. That nearly all make it counts less where it would
/// halve the rate: then the frame begins at once.
double DisplayClock::plan(double now, double shortest) {
    const double period = isFound() ? m_period : m_nominal; // on trial it may be anything
    m_divisor = static_cast<int>(std::max(std::ceil(shortest / period - SAME_RATE), 1.0));
    const double soonest = nextBlank(std::max(m_target + (m_divisor - 0.5) * m_period, now));
    const double done = now + m_work.getQuantile(0.75);
    m_slow = done > soonest;
    m_target = m_slow ? nextBlank(done) : soonest;
    const double earlier = m_state == State::trial && m_frames % 2 == 1 ? m_dither : 0;
    const double due = m_target - m_work.getQuantile(0.95) - getMargin() - earlier;
    m_ample = due > now;
    return due;
}

// ------------------------------------------------------------------ learning

void DisplayClock::addFrame(double begin, double finished, double shown) {
    if (m_nominal <= 0) return;
    const double wait = shown - finished;
    m_work.add(finished - begin);
    m_frames++;
    noteMargin(shown);
    if (m_state == State::free) {
        m_waits.add(wait);
        const bool mostly = m_waits.getCount() == 32 && m_waits.getQuantile(0.25) > m_plainly;
        if (!mostly || shown < m_retry) return;
        m_target = m_blank = shown;
        m_counts.clear();
        enter(State::trial);
        return;
    }
    const double blank = nextBlank(finished);
    if (m_state == State::trial && blank - finished > m_plainly) { // else it may wait for the next
        m_untils.add(blank - finished);
        m_waits.add(wait);
    }
    const bool in_time = finished < blank - m_plainly;
    m_early = !in_time ? m_early : shown < blank - m_plainly ? m_early + 1 : 0;
    if (wait > WAITED) addBlank(shown);
    if (m_state == State::trial && (m_untils.getCount() == TRIAL || m_frames > 4 * TRIAL))
        judgeTrial();
    if (m_state == State::found && m_early >= TOO_OFTEN) giveUp();
}

void DisplayClock::noteMargin(double shown) {
    const bool missed = isPacing() && shown > m_target + m_period / 2;
    const double sunk = (m_margin - LEAST_MARGIN) * (1 - m_period / CALM);
    m_margin = std::min(LEAST_MARGIN + sunk + (missed && m_ample ? RAISE : 0), MOST_MARGIN);
    m_missed = isFound() && (missed || m_slow);
}

/// Frames that come as often as blanks and are always finished just before one, or just after it,
/// don't show whether swaps wait.
double DisplayClock::takeShift(double now) {
    if (m_nominal <= 0 || isPacing() || now < m_retry) return 0;
    if (m_doubted == 0) m_doubted = now;
    if (now - m_doubted < m_doubt) return 0;
    m_doubted = now;
    m_doubt = std::min(2 * m_doubt, LONGEST_DOUBT);
    return m_dither;
}

/// The longer a frame on trial had to its blank, the longer the swap took: it waits.
void DisplayClock::judgeTrial() {
    if (m_untils.getCount() == TRIAL && slope(m_untils, m_waits, TRIAL) > 0.5)
        enter(State::found);
    else
        giveUp();
}

void DisplayClock::giveUp() {
    m_pause = std::clamp(2 * m_pause, FIRST_PAUSE, LONGEST_PAUSE);
    m_retry = m_target + m_pause;
    enter(State::free);
}

/// One that is far from where it was expected is a late wake-up; many of them are other blanks.
void DisplayClock::addBlank(double time) {
    const double before = m_counts.getCount() > 0 ? m_blank : time - 2 * GAP;
    const double steps = std::round((time - m_blank) / m_period);
    const bool odd = std::abs(time - m_blank - steps * m_period) > m_plainly;
    m_odd = odd ? m_odd + 1 : 0;
    if (odd && m_odd < TOO_OFTEN) return;
    if (odd || time - before > GAP) {
        m_counts.clear();
        m_times.clear();
        m_first = m_blank = time;
        m_count = 0;
        m_odd = 0;
    }
    m_count += std::round((time - m_blank) / m_period);
    m_counts.add(m_count);
    m_times.add(time - m_first);
    m_blank = time;
    fit();
}

/// The line through the blanks that were seen, which tells where the last one was.
void DisplayClock::fit() {
    const std::size_t count = m_counts.getCount();
    double least = m_counts[0], mean_count = 0, mean_time = 0;
    for (std::size_t i = 0; i < count; i++) {
        least = std::min(least, m_counts[i]);
        mean_count += m_counts[i] / static_cast<double>(count);
        mean_time += m_times[i] / static_cast<double>(count);
    }
    if (m_count - least < static_cast<double>(FEW)) return;
    m_period = std::clamp(slope(m_counts, m_times, count), m_nominal * (1 - MOST_DETUNED),
                          m_nominal * (1 + MOST_DETUNED));
    m_blank = m_first + mean_time + (m_count - mean_count) * m_period;
}
