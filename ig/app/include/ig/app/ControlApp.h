// SPDX-License-Identifier: MIT
#pragma once

#include "ig/ui/KeyCode.h"

#include <bitset>

namespace ig {

/// The state of keyboard and mouse for whoever polls it once a frame. The application feeds it
/// between frames with what the user interface did not take, and calls `endFrame` after the logic's
/// update.
///
/// However long a frame is, a key that was struck before it is down in it, with everything that was
/// held together with it: what is let go after the stroke goes up at the frame's end.
class ControlApp {
public:
    /// Down now.
    bool isKeyPress(int key) const { return isKey(key) && m_pressed[index(key)]; }
    /// Went down since the last frame and was not cleared. Repeats of a held key don't count.
    bool isKeyClick(int key) const { return isKey(key) && m_clicked[index(key)]; }
    /// Forgets the click, so that one press acts once.
    void clearKeyClick(int key) {
        if (isKey(key)) m_clicked.reset(index(key));
    }
    bool isLeftButtonDown() const { return m_left; }
    bool isRightButtonDown() const { return m_right; }
    bool isWheelButtonDown() const { return m_wheel < 0; } ///< rolled down in this frame
    bool isWheelButtonUp() const { return m_wheel > 0; }   ///< rolled up in this frame
    /// Motion since the last frame, pixels: to the right and downwards.
    float getMouseDX() const { return m_dx; }
    float getMouseDY() const { return m_dy; }
    /// Degrees per pixel.
    float getMouseSensitivity() const { return SENSITIVITY; }

    void keyDown(int key);
    void keyUp(int key);
    void setLeftButton(bool down) { m_left = down; }
    void setRightButton(bool down) { m_right = down; }
    void moveMouse(float dx, float dy);
    /// Forgets the motion so far: it was made before a button went down, and is no part of a drag.
    void dropMotion() { m_dx = m_dy = 0; }
    /// Positive when rolled up.
    void rollWheel(float delta) { m_wheel += delta; }
    /// Forgets clicks, motion and wheel.
    void endFrame();
    /// Everything is up: the window lost the focus, and releases may never be reported.
    void releaseAll();

private:
    static constexpr float SENSITIVITY = 0.25f;
    static bool isKey(int key) { return key >= 0 && key < KEY_COUNT; }
    static std::size_t index(int key) { return static_cast<std::size_t>(key); }

    std::bitset<KEY_COUNT> m_pressed, m_clicked;
    std::bitset<KEY_COUNT> m_struck;   ///< went down since the last frame
    std::bitset<KEY_COUNT> m_released; ///< goes up at the frame's end
    bool m_left = false, m_right = false;
    float m_wheel = 0, m_dx = 0, m_dy = 0;
};

} // namespace ig
