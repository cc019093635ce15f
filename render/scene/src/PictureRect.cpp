// SPDX-License-Identifier: MIT
#include "render/scene/PictureRect.h"

#include <algorithm>

namespace ig {

PictureRect PictureRect::of(const FrameView& view, const vec3& center, float radius) {
    constexpr float NEAREST = 0.1f; // m: before it, a sphere may cover anything
    if (view.everything) return whole();
    const auto& p = view.projection.columns;
    const vec3 at = view.view * center; // in the eye's axes
    const vec2 depth{-at.z - radius, -at.z + radius};
    if (!view.orthographic) {
        if (depth.y < NEAREST) return {};
        if (depth.x < NEAREST) return whole();
    }
    PictureRect rect;
    for (const float d : {depth.x, depth.y})
        for (const float side : {-radius, radius}) {
            const float w = p[3].w - p[2].w * d;
            const vec2 place{(p[0].x * (at.x + side) - p[2].x * d + p[3].x) / w,
                             (p[1].y * (at.y + side) - p[2].y * d + p[3].y) / w};
            rect.low = {std::min(rect.low.x, place.x), std::min(rect.low.y, place.y)};
            rect.high = {std::max(rect.high.x, place.x), std::max(rect.high.y, place.y)};
        }
    rect.low = {std::max(rect.low.x, -1.0f), std::max(rect.low.y, -1.0f)};
    rect.high = {std::min(rect.high.x, 1.0f), std::min(rect.high.y, 1.0f)};
    return rect;
}

void PictureRect::include(const PictureRect& other) {
    if (other.isEmpty()) return;
    low = {std::min(low.x, other.low.x), std::min(low.y, other.low.y)};
    high = {std::max(high.x, other.high.x), std::max(high.y, other.high.y)};
}

void PictureRect::cut(const PictureRect& other) {
    low = {std::max(low.x, other.low.x), std::max(low.y, other.low.y)};
    high = {std::min(high.x, other.high.x), std::min(high.y, other.high.y)};
}

} // namespace ig
