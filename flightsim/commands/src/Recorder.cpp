// SPDX-License-Identifier: MIT
#include "Recorder.h"

#include "common/wire/UdpRecvData.h"
#include "program/Clock.h"

#include <algorithm>
#include <array>
#include <limits>

namespace flightsim {

using program::NS_PER_SECOND;
using program::steadyNow_ns;

bool Recorder::open(const RecorderOptions& options, std::string& message) {
    m_options = options;
    if (!options.forward.empty()) {
        m_forward = UdpAddress::parse(options.forward, message);
        if (!m_forward || !m_forwarder.open(message)) return false;
    }
    if (!m_socket.bind(options.port, message)) return false;
    if (m_forward && m_forward->isLoopback(m_socket.getPort())) {
        message = "\"" + options.forward + "\" is the port that is recorded";
        return false;
    }
    m_start_ns = steadyNow_ns();
    m_next_line_ns = m_start_ns + NS_PER_SECOND;
    if (m_writer.open(options.file, RecordingFormat::whole, program::wallNow_ns())) return true;
    message = m_writer.getMessage();
    return false;
}

bool Recorder::run(const StopFlag& stop, std::string& message) {
    const std::int64_t until_ns =
        m_options.seconds >= 0
            ? m_start_ns + static_cast<std::int64_t>(m_options.seconds * double(NS_PER_SECOND))
            : std::numeric_limits<std::int64_t>::max();
    bool good = record(until_ns, stop);
    const std::int64_t end_ns = std::min(until_ns, steadyNow_ns());
    // Datagrams that came in before the end may still wait; the first ones of a socket carry no
    // time of the system's that would tell. As many as fit into the socket, so that a sender which
    // goes on can't keep us here.
    for (int i = 0; good && i < 4096 && takeOne(until_ns); i++) {
    }
    good = m_writer.close() && good;
    if (!good) {
        message = m_writer.getMessage();
        if (m_writer.getRecords() > 0)
            message += "; the first " + std::to_string(m_writer.getRecords()) + " records are kept";
    }
    printSummary(end_ns);
    return good;
}

/// The main loop. False when the file can't be written.
bool Recorder::record(std::int64_t until_ns, const StopFlag& stop) {
    constexpr std::int64_t LOOK_AT_STOP_NS = NS_PER_SECOND / 5;
    while (!stop && !isFull()) {
        const std::int64_t now_ns = steadyNow_ns();
        if (now_ns >= until_ns) break;
        if (now_ns >= m_next_line_ns) {
            if (!m_writer.flush()) return false;
            showLine(now_ns);
        }
        if (m_socket.waitReadable(std::min({until_ns, m_next_line_ns, now_ns + LOOK_AT_STOP_NS})))
            takeOne(until_ns);
        if (!m_writer.getMessage().empty()) return false;
    }
    return true;
}

/// Takes one waiting datagram, passes it on and records it. False when there is none, when it came
/// in after `latest_ns`, or when the file is full or can't be written.
bool Recorder::takeOne(std::int64_t latest_ns) {
    std::array<std::uint8_t, MAX_DATAGRAM_SIZE> buffer;
    if (isFull()) return false;
    const auto arrival = m_socket.receive(buffer);
    if (!arrival || arrival->steady_ns > latest_ns) return false;
    const auto datagram = std::span(buffer).first(std::min(arrival->size, buffer.size()));
    if (m_forward && !m_forwarder.send(*m_forward, datagram)) m_stats.forward_failures++;
    m_stats.datagrams++;
    if (datagram.size() != sizeof(UdpRecvData)) m_stats.unusual++;
    return m_writer.append(arrival->steady_ns - m_start_ns, datagram);
}

bool Recorder::isFull() const {
    return m_options.size_limit_mb > 0 &&
           double(m_writer.getSize()) + double(MAX_DATAGRAM_SIZE) > m_options.size_limit_mb * 1e6;
}

void Recorder::showLine(std::int64_t now_ns) {
    m_next_line_ns += (1 + (now_ns - m_next_line_ns) / NS_PER_SECOND) * NS_PER_SECOND;
    if (m_options.quiet) return;
    std::fprintf(m_options.out, "%7.1f s %9lld datagrams, %4lld in the last second, %.1f MB\n",
                 double(now_ns - m_start_ns) * 1e-9, static_cast<long long>(m_stats.datagrams),
                 static_cast<long long>(m_stats.datagrams - m_line_datagrams),
                 double(m_writer.getSize()) * 1e-6);
    std::fflush(m_options.out);
    m_line_datagrams = m_stats.datagrams;
}

void Recorder::printSummary(std::int64_t end_ns) const {
    std::fprintf(
        m_options.out, "recorded  %lld of %lld datagrams in %.2f s, %lld came not of %zu bytes%s\n",
        static_cast<long long>(m_writer.getRecords()), static_cast<long long>(m_stats.datagrams),
        double(end_ns - m_start_ns) * 1e-9, static_cast<long long>(m_stats.unusual),
        sizeof(UdpRecvData), isFull() ? "; the size limit is reached" : "");
    if (m_forward)
        std::fprintf(m_options.out, "forwarded to %s, %lld refused by the system\n",
                     m_forward->text().c_str(), static_cast<long long>(m_stats.forward_failures));
    std::fflush(m_options.out);
}

} // namespace flightsim
