// SPDX-License-Identifier: MIT
#include "GroundImages.h"

#include "ig/math/EllipsoidModel.h"
#include "plugins/terrain/ObjectTerrain.h"

#include <algorithm>

namespace ig {

void GroundImages::make() {
    m_layers.create();
    glBindTexture(GL_TEXTURE_2D_ARRAY, m_layers.getId());
    for (int level = 0; level < ImageryPager::LEVELS; level++)
        glTexImage3D(GL_TEXTURE_2D_ARRAY, level, GL_SRGB8_ALPHA8, Imagery::EDGE >> level,
                     Imagery::EDGE >> level, ImageryPager::LAYERS, 0, GL_RGBA, GL_UNSIGNED_BYTE,
                     nullptr);
    glTexParameteri(GL_TEXTURE_2D_ARRAY, GL_TEXTURE_MAX_LEVEL, ImageryPager::LEVELS - 1);
    glTexParameteri(GL_TEXTURE_2D_ARRAY, GL_TEXTURE_WRAP_S, GL_CLAMP_TO_EDGE);
    glTexParameteri(GL_TEXTURE_2D_ARRAY, GL_TEXTURE_WRAP_T, GL_CLAMP_TO_EDGE);
    glTexParameteri(GL_TEXTURE_2D_ARRAY, GL_TEXTURE_MIN_FILTER, GL_LINEAR_MIPMAP_LINEAR);
}

void GroundImages::upload(const ImageryPager::Ready& tile) const {
    glPixelStorei(GL_UNPACK_ALIGNMENT, 1);
    for (int level = 0; level < ImageryPager::LEVELS; level++)
        glTexSubImage3D(GL_TEXTURE_2D_ARRAY, level, 0, 0, tile.layer, Imagery::EDGE >> level,
                        Imagery::EDGE >> level, 1, GL_RGBA, GL_UNSIGNED_BYTE,
                        tile.levels[static_cast<std::size_t>(level)].data());
}

void GroundImages::prepare(const FrameView& view, const ObjectTerrain& terrain) {
    m_layout = terrain.getImagery()->getLayout();
    const TerrainGrid& grid = terrain.getGrids().front();
    m_pager.want(view, terrain,
                 ImageryPager::findFinest(m_layout, CHUNK_CELLS * grid.spacing_longitude,
                                          CHUNK_CELLS * grid.spacing_latitude));
    glActiveTexture(GL_TEXTURE0 + UNIT);
    if (!m_layers) make();
    glBindTexture(GL_TEXTURE_2D_ARRAY, m_layers.getId());
    while (const auto tile = m_pager.take()) {
        upload(*tile);
        if (view.hurried) break;
    }
}

void GroundImages::set(gl::Program& program, const TerrainGrid& grid, int column, int row,
                       int step) const {
    const int last_column = std::min(column + CHUNK_CELLS * step, grid.columns - 1);
    const int last_row = std::min(row + CHUNK_CELLS * step, grid.rows - 1);
    const double west = grid.west + column * grid.spacing_longitude;
    const double north = grid.north - row * grid.spacing_latitude;
    const auto patch =
        m_pager.getPatch(west, north, grid.west + last_column * grid.spacing_longitude,
                         grid.north - last_row * grid.spacing_latitude);
    const double scale = 1 << patch.level;
    const dvec2 from = m_layout.toTiles(patch.level, west, north);
    program.set(
        "uMap",
        vec4(static_cast<float>(from.x - patch.column), static_cast<float>(from.y - patch.row),
             static_cast<float>(step * grid.spacing_longitude / m_layout.tile_width * scale),
             static_cast<float>(step * grid.spacing_latitude / m_layout.tile_height * scale)));
    program.set("uLast", vec2{static_cast<float>(last_column - column) / static_cast<float>(step),
                              static_cast<float>(last_row - row) / static_cast<float>(step)});
    program.set("uCells", patch.cells.data(), static_cast<int>(patch.cells.size()));
    program.set(
        "uPatchSize",
        vec3(static_cast<float>(patch.columns), static_cast<float>(patch.rows),
             static_cast<float>(m_layout.getSpacing(patch.level) * EllipsoidModel::DEGREE)));
}

} // namespace ig
