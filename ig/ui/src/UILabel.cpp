// SPDX-License-Identifier: MIT
#include "ig/ui/UILabel.h"

#include "ig/ui/UIRoot.h"
#include "ig/ui/UiDrawList.h"

#include <algorithm>
#include <cmath>

namespace ig {

namespace {
/// Calls `visit` with every line of the text.
template <class Visit>
void forEachLine(std::string_view text, Visit visit) {
    for (std::size_t begin = 0; begin <= text.size();) {
        const std::size_t end = std::min(text.find('\n', begin), text.size());
        visit(text.substr(begin, end - begin));
        begin = end + 1;
    }
}
} // namespace

void UILabel::setText(std::string_view text) {
    if (text == m_text.view()) return;
    m_text.assign(text);
    m_text_revision = 0;
}

void UILabel::setFontSize(int size) {
    m_font_size = size;
    m_text_revision = 0;
}

int UILabel::lineHeight() const { return pixels(m_font_size + m_font_size / 3); }

float UILabel::textWidth() const {
    if (m_text_revision != getRoot()->getTextRevision()) {
        m_text_width = 0;
        forEachLine(m_text, [this](std::string_view line) {
            m_text_width = std::max(m_text_width, getRoot()->getTextWidth(fontPixels(), line));
        });
        m_text_revision = getRoot()->getTextRevision();
    }
    return m_text_width;
}

void UILabel::measure(int& width, int& height) const {
    const auto lines = std::count(m_text.view().begin(), m_text.view().end(), '\n') + 1;
    width = static_cast<int>(std::ceil(textWidth())) + 2 * padding();
    height = static_cast<int>(lines) * lineHeight() + 2 * padding();
}

void UILabel::draw(UiDrawList& list) const {
    UIElement::draw(list);
    const float x = static_cast<float>(m_x + padding());
    float y = static_cast<float>(m_y + padding());
    forEachLine(m_text, [&](std::string_view line) {
        list.addText(x, y, fontPixels(), m_color, line);
        y += static_cast<float>(lineHeight());
    });
}

} // namespace ig
