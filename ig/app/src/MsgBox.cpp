// SPDX-License-Identifier: MIT
#include "ig/app/MsgBox.h"

#include "ig/app/IApp.h"
#include "ig/ui/UIRoot.h"

namespace ig {

namespace {
/// Stands in where there is no user interface; nothing is ever shown in it.
UIRoot* rootOf(const IApp* app) {
    static UIRoot none;
    UIRoot* root = app ? app->getUIRoot() : nullptr;
    return root ? root : &none;
}
} // namespace

MsgBox::MsgBox(const IApp* app, const jString& title, const jString& text)
    : UIDialog(rootOf(app), title) {
    auto* label = new UILabel(getRoot(), text);
    label->setShowBackground(false);
    addContent(label);
}

} // namespace ig
