// SPDX-License-Identifier: MIT
#pragma once

#include "Place.h"
#include "StepMeter.h"
#include "common/wire/UdpRecvData.h"
#include "flightsim/link/HostLink.h"

#include <cstdint>
#include <string>

namespace flightsim {

struct ProbeOptions {
    LinkOptions link;
    std::int64_t steps = 200;
    double step = 50;               ///< m, by which the altitude changes
    double rate = 100;              ///< records a second between the steps
    double wait = 10;               ///< s at most for the channel and its ground
    double limit_ms = 100;          ///< that p99 may be
    double latitude = PAD_LATITUDE; ///< of the place
    double longitude = PAD_LONGITUDE;
    double altitude = 200;
    std::string plot; ///< file for the drawing; empty: none
};

/// Measures the transport delay of a running channel: from the record that changes the helicopter's
/// altitude to the feedback that reports another height above the ground. Created by the command
/// line, a benchmark or a test, which opens it, runs it once and looks at the report.
class Probe {
public:
    /// False with `message` when an address, a port or a file can't be used.
    bool open(const ProbeOptions& options, std::string& message);
    const HostLink& getLink() const { return m_link; }
    /// Steps until all steps are done or `stop` is set. False with `message` when the channel
    /// doesn't answer or ceases to, shows another place meanwhile than was asked for, or the plot
    /// can't be written.
    bool run(const StopFlag& stop, std::string& message);
    DelayReport getReport() const;

private:
    bool findGround(const StopFlag& stop, std::string& message);
    bool takeSteps(const StopFlag& stop, std::string& message);
    bool takeStep(std::int64_t number, const StopFlag& stop);
    bool sendOne(std::int64_t after_ns, const StopFlag& stop);
    bool isThere() const;

    ProbeOptions m_options;
    HostLink m_link;
    StepMeter m_meter;
    UdpRecvData m_record{};
    std::int64_t m_time_ns = 0;   ///< flight time of the record sent last
    bool m_was_elsewhere = false; ///< the channel showed another place between the steps
};

} // namespace flightsim
