// SPDX-License-Identifier: MIT
#pragma once

#include "ig/base/jString.h"
#include "ig/ui/UIElement.h"

namespace ig {

/// Lines of text that don't change with input: titles, messages, overlays. Lets the mouse through.
class UILabel : public UIElement {
public:
    UILabel(UIRoot* root, const jString& text) : UIElement(root), m_text(text) {}

    /// UTF-8, with line breaks.
    void setText(std::string_view text);
    const jString& getText() const { return m_text; }
    /// Em height in units of the set-up.
    void setFontSize(int size);
    void setColor(const vec4& rgba) { m_color = rgba; }

    void draw(UiDrawList& list) const override;

protected:
    void measure(int& width, int& height) const override;
    bool takesMouse() const override { return false; }
    float fontPixels() const { return static_cast<float>(pixels(m_font_size)); }
    /// Width of the widest line in pixels, measured when text or font have changed.
    float textWidth() const;

    jString m_text;
    vec4 m_color{0.95f, 0.96f, 0.97f, 1};

private:
    int lineHeight() const;
    int padding() const { return m_show_background ? pixels(6) : 0; }

    int m_font_size = 15;
    mutable float m_text_width = 0;
    mutable int m_text_revision = 0; ///< of the root, when the width was measured; 0 never
};

} // namespace ig
