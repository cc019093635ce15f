// SPDX-License-Identifier: MIT
#include "RadarLand.h"

#include "ig/math/EllipsoidModel.h"
#include "plugins/terrain/ObjectTerrain.h"
#include "render/scene/shares.h"

#include <algorithm>
#include <cmath>

namespace ig {

namespace {

constexpr int LARGEST = 1024;           ///< texels; finer detail is lost at a radar's resolution
constexpr float SEA_BED = -20;          ///< m; also where there is no data
constexpr float WET = 0.2f, DRY = 1.5f; ///< m: no land below, nothing but land above

} // namespace

void RadarLand::adopt(const ObjectTerrain* terrain) {
    static const TerrainGrid NONE;
    m_terrain = terrain;
    const TerrainGrids grids = terrain ? terrain->getGrids() : TerrainGrids();
    const TerrainGrid& grid = grids.empty() ? NONE : grids.front();
    if (m_texture && grid == m_made_of) return;
    m_made_of = grid;
    fill(grid);
}

void RadarLand::fill(const TerrainGrid& grid) {
    m_step = 1;
    while (std::max(grid.columns, grid.rows) > LARGEST * m_step)
        m_step *= 2;
    m_columns = std::max((grid.columns + m_step - 1) / m_step, 1);
    m_rows = std::max((grid.rows + m_step - 1) / m_step, 1);
    std::vector<std::uint8_t> bytes(4 * static_cast<std::size_t>(m_columns) * m_rows);
    const auto height = [&grid, this](int column, int row) {
        const float h = grid.getHeight(std::clamp(column, 0, grid.columns - 1),
                                       std::clamp(row, 0, grid.rows - 1), m_step);
        return TerrainGrid::isHole(h) ? SEA_BED : std::max(h, SEA_BED);
    };
    std::uint8_t* out = bytes.data();
    for (int row = 0; row < grid.rows; row += m_step) {
        const double latitude = (grid.north - row * grid.spacing_latitude) * DEG_TO_RAD<double>;
        const double east = grid.spacing_longitude * std::max(std::cos(latitude), 0.01);
        const auto across_east = static_cast<float>(2 * m_step * EllipsoidModel::DEGREE * east);
        const auto across_north =
            static_cast<float>(2 * m_step * EllipsoidModel::DEGREE * grid.spacing_latitude);
        for (int column = 0; column < grid.columns; column += m_step, out += 4) {
            const float rise_east = height(column + m_step, row) - height(column - m_step, row);
            const float rise_north = height(column, row - m_step) - height(column, row + m_step);
            out[0] = toByte(0.5f + 0.5f * rise_east / across_east);
            out[1] = toByte(0.5f + 0.5f * rise_north / across_north);
            out[2] = toByte((height(column, row) - WET) / (DRY - WET));
            out[3] = toByte(height(column, row) / std::max(grid.highest, 1.0f));
        }
    }
    gl::TextureFormat format;
    format.filter = GL_LINEAR_MIPMAP_NEAREST; // the level is chosen for the whole picture
    gl::makeTexture(m_texture, m_columns, m_rows, format, bytes.data());
    glGenerateMipmap(GL_TEXTURE_2D);
}

/// Texture coordinates grow linearly with the distance, with second-order terms for the meridians'
/// convergence: 20 m off at most at 30 km.
void RadarLand::bind(gl::Program& program, const FrameView& view, float texel) const {
    gl::bindTexture(gl::UNIT_FIRST_OWN, m_texture);
    const TerrainGrids grids = m_terrain ? m_terrain->getGrids() : TerrainGrids();
    if (grids.empty()) {
        program.set("uRaster", vec4(-1, -1, 0, 0)); // outside, everywhere
        program.set("uDetail", 0.0f);
        return;
    }
    const TerrainGrid* grid = &grids.front();
    program.set("uHighest", std::max(grid->highest, 1.0f));
    const double latitude = view.geodetic.y * DEG_TO_RAD<double>;
    const auto [meridian, prime] = EllipsoidModel().getRadii(view.geodetic.y);
    const double tangent = std::tan(latitude), cosine = std::max(std::cos(latitude), 1e-3);
    program.set("uBend", vec2{static_cast<float>(tangent / meridian),
                              static_cast<float>(tangent / (2 * prime))});
    const double column = 1 / (grid->spacing_longitude * m_step); // texels per degree
    const double row = 1 / (grid->spacing_latitude * m_step);
    const double per_east = column / (prime * cosine * DEG_TO_RAD<double>);
    const double per_north = row / (meridian * DEG_TO_RAD<double>);
    program.set(
        "uRaster",
        vec4(static_cast<float>((grid->getColumn(view.geodetic.x) / m_step + 0.5) / m_columns),
             static_cast<float>((grid->getRow(view.geodetic.y) / m_step + 0.5) / m_rows),
             static_cast<float>(per_east / m_columns), static_cast<float>(-per_north / m_rows)));
    const double level = std::log2(std::max(texel * per_north, 1.0));
    program.set("uDetail", static_cast<float>(std::floor(level)));
}

} // namespace ig
