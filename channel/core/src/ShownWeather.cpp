// SPDX-License-Identifier: MIT
#include "ShownWeather.h"

#include "Weather.h"
#include "common/logic/SignalTypes.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr int HEAVY = 3;                                   ///< the highest level of precipitation
constexpr float LOWEST_CLOUDS = 30, HIGHEST_TOWER = 15000; ///< m

constexpr float CLEAR_SIGHT = 60000; ///< m, when nobody says anything
/// The farthest that one sees in metres: by look of the sky, by level of precipitation.
constexpr float LOOK_SIGHT[] = {1e6f, 1e6f, 1e6f, 800};
constexpr float RAIN_SIGHT[] = {1e6f, 20000, 9000, 4000};
constexpr float SNOW_SIGHT[] = {1e6f, 6000, 2000, 700};
constexpr float HAIL_SIGHT[] = {1e6f, 15000, 6000, 2500};

/// Looks of the sky by WEATHER_TYPE.
struct Look {
    float cloud_cover, overcast, darkness;
};
constexpr Look LOOKS[] = {{0.5f, 0, 0}, {0.8f, 1, 0.15f}, {0.9f, 1, 0.85f}, {0.5f, 0.9f, 0.1f}};

// Seconds from none to all, or from all to none.
constexpr float SKY_CHANGES_IN = 8, PRECIPITATION_CHANGES_IN = 6;
constexpr float WETS_IN = 20, DRIES_IN = 60, ICES_IN = 40, THAWS_IN = 80;
constexpr float TENFOLD_SIGHT_IN = 3; ///< s in which sight grows tenfold, or falls to a tenth
constexpr float CLOUDS_MOVE_BY = 100; ///< m/s, up or down

float strength(int level) { return static_cast<float>(std::clamp(level, 0, HEAVY)) / HEAVY; }

float sight(const Weather& weather) {
    const auto level = [](int told) { return std::clamp(told, 0, HEAVY); };
    const float told = weather.visibility > 0 ? weather.visibility : CLEAR_SIGHT;
    return std::min({told, LOOK_SIGHT[level(weather.look)], RAIN_SIGHT[level(weather.rain)],
                     SNOW_SIGHT[level(weather.snow)], HAIL_SIGHT[level(weather.hail)]});
}

/// Nearer to `target` by at most `step`.
float towards(float value, float target, float step) {
    return value < target ? std::min(value + step, target) : std::max(value - step, target);
}

float soaked(float value, float target, float dt, float comes_in, float goes_in) {
    return towards(value, target, dt / (value < target ? comes_in : goes_in));
}

} // namespace

ShownWeather ShownWeather::of(const Weather& told, const Weather& asked) {
    const Weather weather = told.overriddenBy(asked);
    const Look& look = LOOKS[std::clamp<int>(weather.look, WEATHER_CLEAR, WEATHER_FOG)];
    ShownWeather shown;
    shown.cloud_cover = weather.cloud_cover >= 0 ? weather.cloud_cover : look.cloud_cover;
    shown.overcast = look.overcast;
    shown.darkness = look.darkness;
    if (weather.cloud_cover >= 0 && weather.cloud_thickness > 0) {
        shown.cloud_base = std::max(weather.cloud_base, LOWEST_CLOUDS);
        shown.cloud_thickness = std::min(weather.cloud_thickness, HIGHEST_TOWER);
    }
    shown.visibility = asked.visibility > 0 ? asked.visibility : sight(weather);
    shown.rain = shown.wetness = strength(weather.rain);
    shown.snow = shown.ice = strength(weather.snow);
    shown.hail = strength(weather.hail);
    return shown;
}

void ShownWeather::approach(const ShownWeather& target, float dt) {
    if (!(dt > 0)) return;
    for (float ShownWeather::*part :
         {&ShownWeather::cloud_cover, &ShownWeather::overcast, &ShownWeather::darkness})
        this->*part = towards(this->*part, target.*part, dt / SKY_CHANGES_IN);
    for (float ShownWeather::*part :
         {&ShownWeather::rain, &ShownWeather::snow, &ShownWeather::hail})
        this->*part = towards(this->*part, target.*part, dt / PRECIPITATION_CHANGES_IN);
    for (float ShownWeather::*part : {&ShownWeather::cloud_base, &ShownWeather::cloud_thickness})
        this->*part = towards(this->*part, target.*part, dt * CLOUDS_MOVE_BY);
    wetness = soaked(wetness, target.wetness, dt, WETS_IN, DRIES_IN);
    ice = soaked(ice, target.ice, dt, ICES_IN, THAWS_IN);
    // The eye sees how many times farther it sees.
    const float factor = std::pow(10.0f, dt / TENFOLD_SIGHT_IN);
    visibility = visibility < target.visibility ? std::min(visibility * factor, target.visibility)
                                                : std::max(visibility / factor, target.visibility);
}
