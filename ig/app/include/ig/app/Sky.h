// SPDX-License-Identifier: MIT
#pragma once

#include "ig/math/vec.h"

namespace ig {

/// Where sun, moon and stars stand.
struct Sky {
    dvec3 sun_direction, moon_direction; ///< earth-centred, unit length
    double sidereal_angle = 0;           ///< degrees
};

/// The sky over a longitude (degrees) at its local solar time, hours in [0, 24): the sun culminates
/// at 12. `day_of_year` (1 to 366) gives the season. The moon is a full one, 150 degrees east of
/// the sun along the equator and as far south as the sun is north: nights have light to see by.
Sky computeSky(double solar_time, double longitude, int day_of_year);

} // namespace ig
