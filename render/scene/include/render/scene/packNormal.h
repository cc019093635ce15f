// SPDX-License-Identifier: MIT
#pragma once

#include "ig/math/vec.h"

#include <algorithm>
#include <cmath>
#include <cstdint>

namespace ig {

/// A unit vector in 10 bits an axis, signed, x lowest.
inline std::uint32_t packNormal(const vec3& n) {
    const auto bits = [](float v) {
        return static_cast<std::uint32_t>(std::lround(std::clamp(v, -1.0f, 1.0f) * 511)) & 0x3ffu;
    };
    return bits(n.x) | bits(n.y) << 10 | bits(n.z) << 20;
}

} // namespace ig
