// SPDX-License-Identifier: MIT
#pragma once

#include "ig/math/EllipsoidModel.h"

namespace ig {

class IApp;
class World;

/// Values of the scene that the application sets and others read.
enum EnvironmentValue {
    ENVIRONMENT_FLATTENING,  ///< how much the sea is flattened for floating bodies; 0 nothing
    ENVIRONMENT_SENSOR_GAIN, ///< gain of the sensor picture (vision mode 3)
    ENVIRONMENT_COUNT,
};

/// The engine of the process: who the application is, which world is shown, and what time it is.
/// The application sets it up and calls `beginFrame` once per frame, before anything else of
/// it.
class Engine {
public:
    static Engine* get();

    IApp* getApp() const { return m_app; }
    void setApp(IApp* app) { m_app = app; }
    World* getWorld() const { return m_world; }
    void setWorld(World* world) { m_world = world; }
    const EllipsoidModel* getEllipsoidModel() const { return &m_ellipsoid; }

    /// Starts a frame of `dt` seconds: one more frame, and `dt` more running time unless the scene
    /// stands still. What an operator does, and the link, go on then.
    void beginFrame(float dt, bool still = false);
    int getFrame() const { return m_frame; }            ///< 1 in the first frame
    float getFrameTime() const { return m_frame_time; } ///< duration of the present frame, s
    float getSceneStep() const { return m_scene_step; } ///< the scene's share in it, s: all or 0
    double getRunningTime() const { return m_running_time; } ///< of the scene: sum of its steps, s

    float getEnvironment(EnvironmentValue which) const { return m_environment[which]; }
    /// What is not finite is ignored.
    void setEnvironment(EnvironmentValue which, float value);

    /// The wind of the scene: where it blows to, degrees counter-clockwise from east, and its
    /// strength, 0 none to 10000, where light things such as flags lie fully along it. Strengths
    /// outside are clamped, what is not finite is ignored.
    void setWindDirection(float direction);
    /// Where it comes from, degrees counter-clockwise from east.
    float getWindOrigin() const { return m_wind_direction + 180; }
    void setWindStrength(float strength);
    float getWindStrength() const { return m_wind_strength; }

    /// Back to frame 0 of an engine without application and world.
    void reset();

private:
    Engine() = default;
    IApp* m_app = nullptr;
    World* m_world = nullptr;
    EllipsoidModel m_ellipsoid;
    int m_frame = 0;
    float m_frame_time = 0, m_scene_step = 0;
    double m_running_time = 0;
    float m_wind_direction = 0, m_wind_strength = 0;
    float m_environment[ENVIRONMENT_COUNT] = {};
};

} // namespace ig
