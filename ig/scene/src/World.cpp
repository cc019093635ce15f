// SPDX-License-Identifier: MIT
#include "ig/scene/World.h"

#include "ig/base/jLog.h"
#include "ig/package/Package.h"
#include "ig/package/PackageManager.h"
#include "ig/physics/Body.h"
#include "ig/scene/ObjectPrefab.h"
#include "readList.h"

namespace ig {

World::~World() { clear(); }

bool World::load(const jString& path) {
    const Package* file = PackageManager::get(path, "World::load");
    if (!file) return false;
    const Item* nodes = file->getItem("nodes");
    if (!nodes || nodes->getKind() == Item::Kind::value) {
        jLog::error("World::load: %s:%d: a world needs a list of \"nodes\"", path.c_str(),
                    nodes ? nodes->getLine() : 1);
        return false;
    }
    for (const Package* description : readList(*file, "nodes", "World::load"))
        if (Node* node = LoadNode(description)) addNode(node);
    return true;
}

void World::addNode(Node* node) {
    if (m_nodes.find(node) >= 0) return;
    m_nodes.append(node);
    node->setWorld(this);
}

void World::removeNode(Node* node) {
    const int i = m_nodes.find(node);
    if (i < 0) return;
    m_nodes.remove(i);
    // The physics forgets the bodies through onWorldChanged, which still sees the old world.
    node->setWorld(nullptr);
    if (node->getType() == OBJECT_PREFAB) static_cast<ObjectPrefab*>(node)->release();
    delete node;
}

void World::clear() {
    while (!m_nodes.empty())
        removeNode(m_nodes.back());
}

namespace {
Node* findByName(Node* node, const jString& name) {
    if (node->getName() == name) return node;
    if (node->getType() == OBJECT_PREFAB) return nullptr;
    for (int i = 0; i < node->getNumChildren(); i++)
        if (Node* found = findByName(node->getChild(i), name)) return found;
    return nullptr;
}
} // namespace

Node* World::getNodeByName(const jString& name) const {
    for (Node* node : m_nodes)
        if (Node* found = findByName(node, name)) return found;
    return nullptr;
}

namespace {
void collectCrossed(Node* node, const dvec3& p0, const dvec3& p1, jVector<Node*>& nodes) {
    const BoundSphere& local = node->getBounds();
    if (local.isEmpty()) return;
    if (!local.transformed(node->getWorldTransform()).intersectsSegment(p0, p1)) return;
    nodes.append(node);
    if (node->getType() == OBJECT_PREFAB) return;
    for (int i = 0; i < node->getNumChildren(); i++)
        collectCrossed(node->getChild(i), p0, p1, nodes);
}
} // namespace

bool World::getIntersection(const dvec3& p0, const dvec3& p1, jVector<Node*>& nodes) const {
    nodes.clear();
    for (Node* node : m_nodes)
        collectCrossed(node, p0, p1, nodes);
    return !nodes.empty();
}

void World::updatePhysics(float dt) {
    // What an ancestor moved since the last step: the scene's pose holds, and stops the body.
    for (Body* body : m_physics.getBodies())
        static_cast<Object*>(body->getOwner())->poseBody();
    m_physics.update(dt);
    for (Body* body : m_physics.getBodies())
        if (body->isEnabled()) static_cast<Object*>(body->getOwner())->followBody();
}

} // namespace ig
