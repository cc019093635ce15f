// SPDX-License-Identifier: MIT

// What bodies meet: contacts of those that report them, and the ground on which some come to rest.
// The solver reports nothing between bodies that the scene moves, and at 300 m/s a body is 5 to
// 30 m farther every frame, so contacts are found by sweeping its shapes along its way.

#include "bullet.h"
#include "ig/math/EllipsoidModel.h"

#include <algorithm>

namespace ig {

struct Physics::Contact {
    BodyRigid* body;
    double fraction; ///< of the way, where it happens
};

namespace {

const EllipsoidModel EARTH;
constexpr double LANDING_LIFT = 0.5; ///< m; a deck that heaves this much in a frame is still met

struct SweepResult : btCollisionWorld::ConvexResultCallback {
    explicit SweepResult(const btCollisionObject* body) : own(body) {}
    bool needsCollision(btBroadphaseProxy* proxy) const override {
        return proxy->m_clientObject != own && ConvexResultCallback::needsCollision(proxy);
    }
    btScalar addSingleResult(btCollisionWorld::LocalConvexResult& result, bool) override {
        for (auto& hit : hits)
            if (hit.first == result.m_hitCollisionObject) {
                hit.second = std::min(hit.second, result.m_hitFraction);
                return 1;
            }
        hits.emplace_back(result.m_hitCollisionObject, result.m_hitFraction);
        return 1; // all along the way, not only the nearest
    }
    const btCollisionObject* own;
    std::vector<std::pair<const btCollisionObject*, double>> hits;
};

} // namespace

void Physics::reportContacts() {
    jVector<Contact> contacts;
    for (Body* body : m_bodies) {
        BodyRigid* rigid = asRigid(body);
        if (!rigid || !rigid->m_simulation->inserted) continue;
        if (rigid->getContactCallback()) sweep(rigid, contacts);
        rigid->m_simulation->last = rigid->m_simulation->body->getWorldTransform();
    }
    // The callbacks may remove any body, also one that comes later.
    const BodyRigid* previous = nullptr;
    int index = 0;
    for (const Contact& contact : contacts) {
        index = contact.body == previous ? index + 1 : 0;
        previous = contact.body;
        if (m_bodies.find(contact.body) < 0) continue;
        if (auto* callback = contact.body->getContactCallback())
            callback->onContact(contact.body, index);
    }
}

void Physics::sweep(BodyRigid* body, jVector<Contact>& contacts) {
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
    jVector<Contact> found;
    for (const auto& hit : result.hits)
        found.append({body, hit.second});
    if (m_surfaces) {
        btVector3 center;
        btScalar radius;
        s.compound.getBoundingSphere(center, radius);
        const dvec3 a = fromBullet(from.getOrigin()), b = fromBullet(to.getOrigin());
        const dvec3 tip = fromBullet(way.normalized() * radius);
        dvec3 point;
        if (m_surfaces->meet(a, b + tip, true, &point))
            found.append({body, length(point - a) / length(b + tip - a)});
    }
    std::sort(found.begin(), found.end(),
              [](const Contact& a, const Contact& b) { return a.fraction < b.fraction; });
    for (const Contact& contact : found)
        contacts.append(contact);
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
