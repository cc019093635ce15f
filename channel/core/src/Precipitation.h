// SPDX-License-Identifier: MIT
#pragma once

#include "ig/math/vec.h"

#include <vector>

namespace ig {
class Camera;
class ObjectParticles;
class World;
} // namespace ig
class Environment;
struct ShownWeather;

/// Rain, snow and hail around the eye of this display. The scene says how strong they are; where
/// they fall is the display's own: another one with another eye has others, and nothing of the
/// scene follows from them. The application owns one.
class Precipitation {
public:
    /// Takes over the emitters "rain", "snow" and "hail", whose rates then count as those of the
    /// highest level. Called once, when the world is complete.
    void attach(const ig::World& world);
    /// Once per frame, after the environment's and before the particles move. `dt`: by how much the
    /// scene moves on, 0 while it stands still.
    void update(float dt, const ig::Camera& eye, const Environment& environment);
    /// World, m/s, smoothed; what falls is streaked by it.
    const ig::dvec3& getEyeVelocity() const { return m_eye_velocity; }

private:
    struct Kind {
        ig::ObjectParticles* emitter; ///< the world's
        float ShownWeather::*strength;
        float full_rate; ///< particles per second at full strength, at rest
        float fall;      ///< m/s through the air
        float life;      ///< s, at rest
    };

    void followEye(const ig::dvec3& eye, float dt);

    std::vector<Kind> m_kinds;
    ig::dvec3 m_eye; ///< world, when the scene moved last
    ig::dvec3 m_eye_velocity;
    bool m_eye_known = false;
};
