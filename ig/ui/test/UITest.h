// SPDX-License-Identifier: MIT
#pragma once

#include "ig/ui/UIButton.h"
#include "ig/ui/UIEditLine.h"
#include "ig/ui/UILayout.h"
#include "ig/ui/UIRoot.h"

#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace ig {

/// A panel of three buttons and a field, laid out once, and what they told.
struct UITest : testing::Test {
    UITest() {
        root.resize(400, 300);
        panel = new UIVLayout(&root, 1, 0);
        panel->setAlignFree(true);
        panel->setShowBackground(false);
        root.addChild(panel);
        for (UIButton*& button : buttons) {
            button = new UIButton(&root, "按钮");
            button->m_sig_click.append({this, &UITest::onClick});
            panel->addChild(button);
        }
        field = new UIEditLineWheel(&root, "f");
        field->m_sig_focus.append({this, &UITest::onFocus});
        field->m_sig_value_committed.append({this, &UITest::onCommit});
        field->setText("100");
        panel->addChild(field);
        root.update(0);
    }
    void onClick(const UIEventMouse*, UIElement* element) { clicked.push_back(element); }
    void onFocus(const UIEventFocus* event) { focus += event->gained ? '+' : '-'; }
    void onCommit() { commits++; }

    static UIEventMouse at(const UIElement* e, int button = 0) {
        return {button, static_cast<float>(e->getX() + e->getWidth() / 2),
                static_cast<float>(e->getY() + e->getHeight() / 2)};
    }
    void click(const UIElement* e) {
        root.mouseDown(at(e));
        root.mouseUp(at(e));
    }
    void key(int code, bool shift = false, bool ctrl = false) { root.keyDown({code, shift, ctrl}); }
    std::string type(const char* text) {
        for (; *text; text++)
            root.text(std::string_view(text, 1));
        return field->getText().c_str();
    }
    std::string text() const { return field->getText().c_str(); }

    UIRoot root;
    UIVLayout* panel;
    UIButton* buttons[3];
    UIEditLineWheel* field;
    std::vector<UIElement*> clicked;
    std::string focus;
    int commits = 0;
};

} // namespace ig
