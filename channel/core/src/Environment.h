// SPDX-License-Identifier: MIT
#pragma once

#include "ShownWeather.h"
#include "Weather.h"
#include "common/logic/LogicBase.h"
#include "ig/app/Renderer.h"

#include <algorithm>
#include <cmath>
#include <string>

namespace ig {
class Camera;
class ControlApp;
class ObjectOcean;
} // namespace ig
struct Options;

/// Light, air and sea of the scene. The flight simulation's weather arrives through the logic's
/// signals. What they say of the sea is passed on at once, so that it holds for the queries of the
/// same frame; the rest is stored, and applied once a frame to the wind and the picture, which
/// follow changes in their own time, and the logic is told what belongs to its own scene. What is
/// told first after the start or with a reset of the scene holds at once, and so does what changes
/// while the scene stands still. The hour is this application's own. What the operator asks for, by
/// options or keys, wins over the flight simulation:
///
///   F7   look of the sky: as told, clear, overcast, storm, fog
///   F8   precipitation: as told, light, medium, heavy rain, heavy snow, heavy hail, none
///   b    sea: as told, Beaufort 0, 2, 4, 6, 8
///   t    an hour later; with Shift an hour earlier
class Environment {
public:
    explicit Environment(const Options& options);
    /// Listens from then on; the logic must be there as long as this object is used.
    void connect(LogicBase& logic);
    /// Finds the ocean. Called once, when the world is complete.
    void attach(const ig::World& world);

    /// Once per frame, before the logic's update.
    void readKeys(const ig::ControlApp& keys);
    /// Once per frame, after the logic's update and before physics and particles. `dt`: by how much
    /// the scene moves on, 0 while it stands still.
    void update(float dt);
    /// Fills in what concerns light and air. The hour counts at the camera's longitude;
    /// `focus`, what the picture is about, may be null; `time` is the scene's.
    void fillFrame(const ig::Camera& camera, const ig::ObjectPrefab* focus, double time,
                   ig::FrameInfo& frame) const;

    /// What is asked for at present.
    Weather getWeather() const { return m_told.overriddenBy(m_operator); }
    /// What has come of it so far.
    const ShownWeather& getShown() const { return m_shown; }
    /// Where the air moves to, m/s east and north.
    ig::vec2 getWind() const;
    /// For the status line.
    std::string describe() const;

private:
    void onCode(int code);
    void onWeather(WEATHER_TYPE look) { m_told.look = look; }
    void onRain(WEATHER_DETAIL level) { m_told.rain = level; }
    void onSnow(WEATHER_DETAIL level) { m_told.snow = level; }
    void onHail(WEATHER_DETAIL level) { m_told.hail = level; }
    void onCloud(CloudInfo* cloud);
    void onWindDirection(float direction) {
        if (std::isfinite(direction)) m_told.wind_direction = direction;
    }
    void onWindSpeed(float speed) {
        if (std::isfinite(speed)) m_told.wind_speed = std::max(speed, 0.0f);
    }
    void onVisibility(float fraction);
    void onSea(int code);

    void applySea();
    void followWeather(float dt);
    void tellLogic();
    void fillSky(double longitude, double time, ig::FrameInfo& frame) const;

    LogicBase* m_logic = nullptr;       ///< the application's
    ig::ObjectOcean* m_ocean = nullptr; ///< the world's
    Weather m_told;                     ///< by the flight simulation
    Weather m_operator;                 ///< by options and keys
    bool m_weather_told = false;
    bool m_settles = true; ///< the next frame shows at once what is asked for
    ShownWeather m_shown, m_target;
    double m_hour; ///< local solar time, in [0, 24)
    double m_time_scale;
    int m_day_of_year;
    float m_told_rain = -1, m_told_snow = -1, m_told_hour = -1; ///< to the logic, last
};
