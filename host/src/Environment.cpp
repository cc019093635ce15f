// SPDX-License-Identifier: MIT
#include "Environment.h"

#include "Options.h"
#include "ig/app/Sky.h"
#include "ig/math/EllipsoidModel.h"
#include "ig/math/jMath.h"
#include "ig/scene/Camera.h"
#include "ig/scene/ObjectPrefab.h"
#include "ig/scene/World.h"
#include "plugins/ocean/ObjectOcean.h"

#include <algorithm>
#include <cmath>

using namespace ig;

namespace {

constexpr float FULL_VISIBILITY = 300000; ///< metres, at fraction 1
constexpr double DEFAULT_VISIBILITY = 60000;
constexpr float FOG_VISIBILITY =
    800; ///< metres, when the host asks for fog without saying how thick
constexpr double PRECIPITATION_HEIGHT = 6;               ///< of the emitters above the eye, m
constexpr float ROTOR_RADIUS = 9.5f;                     ///< m
constexpr float WASH_FADES_FROM = 8, WASH_FADES_TO = 30; ///< altitude over the water, m
constexpr float HEAVY = 3;                               ///< the highest level of precipitation

/// Looks of the sky by WEATHER_TYPE.
struct Look {
    float cloud_cover, overcast, darkness;
};
constexpr Look LOOKS[] = {{0.5f, 0, 0}, {0.8f, 1, 0.15f}, {0.9f, 1, 0.85f}, {0.5f, 0.9f, 0.1f}};

} // namespace

Environment::Environment(const Options& options) : m_options(options) {}

void Environment::connect(LogicBase& logic) {
    m_logic = &logic;
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

void Environment::apply(const World& world, const Camera& camera, const ObjectPrefab* helicopter,
                        double time, FrameInfo& frame) {
    applySky(EllipsoidModel().toWGS(camera.getWorldPosition()).x, time, frame);
    frame.focus = helicopter;
    applyDownwash(helicopter, frame);
    applyPrecipitation(world, camera);
    applySea(world);
    tellLogic();
}

/// The water feels the rotor as long as the logic shows its downwash.
void Environment::applyDownwash(const ObjectPrefab* helicopter, FrameInfo& frame) {
    frame.wash_strength = 0;
    const Node* node = helicopter ? helicopter->getNodeByName("downwash_spe") : nullptr;
    if (!node || !node->isVisible()) return;
    frame.wash_position = helicopter->getWorldPosition();
    frame.wash_radius = ROTOR_RADIUS;
    const auto altitude = static_cast<float>(EllipsoidModel().getAltitude(frame.wash_position));
    frame.wash_strength = jMath::getFadeOut(altitude, WASH_FADES_TO, WASH_FADES_FROM);
}

void Environment::applySky(double longitude, double time, FrameInfo& frame) const {
    const Sky sky = computeSky(m_options.time_of_day, longitude, m_options.day_of_year);
    frame.time = time;
    frame.sun_direction = sky.sun_direction;
    frame.moon_direction = sky.moon_direction;
    frame.sidereal_angle = sky.sidereal_angle;
    const int weather = m_options.weather >= 0 ? m_options.weather : m_weather;
    const Look& look = LOOKS[std::clamp(weather, 0, 3)];
    frame.overcast = look.overcast;
    frame.cloud_darkness = look.darkness;
    frame.cloud_cover = m_clouds_told ? std::clamp(m_cloud_cover, 0.0f, 1.0f) : look.cloud_cover;
    frame.rain = static_cast<float>(m_rain) / HEAVY;
    frame.snow = static_cast<float>(m_snow) / HEAVY;
    if (m_options.visibility > 0)
        frame.visibility = m_options.visibility;
    else if (m_visibility > 0)
        frame.visibility = static_cast<double>(m_visibility * FULL_VISIBILITY);
    else
        frame.visibility = weather == WEATHER_FOG ? FOG_VISIBILITY : DEFAULT_VISIBILITY;
}

/// It falls around the eye, wherever that is.
void Environment::applyPrecipitation(const World& world, const Camera& camera) {
    const dvec3 eye = camera.getWorldPosition();
    const dvec3 above = eye + EllipsoidModel().getUp(eye) * PRECIPITATION_HEIGHT;
    const auto enable = [&](const char* name, bool on) {
        Node* node = world.getNodeByName(name);
        if (!node) return;
        node->setEnabled(on);
        if (on) node->setWgsPosition(EllipsoidModel().toWGS(above));
    };
    enable("rain", m_rain > 0);
    enable("snow", m_snow > 0);
    enable("hail", m_hail > 0);
}

void Environment::applySea(const World& world) {
    Node* node = world.getNodeByName("ocean");
    if (!node || node->getType() != OBJECT_OCEAN) return;
    auto& ocean = static_cast<ObjectOcean&>(*node);
    if (m_options.beaufort >= 0)
        ocean.setBeaufort(static_cast<float>(m_options.beaufort));
    else if (m_sea >= 0)
        ocean.setBeaufort(static_cast<float>(std::clamp(m_sea, 0, 12)));
    if (m_wind_speed >= 0) {
        ocean.setSpeed(std::min(m_wind_speed, 75.0f));
        // Towards, counter-clockwise from east → from, clockwise from north.
        ocean.setAngle(270 - m_wind_direction);
    }
}

/// Its glass, runway and lamps follow rain, snow and hour.
void Environment::tellLogic() {
    if (!m_logic) return;
    const float rain = static_cast<float>(m_rain) / HEAVY,
                snow = static_cast<float>(m_snow) / HEAVY;
    const auto time = static_cast<float>(m_options.time_of_day);
    if (rain != m_told_rain) m_logic->setRain(m_told_rain = rain);
    if (snow != m_told_snow) m_logic->setSnow(m_told_snow = snow);
    if (time != m_told_time) m_logic->setTod(m_told_time = time);
}
