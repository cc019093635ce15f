// SPDX-License-Identifier: MIT
#include "common/ship/Buoyancy.h"

#include "ig/app/Engine.h"
#include "ig/base/jLog.h"
#include "ig/math/jMath.h"
#include "ig/physics/Body.h"
#include "ig/scene/World.h"
#include "plugins/ocean/ObjectOcean.h"

#include <algorithm>

using namespace ig;

namespace {
constexpr int ROWS = 8, COLUMNS = 3;
constexpr float FLAT_SEA = 1000.0f; ///< flattening beyond which floating bodies see no waves
} // namespace

Buoyancy::Buoyancy(BodyRigid* body, ObjectOcean* ocean) {
    World* world = ocean ? ocean->getWorld() : nullptr;
    if (!world) {
        jLog::error("%s:%s", "Buoyancy::Buoyancy", "world");
        return;
    }
    m_damping = 0.3f;
    m_body = body;
    m_ocean = ocean;
    const Shape* box = body->getShape(0);
    if (!box || box->getType() != Shape::SHAPE_BOX) {
        jLog::warning("%s:first shape must be box", "Buoyancy::Buoyancy");
        return;
    }
    const vec3 size = box->getSize();
    m_height = size.z;
    m_weight = length(world->getPhysics().getGravity() * (size.x * size.y * size.z));
    placePoints(size);
}

void Buoyancy::placePoints(const vec3& size) {
    m_points.reserve(ROWS * COLUMNS);
    for (int i = 0; i < ROWS; i++)
        for (int j = 0; j < COLUMNS; j++) {
            const float x = -size.x / 2 + static_cast<float>(j) * size.x / 2;
            const float y = -size.y / 2 + static_cast<float>(i) * size.y / 7;
            m_points.append(dvec3(vec3(x, y, 0)));
        }
}

void Buoyancy::update() {
    m_submerged = 0;
    if (m_points.empty()) return;
    const EllipsoidModel& earth = *Engine::get()->getEllipsoidModel();
    const dmat4 box = m_body->getTransform() * dmat4(m_body->getShapeTransform(0));
    const vec3 up(box.getZ());
    const auto waves = static_cast<double>(jMath::getFadeOut(
        Engine::get()->getEnvironment(ENVIRONMENT_FLATTENING), FLAT_SEA, FLAT_SEA));
    const auto count = static_cast<float>(m_points.size());
    float sum = 0;
    for (const dvec3& p : m_points) {
        dvec3 foot = box * p;
        foot.z -= m_height * 0.5f; // along the earth's axis
        const double sea = earth.getAltitude(m_ocean->getWorldPoint(foot)) * waves;
        const float depth = static_cast<float>(sea - earth.getAltitude(foot));
        const float r = std::clamp(depth / m_height, 0.0f, 1.0f);
        if (r == 0) continue;
        sum += r;
        m_body->addWorldForce(foot, up * (m_weight * m_density * r * r / count));
        m_body->addWorldForce(foot, m_body->getWorldVelocity(foot) *
                                        (-m_body->getMass() * m_damping * r * r));
    }
    m_submerged = sum / count;
}
