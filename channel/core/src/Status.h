// SPDX-License-Identifier: MIT
#pragma once

#include <string>

class LinkMonitor;
class LogicListener;
class PaceMonitor;

/// The status line that an operator reads once a second, and the summary at the end.
class Status {
public:
    void setQuiet(bool quiet) { m_quiet = quiet; }
    /// After every frame: its duration, and the seconds of work that it cost.
    void addFrame(float dt, double work);
    /// Prints the line when a second of scene time has passed since the last one, unless the output
    /// takes none at present.
    /// `environment` says what weather, sea and hour are.
    void print(const LogicListener& listener, const LinkMonitor& link, const PaceMonitor& pace,
               const std::string& environment);
    void printSummary(const LogicListener& listener, const LinkMonitor& link,
                      const PaceMonitor& pace) const;

private:
    bool m_quiet = false;
    int m_frames = 0;
    double m_time = 0;      ///< scene time, s
    double m_work = 0;      ///< s
    double m_worst = 0;     ///< of a frame's work, s
    double m_last_time = 0; ///< at the last line
    int m_last_frames = 0;
};
