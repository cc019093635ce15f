// SPDX-License-Identifier: MIT
#pragma once

#include "common/wire/WireField.h"
#include "flightsim/recording/Recording.h"

#include <cstdint>
#include <cstdio>
#include <span>
#include <string>
#include <vector>

/// Recordings field by field, by the table of the datagrams. A datagram of the feedback's size is
/// taken for one, any other for a host data record, of which the fields that are there are read.
namespace flightsim {

/// The table of the datagrams of one direction.
std::span<const WireField> fieldsOf(bool feedback);
/// A field's value with the name that a code has: "3 (storm)". "-" where the datagram ends before.
std::string describeValue(const WireField& field, std::span<const std::uint8_t> datagram);

struct DumpOptions {
    std::string in; ///< a recording or a frame log
    Selection selection;
    bool feedback = false; ///< the feedback datagrams in place of the records
    bool csv = false;
    bool changes = false; ///< only datagrams and fields that differ from the one before
    std::vector<const WireField*> fields; ///< of that direction; empty: all but the reserved ones
};

/// Prints datagrams field by field: as blocks of text, or as CSV with a line for each, in which
/// every value reads back to the same bits. False with `message` when the recording can't be used
/// or holds no such datagram; a cut-off end only gives a `warning`.
bool dumpRecording(const DumpOptions& options, std::FILE* out, std::string& warning,
                   std::string& message);

/// Prints for each field of the datagrams of either direction what a recording holds: the first and
/// the last value, the least, the greatest, and how often it changes. False with `message` when the
/// recording can't be used.
bool printFieldSummary(const std::string& path, std::FILE* out, std::string& message);

} // namespace flightsim
