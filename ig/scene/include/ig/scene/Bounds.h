// SPDX-License-Identifier: MIT
#pragma once

#include "ig/math/mat.h"

#include <algorithm>
#include <limits>

namespace ig {

/// A sphere around something, in some frame. Default: empty. An infinite radius stands for what has
/// no bounds, such as the sea.
struct BoundSphere {
    dvec3 center;
    double radius = -1;

    static BoundSphere unbounded() { return {{}, std::numeric_limits<double>::infinity()}; }
    bool isEmpty() const { return radius < 0; }

    /// Grows to hold `other` as well.
    void expand(const BoundSphere& other) {
        if (other.isEmpty()) return;
        const double distance = length(other.center - center);
        if (isEmpty() || distance + radius <= other.radius) {
            *this = other;
        } else if (distance + other.radius > radius) {
            const double grown = (distance + radius + other.radius) / 2;
            center += (other.center - center) * ((grown - radius) / distance);
            radius = grown;
        }
    }

    /// The sphere seen from outside `transform`, which may scale.
    BoundSphere transformed(const dmat4& transform) const {
        if (isEmpty()) return {};
        const double scale2 = std::max(
            {length2(transform.getX()), length2(transform.getY()), length2(transform.getZ())});
        return {transform * center, radius * std::sqrt(scale2)};
    }

    /// Whether the segment a → b touches the sphere.
    bool intersectsSegment(const dvec3& a, const dvec3& b) const {
        if (isEmpty()) return false;
        const dvec3 d = b - a, to_center = center - a;
        const double dd = length2(d);
        const double t = dd > 0 ? std::clamp(dot(to_center, d) / dd, 0.0, 1.0) : 0.0;
        return length2(to_center - d * t) <= radius * radius;
    }
};

/// A box along the axes of the world around something. Default: empty.
struct WorldBoundBox {
    dvec3 min{1, 1, 1}, max{-1, -1, -1};

    bool isEmpty() const { return min.x > max.x; }
    /// Grows to hold `other` as well.
    void expand(const WorldBoundBox& other) {
        if (other.isEmpty()) return;
        if (isEmpty()) {
            *this = other;
            return;
        }
        min = {std::min(min.x, other.min.x), std::min(min.y, other.min.y),
               std::min(min.z, other.min.z)};
        max = {std::max(max.x, other.max.x), std::max(max.y, other.max.y),
               std::max(max.z, other.max.z)};
    }
};

} // namespace ig
