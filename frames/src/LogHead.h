// SPDX-License-Identifier: MIT
#pragma once

#include "frames/FrameLog.h"

#include <string>

namespace frames {

/// The first words of a log, before the version.
inline constexpr char LOG_MAGIC[] = "FRAMELOG ";
inline constexpr int LOG_VERSION = 1;
/// The most that a head may be, bytes: some ten thousand files.
inline constexpr std::size_t MAX_HEAD_SIZE = 1 << 20;

/// The head as text, with the empty line that ends it.
std::string writeHead(const LogHead& head);
/// Reads such a text. False with `message` when it is another one.
bool readHead(const std::string& text, LogHead& head, std::string& message);

} // namespace frames
