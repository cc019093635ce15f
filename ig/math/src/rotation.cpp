// SPDX-License-Identifier: MIT
#include "ig/math/quat.h"

namespace ig {

namespace {
double degrees(double radians) { return radians * RAD_TO_DEG<double>; }

// Below this cosine two of the three angles turn about the same axis.
constexpr double GIMBAL_COSINE = 1e-9;
} // namespace

dmat4 frustum(double left, double right, double bottom, double top, double z_near, double z_far,
              double shear_x, double shear_y) {
    dmat4 m;
    m.columns[0] = {2 * z_near / (right - left), 0, 0, 0};
    m.columns[1] = {0, 2 * z_near / (top - bottom), 0, 0};
    m.columns[2] = {(right + left) / (right - left) + shear_x,
                    (top + bottom) / (top - bottom) + shear_y, -(z_far + z_near) / (z_far - z_near),
                    -1};
    m.columns[3] = {0, 0, -2 * z_far * z_near / (z_far - z_near), 0};
    return m;
}

dvec3 decomposeRotationXYZ(const dmat3& r) {
    const auto& [cx, cy, cz] = r.columns;
    const double cosine = std::hypot(cx.x, cy.x);
    const double y = std::atan2(cz.x, cosine); // unlike asin, exact near 90 degrees too
    if (cosine < GIMBAL_COSINE) return {degrees(std::atan2(cy.z, cy.y)), degrees(y), 0};
    return {degrees(std::atan2(-cz.y, cz.z)), degrees(y), degrees(std::atan2(-cy.x, cx.x))};
}

dmat3 composeRotationXYZ(const dvec3& angles) {
    return dquat(angles.x, angles.y, angles.z).getMat3();
}

dvec3 decomposeRotationZXY(const dmat3& r) {
    const auto& [cx, cy, cz] = r.columns;
    const double cosine = std::hypot(cy.x, cy.y);
    const double x = std::atan2(cy.z, cosine);
    if (cosine < GIMBAL_COSINE) return {degrees(x), 0, degrees(std::atan2(cx.y, cx.x))};
    return {degrees(x), degrees(std::atan2(-cx.z, cz.z)), degrees(std::atan2(-cy.x, cy.y))};
}

void decomposeTransform(const dmat4& transform, dvec3& position, dquat& rotation, dvec3& scale) {
    position = transform.getTranslate();
    scale = {length(transform.getX()), length(transform.getY()), length(transform.getZ())};
    if (scale.x > 0 && scale.y > 0 && scale.z > 0)
        rotation = dmat3(transform.getX() / scale.x, transform.getY() / scale.y,
                         transform.getZ() / scale.z)
                       .getQuat();
    else
        rotation = dquat_identity;
}

dmat3 composeHPR(const dvec3& hpr) { return dquat::fromEulerZXY({hpr.y, hpr.z, -hpr.x}).getMat3(); }

dvec3 decomposeHPR(const dmat3& attitude) {
    const dvec3 angles = decomposeRotationZXY(attitude);
    double heading = -angles.z;
    if (heading < 0) heading += 360;
    if (heading >= 360) heading = 0; // −tiny + 360 rounds to 360
    return {heading + 0.0, angles.x, angles.y};
}

quat rotateHPR(const vec3& hpr) { return quat::fromEulerZXY({hpr.y, hpr.z, -hpr.x}); }

namespace {
// C: X to Z, Y to X, Z to Y; a third of a turn about (−1, −1, −1) / √3.
constexpr dquat Z_UP_TO_CAMERA{-0.5, -0.5, -0.5, 0.5};
} // namespace

dquat convertFromZUpCoordinateSystem(const dquat& rotation) { return rotation * Z_UP_TO_CAMERA; }
dquat convertToZUpCoordinateSystem(const dquat& rotation) {
    return rotation * inverse(Z_UP_TO_CAMERA);
}

} // namespace ig
