// SPDX-License-Identifier: MIT
#include "common/ship/Ship.h"

#include "common/ship/Buoyancy.h"
#include "common/ship/Wakes.h"
#include "ig/app/ControlApp.h"
#include "ig/app/Engine.h"
#include "ig/app/IApp.h"
#include "ig/physics/Body.h"
#include "ig/scene/ObjectPrefab.h"

#include <cmath>

using namespace ig;

namespace {

/// The source name under which allocations are recorded.
constexpr const char* SHIP_SOURCE = "../common/ship/ship";
constexpr int KEYBOARD = 1, FULL_AHEAD = 2; ///< control modes
constexpr float LINEAR_DAMPING = 0.1f;      ///< fully immersed, 1/s

float boxVolume(const BodyRigid& body) {
    const Shape* shape = body.getShape(0);
    if (!shape || shape->getType() != Shape::SHAPE_BOX) return 0;
    const vec3 size = shape->getSize();
    return size.x * size.y * size.z;
}

Node* findWakes(Object& object) {
    if (object.getType() != OBJECT_PREFAB) return object.getChildByName("wakes", false);
    const Node* root = static_cast<ObjectPrefab&>(object).getRoot();
    return root ? root->getChildByName("wakes", true) : nullptr;
}

} // namespace

Ship::Ship(Object* object, ObjectOcean* ocean) : m_object(object), m_body(object->getBodyRigid()) {
    const MemSite site{SHIP_SOURCE, "Ship::Ship"};
    if (m_body) {
        m_buoyancy = memNew<Buoyancy>(site, m_body, ocean);
        m_volume = boxVolume(*m_body);
    }
    if (Node* wakes = findWakes(*object)) m_wakes = memNew<Wakes>(site, wakes, this, ocean);
}

Ship::~Ship() {
    const MemSite site{SHIP_SOURCE, "Ship::~Ship"};
    memDelete(m_wakes, site);
    memDelete(m_buoyancy, site);
}

vec3 Ship::getVelocity() const { return m_body ? m_body->getLinearVelocity() : m_still_velocity; }

bool Ship::update_control() {
    m_control = {};
    IApp* app = Engine::get()->getApp();
    const ControlApp* keys = app ? app->getControl() : nullptr;
    if (m_control_mode == KEYBOARD && keys) {
        if (keys->isKeyPress(KEY_UP)) m_control.x += 1;
        if (keys->isKeyPress(KEY_DOWN)) m_control.x -= 1;
        if (keys->isKeyPress(KEY_LEFT)) m_control.y += 1;
        if (keys->isKeyPress(KEY_RIGHT)) m_control.y -= 1;
    }
    if (m_control_mode == FULL_AHEAD) m_control.x = 1;
    m_control = normalize(m_control);
    return true;
}

void Ship::update() {
    if (!m_object->isEnabled()) return;
    if (m_buoyancy) m_buoyancy->update();
    const float submerged = m_buoyancy ? m_buoyancy->getSubmerged() : 0;
    update_control();
    if (!m_body) return;
    const float half = 0.5f - std::abs(0.5f - submerged);
    m_control *= half * half;
    propel();
    brake(submerged);
}

void Ship::propel() {
    const dmat4 pose = m_body->getTransform();
    const double x = m_control.x, y = m_control.y;
    const auto thrust = x < 0 ? m_reverse_thrust : m_thrust;
    m_body->addForce(vec3(pose.getY() * (x * m_volume * thrust)));
    m_body->addTorque(vec3(pose.getY() * (-y * m_roll_torque)));
    m_body->addTorque(vec3(pose.getZ() * (y * m_yaw_torque)));
    m_body->addTorque(vec3(pose.getX() * (x * m_pitch_torque)));
}

/// The water slows the hull, horizontally only: what floats it takes care of the vertical.
void Ship::brake(float submerged) {
    const dvec3 v(m_body->getLinearVelocity());
    const dvec3 drag = -normalize(v) * (length2(v) * submerged * m_drag);
    const dvec3 place = m_body->getTransform().getTranslate();
    const dvec3 up = Engine::get()->getEllipsoidModel()->getWGSTransform(place, true).getZ();
    m_body->addForce(vec3(drag - up * dot(up, drag)));
    m_body->setAngularDamping(submerged * m_angular_damping);
    m_body->setLinearDamping(submerged * LINEAR_DAMPING);
}
