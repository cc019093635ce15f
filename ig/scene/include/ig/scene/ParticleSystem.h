// SPDX-License-Identifier: MIT
#pragma once

#include "ig/math/mat.h"

#include <cstdint>
#include <map>
#include <vector>

namespace ig {

class Node;
class ObjectParticles;
class World;

/// One particle. Places and velocities are relative to its cloud's origin, in world axes.
struct Particle {
    vec3 position, velocity;  ///< m, m/s
    float age = 0, life = 1;  ///< s
    float turn = 0, spin = 0; ///< rad, rad/s, about the line of sight
    float variety = 0;        ///< 0 to 1, its own as long as it lives
};

/// The particles of one emitter: floats about an origin of their own, which is a world position
/// near the emitter, so that they are exact to a millimetre anywhere on earth. They stay where they
/// are when the emitter moves on.
struct ParticleCloud {
    const ObjectParticles* emitter = nullptr;
    /// Whether they are painted onto what lies below, as those below a decal node are.
    bool flat = false;
    dvec3 origin; ///< world
    vec3 up;      ///< local vertical at the origin
    std::vector<Particle> particles;
};

/// Moves the particles of all emitters that can be seen. The application owns one, advances it
/// once per frame after the physics, and hands it to the renderer.
///
/// An emitter spawns at its present rate along the way it came since the last step, or evenly in
/// its box, along its Z axis at its velocity; the spread is added in every direction. Drag brakes,
/// gravity pulls (both 0 unless the emitter's material says otherwise, see docs/worlds.md). A flat
/// emitter spawns less the slower it is carried, and nothing while it stands. Particles in the
/// column of one of the emitter's deflectors are removed. The particles of an emitter that is
/// hidden are gone.
///
/// Each emitter draws its random numbers from a stream of its own, by how many came up before it,
/// those of the display apart, so that the particles of one are the same whatever the others do.
class ParticleSystem {
public:
    /// `dt` in seconds; more than 0.5 counts as 0.5.
    void advance(const World& world, float dt);
    void clear() { m_clouds.clear(); }
    /// Carries particles whose material has "wind" and drag: towards, degrees counter-clockwise
    /// from east, and m/s.
    void setWind(float direction, float speed) {
        m_wind_direction = direction;
        m_wind_speed = speed;
    }

    /// Clouds with particles, by emitter.
    template <class Visitor>
    void forEach(Visitor&& visitor) const {
        for (const auto& [id, entry] : m_clouds)
            if (!entry.cloud.particles.empty()) visitor(entry.cloud);
    }
    int getNumParticles() const;

private:
    struct Entry {
        ParticleCloud cloud;
        dvec3 position;           ///< of the emitter at the last advance, world
        vec3 way;                 ///< that it came since then, m
        double owed = 0;          ///< fraction of a particle still to be spawned
        std::uint32_t random = 0; ///< where its stream of random numbers is
        unsigned round = 0;       ///< of the last advance that met the emitter
        unsigned cleared = 0;     ///< the emitter's clears that it knows of
    };
    struct Motion { ///< what the material says
        float gravity, drag, spin, wind;
    };
    void visit(const Node& node, float dt, bool below_decal);
    void advanceEmitter(const ObjectParticles& emitter, float dt, bool flat);
    static void spawn(const ObjectParticles& emitter, Entry& entry, const Motion& motion,
                      float share, float dt);
    static void makeRoom(const ObjectParticles& emitter, std::vector<Particle>& particles);
    void move(ParticleCloud& cloud, const Motion& motion, float dt) const;
    static void deflect(const ObjectParticles& emitter, ParticleCloud& cloud);
    static void keepNear(const dvec3& position, ParticleCloud& cloud);

    std::map<int, Entry> m_clouds; ///< by the emitter's id
    float m_wind_direction = 0, m_wind_speed = 0;
    unsigned m_round = 0;
    std::uint32_t m_streams = 0;         ///< begun so far by emitters of the scene,
    std::uint32_t m_display_streams = 0; ///< and by those of the display
};

} // namespace ig
