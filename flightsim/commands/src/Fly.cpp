// SPDX-License-Identifier: MIT
#include "Fly.h"

#include "flightsim/mission/MissionFile.h"
#include "program/Clock.h"

#include <cmath>
#include <memory>

namespace flightsim {

using program::NS_PER_SECOND;

bool Fly::openMission(const FlyOptions& options, std::string& message) {
    m_options = options;
    auto mission = readMission(options.file, message);
    if (!mission) return false;
    m_mission = std::move(*mission);
    m_mission.reset = m_mission.reset && options.reset;
    auto plan = planFlight(m_mission, options.duration, message);
    if (!plan) return false;
    m_plan = std::move(*plan);
    return true;
}

bool Fly::open(const FlyOptions& options, std::string& message) {
    if (!openMission(options, message)) return false;
    if (!m_link.open(options.link, message)) return false;
    if (options.record.empty() ||
        m_writer.open(options.record, RecordingFormat::whole, program::wallNow_ns()))
        return true;
    message = m_writer.getMessage();
    return false;
}

bool Fly::run(const StopFlag& stop, std::string& message) {
    const double interval = m_options.speed / m_options.rate; // seconds of flight
    m_link.awaitFeedback(m_options.wait, stop);
    auto flight = std::make_unique<MissionFlight>(m_mission, m_plan.legs);
    bool good = true;
    for (std::int64_t n = 0; good; n++) {
        if (m_options.seconds >= 0 && double(n) * interval >= m_options.seconds) break;
        if (flight->isFinished() && m_options.loop)
            flight = std::make_unique<MissionFlight>(m_mission, m_plan.legs);
        const std::int64_t time_ns = recordTime_ns(n, m_options.rate);
        const UdpRecvData& now = flight->getRecord();
        if (!m_link.sendAt(time_ns, {reinterpret_cast<const std::uint8_t*>(&now), sizeof now},
                           stop))
            break;
        good = record(time_ns, now);
        if (flight->isFinished()) break;
        takeFeedback(*flight);
        flight->advance(interval);
        if (!flight->getFault().empty()) break;
    }
    message = flight->getFault();
    if (!m_writer.close() && !m_writer.getMessage().empty()) {
        if (message.empty()) message = m_writer.getMessage();
        m_writer.discard(); // the mission can be flown again
    }
    std::string link_message;
    if (!m_link.finish(link_message) && message.empty()) message = link_message;
    return message.empty();
}

/// Keeps a record that was sent, when a file is wanted for them. False when it can't be written.
bool Fly::record(std::int64_t time_ns, const UdpRecvData& record) {
    if (m_options.record.empty()) return true;
    bool good =
        m_writer.append(time_ns, {reinterpret_cast<const std::uint8_t*>(&record), sizeof record});
    if (time_ns >= m_next_flush_ns) {
        m_next_flush_ns = time_ns + NS_PER_SECOND;
        good = m_writer.flush() && good;
    }
    return good;
}

void Fly::takeFeedback(MissionFlight& flight) {
    const std::int64_t received = m_link.getFeedback().received;
    if (received == m_feedback_taken) return;
    m_feedback_taken = received;
    flight.takeFeedback(*m_link.getLastFeedback());
}

bool Fly::printProfile(std::FILE* out, std::string& message) const {
    const double interval = 1 / m_options.rate;
    MissionFlight flight(m_mission, m_plan.legs);
    std::fprintf(out, "%s\n", MissionFlight::profileHeading().c_str());
    double next_row = 0;
    for (std::int64_t n = 0;; n++) {
        const bool over = m_options.seconds >= 0 && double(n) * interval >= m_options.seconds;
        const bool last = over || flight.isFinished() || !flight.getFault().empty();
        if (last || flight.getTime() + interval / 2 > next_row) {
            std::fprintf(out, "%s\n", flight.profileRow().c_str());
            next_row += 1;
        }
        if (last) break;
        flight.advance(interval);
    }
    message = flight.getFault();
    return message.empty();
}

} // namespace flightsim
