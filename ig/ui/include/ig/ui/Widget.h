// SPDX-License-Identifier: MIT
#pragma once

#include "ig/ui/UIButton.h"
#include "ig/ui/UILayout.h"

namespace ig {

/// A window of the user interface that is shown alone: made, filled, run with `modality`, and
/// destroyed by the operation that needs an answer. It may live on the stack.
class Widget : public UIVLayout {
public:
    Widget(UIRoot* root, const jString& title);

    /// In the middle of the picture, also after a resize; otherwise at its top left.
    void center() { m_centered = true; }
    /// Shows it, alone with the input, until it is closed. Whether it was accepted.
    bool modality();
    bool isOpen() const { return m_open; }
    void close(bool accepted);

    void arrangeCentered(int width, int height);

private:
    bool m_centered = false, m_open = false, m_accepted = false;
};

/// A widget that is accepted or refused, also with Return and Escape.
class UIDialog : public Widget {
public:
    UIDialog(UIRoot* root, const jString& title);

    UIButton* getOkButton() { return m_ok; }
    UIButton* getCancelButton() { return m_cancel; }

    bool onKey(const UIEventKey& event) override;

protected:
    /// Puts an element between title and buttons.
    void addContent(UIElement* element);

private:
    void onOk(const UIEventMouse*, UIElement*) { close(true); }
    void onCancel(const UIEventMouse*, UIElement*) { close(false); }

    UIButton *m_ok, *m_cancel; ///< the layout's
};

} // namespace ig
