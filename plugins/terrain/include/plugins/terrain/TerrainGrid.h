// SPDX-License-Identifier: MIT
#pragma once

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <limits>
#include <span>

namespace ig {

/// Bounds of heights, m.
struct HeightRange {
    float lowest = std::numeric_limits<float>::infinity();
    float highest = -std::numeric_limits<float>::infinity(); ///< empty: below `lowest`

    bool isEmpty() const { return highest < lowest; }
    void expand(float low, float high) {
        lowest = std::min(lowest, low);
        highest = std::max(highest, high);
    }
};

/// Answers coarse questions about a terrain's grid, so that nobody reads all its samples: those of
/// a built world lie in a file.
class TerrainOverview {
public:
    /// Bounds of the samples of a square of cells with its border, as far as the grid reaches. Its
    /// edge is a power of two, at least 4, of which column and row are multiples.
    virtual HeightRange getSquareRange(int column, int row, int edge) const = 0;
    /// A sample, from the place where those whose column and row are multiples of `step`, a power
    /// of two, lie close to each other, if there is one.
    virtual float getHeight(int column, int row, int step) const = 0;

protected:
    ~TerrainOverview() = default;
};

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
    float lowest = 0, highest = 0;             ///< of the samples with data
    bool has_holes = false;                    ///< some samples have no data
    const TerrainOverview* overview = nullptr; ///< the terrain's own; null: none

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
    /// A sample, by one who reads only every `step`th, a power of two, along columns and rows.
    float getHeight(int column, int row, int step) const {
        return overview ? overview->getHeight(column, row, step) : getHeight(column, row);
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
