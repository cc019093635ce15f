// SPDX-License-Identifier: MIT
#pragma once

#include "ig/base/Function.h"
#include "ig/base/jString.h"
#include "ig/ui/UIElement.h"

namespace ig {

/// What a field lets the operator type. Texts that the program sets are not checked.
enum UI_VALIDATOR {
    UI_VALIDATE_NONE = 0,
    UI_VALIDATE_WHOLE = 1,         ///< a whole number, decimal or hexadecimal
    UI_VALIDATE_DECIMAL_WHOLE = 2, ///< a decimal whole number
    UI_VALIDATE_NUMBER = 3,        ///< a decimal number
};

/// A field of one line. It takes the keyboard while it has the focus: a click selects its whole
/// text, so that typing replaces it. Return leaves the field, Escape leaves it as it was found.
/// Ctrl with a, c, x and v selects, copies, cuts and pastes.
class UIEditLine : public UIElement {
public:
    UIEditLine(UIRoot* root, const jString& name);

    const jString& getName() const { return m_name; }
    const jString& getText() const { return m_text; }
    void setText(const jString& text);
    /// A `UI_VALIDATOR`.
    void setValidator(int validator) { m_validator = validator; }
    int getValidator() const { return m_validator; }
    /// A field that is not editable only shows its text.
    void setEditable(bool editable) { m_editable = editable; }
    bool isEditable() const { return m_editable; }

    /// The focus was gained; or it was lost and the text is another than before. A field that is
    /// left as it was found says nothing, so that a live value which moved on meanwhile is not set
    /// back to what the field showed.
    SignalList<const UIEventFocus*> m_sig_focus;

    bool isField() const override { return m_editable; }
    void collectFields(jVector<UIElement*>& fields) override;
    void onMouseDown(const UIEventMouse& event) override;
    void onMouseDrag(const UIEventMouse& event) override;
    bool onKey(const UIEventKey& event) override;
    void onText(std::string_view utf8) override;
    void onFocus(bool gained) override;
    void draw(UiDrawList& list) const override;

protected:
    void measure(int& width, int& height) const override;

private:
    bool onCommand(int key);
    void moveCaret(std::size_t caret, bool select);
    void eraseTo(std::size_t end);
    void replaceSelection(std::string_view text);
    bool accepts(std::string_view text) const;
    std::size_t selectionBegin() const;
    std::size_t selectionEnd() const;
    std::size_t caretAt(float x) const;
    float fontPixels() const;
    float advance(std::size_t from, std::size_t to) const;
    void scrollToCaret() const;
    void drawText(UiDrawList& list) const;

    jString m_name;
    jString m_text;
    jString m_text_before;    ///< when the focus was gained
    std::size_t m_caret = 0;  ///< byte position
    std::size_t m_anchor = 0; ///< other end of the selection
    int m_validator = UI_VALIDATE_NONE;
    bool m_editable = true;
    bool m_fresh = false;     ///< the focus was gained and the whole text is selected
    bool m_selecting = false; ///< the mouse was pressed to place the caret
    double m_caret_time = 0;  ///< of the last move: the caret blinks from there

    // Which part of the text fits, found again when one of these has changed.
    mutable bool m_scrolled = false;
    mutable std::size_t m_first = 0, m_last = 0;
    mutable int m_scrolled_width = 0, m_scrolled_revision = 0;
};

/// A field with a number that the wheel steps while the mouse is over it: by one in the third digit
/// of the number, whole numbers by at least 1; ten times that with Shift, a tenth with Ctrl.
class UIEditLineWheel : public UIEditLine {
public:
    using UIEditLine::UIEditLine;

    /// The text was replaced by a whole new value.
    SignalList<> m_sig_value_committed;

    bool onWheel(float notches, const UIEventKey& modifiers) override;
};

} // namespace ig
