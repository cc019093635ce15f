// SPDX-License-Identifier: MIT
#pragma once

#include "ig/math/vec.h"
#include "program/OutputFile.h"

#include <optional>
#include <string>

class LogicListener;
struct FrameTiming;

/// A CSV file with a line per frame, for comparing what was shown with what was sent: frame, scene
/// time, steady-clock time at the beginning of the frame, records applied so far, and longitude,
/// latitude, altitude, heading, pitch, roll of what the picture is about; then when the picture was
/// handed over, 1 if the frame was late, and the age of the newest record at the hand-over, empty
/// before there was one. The file is complete or,
/// after one log line, removed.
class Trace {
public:
    /// Whether a file can be written there, as far as can be told now; with one log line if not.
    static bool check(const std::string& path);
    bool open(const std::string& path);
    /// At the end of a frame: notes what it shows.
    void note(const LogicListener& listener);
    /// The noted frame's line, once its picture has been handed over. Nothing when no file is open.
    /// `start`: what the timing counts from, on the steady clock; `age`: s, negative when there is
    /// none.
    void write(double start, const FrameTiming& timing, double age);
    void close();
    /// What was asked for has not been written.
    bool hasFailed() const { return !m_file.getMessage().empty(); }

private:
    void report() const;

    struct Shown {
        int frame, applied;
        double time;
        ig::dvec3 place, attitude; ///< longitude, latitude, altitude; heading, pitch, roll
    };
    std::optional<Shown> m_shown;
    program::OutputFile m_file;
};
