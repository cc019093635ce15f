// SPDX-License-Identifier: MIT
#pragma once

#include "ig/math/vec.h"

namespace ig {

template <class T>
struct tquat;

/// Matrices act on column vectors: `A * B` applies B first. Columns 0 to 2 are the images of the
/// axes (`getX`, `getY`, `getZ`). Default values are identity matrices.
template <class T>
struct tmat3 {
    tvec3<T> columns[3] = {{1, 0, 0}, {0, 1, 0}, {0, 0, 1}};

    constexpr tmat3() = default;
    constexpr tmat3(const tvec3<T>& x, const tvec3<T>& y, const tvec3<T>& z) : columns{x, y, z} {}

    constexpr const tvec3<T>& getX() const { return columns[0]; }
    constexpr const tvec3<T>& getY() const { return columns[1]; }
    constexpr const tvec3<T>& getZ() const { return columns[2]; }
    /// The rotation of an orthonormal matrix as a unit quaternion. Defined in quat.h.
    tquat<T> getQuat() const;

    friend constexpr tvec3<T> operator*(const tmat3& m, const tvec3<T>& v) {
        return m.columns[0] * v.x + m.columns[1] * v.y + m.columns[2] * v.z;
    }
    friend constexpr tmat3 operator*(const tmat3& a, const tmat3& b) {
        return {a * b.columns[0], a * b.columns[1], a * b.columns[2]};
    }
    friend constexpr bool operator==(const tmat3&, const tmat3&) = default;
};

template <class T>
constexpr tmat3<T> transpose(const tmat3<T>& m) {
    const auto& c = m.columns;
    return {{c[0].x, c[1].x, c[2].x}, {c[0].y, c[1].y, c[2].y}, {c[0].z, c[1].z, c[2].z}};
}

/// The inverse; the matrix must not be singular.
template <class T>
constexpr tmat3<T> inverse(const tmat3<T>& m) {
    const tvec3<T> yz = cross(m.columns[1], m.columns[2]);
    const T scale = T(1) / dot(m.columns[0], yz);
    return transpose(tmat3<T>{yz * scale, cross(m.columns[2], m.columns[0]) * scale,
                              cross(m.columns[0], m.columns[1]) * scale});
}

/// A 4×4 matrix; as a transform its column 3 is the translation and its last row 0, 0, 0, 1. The
/// product, the inverse and `operator*` with a point assume that last row (an affine transform);
/// projections are only stored and handed on.
template <class T>
struct tmat4 {
    tvec4<T> columns[4] = {{1, 0, 0, 0}, {0, 1, 0, 0}, {0, 0, 1, 0}, {0, 0, 0, 1}};

    constexpr tmat4() = default;
    constexpr tmat4(const tmat3<T>& rotation, const tvec3<T>& translation)
        : columns{{rotation.columns[0], 0},
                  {rotation.columns[1], 0},
                  {rotation.columns[2], 0},
                  {translation, 1}} {}
    tmat4(const tquat<T>& rotation, const tvec3<T>& translation); // defined in quat.h
    template <class U>
    constexpr explicit tmat4(const tmat4<U>& m) {
        for (int i = 0; i < 4; i++)
            columns[i] = {static_cast<T>(m.columns[i].x), static_cast<T>(m.columns[i].y),
                          static_cast<T>(m.columns[i].z), static_cast<T>(m.columns[i].w)};
    }

    constexpr tvec3<T> getX() const { return columns[0].xyz(); }
    constexpr tvec3<T> getY() const { return columns[1].xyz(); }
    constexpr tvec3<T> getZ() const { return columns[2].xyz(); }
    constexpr tvec3<T> getTranslate() const { return columns[3].xyz(); }
    constexpr void setTranslate(const tvec3<T>& t) { columns[3] = {t, 1}; }
    constexpr tmat3<T> getMat3() const { return {getX(), getY(), getZ()}; }

    /// The image of a point.
    friend constexpr tvec3<T> operator*(const tmat4& m, const tvec3<T>& p) {
        return m.getX() * p.x + m.getY() * p.y + m.getZ() * p.z + m.getTranslate();
    }
    friend constexpr tmat4 operator*(const tmat4& a, const tmat4& b) {
        return {a.getMat3() * b.getMat3(), a * b.getTranslate()};
    }
    friend constexpr bool operator==(const tmat4&, const tmat4&) = default;
};

template <class T>
constexpr tmat4<T> inverse(const tmat4<T>& m) {
    const tmat3<T> r = inverse(m.getMat3());
    return {r, -(r * m.getTranslate())};
}
template <class T>
constexpr tmat4<T> translate(const tvec3<T>& t) {
    return {tmat3<T>(), t};
}
template <class T>
bool isFinite(const tmat4<T>& m) {
    return isFinite(m.getX()) && isFinite(m.getY()) && isFinite(m.getZ()) &&
           isFinite(m.getTranslate());
}

using mat3 = tmat3<float>;
using mat4 = tmat4<float>;
using dmat3 = tmat3<double>;
using dmat4 = tmat4<double>;

inline constexpr mat4 mat4_identity;
inline constexpr dmat4 dmat4_identity;

/// The projection matrix of an asymmetric frustum: the bounds are those of the rectangle on the
/// near plane (metres), both clip distances are positive, and the two shears are added to the
/// horizontal and the vertical offset of the picture (in units of half its width and height).
dmat4 frustum(double left, double right, double bottom, double top, double z_near, double z_far,
              double shear_x, double shear_y);

} // namespace ig
