// SPDX-License-Identifier: MIT
#pragma once

#include "ig/base/jAllocator.h"
#include "ig/base/jString.h"
#include "ig/base/jVector.h"
#include "ig/math/quat.h"
#include "ig/scene/Bounds.h"

namespace ig {

class World;

/// Type codes of nodes, as `Node::getType` tells them.
enum NodeType {
    NODE_DUMMY = 0,
    NODE_FIELD = 2,
    NODE_CAMERA = 3,
    NODE_DOWNDRAUGHT = 4,
    DECAL_ORTHO = 8,
    OBJECT_MESH = 16,
    OBJECT_PREFAB = 18,
    OBJECT_PARTICLES = 19,
    OBJECT_OCEAN = 21,
    OBJECT_TERRAIN = 22,
    OBJECT_LIGHT = 25, ///< a lamp that is seen itself, such as the tail light
    OBJECT_ROPE = 26,
    OBJECT_SCENERY = 27, ///< trees and houses on a terrain
    NODE_CAMERA_RADAR = 44,
};

/// A place in the scene: a name, a pose, children. Axes: X right, Y forward, Z up.
///
/// Who owns it: its parent, or the world for a node without parent; a node in neither is its
/// creator's. Destroying a node destroys its children.
///
/// Poses are affine transforms in double precision: the local one is relative to the parent, the
/// world one is earth-centred; without parent they are the same. Every setter refuses values that
/// are not finite: the node keeps its last pose, counts the refusal, and warns once per second at
/// most. Angles are degrees.
class Node : public jObject {
public:
    explicit Node(int type = NODE_DUMMY);
    Node(const Node&) = delete;
    Node& operator=(const Node&) = delete;
    ~Node() override;

    int getID() const { return m_id; } ///< unique among those that live
    /// While one lives, new nodes take their ids from those that come next, without using them up:
    /// the scene's own have the same ids whether or not others were looked at on the way. The nodes
    /// that are made meanwhile must go before it.
    class BorrowedIds {
    public:
        BorrowedIds();
        BorrowedIds(const BorrowedIds&) = delete;
        BorrowedIds& operator=(const BorrowedIds&) = delete;
        ~BorrowedIds();

    private:
        int m_next;
    };
    int getType() const { return m_type; }
    /// Whether the node is an `Object`.
    virtual bool isObject() const { return false; }

    const jString& getName() const { return m_name; }
    void setName(const jString& name) { m_name = name; }

    void setEnabled(bool enabled) { m_enabled = enabled; }
    bool isEnabled() const { return m_enabled; }
    /// Enabled, and so are all its ancestors.
    bool isVisible() const;

    Node* getParent() const { return m_parent; }
    int getNumChildren() const { return m_children.size(); }
    Node* getChild(int i) const { return m_children[i]; }
    /// Takes ownership; the child keeps its local transform.
    void addChild(Node* child);
    /// The first child of that name, searched depth first when `recursive`; null when there is
    /// none.
    Node* getChildByName(const jString& name, bool recursive) const;
    /// The world that the node is in, or null.
    World* getWorld() const { return m_world; }
    /// The nearest prefab that the node belongs to (itself excluded), or null.
    Node* getPrefabRoot() const;

    // --- Pose relative to the parent

    const dmat4& getTransform() const { return m_transform; }
    void setTransform(const dmat4& transform);
    dvec3 getPosition() const { return m_transform.getTranslate(); }
    void setPosition(const dvec3& position);
    dquat getRotation() const { return m_transform.getMat3().getQuat(); }
    void setRotation(const dquat& rotation);

    // --- Pose in the world

    const dmat4& getWorldTransform() const;
    dmat4 getIWorldTransform() const; ///< inverse of the world transform
    void setWorldTransform(const dmat4& transform);
    dvec3 getWorldPosition() const { return getWorldTransform().getTranslate(); }
    /// Keeps the world rotation; but a node without parent whose attitude was set last with
    /// `setWgsHPR` keeps that geodetic attitude at the new place.
    void setWorldPosition(const dvec3& position);
    dquat getWorldRotation() const { return getWorldTransform().getMat3().getQuat(); }
    void setWorldRotation(const dquat& rotation);
    dvec3 toLocal(const dvec3& world) const;
    dvec3 toWorld(const dvec3& local) const { return getWorldTransform() * local; }

    // --- Geodetic pose

    /// The local east-north-up frame at the node.
    dmat4 getWGSTransform() const;
    /// Heading clockwise from true north, pitch nose up, roll right side down, in the local frame
    /// at the node's present place: Rz(−heading) · Rx(pitch) · Ry(roll).
    void setWgsHPR(const dvec3& hpr);
    /// The inverse: heading in [0, 360).
    dvec3 getWgsHPR() const;
    /// Longitude, latitude, altitude. Keeps the attitude as `setWorldPosition` does.
    void setWgsPosition(const dvec3& geodetic);

    /// Sphere around the node and all below it, in the node's own frame.
    const BoundSphere& getBounds() const;

protected:
    /// Attitude in the local east-north-up frame from its three angles, and back.
    virtual dmat3 composeAttitude(const dvec3& hpr) const { return composeHPR(hpr); }
    virtual dvec3 decomposeAttitude(const dmat3& attitude) const { return decomposeHPR(attitude); }
    /// Called after one of the setters changed the pose.
    virtual void onMoved() {}
    /// Called when the node enters (not null) or leaves a world.
    virtual void onWorldChanged(World*) {}
    /// The node's own bounds, without children, in its own frame.
    virtual BoundSphere getOwnBounds() const { return {}; }
    void invalidateBounds();
    /// Changes whenever the world transform does, whoever moved it. A change between two reads of
    /// the world transform is always seen.
    unsigned getPoseVersion() const { return m_pose_version; }

private:
    friend class World;
    friend class ShownPoses;
    void setWorld(World* world);
    bool accept(bool finite);
    void applyTransform(const dmat4& transform);
    void applyWorldTransform(const dmat4& transform);
    void markWorldTransform();

    int m_id;
    int m_type;
    jString m_name;
    bool m_enabled = true;
    bool m_keeps_hpr = false; ///< the attitude was set last with setWgsHPR
    unsigned m_refused = 0;
    unsigned m_pose_version = 0;
    Node* m_parent = nullptr;
    World* m_world = nullptr;
    jVector<Node*> m_children;
    dvec3 m_hpr;
    dmat4 m_transform;
    mutable dmat4 m_world_transform;
    mutable BoundSphere m_bounds;
    mutable bool m_world_transform_valid = true; ///< when false, it is false for all below as well
    mutable bool m_bounds_valid = false;         ///< when false, it is false for all above as well
};

} // namespace ig
