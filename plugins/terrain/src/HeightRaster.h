// SPDX-License-Identifier: MIT
#pragma once

#include "RasterFile.h"
#include "plugins/terrain/TerrainGrid.h"

#include <span>
#include <string>
#include <vector>

namespace ig {

/// The heights of a raster file, at samples of any north-up grid in WGS84 longitude and latitude.
class HeightRaster {
public:
    /// False with the reason in `failure`: no such file, no format that is read, not georeferenced,
    /// smaller than 2 × 2 samples, over a pole.
    bool open(const jString& path, std::string& failure);

    /// Size and place of the grid that it has itself, or in another coordinate system of one about
    /// as fine that holds it.
    const TerrainGrid& getGrid() const { return m_grid; }
    /// The raster's own coordinate system where that isn't WGS84's longitude and latitude.
    const std::string& getResampledFrom() const { return m_resampled_from; }

    /// Puts its heights into those of a grid, row by row; samples that it doesn't have stay. They
    /// are its own where the grid's samples are, else bilinear between them. False with the reason
    /// in `failure`: damaged.
    bool read(const TerrainGrid& grid, std::span<float> heights, std::string& failure) const;

private:
    bool locate(std::string& failure);
    bool readOwn(const TerrainGrid& grid, int column, int row, std::span<float> heights) const;
    bool readResampled(const TerrainGrid& grid, std::span<float> heights) const;

    Dataset m_file;
    TerrainGrid m_grid;
    std::string m_system; ///< horizontal, as well-known text
    std::string m_resampled_from;
    bool m_is_southern = false; ///< its rows run from the south
};

} // namespace ig
