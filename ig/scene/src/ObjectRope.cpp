// SPDX-License-Identifier: MIT
#include "ig/scene/SceneObjects.h"

#include <cmath>
#include <numbers>

namespace ig {

namespace {

/// The side of a cylinder of radius 1 from z 0 to 1, shared by all cables.
std::shared_ptr<const Mesh> cableMesh() {
    static std::weak_ptr<const Mesh> shared;
    std::shared_ptr<const Mesh> mesh = shared.lock();
    if (mesh) return mesh;
    constexpr std::uint32_t SIDES = 6;
    Mesh::Surface surface;
    surface.name = "cable";
    for (std::uint32_t i = 0; i < SIDES; i++) {
        const float angle = 2 * std::numbers::pi_v<float> * static_cast<float>(i) / SIDES;
        const vec3 normal(std::cos(angle), std::sin(angle), 0);
        const std::uint32_t a = 2 * i, b = 2 * ((i + 1) % SIDES);
        for (float z : {0.0f, 1.0f}) {
            surface.positions.push_back(normal + vec3(0, 0, z));
            surface.normals.push_back(normal);
        }
        surface.indices.insert(surface.indices.end(), {a, b, b + 1, a, b + 1, a + 1});
    }
    mesh = std::make_shared<const Mesh>(std::vector<Mesh::Surface>{std::move(surface)});
    shared = mesh;
    return mesh;
}

/// The cylinder of radius 1 from z 0 to 1 laid from `a` to `b`.
dmat4 between(const dvec3& a, const dvec3& b, double radius) {
    const dvec3 way = b - a;
    const double size = length(way);
    const dvec3 z = size > 0 ? way / size : dvec3(0, 0, -1);
    // Any axis across will do; the one least along z is the safest to cross with.
    const dvec3 across = std::abs(z.x) < 0.9 ? dvec3(1, 0, 0) : dvec3(0, 1, 0);
    const dvec3 x = normalize(cross(across, z));
    return {dmat3(x * radius, cross(z, x) * radius, z * std::max(size, 1e-6)), a};
}

} // namespace

ObjectRope::ObjectRope(float radius, Material* material) : Object(OBJECT_ROPE), m_radius(radius) {
    for (ObjectMesh*& segment : m_segments) {
        segment = new ObjectMesh(cableMesh());
        segment->setIntersection(0, false);
        segment->setSurfaceMaterial(0, material);
        segment->setEnabled(false); // until the physics has laid it out
        addChild(segment);
    }
}

void ObjectRope::followBody() {
    Object::followBody();
    if (!getBody() || getBody()->getType() != Body::BODY_ROPE) return;
    const auto& rope = static_cast<const BodyRope&>(*getBody());
    const double radius = m_radius;
    for (int i = 0; i < BodyRope::SEGMENTS; i++) {
        m_segments[i]->setTransform(between(rope.getPoint(i), rope.getPoint(i + 1), radius));
        m_segments[i]->setEnabled(true);
    }
}

} // namespace ig
