// SPDX-License-Identifier: MIT
#include "render/scene/GlyphAtlas.h"

#include "ig/base/jLog.h"

#include <algorithm>
#include <cstring>
#include <ft2build.h>
#include <utility>
#include FT_FREETYPE_H

namespace ig {

namespace {
/// In order of preference; the first has Latin and Chinese characters.
constexpr const char* FONTS[] = {"/usr/share/fonts/truetype/wqy/wqy-microhei.ttc",
                                 "/usr/share/fonts/truetype/wqy/wqy-zenhei.ttc",
                                 "/usr/share/fonts/opentype/noto/NotoSansCJK-Regular.ttc",
                                 "/usr/share/fonts/truetype/dejavu/DejaVuSans.ttf"};
constexpr int SOLID = 4; ///< texels of the covered square in the corner
} // namespace

bool GlyphAtlas::init() {
    clear();
    if (FT_Init_FreeType(&m_library) == 0)
        for (const char* path : FONTS)
            if (FT_New_Face(m_library, path, 0, &m_face) == 0) return true;
    jLog::error("GlyphAtlas::init: no font, so no text (Debian: fonts-wqy-microhei)");
    m_face = nullptr;
    return false;
}

GlyphAtlas::~GlyphAtlas() {
    if (m_face) FT_Done_Face(m_face);
    if (m_library) FT_Done_FreeType(m_library);
}

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

const Glyph* GlyphAtlas::find(std::uint32_t character, int size) {
    if (!m_face || size < 1) return nullptr;
    const std::uint64_t key = static_cast<std::uint64_t>(size) << 32 | character;
    const auto known = m_glyphs.find(key);
    if (known != m_glyphs.end()) return &known->second;
    FT_Set_Pixel_Sizes(m_face, 0, size);
    if (FT_Load_Char(m_face, character, FT_LOAD_RENDER | FT_LOAD_TARGET_LIGHT) != 0) return nullptr;
    const FT_GlyphSlot slot = m_face->glyph;
    const FT_Bitmap& bitmap = slot->bitmap;
    const int width = bitmap.width, height = bitmap.rows;
    int x = 0, y = 0;
    if (!findRoom(width, height, x, y)) {
        clear();
        if (!findRoom(width, height, x, y)) return nullptr;
    }
    for (int row = 0; row < height; row++)
        std::memcpy(&m_pixels[(y + row) * SIZE + x], bitmap.buffer + row * bitmap.pitch, width);
    m_dirty_from = std::min(m_dirty_from, y);
    m_dirty_to = std::max(m_dirty_to, y + height);
    const auto texel = [](int v) { return static_cast<float>(v) / SIZE; };
    const Glyph glyph{{texel(x), texel(y)},
                      {texel(x + width), texel(y + height)},
                      width,
                      height,
                      slot->bitmap_left,
                      slot->bitmap_top,
                      static_cast<float>(slot->advance.x) / 64};
    return &(m_glyphs[key] = glyph);
}

float GlyphAtlas::getAscent(int size) const {
    if (!m_face || m_face->units_per_EM == 0) return static_cast<float>(size);
    return static_cast<float>(size) * m_face->ascender / (m_face->ascender - m_face->descender);
}

bool GlyphAtlas::takeChanges(int& first, int& end) {
    first = std::exchange(m_dirty_from, SIZE);
    end = std::exchange(m_dirty_to, 0);
    return first < end;
}

std::uint32_t takeCharacter(std::string_view& text) {
    constexpr std::uint32_t BAD = 0xfffd;
    const auto byte = [&text](std::size_t i) { return static_cast<unsigned char>(text[i]); };
    const unsigned char first = byte(0);
    const std::size_t length = first < 0x80 ? 1 : first < 0xe0 ? 2 : first < 0xf0 ? 3 : 4;
    if (first < 0x80) {
        text.remove_prefix(1);
        return first;
    }
    std::uint32_t character = first & (0x7fu >> length);
    bool good = first >= 0xc2 && first < 0xf5 && text.size() >= length;
    for (std::size_t i = 1; good && i < length; i++) {
        good = (byte(i) & 0xc0) == 0x80;
        character = character << 6 | (byte(i) & 0x3fu);
    }
    text.remove_prefix(good ? length : 1);
    return good ? character : BAD;
}

} // namespace ig
