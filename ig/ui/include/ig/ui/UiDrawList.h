// SPDX-License-Identifier: MIT
#pragma once

#include "ig/math/vec.h"

#include <string>
#include <string_view>
#include <vector>

namespace ig {

/// What the user interface wants drawn over the picture: rectangles, lines of text and images, in
/// the order in which they cover one another. `UIRoot::draw` fills it once per frame, a renderer
/// reads it. Coordinates are picture pixels from the top left corner. Colours are red, green, blue
/// and opacity in [0, 1], not premultiplied.
///
/// One list is used over and over: `clear` keeps the memory.
class UiDrawList {
public:
    enum class Kind {
        rect,     ///< filled
        text,     ///< one line
        image,    ///< a file, scaled to the rectangle
        viewport, ///< the picture of a `UISpriteViewport`, scaled to the rectangle
    };
    struct Command {
        Kind kind;
        float x, y;         ///< top left corner; of a text the em box's
        float w, h;         ///< of a text w is 0 and h the size
        vec4 rgba;          ///< images and viewports are multiplied with it
        std::size_t begin;  ///< of the text or path in the list's buffer
        std::size_t length; ///< bytes
        int viewport;       ///< `UISpriteViewport::getId`
    };

    void clear();
    void addRect(float x, float y, float w, float h, const vec4& rgba);
    /// `size` is the em height in pixels; UTF-8, without line breaks.
    void addText(float x, float y, float size, const vec4& rgba, std::string_view utf8);
    void addImage(float x, float y, float w, float h, std::string_view path);
    void addImage(float x, float y, float w, float h, int viewport);

    const std::vector<Command>& getCommands() const { return m_commands; }
    /// The text of a text command, the path of an image command.
    std::string_view text(const Command& command) const {
        return std::string_view(m_text).substr(command.begin, command.length);
    }

private:
    Command& add(Kind kind, float x, float y, float w, float h);
    void store(Command& command, std::string_view text);

    std::vector<Command> m_commands;
    std::string m_text;
};

} // namespace ig
