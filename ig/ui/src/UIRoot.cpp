// SPDX-License-Identifier: MIT
#include "ig/ui/UIRoot.h"

#include "ig/ui/Font.h"
#include "ig/ui/KeyCode.h"
#include "ig/ui/UISpriteViewport.h"
#include "ig/ui/UiDrawList.h"
#include "ig/ui/Widget.h"

#include <algorithm>
#include <cmath>

namespace ig {

namespace {

const vec4 SHADE(0, 0, 0, 0.45f); ///< over everything below a modal widget

bool isModifier(int key) { return key >= KEY_SHIFT && key <= KEY_ALT; }
bool isModifierOrFunction(int key) { return key >= KEY_SHIFT && key <= KEY_F12; }

} // namespace

UIRoot::~UIRoot() {
    while (!m_children.empty()) {
        UIElement* element = m_children.back();
        m_children.pop();
        delete element;
    }
}

// ------------------------------------------------------------------ set-up

void UIRoot::addChild(UIElement* element, UI_EXPAND_TYPE, int index) {
    m_children.append(element);
    if (index >= 0 && index < m_children.size())
        std::rotate(m_children.begin() + index, m_children.end() - 1, m_children.end());
}

void UIRoot::resize(int width, int height, float scale) {
    m_width = width;
    m_height = height;
    if (scale != m_scale) m_text_revision++;
    m_scale = scale;
}

int UIRoot::pixels(int length) const {
    return static_cast<int>(std::lround(static_cast<float>(length) * m_scale));
}

float UIRoot::getTextWidth(float size, std::string_view utf8) const {
    return Font::get().getWidth(size, utf8);
}

void UIRoot::setClipboard(std::function<jString()> read,
                          std::function<void(const jString&)> write) {
    m_read_clipboard = std::move(read);
    m_write_clipboard = std::move(write);
}

jString UIRoot::readClipboard() const { return m_read_clipboard ? m_read_clipboard() : jString(); }

void UIRoot::writeClipboard(const jString& text) const {
    if (m_write_clipboard) m_write_clipboard(text);
}

void UIRoot::setNotices(std::function<void(std::string_view)> tell,
                        std::function<void(std::string_view)> tell_refused) {
    m_tell = std::move(tell);
    m_tell_refused = std::move(tell_refused);
}

void UIRoot::tell(std::string_view notice) const {
    if (m_tell) m_tell(notice);
}

void UIRoot::tellRefused(std::string_view text) const {
    if (m_tell_refused) m_tell_refused(text);
}

// ------------------------------------------------------------------ input

bool UIRoot::mouseMove(float x, float y) {
    m_mouse_x = x;
    m_mouse_y = y;
    arrange();
    updateHover();
    if (m_pressed) m_pressed->onMouseDrag({0, x, y});
    return m_pressed || m_hover || !m_modal.empty();
}

bool UIRoot::mouseDown(const UIEventMouse& event) {
    if (event.button == 0) cancelPress(); // a release that was never reported
    mouseMove(event.x, event.y);
    UIElement* element = m_hover;
    if (event.button == 0) {
        const bool focused = element && (element->isField() || element->isFocusedByPress());
        setFocus(focused ? element : nullptr);
        m_pressed = element;
        if (element) element->onMouseDown(event);
    }
    return element || !m_modal.empty();
}

bool UIRoot::mouseUp(const UIEventMouse& event) {
    mouseMove(event.x, event.y);
    UIElement* pressed = m_pressed;
    if (event.button != 0 || !pressed) return m_hover || !m_modal.empty();
    const bool on_it = m_hover == pressed;
    cancelPress();
    if (on_it) pressed->onClick(event); // may destroy it
    return true;
}

bool UIRoot::wheel(float notches, const UIEventKey& modifiers) {
    arrange();
    updateHover();
    if (m_hover) m_hover->onWheel(notches, modifiers);
    return m_hover || !m_modal.empty();
}

bool UIRoot::keyDown(const UIEventKey& event) {
    if (isModifier(event.key)) return false;
    if (m_focus && m_focus->isField()) {
        if (isModifierOrFunction(event.key)) return !m_modal.empty();
        if (event.key == KEY_TAB && nextField(event.shift)) return true;
        m_focus->onKey(event);
        return true;
    }
    if (m_modal.empty()) return false;
    m_modal.back()->onKey(event);
    return true;
}

bool UIRoot::text(std::string_view utf8) {
    if (!m_focus || !m_focus->isField()) return !m_modal.empty();
    m_focus->onText(utf8);
    return true;
}

void UIRoot::cancelPress() {
    m_pressed = nullptr;
    if (m_focus && m_focus->isFocusedByPress()) setFocus(nullptr);
}

/// Gives the focus to the field after the present one. False when there is no other.
bool UIRoot::nextField(bool backwards) {
    jVector<UIElement*> fields;
    if (!m_modal.empty())
        m_modal.back()->collectFields(fields);
    else
        for (UIElement* element : m_children)
            if (!element->isHidden()) element->collectFields(fields);
    const int n = fields.size(), i = fields.find(m_focus);
    if (n < 2 || i < 0) return false;
    setFocus(fields[(i + (backwards ? n - 1 : 1)) % n]);
    return true;
}

// ------------------------------------------------------------------ frame

void UIRoot::update(float dt) {
    m_time += dt;
    for (UIElement* element : m_children)
        element->refresh();
    arrange();
    updateHover();
}

void UIRoot::arrange() {
    for (UIElement* element : m_children) {
        if (element->isHidden()) continue;
        const bool free = element->isAlignFree();
        element->arrange(free ? element->getX() : 0, free ? element->getY() : 0,
                         element->getWidth(), element->getHeight());
    }
    for (Widget* widget : m_modal)
        widget->arrangeCentered(m_width, m_height);
}

void UIRoot::updateHover() {
    m_hover = getElementAt(m_mouse_x, m_mouse_y);
    // A button is held only while the mouse is on it.
    if (m_pressed && m_pressed->isFocusedByPress())
        setFocus(m_hover == m_pressed ? m_pressed : nullptr);
}

UIElement* UIRoot::getElementAt(float x, float y) const {
    if (!m_modal.empty()) return m_modal.back()->find(x, y);
    for (int i = m_children.size() - 1; i >= 0; i--) {
        if (m_children[i]->isHidden()) continue;
        if (UIElement* element = m_children[i]->find(x, y)) return element;
    }
    return nullptr;
}

void UIRoot::draw(UiDrawList& list) const {
    list.clear();
    for (const UIElement* element : m_children)
        if (!element->isHidden()) element->draw(list);
    for (const Widget* widget : m_modal) {
        list.addRect(0, 0, static_cast<float>(m_width), static_cast<float>(m_height), SHADE);
        widget->draw(list);
    }
}

// ------------------------------------------------------------------ focus, modal widgets

void UIRoot::setFocus(UIElement* element) {
    if (element == m_focus) return;
    UIElement* before = m_focus;
    m_focus = element;
    if (before) before->onFocus(false);
    if (m_focus && m_focus == element) element->onFocus(true);
}

void UIRoot::runModal(Widget* widget) {
    cancelPress();
    setFocus(nullptr);
    m_modal.append(widget);
    while (widget->isOpen())
        if (!m_modal_frame || !m_modal_frame()) widget->close(false);
    m_modal.remove(m_modal.find(widget));
    cancelPress();
    setFocus(nullptr);
    arrange();
    updateHover();
}

void UIRoot::release(UIElement* element) {
    if (m_hover && m_hover->isWithin(element)) m_hover = nullptr;
    if (m_pressed && m_pressed->isWithin(element)) m_pressed = nullptr;
    if (m_focus && m_focus->isWithin(element)) setFocus(nullptr);
}

void UIRoot::forget(UIElement* element) {
    if (m_focus == element) m_focus = nullptr; // it can't hear of it any more
    release(element);
    const int i = m_children.find(element);
    if (i >= 0) m_children.remove(i);
}

} // namespace ig
