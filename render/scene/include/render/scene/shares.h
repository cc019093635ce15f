// SPDX-License-Identifier: MIT
#pragma once

#include "ig/math/vec.h"

#include <algorithm>
#include <cstdint>

namespace ig {

// Small functions of shares, which go from 0 to 1, and of colours.

/// Cubic, from 0 at `low` to 1 at `high`.
inline float smoothStep(float low, float high, float x) {
    const float t = std::clamp((x - low) / (high - low), 0.0f, 1.0f);
    return t * t * (3 - 2 * t);
}

/// As a texture keeps it, rounded.
inline std::uint8_t toByte(float share) {
    return static_cast<std::uint8_t>(std::clamp(share * 255 + 0.5f, 0.0f, 255.0f));
}

inline float strongest(const vec3& color) { return std::max({color.x, color.y, color.z}); }

} // namespace ig
