// SPDX-License-Identifier: MIT
#pragma once

#include "common/ship/Flotation.h"
#include "ig/base/jVector.h"
#include "ig/math/vec.h"

namespace ig {
class BodyRigid;
class ObjectOcean;
} // namespace ig

/// Makes a box-shaped rigid body float. 24 points of the box's horizontal mid-plane, three columns
/// across the beam by eight rows along it, ask the sea how deep they lie; each is lifted along the
/// box's own up with the square of its immersion, and braked against its own velocity.
///
/// The immersion r of a point is the depth of its foot, taken as a part of the box's height and
/// limited to [0, 1]; the foot lies half the height away along the earth's axis, so that it stands
/// height/2 · sin(latitude) below the point. Fully under water the box is lifted as by a liquid of
/// `density` kg/m³, so that a box of mass m floats where the mean of r² is m / (density · volume):
/// `Flotation` tells where that is.
///
/// Owned by its ship, which calls `update` once per frame before it reads the immersion.
class Buoyancy {
public:
    /// Inert, and reported, when the ocean is in no world or the body's first shape is no box.
    Buoyancy(ig::BodyRigid* body, ig::ObjectOcean* ocean);
    Buoyancy(const Buoyancy&) = delete;
    Buoyancy& operator=(const Buoyancy&) = delete;

    virtual float getDensity() const { return m_density; }
    virtual void setDensity(float density) { m_density = density; }
    virtual ~Buoyancy() = default;

    /// Adds the forces to the body, for the next physics step, and measures the immersion.
    void update();
    /// Mean immersion of the points at the last update, 0 to 1.
    float getSubmerged() const { return m_submerged; }

private:
    void placePoints(const ig::vec3& size);

    ig::BodyRigid* m_body = nullptr;
    ig::ObjectOcean* m_ocean = nullptr;
    float m_height = 0; ///< of the box, m
    float m_submerged = 0;
    float m_damping = 0; ///< drag of a fully immersed point per unit of the body's mass, 1/s
    ig::jVector<ig::dvec3> m_points; ///< in the box's own frame
    float m_weight = 0;              ///< gravity times the box's volume, m⁴/s²
    float m_density = static_cast<float>(Flotation::LIFT);
};
