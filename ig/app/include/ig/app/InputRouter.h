// SPDX-License-Identifier: MIT
#pragma once

#include "ig/ui/KeyCode.h"

#include <bitset>

namespace ig {

class ControlApp;
class UIRoot;

/// Brings the window's events to whom they belong: first to the user interface, and only what that
/// did not take to the scene, that is to `ControlApp` and, when the operation answers true, to the
/// logic's event entries. A key or button that went down for one goes up for the same one, whatever
/// has the focus by then.
class InputRouter {
public:
    InputRouter(UIRoot* ui, ControlApp* scene) : m_ui(ui), m_scene(scene) {}

    // Each answers whether the logic is to hear of it.

    /// `repeat`: the key is being held. Repeats are the user interface's only. A modifier key that
    /// nobody holds has been pressed anew all the same: a window manager took its release.
    bool keyDown(int key, bool repeat = false);
    bool keyUp(int key);
    /// Down, for whomever.
    bool isHeld(int key) const;
    /// What the keyboard typed, UTF-8.
    void text(const char* utf8);
    bool mouseDown(int button, float x, float y); ///< 0 left, 1 right, 2 middle
    bool mouseUp(int button, float x, float y);
    bool mouseMove(float x, float y);
    bool wheel(float notches); ///< positive when rolled up
    /// The window lost the focus: releases may never be reported.
    void focusLost();

private:
    static constexpr int BUTTONS = 3;

    UIRoot* m_ui;
    ControlApp* m_scene;
    std::bitset<KEY_COUNT> m_scene_keys;  ///< that went down for the scene
    std::bitset<KEY_COUNT> m_held;        ///< down, for whomever
    std::bitset<BUTTONS> m_scene_buttons; ///< that went down for the scene
    float m_x = 0, m_y = 0;
    bool m_moved = false; ///< the place of the mouse is known
};

} // namespace ig
