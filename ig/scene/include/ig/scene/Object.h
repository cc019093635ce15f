// SPDX-License-Identifier: MIT
#pragma once

#include "ig/scene/Material.h"
#include "ig/scene/Mesh.h"
#include "ig/scene/Node.h"

#include <memory>

namespace ig {

class Body;
class BodyRigid;

/// A node that can be seen or touched: surfaces with materials, and possibly a physical body.
class Object : public Node {
public:
    explicit Object(int type);
    ~Object() override;

    bool isObject() const override { return true; }

    virtual int getNumSurfaces() const { return static_cast<int>(m_slots.size()); }
    /// First crossing of the segment a → b (in the object's frame) with one surface; `out`, which
    /// may be null, receives the point in the same frame. False for a surface that is not made for
    /// queries (`setIntersection`) or out of range.
    virtual bool getIntersection(int surface, const dvec3& a, const dvec3& b, dvec3* out) const;
    /// Whether segment queries meet a surface; default true. Off for effects, and for what asks
    /// for the ground from within itself: the ray starts inside it.
    void setIntersection(int surface, bool on);
    bool isIntersection(int surface) const;

    /// What lies at a place (world) of a surface: what the material says it is, else hard.
    virtual Ground getGroundAt(int surface, const dvec3& place) const;

    /// The material of a surface, or null.
    Material* getSurfaceMaterial(int surface) const;
    /// The shared material; not owned.
    void setSurfaceMaterial(int surface, Material* material);
    /// With `inherit` the surface gets a copy of its material, owned by this object, which then
    /// changes alone; without, it goes back to the shared one.
    void setSurfaceMaterialInherit(int surface, bool inherit);

    Body* getBody() const { return m_body; }
    BodyRigid* getBodyRigid() const; ///< the body when it is a rigid one, else null
    /// Takes ownership of the body, poses it at the object, and adds it to the world's physics.
    void setBody(Body* body);
    /// Gives the body away; the caller owns it then. Null when there is none.
    Body* releaseBody();
    /// Moves the object where its body has gone. The world calls it after a physics step.
    virtual void followBody();
    /// Puts a rigid body back to where the object is, at rest. The world calls it after a physics
    /// step for a disabled object: what is not there doesn't fall.
    void holdBody();
    /// Moves the body, and stops it, where the object or one of its ancestors was moved by the
    /// scene since the last call. The world calls it before a physics step.
    void poseBody();
    /// The body is braked by `area` m² (coefficient × area) while `node`, which lives as long as
    /// this object, can be seen. For a rigid body.
    void addDrag(const Node* node, float area) { m_drags.push_back({node, area}); }
    /// Tells the body what brakes it now. The world calls it before a physics step.
    void applyDrag();

protected:
    /// What a surface's material says that it is, and `otherwise` where it doesn't say; snow when
    /// the material is iced over.
    Ground readGround(int surface, Ground::Kind otherwise) const;
    void setNumSurfaces(int count) { m_slots.resize(static_cast<std::size_t>(count)); }
    void onMoved() override;
    void onWorldChanged(World* world) override;

private:
    struct Slot {
        Material* shared = nullptr;
        std::unique_ptr<Material> own;
        bool intersection = true;
    };
    const Slot* getSlot(int surface) const;
    Slot* getSlot(int surface);

    struct Drag {
        const Node* node;
        float area;
    };
    std::vector<Slot> m_slots;
    std::vector<Drag> m_drags;
    Body* m_body = nullptr;
    unsigned m_body_version = ~0u; ///< pose version that the body stands at
};

/// An object made of triangles.
class ObjectMesh : public Object {
public:
    explicit ObjectMesh(std::shared_ptr<const Mesh> mesh);
    const std::shared_ptr<const Mesh>& getMesh() const { return m_mesh; }
    bool getIntersection(int surface, const dvec3& a, const dvec3& b, dvec3* out) const override;

protected:
    BoundSphere getOwnBounds() const override { return m_mesh->getBounds(); }

private:
    std::shared_ptr<const Mesh> m_mesh;
};

} // namespace ig
