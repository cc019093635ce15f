// SPDX-License-Identifier: MIT
#pragma once

#include "ig/math/mat.h"

#include <algorithm>
#include <numbers>

namespace ig {

template <class T>
constexpr T DEG_TO_RAD = std::numbers::pi_v<T> / 180;
template <class T>
constexpr T RAD_TO_DEG = 180 / std::numbers::pi_v<T>;

/// A rotation as a unit quaternion. All angles are degrees.
template <class T>
struct tquat {
    T x = 0, y = 0, z = 0, w = 1;

    constexpr tquat() = default;
    constexpr tquat(T x_, T y_, T z_, T w_) : x(x_), y(y_), z(z_), w(w_) {}
    template <class U>
    constexpr explicit tquat(const tquat<U>& q)
        : x(static_cast<T>(q.x)), y(static_cast<T>(q.y)), z(static_cast<T>(q.z)),
          w(static_cast<T>(q.w)) {}
    /// The rotation by `angle` about `axis`, right-handed. The axis need not be a unit vector.
    tquat(const tvec3<T>& axis, T angle) {
        const T half = angle * DEG_TO_RAD<T> / 2;
        const tvec3<T> v = normalize(axis) * std::sin(half);
        *this = {v.x, v.y, v.z, std::cos(half)};
    }
    /// Rx(`angle_x`) · Ry(`angle_y`) · Rz(`angle_z`), the inverse of `decomposeRotationXYZ`.
    tquat(T angle_x, T angle_y, T angle_z) {
        *this = tquat(tvec3<T>(1, 0, 0), angle_x) * tquat(tvec3<T>(0, 1, 0), angle_y) *
                tquat(tvec3<T>(0, 0, 1), angle_z);
    }

    constexpr tmat3<T> getMat3() const {
        return {{1 - 2 * (y * y + z * z), 2 * (x * y + z * w), 2 * (x * z - y * w)},
                {2 * (x * y - z * w), 1 - 2 * (x * x + z * z), 2 * (y * z + x * w)},
                {2 * (x * z + y * w), 2 * (y * z - x * w), 1 - 2 * (x * x + y * y)}};
    }

    /// Angles by axis (x, y, z) with R = Rz · Rx · Ry; x lies in [−90, 90].
    static tquat fromEulerZXY(const tvec3<T>& angles) {
        return tquat(tvec3<T>(0, 0, 1), angles.z) * tquat(tvec3<T>(1, 0, 0), angles.x) *
               tquat(tvec3<T>(0, 1, 0), angles.y);
    }
    tvec3<T> toEulerZXY() const;
    /// Takes the angles in the order of the name: R = Rz(first) · Ry(second) · Rx(third).
    static tquat fromEulerZYX(const tvec3<T>& angles) {
        return tquat(tvec3<T>(0, 0, 1), angles.x) * tquat(tvec3<T>(0, 1, 0), angles.y) *
               tquat(tvec3<T>(1, 0, 0), angles.z);
    }

