// SPDX-License-Identifier: MIT
#pragma once

namespace ig {

/// Small functions of the engine.
class jMath {
public:
    /// How much of something is left at `value` when it fades out between `near` and `far`: 1 at or
    /// below `near`, 0 at or above `far`, linear between. With `far` equal to `near` it is a step
    /// that is still 1 at the value itself.
    static float getFadeOut(float value, float far, float near);
    /// A smooth swing 1 → 0 → 1 that starts at time 0 with 1, period 1.6 s. `time` in seconds.
    static float linearToShock(float time);
    /// −1, 0 or 1.
    static float sign(float value) { return value > 0 ? 1.0f : value < 0 ? -1.0f : 0.0f; }
};

/// A random number in [0, 1), the same sequence in every run.
double jRandReal();

} // namespace ig
