// SPDX-License-Identifier: MIT
#include "Replay.h"

#include <cmath>

namespace flightsim {

namespace {

/// Flight time of a recorded time at a replay's speed.
std::int64_t scaled(std::int64_t recorded_ns, double speed) {
    return speed == 1 ? recorded_ns : std::llround(double(recorded_ns) / speed);
}

} // namespace

bool ReplaySource::open(const ReplayOptions& options, std::string& message) {
    m_options = options;
    m_lap_ns = 0;
    m_held.clear();
    m_held_sent = 0;
    if (!m_reader.open(options.file)) {
        message = m_reader.getMessage();
        return false;
    }
    m_selection = options.hold ? Selection{} : Selection::ofSeconds(options.from, options.seconds);
    if (!flightsim::survey(m_reader, options.file, m_selection, m_survey, message)) return false;
    return !options.hold || openHeld(message);
}

bool ReplaySource::openHeld(std::string& message) {
    Record record;
    while (m_reader.next(record) == ReadStatus::record) {
        if (record.number != *m_options.hold) continue;
        m_held.assign(record.datagram.begin(), record.datagram.end());
        return true;
    }
    message = "\"" + m_options.file + "\" has no record " + std::to_string(*m_options.hold) +
              ": it holds " + std::to_string(m_survey.records) + ", numbered from 0";
    return false;
}

std::optional<ReplaySource::Step> ReplaySource::next(std::string& message) {
    if (m_options.hold) return nextHeld();
    for (;;) {
        Record record;
        const ReadStatus status = m_reader.next(record);
        if (status == ReadStatus::malformed) {
            message = m_reader.getMessage();
            return std::nullopt;
        }
        if (status != ReadStatus::record || record.time_ns >= m_selection.until_ns) {
            if (!m_options.loop) return std::nullopt;
            // The first record follows the last one as any record follows another.
            m_lap_ns += m_survey.last_ns - m_survey.first_ns + m_survey.meanInterval_ns();
            m_reader.rewind();
        } else if (m_selection.contains(record)) {
            const std::int64_t time_ns = m_lap_ns + record.time_ns - m_survey.first_ns;
            return Step{scaled(time_ns, m_options.speed), record.datagram};
        }
    }
}

std::optional<ReplaySource::Step> ReplaySource::nextHeld() {
    const std::int64_t time_ns = m_held_sent++ * m_survey.meanInterval_ns();
    if (m_options.seconds >= 0 && double(time_ns) * 1e-9 >= m_options.seconds) return std::nullopt;
    return Step{scaled(time_ns, m_options.speed), m_held};
}

bool Replay::open(const ReplayOptions& options, std::string& message) {
    m_options = options;
    return m_source.open(options, message) && m_link.open(options.link, message);
}

bool Replay::run(const StopFlag& stop, std::string& message) {
    message.clear();
    while (const auto step = m_source.next(message))
        if (!m_link.sendAt(step->time_ns, step->datagram, stop)) break;
    std::string file_message;
    const bool finished = m_link.finish(file_message);
    if (message.empty()) message = file_message;
    return finished && message.empty();
}

} // namespace flightsim
