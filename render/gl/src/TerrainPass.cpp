// SPDX-License-Identifier: MIT
#include "TerrainPass.h"

#include "ig/math/EllipsoidModel.h"
#include "ig/math/quat.h"
#include "render/scene/ShaderConstants.h"
#include "render/scene/SurfaceLook.h"
#include "render/scene/packNormal.h"

#include <algorithm>
#include <cmath>
#include <cstddef>

namespace ig {

namespace {

constexpr int KEPT = 600;            ///< frames that a chunk outlives its last use
constexpr float CELL_PIXELS = 10;    ///< a cell larger than this in the picture is split
constexpr float GRAIN_PIXEL = 0.06f; ///< m: no grain shows where a pixel covers more (terrain.frag)
constexpr float SEA_BED = -15;       ///< altitude below which the sea hides everything

struct Vertex {
    vec3 position;
    std::uint32_t normal; ///< 10 bits an axis
    float altitude;
};

/// Metres per sample to the east and to the north at a row.
dvec2 spacing(const TerrainGrid& grid, double row) {
    const double latitude = (grid.north - row * grid.spacing_latitude) * DEG_TO_RAD<double>;
    constexpr double DEGREE = EllipsoidModel::DEGREE;
    return {grid.spacing_longitude * DEGREE * std::max(std::cos(latitude), 0.01),
            grid.spacing_latitude * DEGREE};
}

dvec3 geodetic(const TerrainGrid& grid, double column, double row, double altitude) {
    return {grid.west + column * grid.spacing_longitude, grid.north - row * grid.spacing_latitude,
            altitude};
}

/// Triangles of a chunk of `edge`² vertices, as the terrain defines them: each cell is split from
/// its north-east to its south-west corner; those with a corner without data are left out, and
/// cells that are `replaced`.
template <class Replaced>
std::vector<std::uint16_t> triangulate(const std::vector<char>& has_data, int edge,
                                       const Replaced& replaced) {
    std::vector<std::uint16_t> indices;
    const auto addTriangle = [&](int a, int b, int c) {
        const auto good = [&has_data](int v) { return has_data[v] != 0; };
        if (!good(a) || !good(b) || !good(c)) return;
        for (const int v : {a, b, c})
            indices.push_back(static_cast<std::uint16_t>(v));
    };
    for (int j = 0; j < edge - 1; j++)
        for (int i = 0; i < edge - 1; i++) {
            if (replaced(i, j)) continue;
            const int nw = j * edge + i, ne = nw + 1, sw = nw + edge, se = sw + 1;
            addTriangle(nw, sw, ne);
            addTriangle(ne, sw, se);
        }
    return indices;
}

} // namespace

void TerrainPass::init() {
    m_program.start("cloudshade.glsl terrain.vert", "shadow.glsl terrain.frag");
    m_lit_program.start("cloudshade.glsl terrain.vert", "shadow.glsl lights.glsl terrain.frag",
                        "LIGHTS HILLS");
    m_hilly_program.start("cloudshade.glsl terrain.vert", "shadow.glsl terrain.frag", "HILLS");
    m_far_program.start("cloudshade.glsl terrain.vert", "shadow.glsl terrain.frag", "FAR");
}

std::uint64_t TerrainPass::key(const Square& square) {
    return static_cast<std::uint64_t>(square.step) << 48 |
           static_cast<std::uint64_t>(square.row) << 24 | square.column;
}

void TerrainPass::adopt(TerrainGrids grids) {
    if (std::ranges::equal(grids, m_layers, {}, {}, &Layer::grid)) return;
    m_layers.clear();
    for (const TerrainGrid& grid : grids)
        m_layers.emplace_back().grid = grid;
}

dvec2 TerrainPass::placeInNoise(const TerrainGrid& grid, double longitude, double latitude) {
    const double column = grid.getColumn(longitude), row = grid.getRow(latitude);
    const dvec2 metres = spacing(grid, row);
    return {std::fmod(column * metres.x, double{NOISE_PERIOD}),
            std::fmod((grid.rows - row) * metres.y, double{NOISE_PERIOD})};
}

vec3 TerrainPass::readTurf(const Material* material) {
    return readValue(material, "diffuse_color", {0.16f, 0.21f, 0.07f, 1}).xyz();
}

void TerrainPass::purge() {
    if (m_frame % KEPT) return;
    for (Layer& layer : m_layers)
        std::erase_if(layer.chunks, [this](const auto& entry) {
            return entry.second.last_drawn < m_frame - KEPT;
        });
}

void TerrainPass::draw(const FrameView& view, const ObjectTerrain& terrain, const LightList& lights,
                       bool hills) {
    m_frame++;
    if (terrain.getGrids().empty()) return;
    adopt(terrain.getGrids());
    purge();
    m_material = terrain.getSurfaceMaterial(0);
    m_lights = &lights;
    m_hills = hills;
    m_used = nullptr;
    glEnable(GL_CULL_FACE);
    for (Layer& layer : m_layers) // the coarser one tells whether a finer one is shown
        layer.is_shown = isShown(view, layer);
    for (Layer& layer : m_layers)
        if (layer.is_shown) visit(view, layer, getRoot(layer.grid));
    glDisable(GL_CULL_FACE);
}

TerrainPass::Square TerrainPass::getRoot(const TerrainGrid& grid) {
    Square root{0, 0, 1};
    while (CELLS * root.step < std::max(grid.columns, grid.rows) - 1)
        root.step *= 2;
    return root;
}

/// A finer grid is shown when the parent's cells that it replaces would be too large.
bool TerrainPass::isShown(const FrameView& view, Layer& layer) {
    const TerrainGrid& grid = layer.grid;
    if (grid.parent < 0) return true;
    const Layer& parent = m_layers[static_cast<std::size_t>(grid.parent)];
    if (!parent.is_shown) return false;
    const Extent extent = measure(layer, getRoot(grid));
    if (extent.highest < extent.lowest) return true; // nothing but holes
    const double column = (grid.columns - 1) / 2.0, row = (grid.rows - 1) / 2.0;
    const double middle = (double{extent.lowest} + double{extent.highest}) / 2;
    const dvec3 center = EllipsoidModel().toWorld(geodetic(grid, column, row, middle));
    const dvec2 metres = spacing(grid, row);
    const double radius =
        std::hypot(metres.x * column, metres.y * row, double{extent.highest} - middle);
    const double distance =
        view.orthographic ? 1 : std::max(length(dvec3(view.toFrame(center))) - radius, 1.0);
    return spacing(parent.grid, 0).y > double{CELL_PIXELS * view.pixel_angle} * distance;
}

/// The bits that tell which grids are meant run out at 64, with which the last stands for more.
TerrainPass::Cover TerrainPass::getCover(const Layer& layer, const Square& square) const {
    Cover cover;
    const int size = CELLS * square.step;
    const int east = std::min(square.column + size, layer.grid.columns - 1);
    const int south = std::min(square.row + size, layer.grid.rows - 1);
    for (std::size_t i = 1; i < m_layers.size(); i++) {
        const Layer& finer = m_layers[i];
        if (!finer.is_shown || &m_layers[static_cast<std::size_t>(finer.grid.parent)] != &layer)
            continue;
        const auto [column, row, columns, rows] = finer.grid.within;
        if (east <= column || column + columns <= square.column || south <= row ||
            row + rows <= square.row)
            continue;
        cover.cut |= std::uint64_t{1} << std::min<std::size_t>(i, 63);
        cover.is_whole = cover.is_whole || (square.column >= column && east <= column + columns &&
                                            square.row >= row && south <= row + rows);
    }
    return cover;
}

/// Whether one of these finer grids is shown in place of a cell.
bool TerrainPass::isReplaced(std::uint64_t cut, int column, int row) const {
    for (std::size_t i = 1; i < m_layers.size() && cut; i++) {
        if (!(cut >> std::min<std::size_t>(i, 63) & 1) || !m_layers[i].is_shown) continue;
        const TerrainGrid::Cells& cells = m_layers[i].grid.within;
        if (column >= cells.column && column < cells.column + cells.columns && row >= cells.row &&
            row < cells.row + cells.rows)
            return true;
    }
    return false;
}

void TerrainPass::use(gl::Program& program) {
    program.use();
    m_used = &program;
    program.set("uTurf", readTurf(m_material));
    program.set("uShore", readValue(m_material, "shore_color", {0.62f, 0.54f, 0.38f, 1}).xyz());
    program.set("uRock", readValue(m_material, "rock_color", {0.1f, 0.09f, 0.085f, 1}).xyz());
    program.set("uGround",
                vec4(readSlider(m_material, "shore_height", SHORE_HEIGHT),
                     readSlider(m_material, "rock_slope", 0.7f),
                     readSlider(m_material, "wetness", 0), readSlider(m_material, "ice", 0)));
}

/// Lowest and highest sample of a square; kept.
TerrainPass::Extent TerrainPass::measure(Layer& layer, const Square& square) {
    const auto [entry, is_new] = layer.extents.try_emplace(key(square), Extent{1, 0});
    if (!is_new) return entry->second;
    const TerrainGrid& grid = layer.grid;
    Extent extent{1e9f, -1e9f};
    const int size = CELLS * square.step;
    if (square.step > 1) { // from the four below
        const int half = size / 2;
        for (const int dr : {0, half})
            for (const int dc : {0, half}) {
                const Square child{square.column + dc, square.row + dr, square.step / 2};
                if (child.column >= grid.columns - 1 || child.row >= grid.rows - 1) continue;
                const Extent part = measure(layer, child);
                extent = {std::min(extent.lowest, part.lowest),
                          std::max(extent.highest, part.highest)};
            }
    } else {
        for (int r = square.row; r <= std::min(square.row + size, grid.rows - 1); r++)
            for (int c = square.column; c <= std::min(square.column + size, grid.columns - 1);
                 c++) {
                const float height = grid.getHeight(c, r);
                if (TerrainGrid::isHole(height)) continue;
                extent = {std::min(extent.lowest, height), std::max(extent.highest, height)};
            }
    }
    return layer.extents[key(square)] = extent;
}

void TerrainPass::visit(const FrameView& view, Layer& layer, const Square& square) {
    const TerrainGrid& grid = layer.grid;
    if (square.column >= grid.columns - 1 || square.row >= grid.rows - 1) return;
    const Extent extent = measure(layer, square);
    if (extent.highest < SEA_BED) return;
    const double size = CELLS * square.step;
    const double columns = std::min(size, grid.columns - 1.0 - square.column);
    const double rows = std::min(size, grid.rows - 1.0 - square.row);
    const double column = square.column + columns / 2, row = square.row + rows / 2;
    const double low = extent.lowest, high = extent.highest;
    const dvec3 middle = EllipsoidModel().toWorld(geodetic(grid, column, row, (low + high) / 2));
    const dvec2 metres = spacing(grid, row);
    const vec3 center(view.toFrame(middle));
    const auto radius =
        static_cast<float>(std::hypot(metres.x * columns, metres.y * rows) / 2 + (high - low) / 2 +
                           1 + metres.y * metres.y * size * size / 5e7); // the earth bends away
    if (!view.sees(center, radius)) return;
    const Cover cover = getCover(layer, square);
    if (cover.is_whole) return;
    const float distance = view.orthographic ? 1 : std::max(length(center) - radius, 1.0f);
    const auto cell = static_cast<float>(metres.y * square.step);
    if (square.step > 1 && (cover.cut || cell > CELL_PIXELS * view.pixel_angle * distance)) {
        const int half = CELLS * square.step / 2;
        for (const int dr : {0, half})
            for (const int dc : {0, half})
                visit(view, layer, {square.column + dc, square.row + dr, square.step / 2});
        return;
    }
    if (view.everything)
        for (gl::Program* program : {&m_program, &m_hilly_program, &m_far_program})
            drawChunk(view, layer, square, *program);
    const bool is_far = !view.orthographic && distance * view.pixel_angle > GRAIN_PIXEL;
    drawChunk(view, layer, square,
              m_lights->reach(center, radius) ? m_lit_program
              : is_far                        ? m_far_program
              : m_hills                       ? m_hilly_program
                                              : m_program);
}

void TerrainPass::drawChunk(const FrameView& view, Layer& layer, const Square& square,
                            gl::Program& program) {
    if (&program != m_used) use(program);
    const std::uint64_t cut = getCover(layer, square).cut;
    constexpr std::uint64_t CUT = std::uint64_t{1}
                                  << 63; // whole and cut ones are kept side by side
    Chunk& chunk = layer.chunks[key(square) | (cut ? CUT : 0)];
    if (!chunk.vertex_array || chunk.cut != cut) {
        chunk.cut = cut;
        fill(chunk, layer.grid, square);
    }
    chunk.last_drawn = m_frame;
    const mat4 transform = view.toFrame(chunk.frame);
    const auto& c = transform.columns;
    program.set("uRow0", vec4(c[0].x, c[1].x, c[2].x, c[3].x));
    program.set("uRow1", vec4(c[0].y, c[1].y, c[2].y, c[3].y));
    program.set("uRow2", vec4(c[0].z, c[1].z, c[2].z, c[3].z));
    program.set("uPatch",
                vec2{static_cast<float>(chunk.patch.x), static_cast<float>(chunk.patch.y)});
    glBindVertexArray(chunk.vertex_array.getId());
    glDrawElements(GL_TRIANGLES, chunk.num_indices, GL_UNSIGNED_SHORT, nullptr);
}

/// Vertices of (CELLS + 1)² samples and a ring around them, the skirt: the samples of the border
/// once more, lowered.
void TerrainPass::fill(Chunk& chunk, const TerrainGrid& grid, const Square& square) {
    const EllipsoidModel earth;
    constexpr int EDGE = CELLS + 3;
    const int step = square.step;
    const double half = CELLS * step / 2.0;
    const dvec2 metres = spacing(grid, square.row + half);
    chunk.frame = earth.getWGSTransform(
        earth.toWorld(geodetic(grid, square.column + half, square.row + half, 0)));
    const dvec3 middle = geodetic(grid, square.column + half, square.row + half, 0);
    chunk.patch = placeInNoise(m_layers.front().grid, middle.x, middle.y);
    const dmat4 to_chunk = inverse(chunk.frame);
    const auto height = [&grid](int column, int row) {
        return grid.getHeight(std::clamp(column, 0, grid.columns - 1),
                              std::clamp(row, 0, grid.rows - 1));
    };
    std::vector<Vertex> vertices;
    std::vector<char> has_data;
    for (int j = 0; j < EDGE; j++)
        for (int i = 0; i < EDGE; i++) {
            const int ci = std::clamp(i - 1, 0, CELLS), cj = std::clamp(j - 1, 0, CELLS);
            const int column = std::min(square.column + ci * step, grid.columns - 1);
            const int row = std::min(square.row + cj * step, grid.rows - 1);
            const float altitude = height(column, row);
            has_data.push_back(!TerrainGrid::isHole(altitude));
            const float known = has_data.back() ? altitude : 0;
            const bool skirt = ci != i - 1 || cj != j - 1;
            const double lowered = skirt ? metres.y * step * 0.5 : 0;
            const auto slope = [&](float a, float b, double distance) {
                return std::isfinite(a - b) ? (a - b) / static_cast<float>(2 * step * distance)
                                            : 0.0f;
            };
            const vec3 normal = normalize(
                vec3(slope(height(column - step, row), height(column + step, row), metres.x),
                     slope(height(column, row + step), height(column, row - step), metres.y), 1));
            const dvec3 world = earth.toWorld(geodetic(grid, column, row, known - lowered));
            vertices.push_back({vec3(to_chunk * world), packNormal(normal), known});
        }
    const std::vector<std::uint16_t> indices = triangulate(has_data, EDGE, [&](int i, int j) {
        // A skirt hangs from the cell beside it.
        const int ci = std::clamp(i - 1, 0, CELLS - 1), cj = std::clamp(j - 1, 0, CELLS - 1);
        return isReplaced(chunk.cut, square.column + ci, square.row + cj);
    });
    chunk.num_indices = static_cast<int>(indices.size());
    gl::makeVertexArray(chunk.vertex_array, chunk.vertices, std::as_bytes(std::span(vertices)),
                        chunk.indices, std::as_bytes(std::span(indices)));
    constexpr GLsizei STRIDE = sizeof(Vertex);
    glVertexAttribPointer(0, 3, GL_FLOAT, GL_FALSE, STRIDE, nullptr);
    glVertexAttribPointer(1, 4, GL_INT_2_10_10_10_REV, GL_TRUE, STRIDE,
                          reinterpret_cast<const void*>(offsetof(Vertex, normal)));
    glVertexAttribPointer(2, 1, GL_FLOAT, GL_FALSE, STRIDE,
                          reinterpret_cast<const void*>(offsetof(Vertex, altitude)));
    for (GLuint i = 0; i < 3; i++)
        glEnableVertexAttribArray(i);
}

} // namespace ig
