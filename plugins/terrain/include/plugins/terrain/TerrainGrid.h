// SPDX-License-Identifier: MIT
#pragma once

#include <cmath>
#include <cstddef>

namespace ig {

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
    /// The same samples in the same places, as far as can be told without reading them all.
    friend bool operator==(const TerrainGrid&, const TerrainGrid&) = default;
};

} // namespace ig
