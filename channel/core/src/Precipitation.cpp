// SPDX-License-Identifier: MIT
#include "Precipitation.h"

#include "Environment.h"
#include "ig/math/EllipsoidModel.h"
#include "ig/scene/Camera.h"
#include "ig/scene/SceneObjects.h"
#include "ig/scene/World.h"

#include <algorithm>
#include <cmath>
#include <utility>

using namespace ig;

namespace {

constexpr double PATH = 60;            ///< m that drops pass the eye by at most, by their life
constexpr double FASTEST_EYE = 400;    ///< m/s; what is faster has jumped
constexpr double EYE_SMOOTHING = 0.15; ///< s; host records come unevenly

} // namespace

void Precipitation::attach(const World& world) {
    const std::pair<const char*, float ShownWeather::*> kinds[] = {{"rain", &ShownWeather::rain},
                                                                   {"snow", &ShownWeather::snow},
                                                                   {"hail", &ShownWeather::hail}};
    for (const auto& [name, strength] : kinds) {
        Node* node = world.getNodeByName(name);
        if (!node || node->getType() != OBJECT_PARTICLES) continue;
        auto* emitter = static_cast<ObjectParticles*>(node);
        emitter->setOfDisplay(true);
        m_kinds.push_back({emitter, strength, emitter->getSpawnRate(),
                           std::abs(emitter->getLinearVelocity()), emitter->getLife()});
    }
}

/// Drops fall through air that drifts with the wind, and the eye flies through both: an emitter
/// lies half a life up that relative path, so that its drops pass the eye in mid-life, and the life
/// is the shorter the faster they pass, with as many drops in the air.
void Precipitation::update(float dt, const Camera& camera, const Environment& environment) {
    const dvec3 eye = camera.getWorldPosition();
    followEye(eye, dt);
    const dmat4 level = EllipsoidModel().getWGSTransform(eye);
    const vec2 wind = environment.getWind();
    const dvec3 air = level.getMat3() * dvec3(wind.x, wind.y, 0);
    for (const Kind& kind : m_kinds) {
        const float strength = environment.getShown().*kind.strength;
        kind.emitter->setEnabled(strength > 0);
        const dvec3 velocity = air - level.getZ() * kind.fall;
        const dvec3 passing = velocity - m_eye_velocity;
        const auto life = static_cast<float>(
            std::min(static_cast<double>(kind.life), PATH / std::max(length(passing), 0.1)));
        kind.emitter->setSpawnRate(kind.full_rate * strength * kind.life / life);
        if (!(strength > 0)) continue;
        kind.emitter->setLife(life);
        kind.emitter->setLinearVelocity(-static_cast<float>(length(velocity)));
        // Its Z points up the drops' way.
        const dvec3 back = normalize(velocity) * -1.0;
        const dvec3 side = normalize(cross(level.getY(), back));
        kind.emitter->setWorldTransform(dmat4(dmat3(side, cross(back, side), back),
                                              eye - passing * (static_cast<double>(life) / 2)));
    }
}

/// How fast the eye moves, from where it was.
void Precipitation::followEye(const dvec3& eye, float dt) {
    if (!(dt > 0)) return;
    const dvec3 velocity = (eye - m_eye) * (1 / static_cast<double>(dt));
    if (!m_eye_known || !(length(velocity) < FASTEST_EYE))
        m_eye_velocity = {};
    else
        m_eye_velocity +=
            (velocity - m_eye_velocity) * (1 - std::exp(-static_cast<double>(dt) / EYE_SMOOTHING));
    m_eye_known = true;
    m_eye = eye;
}
