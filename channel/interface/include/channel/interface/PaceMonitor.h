// SPDX-License-Identifier: MIT
#pragma once

#include "channel/interface/Durations.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

/// How a frame kept time. Seconds on the clock of the link.
struct FrameTiming {
    double begin = 0;
    double handed_over = 0;    ///< its picture, to display or file; without pictures: its end
    double work = 0;           ///< that it took
    double period = 0;         ///< asked for from beginning to beginning; 0: as fast as possible
    double refresh_rate = 0;   ///< of the display that sets the pace, 1/s; 0: none does
    bool late = false;         ///< it began, or was shown, too late
    std::uint64_t records = 0; ///< received until then
    double last_record = 0;    ///< when the newest of them came
    bool silent = false;       ///< none comes any more
};

/// How well the frames keep time, and how old what they show of the flight simulation is when their
/// pictures are handed over. The one place that tells: who sets the pace, and that frames are late,
/// is logged when it changes; intervals and ages stand in statistics and summary.
class PaceMonitor {
public:
    static constexpr std::size_t WATCHED = 60; ///< frames, of which MANY late ones are told
    static constexpr int MANY = 12;
    static constexpr double HOLD = 10; ///< s without a late one until they are in time again

    /// After every frame, in order.
    void addFrame(const FrameTiming& timing);

    /// From the beginning of the frame before to that of the last one, s; negative where there is
    /// none, and where frames of a box ran between them.
    double getInterval() const { return m_interval; }
    /// Frames so far.
    std::uint64_t getLate() const { return m_late; }
    /// Seconds from the arrival of the newest record to the last hand-over; negative before the
    /// first record.
    double getAge() const { return m_age; }
    /// What is wrong now, for the console; empty when nothing is.
    std::string getStatus() const;
    /// What the statistics in the picture say of it, in the operator's language.
    std::string getStatistics() const;
    /// The run, line by line for the console.
    std::string getSummary() const;

private:
    /// Intervals by what they are of their period: up to 0.9, 1.1, 1.5, 2.5, and more.
    static constexpr std::size_t CLASSES = 5;

    void watchPace();
    void watchLateness();
    void addAge();
    std::vector<std::string> listShares() const;

    FrameTiming m_last;
    double m_last_begin = 0; ///< s; the latest so far
    double m_interval = -1;
    bool m_begun = false; ///< there was a frame
    double m_told_rate = 0;
    int m_told_divisor = 0;
    std::uint64_t m_late = 0;
    std::array<bool, WATCHED> m_recent{}; ///< late ones
    std::array<double, WATCHED> m_works{};
    std::size_t m_next = 0, m_watched = 0; ///< of these: the oldest, and how many there are
    int m_late_recently = 0;
    bool m_is_late = false; ///< it was told that frames are late
    double m_last_late = 0; ///< s
    Durations m_intervals;  ///< from a frame's beginning to the next one's
    std::uint64_t m_shares[CLASSES] = {};
    double m_age = -1;
    std::uint64_t m_records = 0; ///< seen so far
    Durations m_ages;
    /// Of frames since the last record: they count when another one comes, as those of a link that
    /// has fallen silent don't.
    std::vector<double> m_waiting_ages;
};
