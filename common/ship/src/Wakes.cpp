// SPDX-License-Identifier: MIT
#include "common/ship/Wakes.h"

#include "common/ship/Ship.h"
#include "ig/app/Engine.h"
#include "ig/math/jMath.h"
#include "ig/scene/SceneObjects.h"
#include "plugins/ocean/ObjectOcean.h"

#include <algorithm>

using namespace ig;

namespace {

constexpr int FIRST_FRAMES = 10;        ///< of the scene, in which ships jump to their places
constexpr double FOAM_MARGIN = 1.1;     ///< the decal is larger than its particles' box
constexpr double MAX_FOAM_SIZE = 512.0; ///< m
constexpr float HIGHEST_SEA = 12.0f;    ///< Beaufort number up to which foam shows

void collectEmitters(Node* node, jVector<ObjectParticles*>& emitters) {
    if (node->getType() == OBJECT_PARTICLES) emitters.append(static_cast<ObjectParticles*>(node));
    for (int i = 0; i < node->getNumChildren(); i++)
        collectEmitters(node->getChild(i), emitters);
}

} // namespace

Wakes::Wakes(Node* node, Ship* ship, ObjectOcean* ocean)
    : m_ship(ship), m_offset(node->getTransform()), m_ocean(ocean), m_node(node) {
    Node* foam = node->getChildByName("foam", false);
    if (!foam || foam->getType() != DECAL_ORTHO) return;
    m_foam = static_cast<DecalOrtho*>(foam);
    collectEmitters(foam, m_foam_particles);
}

void Wakes::update() {
    if (Engine::get()->getFrame() < FIRST_FRAMES)
        for (ObjectParticles* emitter : m_foam_particles)
            emitter->clearParticles(); // no burst from where the ship was
    if (m_foam_particles.empty()) return;
    sizeFoam();
    followShip();
    fadeWithSea();
}

void Wakes::sizeFoam() {
    WorldBoundBox box;
    for (const ObjectParticles* emitter : m_foam_particles)
        box.expand(emitter->getWorldBoundBox());
    const double size = std::clamp(length(box.max - box.min) * FOAM_MARGIN, 0.0, MAX_FOAM_SIZE);
    m_foam->setWidth(static_cast<float>(size));
    m_foam->setHeight(static_cast<float>(size));
}

/// Where the ship is, heading where it heads, but level.
void Wakes::followShip() {
    const Object& ship = *m_ship->getObject();
    const dmat4& pose = ship.getWorldTransform();
    const dvec3 up = ship.getWGSTransform().getZ();
    const dvec3 ahead = normalize(pose.getY() - up * dot(pose.getY(), up));
    const dmat4 level(dmat3(cross(ahead, up), ahead, up), pose.getTranslate());
    m_node->setWorldTransform(level * m_offset);
}

void Wakes::fadeWithSea() {
    const float beaufort = m_ocean ? m_ocean->getBeaufort() : -1;
    if (!(beaufort >= 0)) return;
    const float left = jMath::getFadeOut(beaufort, HIGHEST_SEA, HIGHEST_SEA);
    for (ObjectParticles* emitter : m_foam_particles)
        emitter->setLife(left * m_wake_life);
}
