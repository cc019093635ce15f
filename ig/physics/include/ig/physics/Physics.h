// SPDX-License-Identifier: MIT
#pragma once

#include "ig/base/jVector.h"
#include "ig/math/vec.h"
#include "ig/physics/PhysicsSurfaces.h"

#include <memory>

namespace ig {

class Body;
class BodyRigid;

/// Told what a body with a contact callback runs into. Called on the thread and at the end of
/// `Physics::update`, when nothing is being walked over: it may add, remove, enable and disable.
class BodyContactCallbackBase {
public:
    virtual ~BodyContactCallbackBase() = default;
    /// `body` is the one that carries the callback; `contact` counts what it met in this frame,
    /// from 0.
    virtual void onContact(Body* body, int contact) = 0;
};

/// The physics of one world, which owns it. Gravity acts on every body along the normal of the
/// ellipsoid at its own place; gravity towards the earth's centre would let things slide (the two
/// differ by up to 0.19 degrees). A frame is cut into equal substeps of at most 1/60 s.
///
/// Contacts: a body with a contact callback is swept once per frame, from where it stood at the
/// last update (at first, where it entered) to where it stands, so that however fast it is it
/// passes through nothing. Other bodies are met by their shapes, surfaces by the path of the
/// body's tip.
class Physics {
public:
    /// A longer frame counts as this, seconds: what floats explodes at steps beyond 0.3 s.
    static constexpr float MAX_FRAME_TIME = 0.2f;

    Physics();
    ~Physics();

    /// Gravity in the local east-north-up frame.
    vec3 getGravity() const;
    /// Not owned; null: there are none.
    void setSurfaces(const PhysicsSurfaces* surfaces) { m_surfaces = surfaces; }

    /// The body stays owned by its object, which removes it before it goes.
    void addBody(Body* body);
    void removeBody(Body* body);
    const jVector<Body*>& getBodies() const { return m_bodies; }

    /// Advances every enabled dynamic body by `dt` seconds. For dt ≤ 0 or a non-finite one nothing
    /// moves, and what pushes the bodies is forgotten all the same.
    void update(float dt);

private:
    friend class BodyRigid;
    struct Solver;
    void insert(BodyRigid* body); // makes an enabled body take part
    void extract(BodyRigid* body);
    void refresh(BodyRigid* body); // after the solver's body was placed
    void land(BodyRigid* body);
    void sweep(BodyRigid* body, jVector<BodyRigid*>& contacts);
    void forgetForces();
    void reportContacts();

    jVector<Body*> m_bodies;
    const PhysicsSurfaces* m_surfaces = nullptr;
    std::unique_ptr<Solver> m_solver;
};

} // namespace ig
