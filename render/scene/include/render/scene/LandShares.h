// SPDX-License-Identifier: MIT
#pragma once

#include "plugins/terrain/LandCover.h"
#include "plugins/terrain/TerrainGrid.h"

namespace ig {

/// What the ground shows at a vertex in place of grass, 255 being all of it (terrain.frag).
struct LandShares {
    std::uint8_t woods = 0, crop = 0, soil = 0, sand = 0;
    std::uint8_t rock = 0, built = 0, snow = 0, water = 0;

    static LandShares of(LandClass land);
};

/// For the vertices of a chunk of the ground in their order: samples of every `step`th column and
/// row from one on, with the skirt around them, which repeats the border.
std::vector<LandShares> getLandShares(const LandCover& cover, const TerrainGrid& grid, int column,
                                      int row, int step);

} // namespace ig
