// SPDX-License-Identifier: MIT
#include "ig/scene/World.h"

#include "ig/base/jLog.h"
#include "ig/package/Package.h"
#include "ig/package/PackageManager.h"
#include "ig/physics/Body.h"
#include "ig/scene/ObjectPrefab.h"
#include "ig/scene/SceneObjects.h"
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
    for (Body* body : m_physics.getBodies()) {
        static_cast<Object*>(body->getOwner())->poseBody();
        static_cast<Object*>(body->getOwner())->applyDrag();
    }
    m_physics.update(dt);
    for (Body* body : m_physics.getBodies()) {
        if (!body->isEnabled()) continue;
        auto& object = *static_cast<Object*>(body->getOwner());
        if (object.isEnabled())
            object.followBody();
        else
            object.holdBody();
    }
}

void World::updateParticles(float dt) {
    const auto advance = [this, dt](const auto& self, Node* node) -> void {
        if (node->getType() == OBJECT_PARTICLES) {
            auto& emitter = static_cast<ObjectParticles&>(*node);
            emitter.advance(dt);
            tellSurface(emitter);
        }
        for (int i = 0; i < node->getNumChildren(); i++)
            self(self, node->getChild(i));
    };
    for (Node* node : m_nodes)
        advance(advance, node);
}

void World::tellSurface(ObjectParticles& emitter) const {
    using Surface = ObjectParticles::Surface;
    if (emitter.getSurface() == Surface::any || !emitter.isVisible()) return;
    // From above the crests: an emitter that is laid onto the sea may lie just below it.
    constexpr double ABOVE = 5, BELOW = 100;
    const dmat4 level = emitter.getWGSTransform();
    const dvec3 from = level * dvec3(0, 0, ABOVE), to = level * dvec3(0, 0, -BELOW);
    dvec3 any, land;
    const bool met = meet(from, to, true, &any);
    const bool over_water =
        met && (!meet(from, to, false, &land) || length(any - from) < length(land - from));
    emitter.setSilent(met && over_water != (emitter.getSurface() == Surface::water));
}

namespace {
/// Cuts the segment from → to short where it meets the object.
bool shorten(const Object& object, const dvec3& from, dvec3& to) {
    bool met = false;
    for (int surface = 0; surface < object.getNumSurfaces(); surface++) {
        dvec3 hit;
        if (!object.isIntersection(surface)) continue;
        if (!object.getIntersection(surface, object.toLocal(from), object.toLocal(to), &hit))
            continue;
        to = object.toWorld(hit);
        met = true;
    }
    return met;
}
} // namespace

bool World::meet(const dvec3& from, const dvec3& to, bool sea, dvec3* point) const {
    if (!getIntersection(from, to, m_crossed)) return false;
    dvec3 end = to;
    bool met = false;
    for (const Node* node : m_crossed) {
        if (!node->isObject() || !node->isVisible()) continue;
        if (node->getType() == OBJECT_PREFAB) {
            for (const Object* object : static_cast<const ObjectPrefab*>(node)->getObjects())
                if (object->isVisible()) met = shorten(*object, from, end) || met;
        } else if (sea || node->getType() != OBJECT_OCEAN) {
            met = shorten(static_cast<const Object&>(*node), from, end) || met;
        }
    }
    if (met && point) *point = end;
    return met;
}

} // namespace ig
