// SPDX-License-Identifier: MIT
#include "plugins/ocean/ObjectOcean.h"

#include "ig/math/EllipsoidModel.h"
#include "ig/scene/World.h"

#include <cmath>

using namespace ig;

namespace {

const EllipsoidModel EARTH;

Node* create(const Package&) { return new ObjectOcean(); }
const bool registered = NodeFactory::add("ocean", create);

/// Scales the earth to a unit sphere.
dvec3 toUnitSphere(const dvec3& world) {
    constexpr double A = EllipsoidModel::SEMI_MAJOR_AXIS;
    constexpr double B = A * (1 - EllipsoidModel::FLATTENING);
    return {world.x / A, world.y / A, world.z / B};
}

} // namespace

ObjectOcean::ObjectOcean() : Object(OBJECT_OCEAN) { setNumSurfaces(1); }

dvec3 ObjectOcean::getWorldPoint(const dvec3& world) const {
    dvec3 geodetic = EARTH.toWGS(world);
    geodetic.z = 0;
    return EARTH.toWorld(geodetic);
}

bool ObjectOcean::getIntersection(int surface, const dvec3& a, const dvec3& b, dvec3* out) const {
    if (!isIntersection(surface)) return false;
    // |o + t d|² = 1 on the scaled earth; the first root within the segment.
    const dvec3 o = toUnitSphere(toWorld(a)), d = toUnitSphere(toWorld(b)) - o;
    const double dd = length2(d), od = dot(o, d);
    const double discriminant = od * od - dd * (length2(o) - 1);
    if (!(dd > 0) || !(discriminant >= 0)) return false;
    const double root = std::sqrt(discriminant);
    // Of the two forms of each root the one that doesn't cancel.
    const double q = od > 0 ? -od - root : -od + root;
    const double t1 = q / dd, t2 = q != 0 ? (length2(o) - 1) / q : t1;
    double t = std::min(t1, t2);
    if (t < 0) t = std::max(t1, t2);
    if (t < 0 || t > 1) return false;
    if (out) *out = a + (b - a) * t;
    return true;
}
