// SPDX-License-Identifier: MIT
#pragma once

#include "ig/scene/Object.h"
#include "plugins/terrain/TerrainGrid.h"
#include "plugins/terrain/TerrainSources.h"

#include <memory>

namespace ig {

class GroundPager;
class HeightStack;
class Imagery;
class LandCover;

/// The ground of a world: one surface that drawing, floating and queries agree on. The logic asks
/// it for the ground's height below a place; segment queries meet it as an object with one
/// surface. Node type "terrain" in world files. It stands where its raster says, whatever the
/// node's pose. Without a raster it has no ground anywhere and is never met.
class ObjectTerrain : public Object {
public:
    ObjectTerrain();
    ~ObjectTerrain() override;

    /// Replaces the ground by the first band of a raster file, in any format that GDAL reads.
    /// Heights stand at the middle of the raster's pixels and are taken as metres above the
    /// ellipsoid. A raster that is not a north-up grid in WGS84 longitude and latitude is
    /// resampled to one. False, with one log line, when it cannot be read: the terrain is then
    /// empty.
    bool load(const TerrainSources& sources);
    bool load(const jString& path); ///< of one raster
    /// What `load` was asked for last.
    const TerrainSources& getSources() const { return m_sources; }

    /// Altitude of the ground above the ellipsoid at a geodetic place (degrees), and the normal
    /// there in world axes; either pointer may be null. False, with both untouched, where the
    /// terrain has no data.
    virtual bool getAltitudeByLonLat(double longitude, double latitude, double* altitude,
                                     dvec3* normal) const;
    /// First crossing, from above or below. A vertical segment meets the ground exactly at
    /// `getAltitudeByLonLat`; others lie within 0.02 mm of it.
    bool getIntersection(int surface, const dvec3& a, const dvec3& b, dvec3* out) const override;

    /// Sand below the material's "shore_height"; elsewhere what the land cover knows there, or else
    /// the material, or grass. All is snow where the material says so.
    Ground getGroundAt(int surface, const dvec3& place) const override;

    /// The samples, the same until the next `load`.
    TerrainGrids getGrids() const;
    /// Keeps the samples beyond the next `load` and the terrain's end, for whoever reads them on
    /// another thread.
    std::shared_ptr<const void> getOwner() const;
    /// Tells a built world where an eye is, whose surroundings are kept in memory. What the ground
    /// answers doesn't depend on it.
    void lookFrom(double longitude, double latitude) const;
    /// Null without one. Threads that read it share it, and the imagery.
    const std::shared_ptr<const LandCover>& getLandCover() const { return m_land_cover; }
    /// Null without any.
    const std::shared_ptr<const Imagery>& getImagery() const { return m_imagery; }

protected:
    BoundSphere getOwnBounds() const override;
    void onMoved() override;

private:
    bool loadBuilt();
    void loadLooks();

    TerrainSources m_sources;
    std::shared_ptr<const HeightStack> m_ground; ///< null without a raster
    std::unique_ptr<GroundPager> m_pager;        ///< of a built world; else null
    std::shared_ptr<const LandCover> m_land_cover;
    std::shared_ptr<const Imagery> m_imagery;
};

} // namespace ig
