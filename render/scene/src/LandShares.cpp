// SPDX-License-Identifier: MIT
#include "render/scene/LandShares.h"

#include "render/scene/ShaderConstants.h"

#include <algorithm>

namespace ig {

LandShares LandShares::of(LandClass land) {
    constexpr std::uint8_t ALL = 255;
    switch (land) {
    case LandClass::none:
    case LandClass::grass:
        return {};
    case LandClass::crop:
        return {.crop = ALL};
    case LandClass::forest:
        return {.woods = ALL};
    case LandClass::shrub:
        return {.woods = 120};
    case LandClass::bare:
        return {.soil = ALL};
    case LandClass::sand:
        return {.sand = ALL};
    case LandClass::rock:
        return {.rock = ALL};
    case LandClass::built_up:
        return {.built = ALL};
    case LandClass::wetland:
        return {.woods = 90, .soil = 110};
    case LandClass::snow:
        return {.snow = ALL};
    case LandClass::water:
        return {.water = ALL};
    }
    return {};
}

std::vector<LandShares> getLandShares(const LandCover& cover, const TerrainGrid& grid, int column,
                                      int row, int step) {
    constexpr int EDGE = CHUNK_CELLS + 3;
    std::vector<LandShares> shares;
    shares.reserve(EDGE * EDGE);
    for (int j = 0; j < EDGE; j++)
        for (int i = 0; i < EDGE; i++) {
            const int c =
                std::min(column + std::clamp(i - 1, 0, CHUNK_CELLS) * step, grid.columns - 1);
            const int r = std::min(row + std::clamp(j - 1, 0, CHUNK_CELLS) * step, grid.rows - 1);
            shares.push_back(LandShares::of(cover.getClass(
                grid.west + c * grid.spacing_longitude, grid.north - r * grid.spacing_latitude)));
        }
    return shares;
}

} // namespace ig
