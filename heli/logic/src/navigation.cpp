// SPDX-License-Identifier: MIT
#include "heli/kit/HelicopterCorax.h"
#include "heli/logic/Logic_Nerith_Heli_Final.h"
#include "ig/app/ControlApp.h"
#include "ig/app/Engine.h"
#include "ig/scene/Camera.h"
#include "ig/scene/CameraControl.h"

#include <algorithm>

using namespace ig;

namespace {

constexpr float MIN_THIRD_DIST = 1.0f;                             ///< metres
constexpr double MIN_CAMERA_RADIUS = 1e6, MAX_CAMERA_RADIUS = 1e9; ///< from the centre, metres
constexpr float FAST = 4.0f;                                       ///< times the speed with Shift

const EllipsoidModel& earth() { return *Engine::get()->getEllipsoidModel(); }

const ControlApp* input() {
    IApp* app = Engine::get()->getApp();
    return app ? app->getControl() : nullptr;
}

} // namespace

bool Logic_Nerith_Heli_Final::update_third_view() {
    if (!m_heli) return true;
    const dquat z_up = convertFromZUpCoordinateSystem(m_camera_control->m_rotation);
    const dvec3 towards_camera = z_up.getMat3().getX();
    m_camera_control->m_position =
        m_heli->get_world_position() + towards_camera * static_cast<double>(m_third_dist);
    m_camera_control->updateView();
    m_third_cam_rot = m_camera_control->m_rotation;
    m_third_cam_pos = m_camera_control->m_position;
    return true;
}

bool Logic_Nerith_Heli_Final::on_third_view_wheel(float step) {
    m_third_dist = std::max(m_third_dist - step, MIN_THIRD_DIST);
    return update_third_view();
}

bool Logic_Nerith_Heli_Final::rot_around(float yaw, float pitch) {
    if ((yaw == 0 && pitch == 0) || !m_camera_control) return false;
    if (!m_camera_control->getCamera()) return false;
    const auto distance = static_cast<double>(m_third_dist);
    dvec3 position, scale;
    dquat rotation;
    decomposeTransform(m_camera_control->getCamera()->getTransform(), position, rotation, scale);
    const dquat local_frame = earth().getWGSTransform(position, true).getMat3().getQuat();
    const dvec3 pivot = position - rotation.getMat3().getZ() * distance;
    const dquat local = dquat(dvec3(0, 0, 1), static_cast<double>(yaw)) *
                        (inverse(local_frame) * rotation) *
                        dquat(dvec3(1, 0, 0), static_cast<double>(pitch));
    const dquat turned = normalize(local_frame * local);
    m_camera_control->m_position = pivot + turned.getMat3().getZ() * distance;
    m_camera_control->m_rotation = turned;
    m_camera_control->updateView();
    return true;
}

void Logic_Nerith_Heli_Final::cam_mov(float dt) {
    const ControlApp* keys = input();
    if (!m_camera_control->getCamera()) return;
    if (!keys || !keys->isLeftButtonDown() || keys->isKeyPress(KEY_CTRL)) return;
    const bool forward = keys->isKeyPress('w'), back = keys->isKeyPress('s');
    const bool left = keys->isKeyPress('a'), right = keys->isKeyPress('d');
    if (!forward && !back && !left && !right) return;

    const dmat4& transform = m_camera_control->getCamera()->getTransform();
    dvec3 position, scale;
    dquat rotation;
    decomposeTransform(transform, position, rotation, scale);
    float speed = static_cast<float>(getCamSpeed());
    if (keys->isKeyPress(KEY_SHIFT)) speed *= FAST;
    const double step = static_cast<double>(speed) * static_cast<double>(dt);
    if (forward) position += -transform.getZ() * step;
    if (back) position += transform.getZ() * step;
    if (left) position += -transform.getX() * step;
    if (right) position += transform.getX() * step;
    m_camera_control->m_position = position;
    m_camera_control->m_rotation = rotation;
    m_camera_control->updateView();
}

void Logic_Nerith_Heli_Final::cam_free_rot(float dx, float dy) {
    const ControlApp* keys = input();
    if (!m_camera_control->getCamera()) return;
    if (!keys || keys->isKeyPress(KEY_CTRL)) return;
    if (!keys->isLeftButtonDown() && !keys->isRightButtonDown()) return;
    if (dx == 0 && dy == 0) return;
    dvec3 position, scale;
    dquat rotation;
    decomposeTransform(m_camera_control->getCamera()->getTransform(), position, rotation, scale);
    const dvec3 up = normalize(position);
    rotation = dquat(up, -static_cast<double>(dx)) * rotation *
               dquat(dvec3(1, 0, 0), -static_cast<double>(dy));
    m_camera_control->m_position = position;
    m_camera_control->m_rotation = normalize(rotation);
    m_camera_control->updateView();
}

void Logic_Nerith_Heli_Final::set_cam_pos_geo(const dvec3& geo) {
    const dvec3 position = earth().toWorld(geo, true);
    const double radius = length(position);
    if (!(radius > MIN_CAMERA_RADIUS && radius < MAX_CAMERA_RADIUS)) return;
    m_camera_control->m_position = position;
    m_camera_control->updateView();
}

dvec3 Logic_Nerith_Heli_Final::get_cam_pos_geo() const {
    return earth().toWGS(m_camera_control->m_position, true);
}

float Logic_Nerith_Heli_Final::get_heli_thr() const { return m_heli ? m_heli->m_collective : 0; }
