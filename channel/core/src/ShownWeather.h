// SPDX-License-Identifier: MIT
#pragma once

struct Weather;

/// Weather as the picture shows it. What is told changes at once, the air doesn't: sky, sight and
/// precipitation take seconds to follow, wetness and ice tens of seconds, and they go more slowly
/// than they come. Plain values; `Environment` owns one.
struct ShownWeather {
    float cloud_cover = 0.5f;           ///< broken clouds, 0 to 1
    float overcast = 0;                 ///< closed layer, 0 to 1
    float darkness = 0;                 ///< of the closed layer, 0 to 1
    float cloud_base = 900;             ///< m
    float cloud_thickness = 500;        ///< m
    float visibility = 60000;           ///< m, above 0
    float rain = 0, snow = 0, hail = 0; ///< strengths, 0 to 1
    float wetness = 0, ice = 0;         ///< of what lies outside, 0 to 1

    /// What comes of the weather that is told and of what the operator asks for in its place. Fog,
    /// rain, snow and hail shorten the sight that is told; the sight that he asks for holds.
    static ShownWeather of(const Weather& told, const Weather& asked);
    /// Follows `target` for `dt` seconds. A change arrives: it doesn't just come nearer.
    void approach(const ShownWeather& target, float dt);

    bool operator==(const ShownWeather&) const = default;
};
