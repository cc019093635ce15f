// SPDX-License-Identifier: MIT
#pragma once

#include <cmath>
#include <numbers>

/// Places on the WGS84 ellipsoid and steps between them. A flight is reckoned in the local
/// east-north-up frame of wherever the helicopter is at the moment: positions stay geodetic, and
/// only steps and offsets are metres, so that nothing loses precision far from the start.
namespace flightsim {

inline constexpr double RADIANS = std::numbers::pi / 180; ///< one degree

struct Geodetic {
    double longitude = 0; ///< degrees
    double latitude = 0;  ///< degrees, geodetic; within ±89, since offsets fail at the poles
    double altitude = 0;  ///< above the ellipsoid, metres
};

/// A vector in the local frame: metres, m/s or m/s².
struct Enu {
    double east = 0;
    double north = 0;
    double up = 0;

    Enu operator+(const Enu& b) const { return {east + b.east, north + b.north, up + b.up}; }
    Enu operator-(const Enu& b) const { return {east - b.east, north - b.north, up - b.up}; }
    Enu operator*(double s) const { return {east * s, north * s, up * s}; }
    Enu& operator+=(const Enu& b) { return *this = *this + b; }
    double length() const { return std::sqrt(east * east + north * north + up * up); }
    double horizontal() const { return std::hypot(east, north); }
    /// Direction of the horizontal part, degrees clockwise from north, in (−180, 180].
    double course() const { return std::atan2(east, north) / RADIANS; }
    /// A horizontal vector of this length and direction.
    static Enu ofCourse(double course, double length) {
        return {length * std::sin(course * RADIANS), length * std::cos(course * RADIANS), 0};
    }
};

/// The same angle in [−180, 180].
inline double wrap180(double degrees) { return std::remainder(degrees, 360); }

/// Where a step leads.
Geodetic moved(const Geodetic& from, const Enu& by);

/// The step that leads from one place to another; the inverse of `moved`. East and north are those
/// of the middle between the two, measured along the ellipsoid at the first one's altitude: off by
/// less than a millimetre per 10 km at middle latitudes.
Enu offset(const Geodetic& from, const Geodetic& to);

} // namespace flightsim
