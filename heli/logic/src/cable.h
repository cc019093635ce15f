// SPDX-License-Identifier: MIT
#pragma once

#include <algorithm>

namespace cable {

constexpr float DISPLAYED_PER_LENGTH = 1.5f; ///< displayed length over the rope body's value
constexpr float SPEED = 2;                   ///< m/s, displayed, of the operator's buttons
constexpr float MIN = 2, MAX = 16;           ///< m, displayed, that the buttons reach

/// The rope body's length after the operator has paid out `change` metres of displayed length.
inline float payOut(float length, float change) {
    return std::clamp(DISPLAYED_PER_LENGTH * length + change, MIN, MAX) / DISPLAYED_PER_LENGTH;
}

/// The rope body's length for a displayed one.
inline float fromDisplayed(float displayed) { return displayed / DISPLAYED_PER_LENGTH; }

} // namespace cable
