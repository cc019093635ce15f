// SPDX-License-Identifier: MIT
#pragma once

#include "ig/math/mat.h"

/// The uniform block `Frame` as the shaders declare it (std140); see shaders/common.glsl for what
/// the fields mean.
struct FrameBlock {
    ig::mat4 projection, view, shadow;
    ig::vec4 shadow_far, shadow_far_depth;
    ig::vec4 light_direction, light, ambient, air, screen, sun_direction, moon_direction, sky,
        weather, time, bolt;
};
