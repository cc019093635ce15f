// SPDX-License-Identifier: MIT
#pragma once

/// A thunderstorm's light at one moment.
struct Lightning {
    float flash = 0;   ///< of the clouds, 0 to 1
    float azimuth = 0; ///< where the bolt stands, degrees clockwise from north, in [0, 360)
    float shape = 0;   ///< of the bolt, 0 to 1; the same as long as it lasts

    /// The same at the same time, in any run: bolts 4 to 12 s apart, each with one or two return
    /// strokes, over within a second.
    static Lightning at(double time);
};
