// SPDX-License-Identifier: MIT
#include "heli/kit/HelicopterCorax.h"

#include "flight_model.h"
#include "ig/app/ControlApp.h"
#include "ig/app/Engine.h"
#include "ig/app/IApp.h"
#include "ig/base/jLog.h"
#include "ig/math/jMath.h"
#include "ig/physics/Body.h"
#include "ig/scene/Material.h"
#include "ig/scene/ObjectPrefab.h"
#include "ig/scene/World.h"

#include <cmath>

using namespace ig;

namespace {
const MemSite SITE = {"src/kit/HelicopterCorax", "HelicopterCorax::HelicopterCorax"};
constexpr float DISC_ROTOR_SPEED = 3000; ///< degrees per second: the eye no longer sees blades
} // namespace

HelicopterCorax::HelicopterCorax(World* world, const jString& path, bool controllable)
    : m_world(world), m_controllable(controllable) {
    m_prefab = memNew<ObjectPrefab>(SITE, path);
    if (!m_prefab || !m_prefab->isLoaded()) {
        jLog::error("%s: \"%s\" can not be loaded", SITE.function, path.c_str());
        return;
    }
    m_world->addNode(m_prefab);
    m_prefab->moveBodyFromRoot();
    m_body = m_prefab->getBodyRigid();
    if (m_body) {
        if (!m_controllable) m_body->setEnabled(false);
        const vec3 center = m_body->getCenterOfMass();
        m_force_point_a = vec3(0, 0, 4) - center;
        m_force_point_b = vec3(0, 2, 4) - center;
    }
    find_nodes();
}

void HelicopterCorax::find_nodes() {
    const Node* root = m_prefab->getRoot();
    m_wing = root->getChildByName("wing", true);
    m_wing_mesh = root->getChildByName("wing_mesh", true);
    m_wing_plane = root->getChildByName("wing_plane", true);
    m_tail = root->getChildByName("tail", true);
    m_tail_mesh = root->getChildByName("tail_mesh", true);
    m_tail_plane = root->getChildByName("tail_plane", true);
    m_wiper_right = root->getChildByName("wiper_right", true);
    m_wiper_left = root->getChildByName("wiper_left", true);
    Node* light = root->getChildByName("tail_light", true);
    if (light && light->getType() == OBJECT_LIGHT) {
        m_tail_light = static_cast<Object*>(light);
        m_tail_light->setSurfaceMaterialInherit(0, true); // it flashes alone
    }
    m_front_proj = root->getChildByName("front_proj", true);
}

void HelicopterCorax::set_transform(const dmat4& transform) {
    set_transform_hidden(transform);
    if (m_prefab) m_prefab->setEnabled(true);
}

void HelicopterCorax::set_transform_hidden(const dmat4& transform) {
    m_transform = transform;
    if (m_prefab) m_prefab->setWorldTransform(transform);
    apply_damping();
}

void HelicopterCorax::apply_damping() {
    if (!m_body) return;
    m_body->setLinearDamping(0.1f);
    m_body->setAngularDamping(3.5f);
}

// ------------------------------------------------------------------ keyboard flight

namespace {
/// Adds `step` while `up` is held, else subtracts it while `down` is, else scales by `neutral`.
void steer(const ControlApp& keys, float& value, int up, int down, float step, float neutral) {
    if (keys.isKeyPress(up))
        value += step;
    else if (keys.isKeyPress(down))
        value -= step;
    else
        value *= neutral;
}
} // namespace

