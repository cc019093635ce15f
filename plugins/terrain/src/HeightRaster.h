// SPDX-License-Identifier: MIT
#pragma once

#include "ig/base/jString.h"
#include "plugins/terrain/TerrainGrid.h"

#include <string>
#include <vector>

namespace ig {

/// The heights of a raster file as a north-up grid in WGS84 longitude and latitude.
struct HeightRaster {
    TerrainGrid shape; ///< size and place only
    std::vector<float> heights;
    std::string resampled_from; ///< the raster's own coordinate system when it was another one

    /// False with the reason in `failure`: no such file, no format that GDAL knows, not
    /// georeferenced, damaged, smaller than 2 × 2 samples or larger than 2^28.
    bool read(const jString& path, std::string& failure);
};

} // namespace ig
