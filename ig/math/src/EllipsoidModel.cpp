// SPDX-License-Identifier: MIT
#include "ig/math/EllipsoidModel.h"

#include "ig/math/quat.h"

namespace ig {

namespace {

constexpr double A = EllipsoidModel::SEMI_MAJOR_AXIS;
constexpr double F = EllipsoidModel::FLATTENING;
constexpr double B = A * (1 - F);
constexpr double E2 = F * (2 - F);               // first eccentricity squared
constexpr double EP2 = E2 / ((1 - F) * (1 - F)); // second eccentricity squared

/// Distance from the axis and the sine and cosine of the geodetic latitude.
struct Meridian {
    double p, sine, cosine;

    /// p cosφ + z sinφ − a √(1 − e² sin²φ): well-conditioned at the poles and the equator alike.
    double altitude(double z) const {
        return p * cosine + z * sine - A * std::sqrt(1 - E2 * sine * sine);
    }
};

Meridian solveMeridian(const dvec3& w) {
    const double p = std::sqrt(w.x * w.x + w.y * w.y);
    const double r = std::sqrt(p * p + w.z * w.z);
    if (!(r > 0)) return {0, 0, 1};
    // tan β of the parametric latitude as a fraction, so that the poles need no special case.
    double numerator = B * w.z * (1 + EP2 * B / r);
    double denominator = A * p;
    double sine = 0, cosine = 1;
    for (int step = 0; step < 2; step++) {
        const double n = std::sqrt(numerator * numerator + denominator * denominator);
        const double s = numerator / n, c = denominator / n;
        const double sn = w.z + EP2 * B * s * s * s;
        const double cn = p - E2 * A * c * c * c;
        const double m = std::sqrt(sn * sn + cn * cn);
        if (!(m > 0)) return {p, 0, 1};
        sine = sn / m;
        cosine = cn / m;
        numerator = (1 - F) * sine;
        denominator = cosine;
    }
    return {p, sine, cosine};
}

/// What of the line a → b lies inside the ellipsoid that is `altitude` larger than the earth's.
/// False when the line passes by.
bool cut(const dvec3& a, const dvec3& b, double altitude, EllipsoidModel::Stretch& out) {
    const double major = A + altitude, minor = B + altitude;
    const auto scaled = [=](const dvec3& p) {
        return dvec3(p.x / major, p.y / major, p.z / minor);
    };
    const dvec3 o = scaled(a), d = scaled(b) - o;
    // |o + t d|² = 1
    const double dd = dot(d, d), od = dot(o, d), c = dot(o, o) - 1;
    const double discriminant = od * od - dd * c;
    if (!(dd > 0) || !(discriminant >= 0)) return false;
    const double root = std::sqrt(discriminant);
    // Of the two forms of each root the one that doesn't cancel.
    const double q = od > 0 ? -od - root : -od + root;
    const double t1 = q / dd, t2 = q != 0 ? c / q : t1;
    out = {std::min(t1, t2), std::max(t1, t2)};
    return true;
}

} // namespace

dvec3 EllipsoidModel::toWGS(const dvec3& world, bool degrees) const {
    const Meridian m = solveMeridian(world);
    const double unit = degrees ? RAD_TO_DEG<double> : 1.0;
    return {std::atan2(world.y, world.x) * unit, std::atan2(m.sine, m.cosine) * unit,
            m.altitude(world.z)};
}

dvec3 EllipsoidModel::toWorld(const dvec3& geodetic, bool degrees) const {
    const double unit = degrees ? DEG_TO_RAD<double> : 1.0;
    const double sin_lon = std::sin(geodetic.x * unit), cos_lon = std::cos(geodetic.x * unit);
    const double sin_lat = std::sin(geodetic.y * unit), cos_lat = std::cos(geodetic.y * unit);
    const double n = A / std::sqrt(1 - E2 * sin_lat * sin_lat); // prime-vertical radius
    const double p = (n + geodetic.z) * cos_lat;
    return {p * cos_lon, p * sin_lon, (n * (1 - E2) + geodetic.z) * sin_lat};
}

dmat4 EllipsoidModel::getWGSTransform(const dvec3& world, bool) const {
    const Meridian m = solveMeridian(world);
    const double cos_lon = m.p > 0 ? world.x / m.p : 1;
    const double sin_lon = m.p > 0 ? world.y / m.p : 0;
    return {dmat3({-sin_lon, cos_lon, 0}, {-m.sine * cos_lon, -m.sine * sin_lon, m.cosine},
                  {m.cosine * cos_lon, m.cosine * sin_lon, m.sine}),
            world};
}

double EllipsoidModel::getAltitude(const dvec3& world) const {
    return solveMeridian(world).altitude(world.z);
}

dvec3 EllipsoidModel::getUp(const dvec3& world) const { return getWGSTransform(world).getZ(); }

EllipsoidModel::Radii EllipsoidModel::getRadii(double latitude) const {
    const double sine = std::sin(latitude * DEG_TO_RAD<double>), w2 = 1 - E2 * sine * sine;
    const double prime_vertical = A / std::sqrt(w2);
    return {prime_vertical * (1 - E2) / w2, prime_vertical};
}

dvec2 EllipsoidModel::getDegreeLengths(double latitude, double altitude) const {
    constexpr double UNIT = DEG_TO_RAD<double>;
    const Radii radii = getRadii(latitude);
    return {(radii.prime_vertical + altitude) * std::cos(latitude * UNIT) * UNIT,
            (radii.meridian + altitude) * UNIT};
}

int EllipsoidModel::cutShell(const dvec3& a, const dvec3& b, double lowest, double highest,
                             Stretch out[2]) const {
    Stretch outer, inner;
    if (!cut(a, b, highest, outer)) return 0;
    Stretch parts[2] = {outer, {0, -1}};
    if (cut(a, b, lowest, inner)) {
        parts[0] = {outer.begin, inner.begin};
        parts[1] = {inner.end, outer.end};
    }
    int count = 0;
    for (Stretch part : parts) {
        part = {std::max(part.begin, 0.0), std::min(part.end, 1.0)};
        if (part.begin <= part.end) out[count++] = part;
    }
    return count;
}

} // namespace ig
