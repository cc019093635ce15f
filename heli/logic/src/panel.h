// SPDX-License-Identifier: MIT
#pragma once

// What the operator panels have in common.

#include "ig/app/Engine.h"
#include "ig/app/IApp.h"
#include "ig/ui/UILayout.h"
#include "ig/ui/UIRoot.h"
#include "memory.h"

inline constexpr ig::vec4 PANEL_BACKGROUND{0.5f, 0.5f, 0.5f, 0.5f}; ///< of layouts and fields

/// The application's user interface, or null.
inline ig::UIRoot* userInterface() {
    const ig::IApp* app = ig::Engine::get()->getApp();
    return app ? app->getUIRoot() : nullptr;
}

/// An empty panel that the frame update places, added to the application's user interface, which
/// owns it. Null when there is no user interface or no memory. `function` is the qualified name of
/// the building operation.
template <class Layout>
Layout* createPanel(const char* function) {
    ig::UIRoot* ui = userInterface();
    Layout* panel = ui ? create<Layout>(function, ui, 0, 0) : nullptr;
    if (!panel) return nullptr;
    panel->setAlignFree(true);
    panel->setShowBackground(false);
    panel->setSpace(1, 0);
    panel->setBackgroundColor(PANEL_BACKGROUND);
    panel->setContentAligns(ig::UI_ALIGN_RIGHT | ig::UI_ALIGN_BOTTOM);
    ui->addChild(panel, ig::UI_EXPAND_NONE, -1);
    return panel;
}
