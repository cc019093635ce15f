// SPDX-License-Identifier: MIT
#pragma once

#include "ig/base/jLog.h"

#include <string>
#include <vector>

/// Gathers the log's lines while it lives.
struct LogCapture {
    LogCapture() {
        ig::jLog::setSink(
            [this](ig::LogLevel, std::string_view line) { lines.emplace_back(line); });
    }
    ~LogCapture() { ig::jLog::setSink({}); }
    LogCapture(const LogCapture&) = delete;

    std::vector<std::string> lines;
};
