// SPDX-License-Identifier: MIT
#pragma once

#include "ig/math/mat.h"
#include "plugins/terrain/TerrainGrid.h"

#include <cstdint>
#include <span>
#include <vector>

namespace ig {

/// A square of a terrain's grid that is drawn at one go: 32 × 32 cells of every `step`th sample, of
/// every one with 1; there the triangles are the very ones that queries meet. Steps are powers of
/// two, of which, times 32, column and row are multiples.
struct TerrainSquare {
    static constexpr int CELLS = 32;
    int column, row, step;

    int getEdge() const { return CELLS * step; } ///< samples
    std::uint64_t getKey() const {
        return static_cast<std::uint64_t>(step) << 48 | static_cast<std::uint64_t>(row) << 24 |
               static_cast<std::uint64_t>(column);
    }
    /// One of the four of half the step, 0 to 3.
    TerrainSquare getPart(int i) const {
        const int half = getEdge() / 2;
        return {column + (i & 1) * half, row + (i >> 1) * half, step / 2};
    }
};

/// Vertices and triangles of a square: (32 + 1)² samples and a ring around them, the skirt, which
/// is the samples of the border once more, lowered: it hides the gaps between neighbours of
/// different steps. The vertices are floats in the frame of the square's own middle, so that they
/// are exact wherever it lies.
struct TerrainMesh {
    struct Vertex {
        vec3 position;
        std::uint32_t normal; ///< 10 bits an axis
        float altitude;
    };
    dmat4 frame; ///< of the square's middle, world
    std::vector<Vertex> vertices;
    std::vector<std::uint16_t> indices;

    TerrainMesh() = default;
    /// Without cells that are `replaced`, which are of the grid; with some, the step is 1.
    TerrainMesh(const TerrainGrid& grid, const TerrainSquare& square,
                std::span<const TerrainGrid::Cells> replaced = {});
};

/// Metres per sample of a grid to the east and to the north, at a row.
dvec2 getSampleLengths(const TerrainGrid& grid, double row);

} // namespace ig
