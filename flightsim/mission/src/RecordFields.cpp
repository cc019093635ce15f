// SPDX-License-Identifier: MIT
#include "flightsim/mission/RecordFields.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>

namespace flightsim {

namespace {

using Type = RecordField::Type;

/// Calls `act` with a value of the field's type.
template <class Act>
double withType(Type type, Act act) {
    switch (type) {
    case Type::u16:
        return act(std::uint16_t{});
    case Type::i16:
        return act(std::int16_t{});
    case Type::u32:
        return act(std::uint32_t{});
    case Type::i32:
        return act(std::int32_t{});
    case Type::f32:
        return act(float{});
    }
    return 0;
}

constexpr bool CODE = false;
constexpr bool QUANTITY = true;

constexpr RecordField FIELDS[] = {
    {"command", Type::u32, offsetof(UdpRecvData, command), CODE},
    {"system_cmd", Type::u32, offsetof(UdpRecvData, system_cmd), CODE},
    {"weather_type", Type::u16, offsetof(UdpRecvData, weather_type), CODE},
    {"rain_level", Type::u16, offsetof(UdpRecvData, rain_level), QUANTITY},
    {"snow_level", Type::u16, offsetof(UdpRecvData, snow_level), QUANTITY},
    {"hail_level", Type::u16, offsetof(UdpRecvData, hail_level), QUANTITY},
    {"cloud_enable", Type::u16, offsetof(UdpRecvData, cloud_enable), CODE},
    {"cloud_param1", Type::i16, offsetof(UdpRecvData, cloud_param1), QUANTITY},
    {"cloud_param2", Type::i16, offsetof(UdpRecvData, cloud_param2), QUANTITY},
    {"cloud_percent", Type::i16, offsetof(UdpRecvData, cloud_percent), QUANTITY},
    {"cloud_top", Type::f32, offsetof(UdpRecvData, cloud_top), QUANTITY},
    {"cloud_base", Type::f32, offsetof(UdpRecvData, cloud_base), QUANTITY},
    {"weather_angle", Type::f32, offsetof(UdpRecvData, weather_angle), QUANTITY},
    {"weather_value_a", Type::f32, offsetof(UdpRecvData, weather_value_a), QUANTITY},
    {"weather_value_b", Type::i32, offsetof(UdpRecvData, weather_value_b), QUANTITY},
    {"sea_code", Type::i16, offsetof(UdpRecvData, sea_code), QUANTITY},
    {"sea_speed", Type::f32, offsetof(UdpRecvData, sea_speed), QUANTITY},
    {"sea_angle", Type::f32, offsetof(UdpRecvData, sea_angle), QUANTITY},
    {"radar_value", Type::f32, offsetof(UdpRecvData, radar_value), QUANTITY},
    {"radar_sector_width", Type::f32, offsetof(UdpRecvData, radar_sector_width), QUANTITY},
    {"radar_sector_offset", Type::f32, offsetof(UdpRecvData, radar_sector_offset), QUANTITY},
    {"hang_mass", Type::i16, offsetof(UdpRecvData, hang_mass), QUANTITY},
    {"hang_length", Type::f32, offsetof(UdpRecvData, hang_length), QUANTITY},
    {"hang_enable", Type::u16, offsetof(UdpRecvData, hang_enable), CODE},
};

} // namespace

double RecordField::least() const {
    return withType(type,
                    [](auto v) { return double(std::numeric_limits<decltype(v)>::lowest()); });
}

double RecordField::greatest() const {
    return withType(type, [](auto v) { return double(std::numeric_limits<decltype(v)>::max()); });
}

double RecordField::read(const UdpRecvData& record) const {
    return withType(type, [&](auto v) {
        std::memcpy(&v, reinterpret_cast<const char*>(&record) + offset, sizeof v);
        return double(v);
    });
}

void RecordField::write(UdpRecvData& record, double value) const {
    withType(type, [&](auto v) {
        v = static_cast<decltype(v)>(type == Type::f32 ? value : std::round(value));
        std::memcpy(reinterpret_cast<char*>(&record) + offset, &v, sizeof v);
        return 0.0;
    });
}

std::span<const RecordField> recordFields() { return FIELDS; }

const RecordField* findRecordField(std::string_view name) {
    const auto* found = std::ranges::find(FIELDS, name, &RecordField::name);
    return found == std::end(FIELDS) ? nullptr : found;
}

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
        const double end = from + (field->ramps ? change.over : 0);
        const auto behind = std::ranges::upper_bound(m_ramps, from, {}, &Ramp::begin);
        m_ramps.insert(behind, {field, from, end, 0, value, false});
    }
}

void RecordSchedule::apply(double time, UdpRecvData& record) {
    record.command = 0;
    for (std::size_t i = 0; i < m_ramps.size() && m_ramps[i].begin <= time; i++)
        if (!m_ramps[i].begun) i -= begin(i, record);
    for (const Ramp& ramp : m_ramps)
        if (ramp.begun) ramp.field->write(record, ramp.valueAt(time));
    std::erase_if(m_ramps, [time](const Ramp& ramp) { return ramp.begun && ramp.end <= time; });
}

/// Starts a ramp where those of the same field before it have led, and ends these. Answers how
/// many.
std::size_t RecordSchedule::begin(std::size_t index, UdpRecvData& record) {
    Ramp started = m_ramps[index];
    const auto here = m_ramps.begin() + index;
    const auto rest = std::remove_if(m_ramps.begin(), here, [&](const Ramp& ramp) {
        if (ramp.field != started.field) return false;
        ramp.field->write(record, ramp.valueAt(started.begin));
        return true;
    });
    started.from = started.field->read(record);
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
