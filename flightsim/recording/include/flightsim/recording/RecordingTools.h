// SPDX-License-Identifier: MIT
#pragma once

#include "flightsim/recording/Recording.h"

#include <cstdint>
#include <cstdio>
#include <string>

namespace flightsim {

/// Prints what a recording holds: span, rate, intervals, sizes, positions, commands, its first and
/// its last record; of a frame log also what was logged. Only datagrams of at least a whole host
/// data record are decoded. False with `message` when the recording can't be used; a cut-off end
/// only gives a `warning`.
bool printInfo(const std::string& path, std::FILE* out, std::string& warning, std::string& message);

struct CutOptions {
    std::string in;
    std::string out; ///< must be another file
    Selection selection;
    RecordingFormat format = RecordingFormat::whole;
};

/// What a cut wrote.
struct CutResult {
    std::int64_t records = 0;
    std::int64_t bytes = 0; ///< size of the file
    std::string warning;    ///< as in `Survey`
};

/// Writes a part of a recording to another file. Times count anew from the part's first record; the
/// start of the recording moves along, so that each record keeps its moment in Unix time. False
/// with `message` when the recording can't be used, in which case nothing is written, or when the
/// file can't be.
bool cutRecording(const CutOptions& options, CutResult& result, std::string& message);

} // namespace flightsim
