// SPDX-License-Identifier: MIT
#pragma once

// The cables of sonar and winch. What the operator sees of a length is a multiple of the rope
// body's.

#include "nodes.h"

#include <algorithm>

inline constexpr float SHOWN_PER_LENGTH = 1.5f; ///< shown length over the rope body's value
inline constexpr float CABLE_SPEED = 2;         ///< m/s, shown, of the operator's buttons
inline constexpr float SHORTEST_CABLE = 2, LONGEST_CABLE = 16; ///< m, shown, that the buttons reach

/// Lowers what hangs on a cable by `change` metres of shown length, or raises it. Nothing for a
/// node that is no rope.
inline void payOut(ig::Node* node, float change) {
    if (ig::BodyRope* rope = ropeOf(node))
        rope->setLength(std::clamp(SHOWN_PER_LENGTH * rope->getLength() + change, SHORTEST_CABLE,
                                   LONGEST_CABLE) /
                        SHOWN_PER_LENGTH);
}
