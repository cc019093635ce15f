// SPDX-License-Identifier: MIT
#pragma once

#include "HeightField.h"
#include "plugins/terrain/TerrainSources.h"

#include <memory>
#include <string>
#include <vector>

namespace ig {

/// What rasters make of a ground.
struct MadeGround {
    std::vector<std::unique_ptr<const HeightField>> fields; ///< from coarse to fine; may be none
    std::vector<std::string> faults; ///< what is missing in them, a sentence each
    std::vector<std::string> notes;  ///< what was done to make them
};

/// Reads a terrain's rasters: one ground of nested grids, heights above sea level. The coarsest has
/// its raster's own samples where that is a north-up one in WGS84 longitude and latitude. A finer
/// one's outermost samples lie on the coarser surface, to which it goes over within two of that
/// one's cells; its holes are filled from there, and there its samples stand in place of the
/// coarser ones. What can't be read is left out.
MadeGround makeGround(const TerrainSources& sources);

} // namespace ig
