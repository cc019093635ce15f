// SPDX-License-Identifier: MIT
#pragma once

#include "ig/scene/Object.h"

/// The sea: one surface that drawing, floating and queries agree on. A calm one: the ellipsoid at
/// altitude 0. Node type "ocean" in world files.
class ObjectOcean : public ig::Object {
public:
    ObjectOcean();

    /// The point of the surface above or below a world position, along the local vertical.
    virtual ig::dvec3 getWorldPoint(const ig::dvec3& world) const;

    /// Whether the scene's wind drives the sea instead of its own speed and angle.
    virtual void setUseGlobalWind(bool on) { m_use_global_wind = on; }
    virtual bool getUseGlobalWind() const { return m_use_global_wind; }

    bool getIntersection(int surface, const ig::dvec3& a, const ig::dvec3& b,
                         ig::dvec3* out) const override;

protected:
    ig::BoundSphere getOwnBounds() const override { return ig::BoundSphere::unbounded(); }

private:
    bool m_use_global_wind = true;
};
