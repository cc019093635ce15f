// SPDX-License-Identifier: MIT
#include "flightsim/mission/RecordFields.h"

#include <algorithm>
#include <cmath>

namespace flightsim {

namespace {

void put(UdpRecvData& record, const WireField& field, double value) {
    field.write(bytesOf(record), field.isInteger() ? std::round(value) : value);
}

} // namespace

UdpRecvData fairWeatherRecord() {
    UdpRecvData record{};
    record.system_cmd = 1;
    record.weather_type = 1;
    record.weather_angle = 60;
    record.weather_value_a = 3;
    record.weather_value_b = 60'000;
    record.sea_code = 2;
    record.sea_speed = 300;
    record.sea_angle = 60;
    record.radar_value = 1;
    record.radar_sector_width = 90;
    record.hang_mass = 80;
    record.hang_length = 2;
    return record;
}

void RecordSchedule::add(const Change& change, double begin) {
    for (const auto& [field, value] : change.values) {
        const double from = begin + change.after;
        const double end = from + (field->is_code ? 0 : change.over);
        const auto behind = std::ranges::upper_bound(m_ramps, from, {}, &Ramp::begin);
        m_ramps.insert(behind, {field, from, end, 0, value, false});
    }
}

void RecordSchedule::apply(double time, UdpRecvData& record) {
    record.command = 0;
    for (std::size_t i = 0; i < m_ramps.size() && m_ramps[i].begin <= time; i++)
        if (!m_ramps[i].begun) i -= begin(i, record);
    for (const Ramp& ramp : m_ramps)
        if (ramp.begun) put(record, *ramp.field, ramp.valueAt(time));
    std::erase_if(m_ramps, [time](const Ramp& ramp) { return ramp.begun && ramp.end <= time; });
}

/// Starts a ramp where those of the same field before it have led, and ends these. Answers how
/// many.
std::size_t RecordSchedule::begin(std::size_t index, UdpRecvData& record) {
    Ramp started = m_ramps[index];
    const auto here = m_ramps.begin() + index;
    const auto rest = std::remove_if(m_ramps.begin(), here, [&](const Ramp& ramp) {
        if (ramp.field != started.field) return false;
        put(record, *ramp.field, ramp.valueAt(started.begin));
        return true;
    });
    started.from = *started.field->read(bytesOf(record));
    started.begun = true;
    *here = started;
    const auto ended = static_cast<std::size_t>(here - rest);
    m_ramps.erase(rest, here);
    return ended;
}

double RecordSchedule::Ramp::valueAt(double time) const {
    return time < end ? std::lerp(from, to, (time - begin) / (end - begin)) : to;
}

} // namespace flightsim
