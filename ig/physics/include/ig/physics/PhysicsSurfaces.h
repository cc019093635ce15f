// SPDX-License-Identifier: MIT
#pragma once

#include "ig/math/vec.h"

namespace ig {

/// What bodies can meet that has no body of its own: the ground, decks, the sea.
class PhysicsSurfaces {
public:
    /// The first crossing of the segment from → to with the ground, and with the sea when `sea`;
    /// false when there is none. World coordinates; `point` may be null.
    virtual bool meet(const dvec3& from, const dvec3& to, bool sea, dvec3* point) const = 0;

protected:
    ~PhysicsSurfaces() = default;
};

} // namespace ig
