// SPDX-License-Identifier: MIT
#pragma once

#include "flightsim/link/HostLink.h"
#include "flightsim/mission/MissionFlight.h"
#include "flightsim/recording/Recording.h"

#include <optional>
#include <string>

namespace flightsim {

struct FlyOptions {
    std::string file; ///< the mission
    LinkOptions link;
    double rate = 100;              ///< records a second, 1 to 1000
    double speed = 1;               ///< 2: the helicopter flies twice as fast as life, 0.1 to 20
    double seconds = -1;            ///< of flight; negative: to the mission's end
    std::optional<double> duration; ///< of the mission, which takes legs out and stretches others
    bool reset = true;              ///< false: no reset, whatever the mission says
    bool loop = false;              ///< begin anew at the end, until stopped or for `seconds`
    double wait = 0;                ///< s at most for the channel's first feedback
    std::string record;             ///< file for the records that are sent; empty: none
};

/// Flies a mission and sends what comes of it to the channel. Created by the command line or a
/// test, which opens it, runs it once and looks at the link's figures.
class Fly {
public:
    /// False with `message` when the mission, an address, a port or a file can't be used.
    bool open(const FlyOptions& options, std::string& message);
    /// Opens only the mission; enough for `printProfile`.
    bool openMission(const FlyOptions& options, std::string& message);

    const Mission& getMission() const { return m_mission; }
    const FlightPlan& getPlan() const { return m_plan; }
    const HostLink& getLink() const { return m_link; }

    /// Sends until the end or until `stop` is set. False with `message` when the mission can't be
    /// flown to its end or a file fails.
    bool run(const StopFlag& stop, std::string& message);
    /// Flies without sending and prints a row of the profile per second.
    bool printProfile(std::FILE* out, std::string& message) const;

private:
    bool record(std::int64_t time_ns, const UdpRecvData& record);
    void takeFeedback(MissionFlight& flight);

    FlyOptions m_options;
    Mission m_mission;
    FlightPlan m_plan;
    HostLink m_link;
    RecordingWriter m_writer;
    std::int64_t m_next_flush_ns = 0;
    std::int64_t m_feedback_taken = 0; ///< datagrams of the link that the flight knows
};

} // namespace flightsim
