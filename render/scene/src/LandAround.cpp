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

} // namespace

float LandAround::find(const TerrainGrid& grid, const dvec3& place, float crest) {
    if (grid.empty()) return 0;
    const dvec2 at{(place.x - grid.west) / grid.spacing_longitude,
                   (grid.north - place.y) / grid.spacing_latitude};
    const double off = std::max(std::abs(at.x - m_place.x), std::abs(at.y - m_place.y));
    if (grid != m_made_of || crest + SPARE > m_level || crest + 2 * LOOKED_FOR < m_level ||
        off > 1) {
        m_made_of = grid;
        m_level = crest + LOOKED_FOR;
        m_place = {std::round(at.x), std::round(at.y)};
        m_rings = 0;
        const bool inside =
            m_place.x >= 0 && m_place.x < grid.columns && m_place.y >= 0 && m_place.y < grid.rows;
        while (inside && m_rings < MOST_RINGS &&
               isLand(grid, static_cast<int>(m_place.x), static_cast<int>(m_place.y), m_rings,
                      m_level))
            m_rings++;
        return find(grid, place, crest);
    }
    const double cosine = std::cos(place.y * DEG_TO_RAD<double>);
    const double sample =
        EllipsoidModel::DEGREE * std::min(grid.spacing_longitude * cosine, grid.spacing_latitude);
    return static_cast<float>(std::max(m_rings - 1 - off, 0.0) * sample * 0.99);
}

} // namespace ig
