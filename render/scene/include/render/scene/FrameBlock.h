// SPDX-License-Identifier: MIT
#pragma once

#include "ig/math/mat.h"

namespace ig {

/// The uniform block `Frame` as the shaders declare it (std140); see shaders/common.glsl for what
/// the fields mean.
struct FrameBlock {
    mat4 projection, view, shadow;
    vec4 shadow_far, shadow_far_depth;
    vec4 light_direction, light, ambient, air, screen, sun_direction, moon_direction, sky, weather,
        time, bolt;
};

} // namespace ig
