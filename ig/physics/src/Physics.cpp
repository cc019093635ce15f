// SPDX-License-Identifier: MIT
#include "ig/physics/Physics.h"

#include "bullet.h"
#include "ig/math/EllipsoidModel.h"
#include "ig/physics/BodyRope.h"

#include <algorithm>
#include <cmath>

namespace ig {

namespace {

const EllipsoidModel EARTH;
constexpr double SUBSTEP = 1.0 / 60;
constexpr double AIR_DENSITY = 1.225; ///< kg/m³, standard atmosphere at sea level

std::unique_ptr<btCollisionShape> makeShape(const Shape& shape) {
    const vec3 size = shape.getSize();
    const btScalar radius = size.x / 2;
    switch (shape.getType()) {
    case Shape::SHAPE_SPHERE:
        return std::make_unique<btSphereShape>(radius);
    case Shape::SHAPE_CAPSULE:
        return std::make_unique<btCapsuleShapeZ>(radius, size.z);
    case Shape::SHAPE_CYLINDER:
        return std::make_unique<btCylinderShapeZ>(btVector3(radius, radius, size.z / 2));
    case Shape::SHAPE_BOX:
        break;
    }
    return std::make_unique<btBoxShape>(toBullet(size) / 2);
}

} // namespace

Physics::Physics() : m_solver(std::make_unique<Solver>()) {
    m_solver->world.setGravity({0, 0, 0}); // ours, per body, in update
    m_solver->world.setForceUpdateAllAabbs(false);
}

Physics::~Physics() {
    while (!m_bodies.empty())
        removeBody(m_bodies.back());
}

vec3 Physics::getGravity() const { return {0, 0, -Body::GRAVITY}; }

void Physics::addBody(Body* body) {
    if (m_bodies.find(body) >= 0) return;
    m_bodies.append(body);
    body->m_physics = this;
    if (BodyRigid* rigid = asRigid(body); rigid && rigid->isEnabled()) insert(rigid);
}

void Physics::removeBody(Body* body) {
    const int i = m_bodies.find(body);
    if (i < 0) return;
    if (BodyRigid* rigid = asRigid(body)) extract(rigid);
    body->m_physics = nullptr;
    m_bodies.removeFast(i);
}

void Physics::insert(BodyRigid* body) {
    BodyRigid::Simulation& s = *body->m_simulation;
    if (s.inserted || body->isHeld()) return;
    const dmat4 to_center = translate(dvec3(body->m_center));
    if (!s.body) {
        const btTransform from_center = toBullet(translate(-dvec3(body->m_center)));
        for (int i = 0; i < body->getNumShapes(); i++) {
            s.shapes.push_back(makeShape(*body->getShape(i)));
            s.compound.addChildShape(from_center * toBullet(dmat4(body->getShapeTransform(i))),
                                     s.shapes.back().get());
        }
        s.body = std::make_unique<btRigidBody>(
            btRigidBody::btRigidBodyConstructionInfo(0, nullptr, &s.compound));
        body->applyMass();
        s.body->setFlags(s.body->getFlags() | BT_DISABLE_WORLD_GRAVITY);
        s.body->setDamping(0, 0); // ours, per substep: the solver's is clamped to 1
        s.body->setUserPointer(body);
    }
    s.body->setCenterOfMassTransform(toBullet(s.pose * to_center));
    s.body->setLinearVelocity({0, 0, 0});
    s.body->setAngularVelocity({0, 0, 0});
    s.inserted = true;
    s.last = s.body->getWorldTransform();
    if (body->m_sensor) // in nobody's mask, so that only sweeps see what it meets
        m_solver->world.addRigidBody(s.body.get(), btBroadphaseProxy::SensorTrigger, 0);
    else
        m_solver->world.addRigidBody(s.body.get());
    s.body->forceActivationState(body->m_freezable ? ACTIVE_TAG : DISABLE_DEACTIVATION);
    body->addImpulse(body->m_impulse_point, body->m_impulse);
    body->m_impulse = {};
}

void Physics::extract(BodyRigid* body) {
    BodyRigid::Simulation& s = *body->m_simulation;
    if (!s.inserted) return;
    s.pose = body->getTransform();
    m_solver->world.removeRigidBody(s.body.get());
    s.inserted = false;
}

void Physics::refresh(BodyRigid* body) {
    btRigidBody* placed = body->m_simulation->body.get();
    // The bounds reach to the pose predicted last: from an old one they would span half the earth,
    // and the solver would drop the body.
    placed->setInterpolationWorldTransform(placed->getWorldTransform());
    m_solver->world.updateSingleAabb(placed);
}

void BodyRigid::accelerate(double h) {
    const auto& s = *m_simulation;
    if (!s.inserted || m_mass == 0 || !s.body->isActive()) return;
    const dvec3 up = EARTH.getUp(fromBullet(s.body->getCenterOfMassPosition()));
    const dvec3 acceleration = dvec3(m_force) / double(m_mass) - up * double(GRAVITY);
    const btVector3 v = s.body->getLinearVelocity();
    const double drag = 0.5 * AIR_DENSITY * m_drag_area * v.length() / m_mass;
    s.body->setLinearVelocity((v + toBullet(acceleration) * h) /
                              (1 + (m_linear_damping + drag) * h));
    s.body->setAngularVelocity((s.body->getAngularVelocity() +
                                s.body->getInvInertiaTensorWorld() * toBullet(m_torque) * h) /
                               (1 + m_angular_damping * h));
}

void Physics::update(float dt) {
    if (!(dt > 0) || !std::isfinite(dt)) return forgetForces();
    const double time = std::min<double>(dt, MAX_FRAME_TIME);
    for (Body* body : m_bodies)
        if (body->getType() == Body::BODY_ROPE && body->isEnabled())
            static_cast<BodyRope*>(body)->step(time, m_surfaces);
    // The small allowance keeps a frame of exactly 1/60 s, rounded up, from becoming two substeps.
    const int steps = std::max(1, static_cast<int>(std::ceil(time / SUBSTEP - 1e-4)));
    for (int step = 0; step < steps; step++) {
        for (Body* body : m_bodies) {
            BodyRigid* rigid = asRigid(body);
            if (rigid && !rigid->isPushed())
                rigid->accelerate(time / steps);
            else if (rigid && step == 0)
                rigid->accelerate(time);
        }
        m_solver->world.stepSimulation(time / steps, 0);
    }
    forgetForces();
    for (Body* body : m_bodies)
        if (BodyRigid* rigid = asRigid(body); rigid && rigid->m_landing) land(rigid);
    reportContacts();
}

/// They act in one frame. In one of no length they come to nothing: summed up, they would push all
/// at once in the next.
void Physics::forgetForces() {
    for (Body* body : m_bodies)
        if (BodyRigid* rigid = asRigid(body)) rigid->m_force = rigid->m_torque = {};
}

} // namespace ig
