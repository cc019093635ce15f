// SPDX-License-Identifier: MIT
#include "bullet.h"
#include "ig/physics/Joint.h"

#include <algorithm>
#include <cmath>

namespace ig {

Body::~Body() {
    while (!m_joints.empty())
        delete m_joints.back(); // takes itself off both lists
    for (Shape* shape : m_shapes)
        delete shape;
}

void Body::leavePhysics() {
    if (m_physics) m_physics->removeBody(this);
}

mat4 Body::getShapeTransform(int i) const {
    const Shape* shape = getShape(i);
    return shape ? shape->getTransform() : mat4_identity;
}

BodyRigid::BodyRigid(float mass, const vec3& center_of_mass)
    : m_mass(std::isfinite(mass) && mass > 0 ? mass : 0), m_center(center_of_mass),
      m_simulation(std::make_unique<Simulation>()) {}

BodyRigid::~BodyRigid() { leavePhysics(); }

void BodyRigid::setEnabled(bool enabled) {
    if (enabled == m_enabled) return;
    m_enabled = enabled;
    m_force = m_torque = {};
    if (!m_physics) return;
    if (enabled)
        m_physics->insert(this);
    else
        m_physics->extract(this);
}

dmat4 BodyRigid::getTransform() const {
    if (!m_simulation->inserted) return m_simulation->pose;
    return fromBullet(m_simulation->body->getWorldTransform()) * translate(-dvec3(m_center));
}

void BodyRigid::setTransform(const dmat4& transform) {
    if (!isFinite(transform)) return;
    m_simulation->pose = transform;
    m_impulse = {};
    if (!m_simulation->inserted) return;
    m_simulation->body->setCenterOfMassTransform(toBullet(transform * translate(dvec3(m_center))));
    setLinearVelocity({});
    setAngularVelocity({});
    m_physics->refresh(this);
}

void BodyRigid::setHeldTransform(const dmat4& transform) {
    if (!m_simulation->inserted && isFinite(transform)) m_simulation->pose = transform;
}

bool BodyRigid::isHeld() const {
    return std::any_of(m_joints.begin(), m_joints.end(),
                       [](const Joint* joint) { return !joint->isBroken(); });
}

void BodyRigid::followJoints() {
    if (!m_physics) return;
    if (isHeld())
        m_physics->extract(this);
    else if (m_enabled)
        m_physics->insert(this);
}

void BodyRigid::setPreserveTransform(const dmat4& transform) {
    if (!m_simulation->inserted || !isFinite(transform)) return;
    m_simulation->pose = transform;
    m_simulation->body->setCenterOfMassTransform(toBullet(transform * translate(dvec3(m_center))));
    m_physics->refresh(this);
    wake();
}

vec3 BodyRigid::getLinearVelocity() const {
    if (!m_simulation->inserted) return {};
    return vec3(fromBullet(m_simulation->body->getLinearVelocity()));
}

void BodyRigid::setLinearVelocity(const vec3& velocity) {
    if (!m_simulation->inserted || m_mass == 0 || !isFinite(velocity)) return;
    m_simulation->body->setLinearVelocity(toBullet(velocity));
    wake();
}

vec3 BodyRigid::getAngularVelocity() const {
    if (!m_simulation->inserted) return {};
    return vec3(fromBullet(m_simulation->body->getAngularVelocity()));
}

void BodyRigid::setAngularVelocity(const vec3& velocity) {
    if (!m_simulation->inserted || m_mass == 0 || !isFinite(velocity)) return;
    m_simulation->body->setAngularVelocity(toBullet(velocity));
    wake();
}

void BodyRigid::setFreezable(bool freezable) {
    m_freezable = freezable;
    if (m_simulation->body)
        m_simulation->body->forceActivationState(freezable ? ACTIVE_TAG : DISABLE_DEACTIVATION);
}

void BodyRigid::setDamping(float& damping, float value) {
    if (std::isfinite(value) && value >= 0) damping = value;
}

void BodyRigid::addForce(const vec3& force) { addForce({}, force); }

void BodyRigid::addForce(const vec3& relative_point, const vec3& force) {
    if (!m_simulation->inserted || !isFinite(force) || !isFinite(relative_point)) return;
    addTorque(cross(relative_point, force));
    if (isFinite(m_force + force)) m_force += force;
}

void BodyRigid::addWorldForce(const dvec3& point, const vec3& force) {
    if (m_simulation->inserted && isFinite(point)) addForce(vec3(point - getWorldCenter()), force);
}

vec3 BodyRigid::getWorldVelocity(const dvec3& point) const {
    if (!m_simulation->inserted || !isFinite(point)) return {};
    return getLinearVelocity() + cross(getAngularVelocity(), vec3(point - getWorldCenter()));
}

dvec3 BodyRigid::getWorldCenter() const {
    return fromBullet(m_simulation->body->getCenterOfMassPosition());
}

void BodyRigid::addTorque(const vec3& torque) {
    if (!m_simulation->inserted || !isFinite(torque)) return;
    if (isFinite(m_torque + torque)) m_torque += torque;
    wake();
}

void BodyRigid::addImpulse(const vec3& local_point, const vec3& impulse) {
    if (!m_enabled || m_mass == 0 || !isFinite(local_point) || !isFinite(impulse)) return;
    if (!m_simulation->inserted) {
        m_impulse = impulse;
        m_impulse_point = local_point;
        return;
    }
    btRigidBody& body = *m_simulation->body;
    body.activate(true);
    body.applyImpulse(toBullet(impulse),
                      body.getWorldTransform().getBasis() * toBullet(local_point - m_center));
}

void BodyRigid::changeShapeMass(Shape& shape, float mass) {
    if (m_mass == 0) return;
    for (Shape* other : m_shapes)
        other->m_mass = other->getMass(); // the others keep their even share
    shape.m_mass = mass;
    float total = 0;
    for (const Shape* each : m_shapes)
        total += each->m_mass;
    m_mass = total;
    if (m_simulation->body) applyMass();
}

void BodyRigid::applyMass() {
    btVector3 inertia(0, 0, 0);
    if (m_mass > 0 && getNumShapes() > 0)
        m_simulation->compound.calculateLocalInertia(m_mass, inertia);
    m_simulation->body->setMassProps(m_mass, inertia);
    m_simulation->body->updateInertiaTensor();
}

void BodyRigid::wake() { m_simulation->body->activate(true); }

} // namespace ig