void HelicopterCorax::update_input(float dt) {
    const IApp* app = Engine::get()->getApp();
    const ControlApp* keys = app ? const_cast<IApp*>(app)->getControl() : nullptr;
    if (!m_controllable || !keys) return;
    const float k = 3 * dt;
    if (keys->isKeyPress('r')) {
        if (m_collective < -1e-6f) m_collective = 0;
        m_collective = std::min(m_collective + k * 0.01f, 1.0f);
    } else if (keys->isKeyPress('f')) {
        m_collective = std::max(m_collective - k * 0.01f, 0.0f);
    } else {
        m_collective *= m_collective_decay;
    }
    if (m_body) m_body->setFreezable(std::abs(m_collective) < 1e-6f);
    steer(*keys, m_pitch, 'w', 's', k * 0.5f, 0.05f);
    // Roll and yaw return to neutral within a frame: the factor is scaled with dt, pitch's is not.
    steer(*keys, m_roll, 'a', 'd', k * 0.5f, dt * 0.05f);
    steer(*keys, m_yaw, 'q', 'e', k * 0.05f, dt * 0.05f);
}

// ------------------------------------------------------------------ per frame

void HelicopterCorax::update(float dt) {
    update_wipers();
    update_rotors(dt);
    update_tail_light(dt);
    update_flight_model();
}

void HelicopterCorax::update_wipers() {
    constexpr float SWEEP = 67.56119f, REST = 90.70399f; // degrees
    const float a = m_wiper_on
                        ? jMath::linearToShock(static_cast<float>(Engine::get()->getRunningTime()))
                        : 1.0f;
    const auto turn = [](Node* wiper, float angle) {
        if (!wiper) return;
        dvec3 euler = wiper->getRotation().toEulerZXY();
        euler.z = angle;
        wiper->setRotation(dquat::fromEulerZXY(euler));
    };
    turn(m_wiper_left, a * SWEEP - REST);
    turn(m_wiper_right, REST - a * SWEEP);
}

void HelicopterCorax::update_rotors(float dt) {
    // A host may send anything: a step that is not finite would poison the angle for ever, and
    // hours of turning would eat its digits.
    const float step = dt * m_rotor_speed;
    if (std::isfinite(step)) m_rotor_angle += step;
    if (std::abs(m_rotor_angle) > 36000) m_rotor_angle = std::fmod(m_rotor_angle, 360.0f);

    const bool discs = !(m_rotor_speed < DISC_ROTOR_SPEED);
    const auto show = [](Node* node, bool on) {
        if (node) node->setEnabled(on);
    };
    show(m_wing_mesh, !discs);
    show(m_tail_mesh, !discs);
    show(m_wing_plane, discs);
    show(m_tail_plane, discs);
    if (m_wing) m_wing->setRotation(dquat(quat(vec3(0, 0, -1), m_rotor_angle)));
    if (m_tail) m_tail->setRotation(dquat(quat(vec3(1, 0, 0), m_rotor_angle)));
}

void HelicopterCorax::update_tail_light(float dt) {
    if (std::isfinite(dt)) m_blink_phase += dt;
    if (m_blink_phase >= 1) m_blink_phase -= std::floor(m_blink_phase); // a stall may be longer
    if (Material* material = m_tail_light ? m_tail_light->getSurfaceMaterial(0) : nullptr)
        material->setParameterSliderByName(
            "density", m_blink_phase <= 0.85f ? 0.001f : (1 - m_blink_phase) / 0.15f);
}

