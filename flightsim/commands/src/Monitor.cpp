// SPDX-License-Identifier: MIT
#include "Monitor.h"

#include "common/wire/UdpRecvData.h"
#include "common/wire/UdpSendData.h"
#include "flightsim/recording/Recording.h"
#include "program/Clock.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cmath>
#include <limits>

namespace flightsim {

using program::NS_PER_SECOND;
using program::steadyNow_ns;

Monitor::Monitor()
    : m_sides{{{}, {}, 0, TrafficMeter(sizeof(UdpRecvData))},
              {{}, {}, 0, TrafficMeter(sizeof(UdpSendData))}} {}

bool Monitor::open(const MonitorOptions& options, std::string& message) {
    m_options = options;
    return m_forwarder.open(message) &&
           openSide(m_sides[false], options.records, "--port 10014 --forward 127.0.0.1:10004",
                    message) &&
           openSide(m_sides[true], options.feedback,
                    "--feedback-port 10015 --forward-feedback 127.0.0.1:10005", message);
}

/// `remedy`: options for when the port is taken.
bool Monitor::openSide(Side& side, const MonitoredPort& port, const char* remedy,
                       std::string& message) {
    if (!port.enabled) return true;
    if (!port.forward.empty() && !(side.forward = UdpAddress::parse(port.forward, message)))
        return false;
    if (!side.socket.bind(port.port, message)) {
        if (errno == EADDRINUSE)
            message += std::string("; to look at what goes there, let its sender send to another "
                                   "port and pass it on: ") +
                       remedy;
        return false;
    }
    if (!side.forward || !side.forward->isLoopback(side.socket.getPort())) return true;
    message = "\"" + port.forward + "\" is the port that is looked at";
    return false;
}

std::string Monitor::describe(bool feedback) const {
    const Side& side = m_sides[feedback];
    if (!side.socket.isOpen()) return "not looked at";
    return "port " + std::to_string(side.socket.getPort()) +
           (side.forward ? ", passed on to " + side.forward->text() : "");
}

bool Monitor::run(const StopFlag& stop, std::string& message) {
    constexpr std::int64_t LOOK_AT_STOP_NS = NS_PER_SECOND / 5;
    const auto interval_ns = std::llround(m_options.interval * double(NS_PER_SECOND));
    std::int64_t now_ns = steadyNow_ns();
    const std::int64_t until_ns =
        m_options.seconds >= 0 ? now_ns + std::llround(m_options.seconds * double(NS_PER_SECOND))
                               : std::numeric_limits<std::int64_t>::max();
    for (const bool feedback : {false, true})
        m_sides[feedback].meter.line(now_ns); // rates count from here
    std::int64_t next_ns = now_ns + interval_ns;
    while (!stop && now_ns < until_ns) {
        UdpSocket::waitReadable(m_sides[0].socket, m_sides[1].socket,
                                std::min({until_ns, next_ns, now_ns + LOOK_AT_STOP_NS}));
        // One of each, then another look at the clock: a flood can't hold up the table.
        takeOne(false);
        takeOne(true);
        now_ns = steadyNow_ns();
        if (now_ns < next_ns) continue;
        show(now_ns, false);
        next_ns += (1 + (now_ns - next_ns) / interval_ns) * interval_ns;
    }
    // What had come in before the end; no more than fits into a socket.
    for (int i = 0; i < 4096 && (takeOne(false) || takeOne(true)); i++) {
    }
    show(steadyNow_ns(), true);
    message.clear();
    return true;
}

/// Takes one waiting datagram and passes it on. False when there is none.
bool Monitor::takeOne(bool feedback) {
    Side& side = m_sides[feedback];
    std::array<std::uint8_t, MAX_DATAGRAM_SIZE> buffer;
    if (!side.socket.isOpen()) return false;
    const auto arrival = side.socket.receive(buffer);
    if (!arrival) return false;
    const auto datagram = std::span(buffer).first(std::min(arrival->size, buffer.size()));
    if (side.forward && !m_forwarder.send(*side.forward, datagram)) side.forward_failures++;
    side.meter.take(datagram, arrival->from.text(), arrival->steady_ns);
    if (feedback) m_frames.take(datagram, arrival->steady_ns);
    return true;
}

/// `whole`: rates and longest intervals are those of the whole time.
void Monitor::show(std::int64_t now_ns, bool whole) {
    std::string text;
    showSide(text, false, now_ns, whole);
    showSide(text, true, now_ns, whole);
    // Home, then clear: the table doesn't flicker as it would when cleared before it is there.
    std::fprintf(m_options.out, "%s%s%s", m_options.redraw ? "\x1b[H\x1b[J" : "", text.c_str(),
                 m_options.redraw ? "" : "\n");
    std::fflush(m_options.out);
}

void Monitor::showSide(std::string& text, bool feedback, std::int64_t now_ns, bool whole) {
    Side& side = m_sides[feedback];
    if (!side.socket.isOpen()) return;
    text += (feedback ? "feedback  " : "records   ") + describe(feedback);
    if (side.forward_failures > 0)
        text += ", " + std::to_string(side.forward_failures) + " refused by the system";
    text += "\n          " +
            (whole ? "in all: " + side.meter.summary(now_ns) : side.meter.line(now_ns)) + "\n";
    const FeedbackStats& frames = m_frames.getStats();
    if (feedback && frames.received > 0)
        text += "          frames: " + std::to_string(frames.skipped) + " skipped, " +
                std::to_string(frames.duplicated) + " duplicated, " +
                std::to_string(frames.backward) + " backward\n";
    if (!side.meter.getLast().empty()) text += fieldColumns(feedback, side.meter.getLast());
}

} // namespace flightsim
