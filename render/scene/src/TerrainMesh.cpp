// SPDX-License-Identifier: MIT
#include "render/scene/TerrainMesh.h"

#include "ig/math/EllipsoidModel.h"
#include "ig/math/quat.h"
#include "render/scene/packNormal.h"

#include <algorithm>
#include <cmath>

namespace ig {

namespace {

constexpr int CELLS = TerrainSquare::CELLS;
constexpr int EDGE = CELLS + 3; ///< vertices along a square with its skirt

dvec3 geodetic(const TerrainGrid& grid, double column, double row, double altitude) {
    return {grid.west + column * grid.spacing_longitude, grid.north - row * grid.spacing_latitude,
            altitude};
}

/// Triangles of EDGE² vertices, as the terrain defines them: each cell is split from its north-east
/// to its south-west corner; those with a corner without data, and cells that
/// `is_left_out` names, are left out.
template <class IsLeftOut>
std::vector<std::uint16_t> triangulate(const std::vector<char>& has_data,
                                       const IsLeftOut& is_left_out) {
    std::vector<std::uint16_t> indices;
    indices.reserve(6 * (EDGE - 1) * (EDGE - 1));
    const auto addTriangle = [&](int a, int b, int c) {
        const auto good = [&has_data](int v) { return has_data[v] != 0; };
        if (!good(a) || !good(b) || !good(c)) return;
        for (const int v : {a, b, c})
            indices.push_back(static_cast<std::uint16_t>(v));
    };
    for (int j = 0; j < EDGE - 1; j++)
        for (int i = 0; i < EDGE - 1; i++) {
            if (is_left_out(i, j)) continue;
            const int nw = j * EDGE + i, ne = nw + 1, sw = nw + EDGE, se = sw + 1;
            addTriangle(nw, sw, ne);
            addTriangle(ne, sw, se);
        }
    return indices;
}

} // namespace

dvec2 getSampleLengths(const TerrainGrid& grid, double row) {
    const double latitude = (grid.north - row * grid.spacing_latitude) * DEG_TO_RAD<double>;
    constexpr double DEGREE = EllipsoidModel::DEGREE;
    return {grid.spacing_longitude * DEGREE * std::max(std::cos(latitude), 0.01),
            grid.spacing_latitude * DEGREE};
}

TerrainMesh::TerrainMesh(const TerrainGrid& grid, const TerrainSquare& square,
                         std::span<const TerrainGrid::Cells> replaced) {
    const EllipsoidModel earth;
    const int step = square.step;
    const double half = square.getEdge() / 2.0;
    const dvec2 metres = getSampleLengths(grid, square.row + half);
    frame = earth.getWGSTransform(
        earth.toWorld(geodetic(grid, square.column + half, square.row + half, 0)));
    const dmat4 to_square = inverse(frame);
    const auto height = [&grid, step](int column, int row) {
        return grid.getHeight(std::clamp(column, 0, grid.columns - 1),
                              std::clamp(row, 0, grid.rows - 1), step);
    };
    std::vector<char> has_data;
    vertices.reserve(EDGE * EDGE);
    has_data.reserve(EDGE * EDGE);
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
            vertices.push_back({vec3(to_square * world), packNormal(normal), known});
        }
    indices = triangulate(has_data, [&](int i, int j) {
        // A skirt hangs from the cell beside it.
        const int column = square.column + std::clamp(i - 1, 0, CELLS - 1);
        const int row = square.row + std::clamp(j - 1, 0, CELLS - 1);
        return std::ranges::any_of(replaced, [=](const TerrainGrid::Cells& cells) {
            return column >= cells.column && column < cells.column + cells.columns &&
                   row >= cells.row && row < cells.row + cells.rows;
        });
    });
}

} // namespace ig
