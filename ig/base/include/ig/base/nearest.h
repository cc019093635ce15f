// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace ig {

/// The end of a message about an unknown name: `; nearest is "cloud_percent"` for the known name
/// that `wrong` is most like, or nothing when it is like none. Letters in the wrong case weigh
/// little, and letters left out less than wrong ones, so that a beginning or an abbreviation finds
/// the name that is meant: "cloud_pct" is no slip of "cloud_top".
std::string nearest(std::string_view wrong, const std::vector<std::string>& known);

} // namespace ig
