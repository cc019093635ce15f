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

/// Clouds that repeat without seam, over CLOUD_PERIOD: red how thick they are, its values evenly
/// spread; green the round heaps that fray their edges, to be laid on CLOUD_HEAPS times as small,
/// 0.5 in the mean; blue and alpha the rise of red along u and v over CLOUD_RISE, halved, 0.5 being
/// level.
Pattern makeCloudPattern();

/// A sheet of 4 × 4 shapes for particles: density, and how much light the place gets from its own
/// cloud. Rows from the bottom: two of puffs, one of flames, one of drops.
Pattern makePuffPattern();

/// Drops of all sizes scattered without seam: red and green tilt of the surface along u and v,
/// halved, 0.5 being level; blue height, 1 in a drop's middle and 0 at its edge and between; alpha
/// the drop's own number, 0 to 1.
Pattern makeDropPattern();

} // namespace ig
