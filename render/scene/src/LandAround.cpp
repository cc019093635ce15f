// SPDX-License-Identifier: MIT
#include "render/scene/LandAround.h"

#include "ig/math/EllipsoidModel.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>

namespace ig {

namespace {

constexpr int MOST_RINGS = 64; ///< of samples, looked at
/// Land stands so high above crests, at least and when looked at, m: they change in every frame.
constexpr float SPARE = 0.5f, LOOKED_FOR = 1;

/// Whether the ring of samples so far from a sample lies on land.
bool isLand(const TerrainGrid& grid, int column, int row, int ring, float level) {
    if (column - ring < 0 || column + ring >= grid.columns || row - ring < 0 ||
        row + ring >= grid.rows)
        return false;
    const auto stands = [&](int c, int r) { // a hole doesn't
        return grid.getHeight(column + c, row + r) > level;
    };
    for (int i = -ring; i <= ring; i++)
        if (!stands(i, -ring) || !stands(i, ring) || !stands(-ring, i) || !stands(ring, i))
            return false;
    return true;
}

/// Whether the ring touches cells that a finer grid replaces, whose samples would have to be asked.
bool meetsFiner(TerrainGrids grids, const TerrainGrid& grid, int column, int row, int ring) {
    for (const TerrainGrid& finer : grids) {
        if (finer.parent < 0 || &grids[static_cast<std::size_t>(finer.parent)] != &grid) continue;
        const auto [west, north, columns, rows] = finer.within;
        if (column + ring >= west && column - ring <= west + columns && row + ring >= north &&
            row - ring <= north + rows)
            return true;
    }
    return false;
}

} // namespace

float LandAround::find(TerrainGrids grids, const dvec3& place, float crest) {
    const TerrainGrid* grid = findGrid(grids, place.x, place.y);
    if (!grid) return 0;
    const dvec2 at{grid->getColumn(place.x), grid->getRow(place.y)};
    const auto off = [&] {
        return std::max(std::abs(at.x - m_place.x), std::abs(at.y - m_place.y));
    };
    if (*grid != m_made_of || crest + SPARE > m_level || crest + 2 * LOOKED_FOR < m_level ||
        off() > 1)
        look(grids, *grid, at, crest + LOOKED_FOR);
    const double cosine = std::cos(place.y * DEG_TO_RAD<double>);
    const double sample =
        EllipsoidModel::DEGREE * std::min(grid->spacing_longitude * cosine, grid->spacing_latitude);
    return static_cast<float>(std::max(m_rings - 1 - off(), 0.0) * sample * 0.99);
}

void LandAround::look(TerrainGrids grids, const TerrainGrid& grid, dvec2 at, float level) {
    m_made_of = grid;
    m_level = level;
    m_place = {std::round(at.x), std::round(at.y)};
    const int column = static_cast<int>(m_place.x), row = static_cast<int>(m_place.y);
    m_rings = 0;
    while (m_rings < MOST_RINGS && !meetsFiner(grids, grid, column, row, m_rings) &&
           isLand(grid, column, row, m_rings, level))
        m_rings++;
}

} // namespace ig
