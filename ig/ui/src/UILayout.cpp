// SPDX-License-Identifier: MIT
#include "ig/ui/UILayout.h"

#include <algorithm>

namespace ig {

namespace {
/// How far from the beginning `size` lies in `room`; `end` and `center` are the align bits of the
/// direction.
int alignedAt(int aligns, int end, int center, int room, int size) {
    if (aligns & end) return room - size;
    return aligns & center ? (room - size) / 2 : 0;
}
} // namespace

UIVLayout::~UIVLayout() {
    while (!m_wraps.empty()) {
        const Wrap wrap = m_wraps.back();
        m_wraps.pop();
        wrap.destroy(wrap.wrap);
    }
    for (const Child& child : m_children)
        delete child.element;
}

void UIVLayout::addChild(UIElement* element, UI_EXPAND_TYPE expand, int index) {
    element->setParent(this);
    m_children.append({element, expand});
    if (index >= 0 && index < m_children.size())
        std::rotate(m_children.begin() + index, m_children.end() - 1, m_children.end());
}

void UIVLayout::setSpace(int between, int around) {
    m_between = between;
    m_around = around;
}

void UIVLayout::removeWrap(const void* wrap) {
    for (int i = m_wraps.size() - 1; i >= 0; i--)
        if (m_wraps[i].wrap == wrap) m_wraps.remove(i);
}

void UIVLayout::measure(int& width, int& height) const {
    int along = 0, across = 0, shown = 0;
    for (const Child& child : m_children) {
        if (child.element->isHidden()) continue;
        const int w = child.element->getWidth(), h = child.element->getHeight();
        along += m_horizontal ? w : h;
        across = std::max(across, m_horizontal ? h : w);
        shown++;
    }
    along += pixels(m_between) * std::max(shown - 1, 0);
    const int around = 2 * pixels(m_around);
    width = (m_horizontal ? along : across) + around;
    height = (m_horizontal ? across : along) + around;
}

void UIVLayout::arrange(int x, int y, int width, int height) {
    UIElement::arrange(x, y, width, height);
    const int around = pixels(m_around), between = pixels(m_between);
    const int room = (m_horizontal ? height : width) - 2 * around;
    int along = around;
    for (const Child& child : m_children) {
        if (child.element->isHidden()) continue;
        int w = child.element->getWidth(), h = child.element->getHeight();
        int& across = m_horizontal ? h : w;
        if (child.expand == UI_EXPAND_FILL) across = room;
        if (m_horizontal) {
            const int at = alignedAt(m_aligns, UI_ALIGN_BOTTOM, UI_ALIGN_CENTER_Y, room, h);
            child.element->arrange(x + along, y + around + at, w, h);
        } else {
            const int at = alignedAt(m_aligns, UI_ALIGN_RIGHT, UI_ALIGN_CENTER_X, room, w);
            child.element->arrange(x + around + at, y + along, w, h);
        }
        along += (m_horizontal ? w : h) + between;
    }
}

void UIVLayout::refresh() {
    for (const Wrap& wrap : m_wraps)
        wrap.refresh(wrap.wrap);
    for (const Child& child : m_children)
        child.element->refresh();
}

void UIVLayout::draw(UiDrawList& list) const {
    UIElement::draw(list);
    for (const Child& child : m_children)
        if (!child.element->isHidden()) child.element->draw(list);
}

UIElement* UIVLayout::find(float x, float y) {
    for (const Child& child : m_children) {
        if (child.element->isHidden()) continue;
        if (UIElement* element = child.element->find(x, y)) return element;
    }
    return UIElement::find(x, y);
}

void UIVLayout::collectFields(jVector<UIElement*>& fields) {
    for (const Child& child : m_children)
        if (!child.element->isHidden()) child.element->collectFields(fields);
}

} // namespace ig
