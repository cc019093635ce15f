// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

struct FT_LibraryRec_;
struct FT_FaceRec_;

namespace ig {

/// The font of the user interface's texts. Elements measure by it whether anything is drawn or not,
/// and renderers draw by it, so that what the operator's mouse meets doesn't depend on the
/// renderer. Not for several threads.
///
/// Sizes are those of the em box, in whole pixels. Where no font file is found widths are those of
/// a font of square ideographs and other characters half as wide, and nothing has a form.
class Font {
public:
    /// The process's, opened when first needed.
    static Font& get();
    /// Opens the first of these files that is a font; one log line when none is.
    explicit Font(const std::vector<const char*>& files);
    Font(const Font&) = delete;
    Font& operator=(const Font&) = delete;
    ~Font();

    /// Of the file; empty when none was found.
    const std::string& getPath() const { return m_path; }

    /// The size that a text of so many pixels is set in.
    static int getEm(float size);
    /// How far a character moves the pen, pixels.
    float getAdvance(char32_t character, int size);
    /// Width of a line of text, pixels.
    float getWidth(float size, std::string_view utf8);
    /// From the top of the em box to the line that letters stand on, pixels.
    float getAscent(int size) const;

    /// Coverage of a character, 255 being covered, rows from the top; until the next call.
    struct Form {
        int width = 0, height = 0; ///< pixels
        int left = 0, top = 0;     ///< from the pen, to the right and upwards
        int pitch = 0;             ///< bytes from row to row
        const std::uint8_t* rows = nullptr;
    };
    /// False without a font, or when the character can't be drawn.
    bool draw(char32_t character, int size, Form& form);

private:
    bool load(char32_t character, int size, bool with_form);

    FT_LibraryRec_* m_library = nullptr;
    std::string m_path;
    FT_FaceRec_* m_face = nullptr;                       ///< null: no file was found
    std::unordered_map<std::uint64_t, float> m_advances; ///< by size and character, pixels
};

} // namespace ig
