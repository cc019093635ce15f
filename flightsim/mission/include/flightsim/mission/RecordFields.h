// SPDX-License-Identifier: MIT
#pragma once

#include "common/wire/UdpRecvData.h"
#include "common/wire/WireField.h"

#include <cstddef>
#include <utility>
#include <vector>

namespace flightsim {

/// The record before any mission has said anything: running, clear, good visibility, a light sea,
/// the radar's sector ahead and the winch stowed.
UdpRecvData fairWeatherRecord();

/// Fields that change together. Codes and switches, with nothing in between, change at once; what
/// is between two integers is rounded.
struct Change {
    double after = 0; ///< seconds from the beginning of the flight or leg
    double over = 0;  ///< seconds that quantities take to reach their value, linearly
    std::vector<std::pair<const WireField*, double>> values;
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
        const WireField* field;
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
