// SPDX-License-Identifier: MIT
#include "flightsim/link/HostLink.h"

#include "program/Clock.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cmath>
#include <cstring>

namespace flightsim {

using program::NS_PER_SECOND;
using program::steadyNow_ns;

namespace {

/// Waits until `due_ns` on the steady clock: asleep until 200 µs before, since that is about what
/// waking up may take, then awake. Returns within a few microseconds of it on an idle machine.
void waitExactly(std::int64_t due_ns) {
    constexpr std::int64_t SPIN_NS = 200'000;
    if (due_ns - SPIN_NS > steadyNow_ns()) program::sleepUntil(due_ns - SPIN_NS);
    while (steadyNow_ns() < due_ns) { // also when a signal cut the sleep short
    }
}

} // namespace

bool HostLink::open(const LinkOptions& options, std::string& message) {
    m_options = options;
    const auto to = UdpAddress::parse(options.to, message);
    if (!to) return false;
    m_to = *to;
    if (!m_sender.open(message)) return false;
    if (options.feedback && !m_listener.bind(options.listen, message)) return false;
    if (!options.feedback_csv.empty() && !m_csv.open(options.feedback_csv, message)) return false;
    m_start_ns = steadyNow_ns();
    m_next_row_ns = m_start_ns + NS_PER_SECOND;
    return true;
}

void HostLink::awaitFeedback(double seconds, const StopFlag& stop) {
    constexpr std::int64_t LOOK_AT_STOP_NS = NS_PER_SECOND / 5;
    const std::int64_t end_ns = steadyNow_ns() + std::llround(seconds * double(NS_PER_SECOND));
    std::int64_t now_ns = steadyNow_ns();
    for (; !stop && getFeedback().received == 0 && now_ns < end_ns; now_ns = steadyNow_ns())
        if (m_listener.waitReadable(std::min(end_ns, now_ns + LOOK_AT_STOP_NS))) receiveOne();
    m_start_ns = now_ns;
    m_next_row_ns = m_start_ns + NS_PER_SECOND;
}

bool HostLink::sendAt(std::int64_t time_ns, std::span<const std::uint8_t> record,
                      const StopFlag& stop) {
    if (!waitUntil(m_pacer.due(time_ns, steadyNow_ns()), stop)) return false;
    m_pacer.sent(steadyNow_ns());
    if (m_sender.send(m_to, record)) {
        m_sent++;
    } else if (m_failed++ == 0) {
        m_send_error = errno;
    }
    return true;
}

bool HostLink::waitUntil(std::int64_t due_ns, const StopFlag& stop) {
    // Feedback has to wait during the last millisecond, which belongs to the record. Its time of
    // arrival is stamped by the system, so that nothing is lost by that.
    constexpr std::int64_t UNDISTURBED_NS = program::NS_PER_MS;
    constexpr std::int64_t LOOK_AT_STOP_NS = NS_PER_SECOND / 5;
    // Without time to spare, as in a fast replay, a few datagrams per record are still taken.
    for (int i = 0; i < 4 && receiveOne(); i++) {
    }
    for (;;) {
        if (stop) return false;
        const std::int64_t now_ns = steadyNow_ns();
        if (now_ns >= m_next_row_ns) showRow(now_ns);
        if (due_ns - now_ns <= UNDISTURBED_NS) break;
        const std::int64_t until_ns =
            std::min({due_ns - UNDISTURBED_NS, m_next_row_ns, now_ns + LOOK_AT_STOP_NS});
        // One datagram, then another look at the clock: a flood can't hold up the record.
        if (m_listener.waitReadable(until_ns)) receiveOne();
    }
    waitExactly(due_ns);
    return true;
}

bool HostLink::receiveOne() {
    std::array<std::uint8_t, 2048> buffer;
    if (!m_listener.isOpen()) return false;
    const auto arrival = m_listener.receive(buffer);
    if (!arrival) return false;
    // A datagram beyond the buffer is of the wrong size, and so is the part of it that is at hand.
    const auto datagram = std::span(buffer).first(std::min(arrival->size, buffer.size()));
    const auto feedback = m_monitor.take(datagram, arrival->steady_ns);
    if (!feedback) return true;
    m_csv.write(sinceStart_s(arrival->steady_ns), m_sent, *feedback);
    if (m_feedback_listener) m_feedback_listener(*feedback, arrival->steady_ns);
    return true;
}

void HostLink::showRow(std::int64_t now_ns) {
    constexpr int ROWS_PER_HEADING = 20;
    // Rows that were due while the process was held up are left out.
    m_next_row_ns += (1 + (now_ns - m_next_row_ns) / NS_PER_SECOND) * NS_PER_SECOND;
    if (m_options.quiet) return;
    if (m_rows++ % ROWS_PER_HEADING == 0)
        std::fprintf(m_options.out, "%s\n", FeedbackTable::heading().c_str());
    const std::string row = m_table.row(sinceStart_s(now_ns), m_sent, m_monitor);
    std::fprintf(m_options.out, "%s\n", row.c_str());
    std::fflush(m_options.out);
}

bool HostLink::finish(std::string& message) {
    constexpr std::int64_t ON_THE_WAY_NS = NS_PER_SECOND / 10;
    const std::int64_t end_ns = steadyNow_ns();
    if (m_listener.isOpen()) {
        while (steadyNow_ns() < end_ns + ON_THE_WAY_NS)
            if (m_listener.waitReadable(end_ns + ON_THE_WAY_NS)) receiveOne();
    }
    printSummary(sinceStart_s(end_ns));
    return m_csv.close(message);
}

void HostLink::printSummary(double seconds) {
    const PacingStats& p = getPacing();
    const FeedbackStats& f = getFeedback();
    std::FILE* out = m_options.out;
    const auto ll = [](std::int64_t n) { return static_cast<long long>(n); };
    std::fprintf(out, "sent      %lld records in %.2f s, %lld refused by the system%s%s\n",
                 ll(m_sent), seconds, ll(m_failed), m_failed ? ": " : "",
                 m_failed ? std::strerror(m_send_error) : "");
    std::fprintf(out, "pacing    late by %.1f us mean, %.1f us rms, %.1f us max; %lld stalls\n",
                 p.mean_us(), p.rms_us(), p.max_us(), ll(p.moved));
    if (m_listener.isOpen()) {
        std::fprintf(out, "feedback  %lld datagrams, %.1f Hz, %lld malformed\n", ll(f.received),
                     f.rate(), ll(f.malformed));
        std::fprintf(out, "frames    %lld gaps with %lld skipped, %lld duplicated, %lld backward\n",
                     ll(f.gaps), ll(f.skipped), ll(f.duplicated), ll(f.backward));
    }
    std::fflush(out);
}

} // namespace flightsim
