// SPDX-License-Identifier: MIT
#pragma once

#include "ig/math/quat.h"

namespace ig {

/// The earth: the WGS84 ellipsoid. World coordinates are earth-centred and earth-fixed, in metres
/// (X through longitude 0 on the equator, Z through the north pole). Geodetic triples are
/// (longitude, latitude, altitude above the ellipsoid). The trailing flag of every operation says
/// whether angles are degrees (true) or radians. Nothing fails: the earth's centre maps to latitude
/// and longitude 0, points on the axis to longitude 0; what is not finite stays so.
///
/// Source of the inverse: B. R. Bowring, "Transformation from spatial to geographical coordinates"
/// (1976), with the start value of his 1985 paper; two steps err by less than 3 nm from −5 to 100
/// km.
class EllipsoidModel {
public:
    static constexpr double SEMI_MAJOR_AXIS = 6378137.0;
    static constexpr double FLATTENING = 1.0 / 298.257223563;
    static constexpr double MEAN_RADIUS = 6371000; ///< where a sphere will do
    /// Of longitude on the equator, m.
    static constexpr double DEGREE = SEMI_MAJOR_AXIS * DEG_TO_RAD<double>;

    dvec3 toWGS(const dvec3& world, bool degrees = true) const;
    dvec3 toWorld(const dvec3& geodetic, bool degrees = true) const;
    /// The local frame at a world position: X east, Y north, Z up, translation the position itself.
    /// The flag has no effect here; it is the engine's common signature.
    dmat4 getWGSTransform(const dvec3& world, bool degrees = true) const;

    /// The altitude alone, a fifth of the cost of `toWGS`.
    double getAltitude(const dvec3& world) const;
    /// The outward normal of the ellipsoid below a world position: the local vertical.
    dvec3 getUp(const dvec3& world) const;

    /// Radii of curvature at a latitude (degrees): along the meridian a (1 − e²) / w³ and across
    /// it, in the prime vertical, a / w, with w² = 1 − e² sin²φ (W. Torge, "Geodesy", 4.1.3).
    struct Radii {
        double meridian, prime_vertical;
    };
    Radii getRadii(double latitude) const;
    /// Lengths of a degree of longitude and of one of latitude at a place (degrees), m.
    dvec2 getDegreeLengths(double latitude, double altitude = 0) const;

    /// A stretch of the segment a + (b − a) t.
    struct Stretch {
        double begin = 0, end = 0; ///< t, within [0, 1]
    };
    /// The stretches of the segment a → b that lie between two altitudes, in order. Returns their
    /// number, 0 to 2. The shell is one of ellipsoids larger than the earth's by the altitudes in
    /// both axes, which depart from the surfaces of these altitudes by less than 1 % of them.
    int cutShell(const dvec3& a, const dvec3& b, double lowest, double highest,
                 Stretch out[2]) const;
};

} // namespace ig
