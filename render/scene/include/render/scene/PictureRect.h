// SPDX-License-Identifier: MIT
#pragma once

#include "render/scene/FrameView.h"

namespace ig {

/// A part of the picture, −1 to 1 along both axes; empty at first.
struct PictureRect {
    vec2 low{1, 1}, high{-1, -1};

    static PictureRect whole() { return {{-1, -1}, {1, 1}}; }
    /// The least that holds what is seen of a sphere (E), or a little more.
    static PictureRect of(const FrameView& view, const vec3& center, float radius);

    bool isEmpty() const { return low.x >= high.x || low.y >= high.y; }
    /// Grows to hold another one too.
    void include(const PictureRect& other);
    /// Shrinks to what another one holds too.
    void cut(const PictureRect& other);
};

} // namespace ig
