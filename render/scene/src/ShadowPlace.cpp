// SPDX-License-Identifier: MIT
#include "render/scene/ShadowPlace.h"

#include <algorithm>
#include <cmath>

namespace ig {

namespace {
constexpr float DEPTH = 4 * SHADOW_RADIUS; // m each way: casters up the light's path count too
} // namespace

void placeShadow(const vec3& center, FrameBlock& block) {
    constexpr float BIAS = 0.06f; // m; about half a texel
    const vec3 light = block.light_direction.xyz();
    const vec3 right =
        normalize(cross(std::abs(light.z) < 0.99f ? vec3(0, 0, 1) : vec3(0, 1, 0), light));
    const vec3 up = cross(light, right);
    const vec3 axes[3] = {right / (2 * SHADOW_RADIUS), up / (2 * SHADOW_RADIUS),
                          -light / (2 * DEPTH)};
    const float offsets[3] = {0.5f - dot(axes[0], center), 0.5f - dot(axes[1], center),
                              0.5f - dot(axes[2], center) - BIAS / (2 * DEPTH)};
    block.shadow.columns[0] = {axes[0].x, axes[1].x, axes[2].x, 0};
    block.shadow.columns[1] = {axes[0].y, axes[1].y, axes[2].y, 0};
    block.shadow.columns[2] = {axes[0].z, axes[1].z, axes[2].z, 0};
    block.shadow.columns[3] = {offsets[0], offsets[1], offsets[2], 1};
    // A light that grazes the ground casts shadows without end: leave them out.
    block.light_direction.w = light.z > 0.02f ? 1.0f : 0.0f;
}

void fitFarShadow(const std::vector<vec4>& casters, FrameBlock& block) {
    constexpr float NEIGHBOURHOOD = 40; // m: what stands farther from the main caster is left out
    block.shadow_far = {1, 1, 0, 0};
    block.shadow_far_depth = {1, 0, 0, 0};
    if (casters.empty() || block.light_direction.w < 0.5f) return;
    const auto apparent = [](const vec4& c) { return c.w / std::max(length(c.xyz()), 1.0f); };
    const vec4 main =
        *std::max_element(casters.begin(), casters.end(),
                          [&](const vec4& a, const vec4& b) { return apparent(a) < apparent(b); });
    vec3 low(1e9f, 1e9f, 1e9f), high = -low; // in the near map's unit cube
    for (const vec4& caster : casters) {
        if (length(caster.xyz() - main.xyz()) > main.w + NEIGHBOURHOOD) continue;
        const vec3 q = block.shadow * caster.xyz();
        const float across = caster.w / (2 * SHADOW_RADIUS), along = caster.w / (2 * DEPTH);
        low = {std::min(low.x, q.x - across), std::min(low.y, q.y - across),
               std::min(low.z, q.z - along)};
        high = {std::max(high.x, q.x + across), std::max(high.y, q.y + across),
                std::max(high.z, q.z + along)};
    }
    constexpr float BEHIND = 1500; // m: how far down the light's path a shadow is still looked for
    high.z += BEHIND / (2 * DEPTH);
    // Square, so that a texel is as wide as it is high, and in coarse steps, so that its size
    // keeps.
    constexpr float STEP = 0.125f;
    const float edge = std::ceil(std::max(high.x - low.x, high.y - low.y) / STEP) * STEP;
    const float scale = 1 / edge, depth = 1 / (high.z - low.z);
    const float bias = edge * 2 * SHADOW_RADIUS / FAR_SHADOW_SIZE; // m: a texel
    block.shadow_far = {scale, scale, 0.5f - scale * (low.x + high.x) / 2,
                        0.5f - scale * (low.y + high.y) / 2};
    block.shadow_far_depth = {depth, -depth * (low.z + bias / (2 * DEPTH)), 0, 1};
}

} // namespace ig
