// SPDX-License-Identifier: MIT
#include "ig/ui/UIEditLine.h"

#include "ig/ui/KeyCode.h"
#include "ig/ui/UIRoot.h"
#include "ig/ui/UiDrawList.h"
#include "ig/ui/Utf8Text.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <string>

namespace ig {

using namespace utf8_text;

namespace {

constexpr int PADDING = 3;             ///< left and right of the text
constexpr int FONT_SIZE = 13;          ///< at most; as high as the field allows
constexpr std::size_t MAX_TEXT = 1024; ///< bytes that can be typed
constexpr std::size_t MAX_NUMBER = 40; ///< bytes of a number that can be typed
constexpr double MAX_ROUNDED = 1e15;   ///< larger numbers show as they are
constexpr double BLINK = 1.0;          ///< period, s
constexpr double REFUSED_TIME = 0.8;   ///< for which a refusal shows, s

const vec4 TEXT_COLOR(0.95f, 0.96f, 0.97f, 1);
const vec4 SHADOW_COLOR(0, 0, 0, 0.75f);
const vec4 FOCUS_FACE(0.05f, 0.07f, 0.09f, 0.90f);
const vec4 FOCUS_EDGE(1.00f, 0.75f, 0.35f, 1);
const vec4 LABEL_COLOR(1.00f, 0.88f, 0.62f, 1);
const vec4 REFUSED_EDGE(1.00f, 0.25f, 0.20f, 1);
const vec4 SELECTION(0.20f, 0.45f, 0.75f, 0.80f);

} // namespace

UIEditLine::UIEditLine(UIRoot* root, const jString& name) : UIElement(root), m_name(name) {
    setBackgroundColor({0.5f, 0.5f, 0.5f, 0.5f});
}

void UIEditLine::setText(const jString& text) {
    m_text.assign(text);
    round();
    if (m_editing) begin();
    m_caret = m_anchor = m_text.view().size();
    m_scrolled = false;
}

void UIEditLine::setLabel(const jString& label) {
    m_label = label;
    m_scrolled = false;
}

void UIEditLine::setDecimals(int decimals) {
    m_decimals = decimals;
    round();
    m_scrolled = false;
}

/// Finds what to show instead of all digits.
void UIEditLine::round() {
    if (m_decimals < 0) return;
    char text[64];
    const double value = m_text.toDouble();
    const bool number = number_text::isComplete(m_text, UI_VALIDATE_NUMBER);
    const int size = number && std::abs(value) < MAX_ROUNDED
                         ? std::snprintf(text, sizeof text, "%.*f", m_decimals, value)
                         : 0;
    m_rounded.assign(size > 0 ? std::string_view(text, size) : m_text.view());
}

/// The operator gets what is shown to work on.
void UIEditLine::begin() {
    m_exact.assign(m_text);
    if (m_decimals >= 0) m_text.assign(m_rounded);
    m_text_before.assign(m_text);
}

const jString& UIEditLine::shown() const {
    return m_decimals >= 0 && !m_editing ? m_rounded : m_text;
}

void UIEditLine::collectFields(jVector<UIElement*>& fields) {
    if (m_editable) fields.append(this);
}

// ------------------------------------------------------------------ input

void UIEditLine::onFocus(bool gained) {
    m_scrolled = false;
    m_editing = gained;
    if (gained) {
        begin();
        m_anchor = 0;
        m_caret = m_text.view().size();
        m_caret_time = getRoot()->getTime();
        m_fresh = true;
    } else {
        m_anchor = m_caret;
        const bool unfinished = !number_text::isComplete(m_text, m_validator);
        if (unfinished || m_text == m_text_before) return setText(m_exact);
        round();
    }
    const UIEventFocus event{gained};
    emit(m_sig_focus, &event);
}

void UIEditLine::onMouseDown(const UIEventMouse& event) {
    if (!isFocused()) return;
    // The press that gave the focus selected the whole text; a further one places the caret.
    m_selecting = !m_fresh;
    m_fresh = false;
    if (m_selecting) moveCaret(caretAt(event.x), false);
}

void UIEditLine::onMouseDrag(const UIEventMouse& event) {
    if (isFocused() && m_selecting) moveCaret(caretAt(event.x), true);
}

bool UIEditLine::onKey(const UIEventKey& event) {
    m_fresh = false;
    if (event.ctrl) return onCommand(event.key);
    const std::string_view text = m_text;
    const bool selected = m_caret != m_anchor && !event.shift;
    switch (event.key) {
    case KEY_RETURN:
        getRoot()->setFocus(nullptr);
        break;
    case KEY_ESCAPE:
        m_text.assign(m_text_before);
        m_caret = m_anchor = m_text.view().size();
        getRoot()->setFocus(nullptr);
        break;
    case KEY_LEFT:
        moveCaret(selected ? selectionBegin() : previous(text, m_caret), event.shift);
        break;
    case KEY_RIGHT:
        moveCaret(selected ? selectionEnd() : next(text, m_caret), event.shift);
        break;
    case KEY_HOME:
        moveCaret(0, event.shift);
        break;
    case KEY_END:
        moveCaret(text.size(), event.shift);
        break;
    case KEY_BACKSPACE:
        eraseTo(previous(text, m_caret));
        break;
    case KEY_DELETE:
        eraseTo(next(text, m_caret));
        break;
    default:
        return false;
    }
    return true;
}

bool UIEditLine::onCommand(int key) {
    const std::string_view selection =
        m_text.view().substr(selectionBegin(), selectionEnd() - selectionBegin());
    switch (key) {
    case 'a':
        m_anchor = 0;
        moveCaret(m_text.view().size(), true);
        return true;
    case 'c':
    case 'x':
        if (selection.empty()) return true;
        getRoot()->writeClipboard(jString(selection));
        if (key == 'x') replaceSelection({});
        return true;
    case 'v':
        onText(getRoot()->readClipboard());
        return true;
    default:
        return false;
    }
}

void UIEditLine::onText(std::string_view utf8) {
    m_fresh = false;
    std::string clean; // characters only: neither control codes nor broken bytes
    for (std::size_t i = 0; i < utf8.size() && clean.size() < MAX_TEXT;) {
        char32_t code = decode(utf8, i);
        if (m_validator != UI_VALIDATE_NONE && (code == '\n' || code == '\t')) code = ' ';
        if (code >= 0x20 && code != 0x7F && code != INVALID) encode(clean, code);
    }
    const std::string number = m_validator == UI_VALIDATE_NONE ? clean : number_text::tidy(clean);
    const std::string_view text = number;
    if (text.find_first_not_of(' ') == text.npos && m_validator != UI_VALIDATE_NONE) return;
    if (text.empty() || replaceSelection(text)) return;
    if (m_take_list && m_take_list(clean)) return;
    m_refused_time = getRoot()->getTime();
    getRoot()->tellRefused(clean);
}

/// False, and nothing done, when that would make a text that the validator does not accept, or one
/// that is too long.
bool UIEditLine::replaceSelection(std::string_view insertion) {
    std::string text(m_text.view());
    text.replace(selectionBegin(), selectionEnd() - selectionBegin(), insertion);
    if (!insertion.empty() && !accepts(text)) return false;
    m_caret = m_anchor = selectionBegin() + insertion.size();
    m_text.assign(text);
    moveCaret(m_caret, false);
    return true;
}

bool UIEditLine::accepts(std::string_view text) const {
    return text.size() <= (m_validator == UI_VALIDATE_NONE ? MAX_TEXT : MAX_NUMBER) &&
           number_text::isBegun(text, m_validator);
}

/// Erases the selection or, without one, from the caret to `end`.
void UIEditLine::eraseTo(std::size_t end) {
    if (m_caret == m_anchor) m_anchor = end;
    replaceSelection({});
}

void UIEditLine::moveCaret(std::size_t caret, bool select) {
    m_caret = caret;
    if (!select) m_anchor = caret;
    m_caret_time = getRoot()->getTime();
    m_scrolled = false;
}

std::size_t UIEditLine::selectionBegin() const { return std::min(m_caret, m_anchor); }
std::size_t UIEditLine::selectionEnd() const { return std::max(m_caret, m_anchor); }

// ------------------------------------------------------------------ look

void UIEditLine::measure(int& width, int& height) const {
    width = pixels(120);
    height = pixels(FONT_SIZE + 4);
}

float UIEditLine::fontPixels() const {
    return static_cast<float>(std::min(pixels(FONT_SIZE), m_height - pixels(3)));
}

/// Where the text begins, behind the label.
int UIEditLine::textLeft() const {
    if (m_label.empty()) return pixels(PADDING);
    return 2 * pixels(PADDING) +
           static_cast<int>(std::ceil(getRoot()->getTextWidth(fontPixels(), m_label)));
}

float UIEditLine::advance(std::size_t from, std::size_t to) const {
    return getRoot()->getTextWidth(fontPixels(), shown().view().substr(from, to - from));
}

/// Finds the part [m_first, m_last) of the text that fits the field and shows the caret; without
/// the focus, the text's beginning.
void UIEditLine::scrollToCaret() const {
    const int revision = getRoot()->getTextRevision();
    if (m_scrolled && m_scrolled_width == m_width && m_scrolled_revision == revision) return;
    m_scrolled = true;
    m_scrolled_width = m_width;
    m_scrolled_revision = revision;
    const std::string_view text = shown();
    const auto room = static_cast<float>(m_width - textLeft() - pixels(PADDING));
    const std::size_t caret = isFocused() ? m_caret : 0;
    m_first = std::min({m_first, caret, text.size()});
    if (!isFocused()) m_first = 0;
    // Back from the caret as far as there is room for.
    float width = 0;
    for (std::size_t i = caret; i > m_first;) {
        const std::size_t before = previous(text, i);
        width += advance(before, i);
        if (width > room) m_first = i;
        i = before;
    }
    width = 0;
    for (m_last = m_first; m_last < text.size();) {
        const std::size_t after = next(text, m_last);
        width += advance(m_last, after);
        if (width > room) break;
        m_last = after;
    }
}

std::size_t UIEditLine::caretAt(float x) const {
    scrollToCaret();
    float left = static_cast<float>(m_x + textLeft());
    std::size_t i = m_first;
    while (i < m_last) {
        const std::size_t after = next(m_text, i);
        const float width = advance(i, after);
        if (x < left + width / 2) break;
        left += width;
        i = after;
    }
    return i;
}

void UIEditLine::draw(UiDrawList& list) const {
    const auto x = static_cast<float>(m_x), y = static_cast<float>(m_y);
    const auto w = static_cast<float>(m_width), h = static_cast<float>(m_height);
    if (isFocused()) {
        const auto edge = static_cast<float>(pixels(1));
        const bool refused = getRoot()->getTime() - m_refused_time < REFUSED_TIME;
        list.addRect(x, y, w, h, refused ? REFUSED_EDGE : FOCUS_EDGE);
        list.addRect(x + edge, y + edge, w - 2 * edge, h - 2 * edge, FOCUS_FACE);
    } else {
        UIElement::draw(list);
    }
    scrollToCaret();
    drawText(list);
}

void UIEditLine::drawText(UiDrawList& list) const {
    const float size = fontPixels();
    const auto x = static_cast<float>(m_x + textLeft());
    const float y = std::floor(static_cast<float>(m_y) + (static_cast<float>(m_height) - size) / 2);
    const auto shadow = static_cast<float>(pixels(1)); // the field lets bright scenes through
    const auto label = static_cast<float>(m_x + pixels(PADDING));
    list.addText(label + shadow, y + shadow, size, SHADOW_COLOR, m_label);
    list.addText(label, y, size, LABEL_COLOR, m_label);
    if (isFocused()) {
        const std::size_t begin = std::clamp(selectionBegin(), m_first, m_last);
        const std::size_t end = std::clamp(selectionEnd(), m_first, m_last);
        if (begin < end)
            list.addRect(x + advance(m_first, begin), y, advance(begin, end), size, SELECTION);
    }
    const std::string_view part = shown().view().substr(m_first, m_last - m_first);
    list.addText(x + shadow, y + shadow, size, SHADOW_COLOR, part);
    list.addText(x, y, size, TEXT_COLOR, part);
    if (!isFocused()) return;
    if (std::fmod(getRoot()->getTime() - m_caret_time, BLINK) < BLINK / 2)
        list.addRect(x + advance(m_first, std::min(m_caret, m_last)), y,
                     static_cast<float>(pixels(1)), size, TEXT_COLOR);
}

// ------------------------------------------------------------------ wheel

bool UIEditLineWheel::onWheel(float notches, const UIEventKey& modifiers) {
    if (!isFocused() || notches == 0 || getValidator() == UI_VALIDATE_NONE) return false;
    const bool whole = getValidator() != UI_VALIDATE_NUMBER;
    if (whole && !number_text::isBegun(getText(), UI_VALIDATE_DECIMAL_WHOLE)) return false; // hex
    const double value = getText().toDouble();
    const double digits = value == 0 ? 0 : std::floor(std::log10(std::abs(value)));
    double step = m_step > 0 ? m_step : std::pow(10.0, digits - 2);
    if (modifiers.shift) step *= 10;
    if (modifiers.ctrl) step /= 10;
    if (whole) step = std::max(step, 1.0);
    const double stepped = value + step * notches;
    char text[64];
    std::snprintf(text, sizeof text, whole ? "%.0f" : "%.10g", stepped);
    setText(text);
    emit(m_sig_value_committed);
    return true;
}

} // namespace ig
