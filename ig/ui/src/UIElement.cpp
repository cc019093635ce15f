// SPDX-License-Identifier: MIT
#include "ig/ui/UIElement.h"

#include "ig/ui/UIRoot.h"
#include "ig/ui/UiDrawList.h"

#include <algorithm>

namespace ig {

UIElement::UIElement(UIRoot* root) : m_root(root) {}

UIElement::~UIElement() { m_root->forget(this); }

void UIElement::setPosition(int x, int y) {
    m_x = x;
    m_y = y;
}

int UIElement::getWidth() const {
    if (m_fix_width > 0) return pixels(m_fix_width);
    int width = 0, height = 0;
    measure(width, height);
    return std::max(width, pixels(m_min_width));
}

int UIElement::getHeight() const {
    if (m_fix_height > 0) return pixels(m_fix_height);
    int width = 0, height = 0;
    measure(width, height);
    return height;
}

void UIElement::setFixSize(int width, int height) {
    m_fix_width = width;
    m_fix_height = height;
}

void UIElement::setHidden(bool hidden) {
    m_hidden = hidden;
    if (hidden) m_root->release(this);
}

bool UIElement::isFocused() const { return m_root->getFocus() == this; }

bool UIElement::isWithin(const UIElement* ancestor) const {
    const UIElement* element = this;
    while (element && element != ancestor)
        element = element->m_parent;
    return element != nullptr;
}

void UIElement::arrange(int x, int y, int width, int height) {
    m_x = x;
    m_y = y;
    m_width = width;
    m_height = height;
}

void UIElement::draw(UiDrawList& list) const {
    if (m_show_background) drawBackground(list, m_background);
}

UIElement* UIElement::find(float x, float y) {
    return takesMouse() && contains(x, y) ? this : nullptr;
}

bool UIElement::onWheel(float, const UIEventKey&) { return false; }

int UIElement::pixels(int length) const { return m_root->pixels(length); }

bool UIElement::contains(float x, float y) const {
    return x >= static_cast<float>(m_x) && x < static_cast<float>(m_x + m_width) &&
           y >= static_cast<float>(m_y) && y < static_cast<float>(m_y + m_height);
}

void UIElement::drawBackground(UiDrawList& list, const vec4& rgba) const {
    list.addRect(static_cast<float>(m_x), static_cast<float>(m_y), static_cast<float>(m_width),
                 static_cast<float>(m_height), rgba);
}

} // namespace ig
