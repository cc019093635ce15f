// SPDX-License-Identifier: MIT
#include "ig/math/jMath.h"

#include <algorithm>
#include <cmath>
#include <numbers>
#include <random>

namespace ig {

float jMath::getFadeOut(float value, float far, float near) {
    if (value <= near) return 1;
    if (value >= far) return 0;
    return (far - value) / (far - near);
}

float jMath::linearToShock(float time) {
    constexpr double PERIOD = 1.6;
    const double phase = std::fmod(time, PERIOD) / PERIOD;
    return static_cast<float>(0.5 + 0.5 * std::cos(2 * std::numbers::pi * phase));
}

double jRandReal() {
    static std::mt19937_64 generator(20);
    // The top 53 bits: a generator of the library could round up to 1.
    return static_cast<double>(generator() >> 11) * 0x1p-53;
}

} // namespace ig
