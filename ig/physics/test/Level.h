// SPDX-License-Identifier: MIT
#pragma once

#include "ig/math/EllipsoidModel.h"
#include "ig/physics/Physics.h"

#include <algorithm>

namespace ig {

/// Ground of one altitude everywhere, and a sea.
struct Level final : PhysicsSurfaces {
    bool meet(const dvec3& from, const dvec3& to, bool with_sea, dvec3* point) const override {
        const double a = m_earth.getAltitude(from), b = m_earth.getAltitude(to);
        const double level = with_sea ? std::max(ground, sea) : ground;
        if (!(a >= level && b <= level)) return false;
        if (point) *point = from + (to - from) * (a > b ? (a - level) / (a - b) : 0);
        return true;
    }
    double ground = -1000, sea = 0;

private:
    EllipsoidModel m_earth;
};

} // namespace ig
