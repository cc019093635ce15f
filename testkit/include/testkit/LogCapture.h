// SPDX-License-Identifier: MIT
#pragma once

#include "ig/base/jLog.h"

#include <string>
#include <vector>

/// Gathers the log's lines while it lives.
struct LogCapture {
    LogCapture() {
        ig::jLog::setSink([this](ig::LogLevel level, std::string_view line) {
            levels.push_back(level);
            lines.emplace_back(line);
        });
    }
    ~LogCapture() { ig::jLog::setSink({}); }
    LogCapture(const LogCapture&) = delete;

    std::vector<ig::LogLevel> levels;
    std::vector<std::string> lines;
};
