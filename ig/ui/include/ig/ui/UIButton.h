// SPDX-License-Identifier: MIT
#pragma once

#include "ig/base/Function.h"
#include "ig/ui/UILabel.h"

namespace ig {

/// A push button with a text. It is brighter under the mouse and sinks while it is held; it has the
/// focus exactly as long as the left mouse button is down on it.
class UIButton : public UILabel {
public:
    UIButton(UIRoot* root, const jString& text) : UILabel(root, text) {}

    /// The mouse button was pressed on it and let go on it.
    SignalList<const UIEventMouse*, UIElement*> m_sig_click;

    bool isFocusedByPress() const override { return true; }
    void onClick(const UIEventMouse& event) override { emit(m_sig_click, &event, this); }
    void draw(UiDrawList& list) const override;

protected:
    void measure(int& width, int& height) const override;
    bool takesMouse() const override { return true; }
};

} // namespace ig
