// SPDX-License-Identifier: MIT
#include "ig/ui/Widget.h"

#include "ig/ui/KeyCode.h"
#include "ig/ui/UIRoot.h"

#include <algorithm>

namespace ig {

Widget::Widget(UIRoot* root, const jString& title) : UIVLayout(root, 12, 16) {
    setBackgroundColor({0.10f, 0.13f, 0.17f, 0.97f});
    setContentAligns(UI_ALIGN_CENTER_X);
    auto* label = new UILabel(root, title);
    label->setShowBackground(false);
    label->setFontSize(18);
    addChild(label);
}

bool Widget::modality() {
    m_open = true;
    m_accepted = false;
    getRoot()->runModal(this);
    return m_accepted;
}

void Widget::close(bool accepted) {
    m_open = false;
    m_accepted = accepted;
}

void Widget::arrangeCentered(int width, int height) {
    const int w = getWidth(), h = getHeight();
    arrange(m_centered ? std::max((width - w) / 2, 0) : getX(),
            m_centered ? std::max((height - h) / 2, 0) : getY(), w, h);
}

UIDialog::UIDialog(UIRoot* root, const jString& title)
    : Widget(root, title), m_ok(new UIButton(root, "OK")), m_cancel(new UIButton(root, "Cancel")) {
    m_ok->m_sig_click.append({this, &UIDialog::onOk});
    m_cancel->m_sig_click.append({this, &UIDialog::onCancel});
    auto* row = new UIHLayout(root, 12, 0);
    row->setShowBackground(false);
    for (UIButton* button : {m_ok, m_cancel}) {
        button->setMinWidth(80);
        row->addChild(button);
    }
    addChild(row);
}

void UIDialog::addContent(UIElement* element) {
    addChild(element, UI_EXPAND_NONE, getChildCount() - 1);
}

bool UIDialog::onKey(const UIEventKey& event) {
    if (event.key == KEY_RETURN) close(true);
    if (event.key == KEY_ESCAPE) close(false);
    return true;
}

} // namespace ig
