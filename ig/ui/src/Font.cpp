// SPDX-License-Identifier: MIT
#include "ig/ui/Font.h"

#include "ig/base/jLog.h"
#include "ig/ui/Utf8Text.h"

#include <cmath>
#include <ft2build.h>
#include FT_FREETYPE_H

namespace ig {

namespace {

constexpr char32_t FIRST_IDEOGRAPH = 0x2E80; ///< and what is as wide

float estimateAdvance(char32_t character, int size) {
    return static_cast<float>(size) * (character >= FIRST_IDEOGRAPH ? 1.0f : 0.5f);
}

} // namespace

Font& Font::get() {
    // In order of preference; the first has Latin and Chinese characters.
    static Font font({"/usr/share/fonts/truetype/wqy/wqy-microhei.ttc",
                      "/usr/share/fonts/truetype/wqy/wqy-zenhei.ttc",
                      "/usr/share/fonts/opentype/noto/NotoSansCJK-Regular.ttc",
                      "/usr/share/fonts/truetype/dejavu/DejaVuSans.ttf"});
    return font;
}

Font::Font(const std::vector<const char*>& files) {
    if (FT_Init_FreeType(&m_library) != 0) m_library = nullptr;
    for (const char* file : files)
        if (m_library && FT_New_Face(m_library, file, 0, &m_face) == 0) {
            m_path = file;
            return;
        }
    m_face = nullptr;
    jLog::error("Font: no font file is found: texts are not drawn, and take the room that they "
                "would in one of square characters (Debian: fonts-wqy-microhei)");
}

Font::~Font() {
    if (m_face) FT_Done_Face(m_face);
    if (m_library) FT_Done_FreeType(m_library);
}

int Font::getEm(float size) { return static_cast<int>(std::lround(size)); }

/// With the same hinting for measure and form, and from the same outline, whatever pictures of some
/// sizes a font may hold: one moves the pen as far as the other.
bool Font::load(char32_t character, int size, bool with_form) {
    if (!m_face || size < 1) return false;
    FT_Set_Pixel_Sizes(m_face, 0, static_cast<FT_UInt>(size));
    const FT_Int32 flags =
        FT_LOAD_TARGET_LIGHT | FT_LOAD_NO_BITMAP | (with_form ? FT_LOAD_RENDER : FT_LOAD_DEFAULT);
    return FT_Load_Char(m_face, character, flags) == 0;
}

float Font::getAdvance(char32_t character, int size) {
    if (!m_face) return estimateAdvance(character, size);
    const auto [known, is_new] =
        m_advances.try_emplace(static_cast<std::uint64_t>(size) << 32 | character, 0.0f);
    if (is_new && load(character, size, false))
        known->second = static_cast<float>(m_face->glyph->advance.x) / 64;
    return known->second;
}

float Font::getWidth(float size, std::string_view utf8) {
    const int em = getEm(size);
    float width = 0;
    for (std::size_t i = 0; i < utf8.size();)
        width += getAdvance(utf8_text::decode(utf8, i), em);
    return width;
}

float Font::getAscent(int size) const {
    if (!m_face || m_face->units_per_EM == 0) return static_cast<float>(size);
    return static_cast<float>(size) * m_face->ascender / (m_face->ascender - m_face->descender);
}

bool Font::draw(char32_t character, int size, Form& form) {
    if (!load(character, size, true)) return false;
    if (m_face->glyph->bitmap.pixel_mode != FT_PIXEL_MODE_GRAY) return false; // of other texels
    const FT_GlyphSlot slot = m_face->glyph;
    const FT_Bitmap& bitmap = slot->bitmap;
    form = {static_cast<int>(bitmap.width),
            static_cast<int>(bitmap.rows),
            slot->bitmap_left,
            slot->bitmap_top,
            bitmap.pitch,
            bitmap.buffer};
    return true;
}

} // namespace ig
