// SPDX-License-Identifier: MIT
#pragma once

#include "plugins/terrain/TerrainGrid.h"

#include "ig/base/jString.h"

#include <span>
#include <string>
#include <vector>

namespace ig {

class HeightRaster;

/// How high the sea's level lies above the WGS84 ellipsoid: the part of a geoid's grid that a
/// ground needs. Between its samples bilinear, as those who publish such grids have it.
class GeoidGrid {
public:
    /// From a raster in WGS84 longitude and latitude, such as PROJ's GTX and GeoTIFF files; one
    /// that goes round the earth has no seam. False with the reason in `failure`.
    bool read(const jString& path, const TerrainGrid& ground, std::string& failure);

    /// Takes its heights off those of a grid within the ground.
    void lower(const TerrainGrid& grid, std::span<float> heights) const;

private:
    bool readColumns(const HeightRaster& raster, int column, int count, std::string& failure);
    double getHeight(double column, double row) const;

    TerrainGrid m_grid; ///< size and place of the part
    std::vector<float> m_heights;
};

} // namespace ig
