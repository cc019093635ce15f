// SPDX-License-Identifier: MIT
#pragma once

#include "ig/base/jString.h"
#include "ig/base/jVector.h"
#include "ig/physics/Physics.h"
#include "ig/scene/Node.h"

namespace ig {

class Object;
class ObjectParticles;
class Package;

/// The scene: the nodes without parent, and the physics of their bodies. The application owns
/// it, loads a world file into it, and once per frame, after the logic, steps its physics and then
/// its particles. What segment queries meet is also what bodies meet as ground and sea.
class World final : private PhysicsSurfaces {
public:
    World() { m_physics.setSurfaces(this); }
    World(const World&) = delete;
    World& operator=(const World&) = delete;
    ~World();

    /// Reads a world file and adds its nodes. False when the file is missing or malformed (logged
    /// with path and, where there is one, line); what a node gets wrong leaves that node out.
    bool load(const jString& path);
    /// Builds a node and all below it from its description. Null, logged with path and line, when
    /// it makes no sense. The caller owns it.
    static Node* LoadNode(const Package* package);

    /// Takes ownership of a node without parent. A node that is in already stays as it is.
    void addNode(Node* node);
    /// Takes a node of the world out, releases and destroys it. Nothing for a node that is not one
    /// of the world's own.
    void removeNode(Node* node);
    const jVector<Node*>& getNodes() const { return m_nodes; }
    /// Prefabs that the world's file says will come into it on their way.
    const jVector<jString>& getLaterPrefabs() const { return m_later; }
    /// The first node of that name in the world's own tree, depth first; prefabs are found but not
    /// looked into. Null when none.
    Node* getNodeByName(const jString& name) const;

    /// The nodes of the world's own tree whose bounds, those of what hangs on them included, the
    /// segment touches, into `nodes` (emptied first), parents before children; prefabs are not
    /// looked into. False when there is none.
    bool getIntersection(const dvec3& p0, const dvec3& p1, jVector<Node*>& nodes) const;

    /// Where a segment first meets an object that can be seen and is made for queries, prefabs
    /// looked into; the sea only when asked for. `point` may be null. False when there is none.
    bool meet(const dvec3& from, const dvec3& to, bool sea, dvec3* point) const override;

    Physics& getPhysics() { return m_physics; }
    /// Advances the physics and carries the poses of the bodies to their objects.
    void updatePhysics(float dt);
    /// Advances the running times of all particle emitters, and tells those that name a surface
    /// and can be seen what lies below them.
    void updateParticles(float dt);
    /// Destroys all nodes.
    void clear();

private:
    struct Below;
    void readLater(const Package& file);
    void tellSurface(ObjectParticles& emitter, float dt, Below& last) const;
    const Object* findFirst(const dvec3& from, const dvec3& to, bool sea, dvec3& point,
                            int& surface) const;

    Physics m_physics; // before the nodes, whose bodies leave it when they go
    jVector<Node*> m_nodes;
    jVector<jString> m_later;         ///< paths
    mutable jVector<Node*> m_crossed; ///< by the segment of `findFirst`; kept for its memory
};

} // namespace ig
