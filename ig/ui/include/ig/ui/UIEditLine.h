// SPDX-License-Identifier: MIT
#pragma once

#include "ig/base/Function.h"
#include "ig/base/jString.h"
#include "ig/ui/NumberText.h"
#include "ig/ui/UIElement.h"

#include <functional>

namespace ig {

/// A field of one line. It takes the keyboard while it has the focus: a click selects its whole
/// text, so that typing replaces it. Return leaves the field, Escape leaves it as it was found.
/// Ctrl with a, c, x and v selects, copies, cuts and pastes. What the validator does not take
/// reddens the field's edge; a number that is left unfinished is put back as it was found.
class UIEditLine : public UIElement {
public:
    UIEditLine(UIRoot* root, const jString& name);

    const jString& getName() const { return m_name; }
    const jString& getText() const { return m_text; }
    void setText(const jString& text);
    /// A `UI_VALIDATOR`.
    void setValidator(int validator) { m_validator = validator; }
    int getValidator() const { return m_validator; }
    /// Stands before the text, within the field.
    void setLabel(const jString& label);
    /// Digits behind the point that are shown, and offered for editing; −1: as many as the text
    /// has. The text that the program set stays until another one is entered.
    void setDecimals(int decimals);
    /// Is asked about a text that is no number for the field: whether it took it, as the values of
    /// several fields.
    void setListTaker(std::function<bool(std::string_view)> take) { m_take_list = std::move(take); }
    /// A field that is not editable only shows its text.
    void setEditable(bool editable) { m_editable = editable; }

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
    void round();
    void begin();
    const jString& shown() const;
    bool onCommand(int key);
    void moveCaret(std::size_t caret, bool select);
    void eraseTo(std::size_t end);
    bool replaceSelection(std::string_view text);
    bool accepts(std::string_view text) const;
    std::size_t selectionBegin() const;
    std::size_t selectionEnd() const;
    std::size_t caretAt(float x) const;
    float fontPixels() const;
    int textLeft() const;
    float advance(std::size_t from, std::size_t to) const;
    void scrollToCaret() const;
    void drawText(UiDrawList& list) const;

    jString m_name;
    jString m_text;
    jString m_label;
    jString m_rounded;     ///< the text with as many decimals as are shown
    jString m_exact;       ///< the text when the focus was gained
    jString m_text_before; ///< the same, as it was offered for editing
    std::function<bool(std::string_view)> m_take_list;
    std::size_t m_caret = 0;  ///< byte position
    std::size_t m_anchor = 0; ///< other end of the selection
    int m_validator = UI_VALIDATE_NONE;
    int m_decimals = -1;
    bool m_editable = true;
    bool m_editing = false;       ///< between gaining and losing the focus
    bool m_fresh = false;         ///< the focus was gained and the whole text is selected
    bool m_selecting = false;     ///< the mouse was pressed to place the caret
    double m_caret_time = 0;      ///< of the last move: the caret blinks from there
    double m_refused_time = -1e9; ///< of the last refusal

    // Which part of the text fits, found again when one of these has changed.
    mutable bool m_scrolled = false;
    mutable std::size_t m_first = 0, m_last = 0;
    mutable int m_scrolled_width = 0, m_scrolled_revision = 0;
};

/// A field with a number that the wheel steps while the mouse is over it and it has the focus, so
/// that a stray scroll sets nothing: by the step that was set, or by one in the third digit of the
/// number, whole numbers by at least 1; ten times that with Shift, a tenth with Ctrl.
class UIEditLineWheel : public UIEditLine {
public:
    using UIEditLine::UIEditLine;

    /// The text was replaced by a whole new value.
    SignalList<> m_sig_value_committed;

    /// 0: by the third digit.
    void setStep(double step) { m_step = step; }
    bool onWheel(float notches, const UIEventKey& modifiers) override;

private:
    double m_step = 0;
};

} // namespace ig
