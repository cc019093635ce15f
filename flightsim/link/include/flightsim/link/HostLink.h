// SPDX-License-Identifier: MIT
#pragma once

#include "flightsim/link/Feedback.h"
#include "flightsim/link/Pacer.h"
#include "flightsim/link/StopFlag.h"
#include "flightsim/link/UdpLink.h"

#include <cstdint>
#include <cstdio>
#include <functional>
#include <optional>
#include <span>
#include <string>

namespace flightsim {

/// Where records go and feedback comes from.
struct LinkOptions {
    std::string to = "127.0.0.1:10004"; ///< the channel, host:port
    int listen = 10005;                 ///< port of the feedback; 0: any free one
    bool feedback = true;               ///< false: nothing is received, `listen` is not used
    std::string feedback_csv;           ///< file for the feedback datagrams; empty: none
    bool quiet = false;                 ///< no table
    std::FILE* out = stdout;            ///< table and summary; not owned
};

/// The flight simulation's end of the link: sends records when they are due and receives the
/// channel's feedback while it waits for that. Whoever flies owns one, opens it, calls `sendAt` for
/// record after record and ends with `finish`.
class HostLink {
public:
    /// Opens sockets and files. False with `message` when the address can't be resolved, the port
    /// is in use or the file can't be created.
    bool open(const LinkOptions& options, std::string& message);
    int getListenPort() const { return m_listener.getPort(); } ///< 0 without feedback
    std::string getDestination() const { return m_to.text(); }

    /// Told of every feedback datagram with its time of arrival on the steady clock, while the link
    /// waits.
    using FeedbackListener = std::function<void(const UdpSendData&, std::int64_t steady_ns)>;
    void setFeedbackListener(FeedbackListener listener) {
        m_feedback_listener = std::move(listener);
    }

    /// Waits for the channel's first feedback, `seconds` at most; what is sent counts from then.
    void awaitFeedback(double seconds, const StopFlag& stop);
    /// Waits until flight time `time_ns` and sends a record. Flight times are those of the `Pacer`:
    /// the first one is now. A record that can't be sent is counted, never an error: the channel
    /// may come and go. False, with nothing sent, once `stop` is set.
    bool sendAt(std::int64_t time_ns, std::span<const std::uint8_t> record, const StopFlag& stop);
    /// Takes the feedback that is still on its way, prints the summary and closes the file. False
    /// with `message` when the file of the feedback could not be completed and is removed.
    bool finish(std::string& message);

    std::int64_t getSent() const { return m_sent; }
    std::int64_t getLastSent_ns() const { return m_pacer.getLastSent_ns(); } ///< steady clock
    const PacingStats& getPacing() const { return m_pacer.getStats(); }
    const FeedbackStats& getFeedback() const { return m_monitor.getStats(); }
    const std::optional<UdpSendData>& getLastFeedback() const { return m_monitor.getLast(); }

private:
    bool waitUntil(std::int64_t due_ns, const StopFlag& stop);
    bool receiveOne();
    void showRow(std::int64_t now_ns);
    void printSummary(double seconds);
    double sinceStart_s(std::int64_t now_ns) const { return double(now_ns - m_start_ns) * 1e-9; }

    LinkOptions m_options;
    UdpAddress m_to;
    UdpSocket m_sender;
    UdpSocket m_listener;
    Pacer m_pacer;
    FeedbackMonitor m_monitor;
    FeedbackListener m_feedback_listener; ///< may be empty
    FeedbackTable m_table;
    FeedbackCsv m_csv;
    std::int64_t m_start_ns = 0;    ///< steady clock at `open`: times shown count from here
    std::int64_t m_next_row_ns = 0; ///< when the next row of the table is due
    std::int64_t m_rows = 0;
    std::int64_t m_sent = 0;
    std::int64_t m_failed = 0; ///< records that the system refused to send
    int m_send_error = 0;      ///< errno of the first failed send
};

} // namespace flightsim
