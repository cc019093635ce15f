// SPDX-License-Identifier: MIT
#pragma once

#include "common/wire/UdpRecvData.h"
#include "common/wire/UdpSendData.h"
#include "flightsim/helicopter/Helicopter.h"
#include "flightsim/mission/Guidance.h"
#include "flightsim/mission/Mission.h"
#include "flightsim/mission/RecordFields.h"

#include <optional>
#include <string>
#include <vector>

namespace flightsim {

/// What a mission is flown like.
struct FlightPlan {
    std::vector<Leg> legs;
    double seconds = 0;  ///< how long it takes without feedback from the channel
    std::string warning; ///< not empty: the duration asked for can't be kept
};

/// Selects the legs for a duration, flies them without sending anything, and hands the time that is
/// left over to the legs that may be stretched. `duration` as in `selectLegs`. Nothing, with
/// `message`, when the mission can't be flown.
std::optional<FlightPlan> planFlight(const Mission& mission, std::optional<double> duration,
                                     std::string& message);

/// A mission being flown: pilot, helicopter, weather and the record that tells of them. It knows no
/// clock: whoever flies it asks for the record of now and advances it from record to record.
class MissionFlight {
public:
    MissionFlight(const Mission& mission, std::vector<Leg> legs);

    /// The host data record of now, ready to send.
    const UdpRecvData& getRecord() const { return m_record; }
    /// Flies on by `dt` seconds, of any length, and makes the next record.
    void advance(double dt);
    /// The channel's latest feedback; heights in it refine those of the mission.
    void takeFeedback(const UdpSendData& feedback);

    bool isFinished() const { return m_guidance.isFinished(); }
    /// Not empty: the flight can't go on as the mission wants it.
    const std::string& getFault() const { return m_fault; }

    double getTime() const { return m_time; }
    const Guidance& getGuidance() const { return m_guidance; }

    /// One line of the flown profile, and its heading. The bank error is that of a coordinated
    /// turn: roll less the angle whose tangent is airspeed · turn rate / g.
    static std::string profileHeading();
    std::string profileRow() const;

private:
    const HelicopterState& getState() const { return m_helicopter.getState(); }
    void step(double dt);
    void updateRecord();

    std::string m_path; ///< of the mission, for the fault's message
    double m_time = 0;
    RecordSchedule m_schedule;
    UdpRecvData m_record;
    Enu m_wind; ///< of the air over ground: from `weather_angle`, at `weather_value_a` m/s
    Helicopter m_helicopter;
    Guidance m_guidance;
    std::size_t m_scheduled_legs = 0; ///< legs whose changes are in the schedule
    std::string m_fault;
};

} // namespace flightsim
