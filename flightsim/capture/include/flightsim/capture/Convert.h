// SPDX-License-Identifier: MIT
#pragma once

#include "flightsim/recording/Recording.h"

#include <cstdint>
#include <string>

namespace flightsim {

struct ConvertOptions {
    std::string in;  ///< a recording, a frame log, or a capture
    std::string out; ///< a capture in the first two cases, else a recording; another file
    /// Port of the host data records: those that a recording's datagrams go to, or whose datagrams
    /// are taken from a capture.
    int port = 10004;
    int feedback_port = 10005; ///< that a recording's feedback datagrams go to
    RecordingFormat format = RecordingFormat::whole; ///< of the recording that is written
};

struct ConvertResult {
    bool to_capture = false;
    std::int64_t datagrams = 0; ///< that were written
    std::int64_t bytes = 0;     ///< size of the file
    /// What was left out, or is doubtful about what was read, for the user; may be empty. When
    /// it failed too, as the reason may lie there.
    std::string warning;
};

/// Makes a capture of a recording, or a recording of a capture. Bytes and moments stay; what a
/// recording doesn't know is made up: both ends are this machine, and the host sends from the port
/// on which it listens, so that both directions are one conversation. A frame log knows its
/// senders. False with `message` when the one can't be used or the other can't be written.
bool convert(const ConvertOptions& options, ConvertResult& result, std::string& message);

} // namespace flightsim
