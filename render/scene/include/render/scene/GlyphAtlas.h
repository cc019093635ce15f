// SPDX-License-Identifier: MIT
#pragma once

#include "ig/math/vec.h"

#include <cstdint>
#include <unordered_map>
#include <vector>

namespace ig {

/// Coverage of one character at one size.
struct Glyph {
    vec2 low, high;            ///< corners in the atlas, 0 to 1
    int width = 0, height = 0; ///< pixels
    int left = 0, top = 0;     ///< of the bitmap from the pen, to the right and upwards
    float advance = 0;         ///< of the pen
};

/// The characters of the user interface's font that were asked for so far, rendered when first
/// needed, in one square picture of a byte a texel, 255 being covered. When it is full it starts
/// over.
class GlyphAtlas {
public:
    static constexpr int SIZE = 1024; ///< texels along an edge

    GlyphAtlas() { clear(); }

    /// The character in an em of `size` pixels; null without a font or such a character's room.
    const Glyph* find(char32_t character, int size);
    /// A place in the atlas that is fully covered, for plain rectangles.
    vec2 getSolid() const;
    /// Whether rows from `first` up to but without `end` have changed since the last call; their
    /// texels are from `getRow` on.
    bool takeChanges(int& first, int& end);
    const std::uint8_t* getRow(int y) const {
        return &m_pixels[static_cast<std::size_t>(y) * SIZE];
    }

private:
    bool findRoom(int width, int height, int& x, int& y);
    void clear();

    std::vector<std::uint8_t> m_pixels;
    std::unordered_map<std::uint64_t, Glyph> m_glyphs;
    int m_x = 0, m_y = 0, m_row_height = 0;  ///< where the next one goes
    int m_dirty_from = SIZE, m_dirty_to = 0; ///< rows that have changed
};

} // namespace ig
