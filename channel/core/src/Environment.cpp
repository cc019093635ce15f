// SPDX-License-Identifier: MIT
#include "Environment.h"

#include "Lightning.h"
#include "LogicListener.h"
#include "Options.h"
#include "ig/app/ControlApp.h"
#include "ig/app/Engine.h"
#include "ig/app/Sky.h"
#include "ig/scene/Camera.h"
#include "ig/scene/ObjectPrefab.h"
#include "ig/scene/SceneObjects.h"
#include "ig/scene/World.h"
#include "plugins/ocean/ObjectOcean.h"

#include <algorithm>
#include <cstdio>

using namespace ig;

namespace {

constexpr float FULL_VISIBILITY = 300000; ///< metres, at fraction 1
constexpr float LEAST_VISIBILITY = 20;    ///< metres: what absurd values come down to
constexpr float WIND_STRENGTH = 400;      ///< the scene's wind strength for 1 m/s
constexpr float HIGHEST_WIND = 60;        ///< m/s: what absurd values come down to
constexpr int HIGHEST_SEA = 12;           ///< Beaufort
constexpr double DAY = 24;                ///< hours
constexpr float DARK = 0.5f;              ///< clouds of which lightning comes

// What the keys go through; the first of each is "as told".
constexpr int LOOK_KEY = KEY_F7, SHOWER_KEY = KEY_F8, SEA_KEY = 'b', HOUR_KEY = 't';
constexpr int SEAS[] = {-1, 0, 2, 4, 6, 8};
constexpr int SHOWERS[][3] = {{-1, -1, -1}, {1, 0, 0}, {2, 0, 0}, {3, 0, 0},
                              {0, 3, 0},    {0, 0, 3}, {0, 0, 0}};

double wrapHour(double hour) {
    const double wrapped = std::fmod(hour, DAY);
    return wrapped < 0 ? wrapped + DAY : wrapped;
}

} // namespace

Environment::Environment(const Options& options)
    : m_operator(options.weather), m_hour(wrapHour(options.time_of_day)),
      m_time_scale(options.time_scale), m_day_of_year(options.day_of_year) {}

void Environment::connect(LogicBase& logic) {
    m_logic = &logic;
    logic.m_sig_code.append({this, &Environment::onCode});
    logic.m_sig_weather.append({this, &Environment::onWeather});
    logic.m_sig_rain.append({this, &Environment::onRain});
    logic.m_sig_snow.append({this, &Environment::onSnow});
    logic.m_sig_hail.append({this, &Environment::onHail});
    logic.m_sig_cloud.append({this, &Environment::onCloud});
    logic.m_sig_float_2.append({this, &Environment::onWindDirection});
    logic.m_sig_float_3.append({this, &Environment::onWindSpeed});
    logic.m_sig_float_4.append({this, &Environment::onVisibility});
    logic.m_sig_sea.append({this, &Environment::onSea});
}

void Environment::attach(const World& world) {
    Node* ocean = world.getNodeByName("ocean");
    if (ocean && ocean->getType() == OBJECT_OCEAN) m_ocean = static_cast<ObjectOcean*>(ocean);
    applySea();
}

// ------------------------------------------------------------------ what is asked for

void Environment::onCode(int code) {
    if (code == LogicListener::RESET_CODE) m_settles = true;
}

void Environment::onCloud(CloudInfo* cloud) {
    const float cover = cloud->enable ? cloud->ratio : 0;
    if (!std::isfinite(cover + cloud->base + cloud->thickness)) return;
    m_told.cloud_cover = std::clamp(cover, 0.0f, 1.0f);
    m_told.cloud_base = cloud->base;
    m_told.cloud_thickness = cloud->thickness;
}

/// A host that leaves the visibility at 0 has nothing to say of it.
void Environment::onVisibility(float fraction) {
    if (!std::isfinite(fraction)) return;
    const float metres = fraction * FULL_VISIBILITY;
    m_told.visibility = metres > 0 ? std::max(metres, LEAST_VISIBILITY) : -1;
}

void Environment::onSea(int code) {
    m_told.beaufort = std::clamp(code, 0, HIGHEST_SEA);
    applySea();
}

