// SPDX-License-Identifier: MIT
#include "Weather.h"

#include "common/logic/SignalTypes.h"

#include <algorithm>
#include <cmath>
#include <cstdarg>
#include <cstdio>

namespace {

const char* const LOOKS[] = {"clear", "overcast", "storm", "fog"};

/// Adds to a list of words with a format that the compiler checks.
[[gnu::format(printf, 2, 3)]] void add(std::string& text, const char* format, ...) {
    char part[64];
    std::va_list values;
    va_start(values, format);
    std::vsnprintf(part, sizeof part, format, values);
    va_end(values);
    if (!text.empty()) text += ", ";
    text += part;
}

} // namespace

Weather Weather::overriddenBy(const Weather& other) const {
    Weather result = *this;
    for (int Weather::*level :
         {&Weather::look, &Weather::rain, &Weather::snow, &Weather::hail, &Weather::beaufort})
        if (other.*level >= 0) result.*level = other.*level;
    if (other.visibility > 0) result.visibility = other.visibility;
    if (other.cloud_cover >= 0) {
        result.cloud_cover = other.cloud_cover;
        result.cloud_base = other.cloud_base;
        result.cloud_thickness = other.cloud_thickness;
    }
    if (other.wind_speed >= 0) {
        result.wind_speed = other.wind_speed;
        result.wind_direction = other.wind_direction;
    }
    return result;
}

std::string Weather::describe() const {
    std::string text;
    if (look >= 0) add(text, "%s", LOOKS[std::clamp<int>(look, WEATHER_CLEAR, WEATHER_FOG)]);
    if (rain > 0) add(text, "rain %d", rain);
    if (snow > 0) add(text, "snow %d", snow);
    if (hail > 0) add(text, "hail %d", hail);
    if (cloud_cover > 0) add(text, "clouds %.0f %% at %.0f m", cloud_cover * 100, cloud_base);
    if (visibility >= 1000)
        add(text, "sight %.1f km", visibility / 1000);
    else if (visibility > 0)
        add(text, "sight %.0f m", visibility);
    if (wind_speed >= 0) // as sailors say it: where it comes from, clockwise from north
        add(text, "wind %03.0f/%.0f m/s",
            std::remainder(90 - static_cast<double>(wind_direction), 360) + 180, wind_speed);
    if (beaufort >= 0) add(text, "sea %d", beaufort);
    return text;
}
