// SPDX-License-Identifier: MIT
#include "ig/scene/LightSector.h"

#include "ig/math/quat.h"

#include <algorithm>
#include <cmath>

namespace ig {

namespace {

/// `within`: how far an angle lies from an edge, inwards positive, degrees.
double ramp(double within) { return std::clamp(0.5 + within / LightSector::EDGE, 0.0, 1.0); }

} // namespace

float LightSector::getShare(const dvec3& direction) const {
    const double level = std::hypot(direction.x, direction.y);
    const double up = std::atan2(direction.z, level) * RAD_TO_DEG<double>;
    const double turn = std::atan2(direction.x, direction.y) * RAD_TO_DEG<double>;
    double share = 1;
    if (elevation.x > -90) share *= ramp(up - static_cast<double>(elevation.x));
    if (elevation.y < 90) share *= ramp(static_cast<double>(elevation.y) - up);
    const double from = static_cast<double>(azimuth.x), to = static_cast<double>(azimuth.y);
    const double off_middle = std::remainder(turn - (from + to) / 2, 360);
    if (to - from < 360) share *= ramp((to - from) / 2 - std::abs(off_middle));
    return static_cast<float>(share);
}

vec3 mixSectors(const std::vector<LightSector>& sectors, const dvec3& direction,
                const vec3& color) {
    if (sectors.empty()) return color;
    vec3 sum;
    for (const LightSector& sector : sectors)
        sum = sum + sector.color.value_or(color) * (sector.brightness * sector.getShare(direction));
    return sum;
}

} // namespace ig
