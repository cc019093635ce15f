// SPDX-License-Identifier: MIT
#include "flightsim/helicopter/Geodesy.h"

namespace flightsim {

namespace {

/// Metres per degree at a latitude and altitude.
struct Scale {
    double longitude;
    double latitude;
};

Scale scaleAt(double latitude, double altitude) {
    constexpr double SEMI_MAJOR_AXIS = 6378137.0;
    constexpr double FLATTENING = 1 / 298.257223563;
    constexpr double ECCENTRICITY2 = FLATTENING * (2 - FLATTENING);
    const double s = std::sin(latitude * RADIANS);
    const double w2 = 1 - ECCENTRICITY2 * s * s;
    const double prime_vertical_radius = SEMI_MAJOR_AXIS / std::sqrt(w2);
    const double meridian_radius = prime_vertical_radius * (1 - ECCENTRICITY2) / w2;
    return {(prime_vertical_radius + altitude) * std::cos(latitude * RADIANS) * RADIANS,
            (meridian_radius + altitude) * RADIANS};
}

} // namespace

Geodetic moved(const Geodetic& from, const Enu& by) {
    // The middle latitude is known only once the step is; two rounds settle it.
    double middle = from.latitude;
    for (int i = 0; i < 2; i++)
        middle = from.latitude + by.north / scaleAt(middle, from.altitude).latitude / 2;
    const Scale scale = scaleAt(middle, from.altitude);
    return {wrap180(from.longitude + by.east / scale.longitude),
            from.latitude + by.north / scale.latitude, from.altitude + by.up};
}

Enu offset(const Geodetic& from, const Geodetic& to) {
    const Scale scale = scaleAt((from.latitude + to.latitude) / 2, from.altitude);
    return {wrap180(to.longitude - from.longitude) * scale.longitude,
            (to.latitude - from.latitude) * scale.latitude, to.altitude - from.altitude};
}

} // namespace flightsim
