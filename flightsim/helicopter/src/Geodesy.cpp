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
    constexpr double a = 6378137.0;
    constexpr double f = 1 / 298.257223563;
    constexpr double e2 = f * (2 - f);
    const double s = std::sin(latitude * radians);
    const double w2 = 1 - e2 * s * s;
    const double prime_vertical_radius = a / std::sqrt(w2);
    const double meridian_radius = prime_vertical_radius * (1 - e2) / w2;
    return {(prime_vertical_radius + altitude) * std::cos(latitude * radians) * radians,
            (meridian_radius + altitude) * radians};
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
