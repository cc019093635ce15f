// SPDX-License-Identifier: MIT
#pragma once

#include <chrono>

namespace program {

/// Seconds on the clock that never jumps; all processes of the machine share it.
inline double steadyNow() {
    return std::chrono::duration<double>(std::chrono::steady_clock::now().time_since_epoch())
        .count();
}

} // namespace program
