// SPDX-License-Identifier: MIT
#include "SurfaceRay.h"

#include "ig/math/EllipsoidModel.h"

namespace ocean {

namespace {

/// The part of the line a → b inside the ellipsoid that is `altitude` larger than the earth's in
/// both axes; it departs from the surface of that altitude by less than 1 % of it. False when the
/// line passes by.
bool cutEllipsoid(const ig::dvec3& a, const ig::dvec3& b, double altitude, Stretch& out) {
    using Earth = ig::EllipsoidModel;
    const double major = Earth::SEMI_MAJOR_AXIS + altitude;
    const double minor = Earth::SEMI_MAJOR_AXIS * (1 - Earth::FLATTENING) + altitude;
    const auto scaled = [=](const ig::dvec3& p) {
        return ig::dvec3(p.x / major, p.y / major, p.z / minor);
    };
    const ig::dvec3 o = scaled(a), d = scaled(b) - o;
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

int stretchesNearSea(const ig::dvec3& a, const ig::dvec3& b, double depth, Stretch out[2]) {
    const double margin = depth * 1.02 + 0.1;
    Stretch outer, inner;
    if (!cutEllipsoid(a, b, margin, outer)) return 0;
    Stretch parts[2] = {outer, {0, -1}};
    if (cutEllipsoid(a, b, -margin, inner)) {
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

} // namespace ocean
