// SPDX-License-Identifier: MIT
#pragma once

#include <string>

/// Weather and sea as somebody asks for them. What is negative is not asked for.
struct Weather {
    int look = -1;                       ///< of the sky, WEATHER_TYPE
    int rain = -1, snow = -1, hail = -1; ///< levels 0 to 3
    float cloud_cover = -1;              ///< 0 to 1
    float cloud_base = 0;                ///< m; goes with the cover
    float cloud_thickness = 0;           ///< m; goes with the cover
    float visibility = -1;               ///< m, above 0
    float wind_speed = -1;               ///< m/s
    float wind_direction = 0;            ///< towards, degrees counter-clockwise from east
    int beaufort = -1;                   ///< of the sea, 0 to 12

    /// This, with what `other` asks for in its place.
    Weather overriddenBy(const Weather& other) const;
    bool operator==(const Weather&) const = default;
    /// For the status line: what is asked for, in a few words.
    std::string describe() const;
};
