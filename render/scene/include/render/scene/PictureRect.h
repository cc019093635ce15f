// SPDX-License-Identifier: MIT
#pragma once

#include "render/scene/FrameView.h"

#include <vector>

namespace ig {

/// A part of the picture, −1 to 1 along both axes; empty at first.
struct PictureRect {
    vec2 low{1, 1}, high{-1, -1};

    static PictureRect whole() { return {{-1, -1}, {1, 1}}; }
    /// The least that holds what is seen of a sphere (E), or a little more.
    static PictureRect of(const FrameView& view, const vec3& center, float radius);
    /// The least that holds what is seen of a box along the axes of E. `half`: of its edges.
    static PictureRect ofBox(const FrameView& view, const vec3& center, const vec3& half);
    /// Likewise of all directions that point down by no more than that (rad, below 0.5).
    static PictureRect above(const FrameView& view, float dip);

    bool isEmpty() const { return low.x >= high.x || low.y >= high.y; }
    /// Grows to hold another one too.
    void include(const PictureRect& other);
    /// Shrinks to what another one holds too.
    void cut(const PictureRect& other);
};

/// Several parts of the picture: those that a single one holds nearly as well become one. It keeps
/// its memory.
class PictureParts {
public:
    void clear() { m_rects.clear(); }
    void add(PictureRect rect);
    const std::vector<PictureRect>& getRects() const { return m_rects; }

private:
    std::vector<PictureRect> m_rects;
};

} // namespace ig
