// SPDX-License-Identifier: MIT
#include "ig/scene/Node.h"

#include "ig/base/jLog.h"
#include "ig/math/EllipsoidModel.h"

namespace ig {

namespace {
const EllipsoidModel EARTH;
int g_next_id = 1;
LogLimiter g_refusals;
} // namespace

Node::BorrowedIds::BorrowedIds() : m_next(g_next_id) {}
Node::BorrowedIds::~BorrowedIds() { g_next_id = m_next; }

Node::Node(int type) : m_id(g_next_id++), m_type(type) {}

Node::~Node() {
    for (Node* child : m_children)
        delete child;
}

bool Node::isVisible() const {
    for (const Node* node = this; node; node = node->m_parent)
        if (!node->m_enabled) return false;
    return true;
}

void Node::addChild(Node* child) {
    child->m_parent = this;
    m_children.append(child);
    child->markWorldTransform();
    invalidateBounds();
    if (m_world) child->setWorld(m_world);
}

Node* Node::getChildByName(const jString& name, bool recursive) const {
    for (Node* child : m_children) {
        if (child->m_name == name) return child;
        if (!recursive) continue;
        if (Node* found = child->getChildByName(name, true)) return found;
    }
    return nullptr;
}

Node* Node::getPrefabRoot() const {
    for (Node* node = m_parent; node; node = node->m_parent)
        if (node->m_type == OBJECT_PREFAB) return node;
    return nullptr;
}

void Node::setWorld(World* world) {
    if (m_world == world) return;
    onWorldChanged(world); // still sees the world that it leaves
    m_world = world;
    for (Node* child : m_children)
        child->setWorld(world);
}

// ------------------------------------------------------------------ poses

bool Node::accept(bool finite) {
    if (finite) return true;
    m_refused++;
    if (g_refusals.allow())
        jLog::warning(
            "Node: \"%s\" (type %d, node %d) refused a pose that is not finite, %u so far",
            m_name.c_str(), m_type, m_id, m_refused);
    return false;
}

/// Forgets the cached world transforms of this node and all below it.
void Node::markWorldTransform() {
    if (!m_world_transform_valid) return;
    m_world_transform_valid = false;
    m_pose_version++;
    for (Node* child : m_children)
        child->markWorldTransform();
}

void Node::invalidateBounds() {
    for (const Node* node = this; node && node->m_bounds_valid; node = node->m_parent)
        node->m_bounds_valid = false;
}

void Node::applyTransform(const dmat4& transform) {
    // A finite request can still have an infinite result, far out or below a singular parent.
    if (!accept(isFinite(transform))) return;
    m_transform = transform;
    markWorldTransform();
    if (m_parent) m_parent->invalidateBounds();
    onMoved();
}

void Node::applyWorldTransform(const dmat4& transform) {
    applyTransform(m_parent ? m_parent->getIWorldTransform() * transform : transform);
}

void Node::setTransform(const dmat4& transform) {
    if (!accept(isFinite(transform))) return;
    m_keeps_hpr = false;
    applyTransform(transform);
}

void Node::setPosition(const dvec3& position) {
    if (!accept(isFinite(position))) return;
    m_keeps_hpr = false;
    applyTransform({m_transform.getMat3(), position});
}

void Node::setRotation(const dquat& rotation) {
    if (!accept(isFinite(rotation))) return;
    m_keeps_hpr = false;
    applyTransform({rotation, getPosition()});
}

const dmat4& Node::getWorldTransform() const {
    if (!m_world_transform_valid) {
        m_world_transform = m_parent ? m_parent->getWorldTransform() * m_transform : m_transform;
        m_world_transform_valid = true;
    }
    return m_world_transform;
}

dmat4 Node::getIWorldTransform() const { return inverse(getWorldTransform()); }

void Node::setWorldTransform(const dmat4& transform) {
    if (!accept(isFinite(transform))) return;
    m_keeps_hpr = false;
    applyWorldTransform(transform);
}

void Node::setWorldPosition(const dvec3& position) {
    if (!accept(isFinite(position))) return;
    if (m_keeps_hpr && !m_parent)
        applyTransform(
            {EARTH.getWGSTransform(position).getMat3() * composeAttitude(m_hpr), position});
    else
        applyWorldTransform({getWorldTransform().getMat3(), position});
}

void Node::setWorldRotation(const dquat& rotation) {
    if (!accept(isFinite(rotation))) return;
    m_keeps_hpr = false;
    applyWorldTransform({rotation, getWorldPosition()});
}

dvec3 Node::toLocal(const dvec3& world) const {
    // Subtracting first keeps the digits that an inverse translation of earth size would lose.
    const dmat4& m = getWorldTransform();
    return inverse(m.getMat3()) * (world - m.getTranslate());
}

dmat4 Node::getWGSTransform() const { return EARTH.getWGSTransform(getWorldPosition()); }

void Node::setWgsHPR(const dvec3& hpr) {
    if (!accept(isFinite(hpr))) return;
    m_hpr = hpr;
    m_keeps_hpr = true;
    const dmat4 frame = getWGSTransform();
    applyWorldTransform({frame.getMat3() * composeAttitude(hpr), frame.getTranslate()});
}

dvec3 Node::getWgsHPR() const {
    return decomposeAttitude(transpose(getWGSTransform().getMat3()) *
                             getWorldTransform().getMat3());
}

void Node::setWgsPosition(const dvec3& geodetic) { setWorldPosition(EARTH.toWorld(geodetic)); }

const BoundSphere& Node::getBounds() const {
    if (!m_bounds_valid) {
        m_bounds = getOwnBounds();
        for (const Node* child : m_children)
            m_bounds.expand(child->getBounds().transformed(child->m_transform));
        m_bounds_valid = true;
    }
    return m_bounds;
}

} // namespace ig
