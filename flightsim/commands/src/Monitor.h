// SPDX-License-Identifier: MIT
#pragma once

#include "TrafficMeter.h"
#include "flightsim/link/Feedback.h"
#include "flightsim/link/StopFlag.h"
#include "flightsim/link/UdpLink.h"

#include <cstdint>
#include <cstdio>
#include <optional>
#include <string>

namespace flightsim {

/// A port that is looked at.
struct MonitoredPort {
    bool enabled = true;
    int port = 0;        ///< 0: any free one
    std::string forward; ///< host:port that every datagram is passed on to; empty: nowhere
};

struct MonitorOptions {
    MonitoredPort records{true, 10004, {}};
    MonitoredPort feedback{true, 10005, {}};
    double interval = 1;     ///< s between two tables
    double seconds = -1;     ///< negative: until stopped
    bool redraw = false;     ///< on a terminal: each table in the place of the one before
    std::FILE* out = stdout; ///< not owned
};

/// Shows what passes between a host and a channel, in both directions, field by field. It stands in
/// for one of the two, or sits between them and passes everything on at once. Created by the
/// command line or a test, which opens it and runs it once.
class Monitor {
public:
    Monitor();
    /// False with `message` when a port or an address can't be used.
    bool open(const MonitorOptions& options, std::string& message);
    /// "port 10014, passed on to 127.0.0.1:10004", of the records, or of the feedback.
    std::string describe(bool feedback) const;
    int getPort(bool feedback) const { return m_sides[feedback].socket.getPort(); }
    /// Until `stop` is set or the time is over; the last table tells of the whole time.
    bool run(const StopFlag& stop, std::string& message);

private:
    struct Side {
        UdpSocket socket;
        std::optional<UdpAddress> forward;
        std::int64_t forward_failures = 0;
        TrafficMeter meter;
    };
    bool openSide(Side& side, const MonitoredPort& port, const char* remedy, std::string& message);
    bool takeOne(bool feedback);
    void show(std::int64_t now_ns, bool whole);
    void showSide(std::string& text, bool feedback, std::int64_t now_ns, bool whole);

    MonitorOptions m_options;
    UdpSocket m_forwarder;
    Side m_sides[2]; ///< of the records, of the feedback
    FeedbackMonitor m_frames;
};

} // namespace flightsim
