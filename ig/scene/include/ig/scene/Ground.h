// SPDX-License-Identifier: MIT
#pragma once

#include "ig/math/vec.h"

#include <string_view>

namespace ig {

/// What lies at a place of a surface. The surface's object tells it (`Object::getGroundAt`), by its
/// material where that says so; the world passes it on to the emitters above.
struct Ground {
    /// What emitters work over: `land` is all that isn't water, `any` all. A surface is one of the
    /// others; `hard` is concrete and decks.
    enum class Kind { any, land, water, grass, sand, snow, hard };
    /// The kind of that name in scene files; `any` when there is none.
    static Kind find(std::string_view name);

    Kind kind = Kind::any;
    /// What wind lifts off it: colour (linear), and how thick, 1 being the mist over water.
    vec4 lifted{1, 1, 1, 1};
};

} // namespace ig
