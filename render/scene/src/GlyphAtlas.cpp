// SPDX-License-Identifier: MIT
#include "render/scene/GlyphAtlas.h"

#include "ig/ui/Font.h"

#include <algorithm>
#include <cstring>
#include <utility>

namespace ig {

namespace {
constexpr int SOLID = 4; ///< texels of the covered square in the corner
} // namespace

void GlyphAtlas::clear() {
    m_glyphs.clear();
    m_pixels.assign(SIZE * SIZE, 0);
    for (int y = 0; y < SOLID; y++)
        std::fill_n(m_pixels.begin() + y * SIZE, SOLID, std::uint8_t{255});
    m_x = SOLID + 1;
    m_y = 0;
    m_row_height = SOLID;
    m_dirty_from = 0;
    m_dirty_to = SIZE;
}

vec2 GlyphAtlas::getSolid() const { return {SOLID / 2.0f / SIZE, SOLID / 2.0f / SIZE}; }

bool GlyphAtlas::findRoom(int width, int height, int& x, int& y) {
    if (m_x + width > SIZE) {
        m_x = 0;
        m_y += m_row_height + 1;
        m_row_height = 0;
    }
    if (width > SIZE || m_y + height > SIZE) return false;
    x = m_x;
    y = m_y;
    m_x += width + 1;
    m_row_height = std::max(m_row_height, height);
    return true;
}

const Glyph* GlyphAtlas::find(char32_t character, int size) {
    const std::uint64_t key = static_cast<std::uint64_t>(size) << 32 | character;
    const auto known = m_glyphs.find(key);
    if (known != m_glyphs.end()) return &known->second;
    Font::Form form;
    if (!Font::get().draw(character, size, form)) return nullptr;
    const int width = form.width, height = form.height;
    int x = 0, y = 0;
    if (!findRoom(width, height, x, y)) {
        clear();
        if (!findRoom(width, height, x, y)) return nullptr;
    }
    for (int row = 0; row < height; row++)
        std::memcpy(&m_pixels[(y + row) * SIZE + x], form.rows + row * form.pitch, width);
    m_dirty_from = std::min(m_dirty_from, y);
    m_dirty_to = std::max(m_dirty_to, y + height);
    const auto texel = [](int v) { return static_cast<float>(v) / SIZE; };
    const Glyph glyph{{texel(x), texel(y)},
                      {texel(x + width), texel(y + height)},
                      width,
                      height,
                      form.left,
                      form.top,
                      Font::get().getAdvance(character, size)};
    return &(m_glyphs[key] = glyph);
}

bool GlyphAtlas::takeChanges(int& first, int& end) {
    first = std::exchange(m_dirty_from, SIZE);
    end = std::exchange(m_dirty_to, 0);
    return first < end;
}

} // namespace ig
