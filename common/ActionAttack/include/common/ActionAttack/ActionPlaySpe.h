// SPDX-License-Identifier: MIT
#pragma once

#include "ig/action/ActionInterval.h"
#include "ig/base/jString.h"
#include "ig/math/vec.h"

namespace ig {
class ObjectParticles;
class World;
} // namespace ig

/// Shows a particle effect (an explosion, a splash) at a place for a time. A logic creates one and
/// gives it to its action manager; the effect's node is the world's and goes when the action ends
/// or is removed.
class ActionPlaySpe : public ig::ActionInterval {
public:
    /// `path` of the effect's file, `duration` in seconds, `position` earth-centred. Null when the
    /// file is missing, which is told once, or is no particle effect, or when memory ran out.
    static ActionPlaySpe* Create(ig::World* world, const ig::jString& path, float duration,
                                 const ig::dvec3& position);

    /// Starts the effect when 0.1 s are over, and again whenever it has run out.
    bool step(float dt) override;
    /// Lets the engine's world remove the effect.
    void release() override;
    /// Loads the effect, stopped, into the world, its Z axis up. False, with nothing added, when
    /// that fails.
    virtual bool initWithDuration(ig::World* world, const ig::jString& path, float duration,
                                  const ig::dvec3& position);

private:
    float m_duration = 0;
    ig::ObjectParticles* m_particles = nullptr; ///< the world's
};