    /// The product applies `b` first.
    friend constexpr tquat operator*(const tquat& a, const tquat& b) {
        return {a.w * b.x + a.x * b.w + a.y * b.z - a.z * b.y,
                a.w * b.y - a.x * b.z + a.y * b.w + a.z * b.x,
                a.w * b.z + a.x * b.y - a.y * b.x + a.z * b.w,
                a.w * b.w - a.x * b.x - a.y * b.y - a.z * b.z};
    }
    friend constexpr tvec3<T> operator*(const tquat& q, const tvec3<T>& v) {
        const tvec3<T> u{q.x, q.y, q.z};
        const tvec3<T> t = cross(u, v) * T(2);
        return v + t * q.w + cross(u, t);
    }
    friend constexpr bool operator==(const tquat&, const tquat&) = default;
};

template <class T>
tquat<T> normalize(const tquat<T>& q) {
    const T n = std::sqrt(q.x * q.x + q.y * q.y + q.z * q.z + q.w * q.w);
    return n > 0 ? tquat<T>(q.x / n, q.y / n, q.z / n, q.w / n) : tquat<T>();
}
template <class T>
constexpr tquat<T> inverse(const tquat<T>& q) {
    return {-q.x, -q.y, -q.z, q.w};
}
template <class T>
bool isFinite(const tquat<T>& q) {
    return std::isfinite(q.x) && std::isfinite(q.y) && std::isfinite(q.z) && std::isfinite(q.w);
}

/// Spherical interpolation along the shorter arc, a at t = 0, b at t = 1.
template <class T>
tquat<T> slerp(const tquat<T>& a, const tquat<T>& b, T t) {
    T c = a.x * b.x + a.y * b.y + a.z * b.z + a.w * b.w;
    const T sign = c < 0 ? T(-1) : T(1);
    c = std::min(std::abs(c), T(1));
    T wa = 1 - t, wb = t;
    if (c < T(0.9995)) { // nearer than that the straight line is as good and never divides by 0
        const T angle = std::acos(c);
        wa = std::sin((1 - t) * angle) / std::sin(angle);
        wb = std::sin(t * angle) / std::sin(angle);
    }
    wb *= sign;
    return normalize(tquat<T>{a.x * wa + b.x * wb, a.y * wa + b.y * wb, a.z * wa + b.z * wb,
                              a.w * wa + b.w * wb});
}

template <class T>
tquat<T> tmat3<T>::getQuat() const {
    // Shepperd 1978: divide by the largest component, so that nothing cancels.
    const auto& [cx, cy, cz] = columns;
    const T trace = cx.x + cy.y + cz.z;
    tquat<T> q;
    if (trace > cx.x && trace > cy.y && trace > cz.z) {
        q = {cy.z - cz.y, cz.x - cx.z, cx.y - cy.x, 1 + trace};
    } else if (cx.x >= cy.y && cx.x >= cz.z) {
        q = {1 + cx.x - cy.y - cz.z, cx.y + cy.x, cz.x + cx.z, cy.z - cz.y};
    } else if (cy.y >= cz.z) {
        q = {cx.y + cy.x, 1 - cx.x + cy.y - cz.z, cy.z + cz.y, cz.x - cx.z};
    } else {
        q = {cz.x + cx.z, cy.z + cz.y, 1 - cx.x - cy.y + cz.z, cx.y - cy.x};
    }
    return normalize(q);
}

template <class T>
tmat4<T>::tmat4(const tquat<T>& rotation, const tvec3<T>& translation)
    : tmat4(rotation.getMat3(), translation) {}

using quat = tquat<float>;
using dquat = tquat<double>;

inline constexpr quat quat_identity;
inline constexpr dquat dquat_identity;

/// Angles by axis of R = Rx · Ry · Rz, y in [−90, 90]; where x and z turn about one axis, z is 0.
dvec3 decomposeRotationXYZ(const dmat3& rotation);
/// Rx(x) · Ry(y) · Rz(z).
dmat3 composeRotationXYZ(const dvec3& angles);

/// Angles (x, y, z) of R = Rz · Rx · Ry, x in [−90, 90]; where y and z turn about one axis, y is 0.
dvec3 decomposeRotationZXY(const dmat3& rotation);

template <class T>
tvec3<T> tquat<T>::toEulerZXY() const {
    return tvec3<T>(decomposeRotationZXY(dquat(*this).getMat3()));
}

/// Splits an affine transform into translation, rotation and the lengths of its axes. A transform
/// without extent along an axis gives the identity rotation.
void decomposeTransform(const dmat4& transform, dvec3& position, dquat& rotation, dvec3& scale);

/// The attitude of a node in the local east-north-up frame: Rz(−heading) · Rx(pitch) · Ry(roll),
/// heading clockwise from north, nose up, right side down.
dmat3 composeHPR(const dvec3& hpr);
/// The inverse of `composeHPR`: heading in [0, 360), pitch in [−90, 90], roll in [−180, 180]; with
/// the nose straight up or down roll is 0.
dvec3 decomposeHPR(const dmat3& attitude);
/// The same rotation as a single-precision quaternion, from (heading, pitch, roll).
quat rotateHPR(const vec3& hpr);

/// Turns a rotation of the camera frame (X right, Y up, looks along −Z) into one whose column 0
/// points from what is looked at to the camera, column 1 to the right and column 2 up: R · C, where
/// C takes X to the camera's Z, Y to its X and Z to its Y.
dquat convertFromZUpCoordinateSystem(const dquat& rotation);
/// The inverse of `convertFromZUpCoordinateSystem`.
dquat convertToZUpCoordinateSystem(const dquat& rotation);

} // namespace ig
