// SPDX-License-Identifier: MIT
#pragma once

#include "ig/scene/Object.h"

/// The ground of a world. The logic asks it for the ground height under the helicopter; segment
/// queries meet it as an object with one surface.
class ObjectTerrain : public ig::Object {
public:
    ObjectTerrain() : Object(ig::OBJECT_TERRAIN) { setNumSurfaces(1); }

    /// Altitude of the ground above the ellipsoid at a geodetic place (degrees), and the normal
    /// there in world axes; either pointer may be null. False, with both untouched, where the
    /// terrain has no data.
    virtual bool getAltitudeByLonLat(double longitude, double latitude, double* altitude,
                                     ig::dvec3* normal) const = 0;
};