void HelicopterCorax::update_flight_model() {
    // What is no number, as a host may send it, counts as neutral: clamping would let it through.
    const auto limit = [](float& input, float min, float max) {
        input = std::isnan(input) ? 0 : std::clamp(input, min, max);
    };
    limit(m_collective, 0, 1);
    limit(m_yaw, -1, 1);
    limit(m_roll, -7, 7);
    limit(m_pitch, -1, 1);
    // A disabled body takes no forces and keeps its pose: the host flies.
    if (!m_body || !m_body->isEnabled()) return;

    const dmat4 transform = m_body->getTransform();
    const dmat3 rotation = transform.getMat3();
    const dmat4 local =
        Engine::get()->getEllipsoidModel()->getWGSTransform(transform.getTranslate(), true);
    const vec3 forward = vec3(normalize(rotation * dvec3(0, 1, 0)));
    const vec3 side = vec3(normalize(rotation * dvec3(-1, 0, 0)));

    const dvec3 angles = limitAttitude(
        decomposeRotationXYZ(inverse(inverse(local) * transform).getMat3()), m_roll, m_pitch);
    m_body->setPreserveTransform(
        {local.getMat3() * transpose(composeRotationXYZ(angles)), transform.getTranslate()});

    const dmat3 to_model = m_prefab->getIWorldTransform().getMat3();
    vec3 rate = vec3(to_model * dvec3(m_body->getAngularVelocity()));
    rate.x = limitRate(rate.x, angles.x, SLOW_ANGLE_X, MAX_ANGLE_X);
    rate.y = limitRate(rate.y, angles.y, SLOW_ANGLE_Y, MAX_ANGLE_Y);
    m_body->setAngularVelocity(vec3(rotation * dvec3(rate)));

    const vec3 up = vec3(transform.getZ());
    m_body->addForce(up * (m_collective * LIFT));
    m_body->addForce(vec3(rotation * dvec3(m_force_point_a)), forward * (m_pitch * PITCH_FORCE));
    m_body->addForce(vec3(rotation * dvec3(m_force_point_b)), side * (m_roll * ROLL_FORCE));
    m_body->addTorque(up * (m_yaw * YAW_TORQUE));
}

void HelicopterCorax::toggle_wiper() {
    m_wiper_on = !m_wiper_on;
    if (!m_prefab) return;
    for (const char* name : {"glass_top_left", "windows"}) {
        Node* glass = m_prefab->getNodeByName(name);
        if (!glass || !glass->isObject()) continue;
        if (Material* material = static_cast<Object*>(glass)->getSurfaceMaterial(0))
            material->setParameterSliderByName("wiper", m_wiper_on ? 1.0f : 0.0f);
    }
}

// ------------------------------------------------------------------ poses

void HelicopterCorax::apply_attitude() {
    if (m_prefab) m_prefab->setWgsHPR(dvec3(vec3(m_yaw, m_pitch, m_roll)));
}

void HelicopterCorax::set_heading(float value) {
    m_yaw = -value;
    apply_attitude();
}

void HelicopterCorax::set_roll(float value) {
    m_roll = -value;
    apply_attitude();
}

void HelicopterCorax::set_pitch(float value) {
    m_pitch = value;
    apply_attitude();
}

void HelicopterCorax::set_attitude(const dvec3& yaw_pitch_roll) {
    m_yaw = static_cast<float>(yaw_pitch_roll.x);
    m_pitch = static_cast<float>(yaw_pitch_roll.y);
    m_roll = static_cast<float>(yaw_pitch_roll.z);
    apply_attitude();
}

dvec3 HelicopterCorax::get_world_position() const { return get_world_transform().getTranslate(); }

dquat HelicopterCorax::get_world_rotation() const {
    return m_prefab ? m_prefab->getWorldRotation() : dquat_identity;
}

void HelicopterCorax::set_world_rotation(const dquat& rotation) {
    if (m_prefab) m_prefab->setWorldRotation(rotation);
}

dmat4 HelicopterCorax::get_world_transform() const {
    return m_prefab ? m_prefab->getWorldTransform() : dmat4_identity;
}

dmat4 HelicopterCorax::get_iworld_transform() const {
    return m_prefab ? m_prefab->getIWorldTransform() : dmat4_identity;
}

vec3 HelicopterCorax::get_linear_velocity() const {
    return m_body ? m_body->getLinearVelocity() : vec3_zero;
}

void HelicopterCorax::remove_prefab() {
    if (m_prefab && m_prefab->getWorld()) {
        m_world->removeNode(m_prefab);
    } else if (m_prefab) { // one that could not be loaded never entered the world
        m_prefab->release();
        delete m_prefab;
    }
    m_prefab = nullptr;
    m_wing = m_tail = m_wing_mesh = m_wing_plane = m_tail_mesh = m_tail_plane = nullptr;
    m_front_proj = m_wiper_right = m_wiper_left = nullptr;
    m_tail_light = nullptr;
    m_body = nullptr;
}
