// SPDX-License-Identifier: MIT
#include "TrafficMeter.h"

#include "flightsim/recording/FieldTools.h"
#include "program/Clock.h"

#include <algorithm>
#include <cstdio>

namespace flightsim {

namespace {

/// As much of a value as one can follow while it changes.
std::string shortValue(const WireField& field, std::span<const std::uint8_t> datagram) {
    const auto value = field.read(datagram);
    if (!value || field.isInteger()) return describeValue(field, datagram);
    char text[64];
    if (field.type == WireField::Type::F64)
        std::snprintf(text, sizeof text, "%.7f", *value);
    else
        std::snprintf(text, sizeof text, "%.6g", *value);
    return text;
}

std::string cell(const WireField& field, std::span<const std::uint8_t> datagram) {
    const auto value = field.read(datagram);
    const bool is_wild = value && field.plausible.isBounded() && !field.plausible.has(*value);
    char text[128];
    std::snprintf(text, sizeof text, "%-20s%s%s%s%s", std::string(field.name).c_str(),
                  shortValue(field, datagram).c_str(), field.unit.empty() ? "" : " ",
                  std::string(field.unit).c_str(), is_wild ? " !" : "");
    return text;
}

} // namespace

void TrafficMeter::take(std::span<const std::uint8_t> datagram, const std::string& sender,
                        std::int64_t steady_ns) {
    constexpr std::int64_t ENOUGH = 8; // intervals, to know what is usual
    constexpr std::int64_t SMOOTHED = 16;
    if (m_received++ > 0) {
        const std::int64_t interval_ns = steady_ns - m_last_ns;
        for (Mark* mark : {&m_begin, &m_line})
            mark->longest_ns = std::max(mark->longest_ns, interval_ns);
        if (m_intervals >= ENOUGH && double(interval_ns) > 2 * m_usual_ns) {
            m_gaps++;
            // A sender that has become slower for good becomes the usual one.
            m_intervals--;
        } else {
            m_intervals = std::min(m_intervals + 1, SMOOTHED);
            m_usual_ns += (double(interval_ns) - m_usual_ns) / double(m_intervals);
        }
    }
    m_last_ns = steady_ns;
    m_senders[sender]++;
    m_sender = sender;
    if (datagram.size() == m_size)
        m_last.assign(datagram.begin(), datagram.end());
    else
        m_unusual++;
}

std::string TrafficMeter::line(std::int64_t now_ns) {
    if (m_begin.time_ns == 0) m_begin.time_ns = m_line.time_ns = now_ns;
    std::string text = tell(m_line, now_ns);
    m_line = {now_ns, m_received, 0};
    return text;
}

std::string TrafficMeter::summary(std::int64_t now_ns) const { return tell(m_begin, now_ns); }

std::string TrafficMeter::tell(const Mark& since, std::int64_t now_ns) const {
    if (m_received == 0) return "nothing has come yet";
    const double span_s = program::inSeconds(std::max<std::int64_t>(now_ns - since.time_ns, 1));
    char text[256];
    std::snprintf(text, sizeof text,
                  "%lld received, %.1f a second, the last %.2f s ago; longest interval %.1f ms, "
                  "%lld gaps, %lld not of %zu bytes; from %s",
                  static_cast<long long>(m_received), double(m_received - since.received) / span_s,
                  program::inSeconds(now_ns - m_last_ns),
                  double(since.longest_ns) / double(program::NS_PER_MS),
                  static_cast<long long>(m_gaps), static_cast<long long>(m_unusual), m_size,
                  m_sender.c_str());
    std::string line = text;
    if (m_senders.size() > 1) line += " (one of " + std::to_string(m_senders.size()) + " senders)";
    return line;
}

std::string fieldColumns(bool feedback, std::span<const std::uint8_t> datagram) {
    constexpr std::size_t COLUMNS = 3, WIDTH = 42;
    std::vector<std::string> cells;
    for (const WireField& field : fieldsOf(feedback))
        if (field.use != WireField::Use::RESERVED) cells.push_back(cell(field, datagram));
    const std::size_t rows = (cells.size() + COLUMNS - 1) / COLUMNS;
    std::string text;
    for (std::size_t row = 0; row < rows; row++) {
        std::string line(2, ' ');
        for (std::size_t i = row; i < cells.size(); i += rows) {
            if (i > row) line.resize(std::max(line.size() + 1, 2 + WIDTH * (i / rows)), ' ');
            line += cells[i];
        }
        text.append(line).append(1, '\n');
    }
    return text;
}

} // namespace flightsim
