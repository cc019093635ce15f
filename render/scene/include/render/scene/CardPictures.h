// SPDX-License-Identifier: MIT
#pragma once

#include "plugins/terrain/Scenery.h"

#include <cstdint>
#include <span>
#include <vector>

namespace ig {

/// Flat pictures of trees, made of their models: seen from the side, and from three heights up to
/// straight above.
struct CardPictures {
    static constexpr int EDGE = 64;  ///< texels
    static constexpr int TILES = 4;  ///< of a kind: seen from 0, 30, 60 and 90 degrees above
    static constexpr int LEVELS = 5; ///< of detail: EDGE, half of it, ...

    int kinds = 0;
    /// Level by level; in each the layers, rows from below. Colour (linear, its root) times cover,
    /// and cover; 0 where nothing is.
    std::vector<std::vector<std::uint8_t>> levels;

    /// A square picture shows the sphere around the model. Surfaces have their materials' colours.
    static CardPictures make(std::span<const SceneryKind> kinds);
};

} // namespace ig
