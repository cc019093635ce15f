// SPDX-License-Identifier: MIT
#pragma once

#include "render/scene/FrameBlock.h"

#include <vector>

namespace ig {

constexpr float SHADOW_RADIUS = 95;   ///< around the focus, m: a frigate's deck and the sea beside
constexpr int SHADOW_SIZE = 2048;     ///< texels; 0.1 m each
constexpr int FAR_SHADOW_SIZE = 1024; ///< of the far map; their size follows what is in it

/// Puts the near map's transform into the frame block: the light's direction must be there
/// already. `center` in E.
void placeShadow(const vec3& center, FrameBlock& block);
/// Puts the far map's into the block: around the largest to the eye of the spheres (E; w: radius)
/// of what may cast into it, and those beside it. After `placeShadow`.
void fitFarShadow(const std::vector<vec4>& casters, FrameBlock& block);

} // namespace ig
