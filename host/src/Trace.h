// SPDX-License-Identifier: MIT
#pragma once

#include <cstdio>
#include <string>

class LogicListener;

/// A CSV file with a line per frame, for comparing what was shown with what was sent: frame, scene
/// time, steady-clock time at the beginning of the frame, records applied so far, and the
/// helicopter's longitude, latitude, altitude, heading, pitch, roll.
class Trace {
public:
    Trace() = default;
    Trace(const Trace&) = delete;
    Trace& operator=(const Trace&) = delete;
    ~Trace() { close(); }

    /// False, with one log line, when the file can't be written.
    bool open(const std::string& path);
    /// Nothing when no file is open.
    void write(double begin, const LogicListener& listener);
    void close();

private:
    std::FILE* m_file = nullptr;
};
