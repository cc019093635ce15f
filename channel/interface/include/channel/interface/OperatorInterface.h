// SPDX-License-Identifier: MIT
#pragma once

#include "channel/interface/Overlays.h"
#include "channel/interface/SceneSwitches.h"
#include "channel/interface/WindowListener.h"
#include "ig/app/InputRouter.h"
#include "ig/ui/UIRoot.h"
#include "ig/ui/UiDrawList.h"

#include <memory>
#include <vector>

class LogicBase;

namespace ig {
class ControlApp;
class IApp;
} // namespace ig

/// What the operator sees over the picture and works the channel with: the user interface that the
/// logic builds its panels in, the overlays, and the way that keys and mouse take. The window hands
/// its events over between frames. Keys of the window itself are taken with Alt, so that none of
/// the scene's or a text's is.
class OperatorInterface final : public WindowListener {
public:
    OperatorInterface(ig::IApp* app, WindowOwner& owner, ig::ControlApp* control);

    /// After the logic's `init`, so that the overlays cover its panels; the logic gets the events
    /// that are the scene's. `interface_path`: what can't be known of the logic otherwise
    /// (`docs/operator.md`), with switches of the engine's world; a logic may have no such file.
    void open(LogicBase* logic, const std::string& interface_path);
    /// Destroys the user interface; after the logic's `release`, before the world goes.
    void close();
    ig::UIRoot* getRoot() const { return m_root.get(); }
    Overlays& getOverlays() { return m_overlays; }
    /// The panels of the logic, with what they show of it; the overlays stay. F10 does the same.
    void showPanels(bool show);
    /// Size of the picture, and the window system's pixels per unit of 1/96 inch.
    void resize(int width, int height, float density = 1);

    // --- the window's events

    void onKey(int key, bool down, bool repeat) override;
    /// Presses and lets go the modifier keys that the window system knows better.
    void onModifiers(bool shift, bool ctrl, bool alt) override;
    void onText(const char* utf8) override { m_input.text(utf8); }
    void onButton(int button, bool down, float x, float y) override;
    void onMove(float x, float y) override;
    void onWheel(float notches) override;
    void onFocusLost() override { m_input.focusLost(); }
    void onLeft() override;
    void onClose() override;
    void onResized(int width, int height, float density) override {
        m_owner.resize(width, height, density);
    }
    /// The window is to be closed, and the operator has not been asked back.
    bool isCloseRequested() const { return m_close_requested; }
    void dropCloseRequest() { m_close_requested = false; }
    /// The operator wants an end without being asked, which the logic has not made itself.
    bool isEndRequested() const { return m_end_requested; }

    // --- frame

    /// Fits the panels to the picture, and refreshes and lays out everything.
    void update(float dt);
    /// What is to be drawn; valid until the next call.
    const ig::UiDrawList* draw();
    /// All that can be shown, hidden panels and viewports too, for a renderer to get ready. The
    /// list holds until the next `draw`.
    const ig::UiDrawList* drawAll();
    /// Of that what the logic's panels show, into a list of the caller's.
    void drawPanels(ig::UiDrawList& list) const;

private:
    bool doWindowsOwn(int key);
    void endAtOnce();
    void fit();

    ig::IApp* m_app;
    WindowOwner& m_owner;
    ig::ControlApp* m_control;
    LogicBase* m_logic = nullptr;
    std::unique_ptr<ig::UIRoot> m_root;
    ig::InputRouter m_input;
    ig::UiDrawList m_list;
    Overlays m_overlays;
    SceneSwitches m_switches;
    std::vector<ig::UIElement*> m_panels; ///< the root's; those of the logic
    bool m_panels_shown = true;
    bool m_close_requested = false, m_end_requested = false;
    int m_width = 0, m_height = 0; ///< of the picture, pixels
    float m_density = 1;           ///< pixels per unit of 1/96 inch
    /// Units that the panels need, and how many more in height while a viewport shows; 0: no
    /// matter.
    float m_panels_width = 0, m_panels_height = 0, m_viewports_height = 0;
};
