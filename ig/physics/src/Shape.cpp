// SPDX-License-Identifier: MIT
#include "ig/physics/Shape.h"

namespace ig {

Shape* Shape::createBox(const vec3& size, const mat4& transform) {
    return new Shape(SHAPE_BOX, size, transform);
}
Shape* Shape::createSphere(float radius, const mat4& transform) {
    return new Shape(SHAPE_SPHERE, {2 * radius, 2 * radius, 0}, transform);
}
Shape* Shape::createCapsule(float radius, float height, const mat4& transform) {
    return new Shape(SHAPE_CAPSULE, {2 * radius, 2 * radius, height}, transform);
}
Shape* Shape::createCylinder(float radius, float height, const mat4& transform) {
    return new Shape(SHAPE_CYLINDER, {2 * radius, 2 * radius, height}, transform);
}

} // namespace ig
