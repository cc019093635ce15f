// SPDX-License-Identifier: MIT
#include "flightsim/link/Feedback.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstring>

namespace flightsim {

namespace {

/// A number for a column: `decimals` places, or three digits and an exponent when it is so large
/// that a damaged datagram must be behind it.
std::string column(double value, int width, int decimals) {
    char text[64];
    if (std::abs(value) < 1e7)
        std::snprintf(text, sizeof text, "%*.*f", width, decimals, value);
    else
        std::snprintf(text, sizeof text, "%*.3g", width, value);
    return text;
}

std::string column(std::int64_t value, int width) {
    char text[64];
    std::snprintf(text, sizeof text, "%*lld", width, static_cast<long long>(value));
    return text;
}

std::string right(const std::string& text, std::size_t width) {
    return std::string(width - std::min(width, text.size()), ' ') + text;
}

std::string wheel(const UdpWheelAttitude& w) {
    return right(column(w.h, 0, 1) + "/" + column(w.p, 0, 1) + "/" + column(w.r, 0, 1), 18);
}

/// The shortest text that reads back as this very value.
template <class T>
void addExact(std::string& line, T value) {
    char text[32];
    line.append(text, std::to_chars(text, text + sizeof text, value).ptr);
}

} // namespace

std::optional<UdpSendData> FeedbackMonitor::take(std::span<const std::uint8_t> datagram,
                                                 std::int64_t steady_ns) {
    UdpSendData feedback;
    if (datagram.size() != sizeof feedback) {
        m_stats.malformed++;
        return std::nullopt;
    }
    std::memcpy(&feedback, datagram.data(), sizeof feedback);
    if (m_stats.received++ == 0) m_stats.first_ns = steady_ns;
    m_stats.last_ns = steady_ns;
    if (m_last) {
        // Modulo 2^32, so that the frame number may wrap.
        const auto step = static_cast<std::int32_t>(static_cast<std::uint32_t>(feedback.frame) -
                                                    static_cast<std::uint32_t>(m_last->frame));
        if (step == 0) m_stats.duplicated++;
        if (step < 0) m_stats.backward++;
        if (step > 1) {
            m_stats.gaps++;
            m_stats.skipped += step - 1;
        }
    }
    m_last = feedback;
    return feedback;
}

std::string FeedbackTable::heading() {
    return "  time     sent  feedback     Hz      frame skipped  dupl     latitude     longitude"
           "    height     front h/p/r         left h/p/r        right h/p/r";
}

std::string FeedbackTable::row(double time_s, std::int64_t sent, const FeedbackMonitor& monitor) {
    const FeedbackStats& stats = monitor.getStats();
    const double span_s = time_s - m_time_s;
    const double rate = span_s > 0 ? double(stats.received - m_received) / span_s : 0;
    m_time_s = time_s;
    m_received = stats.received;
    std::string line =
        column(time_s, 6, 1) + column(sent, 9) + column(stats.received, 10) + column(rate, 7, 1);
    if (!monitor.getLast()) return line + "          - (nothing has come back yet)";
    const UdpSendData& f = *monitor.getLast();
    return line + column(std::int64_t{f.frame}, 11) + column(stats.skipped, 8) +
           column(stats.duplicated, 6) + column(f.ground_latitude, 13, 7) +
           column(f.ground_longitude, 14, 7) + column(f.height_above_ground, 10, 2) +
           wheel(f.wheel_front) + " " + wheel(f.wheel_left) + " " + wheel(f.wheel_right);
}

bool FeedbackCsv::open(const std::string& path, std::string& message) {
    if (m_file.open(path, program::OutputFile::Kind::growing) &&
        m_file.write(
            "time_s,records_sent,frame,ground_latitude,ground_longitude,height_above_ground,"
            "front_h,front_p,front_r,left_h,left_p,left_r,right_h,right_p,right_r\n"))
        return true;
    message = m_file.getMessage();
    return false;
}

void FeedbackCsv::write(double time_s, std::int64_t sent, const UdpSendData& feedback) {
    if (!m_file.isOpen()) return;
    std::string line =
        column(time_s, 0, 6) + "," + std::to_string(sent) + "," + std::to_string(feedback.frame);
    const auto add = [&](auto value) {
        line += ',';
        addExact(line, value);
    };
    add(feedback.ground_latitude);
    add(feedback.ground_longitude);
    add(feedback.height_above_ground);
    for (const UdpWheelAttitude& w :
         {feedback.wheel_front, feedback.wheel_left, feedback.wheel_right}) {
        add(w.h);
        add(w.p);
        add(w.r);
    }
    line += '\n';
    m_file.write(line); // a failure is kept for the end
}

bool FeedbackCsv::close(std::string& message) {
    if (m_file.isOpen()) m_file.close();
    message = m_file.getMessage();
    return message.empty();
}

} // namespace flightsim
