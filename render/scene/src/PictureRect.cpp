// SPDX-License-Identifier: MIT
#include "render/scene/PictureRect.h"

#include <algorithm>
#include <cmath>

namespace ig {

namespace {

constexpr float NEAREST = 0.1f; ///< m: before it, a sphere may cover anything

/// Holds nothing, wherever that is.
PictureRect none() { return {{1e9f, 1e9f}, {-1e9f, -1e9f}}; }

float area(const PictureRect& rect) {
    return (rect.high.x - rect.low.x) * (rect.high.y - rect.low.y);
}

} // namespace

PictureRect PictureRect::of(const FrameView& view, const vec3& center, float radius) {
    if (view.everything) return whole();
    const auto& p = view.projection.columns;
    const vec3 at = view.view * center; // in the eye's axes
    const vec2 depth{-at.z - radius, -at.z + radius};
    if (!view.orthographic) {
        if (depth.y < NEAREST) return {};
        if (depth.x < NEAREST) return whole();
    }
    PictureRect rect = none();
    for (const float d : {depth.x, depth.y})
        for (const float side : {-radius, radius}) {
            const float w = p[3].w - p[2].w * d;
            const vec2 place{(p[0].x * (at.x + side) - p[2].x * d + p[3].x) / w,
                             (p[1].y * (at.y + side) - p[2].y * d + p[3].y) / w};
            rect.low = {std::min(rect.low.x, place.x), std::min(rect.low.y, place.y)};
            rect.high = {std::max(rect.high.x, place.x), std::max(rect.high.y, place.y)};
        }
    rect.cut(whole());
    return rect;
}

/// By its edges, as far as they lie before the eye.
PictureRect PictureRect::ofBox(const FrameView& view, const vec3& center, const vec3& half) {
    if (view.everything) return whole();
    vec3 corners[8]; // in the eye's axes
    for (int i = 0; i < 8; i++)
        corners[i] =
            view.view * (center + vec3((i & 1) ? half.x : -half.x, (i & 2) ? half.y : -half.y,
                                       (i & 4) ? half.z : -half.z));
    const auto& p = view.projection.columns;
    PictureRect rect = none();
    const auto add = [&](const vec3& at) {
        const float w = p[3].w + p[2].w * at.z;
        const vec2 place{(p[0].x * at.x + p[2].x * at.z + p[3].x) / w,
                         (p[1].y * at.y + p[2].y * at.z + p[3].y) / w};
        rect.low = {std::min(rect.low.x, place.x), std::min(rect.low.y, place.y)};
        rect.high = {std::max(rect.high.x, place.x), std::max(rect.high.y, place.y)};
    };
    const auto isBehind = [&](const vec3& at) { return !view.orthographic && -at.z < NEAREST; };
    for (int i = 0; i < 8; i++) {
        if (!isBehind(corners[i])) add(corners[i]);
        for (const int bit : {1, 2, 4}) {
            const vec3 &a = corners[i], &b = corners[i | bit];
            if (isBehind(a) != isBehind(b)) add(a + (b - a) * ((-NEAREST - a.z) / (b.z - a.z)));
        }
    }
    rect.cut(whole());
    return rect;
}

PictureRect PictureRect::above(const FrameView& view, float dip) {
    if (view.everything || view.orthographic) return whole();
    const auto& p = view.projection.columns;
    const vec3 up = view.view.columns[2].xyz(); // in the eye's axes
    constexpr vec2 CORNERS[] = {{-1, -1}, {1, -1}, {1, 1}, {-1, 1}};
    float rises[4], longest = 0; // of lines of sight to unit depth
    for (int i = 0; i < 4; i++) {
        const vec3 ray{(CORNERS[i].x + p[2].x) / p[0].x, (CORNERS[i].y + p[2].y) / p[1].y, -1};
        longest = std::max(longest, length(ray));
        rises[i] = dot(ray, up);
    }
    PictureRect rect;
    const auto add = [&rect](const vec2& place) {
        rect.low = {std::min(rect.low.x, place.x), std::min(rect.low.y, place.y)};
        rect.high = {std::max(rect.high.x, place.x), std::max(rect.high.y, place.y)};
    };
    for (int i = 0; i < 4; i++) {
        const int next = (i + 1) % 4;
        const float here = rises[i] + dip * longest, there = rises[next] + dip * longest;
        if (here >= 0) add(CORNERS[i]);
        if ((here >= 0) == (there >= 0)) continue;
        const float share = here / (here - there);
        add({std::lerp(CORNERS[i].x, CORNERS[next].x, share),
             std::lerp(CORNERS[i].y, CORNERS[next].y, share)});
    }
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

void PictureParts::add(PictureRect rect) {
    constexpr float NOTHING = 0.05f; // of the picture's area, 4: less than one more draw costs
    if (rect.isEmpty()) return;
    for (std::size_t i = 0; i < m_rects.size();) {
        PictureRect both = m_rects[i];
        both.include(rect);
        if (area(both) > area(m_rects[i]) + area(rect) + NOTHING) {
            i++;
            continue;
        }
        rect = both; // which may now hold what it didn't
        m_rects[i] = m_rects.back();
        m_rects.pop_back();
        i = 0;
    }
    m_rects.push_back(rect);
}

} // namespace ig