void Environment::readKeys(const ControlApp& keys) {
    if (keys.isKeyClick(LOOK_KEY))
        m_operator.look = m_operator.look < WEATHER_FOG ? m_operator.look + 1 : -1;
    if (keys.isKeyClick(SHOWER_KEY)) {
        const int present[] = {m_operator.rain, m_operator.snow, m_operator.hail};
        const auto* at = std::find_if(std::begin(SHOWERS), std::end(SHOWERS), [&](const auto& s) {
            return std::equal(std::begin(s), std::end(s), present);
        });
        const bool last = at == std::end(SHOWERS) || at + 1 == std::end(SHOWERS);
        const int(&next)[3] = last ? SHOWERS[0] : at[1];
        m_operator.rain = next[0];
        m_operator.snow = next[1];
        m_operator.hail = next[2];
    }
    if (keys.isKeyClick(SEA_KEY)) {
        const auto* higher =
            std::upper_bound(std::begin(SEAS), std::end(SEAS), m_operator.beaufort);
        m_operator.beaufort = higher == std::end(SEAS) ? SEAS[0] : *higher;
        applySea();
    }
    if (keys.isKeyClick(HOUR_KEY))
        m_hour = wrapHour(m_hour + (keys.isKeyPress(KEY_SHIFT) ? -1 : 1));
}

// ------------------------------------------------------------------ what comes of it

/// At once: the sea evolves at the frame's first query, which is the logic's.
void Environment::applySea() {
    const int beaufort = getWeather().beaufort;
    if (m_ocean && beaufort >= 0) m_ocean->setBeaufort(static_cast<float>(beaufort));
}

void Environment::update(float dt) {
    if (dt > 0) m_hour = wrapHour(m_hour + dt * m_time_scale / 3600);
    const Weather weather = getWeather();
    Engine::get()->setWindDirection(weather.wind_direction);
    Engine::get()->setWindStrength(std::max(weather.wind_speed, 0.0f) * WIND_STRENGTH);
    followWeather(dt);
    tellLogic();
}

void Environment::followWeather(float dt) {
    const ShownWeather target = ShownWeather::of(m_told, m_operator);
    const bool first = !m_weather_told && m_told != Weather();
    m_weather_told = m_weather_told || first;
    if (m_settles || first || (!(dt > 0) && target != m_target))
        m_shown = target;
    else
        m_shown.approach(target, dt);
    m_settles = false;
    m_target = target;
}

vec2 Environment::getWind() const {
    const Weather weather = getWeather();
    const float speed = std::clamp(weather.wind_speed, 0.0f, HIGHEST_WIND);
    const float towards = weather.wind_direction * DEG_TO_RAD<float>;
    return {speed * std::cos(towards), speed * std::sin(towards)};
}

/// Its glass, runway and lamps follow wetness, ice and hour.
void Environment::tellLogic() {
    if (!m_logic) return;
    const auto hour = static_cast<float>(m_hour);
    if (m_shown.wetness != m_told_rain) m_logic->setRain(m_told_rain = m_shown.wetness);
    if (m_shown.ice != m_told_snow) m_logic->setSnow(m_told_snow = m_shown.ice);
    if (hour != m_told_hour) m_logic->setTod(m_told_hour = hour);
}

void Environment::fillFrame(const Camera& camera, const ObjectPrefab* focus, double time,
                            FrameInfo& frame) const {
    frame.time = time;
    frame.focus = focus;
    fillSky(Engine::get()->getEllipsoidModel()->toWGS(camera.getWorldPosition(), true).x, time,
            frame);
}

void Environment::fillSky(double longitude, double time, FrameInfo& frame) const {
    const Sky sky = computeSky(m_hour, longitude, m_day_of_year);
    frame.sun_direction = sky.sun_direction;
    frame.moon_direction = sky.moon_direction;
    frame.sidereal_angle = sky.sidereal_angle;
    frame.overcast = m_shown.overcast;
    frame.cloud_darkness = m_shown.darkness;
    frame.cloud_cover = m_shown.cloud_cover;
    frame.cloud_base = m_shown.cloud_base;
    frame.cloud_thickness = m_shown.cloud_thickness;
    frame.visibility = m_shown.visibility;
    frame.rain = m_shown.rain;
    frame.snow = m_shown.snow;
    frame.hail = m_shown.hail;
    frame.wind = getWind();
    const Lightning light = m_shown.darkness > DARK ? Lightning::at(time) : Lightning();
    frame.flash = light.flash;
    frame.bolt_azimuth = light.azimuth;
    frame.bolt_shape = light.shape;
}

std::string Environment::describe() const {
    char hour[16];
    const int minutes = static_cast<int>(m_hour * 60);
    std::snprintf(hour, sizeof hour, "%02d:%02d", minutes / 60, minutes % 60);
    Weather seen = getWeather();
    const float sight = ShownWeather::of(m_told, m_operator).visibility;
    if (seen.visibility > 0 || sight != ShownWeather().visibility) seen.visibility = sight;
    const std::string weather = seen.describe();
    return weather.empty() ? hour : std::string(hour) + ' ' + weather;
}
