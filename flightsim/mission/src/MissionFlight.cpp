// SPDX-License-Identifier: MIT
#include "flightsim/mission/MissionFlight.h"

#include <algorithm>
#include <array>
#include <cstdio>

namespace flightsim {

namespace {

constexpr double LONGEST_STEP = 0.005; // s, for the helicopter

HelicopterState startOf(const Mission& mission) {
    HelicopterState state;
    state.position = mission.start;
    state.heading = mission.heading;
    state.rotor = mission.rotor;
    state.gear_load = GRAVITY;
    return state;
}

/// Where the record says that the wind blows to. The flight takes at most a whole gale.
Enu windOf(const UdpRecvData& record) {
    constexpr double STRONGEST = 28;
    const double speed = std::clamp(double(record.weather_value_a), 0.0, STRONGEST);
    return Enu::ofCourse(double(record.weather_angle) + 180, speed);
}

Change resetChange() {
    Change change;
    change.values.emplace_back(findField(recordFields(), "command"), 6);
    return change;
}

/// Flies the legs to their end and tells how long they take.
double flownSeconds(const Mission& mission, const std::vector<Leg>& legs, std::string& message) {
    constexpr double STEP = 0.02;
    MissionFlight flight(mission, legs);
    while (!flight.isFinished() && flight.getFault().empty())
        flight.advance(STEP);
    message = flight.getFault();
    return flight.getTime();
}

/// Shares out the seconds that the plan lacks. A second round takes in that a moving ship has got
/// elsewhere by then.
bool stretch(const Mission& mission, double duration, FlightPlan& plan, std::string& message) {
    double shares = 0;
    for (const Leg& leg : plan.legs)
        shares += leg.stretch;
    for (int round = 0; round < 2 && shares > 0 && plan.seconds < duration; round++) {
        const double rest = duration - plan.seconds;
        for (Leg& leg : plan.legs)
            leg.seconds += rest * leg.stretch / shares;
        plan.seconds = flownSeconds(mission, plan.legs, message);
        if (!message.empty()) return false;
    }
    return true;
}

} // namespace

std::optional<FlightPlan> planFlight(const Mission& mission, std::optional<double> duration,
                                     std::string& message) {
    constexpr double TOLERANCE = 1; // s
    if (!duration) duration = mission.duration;
    auto legs = selectLegs(mission, duration, message);
    if (!legs) return std::nullopt;
    FlightPlan plan{std::move(*legs), 0, {}};
    plan.seconds = flownSeconds(mission, plan.legs, message);
    if (!message.empty()) return std::nullopt;
    if (!duration) return plan;
    if (!stretch(mission, *duration, plan, message)) return std::nullopt;
    if (std::abs(plan.seconds - *duration) > TOLERANCE) {
        std::array<char, 128> text;
        std::snprintf(text.data(), text.size(), "the mission takes %.1f s, not %.1f s",
                      plan.seconds, *duration);
        plan.warning = text.data();
    }
    return plan;
}

MissionFlight::MissionFlight(const Mission& mission, std::vector<Leg> legs)
    : m_path(mission.path), m_record(fairWeatherRecord()), m_helicopter(startOf(mission)),
      m_guidance(mission, std::move(legs)) {
    if (mission.reset) m_schedule.add(resetChange(), 0);
    for (const Change& change : mission.changes)
        m_schedule.add(change, 0);
    for (const Change& change : m_guidance.getLeg().changes)
        m_schedule.add(change, 0);
    m_scheduled_legs = 1;
    updateRecord();
    m_wind = windOf(m_record);
}

void MissionFlight::advance(double dt) {
    const int steps = std::max(1, static_cast<int>(std::ceil(dt / LONGEST_STEP - 1e-9)));
    for (int i = 0; i < steps; i++)
        step(dt / steps);
    if (m_guidance.isStuck(m_time) && m_fault.empty())
        m_fault =
            missionMessage(m_path, m_guidance.getLeg().line, m_guidance.getLeg().column,
                           "leg \"" + m_guidance.getLeg().name + "\" doesn't come to its end");
    updateRecord();
}

void MissionFlight::step(double dt) {
    constexpr double WIND_LAG = 1; // s: the record's wind may jump, the air doesn't
    const Enu wind = windOf(m_record);
    m_wind += (wind - m_wind) * (dt / WIND_LAG);
    const HelicopterControls controls = m_guidance.update(getState(), m_wind, m_time);
    const Surroundings around{m_wind, m_guidance.getPoint().velocity,
                              m_guidance.restAltitude(getState(), m_time)};
    m_helicopter.step(controls, around, dt);
    m_time += dt;
    for (; m_scheduled_legs <= m_guidance.getLegIndex(); m_scheduled_legs++)
        for (const Change& change : m_guidance.getLegs()[m_scheduled_legs].changes)
            m_schedule.add(change, m_guidance.getLegTime());
}

void MissionFlight::updateRecord() {
    constexpr double ROUNDING = 1e-6; // s: a change at 10 s belongs to the record of 9.999999999 s
    m_schedule.apply(m_time + ROUNDING, m_record);
    const HelicopterState& s = getState();
    m_record.latitude = s.position.latitude;
    m_record.longitude = s.position.longitude;
    m_record.altitude = static_cast<float>(s.position.altitude);
    m_record.pitch = static_cast<float>(s.pitch);
    m_record.roll = static_cast<float>(s.roll);
    m_record.heading = static_cast<float>(s.heading);
    m_record.rotor_speed = static_cast<float>(s.rotor);
}

void MissionFlight::takeFeedback(const UdpSendData& feedback) {
    const double height = feedback.height_above_ground;
    // All zero: nothing lies below.
    const bool nothing = feedback.ground_latitude == 0 && feedback.ground_longitude == 0;
    if (nothing || !std::isfinite(height)) return;
    m_guidance.takeSurface(getState().position.altitude - height, getState(), m_time);
}

std::string MissionFlight::profileHeading() {
    return "  time leg             longitude    latitude altitude   speed  climb heading  pitch   "
           "roll  bank error rotor";
}

std::string MissionFlight::profileRow() const {
    const HelicopterState& s = getState();
    const double air_speed = (s.velocity - m_wind).horizontal();
    const double bank = std::atan(air_speed * s.heading_rate * RADIANS / GRAVITY) / RADIANS;
    std::array<char, 192> text;
    std::snprintf(text.data(), text.size(),
                  "%6.1f %-14.14s %11.6f %11.6f %8.2f %7.2f %6.2f %7.2f %6.2f %6.2f %11.2f %5.0f",
                  m_time, m_guidance.getLeg().name.c_str(), s.position.longitude,
                  s.position.latitude, s.position.altitude, s.velocity.horizontal(), s.velocity.up,
                  s.heading, s.pitch, s.roll, s.roll - bank, s.rotor);
    return text.data();
}

} // namespace flightsim
