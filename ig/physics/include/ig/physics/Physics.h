// SPDX-License-Identifier: MIT
#pragma once

#include "ig/base/jVector.h"
#include "ig/math/vec.h"

#include <memory>

namespace ig {

class Body;
class BodyRigid;

/// The physics of one world, which owns it. Gravity acts on every body along the normal of the
/// ellipsoid at its own place; gravity towards the earth's centre would let things slide (the two
/// differ by up to 0.19 degrees). A frame is cut into equal substeps of at most 1/60 s.
class Physics {
public:
    /// A longer frame counts as this, seconds: what floats explodes at steps beyond 0.3 s.
    static constexpr float MAX_FRAME_TIME = 0.2f;
    static constexpr float GRAVITY = 9.80665f; ///< m/s²

    Physics();
    ~Physics();

    /// Gravity in the local east-north-up frame.
    vec3 getGravity() const { return {0, 0, -GRAVITY}; }

    /// The body stays owned by its object, which removes it before it goes.
    void addBody(Body* body);
    void removeBody(Body* body);
    const jVector<Body*>& getBodies() const { return m_bodies; }

    /// Advances every enabled dynamic body by `dt` seconds; nothing for dt ≤ 0 or a non-finite one.
    void update(float dt);

private:
    friend class BodyRigid;
    struct Solver;
    void insert(BodyRigid* body); // makes an enabled body take part
    void extract(BodyRigid* body);

    jVector<Body*> m_bodies;
    std::unique_ptr<Solver> m_solver;
};

} // namespace ig
