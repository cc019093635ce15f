// SPDX-License-Identifier: MIT
#pragma once

#include <cmath>
#include <cstddef>
#include <span>

namespace ig {

/// What a terrain is made of, to be read by those who draw it or look into it: a grid of height
/// samples in longitude and latitude. Sample (column, row) stands at longitude
/// `west + column · spacing_longitude` and latitude `north − row · spacing_latitude`.
///
/// The surface between them: each cell of four samples is split along its diagonal from north-east
/// to south-west into two triangles, planar in (longitude, latitude, height). A triangle with a
/// corner without data is a hole.
///
/// A finer grid replaces a rectangle of cells of a coarser one, its parent: its own cells divide
/// each of those, and its outermost samples lie on the parent's surface, so that the ground is one.
struct TerrainGrid {
    int columns = 0, rows = 0; ///< samples from west to east and from north to south; 0 or ≥ 2
    double west = 0, north = 0;
    double spacing_longitude = 0, spacing_latitude = 0; ///< degrees, positive
    /// `rows` times `columns` altitudes above the ellipsoid, row by row from the north; not a
    /// number where there is no data. Owned by the terrain, unchanged until its next `load`.
    const float* heights = nullptr;
    float lowest = 0, highest = 0; ///< of the samples with data
    bool has_holes = false;        ///< some samples have no data

    struct Cells {
        int column = 0, row = 0, columns = 0, rows = 0;
        friend bool operator==(const Cells&, const Cells&) = default;
    };
    int parent = -1; ///< place of the parent among the terrain's grids; −1: this is the coarsest
    Cells within{};  ///< of the parent: those that this grid replaces

    bool empty() const { return columns == 0; }
    float getHeight(int column, int row) const {
        return heights[static_cast<std::size_t>(row) * static_cast<std::size_t>(columns) +
                       static_cast<std::size_t>(column)];
    }
    /// Grid coordinates of a geodetic place (degrees): samples from the west and from the north,
    /// with a fraction. The longitude is taken modulo 360, nearest to the grid's middle.
    double getColumn(double longitude) const {
        const double middle = (columns - 1) * 0.5;
        double offset = longitude - (west + middle * spacing_longitude);
        if (std::abs(offset) > 180) offset = std::remainder(offset, 360);
        return offset / spacing_longitude + middle;
    }
    double getRow(double latitude) const { return (north - latitude) / spacing_latitude; }
    bool contains(double column, double row) const {
        return column >= 0 && column <= columns - 1 && row >= 0 && row <= rows - 1;
    }
    static bool isHole(float height) { return std::isnan(height); }
    /// The same samples in the same places, as far as can be told without reading them all.
    friend bool operator==(const TerrainGrid&, const TerrainGrid&) = default;
};

/// The grids of a terrain from coarse to fine, each behind its parent; none without ground.
using TerrainGrids = std::span<const TerrainGrid>;

/// The finest of them at a geodetic place, the one whose surface is the ground there; null without.
inline const TerrainGrid* findGrid(TerrainGrids grids, double longitude, double latitude) {
    for (std::size_t i = grids.size(); i-- > 0;)
        if (grids[i].contains(grids[i].getColumn(longitude), grids[i].getRow(latitude)))
            return &grids[i];
    return nullptr;
}

} // namespace ig
