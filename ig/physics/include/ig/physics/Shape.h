// SPDX-License-Identifier: MIT
#pragma once

#include "ig/base/jAllocator.h"
#include "ig/math/mat.h"

namespace ig {

class Body;

/// A collision shape of a body: a primitive in the body's frame. Owned by its body; its form never
/// changes.
class Shape : public jObject {
public:
    /// Type codes.
    enum Type { SHAPE_SPHERE = 0, SHAPE_CAPSULE = 1, SHAPE_CYLINDER = 2, SHAPE_BOX = 3 };

    static Shape* createBox(const vec3& size, const mat4& transform = mat4_identity);
    static Shape* createSphere(float radius, const mat4& transform = mat4_identity);
    /// Both stand along Z; `height` is the length of the straight part of a capsule.
    static Shape* createCapsule(float radius, float height, const mat4& transform = mat4_identity);
    static Shape* createCylinder(float radius, float height, const mat4& transform = mat4_identity);

    Type getType() const { return m_type; }
    /// Edge lengths of a box; for the round shapes (2 radius, 2 radius, height), a sphere's height
    /// being 0. Metres.
    const vec3& getSize() const { return m_size; }
    /// Placement in the body's frame.
    const mat4& getTransform() const { return m_transform; }

    /// The shape's part of its body's mass, kg: an even share until it is set. Setting it changes
    /// the mass of the body; one below 1 kg counts as 1 kg and one that is not finite is refused,
    /// with one warning a shape. A static body stays static.
    void setMass(float mass);
    float getMass() const;

private:
    friend class Body;
    friend class BodyRigid;
    Shape(Type type, const vec3& size, const mat4& transform)
        : m_type(type), m_size(size), m_transform(transform) {}
    Type m_type;
    vec3 m_size;
    mat4 m_transform;
    Body* m_body = nullptr;
    float m_mass = -1; // negative: the even share
    bool m_warned = false;
};

} // namespace ig
