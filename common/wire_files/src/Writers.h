// SPDX-License-Identifier: MIT
#pragma once

#include <string>

/// What is made from the tables of the two datagrams: the same text every time, so that a file that
/// differs from it has drifted.

/// Where the datagrams go unless the configuration says otherwise.
inline constexpr int RECORD_PORT = 10004, FEEDBACK_PORT = 10005;

/// `visual_channel_wire.h` for C99 and C++11: offsets, codes, both datagrams as plain structs.
std::string cHeader();
/// `visual_channel.lua`, the dissector of both datagrams for Wireshark and tshark.
std::string dissector();
/// `visual_channel.xml`, both ends of the link as a generic protocol of FlightGear.
std::string protocolFile();
/// A page with the tables of fields, limits and feedback in it anew, between the comments that mark
/// where they stand.
std::string withFieldTables(std::string page);
