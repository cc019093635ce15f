// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <vector>

namespace ig {

/// A square picture that is computed, rows from the bottom.
struct Pattern {
    int edge;                         ///< texels
    std::vector<std::uint8_t> texels; ///< a byte for each of their channels
};

/// Two noises that repeat without seam, each with evenly spread values: red a lace of cells, green
/// clouds of five octaves; blue and alpha the rise of the clouds along u and v, halved, 0.5 being
/// level.
Pattern makeNoisePattern();

/// A sheet of 4 × 4 shapes for particles: density, and how much light the place gets from its own
/// cloud. Rows from the bottom: two of puffs, one of flames, one of drops.
Pattern makePuffPattern();

} // namespace ig
