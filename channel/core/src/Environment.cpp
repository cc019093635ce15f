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
constexpr double PATH = 60;               ///< m that drops pass the eye by at most, by their life
constexpr double FASTEST_EYE = 400;       ///< m/s; what is faster has jumped
constexpr double EYE_SMOOTHING = 0.15;    ///< s; host records come unevenly
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
    const std::pair<const char*, float ShownWeather::*> kinds[] = {{"rain", &ShownWeather::rain},
                                                                   {"snow", &ShownWeather::snow},
                                                                   {"hail", &ShownWeather::hail}};
    for (const auto& [name, strength] : kinds) {
        Node* node = world.getNodeByName(name);
        if (!node || node->getType() != OBJECT_PARTICLES) continue;
        auto* emitter = static_cast<ObjectParticles*>(node);
        m_precipitation.push_back({emitter, strength, emitter->getSpawnRate(),
                                   std::abs(emitter->getLinearVelocity()), emitter->getLife()});
    }
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

void Environment::update(float dt, const Camera& camera) {
    if (dt > 0) m_hour = wrapHour(m_hour + dt * m_time_scale / 3600);
    const Weather weather = getWeather();
    Engine::get()->setWindDirection(weather.wind_direction);
    Engine::get()->setWindStrength(std::max(weather.wind_speed, 0.0f) * WIND_STRENGTH);
    followEye(camera, dt);
    followWeather(dt);
    applyPrecipitation(weather, camera);
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

/// How fast the eye moves, from where it was.
void Environment::followEye(const Camera& camera, float dt) {
    if (!(dt > 0)) return;
    const dvec3 eye = camera.getWorldPosition();
    const dvec3 velocity = (eye - m_eye) * (1 / static_cast<double>(dt));
    if (!m_eye_known || !(length(velocity) < FASTEST_EYE))
        m_eye_velocity = {};
    else
        m_eye_velocity +=
            (velocity - m_eye_velocity) * (1 - std::exp(-static_cast<double>(dt) / EYE_SMOOTHING));
    m_eye_known = true;
    m_eye = eye;
}

/// Drops fall through air that drifts with the wind, and the eye flies through both: an emitter
/// lies half a life up that relative path, so that its drops pass the eye in mid-life, and the life
/// is the shorter the faster they pass, with as many drops in the air.
void Environment::applyPrecipitation(const Weather& weather, const Camera& camera) {
    const dmat4 level =
        Engine::get()->getEllipsoidModel()->getWGSTransform(camera.getWorldPosition());
    const double towards = weather.wind_direction * DEG_TO_RAD<double>;
    const dvec3 air = (level.getX() * std::cos(towards) + level.getY() * std::sin(towards)) *
                      std::clamp(weather.wind_speed, 0.0f, HIGHEST_WIND);
    for (const Precipitation& p : m_precipitation) {
        const float strength = m_shown.*p.strength;
        p.emitter->setEnabled(strength > 0);
        const dvec3 velocity = air - level.getZ() * p.fall;
        const dvec3 passing = velocity - m_eye_velocity;
        const auto life = static_cast<float>(
            std::min(static_cast<double>(p.life), PATH / std::max(length(passing), 0.1)));
        p.emitter->setSpawnRate(p.full_rate * strength * p.life / life);
        if (!(strength > 0)) continue;
        p.emitter->setLife(life);
        p.emitter->setLinearVelocity(-static_cast<float>(length(velocity)));
        // Its Z points up the drops' way.
        const dvec3 back = normalize(velocity) * -1.0;
        const dvec3 side = normalize(cross(level.getY(), back));
        p.emitter->setWorldTransform(
            dmat4(dmat3(side, cross(back, side), back),
                  camera.getWorldPosition() - passing * (static_cast<double>(life) / 2)));
    }
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
    frame.eye_velocity = m_eye_velocity;
    fillSky(Engine::get()->getEllipsoidModel()->toWGS(camera.getWorldPosition(), true).x, time,
            frame);
}

void Environment::fillSky(double longitude, double time, FrameInfo& frame) const {
    const Sky sky = computeSky(m_hour, longitude, m_day_of_year);
    frame.sun_direction = sky.sun_direction;
    frame.moon_direction = sky.moon_direction;
    frame.sidereal_angle = sky.sidereal_angle;
    const Weather weather = getWeather();
    frame.overcast = m_shown.overcast;
    frame.cloud_darkness = m_shown.darkness;
    frame.cloud_cover = m_shown.cloud_cover;
    frame.cloud_base = m_shown.cloud_base;
    frame.cloud_thickness = m_shown.cloud_thickness;
    frame.visibility = m_shown.visibility;
    frame.rain = m_shown.rain;
    frame.snow = m_shown.snow;
    frame.hail = m_shown.hail;
    const float wind = std::clamp(weather.wind_speed, 0.0f, HIGHEST_WIND);
    const float towards = weather.wind_direction * DEG_TO_RAD<float>;
    frame.wind = {wind * std::cos(towards), wind * std::sin(towards)};
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
