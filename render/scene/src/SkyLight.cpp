// SPDX-License-Identifier: MIT
#include "render/scene/SkyLight.h"

#include "ig/math/quat.h"
#include "render/scene/ShaderConstants.h"

#include <algorithm>
#include <cmath>

namespace ig {

namespace {

constexpr float DAY_BOLT = 12.8f, NIGHT_BOLT = 0.128f;
const vec3 NIGHT_GLOW{0.0022f, 0.0032f, 0.0055f};
const vec3 MOONLIGHT{0.045f, 0.052f, 0.062f};

vec3 multiply(const vec3& a, const vec3& b) { return {a.x * b.x, a.y * b.y, a.z * b.z}; }

/// What the air lets through from a height above the horizon given by its sine: Rayleigh, aerosol
/// and ozone over Kasten and Young's (1989) air mass.
vec3 transmittance(float sine) {
    const float elevation =
        std::max(std::asin(std::clamp(sine, -1.0f, 1.0f)) * RAD_TO_DEG<float>, -1.0f);
    const float mass = 1 / (std::max(sine, 0.0f) + 0.15f * std::pow(elevation + 3.885f, -1.253f));
    const vec3 depth(5.8e-6f * 8000 + 3.3e-6f * 1200 + 0.65e-6f * 6400,
                     13.5e-6f * 8000 + 3.3e-6f * 1200 + 1.88e-6f * 6400,
                     33.1e-6f * 8000 + 3.3e-6f * 1200 + 0.085e-6f * 6400);
    return {std::exp(-depth.x * mass), std::exp(-depth.y * mass), std::exp(-depth.z * mass)};
}

} // namespace

float luminance(const vec3& color) { return 0.3f * color.x + 0.6f * color.y + 0.1f * color.z; }

/// None a degree below the horizon.
vec3 sunlight(const vec3& direction) {
    return multiply(transmittance(direction.z), SUN_COLOR) *
           (SUN_IRRADIANCE * smoothStep(-0.018f, 0.012f, direction.z));
}

vec3 moonlight(const vec3& direction) {
    return multiply(transmittance(direction.z), MOONLIGHT) * smoothStep(-0.02f, 0.05f, direction.z);
}

bool sunRules(const vec3& sun) { return sun.z > -0.02f; }

vec3 nightGlow(const vec3& moon) { return NIGHT_GLOW * (1 + 1.5f * std::max(moon.z, 0.0f)); }

/// Halfway, by its logarithm, from night to day between 12 degrees below and 3 above the horizon.
float boltBrightness(const vec3& sun) {
    const float day = std::clamp((sun.z + 0.2f) / 0.25f, 0.0f, 1.0f);
    return NIGHT_BOLT * std::pow(DAY_BOLT / NIGHT_BOLT, day);
}

} // namespace ig
