// SPDX-License-Identifier: MIT
#pragma once

#include "ig/scene/Bounds.h"
#include "plugins/terrain/TerrainGrid.h"

#include <limits>
#include <memory>
#include <vector>

namespace ig {

class HeightFile;

/// The triangles of a terrain's grid, in grid coordinates: u counts columns from the west, v rows
/// from the north, both with a fraction. Immutable. Samples and bounds lie in memory, or in the
/// file of a built world, which is mapped and read where somebody looks.
class HeightField final : public TerrainOverview {
public:
    /// `shape` describes `heights` (its pointer and its range are filled in here); at least 2 × 2
    /// samples.
    HeightField(const TerrainGrid& shape, std::vector<float> heights);
    explicit HeightField(std::unique_ptr<const HeightFile> file);
    HeightField(const HeightField&) = delete;
    ~HeightField();

    const TerrainGrid& getGrid() const { return m_grid; }

    /// The plane of one triangle: its altitude at a place and its slopes in metres per sample.
    struct Facet {
        double altitude = std::numeric_limits<double>::quiet_NaN();
        double slope_u = 0, slope_v = 0;

        explicit operator bool() const { return !std::isnan(altitude); }
    };
    /// The triangle at a place; none beyond the grid and in holes. Edges belong to both sides, with
    /// a tolerance of a micrometre that takes up the rounding of a conversion to the world and
    /// back.
    Facet getFacet(double u, double v) const;

    using Range = HeightRange;
    /// Bounds of all heights over the rectangle [u0, u1] × [v0, v1]; empty where no data is.
    Range getRange(double u0, double u1, double v0, double v1) const;
    Range getSquareRange(int column, int row, int edge) const override;
    float getHeight(int column, int row, int step) const override;

    /// Sphere around the surface, in the world.
    BoundSphere getBounds() const;

    /// Tangent of the latitude in the grid that is farthest from the equator, with half a degree of
    /// margin.
    double getSteepestTangent() const { return m_steepest_tangent; }
    double getToleranceU() const { return m_tolerance_u; } ///< samples in a micrometre
    double getToleranceV() const { return m_tolerance_v; }

    /// Bounds of square blocks of cells; each level has blocks twice as wide as the last, from 4
    /// cells to all.
    struct Level {
        int columns, rows;
        const Range* blocks;

        const Range& at(int i, int j) const {
            return blocks[static_cast<std::ptrdiff_t>(j) * columns + i];
        }
    };
    const std::vector<Level>& getLevels() const { return m_levels; }
    /// Null for one in memory.
    const HeightFile* getFile() const { return m_file.get(); }

private:
    void place();
    void buildLevels();
    Range getBlockRange(int block_column, int block_row) const;
    Facet getFacetOfCell(int column, int row, double u, double v) const;

    TerrainGrid m_grid;
    std::unique_ptr<const HeightFile> m_file;
    std::vector<float> m_heights;             ///< empty with a file
    std::vector<std::vector<Range>> m_blocks; ///< of the levels; empty with a file
    std::vector<Level> m_levels;
    double m_middle_longitude = 0;
    double m_steepest_tangent = 0;
    double m_tolerance_u = 0, m_tolerance_v = 0;
};

} // namespace ig
