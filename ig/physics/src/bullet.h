// SPDX-License-Identifier: MIT
#pragma once

// The solver's types and the conversions to them; private to this room.

#include "ig/math/mat.h"
#include "ig/physics/Body.h"
#include "ig/physics/Physics.h"

#include <btBulletDynamicsCommon.h>
#include <vector>

namespace ig {

inline btVector3 toBullet(const dvec3& v) { return {v.x, v.y, v.z}; }
inline btVector3 toBullet(const vec3& v) { return toBullet(dvec3(v)); }
inline dvec3 fromBullet(const btVector3& v) { return {v.x(), v.y(), v.z()}; }
inline btTransform toBullet(const dmat4& m) {
    const dvec3 x = m.getX(), y = m.getY(), z = m.getZ();
    const btMatrix3x3 basis(x.x, y.x, z.x, x.y, y.y, z.y, x.z, y.z, z.z);
    return btTransform(basis, toBullet(m.getTranslate()));
}
inline dmat4 fromBullet(const btTransform& t) {
    const btMatrix3x3& r = t.getBasis();
    return {
        dmat3(fromBullet(r.getColumn(0)), fromBullet(r.getColumn(1)), fromBullet(r.getColumn(2))),
        fromBullet(t.getOrigin())};
}

/// The body when it is a rigid one, else null.
inline BodyRigid* asRigid(Body* body) {
    return body->getType() == Body::BODY_RIGID ? static_cast<BodyRigid*>(body) : nullptr;
}

struct BodyRigid::Simulation {
    std::vector<std::unique_ptr<btCollisionShape>> shapes;
    btCompoundShape compound; // children shifted so that its origin is the centre of mass
    std::unique_ptr<btRigidBody> body;
    dmat4 pose; // of the body's frame; what holds while the body doesn't simulate
    bool inserted = false;
    btTransform last; // of the solver's body at the last update; where a sweep begins
};

struct Physics::Solver {
    btDefaultCollisionConfiguration configuration;
    btCollisionDispatcher dispatcher{&configuration};
    btDbvtBroadphase broadphase;
    btSequentialImpulseConstraintSolver constraints;
    btDiscreteDynamicsWorld world{&dispatcher, &broadphase, &constraints, &configuration};
};

} // namespace ig
