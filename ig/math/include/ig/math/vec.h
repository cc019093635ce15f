// SPDX-License-Identifier: MIT
#pragma once

#include <cmath>

namespace ig {

/// Small vectors in single (`vec…`) and double (`dvec…`) precision. World positions are always
/// double: earth-centred coordinates near 6.4e6 m have a resolution of 0.5 m in single precision.
/// Default values are zero. Narrowing and widening are explicit.
template <class T>
struct tvec2 {
    T x = 0, y = 0;
    friend bool operator==(const tvec2&, const tvec2&) = default;
};

template <class T>
struct tvec3 {
    T x = 0, y = 0, z = 0;

    constexpr tvec3() = default;
    constexpr tvec3(T x_, T y_, T z_) : x(x_), y(y_), z(z_) {}
    template <class U>
    constexpr explicit tvec3(const tvec3<U>& v)
        : x(static_cast<T>(v.x)), y(static_cast<T>(v.y)), z(static_cast<T>(v.z)) {}

    constexpr tvec3 operator-() const { return {-x, -y, -z}; }
    constexpr tvec3& operator+=(const tvec3& b) { return *this = *this + b; }
    constexpr tvec3& operator-=(const tvec3& b) { return *this = *this - b; }
    constexpr tvec3& operator*=(T s) { return *this = *this * s; }
    friend constexpr tvec3 operator+(const tvec3& a, const tvec3& b) {
        return {a.x + b.x, a.y + b.y, a.z + b.z};
    }
    friend constexpr tvec3 operator-(const tvec3& a, const tvec3& b) {
        return {a.x - b.x, a.y - b.y, a.z - b.z};
    }
    friend constexpr tvec3 operator*(const tvec3& a, T s) { return {a.x * s, a.y * s, a.z * s}; }
    friend constexpr tvec3 operator*(T s, const tvec3& a) { return a * s; }
    friend constexpr tvec3 operator/(const tvec3& a, T s) { return {a.x / s, a.y / s, a.z / s}; }
    friend constexpr bool operator==(const tvec3&, const tvec3&) = default;
};

template <class T>
struct tvec4 {
    T x = 0, y = 0, z = 0, w = 0;

    constexpr tvec4() = default;
    constexpr tvec4(T x_, T y_, T z_, T w_) : x(x_), y(y_), z(z_), w(w_) {}
    constexpr tvec4(const tvec3<T>& v, T w_) : x(v.x), y(v.y), z(v.z), w(w_) {}
    constexpr tvec3<T> xyz() const { return {x, y, z}; }
    friend constexpr bool operator==(const tvec4&, const tvec4&) = default;
};

template <class T>
constexpr T dot(const tvec3<T>& a, const tvec3<T>& b) {
    return a.x * b.x + a.y * b.y + a.z * b.z;
}
template <class T>
constexpr tvec3<T> cross(const tvec3<T>& a, const tvec3<T>& b) {
    return {a.y * b.z - a.z * b.y, a.z * b.x - a.x * b.z, a.x * b.y - a.y * b.x};
}
template <class T>
constexpr T length2(const tvec3<T>& v) {
    return dot(v, v);
}
template <class T>
T length(const tvec3<T>& v) {
    return std::sqrt(dot(v, v));
}
/// The unit vector along `v`; a zero vector stays zero.
template <class T>
tvec3<T> normalize(const tvec3<T>& v) {
    const T n = length(v);
    return n > 0 ? v / n : v;
}
template <class T>
bool isFinite(const tvec3<T>& v) {
    return std::isfinite(v.x) && std::isfinite(v.y) && std::isfinite(v.z);
}

using vec2 = tvec2<float>;
using vec3 = tvec3<float>;
using vec4 = tvec4<float>;
using dvec2 = tvec2<double>;
using dvec3 = tvec3<double>;
using dvec4 = tvec4<double>;

inline constexpr vec3 vec3_zero;
inline constexpr dvec3 dvec3_zero;

} // namespace ig
