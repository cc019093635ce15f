// SPDX-License-Identifier: MIT
#include "PoseSmoother.h"

#include <algorithm>
#include <cmath>
#include <utility>

using namespace ig;

namespace {

constexpr double EASE = 0.06;       ///< s in which an error falls to a third
constexpr double BRISK_EASE = 0.02; ///< likewise, for BRISK_TIME after a jerk
constexpr double BRISK_TIME = 0.15; ///< s
constexpr double JERK = 20;         ///< m/s², beyond which a picture that lags shows

// What a helicopter that is flown as hard as can be does.
constexpr double MOST_ACCELERATION = 30;       ///< m/s²
constexpr double MOST_TURN_ACCELERATION = 400; ///< degrees/s²
// What goes beyond that in one record and still passes for motion: a bump, a host that is uneven.
constexpr double UNEVEN = 0.3;    ///< m
constexpr double UNEVEN_TURN = 5; ///< degrees
constexpr double SHORTEST = 0.6;  ///< of a host's step that is not even, in even ones
constexpr double MOST_LOST = 5;   ///< records in a row
constexpr int MOST_ODD = 6;       ///< likewise uneven; beyond, a helicopter has become faster

constexpr double LONGEST_LEAD = 0.1; ///< s without a record, until the motion runs out
constexpr double RUN_OUT = 0.05;     ///< s that it takes
constexpr double SILENCE = 0.7;      ///< s after which the pose is shown that was told

} // namespace

PoseSmoother::Shift PoseSmoother::between(const Pose& from, const Pose& to) {
    dquat turn = to.attitude * inverse(from.attitude);
    if (turn.w < 0) turn = {-turn.x, -turn.y, -turn.z, -turn.w}; // the shorter way round
    const dvec3 axis(turn.x, turn.y, turn.z);
    const double sine = length(axis);
    const double angle = 2 * std::atan2(sine, turn.w) * RAD_TO_DEG<double>;
    return {to.position - from.position, sine > 0 ? axis * (angle / sine) : dvec3()};
}

Pose PoseSmoother::shifted(const Pose& pose, const Shift& shift) {
    const double angle = length(shift.turn);
    const dquat& is = pose.attitude;
    return {pose.position + shift.way, angle > 0 ? normalize(dquat(shift.turn, angle) * is) : is};
}

Pose PoseSmoother::update(const Frame& frame) {
    const double passed = std::max(frame.time - m_time, 0.0);
    m_time = frame.time;
    const Pose expected = shifted(predict(), m_error);
    if (frame.records > 0) take(frame, expected);
    if (frame.cut || frame.pose != m_told) { // or what poses it was no record
        stand(frame.pose);
    } else if (m_moving && m_time - m_due > SILENCE) {
        stand(m_told);
        m_error = between(m_told, expected);
    }
    m_error = m_error * std::exp(-passed / (m_time < m_brisk_until ? BRISK_EASE : EASE));
    return shifted(predict(), m_error);
}

void PoseSmoother::take(const Frame& frame, const Pose& expected) {
    const Shift change = between(m_told, frame.pose), step_before = m_step;
    const double counted = frame.pose == m_told ? 0 : countSteps(change, frame.records);
    const double steps = counted > 0 ? counted : frame.records;
    const bool stood = !m_moving;
    m_clock.note(frame.arrival, steps);
    stand(frame.pose);
    m_step = change * (1 / steps);
    m_due = m_clock.getDue();
    if (counted == 0 || !m_clock.isKnown()) return;
    m_moving = true;
    m_error = between(predict(), stood ? m_told : expected);
    const double period = m_clock.getPeriod();
    if (length(m_step.way - step_before.way) > JERK * steps * period * period)
        m_brisk_until = m_time + BRISK_TIME;
}

/// How many of the host's steps a change took, so that it goes on as evenly as a helicopter flies;
/// 0: it is no motion. Nobody tells which records were lost, nor when the host made one step longer
/// than others; a helicopter under way does.
double PoseSmoother::countSteps(const Shift& change, int records) {
    const int odd_before = std::exchange(m_odd, 0);
    if (isEven(change, records)) return records;
    const double step2 = length2(m_step.way), period = m_clock.getPeriod();
    const bool under_way = std::sqrt(step2) > 2 * MOST_ACCELERATION * period * period;
    const double steps = under_way ? dot(change.way, m_step.way) / step2 : 0;
    if (odd_before < MOST_ODD && steps > SHORTEST * records && steps < records + MOST_LOST &&
        isEven(change, steps)) {
        m_odd = odd_before + 1;
        return steps;
    }
    const bool jumped = length(change.way - m_step.way * records) > UNEVEN ||
                        length(change.turn - m_step.turn * records) > UNEVEN_TURN;
    return jumped ? 0 : records;
}

bool PoseSmoother::isEven(const Shift& change, double steps) const {
    const double time = steps * m_clock.getPeriod();
    return length(change.way - m_step.way * steps) <= MOST_ACCELERATION * time * time &&
           length(change.turn - m_step.turn * steps) <= MOST_TURN_ACCELERATION * time * time;
}

void PoseSmoother::stand(const Pose& pose) {
    m_told = pose;
    m_moving = false;
    m_error = {};
}

/// The pose told last, carried on to the present time without its error.
Pose PoseSmoother::predict() const {
    const double period = m_clock.getPeriod();
    if (!m_moving || period <= 0) return m_told;
    const double longest = std::max(LONGEST_LEAD, 3 * period);
    const double age = std::max(m_time - m_due, -LONGEST_LEAD);
    const double late = std::clamp(age - longest, 0.0, RUN_OUT);
    const double lead = std::min(age, longest) + late - late * late / (2 * RUN_OUT);
    return shifted(m_told, m_step * (lead / period));
}
