// SPDX-License-Identifier: MIT
#include "ig/ui/UIButton.h"

#include "ig/ui/UIRoot.h"
#include "ig/ui/UiDrawList.h"

#include <cmath>

namespace ig {

namespace {

constexpr int PADDING_X = 12, PADDING_Y = 4; ///< around the text

struct Look {
    vec4 face, edge;
    int sink; ///< of the text, units of the set-up
};
const Look AT_REST{{0.13f, 0.18f, 0.24f, 0.78f}, {0.45f, 0.55f, 0.65f, 0.55f}, 0};
const Look UNDER_MOUSE{{0.22f, 0.32f, 0.42f, 0.90f}, {0.70f, 0.82f, 0.92f, 0.90f}, 0};
const Look HELD{{0.85f, 0.52f, 0.12f, 0.95f}, {1.00f, 0.80f, 0.45f, 1.00f}, 1};

} // namespace

void UIButton::measure(int& width, int& height) const {
    width = static_cast<int>(std::ceil(textWidth())) + 2 * pixels(PADDING_X);
    height = static_cast<int>(fontPixels()) + 2 * pixels(PADDING_Y);
}

void UIButton::draw(UiDrawList& list) const {
    const Look& look = isFocused() ? HELD : getRoot()->getHover() == this ? UNDER_MOUSE : AT_REST;
    const auto x = static_cast<float>(m_x), y = static_cast<float>(m_y);
    const auto w = static_cast<float>(m_width), h = static_cast<float>(m_height);
    const auto edge = static_cast<float>(pixels(1));
    list.addRect(x, y, w, h, look.edge);
    list.addRect(x + edge, y + edge, w - 2 * edge, h - 2 * edge, look.face);
    const float left = std::floor((w - textWidth()) / 2), top = std::floor((h - fontPixels()) / 2);
    const auto sink = static_cast<float>(pixels(look.sink));
    list.addText(x + left + sink, y + top + sink, fontPixels(), m_color, m_text);
}

} // namespace ig
