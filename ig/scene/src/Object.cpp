// SPDX-License-Identifier: MIT
#include "ig/scene/Object.h"

#include "ig/physics/Body.h"
#include "ig/scene/World.h"

namespace ig {

Object::Object(int type) : Node(type) {}

Object::~Object() { delete m_body; }

const Object::Slot* Object::getSlot(int surface) const {
    if (surface < 0 || surface >= static_cast<int>(m_slots.size())) return nullptr;
    return &m_slots[surface];
}

Object::Slot* Object::getSlot(int surface) {
    return const_cast<Slot*>(static_cast<const Object*>(this)->getSlot(surface));
}

bool Object::getIntersection(int, const dvec3&, const dvec3&, dvec3*) const { return false; }

void Object::setIntersection(int surface, bool on) {
    if (Slot* slot = getSlot(surface)) slot->intersection = on;
}

bool Object::isIntersection(int surface) const {
    const Slot* slot = getSlot(surface);
    return slot && slot->intersection;
}

Ground Object::getGroundAt(int surface, const dvec3&) const {
    return readGround(surface, Ground::Kind::hard);
}

Ground Object::readGround(int surface, Ground::Kind otherwise) const {
    constexpr float WHITE = 0.35f; // share of "ice" from which a surface counts as snow
    const Material* material = getSurfaceMaterial(surface);
    const bool iced = readSlider(material, "ice", 0) > WHITE;
    if (iced)
        otherwise = Ground::Kind::snow;
    else if (material && material->getGround() != Ground::Kind::any)
        otherwise = material->getGround();
    Ground ground = Ground::of(otherwise);
    ground.lifted = readValue(material, iced ? "snow_lifted" : "lifted", ground.lifted);
    return ground;
}

Material* Object::getSurfaceMaterial(int surface) const {
    const Slot* slot = getSlot(surface);
    if (!slot) return nullptr;
    return slot->own ? slot->own.get() : slot->shared;
}

void Object::setSurfaceMaterial(int surface, Material* material) {
    if (Slot* slot = getSlot(surface)) {
        slot->shared = material;
        slot->own.reset();
    }
}

void Object::setSurfaceMaterialInherit(int surface, bool inherit) {
    Slot* slot = getSlot(surface);
    if (!slot || !slot->shared) return;
    if (!inherit)
        slot->own.reset();
    else if (!slot->own)
        slot->own = std::make_unique<Material>(*slot->shared);
}

BodyRigid* Object::getBodyRigid() const {
    if (!m_body || m_body->getType() != Body::BODY_RIGID) return nullptr;
    return static_cast<BodyRigid*>(m_body);
}

void Object::setBody(Body* body) {
    if (m_body == body) return;
    delete m_body;
    m_body = body;
    if (!body) return;
    body->setOwner(this);
    m_body_version = ~getPoseVersion();
    poseBody();
    if (getWorld()) getWorld()->getPhysics().addBody(body);
}

Body* Object::releaseBody() {
    Body* body = m_body;
    m_body = nullptr;
    if (body) {
        body->setOwner(nullptr);
        if (getWorld()) getWorld()->getPhysics().removeBody(body);
    }
    return body;
}

void Object::followBody() {
    if (!m_body) return;
    Body* body = m_body;
    m_body = nullptr; // so that moving the object doesn't move, and stop, the body in turn
    setWorldTransform(body->getTransform());
    m_body = body;
    getWorldTransform(); // so that the next change of pose shows in the version
    m_body_version = getPoseVersion();
}

void Object::holdBody() {
    if (BodyRigid* body = getBodyRigid()) body->setTransform(getWorldTransform());
}

void Object::poseBody() {
    if (!m_body || m_body_version == getPoseVersion()) return;
    m_body->setTransform(getWorldTransform());
    m_body_version = getPoseVersion();
}

void Object::applyDrag() {
    BodyRigid* body = m_drags.empty() ? nullptr : getBodyRigid();
    if (!body) return;
    float area = 0;
    for (const Drag& drag : m_drags)
        if (drag.node->isVisible()) area += drag.area;
    body->setDragArea(area);
}

void Object::onMoved() { poseBody(); }

void Object::onWorldChanged(World* world) {
    if (!m_body) return;
    if (world) {
        poseBody();
        world->getPhysics().addBody(m_body);
    } else if (getWorld()) {
        getWorld()->getPhysics().removeBody(m_body);
    }
}

ObjectMesh::ObjectMesh(std::shared_ptr<const Mesh> mesh)
    : Object(OBJECT_MESH), m_mesh(std::move(mesh)) {
    setNumSurfaces(m_mesh->getNumSurfaces());
}

bool ObjectMesh::getIntersection(int surface, const dvec3& a, const dvec3& b, dvec3* out) const {
    if (!isIntersection(surface)) return false;
    const double t = m_mesh->intersect(surface, a, b);
    if (t < 0) return false;
    if (out) *out = a + (b - a) * t;
    return true;
}

} // namespace ig
