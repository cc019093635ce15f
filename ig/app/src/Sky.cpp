// SPDX-License-Identifier: MIT
#include "ig/app/Sky.h"

#include "ig/math/quat.h"

#include <cmath>

namespace ig {

namespace {
dvec3 direction(double longitude_rad, double declination_rad) {
    return {std::cos(declination_rad) * std::cos(longitude_rad),
            std::cos(declination_rad) * std::sin(longitude_rad), std::sin(declination_rad)};
}
} // namespace

Sky computeSky(double solar_time, double longitude, int day_of_year) {
    constexpr double TILT = 23.44, MOON_LEAD = 150; // degrees
    constexpr double RADIANS = DEG_TO_RAD<double>;
    // Cooper (1969): the declination within half a degree.
    const double declination =
        TILT * RADIANS * std::sin(2 * 180 * RADIANS * (284 + day_of_year) / 365);
    const double below_sun = (longitude - (solar_time - 12) * 15) * RADIANS;
    Sky sky;
    sky.sun_direction = direction(below_sun, declination);
    sky.moon_direction = direction(below_sun + MOON_LEAD * RADIANS, -declination);
    sky.sidereal_angle = solar_time * 15;
    return sky;
}

} // namespace ig
