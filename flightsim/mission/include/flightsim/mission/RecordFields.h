// SPDX-License-Identifier: MIT
#pragma once

#include "common/wire/UdpRecvData.h"

#include <cstddef>
#include <span>
#include <string_view>
#include <utility>
#include <vector>

namespace flightsim {

/// A field of the host data record that a mission may set: everything but the helicopter's pose.
struct RecordField {
    enum class Type { u16, i16, u32, i32, f32 };

    std::string_view name;
    Type type;
    std::size_t offset;
    bool ramps; ///< a quantity; the others are codes and switches, with nothing in between

    double least() const;    ///< of the values that the type holds
    double greatest() const; ///< likewise
    double read(const UdpRecvData& record) const;
    /// Integers are rounded. The value must be within the type's range.
    void write(UdpRecvData& record, double value) const;
};

std::span<const RecordField> recordFields();
/// Null when there is none of that name.
const RecordField* findRecordField(std::string_view name);

/// The record before any mission has said anything: running, clear, good visibility, a light sea,
/// the radar's sector ahead and the winch stowed.
UdpRecvData fairWeatherRecord();

/// Fields that change together.
struct Change {
    double after = 0; ///< seconds from the beginning of the flight or leg
    double over = 0;  ///< seconds that quantities take to reach their value, linearly
    std::vector<std::pair<const RecordField*, double>> values;
};

/// Applies changes to the record when their time comes. A flight owns one, adds the changes of each
/// leg as the leg begins, and calls `apply` for record after record.
class RecordSchedule {
public:
    /// `begin`: the time that the change counts from. A change to a field ends an earlier one.
    void add(const Change& change, double begin);
    /// Brings the record to a time, which must not decrease. `command` is an event rather than a
    /// state: it is in the first record from its time on, and 0 in all others.
    void apply(double time, UdpRecvData& record);

private:
    struct Ramp {
        const RecordField* field;
        double begin;
        double end;
        double from; ///< the record's value when the ramp began
        double to;
        bool begun;
        double valueAt(double time) const; ///< of one that has begun
    };
    std::size_t begin(std::size_t index, UdpRecvData& record);

    std::vector<Ramp> m_ramps; ///< in order of their beginning
};

} // namespace flightsim
