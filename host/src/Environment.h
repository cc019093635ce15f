// SPDX-License-Identifier: MIT
#pragma once

#include "common/logic/LogicBase.h"
#include "ig/app/Renderer.h"

namespace ig {
class Camera;
}
struct Options;

/// Light, air and sea of the scene. The flight simulation's weather arrives through the logic's
/// signals, whose handlers only store it; once a frame it is applied to the sea, the precipitation
/// and the picture. Options of the command line win over it.
class Environment {
public:
    explicit Environment(const Options& options);
    /// Listens from then on; the logic must be there as long as this object is used.
    void connect(LogicBase& logic);
    /// Once per frame, after the logic's update: sets the world's sea and precipitation, tells the
    /// logic rain, snow and the hour where they have changed, and fills in `frame` what concerns
    /// light and air. The hour counts at the camera's longitude; `helicopter` may be null.
    void apply(const ig::World& world, const ig::Camera& camera, const ig::ObjectPrefab* helicopter,
               double time, ig::FrameInfo& frame);

private:
    void onWeather(WEATHER_TYPE type) { m_weather = type; }
    void onRain(WEATHER_DETAIL level) { m_rain = level; }
    void onSnow(WEATHER_DETAIL level) { m_snow = level; }
    void onHail(WEATHER_DETAIL level) { m_hail = level; }
    void onCloud(CloudInfo* cloud) {
        m_clouds_told = true;
        m_cloud_cover = cloud->enable ? cloud->ratio : 0;
    }
    void onWindDirection(float angle) { m_wind_direction = angle; }
    void onWindSpeed(float speed) { m_wind_speed = speed; }
    void onVisibility(float fraction) { m_visibility = fraction; }
    void onSea(int code) { m_sea = code; }

    void applySky(double longitude, double time, ig::FrameInfo& frame) const;
    static void applyDownwash(const ig::ObjectPrefab* helicopter, ig::FrameInfo& frame);
    void applyPrecipitation(const ig::World& world, const ig::Camera& camera);
    void applySea(const ig::World& world);
    void tellLogic();

    const Options& m_options;
    LogicBase* m_logic = nullptr; ///< the host application's
    int m_weather = WEATHER_CLEAR;
    int m_rain = 0, m_snow = 0, m_hail = 0; ///< levels 0 to 3
    bool m_clouds_told = false;
    float m_cloud_cover = 0;    ///< 0 to 1
    float m_wind_direction = 0; ///< degrees counter-clockwise from east, towards
    float m_wind_speed = -1;    ///< m/s; negative: not told yet
    float m_visibility = -1;    ///< fraction of 300 km; 0 or less: not told
    int m_sea = -1;             ///< Beaufort; negative: not told
    float m_told_rain = -1, m_told_snow = -1, m_told_time = -1;
};
