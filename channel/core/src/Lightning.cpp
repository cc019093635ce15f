// SPDX-License-Identifier: MIT
#include "Lightning.h"

#include <cmath>
#include <cstdint>

namespace {

constexpr double SLOT = 8; ///< s; one bolt each, in the middle half

/// 0 to 1, by slot and purpose.
float hash(std::int64_t slot, std::uint32_t purpose) {
    auto h = static_cast<std::uint32_t>(slot) * 747796405u + purpose * 2891336453u;
    h = ((h >> ((h >> 28) + 4)) ^ h) * 277803737u;
    return static_cast<float>(((h >> 22) ^ h) & 0xffffffu) / 16777216.0f;
}

/// Light of a stroke `age` seconds after it began: rises at once, dies within a tenth of a second.
float stroke(double age) { return age < 0 ? 0 : static_cast<float>(std::exp(-age / 0.07)); }

} // namespace

Lightning Lightning::at(double time) {
    Lightning light;
    if (!std::isfinite(time)) return light;
    const double slot = std::floor(time / SLOT);
    const auto number = static_cast<std::int64_t>(std::fmod(slot, 1e9));
    const double age = time - slot * SLOT - SLOT / 4 - SLOT / 2 * hash(number, 1);
    if (age < 0 || age > 1) return light;
    const double second = 0.09 + 0.12 * hash(number, 2);
    light.flash = stroke(age) + 0.8f * stroke(age - second);
    if (hash(number, 3) > 0.5f) light.flash += 0.5f * stroke(age - 2.1 * second);
    light.flash = std::fmin(light.flash, 1.0f);
    light.azimuth = 359.99f * hash(number, 4);
    light.shape = hash(number, 5);
    return light;
}
