// SPDX-License-Identifier: MIT
#include "GeoidGrid.h"

#include "HeightRaster.h"

#include <algorithm>
#include <limits>

namespace ig {

bool GeoidGrid::read(const jString& path, const TerrainGrid& ground, std::string& failure) {
    HeightRaster raster;
    if (!raster.open(path, failure)) return false;
    const TerrainGrid& whole = raster.getGrid();
    if (!raster.getResampledFrom().empty()) {
        failure =
            "a geoid is read in WGS84 longitude and latitude, not in " + raster.getResampledFrom();
        return false;
    }
    const double round = 360 / whole.spacing_longitude; // columns once round the earth
    const bool goes_round = whole.columns + 1e-3 > round;
    const double east = (ground.columns - 1) * ground.spacing_longitude / whole.spacing_longitude;
    double column = (ground.west - whole.west) / whole.spacing_longitude;
    column -= std::floor(column / round + 1e-9) * round;
    const double row = whole.getRow(ground.north);
    const double south = row + (ground.rows - 1) * ground.spacing_latitude / whole.spacing_latitude;
    constexpr double SLACK = 1e-6;
    if (row < -SLACK || south > whole.rows - 1 + SLACK ||
        (!goes_round && column + east > whole.columns - 1 + SLACK)) {
        failure = "doesn't reach all of the ground";
        return false;
    }
    const int first = static_cast<int>(std::floor(column));
    const int first_row = std::clamp(static_cast<int>(std::floor(row)), 0, whole.rows - 2);
    m_grid = whole;
    m_grid.west = whole.west + first * whole.spacing_longitude;
    m_grid.north = whole.north - first_row * whole.spacing_latitude;
    m_grid.columns = static_cast<int>(std::ceil(column - first + east + SLACK)) + 1;
    m_grid.rows = std::min(static_cast<int>(std::ceil(south + SLACK)) + 1, whole.rows) - first_row;
    const int before_end = std::min(m_grid.columns, whole.columns - first);
    return readColumns(raster, 0, before_end, failure) &&
           readColumns(raster, before_end, m_grid.columns - before_end, failure);
}

bool GeoidGrid::readColumns(const HeightRaster& raster, int column, int count,
                            std::string& failure) {
    const auto width = static_cast<std::size_t>(m_grid.columns);
    const auto rows = static_cast<std::size_t>(m_grid.rows);
    m_heights.resize(width * rows);
    TerrainGrid part = m_grid;
    part.west += column * m_grid.spacing_longitude;
    part.columns = count;
    std::vector<float> heights(static_cast<std::size_t>(count) * rows,
                               std::numeric_limits<float>::quiet_NaN());
    if (count > 0 && !raster.read(part, heights, failure)) return false;
    for (std::size_t i = 0; i < heights.size(); i++)
        m_heights[i / static_cast<std::size_t>(count) * width + static_cast<std::size_t>(column) +
                  i % static_cast<std::size_t>(count)] = heights[i];
    return true;
}

void GeoidGrid::lower(const TerrainGrid& grid, std::span<float> heights) const {
    const double along_u = grid.spacing_longitude / m_grid.spacing_longitude;
    const double along_v = grid.spacing_latitude / m_grid.spacing_latitude;
    const double column = m_grid.getColumn(grid.west), row = m_grid.getRow(grid.north);
    float* height = heights.data();
    for (int j = 0; j < grid.rows; j++)
        for (int i = 0; i < grid.columns; i++, height++)
            *height =
                static_cast<float>(*height - getHeight(column + i * along_u, row + j * along_v));
}

double GeoidGrid::getHeight(double column, double row) const {
    const int i = std::clamp(static_cast<int>(column), 0, m_grid.columns - 2);
    const int j = std::clamp(static_cast<int>(row), 0, m_grid.rows - 2);
    const float* north = m_heights.data() + static_cast<std::ptrdiff_t>(j) * m_grid.columns + i;
    const float* south = north + m_grid.columns;
    const double u = column - i, v = row - j;
    return std::lerp(std::lerp(double{north[0]}, double{north[1]}, u),
                     std::lerp(double{south[0]}, double{south[1]}, u), v);
}

} // namespace ig
