// SPDX-License-Identifier: MIT
#include "ig/physics/Shape.h"

#include "ig/base/jLog.h"
#include "ig/physics/Body.h"

#include <algorithm>
#include <cmath>

namespace ig {

namespace {
LogLimiter g_mass_report; // a host can make new shapes with every datagram
} // namespace

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

void Shape::setMass(float mass) {
    constexpr float LEAST = 1; // kg
    if (!(mass >= LEAST) && !m_warned) {
        m_warned = true;
        if (g_mass_report.allow())
            jLog::warning("Shape::setMass: %g kg %s", mass,
                          std::isnan(mass) ? "is refused" : "counts as 1 kg");
    }
    if (!std::isfinite(mass) || !m_body) return;
    m_body->changeShapeMass(*this, std::max(mass, LEAST));
}

float Shape::getMass() const {
    if (m_mass >= 0) return m_mass;
    if (!m_body || m_body->getType() != Body::BODY_RIGID) return 0;
    return static_cast<const BodyRigid*>(m_body)->getMass() /
           static_cast<float>(m_body->getNumShapes());
}

} // namespace ig
