// SPDX-License-Identifier: MIT
#pragma once

#include "common/wire/UdpSendData.h"
#include "program/OutputFile.h"

#include <cstdint>
#include <optional>
#include <span>
#include <string>

namespace flightsim {

/// What the feedback told so far. The channel numbers its frames and sends one datagram a frame, so
/// a step other than 1 from one datagram to the next shows lost frames, datagrams or a restart.
struct FeedbackStats {
    std::int64_t received = 0;   ///< datagrams of the right size
    std::int64_t malformed = 0;  ///< datagrams of any other size
    std::int64_t gaps = 0;       ///< steps by more than 1
    std::int64_t skipped = 0;    ///< frames missing in these
    std::int64_t duplicated = 0; ///< steps by 0
    std::int64_t backward = 0;   ///< steps back: the channel was started anew, or reordering
    std::int64_t first_ns = 0;   ///< arrival of the first datagram, steady clock
    std::int64_t last_ns = 0;    ///< arrival of the last

    /// Datagrams a second between first and last.
    double rate() const {
        return last_ns > first_ns ? double(received - 1) * 1e9 / double(last_ns - first_ns) : 0;
    }
};

/// Takes the channel's feedback datagrams as they come in and keeps the count and the last one.
class FeedbackMonitor {
public:
    /// A datagram of any size came in. The decoded feedback when it is one; nothing, and one more
    /// malformed datagram, when its size is wrong.
    std::optional<UdpSendData> take(std::span<const std::uint8_t> datagram, std::int64_t steady_ns);
    const FeedbackStats& getStats() const { return m_stats; }
    const std::optional<UdpSendData>& getLast() const { return m_last; }

private:
    FeedbackStats m_stats;
    std::optional<UdpSendData> m_last;
};

/// The table that shows once a second what comes back. It keeps the counts of the row before, so
/// that a row's rate is that of its own second.
class FeedbackTable {
public:
    static std::string heading();
    /// A row for now. `time_s`: seconds since the start; `sent`: records sent so far.
    std::string row(double time_s, std::int64_t sent, const FeedbackMonitor& monitor);

private:
    double m_time_s = 0;
    std::int64_t m_received = 0;
};

/// Feedback datagrams in full precision, one line each, for spreadsheets and plots. The file is
/// complete or removed.
class FeedbackCsv {
public:
    /// Creates or empties a file and writes the heading. False with `message` when it can't.
    bool open(const std::string& path, std::string& message);
    /// Adds a line; skipped when no file is open. `time_s`: arrival, seconds since the start.
    void write(double time_s, std::int64_t sent, const UdpSendData& feedback);
    /// False with `message` when some line could not be written. Nothing opened counts as written.
    bool close(std::string& message);

private:
    program::OutputFile m_file;
};

} // namespace flightsim
