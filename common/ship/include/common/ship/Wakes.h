// SPDX-License-Identifier: MIT
#pragma once

#include "ig/base/jVector.h"
#include "ig/math/mat.h"

namespace ig {
class DecalOrtho;
class Node;
class ObjectOcean;
class ObjectParticles;
} // namespace ig
class Ship;

/// What a ship leaves on the water: the node "wakes" with a decal "foam" and particle emitters
/// below it. It follows the ship's place and heading but never its pitch and roll. Owned by its
/// ship; `update` once per frame, before the ship's.
class Wakes {
public:
    /// Without an ocean (null) the foam's life stays as the file says.
    Wakes(ig::Node* node, Ship* ship, ig::ObjectOcean* ocean);
    Wakes(const Wakes&) = delete;
    Wakes& operator=(const Wakes&) = delete;

    /// Life of the foam's particles, s; default 30.
    virtual float getWakeLife() const { return m_wake_life; }
    virtual void setWakeLife(float life) { m_wake_life = life; }
    virtual ~Wakes() = default;

    /// Nothing for a wake without emitters below "foam".
    void update();

private:
    void sizeFoam();
    void followShip();
    void fadeWithSea();

    Ship* m_ship;
    ig::dmat4 m_offset; ///< placement relative to the ship
    ig::DecalOrtho* m_foam = nullptr;
    ig::jVector<ig::ObjectParticles*> m_foam_particles;
    ig::ObjectOcean* m_ocean;
    ig::Node* m_node;
    float m_wake_life = 30.0f;
};
