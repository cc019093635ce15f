// SPDX-License-Identifier: MIT
#pragma once

#include "ig/math/vec.h"
#include "render/scene/FrameBlock.h"

#include <span>

namespace ig {

/// The colour of what is far away, smooth over the azimuth: mean + slope x + bend x² + glow g, x
/// being the cosine of the azimuth from the sun's and g the sun's glow in hazy air. The shaders
/// evaluate the same (`hazeColor`).
struct HazeColor {
    vec3 mean, slope, bend, glow;
    vec3 sun; ///< x, y: unit vector towards its azimuth (E), or 0 where it has none; z: sine of its
              ///< distance from the zenith

    struct Sample {
        vec2 direction; ///< of E, any length
        vec3 color;
    };
    /// By least squares from colours near the horizon under the sun in that direction (E).
    static HazeColor fit(std::span<const Sample> samples, const vec3& sun);
    /// The same colour all around.
    static HazeColor even(const vec3& color, const vec3& sun) { return {color, {}, {}, {}, sun}; }
    /// Its mean all around: so light comes through thick fog.
    HazeColor evened() const;
    static HazeColor mix(const HazeColor& a, const HazeColor& b, float share);

    /// Any length.
    vec3 get(vec2 direction) const;
    void fill(FrameBlock& block) const;
};

} // namespace ig
