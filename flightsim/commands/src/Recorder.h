// SPDX-License-Identifier: MIT
#pragma once

#include "flightsim/link/StopFlag.h"
#include "flightsim/link/UdpLink.h"
#include "flightsim/recording/Recording.h"

#include <cstdint>
#include <cstdio>
#include <optional>
#include <string>

namespace flightsim {

struct RecorderOptions {
    std::string file;
    int port = 10004;         ///< 0: any free one
    std::string forward;      ///< host:port that every datagram is passed on to; empty: nowhere
    double seconds = -1;      ///< negative: until stopped
    double size_limit_mb = 0; ///< 0: none; else the file stays below this, 1e6 bytes each
    bool quiet = false;       ///< no line a second
    std::FILE* out = stdout;  ///< not owned
};

struct RecorderStats {
    std::int64_t datagrams = 0;
    std::int64_t unusual = 0; ///< of another size than a host data record; recorded all the same
    std::int64_t forward_failures = 0;
};

/// Writes what comes in at a port into a recording, whatever it is, and can pass it on, so that it
/// can sit between a flight simulation and its channel. Created by the command line or a test,
/// which opens it and runs it once.
class Recorder {
public:
    /// Opens port and file. False with `message` when one of them or the address can't be used; the
    /// file is touched last.
    bool open(const RecorderOptions& options, std::string& message);
    int getPort() const { return m_socket.getPort(); }
    /// Records until `stop` is set, the time is over or the file has reached its limit. What had
    /// come in before the end is in the file. False with `message` when it can't be written: what
    /// came in before that can't be had again, so its whole records stay in the file.
    bool run(const StopFlag& stop, std::string& message);
    const RecorderStats& getStats() const { return m_stats; }

private:
    bool record(std::int64_t until_ns, const StopFlag& stop);
    bool takeOne(std::int64_t latest_ns);
    bool isFull() const;
    void showLine(std::int64_t now_ns);
    void printSummary(std::int64_t end_ns) const;

    RecorderOptions m_options;
    UdpSocket m_socket;
    UdpSocket m_forwarder;
    std::optional<UdpAddress> m_forward;
    RecordingWriter m_writer;
    RecorderStats m_stats;
    std::int64_t m_start_ns = 0;       ///< steady clock at the recording's start
    std::int64_t m_next_line_ns = 0;   ///< when the file is flushed and the next line shown
    std::int64_t m_line_datagrams = 0; ///< at the last line
};

} // namespace flightsim
