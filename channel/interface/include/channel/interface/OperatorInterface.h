// SPDX-License-Identifier: MIT
#pragma once

#include "channel/interface/Overlays.h"
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
/// its events over between frames.
class OperatorInterface {
public:
    OperatorInterface(ig::IApp* app, ig::ControlApp* control);

    /// After the logic's `init`, so that the overlays cover its panels; the logic gets the events
    /// that are the scene's.
    void open(LogicBase* logic);
    /// Destroys the user interface; after the logic's `release`, before the world goes.
    void close();
    ig::UIRoot* getRoot() const { return m_root.get(); }
    Overlays& getOverlays() { return m_overlays; }
    /// The panels of the logic, with what they show of it; the overlays stay. F10 does the same.
    void showPanels(bool show);
    /// Size of the picture, and the window system's pixels per unit of 1/96 inch.
    void resize(int width, int height, float density = 1);

    // --- the window's events

    void keyDown(int key, bool repeat); ///< a `KeyCode`
    void keyUp(int key);
    bool isHeld(int key) const { return m_input.isHeld(key); }
    /// Presses and lets go the modifier keys that the window system knows better.
    void setModifiers(bool shift, bool ctrl, bool alt);
    void text(const char* utf8) { m_input.text(utf8); }
    void mouseDown(int button, float x, float y); ///< 0 left, 1 right, 2 middle; picture pixels
    void mouseUp(int button, float x, float y);
    void mouseMove(float x, float y);
    void wheel(float notches); ///< positive when rolled up
    void focusLost() { m_input.focusLost(); }

    // --- frame

    /// Fits the panels to the picture, and refreshes and lays out everything.
    void update(float dt);
    /// What is to be drawn; valid until the next call.
    const ig::UiDrawList* draw();

private:
    void fit();

    ig::IApp* m_app;
    LogicBase* m_logic = nullptr;
    std::unique_ptr<ig::UIRoot> m_root;
    ig::InputRouter m_input;
    ig::UiDrawList m_list;
    Overlays m_overlays;
    std::vector<ig::UIElement*> m_panels; ///< the root's; those of the logic
    bool m_panels_shown = true;
    int m_width = 0, m_height = 0; ///< of the picture, pixels
    float m_density = 1;           ///< pixels per unit of 1/96 inch
};
