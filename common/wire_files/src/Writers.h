// SPDX-License-Identifier: MIT
#pragma once

#include <string>

/// What is made from the tables of the two datagrams. Each returns a whole text, the same every
/// time, so that a file that differs from it has drifted.

/// `visual_channel_wire.h` for C99 and C++11: offsets, codes, both datagrams as plain structs.
std::string cHeader();
