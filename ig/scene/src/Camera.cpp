// SPDX-License-Identifier: MIT
#include "ig/scene/Camera.h"

namespace ig {

namespace {
// Metres: mountains above the radar and, from any altitude that its carrier reaches, the sea.
constexpr double RADAR_NEAR = -10000, RADAR_FAR = 20000;
} // namespace

Camera::Camera(int type) : Node(type) {
    if (type == NODE_CAMERA_RADAR) setOrtho(RADAR_RANGE, RADAR_RANGE, RADAR_NEAR, RADAR_FAR);
}

void Camera::setPerspective(float fov_v, float aspect, double z_near, double z_far) {
    const double top = std::tan(double(fov_v) * DEG_TO_RAD<double> / 2);
    const double right = top * double(aspect);
    m_fov_v = fov_v;
    m_fov_h = static_cast<float>(2 * std::atan(right) * RAD_TO_DEG<double>);
    m_near = z_near;
    m_far = z_far;
    m_projection =
        frustum(-right * z_near, right * z_near, -top * z_near, top * z_near, z_near, z_far, 0, 0);
}

void Camera::setOrtho(double half_width, double half_height, double z_near, double z_far) {
    const double depth = z_far - z_near;
    m_near = z_near;
    m_far = z_far;
    m_projection.columns[0] = {1 / half_width, 0, 0, 0};
    m_projection.columns[1] = {0, 1 / half_height, 0, 0};
    m_projection.columns[2] = {0, 0, -2 / depth, 0};
    m_projection.columns[3] = {0, 0, -(z_far + z_near) / depth, 1};
}

dvec3 Camera::getRayTo(double x, double y, double depth) const {
    const auto& p = m_projection.columns;
    if (isOrtho())
        return getWorldTransform() * dvec3((2 * x - 1) / p[0].x, (1 - 2 * y) / p[1].y, -depth);
    const dvec3 eye((2 * x - 1 + p[2].x) / p[0].x, (1 - 2 * y + p[2].y) / p[1].y, -1);
    return getWorldTransform() * (eye * depth);
}

// Turned back by 90 degrees about its X axis, the camera frame is a node frame that pitches the
// other way round: Rx(90 − p) · Rz(−r) = Rx(−p) · Ry(r) · Rx(90).
static const dmat3 NODE_TO_CAMERA{{1, 0, 0}, {0, 0, 1}, {0, -1, 0}}; // Rx(90)

dmat3 Camera::composeAttitude(const dvec3& hpr) const {
    return composeHPR({hpr.x, -hpr.y, hpr.z}) * NODE_TO_CAMERA;
}

dvec3 Camera::decomposeAttitude(const dmat3& attitude) const {
    const dvec3 hpr = decomposeHPR(attitude * transpose(NODE_TO_CAMERA));
    return {hpr.x, -hpr.y + 0.0, hpr.z};
}

} // namespace ig
