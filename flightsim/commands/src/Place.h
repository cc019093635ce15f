// SPDX-License-Identifier: MIT
#pragma once

/// Where commands put the helicopter that are told no place: on the pad of the demo world.
namespace flightsim {

inline constexpr double PAD_LATITUDE = 19.7124631;    ///< degrees
inline constexpr double PAD_LONGITUDE = -155.0625125; ///< degrees
inline constexpr double PAD_ALTITUDE = 13.67;         ///< of the helicopter standing on it, metres

} // namespace flightsim
