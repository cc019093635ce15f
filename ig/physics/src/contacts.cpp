// SPDX-License-Identifier: MIT

// What bodies meet: contacts of those that report them, and the ground on which some come to rest.
// The solver reports nothing between bodies that the scene moves, and at 300 m/s a body is 5 to
// 30 m farther every frame, so contacts are found by sweeping its shapes along its way.

#include "bullet.h"
#include "ig/math/EllipsoidModel.h"

#include <algorithm>
#include <set>

namespace ig {

namespace {

const EllipsoidModel EARTH;
constexpr double LANDING_LIFT = 0.5; ///< m; a deck that heaves this much in a frame is still met

struct SweepResult : btCollisionWorld::ConvexResultCallback {
    explicit SweepResult(const btCollisionObject* body) : own(body) {}
    bool needsCollision(btBroadphaseProxy* proxy) const override {
        return proxy->m_clientObject != own && ConvexResultCallback::needsCollision(proxy);
    }
    btScalar addSingleResult(btCollisionWorld::LocalConvexResult& result, bool) override {
        met.insert(result.m_hitCollisionObject);
        return 1; // all along the way, not only the nearest
    }
    const btCollisionObject* own;
    std::set<const btCollisionObject*> met;
};

} // namespace

void Physics::reportContacts() {
    jVector<BodyRigid*> contacts; // each as often as it met something
    for (Body* body : m_bodies) {
        BodyRigid* rigid = asRigid(body);
        if (!rigid || !rigid->m_simulation->inserted) continue;
        if (rigid->getContactCallback()) sweep(rigid, contacts);
        rigid->m_simulation->last = rigid->m_simulation->body->getWorldTransform();
    }
    // The callbacks may remove any body, also one that comes later.
    const BodyRigid* previous = nullptr;
    int index = 0;
    for (BodyRigid* body : contacts) {
        index = body == previous ? index + 1 : 0;
        previous = body;
        if (m_bodies.find(body) < 0) continue;
        if (auto* callback = body->getContactCallback()) callback->onContact(body, index);
    }
}

void Physics::sweep(BodyRigid* body, jVector<BodyRigid*>& contacts) {
    BodyRigid::Simulation& s = *body->m_simulation;
    const btTransform& from = s.last;
    const btTransform& to = s.body->getWorldTransform();
    const btVector3 way = to.getOrigin() - from.getOrigin();
    if (way.isZero()) return;
    SweepResult result(s.body.get());
    for (int i = 0; i < s.compound.getNumChildShapes(); i++) {
        const btTransform& place = s.compound.getChildTransform(i);
        m_solver->world.convexSweepTest(static_cast<btConvexShape*>(s.compound.getChildShape(i)),
                                        from * place, to * place, result);
    }
    for (std::size_t i = 0; i < result.met.size(); i++)
        contacts.append(body);
    if (!m_surfaces) return;
    btVector3 center;
    btScalar radius;
    s.compound.getBoundingSphere(center, radius);
    const btVector3 tip = to.getOrigin() + way.normalized() * radius;
    if (m_surfaces->meet(fromBullet(from.getOrigin()), fromBullet(tip), true, nullptr))
        contacts.append(body);
}

/// Puts a body that has sunk into the ground back onto it, at rest.
void Physics::land(BodyRigid* body) {
    BodyRigid::Simulation& s = *body->m_simulation;
    if (!m_surfaces || !s.inserted || !s.body->isActive()) return;
    const dvec3 center = fromBullet(s.body->getCenterOfMassPosition());
    const btVector3 down = toBullet(-EARTH.getUp(center));
    double depth = 0; // of the lowest point below the centre of mass
    for (int i = 0; i < s.compound.getNumChildShapes(); i++) {
        const btTransform place = s.body->getWorldTransform() * s.compound.getChildTransform(i);
        const auto* shape = static_cast<btConvexShape*>(s.compound.getChildShape(i));
        const btVector3 lowest = place * shape->localGetSupportingVertex(down * place.getBasis());
        depth = std::max(depth, (lowest - toBullet(center)).dot(down));
    }
    const dvec3 from = fromBullet(s.last.getOrigin() - down * LANDING_LIFT);
    const dvec3 lowest = center + fromBullet(down * depth);
    dvec3 ground;
    if (!m_surfaces->meet(from, lowest, body->m_floating, &ground)) return;
    btTransform rest = s.body->getWorldTransform();
    rest.setOrigin(toBullet(ground) - down * depth);
    s.body->setWorldTransform(rest);
    s.body->setLinearVelocity({0, 0, 0});
    s.body->setAngularVelocity({0, 0, 0});
    refresh(body);
}

} // namespace ig
