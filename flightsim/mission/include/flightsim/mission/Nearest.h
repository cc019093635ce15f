// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <vector>

namespace flightsim {

/// The end of a message about an unknown name: `; nearest is "sea_code"`, for the known name that
/// the wrong one is most like. Empty when none is known.
std::string nearest(const std::string& wrong, const std::vector<std::string>& known);

} // namespace flightsim
