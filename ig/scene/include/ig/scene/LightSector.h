// SPDX-License-Identifier: MIT
#pragma once

#include "ig/math/vec.h"

#include <optional>
#include <vector>

namespace ig {

/// Directions from which a lamp is seen in a colour and brightness of their own: a side light's
/// 112.5 degrees, or the red, green and amber of a glide path indicator. Angles are degrees in the
/// lamp's own frame.
struct LightSector {
    /// Over how many degrees it begins and ends, half of them on either side: where two adjoin, one
    /// goes over into the other.
    static constexpr double EDGE = 0.05;

    /// From and, clockwise, to: 0 is the lamp's Y (ahead), 90 its X. At most 360 apart.
    vec2 azimuth{-180, 180};
    vec2 elevation{-90, 90};   ///< above its X-Y plane
    std::optional<vec3> color; ///< linear; without, the lamp's own
    float brightness = 1;      ///< on top of the lamp's

    /// How much of it goes in a direction (of any length, in the lamp's frame), 0 to 1.
    float getShare(const dvec3& direction) const;
};

/// In what light a lamp of a `color` is seen from a direction in its frame: the sum of what its
/// sectors give there, black in none of them, its own colour when it has none.
vec3 mixSectors(const std::vector<LightSector>& sectors, const dvec3& direction, const vec3& color);

} // namespace ig
