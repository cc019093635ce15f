// SPDX-License-Identifier: MIT
#pragma once

#include "ig/base/jAllocator.h"
#include "ig/math/mat.h"

namespace ig {

/// A collision shape of a body: a primitive in the body's frame. Owned by its body, immutable.
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

private:
    Shape(Type type, const vec3& size, const mat4& transform)
        : m_type(type), m_size(size), m_transform(transform) {}
    Type m_type;
    vec3 m_size;
    mat4 m_transform;
};

} // namespace ig
