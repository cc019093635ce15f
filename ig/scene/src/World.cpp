// SPDX-License-Identifier: MIT
#include "ig/scene/World.h"

#include "NodeBudget.h"
#include "ig/base/jLog.h"
#include "ig/math/EllipsoidModel.h"
#include "ig/package/Package.h"
#include "ig/package/PackageManager.h"
#include "ig/physics/Body.h"
#include "ig/scene/ObjectPrefab.h"
#include "ig/scene/SceneObjects.h"

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
    file->warnUnknownKeys("World::load", {"nodes", "later"});
    readLater(*file);
    const NodeBudget budget; // for all of them together
    for (const Package* description : file->getPackages("nodes", "World::load"))
        if (Node* node = LoadNode(description)) addNode(node);
    return true;
}

/// What is no path is reported with its line.
void World::readLater(const Package& file) {
    const Item* later = file.getItem("later");
    const auto report = [&file](const Item& item) {
        jLog::error("World::load: %s:%d: a list of paths of prefabs is needed in \"later\"",
                    file.getPath().c_str(), item.getLine());
    };
    if (later && later->getKind() != Item::Kind::list) report(*later);
    for (int i = 0; later && i < later->getCount(); i++) {
        const Item& path = later->getElement(i);
        if (path.getString().empty())
            report(path);
        else
            m_later.append(path.getString());
    }
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
    m_later.clear();
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

/// What lay below the emitter asked last in this step: its neighbours stand over the same.
struct World::Below {
    dvec3 place; // far from all at first: the middle of the earth
    Ground ground;
};

void World::updateParticles(float dt) {
    Below below, below_display; // what a display's own emitters find is no other's answer
    const auto advance = [&](const auto& self, Node* node) -> void {
        if (node->getType() == OBJECT_PARTICLES) {
            auto& emitter = static_cast<ObjectParticles&>(*node);
            emitter.advance(dt);
            tellSurface(emitter, dt, emitter.isOfDisplay() ? below_display : below);
        }
        for (int i = 0; i < node->getNumChildren(); i++)
            self(self, node->getChild(i));
    };
    for (Node* node : m_nodes)
        advance(advance, node);
}

void World::tellSurface(ObjectParticles& emitter, float dt, Below& last) const {
    if (!emitter.isVisible()) return;
    if (emitter.getSurface() == Ground::Kind::any &&
        readSlider(emitter.getSurfaceMaterial(0), "ground_tint", 0) <= 0)
        return;
    // From above the crests: an emitter that is laid onto the sea may lie just below it.
    constexpr double ABOVE = 5, BELOW = 100, SAME_PLACE = 0.5;
    const dvec3 place = emitter.getWorldPosition();
    if (length(place - last.place) > SAME_PLACE) {
        const dmat4 level = emitter.getWGSTransform();
        dvec3 point;
        int surface = 0;
        const Object* object = findFirst(level * dvec3(0, 0, ABOVE), level * dvec3(0, 0, -BELOW),
                                         true, point, surface);
        last = {place, object ? object->getGroundAt(surface, point) : Ground()};
    }
    emitter.passOver(last.ground, dt);
}

namespace {
/// Cuts the segment from → to short where it meets the object; the surface that it meets, or −1.
int shorten(const Object& object, const dvec3& from, dvec3& to) {
    int met = -1;
    for (int surface = 0; surface < object.getNumSurfaces(); surface++) {
        dvec3 hit;
        if (!object.isIntersection(surface)) continue;
        if (!object.getIntersection(surface, object.toLocal(from), object.toLocal(to), &hit))
            continue;
        to = object.toWorld(hit);
        met = surface;
    }
    return met;
}
} // namespace

/// The first object on a segment, its surface and the point; null when there is none.
const Object* World::findFirst(const dvec3& from, const dvec3& to, bool sea, dvec3& point,
                               int& surface) const {
    const Object* first = nullptr;
    if (!getIntersection(from, to, m_crossed)) return nullptr;
    point = to;
    const auto visit = [&](const Object& object) {
        const int met = shorten(object, from, point);
        if (met < 0) return;
        first = &object;
        surface = met;
    };
    for (const Node* node : m_crossed) {
        if (!node->isObject() || !node->isVisible()) continue;
        if (node->getType() == OBJECT_PREFAB) {
            for (const Object* object : static_cast<const ObjectPrefab*>(node)->getObjects())
                if (object->isVisible()) visit(*object);
        } else if (sea || node->getType() != OBJECT_OCEAN) {
            visit(static_cast<const Object&>(*node));
        }
    }
    return first;
}

bool World::meet(const dvec3& from, const dvec3& to, bool sea, dvec3* point) const {
    dvec3 met;
    int surface = 0;
    if (!findFirst(from, to, sea, met, surface)) return false;
    if (point) *point = met;
    return true;
}

} // namespace ig
