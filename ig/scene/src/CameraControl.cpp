// SPDX-License-Identifier: MIT
#include "ig/scene/CameraControl.h"

#include "ig/scene/Camera.h"

namespace ig {

CameraControl::CameraControl(Camera* camera) : m_camera(camera) {
    if (camera) m_rotation = camera->getRotation();
}

void CameraControl::setCamera(Camera* camera) {
    m_camera = camera;
    if (!camera) return;
    m_rotation = camera->getRotation();
    m_position = camera->getPosition();
    m_near = camera->getZNear();
    m_far = camera->getZFar();
    m_fov_top = camera->getFovV() * 0.5f;
    m_fov_bottom = camera->getFovV() * -0.5f;
    m_fov_left = camera->getFovH() * -0.5f;
    m_fov_right = camera->getFovH() * 0.5f;
    updateView();
    updateProjection();
}

dquat CameraControl::getFinalRotation() const {
    return m_rotation * dquat(dvec3(0, 0, 1), double(m_angles.z)) *
           dquat(dvec3(1, 0, 0), double(m_angles.y)) * dquat(dvec3(0, 1, 0), double(m_angles.x));
}

dquat CameraControl::getFinalRotationZUp() const {
    return convertToZUpCoordinateSystem(getFinalRotation());
}

void CameraControl::updateView() {
    if (m_camera) m_camera->setTransform(dmat4(getFinalRotation(), m_position));
}

void CameraControl::updateProjection() {
    if (!m_camera) return;
    const auto bound = [this](float angle) {
        // The tangent is single precision, as in the arithmetic that hosts calibrate against.
        return double(std::tan(static_cast<float>(double(angle) * DEG_TO_RAD<double>))) * m_near;
    };
    m_camera->setProjection(frustum(bound(m_fov_left), bound(m_fov_right), bound(m_fov_bottom),
                                    bound(m_fov_top), m_near, m_far, double(m_shear[0]),
                                    double(m_shear[1])));
}

void CameraControl::setPosition(const dvec3& position, bool apply) {
    m_position = position;
    if (apply) updateView();
}

void CameraControl::setRotation(const dquat& rotation, bool apply) {
    m_rotation = rotation;
    if (apply) updateView();
}

void CameraControl::setAngles(const vec3& angles, bool apply) {
    m_angles = angles;
    if (apply) updateView();
}

void CameraControl::setRotationHPR(const vec3& hpr, bool apply) {
    m_rotation = dquat(rotateHPR(hpr));
    if (apply) updateView();
}

void CameraControl::setRotationWgs(const vec3& angles, bool apply) {
    if (!m_camera) return;
    const dquat local = convertToZUpCoordinateSystem(
        dquat::fromEulerZYX({double(angles.x) - 90, double(angles.y), -double(angles.z)}));
    m_rotation = normalize(m_camera->getWGSTransform().getMat3().getQuat() * local);
    if (apply) updateView();
}

void CameraControl::setNear(float z_near, bool apply) {
    m_near = double(z_near);
    if (apply) updateProjection();
}

void CameraControl::setFar(float z_far, bool apply) {
    m_far = double(z_far);
    if (apply) updateProjection();
}

void CameraControl::setShear(float x, float y) {
    m_shear[0] = x;
    m_shear[1] = y;
}

} // namespace ig
