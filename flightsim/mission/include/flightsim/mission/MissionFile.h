// SPDX-License-Identifier: MIT
#pragma once

#include "flightsim/mission/Mission.h"

#include <optional>
#include <string>

namespace flightsim {

/// Reads a mission file, whose form docs/flight_sim.md describes. Nothing, with `message`, at its
/// first fault: "path:line:column: what is wrong".
std::optional<Mission> readMission(const std::string& path, std::string& message);

/// The same from text; `path` is only for messages.
std::optional<Mission> parseMission(const std::string& text, const std::string& path,
                                    std::string& message);

} // namespace flightsim
