// SPDX-License-Identifier: MIT
#include "flightsim/mission/Mission.h"

#include "flightsim/helicopter/Helicopter.h"

namespace flightsim {

namespace {

bool isFlown(const Leg& leg, std::optional<double> duration) {
    const double d = duration.value_or(std::numeric_limits<double>::max());
    return d >= leg.optional_from && d < leg.optional_below;
}

struct Condition {
    bool in_the_air;
    bool rotor_runs;
};

/// What is wrong with a leg in the condition in which it begins; updates that to when it ends.
const char* faultInOrder(const Leg& leg, Condition& now) {
    switch (leg.kind) {
    case LegKind::wait:
        return nullptr;
    case LegKind::spin_up:
    case LegKind::spin_down:
        if (now.in_the_air) return "the rotor is started and stopped on the ground: land first";
        now.rotor_runs = leg.kind == LegKind::spin_up;
        return nullptr;
    case LegKind::take_off:
        if (now.in_the_air) return "take_off: the helicopter is in the air already";
        if (!now.rotor_runs) return "take_off: the rotor stands still: spin_up first";
        now.in_the_air = true;
        return nullptr;
    case LegKind::land:
        if (!now.in_the_air) return "land: the helicopter is on the ground already";
        now.in_the_air = false;
        return nullptr;
    default:
        return now.in_the_air ? nullptr : "the helicopter is on the ground: take_off first";
    }
}

} // namespace

std::optional<std::vector<Leg>> selectLegs(const Mission& mission, std::optional<double> duration,
                                           std::string& message) {
    std::vector<Leg> legs;
    Condition now{false, mission.rotor > 0.9 * FULL_ROTOR};
    for (const Leg& leg : mission.legs) {
        if (!isFlown(leg, duration)) continue;
        if (const char* fault = faultInOrder(leg, now)) {
            message = missionMessage(mission.path, leg.line, leg.column, fault);
            return std::nullopt;
        }
        legs.push_back(leg);
    }
    if (!legs.empty()) return legs;
    message = "\"" + mission.path + "\": no leg is flown for this duration";
    return std::nullopt;
}

std::string missionMessage(const std::string& path, int line, int column, const std::string& what) {
    return path + ":" + std::to_string(line) + ":" + std::to_string(column) + ": " + what;
}

} // namespace flightsim
