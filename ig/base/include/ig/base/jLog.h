// SPDX-License-Identifier: MIT
#pragma once

#include <functional>
#include <string_view>

namespace ig {

enum class LogLevel { message, warning, error };

/// The engine's log, one line a call, on standard error. Formats are printf's. An operation that
/// reports a failure begins with its qualified name: jLog::error("%s: cannot open \"%s\"", ...).
class jLog {
public:
    static void message(const char* format, ...) __attribute__((format(printf, 1, 2)));
    static void warning(const char* format, ...) __attribute__((format(printf, 1, 2)));
    static void error(const char* format, ...) __attribute__((format(printf, 1, 2)));

    using Sink = std::function<void(LogLevel, std::string_view line)>;
    /// Sends every line to `sink` instead of standard error; an empty one restores the default.
    static void setSink(Sink sink);
};

/// Lets a repeated report through once per second at most and counts what it held back.
/// One object per report; not for several threads.
class LogLimiter {
public:
    /// Seconds, never running backwards.
    using Clock = std::function<double()>;
    /// What all limiters of the process go by; an empty one restores the steady clock.
    static void setClock(Clock clock);

    /// True when the report may be made now; `held_back` then tells how many were not since.
    bool allow(int* held_back = nullptr);

private:
    double m_last = -1e9; ///< s, of the last report
    int m_held_back = 0;
};

} // namespace ig
