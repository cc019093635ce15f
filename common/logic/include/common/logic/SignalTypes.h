// SPDX-License-Identifier: MIT
#pragma once

#include "ig/base/jString.h"
#include "ig/math/mat.h"

#include <cstdint>

/// What the host commands the simulation to do.
enum CMD_TYPE { CMD_FREEZE = 1, CMD_RUN = 2, CMD_STOP = 3, CMD_EXIT = 4 };

/// The look of the sky.
enum WEATHER_TYPE { WEATHER_CLEAR = 0, WEATHER_OVERCAST = 1, WEATHER_STORM = 2, WEATHER_FOG = 3 };

/// How heavy rain, snow or hail is.
enum WEATHER_DETAIL { DETAIL_NONE = 0, DETAIL_LIGHT = 1, DETAIL_MEDIUM = 2, DETAIL_HEAVY = 3 };

/// A cloud layer. Valid only during the emission: a listener copies what it keeps.
struct CloudInfo {
    bool enable;
    std::int32_t param1;
    std::int32_t param2;
    float base;      ///< altitude, metres
    float thickness; ///< metres
    float ratio;     ///< cover, 1 is overcast
};

namespace SynCoder {
/// A one-shot effect that the logic has started.
struct CMDPlaySpeOnceInfo {
    ig::jString path;    ///< the effect's file
    float duration;      ///< seconds
    ig::dmat4 transform; ///< where, in the world
};
} // namespace SynCoder
