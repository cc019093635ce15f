// SPDX-License-Identifier: MIT
#pragma once

#include "ig/scene/Object.h"

#include <cmath>
#include <memory>

class HeightField;

/// What a terrain is made of, to be read by those who draw it or look into it: a grid of height
/// samples in longitude and latitude. Sample (column, row) stands at longitude
/// `west + column · spacing_longitude` and latitude `north − row · spacing_latitude`.
///
/// The surface between them: each cell of four samples is split along its diagonal from north-east
/// to south-west into two triangles, planar in (longitude, latitude, height). A triangle with a
/// corner without data is a hole.
struct TerrainGrid {
    int columns = 0, rows = 0; ///< samples from west to east and from north to south; 0 or ≥ 2
    double west = 0, north = 0;
    double spacing_longitude = 0, spacing_latitude = 0; ///< degrees, positive
    /// `rows` times `columns` altitudes above the ellipsoid, row by row from the north; not a
    /// number where there is no data. Owned by the terrain, unchanged until its next `load`.
    const float* heights = nullptr;
    float lowest = 0, highest = 0; ///< of the samples with data
    bool has_holes = false;        ///< some samples have no data

    bool empty() const { return columns == 0; }
    float getHeight(int column, int row) const {
        return heights[static_cast<std::size_t>(row) * static_cast<std::size_t>(columns) +
                       static_cast<std::size_t>(column)];
    }
    static bool isHole(float height) { return std::isnan(height); }
};

/// The ground of a world: one surface that drawing, floating and queries agree on. The logic asks
/// it for the ground's height below a place; segment queries meet it as an object with one
/// surface. Node type "terrain" in world files. It stands where its raster says, whatever the
/// node's pose. Without a raster it has no ground anywhere and is never met.
class ObjectTerrain : public ig::Object {
public:
    ObjectTerrain();
    ~ObjectTerrain() override;

    /// Replaces the ground by the first band of a raster file, in any format that GDAL reads.
    /// Heights stand at the middle of the raster's pixels and are taken as metres above the
    /// ellipsoid. A raster that is not a north-up grid in WGS84 longitude and latitude is
    /// resampled to one. False, with one log line, when it cannot be read: the terrain is then
    /// empty.
    bool load(const ig::jString& path);

    /// Altitude of the ground above the ellipsoid at a geodetic place (degrees), and the normal
    /// there in world axes; either pointer may be null. False, with both untouched, where the
    /// terrain has no data.
    virtual bool getAltitudeByLonLat(double longitude, double latitude, double* altitude,
                                     ig::dvec3* normal) const;
    /// First crossing, from above or below. A vertical segment meets the ground exactly at
    /// `getAltitudeByLonLat`; others lie within 0.02 mm of it.
    bool getIntersection(int surface, const ig::dvec3& a, const ig::dvec3& b,
                         ig::dvec3* out) const override;

    /// Sand below the material's "shore_height", grass elsewhere unless the material says
    /// otherwise.
    ig::Ground getGroundAt(int surface, const ig::dvec3& place) const override;

    /// The samples; empty without a raster.
    const TerrainGrid& getGrid() const;

protected:
    ig::BoundSphere getOwnBounds() const override;
    void onMoved() override;

private:
    std::unique_ptr<const HeightField> m_field; ///< null without a raster
};
