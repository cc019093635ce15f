// SPDX-License-Identifier: MIT
#pragma once

#include "ig/ui/Widget.h"

namespace ig {

class IApp;

/// A question or a message to the operator:
///
///     MsgBox box(app, "Quit", "End the session?");
///     box.center();
///     if (box.modality()) ...
///
/// While it waits the application goes on with its frames. In an application without a user
/// interface, or that can't wait, it is refused at once.
class MsgBox : public UIDialog {
public:
    MsgBox(const IApp* app, const jString& title, const jString& text);
    /// A message only needs its OK button.
    void hideCancelButton(bool hide) { getCancelButton()->setHidden(hide); }
};

} // namespace ig
