// SPDX-License-Identifier: MIT
#pragma once

#include "render/scene/ShaderConstants.h"

#include <cmath>

namespace ig {

// What repeats is told to the shaders by its remainder: their floats stay exact however far it is.

/// 0 to 1.
inline float fraction(double x) { return static_cast<float>(x - std::floor(x)); }

/// Place in the noise's own period, m.
inline float toNoise(double x) {
    constexpr double PERIOD = double{NOISE_PERIOD};
    return static_cast<float>(x - std::floor(x / PERIOD) * PERIOD);
}

} // namespace ig
